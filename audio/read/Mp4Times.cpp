// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/read/Mp4Times.h"

#include <array>
#include <fstream>
#include <string_view>

namespace audio::read {
namespace {

using Head = std::array<unsigned char, 48>;

std::int64_t number(const Head& head, std::size_t at, std::size_t bytes) {
    std::uint64_t value = 0;
    for (std::size_t i = 0; i < bytes; ++i) value = value << 8 | head[at + i];
    return static_cast<std::int64_t>(value);
}

}  // namespace

Mp4Times readMp4Times(const std::filesystem::path& path, int track) {
    Mp4Times times;
    std::ifstream file(path, std::ios::binary);
    std::int64_t at = 0;
    std::int64_t current = -1;  // the track that the boxes belong to
    while (file.seekg(at)) {
        Head head{};
        file.read(reinterpret_cast<char*>(head.data()), head.size());
        if (file.gcount() < 8) break;
        file.clear();
        const std::string_view name(reinterpret_cast<const char*>(head.data()) + 4, 4);
        if (name == "moov" || name == "trak" || name == "mdia") {
            at += 8;  // what is in it follows
            continue;
        }
        const bool wide = head[8] == 1;  // version 1 of a box has longer fields
        if (name == "mvhd") times.movieScale = number(head, wide ? 28 : 20, 4);
        if (name == "tkhd") current = number(head, wide ? 28 : 20, 4);
        if (name == "mdhd" && current == track) {
            times.mediaScale = number(head, wide ? 28 : 20, 4);
            times.mediaDuration = wide ? number(head, 32, 8) : number(head, 24, 4);
            break;
        }
        std::int64_t size = number(head, 0, 4);
        if (size == 1) size = number(head, 8, 8);
        if (size < 8) break;
        at += size;
    }
    return times;
}

}  // namespace audio::read
