// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/mpeg/read/FrameDecoder.h"

#include <algorithm>

#include "audio/ffmpeg/Ffmpeg.h"
#include "platform/Error.h"

namespace audio::mpeg {

FrameDecoder::FrameDecoder(const FrameHeader& header)
    : packet_(ffmpeg::makePacket()),
      frame_(ffmpeg::makeFrame()),
      samples_(static_cast<std::size_t>(header.samples())),
      channels_(static_cast<std::size_t>(header.channels())) {
    const AVCodec* codec =
        avcodec_find_decoder_by_name(header.layer == 3 ? "mp3float" : "mp2float");
    if (!codec) throw platform::Error("FFmpeg has no decoder for MPEG audio.");
    context_.reset(avcodec_alloc_context3(codec));
    if (!context_) throw std::bad_alloc();
    context_->sample_rate = header.sampleRate;
    context_->thread_count = 1;
    // A frame that lacks its reservoir is normal at the start of a cut stream: no word about it.
    context_->log_level_offset = AV_LOG_TRACE;
    if (avcodec_open2(context_.get(), codec, nullptr) < 0) {
        throw platform::Error("FFmpeg's decoder for MPEG audio cannot be opened.");
    }
}

void FrameDecoder::reset() {
    avcodec_flush_buffers(context_.get());
    limiter_.reset();
}

const std::vector<float>& FrameDecoder::decode(std::span<const std::uint8_t> frame) {
    output_.assign(samples_ * channels_, 0.0F);
    input_.assign(frame.begin(), frame.end());
    input_.resize(frame.size() + AV_INPUT_BUFFER_PADDING_SIZE, 0);
    packet_->data = input_.data();
    packet_->size = static_cast<int>(frame.size());
    const bool damaged = avcodec_send_packet(context_.get(), packet_.get()) < 0;
    if (avcodec_receive_frame(context_.get(), frame_.get()) >= 0) takeFrame();
    limiter_.apply(output_, damaged);
    return output_;
}

void FrameDecoder::takeFrame() {
    const auto count = std::min(samples_, static_cast<std::size_t>(frame_->nb_samples));
    const auto planes =
        std::min(channels_, static_cast<std::size_t>(frame_->ch_layout.nb_channels));
    for (std::size_t c = 0; c < planes; ++c) {
        const auto* plane = reinterpret_cast<const float*>(frame_->extended_data[c]);
        for (std::size_t i = 0; i < count; ++i) output_[i * channels_ + c] = plane[i];
    }
    av_frame_unref(frame_.get());
}

}  // namespace audio::mpeg
