// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/write/VorbisSink.h"

#include <algorithm>
#include <array>

namespace audio::write {
namespace {

// So much sound goes to the encoders at a time.
constexpr std::size_t blockFrames = 16'384;

/// Where a channel of Vorbis (I, section 4.3.9) lies in WAVE's order of speakers, by the number of
/// channels. Beyond eight the order is the file's own affair.
constexpr std::array<std::array<std::size_t, 8>, 8> waveOrder = {{{0},
                                                                  {0, 1},
                                                                  {0, 2, 1},
                                                                  {0, 1, 2, 3},
                                                                  {0, 2, 1, 3, 4},
                                                                  {0, 2, 1, 4, 5, 3},
                                                                  {0, 2, 1, 5, 6, 4, 3},
                                                                  {0, 2, 1, 6, 7, 4, 5, 3}}};

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
      stream_(serialOf(format, options)),
      chunks_(file, format, chunking, [this](const vorbis::VorbisPacket& packet) { put(packet); }) {
    writeHeaders(options);
}

VorbisSink::Stream::Stream(int serial) {
    ogg_stream_init(&state, serial);
}

VorbisSink::Stream::~Stream() {
    ogg_stream_clear(&state);
}

void VorbisSink::writeHeaders(const EncoderOptions& options) {
    std::vector<std::vector<std::uint8_t>> headers = chunks_.headers();
    if (!options.vorbisComment.empty()) headers[1] = options.vorbisComment;
    putPacket(headers[0], 0, false);
    putPages(true);  // the first page holds nothing else
    putPacket(headers[1], 0, false);
    putPacket(headers[2], 0, false);
    putPages(true);  // the sound begins on a page of its own
}

void VorbisSink::write(const float* interleaved, std::size_t frames) {
    while (frames > 0) {
        const std::size_t count = std::min(frames, blockFrames);
        for (std::size_t channel = 0; channel < channels_; ++channel) {
            const std::size_t from = channels_ <= 8 ? waveOrder[channels_ - 1][channel] : channel;
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
    putPacket(packet.bytes, std::min(packet.block.centre, frames_), packet.block.last);
    // The first packet gives no sound. On a page of its own it tells every reader that the count
    // begins at 0, also where the whole sound would fit on one page.
    putPages(packet.block.centre == 0);
}

void VorbisSink::putPacket(std::vector<std::uint8_t> bytes, std::int64_t granule, bool last) {
    ogg_packet packet{};
    packet.packet = bytes.data();
    packet.bytes = static_cast<long>(bytes.size());
    packet.b_o_s = packets_ == 0 ? 1 : 0;
    packet.e_o_s = last ? 1 : 0;
    packet.granulepos = granule;
    packet.packetno = packets_++;
    ogg_stream_packetin(&stream_.state, &packet);
}

void VorbisSink::putPages(bool flush) {
    ogg_page page{};
    while ((flush ? ogg_stream_flush(&stream_.state, &page)
                  : ogg_stream_pageout(&stream_.state, &page)) != 0) {
        output_.append(page.header, static_cast<std::size_t>(page.header_len));
        output_.append(page.body, static_cast<std::size_t>(page.body_len));
    }
}

void VorbisSink::finish() {
    chunks_.finish();
    putPages(true);
    output_.close();
}

}  // namespace audio::write
