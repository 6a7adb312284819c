// SPDX-License-Identifier: GPL-3.0-or-later
// The Windows half of File.
#include <algorithm>
#include <array>
#include <cwchar>
#include <random>
#include <string>
#include <vector>
#include <windows.h>

#include "platform/SystemError.h"
#include "platform/file/File.h"
#include "platform/file/Regular.h"

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

// FAT numbers a file by the place of its name, which changes with the name.
bool keepsNumbers(HANDLE file) {
    DWORD flags = 0;
    return GetVolumeInformationByHandleW(file, nullptr, 0, nullptr, nullptr, &flags, nullptr, 0) !=
               0 &&
           (flags & FILE_SUPPORTS_OPEN_BY_FILE_ID) != 0;
}

std::uint64_t joined(DWORD high, DWORD low) {
    return (std::uint64_t{high} << 32) | low;
}

std::intptr_t open(const std::filesystem::path& path, DWORD access, DWORD how) {
    return reinterpret_cast<std::intptr_t>(
        CreateFileW(path.c_str(), access, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                    nullptr, how, FILE_ATTRIBUTE_NORMAL, nullptr));
}

FileId idFrom(const BY_HANDLE_FILE_INFORMATION& about) {
    return {about.dwVolumeSerialNumber, joined(about.nFileIndexHigh, about.nFileIndexLow)};
}

bool isThere(const std::filesystem::path& path) {
    return GetFileAttributesW(path.c_str()) != INVALID_FILE_ATTRIBUTES;
}

// Where the old file goes for the moment of a replacement. No temporary: should the machine stop
// there, this is the file itself, and nobody may sweep it.
std::filesystem::path backupName(const std::filesystem::path& file) {
    std::random_device random;
    std::array<wchar_t, 9> number{};
    std::swprintf(number.data(), number.size(), L"%08x", random());
    return file.native() + L"." + number.data() + L".old";
}

bool moveNow(const std::filesystem::path& from, const std::filesystem::path& to) {
    return MoveFileExW(from.c_str(), to.c_str(), MOVEFILE_WRITE_THROUGH) != 0;
}

// Scanners and indexers hold a file for a moment after it was written or looked at.
template <typename Action>
bool tryAgainWhileHeld(Action action) {
    constexpr DWORD pause = 20;  // milliseconds
    for (int attempts = 50;; --attempts) {
        if (action()) return true;
        const DWORD reason = GetLastError();
        if (reason != ERROR_SHARING_VIOLATION && reason != ERROR_LOCK_VIOLATION &&
            reason != ERROR_UNABLE_TO_REMOVE_REPLACED)
            return false;
        if (attempts == 0) {
            SetLastError(reason);
            return false;
        }
        Sleep(pause);
    }
}

// ReplaceFile keeps the target's access list, attributes and streams. Where it stops between its
// steps (errors 1175 to 1177) the old file lies under its own name or under the backup's: the
// replacement is completed then, else undone.
bool replaceExisting(const std::filesystem::path& from, const std::filesystem::path& to) {
    const std::filesystem::path backup = backupName(to);
    const bool replaced = tryAgainWhileHeld([&] {
        return ReplaceFileW(to.c_str(), from.c_str(), backup.c_str(), REPLACEFILE_WRITE_THROUGH,
                            nullptr, nullptr) != 0;
    });
    if (!replaced) {
        const DWORD reason = GetLastError();
        if (isThere(to)) {
            SetLastError(reason);
            return false;
        }
        if (!tryAgainWhileHeld([&] { return moveNow(from, to); })) {
            moveNow(backup, to);
            SetLastError(reason);
            return false;
        }
    }
    DeleteFileW(backup.c_str());
    return true;
}

}  // namespace

bool File::openForReading(const std::filesystem::path& path, std::error_code& error) {
    close();
    error = reasonAgainst(path);
    if (error) return false;
    handle_ = open(path, GENERIC_READ, OPEN_EXISTING);
    return handle_ != -1 || failed(error);
}

bool File::createNew(const std::filesystem::path& path, std::error_code& error) {
    close();
    handle_ = open(path, GENERIC_READ | GENERIC_WRITE, CREATE_NEW);
    return handle_ != -1 || failed(error);
}

bool File::openForWriting(const std::filesystem::path& path, std::error_code& error) {
    close();
    error = reasonAgainst(path);
    if (error == notRegular()) return false;
    error.clear();
    handle_ = open(path, GENERIC_READ | GENERIC_WRITE, CREATE_ALWAYS);
    return handle_ != -1 || failed(error);
}

void File::close() {
    if (handle_ != -1) CloseHandle(native(handle_));
    handle_ = -1;
    waiting_ = 0;
}

// The system writes files back by itself; there is no call that only begins it.
void File::wrote(std::int64_t bytes) {
    waiting_ += bytes;
}

std::optional<std::size_t> File::readSome(std::int64_t position, std::span<std::byte> bytes,
                                          std::error_code& error) const {
    OVERLAPPED place = at(position);
    DWORD got = 0;
    const auto count = static_cast<DWORD>(std::min<std::size_t>(bytes.size(), 1U << 30));
    if (ReadFile(native(handle_), bytes.data(), count, &got, &place) != 0) return got;
    if (GetLastError() == ERROR_HANDLE_EOF) return 0;
    failed(error);
    return {};
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

std::optional<Stamp> File::stamp(std::error_code& error) const {
    BY_HANDLE_FILE_INFORMATION about{};
    if (GetFileInformationByHandle(native(handle_), &about) == 0) {
        failed(error);
        return {};
    }
    FileId id = idFrom(about);
    if (!keepsNumbers(native(handle_))) id.number = 0;
    return Stamp{id, static_cast<std::int64_t>(joined(about.nFileSizeHigh, about.nFileSizeLow)),
                 static_cast<std::int64_t>(joined(about.ftLastWriteTime.dwHighDateTime,
                                                  about.ftLastWriteTime.dwLowDateTime))};
}

std::optional<Stamp> stampOf(const std::filesystem::path& path, std::error_code& error) {
    File file;
    if (!file.openForReading(path, error)) return {};
    return file.stamp(error);
}

std::optional<FileId> idOf(const std::filesystem::path& path) {
    const HANDLE file = native(open(path, 0, OPEN_EXISTING));
    if (file == INVALID_HANDLE_VALUE) return {};
    BY_HANDLE_FILE_INFORMATION about{};
    const bool known = GetFileInformationByHandle(file, &about) != 0;
    CloseHandle(file);
    return known ? std::optional(idFrom(about)) : std::nullopt;
}

bool File::copyAttributesOf(const std::filesystem::path&, std::error_code&) {
    return true;
}

// A new file has its rights from its folder; the times go with it.
void File::copyModeAndTimesOf(const File& other) {
    FILETIME accessed{};
    FILETIME changed{};
    if (GetFileTime(native(other.handle_), nullptr, &accessed, &changed) != 0)
        SetFileTime(native(handle_), nullptr, &accessed, &changed);
}

bool File::sync(std::error_code& error) {
    return FlushFileBuffers(native(handle_)) != 0 || failed(error);
}

bool File::replace(const std::filesystem::path& from, const std::filesystem::path& to,
                   std::error_code& error) {
    close();
    const bool done = isThere(to) ? replaceExisting(from, to)
                                  : tryAgainWhileHeld([&] { return moveNow(from, to); });
    return done || failed(error);
}

// Names are written through by the calls that give them.
void syncFolder(const std::filesystem::path&) {}

bool isWritable(const std::filesystem::path& path) {
    const DWORD attributes = GetFileAttributesW(path.c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_READONLY) == 0;
}

// Between close() and its new name a temporary is in nobody's hands, so only old ones are touched.
void removeUnheld(const std::filesystem::path& path) {
    constexpr std::uint64_t day = 24ULL * 3600 * 10'000'000;  // in steps of 100 ns
    WIN32_FILE_ATTRIBUTE_DATA about{};
    FILETIME now{};
    GetSystemTimeAsFileTime(&now);
    constexpr DWORD notOrdinary = FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_REPARSE_POINT;
    if (GetFileAttributesExW(path.c_str(), GetFileExInfoStandard, &about) == 0 ||
        (about.dwFileAttributes & notOrdinary) != 0 ||
        joined(about.ftLastWriteTime.dwHighDateTime, about.ftLastWriteTime.dwLowDateTime) + day >
            joined(now.dwHighDateTime, now.dwLowDateTime))
        return;
    // Shared with nobody: it opens only where nobody else has it open, and goes when it is closed.
    const HANDLE file =
        CreateFileW(path.c_str(), DELETE, 0, nullptr, OPEN_EXISTING,
                    FILE_FLAG_DELETE_ON_CLOSE | FILE_FLAG_OPEN_REPARSE_POINT, nullptr);
    if (file != INVALID_HANDLE_VALUE) CloseHandle(file);
}

}  // namespace platform::file
