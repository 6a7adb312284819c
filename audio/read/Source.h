// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdint>

#include "audio/FileError.h"
#include "audio/read/Decoder.h"

namespace audio::read {

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

}  // namespace audio::read
