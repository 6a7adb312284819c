// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdint>

#include "audio/FileError.h"
#include "audio/write/Encoder.h"

namespace audio::write {

/// One way of writing a sound file; what each function promises stands at Encoder's of the same
/// name.
class Encoder::Sink {
  public:
    virtual ~Sink() = default;
    virtual void write(const float* interleaved, std::size_t frames) = 0;
    virtual void writePcm(const std::byte*, std::size_t) {}
    virtual void copyPcm(std::int64_t, std::int64_t, const std::function<void(std::int64_t)>&) {}
    virtual void finish() = 0;
};

}  // namespace audio::write
