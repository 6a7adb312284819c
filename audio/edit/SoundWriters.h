// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "audio/edit/Saver.h"

/// The ways of saving; private to this folder. Each writes the job's sound and metadata into the
/// temporary of `file`, complete but for commit().
namespace audio::edit {

/// The source's own file, byte for byte, where nothing was changed.
SaveReport writeCopy(const SaveJob& job, platform::file::Replacement& file, Work& work);

/// MP3 and MP2: frames that no edit touched are carried over, the others encoded on all cores.
/// Where frames cannot be joined, and for sound from other formats, all of it is encoded.
SaveReport writeMpeg(const SaveJob& job, platform::file::Replacement& file, Work& work);

/// Any other format: PCM of the source's own kind is copied where it is untouched; everything else
/// is rendered and encoded.
SaveReport writeEncoded(const SaveJob& job, platform::file::Replacement& file, Work& work);

}  // namespace audio::edit
