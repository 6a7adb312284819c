// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/mpeg/read/SourceSound.h"

#include <algorithm>

namespace audio::mpeg {

SourceSound::SourceSound(const std::filesystem::path& file, const FrameIndex& index)
    : index_(index), reader_(file), decoder_(index.header()) {}

void SourceSound::read(std::int64_t from, std::size_t count, float* interleaved) {
    const auto channels = static_cast<std::size_t>(index_.header().channels());
    const std::int64_t spf = index_.header().samples();
    while (count > 0) {
        std::size_t piece = count;
        if (from < 0 || from >= index_.rawLength()) {
            if (from < 0) piece = std::min(count, static_cast<std::size_t>(-from));
            std::fill_n(interleaved, piece * channels, 0.0F);
        } else {
            const std::int64_t frame = from / spf;
            if (frame != decodedFrame_) decodeFrame(frame);
            const auto inside = static_cast<std::size_t>(from % spf);
            piece = std::min(count, static_cast<std::size_t>(spf) - inside);
            std::copy_n(decoded_.begin() + static_cast<long>(inside * channels), piece * channels,
                        interleaved);
        }
        interleaved += piece * channels;
        from += static_cast<std::int64_t>(piece);
        count -= piece;
    }
}

void SourceSound::decodeFrame(std::int64_t frame) {
    std::int64_t first = frame;
    if (decodedFrame_ < 0 || frame != decodedFrame_ + 1) {
        first = preRoll(frame);
        decoder_.reset();
    }
    for (std::int64_t i = first; i <= frame; ++i) {
        const ByteRange range = index_.frame(i);
        decoded_ = decoder_.decode(reader_.at(range.offset, static_cast<std::size_t>(range.size)));
    }
    decodedFrame_ = frame;
}

// Where decoding has to begin for this frame to come out right: the frames right before it fill
// overlap and filters and have to come out right too, and the bit reservoir reaches back at most
// 511 bytes of main data before the first of those.
std::int64_t SourceSound::preRoll(std::int64_t frame) {
    constexpr std::int64_t filled = 3;
    constexpr std::int64_t mainData = 511;
    const int overhead = index_.header().sideInfoSize() + 6;
    std::int64_t bytes = 0;
    std::int64_t first = frame;
    while (first > 0 && (frame - first <= filled || bytes < mainData)) {
        --first;
        if (frame - first > filled) bytes += index_.frame(first).size - overhead;
    }
    return first;
}

}  // namespace audio::mpeg
