// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/Fixtures.h"

#include <fstream>

#include <QProcess>
#include <gtest/gtest.h>

namespace support {

std::filesystem::path fixture(const std::string& name) {
    const std::filesystem::path path = std::filesystem::path(TRACKSMITH_FIXTURES) / name;
    EXPECT_TRUE(std::filesystem::exists(path)) << "no such fixture: " << name;
    return path;
}

std::filesystem::path scratchCopy(const std::string& name, const std::filesystem::path& folder,
                                  const std::string& newName) {
    const std::filesystem::path target = folder / (newName.empty() ? name : newName);
    std::filesystem::copy_file(fixture(name), target,
                               std::filesystem::copy_options::overwrite_existing);
    return target;
}

std::vector<std::byte> readBytes(const std::filesystem::path& file) {
    std::ifstream stream(file, std::ios::binary);
    EXPECT_TRUE(stream) << file;
    std::vector<std::byte> bytes(stream ? std::filesystem::file_size(file) : 0);
    stream.read(reinterpret_cast<char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    return bytes;
}

void writeBytes(const std::filesystem::path& file, const std::vector<std::byte>& bytes) {
    std::ofstream stream(file, std::ios::binary | std::ios::trunc);
    stream.write(reinterpret_cast<const char*>(bytes.data()),
                 static_cast<std::streamsize>(bytes.size()));
    stream.close();
    EXPECT_TRUE(stream) << file;
}

Outcome run(const QString& program, const QStringList& arguments) {
    QProcess process;
    process.setStandardInputFile(QProcess::nullDevice());
    process.start(program, arguments);
    Outcome outcome;
    if (!process.waitForFinished(120'000)) return outcome;
    if (process.exitStatus() == QProcess::NormalExit) outcome.exitCode = process.exitCode();
    outcome.out = process.readAllStandardOutput();
    outcome.err = process.readAllStandardError();
    return outcome;
}

}  // namespace support
