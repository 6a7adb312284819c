// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <deque>
#include <span>
#include <vector>

#include "audio/mpeg/read/LogicalFrame.h"
#include "audio/mpeg/splice/StreamWriter.h"

namespace audio::mpeg {

/// Lays Layer III frames one behind another, their main data in the bit reservoir: each as early as
/// the frames before leave room and main_data_begin can tell. Frames pass on to the writer once
/// nothing more can come into them. One thread.
class ReservoirWriter {
  public:
    /// `likeSource` supplies the header bits that say nothing of the coding (copyright, emphasis
    /// …).
    ReservoirWriter(StreamWriter& writer, const FrameHeader& likeSource);

    /// Bytes before the next frame that its main data may use.
    int room() const;

    /// Adds a frame in a slot of this bit-rate and padding; its main data must fit.
    void add(const LogicalFrame& frame, const FrameHeader& slot);
    /// Adds a frame of silence in this slot.
    void addSilent(const FrameHeader& slot);

    /// Begins a run of frames taken from elsewhere as they are: `reservoir` are the main_data_begin
    /// bytes before the first one's own slot, for which room() must suffice.
    void beginKept(std::span<const std::uint8_t> reservoir);
    /// Adds such a frame.
    void addKept(std::span<const std::uint8_t> frame);
    /// For many frames that are written past this object, between beginKept() and addKept(); the
    /// last frames of a run must come by addKept(), `longestReservoir` bytes of main data of them.
    void skipKept();
    /// Ends the run behind its last frame, so that others may use what it leaves.
    void endKept();
    /// Passes on what is left.
    void finish();

  private:
    struct Slot {
        std::vector<std::uint8_t> bytes;
        std::int64_t begin = 0;  // of its main data, in main data bytes since the start
        std::size_t overhead = 0;
        std::int64_t end() const {
            return begin + static_cast<std::int64_t>(bytes.size() - overhead);
        }
    };
    void push(std::vector<std::uint8_t> bytes, std::size_t overhead);
    void put(std::int64_t at, std::span<const std::uint8_t> bytes);
    void flush(std::int64_t until);
    void clearLeftovers();

    StreamWriter& writer_;
    FrameHeader like_;
    std::deque<Slot> slots_;
    std::int64_t capacity_ = 0;  // main data bytes of all slots so far
    std::int64_t used_ = 0;      // where the last frame's main data end
    bool leftovers_ = false;     // a kept run ended last
};

/// A header for new sound: coding from `coding`, bit-rate and padding from `slot`, the rest like
/// the stream's.
FrameHeader joinHeader(const FrameHeader& coding, const FrameHeader& slot, const FrameHeader& like);

}  // namespace audio::mpeg
