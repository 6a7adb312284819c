// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>

#include "audio/Contents.h"
#include "audio/FilePart.h"
#include "audio/Format.h"
#include "audio/ffmpeg/Ffmpeg.h"

namespace audio::ffmpeg {

/// A container opened for reading, and the one stream of sound in it. Only formats that hold sound
/// and name no other file are let in: no network, no playlist, no script, no device. One thread at
/// a time.
class Input {
  public:
    /// Throws platform::Error naming the file.
    explicit Input(const std::filesystem::path& file, FilePart part = {});

    /// The next packet of the stream of sound; false at the end. Where the file breaks off, that
    /// is its end.
    bool read(AVPacket& packet);

    /// To the last place from which everything at `timestamp` (stream's time base) can be read, or
    /// an earlier one. False where the container cannot do that.
    bool seek(std::int64_t timestamp);

    /// To a place in the file, for containers that can be entered at any.
    bool seekBytes(std::int64_t offset);

    /// Back to the first packet, by opening again where nothing else helps.
    void rewind();

    AVFormatContext& context() { return *context_; }
    const AVFormatContext& context() const { return *context_; }
    AVStream& stream() { return *stream_; }
    const AVStream& stream() const { return *stream_; }
    const AVCodecParameters& parameters() const { return *stream_->codecpar; }
    std::string containerName() const { return context_->iformat->name; }
    const std::filesystem::path& file() const { return file_; }
    FilePart part() const { return part_; }

    /// What the file says of itself.
    Format format() const;
    Contents contents() const;
    /// Frames by the container's duration, -1 where it states none.
    std::int64_t statedFrames() const;

  private:
    void open();
    void chooseStream();
    bool describedByHeader() const;

    std::filesystem::path file_;
    FilePart part_;
    InputPtr context_;
    AVStream* stream_ = nullptr;
};

}  // namespace audio::ffmpeg
