// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/vorbis/VorbisEncoder.h"

#include <algorithm>
#include <cmath>
#include <vorbis/vorbisenc.h>

#include "audio/FileError.h"

namespace audio::vorbis {
namespace {

// The library extrapolates what lies before the first frame from all that it has by then, so the
// pieces it gets must not be the caller's.
constexpr std::int64_t pieceFrames = 1'024;
constexpr float defaultQuality = 0.4F;

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

std::vector<std::uint8_t> bytesOf(const ogg_packet& packet) {
    return {packet.packet, packet.packet + packet.bytes};
}

}  // namespace

VorbisEncoder::State::State() {
    vorbis_info_init(&info);
}

VorbisEncoder::State::~State() {
    vorbis_block_clear(&block);
    vorbis_dsp_clear(&dsp);
    vorbis_info_clear(&info);
}

VorbisEncoder::VorbisEncoder(const std::filesystem::path& file, const Format& format,
                             std::int64_t start)
    : file_(file), fed_(start), centre_(start) {
    if (!setUpNominal(state_.info, format))
        throw fileError(file_, "cannot be Ogg Vorbis: that has no such rate or number of channels");
    vorbis_analysis_init(&state_.dsp, &state_.info);
    vorbis_block_init(&state_.dsp, &state_.block);
}

VorbisEncoder::~VorbisEncoder() = default;

std::vector<std::vector<std::uint8_t>> VorbisEncoder::headers() {
    vorbis_comment comment{};
    vorbis_comment_init(&comment);
    ogg_packet identification{};
    ogg_packet comments{};
    ogg_packet setup{};
    vorbis_analysis_headerout(&state_.dsp, &comment, &identification, &comments, &setup);
    vorbis_comment_clear(&comment);
    return {bytesOf(identification), bytesOf(comments), bytesOf(setup)};
}

bool VorbisEncoder::next(const PlanarSound& sound, VorbisBlock& block) {
    while (vorbis_analysis_blockout(&state_.dsp, &state_.block) != 1) {
        const std::int64_t left = sound.end() - fed_;
        if (ended_ || (left < pieceFrames && !sound.complete)) return false;
        feed(sound);
    }
    block.centre = centre_;
    block.previousIsLong = state_.block.lW != 0;
    block.isLong = state_.block.W != 0;
    block.nextIsLong = state_.block.nW != 0;
    block.nextCentre = centre_ + quarter(block.isLong) + quarter(block.nextIsLong);
    block.last = state_.block.eofflag != 0;
    centre_ = block.nextCentre;
    return true;
}

void VorbisEncoder::feed(const PlanarSound& sound) {
    const std::int64_t count = std::min(pieceFrames, sound.end() - fed_);
    if (count > 0) {
        float** planes = vorbis_analysis_buffer(&state_.dsp, static_cast<int>(count));
        for (std::size_t channel = 0; channel < sound.planes.size(); ++channel)
            std::copy_n(sound.planes[channel].data() + (fed_ - sound.from), count, planes[channel]);
    }
    vorbis_analysis_wrote(&state_.dsp, static_cast<int>(count));  // none: the end
    fed_ += count;
    ended_ = count == 0;
}

std::vector<std::uint8_t> VorbisEncoder::packet() {
    ogg_packet packet{};
    if (vorbis_analysis(&state_.block, &packet) != 0)
        throw fileError(file_, "could not be encoded: the Ogg Vorbis encoder gave no packet");
    return bytesOf(packet);
}

}  // namespace audio::vorbis
