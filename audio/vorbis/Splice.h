// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <span>
#include <vector>

#include "audio/vorbis/CannotSplice.h"
#include "audio/vorbis/Layout.h"
#include "audio/vorbis/PacketIndex.h"
#include "audio/vorbis/SoundWindow.h"

/// Writing Ogg Vorbis so that only touched sound is encoded.
///
/// A packet depends on nothing but the set-up header and, where windows overlap, on its two
/// neighbours. So an editor hands over the file it was given, that file's index, the new sound as
/// an ordered list of segments and a way to read it; what comes out is a complete Ogg file. A
/// packet whose window sees nothing but source sound in its old place is carried over bit for bit;
/// the others are coded anew in the source's own blocks with the source's own set-up, which
/// libvorbis has made alike since 2004 for the same rate, channels and quality. Where the set-up
/// header is another one, packets can still be left away and silent ones added.
///
///     try {
///         const PacketIndex index(file);
///         const SpliceOutcome outcome = splice(file, index, plan, sound, sink, {});
///         checkSplice(file, index, written, outcome.layout, sound);
///     } catch (const CannotSplice&) {
///         // encode all of it, into an empty file
///     }
namespace audio::vorbis {

struct SpliceOptions {
    /// The comment header packet, written as it stands. Empty: one with only a vendor text.
    PacketBytes comment;
    int threads = 0;  ///< encoding threads, 0 = one for each core; never changes the bytes
    /// 0 to 1, on the calling thread; may throw to stop.
    std::function<void(double)> progress;
};

/// What was done.
struct SpliceOutcome {
    Layout layout;
    std::int64_t packets = 0;
    std::int64_t keptPackets = 0;  ///< of these, carried over bit for bit
    std::int64_t newFrames = 0;    ///< of sound, that the other packets complete
};

/// Writes the plan's sound, keeping all packets that it leaves as they are. `sink` gets the bytes
/// of the file in order. Throws CannotSplice where that cannot be (what the sink was given is
/// worthless then), platform::Error where the file cannot be read.
SpliceOutcome splice(const std::filesystem::path& file, const PacketIndex& index,
                     const std::vector<Segment>& plan, const SoundReader& sound,
                     const std::function<void(std::span<const std::uint8_t>)>& sink,
                     const SpliceOptions& options);

/// Reads the finished file again: its length and headers, every kept packet byte for byte, and at
/// both ends of every stretch of new packets the decoded sound, which has to be the source's to the
/// last bit up to the first new window, and near to the sound that was meant inside. Throws
/// CannotSplice where anything is not as it should be.
void checkSplice(const std::filesystem::path& file, const PacketIndex& index,
                 const std::filesystem::path& written, const Layout& layout,
                 const SoundReader& sound);

}  // namespace audio::vorbis
