// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <filesystem>
#include <functional>

#include "audio/edit/Saver.h"

/// The ways of saving; private to this folder. Each writes the job's sound and metadata into the
/// temporary of `file`, complete but for commit().
namespace audio::edit {

/// The source's own file, byte for byte, where nothing was changed.
SaveReport writeCopy(const SaveJob& job, platform::file::Replacement& file, Work& work);

/// MP3 and MP2: frames that no edit touched are carried over, the others encoded on all cores.
/// Where frames cannot be joined, and for sound from other formats, all of it is encoded.
SaveReport writeMpeg(const SaveJob& job, platform::file::Replacement& file, Work& work);

/// Whether the job is one for writePackets(): Opus in Ogg or AAC in MP4 that stays what it is.
bool joinsPackets(const SaveJob& job);

/// Opus and AAC: packets that no edit touched are carried over, the others encoded, and the result
/// compared with what was meant. Where packets cannot be joined, all of Opus is encoded, and AAC is
/// refused: a whole file through another encoder would lose more than the edit is worth.
SaveReport writePackets(const SaveJob& job, platform::file::Replacement& file, Work& work);

/// Ogg Vorbis: packets that no edit touched are carried over, the others encoded, and the result
/// compared with what was meant. Where packets cannot be joined, all of it is encoded.
SaveReport writeVorbis(const SaveJob& job, platform::file::Replacement& file, Work& work);

/// Any other format: PCM of the source's own kind is copied where it is untouched; everything else
/// is rendered and encoded.
SaveReport writeEncoded(const SaveJob& job, platform::file::Replacement& file, Work& work);

/// Lets `writeSound` write the sound alone into a file, and puts the source's metadata around it,
/// byte for byte where the format lets that be done.
SaveReport writeBetweenTags(
    const SaveJob& job, platform::file::Replacement& file,
    const std::function<SaveReport(const std::filesystem::path& path)>& writeSound);

}  // namespace audio::edit
