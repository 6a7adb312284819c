// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>

#include "audio/codec/Decoder.h"
#include "platform/Error.h"
#include "platform/Paths.h"

namespace audio::codec {

/// One way of reading a sound file; what each function promises stands at Decoder's of the same
/// name.
class Decoder::Source {
  public:
    virtual ~Source() = default;
    const Format& format() const { return format_; }
    const Contents& contents() const { return contents_; }
    bool damaged() const { return damaged_; }

    virtual std::int64_t frames() = 0;
    virtual std::int64_t estimatedFrames() const = 0;
    virtual std::size_t read(float* interleaved, std::size_t frames) = 0;
    virtual void seek(std::int64_t frame) = 0;
    virtual std::int64_t position() const = 0;
    virtual bool hasPcm() const { return false; }
    virtual std::size_t readPcm(std::byte*, std::size_t) { return 0; }

  protected:
    Format format_;
    Contents contents_;
    bool damaged_ = false;
};

/// The sentence that names a file and what is wrong with it: "The file "x" cannot be opened."
inline platform::Error fileError(const std::filesystem::path& file, const std::string& what) {
    return platform::Error("The file \"" + platform::toUtf8(file) + "\" " + what + ".");
}

}  // namespace audio::codec
