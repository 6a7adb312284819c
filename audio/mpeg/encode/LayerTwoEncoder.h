// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <span>
#include <vector>

#include "audio/mpeg/encode/EncoderSettings.h"
#include "audio/mpeg/read/LogicalFrame.h"

namespace audio::mpeg {

/// Encodes interleaved sound at once into Layer II frames with FFmpeg; `main` of each is all that
/// follows its header. Its first sample is raw 481. Any thread. Throws platform::Error.
std::vector<LogicalFrame> encodeLayerTwo(const EncoderSettings& settings,
                                         std::span<const float> sound);

}  // namespace audio::mpeg
