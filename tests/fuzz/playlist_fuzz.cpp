// SPDX-License-Identifier: GPL-3.0-or-later
// Any bytes at all, read as a playlist: a list or a sentence comes out, and what was read can be
// written and read again as the same entries.
#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "lists/ListReader.h"
#include "lists/ListWriter.h"
#include "platform/Error.h"

namespace {

using lists::ListedEntry;

std::vector<ListedEntry> read(const QByteArray& bytes) {
    return lists::readList(bytes, QStringLiteral("/lists"), [](const QString& path) {
        return path.size() % 3 == 0;  // some files are there, some are not
    });
}

bool sameAgain(const std::vector<ListedEntry>& entries) {
    QByteArray bytes;
    try {
        bytes = lists::writePls(entries);
    } catch (const platform::Error&) {
        return true;  // a name that no list can hold
    }
    return read(bytes).size() == entries.size();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const QByteArray bytes(reinterpret_cast<const char*>(data), qsizetype(size));
    try {
        if (!sameAgain(read(bytes))) std::abort();
    } catch (const platform::Error&) {
        // What is no playlist is refused.
    }
    return 0;
}
