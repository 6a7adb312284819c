// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/file/CopyBytes.h"

#include <QtGlobal>

#include "platform/SystemError.h"

#ifdef Q_OS_WIN
#include <windows.h>
#else
#include <algorithm>
#include <cstddef>
#include <fcntl.h>
#include <memory>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>
#endif
#ifdef Q_OS_LINUX
#include <linux/fs.h>
#endif

namespace platform::file {

#ifdef Q_OS_WIN

namespace {

DWORD CALLBACK report(LARGE_INTEGER total, LARGE_INTEGER copied, LARGE_INTEGER, LARGE_INTEGER,
                      DWORD, DWORD, HANDLE, HANDLE, LPVOID progress) {
    const auto& tell = *static_cast<const CopyProgress*>(progress);
    return !tell || tell(copied.QuadPart, total.QuadPart) ? PROGRESS_CONTINUE : PROGRESS_CANCEL;
}

}  // namespace

std::error_code copyBytes(const std::filesystem::path& source, const std::filesystem::path& target,
                          const CopyProgress& progress) {
    CopyProgress tell = progress;
    if (CopyFileExW(source.c_str(), target.c_str(), report, &tell, nullptr,
                    COPY_FILE_FAIL_IF_EXISTS))
        return {};
    if (GetLastError() == ERROR_REQUEST_ABORTED)
        return std::make_error_code(std::errc::operation_canceled);
    return lastSystemError();
}

#else

namespace {

/// An open file of the operating system.
class Descriptor {
  public:
    explicit Descriptor(int number) : number_(number) {}
    ~Descriptor() { close(); }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    int number() const { return number_; }
    bool isOpen() const { return number_ >= 0; }
    /// Some file systems tell of a failed write only here.
    bool close() {
        const int number = number_;
        number_ = -1;
        return number < 0 || ::close(number) == 0;
    }

  private:
    int number_;
};

/// One copy between two open files, at their own offsets.
class Copy {
  public:
    Copy(int source, int target, std::int64_t total, const CopyProgress& progress)
        : source_(source), target_(target), total_(total), progress_(progress) {}

    std::error_code run() {
        if (shareExtents()) return {};
        while (const std::int64_t count = copyInsideKernel())
            if (!advance(count)) return std::make_error_code(std::errc::operation_canceled);
        return readAndWrite();
    }

  private:
    bool shareExtents() {
#ifdef FICLONE
        return ::ioctl(target_, FICLONE, source_) == 0;
#else
        return false;
#endif
    }

    /// How many bytes went; 0 at the end of the file, and where the system cannot do it: what is
    /// left goes by reading and writing then, which also finds the reason of a real failure.
    std::int64_t copyInsideKernel() {
#ifdef Q_OS_LINUX
        return std::max<std::int64_t>(
            0, ::copy_file_range(source_, nullptr, target_, nullptr, stretch, 0));
#else
        return 0;
#endif
    }

    std::error_code readAndWrite() {
        std::unique_ptr<std::byte[]> buffer;
        for (;;) {
            if (!buffer) buffer = std::make_unique_for_overwrite<std::byte[]>(bufferSize);
            const ssize_t count = ::read(source_, buffer.get(), bufferSize);
            if (count < 0 && errno == EINTR) continue;
            if (count < 0) return lastSystemError();
            if (count == 0) return {};
            for (ssize_t done = 0; done < count;) {
                const ssize_t written =
                    ::write(target_, buffer.get() + done, static_cast<std::size_t>(count - done));
                if (written < 0 && errno != EINTR) return lastSystemError();
                if (written > 0) done += written;
            }
            if (!advance(count)) return std::make_error_code(std::errc::operation_canceled);
        }
    }

    bool advance(std::int64_t count) {
        copied_ += count;
        return !progress_ || progress_(copied_, total_);
    }

    static constexpr std::size_t stretch = std::size_t{16} << 20;
    static constexpr std::size_t bufferSize = std::size_t{1} << 20;
    int source_;
    int target_;
    std::int64_t total_;
    const CopyProgress& progress_;
    std::int64_t copied_ = 0;
};

}  // namespace

std::error_code copyBytes(const std::filesystem::path& source, const std::filesystem::path& target,
                          const CopyProgress& progress) {
    const Descriptor from(::open(source.c_str(), O_RDONLY | O_CLOEXEC));
    if (!from.isOpen()) return lastSystemError();
    struct stat about {};
    if (::fstat(from.number(), &about) != 0) return lastSystemError();
    Descriptor to(
        ::open(target.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, about.st_mode & 0777));
    if (!to.isOpen()) return lastSystemError();
    Copy copy(from.number(), to.number(), about.st_size, progress);
    if (const std::error_code reason = copy.run()) return reason;
    const timespec times[] = {about.st_atim, about.st_mtim};
    if (::futimens(to.number(), times) != 0) return lastSystemError();
    return to.close() ? std::error_code() : lastSystemError();
}

#endif

}  // namespace platform::file
