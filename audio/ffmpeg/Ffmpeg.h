// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libavutil/channel_layout.h>
#include <libavutil/opt.h>
#include <libswresample/swresample.h>
}

#include <memory>
#include <optional>
#include <span>
#include <string>

#include "audio/pcm/SampleType.h"

namespace audio::ffmpeg {

struct PacketFree {
    void operator()(AVPacket* packet) const { av_packet_free(&packet); }
};
struct FrameFree {
    void operator()(AVFrame* frame) const { av_frame_free(&frame); }
};
struct CodecFree {
    void operator()(AVCodecContext* context) const { avcodec_free_context(&context); }
};
struct ParametersFree {
    void operator()(AVCodecParameters* parameters) const { avcodec_parameters_free(&parameters); }
};
struct InputFree {
    void operator()(AVFormatContext* context) const { avformat_close_input(&context); }
};
struct OutputFree {
    void operator()(AVFormatContext* context) const {
        avio_closep(&context->pb);
        avformat_free_context(context);
    }
};
struct ResamplerFree {
    void operator()(SwrContext* context) const { swr_free(&context); }
};
struct DictionaryFree {
    void operator()(AVDictionary* dictionary) const { av_dict_free(&dictionary); }
};

// FFmpeg's objects, one owner each.
using PacketPtr = std::unique_ptr<AVPacket, PacketFree>;
using FramePtr = std::unique_ptr<AVFrame, FrameFree>;
using CodecPtr = std::unique_ptr<AVCodecContext, CodecFree>;
using ParametersPtr = std::unique_ptr<AVCodecParameters, ParametersFree>;
using InputPtr = std::unique_ptr<AVFormatContext, InputFree>;
using OutputPtr = std::unique_ptr<AVFormatContext, OutputFree>;  ///< a muxer and its open file
using SwrPtr = std::unique_ptr<SwrContext, ResamplerFree>;

ParametersPtr copyParameters(const AVCodecParameters& from);  ///< throws std::bad_alloc
PacketPtr makePacket();                                       ///< throws std::bad_alloc
FramePtr makeFrame();                                         ///< throws std::bad_alloc

/// Makes a packet hold a copy of the bytes, with the zeros behind them that decoders may read
/// (AV_INPUT_BUFFER_PADDING_SIZE). Throws std::bad_alloc.
void fillPacket(AVPacket& packet, std::span<const std::uint8_t> bytes);

/// FFmpeg's text for one of its error codes.
std::string ffmpegReason(int error);

/// How the samples of FFmpeg's format lie, planar or not; nothing for what is no such format.
std::optional<pcm::SampleType> sampleTypeOf(AVSampleFormat format);

/// Keeps FFmpeg's libraries from writing to the terminal. Any thread, any number of times.
void silenceFfmpeg();

}  // namespace audio::ffmpeg
