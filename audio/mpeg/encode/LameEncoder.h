// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <span>
#include <vector>

#include "audio/mpeg/encode/EncoderSettings.h"
#include "audio/mpeg/read/LogicalFrame.h"

namespace audio::mpeg {

/// LAME's own delay and a decoder's: the first sample put in comes out at this raw index.
inline constexpr int encodeDecodeDelay = 576 + 529;

/// Encodes interleaved sound at once into frames without a tag. LAME's silent scaling of the input
/// is made up for, so that levels stay. Frame j covers raw [j·spf, (j+1)·spf), where the first
/// sample of `sound` is raw encodeDecodeDelay; the last frames, which look ahead past the end, are
/// among them. Any thread. Throws platform::Error.
std::vector<LogicalFrame> encodeWithLame(const EncoderSettings& settings,
                                         std::span<const float> sound);

}  // namespace audio::mpeg
