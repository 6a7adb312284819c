// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/vorbis/StretchEncoder.h"

#include <algorithm>

#include "audio/vorbis/CannotSplice.h"

namespace audio::vorbis {
namespace {

std::int64_t blockSize(vorbis_dsp_state& dsp, bool isLong) {
    return vorbis_info_blocksize(dsp.vi, isLong ? 1 : 0);
}

bool hasShortBlock(const Stretch& stretch) {
    return std::any_of(stretch.blocks.begin(), stretch.blocks.end(),
                       [](const Stretch::Block& block) { return !block.isLong; });
}

/// The centres of short blocks that a free run of the library, on the grid of the stretch, finds
/// attacks in.
std::vector<std::int64_t> attacksIn(const Stretch& stretch, const EncoderSetup& setup) {
    LibraryEncoder encoder(setup);
    vorbis_dsp_state& dsp = encoder.dsp();
    const std::int64_t shortSize = blockSize(dsp, false);
    const auto anyShort = std::find_if(stretch.blocks.begin(), stretch.blocks.end(),
                                       [](const Stretch::Block& block) { return !block.isLong; });
    const std::int64_t grid = shortSize / 2;
    std::int64_t centre = stretch.sound.from;
    centre += ((anyShort->centre - centre) % grid + grid) % grid;
    std::int64_t fed = centre;  // the library centres its first block on the first frame

    vorbis_block block{};
    vorbis_block_init(&dsp, &block);
    std::vector<std::int64_t> attacks;
    constexpr std::int64_t piece = 1'024;
    while (fed < stretch.sound.end()) {
        const std::int64_t count = std::min(piece, stretch.sound.end() - fed);
        float** planes = vorbis_analysis_buffer(&dsp, static_cast<int>(count));
        for (std::size_t channel = 0; channel < stretch.sound.channels.size(); ++channel)
            std::copy_n(stretch.sound.channels[channel].begin() + (fed - stretch.sound.from), count,
                        planes[channel]);
        vorbis_analysis_wrote(&dsp, static_cast<int>(count));
        fed += count;
        while (vorbis_analysis_blockout(&dsp, &block) == 1) {
            if (hasAttack(block)) attacks.push_back(centre);
            centre += (blockSize(dsp, block.W != 0) + blockSize(dsp, block.nW != 0)) / 4;
        }
    }
    vorbis_block_clear(&block);
    return attacks;
}

}  // namespace

std::vector<PacketBytes> StretchEncoder::encode(const Stretch& stretch) {
    std::unique_ptr<BlockForcer> forcer = take();
    const std::vector<std::int64_t> attacks =
        hasShortBlock(stretch) ? attacksIn(stretch, setup_) : std::vector<std::int64_t>{};
    std::vector<PacketBytes> packets;
    std::vector<std::vector<float>> sound(stretch.sound.channels.size());
    std::vector<float*> planes(sound.size());
    forcer->reset();
    for (std::size_t i = 0; i < stretch.blocks.size(); ++i) {
        const Stretch::Block& block = stretch.blocks[i];
        const std::int64_t size = forcer->blockSize(block.isLong);
        const std::int64_t from = block.centre - size / 2 - stretch.sound.from;
        for (std::size_t channel = 0; channel < sound.size(); ++channel) {
            const auto begin = stretch.sound.channels[channel].begin() + from;
            sound[channel].assign(begin, begin + size);
            planes[channel] = sound[channel].data();
        }
        const bool before = i > 0 ? stretch.blocks[i - 1].isLong : stretch.longBefore;
        const bool behind =
            i + 1 < stretch.blocks.size() ? stretch.blocks[i + 1].isLong : stretch.longBehind;
        const bool attack =
            !block.isLong && std::binary_search(attacks.begin(), attacks.end(), block.centre);
        PacketBytes packet =
            forcer->code({before, block.isLong, behind, attack}, planes, stretch.richness);
        if (i >= stretch.lead) packets.push_back(std::move(packet));
    }
    giveBack(std::move(forcer));
    return packets;
}

std::unique_ptr<BlockForcer> StretchEncoder::take() {
    {
        const std::lock_guard lock(mutex_);
        if (!idle_.empty()) {
            auto forcer = std::move(idle_.back());
            idle_.pop_back();
            return forcer;
        }
    }
    return std::make_unique<BlockForcer>(setup_);
}

void StretchEncoder::giveBack(std::unique_ptr<BlockForcer> forcer) {
    const std::lock_guard lock(mutex_);
    idle_.push_back(std::move(forcer));
}

}  // namespace audio::vorbis
