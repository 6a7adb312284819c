// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <filesystem>
#include <string>
#include <vector>

#include <QByteArray>
#include <QStringList>

namespace support {

/// One of the sound files that make_fixtures made at build time ("tone.mp3"): read it, never write
/// it (scratchCopy() is for that).
std::filesystem::path fixture(const std::string& name);

/// A writable copy of a fixture in a folder, under its own or another name.
std::filesystem::path scratchCopy(const std::string& name, const std::filesystem::path& folder,
                                  const std::string& newName = {});

std::vector<std::byte> readBytes(const std::filesystem::path& file);
void writeBytes(const std::filesystem::path& file, const std::vector<std::byte>& bytes);

/// What a program that was run to its end left behind.
struct Outcome {
    int exitCode = -1;  ///< -1: it did not start, crashed or took longer than two minutes
    QByteArray out;
    QByteArray err;
};
Outcome run(const QString& program, const QStringList& arguments);

}  // namespace support
