// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/read/PacketTable.h"

#include <algorithm>

namespace audio::read {
namespace {

constexpr std::int64_t framesApart = 16'384;
constexpr std::size_t packetsApart = 4;

}  // namespace

Kept PacketPlace::pass(const SoundPacket& packet, std::int64_t frames, bool trims) {
    Trim trim = trims ? packet.trim : Trim{};
    if (trims && packet.mp4End) trim.padding = mp4EndPadding(*packet.mp4End, decoded, frames);
    const Kept kept = trimmer.take(frames, trim);
    ++number;
    decoded += frames;
    frame += packet.lost + kept.kept;
    return kept;
}

void PacketTable::note(const std::optional<PacketMark>& mark, const PacketPlace& place) {
    if (!mark || place.number == 0) return;
    if (!landmarks_.empty()) {
        const PacketPlace& last = landmarks_.back().place;
        if (place.number < last.number + packetsApart || place.frame < last.frame + framesApart)
            return;
    }
    landmarks_.push_back({*mark, place});
}

std::size_t PacketTable::countUpTo(std::int64_t frame) const {
    const auto after = std::upper_bound(
        landmarks_.begin(), landmarks_.end(), frame,
        [](std::int64_t at, const Landmark& landmark) { return at < landmark.place.frame; });
    return static_cast<std::size_t>(after - landmarks_.begin());
}

}  // namespace audio::read
