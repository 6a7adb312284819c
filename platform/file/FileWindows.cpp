// SPDX-License-Identifier: GPL-3.0-or-later
// The Windows half of File.
#include <algorithm>
#include <vector>
#include <windows.h>

#include "platform/SystemError.h"
#include "platform/file/File.h"

namespace platform::file {
namespace {

bool failed(std::error_code& error) {
    error = lastSystemError();
    return false;
}

HANDLE native(std::intptr_t handle) {
    return reinterpret_cast<HANDLE>(handle);
}

OVERLAPPED at(std::int64_t position) {
    OVERLAPPED place{};
    place.Offset = static_cast<DWORD>(position);
    place.OffsetHigh = static_cast<DWORD>(position >> 32);
    return place;
}

}  // namespace

bool File::openForReading(const std::filesystem::path& path, std::error_code& error) {
    close();
    handle_ = reinterpret_cast<std::intptr_t>(CreateFileW(
        path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
        OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
    return handle_ != -1 || failed(error);
}

bool File::createNew(const std::filesystem::path& path, std::error_code& error) {
    close();
    handle_ = reinterpret_cast<std::intptr_t>(
        CreateFileW(path.c_str(), GENERIC_READ | GENERIC_WRITE,
                    FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr, CREATE_NEW,
                    FILE_ATTRIBUTE_NORMAL, nullptr));
    return handle_ != -1 || failed(error);
}

bool File::openForWriting(const std::filesystem::path& path, std::error_code& error) {
    close();
    handle_ = reinterpret_cast<std::intptr_t>(
        CreateFileW(path.c_str(), GENERIC_READ | GENERIC_WRITE,
                    FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr, CREATE_ALWAYS,
                    FILE_ATTRIBUTE_NORMAL, nullptr));
    return handle_ != -1 || failed(error);
}

void File::close() {
    if (handle_ != -1) CloseHandle(native(handle_));
    handle_ = -1;
}

// The system writes files back by itself; there is no call that only begins it.
void File::wrote(std::int64_t) {}

bool File::readAt(std::int64_t position, std::span<std::byte> bytes, std::error_code& error) const {
    while (!bytes.empty()) {
        OVERLAPPED place = at(position);
        DWORD got = 0;
        const auto count = static_cast<DWORD>(std::min<std::size_t>(bytes.size(), 1U << 30));
        if (ReadFile(native(handle_), bytes.data(), count, &got, &place) == 0) return failed(error);
        bytes = bytes.subspan(got);
        position += got;
    }
    return true;
}

bool File::writeAt(std::int64_t position, std::span<const std::byte> bytes,
                   std::error_code& error) {
    while (!bytes.empty()) {
        OVERLAPPED place = at(position);
        DWORD put = 0;
        const auto count = static_cast<DWORD>(std::min<std::size_t>(bytes.size(), 1U << 30));
        if (WriteFile(native(handle_), bytes.data(), count, &put, &place) == 0)
            return failed(error);
        bytes = bytes.subspan(put);
        position += put;
    }
    return true;
}

bool File::resize(std::int64_t size, std::error_code& error) {
    FILE_END_OF_FILE_INFO end{};
    end.EndOfFile.QuadPart = size;
    return SetFileInformationByHandle(native(handle_), FileEndOfFileInfo, &end, sizeof end) != 0 ||
           failed(error);
}

bool File::copyFrom(const File& source, std::int64_t offset, std::int64_t size,
                    std::int64_t position, std::error_code& error) {
    std::vector<std::byte> buffer(std::size_t{1} << 20);
    while (size > 0) {
        const std::span<std::byte> part(buffer.data(),
                                        static_cast<std::size_t>(std::min<std::int64_t>(
                                            size, static_cast<std::int64_t>(buffer.size()))));
        if (!source.readAt(offset, part, error) || !writeAt(position, part, error)) return false;
        const auto count = static_cast<std::int64_t>(part.size());
        offset += count;
        position += count;
        size -= count;
    }
    return true;
}

bool File::copyAttributesOf(const std::filesystem::path&, std::error_code&) {
    return true;
}

bool File::sync(std::error_code& error) {
    return FlushFileBuffers(native(handle_)) != 0 || failed(error);
}

bool isWritable(const std::filesystem::path& path) {
    const DWORD attributes = GetFileAttributesW(path.c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_READONLY) == 0;
}

bool File::replace(const std::filesystem::path& from, const std::filesystem::path& to,
                   std::error_code& error) {
    close();
    // ReplaceFile keeps the target's access list, attributes and streams, but needs a target.
    if (GetFileAttributesW(to.c_str()) == INVALID_FILE_ATTRIBUTES)
        return MoveFileExW(from.c_str(), to.c_str(), MOVEFILE_WRITE_THROUGH) != 0 || failed(error);
    return ReplaceFileW(to.c_str(), from.c_str(), nullptr, REPLACEFILE_WRITE_THROUGH, nullptr,
                        nullptr) != 0 ||
           failed(error);
}

// Between close() and its new name a temporary is in nobody's hands, so only old ones are touched.
void removeUnheld(const std::filesystem::path& path) {
    constexpr std::uint64_t day = 24ULL * 3600 * 10'000'000;  // in steps of 100 ns
    const auto ticks = [](const FILETIME& time) {
        return (std::uint64_t{time.dwHighDateTime} << 32) | time.dwLowDateTime;
    };
    WIN32_FILE_ATTRIBUTE_DATA about{};
    FILETIME now{};
    GetSystemTimeAsFileTime(&now);
    constexpr DWORD notOrdinary = FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_REPARSE_POINT;
    if (GetFileAttributesExW(path.c_str(), GetFileExInfoStandard, &about) == 0 ||
        (about.dwFileAttributes & notOrdinary) != 0 ||
        ticks(about.ftLastWriteTime) + day > ticks(now))
        return;
    // Shared with nobody: it opens only where nobody else has it open, and goes when it is closed.
    const HANDLE file =
        CreateFileW(path.c_str(), DELETE, 0, nullptr, OPEN_EXISTING,
                    FILE_FLAG_DELETE_ON_CLOSE | FILE_FLAG_OPEN_REPARSE_POINT, nullptr);
    if (file != INVALID_HANDLE_VALUE) CloseHandle(file);
}

}  // namespace platform::file
