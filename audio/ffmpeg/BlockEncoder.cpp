// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/ffmpeg/BlockEncoder.h"

#include <algorithm>
#include <cmath>

#include "audio/FileError.h"
#include "audio/pcm/Sample.h"

namespace audio::ffmpeg {
namespace {

constexpr std::size_t blockOfFreeSize = 4'096;  // frames, for encoders that take any number
constexpr std::int64_t leastOpusRate = 6'000;   // bit/s, RFC 6716, section 2.1.1
constexpr std::int64_t mostOpusRate = 256'000;  // bit/s of each channel, libopus' limit

int rankOf(pcm::SampleType candidate, const Format& format) {
    const bool wide = format.bitsPerSample > 16;
    switch (candidate) {
        case pcm::SampleType::F32:
            return format.sampleType == pcm::SampleType::Lossy ? 5 : 1;
        case pcm::SampleType::S64:
            return format.bitsPerSample > 32 ? 5 : 1;
        case pcm::SampleType::S32:
            return wide ? 4 : 2;
        case pcm::SampleType::S16:
            return wide ? 2 : 4;
        case pcm::SampleType::U8:
        case pcm::SampleType::S24:
        case pcm::SampleType::F64:
        case pcm::SampleType::Lossy:
            break;
    }
    return 0;
}

/// The sample format of an encoder that loses least; integers of a lossless codec as many bits as
/// the sound has.
AVSampleFormat sampleFormatFor(const AVCodec& encoder, const Format& format) {
    AVSampleFormat best = AV_SAMPLE_FMT_S16;
    int bestRank = -1;
    for (const AVSampleFormat* each = encoder.sample_fmts; each && *each != AV_SAMPLE_FMT_NONE;
         ++each) {
        const int rank = rankOf(sampleTypeOf(*each).value_or(pcm::SampleType::Lossy), format);
        if (rank > bestRank) {
            best = *each;
            bestRank = rank;
        }
    }
    return best;
}

template <typename T, typename Convert>
void fill(AVFrame& frame, bool planar, const float* in, std::size_t channels, Convert convert) {
    const auto frames = static_cast<std::size_t>(frame.nb_samples);
    for (std::size_t channel = 0; channel < channels; ++channel) {
        T* out = reinterpret_cast<T*>(frame.extended_data[planar ? channel : 0]);
        const std::size_t step = planar ? 1 : channels;
        if (!planar) out += channel;
        for (std::size_t i = 0; i < frames; ++i)
            out[i * step] = static_cast<T>(convert(in[i * channels + channel]));
    }
}

}  // namespace

BlockEncoder::BlockEncoder(const std::filesystem::path& file, const Format& format,
                           const Recipe& recipe)
    : file_(file), frame_(makeFrame()), packet_(makePacket()) {
    silenceFfmpeg();
    open(format, recipe);
}

void BlockEncoder::require(int result, const std::string& what) const {
    if (result < 0) throw fileError(file_, what + ": " + ffmpegReason(result));
}

void BlockEncoder::open(const Format& format, const Recipe& recipe) {
    codec_.reset(avcodec_alloc_context3(recipe.encoder));
    if (!codec_) throw std::bad_alloc();
    codec_->sample_rate = format.sampleRate;
    codec_->sample_fmt = sampleFormatFor(*recipe.encoder, format);
    codec_->time_base = AVRational{1, format.sampleRate};
    codec_->thread_count = 1;
    codec_->flags |= AV_CODEC_FLAG_BITEXACT;
    if (recipe.muxer->flags & AVFMT_GLOBALHEADER) codec_->flags |= AV_CODEC_FLAG_GLOBAL_HEADER;
    if (format.channelMask != 0 && av_popcount64(format.channelMask) == format.channels)
        av_channel_layout_from_mask(&codec_->ch_layout, format.channelMask);
    else
        av_channel_layout_default(&codec_->ch_layout, format.channels);

    if (format.sampleType == pcm::SampleType::Lossy) {
        codec_->bit_rate = format.bitRate;
        if (codec_->codec_id == AV_CODEC_ID_OPUS) {
            // Left to itself the encoder takes up to twice what it is asked for, so that every save
            // would be larger than the one before. This one keeps to the mean (RFC 6716, 2.1.8).
            constexpr int constrainedVbr = 2;
            av_opt_set_int(codec_->priv_data, "vbr", constrainedVbr, 0);
            codec_->bit_rate = std::clamp<std::int64_t>(format.bitRate, leastOpusRate,
                                                        mostOpusRate * format.channels);
            if (recipe.packetFrames > 0)
                av_opt_set_double(codec_->priv_data, "frame_duration",
                                  1'000.0 * recipe.packetFrames / format.sampleRate, 0);
        }
        if (codec_->codec_id == AV_CODEC_ID_AAC && recipe.joins)
            av_opt_set_int(codec_->priv_data, "aac_pns", 0, 0);
        if (format.codec == Codec::Wma) {
            // The encoder rounds down to whole bytes per block: ask for what gives the same again.
            const double bytes = double(format.bitRate) * recipe.block / (8.0 * format.sampleRate);
            codec_->bit_rate = std::llround(
                std::ceil((std::round(bytes) + 0.01) * 8 * format.sampleRate / recipe.block));
        }
    } else {
        codec_->bits_per_raw_sample = format.bitsPerSample;
        if (format.bitsPerSample > 16 && format.bitsPerSample < 32)
            integerBits_ = format.bitsPerSample;
    }
    const int result = avcodec_open2(codec_.get(), recipe.encoder, nullptr);
    require(result, "cannot be written as " + std::string(recipe.encoder->name) + " at " +
                        std::to_string(format.sampleRate) + " Hz with " +
                        std::to_string(format.channels) + " channels");
    blockFrames_ =
        codec_->frame_size > 0 ? static_cast<std::size_t>(codec_->frame_size) : blockOfFreeSize;
}

void BlockEncoder::fillFrame(const float* interleaved, std::size_t frames, std::int64_t stamp) {
    AVFrame& frame = *frame_;
    av_frame_unref(&frame);
    frame.nb_samples = static_cast<int>(frames);
    frame.format = codec_->sample_fmt;
    frame.sample_rate = codec_->sample_rate;
    frame.pts = stamp;
    require(av_channel_layout_copy(&frame.ch_layout, &codec_->ch_layout), "could not be encoded");
    require(av_frame_get_buffer(&frame, 0), "could not be encoded");
    const bool planar = av_sample_fmt_is_planar(codec_->sample_fmt) != 0;
    const auto put = [&]<typename T>(T, auto convert) {
        fill<T>(frame, planar, interleaved, channels(), convert);
    };
    using pcm::toInteger;
    switch (sampleTypeOf(codec_->sample_fmt).value_or(pcm::SampleType::Lossy)) {
        case pcm::SampleType::U8:
            return put(std::uint8_t{}, [](float sample) { return toInteger<8>(sample) + 128; });
        case pcm::SampleType::S16:
            return put(std::int16_t{}, toInteger<16>);
        case pcm::SampleType::S32:  // fewer bits lie at the top of the 32
            return put(std::int32_t{}, [bits = integerBits_](float sample) {
                return toInteger(sample, bits) * (std::int64_t{1} << (32 - bits));
            });
        case pcm::SampleType::S64:
            return put(std::int64_t{}, toInteger<64>);
        case pcm::SampleType::F32:
            return put(float{}, [](float sample) { return pcm::toFloat(sample); });
        case pcm::SampleType::F64:
            return put(double{}, [](float sample) { return pcm::toFloat(sample); });
        case pcm::SampleType::S24:
        case pcm::SampleType::Lossy:
            break;
    }
    throw fileError(file_, "cannot be written: its encoder takes samples of an unknown kind");
}

void BlockEncoder::encode(const float* interleaved, std::size_t frames, std::int64_t stamp,
                          const TakePacket& take) {
    fillFrame(interleaved, frames, stamp);
    send(frame_.get(), take);
}

// That it cannot be encoded as the first block says nothing of the block in its own place.
void BlockEncoder::warmUp(const float* interleaved, std::int64_t stamp) {
    fillFrame(interleaved, blockFrames_, stamp);
    if (avcodec_send_frame(codec_.get(), frame_.get()) < 0) return;
    while (avcodec_receive_packet(codec_.get(), packet_.get()) >= 0) av_packet_unref(packet_.get());
}

void BlockEncoder::finish(const TakePacket& take) {
    send(nullptr, take);
}

void BlockEncoder::send(const AVFrame* frame, const TakePacket& take) {
    require(avcodec_send_frame(codec_.get(), frame), "could not be encoded");
    while (true) {
        const int result = avcodec_receive_packet(codec_.get(), packet_.get());
        if (result == AVERROR(EAGAIN) || result == AVERROR_EOF) return;
        require(result, "could not be encoded");
        take(*packet_);
        av_packet_unref(packet_.get());
    }
}

}  // namespace audio::ffmpeg
