// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "audio/tags/Carrier.h"

namespace audio::tags {

/// AIFF and AIFF-C: every chunk of the source but those that describe and hold the sound, in the
/// source's order. Throws platform::Error where either file is no AIFF file.
void writeWithAiffChunks(const Carriage& carriage, platform::file::Replacement& file);

}  // namespace audio::tags
