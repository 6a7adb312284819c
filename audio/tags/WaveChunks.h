// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "audio/tags/Carrier.h"

namespace audio::tags {

/// WAVE files whose sound is compressed (A-law, µ-law ...): every chunk of the source but those
/// that describe and hold the sound, in the source's order.
void writeWithWaveChunks(const Carriage& carriage, platform::file::Replacement& file);

}  // namespace audio::tags
