// SPDX-License-Identifier: GPL-3.0-or-later
#include <QFile>
#include <gtest/gtest.h>

#include "tests/support/FakeEditor.h"
#include "tests/support/TempFolder.h"
#include "tests/wizard/RecordingView.h"
#include "wizard/Texts.h"
#include "wizard/TransformationPass.h"

using namespace Qt::Literals::StringLiterals;

namespace {

class PassTest : public testing::Test {
  protected:
    void addFiles(int count) {
        for (int n = 1; n <= count; ++n)
            wizard::append(session.lstFiles, u"/in/Song%1.mp3"_s.arg(n));
    }
    QStringList run() {
        wizard::TransformationPass pass(editor, session, view.all());
        reason = pass.reasonAgainst();
        if (reason.isEmpty()) pass.run();
        return editor.calls;
    }

    support::FakeEditor editor;
    wizard::Session session;
    support::RecordingView view;
    QString reason;  ///< against the run
};

TEST_F(PassTest, WithoutTargetPathSaysSoAndChangesNothing) {
    addFiles(2);
    view.chosen.targetPath.clear();
    EXPECT_TRUE(run().isEmpty());
    EXPECT_EQ(reason, u"Target path MUST be set before proceeding!"_s);
    EXPECT_EQ(session.List1.rowCount(), 0);
    EXPECT_TRUE(view.statuses.isEmpty());
}

TEST_F(PassTest, CallsTheEngineInTheFixedOrder) {
    addFiles(1);
    view.chosen.trimSilence = view.chosen.normalize = true;
    view.chosen.fadeOut = view.chosen.fadeIn = true;
    session.settings.fadeOutMs = 5000;
    EXPECT_EQ(run(), (QStringList{
                         u"CloseSound()"_s,
                         u"Load(/in/Song1.mp3)"_s,
                         u"SelectWholeFile()"_s,
                         u"TrimSilence(-20, 100, 2)"_s,
                         u"Normalize(100, true)"_s,
                         u"SetSelectionActive(true)"_s,
                         u"SetSelectionStart(220500)"_s,
                         u"SetSelectionEnd(441000)"_s,
                         u"Fade(100, 10)"_s,
                         u"SetSelectionActive(true)"_s,
                         u"SetSelectionStart(0)"_s,
                         u"SetSelectionEnd(1323000)"_s,
                         u"Fade(10, 100)"_s,
                         u"SetKeepTags(true)"_s,
                         u"SetKeepTags(true)"_s,
                         u"SetOutputFormatWav(44100, 2, 16)"_s,
                         u"Save(/out/Song1.wav, false, 0)"_s,
                         u"CloseSound()"_s,
                     }));
    EXPECT_EQ(session.settings.fadeInMs, 30000);
    EXPECT_EQ(view.completed, 1);
}

TEST_F(PassTest, TouchesNothingThatIsNotTicked) {
    addFiles(1);
    view.chosen.tags = wizard::TagChoice::SetNew;
    EXPECT_EQ(run(),
              (QStringList{u"CloseSound()"_s, u"Load(/in/Song1.mp3)"_s, u"SelectWholeFile()"_s,
                           u"SetKeepTags(true)"_s, u"SetOutputFormatWav(44100, 2, 16)"_s,
                           u"Save(/out/Song1.wav, false, 0)"_s, u"CloseSound()"_s}));
}

TEST_F(PassTest, NormalizesAt100WhateverWasChosenInTheWindow) {
    addFiles(2);
    view.chosen.normalize = true;
    session.settings.flan_val = 60;  // where the window puts the chosen value
    run();
    EXPECT_EQ(editor.calls.count(u"Normalize(100, true)"_s), 2);
}

TEST_F(PassTest, FadeOutWithoutALengthStartsThirtySecondsBeforeTheEnd) {
    addFiles(1);
    view.chosen.fadeOut = true;
    run();
    EXPECT_TRUE(
        editor.calls.contains(u"SetSelectionStart(-882000)"_s));  // the sound has ten seconds
    EXPECT_EQ(session.settings.fadeOutMs, 30000);
}

TEST_F(PassTest, WritesMp3WithRateBitRateAndChannels) {
    addFiles(1);
    view.chosen.format = u"MP3"_s;
    view.chosen.bitRate = u"192-bit"_s;
    view.chosen.frequency = u"11050"_s;
    view.chosen.channels = u"Mono"_s;
    view.chosen.tags = wizard::TagChoice::Strip;
    run();
    EXPECT_TRUE(editor.calls.contains(u"SetOutputFormatMp3(11025, 192, 1)"_s));
    EXPECT_TRUE(editor.calls.contains(u"Save(/out/Song1.mp3, false, 0)"_s));
    EXPECT_EQ(editor.calls.lastIndexOf(u"SetKeepTags(false)"_s),
              editor.calls.indexOf(u"SetKeepTags(true)"_s) + 1);
}

TEST_F(PassTest, CutsThreeCharactersOfAnyName) {
    wizard::append(session.lstFiles, u"/in/Track.flac"_s);
    run();
    EXPECT_EQ(session.List1.stringList(), QStringList{u"/out/Track.fwav"_s});
}

TEST_F(PassTest, APrefixKeepsTheNameOfTheFileBefore) {
    addFiles(3);
    view.chosen.hasPrefix = true;
    run();
    EXPECT_EQ(session.List1.stringList(),
              (QStringList{u"/out/wav"_s, u"/out/wav"_s, u"/out/wav"_s}));

    session.settings.FileName = u"Before."_s;
    run();
    EXPECT_EQ(session.List1.stringList().first(), u"/out/Before.wav"_s);
}

TEST_F(PassTest, ASeparatorThatTheTargetLacksIsNotAdded) {
    addFiles(1);
    view.chosen.targetPath = u"/out"_s;
    run();
    EXPECT_EQ(session.List1.stringList(), QStringList{u"/outSong1.wav"_s});
}

TEST_F(PassTest, AnUnknownFormatWritesNothingAndListsTheLastPath) {
    addFiles(1);
    view.chosen.format = u"AU"_s;
    run();
    EXPECT_TRUE(editor.calls.filter(u"Save"_s).isEmpty());
    EXPECT_EQ(session.List1.rowCount(), 1);
}

TEST_F(PassTest, StopInFileThreeOfTenEndsAfterIt) {
    addFiles(10);
    editor.during = [&](const QString& call) {
        if (call == u"Load(/in/Song3.mp3)"_s) session.stop();
    };
    run();
    EXPECT_EQ(session.List1.stringList().last(), u"/out/Song3.wav"_s);
    EXPECT_TRUE(editor.calls.contains(u"Save(/out/Song3.wav, false, 0)"_s));
    EXPECT_EQ(session.List1.rowCount(), 3);
    EXPECT_EQ(view.completed, 1);
    EXPECT_EQ(session.settings.i_count, 0);
}

TEST_F(PassTest, StopStillLeadsToTheRounds) {
    addFiles(3);
    view.chosen.crossFade = true;
    session.settings.crossfade_value = 1000;
    editor.during = [&](const QString& call) {
        if (call == u"Load(/in/Song2.mp3)"_s) session.stop();
    };
    run();
    EXPECT_EQ(session.List1.rowCount(), 2);
    EXPECT_EQ(view.burnQuestions, 1);
    EXPECT_EQ(view.completed, 0);
    EXPECT_TRUE(editor.calls.contains(u"MixFile(/out/1_Song2.wav, 100, 100)"_s));
}

TEST_F(PassTest, TakesInFilesThatAreAddedMeanwhile) {
    addFiles(1);
    bool added = false;
    editor.during = [&](const QString&) {
        if (!std::exchange(added, true)) wizard::append(session.lstFiles, u"/in/Late.ogg"_s);
    };
    run();
    EXPECT_EQ(session.List1.stringList().last(), u"/out/Late.wav"_s);
}

TEST_F(PassTest, SurvivesAListThatIsClearedMeanwhile) {
    addFiles(4);
    editor.during = [&](const QString& call) {
        if (call.startsWith(u"Load"_s)) session.lstFiles.setStringList({});
    };
    run();
    EXPECT_EQ(session.List1.rowCount(), 1);
}

TEST_F(PassTest, AFailingFileIsPassedOverAndListedAllTheSame) {
    addFiles(3);
    view.chosen.trimSilence = true;
    editor.fails = [](const QString& call) {
        static bool loaded = true;
        if (call.startsWith(u"Load"_s)) loaded = !call.contains(u"Song2"_s);
        return !loaded && !call.startsWith(u"Set"_s) && !call.startsWith(u"Close"_s);
    };
    run();
    EXPECT_EQ(session.List1.rowCount(), 3);
    EXPECT_EQ(view.failures, QStringList{u"Load(/in/Song2.mp3) failed."_s});
    EXPECT_TRUE(editor.calls.contains(u"Save(/out/Song3.wav, false, 0)"_s));
    EXPECT_EQ(view.completed, 1);
}

TEST_F(PassTest, ShowsItsProgress) {
    addFiles(2);
    run();
    EXPECT_EQ(view.maximum, 2);
    EXPECT_EQ(view.progress, (QList<int>{1, 2, 0}));
    EXPECT_EQ(view.selectedFiles, (QList<int>{0, 1}));
    EXPECT_EQ(view.statuses.first(),
              u"Status: applying effects if selelected "
              u"(i.e.fade, trim, normalization,format functions) ..."_s);
}

TEST_F(PassTest, AWindowThatGoesAwayEndsItInSilence) {
    addFiles(3);
    view.chosen.crossFade = true;
    editor.during = [&](const QString& call) {
        if (!call.startsWith(u"Load"_s)) return;
        view.closed = true;
        session.stop();
    };
    run();
    EXPECT_EQ(session.List1.rowCount(), 1);
    EXPECT_EQ(view.completed, 0);
    EXPECT_EQ(view.burnQuestions, 0);
}

TEST_F(PassTest, TwoSongsOfOneNameGetTwoResults) {
    session.lstFiles.setStringList(
        {u"/one/Song.mp3"_s, u"/two/Song.mp3"_s, u"/one/Song (2).mp3"_s, u"/one/Song.mp3"_s});
    run();
    EXPECT_EQ(session.List1.stringList(),
              (QStringList{u"/out/Song.wav"_s, u"/out/Song (2).wav"_s, u"/out/Song (2) (2).wav"_s,
                           u"/out/Song (3).wav"_s}));
    EXPECT_EQ(session.sounding, (std::set<int>{0, 1, 2, 3}));
}

TEST_F(PassTest, OnlyWhatThisRunWroteIsKnownToSound) {
    addFiles(3);
    editor.fails = [](const QString& call) { return call == u"Save(/out/Song2.wav, false, 0)"_s; };
    run();
    EXPECT_EQ(session.List1.rowCount(), 3);
    EXPECT_EQ(session.sounding, (std::set<int>{0, 2}));
}

TEST_F(PassTest, OfResultsThatShareAPathTheLastOneSounds) {
    addFiles(3);
    view.chosen.hasPrefix = true;
    run();
    EXPECT_EQ(session.sounding, (std::set<int>{2}));
}

class OriginalsTest : public PassTest {
  protected:
    QString make(const QString& name) {
        QFile file(folder.file(name));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        return file.fileName();
    }
    support::TempFolder folder;
};

TEST_F(OriginalsTest, ATargetThatHoldsAnOriginalIsRefused) {
    wizard::append(session.lstFiles, make(u"Song.wav"_s));
    view.chosen.targetPath = folder.file({});
    EXPECT_TRUE(run().isEmpty());
    EXPECT_TRUE(reason.contains(folder.file(u"Song.wav"_s)));
}

TEST_F(OriginalsTest, SoIsOneThatLeadsToItByALink) {
    wizard::append(session.lstFiles, make(u"Song.wav"_s));
    ASSERT_TRUE(QFile::link(folder.file({}), folder.file(u"link"_s)));
    view.chosen.targetPath = folder.file(u"link/"_s);
    EXPECT_TRUE(run().isEmpty());
}

TEST_F(OriginalsTest, AnotherEndingIsNoDanger) {
    wizard::append(session.lstFiles, make(u"Song.mp3"_s));
    view.chosen.targetPath = folder.file({});
    run();
    EXPECT_TRUE(editor.calls.contains(u"Save(%1, false, 0)"_s.arg(folder.file(u"Song.wav"_s))));
}

TEST_F(OriginalsTest, AHeadFileNeverReplacesAnOriginal) {
    session.lstFiles.setStringList({u"/in/a.mp3"_s, u"/in/b.mp3"_s});
    view.chosen.targetPath = folder.file({});
    view.chosen.crossFade = true;
    session.settings.crossfade_value = 1000;
    const QString original = make(u"1_b.wav"_s);
    editor.during = [&](const QString& call) {  // added when the run has begun
        if (call == u"Load(/in/b.mp3)"_s) wizard::append(session.lstFiles, original);
    };
    run();
    EXPECT_TRUE(editor.calls.contains(u"Save(%1, true, 0)"_s.arg(folder.file(u"1_b (2).wav"_s))));
    EXPECT_TRUE(editor.calls.filter(u"Save(%1,"_s.arg(original)).isEmpty());
    EXPECT_EQ(view.failures.size(), 1);
}

}  // namespace
