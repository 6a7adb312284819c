// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <memory>
#include <optional>

#include <QString>

#include "audio/edit/EditList.h"
#include "audio/edit/EffectMaterial.h"
#include "audio/edit/Saver.h"
#include "audio/edit/SourceMaterial.h"

namespace effects {

/// A range of frames as it was set, inside the sound or not.
struct Selection {
    bool active = false;
    std::int32_t start = 0;
    std::int32_t end = 0;
};

/// The sound that is being edited: a file and what is to become of it.
struct Sound {
    std::shared_ptr<const audio::edit::SourceMaterial> source;
    audio::edit::EditList list;

    explicit operator bool() const { return source != nullptr; }
    std::int32_t length() const { return static_cast<std::int32_t>(list.frames()); }
};

/// Opens a file for editing. Throws platform::Error.
Sound openSound(const QString& path);

/// Opens a file to be mixed into a sound of this shape.
audio::edit::MixMaterial::Other openForMix(const QString& path, audio::edit::Shape shape,
                                           float percent);

/// PCM in a WAV file, of 8 or 16 bits. Throws platform::Error for anything else.
audio::Format wavFormat(std::int32_t rate, std::int32_t channels, std::int32_t bits);

/// The part of an active selection that lies inside a sound of this length. Throws platform::Error
/// where there is none.
audio::FrameRange rangeInside(const Selection& selection, std::int64_t length);

/// milliseconds × rate / 1000, to the nearest frame. Throws platform::Error beyond 32 bits.
std::int32_t frameAt(std::int32_t milliseconds, int sampleRate);

/// Throws platform::Error where a level is not a number from 0 up.
void requireLevel(float percent);

}  // namespace effects
