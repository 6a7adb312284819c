// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "audio/edit/Saver.h"

/// The ways of saving; private to this folder. Each writes sound and metadata as writeSound() says.
namespace audio::edit {

/// Any format: PCM of the source's own kind is copied where it is untouched; everything else is
/// rendered and encoded.
SaveReport writeEncoded(const SaveJob& job, platform::AtomicFile& file, Work& work);

}  // namespace audio::edit
