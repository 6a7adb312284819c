// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <filesystem>
#include <vector>

#include "audio/vorbis/StreamHeaders.h"

namespace audio::vorbis {

/// Where every audio packet of an Ogg Vorbis file lies, in the file and in its sound, without
/// decoding. A value; reading it is free of locks. Memory: a bit for each packet and 24 bytes for
/// each page, some 5 MB for ten hours.
///
/// A packet's place is the centre of its window: the first lies at 0, neighbours are a quarter of
/// both blocks apart (Vorbis I, section 4.3.8), and a packet completes the sound up to its centre.
/// Granule positions count the same frames from the `granuleOffset` on; only those of the first and
/// the last page are believed, those between are off in some files.
class PacketIndex {
  public:
    /// Reads the whole file. Throws CannotSplice where it is not one single and whole Vorbis stream
    /// (chained, multiplexed, pages missing, window flags that contradict the neighbours), and
    /// platform::Error where it cannot be read.
    explicit PacketIndex(const std::filesystem::path& file);

    const StreamHeaders& headers() const { return headers_; }
    int serial() const { return serial_; }
    int channels() const { return channels_; }
    int sampleRate() const { return sampleRate_; }
    std::int64_t blockSize(bool isLong) const { return isLong ? longBlock_ : shortBlock_; }

    std::int64_t packets() const { return static_cast<std::int64_t>(isLong_.size()); }
    bool isLong(std::int64_t packet) const { return isLong_[static_cast<std::size_t>(packet)]; }
    std::int64_t centre(std::int64_t packet) const;
    /// Where the last packet's sound ends.
    std::int64_t lastCentre() const { return lastCentre_; }
    /// What the long packets at the ends say of neighbours that are not there.
    bool longBeforeFirst() const { return longBeforeFirst_; }
    bool longBehindLast() const { return longBehindLast_; }
    /// The number of the mode that a short or a long block uses, -1 where there is none.
    int mode(bool isLong) const { return isLong ? longMode_ : shortMode_; }

    /// The sound: frames [firstFrame(), firstFrame() + frames()) by centres. What lies before is
    /// dropped at the start.
    std::int64_t firstFrame() const { return granuleOffset_ < 0 ? -granuleOffset_ : 0; }
    std::int64_t frames() const { return end_ - firstFrame(); }
    /// Granule position less centre, the same all through the file.
    std::int64_t granuleOffset() const { return granuleOffset_; }

    /// A page and the first audio packet that begins on it.
    struct Page {
        std::int64_t offset = 0;  ///< in the file
        std::int64_t packet = 0;
        std::int64_t centre = 0;
    };
    /// The last page with a packet up to this one.
    const Page& pageBefore(std::int64_t packet) const;

  private:
    class Scan;

    StreamHeaders headers_;
    int serial_ = 0;
    int channels_ = 0;
    int sampleRate_ = 0;
    std::int64_t shortBlock_ = 0;
    std::int64_t longBlock_ = 0;
    std::vector<bool> isLong_;
    std::vector<Page> pages_;
    std::int64_t lastCentre_ = 0;
    std::int64_t granuleOffset_ = 0;
    std::int64_t end_ = 0;
    bool longBeforeFirst_ = false;
    bool longBehindLast_ = false;
    int shortMode_ = -1;
    int longMode_ = -1;
};

}  // namespace audio::vorbis
