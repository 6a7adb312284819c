// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/read/StampedSource.h"

#include <algorithm>
#include <array>

namespace audio::read {
namespace {

constexpr std::int64_t preRoll = 16'384;      // frames; more than any codec here needs to settle
constexpr std::int64_t opusPreRoll = 96'000;  // Opus predicts from what it decoded long before
constexpr std::int64_t mostPadding = 4'096;
constexpr std::int64_t longestHole = 60;  // seconds; a stamp further ahead is not believed

/// Whether a container numbers its packets by frames.
bool numbersFrames(const std::string& container) {
    constexpr std::array names = {
        "ogg", "flac", "mov,mp4,m4a,3gp,3g2,mj2", "aiff", "au", "caf", "w64", "wav", "tta", "wv"};
    return std::find(names.begin(), names.end(), container) != names.end();
}

}  // namespace

bool StampedSource::serves(const ffmpeg::Input& input) {
    const AVCodecParameters& own = input.parameters();
    const AVRational base = input.stream().time_base;
    const bool fine = base.num == 1 && base.den > 0 && base.den % own.sample_rate == 0;
    const std::string name = input.containerName();
    const bool wave =
        name == "wav" || name == "w64" || name == "aiff" || name == "au" || name == "caf";
    const bool constantSize = av_get_exact_bits_per_sample(own.codec_id) > 0;
    return fine && numbersFrames(name) && (!wave || constantSize);
}

StampedSource::StampedSource(ffmpeg::Input input) : StreamSource(std::move(input)) {
    // The edit list of MP4 leaves the padding of the last packet out (ISO/IEC 14496-12, 8.6.6).
    if (input_.containerName().starts_with("mov")) unpaddedEnd_ = input_.statedFrames();
}

std::int64_t StampedSource::frameOf(std::int64_t pts) const {
    return av_rescale_q(pts, input_.stream().time_base, AVRational{1, format_.sampleRate});
}

/// The stamp of the first frame that came out of the packet. That of a short Vorbis block after a
/// long one is too late, but its end is right; the last packet's end is not, it is cut.
std::int64_t StampedSource::stampOf(const ffmpeg::StreamDecoder::Result& result,
                                    std::int64_t expected) const {
    const std::int64_t begin = frameOf(result.pts);
    const bool vorbis = input_.parameters().codec_id == AV_CODEC_ID_VORBIS;
    const bool asExpected = placed_ && origin_ && begin - *origin_ == expected;
    if (!vorbis || asExpected || packet_->duration <= 0) return begin;
    if (av_packet_get_side_data(packet_.get(), AV_PKT_DATA_SKIP_SAMPLES, nullptr)) return begin;
    return frameOf(packet_->pts + packet_->duration) - static_cast<std::int64_t>(result.frames);
}

bool StampedSource::extendRun() {
    if (!extendByPacket()) return false;
    if (placed_ && unpaddedEnd_ >= 0 && runEnd() > unpaddedEnd_) cutPadding();
    return true;
}

/// The word on the end is taken only where no more follows than the padding of a packet or two.
void StampedSource::cutPadding() {
    const std::int64_t furthest = unpaddedEnd_ + mostPadding;
    while (runEnd() <= furthest && extendByPacket()) continue;
    if (runEnd() > furthest) {
        unpaddedEnd_ = -1;
    } else {
        run_.resize(static_cast<std::size_t>(std::max<std::int64_t>(0, unpaddedEnd_ - runStart_)) *
                    channels());
    }
}

bool StampedSource::extendByPacket() {
    const std::int64_t before = runEnd();
    while (true) {
        const std::size_t size = run_.size();
        const Step step = decodePacket();
        if (step.end) return runEnd() > before;
        if (step.result.frames == 0) continue;
        if (step.result.pts == AV_NOPTS_VALUE) {
            if (placed_) return true;
            run_.resize(size);  // of no known place: part of the pre-roll
            continue;
        }
        const std::int64_t expected = runStart_ + static_cast<std::int64_t>(size / channels());
        const std::int64_t stamp = stampOf(step.result, expected);
        if (!origin_) origin_ = stamp - expected;
        const std::int64_t place = stamp - *origin_;
        if (!placed_) {
            run_.erase(run_.begin(), run_.begin() + static_cast<std::ptrdiff_t>(size));
            runStart_ = place;
            placed_ = true;
            return true;
        }
        const std::int64_t hole = place - expected;
        if (hole > 0 && hole <= longestHole * format_.sampleRate) {
            run_.insert(run_.begin() + static_cast<std::ptrdiff_t>(size),
                        static_cast<std::size_t>(hole) * channels(), 0.0F);
            damaged_ = true;
        } else if (hole != 0) {
            *origin_ += hole;
        }
        return true;
    }
}

void StampedSource::jumpBefore(std::int64_t frame) {
    if (!origin_ && !extendRun()) return;
    if (frame >= runStart_ && frame <= runEnd() + preRoll) return;
    if (jumpTo(frame)) return;
    placed_ = true;
    rewindStream();
}

/// Jumps to where everything that shapes `frame` can be decoded; false where that failed.
bool StampedSource::jumpTo(std::int64_t frame) {
    const bool opus = input_.parameters().codec_id == AV_CODEC_ID_OPUS;
    const std::int64_t settled = (opus ? opusPreRoll : preRoll) / 2;
    for (std::int64_t ahead = 2 * settled; frame - ahead > 0; ahead *= 4) {
        const std::int64_t stamp = av_rescale_q(
            frame - ahead + *origin_, AVRational{1, format_.sampleRate}, input_.stream().time_base);
        if (!input_.seek(stamp)) return false;
        decoder_.flush();
        drained_ = false;
        placed_ = false;
        startRun(0);
        const bool found = extendRun();
        if (found && runStart_ <= frame - settled) return true;
        placed_ = true;
    }
    return false;
}

std::int64_t StampedSource::countFrames() {
    // The stamps of the last packets tell; they are looked up a little before the stated end.
    const std::int64_t stated = input_.statedFrames();
    if (!origin_ && !extendRun()) return runEnd();
    const std::int64_t back = position_;
    std::int64_t end = -1;
    if (stated > 4 * preRoll && jumpTo(stated - preRoll)) {
        do startRun(runEnd());
        while (extendRun());
        end = runEnd();
    }
    if (end < 0 || end < stated - preRoll) end = countByDecoding();
    rewindStream();
    if (back > 0) {
        jumpBefore(back);
        while (runEnd() <= back && extendRun()) continue;
    }
    return end;
}

std::int64_t StampedSource::countByDecoding() {
    rewindStream();
    do startRun(runEnd());
    while (extendRun());
    return runEnd();
}

}  // namespace audio::read
