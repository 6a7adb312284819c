// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <system_error>

#include "audio/ffmpeg/BlockEncoder.h"
#include "platform/file/File.h"

namespace audio::ffmpeg {

/// One of FFmpeg's muxers: packets of one stream go in, a file comes out, written through
/// platform::file and never opened by FFmpeg. It has no tags of its own. One thread at a time.
/// Errors are platform::Error and name the file and the system's reason; the muxer is of no use
/// afterwards.
class Muxer {
  public:
    /// Creates or empties the file and writes the header of a stream that is described so; its
    /// packets are stamped in frames.
    Muxer(const std::filesystem::path& file, const Recipe& recipe,
          const AVCodecParameters& parameters);
    /// The same for the packets of an encoder.
    Muxer(const std::filesystem::path& file, const Recipe& recipe, const BlockEncoder& encoder);
    Muxer(const Muxer&) = delete;
    Muxer& operator=(const Muxer&) = delete;

    /// The next packet; its stamps are changed.
    void write(AVPacket& packet);
    /// Completes the headers and closes the file.
    void finish();

  private:
    void writeHeader(const Recipe& recipe, const AVCodecParameters& parameters);
    void require(int result, const std::string& what) const;
    static int put(void* muxer, std::uint8_t* bytes, int count);
    static std::int64_t seek(void* muxer, std::int64_t offset, int whence);

    std::filesystem::path file_;
    platform::file::File output_;
    std::int64_t position_ = 0;
    std::int64_t size_ = 0;
    std::error_code failure_;  ///< the system's, which FFmpeg does not pass on
    IoPtr io_;
    OutputPtr muxer_;  ///< writes to the one above
    AVRational timeBase_;
};

}  // namespace audio::ffmpeg
