// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/edit/ScratchFile.h"
#include "audio/edit/SoundFeed.h"
#include "audio/edit/SoundWriters.h"
#include "audio/tags/AsfHeader.h"
#include "audio/tags/CommonTags.h"
#include "audio/tags/VorbisComment.h"
#include "audio/write/Encoder.h"
#include "platform/Error.h"
#include "platform/Paths.h"

namespace audio::edit {
namespace {

/// Whether source and output keep their metadata in the same place, so that it is carried over as
/// it lies there.
bool sameContainer(const SaveJob& job, Container container) {
    return job.output.container == container && job.source->format().container == container;
}

write::EncoderOptions optionsFor(const SaveJob& job) {
    write::EncoderOptions options;
    options.expectedFrames = job.outputFrames();
    if (sameContainer(job, Container::Wav)) {
        options.waveModel = job.source->path();
        options.copyWaveChunks = job.keepTags;
    }
    if (sameContainer(job, Container::Ogg) && job.output.codec == Codec::Vorbis && job.keepTags)
        options.vorbisComment = tags::readVorbisComment(job.source->path(), job.levelFields());
    return options;
}

SaveReport encodeTo(const std::filesystem::path& path, const SaveJob& job, Work& work) {
    write::Encoder encoder(path, job.output, optionsFor(job));
    SaveReport report;
    report.renderedFrames = SoundFeed(job, encoder, work).run();
    encoder.finish();
    report.frames = write::Encoder::storedFrames(job.output, job.outputFrames());
    if (job.output.codec == Codec::Pcm && job.sameFormat())
        report.method = report.renderedFrames == 0 ? SaveMethod::Copied : SaveMethod::Pcm;
    return report;
}

// ASF keeps its metadata in front: the sound is encoded beside, in the folder for scratch files.
SaveReport encodeAsf(const SaveJob& job, platform::file::Replacement& file, Work& work) {
    const ScratchFile scratch(job.scratchFolder);
    const SaveReport report = encodeTo(scratch.path(), job, work);
    tags::writeWithAsfMetadata(scratch.path(), job.source->path(), job.levelFields(), file);
    return report;
}

}  // namespace

SaveReport writeEncoded(const SaveJob& job, platform::file::Replacement& file, Work& work) {
    if (job.keepTags && sameContainer(job, Container::Asf)) return encodeAsf(job, file, work);
    const SaveReport report = encodeTo(file.temporary(), job, work);
    const bool carried = sameContainer(job, Container::Wav) ||
                         (sameContainer(job, Container::Ogg) && job.output.codec == Codec::Vorbis);
    if (!job.keepTags || carried) return report;
    if (!tags::copyCommonTags(job.source->path(), file.temporary(), job.levelFields()) &&
        job.sameFormat())
        throw platform::Error("\"" + platform::toUtf8(job.source->path()) +
                              "\" cannot be saved: the tags of its format (" +
                              job.source->format().containerName + ") cannot be carried over.");
    return report;
}

}  // namespace audio::edit
