// SPDX-License-Identifier: GPL-3.0-or-later
// The way from the main window into the wizard and out again.
#include <memory>

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QLineEdit>
#include <QListView>
#include <QPointer>
#include <QTimer>

#include "app/frmMain.h"
#include "effects/engine/AudioEditor.h"
#include "platform/Paths.h"
#include "tests/support/Answers.h"
#include "tests/support/Fixtures.h"
#include "tests/support/Gui.h"
#include "tests/support/TempFolder.h"
#include "widgets/ListView.h"
#include "wizard/form/frmFadeWizard2.h"

using namespace Qt::Literals::StringLiterals;
using support::answerMessageBox;

namespace {

class OpeningWizard : public testing::Test {
  protected:
    void SetUp() override { ASSERT_TRUE(support::activate(*main)); }
    void TearDown() override {
        EXPECT_TRUE(support::allAnswered());
        main.reset();
        EXPECT_FALSE(wizard());
    }

    void load(const QStringList& fixtures) {
        QStringList paths;
        for (const QString& name : fixtures)
            paths << platform::toQString(support::fixture(name.toStdString()));
        main->openPaths(paths);
        ASSERT_TRUE(support::waitFor([&] {
            return support::find<widgets::ListView>(*main, "ListView1").rowCount() ==
                   fixtures.size();
        }));
    }
    void choose() { support::chooseFromMenu(*main, "Button7", "mnuCrossFader"); }
    wizard::frmFadeWizard2* wizard() {
        return qobject_cast<wizard::frmFadeWizard2*>(support::openWindow("frmFadeWizard2"));
    }
    QStringList lstFiles() {
        const auto* model = support::find<QListView>(*wizard(), "lstFiles").model();
        QStringList files;
        for (int i = 0; i < model->rowCount(); ++i) files << model->index(i, 0).data().toString();
        return files;
    }

    std::unique_ptr<app::frmMain> main = std::make_unique<app::frmMain>();
};

TEST_F(OpeningWizard, AsksWhetherTheUserIsReady) {
    load({u"tone.mp3"_s});
    const auto seen = answerMessageBox(QMessageBox::No);
    choose();
    ASSERT_TRUE(support::allAnswered());
    EXPECT_EQ(seen->title, u"Ready?"_s);
    EXPECT_EQ(seen->icon, QMessageBox::Information);
    EXPECT_EQ(seen->buttons, QMessageBox::Yes | QMessageBox::No);
    EXPECT_EQ(seen->text,
              u"This series of functions is applied to your loaded playlist but leaves orgininal "
              "files intact\r\n(copys before applying cross fade).\r\n\r\nPlease be sure to read "
              "the help on this process before proceeding!\r\n\r\nReady?  "_s);
    EXPECT_FALSE(wizard());
}

TEST_F(OpeningWizard, AnEmptyPlaylistIsAnErrorAndShowsNoWizard) {
    answerMessageBox(QMessageBox::Yes);
    const auto seen = answerMessageBox(QMessageBox::Ok);
    choose();
    ASSERT_TRUE(support::allAnswered());
    EXPECT_EQ(seen->text, u"ERROR: there are no files loaded in the playlist to transform!"_s);
    EXPECT_FALSE(wizard());
}

TEST_F(OpeningWizard, HandsThePlaylistOverInItsOrder) {
    load({u"tone.mp3"_s, u"music.flac"_s, u"tone.wav"_s});
    answerMessageBox(QMessageBox::Yes);
    choose();
    ASSERT_TRUE(support::waitFor([this] { return wizard() != nullptr; }));
    QStringList expected;
    for (const char* name : {"tone.mp3", "music.flac", "tone.wav"})
        expected << platform::toQString(support::fixture(name));
    EXPECT_EQ(lstFiles(), expected);
    EXPECT_EQ(support::find<QListView>(*wizard(), "lstFiles2").model()->rowCount(), 0);
}

TEST_F(OpeningWizard, IsOneWindowAndAfterItsCloseANewOne) {
    load({u"tone.mp3"_s});
    answerMessageBox(QMessageBox::Yes);
    choose();
    ASSERT_TRUE(support::waitFor([this] { return wizard() != nullptr; }));
    const QPointer<wizard::frmFadeWizard2> first = wizard();
    support::activate(*main);
    answerMessageBox(QMessageBox::Yes);
    choose();
    ASSERT_TRUE(support::allAnswered());
    EXPECT_EQ(wizard(), first);
    EXPECT_EQ(lstFiles().size(), 1);  // handed over afresh, not twice
    first->close();
    answerMessageBox(QMessageBox::Yes);
    choose();
    ASSERT_TRUE(support::waitFor([this] { return wizard() != nullptr; }));
    EXPECT_EQ(lstFiles().size(), 1);
}

TEST_F(OpeningWizard, ClosesWithTheMainWindow) {
    load({u"tone.mp3"_s});
    answerMessageBox(QMessageBox::Yes);
    choose();
    ASSERT_TRUE(support::waitFor([this] { return wizard() != nullptr; }));
    main->close();
    EXPECT_TRUE(support::waitFor([this] { return !wizard(); }));
}

TEST_F(OpeningWizard, UnloadsEveryFormAndEndsTheProgram) {
    load({u"tone.mp3"_s});
    answerMessageBox(QMessageBox::Yes);
    choose();
    ASSERT_TRUE(support::waitFor([this] { return wizard() != nullptr; }));
    QTimer::singleShot(0, [] { wizard::frmFadeWizard2::unloadallforms(); });
    EXPECT_EQ(QApplication::exec(), 0);
    EXPECT_FALSE(wizard());
    EXPECT_FALSE(main->isVisible());
}

TEST_F(OpeningWizard, ClosingTheMainWindowDuringARunEndsItAfterTheFileInHand) {
    support::TempFolder folder;
    const QString sound = folder.file(u"long1.wav"_s);
    ASSERT_EQ(
        support::run(u"ffmpeg"_s, {u"-nostdin"_s, u"-loglevel"_s, u"error"_s, u"-f"_s, u"lavfi"_s,
                                   u"-i"_s, u"sine=frequency=300:sample_rate=44100:duration=90"_s,
                                   u"-ac"_s, u"2"_s, sound})
            .exitCode,
        0);
    ASSERT_TRUE(QFile::link(sound, folder.file(u"long2.wav"_s)));
    main->openPaths({sound, folder.file(u"long2.wav"_s)});
    ASSERT_TRUE(support::waitForDisk(*main));
    answerMessageBox(QMessageBox::Yes);
    choose();
    ASSERT_TRUE(support::waitFor([this] { return wizard() != nullptr; }));
    const QPointer<wizard::frmFadeWizard2> form = wizard();
    ASSERT_TRUE(QDir(folder.file({})).mkpath(u"out"_s));
    support::find<QLineEdit>(*form, "txtPath").setText(folder.file(u"out/"_s));
    bool closed = false;
    QObject::connect(&support::find<effects::AudioEditor>(*form, "AudioEditor1"),
                     &effects::AudioEditor::Progress, form, [&](int) {
                         if (std::exchange(closed, true)) return;
                         answerMessageBox(QMessageBox::No);  // "save the playlist?"
                         main->close();
                     });
    support::click(*form, "Button7");
    EXPECT_TRUE(closed);
    EXPECT_TRUE(support::waitFor([&] {
        support::settle();
        return form.isNull();
    }));
    EXPECT_EQ(QDir(folder.file(u"out"_s)).entryList(QDir::Files | QDir::Hidden),
              QStringList{u"long1.wav"_s});
}

}  // namespace
