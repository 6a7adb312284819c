// SPDX-License-Identifier: GPL-3.0-or-later
// The commands transform and crossfade, as a shell runs them.
#include <QFileInfo>
#include <gmock/gmock.h>

#include "platform/Paths.h"
#include "tests/platform/file/FileTools.h"
#include "tests/support/Fixtures.h"
#include "tests/support/Sound.h"
#include "tests/support/TempFolder.h"
#include "tests/wizard/MixArithmetic.h"

using namespace Qt::Literals::StringLiterals;
using support::Outcome;
using test::namesIn;
using testing::ElementsAre;
using testing::HasSubstr;

namespace {

class Mix : public testing::Test {
  protected:
    Outcome cli(const QStringList& arguments) const {
        return support::run(QStringLiteral(TRACKSMITH_CLI), arguments);
    }
    static QString fixture(const char* name) { return platform::toQString(support::fixture(name)); }
    QString target() const { return folder.file(u"new/folder"_s); }
    std::size_t frames(const char* name) const {
        return support::decodeWithFfmpeg(folder / "new/folder" / name).frames();
    }

    support::TempFolder folder;
};

TEST_F(Mix, TransformWritesEveryFileInTheChosenFormat) {
    const Outcome outcome =
        cli({u"transform"_s, fixture("music.flac"), fixture("tone.wav"), u"--target"_s, target(),
             u"--format"_s, u"mp3"_s, u"--bitrate"_s, u"192"_s, u"--frequency"_s, u"48000"_s,
             u"--channels"_s, u"1"_s, u"--normalize"_s, u"--fade-out"_s, u"1.5"_s});
    EXPECT_EQ(outcome.exitCode, 0) << outcome.err.toStdString();
    EXPECT_THAT(outcome.out.toStdString(), HasSubstr("2 files done."));
    EXPECT_THAT(namesIn(folder / "new/folder"), ElementsAre("music.fmp3", "tone.mp3"));
    const auto sound = support::decodeWithFfmpeg(folder / "new/folder/tone.mp3");
    EXPECT_EQ(sound.rate, 48000);
    EXPECT_EQ(sound.channels, 1);
}

TEST_F(Mix, WhateverTheLengthsEverySampleOfEveryTrackIsHeardOnceInOrder) {
    support::RandomMixes mixes;
    mixes.rounds = 4;
    mixes.run(folder.file(u"random/"_s), [this](const QStringList& tracks, int overlapMs,
                                                const QString& out) {
        QStringList arguments{u"transform"_s, u"--target"_s, out};
        if (overlapMs > 0)
            arguments = {u"crossfade"_s, u"--target"_s, out, u"--overlap"_s,
                         QString::number(overlapMs / 1000.0)};
        const QByteArray said = cli(arguments + tracks).out;
        QStringList results;
        qsizetype broken = 0;
        for (const QString& track : tracks) {
            broken += QFile(track).size() < 100;
            results += out + QFileInfo(track).fileName();
        }
        const std::string failed = broken > 0 ? std::to_string(broken) + " failed." : "done.";
        EXPECT_THAT(said.toStdString(), HasSubstr(failed));
        return results;
    });
}

TEST_F(Mix, CrossfadeOverlapsAListAndWritesTheBurnList) {
    test::writeFile(folder / "list.m3u",
                    (fixture("music.wav") + u"\n"_s + fixture("music-abr.mp3") + u"\n"_s +
                     fixture("music.flac") + u"\n"_s)
                        .toStdString());
    const Outcome outcome =
        cli({u"crossfade"_s, folder.file(u"list.m3u"_s), u"--target"_s, target(), u"--overlap"_s,
             u"5"_s, u"--burn-list"_s, folder.file(u"burn.txt"_s)});
    EXPECT_EQ(outcome.exitCode, 0) << outcome.err.toStdString();
    EXPECT_THAT(
        namesIn(folder / "new/folder"),
        ElementsAre("1_music-abr.wav", "2_music.fwav", "music-abr.wav", "music.fwav", "music.wav"));
    EXPECT_EQ(frames("music.wav"), 20U * 44100);
    EXPECT_EQ(frames("music-abr.wav"), 15U * 44100);
    EXPECT_EQ(frames("music.fwav"), 15U * 44100);
    const std::string path = (target() + u'/').toStdString();
    EXPECT_EQ(test::readFile(folder / "burn.txt"),
              path + "music.wav\r\n" + path + "music-abr.wav\r\n" + path + "music.fwav\r\n");
}

TEST_F(Mix, AFileThatFailsIsNamedAndTheOthersAreDone) {
    const Outcome outcome = cli({u"--json"_s, u"transform"_s, folder.file(u"gone.mp3"_s),
                                 fixture("tone.mp3"), u"--target"_s, target()});
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_THAT(outcome.out.toStdString(), HasSubstr("gone.mp3"));
    EXPECT_THAT(outcome.out.toStdString(), HasSubstr(R"({"done":1,"failed":1})"));
    EXPECT_THAT(namesIn(folder / "new/folder"), ElementsAre("tone.wav"));
}

TEST_F(Mix, AMissingTrackCountsOnce) {
    const QString gone = folder.file(u"gone.mp3"_s);
    const QStringList arguments{u"crossfade"_s,
                                fixture("music.wav"),
                                gone,
                                fixture("music.flac"),
                                u"--target"_s,
                                target(),
                                u"--overlap"_s,
                                u"2"_s,
                                u"--burn-list"_s,
                                folder.file(u"burn.txt"_s)};
    const Outcome outcome = cli(arguments);
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_EQ(outcome.err.count("failed: "), 1) << outcome.err.toStdString();
    EXPECT_THAT(outcome.err.toStdString(), HasSubstr("gone.mp3"));
    const std::string path = (target() + u'/').toStdString();
    EXPECT_EQ(outcome.out.toStdString(),
              "done: " + fixture("music.wav").toStdString() + " -> " + path + "music.wav\n" +
                  "done: " + fixture("music.flac").toStdString() + " -> " + path + "music.fwav\n" +
                  "The mix of 2 tracks is in " + path + ", its burn list is " +
                  folder.file(u"burn.txt"_s).toStdString() + "\n2 files done, 1 failed.\n");
    EXPECT_EQ(test::readFile(folder / "burn.txt"),
              path + "music.wav\r\n" + path + "music.fwav\r\n");
    const Outcome json = cli(arguments + QStringList{u"--json"_s});
    EXPECT_EQ(json.out.count(R"("status":"failed")"), 1) << json.out.toStdString();
    EXPECT_THAT(json.out.toStdString(), HasSubstr(R"({"done":2,"failed":1})"));
}

TEST_F(Mix, TwoFilesOfOneNameGetTwoResults) {
    const Outcome outcome =
        cli({u"transform"_s, fixture("music.mp3"), fixture("music.wav"), u"--target"_s, target()});
    EXPECT_EQ(outcome.exitCode, 0) << outcome.err.toStdString();
    EXPECT_THAT(namesIn(folder / "new/folder"), ElementsAre("music (2).wav", "music.wav"));
}

TEST_F(Mix, AnOriginalInTheTargetFolderIsRefused) {
    const auto original = support::scratchCopy("tone.wav", folder.path());
    const auto before = support::readBytes(original);
    const Outcome outcome = cli({u"transform"_s, platform::toQString(original), u"--target"_s,
                                 folder.file({}), u"--normalize"_s});
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_THAT(outcome.err.toStdString(), HasSubstr("original file"));
    EXPECT_EQ(support::readBytes(original), before);
}

TEST_F(Mix, ABadOptionIsBadUsage) {
    const QString tone = fixture("tone.wav");
    EXPECT_EQ(cli({u"transform"_s, tone}).exitCode, 2);
    EXPECT_EQ(cli({u"transform"_s, tone, u"--target"_s, target(), u"--bits"_s, u"24"_s}).exitCode,
              2);
    EXPECT_EQ(cli({u"crossfade"_s, u"--target"_s, target()}).exitCode, 2);
    EXPECT_EQ(
        cli({u"crossfade"_s, tone, u"--target"_s, target(), u"--overlap"_s, u"-1"_s}).exitCode, 2);
    EXPECT_FALSE(std::filesystem::exists(folder / "new"));
}

}  // namespace
