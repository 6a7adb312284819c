// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/read/ContainerPackets.h"

#include <algorithm>
#include <array>
#include <cstdio>

#include "audio/read/Mp4Times.h"

namespace audio::read {
namespace {

constexpr std::int64_t longestLoss = 60;  // seconds; more is not believed

/// Containers that are nothing but packets, one behind the other.
bool isBareStream(const std::string& container) {
    constexpr std::array bare = {"aac", "ac3", "eac3", "dts", "flac", "truehd", "loas", "mpegts"};
    return std::find(bare.begin(), bare.end(), container) != bare.end();
}

/// The checksum over a whole frame of FLAC, its own included, is 0 (RFC 9639, section 9.3).
bool isSoundFrame(std::span<const std::uint8_t> frame) {
    std::uint32_t sum = 0;
    for (const std::uint8_t byte : frame) {
        sum ^= std::uint32_t{byte} << 8;
        for (int bit = 0; bit < 8; ++bit) sum = (sum & 0x8000) != 0 ? sum << 1 ^ 0x18005 : sum << 1;
    }
    return sum == 0;
}

}  // namespace

ContainerPackets::ContainerPackets(ffmpeg::Input input)
    : input_(std::move(input)),
      lengths_(input_.parameters()),
      previous_(ffmpeg::makePacket()),
      mp4_(input_.containerName().starts_with("mov")) {
    if (!mp4_) return;
    const Mp4Times times = readMp4Times(input_.file(), input_.stream().id);
    constexpr std::int64_t coarsest = 600;  // of those in use
    const std::int64_t scale = times.movieScale > 0 ? times.movieScale : coarsest;
    movieGrain_ = (input_.parameters().sample_rate + scale - 1) / scale;
    if (times.mediaScale > 0)
        mediaFrames_ =
            av_rescale(times.mediaDuration, input_.parameters().sample_rate, times.mediaScale);
}

bool ContainerPackets::read(SoundPacket& packet) {
    av_packet_unref(previous_.get());
    av_packet_move_ref(previous_.get(), packet.data.get());
    if (!input_.read(*packet.data)) return false;
    describe(packet);
    return true;
}

void ContainerPackets::describe(SoundPacket& packet) {
    const AVPacket& data = *packet.data;
    packet.stated = lengths_.of(packet.bytes());
    packet.trim = {};
    packet.trim.discard = (data.flags & AV_PKT_FLAG_DISCARD) != 0;
    std::size_t size = 0;
    const std::uint8_t* side = av_packet_get_side_data(&data, AV_PKT_DATA_SKIP_SAMPLES, &size);
    const auto number = [side](int at) {
        return std::int64_t{side[at]} | side[at + 1] << 8 | side[at + 2] << 16 |
               std::int64_t{side[at + 3]} << 24;
    };
    if (side && size >= 10) {
        packet.trim.skip = number(0);
        packet.trim.padding = number(4);
    }
    packet.mp4End = mp4_ ? mp4End(data) : std::nullopt;

    const PacketMark mark{data.pos, data.pts, static_cast<std::uint32_t>(data.size),
                          sumOf(packet.bytes())};
    findLoss(packet, mark);
    lastMarked_ = mark.offset >= 0 ? !before_ || before_->mark.offset != mark.offset
                                   : mark.time != AV_NOPTS_VALUE;
    before_ = Before{mark, packet.stated.value_or(0)};
}

std::optional<PacketMark> ContainerPackets::mark(const SoundPacket&) const {
    return lastMarked_ && before_ ? std::optional(before_->mark) : std::nullopt;
}

bool ContainerPackets::seek(const PacketMark& mark) {
    lengths_.restart();
    before_.reset();
    av_packet_unref(previous_.get());
    if (isBareStream(input_.containerName()) && mark.offset >= 0 && input_.seekBytes(mark.offset))
        return true;
    return mark.time != AV_NOPTS_VALUE && input_.seek(mark.time);
}

void ContainerPackets::rewind() {
    lengths_.restart();
    before_.reset();
    av_packet_unref(previous_.get());
    input_.rewind();
}

void ContainerPackets::findLoss(SoundPacket& packet, const PacketMark& mark) const {
    packet.lost = 0;
    packet.damaged = (packet.data->flags & AV_PKT_FLAG_CORRUPT) != 0;
    if (!before_) return;
    const AVCodecID codec = input_.parameters().codec_id;
    if (codec == AV_CODEC_ID_FLAC) packet.lost = lostFlac(packet);
    if (wmaBlock(input_.parameters()) > 0) packet.lost = lostWma(mark);
    const std::int64_t most = longestLoss * input_.parameters().sample_rate;
    if (packet.lost < 0 || packet.lost > most) packet.lost = 0;
    packet.damaged = packet.damaged || packet.lost > 0;
}

/// Frames whose numbers are missing after one with a wrong checksum.
std::int64_t ContainerPackets::lostFlac(const SoundPacket& packet) const {
    const std::span<const std::uint8_t> bytes(previous_->data,
                                              static_cast<std::size_t>(previous_->size));
    const auto before = flacHead(bytes);
    const auto own = flacHead(packet.bytes());
    if (!before || !own || before->numbersSamples != own->numbersSamples) return 0;
    const std::int64_t missing = own->numbersSamples
                                     ? own->number - before->number - before->frames
                                     : (own->number - before->number - 1) * before->frames;
    return missing > 0 && !isSoundFrame(bytes) ? missing : 0;
}

/// Whole blocks of WMA that are missing where bytes of the file were passed over. A stamp is a
/// millisecond wide where blocks do not span packets, else some blocks.
std::int64_t ContainerPackets::lostWma(const PacketMark& mark) const {
    const std::int64_t page = input_.context().packet_size;
    if (page <= 0 || mark.time == AV_NOPTS_VALUE || before_->mark.time == AV_NOPTS_VALUE) return 0;
    // Packets of ASF follow one another at equal distances; where they do not, or where there are
    // more of them than the packet before needed, a damaged one was passed over.
    const std::int64_t distance = mark.offset - before_->mark.offset;
    if (distance % page == 0 && distance < (before_->mark.size / page + 2) * page) return 0;
    const std::int64_t block = wmaBlock(input_.parameters());
    const std::int64_t passed = framesOf(mark.time - before_->mark.time);
    const std::int64_t lost = (passed - before_->frames + block / 2) / block;
    return lost * block;
}

std::int64_t ContainerPackets::framesOf(std::int64_t duration) const {
    return av_rescale_q(duration, input_.stream().time_base,
                        AVRational{1, input_.parameters().sample_rate});
}

/// What is known of the end, where the packet is the last of its track.
std::optional<Mp4End> ContainerPackets::mp4End(const AVPacket& packet) {
    AVStream& stream = input_.stream();
    const int count = avformat_index_get_entries_count(&stream);
    const AVIndexEntry* first = avformat_index_get_entry(&stream, 0);
    const AVIndexEntry* last = avformat_index_get_entry(&stream, count - 1);
    if (!first || !last || last->pos != packet.pos || last->timestamp != packet.dts)
        return std::nullopt;
    Mp4End end;
    end.lastStart = framesOf(last->timestamp - first->timestamp);
    end.mediaEnd =
        mediaFrames_ > end.lastStart ? mediaFrames_ : end.lastStart + framesOf(packet.duration);
    end.editGrain = movieGrain_;
    if (stream.duration > 0) end.editEnd = framesOf(stream.duration - first->timestamp);
    const AVDictionaryEntry* gapless =
        av_dict_get(input_.context().metadata, "iTunSMPB", nullptr, 0);
    unsigned delay = 0;
    unsigned padding = 0;
    unsigned long long sound = 0;
    if (gapless && std::sscanf(gapless->value, "%*x %x %x %llx", &delay, &padding, &sound) == 3 &&
        sound > 0)
        end.mediaEnd =
            std::min<std::int64_t>(end.mediaEnd, delay + static_cast<std::int64_t>(sound));
    return end;
}

}  // namespace audio::read
