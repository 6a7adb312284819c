// SPDX-License-Identifier: GPL-3.0-or-later
// MP3 files that begin as programs other than ours write them, edited: two judges and this program
// agree on the result, and what was not touched sounds as before.
#include <cmath>
#include <functional>
#include <random>

#include <gtest/gtest.h>

#include "audio/edit/Saver.h"
#include "audio/mpeg/read/FrameIndex.h"
#include "effects/engine/AudioEditor.h"
#include "platform/Paths.h"
#include "tests/effects/engine/ForeignMp3.h"
#include "tests/effects/engine/Ideal.h"
#include "tests/support/Fixtures.h"
#include "tests/support/Sound.h"
#include "tests/support/TempFolder.h"

using namespace Qt::Literals::StringLiterals;
using effects::AudioEditor;
using foreign::Bytes;
using support::Sound;

namespace {

constexpr std::size_t second = 44100;

/// How a file begins.
struct Maker {
    const char* name;
    std::function<Bytes(const Bytes& sound)> make;
};

std::ostream& operator<<(std::ostream& out, const Maker& maker) {
    return out << maker.name;
}

const std::vector<Maker>& makers() {
    static const std::vector<Maker> all{
        {"vbri", [](const Bytes& sound) { return foreign::behindVbri(sound); }},
        {"vbriWithoutDelay", [](const Bytes& sound) { return foreign::behindVbri(sound, 0); }},
        {"xingWithoutExtension",  // as iTunes does
         [](const Bytes& sound) {
             return foreign::behindXing(sound, foreign::xing(sound, 15), 417);
         }},
        {"xingWithFramesAlone",
         [](const Bytes& sound) { return foreign::behindXing(sound, foreign::xing(sound, 1)); }},
        {"otherEncodersDelay",
         [](const Bytes& sound) {
             const Bytes extension = foreign::extension("mp3packer", 1105, 1000);
             return foreign::behindXing(sound, foreign::xing(sound, 15, extension));
         }},
        {"oldLavf182",
         [](const Bytes& sound) {
             const Bytes extension = foreign::extension("Lavf53.4", 1105, 576, 24);
             return foreign::behindXing(sound, foreign::xing(sound, 7, extension), 180);
         }},
        {"oldLavf180",
         [](const Bytes& sound) {
             const Bytes extension = foreign::extension("Lavf52.1", 576, 1000, 28);
             return foreign::behindXing(sound, foreign::xing(sound, 7, extension), 180);
         }},
        {"lameOfTwelveBits",
         [](const Bytes& sound) {
             const Bytes extension = foreign::extension("LAME3.99r", 4000, 4000);
             return foreign::behindXing(sound, foreign::xing(sound, 15, extension));
         }},
        {"tagThatCountsNothing",
         [](const Bytes& sound) {
             return foreign::behindXing(sound, foreign::xing(sound, 4), 417);
         }},
        {"nothing", [](const Bytes& sound) { return sound; }},
    };
    return all;
}

class ForeignMp3 : public testing::TestWithParam<Maker> {
  protected:
    void SetUp() override {
        foreign::write(file, GetParam().make(foreign::soundOf(support::fixture(source))));
        before = support::decodeWithFfmpeg(file);
        ASSERT_GT(before.frames(), 19 * second);
    }

    /// Edits the file in place; what is in it then, as the judges agree.
    Sound edited(const std::function<void(AudioEditor&)>& edit) {
        AudioEditor editor;
        editor.SetTemporaryFolder(folder.file(u"scratch"_s));
        editor.Load(platform::toQString(file));
        EXPECT_EQ(static_cast<std::size_t>(editor.GetLength()), before.frames());
        editor.SelectWholeFile();
        edit(editor);
        editor.SetSelectionActive(false);
        editor.Save(platform::toQString(file), false, 0);
        method = editor.LastSaveReport().method;
        const Sound after = support::decodeWithFfmpeg(file);
        EXPECT_EQ(static_cast<std::size_t>(audio::mpeg::FrameIndex(file).gaplessLength()),
                  after.frames());
        return after;
    }

    /// The second judge, which reads no VBRI frame and takes more delays for true, has no say on
    /// what another program has begun; on what this one begins it has to agree.
    void expectOneLength(const Sound& after) {
        EXPECT_EQ(support::decodeWithMpg123(file).frames(), after.frames());
    }

    static constexpr auto source = "music-vbr.mp3";
    support::TempFolder folder;
    std::filesystem::path file = folder / "a.mp3";
    Sound before;
    audio::edit::SaveMethod method{};
};

/// The greatest difference of [from, from + count) of one and [otherFrom …) of the other.
double difference(const Sound& one, std::size_t from, const Sound& other, std::size_t otherFrom,
                  std::size_t count) {
    return support::maxDifference(one.part(from, count).samples,
                                  other.part(otherFrom, count).samples);
}

INSTANTIATE_TEST_SUITE_P(AllMakers, ForeignMp3, testing::ValuesIn(makers()),
                         [](const auto& instance) { return std::string(instance.param.name); });

}  // namespace

TEST_P(ForeignMp3, Amplified) {
    const Sound after = edited([](AudioEditor& editor) { editor.Amplify(55); });
    ASSERT_EQ(after.frames(), before.frames());
    const Sound wanted = ideal::faded(before, 0, before.frames(), 0.55, 0.55);
    EXPECT_GT(support::snrDb(wanted.samples, after.samples), 12);
}

TEST_P(ForeignMp3, AmplifiedInExactSteps) {
    const Sound after = edited([](AudioEditor& editor) { editor.Amplify(50); });
    ASSERT_EQ(after.frames(), before.frames());
    const Sound wanted = ideal::faded(before, 0, before.frames(), 0.5, 0.5);
    EXPECT_LE(support::maxDifference(wanted.samples, after.samples), 1e-6);
    EXPECT_EQ(method, audio::edit::SaveMethod::Spliced);
}

TEST_P(ForeignMp3, FadedInAndOut) {
    const Sound after = edited([](AudioEditor& editor) {
        editor.SetSelectionEnd(editor.TimeToPosition(3000));
        editor.Fade(0, 100);
        editor.SetSelectionStart(editor.GetLength() - editor.TimeToPosition(3000));
        editor.SetSelectionEnd(editor.GetLength());
        editor.Fade(100, 0);
    });
    ASSERT_EQ(after.frames(), before.frames());
    EXPECT_EQ(method, audio::edit::SaveMethod::Spliced);
    const std::size_t from = 7 * second / 2;
    const std::size_t count = before.frames() - 7 * second;
    EXPECT_LE(difference(after, from, before, from, count), 1e-6);
    Sound wanted = ideal::faded(before, 0, 3 * second, 0, 1);
    wanted = ideal::faded(wanted, before.frames() - 3 * second, before.frames(), 1, 0);
    EXPECT_GT(support::snrDb(wanted.part(0, 3 * second).samples, after.part(0, 3 * second).samples),
              12);
}

TEST_P(ForeignMp3, SilenceInFrontIsAsLongAsAsked) {
    const Sound after = edited([](AudioEditor& editor) { editor.InsertSilence(1000); });
    ASSERT_EQ(after.frames(), before.frames() + second);
    expectOneLength(after);
    EXPECT_EQ(method, audio::edit::SaveMethod::Spliced);
    EXPECT_LE(difference(after, 2 * second, before, second, before.frames() - second), 1e-6);
    // Ahead of the sound the encoder's echo of it is all there is.
    const Sound front = after.part(0, second - 2000);
    EXPECT_LT(ideal::highest(front), 0.001);
}

TEST_P(ForeignMp3, SilenceAtTheEndIsAsLongAsAsked) {
    const Sound after = edited([](AudioEditor& editor) {
        editor.SetSelectionStart(editor.GetLength());
        editor.InsertSilence(1000);
    });
    ASSERT_EQ(after.frames(), before.frames() + second);
    expectOneLength(after);
    EXPECT_LE(difference(after, 0, before, 0, before.frames() - second), 1e-6);
}

TEST_P(ForeignMp3, CutAtBothEnds) {
    const Sound after = edited([](AudioEditor& editor) {
        editor.SetSelectionStart(editor.GetLength() - 30001);
        editor.DeleteSelection();
        editor.SetSelectionStart(0);
        editor.SetSelectionEnd(40003);
        editor.DeleteSelection();
    });
    ASSERT_EQ(after.frames(), before.frames() - 70004);
    expectOneLength(after);
    EXPECT_EQ(method, audio::edit::SaveMethod::Spliced);
    EXPECT_LE(difference(after, 0, before, 40003, after.frames() - second), 1e-6);
}

// What a tag states of the level is true of the old one alone.
TEST(LameTag, LosesPeakAndGainWithTheLevel) {
    const Bytes sound = foreign::soundOf(support::fixture("music-vbr.mp3"));
    Bytes extension = foreign::extension("LAME3.99r", 576, 1000);
    std::fill_n(extension.begin() + 11, 8, std::uint8_t{0x21});  // peak, two gains
    const Bytes whole = foreign::behindXing(sound, foreign::xing(sound, 15, extension));
    const support::TempFolder folder;
    const auto file = folder / "a.mp3";
    for (const float level : {50.0F, 55.0F, 100.0F}) {
        SCOPED_TRACE(level);
        foreign::write(file, whole);
        AudioEditor editor;
        editor.Load(platform::toQString(file));
        editor.SelectWholeFile();
        // A fade of the start alone leaves the peak of the rest.
        if (level == 100) editor.SetSelectionEnd(44100);
        editor.Fade(level == 100 ? 0 : level, level);
        editor.Save(platform::toQString(file), false, 0);
        const auto bytes = support::readBytes(file);
        const auto tag = audio::mpeg::FrameIndex(file).info();
        ASSERT_TRUE(tag && tag->extended);
        const auto expected = static_cast<std::byte>(level == 100 ? 0x21 : 0);
        for (std::size_t i = 11; i < 19; ++i) EXPECT_EQ(bytes[tag->lameOffset + i], expected) << i;
    }
}

// The smallest slots hold but five bytes of main data, so that the reservoir reaches back over
// fifty frames of silence.
TEST(SmallFrames, AreKeptBehindSilenceAndFades) {
    const support::TempFolder folder;
    const QString wav = folder.file(u"a.wav"_s);
    ASSERT_EQ(support::run(u"sox"_s, {u"-R"_s, u"-n"_s, u"-r"_s, u"44100"_s, u"-c"_s, u"2"_s, wav,
                                      u"synth"_s, u"20"_s, u"pluck"_s, u"220"_s, u"pluck"_s,
                                      u"331"_s, u"tremolo"_s, u"3"_s, u"60"_s, u"gain"_s, u"-3"_s})
                  .exitCode,
              0);
    for (const QStringList& options :
         {QStringList{u"-b:a"_s, u"24k"_s, u"-ar"_s, u"22050"_s},
          QStringList{u"-b:a"_s, u"32k"_s, u"-ar"_s, u"24000"_s},
          QStringList{u"-b:a"_s, u"16k"_s, u"-ar"_s, u"24000"_s, u"-ac"_s, u"1"_s}}) {
        SCOPED_TRACE(options.join(u' ').toStdString());
        const QString file = folder.file(u"a.mp3"_s);
        const auto outcome =
            support::run(u"ffmpeg"_s, QStringList{u"-v"_s, u"error"_s, u"-y"_s, u"-i"_s, wav,
                                                  u"-c:a"_s, u"libmp3lame"_s, u"-abr"_s, u"1"_s} +
                                          options + QStringList{file});
        ASSERT_EQ(outcome.exitCode, 0) << outcome.err.toStdString();
        const Sound before = support::decodeWithFfmpeg(platform::toPath(file));
        AudioEditor editor;
        editor.Load(file);
        editor.SetSelectionActive(true);
        editor.SetSelectionEnd(editor.TimeToPosition(2000));
        editor.Fade(0, 100);
        editor.SetSelectionEnd(0);
        editor.InsertSilence(1000);
        editor.Save(file, false, 0);
        EXPECT_EQ(editor.LastSaveReport().method, audio::edit::SaveMethod::Spliced)
            << editor.LastSaveReport().note;
        const Sound after = support::decodeWithFfmpeg(platform::toPath(file));
        const auto rate = static_cast<std::size_t>(before.rate);
        ASSERT_EQ(after.frames(), before.frames() + rate);
        EXPECT_LE(difference(after, 4 * rate, before, 3 * rate, before.frames() - 3 * rate), 1e-6);
    }
}

// One wrong bit can make thousands of times full scale of a frame, which would also be what
// Normalize goes by.
TEST(DamagedMp3, WhatNoEncoderWritesIsNeverHeard) {
    const Bytes sound = foreign::soundOf(support::fixture("music-vbr.mp3"));
    const support::TempFolder folder;
    const auto file = folder / "a.mp3";
    std::mt19937 random(5);
    foreign::write(file, sound);
    const audio::mpeg::FrameIndex index(file);
    double worst = 0;
    for (int round = 0; round < 4; ++round) {
        Bytes damaged = sound;
        for (int i = 0; i < 20; ++i) {
            // A bit of the side information, where gains and sizes are told.
            const auto number = 5 + static_cast<std::int64_t>(random() % 700);
            const auto at =
                static_cast<std::size_t>(index.frame(number).offset) + 6 + random() % 28;
            damaged[at] ^= static_cast<std::uint8_t>(1U << random() % 8);
        }
        foreign::write(file, damaged);
        worst = std::max(worst, ideal::highest(support::decodeWithFfmpeg(file)));
        AudioEditor editor;
        editor.Load(platform::toQString(file));
        // What the program decodes, as floats that nothing limits.
        editor.SelectWholeFile();
        editor.Amplify(1);
        editor.SetOutputFormatWav(44100, 2, 16);
        editor.Save(folder.file(u"a.wav"_s), false, 0);
        EXPECT_LE(ideal::highest(support::decodeWithFfmpeg(folder / "a.wav")), 0.165);
    }
    EXPECT_GT(worst, 50);  // the judge's word on how bad it was
}

// Files whose last frame lacks its end, as one encoder of old leaves them all.
TEST(CutMp3, TheLastFrameIsKept) {
    const Bytes sound = foreign::soundOf(support::fixture("music.mp3"));
    const support::TempFolder folder;
    const auto file = folder / "cut.mp3";
    // What the frames hold at 192 kbit/s: 626 or 627 bytes.
    for (const std::size_t missing : {1U, 100U, 500U, 580U}) {
        SCOPED_TRACE(missing);
        const Bytes cut(sound.begin(), sound.end() - static_cast<std::ptrdiff_t>(missing));
        foreign::write(file, cut);
        const Sound before = support::decodeWithFfmpeg(file);
        ASSERT_EQ(before.frames() % 1152, 0U);
        AudioEditor editor;
        editor.Load(platform::toQString(file));
        ASSERT_EQ(static_cast<std::size_t>(editor.GetLength()), before.frames());
        editor.SetSelectionActive(true);
        editor.SetSelectionEnd(2 * second);
        editor.Fade(0, 100);
        editor.Save(platform::toQString(file), false, 0);
        EXPECT_EQ(editor.LastSaveReport().method, audio::edit::SaveMethod::Spliced);
        Sound after = support::decodeWithFfmpeg(file);
        ASSERT_EQ(after.frames(), before.frames());
        EXPECT_EQ(difference(after, 3 * second, before, 3 * second, before.frames() - 3 * second),
                  0);
        // With silence behind it, it is whole again.
        editor.SetSelectionStart(editor.GetLength());
        editor.InsertSilence(500);
        editor.Save(platform::toQString(file), false, 0);
        after = support::decodeWithFfmpeg(file);
        ASSERT_EQ(after.frames(), before.frames() + second / 2);
        EXPECT_EQ(support::decodeWithMpg123(file).frames(), after.frames());
        const std::size_t end = before.frames() - 1152;
        EXPECT_GT(support::snrDb(before.part(end, 1152).samples, after.part(end, 1152).samples), 6);
    }
}
