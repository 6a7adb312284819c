// SPDX-License-Identifier: GPL-3.0-or-later
#include <limits>

#include <gtest/gtest.h>

#include "tests/support/FakeEditor.h"
#include "tests/wizard/RecordingView.h"
#include "wizard/CrossFadeRounds.h"

using namespace Qt::Literals::StringLiterals;

namespace {

class RoundsTest : public testing::Test {
  protected:
    QStringList run(const QStringList& results) {
        session.List1.setStringList(results);
        for (int row = 0; row < results.size(); ++row)
            if (!failed.contains(row)) session.sounding.insert(row);
        wizard::CrossFadeRounds(editor, session, view.all()).run();
        return editor.calls;
    }

    void SetUp() override { editor.length = 60 * 44100; }

    support::FakeEditor editor;
    std::set<int> failed;  // rows that the pass could not write
    wizard::Session session;
    support::RecordingView view;
};

const QStringList Three = {u"/out/A.wav"_s, u"/out/B.wav"_s, u"/out/C.wav"_s};

TEST_F(RoundsTest, CallsTheEngineInTheFixedOrder) {
    editor.length = 441000;
    session.settings.crossfade_value = 5000;
    EXPECT_EQ(run({u"/out/A.wav"_s, u"/out/B.wav"_s}), (QStringList{
                                                           u"CloseSound()"_s,
                                                           u"Load(/out/B.wav)"_s,
                                                           u"SetSelectionActive(false)"_s,
                                                           u"SetSelectionActive(true)"_s,
                                                           u"SetSelectionEnd(220500)"_s,
                                                           u"Save(/out/1_B.wav, true, 0)"_s,
                                                           u"DeleteSelection()"_s,
                                                           u"SetSelectionActive(false)"_s,
                                                           u"Save(/out/B.wav, false, 0)"_s,
                                                           u"CloseSound()"_s,
                                                           u"Load(/out/A.wav)"_s,
                                                           u"SetSelectionActive(false)"_s,
                                                           u"SetSelectionActive(true)"_s,
                                                           u"SetSelectionStart(220500)"_s,
                                                           u"SetSelectionEnd(441000)"_s,
                                                           u"MixFile(/out/1_B.wav, 100, 100)"_s,
                                                           u"Save(/out/A.wav, false, 0)"_s,
                                                           u"SetSelectionActive(false)"_s,
                                                       }));
}

TEST_F(RoundsTest, OverlapsThreeTracksByTwentySecondsUnlessTold) {
    run(Three);
    EXPECT_EQ(session.settings.crossfade_value, 20000);
    EXPECT_EQ(editor.calls.filter(u"Save"_s),
              (QStringList{u"Save(/out/1_B.wav, true, 0)"_s, u"Save(/out/B.wav, false, 0)"_s,
                           u"Save(/out/2_C.wav, true, 0)"_s, u"Save(/out/C.wav, false, 0)"_s,
                           u"Save(/out/A.wav, false, 0)"_s, u"Save(/out/B.wav, false, 0)"_s}));
    EXPECT_EQ(
        editor.calls.filter(u"MixFile"_s),
        (QStringList{u"MixFile(/out/1_B.wav, 100, 100)"_s, u"MixFile(/out/2_C.wav, 100, 100)"_s}));
    EXPECT_EQ(view.selectedResults, (QList<int>{1, 2, 0, 1}));
    EXPECT_TRUE(view.resultsShown);
    EXPECT_EQ(
        view.statuses,
        (QStringList{u"Status: starting first round of the 'pre-burn crossfade process' ..."_s,
                     u"Status: starting second round of the 'pre-burn crossfade process' ..."_s,
                     u"Status: idle"_s}));
}

TEST_F(RoundsTest, ASingleEntryRunsNeitherLoopButIsOfferedForBurning) {
    EXPECT_EQ(run({u"/out/A.wav"_s}), (QStringList{u"CloseSound()"_s, u"CloseSound()"_s}));
    EXPECT_EQ(view.burnQuestions, 1);
}

TEST_F(RoundsTest, ATrackThatIsNoLongerThanTheOverlapKeepsItsHead) {
    session.settings.crossfade_value = 60000;
    run({u"/out/A.wav"_s, u"/out/B.wav"_s});
    EXPECT_TRUE(editor.calls.filter(u"true, 0)"_s).isEmpty());  // no head file
    EXPECT_TRUE(editor.calls.filter(u"DeleteSelection"_s).isEmpty());
    EXPECT_TRUE(editor.calls.filter(u"MixFile"_s).isEmpty());
    EXPECT_TRUE(view.failures.isEmpty());
}

TEST_F(RoundsTest, AHeadLongerThanTheTrackBeforeStartsBeforeIt) {
    session.settings.crossfade_value = 20000;
    editor.during = [&](const QString& call) {
        if (call.startsWith(u"Load"_s))
            editor.length = call.contains(u"A.wav"_s) ? 441000 : 2000000;
    };
    run({u"/out/A.wav"_s, u"/out/B.wav"_s});
    EXPECT_TRUE(editor.calls.contains(u"SetSelectionStart(-441000)"_s));
    EXPECT_TRUE(editor.calls.contains(u"MixFile(/out/1_B.wav, 100, 100)"_s));
}

TEST_F(RoundsTest, ATrackWithoutSoundIsPassedOver) {
    failed = {1};
    run(Three);
    EXPECT_TRUE(editor.calls.filter(u"B.wav"_s).isEmpty());  // a file of an earlier run, perhaps
    EXPECT_EQ(editor.calls.filter(u"MixFile"_s), QStringList{u"MixFile(/out/2_C.wav, 100, 100)"_s});
    EXPECT_TRUE(editor.calls.contains(u"Save(/out/A.wav, false, 0)"_s));
}

TEST_F(RoundsTest, TheFirstTrackThatHasSoundKeepsItsHead) {
    failed = {0};
    run(Three);
    EXPECT_TRUE(editor.calls.filter(u"1_B.wav"_s).isEmpty());
    EXPECT_EQ(editor.calls.filter(u"MixFile"_s), QStringList{u"MixFile(/out/2_C.wav, 100, 100)"_s});
}

TEST_F(RoundsTest, AHeadFileNeverReplacesATrack) {
    run({u"/out/1_b.wav"_s, u"/out/b.wav"_s});
    EXPECT_EQ(editor.calls.filter(u"true, 0)"_s),
              QStringList{u"Save(/out/1_b (2).wav, true, 0)"_s});
    EXPECT_EQ(editor.calls.filter(u"MixFile"_s),
              QStringList{u"MixFile(/out/1_b (2).wav, 100, 100)"_s});
}

TEST_F(RoundsTest, AStartThatIsNoPositionEndsTheRound) {
    editor.length = std::numeric_limits<std::int32_t>::min() + 5;
    run(Three);
    EXPECT_TRUE(editor.calls.filter(u"MixFile"_s).isEmpty());
    EXPECT_FALSE(editor.calls.contains(u"Save(/out/A.wav, false, 0)"_s));
    EXPECT_EQ(view.burnQuestions, 1);
}

TEST_F(RoundsTest, AMissingHeadFileLeavesTheTrackAsItIs) {
    editor.fails = [](const QString& call) { return call.startsWith(u"MixFile(/out/1_B"_s); };
    run(Three);
    EXPECT_TRUE(editor.calls.contains(u"Save(/out/A.wav, false, 0)"_s));
    EXPECT_TRUE(editor.calls.contains(u"MixFile(/out/2_C.wav, 100, 100)"_s));
}

TEST_F(RoundsTest, AHeadThatCouldNotBeWrittenStaysOnItsTrack) {
    editor.fails = [](const QString& call) { return call == u"Save(/out/1_B.wav, true, 0)"_s; };
    run(Three);
    EXPECT_EQ(editor.calls.count(u"DeleteSelection()"_s), 1);  // C's alone
    EXPECT_FALSE(editor.calls.contains(u"MixFile(/out/1_B.wav, 100, 100)"_s));
    EXPECT_TRUE(editor.calls.contains(u"MixFile(/out/2_C.wav, 100, 100)"_s));
    EXPECT_EQ(view.failures.size(), 1);
}

TEST_F(RoundsTest, AHeadIsNotHeardTwiceWhenItsTrackCouldNotBeCut) {
    editor.fails = [](const QString& call) { return call == u"Save(/out/B.wav, false, 0)"_s; };
    run(Three);
    EXPECT_FALSE(editor.calls.contains(u"MixFile(/out/1_B.wav, 100, 100)"_s));
}

TEST_F(RoundsTest, StopEndsARoundAfterTheEntryInHand) {
    session.lstFiles.setStringList(Three);
    editor.during = [&](const QString& call) {
        if (call == u"Load(/out/B.wav)"_s) session.stop();
    };
    run(Three);
    EXPECT_FALSE(editor.calls.contains(u"Load(/out/C.wav)"_s));
    EXPECT_TRUE(editor.calls.contains(u"Save(/out/1_B.wav, true, 0)"_s));
    // C kept its head: an old head file of the same name is not mixed over B.
    EXPECT_EQ(editor.calls.filter(u"MixFile"_s), QStringList{u"MixFile(/out/1_B.wav, 100, 100)"_s});
}

TEST_F(RoundsTest, NoWritesNoBurnList) {
    run(Three);
    EXPECT_EQ(view.burnQuestions, 1);
    EXPECT_TRUE(view.burned.isEmpty());
}

TEST_F(RoundsTest, YesHandsTheChangedTracksOverInOrder) {
    view.burnAnswer = true;
    run(Three);
    EXPECT_EQ(view.burned, Three);
    EXPECT_EQ(view.selectedResults, (QList<int>{1, 2, 0, 1, 0, 1, 2}));
}

TEST_F(RoundsTest, AWindowThatGoesAwayIsAskedNothing) {
    editor.during = [&](const QString& call) {
        if (call.startsWith(u"DeleteSelection"_s)) view.closed = true;
    };
    run(Three);
    EXPECT_EQ(view.burnQuestions, 0);
    EXPECT_TRUE(editor.calls.filter(u"MixFile"_s).isEmpty());
}

}  // namespace
