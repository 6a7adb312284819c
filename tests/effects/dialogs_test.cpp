// SPDX-License-Identifier: GPL-3.0-or-later
// The effect dialogs as the user meets them: captions, ranges, first values, and their end.
#include <QComboBox>
#include <QMenu>

#include "tests/effects/EffectsWindow.h"

using namespace Qt::Literals::StringLiterals;
using support::activate;
using support::answerMessageBox;
using support::chooseFromMenu;
using support::click;
using support::find;
using support::openWindow;
using support::settle;
using support::waitFor;

namespace {

using Dialogs = support::EffectsWindow;

struct ValueCase {
    const char* item;
    int mode, minimum, maximum, initial;
    const char* unit;
    const char* caption;
};

class ValueDialog : public support::EffectsWindow, public testing::WithParamInterface<ValueCase> {};

TEST_P(ValueDialog, OpensWithItsCaptionAndRange) {
    const ValueCase& expected = GetParam();
    choose(expected.item);
    QWidget& form = dialog("frmEffects");
    EXPECT_EQ(form.windowTitle(), QString::fromUtf8(expected.caption));
    EXPECT_EQ(modMain::EffectMode, expected.mode);
    EXPECT_EQ(slider(form).minimum(), expected.minimum);
    EXPECT_EQ(slider(form).maximum(), expected.maximum);
    EXPECT_EQ(slider(form).value(), expected.initial);
    EXPECT_EQ(label(form, "LabelValue"), QString::number(expected.initial));
    EXPECT_EQ(label(form, "LabelUnit"), QString::fromUtf8(expected.unit));
    EXPECT_EQ(label(form, "Label2"), u"Value:"_s);
    EXPECT_EQ(label(form, "Label1"), u"Slider is set to default value."_s);
    EXPECT_EQ(find<QAbstractButton>(form, "Command1").text(), u"Apply"_s);
    EXPECT_EQ(find<QAbstractButton>(form, "Command2").text(), u"Cancel"_s);
    EXPECT_FALSE(form.isModal());
}

INSTANTIATE_TEST_SUITE_P(
    All, ValueDialog,
    testing::Values(
        ValueCase{"mnuAmpMinus_Selected", 1, 10, 90, 45, "%", "Amplify - Effect setting..."},
        ValueCase{"mnuAmpPlus_Selected", 2, 10, 90, 45, "%", "Amplify + Effect setting..."},
        ValueCase{"mnuNormalize_selected", 4, 10, 100, 50, "%", "Normalize Effect setting..."},
        ValueCase{"mnuSilence2Frt", 16, 100, 5000, 1000, "Ms", "Add silence to front of the file"},
        ValueCase{"mnuAdd_Silence_end", 17, 100, 5000, 1000, "Ms",
                  "Add silence to end of the file"}),
    [](const auto& test) { return std::string(test.param.item); });

TEST_F(Dialogs, TheTipIsShownToTheLetter) {
    const auto tip = answerMessageBox(QMessageBox::Cancel);
    chooseFromMenu(*window, "Button1", "mnuNormalize_selected");
    ASSERT_TRUE(support::allAnswered());
    EXPECT_EQ(tip->title, u"IMPORTANT TIP!"_s);
    EXPECT_EQ(QString(tip->text).remove(u'\r'),
              u"It is strongly advised that you copy the playlist files to a 'Project Folder'\n"
              "BEFORE applying any effects!\n\n"
              "You can easily do so via the 'Copy loaded files...' menu item.\n\n"
              "This way your orginal files will be preserved.\n\n"
              "Proceed now?  "_s);
    EXPECT_EQ(tip->buttons, QMessageBox::Ok | QMessageBox::Cancel);
    EXPECT_EQ(tip->icon, QMessageBox::Warning);
}

TEST_F(Dialogs, CancellingTheTipOpensNothingAndKeepsTheMode) {
    for (const char* item :
         {"mnuAmpMinus_Selected", "mnuAmpPlus_Selected", "mnuNormalize_selected", "mnuSilence2Frt",
          "mnuAdd_Silence_end", "mnuFadeIn_selected", "mnuFadeOut_selected", "mnuEch_Selected"}) {
        modMain::EffectMode = 7;
        answerMessageBox(QMessageBox::Cancel);
        chooseFromMenu(*window, "Button1", item);
        ASSERT_TRUE(support::allAnswered());
        settle();
        EXPECT_EQ(modMain::EffectMode, 7) << item;
        for (const char* form : {"frmEffects", "frmFadeIn", "frmFadeOut", "frmEcho_Effects"})
            EXPECT_EQ(openWindow(form), nullptr) << item;
    }
}

TEST_F(Dialogs, TheAutomaticFadeShowsNothingButTheTip) {
    choose("mnuAutoFade_Selected");
    settle();
    EXPECT_EQ(modMain::EffectMode, 0);
    for (QWidget* form : QApplication::topLevelWidgets())
        EXPECT_TRUE(form == window.get() || !form->isVisible()) << form->objectName().toStdString();
}

void expectFade(QWidget& form, const QString& caption, const QString& where, const QString& which) {
    EXPECT_EQ(form.windowTitle(), caption);
    auto& lengths = find<QComboBox>(form, "Combo5");
    QStringList items;
    for (int i = 0; i < lengths.count(); ++i) items << lengths.itemText(i);
    QStringList expected;
    for (const int seconds : {5, 10, 15, 20, 25, 30, 40, 50})
        expected << u"%1 %2 secs of file"_s.arg(where).arg(seconds);
    EXPECT_EQ(items, expected);
    EXPECT_EQ(lengths.currentText(), expected.first());
    auto& slider = find<QAbstractSlider>(form, "Slider1");
    EXPECT_EQ(slider.minimum(), 0);
    EXPECT_EQ(slider.maximum(), 50);
    EXPECT_EQ(slider.singleStep(), 1);
    EXPECT_EQ(slider.pageStep(), 5);
    EXPECT_EQ(slider.value(), 0);
    EXPECT_EQ(find<QLabel>(form, "Label1").text(), u"Set value for Fade effect:"_s);
    EXPECT_EQ(find<QLabel>(form, "Label2").text(),
              u"Set value for %1 magnitude of the fade: "_s.arg(which));
}

TEST_F(Dialogs, FadeInOffersItsLengths) {
    choose("mnuFadeIn_selected");
    expectFade(dialog("frmFadeIn"), u"Fade in (soft to load) effect"_s, u"front"_s, u"starting"_s);
}

TEST_F(Dialogs, FadeOutOffersItsLengths) {
    choose("mnuFadeOut_selected");
    expectFade(dialog("frmFadeOut"), u"Fade out (load to soft) effect"_s, u"end"_s, u"ending"_s);
}

TEST_F(Dialogs, EchoHasFiveSlidersWithTheirValuesBesideThem) {
    modMain::EffectMode = 9;
    choose("mnuEch_Selected");
    QWidget& form = dialog("frmEcho_Effects");
    EXPECT_EQ(modMain::EffectMode, 9);
    EXPECT_EQ(form.windowTitle(), u"Echo effect settings..."_s);
    EXPECT_EQ(label(form, "Label1"), u"Sliders are set to default values."_s);
    const struct {
        const char *slider, *caption, *captionLabel, *value;
        int minimum, maximum, initial;
    } rows[] = {{"Slider1", "Echo Rate:", "Label2", "Label7_0", 10, 95, 75},
                {"Slider2", "Delay Rate:", "Label3", "Label7_1", 100, 9000, 5000},
                {"Slider3", "Gain %:", "Label4", "Label7_2", 10, 95, 10},
                {"Slider4", "Depth %:", "Label5", "Label7_3", 10, 95, 40},
                {"Slider5", "Delay Time:", "Label6", "Label7_4", 1, 10, 7}};
    int above = -1;
    for (const auto& row : rows) {
        QAbstractSlider& control = slider(form, row.slider);
        EXPECT_EQ(label(form, row.captionLabel), QString::fromUtf8(row.caption));
        EXPECT_EQ(control.minimum(), row.minimum) << row.caption;
        EXPECT_EQ(control.maximum(), row.maximum) << row.caption;
        EXPECT_EQ(control.value(), row.initial) << row.caption;
        EXPECT_EQ(label(form, row.value), QString::number(row.initial)) << row.caption;
        control.setValue(row.maximum);
        EXPECT_EQ(label(form, row.value), QString::number(row.maximum)) << row.caption;
        EXPECT_GT(control.geometry().top(), above);
        above = control.geometry().top();
    }
}

TEST_F(Dialogs, CancelOfTheValueDialogResetsTheModeAndUnloads) {
    choose("mnuNormalize_selected");
    QPointer<QWidget> form(&dialog("frmEffects"));
    click(*form, "Command2");
    settle();
    EXPECT_TRUE(form.isNull());
    EXPECT_EQ(modMain::EffectMode, 0);
}

TEST_F(Dialogs, CancelOfTheOthersKeepsTheModeAndUnloads) {
    const std::pair<const char*, const char*> forms[] = {{"mnuFadeIn_selected", "frmFadeIn"},
                                                         {"mnuFadeOut_selected", "frmFadeOut"},
                                                         {"mnuEch_Selected", "frmEcho_Effects"}};
    for (const auto& [item, name] : forms) {
        modMain::EffectMode = 16;
        choose(item);
        QPointer<QWidget> form(&dialog(name));
        click(*form, "Command2");
        settle();
        EXPECT_TRUE(form.isNull()) << name;
        EXPECT_EQ(modMain::EffectMode, 16) << name;
    }
}

TEST_F(Dialogs, EscapeAndTheCloseButtonCancel) {
    choose("mnuNormalize_selected");
    QPointer<QWidget> form(&dialog("frmEffects"));
    ASSERT_TRUE(activate(*form));
    QTest::keyClick(form, Qt::Key_Escape);
    settle();
    EXPECT_TRUE(form.isNull());
    choose("mnuFadeIn_selected");
    form = &dialog("frmFadeIn");
    form->close();
    settle();
    EXPECT_TRUE(form.isNull());
}

TEST_F(Dialogs, EveryOpeningStartsFromTheSameValues) {
    choose("mnuAmpPlus_Selected");
    slider(dialog("frmEffects")).setValue(80);
    click(dialog("frmEffects"), "Command2");
    settle();
    choose("mnuAmpPlus_Selected");
    EXPECT_EQ(slider(dialog("frmEffects")).value(), 45);
    EXPECT_EQ(dialog("frmEffects").windowTitle(), u"Amplify + Effect setting..."_s);
}

TEST_F(Dialogs, OpeningAnotherEffectReplacesTheOpenDialog) {
    choose("mnuAmpMinus_Selected");
    QPointer<QWidget> first(&dialog("frmEffects"));
    choose("mnuNormalize_selected");
    settle();
    EXPECT_TRUE(first.isNull());
    EXPECT_EQ(dialog("frmEffects").windowTitle(), u"Normalize Effect setting..."_s);
    EXPECT_EQ(slider(dialog("frmEffects")).value(), 50);
}

TEST_F(Dialogs, ALeftOverDialogClosesWhenARunEnds) {
    add("tone.wav");
    choose("mnuFadeIn_selected");
    QPointer<QWidget> left(&dialog("frmFadeIn"));
    choose("mnuNormalize_selected");
    apply(dialog("frmEffects"));
    EXPECT_TRUE(support::waitFor([&] { return left.isNull(); }));
}

TEST_F(Dialogs, SlidersTakeKeysWheelAndTypedValues) {
    choose("mnuSilence2Frt");
    QWidget& form = dialog("frmEffects");
    ASSERT_TRUE(activate(form));
    QAbstractSlider& value = slider(form);
    value.setFocus();
    ASSERT_TRUE(waitFor([&] { return value.hasFocus(); }));
    QTest::keyClick(&value, Qt::Key_Right);
    EXPECT_EQ(value.value(), 1001);
    QTest::keyClicks(&value, u"2750"_s);
    EXPECT_EQ(value.value(), 2750);
    EXPECT_EQ(label(form, "LabelValue"), u"2750"_s);
    QTest::keyClick(&value, Qt::Key_Left);
    EXPECT_EQ(value.value(), 2749);
    QTest::keyClicks(&value, u"99999"_s);
    EXPECT_EQ(value.value(), 5000);
    QTest::keyClick(&value, Qt::Key_Home);
    EXPECT_EQ(value.value(), 100);
    const QPointF middle = value.rect().center();
    QWheelEvent wheel(middle, value.mapToGlobal(middle), {}, {0, 120}, Qt::NoButton, Qt::NoModifier,
                      Qt::NoScrollPhase, false);
    QApplication::sendEvent(&value, &wheel);
    EXPECT_GT(value.value(), 100);
}

TEST_F(Dialogs, TheValueDialogStaysAboveTheMainWindowButNotAboveAQuestion) {
    choose("mnuNormalize_selected");
    QWidget& form = dialog("frmEffects");
    const auto onTop = [&form] {
        return form.windowHandle()->flags().testFlag(Qt::WindowStaysOnTopHint);
    };
    ASSERT_TRUE(activate(*window));
    EXPECT_TRUE(waitFor(onTop));
    QMessageBox question(window.get());
    question.open();
    EXPECT_TRUE(waitFor([&] { return !onTop(); }));
    question.close();
    EXPECT_TRUE(waitFor(onTop));
}

TEST_F(Dialogs, TheCommonEffectsHaveAMenuOfTheirOwn) {
    const QMenu* common = find<QAction>(*window, "mnuEffects_Selected").menu();
    ASSERT_NE(common, nullptr);
    QStringList items;
    for (const QAction* item : common->actions()) items << item->objectName();
    EXPECT_EQ(items, (QStringList{u"mnuAmpMinus_Selected"_s, u"mnuAmpPlus_Selected"_s,
                                  u"mnuNormalize_selected"_s, u"mnuSilence2Frt"_s,
                                  u"mnuAdd_Silence_end"_s}));
}

}  // namespace
