// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/codec/MuxerSink.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace audio::codec {
namespace {

constexpr std::size_t blockOfFreeSize = 4'096;  // frames, for encoders that take any number
constexpr double fullScale32 = 2147483648.0;

/// The sample format of an encoder that loses least; integers of a lossless codec as many bits as
/// the sound has.
AVSampleFormat sampleFormatFor(const AVCodec& encoder, const Format& format) {
    const auto rank = [&](AVSampleFormat candidate) {
        const bool wide = format.bitsPerSample > 16;
        switch (av_get_packed_sample_fmt(candidate)) {
            case AV_SAMPLE_FMT_FLT:
                return format.sampleType == SampleType::Lossy ? 5 : 1;
            case AV_SAMPLE_FMT_DBL:
                return 0;
            case AV_SAMPLE_FMT_S32:
                return wide ? 4 : 2;
            case AV_SAMPLE_FMT_S16:
                return wide ? 2 : 4;
            default:
                return 0;
        }
    };
    AVSampleFormat best = AV_SAMPLE_FMT_S16;
    int bestRank = -1;
    for (const AVSampleFormat* each = encoder.sample_fmts; each && *each != AV_SAMPLE_FMT_NONE;
         ++each)
        if (rank(*each) > bestRank) {
            best = *each;
            bestRank = rank(*each);
        }
    return best;
}

template <typename T>
T converted(float sample, double quantum);

template <>
float converted<float>(float sample, double) {
    return sample;
}
template <>
double converted<double>(float sample, double) {
    return double(sample);
}
template <>
std::uint8_t converted<std::uint8_t>(float sample, double) {
    return static_cast<std::uint8_t>(
        std::clamp(std::nearbyint(sample * 128.0F) + 128, 0.0F, 255.0F));
}
template <>
std::int16_t converted<std::int16_t>(float sample, double) {
    return static_cast<std::int16_t>(
        std::clamp(std::nearbyint(sample * 32768.0F), -32768.0F, 32767.0F));
}
/// Rounded to a multiple of the quantum: 24 bits lie at the top of 32.
template <>
std::int32_t converted<std::int32_t>(float sample, double quantum) {
    const double steps = fullScale32 / quantum;
    const double value = std::clamp(std::nearbyint(double(sample) * steps), -steps, steps - 1);
    return static_cast<std::int32_t>(value * quantum);
}

template <typename T>
void fill(AVFrame& frame, bool planar, const float* in, std::size_t channels, double quantum) {
    const auto frames = static_cast<std::size_t>(frame.nb_samples);
    for (std::size_t channel = 0; channel < channels; ++channel) {
        T* out = reinterpret_cast<T*>(frame.extended_data[planar ? channel : 0]);
        const std::size_t step = planar ? 1 : channels;
        if (!planar) out += channel;
        for (std::size_t i = 0; i < frames; ++i) {
            const float sample = in[i * channels + channel];
            out[i * step] = converted<T>(std::isnan(sample) ? 0.0F : sample, quantum);
        }
    }
}

}  // namespace

MuxerSink::MuxerSink(const std::filesystem::path& file, const Format& format, const Recipe& recipe)
    : file_(file),
      recipe_(recipe),
      frame_(makeFrame()),
      packet_(makePacket()),
      cutLeft_(recipe.cut) {
    silenceFfmpeg();
    openEncoder(format);
    openMuxer();
    takeSilence(static_cast<std::size_t>(recipe_.lead));
}

void MuxerSink::require(int result, const std::string& what) const {
    if (result < 0) throw fileError(file_, what + ": " + ffmpegReason(result));
}

void MuxerSink::openEncoder(const Format& format) {
    codec_.reset(avcodec_alloc_context3(recipe_.encoder));
    if (!codec_) throw std::bad_alloc();
    codec_->sample_rate = format.sampleRate;
    codec_->sample_fmt = sampleFormatFor(*recipe_.encoder, format);
    codec_->time_base = AVRational{1, format.sampleRate};
    codec_->thread_count = 1;
    codec_->flags |= AV_CODEC_FLAG_BITEXACT;
    if (recipe_.muxer->flags & AVFMT_GLOBALHEADER) codec_->flags |= AV_CODEC_FLAG_GLOBAL_HEADER;
    if (format.channelMask != 0 && av_popcount64(format.channelMask) == format.channels)
        av_channel_layout_from_mask(&codec_->ch_layout, format.channelMask);
    else
        av_channel_layout_default(&codec_->ch_layout, format.channels);

    if (format.sampleType == SampleType::Lossy) {
        codec_->bit_rate = format.bitRate;
        if (format.codec == Codec::Wma) {
            // The encoder rounds down to whole bytes per block: ask for what gives the same again.
            const double bytes = double(format.bitRate) * recipe_.block / (8.0 * format.sampleRate);
            codec_->bit_rate = std::llround(
                std::ceil((std::round(bytes) + 0.01) * 8 * format.sampleRate / recipe_.block));
        }
    } else {
        codec_->bits_per_raw_sample = format.bitsPerSample;
        const bool narrow =
            codec_->sample_fmt == AV_SAMPLE_FMT_S32 || codec_->sample_fmt == AV_SAMPLE_FMT_S32P;
        if (narrow && format.bitsPerSample > 16 && format.bitsPerSample < 32)
            quantum_ = 32 - format.bitsPerSample;
    }
    const int result = avcodec_open2(codec_.get(), recipe_.encoder, nullptr);
    require(result, "cannot be written as " + std::string(recipe_.encoder->name) + " at " +
                        std::to_string(format.sampleRate) + " Hz with " +
                        std::to_string(format.channels) + " channels");
    blockFrames_ =
        codec_->frame_size > 0 ? static_cast<std::size_t>(codec_->frame_size) : blockOfFreeSize;
}

void MuxerSink::openMuxer() {
    AVFormatContext* made = nullptr;
    const std::string name = "file:" + platform::toUtf8(file_);
    require(avformat_alloc_output_context2(&made, recipe_.muxer, nullptr, name.c_str()),
            "cannot be written");
    muxer_.reset(made);
    muxer_->flags |= AVFMT_FLAG_BITEXACT;  // nothing of the muxer's own in the tags
    AVStream* stream = avformat_new_stream(made, nullptr);
    if (!stream) throw std::bad_alloc();
    stream->time_base = codec_->time_base;
    require(avcodec_parameters_from_context(stream->codecpar, codec_.get()), "cannot be written");
    require(avio_open(&made->pb, name.c_str(), AVIO_FLAG_WRITE), "could not be written");

    AVDictionary* options = nullptr;
    av_dict_set(&options, "write_id3v2", "0", 0);
    if (std::strcmp(recipe_.muxer->name, "asf") == 0)
        av_dict_set_int(&options, "packet_size", asfPacketSize(codec_->block_align), 0);
    const int result = avformat_write_header(made, &options);
    av_dict_free(&options);
    require(result, "could not be written");
}

/// Whole blocks and their headers, so that the muxer has nothing to fill up: each packet has a
/// header of at most 15 bytes, each block in it one of 17 (ASF specification, section 5.2).
int MuxerSink::asfPacketSize(int blockBytes) {
    constexpr int packetHeader = 15;
    constexpr int blockHeader = 17;
    constexpr int aimedAt = 5'760;
    const int blocks = std::max(1, (aimedAt - packetHeader) / (blockBytes + blockHeader));
    return std::clamp(packetHeader + blocks * (blockBytes + blockHeader), 200, 65'535);
}

void MuxerSink::write(const float* interleaved, std::size_t frames) {
    written_ += static_cast<std::int64_t>(frames);
    const std::size_t skipped = std::min(frames, static_cast<std::size_t>(cutLeft_));
    cutLeft_ -= static_cast<int>(skipped);
    take(interleaved + skipped * channels(), frames - skipped);
}

void MuxerSink::take(const float* interleaved, std::size_t frames) {
    fifo_.insert(fifo_.end(), interleaved, interleaved + frames * channels());
    taken_ += static_cast<std::int64_t>(frames);
    encodeBlock(blockFrames_);
}

void MuxerSink::takeSilence(std::size_t frames) {
    const std::vector<float> silence(frames * channels());
    take(silence.data(), frames);
}

/// Encodes from the FIFO while it holds at least so many frames.
void MuxerSink::encodeBlock(std::size_t least) {
    const std::size_t width = channels();
    std::size_t at = 0;
    while (fifo_.size() / width - at >= least && fifo_.size() / width > at) {
        const std::size_t frames = std::min(blockFrames_, fifo_.size() / width - at);
        fillFrame(fifo_.data() + at * width, frames);
        send(frame_.get());
        at += frames;
    }
    fifo_.erase(fifo_.begin(), fifo_.begin() + static_cast<std::ptrdiff_t>(at * width));
}

void MuxerSink::fillFrame(const float* interleaved, std::size_t frames) {
    AVFrame& frame = *frame_;
    av_frame_unref(&frame);
    frame.nb_samples = static_cast<int>(frames);
    frame.format = codec_->sample_fmt;
    frame.sample_rate = codec_->sample_rate;
    frame.pts = encoded_;
    require(av_channel_layout_copy(&frame.ch_layout, &codec_->ch_layout), "could not be encoded");
    require(av_frame_get_buffer(&frame, 0), "could not be encoded");
    const bool planar = av_sample_fmt_is_planar(codec_->sample_fmt) != 0;
    const double quantum = std::ldexp(1.0, quantum_);
    switch (av_get_packed_sample_fmt(codec_->sample_fmt)) {
        case AV_SAMPLE_FMT_U8:
            fill<std::uint8_t>(frame, planar, interleaved, channels(), 1);
            break;
        case AV_SAMPLE_FMT_S16:
            fill<std::int16_t>(frame, planar, interleaved, channels(), 1);
            break;
        case AV_SAMPLE_FMT_S32:
            fill<std::int32_t>(frame, planar, interleaved, channels(), quantum);
            break;
        case AV_SAMPLE_FMT_DBL:
            fill<double>(frame, planar, interleaved, channels(), 1);
            break;
        default:
            fill<float>(frame, planar, interleaved, channels(), 1);
            break;
    }
    encoded_ += static_cast<std::int64_t>(frames);
}

void MuxerSink::send(const AVFrame* frame) {
    require(avcodec_send_frame(codec_.get(), frame), "could not be encoded");
    while (true) {
        const int result = avcodec_receive_packet(codec_.get(), packet_.get());
        if (result == AVERROR(EAGAIN) || result == AVERROR_EOF) return;
        require(result, "could not be encoded");
        if (packets_++ >= mostPackets_) {
            av_packet_unref(packet_.get());
            continue;
        }
        packet_->stream_index = 0;
        av_packet_rescale_ts(packet_.get(), codec_->time_base, muxer_->streams[0]->time_base);
        require(av_write_frame(muxer_.get(), packet_.get()), "could not be written");
        av_packet_unref(packet_.get());
        require(muxer_->pb->error, "could not be written");
    }
}

void MuxerSink::finish() {
    if (recipe_.block > 0) {
        const std::int64_t block = recipe_.block;
        const std::int64_t stored = (written_ + block - 1) / block * block + recipe_.lead;
        takeSilence(static_cast<std::size_t>(std::max<std::int64_t>(0, stored - taken_)));
    }
    encodeBlock(1);
    // Where the delay was cut at the start, what follows the last whole block is delay again.
    if (recipe_.cut > 0) mostPackets_ = taken_ / recipe_.block;
    send(nullptr);
    require(av_write_trailer(muxer_.get()), "could not be completed");
    avio_flush(muxer_->pb);
    require(muxer_->pb->error, "could not be written");
    require(avio_closep(&muxer_->pb), "could not be written");
}

}  // namespace audio::codec
