// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/ffmpeg/Recipe.h"

#include <array>
#include <string_view>

namespace audio::ffmpeg {
namespace {

constexpr int aacDelay = 1'024;

struct MuxerName {
    std::string_view container;  ///< as the demuxer is called
    const char* muxer;
};
// Containers that hold one sound and can be written as they were read.
constexpr std::array muxers = {MuxerName{"asf", "asf"},
                               MuxerName{"asf_o", "asf"},
                               MuxerName{"flac", "flac"},
                               MuxerName{"aiff", "aiff"},
                               MuxerName{"au", "au"},
                               MuxerName{"caf", "caf"},
                               MuxerName{"w64", "w64"},
                               MuxerName{"wav", "wav"},
                               MuxerName{"tta", "tta"},
                               MuxerName{"wv", "wv"},
                               MuxerName{"aac", "adts"},
                               MuxerName{"ogg", "ogg"},
                               MuxerName{"mov,mp4,m4a,3gp,3g2,mj2", "ipod"}};

/// Codecs whose encoders give back the length they were given, in these containers.
constexpr std::array faithful = {AV_CODEC_ID_FLAC, AV_CODEC_ID_ALAC, AV_CODEC_ID_WAVPACK,
                                 AV_CODEC_ID_TTA,  AV_CODEC_ID_OPUS, AV_CODEC_ID_AAC};

bool isPcm(AVCodecID id) {
    return id >= AV_CODEC_ID_FIRST_AUDIO && id < AV_CODEC_ID_ADPCM_IMA_QT;
}

int wmaBlock(const Format& format) {
    if (format.sampleRate <= 16'000) return 512;
    if (format.sampleRate <= 22'050) return 1'024;
    return format.sampleRate <= 32'000 && format.codecName == "wmav1" ? 1'024 : 2'048;
}

const AVCodec* findEncoder(AVCodecID id) {
    // FFmpeg's own encoder of Opus is experimental.
    const AVCodec* encoder =
        id == AV_CODEC_ID_OPUS ? avcodec_find_encoder_by_name("libopus") : nullptr;
    return encoder ? encoder : avcodec_find_encoder(id);
}

}  // namespace

Recipe recipeFor(const Format& format) {
    Recipe recipe;
    for (const MuxerName& name : muxers)
        if (name.container == format.containerName)
            recipe.muxer = av_guess_format(name.muxer, nullptr, nullptr);
    const AVCodecDescriptor* codec = avcodec_descriptor_get_by_name(format.codecName.c_str());
    if (!recipe.muxer || !codec) return {};

    const AVCodecID id = codec->id;
    bool known = isPcm(id);
    for (const AVCodecID good : faithful) known = known || id == good;
    if (format.codec == Codec::Wma && format.container == Container::Asf) {
        known = true;
        recipe.block = wmaBlock(format);
        recipe.lead = recipe.block;
        // FFmpeg's encoder uses no bit reservoir: each block is a packet of its own size, and all
        // that it keeps is the sound that the next block's window reaches back to.
        recipe.independentBlocks = true;
    } else if (format.containerName == "aac") {
        recipe.cut = aacDelay;
        recipe.block = aacDelay;
    }
    if (!known || avformat_query_codec(recipe.muxer, id, FF_COMPLIANCE_NORMAL) == 0) return {};
    recipe.encoder = findEncoder(id);
    return recipe;
}

}  // namespace audio::ffmpeg
