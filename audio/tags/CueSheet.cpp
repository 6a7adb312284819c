// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/tags/CueSheet.h"

#include <algorithm>

namespace audio::tags {
namespace {

using Bytes = std::vector<std::uint8_t>;

constexpr std::size_t catalog = 128;
constexpr std::size_t flagsAt = catalog + 8;
constexpr std::uint8_t discFlag = 0x80;
constexpr std::size_t sheetHeader = catalog + 8 + 1 + 258 + 1;
constexpr std::size_t trackHeader = 36;
constexpr std::size_t indexSize = 12;
constexpr std::int64_t sector = 588;  // frames of a disc
constexpr std::uint8_t leadOutOfDisc = 170;
constexpr std::uint8_t leadOut = 255;
constexpr std::int64_t furthest = std::int64_t{1} << 48;  // frames; a place beyond makes no sense

std::int64_t numberAt(const Bytes& bytes, std::size_t at) {
    std::uint64_t value = 0;
    for (std::size_t i = 0; i < 8; ++i) value = value << 8 | bytes[at + i];
    return static_cast<std::int64_t>(value);
}

void setNumber(Bytes& bytes, std::size_t at, std::int64_t value) {
    for (std::size_t i = 0; i < 8; ++i)
        bytes[at + i] = static_cast<std::uint8_t>(value >> (56 - 8 * i));
}

bool makesSense(const Bytes& body, std::size_t track) {
    const auto isPlace = [&](std::size_t at) {
        const std::int64_t place = numberAt(body, at);
        return place >= 0 && place < furthest;
    };
    bool good = isPlace(track);
    for (std::size_t i = 0; i < body[track + trackHeader - 1]; ++i)
        good = good && isPlace(track + trackHeader + i * indexSize);
    return good;
}

/// Where each track begins in the body; none where they make no sense.
std::vector<std::size_t> tracksOf(const Bytes& body) {
    std::vector<std::size_t> tracks;
    if (body.size() < sheetHeader) return tracks;
    std::size_t at = sheetHeader;
    for (std::size_t left = body[sheetHeader - 1]; left > 0; --left) {
        if (body.size() - at < trackHeader) return {};
        const std::size_t size = trackHeader + body[at + trackHeader - 1] * indexSize;
        if (body.size() - at < size || !makesSense(body, at)) return {};
        tracks.push_back(at);
        at += size;
    }
    return tracks;
}

}  // namespace

Bytes movedCueSheet(const Bytes& body,
                    const std::function<std::int64_t(std::int64_t frame)>& moved) {
    Bytes result = body;
    bool onSectors = true;
    const std::vector<std::size_t> tracks = tracksOf(body);
    for (const std::size_t track : tracks) {
        const std::int64_t before = numberAt(body, track);
        const std::int64_t now = moved(before);
        setNumber(result, track, now);
        onSectors = onSectors && now % sector == 0;
        for (std::size_t i = 0; i < body[track + trackHeader - 1]; ++i) {
            const std::size_t index = track + trackHeader + i * indexSize;
            const std::int64_t offset = moved(before + numberAt(body, index)) - now;
            setNumber(result, index, std::max<std::int64_t>(0, offset));
            onSectors = onSectors && offset % sector == 0;
        }
    }
    const bool ofDisc = !tracks.empty() && (body[flagsAt] & discFlag) != 0;
    if (result == body || !ofDisc || onSectors) return result;
    result[flagsAt] &= static_cast<std::uint8_t>(~discFlag);
    std::fill_n(result.begin() + catalog, 8, std::uint8_t{0});  // only a disc has a lead-in
    std::uint8_t& lastNumber = result[tracks.back() + 8];
    if (lastNumber == leadOutOfDisc) lastNumber = leadOut;
    return result;
}

}  // namespace audio::tags
