// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "audio/tags/Carrier.h"

namespace audio::tags {

/// WavPack: the tags around the sound. Its blocks can keep what stood around the sound in the file
/// that was packed, for the day it is unpacked; the plain head of a WAVE file follows from the
/// sound and is left out. Throws platform::Error, naming the first of them, where other chunks are
/// kept: they are not carried.
void writeWithWavPackTags(const Carriage& carriage, platform::file::Replacement& file);

}  // namespace audio::tags
