// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/vorbis/PacketDecoder.h"

#include "audio/vorbis/CannotSplice.h"

namespace audio::vorbis {

PacketDecoder::PacketDecoder(const StreamHeaders& headers)
    : stream_(headers), block_(stream_.dsp()) {}

void PacketDecoder::reset() {
    vorbis_synthesis_restart(&stream_.dsp());
}

void PacketDecoder::decode(std::span<const std::uint8_t> bytes,
                           std::vector<std::vector<float>>& planes) {
    ogg_packet packet = packetOf(bytes);
    if (vorbis_synthesis(&block_.block, &packet) != 0 ||
        vorbis_synthesis_blockin(&stream_.dsp(), &block_.block) != 0)
        throw CannotSplice("One of its packets is damaged.");
    float** sound = nullptr;
    const int frames = vorbis_synthesis_pcmout(&stream_.dsp(), &sound);
    if (frames <= 0) return;
    for (std::size_t channel = 0; channel < planes.size(); ++channel)
        planes[channel].insert(planes[channel].end(), sound[channel], sound[channel] + frames);
    vorbis_synthesis_read(&stream_.dsp(), frames);
}

}  // namespace audio::vorbis
