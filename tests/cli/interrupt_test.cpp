// SPDX-License-Identifier: GPL-3.0-or-later
// A run that is ended from outside, in order or by force: every file is the old one or the new one.
#include <map>
#include <memory>
#include <random>
#include <signal.h>
#include <thread>

#include <QDir>
#include <QElapsedTimer>
#include <gtest/gtest.h>

#include "tests/cli/CliRun.h"
#include "tests/support/Sound.h"

using namespace Qt::Literals::StringLiterals;
using support::copyOf;
using support::decodeWithFfmpeg;
using support::fixture;
using support::readBytes;
using support::TempFolder;

namespace {

const char* const kinds[] = {"music.ogg", "tone.wav", "music.mp3", "tone.wma", "tone.mp2"};

/// A folder of mixed files, and what each must be: its old bytes, or those that an undisturbed run
/// writes, for a run gives the same bytes every time.
class Victims {
  public:
    explicit Victims(int count) {
        for (int i = 0; i < count; ++i) {
            const char* kind = kinds[i % 5];
            files_ << copyOf(kind, folder_, u"%1 %2"_s.arg(i).arg(QString::fromUtf8(kind)));
        }
    }
    const QStringList& files() const { return files_; }

    void restore() {
        for (int i = 0; i < files_.size(); ++i)
            support::writeBytes(platform::toPath(files_[i]), readBytes(fixture(kinds[i % 5])));
    }
    /// How many of the files are new; a failure for one that is neither.
    int countNew() const {
        int found = 0;
        for (int i = 0; i < files_.size(); ++i) {
            const auto bytes = readBytes(platform::toPath(files_[i]));
            if (bytes == readBytes(fixture(kinds[i % 5]))) continue;
            EXPECT_EQ(bytes, expected(kinds[i % 5])) << files_[i].toStdString();
            ++found;
        }
        return found;
    }
    /// Files that are none of ours: what a killed run could not take away.
    QStringList leftovers() const {
        QStringList names;
        for (const QString& name : entries())
            if (!files_.contains(folder_.file(name))) names << name;
        return names;
    }
    void removeLeftovers() const {
        for (const QString& name : leftovers()) QFile::remove(folder_.file(name));
    }

  private:
    QStringList entries() const {
        return QDir(platform::toQString(folder_.path())).entryList(QDir::Files | QDir::Hidden);
    }
    static const std::vector<std::byte>& expected(const char* kind) {
        static std::map<std::string, std::vector<std::byte>> known;
        auto& bytes = known[kind];
        if (bytes.empty()) {
            TempFolder folder;
            const QString file = copyOf(kind, folder, QString::fromUtf8(kind));
            support::cli({u"effect"_s, u"normalize"_s, u"--value"_s, u"30"_s, file});
            bytes = readBytes(platform::toPath(file));
            EXPECT_EQ(decodeWithFfmpeg(platform::toPath(file)).frames(),
                      decodeWithFfmpeg(fixture(kind)).frames());
        }
        return bytes;
    }

    TempFolder folder_;
    QStringList files_;
};

void start(QProcess& process, const QStringList& files) {
    process.start(QStringLiteral(TRACKSMITH_CLI),
                  QStringList{u"effect"_s, u"normalize"_s, u"--value"_s, u"30"_s} + files);
    ASSERT_TRUE(process.waitForStarted(30000));
}

TEST(Interrupted, ByControlCTheRunEndsInOrder) {
    Victims victims(40);
    QProcess process;
    start(process, victims.files());
    ASSERT_TRUE(process.waitForReadyRead(60000));  // the first file is done
    ASSERT_EQ(::kill(static_cast<pid_t>(process.processId()), SIGINT), 0);
    ASSERT_TRUE(process.waitForFinished(60000));
    EXPECT_EQ(process.exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(process.exitCode(), 1);
    const QByteArray said = process.readAllStandardError();
    EXPECT_TRUE(said.contains("interrupted")) << said.toStdString();
    const int done = victims.countNew();
    EXPECT_GE(done, 1);
    EXPECT_LT(done, 40);
    EXPECT_EQ(said.count("failed: "), 40 - done);
    EXPECT_TRUE(victims.leftovers().isEmpty());
}

TEST(Interrupted, ACrossFadeCountsEveryTrackOnce) {
    TempFolder folder;
    QStringList files;
    for (int i = 0; i < 12; ++i) files << copyOf("music.ogg", folder, u"%1.ogg"_s.arg(i));
    const QDir target(folder.file(u"mix"_s));
    QProcess process;
    process.start(QStringLiteral(TRACKSMITH_CLI),
                  QStringList{u"crossfade"_s, u"--target"_s, target.path()} + files);
    while (!QFileInfo::exists(target.filePath(u"1.wav"_s)))
        ASSERT_FALSE(process.waitForFinished(1));
    ASSERT_EQ(::kill(static_cast<pid_t>(process.processId()), SIGINT), 0);
    ASSERT_TRUE(process.waitForFinished(60000));
    EXPECT_EQ(process.exitCode(), 1);
    EXPECT_EQ(process.readAllStandardOutput(), "0 files done, 12 failed.\n");
    const QByteArray said = process.readAllStandardError();
    EXPECT_EQ(said.count("failed: "), 12) << said.toStdString();
    EXPECT_TRUE(said.contains("0.ogg is in no finished mix")) << said.toStdString();
    EXPECT_TRUE(said.contains("11.ogg was not begun")) << said.toStdString();
}

// What is left behind by force can only be a temporary, hidden, of the files that were in hand.
TEST(Interrupted, ByForceAtAnyMomentEveryFileIsOldOrNew) {
    Victims victims(10);
    QElapsedTimer timer;
    timer.start();
    QProcess whole;
    start(whole, victims.files());
    ASSERT_TRUE(whole.waitForFinished(120000));
    const auto length = static_cast<int>(timer.elapsed());
    EXPECT_EQ(victims.countNew(), 10);
    std::mt19937 random(20);
    int unfinished = 0;
    for (int round = 0; round < 20; ++round) {
        victims.restore();
        QProcess process;
        start(process, victims.files());
        const int moment = static_cast<int>(random() % static_cast<unsigned>(length));
        process.waitForFinished(moment);
        process.kill();
        process.waitForFinished(30000);
        if (victims.countNew() < 10) ++unfinished;
        EXPECT_LE(victims.leftovers().size(), 2 * std::thread::hardware_concurrency());
        for (const QString& name : victims.leftovers())
            EXPECT_TRUE(name.startsWith(u".tracksmith-"_s)) << name.toStdString();
        victims.removeLeftovers();
    }
    EXPECT_GT(unfinished, 5) << "most runs were over before they were killed";
}

/// A folder with one file that takes a while to save, and others.
struct Folder {
    TempFolder folder;
    QString big = folder.file(u"big.wav"_s);
    QString small = copyOf("tone.wav", folder, u"small.wav"_s);
    const QDir dir{platform::toQString(folder.path())};

    Folder() {
        const support::Outcome made =
            support::run(u"ffmpeg"_s, {u"-v"_s, u"error"_s, u"-f"_s, u"lavfi"_s, u"-i"_s,
                                       u"sine=440:d=600"_s, u"-ac"_s, u"2"_s, big});
        EXPECT_EQ(made.exitCode, 0) << made.err.toStdString();
    }
    QStringList temporaries() const {
        return dir.entryList({u".tracksmith-*"_s}, QDir::Files | QDir::Hidden);
    }
    /// Begins to save the big file, and signals the process once its temporary is there.
    void interruptSave(QProcess& process, int signal) const {
        start(process, {big});
        while (temporaries().isEmpty()) ASSERT_FALSE(process.waitForFinished(1));
        ASSERT_EQ(::kill(static_cast<pid_t>(process.processId()), signal), 0);
    }
    support::Outcome saveSmall() const {
        return support::cli({u"effect"_s, u"amplify-plus"_s, small});
    }
};

TEST(Interrupted, WhatAKilledSaveLeftIsRemovedByTheNextOne) {
    const Folder files;
    const auto before = readBytes(platform::toPath(files.big));
    QProcess process;
    files.interruptSave(process, SIGKILL);
    ASSERT_TRUE(process.waitForFinished(30000));
    ASSERT_EQ(files.temporaries().size(), 1) << "the save was over before it was killed";
    EXPECT_EQ(files.saveSmall().exitCode, 0);
    EXPECT_TRUE(files.temporaries().isEmpty());
    EXPECT_EQ(readBytes(platform::toPath(files.big)), before);
}

TEST(Interrupted, ASaveThatIsUnderWayLosesNothingToAnother) {
    const Folder files;
    const auto before = readBytes(platform::toPath(files.big));
    QProcess process;
    files.interruptSave(process, SIGSTOP);
    EXPECT_EQ(files.saveSmall().exitCode, 0);
    EXPECT_EQ(files.temporaries().size(), 1);
    ASSERT_EQ(::kill(static_cast<pid_t>(process.processId()), SIGCONT), 0);
    ASSERT_TRUE(process.waitForFinished(60000));
    EXPECT_EQ(process.exitCode(), 0) << process.readAllStandardError().toStdString();
    EXPECT_TRUE(files.temporaries().isEmpty());
    EXPECT_NE(readBytes(platform::toPath(files.big)), before);
}

// Control C at the very moment of the commit: what is said and what lies on the disk are one.
TEST(Interrupted, AtTheCommitTheReportIsTrue) {
    for (const char* kind : kinds) {
        for (const bool before : {false, true}) {
            TempFolder folder;
            const QString file = copyOf(kind, folder, QString::fromUtf8(kind));
            QProcess process;
            QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
            environment.insert(u"LD_PRELOAD"_s, QStringLiteral(STOP_AT_RENAME));
            if (before) environment.insert(u"STOP_BEFORE_RENAME"_s, u"1"_s);
            process.setProcessEnvironment(environment);
            start(process, {file});
            ASSERT_TRUE(process.waitForFinished(60000));
            EXPECT_TRUE(process.readAllStandardOutput().contains("1 file done"));
            EXPECT_EQ(process.exitCode(), 0) << process.readAllStandardError().toStdString();
            EXPECT_NE(readBytes(platform::toPath(file)), readBytes(fixture(kind)));
        }
    }
}

// Every process looks for leftovers as it begins, just when the others make their temporaries.
TEST(Interrupted, ManySavesInOneFolderAtATime) {
    TempFolder folder;
    std::vector<std::unique_ptr<QProcess>> processes;
    for (int i = 0; i < 24; ++i) {
        const QString file = copyOf("tone.wav", folder, u"%1.wav"_s.arg(i));
        start(*processes.emplace_back(std::make_unique<QProcess>()), {file});
    }
    for (const auto& process : processes) {
        ASSERT_TRUE(process->waitForFinished(120000));
        EXPECT_EQ(process->exitCode(), 0) << process->readAllStandardError().toStdString();
    }
    const QDir dir(platform::toQString(folder.path()));
    EXPECT_EQ(dir.entryList(QDir::Files | QDir::Hidden).size(), 24);
}

}  // namespace
