// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/write/OutputFile.h"

#include <cerrno>
#include <cstring>

#include "audio/FileError.h"

namespace audio::write {

OutputFile::OutputFile(const std::filesystem::path& file) : file_(file) {
    errno = 0;
    stream_.open(file_, std::ios::binary | std::ios::trunc);
    check();
}

void OutputFile::append(const unsigned char* bytes, std::size_t count) {
    errno = 0;
    stream_.write(reinterpret_cast<const char*>(bytes), static_cast<std::streamsize>(count));
    check();
}

void OutputFile::overwrite(std::int64_t offset, const unsigned char* bytes, std::size_t count) {
    errno = 0;
    stream_.seekp(offset);
    stream_.write(reinterpret_cast<const char*>(bytes), static_cast<std::streamsize>(count));
    stream_.seekp(0, std::ios::end);
    check();
}

void OutputFile::close() {
    errno = 0;
    stream_.close();
    check();
}

void OutputFile::check() {
    if (stream_) return;
    throw fileError(file_, std::string("could not be written: ") +
                               (errno != 0 ? std::strerror(errno) : "the system gives no reason"));
}

}  // namespace audio::write
