// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <filesystem>
#include <vector>

#include <QByteArray>
#include <QString>

namespace support {

/// Runs a script with the system's own Python, which has mutagen, the files as its arguments, and
/// returns what it prints. A script that fails fails the test.
QByteArray python(const QString& script, const std::vector<std::filesystem::path>& files);

}  // namespace support
