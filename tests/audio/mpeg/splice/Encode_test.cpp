// SPDX-License-Identifier: GPL-3.0-or-later
#include <cmath>
#include <numeric>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "audio/mpeg/splice/Splice.h"
#include "tests/audio/mpeg/splice/SpliceTools.h"
#include "tests/support/TempFolder.h"

using namespace Qt::Literals::StringLiterals;
using namespace audio::mpeg;
using support::Judge;
using support::Sound;

namespace {

struct Case {
    const char* name;
    int rate;
    int channels;
    EncoderSettings settings;
    QStringList lame;  // what the lame program has to be told for the same
};

EncoderSettings settingsFor(int rate, ChannelMode mode, EncoderSettings::Rate kind, int bitRate,
                            double quality = 4, bool crc = false) {
    EncoderSettings settings;
    settings.sampleRate = rate;
    settings.mode = mode;
    settings.rate = kind;
    settings.bitRate = bitRate;
    settings.quality = quality;
    settings.crc = crc;
    return settings;
}

std::vector<Case> cases() {
    using Rate = EncoderSettings::Rate;
    const auto joint = ChannelMode::Joint;
    return {
        {"cbr128", 44100, 2, settingsFor(44100, joint, Rate::Constant, 128000), {u"-b128"_s}},
        {"cbr192", 44100, 2, settingsFor(44100, joint, Rate::Constant, 192000), {u"-b192"_s}},
        {"cbr320", 44100, 2, settingsFor(44100, joint, Rate::Constant, 320000), {u"-b320"_s}},
        {"v0", 44100, 2, settingsFor(44100, joint, Rate::Quality, 0, 0), {u"-V0"_s}},
        {"v2", 44100, 2, settingsFor(44100, joint, Rate::Quality, 0, 2), {u"-V2"_s}},
        {"abr", 44100, 2, settingsFor(44100, joint, Rate::Average, 160000), {u"--abr"_s, u"160"_s}},
        {"crc",
         44100,
         2,
         settingsFor(44100, joint, Rate::Constant, 128000, 4, true),
         {u"-b128"_s, u"-p"_s}},
        {"stereo48",
         48000,
         2,
         settingsFor(48000, ChannelMode::Stereo, Rate::Constant, 256000),
         {u"-b256"_s, u"-ms"_s}},
        {"mono",
         44100,
         1,
         settingsFor(44100, ChannelMode::Mono, Rate::Constant, 96000),
         {u"-b96"_s}},
        {"lsf", 22050, 2, settingsFor(22050, joint, Rate::Constant, 64000), {u"-b64"_s}},
        {"v25",
         11025,
         1,
         settingsFor(11025, ChannelMode::Mono, Rate::Constant, 32000),
         {u"-b32"_s}},
    };
}

class EncodeTest : public ::testing::TestWithParam<Case> {
  protected:
    // Long enough for two chunks, so that there is a seam.
    static std::int64_t length(const Case& param) {
        return param.settings.samplesPerFrame() * 1600 + 321;
    }
    std::vector<std::uint8_t> encoded(const Sound& sound, int threads) {
        support::MemorySink sink;
        SpliceOptions options;
        options.threads = threads;
        encode(GetParam().settings, support::soundFrom(std::make_shared<Sound>(sound)),
               sound.length(), sink, options);
        return sink.bytes();
    }
    support::TempFolder folder_;
};

TEST_P(EncodeTest, EqualsAPlainEncodeWhateverTheThreads) {
    const Case& param = GetParam();
    const Sound sound = support::makeSound(param.rate, param.channels, length(param));
    const auto bytes = encoded(sound, 2);
    const auto path = folder_ / "ours.mp3";
    support::writeBytes(path, bytes);
    EXPECT_TRUE(bytes == encoded(sound, 1));
    if (param.settings.bitRate <= 128000) {
        EXPECT_TRUE(bytes == encoded(sound, 4));
    }
    support::expectFieldsTrue(path);

    const Sound ours = support::decode(path, Judge::Ffmpeg);
    ASSERT_EQ(ours.length(), sound.length());
    ASSERT_EQ(support::decode(path, Judge::Mpg123).length(), sound.length());

    const auto reference = folder_ / "lame.mp3";
    support::encodeMp3(reference, sound, param.lame);
    const Sound plain = support::decode(reference, Judge::Ffmpeg);
    const std::int64_t step = sound.rate / 4;
    double ourError = 0;
    double plainError = 0;
    double worst = 0;
    for (std::int64_t at = 0; at + step <= sound.length(); at += step) {
        const double a = support::meanSquare(ours, at, sound, at, step);
        const double b = support::meanSquare(plain, at, sound, at, step);
        ourError += a;
        plainError += b;
        worst = std::max(worst, 10 * std::log10(a / b));
    }
    RecordProperty("dB", std::to_string(10 * std::log10(ourError / plainError)));
    EXPECT_LT(10 * std::log10(ourError / plainError), 0.2);
    EXPECT_LT(worst, 3.0);
    EXPECT_NEAR(static_cast<double>(bytes.size()),
                static_cast<double>(std::filesystem::file_size(reference)),
                0.01 * static_cast<double>(bytes.size()) + 2000);
}

INSTANTIATE_TEST_SUITE_P(Variants, EncodeTest, ::testing::ValuesIn(cases()),
                         [](const auto& test) { return std::string(test.param.name); });

// LAME scales what it is given, by up to half a decibel, unless that is undone.
TEST_P(EncodeTest, LevelsAreKept) {
    Sound tone{GetParam().rate, GetParam().channels, {}};
    const std::int64_t frames = 2 * std::int64_t{tone.rate};
    for (std::int64_t i = 0; i < frames * tone.channels; ++i)
        tone.samples.push_back(0.5F * std::sin(2.0F * 3.14159265F * 440 * float(i / tone.channels) /
                                               float(tone.rate)));
    const auto path = folder_ / "tone.mp3";
    support::writeBytes(path, encoded(tone, 1));
    const auto energy = [](const Sound& sound) {
        return std::inner_product(sound.samples.begin(), sound.samples.end(), sound.samples.begin(),
                                  0.0);
    };
    const double ratio = energy(support::decode(path, Judge::Ffmpeg)) / energy(tone);
    EXPECT_NEAR(10 * std::log10(ratio), 0, 0.05);
}

TEST(NearestMp3, IsLegal) {
    EXPECT_EQ(nearestMp3(44'100, 128, 2).bitRate, 128'000);
    EXPECT_EQ(nearestMp3(44'100, 1'000, 5).bitRate, 320'000);
    EXPECT_EQ(nearestMp3(44'100, 1'000, 5).channels, 2);
    EXPECT_EQ(nearestMp3(22'050, 320, 1).bitRate, 160'000);
    EXPECT_EQ(nearestMp3(96'000, 0, 0).sampleRate, 48'000);
    EXPECT_EQ(nearestMp3(96'000, 0, 0).bitRate, 32'000);
    EXPECT_EQ(nearestMp3(7'000, 8, 1).sampleRate, 8'000);
}

}  // namespace
