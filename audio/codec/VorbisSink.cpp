// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/codec/VorbisSink.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <vorbis/vorbisenc.h>

namespace audio::codec {
namespace {

constexpr std::size_t blockFrames = 1'024;
constexpr float defaultQuality = 0.4F;

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

bool setUp(vorbis_info& info, const Format& format, float quality) {
    vorbis_info_clear(&info);
    vorbis_info_init(&info);
    return vorbis_encode_setup_vbr(&info, format.channels, format.sampleRate, quality) == 0 &&
           vorbis_encode_setup_init(&info) == 0;
}

/// The quality whose nominal bit-rate is nearest: for rates that the encoder's own tables of
/// bit-rates do not reach.
float nearestQuality(const Format& format) {
    float best = defaultQuality;
    double distance = HUGE_VAL;
    vorbis_info info{};
    vorbis_info_init(&info);
    for (int step = -1; step <= 10; ++step) {
        const float quality = static_cast<float>(step) / 10;
        if (!setUp(info, format, quality)) continue;
        const double off = std::abs(double(info.bitrate_nominal) - double(format.bitRate));
        if (off < distance) best = quality;
        distance = std::min(distance, off);
    }
    vorbis_info_clear(&info);
    return best;
}

/// Variable bit-rate with this nominal one, as far as the encoder has it.
bool setUpNominal(vorbis_info& info, const Format& format) {
    const auto nominal = static_cast<long>(format.bitRate);
    if (nominal > 0 &&
        vorbis_encode_setup_managed(&info, format.channels, format.sampleRate, -1, nominal, -1) ==
            0 &&
        vorbis_encode_ctl(&info, OV_ECTL_RATEMANAGE2_SET, nullptr) == 0 &&
        vorbis_encode_setup_init(&info) == 0)
        return true;
    return setUp(info, format, nominal > 0 ? nearestQuality(format) : defaultQuality);
}

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
    : output_(file), channels_(static_cast<std::size_t>(format.channels)) {
    if (!setUpNominal(state_.info, format))
        throw fileError(file, "cannot be Ogg Vorbis: that has no such rate or number of channels");
    vorbis_analysis_init(&state_.dsp, &state_.info);
    vorbis_block_init(&state_.dsp, &state_.block);
    ogg_stream_init(&state_.stream, serialOf(format, options));
    writeHeaders(options);
}

VorbisSink::State::State() {
    vorbis_info_init(&info);
    vorbis_comment_init(&comment);
}

VorbisSink::State::~State() {
    ogg_stream_clear(&stream);
    vorbis_block_clear(&block);
    vorbis_dsp_clear(&dsp);
    vorbis_comment_clear(&comment);
    vorbis_info_clear(&info);
}

void VorbisSink::writeHeaders(const EncoderOptions& options) {
    ogg_packet identification{};
    ogg_packet comment{};
    ogg_packet setup{};
    vorbis_analysis_headerout(&state_.dsp, &state_.comment, &identification, &comment, &setup);
    std::vector<std::uint8_t> given = options.vorbisComment;
    if (!given.empty()) {
        comment.packet = given.data();
        comment.bytes = static_cast<long>(given.size());
    }
    ogg_stream_packetin(&state_.stream, &identification);
    putPages(true);  // the first page holds nothing else
    ogg_stream_packetin(&state_.stream, &comment);
    ogg_stream_packetin(&state_.stream, &setup);
    putPages(true);  // the sound begins on a page of its own
}

void VorbisSink::write(const float* interleaved, std::size_t frames) {
    while (frames > 0) {
        const std::size_t count = std::min(frames, blockFrames);
        float** planes = vorbis_analysis_buffer(&state_.dsp, static_cast<int>(count));
        for (std::size_t channel = 0; channel < channels_; ++channel) {
            const std::size_t from = channels_ <= 8 ? waveOrder[channels_ - 1][channel] : channel;
            for (std::size_t i = 0; i < count; ++i)
                planes[channel][i] = interleaved[i * channels_ + from];
        }
        vorbis_analysis_wrote(&state_.dsp, static_cast<int>(count));
        drain();
        interleaved += count * channels_;
        frames -= count;
    }
}

void VorbisSink::drain() {
    while (vorbis_analysis_blockout(&state_.dsp, &state_.block) == 1) {
        vorbis_analysis(&state_.block, nullptr);
        vorbis_bitrate_addblock(&state_.block);
        ogg_packet packet{};
        while (vorbis_bitrate_flushpacket(&state_.dsp, &packet) != 0) {
            ogg_stream_packetin(&state_.stream, &packet);
            // The first packet gives no sound. On a page of its own it tells every reader that the
            // count begins at 0, also where the whole sound would fit on one page.
            putPages(!begun_);
            begun_ = true;
        }
    }
}

void VorbisSink::putPages(bool flush) {
    ogg_page page{};
    while ((flush ? ogg_stream_flush(&state_.stream, &page)
                  : ogg_stream_pageout(&state_.stream, &page)) != 0) {
        output_.append(page.header, static_cast<std::size_t>(page.header_len));
        output_.append(page.body, static_cast<std::size_t>(page.body_len));
    }
}

void VorbisSink::finish() {
    vorbis_analysis_wrote(&state_.dsp,
                          0);  // the end; the last page's granule states the exact length
    drain();
    putPages(true);
    output_.close();
}

}  // namespace audio::codec
