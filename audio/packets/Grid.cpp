// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/packets/Grid.h"

#include <algorithm>
#include <utility>

#include "audio/ffmpeg/Input.h"
#include "audio/packets/CannotJoin.h"
#include "audio/read/PacketLengths.h"
#include "audio/read/PacketReader.h"
#include "audio/read/PacketTable.h"

namespace audio::packets {
namespace {

constexpr std::int64_t opusPreRoll = 3'840;  // RFC 7845, section 4.6
constexpr std::int64_t opusDelay = 312;      // of the encoder, frames
constexpr std::int64_t aacFrames = 1'024;
constexpr std::int64_t aacSearch = 12;

Grid opusGrid(const AVCodecParameters& parameters) {
    // RFC 7845, section 5.1: an output gain, and mapping families other than mono and stereo.
    const std::uint8_t* head = parameters.extradata;
    if (parameters.extradata_size < 19 || head[18] != 0)
        throw CannotJoin("It has more channels than can be joined.");
    if (head[16] != 0 || head[17] != 0) throw CannotJoin("Its header states a gain.");
    Grid grid;
    grid.preRoll = opusPreRoll;
    grid.leastSkip = opusDelay;
    return grid;
}

Grid aacGrid(const AVCodecParameters& parameters) {
    if (parameters.profile != FF_PROFILE_AAC_LOW || parameters.frame_size != aacFrames)
        throw CannotJoin("Its AAC is not of the plain kind (LC).");
    if (parameters.ch_layout.nb_channels > 2)
        throw CannotJoin("It has more channels than can be joined.");
    Grid grid;
    grid.size = aacFrames;
    grid.preRoll = aacFrames;
    grid.overlap = aacFrames;
    grid.leastSkip = aacFrames;
    grid.search = aacSearch;
    return grid;
}

Grid kindOf(const AVCodecParameters& parameters) {
    if (parameters.codec_id == AV_CODEC_ID_OPUS) return opusGrid(parameters);
    if (parameters.codec_id == AV_CODEC_ID_AAC) return aacGrid(parameters);
    throw CannotJoin("Packets of its kind cannot be joined.");
}

/// Goes through all packets, and learns where the sound begins and ends.
class Counter {
  public:
    Counter(Grid& grid, const AVCodecParameters& parameters) : grid_(grid) {
        if (parameters.codec_id == AV_CODEC_ID_OPUS)
            place_.trimmer = read::Trimmer(read::codecDelay(parameters));
    }

    void add(const read::SoundPacket& packet) {
        const std::int64_t frames = packet.stated.value_or(grid_.size);
        if (grid_.size == 0) grid_.size = frames;
        if (packet.lost > 0 || packet.damaged) throw CannotJoin("Some of its packets are missing.");
        if (frames <= 0 || odd_) throw CannotJoin("Its packets are of unequal lengths.");
        odd_ = frames != grid_.size;
        if (ended_) throw CannotJoin("Its sound ends before its packets do.");
        const std::int64_t start = place_.decoded;
        const read::Kept kept = place_.pass(packet, frames, true);
        if (kept.kept <= 0 && !begun_) return;
        if (!std::exchange(begun_, true)) grid_.skip = start + kept.front;
        ended_ = kept.front + kept.kept < frames;
    }

    void finish() {
        grid_.count = static_cast<std::int64_t>(place_.number) - (odd_ ? 1 : 0);
        grid_.frames = place_.frame;
        if (!begun_) throw CannotJoin("It holds no sound.");
    }

  private:
    Grid& grid_;
    read::PacketPlace place_;
    bool begun_ = false;
    bool ended_ = false;
    bool odd_ = false;  ///< the packet seen last was of another size, as the stream's last may be
};

}  // namespace

PacketStream readStream(const std::filesystem::path& file) {
    ffmpeg::Input input(file);
    PacketStream stream;
    stream.parameters = ffmpeg::copyParameters(input.parameters());
    stream.grid = kindOf(*stream.parameters);
    const std::unique_ptr<read::PacketReader> reader = read::openPackets(std::move(input));
    Counter counter(stream.grid, *stream.parameters);
    read::SoundPacket packet;
    while (reader->read(packet)) counter.add(packet);
    counter.finish();
    stream.grid.overlap = std::max(stream.grid.overlap, stream.grid.size);
    return stream;
}

}  // namespace audio::packets
