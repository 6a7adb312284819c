// SPDX-License-Identifier: GPL-3.0-or-later
// What is silence and what is not: Normalize and TrimSilence on soft sound.
#include <cmath>
#include <numbers>

#include <gtest/gtest.h>

#include "audio/edit/Saver.h"
#include "effects/engine/AudioEditor.h"
#include "platform/Paths.h"
#include "tests/effects/engine/Made.h"
#include "tests/support/Fixtures.h"
#include "tests/support/TempFolder.h"

using namespace Qt::Literals::StringLiterals;
using effects::AudioEditor;
using support::Sound;

namespace {

double decibels(double factor) {
    return 20 * std::log10(factor);
}

/// The peak of the samples of every `step`th value from `first` on.
float peakOf(const Sound& sound, std::size_t first = 0, std::size_t step = 1) {
    float peak = 0;
    for (std::size_t i = first; i < sound.samples.size(); i += step)
        peak = std::max(peak, std::fabs(sound.samples[i]));
    return peak;
}

class Quiet : public testing::Test {
  protected:
    std::filesystem::path made(const char* name, const Sound& sound,
                               const QStringList& options = {}) {
        makeFile(folder / name, sound, options);
        return folder / name;
    }

    Sound normalized(const std::filesystem::path& file, float percent, bool linked = true) {
        editor.Load(platform::toQString(file));
        editor.SelectWholeFile();
        editor.Normalize(percent, linked);
        editor.Save(platform::toQString(file), true, 0);
        return support::decodeWithFfmpeg(file);
    }

    Sound trimmed(const std::filesystem::path& file) {
        editor.Load(platform::toQString(file));
        editor.SelectWholeFile();
        editor.TrimSilence(-20, 100, 2);
        editor.Save(platform::toQString(file), true, 0);
        return support::decodeWithFfmpeg(file);
    }

    support::TempFolder folder;
    AudioEditor editor;
};

/// Full notes: a loud song for those who measure loudness.
Sound song(double seconds, double level = 0.5) {
    Sound sound{{}, 44100, 2};
    for (std::size_t i = 0; i < static_cast<std::size_t>(seconds * 44100); ++i) {
        const double time = static_cast<double>(i) / 44100;
        const auto sample =
            static_cast<float>(level * std::sin(2 * std::numbers::pi * 1000 * time));
        sound.samples.insert(sound.samples.end(), {sample, sample});
    }
    return sound;
}

Sound silence(double seconds) {
    return noise(44100, 2, seconds, 0);
}

}  // namespace

TEST_F(Quiet, WhatIsNothingButDitherIsNotNormalized) {
    const auto file =
        made("dither.wav", noise(44100, 2, 1, 2.0 / 32768), {u"-c:a"_s, u"pcm_s16le"_s});
    const auto before = support::readBytes(file);
    EXPECT_LT(decibels(peakOf(support::decodeWithFfmpeg(file))), -80);
    normalized(file, 100);
    EXPECT_EQ(support::readBytes(file), before);
    EXPECT_NE(editor.SaveNotice().indexOf(u"not normalized"_s), -1)
        << editor.SaveNotice().toStdString();
    EXPECT_NE(editor.SaveNotice().indexOf(u"-84 dBFS"_s), -1) << editor.SaveNotice().toStdString();
    // The next save has nothing to tell.
    editor.Save(platform::toQString(file), true, 0);
    EXPECT_TRUE(editor.SaveNotice().isEmpty());
}

TEST_F(Quiet, TheLimitIsSixtyDecibelsBelowFullScale) {
    const auto justBelow =
        made("below.wav", noise(44100, 1, 1, 0.00095), {u"-c:a"_s, u"pcm_f32le"_s});
    EXPECT_LT(peakOf(normalized(justBelow, 80)), 0.001F);
    const auto justAbove =
        made("above.wav", noise(44100, 1, 1, 0.00105), {u"-c:a"_s, u"pcm_f32le"_s});
    EXPECT_NEAR(peakOf(normalized(justAbove, 80)), 0.8, 1e-5);
    EXPECT_TRUE(editor.SaveNotice().isEmpty());
}

TEST_F(Quiet, TheLouderChannelDecidesForBoth) {
    for (const std::size_t loud : {0U, 1U}) {
        Sound sound = noise(44100, 2, 1, 0.5);
        for (std::size_t i = 1 - loud; i < sound.samples.size(); i += 2) sound.samples[i] *= 0.25F;
        const auto file = made("two.wav", sound, {u"-c:a"_s, u"pcm_f32le"_s});
        const Sound result = normalized(file, 90);
        EXPECT_NEAR(peakOf(result, loud, 2), 0.9, 1e-4);
        EXPECT_NEAR(peakOf(result, 1 - loud, 2), 0.225, 1e-3);
    }
}

TEST_F(Quiet, AnUnlinkedChannelOfDitherStaysBesideOneOfSound) {
    Sound sound = noise(44100, 2, 1, 0.5);
    for (std::size_t i = 1; i < sound.samples.size(); i += 2) sound.samples[i] *= 0.0001F;
    const Sound result = normalized(made("one.wav", sound, {u"-c:a"_s, u"pcm_f32le"_s}), 90, false);
    EXPECT_NEAR(peakOf(result, 0, 2), 0.9, 1e-4);
    EXPECT_LT(peakOf(result, 1, 2), 0.0001F);
    EXPECT_TRUE(editor.SaveNotice().isEmpty());
}

TEST_F(Quiet, AnIntroThatCanBeHeardStaysBeforeALoudSong) {
    Sound sound = song(5, std::pow(10, -26 / 20.0));
    extend(sound, song(20, 0.9));
    const auto file = made("intro.wav", sound, {u"-c:a"_s, u"pcm_s16le"_s});
    const auto before = support::readBytes(file);
    trimmed(file);
    EXPECT_TRUE(support::readBytes(file) == before);
}

TEST_F(Quiet, AFadingTailGoesOnceItCannotBeHeard) {
    // 60 dB in 12 s after a song that measures -6 LUFS or so: -50 is reached after 9 s, while 20 LU
    // less are reached after 4.
    Sound sound = song(10, 0.5);
    Sound tail = song(12, 0.5);
    for (std::size_t i = 0; i < tail.samples.size(); ++i)
        tail.samples[i] *= static_cast<float>(std::pow(
            10, -60.0 / 20 * static_cast<double>(i) / static_cast<double>(tail.samples.size())));
    extend(sound, tail);
    const Sound result = trimmed(made("tail.wav", sound, {u"-c:a"_s, u"pcm_s16le"_s}));
    const double left = static_cast<double>(result.frames()) / 44100 - 10;
    EXPECT_GT(left, 8.5);
    EXPECT_LT(left, 9.5);
}

TEST_F(Quiet, ACutInSoftSoundIsFadedOverFiveMilliseconds) {
    const double hiss = 0.0005;  // about -70 LUFS
    Sound sound = noise(44100, 2, 2, hiss);
    extend(sound, song(3));
    extend(sound, noise(44100, 2, 2, hiss, 2));
    const auto file = made("hiss.wav", sound, {u"-c:a"_s, u"pcm_f32le"_s});
    const Sound result = trimmed(file);
    ASSERT_LT(result.frames(), 3.2 * 44100);
    ASSERT_GT(result.frames(), 3.0 * 44100);
    // Where the kept part begins: two seconds less the margin, at a step of 10 ms.
    const std::size_t start = 2 * 44100 - 441;
    const std::size_t edge = 220;
    for (std::size_t i = 0; i < result.frames(); ++i) {
        double gain = 1;
        if (i < edge) gain = static_cast<double>(i) / (edge - 1);
        const std::size_t fromEnd = result.frames() - 1 - i;
        if (fromEnd < edge) gain = static_cast<double>(fromEnd) / (edge - 1);
        ASSERT_NEAR(result.samples[2 * i], sound.samples[2 * (start + i)] * gain, 1e-6) << i;
    }
}

TEST_F(Quiet, ACutInDigitalSilenceLeavesEverySampleAlone) {
    Sound sound = silence(2);
    extend(sound, song(3));
    extend(sound, silence(2));
    const auto file = made("cut.wav", sound, {u"-c:a"_s, u"pcm_s16le"_s});
    const Sound before = support::decodeWithFfmpeg(file);
    const Sound result = trimmed(file);
    EXPECT_EQ(editor.LastSaveReport().renderedFrames, 0);
    // One step of 10 ms of silence is left before the sound.
    EXPECT_EQ(result.samples, before.part(2 * 44100 - 441, result.frames()).samples);
    EXPECT_GE(result.frames(), 3U * 44100 + 2 * 441);
    EXPECT_LE(result.frames(), 3U * 44100 + 4 * 441);
}

TEST_F(Quiet, SoftSoundOfThreeStepsIsStillSilenceInEightBits) {
    // What 8 bits hold of it is digital silence, so nothing is faded.
    Sound sound = noise(44100, 1, 2, 0.0005);
    Sound middle{{}, 44100, 1};
    for (std::size_t i = 0; i < 3 * 44100; ++i)
        middle.samples.push_back(0.5F * static_cast<float>(std::sin(0.1 * static_cast<double>(i))));
    extend(sound, middle);
    const auto file = made("eight.wav", sound, {u"-c:a"_s, u"pcm_u8"_s});
    const Sound before = support::decodeWithFfmpeg(file);
    const Sound result = trimmed(file);
    ASSERT_LT(result.frames(), before.frames());
    EXPECT_EQ(result.samples,
              before.part(before.frames() - result.frames(), result.frames()).samples);
}
