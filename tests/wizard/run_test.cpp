// SPDX-License-Identifier: GPL-3.0-or-later
// The wizard's run on the real window and real files.
#include <fstream>

#include <QAbstractItemModel>
#include <QDir>
#include <QFile>

#include "effects/engine/AudioEditor.h"
#include "handoff/HandoffFiles.h"
#include "platform/Paths.h"
#include "tests/handoff/Companion.h"
#include "tests/support/Fixtures.h"
#include "tests/support/Sound.h"
#include "tests/wizard/MixArithmetic.h"
#include "tests/wizard/WizardWindow.h"
#include "widgets/LevelBar.h"

using namespace Qt::Literals::StringLiterals;
using support::answerMessageBox;

namespace {

class WizardRun : public support::WizardWindow {
  protected:
    void SetUp() override {
        WizardWindow::SetUp();
        ASSERT_TRUE(QDir(folder.file({})).mkpath(u"out"_s));
        QFile::remove(handoff::burnListFile());
    }

    void addFixtures(const QStringList& names) {
        for (const QString& name : names)
            playlist << platform::toQString(support::fixture(name.toStdString()));
        window->handOver(playlist);
    }

    /// Links to one sound that takes the engine long enough to be watched.
    void addLongFiles(int count) {
        const QString sound = folder.file(u"long.wav"_s);
        ASSERT_EQ(support::run(u"ffmpeg"_s,
                               {u"-nostdin"_s, u"-loglevel"_s, u"error"_s, u"-f"_s, u"lavfi"_s,
                                u"-i"_s, u"sine=frequency=300:sample_rate=44100:duration=90"_s,
                                u"-ac"_s, u"2"_s, sound})
                      .exitCode,
                  0);
        for (int n = 1; n <= count; ++n) {
            const QString name = folder.file(u"long%1.wav"_s.arg(n));
            ASSERT_TRUE(QFile::link(sound, name));
            playlist << name;
        }
        window->handOver(playlist);
    }

    void setTarget(const QString& path) {
        auto& field = control<QLineEdit>("txtPath");
        field.selectAll();
        support::type(field, path);
    }
    QString out(const QString& name = {}) { return folder.file(u"out/"_s + name); }

    QStringList playlist;  // what was handed over

    /// Runs a step at the engine's first progress on the given entry of lstFiles.
    void duringFile(int row, const std::function<void()>& step) {
        auto& list = control<QListView>("lstFiles");
        auto done = std::make_shared<bool>(false);
        QObject::connect(&find<effects::AudioEditor>("AudioEditor1"),
                         &effects::AudioEditor::Progress, window.data(), [&list, row, step, done] {
                             if (*done || list.currentIndex().row() != row) return;
                             *done = true;
                             step();
                         });
    }
    template <class T>
    T& find(const char* name) {
        return support::find<T>(*window, name);
    }
    QStringList filesIn(const QString& path) {
        return QDir(path).entryList(QDir::Files | QDir::Hidden, QDir::Name);
    }
};

TEST_F(WizardRun, WithoutTargetPathSaysSoAndDoesNothing) {
    addFixtures({u"tone.mp3"_s});
    const auto seen = answerMessageBox(QMessageBox::Ok);
    press("Button7");
    EXPECT_EQ(seen->text, u"Target path MUST be set before proceeding!"_s);
    EXPECT_EQ(seen->buttons, QMessageBox::StandardButtons(QMessageBox::Ok));
    EXPECT_EQ(labelText("lblStaus"), u"Staus: idle"_s);
}

TEST_F(WizardRun, TransformsThePlaylistIntoTheTargetFolder) {
    addFixtures({u"tone.mp3"_s, u"music.flac"_s});
    setTarget(out());
    tick(8);
    tick(24);
    const auto seen = answerMessageBox(QMessageBox::Ok);
    press("Button7");
    EXPECT_EQ(seen->text, u"Transformation completed!"_s);
    EXPECT_EQ(filesIn(out()), (QStringList{u"music.fwav"_s, u"tone.wav"_s}));
    EXPECT_EQ(lines("List1"), (QStringList{out(u"tone.wav"_s), out(u"music.fwav"_s)}));
    EXPECT_EQ(labelText("lblStaus"),
              u"Status: applying effects if selelected (i.e.fade, trim, normalization,format "
              "functions) ..."_s);
    EXPECT_EQ(control<widgets::LevelBar>("AmpBar").maximum(), 2);
    EXPECT_EQ(control<widgets::LevelBar>("AmpBar").value(), 0);
    EXPECT_EQ(control<widgets::LevelBar>("AmpBar2").value(), 0);
    EXPECT_EQ(control<QListView>("lstFiles").currentIndex().row(), 1);
    EXPECT_TRUE(control("lstFiles").isVisible());
    EXPECT_TRUE(control("Button7").isEnabled());
}

TEST_F(WizardRun, Shows11050AndWrites11025) {
    addFixtures({u"tone.wav"_s});
    setTarget(out());
    choose("Combo2", u"11050"_s);
    choose("Combo4", u"Mono"_s);
    answerMessageBox(QMessageBox::Ok);
    press("Button7");
    const auto sound = support::decodeWithFfmpeg(platform::toPath(out(u"tone.wav"_s)));
    EXPECT_EQ(sound.rate, 11025);
    EXPECT_EQ(sound.channels, 1);
}

TEST_F(WizardRun, APrefixGivesEveryFileTheNameBefore) {
    addFixtures({u"tone.wav"_s, u"tone.mp3"_s});
    setTarget(out());
    support::type(control("Text1a"), u"Party "_s);
    answerMessageBox(QMessageBox::Ok);
    press("Button7");
    EXPECT_EQ(filesIn(out()), QStringList{u"wav"_s});
    EXPECT_EQ(lines("List1"), (QStringList{out(u"wav"_s), out(u"wav"_s)}));
}

TEST_F(WizardRun, AFileThatCannotBeReadIsNamedBesideThePreview) {
    playlist << folder.file(u"missing.mp3"_s);
    addFixtures({u"tone.wav"_s});
    setTarget(out());
    const auto seen = answerMessageBox(QMessageBox::Ok);
    press("Button7");
    EXPECT_EQ(seen->text, u"Transformation completed!"_s);
    EXPECT_EQ(filesIn(out()), QStringList{u"tone.wav"_s});
    EXPECT_EQ(lines("List1").size(), 2);
    EXPECT_TRUE(
        support::waitFor([this] { return labelText("lblMixNote").contains(u"missing.mp3"_s); }));
}

TEST_F(WizardRun, NeverWritesOverAnOriginal) {
    const auto copy = support::scratchCopy("tone.wav", folder.path());
    const auto before = support::readBytes(copy);
    window->handOver({platform::toQString(copy)});
    setTarget(folder.file({}));
    tick(8);
    const auto seen = answerMessageBox(QMessageBox::Ok);
    press("Button7");
    EXPECT_TRUE(seen->text.contains(platform::toQString(copy)));
    EXPECT_EQ(support::readBytes(copy), before);
}

TEST_F(WizardRun, StopInFileThreeOfTenEndsAfterIt) {
    addLongFiles(10);
    setTarget(out());
    tick(8);
    duringFile(2, [this] { press("Button6"); });
    const auto seen = answerMessageBox(QMessageBox::Ok);
    press("Button7");
    EXPECT_EQ(seen->text, u"Transformation completed!"_s);
    EXPECT_EQ(filesIn(out()), (QStringList{u"long1.wav"_s, u"long2.wav"_s, u"long3.wav"_s}));
    EXPECT_EQ(lines("List1").size(), 3);
    EXPECT_EQ(support::decodeWithFfmpeg(platform::toPath(out(u"long3.wav"_s))).frames(),
              90U * 44100);
}

TEST_F(WizardRun, ShowsTheEnginesProgressAndRestsItsStartButton) {
    addLongFiles(1);
    setTarget(out());
    tick(8);
    int highest = 0;
    bool startWasOpen = false;
    QObject::connect(&find<effects::AudioEditor>("AudioEditor1"), &effects::AudioEditor::Progress,
                     window.data(), [&](int) {
                         startWasOpen |= control("Button7").isEnabled();
                         highest = std::max(highest, control<widgets::LevelBar>("AmpBar2").value());
                     });
    answerMessageBox(QMessageBox::Ok);
    press("Button7");
    EXPECT_GT(highest, 0);
    EXPECT_FALSE(startWasOpen);
}

TEST_F(WizardRun, ClosingItDuringARunEndsAfterTheFileInSilence) {
    addLongFiles(4);
    setTarget(out());
    tick(8);
    tick(23);
    duringFile(1, [this] { window->close(); });
    press("Button7");
    EXPECT_TRUE(support::waitFor([this] {
        support::settle();
        return window.isNull();
    }));
    EXPECT_EQ(filesIn(out()), (QStringList{u"long1.wav"_s, u"long2.wav"_s}));
    EXPECT_EQ(support::decodeWithFfmpeg(platform::toPath(out(u"long2.wav"_s))).frames(),
              90U * 44100);
}

TEST_F(WizardRun, NoLeavesHeadFilesAndChangedTracksAndTheWindowOpen) {
    addFixtures({u"music.wav"_s, u"music.mp3"_s, u"music.flac"_s});
    setTarget(out());
    tick(23);
    choose("Combo5", u"5 secs crossfade"_s);
    press("Button10");
    const auto seen = answerMessageBox(QMessageBox::No);
    press("Button7");
    EXPECT_EQ(seen->title, u"Ready to burn CD?"_s);
    EXPECT_EQ(seen->text, u"Ready to burn your cross fade configured Audio CD?  "_s);
    EXPECT_EQ(seen->buttons, QMessageBox::Yes | QMessageBox::No);
    EXPECT_EQ(seen->icon, QMessageBox::Question);
    EXPECT_EQ(labelText("lblStaus"), u"Status: idle"_s);
    EXPECT_TRUE(window->isVisible());
    EXPECT_TRUE(control("List1").isVisible());
    EXPECT_FALSE(control("lstFiles").isVisible());
    EXPECT_EQ(lines("List1"),
              (QStringList{out(u"music.wav"_s), out(u"music (2).wav"_s), out(u"music.fwav"_s)}));
    EXPECT_TRUE(QFile::exists(out(u"2_music.fwav"_s)));
    EXPECT_FALSE(QFile::exists(handoff::burnListFile()));
}

TEST_F(WizardRun, WhateverTheLengthsEverySampleOfEveryTrackIsHeardOnceInOrder) {
    support::RandomMixes mixes;
    mixes.rounds = 4;
    mixes.longest = 12;
    mixes.overlaps = {5000, 10000};
    mixes.run(folder.file(u"random/"_s),
              [this](const QStringList& tracks, int overlapMs, const QString& target) {
                  window->handOver(tracks);
                  setTarget(target);
                  const bool mix = overlapMs > 0;
                  if (mix != control<QCheckBox>("Check23").isChecked()) tick(23);
                  if (mix) {
                      choose("Combo5", u"%1 secs crossfade"_s.arg(overlapMs / 1000));
                      press("Button10");
                  }
                  answerMessageBox(mix ? QMessageBox::No : QMessageBox::Ok);
                  press("Button7");
                  EXPECT_TRUE(support::allAnswered());
                  return lines("List1");
              });
}

TEST_F(WizardRun, YesWritesTheBurnListClosesAndStartsTheCompanion) {
    const test::Companion companion("Fornax/Fornax_Blend.EXE", handoff::burnListFile());
    addFixtures({u"music.wav"_s, u"tone.mp3"_s});
    setTarget(out());
    tick(23);
    choose("Combo5", u"5 secs crossfade"_s);
    press("Button10");
    answerMessageBox(QMessageBox::Yes);
    press("Button7");
    ASSERT_TRUE(companion.started());
    EXPECT_EQ(companion.arguments(), 0);
    EXPECT_EQ(QString::fromStdString(companion.found()),
              out(u"music.wav"_s) + u"\r\n"_s + out(u"tone.wav"_s) + u"\r\n"_s);
    EXPECT_TRUE(support::waitFor([this] {
        support::settle();
        return window.isNull();
    }));
}

TEST_F(WizardRun, AMissingCompanionIsSaidAfterTheListIsWritten) {
    addFixtures({u"tone.wav"_s});
    setTarget(out());
    tick(23);
    answerMessageBox(QMessageBox::Yes);
    const auto seen = answerMessageBox(QMessageBox::Ok);
    press("Button7");
    ASSERT_TRUE(support::allAnswered());
    EXPECT_TRUE(seen->text.contains(u"Fornax_Blend.EXE"_s)) << seen->text.toStdString();
    EXPECT_TRUE(QFile::exists(handoff::burnListFile()));
}

TEST_F(WizardRun, ThePreviewFollowsTheOptions) {
    const auto shows = [this](const QString& length) {
        return support::waitFor([&] { return labelText("lblMixTotal").contains(length); })
                   ? testing::AssertionSuccess()
                   : testing::AssertionFailure() << labelText("lblMixTotal").toStdString();
    };
    addFixtures({u"music.wav"_s, u"music.flac"_s});
    EXPECT_TRUE(shows(u" 0:40 of the 80:00"_s));
    tick(23);
    choose("Combo5", u"5 secs crossfade"_s);
    press("Button10");
    EXPECT_TRUE(shows(u" 0:35 "_s));
    tick(24);
    EXPECT_TRUE(support::waitFor(
        [this] { return labelText("lblMixNote").contains(u"before silence is trimmed"_s); }));
    press("Button2");
    EXPECT_TRUE(shows(u" 0:00 "_s));
}

}  // namespace
