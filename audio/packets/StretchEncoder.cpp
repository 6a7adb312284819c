// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/packets/StretchEncoder.h"

#include <algorithm>
#include <vector>

#include "audio/ffmpeg/BlockEncoder.h"
#include "audio/packets/CannotJoin.h"

namespace audio::packets {

void encodeFrom(std::int64_t first, const Grid& grid, const std::filesystem::path& file,
                const Format& format, const StreamSound& sound, const TakePacket& take) {
    ffmpeg::Recipe recipe = ffmpeg::recipeFor(format);
    if (!recipe) throw CannotJoin("There is no encoder for packets of its kind.");
    recipe.packetFrames = static_cast<int>(grid.size);
    recipe.joins = true;
    ffmpeg::BlockEncoder encoder(file, format, recipe);
    if (static_cast<std::int64_t>(encoder.blockFrames()) != grid.size)
        throw CannotJoin("The encoder makes no packets of its size.");

    // What comes out as packet k codes the sound that a decoder gives for packet k.
    const std::int64_t lead = std::max<std::int64_t>(4, format.sampleRate / 5 / grid.size);
    const std::int64_t delay = encoder.context().initial_padding;
    const std::int64_t start = (first - lead) * grid.size + delay;
    std::vector<float> block(static_cast<std::size_t>(grid.size) * encoder.channels());
    bool more = true;
    for (std::int64_t stamp = 0; more; stamp += grid.size) {
        sound(start + stamp, static_cast<std::size_t>(grid.size), block.data());
        encoder.encode(block.data(), static_cast<std::size_t>(grid.size), stamp,
                       [&](const AVPacket& packet) {
                           if (!more || start + packet.pts < first * grid.size) return;
                           more = take({packet.data, static_cast<std::size_t>(packet.size)});
                       });
    }
}

}  // namespace audio::packets
