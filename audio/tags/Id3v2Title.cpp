// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/tags/Id3v2Title.h"

#include <cstring>
#include <span>

#include <taglib/tbytevector.h>
#include <taglib/tstring.h>

// The layout of ID3v2: id3.org, id3v2.3.0 and id3v2.4.0-structure.
namespace audio::tags {
namespace {

using Bytes = std::span<const std::uint8_t>;

constexpr std::int64_t headerSize = 10;
constexpr std::size_t longestTitle = 64 * 1024;

std::int64_t number(Bytes bytes, std::size_t at, int bitsEach) {
    std::int64_t value = 0;
    for (std::size_t i = 0; i < 4; ++i) value = value << bitsEach | bytes[at + i];
    return value;
}

/// A name of version 2.2 and what it was filled up with.
bool isOldName(Bytes frame) {
    const auto isCapital = [](std::uint8_t letter) {
        return (letter >= 'A' && letter <= 'Z') || (letter >= '0' && letter <= '9');
    };
    return isCapital(frame[0]) && isCapital(frame[1]) && isCapital(frame[2]) &&
           (frame[3] == ' ' || frame[3] == 0);
}

bool isTitle(Bytes frame) {
    return std::memcmp(frame.data(), "TIT2", 4) == 0 ||
           (std::memcmp(frame.data(), "TT2", 3) == 0 && isOldName(frame));
}

/// The first text of a text frame's body: a byte that tells the encoding, then the text.
std::string textOf(Bytes body) {
    if (body.empty() || body[0] > 3) return {};
    const TagLib::ByteVector text(reinterpret_cast<const char*>(body.data()) + 1,
                                  static_cast<unsigned>(body.size() - 1));
    TagLib::String title(text, static_cast<TagLib::String::Type>(body[0]));
    const int end = title.find(TagLib::String(std::string(1, '\0')));
    if (end >= 0) title = title.substr(0, static_cast<unsigned>(end));
    return title.to8Bit(true);
}

}  // namespace

std::optional<std::string> titleBehindOldFrames(platform::file::WindowReader& reader) {
    const Bytes tag = reader.at(0, headerSize);
    if (tag.size() < headerSize || std::memcmp(tag.data(), "ID3", 3) != 0) return {};
    const int version = tag[3];
    if ((version != 3 && version != 4) || tag[5] != 0) return {};
    const std::int64_t end = headerSize + number(tag, 6, 7);
    bool old = false;
    for (std::int64_t at = headerSize; at + headerSize < end;) {
        const Bytes frame = reader.at(at, headerSize);
        if (frame.size() < headerSize || frame[0] == 0) return {};
        const std::int64_t size = number(frame, 4, version == 4 ? 7 : 8);
        old = old || isOldName(frame);
        if (isTitle(frame)) {
            if (!old || size > std::int64_t(longestTitle)) return {};
            return textOf(reader.at(at + headerSize, std::size_t(size)));
        }
        at += headerSize + size;
    }
    return {};
}

}  // namespace audio::tags
