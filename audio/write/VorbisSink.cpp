// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/write/VorbisSink.h"

#include <algorithm>

#include "audio/vorbis/ChannelOrder.h"

namespace audio::write {
namespace {

// So much sound goes to the encoders at a time.
constexpr std::size_t blockFrames = 16'384;

/// A stream's number, from what it is made of: the same save gives the same bytes.
int serialOf(const Format& format, const EncoderOptions& options) {
    std::uint32_t hash = 2'166'136'261U;
    for (const std::int64_t value : {std::int64_t{format.sampleRate}, std::int64_t{format.channels},
                                     format.bitRate, options.expectedFrames})
        hash = (hash ^ static_cast<std::uint32_t>(value)) * 16'777'619U;
    for (const std::uint8_t byte : options.vorbisComment) hash = (hash ^ byte) * 16'777'619U;
    return static_cast<int>(hash & 0x7FFFFFFF);
}

}  // namespace

VorbisSink::VorbisSink(const std::filesystem::path& file, const Format& format,
                       const EncoderOptions& options)
    : VorbisSink(
          file, format, options,
          vorbis::VorbisChunking::of(options.expectedFrames, format.channels, options.threads)) {}

VorbisSink::VorbisSink(const std::filesystem::path& file, const Format& format,
                       const EncoderOptions& options, const vorbis::VorbisChunking& chunking)
    : output_(file),
      channels_(static_cast<std::size_t>(format.channels)),
      pages_(serialOf(format, options),
             [this](std::span<const std::uint8_t> bytes) {
                 output_.append(bytes.data(), bytes.size());
             }),
      chunks_(file, format, chunking, [this](const vorbis::VorbisPacket& packet) { put(packet); }) {
    writeHeaders(options);
}

void VorbisSink::writeHeaders(const EncoderOptions& options) {
    std::vector<std::vector<std::uint8_t>> headers = chunks_.headers();
    if (!options.vorbisComment.empty()) headers[1] = options.vorbisComment;
    pages_.put(headers[0], 0);
    pages_.flush();  // the first page holds nothing else
    pages_.put(headers[1], 0);
    pages_.put(headers[2], 0);
    pages_.flush();  // the sound begins on a page of its own
}

void VorbisSink::write(const float* interleaved, std::size_t frames) {
    while (frames > 0) {
        const std::size_t count = std::min(frames, blockFrames);
        for (std::size_t channel = 0; channel < channels_; ++channel) {
            const std::size_t from = vorbis::placeInWave(channel, channels_);
            std::vector<float>& plane = chunks_.planes()[channel];
            const std::size_t known = plane.size();
            plane.resize(known + count);
            for (std::size_t i = 0; i < count; ++i)
                plane[known + i] = interleaved[i * channels_ + from];
        }
        frames_ += static_cast<std::int64_t>(count);
        chunks_.added();
        interleaved += count * channels_;
        frames -= count;
    }
}

void VorbisSink::put(const vorbis::VorbisPacket& packet) {
    // The last page's granule position states the exact length.
    pages_.put(packet.bytes, std::min(packet.block.centre, frames_), packet.block.last);
    // The first packet gives no sound. On a page of its own it tells every reader that the count
    // begins at 0, also where the whole sound would fit on one page.
    if (packet.block.centre == 0) pages_.flush();
}

void VorbisSink::finish() {
    chunks_.finish();
    pages_.flush();
    output_.close();
}

}  // namespace audio::write
