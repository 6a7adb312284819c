// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/mpeg/read/FrameIndex.h"

#include <algorithm>

#include "audio/mpeg/read/FrameScanner.h"
#include "audio/parallel/Stop.h"
#include "platform/Error.h"
#include "platform/Paths.h"

namespace audio::mpeg {

FrameIndex::FrameIndex(const std::filesystem::path& file) {
    platform::file::WindowReader reader(file);
    build(reader);
}

FrameIndex::FrameIndex(platform::file::WindowReader& reader) {
    build(reader);
}

void FrameIndex::build(platform::file::WindowReader& reader) {
    FrameScanner scanner(reader);
    bool first = true;
    while (const auto frame = scanner.next()) {
        parallel::throwIfStopped();
        if (first) {
            first = false;
            audio_.offset = frame->offset;
            info_ = InfoTag::parse(frame->header, scanner.bytes(*frame));
            if (info_) {
                infoFrame_ = {frame->offset, frame->size};
                header_ = lastHeader_ = frame->header;
                continue;
            }
        }
        if (frame->junkBefore > 0) {
            junk_.push_back({frame->offset - frame->junkBefore, frame->junkBefore});
        }
        addFrame(frame->offset, frame->size, frame->header);
    }
    if (frames_.empty()) {
        throw platform::Error("The file \"" + platform::toUtf8(reader.path()) +
                              "\" holds no MPEG audio.");
    }
    frames_.shrink_to_fit();
    lastFrameCut_ = scanner.lastFrameCut();
    audio_.size = scanner.position() - audio_.offset;
    const std::int64_t rest = lastFrameCut_ ? scanner.tags().trailingStart : audio_.end();
    trailing_ = {rest, reader.size() - rest};
    findLength();
}

void FrameIndex::addFrame(std::int64_t offset, int size, const FrameHeader& header) {
    if (frames_.empty()) {
        header_ = header;
        lowestBitRate_ = highestBitRate_ = header.bitRate;
    } else if (!header.sameStream(lastHeader_)) {
        changes_.push_back({frameCount(), header});
    }
    lastHeader_ = header;
    frames_.push_back(static_cast<std::uint64_t>(offset) << 16 | static_cast<std::uint64_t>(size));
    soundBytes_ += size;
    rawLength_ += header.samples();
    lowestBitRate_ = std::min(lowestBitRate_, header.bitRate);
    highestBitRate_ = std::max(highestBitRate_, header.bitRate);
}

void FrameIndex::findLength() {
    const auto range = gaplessRange(header_, info_ ? &*info_ : nullptr, rawLength_);
    gaplessStart_ = range.start;
    gaplessLength_ = range.length;
    statesGaps_ = info_ && info_->delay && info_->padding && info_->frames &&
                  *info_->frames == static_cast<std::uint64_t>(frameCount()) && changes_.empty();
}

ByteRange FrameIndex::frame(std::int64_t number) const {
    const std::uint64_t packed = frames_[static_cast<std::size_t>(number)];
    return {static_cast<std::int64_t>(packed >> 16), static_cast<std::int64_t>(packed & 0xFFFF)};
}

std::int64_t FrameIndex::averageBitRate() const {
    // Frames of another rate inside a file are rare, and an average over them means little anyway.
    const double seconds = static_cast<double>(rawLength_) / header_.sampleRate;
    return static_cast<std::int64_t>(static_cast<double>(soundBytes_) * 8 / seconds + 0.5);
}

GaplessRange gaplessRange(const FrameHeader& header, const InfoTag* info, std::int64_t rawLength) {
    GaplessRange range{0, rawLength};
    if (!info || !info->delay) return range;
    range.start = std::min<std::int64_t>(*info->delay + decoderDelay(header.layer), rawLength);
    std::int64_t end = rawLength;
    if (info->padding && info->frames) {
        const std::int64_t stated = static_cast<std::int64_t>(*info->frames) * header.samples();
        const std::int64_t statedEnd = stated - *info->padding + decoderDelay(header.layer);
        if (rawLength <= stated) end = std::min(end, statedEnd);
    }
    range.length = std::max<std::int64_t>(0, end - range.start);
    return range;
}

}  // namespace audio::mpeg
