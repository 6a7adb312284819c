// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <filesystem>
#include <functional>

#include "audio/Format.h"
#include "audio/packets/Grid.h"
#include "audio/packets/Layout.h"
#include "audio/packets/PacketSink.h"
#include "audio/packets/StretchEncoder.h"

/// Editing Opus and AAC by encoding only the packets that an edit touches and carrying the others
/// over bit for bit.
namespace audio::packets {

/// A splice under way.
struct SpliceJob {
    std::filesystem::path source;
    const PacketStream& stream;  ///< of the source
    const Layout& layout;
    Format format;  ///< of the packets to encode, with the rate of the source's own
    StreamSound sound;
    std::function<void(std::int64_t packets)> advance;  ///< packets were written; may throw to stop
};

/// Writes the packets of the layout to a sink. Returns what was written: the layout's pieces, with
/// the seams where both sides fitted together. Throws CannotJoin where a seam was not found, and
/// what reading, encoding and writing throw; the sink is of no use then.
std::vector<Piece> splice(const SpliceJob& job, PacketSink& sink);

/// Reads a finished splice: every kept packet must be the source's, and around each seam what is
/// heard must be no farther from the sound meant than what lies between the seams, which an encoder
/// has made. Throws CannotJoin where it is not so.
void checkSplice(const SpliceJob& job, const std::vector<Piece>& pieces,
                 const std::filesystem::path& written);

}  // namespace audio::packets
