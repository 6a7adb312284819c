// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "audio/tags/Carrier.h"

namespace audio::tags {

/// FLAC: every metadata block of the source but the description of the stream and the seek table,
/// in the source's order: comments, pictures wherever they lie, applications, unknown ones; and the
/// tags of other kinds around the stream. The places of a cue sheet move with the sound. Throws
/// platform::Error where the blocks do not lead to the sound.
void writeWithFlacBlocks(const Carriage& carriage, platform::file::Replacement& file);

}  // namespace audio::tags
