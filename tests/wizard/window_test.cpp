// SPDX-License-Identifier: GPL-3.0-or-later
#include <fstream>

#include <QAction>
#include <QApplication>
#include <QGroupBox>
#include <QMenu>
#include <QRadioButton>
#include <QScreen>
#include <QScrollArea>
#include <QScrollBar>

#include "tests/wizard/WizardWindow.h"
#include "wizard/EffectTable.h"
#include "wizard/OutputFormat.h"
#include "wizard/Texts.h"

using namespace Qt::Literals::StringLiterals;
using support::settle;
using support::waitFor;

namespace {

class WizardForm : public support::WizardWindow {
  protected:
    bool valuesShown() {
        const bool combo = control("Combo5").isVisible();
        EXPECT_EQ(control("Label13").isVisible(), combo);
        EXPECT_EQ(control("Button10").isVisible(), combo);
        return combo;
    }
    QString addFile(const QString& name) {
        std::ofstream(folder / name.toStdString()) << "sound";
        return folder.file(name);
    }
};

TEST_F(WizardForm, BearsItsCaptions) {
    EXPECT_EQ(window->windowTitle(), u"Cross Fade Wizard v2.7"_s);
    EXPECT_EQ(labelText("lblStaus"), u"Staus: idle"_s);
    EXPECT_EQ(control<QGroupBox>("FrameFiles").title(),
              u"Files(playlist) to perform function(s) to:"_s);
    EXPECT_EQ(control<QGroupBox>("FrameTarget").title(),
              u"Target path/ folder for transformed files to reside:"_s);
    EXPECT_EQ(control<QGroupBox>("Frame1").title(), u"Effect(s) to apply:"_s);
    EXPECT_EQ(control<QGroupBox>("Frame2").title(), u"Filter(s) to apply:"_s);
    EXPECT_EQ(control<QGroupBox>("Frame3").title(),
              u"Add file to front and/ or end of target file(s) or MIX within:"_s);
    EXPECT_EQ(control<QGroupBox>("Frame4").title(),
              u"File format/ Sample rate for transformed file(s);"_s);
    EXPECT_EQ(control<QGroupBox>("Frame11").title(), u"Rename file prefix:"_s);
    EXPECT_EQ(control<QGroupBox>("Frame13").title(), u"MP3 ID Tags to apply:"_s);
    EXPECT_EQ(labelText("Label13"), u"Effect Value (default is set)"_s);
}

// Run on the usual screen, and on one of 3840×2160 at 300 %.
TEST_F(WizardForm, FitsOnTheScreenItOpensOn) {
    const QRect screen = window->screen()->availableGeometry();
    EXPECT_TRUE(waitFor([&] { return screen.contains(window->frameGeometry()); }))
        << window->frameGeometry().height() << " of " << screen.height();
    for (const char* name : {"Button7", "Button13", "Button14"}) {
        const QWidget& button = control(name);
        const QRect place(button.mapToGlobal(QPoint(0, 0)), button.size());
        EXPECT_TRUE(screen.contains(place)) << name;
    }
}

TEST_F(WizardForm, HasEveryButtonOptionAndMenuItem) {
    const std::pair<const char*, QString> captions[] = {
        {"Button1", u"Remove"_s},
        {"Button2", u"Clear"_s},
        {"Button3", u"Set target path"_s},
        {"Button4", u"Select file"_s},
        {"Button5", u"Select file"_s},
        {"Button11", u"Select file"_s},
        {"Button6", u"Stop"_s},
        {"Button13", u"more info..."_s},
        {"Button14", u"about"_s},
        {"Option1", u"Leave ID Tags AS IS"_s},
        {"Option2t", u"Set to new MP3 ID tags"_s},
        {"Option1t", u"Strip all MP3 ID tags"_s},
        {"Check39", u"Peak EQ"_s},
        {"Check40", u"High Shelf"_s},
        {"Check41", u"Low Shelf"_s},
        {"Check42", u"High Pass"_s},
        {"Check43", u"Low Pass"_s},
        {"Check44", u"Band Pass"_s},
    };
    for (const auto& [name, caption] : captions)
        EXPECT_EQ(control<QAbstractButton>(name).text(), caption) << name;
    for (const char* name : {"Button7", "Button8", "Button9", "Button10", "Button12", "Button38",
                             "AmpBar", "AmpBar2", "lstFiles", "lstFiles2", "List1", "Text1a"})
        control(name);
    EXPECT_EQ(control<QMenu>("mnuHelp").title(), u"Help"_s);
    EXPECT_EQ(control<QAction>("mnuAbout").text(), u"About"_s);
    EXPECT_EQ(control<QAction>("mnuUpdates").text(), u"Check for FREE updates"_s);
    EXPECT_EQ(control<QAction>("mnuSupport").text(), u"On-line Contact/ Support"_s);
}

TEST_F(WizardForm, StartsWithTheFixedChoices) {
    EXPECT_FALSE(valuesShown());
    EXPECT_FALSE(control("List1").isVisible());
    EXPECT_EQ(control<QComboBox>("Combo1").currentText(), u"WAV"_s);
    EXPECT_EQ(control<QComboBox>("Combo2").currentText(), u"44100"_s);
    EXPECT_EQ(control<QComboBox>("Combo3").currentText(), u"16-bit"_s);
    EXPECT_EQ(control<QComboBox>("Combo4").currentText(), u"Stereo"_s);
    EXPECT_EQ(entries("infoGenre").size(), 148);
    EXPECT_EQ(entries("infoGenre").first(), u"Blues"_s);
    EXPECT_TRUE(control<QRadioButton>("Option1").isChecked());
}

TEST_F(WizardForm, EveryEffectOffersItsValuesAndHidesThemAgain) {
    for (const auto& row : wizard::effectRows()) {
        if (row.numbers.empty()) continue;
        EXPECT_EQ(control<QCheckBox>(("Check" + std::to_string(row.checkBox)).c_str()).text(),
                  row.caption);
        tick(row.checkBox);
        EXPECT_TRUE(valuesShown());
        EXPECT_EQ(entries("Combo5"), row.texts());
        EXPECT_EQ(control<QComboBox>("Combo5").currentText(), row.text(row.shown));
        EXPECT_EQ(window->settings().workingon, row.code);
        tick(row.checkBox);
        EXPECT_FALSE(valuesShown());
        EXPECT_EQ(control<QComboBox>("Combo5").count(), 0);
        EXPECT_EQ(window->settings().workingon, row.code);  // unticking leaves it
    }
}

TEST_F(WizardForm, AmplifyMinusIsSixtyUnlessChosenAndOutlivesItsTick) {
    tick(1);
    press("Button10");
    EXPECT_EQ(window->settings().amp_minus, 60.0);
    EXPECT_FALSE(valuesShown());
    EXPECT_EQ(window->settings().workingon, 0);
    tick(1);
    EXPECT_EQ(window->settings().amp_minus, 60.0);
}

TEST_F(WizardForm, SettingAnUntickedEffectStoresNothingAndHidesTheValues) {
    tick(5);
    tick(5);
    control<QAbstractButton>("Button10").click();  // out of the mouse's reach by now
    EXPECT_EQ(window->settings().echo_val, std::nullopt);
    EXPECT_FALSE(valuesShown());
    EXPECT_EQ(window->settings().workingon, 0);
}

TEST_F(WizardForm, NormalizeAfterFlangerTakesTheFlangersPlace) {
    tick(7);
    choose("Combo5", u"30"_s);
    press("Button10");
    EXPECT_EQ(window->settings().flan_val, 30.0);
    tick(8);
    choose("Combo5", u"80"_s);
    press("Button10");
    EXPECT_EQ(window->settings().flan_val, 80.0);
    EXPECT_EQ(window->settings().norm_val, std::nullopt);
}

TEST_F(WizardForm, LengthsAreTakenByTheirWordsAlone) {
    tick(17);
    choose("Combo5", u"end 10 secs of file"_s);
    press("Button10");
    EXPECT_EQ(window->settings().fadeOutMs, 10000);
    tick(17);
    tick(17);
    auto* field = control<QComboBox>("Combo5").lineEdit();
    field->selectAll();
    support::type(*field, u"end 11 secs of file"_s);
    press("Button10");
    EXPECT_EQ(window->settings().fadeOutMs, 10000);
    EXPECT_FALSE(valuesShown());
    tick(23);
    choose("Combo5", u"50 secs crossfade"_s);
    press("Button10");
    EXPECT_EQ(window->settings().crossfade_value, 50000);
}

TEST_F(WizardForm, ATypedNumberIsReadFromItsBeginning) {
    tick(2);
    auto* field = control<QComboBox>("Combo5").lineEdit();
    field->selectAll();
    support::type(*field, u"133.5 percent"_s);
    press("Button10");
    EXPECT_EQ(window->settings().amp_plus, 133.5);
}

TEST_F(WizardForm, EffectsWithoutValuesHideTheFrontLabelInstead) {
    tick(1);
    for (const int effect : {19, 20, 21}) {
        tick(effect);
        EXPECT_EQ(window->settings().workingon, effect);
    }
    EXPECT_FALSE(control("Combo5").isVisible());
    EXPECT_FALSE(control("Button10").isVisible());
    EXPECT_TRUE(control("Label13").isVisible());
    EXPECT_FALSE(control("LabelFront").isVisible());
    EXPECT_TRUE(control("LabelEnd").isVisible());
    tick(1);  // off: the values' own label goes now
    EXPECT_FALSE(valuesShown());
    EXPECT_FALSE(control("LabelFront").isVisible());
}

TEST_F(WizardForm, TrimSilenceAndTheFiltersChangeNothingOnShow) {
    tick(4);
    for (const int box : {24, 39, 44}) tick(box);
    EXPECT_TRUE(valuesShown());
    EXPECT_EQ(window->settings().workingon, 4);
}

TEST_F(WizardForm, TheFormatDecidesTheBitRates) {
    choose("Combo1", u"MP3"_s);
    EXPECT_EQ(entries("Combo3"), wizard::bitRateTexts(u"MP3"_s));
    EXPECT_EQ(control<QComboBox>("Combo3").currentText(), u"128-bit"_s);
    choose("Combo3", u"320-bit"_s);
    choose("Combo1", u"WAV"_s);
    EXPECT_EQ(entries("Combo3"), (QStringList{u"8-bit"_s, u"16-bit"_s}));
    EXPECT_EQ(control<QComboBox>("Combo3").currentText(), u"16-bit"_s);
}

TEST_F(WizardForm, AnotherWindowsActivationForgetsTheEffectValues) {
    for (const int effect : {2, 7, 17, 22}) {
        tick(effect);
        press("Button10");
    }
    tick(5);
    QWidget other;
    other.resize(200, 100);
    ASSERT_TRUE(support::activate(other));
    ASSERT_TRUE(support::activate(*window));
    EXPECT_EQ(window->settings().flan_val, std::nullopt);
    EXPECT_EQ(window->settings().amp_plus, 140.0);
    EXPECT_EQ(window->settings().time_shift, 70.0);
    EXPECT_EQ(window->settings().fadeOutMs, 30000);
    EXPECT_EQ(window->settings().workingon, 0);
    press("Button10");  // so that the values on show are stored nowhere
    EXPECT_EQ(window->settings().echo_val, std::nullopt);
}

TEST_F(WizardForm, ABoxOfItsOwnForgetsNothing) {
    tick(7);
    press("Button10");
    tick(5);
    const auto seen = support::answerMessageBox(QMessageBox::Ok);
    press("Button13");
    ASSERT_TRUE(support::allAnswered());
    ASSERT_TRUE(support::activate(*window));
    EXPECT_EQ(window->settings().flan_val, 50.0);
    EXPECT_EQ(window->settings().workingon, 5);
    EXPECT_EQ(seen->text, wizard::texts::MoreInfo.toString());
}

TEST_F(WizardForm, AddsOneOrSeveralFilesToBothLists) {
    window->handOver({u"/music/handed over.mp3"_s});
    const QString one = addFile(u"Ünï 'one'.wav"_s);
    const auto seen = support::answerFileDialog(one);
    press("Button38");
    EXPECT_EQ(seen->title, u"Open ..."_s);
    EXPECT_EQ(lines("lstFiles"), (QStringList{u"/music/handed over.mp3"_s, one}));
    EXPECT_EQ(lines("lstFiles2"), QStringList{u"Ünï 'one'.wav"_s});
    support::answerFileDialog(u"\"%1\" \"%2\""_s.arg(addFile(u"b.mp3"_s), addFile(u"c.mp2"_s)));
    press("Button38");
    EXPECT_EQ(lines("lstFiles2"), (QStringList{u"Ünï 'one'.wav"_s, u"b.mp3"_s, u"c.mp2"_s}));
    EXPECT_EQ(lines("lstFiles").last(), folder.file(u"c.mp2"_s));
    support::cancelFileDialog();
    press("Button38");
    EXPECT_EQ(lines("lstFiles").size(), 4);
}

TEST_F(WizardForm, RemovesBySelectionAndClearsAll) {
    for (const QString& name : {u"a.wav"_s, u"b.wav"_s, u"c.wav"_s}) {
        support::answerFileDialog(addFile(name));
        press("Button38");
    }
    auto& list = control<QListView>("lstFiles2");
    const auto place = [&](int row) {
        return list.visualRect(list.model()->index(row, 0)).center();
    };
    QTest::mouseClick(list.viewport(), Qt::LeftButton, Qt::NoModifier, place(0));
    QTest::mouseClick(list.viewport(), Qt::LeftButton, Qt::ControlModifier, place(2));
    press("Button1");
    EXPECT_EQ(lines("lstFiles2"), QStringList{u"b.wav"_s});
    EXPECT_EQ(lines("lstFiles"), QStringList{folder.file(u"b.wav"_s)});
    press("Button2");
    EXPECT_TRUE(lines("lstFiles").isEmpty());
    EXPECT_TRUE(lines("lstFiles2").isEmpty());
}

TEST_F(WizardForm, CountsTheFilesAndWarnsFromAHundred) {
    QString names;
    for (int n = 0; n < 99; ++n) names += u"\"%1\" "_s.arg(addFile(u"%1.wav"_s.arg(n)));
    const QString last = addFile(u"last.wav"_s);
    support::answerFileDialog(names);
    press("Button38");
    ASSERT_TRUE(support::waitFor([this] { return labelText("Label14") == u"99"_s; }));
    const auto ink = [this] {
        auto& label = control<QLabel>("Label14");
        return label.palette().color(label.foregroundRole());
    };
    EXPECT_EQ(ink(), QColor(Qt::black));
    support::answerFileDialog(last);
    press("Button38");
    ASSERT_TRUE(support::waitFor(
        [this] { return labelText("Label14") == u"100 CAUTION: May exceed limitations!"_s; }));
    EXPECT_GT(ink().red(), 150);
    EXPECT_EQ(ink().green(), 0);
}

TEST_F(WizardForm, TheTargetPathEndsInASeparator) {
    const auto seen = support::answerFileDialog(folder.file({}));
    press("Button3");
    EXPECT_EQ(seen->title, u"Select Target Folder..."_s);
    EXPECT_EQ(fieldText("txtPath"), folder.file({}));
    support::cancelFileDialog();
    press("Button3");
    EXPECT_EQ(fieldText("txtPath"), folder.file({}));
}

TEST_F(WizardForm, FilesToAddAreSelectedAndClearedOneByOne) {
    const QString path = addFile(u"jingle.wav"_s);
    for (const auto& [select, clear, field] :
         {std::tuple{"Button4", "Button8", "Text1"}, std::tuple{"Button5", "Button9", "Text2"},
          std::tuple{"Button11", "Button12", "Text3"}}) {
        const auto seen = support::answerFileDialog(path);
        press(select);
        EXPECT_EQ(seen->title, u"Select file..."_s);
        EXPECT_EQ(seen->filters,
                  QStringList({u"Wav Files (*.wav)"_s, u"MP3 Files (*.mp3)"_s,
                               u"OggVorbis Files (*.ogg)"_s, u"WMA Files (*.wma)"_s}));
        EXPECT_EQ(fieldText(field), path);
        support::cancelFileDialog();
        press(select);
        EXPECT_EQ(fieldText(field), path);
        press(clear);
        EXPECT_EQ(fieldText(field), QString());
    }
}

TEST_F(WizardForm, ShowsItsAboutWindowFromButtonAndMenu) {
    press("Button14");
    ASSERT_TRUE(support::waitFor([] { return support::openWindow("frmAbout") != nullptr; }));
    support::openWindow("frmAbout")->close();
    ASSERT_TRUE(support::waitFor([] { return !support::openWindow("frmAbout"); }));
    control<QAction>("mnuAbout").trigger();
    ASSERT_TRUE(support::waitFor([] { return support::openWindow("frmAbout") != nullptr; }));
    QTest::keyClick(support::openWindow("frmAbout"), Qt::Key_Escape);
    ASSERT_TRUE(support::waitFor([] { return !support::openWindow("frmAbout"); }));
}

TEST_F(WizardForm, BothOnLineItemsOpenTheSamePage) {
    QList<QUrl> opened;
    window->openPage = [&](const QUrl& page) { opened << page; };
    control<QAction>("mnuSupport").trigger();
    control<QAction>("mnuUpdates").trigger();
    ASSERT_EQ(opened.size(), 2);
    EXPECT_EQ(opened.first(), opened.last());
    EXPECT_EQ(opened.first().scheme(), u"https"_s);
}

TEST_F(WizardForm, ReadsWholeAt1280By800AndScrollsBelow) {
    auto& page = control<QScrollArea>("pageScroller");
    window->resize(1280, 770);  // what a panel and a title bar leave of 1280 by 800
    ASSERT_TRUE(support::waitFor([&] { return window->width() == 1280; }));
    settle();
    EXPECT_EQ(page.verticalScrollBar()->maximum(), 0);
    EXPECT_EQ(page.horizontalScrollBar()->maximum(), 0);
    window->resize(700, 420);
    ASSERT_TRUE(support::waitFor([&] { return page.verticalScrollBar()->maximum() > 0; }));
    EXPECT_GT(page.horizontalScrollBar()->maximum(), 0);
    EXPECT_TRUE(control("Button7").isVisible());
}

TEST_F(WizardForm, TabReachesEveryControlAndEachHasAName) {
    QSet<QWidget*> reached;
    QWidget* focus = QApplication::focusWidget();
    while (focus && !reached.contains(focus)) {
        reached << focus;
        QTest::keyClick(focus, Qt::Key_Tab);
        focus = QApplication::focusWidget();
    }
    for (const char* name :
         {"lstFiles", "lstFiles2", "Button38", "txtPath", "Text1a", "Check1", "Check24", "Check44",
          "Combo1", "Combo4", "Text3", "infoGenre", "Button7", "Button6", "Button14", "Button13"})
        EXPECT_TRUE(reached.contains(&control(name))) << name;
    for (QWidget* widget : reached) {
        const auto* button = qobject_cast<QAbstractButton*>(widget);
        EXPECT_FALSE(widget->accessibleName().isEmpty() && !(button && !button->text().isEmpty()))
            << widget->objectName().toStdString();
    }
}

TEST_F(WizardForm, ClosingIsTheEndOfItAndItsSettings) {
    tick(2);
    press("Button10");
    window->close();
    EXPECT_TRUE(support::waitFor([this] {
        settle();
        return window.isNull();
    }));
    const wizard::frmFadeWizard2 next(std::make_unique<effects::AudioEditor>());
    EXPECT_EQ(next.settings().amp_plus, std::nullopt);
}

}  // namespace
