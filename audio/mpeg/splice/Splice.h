// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "audio/mpeg/encode/EncoderSettings.h"
#include "audio/mpeg/read/FrameIndex.h"
#include "platform/Error.h"

/// Writing MPEG audio so that only touched sound is encoded.
///
/// An editor hands over the file it was given, that file's index, and the whole new sound as an
/// ordered list of segments; what comes out is a complete MPEG stream, with its info frame, without
/// any tags around it (those it writes itself, before and behind):
///
///     FrameIndex index(file);
///     std::vector<Segment> plan = {Segment::rendered(5 * 44100, fadedSound),
///                                  Segment::source(5 * 44100, index.gaplessLength() - 5 * 44100)};
///     try {
///         splice(file, index, plan, sink, {});
///     } catch (const CannotSplice&) {
///         // start the target afresh, with encode()
///         encode(settingsOf(file, index), wholeSound, length, sink, {});
///     }
///
/// Lengths and positions are samples per channel, of the gapless sound. A frame that holds nothing
/// but source sound in its old place on the frame grid is carried over bit for bit: decoded, the
/// sound of a source segment is exactly the old one but for the few frames beside a rendered one
/// that overlap it. The delay that the info frame states takes up what the grid cannot, so that a
/// trimmed or lengthened start costs nothing; after a cut or an insertion further inside that is no
/// multiple of a frame, the shorter side is encoded anew. Layer II has no info frame: there only
/// shifts by whole frames keep the frames, and a length is rounded up to whole frames.
namespace audio::mpeg {

/// This sound cannot be put together from frames of the source; its text says why, in a sentence
/// that names the file. What the sink was given is worthless then: begin anew with encode().
class CannotSplice : public platform::Error {
  public:
    using platform::Error::Error;
};

/// Where the stream goes. Called on the thread that called splice(), encode() or gain(); what it
/// throws ends the call.
class StreamSink {
  public:
    virtual ~StreamSink() = default;
    virtual void write(std::span<const std::uint8_t> bytes) = 0;
    /// Overwrites bytes written before, `offset` counted from the first one written: at the very
    /// end, the info frame.
    virtual void rewrite(std::int64_t offset, std::span<const std::uint8_t> bytes) = 0;
};

/// Fills the next `samples` samples of sound, interleaved, full scale ±1 (louder is not limited).
/// Called on the thread that called splice() or encode(), each sample asked for once, in order, in
/// pieces of any size. What it throws ends the call.
using SoundCallback = std::function<void(float* interleaved, std::size_t samples)>;

/// A part of the new sound.
struct Segment {
    std::int64_t length = 0;
    std::int64_t sourceStart = 0;  ///< gapless sample of the source; only without `sound`
    SoundCallback sound;           ///< rendered sound in the source's rate and channels

    static Segment source(std::int64_t start, std::int64_t length) { return {length, start, {}}; }
    static Segment rendered(std::int64_t length, SoundCallback sound) {
        return {length, 0, std::move(sound)};
    }
};

struct SpliceOptions {
    int threads = 0;  ///< encoding threads, 0 = one for each core; never changes the bytes
    /// The level changed: the peak and gain that the info frame states are cleared.
    bool levelChanged = false;
    /// 0 to 1, on the calling thread, every 20 ms or so; may throw to stop.
    std::function<void(double)> progress;
};

/// What was done.
struct SpliceOutcome {
    std::int64_t bytes = 0;
    std::int64_t frames = 0;      ///< of sound
    std::int64_t keptFrames = 0;  ///< of these, carried over bit for bit
    std::int64_t rawLength = 0;
    std::int64_t gaplessStart = 0;  ///< raw index of the first sample
    /// Frames [first, first + count) of the new stream that were encoded.
    struct Encoded {
        std::int64_t first = 0;
        std::int64_t count = 0;
    };
    std::vector<Encoded> encoded;
};

/// Why the file can only be encoded whole (free format, a change inside, lost sync, Layer I, …), as
/// a sentence that names it; nothing where it can be spliced.
std::optional<std::string> whyNotSpliceable(const std::filesystem::path& file,
                                            const FrameIndex& index);

/// How new frames for this file are encoded: its layer, rate, mode and bit-rate or quality. Where a
/// variable bit-rate comes without a word on its quality, some of the file's sound is encoded until
/// it takes as much room as there. Throws platform::Error where the file cannot be read.
EncoderSettings settingsOf(const std::filesystem::path& file, const FrameIndex& index);

/// Writes the plan's sound, keeping all frames that it leaves as they are. Throws CannotSplice
/// where frames cannot be joined (then encode() can), platform::Error where the file cannot be
/// read.
SpliceOutcome splice(const std::filesystem::path& file, const FrameIndex& index,
                     const std::vector<Segment>& plan, StreamSink& sink,
                     const SpliceOptions& options);

/// Encodes `length` samples on all cores, with an info frame (Layer III) that makes the length
/// exact.
SpliceOutcome encode(const EncoderSettings& settings, const SoundCallback& sound,
                     std::int64_t length, StreamSink& sink, const SpliceOptions& options);

/// The number of steps by which every frame's gain has to change for exactly `percent` of the level
/// (50 → −4, 200 → 4): each is a factor of the fourth root of two, in Layer II of the cube root.
/// Nothing where no whole number gives it exactly.
std::optional<int> exactGainSteps(double percent, int layer = 3);

/// Writes the whole sound with its level changed by so many steps, without encoding: every other
/// bit stays. Throws CannotSplice where a frame's gain would leave its range.
SpliceOutcome gain(const std::filesystem::path& file, const FrameIndex& index, int steps,
                   StreamSink& sink, const SpliceOptions& options);

}  // namespace audio::mpeg
