// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>

#include <QString>

#include "audio/output/OutputDevice.h"

namespace player {

/// One open sound file, as the player needs it: see audio::read::Decoder, whose meanings these
/// are. One thread at a time. All but the first three throw platform::Error.
class SoundSource {
  public:
    virtual ~SoundSource() = default;
    virtual int rate() const = 0;
    virtual int channels() const = 0;
    virtual std::int64_t position() const = 0;
    virtual std::int64_t frames() = 0;
    virtual std::size_t read(float* interleaved, std::size_t frames) = 0;
    virtual void seek(std::int64_t frame) = 0;
};

/// Opens a local file. Throws platform::Error.
using OpenSound = std::function<std::unique_ptr<SoundSource>(const QString& path)>;

/// Opens with audio::read::Decoder.
std::unique_ptr<SoundSource> openWithDecoder(const QString& path);

/// What an engine is put together from.
struct EngineParts {
    audio::output::OpenDevice openDevice;
    OpenSound openSound;
};

}  // namespace player
