// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/mpeg/encode/LameEncoder.h"

#include <algorithm>
#include <memory>
#include <mutex>

#include <lame/lame.h>

#include "platform/Error.h"

namespace audio::mpeg {
namespace {

struct LameCloser {
    void operator()(lame_t lame) const { lame_close(lame); }
};
using Lame = std::unique_ptr<lame_global_struct, LameCloser>;

MPEG_mode lameMode(ChannelMode mode) {
    if (mode == ChannelMode::Mono) return MONO;
    return mode == ChannelMode::Joint ? JOINT_STEREO : STEREO;
}

void setRate(lame_t lame, const EncoderSettings& settings) {
    switch (settings.rate) {
        case EncoderSettings::Rate::Constant:
            lame_set_VBR(lame, vbr_off);
            lame_set_brate(lame, settings.bitRate / 1000);
            break;
        case EncoderSettings::Rate::Average:
            lame_set_VBR(lame, vbr_abr);
            lame_set_VBR_mean_bitrate_kbps(lame, settings.bitRate / 1000);
            break;
        case EncoderSettings::Rate::Quality:
            lame_set_VBR(lame, vbr_mtrh);
            lame_set_VBR_quality(lame, static_cast<float>(settings.quality));
            break;
    }
}

Lame open(const EncoderSettings& settings) {
    Lame lame(lame_init());
    if (!lame) throw platform::Error("The MP3 encoder cannot be started.");
    lame_set_in_samplerate(lame.get(), settings.sampleRate);
    lame_set_out_samplerate(lame.get(), settings.sampleRate);
    lame_set_num_channels(lame.get(), settings.channels());
    lame_set_mode(lame.get(), lameMode(settings.mode));
    lame_set_error_protection(lame.get(), settings.crc ? 1 : 0);
    lame_set_bWriteVbrTag(lame.get(), 0);
    lame_set_write_id3tag_automatic(lame.get(), 0);
    setRate(lame.get(), settings);
    // LAME fills tables shared by all its instances when it sets one up.
    static std::mutex setUp;
    const std::lock_guard lock(setUp);
    if (lame_init_params(lame.get()) < 0) {
        throw platform::Error("The MP3 encoder refuses " + std::to_string(settings.sampleRate) +
                              " Hz at " + std::to_string(settings.bitRate / 1000) + " kbit/s.");
    }
    return lame;
}

}  // namespace

std::vector<LogicalFrame> encodeWithLame(const EncoderSettings& settings,
                                         std::span<const float> sound) {
    const Lame lame = open(settings);
    const float unscale = 1.0F / lame_get_scale(lame.get());
    const auto channels = static_cast<std::size_t>(settings.channels());
    constexpr std::size_t blockLength = 1152 * 8;
    std::vector<float> block(blockLength * channels);
    std::vector<std::uint8_t> out(blockLength * 5 / 4 + 7200);
    std::vector<std::uint8_t> stream;
    const auto keep = [&](int bytes) {
        if (bytes < 0) throw platform::Error("The MP3 encoder failed.");
        stream.insert(stream.end(), out.begin(), out.begin() + bytes);
    };
    const std::size_t length = sound.size() / channels;
    for (std::size_t at = 0; at < length; at += blockLength) {
        const std::size_t count = std::min(blockLength, length - at);
        std::transform(sound.begin() + static_cast<long>(at * channels),
                       sound.begin() + static_cast<long>((at + count) * channels), block.begin(),
                       [unscale](float sample) { return sample * unscale; });
        const auto n = static_cast<int>(count);
        const auto room = static_cast<int>(out.size());
        keep(channels == 1 ? lame_encode_buffer_ieee_float(lame.get(), block.data(), block.data(),
                                                           n, out.data(), room)
                           : lame_encode_buffer_interleaved_ieee_float(lame.get(), block.data(), n,
                                                                       out.data(), room));
    }
    keep(lame_encode_flush(lame.get(), out.data(), static_cast<int>(out.size())));
    return takeApart(stream);
}

}  // namespace audio::mpeg
