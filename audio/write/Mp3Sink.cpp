// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/write/Mp3Sink.h"

#include <algorithm>
#include <span>

namespace audio::write {
namespace {

constexpr std::size_t blockFrames = 4'608;
constexpr std::size_t encodedBytes = blockFrames * 5 / 4 + 7'200;  // lame.h: 1.25 × frames + 7200

int kilobits(const Format& format) {
    return nearestMp3(format.sampleRate, static_cast<int>((format.bitRate + 500) / 1'000),
                      format.channels)
               .bitRate /
           1'000;
}

}  // namespace

Mp3Sink::Mp3Sink(const std::filesystem::path& file, const Format& format)
    : output_(file),
      lame_(lame_init()),
      channels_(static_cast<std::size_t>(format.channels)),
      left_(blockFrames),
      right_(blockFrames),
      encoded_(encodedBytes) {
    if (!lame_) throw std::bad_alloc();
    if (format.channels > 2 ||
        nearestMp3(format.sampleRate, 128, 2).sampleRate != format.sampleRate)
        throw fileError(file, "cannot be MP3: that has no such rate or number of channels");
    configure(format);
    if (lame_init_params(lame_.get()) < 0)
        throw fileError(file, "cannot be MP3: the encoder refuses its settings");
    const float scale = lame_get_scale(lame_.get());
    if (scale > 0) gain_ = 1 / scale;
}

void Mp3Sink::configure(const Format& format) {
    lame_global_flags* lame = lame_.get();
    lame_set_msgf(lame, nullptr);
    lame_set_debugf(lame, nullptr);
    lame_set_errorf(lame, nullptr);
    lame_set_in_samplerate(lame, format.sampleRate);
    lame_set_out_samplerate(lame, format.sampleRate);
    lame_set_num_channels(lame, format.channels);
    lame_set_mode(lame, format.channels == 1 ? MONO : JOINT_STEREO);
    lame_set_bWriteVbrTag(lame, 1);
    lame_set_write_id3tag_automatic(lame, 0);
    lame_set_findReplayGain(lame, 0);
    if (!format.variableBitRate) {
        lame_set_VBR(lame, vbr_off);
        lame_set_brate(lame, kilobits(format));
    } else if (format.quality >= 0) {
        lame_set_VBR(lame, vbr_mtrh);
        lame_set_VBR_quality(lame, static_cast<float>(std::min(format.quality, 9.999)));
    } else {
        lame_set_VBR(lame, vbr_abr);
        lame_set_VBR_mean_bitrate_kbps(lame, static_cast<int>((format.bitRate + 500) / 1'000));
    }
}

void Mp3Sink::write(const float* interleaved, std::size_t frames) {
    while (frames > 0) {
        const std::size_t count = std::min(frames, blockFrames);
        for (std::size_t i = 0; i < count; ++i) {
            left_[i] = gain_ * interleaved[i * channels_];
            right_[i] = gain_ * interleaved[i * channels_ + channels_ - 1];
        }
        take(lame_encode_buffer_ieee_float(lame_.get(), left_.data(), right_.data(),
                                           static_cast<int>(count), encoded_.data(),
                                           static_cast<int>(encoded_.size())));
        interleaved += count * channels_;
        frames -= count;
    }
}

void Mp3Sink::take(int bytes) {
    if (bytes < 0) throw fileError(output_.path(), "could not be encoded");
    const std::span encoded(encoded_.data(), static_cast<std::size_t>(bytes));
    if (!begun_ && !encoded.empty()) begin(encoded);
    if (ownInfo_) ownInfo_->follow(encoded.data(), encoded.size());
    output_.append(encoded.data(), encoded.size());
}

/// Leaves room for the Info frame, unless LAME did so in its first frame.
void Mp3Sink::begin(std::span<const unsigned char> encoded) {
    begun_ = true;
    const auto header = mpeg::FrameHeader::parse(encoded);
    if (!header || lame_get_VBR(lame_.get()) != vbr_off || Mp3InfoFrame::fitsInto(*header)) return;
    ownInfo_.emplace(*header);
    const std::vector<std::uint8_t> room = ownInfo_->bytes(0, 0, 0);
    output_.append(room.data(), room.size());
}

void Mp3Sink::finish() {
    take(lame_encode_flush(lame_.get(), encoded_.data(), static_cast<int>(encoded_.size())));
    // Room for the Info frame was left at the start; now it is known what belongs there.
    if (!ownInfo_) {
        const std::size_t size =
            lame_get_lametag_frame(lame_.get(), encoded_.data(), encoded_.size());
        if (size > encoded_.size()) throw fileError(output_.path(), "could not be completed");
        output_.overwrite(0, encoded_.data(), size);
    } else {
        const std::vector<std::uint8_t> info = ownInfo_->bytes(
            static_cast<std::uint32_t>(lame_get_frameNum(lame_.get())),
            lame_get_encoder_delay(lame_.get()), lame_get_encoder_padding(lame_.get()));
        output_.overwrite(0, info.data(), info.size());
    }
    output_.close();
}

}  // namespace audio::write
