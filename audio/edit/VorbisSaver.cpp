// SPDX-License-Identifier: GPL-3.0-or-later
#include <memory>
#include <vector>

#include "audio/edit/EditReader.h"
#include "audio/edit/SoundWriters.h"
#include "audio/tags/VorbisComment.h"
#include "audio/vorbis/Splice.h"

namespace audio::edit {
namespace {

/// The job's sound from any frame on. Copies of it share one reader.
vorbis::SoundReader soundOf(const EditList& list) {
    struct State {
        explicit State(const EditList& all) : reader(all), channels(all.shape().channels) {}
        EditReader reader;
        int channels;
        std::int64_t next = 0;
    };
    const auto state = std::make_shared<State>(list);
    return [state](std::int64_t frame, std::size_t frames, float* interleaved) {
        if (frame != state->next) state->reader.seek(frame);
        readFully(state->reader, interleaved, frames, state->channels);
        state->next = frame + static_cast<std::int64_t>(frames);
    };
}

/// Untouched runs of the source as they are, everything between them as sound to be made.
std::vector<vorbis::Segment> planOf(const SaveJob& job) {
    std::vector<vorbis::Segment> plan;
    for (const Segment& segment : job.list.segments()) {
        if (segment.silent())
            plan.push_back(vorbis::Segment::silence(segment.frames));
        else if (segment.untouched(*job.source))
            plan.push_back(vorbis::Segment::source(segment.start, segment.frames));
        else if (segment.material.get() == job.source.get())
            plan.push_back(vorbis::Segment::rendered(segment.frames, segment.start));
        else
            plan.push_back(vorbis::Segment::rendered(segment.frames));
    }
    return plan;
}

SaveReport joinPackets(const SaveJob& job, platform::file::Replacement& file, Work& work) {
    const std::filesystem::path& path = job.source->path();
    const vorbis::PacketIndex index(path);
    if (index.frames() != job.source->frames())
        throw vorbis::CannotSplice("Its packets do not tell the length of its sound.");
    constexpr std::int64_t steps = 10'000;
    std::int64_t done = 0;
    work.begin(steps);
    vorbis::SpliceOptions options;
    if (job.keepTags) options.comment = tags::readVorbisComment(path, job.levelFields());
    options.progress = [&](double part) {
        const auto now = static_cast<std::int64_t>(part * static_cast<double>(steps));
        work.advance(now - done);
        done = now;
    };
    const vorbis::SoundReader sound = soundOf(job.list);
    const vorbis::SpliceOutcome outcome = vorbis::splice(
        path, index, planOf(job), sound,
        [&file](std::span<const std::uint8_t> bytes) { file.write(std::as_bytes(bytes)); },
        options);
    vorbis::checkSplice(path, index, file.temporary(), outcome.layout, sound);
    SaveReport report;
    report.method = SaveMethod::Spliced;
    report.frames = job.list.frames();
    report.renderedFrames = outcome.newFrames;
    report.packets = outcome.packets;
    report.newPackets = outcome.packets - outcome.keptPackets;
    return report;
}

}  // namespace

SaveReport writeVorbis(const SaveJob& job, platform::file::Replacement& file, Work& work) {
    const bool joins = job.sameFormat() && !job.encodeAll && job.list.keepsAnyOf(*job.source);
    if (!joins) return writeEncoded(job, file, work);
    try {
        return joinPackets(job, file, work);
    } catch (const vorbis::CannotSplice& error) {
        file.truncate(0);
        work.begin(job.list.frames());
        SaveReport report = writeEncoded(job, file, work);
        report.note = error.what();
        return report;
    }
}

}  // namespace audio::edit
