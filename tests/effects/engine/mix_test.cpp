// SPDX-License-Identifier: GPL-3.0-or-later
// MixFile, held against arithmetic of its own: where every sample of both sounds goes.
#include <cmath>
#include <random>

#include <gtest/gtest.h>

#include "effects/engine/AudioEditor.h"
#include "platform/Paths.h"
#include "tests/effects/engine/Made.h"
#include "tests/support/TempFolder.h"

using namespace Qt::Literals::StringLiterals;
using support::Sound;

namespace {

struct Case {
    std::size_t sound;
    std::size_t file;
    int start;  ///< of the selection, which ends `end` frames before the sound's end
    int end = 0;
    float soundPercent = 100;
    float filePercent = 100;
};

/// Adds the file sample by sample, growing the sound where a selection that begins before it pushes
/// the file past its end.
std::vector<double> wanted(const Sound& sound, const Sound& file, const Case& mix) {
    const auto length = static_cast<std::int64_t>(sound.frames());
    const std::int64_t start = std::max(0, mix.start);
    const std::int64_t stop = length - mix.end;
    std::vector<double> result(sound.samples.begin(), sound.samples.end());
    const double a = static_cast<double>(mix.soundPercent) / 100;
    const double b = static_cast<double>(mix.filePercent) / 100;
    for (std::int64_t i = start; i < stop; ++i) result[static_cast<std::size_t>(i)] *= a;
    for (std::size_t k = 0; k < file.frames(); ++k) {
        const std::int64_t at = start + static_cast<std::int64_t>(k);
        if (at >= stop && !(mix.start < 0 && mix.end == 0)) break;
        if (static_cast<std::size_t>(at) >= result.size()) result.push_back(0);
        result[static_cast<std::size_t>(at)] += b * static_cast<double>(file.samples[k]);
    }
    return result;
}

class Mix : public testing::Test {
  protected:
    void expectMix(const Case& mix) {
        SCOPED_TRACE(testing::Message() << mix.sound << " + " << mix.file << " at " << mix.start
                                        << ", " << mix.end << " before the end");
        const Sound sound = noise(8000, 1, static_cast<double>(mix.sound) / 8000, 0.4, 1);
        const Sound file = noise(8000, 1, static_cast<double>(mix.file) / 8000, 0.4, 2);
        makeFile(folder / "sound.wav", sound, {u"-c:a"_s, u"pcm_f32le"_s});
        makeFile(folder / "file.wav", file, {u"-c:a"_s, u"pcm_f32le"_s});
        effects::AudioEditor editor;
        const QString path = folder.file(u"sound.wav"_s);
        editor.Load(path);
        ASSERT_EQ(editor.GetLength(), static_cast<int>(mix.sound));
        editor.SetSelectionActive(true);
        editor.SetSelectionStart(mix.start);
        editor.SetSelectionEnd(editor.GetLength() - mix.end);
        editor.MixFile(folder.file(u"file.wav"_s), mix.soundPercent, mix.filePercent);
        const std::vector<double> expected = wanted(sound, file, mix);
        EXPECT_EQ(editor.GetLength(), static_cast<int>(expected.size()));
        EXPECT_EQ(editor.SelectionEnd(), editor.GetLength() - mix.end);
        editor.Save(path, false, 0);
        const Sound result = support::decodeWithFfmpeg(folder / "sound.wav");
        ASSERT_EQ(result.frames(), expected.size());
        for (std::size_t i = 0; i < expected.size(); ++i)
            ASSERT_NEAR(static_cast<double>(result.samples[i]), expected[i], 1e-6) << i;
    }

    support::TempFolder folder;
};

}  // namespace

TEST_F(Mix, AFileLongerThanTheSoundIsHeardToItsEnd) {
    // The overlap was to be 20 s, and the sound has but 13.5: nothing of the 20 is lost.
    expectMix({.sound = 13500, .file = 20000, .start = -6500});
    expectMix(
        {.sound = 13500, .file = 20000, .start = -6500, .soundPercent = 80, .filePercent = 60});
}

TEST_F(Mix, AFileShorterThanTheSoundIsHeardFromTheSoundsStart) {
    expectMix({.sound = 9000, .file = 8000, .start = -1});
    expectMix({.sound = 9000, .file = 9000, .start = -2000});
}

TEST_F(Mix, ARangeThatEndsWithinTheSoundEndsTheFile) {
    expectMix({.sound = 9000, .file = 12000, .start = -2000, .end = 1000});
    expectMix({.sound = 9000, .file = 12000, .start = 3000, .end = 1000});
}

TEST_F(Mix, ARangeThatBeginsWithinTheSoundMakesItNoLonger) {
    expectMix({.sound = 9000, .file = 12000, .start = 0});
    expectMix({.sound = 9000, .file = 12000, .start = 5000});
    expectMix({.sound = 9000, .file = 1000, .start = 5000});
}

// Only where both are heard has anything been computed that dither is for.
TEST_F(Mix, WhatIsAppendedToSixteenBitsComesThroughBitForBit) {
    const QStringList wav{u"-c:a"_s, u"pcm_s16le"_s};
    makeFile(folder / "sound.wav", noise(8000, 2, 0.5, 0.4, 1), wav);
    makeFile(folder / "file.wav", noise(8000, 2, 1.25, 0.4, 2), wav);
    const Sound file = support::decodeWithFfmpeg(folder / "file.wav");
    effects::AudioEditor editor;
    editor.Load(folder.file(u"sound.wav"_s));
    editor.SetSelectionActive(true);
    editor.SetSelectionStart(-2000);
    editor.SetSelectionEnd(editor.GetLength());
    editor.MixFile(folder.file(u"file.wav"_s), 100, 100);
    editor.Save(folder.file(u"sound.wav"_s), false, 0);
    const Sound mixed = support::decodeWithFfmpeg(folder / "sound.wav");
    ASSERT_EQ(mixed.frames(), file.frames());
    EXPECT_EQ(mixed.part(4000, 6000).samples, file.part(4000, 6000).samples);
    EXPECT_NE(mixed.part(0, 4000).samples, file.part(0, 4000).samples);
}

TEST_F(Mix, EverySampleOfRandomLengthsIsHeardOnce) {
    std::mt19937 random(14);
    for (int round = 0; round < 12; ++round) {
        Case mix{};
        mix.sound = 1000 + random() % 9000;
        mix.file = 1000 + random() % 9000;
        mix.start = static_cast<int>(random() % 12000) - 8000;
        mix.start = std::min(mix.start, static_cast<int>(mix.sound) - 100);
        mix.end = round % 3 == 0 ? 50 : 0;
        expectMix(mix);
    }
}
