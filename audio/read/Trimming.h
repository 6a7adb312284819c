// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <optional>

// What of the decoded sound is no sound: the encoder's delay at the start and its padding at the
// end, as containers state them. Plain arithmetic, no files. All counts are frames.
namespace audio::read {

/// What a container says of one packet.
struct Trim {
    std::int64_t skip = 0;     ///< to drop from this packet on
    std::int64_t padding = 0;  ///< to drop at this packet's end
    bool discard = false;      ///< none of this packet is sound; it only prepares the decoder
};

/// The part of a packet's frames that is sound: [front, front + kept).
struct Kept {
    std::int64_t front = 0;
    std::int64_t kept = 0;
};

/// Applies the trims of packets one after the other, with the rules of FFmpeg's decoders.
class Trimmer {
  public:
    explicit Trimmer(std::int64_t skip = 0) : skip_(skip) {}
    Kept take(std::int64_t frames, const Trim& trim);
    std::int64_t skip() const { return skip_; }  ///< still to be dropped

  private:
    std::int64_t skip_;
};

/// What the pages of Ogg say of a stream's ends (Vorbis I specification, appendix A.2): a page's
/// granule position is the end of the last packet that ends on it.
struct OggPageEnd {
    std::int64_t granule = 0;
    std::int64_t before = 0;  ///< granule position of the page before; 0 for the first
    std::int64_t frames = 0;  ///< of the packets since that page
    bool last = false;        ///< it ends the stream
};
/// Frames to drop at the start of Vorbis, by the first page that has a granule position: what lies
/// before frame 0.
std::int64_t oggStartSkip(const OggPageEnd& first);
/// Frames to drop at the end of a page: those of the last one that its granule position leaves out.
std::int64_t oggEndPadding(const OggPageEnd& page);

/// What a track of MP4 says of its end (ISO/IEC 14496-12, sections 8.6.1 and 8.6.6). Its edit list
/// counts in the movie's time scale, which is often coarse; the durations of its samples do not.
struct Mp4End {
    std::int64_t lastStart = 0;           ///< where the last sample begins, counted from the first
    std::int64_t mediaEnd = 0;            ///< where it ends by its duration
    std::optional<std::int64_t> editEnd;  ///< where the edit list ends, likewise
    std::int64_t editGrain = 0;           ///< frames in one unit of the edit list, rounded up
};
/// Frames to drop at the end of the last sample, of which the decoder gave `frames` after
/// `decoded`. Where the durations are not those of what is decoded they say nothing.
std::int64_t mp4EndPadding(const Mp4End& end, std::int64_t decoded, std::int64_t frames);

}  // namespace audio::read
