// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/vorbis/BlockForcer.h"

#include <algorithm>
#include <cmath>
#include <vorbis/vorbisenc.h>

#include "audio/vorbis/CannotSplice.h"

namespace audio::vorbis {
namespace {

constexpr std::size_t blobCount =
    15;  // sizes of a managed encoder's packet, the plain one amidst them
constexpr std::size_t plainBlob = blobCount / 2;
// Sound that was decoded loses 1 to 3 dB when it is coded again in its old blocks at its old
// quality; this size makes up for most of that at about the source's bit-rate.
constexpr std::size_t richBlob = 9;
constexpr float silence = -9'999.0F;
constexpr float decayPerSecond = -6.0F;  // dB

/// What libvorbis 1.1 to 1.3.7 keep behind vorbis_block::internal.
struct Internal {
    float** delayed;
    float loudest;
    int kind;
    oggpack_buffer* blobs[blobCount];
};

Internal& internalOf(const vorbis_block& block) {
    return *static_cast<Internal*>(block.internal);
}

/// The kinds of blocks: a short one with an attack or a long one beside a short one is 0.
int kindOf(const ForcedBlock& block) {
    const bool calm = block.isLong ? block.previousIsLong && block.nextIsLong : !block.attack;
    return calm ? 1 : 0;
}

void feedZeros(vorbis_dsp_state& dsp, int frames) {
    float** planes = vorbis_analysis_buffer(&dsp, frames);
    for (int channel = 0; channel < dsp.vi->channels; ++channel)
        std::fill_n(planes[channel], frames, 0.0F);
    vorbis_analysis_wrote(&dsp, frames);
}

bool fieldsInPlace(const vorbis_block& block) {
    const Internal& internal = internalOf(block);
    if (internal.blobs[plainBlob] != &block.opb) return false;
    if (internal.kind != 0 && internal.kind != 1) return false;
    if (block.W != 0 && internal.kind != (block.lW != 0 && block.nW != 0 ? 1 : 0)) return false;
    return internal.loudest >= silence && internal.loudest < 200.0F;
}

/// Steady tones with a stroke now and then, so that blocks of both sizes come.
float trialSound(std::size_t frame, int channel) {
    const double seconds = static_cast<double>(frame) / 44'100;
    const double stroke = static_cast<double>(frame % 9'001) / 200;
    return static_cast<float>(0.3 * std::sin(2'765 * seconds * (channel + 1)) +
                              0.5 * std::exp(-stroke) * std::sin(17'000 * seconds));
}

struct FreeRun {
    std::vector<ForcedBlock> blocks;
    std::vector<std::int64_t> centres;
    std::vector<PacketBytes> packets;
    std::vector<std::vector<float>> planes;  ///< the sound
    bool inPlace = true;
};

FreeRun runFreely(const EncoderSetup& setup, std::size_t frames) {
    FreeRun run;
    LibraryEncoder encoder(setup);
    vorbis_dsp_state& dsp = encoder.dsp();
    float** planes = vorbis_analysis_buffer(&dsp, static_cast<int>(frames));
    for (int channel = 0; channel < setup.channels; ++channel) {
        run.planes.emplace_back();
        for (std::size_t i = 0; i < frames; ++i)
            run.planes.back().push_back(planes[channel][i] = trialSound(i, channel));
    }
    vorbis_analysis_wrote(&dsp, static_cast<int>(frames));
    vorbis_block block{};
    vorbis_block_init(&dsp, &block);
    std::int64_t centre = 0;
    ogg_packet packet{};
    while (run.inPlace && vorbis_analysis_blockout(&dsp, &block) == 1) {
        run.inPlace = fieldsInPlace(block);
        if (!run.inPlace) break;
        run.blocks.push_back({block.lW != 0, block.W != 0, block.nW != 0, hasAttack(block)});
        run.centres.push_back(centre);
        run.inPlace = vorbis_analysis(&block, &packet) == 0;
        run.packets.emplace_back(packet.packet, packet.packet + packet.bytes);
        centre += (vorbis_info_blocksize(dsp.vi, static_cast<int>(block.W)) +
                   vorbis_info_blocksize(dsp.vi, static_cast<int>(block.nW))) /
                  4;
    }
    vorbis_block_clear(&block);
    return run;
}

/// Codes the sound again along the blocks of the free run: every packet whose block lies within the
/// sound has to be the same.
bool repeats(const EncoderSetup& setup, const FreeRun& run) {
    BlockForcer forcer(setup);
    constexpr std::int64_t sizes[] = {256, 2'048};  // of this set-up
    const auto frames = static_cast<std::int64_t>(run.planes.front().size());
    int compared = 0;
    bool same = true;
    for (std::size_t i = 0; i < run.blocks.size(); ++i) {
        const std::int64_t size = sizes[run.blocks[i].isLong ? 1 : 0];
        const std::int64_t from = run.centres[i] - size / 2;
        if (from < 0 || from + size > frames) continue;
        std::vector<std::vector<float>> sound;
        std::vector<float*> planes;
        for (const std::vector<float>& plane : run.planes)
            sound.emplace_back(plane.begin() + from, plane.begin() + from + size);
        for (std::vector<float>& plane : sound) planes.push_back(plane.data());
        const PacketBytes packet = forcer.code(run.blocks[i], planes, Richness::Plain);
        constexpr int leadIn = 32;
        if (++compared > leadIn) same = same && packet == run.packets[i];
    }
    return same && compared > 64;
}

bool tryOut() {
    const EncoderSetup setup{2, 44'100, -1, 0.4F};
    constexpr std::size_t frames = 66'000;
    try {
        const FreeRun run = runFreely(setup, frames);
        return run.inPlace && repeats(setup, run);
    } catch (const CannotSplice&) {
        return false;
    }
}

}  // namespace

bool hasAttack(const vorbis_block& block) {
    return block.W == 0 && internalOf(block).kind == 0;
}

bool BlockForcer::works() {
    static const bool result = tryOut();
    return result;
}

BlockForcer::BlockForcer(const EncoderSetup& setup)
    : encoder_(setup), managed_(setup.managed), loudest_(silence) {
    vorbis_block_init(&encoder_.dsp(), &block_);
}

BlockForcer::~BlockForcer() {
    vorbis_block_clear(&block_);
}

void BlockForcer::reset() {
    loudest_ = silence;
}

// The library frees what the last block took when it gives a new one, so each is fetched anew.
bool BlockForcer::freshBlock() {
    constexpr int piece = 1'024;
    constexpr int most = 64;
    for (int i = 0; i < most; ++i) {
        if (vorbis_analysis_blockout(&encoder_.dsp(), &block_) == 1) return true;
        feedZeros(encoder_.dsp(), piece);
    }
    return false;
}

PacketBytes BlockForcer::code(const ForcedBlock& block, const std::vector<float*>& planes,
                              Richness richness) {
    if (!freshBlock()) throw CannotSplice("The Ogg Vorbis encoder gave no block.");
    vorbis_dsp_state& dsp = encoder_.dsp();
    const int size = vorbis_info_blocksize(dsp.vi, block.isLong ? 1 : 0);
    block_.lW = block.previousIsLong ? 1 : 0;
    block_.W = block.isLong ? 1 : 0;
    block_.nW = block.nextIsLong ? 1 : 0;
    block_.pcmend = size;
    for (std::size_t channel = 0; channel < planes.size(); ++channel)
        block_.pcm[channel] = planes[channel];
    Internal& internal = internalOf(block_);
    const float seconds = static_cast<float>(size) / 2 / static_cast<float>(dsp.vi->rate);
    internal.loudest = std::max(silence, loudest_ + seconds * decayPerSecond);
    internal.kind = kindOf(block);
    ogg_packet packet{};
    if (vorbis_analysis(&block_, managed_ ? nullptr : &packet) != 0)
        throw CannotSplice("The Ogg Vorbis encoder gave no packet.");
    loudest_ = internal.loudest;
    if (!managed_) return {packet.packet, packet.packet + packet.bytes};
    oggpack_buffer* blob = internal.blobs[richness == Richness::Rich ? richBlob : plainBlob];
    const unsigned char* bytes = oggpack_get_buffer(blob);
    return {bytes, bytes + oggpack_bytes(blob)};
}

}  // namespace audio::vorbis
