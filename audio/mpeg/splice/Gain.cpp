// SPDX-License-Identifier: GPL-3.0-or-later
#include <cmath>

#include "audio/mpeg/read/Checksums.h"
#include "audio/mpeg/read/SourceFrames.h"
#include "audio/mpeg/splice/InfoFrame.h"
#include "audio/mpeg/splice/Layout.h"
#include "audio/mpeg/splice/ScaleFactors.h"
#include "audio/mpeg/splice/Splice.h"
#include "platform/Paths.h"

namespace audio::mpeg {
namespace {

// Adds steps to every gain of a Layer III frame; false where one would leave its eight bits.
bool changeGlobalGains(const FrameHeader& header, std::span<std::uint8_t> frame, int steps) {
    const auto sideSize = static_cast<std::size_t>(header.sideInfoSize());
    const auto side =
        frame.subspan(static_cast<std::size_t>(header.overhead()) - sideSize, sideSize);
    const SideInfo info = SideInfo::parse(header, side);
    for (std::size_t g = 0; g < static_cast<std::size_t>(info.granules); ++g) {
        for (std::size_t c = 0; c < static_cast<std::size_t>(info.channels); ++c) {
            const SideInfo::Granule& granule = info.granule[g][c];
            if (granule.bits == 0) continue;  // silence, whatever its gain
            const int changed = granule.globalGain + steps;
            if (changed < 0 || changed > 255) return false;
            setByteAtBit(side, granule.gainBit, static_cast<std::uint8_t>(changed));
        }
    }
    updateFrameCrc(header, frame);
    return true;
}

bool changeGains(const FrameHeader& header, std::span<std::uint8_t> frame, int steps) {
    return header.layer == 3 ? changeGlobalGains(header, frame, steps)
                             : changeScaleFactors(header, frame, steps);
}

}  // namespace

std::optional<int> exactGainSteps(double percent, int layer) {
    if (!(percent > 0)) return std::nullopt;
    const double stepsOfDoubling = layer == 3 ? 4 : 3;
    const int steps = static_cast<int>(std::lround(stepsOfDoubling * std::log2(percent / 100)));
    const double exact = 100 * std::exp2(steps / stepsOfDoubling);
    // A percentage that comes as a float has seven digits.
    if (std::abs(percent - exact) > exact * 1e-7) return std::nullopt;
    return steps;
}

SpliceOutcome gain(const std::filesystem::path& file, const FrameIndex& index, int steps,
                   StreamSink& sink, const SpliceOptions& options) {
    if (const auto reason = whyNotSpliceable(file, index)) throw CannotSplice(*reason);
    SourceFrames source(file, index);
    StreamWriter writer(sink, index.frameCount());
    std::optional<InfoFrame> info;
    if (index.info()) {
        const auto bytes = source.bytes(index.infoFrame());
        info.emplace(std::vector<std::uint8_t>(bytes.begin(), bytes.end()));
        writer.writeInfoFrame(info->bytes());
    }
    for (std::int64_t i = 0; i < index.frameCount(); ++i) {
        const auto bytes = source.bytes(i);
        std::vector<std::uint8_t> frame(bytes.begin(), bytes.end());
        const auto header = FrameHeader::parse(frame);
        if (!header || !changeGains(*header, frame, steps)) {
            throw CannotSplice("The level of the file \"" + platform::toUtf8(file) +
                               "\" cannot be changed so far without encoding it.");
        }
        writer.noteFrame(frame);
        writer.write(frame);
        if (options.progress && i % 1024 == 0) {
            options.progress(static_cast<double>(i) / static_cast<double>(index.frameCount()));
        }
    }
    if (info) {
        info->clearLevels();
        info->putChecksums(writer);
    }
    writer.finish(info ? info->bytes() : std::span<const std::uint8_t>{});
    if (options.progress) options.progress(1.0);
    SpliceOutcome outcome;
    outcome.bytes = writer.bytes();
    outcome.frames = outcome.keptFrames = index.frameCount();
    outcome.rawLength = index.rawLength();
    outcome.gaplessStart = index.gaplessStart();
    return outcome;
}

}  // namespace audio::mpeg
