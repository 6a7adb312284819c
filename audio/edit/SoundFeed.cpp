// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/edit/SoundFeed.h"

#include <algorithm>
#include <bit>

#include "audio/edit/EditReader.h"
#include "audio/edit/ReadAhead.h"
#include "audio/edit/Resampled.h"
#include "audio/pcm/Blocks.h"
#include "audio/pcm/Dither.h"

namespace audio::edit {
namespace {

constexpr std::size_t mostBlockFrames = 16384;

/// Whether every sample of this sound has its like in the output, so that it comes through as it
/// is: integers of no more bits at the same rate, in as many channels or doubled.
bool holdsAllOf(const Material& sound, Shape shape, const Format& output) {
    const bool sameFrames =
        shape.sampleRate == output.sampleRate &&
        (shape.channels == output.channels || (shape.channels == 1 && output.channels == 2));
    const int bits = sound.integerBits();
    return sameFrames && bits > 0 && bits <= integerBits(output);
}

}  // namespace

SoundFeed::SoundFeed(const SaveJob& job, write::Encoder& encoder, Work& work)
    : job_(job),
      encoder_(encoder),
      work_(work),
      copiesPcm_(job.output.codec == Codec::Pcm && job.sameFormat()),
      converts_(job.list.shape() != Shape{job.output.sampleRate, job.output.channels}),
      keepsSamples_(holdsAllOf(*job.source, job.list.shape(), job.output)),
      bits_(integerBits(job.output)) {}

std::int64_t SoundFeed::run() {
    std::int64_t rendered = 0;
    for (const Run& run : runs()) {
        if (run.untouched && copiesPcm_) {
            copyPcm(run);
        } else {
            render(run);
            rendered += run.range.end - run.range.start;
        }
    }
    return rendered;
}

// Where nothing depends on what is untouched, all is one run: the encoder then gets the sound from
// one reader that never stops reading ahead.
std::vector<SoundFeed::Run> SoundFeed::runs() const {
    const bool lossless = job_.output.bitsPerSample > 0;
    if (job_.list.frames() == 0) return {};
    if ((converts_ && !keepsSamples_) || !lossless) return {{{0, job_.list.frames()}}};
    std::vector<Run> runs;
    std::int64_t position = 0;
    for (const Segment& segment : job_.list.segments()) {
        const FrameRange range{position, position + segment.frames};
        const bool untouched = segment.untouched(*job_.source);
        const bool asItIs = keepsSamplesOf(segment);
        position = range.end;
        if (!untouched && !runs.empty() && !runs.back().untouched && runs.back().asItIs == asItIs)
            runs.back().range.end = range.end;
        else
            runs.push_back({range, untouched, asItIs, segment.start});
    }
    return runs;
}

/// Sound of the source, or of another file that was put beside it.
bool SoundFeed::keepsSamplesOf(const Segment& segment) const {
    return segment.gains.empty() && segment.material &&
           holdsAllOf(*segment.material, job_.list.shape(), job_.output);
}

void SoundFeed::copyPcm(const Run& run) {
    const std::int64_t frames = run.range.end - run.range.start;
    encoder_.copyPcm(run.sourceStart, frames, [&](std::int64_t copied) { work_.advance(copied); });
    written_ += frames;
}

void SoundFeed::render(const Run& run) {
    const Shape from = job_.list.shape();
    const Shape to{job_.output.sampleRate, job_.output.channels};
    std::unique_ptr<FrameReader> reader = std::make_unique<EditReader>(job_.list.slice(run.range));
    if (converts_) reader = std::make_unique<ResampledReader>(std::move(reader), from, to);
    ReadAhead ahead(std::move(reader), to.channels);
    const bool dithered = bits_ > 0 && bits_ <= 16 && !run.asItIs;
    const std::size_t blockFrames = pcm::blockFrames(mostBlockFrames, to.channels);
    std::vector<float> block(blockFrames * static_cast<std::size_t>(to.channels));
    std::int64_t counted = 0;
    while (const std::size_t got = ahead.read(block.data(), blockFrames)) {
        store({block.data(), got * static_cast<std::size_t>(to.channels)}, dithered);
        written_ += static_cast<std::int64_t>(got);
        const std::int64_t done = (written_ * from.sampleRate) / to.sampleRate;
        work_.advance(done - counted);
        counted = done;
    }
}

// Where in the row of noise this sound begins follows from the sound itself: the same edit writes
// the same bytes, but edit after edit of one file does not add up the same noise.
std::uint64_t SoundFeed::noiseStart(std::span<const float> first) {
    if (noiseStart_) return *noiseStart_;
    std::uint64_t hash = 0xCBF29CE484222325;  // FNV-1a
    for (const float sample : first)
        hash = (hash ^ std::bit_cast<std::uint32_t>(sample)) * 0x100000001B3;
    noiseStart_ = hash;
    return hash;
}

void SoundFeed::store(std::span<float> interleaved, bool dithered) {
    const std::size_t channels = static_cast<std::size_t>(job_.output.channels);
    const std::size_t frames = interleaved.size() / channels;
    const std::uint64_t firstIndex =
        noiseStart(interleaved) + static_cast<std::uint64_t>(written_) * channels;
    if (dithered) pcm::addDither(interleaved, bits_, firstIndex);
    encoder_.write(interleaved.data(), frames);
}

}  // namespace audio::edit
