// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/read/StreamSource.h"

#include <algorithm>

namespace audio::read {
namespace {

// A run that was read to its end is dropped; one that was read half is kept up to this size.
constexpr std::size_t longestRunKept = 1 << 18;

ffmpeg::StreamDecoder openDecoder(const ffmpeg::Input& input) {
    try {
        return ffmpeg::StreamDecoder(input.parameters(), input.stream().time_base);
    } catch (const platform::Error& error) {
        throw fileError(input.file(), std::string("cannot be decoded: ") + error.what());
    }
}

}  // namespace

StreamSource::StreamSource(ffmpeg::Input input)
    : input_(std::move(input)), decoder_(openDecoder(input_)), packet_(ffmpeg::makePacket()) {
    format_ = input_.format();
    contents_ = input_.contents();
    if (format_.channels < 1) throw fileError(input_.file(), "states no number of channels");
}

std::int64_t StreamSource::estimatedFrames() const {
    return frames_ ? *frames_ : input_.statedFrames();
}

std::int64_t StreamSource::frames() {
    if (!frames_) frames_ = countFrames();
    return *frames_;
}

void StreamSource::startRun(std::int64_t frame) {
    run_.clear();
    runStart_ = frame;
}

void StreamSource::appendSilence(std::int64_t frames) {
    run_.resize(run_.size() + static_cast<std::size_t>(frames) * channels());
    damaged_ = true;
}

std::int64_t StreamSource::runEnd() const {
    return runStart_ + static_cast<std::int64_t>(run_.size() / channels());
}

StreamSource::Step StreamSource::decodePacket() {
    Step step;
    if (drained_) {
        step.end = true;
    } else if (input_.read(*packet_)) {
        step.result = decoder_.decode(packet_.get(), run_);
        if (step.result.damaged) damaged_ = true;
    } else {
        drained_ = true;
        step.result = decoder_.decode(nullptr, run_);
        step.end = step.result.frames == 0;
    }
    return step;
}

void StreamSource::rewindStream() {
    input_.rewind();
    decoder_ = openDecoder(input_);  // a flushed one may begin otherwise than a new one
    drained_ = false;
    startRun(0);
}

std::size_t StreamSource::read(float* interleaved, std::size_t frames) {
    std::size_t done = 0;
    while (done < frames) {
        const std::int64_t end = frames_ ? std::min(*frames_, runEnd()) : runEnd();
        if (position_ < runStart_) break;
        if (position_ >= end) {
            if (frames_ && position_ >= *frames_) break;
            startRun(runEnd());
            if (!extendRun()) {
                if (!frames_) frames_ = runEnd();
                if (runEnd() >= *frames_) break;
                appendSilence(std::min<std::int64_t>(*frames_ - runEnd(), 1 << 16));
            }
            continue;
        }
        const std::size_t count =
            std::min(frames - done, static_cast<std::size_t>(end - position_));
        const auto from = static_cast<std::size_t>(position_ - runStart_) * channels();
        std::copy_n(run_.begin() + static_cast<std::ptrdiff_t>(from), count * channels(),
                    interleaved + done * channels());
        done += count;
        position_ += static_cast<std::int64_t>(count);
    }
    return done;
}

void StreamSource::seek(std::int64_t frame) {
    frame = std::max<std::int64_t>(0, frame);
    const std::int64_t estimate = estimatedFrames();
    if (frames_ || estimate < 0 || frame >= estimate) frame = std::min(frame, frames());
    position_ = frame;
    if (frame >= runStart_ && frame <= runEnd() && !run_.empty()) return;
    if (frames_ && frame >= *frames_) return;
    jumpBefore(frame);
    // What lies before the frame is decoded and let go.
    while (runEnd() <= frame) {
        if (run_.size() > longestRunKept) startRun(runEnd());
        if (!extendRun()) {  // the file ends before what it states
            frames_ = runEnd();
            position_ = std::min(frame, *frames_);
            break;
        }
    }
}

}  // namespace audio::read
