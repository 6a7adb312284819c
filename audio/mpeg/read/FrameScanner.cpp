// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/mpeg/read/FrameScanner.h"

namespace audio::mpeg {
namespace {

// A free format frame is no longer than this: 640 kbit/s at 8 kHz in Layer III.
constexpr int longestFreeFrame = 6000;
// How many frames must follow one another before a place found by searching is believed.
constexpr int chainInJunk = 4;
// The same where a header stands exactly where the frame before ended, but of another stream.
constexpr int chainAtChange = 2;

int slotSize(const FrameHeader& header) {
    return header.layer == 1 ? 4 : 1;
}

}  // namespace

FrameScanner::FrameScanner(platform::file::WindowReader& reader)
    : reader_(reader), tags_(findTags(reader)) {
    position_ = tags_.leadingEnd;
}

std::optional<ScannedFrame> FrameScanner::next() {
    const auto header = headerAt(position_);
    if (header && last_ && header->sameStream(*last_)) {
        const int size = sizeOf(*header, position_);
        if (size > 0 && position_ + size <= tags_.trailingStart) return take(*header, position_, 0);
        if (size > 0) return takeCut(*header);
    }
    if (header && chainFrom(position_, chainAtChange)) return take(*header, position_, 0);
    const auto found = search(position_);
    if (!found) return std::nullopt;
    return take(*headerAt(*found), *found, *found - position_);
}

// A last frame that the file does not hold all of: decoders play what there is of it, and often
// nothing but stuffing is missing.
std::optional<ScannedFrame> FrameScanner::takeCut(const FrameHeader& header) {
    lastFrameCut_ = true;
    const std::int64_t rest = tags_.trailingStart - position_;
    if (rest <= header.overhead()) return std::nullopt;
    const ScannedFrame frame{position_, static_cast<int>(rest), header, 0};
    position_ = tags_.trailingStart;
    return frame;
}

ScannedFrame FrameScanner::take(const FrameHeader& header, std::int64_t offset, std::int64_t junk) {
    const ScannedFrame frame{offset, sizeOf(header, offset), header, last_ ? junk : 0};
    last_ = header;
    position_ = offset + frame.size;
    return frame;
}

std::span<const std::uint8_t> FrameScanner::bytes(const ScannedFrame& frame) {
    return reader_.at(frame.offset, static_cast<std::size_t>(frame.size));
}

std::optional<FrameHeader> FrameScanner::headerAt(std::int64_t offset) {
    if (offset + 4 > tags_.trailingStart) return std::nullopt;
    return FrameHeader::parse(reader_.at(offset, 4));
}

int FrameScanner::sizeOf(const FrameHeader& header, std::int64_t offset) {
    if (!header.freeFormat()) return header.size();
    if (freeFormatSize_ == 0 || !last_ || !last_->sameStream(header)) {
        freeFormatSize_ = measureFreeFormat(header, offset);
    }
    if (freeFormatSize_ == 0) return 0;
    return freeFormatSize_ + (header.padding ? slotSize(header) : 0);
}

// The distance to the next header of the same stream, believed when a third follows at the same
// one.
int FrameScanner::measureFreeFormat(const FrameHeader& header, std::int64_t offset) {
    for (int distance = header.overhead() + 1; distance <= longestFreeFrame; ++distance) {
        const auto second = headerAt(offset + distance);
        if (!second || !second->sameStream(header)) continue;
        const int bare = distance - (header.padding ? slotSize(header) : 0);
        const std::int64_t thirdAt =
            offset + distance + bare + (second->padding ? slotSize(header) : 0);
        if (thirdAt == tags_.trailingStart) return bare;
        const auto third = headerAt(thirdAt);
        if (third && third->sameStream(header)) return bare;
    }
    return 0;
}

// Whether `frames` headers of one stream follow one another, or as many as fit before the end with
// the last one ending there or being cut off (a lone header must end exactly there).
bool FrameScanner::chainFrom(std::int64_t offset, int frames) {
    const auto first = headerAt(offset);
    if (!first) return false;
    const int freeSize = first->freeFormat() ? measureFreeFormat(*first, offset) : 0;
    for (int count = 0; count < frames; ++count) {
        if (offset == tags_.trailingStart) return count > 0;
        const auto header = headerAt(offset);
        if (!header) return count > 0 && offset + 4 > tags_.trailingStart;
        if (!header->sameStream(*first)) return false;
        const int size = header->freeFormat() ? freeSize + (header->padding ? slotSize(*header) : 0)
                                              : header->size();
        if (size <= header->overhead()) return false;
        if (offset + size > tags_.trailingStart) return count > 0;
        offset += size;
    }
    return true;
}

std::optional<std::int64_t> FrameScanner::search(std::int64_t from) {
    constexpr std::size_t step = 4096;
    for (std::int64_t offset = from; offset + 4 <= tags_.trailingStart; ++offset) {
        // Skip quickly over what cannot be a header.
        const auto bytes = reader_.at(offset, step);
        std::size_t skip = 0;
        while (skip < bytes.size() && bytes[skip] != 0xFF) ++skip;
        offset += static_cast<std::int64_t>(skip);
        if (skip < bytes.size() && chainFrom(offset, chainInJunk)) return offset;
        if (skip == bytes.size()) --offset;
    }
    return std::nullopt;
}

}  // namespace audio::mpeg
