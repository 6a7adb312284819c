// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <filesystem>
#include <string>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>
#include <vector>

#include <gtest/gtest.h>

namespace support {

/// Makes, in a folder, what a name may lead to that is no file to read: a pipe nobody writes to, a
/// socket, a device without an end (through a link) and a folder, each with this ending, so that it
/// passes for a sound or a list.
inline std::vector<std::filesystem::path> makeIrregular(const std::filesystem::path& folder,
                                                        const std::string& ending) {
    const auto pipe = folder / ("pipe" + ending);
    EXPECT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    const auto device = folder / ("device" + ending);
    std::filesystem::create_symlink("/dev/zero", device);
    const auto directory = folder / ("folder" + ending);
    std::filesystem::create_directory(directory);
    const auto socket = folder / ("socket" + ending);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    socket.string().copy(address.sun_path, sizeof address.sun_path - 1);
    const int listener = ::socket(AF_UNIX, SOCK_STREAM, 0);
    EXPECT_EQ(::bind(listener, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    ::close(listener);
    return {pipe, device, directory, socket};
}

}  // namespace support
