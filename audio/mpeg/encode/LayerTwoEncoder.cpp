// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/mpeg/encode/LayerTwoEncoder.h"

#include <algorithm>
#include <cmath>
#include <random>

#include "audio/ffmpeg/Ffmpeg.h"
#include "platform/Error.h"

namespace audio::mpeg {
namespace {

class Encoder {
  public:
    explicit Encoder(const EncoderSettings& settings)
        : channels_(static_cast<std::size_t>(settings.channels())),
          packet_(ffmpeg::makePacket()),
          frame_(ffmpeg::makeFrame()) {
        const AVCodec* codec = avcodec_find_encoder_by_name("mp2");
        if (!codec) throw platform::Error("FFmpeg has no encoder for MPEG Layer II.");
        context_.reset(avcodec_alloc_context3(codec));
        if (!context_) throw std::bad_alloc();
        context_->sample_rate = settings.sampleRate;
        context_->sample_fmt = AV_SAMPLE_FMT_S16;
        context_->bit_rate = settings.bitRate;
        av_channel_layout_default(&context_->ch_layout, settings.channels());
        context_->log_level_offset = AV_LOG_TRACE;  // no word on the terminal
        if (avcodec_open2(context_.get(), codec, nullptr) < 0) {
            throw platform::Error("MPEG Layer II cannot be encoded at " +
                                  std::to_string(settings.bitRate / 1000) + " kbit/s and " +
                                  std::to_string(settings.sampleRate) + " Hz.");
        }
    }

    void encode(std::span<const float> sound) {
        const auto block = static_cast<std::size_t>(context_->frame_size) * channels_;
        for (std::size_t at = 0; at < sound.size(); at += block) {
            send(sound.subspan(at, std::min(block, sound.size() - at)));
        }
        if (avcodec_send_frame(context_.get(), nullptr) >= 0) receive();
    }
    std::vector<LogicalFrame> take() { return std::move(frames_); }

  private:
    void send(std::span<const float> block) {
        av_frame_unref(frame_.get());
        frame_->nb_samples = context_->frame_size;
        frame_->format = AV_SAMPLE_FMT_S16;
        av_channel_layout_copy(&frame_->ch_layout, &context_->ch_layout);
        if (av_frame_get_buffer(frame_.get(), 0) < 0) throw std::bad_alloc();
        auto* samples = reinterpret_cast<std::int16_t*>(frame_->data[0]);
        std::fill_n(samples, static_cast<std::size_t>(context_->frame_size) * channels_,
                    std::int16_t{0});
        std::transform(block.begin(), block.end(), samples,
                       [this](float sample) { return toInteger(sample); });
        if (avcodec_send_frame(context_.get(), frame_.get()) < 0) {
            throw platform::Error("The MPEG Layer II encoder failed.");
        }
        receive();
    }

    // The encoder takes 16 bits: triangular dither, none over silence, nothing wraps.
    std::int16_t toInteger(float sample) {
        if (sample == 0.0F) return 0;
        const float dither = uniform_(random_) - uniform_(random_);
        const float scaled = std::round(sample * 32768.0F + dither);
        return static_cast<std::int16_t>(std::clamp(scaled, -32768.0F, 32767.0F));
    }

    void receive() {
        while (avcodec_receive_packet(context_.get(), packet_.get()) >= 0) {
            const std::span bytes(packet_->data, static_cast<std::size_t>(packet_->size));
            const auto header = FrameHeader::parse(bytes);
            if (!header || header->size() != packet_->size) {
                throw platform::Error("The MPEG Layer II encoder gave a damaged frame.");
            }
            LogicalFrame frame;
            frame.header = *header;
            frame.main.assign(bytes.begin() + 4, bytes.end());
            frames_.push_back(std::move(frame));
            av_packet_unref(packet_.get());
        }
    }

    std::size_t channels_;
    ffmpeg::CodecPtr context_;
    ffmpeg::PacketPtr packet_;
    ffmpeg::FramePtr frame_;
    std::vector<LogicalFrame> frames_;
    std::minstd_rand random_{1};
    std::uniform_real_distribution<float> uniform_{0.0F, 1.0F};
};

}  // namespace

std::vector<LogicalFrame> encodeLayerTwo(const EncoderSettings& settings,
                                         std::span<const float> sound) {
    Encoder encoder(settings);
    encoder.encode(sound);
    return encoder.take();
}

}  // namespace audio::mpeg
