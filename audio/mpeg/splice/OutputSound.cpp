// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/mpeg/splice/OutputSound.h"

#include <algorithm>

namespace audio::mpeg {

OutputSound::OutputSound(const std::vector<Segment>& plan, SourceSound* source, int channels,
                         std::int64_t start, std::int64_t sourceStart)
    : source_(source),
      channels_(static_cast<std::size_t>(channels)),
      start_(start),
      sourceStart_(sourceStart) {
    std::int64_t begin = 0;
    for (const Segment& segment : plan) {
        if (segment.length > 0) segments_.push_back({segment, begin, 0});
        begin += segment.length;
    }
}

void OutputSound::read(std::int64_t from, std::size_t count, float* interleaved) {
    std::int64_t at = from - start_;
    while (count > 0) {
        const std::size_t piece = readPiece(at, count, interleaved);
        interleaved += piece * channels_;
        at += static_cast<std::int64_t>(piece);
        count -= piece;
    }
}

// Reads up to `count` samples from gapless index `at` on, within one segment or one gap.
std::size_t OutputSound::readPiece(std::int64_t at, std::size_t count, float* interleaved) {
    auto placed = std::find_if(segments_.begin(), segments_.end(), [at](const Placed& candidate) {
        return at < candidate.begin + candidate.segment.length;
    });
    // Before the sound and behind it lies what the source has there, where it has any.
    std::int64_t end = at + static_cast<std::int64_t>(count);
    bool outside = false;
    if (placed == segments_.end()) {
        outside = true;
        if (!segments_.empty()) placed = std::prev(placed);
    } else if (at < placed->begin) {
        outside = true;
        end = std::min(end, placed->begin);
    } else {
        end = std::min(end, placed->begin + placed->segment.length);
    }
    const auto piece = static_cast<std::size_t>(end - at);
    if (placed != segments_.end() && !placed->segment.sound) {
        source_->read(at - placed->begin + placed->segment.sourceStart + sourceStart_, piece,
                      interleaved);
    } else if (outside) {
        std::fill_n(interleaved, piece * channels_, 0.0F);
    } else {
        if (at - placed->begin != placed->asked) {
            throw CannotSplice("The new sound was asked for out of order.");
        }
        placed->asked += static_cast<std::int64_t>(piece);
        placed->segment.sound(interleaved, piece);
    }
    return piece;
}

}  // namespace audio::mpeg
