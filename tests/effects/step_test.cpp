// SPDX-License-Identifier: GPL-3.0-or-later
// What each effect asks of the engine, to the argument.
#include <limits>

#include <gtest/gtest.h>

#include "app/modules/modMain.h"
#include "effects/batch/EffectStep.h"
#include "platform/Error.h"
#include "tests/support/FakeEditor.h"

using namespace Qt::Literals::StringLiterals;
using effects::EffectId;

namespace {

class Step : public testing::Test {
  protected:
    QStringList apply(EffectId id) {
        editor.calls.clear();
        effects::effectOf(id).apply(editor, settings, effects::callStrictly);
        return editor.calls;
    }

    support::FakeEditor editor;
    effects::EffectSettings settings;
};

TEST_F(Step, AmplifyMinusAlternates) {
    settings.value = 45;
    EXPECT_EQ(apply(EffectId::AmplifyMinus),
              (QStringList{u"SelectWholeFile()"_s, u"Amplify(55)"_s}));
    EXPECT_EQ(apply(EffectId::AmplifyMinus).last(), u"Amplify(45)"_s);
    EXPECT_EQ(apply(EffectId::AmplifyMinus).last(), u"Amplify(55)"_s);
}

TEST_F(Step, AmplifyPlusGrows) {
    settings.value = 45;
    EXPECT_EQ(apply(EffectId::AmplifyPlus),
              (QStringList{u"SelectWholeFile()"_s, u"Amplify(145)"_s}));
    EXPECT_EQ(apply(EffectId::AmplifyPlus).last(), u"Amplify(245)"_s);
    EXPECT_EQ(apply(EffectId::AmplifyPlus).last(), u"Amplify(345)"_s);
}

TEST_F(Step, ACopyOfTheSettingsGivesEachFileTheValueAsGiven) {
    settings.value = 45;
    const effects::EffectSettings given = settings;
    apply(EffectId::AmplifyPlus);
    settings = given;
    EXPECT_EQ(apply(EffectId::AmplifyPlus).last(), u"Amplify(145)"_s);
}

TEST_F(Step, NormalizeLinksTheChannels) {
    settings.value = 50;
    EXPECT_EQ(apply(EffectId::Normalize),
              (QStringList{u"SelectWholeFile()"_s, u"Normalize(50, true)"_s}));
}

TEST_F(Step, SilenceGoesToTheFrontOrTheEnd) {
    settings.value = 1000;
    EXPECT_EQ(apply(EffectId::SilenceFront),
              (QStringList{u"SetSelectionStart(0)"_s, u"InsertSilence(1000)"_s}));
    EXPECT_EQ(apply(EffectId::SilenceEnd),
              (QStringList{u"SetSelectionStart(441000)"_s, u"InsertSilence(1000)"_s}));
}

TEST_F(Step, FadeInLeavesTheEndOfItsRangeToTheEngine) {
    settings.fadeMs = 50000;
    settings.level = 7;
    EXPECT_EQ(apply(EffectId::FadeIn),
              (QStringList{u"SetSelectionActive(false)"_s, u"SetSelectionActive(true)"_s,
                           u"SetSelectionStart(0)"_s, u"SetSelectionEnd(2205000)"_s,
                           u"Fade(7, 100)"_s, u"SetSelectionActive(false)"_s}));
}

TEST_F(Step, FadeOutMayBeginBeforeTheSound) {
    settings.fadeMs = 50000;
    settings.level = 3;
    EXPECT_EQ(apply(EffectId::FadeOut),
              (QStringList{u"SetSelectionActive(false)"_s, u"SetSelectionActive(true)"_s,
                           u"SetSelectionStart(-1764000)"_s, u"SetSelectionEnd(441000)"_s,
                           u"Fade(100, 3)"_s, u"SetSelectionActive(false)"_s}));
    EXPECT_EQ(settings.fadeOutStart, 441000 - 2205000);
}

TEST_F(Step, FadeOutChecksItsSubtraction) {
    editor.length = std::numeric_limits<std::int32_t>::max();
    settings.fadeMs = -50000;  // the one way to leave 32 bits
    EXPECT_THROW(apply(EffectId::FadeOut), platform::Error);
    EXPECT_EQ(settings.fadeOutStart, 0);
}

TEST_F(Step, EchoPassesTimeDepthGainRateAndTheFixedTwo) {
    EXPECT_EQ(apply(EffectId::Echo),
              (QStringList{u"SelectWholeFile()"_s, u"Echo(7, 40, 10, 75, 8000, 10)"_s}));
}

TEST_F(Step, TrimPassesItsFixedThree) {
    EXPECT_EQ(apply(EffectId::Trim),
              (QStringList{u"SelectWholeFile()"_s, u"TrimSilence(-20, 100, 2)"_s}));
}

TEST_F(Step, AutomaticFadeTakesTheFirstAndTheLastSixthRoundedToEven) {
    editor.length = 15;  // a sixth is 2.5, the last one begins at 12.5
    effects::autoFadeInOut(editor, effects::callStrictly);
    EXPECT_EQ(editor.calls,
              (QStringList{u"SetSelectionActive(false)"_s, u"SetSelectionActive(true)"_s,
                           u"SetSelectionStart(0)"_s, u"SetSelectionEnd(2)"_s, u"Fade(0, 100)"_s,
                           u"SetSelectionActive(false)"_s, u"SetSelectionActive(true)"_s,
                           u"SetSelectionStart(12)"_s, u"SetSelectionEnd(15)"_s, u"Fade(100, 0)"_s,
                           u"SetSelectionActive(false)"_s}));
}

TEST_F(Step, ModesAndNamesFindTheirEffect) {
    using effects::effectOfMode;
    EXPECT_EQ(effectOfMode(modMain::ModeAmplifyMinus)->id, EffectId::AmplifyMinus);
    EXPECT_EQ(effectOfMode(modMain::ModeAmplifyPlus)->id, EffectId::AmplifyPlus);
    EXPECT_EQ(effectOfMode(modMain::ModeNormalize)->id, EffectId::Normalize);
    EXPECT_EQ(effectOfMode(modMain::ModeSilenceFront)->id, EffectId::SilenceFront);
    EXPECT_EQ(effectOfMode(modMain::ModeSilenceEnd)->id, EffectId::SilenceEnd);
    EXPECT_EQ(effectOfMode(modMain::ModeNone), nullptr);
    EXPECT_EQ(effectOfMode(11), nullptr);
    EXPECT_EQ(effects::effectNamed("trim")->id, EffectId::Trim);
    EXPECT_EQ(effects::effectNamed("reverb"), nullptr);
}

}  // namespace
