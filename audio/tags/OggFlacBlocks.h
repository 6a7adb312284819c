// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "audio/tags/Carrier.h"

namespace audio::tags {

/// FLAC in Ogg (RFC 9639, section 10.1), whose metadata blocks are packets: carried as those of
/// FLAC without Ogg. Throws platform::Error where the packets are not such blocks.
void writeWithOggFlacBlocks(const Carriage& carriage, platform::file::Replacement& file);

}  // namespace audio::tags
