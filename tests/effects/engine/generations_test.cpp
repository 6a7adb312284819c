// SPDX-License-Identifier: GPL-3.0-or-later
// Ten edits of the same file, each saved over the one before: nothing may creep in.
#include <gtest/gtest.h>

#include "audio/edit/Saver.h"
#include "effects/engine/AudioEditor.h"
#include "platform/Paths.h"
#include "tests/effects/engine/Formats.h"
#include "tests/effects/engine/Ideal.h"
#include "tests/support/Fixtures.h"
#include "tests/support/Sound.h"
#include "tests/support/TempFolder.h"

using namespace Qt::Literals::StringLiterals;

using support::Sound;

namespace {

/// What ten generations leave of the sound at least, in dB against the ideal.
double leastSnr(const FileKind& kind) {
    return kind.extension() == QStringLiteral("wma") ? 8 : 12;
}

class Generations : public testing::TestWithParam<FileKind> {};

INSTANTIATE_TEST_SUITE_P(Kinds, Generations, testing::ValuesIn(allKinds()),
                         [](const auto& instance) { return testNameOf(instance.param); });

}  // namespace

TEST_P(Generations, TenFadeInsKeepTheLengthAndTheRest) {
    const FileKind& kind = GetParam();
    const support::TempFolder folder;
    const auto file = support::scratchCopy(kind.name, folder.path());
    const Sound before = support::decodeWithFfmpeg(file);
    const auto faded = std::size_t(before.rate) / 2;
    Sound wanted = before;
    effects::AudioEditor editor;
    for (int generation = 0; generation < 10; ++generation) {
        editor.Load(platform::toQString(file));
        ASSERT_EQ(std::size_t(editor.GetLength()), before.frames()) << generation;
        editor.SetSelectionActive(true);
        editor.SetSelectionEnd(int(faded));
        editor.Fade(70, 100);
        editor.SetSelectionActive(false);
        editor.Save(platform::toQString(file), true, 0);
        wanted = ideal::faded(wanted, 0, faded, 0.7, 1.0);
    }
    const Sound after = support::decodeWithFfmpeg(file);
    ASSERT_EQ(after.frames(), before.frames());
    EXPECT_EQ(after.rate, before.rate);
    EXPECT_EQ(after.channels, before.channels);

    const std::size_t second = std::size_t(before.rate);
    const std::size_t lastSecond = before.frames() - second;
    const bool spliced =
        kind.extension() == QStringLiteral("mp3") || kind.extension() == QStringLiteral("mp2");
    if (!kind.lossy() || spliced)
        EXPECT_EQ(after.part(lastSecond, second).samples, before.part(lastSecond, second).samples);
    else
        EXPECT_GT(support::snrDb(before.part(lastSecond, second).samples,
                                 after.part(lastSecond, second).samples),
                  leastSnr(kind));
    // Independent noise of ten generations has a deviation of 1.6 steps.
    const double step = kind.step * (kind.dithered ? 9.0 : 5.0) + 1e-5;
    if (kind.lossy())
        EXPECT_GT(support::snrDb(wanted.part(0, second).samples, after.part(0, second).samples),
                  leastSnr(kind));
    else
        EXPECT_LE(
            support::maxDifference(wanted.part(0, second).samples, after.part(0, second).samples),
            step);
}

// Programs other than LAME write variable bit-rates without a word on what was asked for.
TEST(Generations, AVariableBitRateOfUnknownQualityIsKept) {
    const support::TempFolder folder;
    const auto file = folder.path() / "unknown.mp3";
    const QString sound =
        u"anoisesrc=c=pink:a=0.4:d=12:r=44100:seed=7,tremolo=f=2.7:d=0.8[noise];"
        "aevalsrc=0.3*sin(2*PI*(220+110*mod(floor(t*3)\\,5))*t):d=12:s=44100[notes];"
        "[noise][notes]amix,aformat=channel_layouts=stereo"_s;
    const support::Outcome made = support::run(
        u"ffmpeg"_s, {u"-v"_s, u"error"_s, u"-f"_s, u"lavfi"_s, u"-i"_s, sound, u"-c:a"_s,
                      u"libmp3lame"_s, u"-q:a"_s, u"2"_s, platform::toQString(file)});
    ASSERT_EQ(made.exitCode, 0) << made.err.toStdString();
    const auto before = double(std::filesystem::file_size(file));
    effects::AudioEditor editor;
    for (int generation = 1; generation <= 4; ++generation) {
        editor.Load(platform::toQString(file));
        editor.SetSelectionActive(true);
        editor.SetSelectionEnd(editor.GetLength());
        editor.Amplify(generation % 2 == 1 ? 90.0F : 110.0F);
        editor.SetSelectionActive(false);
        editor.Save(platform::toQString(file), true, 0);
        EXPECT_NEAR(double(std::filesystem::file_size(file)) / before, 1.0, 0.02 * generation);
    }
}
