// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/ffmpeg/PacketRate.h"

#include <vector>

#include "audio/ffmpeg/Input.h"

namespace audio::ffmpeg {
namespace {

struct PacketSize {
    double bits = 0;
    double seconds = 0;
};

std::vector<PacketSize> packetSizes(Input& input) {
    const AVRational base = input.stream().time_base;
    const PacketPtr packet = makePacket();
    std::vector<PacketSize> sizes;
    while (input.read(*packet)) {
        const double seconds = double(packet->duration) * base.num / base.den;
        if (seconds > 0) sizes.push_back({8.0 * packet->size, seconds});
    }
    return sizes;
}

/// The rate at which a bit of the file is coded on average. That of silence counts for little in
/// it, however much silence there is.
double rateOfABit(const std::vector<PacketSize>& sizes) {
    double bits = 0;
    double weighed = 0;
    for (const PacketSize& size : sizes) {
        bits += size.bits;
        weighed += size.bits * size.bits / size.seconds;
    }
    return bits > 0 ? weighed / bits : 0;
}

}  // namespace

std::int64_t measureBitRate(const std::filesystem::path& file) {
    Input input(file);
    const std::vector<PacketSize> sizes = packetSizes(input);
    const double leastRate = rateOfABit(sizes) / 4;
    PacketSize all;
    for (const PacketSize& size : sizes) {
        if (size.bits < leastRate * size.seconds) continue;
        all.bits += size.bits;
        all.seconds += size.seconds;
    }
    return all.seconds > 0 ? static_cast<std::int64_t>(all.bits / all.seconds) : 0;
}

bool hasFields(const std::filesystem::path& file) {
    const Input input(file);
    return av_dict_get(input.context().metadata, "", nullptr, AV_DICT_IGNORE_SUFFIX) ||
           av_dict_get(input.stream().metadata, "", nullptr, AV_DICT_IGNORE_SUFFIX);
}

}  // namespace audio::ffmpeg
