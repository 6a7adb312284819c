// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/mpeg/splice/Splice.h"

#include <algorithm>

#include "audio/mpeg/read/SourceFrames.h"
#include "audio/mpeg/read/SourceSound.h"
#include "audio/mpeg/splice/InfoFrame.h"
#include "audio/mpeg/splice/Layout.h"
#include "audio/mpeg/splice/PieceWriter.h"
#include "audio/mpeg/splice/StreamWriter.h"
#include "platform/Paths.h"

namespace audio::mpeg {
namespace {

void reportNothing(double) {}

std::function<void(double)> progressOf(const SpliceOptions& options) {
    return options.progress ? options.progress : reportNothing;
}

// The info frame that the new stream begins with; nothing where it has none.
std::optional<InfoFrame> infoFrameFor(const FrameIndex& index, const EncoderSettings& settings,
                                      const Layout& layout, SourceFrames& source) {
    const auto& info = index.info();
    if (!info && !layout.statesGaps) return std::nullopt;
    const bool usable = info && (!layout.statesGaps || info->canStateGaps());
    if (!usable) return InfoFrame(settings, index.header());
    const auto bytes = source.bytes(index.infoFrame());
    return InfoFrame({bytes.begin(), bytes.end()});
}

SpliceOutcome finish(const Layout& layout, const Geometry& geometry, StreamWriter& writer,
                     std::optional<InfoFrame>& info, bool levelChanged) {
    if (writer.framesNoted() != layout.frames) {
        throw CannotSplice("The new stream has the wrong number of frames.");
    }
    if (info) {
        info->fillIn(layout, geometry, writer);
        if (levelChanged) info->clearLevels();
        info->putChecksums(writer);
    }
    writer.finish(info ? info->bytes() : std::span<const std::uint8_t>{});
    SpliceOutcome outcome;
    outcome.bytes = writer.bytes();
    outcome.frames = layout.frames;
    outcome.rawLength = layout.frames * geometry.frame;
    outcome.gaplessStart = layout.start;
    return outcome;
}

}  // namespace

std::optional<std::string> whyNotSpliceable(const std::filesystem::path& file,
                                            const FrameIndex& index) {
    const auto because = [&file](const char* reason) {
        return "The file \"" + platform::toUtf8(file) +
               "\" has to be encoded as a whole: " + reason + ".";
    };
    if (index.header().layer == 1) return because("it is MPEG Layer I");
    if (index.freeFormat()) return because("its bit-rate is a free one");
    if (!index.changes().empty()) return because("its rate or its channels change inside");
    if (!index.junk().empty())
        return because("something else than sound stands between its frames");
    return std::nullopt;
}

SpliceOutcome splice(const std::filesystem::path& file, const FrameIndex& index,
                     const std::vector<Segment>& plan, StreamSink& sink,
                     const SpliceOptions& options) {
    if (const auto reason = whyNotSpliceable(file, index)) throw CannotSplice(*reason);
    const EncoderSettings settings = settingsOf(file, index);
    const Geometry geometry = Geometry::of(settings.layer, settings.samplesPerFrame());
    SourceFrames frames(file, index);
    const Layout layout = layOut(index, plan, [&](std::int64_t frame) {
        return settings.layer == 3 && frames.sideInfo(frame).mainDataBegin > 0;
    });
    SourceSound source(file, index);
    OutputSound sound(plan, &source, settings.channels(), layout.start, index.gaplessStart());

    StreamWriter writer(sink, layout.frames);
    auto info = infoFrameFor(index, settings, layout, frames);
    if (info) writer.writeInfoFrame(info->bytes());
    SeamCheck check(file, index);
    writer.setListener([&check](std::int64_t number, std::span<const std::uint8_t> frame) {
        check.frame(number, frame);
    });
    PieceWriter pieces(settings, layout, sound, writer, &frames, &check, index.header(),
                       options.threads, progressOf(options));
    pieces.run();
    check.finish();
    SpliceOutcome outcome = finish(layout, geometry, writer, info, options.levelChanged);
    outcome.encoded = pieces.encoded();
    outcome.keptFrames = pieces.keptFrames();
    return outcome;
}

SpliceOutcome encode(const EncoderSettings& settings, const SoundCallback& callback,
                     std::int64_t length, StreamSink& sink, const SpliceOptions& options) {
    const Geometry geometry = Geometry::of(settings.layer, settings.samplesPerFrame());
    const Layout layout = layOutEncoded(geometry, length);
    const std::vector<Segment> plan = {Segment::rendered(length, callback)};
    OutputSound sound(plan, nullptr, settings.channels(), layout.start, 0);
    const FrameHeader like = plainHeader(settings);

    StreamWriter writer(sink, layout.frames);
    std::optional<InfoFrame> info;
    if (settings.layer == 3) info.emplace(settings, like);
    if (info) writer.writeInfoFrame(info->bytes());
    PieceWriter pieces(settings, layout, sound, writer, nullptr, nullptr, like, options.threads,
                       progressOf(options));
    pieces.run();
    SpliceOutcome outcome = finish(layout, geometry, writer, info, options.levelChanged);
    outcome.encoded = pieces.encoded();
    return outcome;
}

}  // namespace audio::mpeg
