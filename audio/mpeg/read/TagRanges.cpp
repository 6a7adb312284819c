// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/mpeg/read/TagRanges.h"

#include <algorithm>
#include <string_view>

namespace audio::mpeg {
namespace {

bool startsWith(std::span<const std::uint8_t> bytes, std::string_view text) {
    return bytes.size() >= text.size() &&
           std::equal(text.begin(), text.end(), bytes.begin(),
                      [](char a, std::uint8_t b) { return static_cast<std::uint8_t>(a) == b; });
}

std::int64_t littleEndian32(std::span<const std::uint8_t> bytes) {
    return static_cast<std::int64_t>(bytes[0]) | static_cast<std::int64_t>(bytes[1]) << 8 |
           static_cast<std::int64_t>(bytes[2]) << 16 | static_cast<std::int64_t>(bytes[3]) << 24;
}

// The size field of ID3v2: four bytes of seven bits; -1 where a byte has its top bit set.
std::int64_t syncsafe(std::span<const std::uint8_t> bytes) {
    std::int64_t value = 0;
    for (int i = 0; i < 4; ++i) {
        if (bytes[static_cast<std::size_t>(i)] & 0x80) return -1;
        value = value << 7 | bytes[static_cast<std::size_t>(i)];
    }
    return value;
}

// Bytes of the tag that begins at `offset`; 0 where none does.
std::int64_t leadingTagSize(platform::file::WindowReader& reader, std::int64_t offset) {
    const auto bytes = reader.at(offset, 32);
    if (bytes.size() >= 10 && startsWith(bytes, "ID3") && bytes[3] != 0xFF && bytes[4] != 0xFF) {
        const std::int64_t size = syncsafe(bytes.subspan(6));
        if (size < 0) return 10;
        return 10 + size + (bytes[5] & 0x10 ? 10 : 0);
    }
    if (bytes.size() == 32 && startsWith(bytes, "APETAGEX")) {
        return 32 + littleEndian32(bytes.subspan(12));
    }
    return 0;
}

// APEv2 by its footer, which ends at `end`.
std::int64_t apeSize(platform::file::WindowReader& reader, std::int64_t end) {
    const auto footer = reader.at(end - 32, 32);
    if (footer.size() < 32 || !startsWith(footer, "APETAGEX")) return 0;
    const bool hasHeader = (footer[23] & 0x80) != 0;
    return littleEndian32(footer.subspan(12)) + (hasHeader ? 32 : 0);
}

// Lyrics3 version 2 (six digits of size before its end mark) or 1 (searched for, at most 5100).
std::int64_t lyricsSize(platform::file::WindowReader& reader, std::int64_t end) {
    const auto mark = reader.at(end - 15, 15);
    if (mark.size() == 15 && startsWith(mark.subspan(6), "LYRICS200")) {
        std::int64_t size = 0;
        for (const std::uint8_t digit : mark.first(6)) {
            if (digit < '0' || digit > '9') return 0;
            size = size * 10 + (digit - '0');
        }
        const auto begin = reader.at(end - 15 - size, 11);
        return startsWith(begin, "LYRICSBEGIN") ? size + 15 : 0;
    }
    if (mark.size() == 15 && startsWith(mark.subspan(6), "LYRICSEND")) {
        const std::int64_t from = std::max<std::int64_t>(0, end - 5120);
        const auto text = reader.at(from, static_cast<std::size_t>(end - from));
        for (std::size_t i = 0; i + 20 <= text.size(); ++i) {
            if (startsWith(text.subspan(i), "LYRICSBEGIN")) {
                return end - from - static_cast<std::int64_t>(i);
            }
        }
    }
    return 0;
}

// Bytes of the tag that ends at `end`; 0 where none does.
std::int64_t trailingTagSize(platform::file::WindowReader& reader, std::int64_t end) {
    if (startsWith(reader.at(end - 128, 128), "TAG")) {
        return startsWith(reader.at(end - 128 - 227, 4), "TAG+") ? 128 + 227 : 128;
    }
    if (const std::int64_t ape = apeSize(reader, end); ape > 0) return ape;
    if (const std::int64_t lyrics = lyricsSize(reader, end); lyrics > 0) return lyrics;
    const auto footer = reader.at(end - 10, 10);
    if (footer.size() == 10 && startsWith(footer, "3DI")) {
        const std::int64_t size = syncsafe(footer.subspan(6));
        if (size >= 0) return size + 20;
    }
    return 0;
}

}  // namespace

TagRanges findTags(platform::file::WindowReader& reader) {
    TagRanges tags{0, reader.size()};
    while (const std::int64_t size = leadingTagSize(reader, tags.leadingEnd)) {
        if (tags.leadingEnd + size > reader.size()) {
            tags.leadingEnd += 10;
            break;
        }
        tags.leadingEnd += size;
    }
    while (const std::int64_t size = trailingTagSize(reader, tags.trailingStart)) {
        if (tags.trailingStart - size < tags.leadingEnd) break;
        tags.trailingStart -= size;
    }
    return tags;
}

}  // namespace audio::mpeg
