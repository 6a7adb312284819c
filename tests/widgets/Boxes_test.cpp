// SPDX-License-Identifier: GPL-3.0-or-later
#include <fstream>
#include <stdexcept>

#include <QApplication>
#include <QLabel>
#include <QPushButton>
#include <QSlider>
#include <QTimer>
#include <gtest/gtest.h>

#include "platform/Paths.h"
#include "platform/ResumeNext.h"
#include "tests/support/Answers.h"
#include "tests/support/Fixtures.h"
#include "tests/support/Gui.h"
#include "tests/support/TempFolder.h"
#include "widgets/CommonDialog.h"
#include "widgets/Dispatch.h"
#include "widgets/FixedMessage.h"
#include "widgets/FolderDialog.h"
#include "widgets/InputBox.h"
#include "widgets/MsgBox.h"
#include "widgets/SkinButton.h"

using namespace Qt::Literals::StringLiterals;
using namespace widgets;

TEST(MsgBox, ShowsTextTitleButtonsAndIconAsGiven) {
    const auto seen = support::answerMessageBox(QMessageBox::No);
    EXPECT_EQ(msgBox(u"Really <b>all</b>?  "_s, MsgButtons::YesNo, MsgIcon::Question, u"Why?"_s),
              MsgResult::No);
    EXPECT_EQ(seen->text, u"Really <b>all</b>?  "_s);
    EXPECT_EQ(seen->title, u"Why?"_s);
    EXPECT_EQ(seen->buttons, QMessageBox::Yes | QMessageBox::No);
    EXPECT_EQ(seen->icon, QMessageBox::Question);
}

TEST(MsgBox, PlainBoxBearsTheApplicationsTitle) {
    const auto seen = support::answerMessageBox(QMessageBox::Ok);
    EXPECT_EQ(msgBox(u"Done."_s), MsgResult::Ok);
    EXPECT_EQ(seen->title, u"Tracksmith"_s);
    EXPECT_EQ(seen->buttons, QMessageBox::StandardButtons(QMessageBox::Ok));
    EXPECT_EQ(seen->icon, QMessageBox::NoIcon);
}

// As the window manager shows it.
TEST(MsgBox, NothingIsAddedToATitleOnTheScreen) {
    QByteArray name;
    QTimer::singleShot(0, [&name] {
        support::waitFor([] { return support::openWindow("MsgBox"); });
        QWidget* box = support::openWindow("MsgBox");
        const QStringList call{u"getwindowname"_s, QString::number(box->winId())};
        name = support::run(u"xdotool"_s, call).out;
        box->close();
    });
    msgBox(u"Really?"_s, MsgButtons::YesNo, MsgIcon::Question, u"Why?"_s);
    EXPECT_EQ(name, "Why?\n");
}

TEST(MsgBox, BreaksNoLineThatFits) {
    const QString line =
        u"It is strongly advised that you copy the playlist files to a 'Project Folder'"_s;
    int width = 0;
    QTimer::singleShot(0, [&width] {
        support::waitFor([] { return support::openWindow("MsgBox"); });
        QWidget* box = support::openWindow("MsgBox");
        width = support::find<QLabel>(*box, "qt_msgbox_label").contentsRect().width();
        box->close();
    });
    msgBox(line + u"\r\nBEFORE applying any effects!"_s);
    EXPECT_GE(width, QFontMetrics(qApp->font()).horizontalAdvance(line));
}

TEST(MsgBox, EscapeIsTheAnswerThatChangesNothing) {
    const auto escape = [] {
        QTimer::singleShot(0, [] {
            support::waitFor([] { return support::openWindow("MsgBox"); });
            QTest::keyClick(support::openWindow("MsgBox"), Qt::Key_Escape);
        });
    };
    escape();
    EXPECT_EQ(msgBox(u"?"_s, MsgButtons::OkCancel, MsgIcon::Exclamation), MsgResult::Cancel);
    escape();
    EXPECT_EQ(msgBox(u"?"_s, MsgButtons::YesNo, MsgIcon::Question), MsgResult::No);
}

TEST(InputBox, ReturnsTheTextOrNothing) {
    const auto seen = support::answerInputBox(u"Änderung 1"_s);
    EXPECT_EQ(inputBox(u"New name?"_s, u"Rename"_s, u"old"_s), u"Änderung 1"_s);
    EXPECT_EQ(seen->prompt, u"New name?"_s);
    EXPECT_EQ(seen->title, u"Rename"_s);
    EXPECT_EQ(seen->defaultText, u"old"_s);
    support::cancelInputBox();
    EXPECT_EQ(inputBox(u"New name?"_s, u"Rename"_s, u"old"_s), QString());
}

TEST(ErrorStyles, ResumeNextGoesOn) {
    EXPECT_FALSE(platform::resumeNext([] { throw std::runtime_error("x"); }));
    EXPECT_TRUE(platform::resumeNext([] {}));
}

TEST(ErrorStyles, FixedMessageEndsTheBody) {
    const auto seen = support::answerMessageBox(QMessageBox::Ok);
    bool went = false;
    EXPECT_FALSE(orFixedMessage(u"Error saving playlist"_s, [&went] {
        throw std::runtime_error("detail");
        went = true;
    }));
    EXPECT_FALSE(went);
    EXPECT_EQ(seen->text, u"Error saving playlist"_s);
}

TEST(ErrorStyles, UnhandledErrorIsShownAndTheLoopGoesOn) {
    SkinButton button;
    bool later = false;
    QObject::connect(&button, &QPushButton::clicked, [&later] {
        throw std::runtime_error("The file \"x\" cannot be renamed.");
        later = true;
    });
    ASSERT_TRUE(support::activate(button));
    const auto seen = support::answerMessageBox(QMessageBox::Ok);
    support::click(button);
    ASSERT_TRUE(support::allAnswered());
    EXPECT_EQ(seen->text, u"The file \"x\" cannot be renamed."_s);
    EXPECT_FALSE(later) << "no later step of that command runs";
    EXPECT_FALSE(button.isDown());
}

namespace {

struct Dialogs : testing::Test {
    support::TempFolder folder;
    CommonDialog dialog;

    QString make(const QString& name) {
        std::ofstream(platform::toPath(folder.file(name))) << "x";
        return folder.file(name);
    }
};

}  // namespace

TEST_F(Dialogs, OpenReturnsTheFileAndTheFilter) {
    const QString file = make(u"a song.mp3"_s);
    dialog.Filter = u"Two (*.mp3;*.wav)|*.mp3;*.wav|All files (*.*)|*.*"_s;
    dialog.DialogTitle = u"Pick"_s;
    const auto seen = support::answerFileDialog(file, 2);
    dialog.ShowOpen();
    EXPECT_EQ(dialog.FileName, file);
    EXPECT_EQ(dialog.FilterIndex, 2);
    EXPECT_EQ(seen->title, u"Pick"_s);
    EXPECT_EQ(seen->filters, QStringList({u"Two (*.mp3;*.wav)"_s, u"All files (*.*)"_s}));
    EXPECT_EQ(seen->selectedFilter, u"Two (*.mp3;*.wav)"_s);
}

TEST_F(Dialogs, CancelLeavesNoFileName) {
    dialog.FileName = make(u"b.mp3"_s);
    dialog.Filter = u"All files (*.*)|*.*"_s;
    support::cancelFileDialog();
    dialog.ShowOpen();
    EXPECT_EQ(dialog.FileName, QString());
}

TEST_F(Dialogs, SeveralFiles) {
    const QString one = make(u"1.mp3"_s);
    const QString two = make(u"2.mp3"_s);
    dialog.Filter = u"All files (*.*)|*.*"_s;
    dialog.AllowMultiSelect = true;
    support::answerFileDialog(u"\"%1\" \"%2\""_s.arg(one, two));
    dialog.ShowOpen();
    EXPECT_EQ(dialog.FileNames, QStringList({one, two}));
}

TEST_F(Dialogs, SaveAddsTheSuffixOfTheFilterWhereNoneIsTyped) {
    dialog.Filter = u"M3U PlayList (*.m3u)|*.m3u|PLS PlayList (*.pls)|*.pls"_s;
    support::answerFileDialog(folder.file(u"list"_s), 2);
    dialog.ShowSave();
    EXPECT_EQ(dialog.FileName, folder.file(u"list.pls"_s));
    EXPECT_EQ(dialog.FilterIndex, 2);
    dialog.FileName.clear();
    dialog.FilterIndex = 0;
    support::answerFileDialog(folder.file(u"list.pls"_s));
    dialog.ShowSave();
    EXPECT_EQ(dialog.FileName, folder.file(u"list.pls"_s)) << "a typed extension stays";
    EXPECT_EQ(dialog.FilterIndex, 1);
}

TEST_F(Dialogs, SaveAsksBeforeAnExistingFileIsChosen) {
    const QString file = make(u"old.m3u"_s);
    dialog.Filter = u"M3U PlayList (*.m3u)|*.m3u"_s;
    support::answerFileDialog(file);
    const auto seen = support::answerMessageBox(QMessageBox::Yes);
    dialog.ShowSave();
    EXPECT_TRUE(seen->shown);
    EXPECT_EQ(dialog.FileName, file);
}

TEST_F(Dialogs, PicksAFolder) {
    const QString path = platform::toQString(folder.path());
    const auto seen = support::answerFileDialog(path);
    EXPECT_EQ(pickFolder(nullptr, u"Select target folder..."_s), path);
    EXPECT_EQ(seen->title, u"Select target folder..."_s);
    support::cancelFileDialog();
    EXPECT_EQ(pickFolder(nullptr, u"Select target folder..."_s), QString());
}

// Nothing is thrown through the signal; the steps after the error are not taken, and the next press
// works again.
TEST(Dispatch, EndsACommandInsideItsSlotAndShowsWhy) {
    QPushButton button;
    int begun = 0;
    int ended = 0;
    QObject::connect(&button, &QAbstractButton::clicked, &button, guarded([&] {
        if (++begun == 1) throw std::runtime_error("The disc is full.");
        ++ended;
    }));
    const auto seen = support::answerMessageBox(QMessageBox::Ok);
    EXPECT_NO_THROW(Q_EMIT button.clicked());
    EXPECT_TRUE(support::waitFor([] { return support::allAnswered(); }));
    EXPECT_EQ(seen->text, u"The disc is full."_s);
    EXPECT_EQ(ended, 0);
    Q_EMIT button.clicked();
    EXPECT_EQ(ended, 1);
}

TEST(Dispatch, HandsASlotTheArgumentsThatItTakes) {
    QSlider slider;
    int told = 0;
    int without = 0;
    QObject::connect(&slider, &QSlider::valueChanged, &slider,
                     guarded([&](int value) { told = value; }));
    QObject::connect(&slider, &QSlider::valueChanged, &slider, guarded([&] { ++without; }));
    slider.setValue(7);
    EXPECT_EQ(told, 7);
    EXPECT_EQ(without, 1);
}
