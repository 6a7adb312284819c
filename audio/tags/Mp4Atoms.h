// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "audio/tags/Carrier.h"

namespace audio::tags {

/// MP4: the user data of the movie and of its track (the list of iTunes' fields, cover art,
/// whatever a program has put there), metadata of the movie itself, and the boxes that programs put
/// beside it, byte for byte. Chapters in the user data move with the sound. Throws platform::Error
/// where the boxes of either file make no sense.
void writeWithMp4Atoms(const Carriage& carriage, platform::file::Replacement& file);

}  // namespace audio::tags
