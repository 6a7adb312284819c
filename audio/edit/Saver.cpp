// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/edit/Saver.h"

#include <algorithm>
#include <cstdlib>

#include "audio/edit/Resampled.h"
#include "audio/edit/SoundWriters.h"
#include "audio/read/Decoder.h"
#include "audio/tags/Carrier.h"
#include "audio/write/Encoder.h"
#include "platform/Error.h"
#include "platform/Paths.h"

namespace audio::edit {
namespace {

[[noreturn]] void refuse(const SaveJob& job, const std::string& reason) {
    throw platform::Error("\"" + platform::toUtf8(job.source->path()) +
                          "\" cannot be saved: " + reason + ".");
}

// A track of text of their own is how QuickTime keeps chapters; it is no other stream of the kind
// that a sentence about moving pictures would explain.
bool hasChapterTrack(const SaveJob& job) {
    const Contents& contents = job.source->contents();
    return contents.chapters > 0 && contents.otherStreams > 0 &&
           job.output.containerName.starts_with("mov");
}

bool carriesChapters(const Format& format) {
    return format.container != Container::Other || tags::carrierFor(format) != nullptr;
}

// What a save would lose it must not begin.
void requireCarriable(const SaveJob& job) {
    const Contents& contents = job.source->contents();
    if (contents.audioStreams > 1) refuse(job, "it holds several sounds, and only one is edited");
    if (contents.chained) refuse(job, "it is a chain of several sounds");
    if (!job.sameFormat()) return;
    if (hasChapterTrack(job))
        refuse(job, "its chapters lie on a track of their own, which could not be carried over");
    if (contents.otherStreams > 0)
        refuse(job, "it holds moving pictures or other data beside the sound");
    if (job.keepTags && contents.chapters > 0 && !carriesChapters(job.output))
        refuse(job, "its chapters could not be carried over");
}

bool isMpeg(const Format& format) {
    return format.container == Container::Mpeg &&
           (format.codec == Codec::Mp3 || format.codec == Codec::Mp2);
}

void requireEncoder(const SaveJob& job) {
    if (isMpeg(job.output) || write::Encoder::canEncode(job.output)) return;
    refuse(job, "there is no encoder for its format (" + job.output.codecName + ")");
}

}  // namespace

bool SaveJob::sameFormat() const {
    const Format& input = source->format();
    const bool sameShape = output.sampleRate == input.sampleRate &&
                           output.channels == input.channels &&
                           output.sampleType == input.sampleType;
    if (!sameShape || output.container != input.container || output.codec != input.codec)
        return false;
    return output.codec == Codec::Pcm ||
           (output.codecName == input.codecName && output.bitRate == input.bitRate &&
            output.variableBitRate == input.variableBitRate);
}

bool SaveJob::levelChanged() const {
    return list.frames() > 0 && !list.keepsAnyOf(*source);
}

std::int64_t SaveJob::outputFrames() const {
    return ResampledReader::length(list.frames(), list.shape(),
                                   {output.sampleRate, output.channels});
}

namespace {

// What is wrong with a finished file, in words that follow "came out"; empty where nothing is.
std::string wrongWith(const std::filesystem::path& written, const SaveJob& job,
                      const SaveReport& report) {
    read::Decoder decoder(written);
    const Format& format = decoder.format();
    if (format.sampleRate != job.output.sampleRate) return "with another sampling rate";
    if (format.channels != job.output.channels) return "with another number of channels";
    const std::int64_t wrong = decoder.frames() - report.frames;
    if (wrong == 0) return {};
    const std::int64_t ms = std::max<std::int64_t>(1, std::abs(wrong) * 1000 / format.sampleRate);
    return std::to_string(ms) + " ms too " + (wrong < 0 ? "short" : "long");
}

void verifySound(const std::filesystem::path& written, const SaveJob& job,
                 const SaveReport& report) {
    job.source->requireUnchanged();
    if (report.verified) return;
    const std::string wrong = wrongWith(written, job, report);
    if (wrong.empty()) return;
    throw platform::Error("\"" + platform::toUtf8(written) +
                          "\" was not changed: what was to take its place came out " + wrong +
                          ", so it was thrown away.");
}

// Why all of the sound has to be encoded after all, in a sentence; empty where it has not.
std::string reasonToEncode(const std::filesystem::path& written, const SaveJob& job,
                           const SaveReport& report) try {
    const std::string wrong = wrongWith(written, job, report);
    return wrong.empty() ? wrong : "What was put together of it came out " + wrong + ".";
} catch (const Cancelled&) {
    throw;
} catch (const platform::Error&) {
    return "What was put together of it cannot be read.";
}

using Writer = SaveReport (*)(const SaveJob& job, platform::file::Replacement& file, Work& work);

// What was joined is looked at right away: where the result is not what it should be, all of the
// sound is encoded instead.
SaveReport writeVerified(Writer writer, const SaveJob& job, platform::file::Replacement& file,
                         Work& work) {
    SaveReport report = writer(job, file, work);
    if (job.encodeAll || !job.sameFormat()) return report;
    const std::string reason = reasonToEncode(file.temporary(), job, report);
    if (reason.empty()) {
        report.verified = true;
        return report;
    }
    job.source->requireUnchanged();
    file.truncate(0);
    SaveJob again = job;
    again.encodeAll = true;
    report = writer(again, file, work);
    report.note = reason;
    return report;
}

SaveReport write(const SaveJob& job, platform::file::Replacement& file, Work& work) {
    requireCarriable(job);
    requireEncoder(job);
    job.source->requireUnchanged();
    work.begin(job.list.frames());
    const bool unchanged = job.sameFormat() && job.keepTags && job.list.isAllOf(*job.source);
    if (unchanged) return writeCopy(job, file, work);
    if (isMpeg(job.output)) return writeVerified(writeMpeg, job, file, work);
    if (joinsPackets(job)) return writeVerified(writePackets, job, file, work);
    if (job.output.codec == Codec::Vorbis) return writeVerified(writeVorbis, job, file, work);
    return writeEncoded(job, file, work);
}

// The last word before the target is replaced: nobody else has changed the source meanwhile,
// nothing here holds it, and nobody has asked to stop.
void letGo(const SaveJob& job, Work& work) {
    job.source->requireUnchanged();
    job.list.closeFiles();
    job.source->closeFiles();
    work.commit();
}

// What failed on the way to the target is told of the target.
[[noreturn]] void rethrowNaming(const std::filesystem::path& target,
                                const std::filesystem::path& temporary, std::string text) {
    const std::string wrong = platform::toUtf8(temporary);
    const std::string right = platform::toUtf8(target);
    for (auto at = text.find(wrong); at != std::string::npos; at = text.find(wrong))
        text.replace(at, wrong.size(), right);
    throw platform::Error(text);
}

}  // namespace

SaveReport writeCopy(const SaveJob& job, platform::file::Replacement& file, Work& work) {
    const std::filesystem::path& source = job.source->path();
    const auto size = static_cast<std::int64_t>(std::filesystem::file_size(source));
    constexpr std::int64_t stretch = std::int64_t{16} << 20;
    work.begin(size);
    for (std::int64_t done = 0; done < size; done += stretch) {
        const std::int64_t count = std::min(stretch, size - done);
        file.copyFrom(source, done, count);
        work.advance(count);
    }
    SaveReport report;
    report.method = SaveMethod::Copied;
    report.frames = job.source->frames();
    return report;
}

SaveReport save(const SaveJob& job, const std::filesystem::path& target, Work& work) {
    platform::file::Replacement file(target);
    try {
        SaveReport report = write(job, file, work);
        report.overSource = platform::file::isSameFile(file.target(), job.source->path());
        report.written =
            file.commit({[&](const auto& written) { verifySound(written, job, report); },
                         [&] { letGo(job, work); }});
        return report;
    } catch (const Cancelled&) {
        throw;
    } catch (const platform::Error& error) {
        rethrowNaming(target, file.temporary(), error.what());
    }
}

}  // namespace audio::edit
