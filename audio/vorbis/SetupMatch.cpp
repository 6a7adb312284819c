// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/vorbis/SetupMatch.h"

#include <vorbis/vorbisenc.h>

#include "audio/vorbis/CannotSplice.h"

namespace audio::vorbis {
namespace {

constexpr int lowestQuality = -10;  // in hundredths of libvorbis' scale to 1
constexpr int highestQuality = 100;
constexpr long reservoirBits = 1 << 20;  // any: without one the library manages nothing

bool setUp(vorbis_info& info, const EncoderSetup& setup) {
    const bool byRate = setup.nominalBitRate > 0;
    const int done =
        byRate ? vorbis_encode_setup_managed(&info, setup.channels, setup.sampleRate, -1,
                                             setup.nominalBitRate, -1)
               : vorbis_encode_setup_vbr(&info, setup.channels, setup.sampleRate, setup.quality);
    if (done != 0) return false;
    if (byRate && !setup.managed && vorbis_encode_ctl(&info, OV_ECTL_RATEMANAGE2_SET, nullptr) != 0)
        return false;
    if (!byRate && setup.managed) {
        // Managed without any limit: only the choice of sizes is wanted.
        ovectl_ratemanage2_arg managed{};
        if (vorbis_encode_ctl(&info, OV_ECTL_RATEMANAGE2_GET, &managed) != 0) return false;
        managed.management_active = 1;
        managed.bitrate_limit_reservoir_bits = reservoirBits;
        managed.bitrate_limit_reservoir_bias = 0.1;
        managed.bitrate_average_damping = 1.5;
        if (vorbis_encode_ctl(&info, OV_ECTL_RATEMANAGE2_SET, &managed) != 0) return false;
    }
    return vorbis_encode_setup_init(&info) == 0;
}

bool gives(const EncoderSetup& setup, const PacketBytes& header) {
    try {
        return LibraryEncoder(setup).setupHeader() == header;
    } catch (const CannotSplice&) {
        return false;
    }
}

std::optional<EncoderSetup> asManagedAsCanBe(EncoderSetup setup, const PacketBytes& header) {
    for (const bool managed : {true, false}) {
        setup.managed = managed;
        if (gives(setup, header)) return setup;
    }
    return std::nullopt;
}

}  // namespace

LibraryEncoder::LibraryEncoder(const EncoderSetup& setup) {
    vorbis_info_init(&info_);
    if (setUp(info_, setup) && vorbis_analysis_init(&dsp_, &info_) == 0) return;
    vorbis_dsp_clear(&dsp_);
    vorbis_info_clear(&info_);
    throw CannotSplice("libvorbis has no encoder like the one that made it.");
}

LibraryEncoder::~LibraryEncoder() {
    vorbis_dsp_clear(&dsp_);
    vorbis_info_clear(&info_);
}

PacketBytes LibraryEncoder::setupHeader() {
    vorbis_comment comment{};
    vorbis_comment_init(&comment);
    ogg_packet identification{};
    ogg_packet comments{};
    ogg_packet header{};
    vorbis_analysis_headerout(&dsp_, &comment, &identification, &comments, &header);
    vorbis_comment_clear(&comment);
    return {header.packet, header.packet + header.bytes};
}

std::optional<EncoderSetup> matchingSetup(const StreamHeaders& headers) {
    const StreamInfo stream(headers);
    EncoderSetup setup;
    setup.channels = stream.channels();
    setup.sampleRate = stream.sampleRate();
    setup.nominalBitRate = stream.nominalBitRate();
    if (setup.nominalBitRate > 0) return asManagedAsCanBe(setup, headers.setup);
    setup.nominalBitRate = -1;
    for (const int step : {10, 1})  // whole qualities are usual
        for (int quality = lowestQuality; quality <= highestQuality; quality += step) {
            setup.quality = static_cast<float>(quality) / 100;
            if (gives(setup, headers.setup)) return asManagedAsCanBe(setup, headers.setup);
        }
    return std::nullopt;
}

}  // namespace audio::vorbis
