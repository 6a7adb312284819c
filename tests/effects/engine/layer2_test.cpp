// SPDX-License-Identifier: GPL-3.0-or-later
// MP2 files: their frames are whole and say nothing of where the sound begins, and what can be done
// by frames is.
#include <cmath>
#include <numeric>

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

constexpr std::size_t frame = 1152;

struct Kind {
    const char* name;
    int rate;
    int channels;
    QStringList options;
};

std::ostream& operator<<(std::ostream& out, const Kind& kind) {
    return out << kind.name;
}

// Every table of subbands, from both encoders there are.
std::vector<Kind> kinds() {
    return {{"stereo192", 44100, 2, {u"-b:a"_s, u"192k"_s}},
            {"stereo384", 48000, 2, {u"-b:a"_s, u"384k"_s}},
            {"stereo128", 44100, 2, {u"-b:a"_s, u"128k"_s}},
            {"stereo96", 48000, 2, {u"-b:a"_s, u"96k"_s}},
            {"mono48", 32000, 1, {u"-b:a"_s, u"48k"_s}},
            {"mono160", 48000, 1, {u"-b:a"_s, u"160k"_s}},
            {"lsf64", 22050, 2, {u"-b:a"_s, u"64k"_s}}};
}

class LayerTwo : public testing::TestWithParam<Kind> {
  protected:
    /// A file of this sound, which is decoded again into `before`.
    void make(const Sound& sound) {
        makeFile(file, sound, QStringList{u"-c:a"_s, u"mp2"_s} + GetParam().options);
        before = support::decodeWithFfmpeg(file);
        ASSERT_EQ(before.frames() % frame, 0U);
        editor.Load(platform::toQString(file));
        editor.SelectWholeFile();
    }
    Sound saved() {
        editor.Save(platform::toQString(file), true, 0);
        return support::decodeWithFfmpeg(file);
    }
    Sound hum(double seconds) const {
        Sound sound = noise(GetParam().rate, GetParam().channels, seconds, 0.05);
        const auto channels = static_cast<std::size_t>(sound.channels);
        for (std::size_t i = 0; i < sound.samples.size(); ++i)
            sound.samples[i] +=
                0.4F * static_cast<float>(std::sin(0.05 * static_cast<double>(i / channels)));
        return sound;
    }

    support::TempFolder folder;
    std::filesystem::path file = folder / "a.mp2";
    Sound before;
    AudioEditor editor;
};

INSTANTIATE_TEST_SUITE_P(Kinds, LayerTwo, testing::ValuesIn(kinds()),
                         [](const auto& instance) { return std::string(instance.param.name); });

}  // namespace

TEST_P(LayerTwo, HalfTheLevelIsASetOfScaleFactors) {
    // It fills the last frame, too: silence there has the lowest factors.
    constexpr std::size_t delay = 481;  // of ffmpeg's encoder
    make(hum((50.0 * frame - delay + 0.5) / GetParam().rate));
    const auto bytes = support::readBytes(file);
    editor.Amplify(50);
    const Sound after = saved();
    EXPECT_EQ(editor.LastSaveReport().method, audio::edit::SaveMethod::Spliced);
    EXPECT_EQ(editor.LastSaveReport().renderedFrames, 0);
    EXPECT_EQ(support::readBytes(file).size(), bytes.size());
    ASSERT_EQ(after.frames(), before.frames());
    for (std::size_t i = 0; i < before.samples.size(); ++i)
        ASSERT_NEAR(after.samples[i], before.samples[i] / 2, 1e-5) << i;
    // And back.
    editor.SelectWholeFile();
    editor.Amplify(200);
    saved();
    EXPECT_TRUE(support::readBytes(file) == bytes);
}

TEST_P(LayerTwo, ALevelBetweenTheStepsIsEncoded) {
    make(hum(1));
    editor.Amplify(55);
    const Sound after = saved();
    EXPECT_EQ(editor.LastSaveReport().method, audio::edit::SaveMethod::Encoded);
    EXPECT_EQ(after.frames(), before.frames());
}

TEST_P(LayerTwo, TrimmingCutsBetweenFrames) {
    Sound sound = noise(GetParam().rate, GetParam().channels, 1, 0);
    extend(sound, hum(2));
    extend(sound, noise(GetParam().rate, GetParam().channels, 1.3, 0));
    make(sound);
    editor.TrimSilence(-20, 100, 2);
    const Sound after = saved();
    EXPECT_EQ(editor.LastSaveReport().method, audio::edit::SaveMethod::Spliced);
    const auto rate = static_cast<double>(GetParam().rate);
    EXPECT_GE(static_cast<double>(after.frames()), 2.0 * rate);
    EXPECT_LE(static_cast<double>(after.frames()), 2.1 * rate + 2.0 * frame);
    // The sound lies in it as it was, but for what the first frames overlap.
    const auto start = static_cast<std::size_t>(rate) / frame * frame;
    std::size_t best = 0;
    double least = 1;
    for (std::size_t from = start - 3 * frame; from <= start; from += frame) {
        const double found =
            support::maxDifference(before.part(from + 2 * frame, 30 * frame).samples,
                                   after.part(2 * frame, 30 * frame).samples);
        if (found < least) best = from;
        least = std::min(least, found);
    }
    EXPECT_LE(least, 1e-6) << best;
}

TEST_P(LayerTwo, SilenceOfWholeFramesMovesTheOthers) {
    make(hum(2));
    // So many frames that they last whole milliseconds.
    const auto rate = static_cast<std::size_t>(GetParam().rate);
    const std::size_t least = rate / std::gcd(1000 * frame, rate);
    const std::size_t count = (49 + least - 1) / least * least;
    editor.SetSelectionStart(0);
    editor.InsertSilence(static_cast<int>(count * 1000 * frame / rate));
    const Sound after = saved();
    EXPECT_EQ(editor.LastSaveReport().method, audio::edit::SaveMethod::Spliced);
    ASSERT_EQ(after.frames(), before.frames() + count * frame);
    EXPECT_LE(support::maxDifference(before.part(4 * frame, 60 * frame).samples,
                                     after.part((count + 4) * frame, 60 * frame).samples),
              1e-6);
}
