// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/write/OutputFile.h"

#include <span>

#include "audio/FileError.h"

namespace audio::write {

OutputFile::OutputFile(const std::filesystem::path& path) : path_(path) {
    std::error_code error;
    if (!file_.openForWriting(path_, error)) fail(error);
}

void OutputFile::append(const unsigned char* bytes, std::size_t count) {
    overwrite(size_, bytes, count);
    size_ += static_cast<std::int64_t>(count);
}

void OutputFile::overwrite(std::int64_t offset, const unsigned char* bytes, std::size_t count) {
    std::error_code error;
    if (!file_.writeAt(offset, std::as_bytes(std::span(bytes, count)), error)) fail(error);
}

void OutputFile::fail(const std::error_code& reason) const {
    throw fileError(path_, "could not be written: " + reason.message());
}

}  // namespace audio::write
