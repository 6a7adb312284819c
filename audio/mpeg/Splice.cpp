// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/mpeg/Splice.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "audio/mpeg/InfoFrame.h"
#include "audio/mpeg/Layout.h"
#include "audio/mpeg/PieceWriter.h"
#include "audio/mpeg/SourceFrames.h"
#include "audio/mpeg/SourceSound.h"
#include "audio/mpeg/StreamWriter.h"
#include "platform/Paths.h"

namespace audio::mpeg {
namespace {

// Average bit-rates in kbit/s that LAME's V0 to V9 give for stereo music at 44.1 kHz.
constexpr std::array<double, 10> averages = {245, 225, 190, 175, 165, 130, 115, 100, 85, 65};

// The quality that gives about this average, straight lines between the table's.
double qualityFor(double bitsPerSecond, const FrameHeader& header) {
    const double stereo = header.channels() == 1 ? 1.75 : 1.0;
    const double kbps = bitsPerSecond / 1000 * stereo * 44100 / header.sampleRate;
    if (kbps >= averages.front()) return 0;
    for (std::size_t i = 1; i < averages.size(); ++i) {
        if (kbps < averages[i]) continue;
        const double part = (averages[i - 1] - kbps) / (averages[i - 1] - averages[i]);
        return static_cast<double>(i - 1) + part;
    }
    return 9;
}

EncoderSettings::Rate rateOf(const FrameIndex& index) {
    if (index.header().layer != 3) return EncoderSettings::Rate::Constant;
    switch (index.info() ? index.info()->vbrMethod : 0) {
        case 2:
        case 9:
            return EncoderSettings::Rate::Average;
        case 3:
        case 4:
        case 5:
        case 6:
            return EncoderSettings::Rate::Quality;
        default:
            break;
    }
    if (!index.variableBitRate()) return EncoderSettings::Rate::Constant;
    // Where a tag says nothing of the method, the size is all that is known of what was wanted.
    return index.info() ? EncoderSettings::Rate::Average : EncoderSettings::Rate::Quality;
}

// What an ABR encoder was asked for; its frames come out a little smaller, so that their average
// would shrink the file with every save.
int averageOf(const FrameIndex& index) {
    const int stated = index.info() ? index.info()->statedKbps : 0;
    const int method = index.info() ? index.info()->vbrMethod : 0;
    if ((method == 2 || method == 9) && stated >= 8 && stated < 255) return stated * 1000;
    return static_cast<int>((index.averageBitRate() + 500) / 1000 * 1000);
}

void setQuality(const FrameIndex& index, EncoderSettings& settings) {
    const auto& info = index.info();
    const bool lame = info && info->encoder.starts_with("LAME") && info->quality &&
                      info->vbrMethod >= 3 && info->vbrMethod <= 6;
    settings.quality =
        lame ? (100 - static_cast<double>(std::min(*info->quality, 100U))) / 10
             : qualityFor(static_cast<double>(index.averageBitRate()), index.header());
    settings.quality = std::min(settings.quality, 9.9);
}

// Layer I has bit-rates that Layer II lacks.
int nearestLayerTwo(const FrameHeader& header) {
    int best = 0;
    for (int index = 1; index <= 14; ++index) {
        const int rate = FrameHeader::bitRateOf(header.version, 2, index);
        if (std::abs(rate - header.bitRate) < std::abs(best - header.bitRate)) best = rate;
    }
    return best;
}

void reportNothing(double) {}

std::function<void(double)> progressOf(const SpliceOptions& options) {
    return options.progress ? options.progress : reportNothing;
}

// The info frame that the new stream begins with; nothing where it has none.
std::optional<InfoFrame> infoFrameFor(const FrameIndex& index, const Layout& layout,
                                      SourceFrames& source) {
    const auto& info = index.info();
    if (!info && !layout.statesGaps) return std::nullopt;
    const bool usable = info && info->kind != InfoTag::Kind::Vbri &&
                        (!layout.statesGaps || (info->lameOffset && info->framesOffset));
    if (!usable) return InfoFrame(settingsOf(index), index.header());
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

EncoderSettings settingsOf(const FrameIndex& index) {
    const FrameHeader& header = index.header();
    EncoderSettings settings;
    settings.layer = header.layer == 3 ? 3 : 2;
    settings.sampleRate = header.sampleRate;
    settings.mode = header.mode;
    settings.crc = settings.layer == 3 && header.crc;
    settings.rate = rateOf(index);
    settings.bitRate = header.layer == 1 ? nearestLayerTwo(header) : header.bitRate;
    if (settings.rate == EncoderSettings::Rate::Average || header.freeFormat()) {
        settings.bitRate = averageOf(index);
    }
    if (settings.rate == EncoderSettings::Rate::Quality) setQuality(index, settings);
    return settings;
}

SpliceOutcome splice(const std::filesystem::path& file, const FrameIndex& index,
                     const std::vector<Segment>& plan, StreamSink& sink,
                     const SpliceOptions& options) {
    if (const auto reason = whyNotSpliceable(file, index)) throw CannotSplice(*reason);
    const EncoderSettings settings = settingsOf(index);
    const Geometry geometry = Geometry::of(settings.layer, settings.samplesPerFrame());
    SourceFrames frames(file, index);
    const Layout layout = layOut(index, plan, [&](std::int64_t frame) {
        return settings.layer == 3 && frames.sideInfo(frame).mainDataBegin > 0;
    });
    SourceSound source(file, index);
    OutputSound sound(plan, &source, settings.channels(), layout.start, index.gaplessStart());

    StreamWriter writer(sink, layout.frames);
    auto info = infoFrameFor(index, layout, frames);
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
