// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <filesystem>
#include <memory>
#include <mutex>
#include <vector>

#include "audio/edit/Material.h"
#include "audio/read/Decoder.h"
#include "platform/file/FileId.h"

namespace audio::edit {

/// The bits of a format's integers; 0 where it has none. PCM has room for whole bytes.
int integerBits(const Format& format);

/// The sound of a file on disk, at its own rate and channels. The file must stay as it was when it
/// was opened: a reader opened after it has changed throws.
class SourceMaterial : public Material {
  public:
    /// Opens and counts. Throws platform::Error naming file and reason, also where the sound is
    /// longer than 2^31 - 1 frames or cannot be decoded.
    explicit SourceMaterial(const std::filesystem::path& file);
    ~SourceMaterial() override;

    std::int64_t frames() const override { return frames_; }
    int integerBits() const override { return edit::integerBits(format_); }
    bool seeksFast() const override { return format_.container != Container::Other; }
    std::unique_ptr<FrameReader> open() const override;
    void closeFiles() const override;

    const std::filesystem::path& path() const { return path_; }
    const Format& format() const { return format_; }
    const Contents& contents() const { return contents_; }
    Shape shape() const { return {format_.sampleRate, format_.channels}; }

    /// Of the file as it was opened.
    const platform::file::Stamp& stamp() const { return stamp_; }
    /// Throws platform::Error where the file is no longer the one that was opened.
    void requireUnchanged() const;
    /// A decoder of the file, at any position. Give it back where it can serve again.
    std::unique_ptr<read::Decoder> takeDecoder() const;
    void giveBack(std::unique_ptr<read::Decoder> decoder) const;

  private:
    void testDecode(read::Decoder& decoder) const;

    std::filesystem::path path_;
    platform::file::Stamp stamp_;
    Format format_;
    Contents contents_;
    std::int64_t frames_ = 0;
    mutable std::mutex mutex_;  // guards idle_
    mutable std::vector<std::unique_ptr<read::Decoder>> idle_;
};

}  // namespace audio::edit
