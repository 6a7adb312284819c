// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/Unwritable.h"

#include <unistd.h>

#include <gtest/gtest.h>

#include "platform/Paths.h"
#include "tests/support/Fixtures.h"

using namespace Qt::Literals::StringLiterals;

namespace support {
namespace {

bool isAdministrator() {
    return ::geteuid() == 0;
}

int changeAttribute(const QString& change, const std::filesystem::path& file) {
    return run(u"chattr"_s, {change, platform::toQString(file)}).exitCode;
}

}  // namespace

Unwritable::Unwritable(const std::filesystem::path& file) : file_(file) {
    namespace fs = std::filesystem;
    fs::permissions(file, fs::perms::owner_read);
    const int refused = isAdministrator() ? changeAttribute(u"+i"_s, file) : 0;
    EXPECT_EQ(refused, 0) << file;
}

Unwritable::~Unwritable() {
    if (isAdministrator()) changeAttribute(u"-i"_s, file_);
}

}  // namespace support
