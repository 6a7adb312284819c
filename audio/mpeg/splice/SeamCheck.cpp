// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/mpeg/splice/SeamCheck.h"

#include <algorithm>

#include "audio/mpeg/splice/Splice.h"

namespace audio::mpeg {
namespace {

// Frames decoded before those that count: reservoir and overlap of every bit-rate.
constexpr std::size_t preRoll = 16;
constexpr std::size_t remembered = 64;

}  // namespace

SeamCheck::SeamCheck(const std::filesystem::path& file, const FrameIndex& index)
    : samples_(index.header().samples()),
      channels_(static_cast<std::size_t>(index.header().channels())),
      source_(file, index),
      decoder_(index.header()) {}

void SeamCheck::frame(std::int64_t number, std::span<const std::uint8_t> bytes) {
    if (last_.size() == remembered) {
        // Its memory serves again.
        last_.push_back(std::move(last_.front()));
        last_.pop_front();
        last_.back().assign(bytes.begin(), bytes.end());
    } else {
        last_.emplace_back(bytes.begin(), bytes.end());
    }
    next_ = number + 1;
    while (!open_.empty() && open_.front().first + open_.front().count <= next_) {
        check(open_.front());
        open_.pop_front();
    }
}

void SeamCheck::expectKept(std::int64_t first, std::int64_t count, std::int64_t sourceFirst) {
    if (count > 0) open_.push_back({first, count, sourceFirst});
}

void SeamCheck::finish() const {
    if (!open_.empty()) throw CannotSplice("Frames to be kept are missing from the new stream.");
}

void SeamCheck::check(const Expectation& expected) {
    const auto behind = static_cast<std::size_t>(next_ - expected.first);
    if (behind > last_.size()) throw CannotSplice("A seam was checked too late.");
    const std::size_t first = last_.size() - behind;
    decoder_.reset();
    std::vector<float> old(static_cast<std::size_t>(samples_) * channels_);
    for (std::size_t i = first > preRoll ? first - preRoll : 0;
         i < first + static_cast<std::size_t>(expected.count); ++i) {
        const std::vector<float>& decoded = decoder_.decode(last_[i]);
        if (i < first) continue;
        const std::int64_t frame = expected.sourceFirst + static_cast<std::int64_t>(i - first);
        source_.read(frame * samples_, static_cast<std::size_t>(samples_), old.data());
        const bool same = std::equal(old.begin(), old.end(), decoded.begin());
        if (!same) throw CannotSplice("A kept frame would not sound as before.");
    }
}

}  // namespace audio::mpeg
