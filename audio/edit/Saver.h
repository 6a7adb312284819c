// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>

#include "audio/Format.h"
#include "audio/edit/EditList.h"
#include "audio/edit/SourceMaterial.h"
#include "audio/edit/Work.h"
#include "audio/tags/LevelFields.h"
#include "platform/file/Replacement.h"

namespace audio::edit {

/// What a save writes.
struct SaveJob {
    EditList list;                                 ///< at the source's rate and channels
    std::shared_ptr<const SourceMaterial> source;  ///< the file that was loaded
    Format output;
    bool keepTags = true;
    bool encodeAll = false;  ///< never join frames or packets, encode all of the sound
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
    Spliced,  ///< touched MPEG frames, Vorbis, Opus or AAC packets encoded, the others copied
    Encoded,  ///< all of the sound encoded
};

struct SaveReport {
    SaveMethod method = SaveMethod::Encoded;
    std::int64_t frames = 0;          ///< in the file that was written
    std::int64_t renderedFrames = 0;  ///< how many of them are not copies of the source's
    std::int64_t packets = 0;         ///< of Vorbis, where they were joined
    std::int64_t newPackets = 0;      ///< how many of them are not the source's
    bool overSource = false;          ///< the file that was loaded is the one that was replaced
    bool verified = false;            ///< it has been opened again already
    platform::file::Stamp written;    ///< of the file that now lies at the target
    std::string note;    ///< why not a cheaper method, where there is one; may be empty
    std::string notice;  ///< what was asked for and left undone, for the user; may be empty
};

/// Writes the job's sound and metadata to a temporary beside the target, opens it again to see that
/// it holds what it should, and puts it in the target's place. Decoding, effects and encoding run
/// side by side. The files of the job's materials are closed when the target is replaced; a stop is
/// heard up to that point and not after it. Throws platform::Error naming the target where the
/// format cannot be written or something in the file could not be carried over, and whatever
/// reading throws; the target is then as it was.
SaveReport save(const SaveJob& job, const std::filesystem::path& target, Work& work);

}  // namespace audio::edit
