// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <memory>

struct AVCodecContext;
struct AVCodecParameters;
struct AVFormatContext;
struct AVFrame;
struct AVIOContext;
struct AVPacket;
struct SwrContext;

namespace audio::ffmpeg {

/// Gives FFmpeg's objects back, each in its own way.
struct Free {
    void operator()(AVPacket* packet) const;
    void operator()(AVFrame* frame) const;
    void operator()(AVCodecContext* context) const;
    void operator()(AVCodecParameters* parameters) const;
    void operator()(SwrContext* context) const;
    void operator()(AVIOContext* context) const;  ///< and its buffer
};
struct CloseInput {
    void operator()(AVFormatContext* context) const;
};
struct FreeOutput {  ///< what it writes to is its maker's
    void operator()(AVFormatContext* context) const;
};

// FFmpeg's objects, one owner each; for headers that need none of FFmpeg's own.
using PacketPtr = std::unique_ptr<AVPacket, Free>;
using FramePtr = std::unique_ptr<AVFrame, Free>;
using CodecPtr = std::unique_ptr<AVCodecContext, Free>;
using ParametersPtr = std::unique_ptr<AVCodecParameters, Free>;
using IoPtr = std::unique_ptr<AVIOContext, Free>;
using SwrPtr = std::unique_ptr<SwrContext, Free>;
using InputPtr = std::unique_ptr<AVFormatContext, CloseInput>;
using OutputPtr = std::unique_ptr<AVFormatContext, FreeOutput>;

}  // namespace audio::ffmpeg
