// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libavutil/channel_layout.h>
#include <libavutil/opt.h>
#include <libswresample/swresample.h>
}

#include <optional>
#include <span>
#include <string>

#include "audio/ffmpeg/Owners.h"
#include "audio/pcm/SampleType.h"

namespace audio::ffmpeg {

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
