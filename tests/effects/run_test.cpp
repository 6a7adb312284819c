// SPDX-License-Identifier: GPL-3.0-or-later
// Effects applied from the real window to real files, judged on disk by the ffmpeg program.
#include <algorithm>
#include <cmath>

#include <QComboBox>

#include "player/engine/PlayerEngine.h"
#include "tests/effects/EffectsWindow.h"
#include "tests/support/Interposed.h"
#include "tests/support/Sound.h"

using namespace Qt::Literals::StringLiterals;
using support::answerMessageBox;
using support::chooseFromMenu;
using support::click;
using support::decodeWithFfmpeg;
using support::find;
using support::fixture;
using support::readBytes;
using support::settle;
using support::Sound;
using support::waitFor;

namespace {

using EffectRun = support::EffectsWindow;

constexpr double oneStep16 = 1.0 / 32768;
constexpr double dithered = 2.5 * oneStep16;  // rounding, and TPDF dither of one step each way

Sound soundOf(const QString& path) {
    return decodeWithFfmpeg(platform::toPath(path));
}

double peakOf(const Sound& sound) {
    double peak = 0;
    for (const float sample : sound.samples) peak = std::max(peak, std::abs(double{sample}));
    return peak;
}

double levelOf(const Sound& sound) {
    double energy = 0;
    for (const float sample : sound.samples) energy += double{sample} * sample;
    return std::sqrt(energy / static_cast<double>(std::max<std::size_t>(sound.samples.size(), 1)));
}

/// What a 16-bit file can hold of the samples times a gain.
std::vector<float> amplified(const Sound& sound, double gain) {
    std::vector<float> samples;
    for (const float sample : sound.samples)
        samples.push_back(static_cast<float>(std::clamp(sample * gain, -1.0, 1 - oneStep16)));
    return samples;
}

/// A straight fade over the first (or, backwards, the last) so many frames of a sound.
std::vector<float> faded(const Sound& sound, std::size_t frames, double quiet, bool atEnd) {
    std::vector<float> samples = sound.samples;
    const auto channels = static_cast<std::size_t>(sound.channels);
    const std::size_t first = atEnd ? sound.frames() - frames : 0;
    for (std::size_t frame = 0; frame < frames; ++frame) {
        const double place = static_cast<double>(frame) / static_cast<double>(frames - 1);
        const double gain = quiet + (1 - quiet) * (atEnd ? 1 - place : place);
        for (std::size_t channel = 0; channel < channels; ++channel) {
            float& sample = samples[(first + frame) * channels + channel];
            sample = static_cast<float>(sample * gain);
        }
    }
    return samples;
}

TEST_F(EffectRun, AmplifyPlusGrowsFromFileToFile) {
    const QStringList files{add("tone.wav", u"1.wav"_s), add("tone.wav", u"2.wav"_s),
                            add("tone.wav", u"3.wav"_s)};
    select({1, 2, 3});
    choose("mnuAmpPlus_Selected");
    const auto message = apply(dialog("frmEffects"));
    EXPECT_EQ(message->text, u"Effects applied to selected file(s)."_s);
    EXPECT_EQ(message->icon, QMessageBox::NoIcon);
    EXPECT_EQ(message->buttons, QMessageBox::Ok);
    const Sound before = decodeWithFfmpeg(fixture("tone.wav"));
    const double gains[] = {1.45, 2.45, 3.45};
    for (int i = 0; i < 3; ++i)
        EXPECT_LE(support::maxDifference(soundOf(files[i]).samples, amplified(before, gains[i])),
                  dithered)
            << gains[i];
    EXPECT_EQ(modMain::EffectMode, 0);
    EXPECT_EQ(modMain::SelectedCount, 0);
}

TEST_F(EffectRun, AmplifyMinusAlternates) {
    const QStringList files{add("tone.wav", u"1.wav"_s), add("tone.wav", u"2.wav"_s)};
    select({1, 2});
    choose("mnuAmpMinus_Selected");
    apply(dialog("frmEffects"));
    const Sound before = decodeWithFfmpeg(fixture("tone.wav"));
    EXPECT_LE(support::maxDifference(soundOf(files[0]).samples, amplified(before, 0.55)), dithered);
    EXPECT_LE(support::maxDifference(soundOf(files[1]).samples, amplified(before, 0.45)), dithered);
}

TEST_F(EffectRun, OnlySelectedFilesChange) {
    const QString first = add("tone.wav", u"1.wav"_s);
    const QString second = add("tone.wav", u"2.wav"_s);
    const auto before = readBytes(platform::toPath(first));
    select({2});
    choose("mnuNormalize_selected");
    apply(dialog("frmEffects"));
    EXPECT_EQ(readBytes(platform::toPath(first)), before);
    EXPECT_NE(readBytes(platform::toPath(second)), before);
}

/// Every effect meets every format.
class Formats : public support::EffectsWindow, public testing::WithParamInterface<const char*> {
  protected:
    bool lossless() const { return std::string_view(GetParam()).ends_with(".wav"); }
    /// MP2 and WMA end with a whole frame of theirs, and say nowhere where the sound ends in it.
    void expectFrames(const Sound& sound, std::size_t frames) const {
        const std::string_view name = GetParam();
        const std::size_t frame = name.ends_with(".mp2") ? 1152 : name.ends_with(".wma") ? 2048 : 1;
        EXPECT_GE(sound.frames(), frames);
        EXPECT_LT(sound.frames(), frames + frame);
    }
    Sound before() { return decodeWithFfmpeg(fixture(GetParam())); }
};

TEST_P(Formats, Normalize) {
    const QString file = add(GetParam());
    select({1});
    choose("mnuNormalize_selected");
    slider(dialog("frmEffects")).setValue(80);
    apply(dialog("frmEffects"));
    const Sound after = soundOf(file);
    EXPECT_EQ(after.frames(), before().frames());
    EXPECT_NEAR(peakOf(after), 0.8, lossless() ? dithered : 0.1);
    EXPECT_TRUE(list().mark(1).isEmpty()) << list().mark(1).toStdString();
}

TEST_P(Formats, AmplifyMinus) {
    const QString file = add(GetParam());
    select({1});
    choose("mnuAmpMinus_Selected");
    slider(dialog("frmEffects")).setValue(75);
    apply(dialog("frmEffects"));
    EXPECT_NEAR(levelOf(soundOf(file)) / levelOf(before()), 0.25, 0.01);
}

TEST_P(Formats, SilenceInFrontAndAtTheEndAndItsTrimming) {
    const QString file = add(GetParam());
    select({1});
    const Sound old = before();
    choose("mnuSilence2Frt");
    apply(dialog("frmEffects"));
    const Sound once = soundOf(file);
    const std::size_t second = static_cast<std::size_t>(old.rate);
    expectFrames(once, old.frames() + second);
    EXPECT_LT(peakOf(once.part(0, second - 2048)), lossless() ? 1e-9 : 0.01);
    choose("mnuAdd_Silence_end");
    slider(dialog("frmEffects")).setValue(500);
    apply(dialog("frmEffects"));
    const Sound twice = soundOf(file);
    expectFrames(twice, once.frames() + second / 2);
    EXPECT_LT(peakOf(twice.part(once.frames() + 2048, second)), lossless() ? 1e-9 : 0.01);
    EXPECT_GT(support::snrDb(old.samples, twice.part(second, old.frames()).samples),
              lossless() ? 100 : 8);
    choose("mnuTrim_Silence");
    EXPECT_NEAR(static_cast<double>(soundOf(file).frames()), static_cast<double>(old.frames()),
                static_cast<double>(second) / 5);
    EXPECT_TRUE(list().mark(1).isEmpty()) << list().mark(1).toStdString();
}

TEST_P(Formats, FadesAndEcho) {
    const QString file = add(GetParam());
    select({1});
    const Sound old = before();
    choose("mnuFadeIn_selected");
    EXPECT_EQ(apply(dialog("frmFadeIn"))->text, u"Effect applied to selected file(s)."_s);
    Sound after = soundOf(file);
    EXPECT_LT(levelOf(after.part(0, 2000)) / levelOf(old.part(0, 2000)), 0.1);
    choose("mnuFadeOut_selected");
    EXPECT_EQ(apply(dialog("frmFadeOut"))->text, u"Effect applied to selected file(s)."_s);
    after = soundOf(file);
    const std::size_t tail = old.frames() - 2000;
    EXPECT_LT(levelOf(after.part(tail, 2000)) / levelOf(old.part(tail, 2000)), 0.1);
    choose("mnuEch_Selected");
    EXPECT_EQ(apply(dialog("frmEcho_Effects"))->text, u"Effect applied to selected file(s)."_s);
    EXPECT_GT(std::abs(levelOf(soundOf(file)) / levelOf(after) - 1), 0.01);
    EXPECT_EQ(soundOf(file).frames(), old.frames());
    EXPECT_TRUE(list().mark(1).isEmpty()) << list().mark(1).toStdString();
}

INSTANTIATE_TEST_SUITE_P(All, Formats,
                         testing::Values("tone.wav", "tone.mp3", "tone.mp2", "tone.ogg",
                                         "tone.wma"),
                         [](const auto& test) { return std::string(test.param + 5); });

TEST_F(EffectRun, FadeInTakesTheChosenLengthAndLevel) {
    const QString file = add("music.wav");
    select({1});
    choose("mnuFadeIn_selected");
    QWidget& form = dialog("frmFadeIn");
    find<QComboBox>(form, "Combo5").setCurrentText(u"front 10 secs of file"_s);
    slider(form).setValue(20);
    apply(form);
    const Sound old = decodeWithFfmpeg(fixture("music.wav"));
    EXPECT_LE(support::maxDifference(soundOf(file).samples, faded(old, 441000, 0.2, false)),
              dithered);
    EXPECT_EQ(modMain::FadeInMs, 10000);
}

TEST_F(EffectRun, FadeOutTakesTheChosenLengthAndLevel) {
    const QString file = add("music.wav");
    select({1});
    choose("mnuFadeOut_selected");
    QWidget& form = dialog("frmFadeOut");
    find<QComboBox>(form, "Combo5").setCurrentIndex(2);
    slider(form).setValue(50);
    apply(form);
    const Sound old = decodeWithFfmpeg(fixture("music.wav"));
    EXPECT_LE(support::maxDifference(soundOf(file).samples, faded(old, 15 * 44100, 0.5, true)),
              dithered);
    EXPECT_EQ(modMain::FadeOutMs, 15000);
    EXPECT_EQ(modMain::FadeOutStart, 5 * 44100);
}

TEST_F(EffectRun, AFadeLongerThanTheFileFadesAllOfIt) {
    const QString file = add("tone.wav");
    select({1});
    choose("mnuFadeIn_selected");
    find<QComboBox>(dialog("frmFadeIn"), "Combo5").setCurrentText(u"front 50 secs of file"_s);
    apply(dialog("frmFadeIn"));
    const Sound old = decodeWithFfmpeg(fixture("tone.wav"));
    EXPECT_LE(support::maxDifference(soundOf(file).samples, faded(old, old.frames(), 0, false)),
              dithered);
}

TEST_F(EffectRun, ATextThatIsNoLengthKeepsThePreviousOne) {
    const QString file = add("music.wav");
    select({1});
    modMain::FadeInMs = 3000;
    choose("mnuFadeIn_selected");
    find<QComboBox>(dialog("frmFadeIn"), "Combo5").setCurrentText(u"Front 5 secs of file"_s);
    apply(dialog("frmFadeIn"));
    EXPECT_EQ(modMain::FadeInMs, 3000);
    const Sound old = decodeWithFfmpeg(fixture("music.wav"));
    EXPECT_LE(support::maxDifference(soundOf(file).samples, faded(old, 3 * 44100, 0, false)),
              dithered);
}

TEST_F(EffectRun, TheDelayRateOfTheEchoChangesNothing) {
    const QString first = add("tone.wav", u"1.wav"_s);
    const QString second = add("tone.wav", u"2.wav"_s);
    for (const int rate : {100, 9000}) {
        select({rate == 100 ? 1 : 2});
        choose("mnuEch_Selected");
        slider(dialog("frmEcho_Effects"), "Slider2").setValue(rate);
        apply(dialog("frmEcho_Effects"));
    }
    EXPECT_EQ(modMain::EffectValue, 75);
    EXPECT_EQ(readBytes(platform::toPath(first)), readBytes(platform::toPath(second)));
    EXPECT_NE(readBytes(platform::toPath(first)), readBytes(fixture("tone.wav")));
}

TEST_F(EffectRun, AModeThatTheDialogDoesNotKnowSavesTheFileUnchanged) {
    const QString file = add("tone.wav");
    select({1});
    choose("mnuNormalize_selected");
    modMain::EffectMode = 11;
    apply(dialog("frmEffects"));
    EXPECT_EQ(support::maxDifference(soundOf(file).samples,
                                     decodeWithFfmpeg(fixture("tone.wav")).samples),
              0);
}

TEST_F(EffectRun, WithNothingSelectedTheMessageStillComes) {
    const QString file = add("tone.wav");
    select({});
    choose("mnuNormalize_selected");
    const auto message = apply(dialog("frmEffects"));
    EXPECT_EQ(message->text, u"Effects applied to selected file(s)."_s);
    EXPECT_EQ(bar().maximum(), 1);
    EXPECT_EQ(readBytes(platform::toPath(file)), readBytes(fixture("tone.wav")));
}

TEST_F(EffectRun, AnEmptyListIsNoTrouble) {
    choose("mnuFadeIn_selected");
    EXPECT_EQ(apply(dialog("frmFadeIn"))->text, u"Effect applied to selected file(s)."_s);
    choose("mnuTrim_Silence");
}

TEST_F(EffectRun, TheAutomaticFadeNeverChangesAFile) {
    const QString file = add("tone.wav");
    select({1});
    choose("mnuAutoFade_Selected");
    settle();
    EXPECT_EQ(readBytes(platform::toPath(file)), readBytes(fixture("tone.wav")));
}

TEST_F(EffectRun, TrimWorksThroughTheSelectionWithoutAMessage) {
    const QString loud = add("tone.wav", u"1.wav"_s);
    const QString padded = add("tone.wav", u"2.wav"_s);
    select({2});
    choose("mnuSilence2Frt");
    apply(dialog("frmEffects"));
    select({1, 2});
    choose("mnuTrim_Silence");
    settle();
    EXPECT_EQ(support::openWindow("MsgBox"), nullptr);
    EXPECT_NEAR(static_cast<double>(soundOf(padded).frames()), 2 * 44100, 4410);
    EXPECT_NEAR(static_cast<double>(soundOf(loud).frames()), 2 * 44100, 4410);
    EXPECT_TRUE(text("Label5").isEmpty());
    EXPECT_TRUE(find<QAbstractButton>(*window, "Button1").isEnabled());
    EXPECT_TRUE(list().isEnabled());
}

TEST_F(EffectRun, TrimOfNothingTouchesNothing) {
    const QString file = add("tone.wav");
    select({});
    choose("mnuTrim_Silence");
    settle();
    EXPECT_EQ(readBytes(platform::toPath(file)), readBytes(fixture("tone.wav")));
    EXPECT_TRUE(find<QAbstractButton>(*window, "CommandForward1").isEnabled());
}

TEST_F(EffectRun, CancellingTheTipOfTrimLeavesThePlayerAlone) {
    add("music.wav");
    auto& engine = find<player::PlayerEngine>(*window, "PlayerEngine1");
    engine.PlaylistPlayItem(0, 0);
    ASSERT_TRUE(waitFor([&] { return engine.GetPlayerStatus(0) == player::StatusPlaying; }));
    answerMessageBox(QMessageBox::Cancel);
    chooseFromMenu(*window, "Button1", "mnuTrim_Silence");
    ASSERT_TRUE(support::allAnswered());
    EXPECT_EQ(engine.GetPlayerStatus(0), player::StatusPlaying);
    engine.StopPlayer(0);
}

TEST_F(EffectRun, ARunStopsThePlayerFirst) {
    const QString file = add("music.wav");
    auto& engine = find<player::PlayerEngine>(*window, "PlayerEngine1");
    engine.PlaylistPlayItem(0, 0);
    ASSERT_TRUE(waitFor([&] { return engine.GetPlayerStatus(0) == player::StatusPlaying; }));
    select({1});
    choose("mnuNormalize_selected");
    apply(dialog("frmEffects"));
    EXPECT_EQ(engine.GetPlayerStatus(0), player::StatusStopped);
    EXPECT_NEAR(peakOf(soundOf(file)), 0.5, dithered);
}

TEST_F(EffectRun, TheListShowsTheNewDuration) {
    add("tone.ogg");
    ASSERT_TRUE(waitFor([&] { return list().subItem(1, 1) == u"0:02"_s; }));
    select({1});
    choose("mnuAdd_Silence_end");
    slider(dialog("frmEffects")).setValue(5000);
    apply(dialog("frmEffects"));
    EXPECT_TRUE(waitFor([&] { return list().subItem(1, 1) == u"0:07"_s; }));
}

TEST_F(EffectRun, SavingWhatIsPlayedKeepsItPlaying) {
    const QString file = add("music.wav");
    select({1});
    choose("mnuNormalize_selected");
    apply(dialog("frmEffects"));
    auto& engine = find<player::PlayerEngine>(*window, "PlayerEngine1");
    engine.PlaylistPlayItem(0, 0);
    ASSERT_TRUE(waitFor([&] { return engine.GetPosition(0) > 300; }));
    int commits = 0;  // of the sound; neither player nor editor may hold it then
    const support::InterposedReset reset;
    support::interposed.rename = [&](const char* from, const char* to) {
        ++commits;
        EXPECT_EQ(support::descriptorsOf(to), 0);
        return support::systemRename(from, to);
    };
    click(*window, "Button12");
    EXPECT_EQ(engine.GetPlayerStatus(0), player::StatusPlaying);
    EXPECT_EQ(commits, 1);
    const int place = engine.GetPosition(0);
    EXPECT_GT(place, 0);
    EXPECT_TRUE(waitFor([&] { return engine.GetPosition(0) > place + 300; }));
    EXPECT_NEAR(peakOf(soundOf(file)), 0.5, dithered);
    engine.StopPlayer(0);
}

TEST_F(EffectRun, NamesOfEveryKindAreNamesLikeOthers) {
    const QStringList names{u"two  blanks.wav"_s, u"it's \"quoted\".wav"_s, u"Æther – 音楽 ♫.wav"_s,
                            u"100% & <b>bold.wav"_s, u"-n.wav"_s};
    std::vector<int> rows;
    for (const QString& name : names) {
        add("tone.wav", name);
        rows.push_back(list().rowCount());
    }
    select(rows);
    choose("mnuNormalize_selected");
    apply(dialog("frmEffects"));
    for (const QString& name : names)
        EXPECT_NEAR(peakOf(soundOf(folder.file(name))), 0.5, dithered) << name.toStdString();
}

}  // namespace
