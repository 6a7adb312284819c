// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/audio/vorbis/Edits.h"

#include <algorithm>
#include <cmath>
#include <fstream>

#include <gtest/gtest.h>

#include "tests/audio/vorbis/VorbisFiles.h"

namespace vorbis_files {
namespace {

using audio::vorbis::Segment;

/// Builds an edit piece by piece.
class Maker {
  public:
    Maker(const Source& source, std::string name) : source_(source) {
        edit_.name = std::move(name);
        edit_.sound = {{}, source.sound.rate, source.sound.channels};
    }

    Maker& keep(std::int64_t from, std::int64_t to, bool exact = true) {
        if (from >= to) return *this;
        if (exact) exact_.push_back({frames(), frames() + to - from, from});
        edit_.plan.push_back(Segment::source(from, to - from));
        add(from, to, 1, 1);
        return *this;
    }
    Maker& gain(std::int64_t from, std::int64_t to, double first, double last) {
        if (from >= to) return *this;
        edit_.plan.push_back(Segment::rendered(to - from, from));
        edit_.needsEncoder = true;
        add(from, to, first, last);
        return *this;
    }
    Maker& silence(std::int64_t length) {
        edit_.plan.push_back(Segment::silence(length));
        edit_.sound.samples.resize(edit_.sound.samples.size() +
                                   static_cast<std::size_t>(length * edit_.sound.channels));
        return *this;
    }
    Maker& needsEncoder() {
        edit_.needsEncoder = true;
        return *this;
    }

    /// `margin`: so much sound beside a touched part may differ.
    Edit made(std::int64_t margin) {
        for (Exact exact : exact_) {
            if (exact.from > 0 || trimmed_) {
                exact.from += margin;
                exact.sourceFrom += margin;
            }
            if (exact.to < frames()) exact.to -= margin;
            if (exact.from < exact.to) edit_.exact.push_back(exact);
        }
        return std::move(edit_);
    }
    Maker& trimmedFront() {
        trimmed_ = true;
        return *this;
    }

  private:
    std::int64_t frames() const { return static_cast<std::int64_t>(edit_.sound.frames()); }
    void add(std::int64_t from, std::int64_t to, double first, double last) {
        const auto channels = static_cast<std::size_t>(source_.sound.channels);
        for (std::int64_t i = from; i < to; ++i) {
            const double part = to - from > 1 ? double(i - from) / double(to - from - 1) : 0;
            const auto gain = static_cast<float>(first + (last - first) * part);
            for (std::size_t channel = 0; channel < channels; ++channel)
                edit_.sound.samples.push_back(
                    gain * source_.sound.samples[static_cast<std::size_t>(i) * channels + channel]);
        }
    }

    const Source& source_;
    Edit edit_;
    std::vector<Exact> exact_;
    bool trimmed_ = false;
};

std::int64_t between(std::mt19937& random, std::int64_t low, std::int64_t high) {
    return low + static_cast<std::int64_t>(random() % static_cast<std::uint64_t>(high - low + 1));
}

std::vector<std::int16_t> sliceOf(const std::vector<std::int16_t>& samples, std::int64_t from,
                                  std::int64_t to, int channels) {
    return {samples.begin() + from * channels, samples.begin() + to * channels};
}

std::vector<float> sliceOf(const std::vector<float>& samples, std::int64_t from, std::int64_t to,
                           int channels) {
    return {samples.begin() + from * channels, samples.begin() + to * channels};
}

}  // namespace

Source::Source(const std::filesystem::path& path)
    : file(path), index(path), sound(support::decodeWithFfmpeg(path)) {
    // ffmpeg cuts nothing at the end of a sound that lies on one page.
    const auto frames = static_cast<std::size_t>(index.frames());
    EXPECT_GE(sound.frames(), frames) << path;
    if (index.packets() > 40) {
        EXPECT_EQ(sound.frames(), frames) << path;
    }
    sound = sound.part(0, frames);
}

Edit randomEdit(const Source& source, std::mt19937& random) {
    const std::int64_t frames = source.index.frames();
    const std::int64_t margin = source.index.blockSize(true);
    const std::int64_t grid = source.index.blockSize(false) / 2;
    const std::int64_t a = between(random, 1, frames - 2);
    const std::int64_t b = between(random, a + 1, frames);
    const std::int64_t off = between(random, 0, 1);
    switch (between(random, 0, 10)) {
        case 0:
            return Maker(source, "fade in").gain(0, a, 0, 1).keep(a, frames).made(margin);
        case 1:
            return Maker(source, "fade out").keep(0, a).gain(a, frames, 1, 0).made(margin);
        case 2:
            return Maker(source, "gain inside")
                .keep(0, a)
                .gain(a, b, 0.6, 0.6)
                .keep(b, frames)
                .made(margin);
        case 3:
            return Maker(source, "trim front").trimmedFront().keep(a, frames).made(2 * margin);
        case 4:
            return Maker(source, "trim end").keep(0, a).made(margin);
        case 5:
            return Maker(source, "silence in front")
                .silence(between(random, 1, 20'000))
                .keep(0, frames)
                .made(source.index.firstFrame() > 0 ? 2 * margin : margin);
        case 6:
            return Maker(source, "silence at the end")
                .keep(0, frames)
                .silence(between(random, 1, 20'000))
                .made(2 * margin);
        case 7: {
            const std::int64_t length = grid * between(random, 1, 100) + off * (grid / 2 - 3);
            return Maker(source, off != 0 ? "insert off the grid" : "insert on the grid")
                .needsEncoder()
                .keep(0, a, off == 0 || a >= frames - a)
                .silence(length)
                .keep(a, frames, off == 0 || a < frames - a)
                .made(2 * margin);
        }
        case 8: {
            const std::int64_t most = (frames - a) / grid;
            const std::int64_t length = std::min(frames - a, grid * between(random, 0, most) + off);
            const bool left = a >= frames - a - length;
            const bool onGrid = length % grid == 0 || length == frames - a;
            return Maker(source, onGrid ? "cut on the grid" : "cut off the grid")
                .needsEncoder()
                .keep(0, a, onGrid || left)
                .keep(a + length, frames, onGrid || !left)
                .made(2 * margin);
        }
        case 9:
            return Maker(source, "trim both ends").trimmedFront().keep(a, b).made(2 * margin);
        default:
            return Maker(source, "trim and fade")
                .trimmedFront()
                .gain(a, std::min(frames, a + 220), 0, 1)
                .keep(std::min(frames, a + 220), frames)
                .made(2 * margin);
    }
}

Result apply(const Edit& edit, const Source& source, const std::filesystem::path& target,
             int threads) {
    const auto channels = static_cast<std::size_t>(source.sound.channels);
    const audio::vorbis::SoundReader reader = [&](std::int64_t frame, std::size_t count,
                                                  float* interleaved) {
        ASSERT_GE(frame, 0);
        ASSERT_LE(static_cast<std::size_t>(frame) + count, edit.sound.frames());
        std::copy_n(edit.sound.samples.begin() + frame * source.sound.channels, count * channels,
                    interleaved);
    };
    Result result{target, {}};
    {
        std::ofstream out(target, std::ios::binary);
        audio::vorbis::SpliceOptions options;
        options.comment = source.index.headers().comment;
        options.threads = threads;
        result.outcome = splice(
            source.file, source.index, edit.plan, reader,
            [&out](std::span<const std::uint8_t> bytes) {
                out.write(reinterpret_cast<const char*>(bytes.data()),
                          static_cast<std::streamsize>(bytes.size()));
            },
            options);
    }
    checkSplice(source.file, source.index, target, result.outcome.layout, reader);
    return result;
}

void judge(const Edit& edit, const Source& source, const Result& result) {
    const int channels = source.sound.channels;
    const auto frames = static_cast<std::int64_t>(edit.sound.frames());
    const support::Sound heard = support::decodeWithFfmpeg(result.file);
    ASSERT_EQ(static_cast<std::int64_t>(heard.frames()), frames);
    const std::vector<std::int16_t> was = decodeWithOggdec(source.file);
    const std::vector<std::int16_t> now = decodeWithOggdec(result.file);
    ASSERT_EQ(static_cast<std::int64_t>(now.size()), frames * channels);

    for (const Exact& exact : edit.exact) {
        const std::int64_t length = exact.to - exact.from;
        EXPECT_EQ(support::maxDifference(sliceOf(heard.samples, exact.from, exact.to, channels),
                                         sliceOf(source.sound.samples, exact.sourceFrom,
                                                 exact.sourceFrom + length, channels)),
                  0)
            << "ffmpeg hears other sound from " << exact.from << " to " << exact.to;
        EXPECT_EQ(sliceOf(now, exact.from, exact.to, channels),
                  sliceOf(was, exact.sourceFrom, exact.sourceFrom + length, channels))
            << "oggdec hears other sound from " << exact.from << " to " << exact.to;
    }
    EXPECT_GT(support::snrDb(edit.sound.samples, heard.samples), 6);
}

}  // namespace vorbis_files
