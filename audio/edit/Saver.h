// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>

#include "audio/codec/Format.h"
#include "audio/edit/EditList.h"
#include "audio/edit/SourceMaterial.h"
#include "audio/edit/Work.h"
#include "audio/tags/LevelFields.h"
#include "platform/AtomicFile.h"

namespace audio::edit {

/// What a save writes.
struct SaveJob {
    EditList list;                                 ///< at the source's rate and channels
    std::shared_ptr<const SourceMaterial> source;  ///< the file that was loaded
    codec::Format output;
    bool keepTags = true;
    /// Where encoded sound is kept while its final place is being prepared.
    std::filesystem::path scratchFolder;

    /// Whether the file stays what it is: the source's container, codec, rate, channels and sample
    /// format.
    bool sameFormat() const;
    /// Whether no stretch of the source has kept its level, so that what the tags state about it
    /// would be wrong.
    bool levelChanged() const;
    tags::LevelFields levelFields() const {
        return levelChanged() ? tags::LevelFields::Drop : tags::LevelFields::Keep;
    }
    /// The number of frames at the output's rate.
    std::int64_t outputFrames() const;
};

/// How a save went about it.
enum class SaveMethod {
    Copied,   ///< nothing was touched: the sound's bytes are the source's
    Pcm,      ///< untouched samples copied, touched ones written
    Spliced,  ///< touched MPEG frames encoded, the others copied
    Encoded,  ///< all of the sound encoded
};

struct SaveReport {
    SaveMethod method = SaveMethod::Encoded;
    std::int64_t frames = 0;          ///< in the file that was written
    std::int64_t renderedFrames = 0;  ///< how many of them are not copies of the source's
    std::string note;  ///< why not a cheaper method, where there is one; may be empty
};

/// Writes the job's sound and metadata into the temporary of `file`, complete but for commit().
/// Decoding, effects and encoding run side by side. Throws platform::Error where the format cannot
/// be written or something in the file could not be carried over, and whatever reading throws.
SaveReport writeSound(const SaveJob& job, platform::AtomicFile& file, Work& work);

/// Opens a finished file and throws platform::Error where it does not hold what was to be written.
void verifySound(const std::filesystem::path& written, const SaveJob& job,
                 const SaveReport& report);

}  // namespace audio::edit
