// SPDX-License-Identifier: GPL-3.0-or-later
// MP3 whose frames cannot take an edit as they are: all of it is encoded instead, and nothing of
// what was written before stays in the file.
#include <gtest/gtest.h>

#include "audio/edit/Saver.h"
#include "audio/mpeg/splice/Splice.h"
#include "effects/engine/AudioEditor.h"
#include "platform/Paths.h"
#include "tests/audio/mpeg/splice/MemorySink.h"
#include "tests/effects/engine/ForeignMp3.h"
#include "tests/effects/engine/Made.h"
#include "tests/support/Fixtures.h"
#include "tests/support/Sound.h"
#include "tests/support/TempFolder.h"

using namespace Qt::Literals::StringLiterals;
using audio::edit::SaveMethod;
using effects::AudioEditor;
using foreign::Bytes;
using support::Sound;

namespace {

class MpegFallback : public testing::Test {
  protected:
    /// The frames of noise, without an info frame.
    Bytes frames(double seconds) {
        const auto made = folder / "made.mp3";
        makeFile(made, noise(48'000, 2, seconds, 0.4),
                 {u"-b:a"_s, u"320k"_s, u"-id3v2_version"_s, u"0"_s});
        return foreign::soundOf(made);
    }
    /// The same with its gain lowered as far as the frames can state.
    Bytes faintest(const Bytes& sound) {
        const auto plain = folder / "plain.mp3";
        foreign::write(plain, sound);
        const audio::mpeg::FrameIndex index(plain);
        for (int steps = -255; steps < 0; ++steps) {
            try {
                support::MemorySink sink;
                audio::mpeg::gain(plain, index, steps, sink, {});
                foreign::write(folder / "faint.mp3", sink.bytes());
                return foreign::soundOf(folder / "faint.mp3");
            } catch (const audio::mpeg::CannotSplice&) {
                continue;
            }
        }
        ADD_FAILURE() << "nothing can be lowered";
        return {};
    }
    void load(const Bytes& bytes) {
        foreign::write(file, bytes);
        before = support::decodeWithFfmpeg(file);
        editor.Load(platform::toQString(file));
        editor.SelectWholeFile();
    }
    Sound saved() {
        editor.Save(platform::toQString(file), false, 0);
        const auto judge = support::run(u"mpg123"_s, {u"-q"_s, u"-t"_s, platform::toQString(file)});
        EXPECT_EQ(judge.exitCode, 0) << judge.err.toStdString();
        return support::decodeWithFfmpeg(file);
    }

    support::TempFolder folder;
    std::filesystem::path file = folder / "a.mp3";
    Sound before;
    AudioEditor editor;
};

// Much of the sound is written with half the gain before a frame is met whose gain has no room.
TEST_F(MpegFallback, HalvingAFrameOfTheLeastGainEncodes) {
    Bytes both = frames(10);
    const Bytes faint = faintest(frames(1));
    both.insert(both.end(), faint.begin(), faint.end());
    load(both);
    editor.Amplify(50);
    const Sound after = saved();
    EXPECT_EQ(editor.LastSaveReport().method, SaveMethod::Encoded);
    EXPECT_EQ(editor.LastSaveReport().note, "");  // and it came out right at once
    ASSERT_EQ(after.frames(), before.frames());
    Sound wanted = before;
    for (float& sample : wanted.samples) sample *= 0.5F;
    EXPECT_GT(
        support::snrDb(wanted.part(2'000, 100'000).samples, after.part(2'000, 100'000).samples),
        5);  // noise, encoded again
}

TEST_F(MpegFallback, HalvingTheLoudPartAloneDoesNot) {
    load(frames(2));
    editor.Amplify(50);
    const Sound after = saved();
    EXPECT_EQ(editor.LastSaveReport().method, SaveMethod::Spliced);
    Sound wanted = before;
    for (float& sample : wanted.samples) sample *= 0.5F;
    EXPECT_LE(support::maxDifference(after.samples, wanted.samples), 1e-6);
}

}  // namespace
