// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <filesystem>

#include "audio/mpeg/read/FrameScanner.h"

/// How long the sound of a file is by its own structure, where a tag library would believe headers
/// that lie or would not find them. In milliseconds, -1 where nothing tells; near, not exact.
/// Nothing is decoded and little is read. They throw platform::Error where the file cannot be read;
/// any thread.
namespace audio::tags {

/// MPEG audio, of which nothing has been scanned yet. By the Info or Xing tag, whose claim is held
/// against the bytes that are there; without one by the first frame's bit-rate where samples from
/// all over the file have it too, else by counting headers (64 MB of them at most).
std::int64_t mpegDuration(platform::file::WindowReader& reader, mpeg::FrameScanner& scanner);

/// WAVE: by the bytes of sound; the fact chunk is not asked.
std::int64_t waveDuration(const std::filesystem::path& file);

/// ASF, with moving pictures or without: the stated play time, as far as its packets are there.
std::int64_t asfDuration(const std::filesystem::path& file);

/// FLAC: by the stated number of samples; where none is stated (a stream that was never finished)
/// by the number of the last frame.
std::int64_t flacDuration(const std::filesystem::path& file);

}  // namespace audio::tags
