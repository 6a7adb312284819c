// SPDX-License-Identifier: GPL-3.0-or-later
#include <algorithm>
#include <optional>
#include <vector>

#include "audio/edit/EditReader.h"
#include "audio/edit/ReadAhead.h"
#include "audio/edit/Resampled.h"
#include "audio/edit/SoundWriters.h"
#include "audio/mpeg/splice/Splice.h"
#include "audio/tags/CommonTags.h"
#include "audio/tags/MpegTags.h"
#include "platform/Error.h"

namespace audio::edit {
namespace {

/// The part of the temporary that the MPEG stream fills.
class FileSink : public mpeg::StreamSink {
  public:
    explicit FileSink(platform::file::Replacement& file) : file_(file), start_(file.position()) {}

    void write(std::span<const std::uint8_t> bytes) override { file_.write(std::as_bytes(bytes)); }
    void rewrite(std::int64_t offset, std::span<const std::uint8_t> bytes) override {
        const std::int64_t end = file_.position();
        file_.seek(start_ + offset);
        file_.write(std::as_bytes(bytes));
        file_.seek(end);
    }
    void beginAnew() { file_.truncate(start_); }

  private:
    platform::file::Replacement& file_;
    std::int64_t start_;
};

/// A part of the list as sound that is asked for from front to back; opened when it is first
/// asked for, and read ahead on a thread of its own.
mpeg::SoundCallback soundOf(const EditList& list, Shape to) {
    struct State {
        EditList list;
        Shape to;
        std::unique_ptr<ReadAhead> reader;
    };
    const auto state = std::make_shared<State>(State{list, to, nullptr});
    return [state](float* interleaved, std::size_t samples) {
        if (!state->reader) {
            const Shape from = state->list.shape();
            std::unique_ptr<FrameReader> inner = std::make_unique<EditReader>(state->list);
            if (from != state->to)
                inner = std::make_unique<ResampledReader>(std::move(inner), from, state->to);
            state->reader = std::make_unique<ReadAhead>(std::move(inner), state->to.channels);
        }
        readFully(*state->reader, interleaved, samples, state->to.channels);
    };
}

/// Untouched runs of the source as they are, everything between them as sound.
std::vector<mpeg::Segment> planOf(const SaveJob& job) {
    std::vector<mpeg::Segment> plan;
    std::int64_t position = 0;
    std::int64_t touchedFrom = 0;
    const Shape shape = job.list.shape();
    const auto closeTouched = [&] {
        if (touchedFrom == position) return;
        plan.push_back(mpeg::Segment::rendered(
            position - touchedFrom, soundOf(job.list.slice({touchedFrom, position}), shape)));
    };
    for (const Segment& segment : job.list.segments()) {
        if (segment.untouched(*job.source)) {
            closeTouched();
            plan.push_back(mpeg::Segment::source(segment.start, segment.frames));
            touchedFrom = position + segment.frames;
        }
        position += segment.frames;
    }
    closeTouched();
    return plan;
}

/// The one gain that is all that was done to the whole source, in percent.
std::optional<double> onlyGain(const SaveJob& job) {
    if (job.list.segments().size() != 1 || job.list.frames() != job.source->frames()) return {};
    const Segment& segment = job.list.segments().front();
    if (segment.material.get() != job.source.get() || segment.gains.size() != 1) return {};
    const GainSlice& gain = segment.gains.front();
    if (gain.channel != allChannels || gain.ramp.first != gain.ramp.last) return {};
    return gain.ramp.first * 100.0;
}

mpeg::EncoderSettings settingsFor(const Format& format) {
    mpeg::EncoderSettings settings;
    settings.layer = format.codec == Codec::Mp2 ? 2 : 3;
    settings.sampleRate = format.sampleRate;
    settings.mode = format.channels == 1 ? mpeg::ChannelMode::Mono : mpeg::ChannelMode::Joint;
    settings.bitRate = static_cast<int>(format.bitRate);
    if (format.variableBitRate && format.quality >= 0) {
        settings.rate = mpeg::EncoderSettings::Rate::Quality;
        settings.quality = format.quality;
    }
    return settings;
}

/// Layer II can state no length of its own: it ends with a whole frame.
std::int64_t storedFrames(const mpeg::EncoderSettings& settings, std::int64_t frames) {
    const std::int64_t block = settings.layer == 2 ? settings.samplesPerFrame() : 1;
    return (frames + block - 1) / block * block;
}

/// One save of MPEG audio.
class MpegSave {
  public:
    MpegSave(const SaveJob& job, platform::file::Replacement& file, Work& work)
        : job_(job), work_(work), sink_(file) {
        options_.levelChanged = job.levelChanged();
        options_.progress = [this](double part) { report(part); };
        work_.begin(steps);
        report_.frames = storedFrames(settingsFor(job.output), job.outputFrames());
        report_.renderedFrames = report_.frames;
    }

    SaveReport encode(const mpeg::EncoderSettings& settings) {
        const Shape shape{job_.output.sampleRate, job_.output.channels};
        mpeg::encode(settings, soundOf(job_.list, shape), job_.outputFrames(), sink_, options_);
        return report_;
    }

    SaveReport splice(const mpeg::FrameIndex& index) {
        if (job_.encodeAll) return encode(mpeg::settingsOf(job_.source->path(), index));
        if (const auto reason = whyNot(index)) {
            report_.note = *reason;
            return encode(mpeg::settingsOf(job_.source->path(), index));
        }
        try {
            return joinFrames(index);
        } catch (const mpeg::CannotSplice& error) {
            report_.note = error.what();
            sink_.beginAnew();
            done_ = 0;
            work_.begin(steps);
            return encode(mpeg::settingsOf(job_.source->path(), index));
        }
    }

  private:
    static constexpr std::int64_t steps = 10000;

    // Throws where the work was stopped, which ends the encoding.
    void report(double part) {
        const auto now = static_cast<std::int64_t>(part * static_cast<double>(steps));
        work_.advance(std::max<std::int64_t>(0, now - done_));
        done_ = std::max(done_, now);
    }

    std::optional<std::string> whyNot(const mpeg::FrameIndex& index) const {
        if (index.gaplessLength() != job_.source->frames())
            return "Its frames do not tell the length of its sound.";
        return mpeg::whyNotSpliceable(job_.source->path(), index);
    }

    SaveReport joinFrames(const mpeg::FrameIndex& index) {
        const auto& path = job_.source->path();
        if (const auto percent = onlyGain(job_)) {
            const auto gainSteps = mpeg::exactGainSteps(*percent, index.header().layer);
            if (gainSteps && tryGain(index, *gainSteps)) return report_;
        }
        const auto outcome = mpeg::splice(path, index, planOf(job_), sink_, options_);
        const std::int64_t encoded = outcome.frames - outcome.keptFrames;
        report_.method = outcome.keptFrames > 0 ? SaveMethod::Spliced : SaveMethod::Encoded;
        report_.renderedFrames = std::min(report_.frames, encoded * index.header().samples());
        return report_;
    }

    bool tryGain(const mpeg::FrameIndex& index, int gainSteps) {
        try {
            mpeg::gain(job_.source->path(), index, gainSteps, sink_, options_);
            report_.method = SaveMethod::Spliced;
            report_.renderedFrames = 0;
            return true;
        } catch (const mpeg::CannotSplice&) {
            sink_.beginAnew();
            return false;
        }
    }

    const SaveJob& job_;
    Work& work_;
    FileSink sink_;
    mpeg::SpliceOptions options_;
    SaveReport report_;
    std::int64_t done_ = 0;
};

}  // namespace

SaveReport writeMpeg(const SaveJob& job, platform::file::Replacement& file, Work& work) {
    if (job.source->format().container != Container::Mpeg) {
        const SaveReport report = MpegSave(job, file, work).encode(settingsFor(job.output));
        if (job.keepTags)
            tags::copyCommonTags(job.source->path(), file.temporary(), job.levelFields());
        return report;
    }
    const mpeg::FrameIndex index(job.source->path());
    std::optional<tags::MpegTags> around;
    if (job.keepTags) around.emplace(job.source->path(), index, job.levelFields());
    if (around) around->writeLeading(file);
    MpegSave save(job, file, work);
    const SaveReport report =
        job.sameFormat() ? save.splice(index) : save.encode(settingsFor(job.output));
    if (around) around->writeTrailing(file);
    return report;
}

}  // namespace audio::edit
