// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/read/PacketLengths.h"

#include <algorithm>
#include <array>
#include <utility>
#include <vorbis/codec.h>

namespace audio::read {
namespace {

using Bytes = std::span<const std::uint8_t>;

/// The three headers of Vorbis, which containers keep as one: a count, the lengths of all but the
/// last in steps of 255, the headers.
std::optional<std::array<Bytes, 3>> splitHeaders(Bytes extra) {
    if (extra.empty() || extra[0] != 2) return std::nullopt;
    std::size_t at = 1;
    std::array<std::size_t, 2> sizes{};
    for (std::size_t& size : sizes) {
        while (at < extra.size() && extra[at] == 255) {
            size += 255;
            ++at;
        }
        if (at >= extra.size()) return std::nullopt;
        size += extra[at++];
    }
    if (extra.size() < at + sizes[0] + sizes[1]) return std::nullopt;
    return std::array{extra.subspan(at, sizes[0]), extra.subspan(at + sizes[0], sizes[1]),
                      extra.subspan(at + sizes[0] + sizes[1])};
}

std::int64_t alacBlock(const AVCodecParameters& parameters) {
    const Bytes extra(parameters.extradata, static_cast<std::size_t>(parameters.extradata_size));
    if (extra.size() < 16) return 0;
    return extra[12] << 24 | extra[13] << 16 | extra[14] << 8 | extra[15];
}

}  // namespace

struct PacketLengths::Vorbis {
    Vorbis() {
        vorbis_info_init(&info);
        vorbis_comment_init(&comment);
    }
    ~Vorbis() {
        vorbis_comment_clear(&comment);
        vorbis_info_clear(&info);
    }
    Vorbis(const Vorbis&) = delete;
    Vorbis& operator=(const Vorbis&) = delete;

    bool takeHeaders(const std::array<Bytes, 3>& headers) {
        for (std::size_t i = 0; i < headers.size(); ++i) {
            ogg_packet packet = packetOf(headers[i]);
            packet.b_o_s = i == 0;
            if (vorbis_synthesis_headerin(&info, &comment, &packet) != 0) return false;
        }
        return true;
    }
    static ogg_packet packetOf(Bytes bytes) {
        ogg_packet packet{};
        packet.packet = const_cast<unsigned char*>(bytes.data());  // only read
        packet.bytes = static_cast<long>(bytes.size());
        return packet;
    }

    vorbis_info info{};
    vorbis_comment comment{};
    long before = 0;  ///< the size of the block before; 0: there was none
};

PacketLengths::PacketLengths(const AVCodecParameters& parameters)
    : codec_(parameters.codec_id),
      channels_(parameters.ch_layout.nb_channels),
      sampleBits_(av_get_exact_bits_per_sample(parameters.codec_id)),
      blockAlign_(parameters.block_align),
      sampleRate_(parameters.sample_rate) {
    const Bytes extra(parameters.extradata, static_cast<std::size_t>(parameters.extradata_size));
    if (codec_ == AV_CODEC_ID_VORBIS) {
        auto vorbis = std::make_unique<Vorbis>();
        const auto headers = splitHeaders(extra);
        if (headers && vorbis->takeHeaders(*headers)) vorbis_ = std::move(vorbis);
    }
    if (codec_ == AV_CODEC_ID_ALAC) block_ = alacBlock(parameters);
    if (blockAlign_ > 0 && wmaBlock(parameters) > 0) {
        block_ = wmaBlock(parameters);
        // The second flags word tells whether frames span packets.
        const std::size_t at = codec_ == AV_CODEC_ID_WMAV1 ? 2 : 4;
        reservoir_ = extra.size() > at && (extra[at] & 0x02) != 0;
    }
}

PacketLengths::~PacketLengths() = default;
PacketLengths::PacketLengths(PacketLengths&&) noexcept = default;
PacketLengths& PacketLengths::operator=(PacketLengths&&) noexcept = default;

bool PacketLengths::states() const {
    if (codec_ == AV_CODEC_ID_OPUS || codec_ == AV_CODEC_ID_FLAC) return true;
    return vorbis_ || block_ > 0 || (sampleBits_ >= 8 && channels_ > 0);
}

std::optional<std::int64_t> PacketLengths::of(Bytes packet) {
    const bool first = std::exchange(first_, false);
    switch (codec_) {
        case AV_CODEC_ID_VORBIS:
            if (!vorbis_) return std::nullopt;
            return ofVorbis(packet);
        case AV_CODEC_ID_OPUS: {
            const auto frames = opusFrames(packet);
            return frames && sampleRate_ == 48'000 ? frames : std::nullopt;
        }
        case AV_CODEC_ID_FLAC: {
            const auto head = flacHead(packet);
            return head ? std::optional(head->frames) : std::nullopt;
        }
        case AV_CODEC_ID_ALAC:
            return alacFrames(packet, block_);
        case AV_CODEC_ID_WMAV1:
        case AV_CODEC_ID_WMAV2:
            if (block_ == 0) return std::nullopt;
            return ofWma(packet, first);
        default:
            break;
    }
    if (sampleBits_ < 8 || channels_ < 1) return std::nullopt;
    return static_cast<std::int64_t>(packet.size()) * 8 / sampleBits_ / channels_;
}

void PacketLengths::restart() {
    first_ = true;
    if (vorbis_) vorbis_->before = 0;
}

/// Two neighbouring blocks give a quarter of the sum of their sizes; the first gives nothing.
std::int64_t PacketLengths::ofVorbis(Bytes packet) {
    ogg_packet own = Vorbis::packetOf(packet);
    const long size = vorbis_packet_blocksize(&vorbis_->info, &own);
    if (size <= 0) return 0;
    const long before = std::exchange(vorbis_->before, size);
    return before > 0 ? before / 4 + size / 4 : 0;
}

std::int64_t PacketLengths::ofWma(Bytes packet, bool first) const {
    const auto align = static_cast<std::size_t>(blockAlign_);
    std::int64_t count = 0;
    for (std::size_t at = 0; at == 0 || at + align <= packet.size(); at += align) {
        const int stated = reservoir_ && packet.size() > at ? packet[at] & 0x0F : 1;
        const bool afterNothing = reservoir_ && first && at == 0;  // what began before is lost
        count += std::max(0, stated - (afterNothing ? 1 : 0));
    }
    return count * block_;
}

bool hasEqualPackets(AVCodecID codec) {
    constexpr std::array equal = {AV_CODEC_ID_AAC, AV_CODEC_ID_MP3, AV_CODEC_ID_MP2,
                                  AV_CODEC_ID_MP1, AV_CODEC_ID_AC3};
    return std::find(equal.begin(), equal.end(), codec) != equal.end();
}

std::int64_t wmaBlock(const AVCodecParameters& parameters) {
    const bool first = parameters.codec_id == AV_CODEC_ID_WMAV1;
    if (!first && parameters.codec_id != AV_CODEC_ID_WMAV2) return 0;
    if (parameters.sample_rate <= 16'000) return 512;
    if (parameters.sample_rate <= 22'050) return 1'024;
    if (parameters.sample_rate <= 32'000 && first) return 1'024;
    return 2'048;
}

std::int64_t codecDelay(const AVCodecParameters& parameters) {
    const bool opus = parameters.codec_id == AV_CODEC_ID_OPUS && parameters.extradata_size >= 19;
    if (opus) return parameters.extradata[10] | parameters.extradata[11] << 8;
    return 2 * wmaBlock(parameters);
}

std::optional<std::int64_t> opusFrames(Bytes packet) {
    if (packet.empty()) return std::nullopt;
    const int configuration = packet[0] >> 3;
    std::int64_t length = 0;
    if (configuration < 12)
        length = std::array{480, 960, 1'920, 2'880}[static_cast<std::size_t>(configuration % 4)];
    else if (configuration < 16)
        length = configuration % 2 == 0 ? 480 : 960;
    else
        length = std::int64_t{120} << configuration % 4;
    const int code = packet[0] & 3;
    if (code == 0) return length;
    if (code < 3) return 2 * length;
    if (packet.size() < 2) return std::nullopt;
    constexpr std::int64_t longest = 5'760;  // section 3.4, R5
    const std::int64_t frames = (packet[1] & 0x3F) * length;
    return frames > 0 && frames <= longest ? std::optional(frames) : std::nullopt;
}

std::optional<FlacHead> flacHead(Bytes frame) {
    if (frame.size() < 10 || frame[0] != 0xFF || (frame[1] & 0xFE) != 0xF8) return std::nullopt;
    FlacHead head;
    head.numbersSamples = (frame[1] & 1) != 0;
    int following = 0;  // bytes of the number, which is written as UTF-8 writes characters
    while (following < 7 && (frame[4] & (0x80 >> following)) != 0) ++following;
    if (following == 1) return std::nullopt;
    following = std::max(0, following - 1);
    head.number = frame[4] & (following > 0 ? 0x3F >> following : 0x7F);
    std::size_t at = 5;
    for (; following > 0 && at < frame.size(); --following)
        head.number = head.number << 6 | (frame[at++] & 0x3F);
    const int code = frame[2] >> 4;
    if (code == 1)
        head.frames = 192;
    else if (code >= 2 && code <= 5)
        head.frames = 144 << code;
    else if (code >= 8)
        head.frames = 1 << code;
    else if (code == 6 && at < frame.size())
        head.frames = frame[at] + 1;
    else if (code == 7 && at + 1 < frame.size())
        head.frames = (frame[at] << 8 | frame[at + 1]) + 1;
    return head.frames > 0 ? std::optional(head) : std::nullopt;
}

std::optional<std::int64_t> alacFrames(Bytes packet, std::int64_t full) {
    if (packet.size() < 3 || full <= 0) return std::nullopt;
    // Bits: 3 of the element, 4 of its instance, 12 unused, 1 whether a count follows, 2, 1.
    if ((packet[2] & 0x10) == 0) return full;
    if (packet.size() < 7) return std::nullopt;
    std::uint64_t bits = 0;
    for (std::size_t i = 2; i < 7; ++i) bits = bits << 8 | packet[i];
    return static_cast<std::int64_t>(bits >> 1 & 0xFFFFFFFFU);
}

}  // namespace audio::read
