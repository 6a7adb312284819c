// SPDX-License-Identifier: GPL-3.0-or-later
// The order of a run's steps, on a window and an engine that write down what is asked of them.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "app/modules/modMain.h"
#include "effects/batch/BatchRunner.h"
#include "tests/effects/RecordingWindow.h"

using namespace Qt::Literals::StringLiterals;
using testing::Contains;
using testing::ElementsAre;
using testing::Not;

namespace {

class Runner : public testing::Test {
  protected:
    Runner() {
        modMain::EffectMode = modMain::ModeNormalize;
        modMain::SelectedCount = 0;
        job.hideDialog = [this] { log(u"hide dialog"_s); };
        job.unloadDialog = [this] { log(u"unload dialog"_s); };
        job.effect = [](effects::Editor& editor, const effects::CallGuard& guard) {
            guard([&] { editor.Amplify(55); });
        };
        job.closingMessage = u"Done."_s;
    }

    void log(const QString& what) { window.engine.calls << what; }
    QStringList calls() const { return window.engine.calls; }
    QStringList calls(const QString& beginning) const { return calls().filter(beginning); }
    void list(int rows, std::set<int> selected) {
        window.rows = rows;
        window.selected = std::move(selected);
    }
    void failAt(const QString& part) {
        window.engine.fails = [part](const QString& call) { return call.contains(part); };
    }

    support::RecordingWindow window;
    effects::BatchRunner runner{window.engine, window.all(), window};
    effects::BatchJob job;
};

TEST_F(Runner, TakesItsStepsInOrder) {
    list(3, {2});
    job.readSettings = [this] { log(u"read settings"_s); };
    job.deselectAtEnd = true;
    runner.run(job);
    const QStringList expected{u"stop"_s,
                               u"hide dialog"_s,
                               u"yield"_s,
                               u"disable commands"_s,
                               u"read settings"_s,
                               u"yield"_s,
                               u"bar maximum 2"_s,
                               u"yield"_s,
                               u"show bar"_s,
                               u"bar 1"_s,
                               u"Load(/music/1.wav)"_s,
                               u"file name [/music/1.wav]"_s,
                               u"yield"_s,
                               u"status [Working on: 1.wav]"_s,
                               u"yield"_s,
                               u"Amplify(55)"_s,
                               u"yield"_s,
                               u"Save(/music/1.wav, true, 0)"_s,
                               u"yield"_s,
                               u"hide bar"_s,
                               u"status []"_s,
                               u"bar 0"_s,
                               u"SetSelectionActive(false)"_s,
                               u"message [Done.]"_s,
                               u"enable commands"_s,
                               u"unload dialog"_s};
    EXPECT_EQ(calls(), expected) << calls().join(u'\n').toStdString();
    EXPECT_EQ(window.name, u"/music/1.wav"_s);
}

TEST_F(Runner, ThePlayerLetsGoOfEachFileThatIsReplaced) {
    list(2, {1, 2});
    runner.run(job);
    EXPECT_EQ(window.released, (QStringList{u"/music/0.wav"_s, u"/music/1.wav"_s}));
}

TEST_F(Runner, ResetsModeAndCountAtTheEnd) {
    list(2, {1, 2});
    runner.run(job);
    EXPECT_EQ(modMain::EffectMode, 0);
    EXPECT_EQ(modMain::SelectedCount, 0);
    EXPECT_FALSE(runner.running());
}

TEST_F(Runner, WithNothingSelectedStillShowsTheMessageAndAMaximumOfOne) {
    list(3, {});
    runner.run(job);
    EXPECT_TRUE(calls().contains(u"bar maximum 1"_s));
    EXPECT_TRUE(calls().contains(u"message [Done.]"_s));
    EXPECT_TRUE(calls(u"Load"_s).isEmpty());
    EXPECT_TRUE(calls(u"Save"_s).isEmpty());
    EXPECT_FALSE(calls().contains(u"show bar"_s));
}

TEST_F(Runner, AnEmptyListIsNoTrouble) {
    list(0, {});
    runner.run(job);
    EXPECT_TRUE(calls().contains(u"bar maximum 1"_s));
    EXPECT_TRUE(calls().contains(u"enable commands"_s));
}

TEST_F(Runner, NeverCountsTheLastRowButWorksOnIt) {
    list(3, {1, 3});
    runner.run(job);
    EXPECT_TRUE(calls().contains(u"bar maximum 2"_s));
    EXPECT_EQ(calls(u"Load"_s), (QStringList{u"Load(/music/0.wav)"_s, u"Load(/music/2.wav)"_s}));
    EXPECT_TRUE(calls().contains(u"bar 2"_s));
}

TEST_F(Runner, GoesOnAfterEveryError) {
    list(2, {1, 2});
    window.engine.fails = [](const QString&) { return true; };
    window.stopFails = true;
    runner.run(job);
    EXPECT_EQ(calls(u"Amplify"_s).size(), 2);
    EXPECT_EQ(calls(u"Save("_s),
              (QStringList{u"Save(/music/0.wav, true, 0)"_s, u"Save(/music/1.wav, true, 0)"_s}));
    EXPECT_TRUE(calls().contains(u"message [Done.]"_s));
    EXPECT_TRUE(calls().contains(u"enable commands"_s));
}

TEST_F(Runner, MarksAFailedRowWithTheFirstReason) {
    list(2, {1, 2});
    window.engine.fails = [](const QString& call) {
        return call.startsWith(u"Load(/music/1"_s) || call.startsWith(u"Save(/music/1"_s);
    };
    runner.run(job);
    EXPECT_EQ(window.marks, (QMap<int, QString>{{2, u"Load(/music/1.wav) failed."_s}}));
}

TEST_F(Runner, AFailureOfStoppingIsNoFailureOfTheFirstFile) {
    list(1, {1});
    window.stopFails = true;
    runner.run(job);
    EXPECT_TRUE(window.marks.isEmpty());
}

TEST_F(Runner, TheNextRunTakesTheMarksAway) {
    list(1, {1});
    failAt(u"Save"_s);
    runner.run(job);
    EXPECT_EQ(window.marks.size(), 1);
    window.engine.fails = nullptr;
    runner.trim();
    EXPECT_TRUE(window.marks.isEmpty());
}

TEST_F(Runner, EndsAfterTheFileInHandWhenTheWindowIsClosed) {
    list(3, {1, 2, 3});
    window.engine.during = [this](const QString& call) {
        if (call.startsWith(u"Amplify"_s)) window.closed = true;
    };
    runner.run(job);
    EXPECT_EQ(calls(u"Load"_s).size(), 1);
    EXPECT_EQ(calls(u"Save("_s).size(), 1);
    EXPECT_TRUE(calls(u"message"_s).isEmpty());
    EXPECT_EQ(calls().last(), u"unload dialog"_s);
}

TEST_F(Runner, CannotBeStartedFromWithinItself) {
    list(1, {1});
    window.onYield = [this] {
        EXPECT_TRUE(runner.running());
        runner.run(job);
        runner.trim();
    };
    runner.run(job);
    EXPECT_EQ(calls(u"Load"_s).size(), 1);
    EXPECT_EQ(calls(u"message"_s).size(), 1);
}

TEST_F(Runner, ProgressMovesTheBarWithinTheFileAndYields) {
    list(1, {1});
    window.engine.during = [this](const QString&) { runner.progress(50); };
    runner.run(job);
    ASSERT_GE(window.fractions.size(), 6U);
    EXPECT_TRUE(std::is_sorted(window.fractions.begin(), window.fractions.end()));
    EXPECT_DOUBLE_EQ(window.fractions.front(), 0);
    EXPECT_NEAR(window.fractions.back(), 5.0 / 6, 1e-9);
}

TEST_F(Runner, TheTrimPassHasNeitherBarNorCountNorMessage) {
    list(3, {1, 3});
    modMain::SelectedCount = 7;
    runner.trim();
    const QStringList expected{u"stop"_s,
                               u"disable commands"_s,
                               u"yield"_s,
                               u"yield"_s,
                               u"bar 1"_s,
                               u"Load(/music/0.wav)"_s,
                               u"file name [/music/0.wav]"_s,
                               u"yield"_s,
                               u"status [Working on: 0.wav]"_s,
                               u"yield"_s,
                               u"SelectWholeFile()"_s,
                               u"TrimSilence(-20, 100, 2)"_s,
                               u"yield"_s,
                               u"Save(/music/0.wav, true, 0)"_s,
                               u"yield"_s,
                               u"yield"_s,
                               u"bar 2"_s,
                               u"Load(/music/2.wav)"_s,
                               u"file name [/music/2.wav]"_s,
                               u"yield"_s,
                               u"status [Working on: 2.wav]"_s,
                               u"yield"_s,
                               u"SelectWholeFile()"_s,
                               u"TrimSilence(-20, 100, 2)"_s,
                               u"yield"_s,
                               u"Save(/music/2.wav, true, 0)"_s,
                               u"yield"_s,
                               u"enable commands"_s,
                               u"status []"_s};
    EXPECT_EQ(calls(), expected) << calls().join(u'\n').toStdString();
    EXPECT_EQ(modMain::SelectedCount, 7);
    EXPECT_EQ(modMain::EffectMode, modMain::ModeNormalize);
}

TEST_F(Runner, TheTrimPassSavesAlsoWhatCouldNotBeTrimmed) {
    list(1, {1});
    failAt(u"TrimSilence"_s);
    runner.trim();
    EXPECT_EQ(calls(u"Save("_s).size(), 1);
    EXPECT_EQ(window.marks[1], u"TrimSilence(-20, 100, 2) failed."_s);
}

TEST_F(Runner, WhatASaveLeftUndoneIsToldOnItsRow) {
    list(2, {1, 2});
    window.engine.notice = u"It was not normalized."_s;
    runner.run(job);
    EXPECT_EQ(window.marks[1], u"It was not normalized."_s);
    EXPECT_EQ(window.marks[2], u"It was not normalized."_s);
}

TEST_F(Runner, AJobWithoutAnEffectStillSavesEveryFile) {
    list(2, {1, 2});
    job.effect = nullptr;
    runner.run(job);
    EXPECT_EQ(calls(u"Save("_s).size(), 2);
}

TEST_F(Runner, TheSaveStepAloneIgnoresErrors) {
    window.name = u"/music/x.wav"_s;
    failAt(u"Save"_s);
    runner.save();
    EXPECT_EQ(calls(), (QStringList{u"yield"_s, u"Save(/music/x.wav, true, 0)"_s, u"yield"_s}));
    EXPECT_TRUE(window.marks.isEmpty());
}

}  // namespace
