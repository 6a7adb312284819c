// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/mpeg/splice/SeamCheck.h"

#include <algorithm>

#include "audio/mpeg/splice/Splice.h"

namespace audio::mpeg {
namespace {

// Frames before the ones that count whose overlap and filters they need; and main data before
// those, the longest reservoir.
constexpr std::size_t filled = 3;
constexpr std::int64_t mainData = 511;
// Of the smallest frames that have room for sound, in which the reservoir reaches back over the
// most frames, as many as that takes.
constexpr std::size_t remembered = 160;

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

// Where decoding has to begin for this frame of those remembered to come out right.
std::size_t SeamCheck::decodedFrom(std::size_t first) const {
    std::int64_t bytes = 0;
    std::size_t from = first;
    while (from > 0 && (first - from <= filled || bytes < mainData)) {
        --from;
        const auto header = FrameHeader::parse(last_[from]);
        if (header && first - from > filled)
            bytes += static_cast<std::int64_t>(last_[from].size()) - header->overhead();
    }
    return from;
}

void SeamCheck::check(const Expectation& expected) {
    const auto behind = static_cast<std::size_t>(next_ - expected.first);
    if (behind > last_.size()) throw CannotSplice("A seam was checked too late.");
    const std::size_t first = last_.size() - behind;
    decoder_.reset();
    std::vector<float> old(static_cast<std::size_t>(samples_) * channels_);
    for (std::size_t i = decodedFrom(first); i < first + static_cast<std::size_t>(expected.count);
         ++i) {
        const std::vector<float>& decoded = decoder_.decode(last_[i]);
        if (i < first) continue;
        const std::int64_t frame = expected.sourceFirst + static_cast<std::int64_t>(i - first);
        source_.read(frame * samples_, static_cast<std::size_t>(samples_), old.data());
        const bool same = std::equal(old.begin(), old.end(), decoded.begin());
        if (!same) throw CannotSplice("A kept frame would not sound as before.");
    }
}

}  // namespace audio::mpeg
