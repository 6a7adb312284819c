// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/mpeg/read/SourceFrames.h"

#include <algorithm>

#include "platform/Error.h"

namespace audio::mpeg {

SourceFrames::SourceFrames(const std::filesystem::path& file, const FrameIndex& index)
    : index_(index), reader_(file) {}

std::span<const std::uint8_t> SourceFrames::bytes(std::int64_t frame) {
    return bytes(index_.frame(frame));
}

std::span<const std::uint8_t> SourceFrames::bytes(ByteRange range) {
    const auto found = reader_.at(range.offset, static_cast<std::size_t>(range.size));
    if (static_cast<std::int64_t>(found.size()) != range.size) {
        throw platform::Error("The source became shorter while it was read.");
    }
    return found;
}

SideInfo SourceFrames::sideInfo(std::int64_t frame) {
    const auto all = bytes(frame);
    const auto header = FrameHeader::parse(all);
    if (!header || !header->sameStream(index_.header())) {
        throw platform::Error("The source was changed while it was read.");
    }
    return SideInfo::parse(*header, all.subspan(static_cast<std::size_t>(header->overhead() -
                                                                         header->sideInfoSize())));
}

std::optional<std::vector<std::uint8_t>> SourceFrames::reservoir(std::int64_t frame) {
    auto missing = static_cast<std::size_t>(sideInfo(frame).mainDataBegin);
    std::vector<std::uint8_t> found;
    while (missing > 0) {
        if (frame-- == 0) return std::nullopt;
        const auto all = bytes(frame);
        const auto header = FrameHeader::parse(all);
        if (!header) throw platform::Error("The source was changed while it was read.");
        const auto main =
            all.subspan(std::min(all.size(), static_cast<std::size_t>(header->overhead())));
        const auto last = main.last(std::min(missing, main.size()));
        found.insert(found.begin(), last.begin(), last.end());
        missing -= last.size();
    }
    return found;
}

}  // namespace audio::mpeg
