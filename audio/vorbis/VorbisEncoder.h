// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <vector>
#include <vorbis/codec.h>

#include "audio/Format.h"

namespace audio::vorbis {

/// A stretch of a stream's sound: frames [from, end()), one plane for each channel in the order of
/// Vorbis (I, section 4.3.9), full scale ±1.
struct PlanarSound {
    std::int64_t from = 0;
    std::vector<std::vector<float>> planes;
    bool complete = false;  ///< nothing comes after end()

    std::int64_t end() const { return from + static_cast<std::int64_t>(planes.front().size()); }
};

/// Where one block lies. Its window reaches half its size to either side of the centre; centres of
/// neighbours are a quarter of both sizes apart (Vorbis I, section 4.3.8), so that a packet
/// completes the sound up to its centre, which is its granule position (section A.2).
struct VorbisBlock {
    std::int64_t centre = 0;  ///< frames from the start of the stream
    bool previousIsLong = false;
    bool isLong = false;
    bool nextIsLong = false;
    std::int64_t nextCentre = 0;
    bool last = false;  ///< of the stream

    /// Whether the windows overlap as they must, whoever made the two.
    bool follows(const VorbisBlock& left) const {
        return centre == left.nextCentre && isLong == left.nextIsLong &&
               previousIsLong == left.isLong;
    }
};

struct VorbisPacket {
    VorbisBlock block;
    std::vector<std::uint8_t> bytes;
};

/// libvorbis with one set-up: variable bit-rate, unmanaged, by the nominal bit-rate of the format.
/// It may begin anywhere in the stream, and decides on windows (cheap) apart from coding what lies
/// under them (dear). What it gives depends on the sound from its start on alone, never on the
/// lengths of the pieces that it is handed. One thread at a time.
class VorbisEncoder {
  public:
    /// `file` = what errors name; `start` = frame of the stream where its first block is centred.
    /// Throws platform::Error where Vorbis has no such rate or number of channels.
    VorbisEncoder(const std::filesystem::path& file, const Format& format, std::int64_t start = 0);
    ~VorbisEncoder();
    VorbisEncoder(const VorbisEncoder&) = delete;
    VorbisEncoder& operator=(const VorbisEncoder&) = delete;

    /// The next block. `sound` must reach back to fed(); it is read on as far as is needed. False:
    /// that takes more sound, or the last block was given.
    bool next(const PlanarSound& sound, VorbisBlock& block);
    /// The packet of the block that next() gave just now.
    std::vector<std::uint8_t> packet();

    /// Where the block is centred that next() gives next.
    std::int64_t nextCentre() const { return centre_; }
    /// Frames before this one have been taken.
    std::int64_t fed() const { return fed_; }
    /// Frames of a short and of a long block; they may be equal, and then all are short.
    std::int64_t shortBlock() const { return vorbis_info_blocksize(&info(), 0); }
    std::int64_t longBlock() const { return vorbis_info_blocksize(&info(), 1); }

    /// Identification, comment (with only a vendor text) and set-up header.
    std::vector<std::vector<std::uint8_t>> headers();

  private:
    void feed(const PlanarSound& sound);
    vorbis_info& info() const { return state_.info; }
    std::int64_t quarter(bool isLong) const { return (isLong ? longBlock() : shortBlock()) / 4; }

    /// The library's objects, which refer to one another and go together.
    struct State {
        State();
        ~State();
        State(const State&) = delete;
        State& operator=(const State&) = delete;
        vorbis_info info{};
        vorbis_dsp_state dsp{};
        vorbis_block block{};
    };
    std::filesystem::path file_;
    mutable State state_;  // the library's getters do not take const
    std::int64_t fed_;
    std::int64_t centre_;  ///< of the next block
    bool ended_ = false;
};

}  // namespace audio::vorbis
