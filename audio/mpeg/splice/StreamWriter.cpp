// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/mpeg/splice/StreamWriter.h"

#include <algorithm>

#include "audio/mpeg/read/Checksums.h"

namespace audio::mpeg {
namespace {

// Frames are small; a call of the system for each would cost more than the copy.
constexpr std::size_t heldBytes = 256 * 1024;

}  // namespace

StreamWriter::StreamWriter(StreamSink& sink, std::int64_t frames) : sink_(sink), frames_(frames) {}

void StreamWriter::writeInfoFrame(std::span<const std::uint8_t> bytes) {
    pass(bytes);
}

void StreamWriter::write(std::span<const std::uint8_t> bytes) {
    crc_ = lameCrc(crc_, bytes);
    pass(bytes);
}

void StreamWriter::pass(std::span<const std::uint8_t> bytes) {
    bytes_ += static_cast<std::int64_t>(bytes.size());
    if (held_.size() + bytes.size() > heldBytes) {
        sink_.write(held_);
        held_.clear();
    }
    if (bytes.size() > heldBytes / 4 && held_.empty()) {
        sink_.write(bytes);
    } else {
        held_.insert(held_.end(), bytes.begin(), bytes.end());
    }
}

void StreamWriter::finish(std::span<const std::uint8_t> infoFrame) {
    sink_.write(held_);
    held_.clear();
    if (!infoFrame.empty()) sink_.rewrite(0, infoFrame);
}

void StreamWriter::noteFrame(std::span<const std::uint8_t> frame, std::int64_t ahead) {
    while (filled_ < offsets_.size() &&
           noted_ >= static_cast<std::int64_t>(filled_) * frames_ / 100) {
        offsets_[filled_++] = bytes_ + ahead;
    }
    if (listener_) listener_(noted_, frame);
    ++noted_;
}

std::array<std::uint8_t, 100> StreamWriter::tableOfContents() const {
    std::array<std::uint8_t, 100> table{};
    for (std::size_t i = 0; i < table.size(); ++i) {
        const std::int64_t offset = i < filled_ ? offsets_[i] : bytes_;
        const std::int64_t place = bytes_ > 0 ? offset * 256 / bytes_ : 0;
        table[i] = static_cast<std::uint8_t>(std::clamp<std::int64_t>(place, 0, 255));
    }
    return table;
}

}  // namespace audio::mpeg
