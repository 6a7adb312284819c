// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include <QStringList>

#include "tests/support/Sound.h"

/// Ogg Vorbis files of many makers, and what two foreign decoders hear in them.
namespace vorbis_files {

/// Plucked notes over a chord, with strokes of noise: both sizes of blocks come.
support::Sound music(std::size_t frames, int channels, int rate, unsigned seed = 1);
void writeWave(const support::Sound& sound, const std::filesystem::path& file);

/// Encodes with the program oggenc; false where it has no such setting.
bool oggenc(const support::Sound& sound, const std::filesystem::path& file,
            const QStringList& options);
/// Encodes with the program ffmpeg.
bool ffmpeg(const support::Sound& sound, const std::filesystem::path& file,
            const QStringList& options);

/// The program oggdec: 16-bit samples, and those left out that the stream says to drop.
std::vector<std::int16_t> decodeWithOggdec(const std::filesystem::path& file);

/// A packet and the granule position at its end.
struct Packet {
    std::string bytes;
    std::int64_t granule = -1;  ///< -1 where the page says nothing of it
    bool last = false;
};
/// All packets with their headers, as libogg finds them; its checksums must be right.
std::vector<Packet> packetsOf(const std::filesystem::path& file);
/// Puts packets into pages; each that has a granule position ends its page.
void writePackets(const std::vector<Packet>& packets, const std::filesystem::path& file);

/// Counts all granule positions of the sound `frames` on, or back where that is negative: then so
/// many are to be dropped at the start.
void moveGranules(const std::filesystem::path& file, std::int64_t frames);

}  // namespace vorbis_files
