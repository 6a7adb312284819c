// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/Python.h"

#include <gtest/gtest.h>

#include "platform/Paths.h"
#include "tests/support/Fixtures.h"

namespace support {

QByteArray python(const QString& script, const std::vector<std::filesystem::path>& files) {
    QStringList arguments{QStringLiteral("-c"), script};
    for (const std::filesystem::path& file : files) arguments << platform::toQString(file);
    // Not the first on the search path, which may be one without Debian's modules.
    const Outcome outcome = run(QStringLiteral("/usr/bin/python3"), arguments);
    EXPECT_EQ(outcome.exitCode, 0) << outcome.err.toStdString();
    return outcome.out;
}

}  // namespace support
