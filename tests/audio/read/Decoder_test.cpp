// SPDX-License-Identifier: GPL-3.0-or-later
// What the decoder gives of sound files in every format, judged by the ffmpeg program.
#include "audio/read/Decoder.h"

#include <random>

#include <gtest/gtest.h>

#include "tests/audio/read/Reading.h"
#include "tests/support/Fixtures.h"
#include "tests/support/Sound.h"

namespace {

using audio::read::Decoder;

struct Case {
    const char* name;
    double tolerance = 0;  ///< of a sample, against ffmpeg and after a seek
};
std::ostream& operator<<(std::ostream& stream, const Case& file) {
    return stream << file.name;
}

class EveryFormat : public testing::TestWithParam<Case> {
  protected:
    std::filesystem::path file() const { return support::fixture(GetParam().name); }
};

TEST_P(EveryFormat, DecodesAsFfmpegDoes) {
    const support::Sound judge = support::decodeWithFfmpeg(file());
    Decoder decoder(file());
    EXPECT_EQ(decoder.format().sampleRate, judge.rate);
    ASSERT_EQ(decoder.format().channels, judge.channels);
    const std::vector<float> ours = reading::readAll(decoder);
    EXPECT_EQ(ours.size(), judge.samples.size());
    EXPECT_LE(support::maxDifference(ours, judge.samples), GetParam().tolerance);
    EXPECT_FALSE(decoder.damaged());
    EXPECT_EQ(decoder.position(), std::int64_t(judge.frames()));
}

TEST_P(EveryFormat, LengthIsExactWithoutReadingTheSound) {
    const std::size_t length = reading::readAll(file()).size();
    Decoder decoder(file());
    EXPECT_EQ(std::size_t(decoder.frames() * decoder.format().channels), length);
    EXPECT_EQ(decoder.position(), 0);
    EXPECT_EQ(reading::readAll(decoder).size(), length) << "asking disturbed the reading";
}

TEST_P(EveryFormat, SeeksToTheExactFrame) {
    const std::vector<float> straight = reading::readAll(file());
    Decoder decoder(file());
    const auto channels = std::size_t(decoder.format().channels);
    const auto length = std::int64_t(straight.size() / channels);
    std::mt19937 random(7);
    std::vector<float> block(2'000 * channels);
    for (int i = 0; i < 200; ++i) {
        const std::int64_t target =
            std::uniform_int_distribution<std::int64_t>(i % 10 == 0 ? -9 : 0, length + 9)(random);
        const std::int64_t expected = std::clamp<std::int64_t>(target, 0, length);
        const auto size = std::uniform_int_distribution<std::size_t>(1, 2'000)(random);
        decoder.seek(target);
        ASSERT_EQ(decoder.position(), expected) << "seek to " << target;
        const std::size_t got = decoder.read(block.data(), size);
        ASSERT_EQ(std::int64_t(got), std::min<std::int64_t>(std::int64_t(size), length - expected));
        const auto first = straight.begin() + std::ptrdiff_t(std::size_t(expected) * channels);
        const std::vector<float> wanted(first, first + std::ptrdiff_t(got * channels));
        const std::vector<float> ours(block.begin(),
                                      block.begin() + std::ptrdiff_t(got * channels));
        ASSERT_LE(support::maxDifference(wanted, ours), GetParam().tolerance) << "at " << expected;
    }
}

// A jump whose sound nobody fetched, as from a slider that is drawn on, leaves no trace.
TEST_P(EveryFormat, JumpsOfWhichNothingIsReadChangeNothing) {
    const std::vector<float> straight = reading::readAll(file());
    Decoder decoder(file());
    const auto channels = std::size_t(decoder.format().channels);
    const auto length = std::int64_t(straight.size() / channels);
    std::mt19937 random(8);
    std::vector<float> block(700 * channels);
    for (int i = 0; i < 200; ++i) {
        const std::int64_t first = i % 4 == 0 ? length : std::int64_t(random() % unsigned(length));
        const std::int64_t second =
            std::clamp<std::int64_t>(first - std::int64_t(random() % 6'000), 0, length - 1);
        decoder.seek(first);
        decoder.seek(second);
        const std::size_t got = decoder.read(block.data(), 700);
        const auto wanted = straight.begin() + std::ptrdiff_t(std::size_t(second) * channels);
        ASSERT_EQ(std::int64_t(got), std::min<std::int64_t>(700, length - second));
        ASSERT_LE(
            support::maxDifference({wanted, wanted + std::ptrdiff_t(got * channels)},
                                   {block.begin(), block.begin() + std::ptrdiff_t(got * channels)}),
            GetParam().tolerance)
            << "at " << second << " after " << first;
    }
}

INSTANTIATE_TEST_SUITE_P(
    Codec, EveryFormat,
    testing::Values(Case{"tone.wav"}, Case{"tone-u8.wav"}, Case{"tone-s24.wav"},
                    Case{"tone-s32.wav", 6e-8}, Case{"tone-f32.wav"}, Case{"tone-f64.wav"},
                    Case{"tone-rf64.wav"}, Case{"tone-mono.wav"}, Case{"tone-6ch.wav"},
                    Case{"tone-48k.wav"}, Case{"tone-mulaw.wav"}, Case{"tone-adpcm.wav"},
                    Case{"tone.mp3"}, Case{"tone-vbr.mp3"}, Case{"tone-320.mp3"},
                    Case{"tone-mono.mp3"}, Case{"tone-crc.mp3"}, Case{"tone-22k.mp3"},
                    Case{"tone-11k.mp3"}, Case{"tone-untagged.mp3"}, Case{"tone.mp2"},
                    Case{"tone-mono.mp2"}, Case{"tone.ogg"}, Case{"tone-mono.ogg"},
                    Case{"tone.wma"}, Case{"tone-v1.wma"}, Case{"tone-mono.wma"}, Case{"tone.flac"},
                    Case{"tone-alac.m4a"}, Case{"tone.aiff"}, Case{"tone.wv"}, Case{"tone.aac"},
                    Case{"music.mp3"}, Case{"music-vbr.mp3"}, Case{"music-abr.mp3"},
                    Case{"music.mp2"}, Case{"music.ogg"}, Case{"music.wma"}, Case{"music.flac"}),
    [](const testing::TestParamInfo<Case>& param) {
        std::string name = param.param.name;
        for (char& letter : name)
            if (!std::isalnum(static_cast<unsigned char>(letter))) letter = '_';
        return name;
    });

}  // namespace
