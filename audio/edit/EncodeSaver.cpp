// SPDX-License-Identifier: GPL-3.0-or-later
#include <algorithm>
#include <cmath>

#include "audio/edit/PositionMap.h"
#include "audio/edit/SoundFeed.h"
#include "audio/edit/SoundWriters.h"
#include "audio/ffmpeg/PacketRate.h"
#include "audio/tags/Carrier.h"
#include "audio/tags/CommonTags.h"
#include "audio/tags/VorbisComment.h"
#include "audio/write/Encoder.h"
#include "platform/Error.h"
#include "platform/Paths.h"
#include "platform/SystemError.h"
#include "platform/file/Temporary.h"

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

SaveReport encodeTo(const std::filesystem::path& path, const SaveJob& job, const Format& format,
                    Work& work) {
    write::Encoder encoder(path, format, optionsFor(job));
    SaveReport report;
    report.renderedFrames = SoundFeed(job, encoder, work).run();
    encoder.finish();
    report.frames = write::Encoder::storedFrames(job.output, job.outputFrames());
    if (job.output.codec == Codec::Pcm && job.sameFormat())
        report.method = report.renderedFrames == 0 ? SaveMethod::Copied : SaveMethod::Pcm;
    return report;
}

/// A file in the folder for scratch files, or where that is empty in the system's own.
void createScratch(platform::file::Temporary& scratch, std::filesystem::path folder) {
    std::error_code error;
    if (folder.empty()) folder = std::filesystem::temp_directory_path(error);
    std::error_code ignored;
    std::filesystem::create_directories(folder, ignored);
    if (!error && scratch.create(folder, ".part", error)) return;
    throw platform::systemError(
        "No scratch file can be created in \"" + platform::toUtf8(folder) + "\"", error);
}

/// A few stretches of a list from all over it; the whole of a short one.
EditList sample(const EditList& list) {
    constexpr std::int64_t parts = 3;
    const std::int64_t length = std::int64_t{10} * list.shape().sampleRate;
    if (list.frames() <= 2 * parts * length) return list;
    EditList sampled = list;
    const std::int64_t gap = (list.frames() - parts * length) / (parts + 1);
    for (std::int64_t part = 0; part < parts; ++part)
        sampled.erase({part * length, part * length + gap});
    sampled.erase({parts * length, sampled.frames()});
    return sampled;
}

/// Encoders take up to a few per cent more than they are asked for, and more again at every save.
/// What this one makes of a sample of the sound tells what to ask for.
std::int64_t rateToAskFor(std::int64_t wanted, const SaveJob& job, const Format& format) {
    SaveJob trial = job;
    trial.list = sample(job.list);
    platform::file::Temporary scratch;
    createScratch(scratch, job.scratchFolder);
    Work unseen;
    encodeTo(scratch.path(), trial, format, unseen);
    const auto got = double(ffmpeg::measureBitRate(scratch.path()));
    const double excess = got > 0 ? std::clamp(got / double(wanted), 0.8, 1.25) : 1;
    return std::llround(double(wanted) / excess);
}

/// The rate that a file states, or that its size suggests, wanders from save to save; that of its
/// own packets does not.
Format formatFor(const SaveJob& job) {
    Format format = job.output;
    const bool lossy = format.sampleType == pcm::SampleType::Lossy;
    if (!lossy || format.codec != Codec::Other || !job.sameFormat()) return format;
    const std::int64_t measured = ffmpeg::measureBitRate(job.source->path());
    if (measured <= 0) return format;
    format.bitRate = measured;
    format.bitRate = rateToAskFor(measured, job, format);
    return format;
}

// The sound is written beside, in the folder for scratch files, and put between the metadata.
SaveReport carryAround(const SaveJob& job, tags::Carrier carry, platform::file::Replacement& file,
                       const std::function<SaveReport(const std::filesystem::path&)>& writeSound) {
    platform::file::Temporary scratch;
    createScratch(scratch, job.scratchFolder);
    const SaveReport report = writeSound(scratch.path());
    tags::Carriage carriage;
    carriage.encoded = scratch.path();
    carriage.source = job.source->path();
    carriage.levels = job.levelFields();
    carriage.sampleRate = job.output.sampleRate;
    carriage.moved = PositionMap(job.list, *job.source, job.source->frames());
    carry(carriage, file);
    return report;
}

}  // namespace

SaveReport writeBetweenTags(
    const SaveJob& job, platform::file::Replacement& file,
    const std::function<SaveReport(const std::filesystem::path& path)>& writeSound) {
    const bool sameKind = job.output.containerName == job.source->format().containerName;
    const tags::Carrier carry = tags::carrierFor(job.output);
    if (job.keepTags && sameKind && carry) return carryAround(job, carry, file, writeSound);
    const SaveReport report = writeSound(file.temporary());
    const bool carried = sameContainer(job, Container::Wav) ||
                         (sameContainer(job, Container::Ogg) && job.output.codec == Codec::Vorbis);
    if (!job.keepTags || carried) return report;
    if (!tags::copyCommonTags(job.source->path(), file.temporary(), job.levelFields()) &&
        job.sameFormat() && ffmpeg::hasFields(job.source->path()))
        throw platform::Error("\"" + platform::toUtf8(job.source->path()) +
                              "\" cannot be saved: the tags of its format (" +
                              job.source->format().containerName + ") cannot be carried over.");
    return report;
}

SaveReport writeEncoded(const SaveJob& job, platform::file::Replacement& file, Work& work) {
    return writeBetweenTags(job, file, [&](const std::filesystem::path& path) {
        return encodeTo(path, job, formatFor(job), work);
    });
}

}  // namespace audio::edit
