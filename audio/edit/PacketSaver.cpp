// SPDX-License-Identifier: GPL-3.0-or-later
#include <algorithm>

#include "audio/edit/EditReader.h"
#include "audio/edit/SoundWriters.h"
#include "audio/ffmpeg/PacketRate.h"
#include "audio/packets/CannotJoin.h"
#include "audio/packets/Splice.h"
#include "audio/tags/VorbisComment.h"
#include "platform/Paths.h"

namespace audio::edit {
namespace {

bool isOpus(const SaveJob& job) {
    return job.output.container == Container::Ogg;
}

std::vector<packets::Run> runsOf(const SaveJob& job) {
    std::vector<packets::Run> runs;
    for (const Segment& segment : job.list.segments()) {
        const bool untouched = segment.untouched(*job.source);
        if (!untouched && !runs.empty() && runs.back().source < 0)
            runs.back().frames += segment.frames;
        else
            runs.push_back({untouched ? segment.start : -1, segment.frames});
    }
    return runs;
}

/// The job's sound in a stream where it begins behind `skip` frames. Copies share one reader.
packets::StreamSound soundOf(const EditList& list, std::int64_t skip) {
    const auto reader = std::make_shared<EditReader>(list);
    const auto next = std::make_shared<std::int64_t>(0);
    const int channels = list.shape().channels;
    return [=, total = list.frames()](std::int64_t at, std::size_t frames, float* interleaved) {
        const std::int64_t frame = at - skip;
        const auto width = static_cast<std::size_t>(channels);
        const std::size_t before =
            std::min(frames, static_cast<std::size_t>(std::max<std::int64_t>(0, -frame)));
        std::fill_n(interleaved, before * width, 0.0F);
        const std::int64_t from = std::min(total, std::max<std::int64_t>(0, frame));
        if (from != *next) reader->seek(from);
        readFully(*reader, interleaved + before * width, frames - before, channels);
        *next = std::min(total, from + static_cast<std::int64_t>(frames - before));
    };
}

/// One save that joins packets.
class PacketSave {
  public:
    PacketSave(const SaveJob& job, platform::file::Replacement& file, Work& work)
        : job_(job),
          file_(file),
          stream_(packets::readStream(job.source->path())),
          layout_(packets::layOut(stream_.grid, runsOf(job))),
          splice_{job.source->path(),
                  stream_,
                  layout_,
                  job.output,
                  soundOf(job.list, layout_.skip),
                  [&work](std::int64_t packets) { work.advance(packets); }} {
        if (stream_.grid.frames != job.source->frames())
            throw packets::CannotJoin("Its packets do not tell the length of its sound.");
        splice_.format.bitRate = ffmpeg::measureBitRate(job.source->path());
        work.begin(layout_.packets);
    }

    bool keepsAny() const { return layout_.keepsAny(); }

    SaveReport writeOpus() {
        std::vector<std::uint8_t> comment;
        if (job_.keepTags)
            comment = tags::readVorbisComment(job_.source->path(), job_.levelFields());
        const auto sink = packets::openOpusFile(
            *stream_.parameters, stream_.grid, layout_, comment,
            [this](std::span<const std::uint8_t> bytes) { file_.write(std::as_bytes(bytes)); });
        return spliceTo(*sink, file_.temporary());
    }

    SaveReport writeMp4() {
        return writeBetweenTags(job_, file_, [this](const std::filesystem::path& path) {
            return spliceTo(*packets::openMp4File(*stream_.parameters, stream_.grid, layout_, path),
                            path);
        });
    }

  private:
    SaveReport spliceTo(packets::PacketSink& sink, const std::filesystem::path& written) {
        const std::vector<packets::Piece> pieces = packets::splice(splice_, sink);
        packets::checkSplice(splice_, pieces, written);
        SaveReport report;
        report.method = SaveMethod::Spliced;
        report.frames = layout_.frames;
        for (const packets::Piece& piece : pieces)
            if (!piece.kept())
                report.renderedFrames += (piece.end - piece.first) * stream_.grid.size;
        report.renderedFrames = std::min(report.renderedFrames, report.frames);
        return report;
    }

    const SaveJob& job_;
    platform::file::Replacement& file_;
    packets::PacketStream stream_;
    packets::Layout layout_;
    packets::SpliceJob splice_;
};

[[noreturn]] void refuse(const SaveJob& job, const std::string& reason) {
    throw platform::Error(
        "\"" + platform::toUtf8(job.source->path()) +
        "\" was not changed: the rest of its AAC sound could not be kept as it is. " + reason);
}

}  // namespace

bool joinsPackets(const SaveJob& job) {
    if (!job.sameFormat()) return false;
    const std::string& container = job.output.containerName;
    return (job.output.codecName == "opus" && container == "ogg") ||
           (job.output.codecName == "aac" && container.starts_with("mov"));
}

SaveReport writePackets(const SaveJob& job, platform::file::Replacement& file, Work& work) {
    if (!job.list.keepsAnyOf(*job.source)) return writeEncoded(job, file, work);
    std::string reason = "The finished file was not as long as it should be.";
    if (!job.encodeAll) {
        try {
            PacketSave save(job, file, work);
            if (save.keepsAny()) return isOpus(job) ? save.writeOpus() : save.writeMp4();
            return writeEncoded(job, file, work);
        } catch (const packets::CannotJoin& error) {
            reason = error.what();
        }
    }
    if (!isOpus(job)) refuse(job, reason);
    file.truncate(0);
    work.begin(job.list.frames());
    SaveReport report = writeEncoded(job, file, work);
    report.note = reason;
    return report;
}

}  // namespace audio::edit
