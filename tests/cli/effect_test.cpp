// SPDX-License-Identifier: GPL-3.0-or-later
// The commands show and effect, run as a user runs them.
#include <algorithm>
#include <cmath>
#include <fstream>
#include <sys/stat.h>

#include <QDir>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/cli/CliRun.h"
#include "tests/support/Sound.h"
#include "tests/support/Unwritable.h"

using namespace Qt::Literals::StringLiterals;
using support::cli;
using support::copyOf;
using support::decodeWithFfmpeg;
using support::fixture;
using support::objects;
using support::Outcome;
using support::readBytes;
using support::Sound;
using support::TempFolder;
using testing::ContainsRegex;
using testing::HasSubstr;

namespace {

Sound soundOf(const QString& path) {
    return decodeWithFfmpeg(platform::toPath(path));
}

double levelOf(const Sound& sound) {
    double energy = 0;
    for (const float sample : sound.samples) energy += double{sample} * sample;
    return std::sqrt(energy / static_cast<double>(std::max<std::size_t>(sound.samples.size(), 1)));
}

double gainOf(const QString& path, const char* fixtureName) {
    return levelOf(soundOf(path)) / levelOf(decodeWithFfmpeg(fixture(fixtureName)));
}

QStringList namesIn(const TempFolder& folder) {
    return QDir(platform::toQString(folder.path())).entryList(QDir::Files | QDir::Hidden);
}

void writeText(const QString& path, const QString& text) {
    std::ofstream(platform::toPath(path)) << text.toStdString();
}

TEST(CliShow, ListsNumberDurationTitleAndPathAndThenTheTotals) {
    TempFolder folder;
    const QString tagged = copyOf("tone.mp3", folder, u"a.mp3"_s);
    const QString plain = copyOf("tone.wav", folder, u"b – ß.wav"_s);
    writeText(folder.file(u"list.m3u"_s), u"a.mp3\nb – ß.wav\n"_s);
    const Outcome outcome = cli({u"show"_s, folder.file(u"list.m3u"_s), tagged});
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_EQ(QString::fromUtf8(outcome.out),
              u"1\t0:02\tTone\t%1\n2\t0:02\tb – ß.wav\t%2\n3\t0:02\tTone\t%1\n"
              "Total Duration (mm.s): 0.1\nTolal File Count: 3\n"_s.arg(tagged, plain));
}

TEST(CliShow, SpeaksJson) {
    TempFolder folder;
    const QString file = copyOf("tone.mp3", folder, u"a.mp3"_s);
    const auto lines = objects(cli({u"show"_s, u"--json"_s, file}));
    ASSERT_EQ(lines.size(), 3);
    EXPECT_EQ(lines[0][u"number"_s], 1);
    EXPECT_EQ(lines[0][u"title"_s], u"Tone"_s);
    EXPECT_EQ(lines[0][u"path"_s], file);
    EXPECT_EQ(lines[2][u"fileCount"_s], u"Tolal File Count: 1"_s);
}

TEST(CliShow, NamesWhatIsMissing) {
    TempFolder folder;
    const Outcome outcome = cli({u"show"_s, folder.file(u"no.wav"_s), folder.file(u"no.m3u"_s)});
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_THAT(outcome.err.toStdString(), HasSubstr("no.wav\" does not exist"));
    EXPECT_THAT(outcome.err.toStdString(), HasSubstr("no.m3u"));
}

TEST(CliShow, TellsWhatCannotBePlayedAndListsItAllTheSame) {
    TempFolder folder;
    const QString good = copyOf("tone.mp3", folder, u"good.mp3"_s);
    const QString cut = copyOf("tone.ogg", folder, u"cut.ogg"_s);
    std::filesystem::resize_file(platform::toPath(cut), 200);
    writeText(folder.file(u"words.wav"_s), u"no sound"_s);
    writeText(folder.file(u"empty.mp3"_s), {});
    QDir(folder.file({})).mkdir(u"x.mp3"_s);
    ASSERT_EQ(::mkfifo(folder.file(u"pipe.mp3"_s).toUtf8().constData(), 0600), 0);
    const QList<std::pair<QString, QString>> bad{{u"cut.ogg"_s, u"not a sound file"_s},
                                                 {u"words.wav"_s, u"not a sound file"_s},
                                                 {u"empty.mp3"_s, u"empty"_s},
                                                 {u"x.mp3"_s, u"not a regular file"_s},
                                                 {u"pipe.mp3"_s, u"not a regular file"_s}};
    QStringList arguments{u"show"_s, good};
    for (const auto& [name, reason] : bad) arguments << folder.file(name);
    const Outcome outcome = cli(arguments);
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_EQ(outcome.err.count('\n'), bad.size()) << outcome.err.toStdString();
    const auto lines = objects(cli(arguments + QStringList{u"--json"_s}));
    ASSERT_EQ(lines.size(), 1 + 2 * bad.size() + 2);
    EXPECT_EQ(lines[0][u"duration"_s], u"0:02"_s);
    for (qsizetype i = 0; i < bad.size(); ++i) {
        const auto& [name, reason] = bad[i];
        EXPECT_THAT(outcome.out.toStdString(), HasSubstr(folder.file(name).toStdString()));
        EXPECT_THAT(outcome.err.toStdString(), ContainsRegex("failed: [^\n]*" + name.toStdString() +
                                                             "[^\n]*" + reason.toStdString()));
        EXPECT_EQ(lines[1 + 2 * i][u"path"_s], folder.file(name));
        EXPECT_EQ(lines[2 + 2 * i][u"file"_s], folder.file(name));
        EXPECT_EQ(lines[2 + 2 * i][u"status"_s], u"failed"_s);
        EXPECT_TRUE(lines[2 + 2 * i][u"reason"_s].toString().contains(reason));
    }
}

struct EffectCase {
    const char* name;
    QStringList options;
    double frames;  ///< seconds that the sound grows by
    double gain;    ///< of the whole; 0 = not looked at
};

class CliEffect : public testing::TestWithParam<EffectCase> {};

TEST_P(CliEffect, ChangesFilesOfEveryFormatInPlace) {
    TempFolder folder;
    QStringList files;
    const char* const kinds[] = {"tone.wav", "tone.mp3", "tone.mp2", "tone.ogg", "tone.wma"};
    for (const char* kind : kinds) files << copyOf(kind, folder, QString::fromUtf8(kind));
    const Outcome outcome = cli(QStringList{u"effect"_s, QString::fromUtf8(GetParam().name)} +
                                GetParam().options + files);
    EXPECT_EQ(outcome.exitCode, 0) << outcome.err.toStdString();
    for (int i = 0; i < 5; ++i) {
        EXPECT_NE(readBytes(platform::toPath(files[i])), readBytes(fixture(kinds[i]))) << kinds[i];
        const Sound before = decodeWithFfmpeg(fixture(kinds[i]));
        const Sound after = soundOf(files[i]);
        EXPECT_NEAR(static_cast<double>(after.frames()),
                    static_cast<double>(before.frames()) + GetParam().frames * before.rate, 2048)
            << kinds[i];
        const double gain = levelOf(after) / levelOf(before);
        EXPECT_NEAR(gain, GetParam().gain > 0 ? GetParam().gain : gain, 0.02) << kinds[i];
    }
    EXPECT_EQ(namesIn(folder).size(), 5);
}

INSTANTIATE_TEST_SUITE_P(
    All, CliEffect,
    testing::Values(EffectCase{"amplify-minus", {}, 0, 0.55},
                    EffectCase{"amplify-plus", {u"--value"_s, u"60"_s}, 0, 1.6},
                    EffectCase{"normalize", {u"--value"_s, u"20"_s}, 0, 0},
                    EffectCase{"silence-front", {u"--ms"_s, u"1500"_s}, 1.5, 0},
                    EffectCase{"silence-end", {}, 1, 0},
                    EffectCase{"fade-in", {u"--seconds"_s, u"1.5"_s, u"--level"_s, u"10"_s}, 0, 0},
                    EffectCase{"fade-out", {}, 0, 0},
                    EffectCase{"echo", {u"--rate"_s, u"50"_s, u"--time"_s, u"2"_s}, 0, 0}),
    [](const auto& test) {
        std::string name = test.param.name;
        std::replace(name.begin(), name.end(), '-', '_');
        return name;
    });

TEST(CliEffects, EachFileGetsTheValueAsGiven) {
    TempFolder folder;
    QStringList files;
    for (int i = 0; i < 3; ++i) files << copyOf("tone.wav", folder, u"%1.wav"_s.arg(i));
    EXPECT_EQ(cli(QStringList{u"effect"_s, u"amplify-plus"_s} + files).exitCode, 0);
    for (const QString& file : files) EXPECT_NEAR(gainOf(file, "tone.wav"), 1.45, 0.001);
}

TEST(CliEffects, TrimCutsBothEnds) {
    TempFolder folder;
    const QString file = copyOf("tone.wav", folder, u"a.wav"_s);
    cli({u"effect"_s, u"silence-front"_s, file});
    cli({u"effect"_s, u"silence-end"_s, u"--ms"_s, u"3000"_s, file});
    EXPECT_EQ(soundOf(file).frames(), 6U * 44100);
    EXPECT_EQ(cli({u"effect"_s, u"trim"_s, file}).exitCode, 0);
    EXPECT_NEAR(static_cast<double>(soundOf(file).frames()), 2 * 44100, 4410);
}

TEST(CliEffects, NormalizeTellsWhatCountsAsSilence) {
    TempFolder folder;
    const QString file = copyOf("tone.wav", folder, u"a.wav"_s);
    support::run(u"ffmpeg"_s,
                 {u"-v"_s, u"error"_s, u"-y"_s, u"-f"_s, u"lavfi"_s, u"-i"_s,
                  u"anoisesrc=a=0.0002:d=1:r=44100"_s, u"-c:a"_s, u"pcm_s16le"_s, file});
    const auto before = readBytes(platform::toPath(file));
    const Outcome plain = cli({u"effect"_s, u"normalize"_s, file});
    EXPECT_EQ(plain.exitCode, 0);
    EXPECT_THAT(plain.out.toStdString(), HasSubstr("a.wav (It was not normalized"));
    const auto lines = objects(cli({u"--json"_s, u"effect"_s, u"normalize"_s, file}));
    EXPECT_TRUE(lines.front()[u"notice"_s].toString().contains(u"counts as silence"_s));
    EXPECT_TRUE(readBytes(platform::toPath(file)) == before);
}

TEST(CliEffects, ADamagedFileDrawsNoWordFromTheDecoder) {
    TempFolder folder;
    const QString file = copyOf("music.mp3", folder, u"a.mp3"_s);
    auto bytes = readBytes(platform::toPath(file));
    for (std::size_t i = 5000; i < bytes.size(); i += 1001) bytes[i] ^= std::byte{0x5A};
    support::writeBytes(platform::toPath(file), bytes);
    EXPECT_EQ(cli({u"effect"_s, u"normalize"_s, file}).err.toStdString(), "");
}

TEST(CliEffects, AFileThatIsNamedTwiceIsChangedTwice) {
    TempFolder folder;
    const QString file = copyOf("tone.wav", folder, u"a.wav"_s);
    EXPECT_EQ(cli({u"effect"_s, u"amplify-minus"_s, u"--value"_s, u"50"_s, u"--jobs"_s, u"4"_s,
                   file, file})
                  .exitCode,
              0);
    EXPECT_NEAR(gainOf(file, "tone.wav"), 0.25, 0.001);
}

TEST(CliEffects, OutputWritesCopiesAndLeavesTheOriginals) {
    TempFolder folder;
    const QString file = copyOf("tone.mp3", folder, u"it's – \"a\".mp3"_s);
    const QString out = folder.file(u"new/folder"_s);
    const auto lines = objects(
        cli({u"--json"_s, u"effect"_s, u"amplify-minus"_s, u"--output"_s, out, file, file}));
    ASSERT_EQ(lines.size(), 2);
    EXPECT_EQ(lines[0][u"status"_s], u"done"_s);
    const QString written = lines[0][u"output"_s].toString();
    EXPECT_EQ(written, out + u"/it's – \"a\".mp3"_s);
    EXPECT_EQ(readBytes(platform::toPath(file)), readBytes(fixture("tone.mp3")));
    EXPECT_NEAR(gainOf(written, "tone.mp3"), 0.55, 0.02);
}

TEST(CliEffects, OutputNeverWritesOverWhatIsThere) {
    TempFolder folder;
    TempFolder other;
    const QString file = copyOf("tone.wav", folder, u"a.wav"_s);
    const QString twin = copyOf("tone.mp3", other, u"a.wav"_s);
    const QString out = folder.file(u"out"_s);
    const Outcome both = cli({u"effect"_s, u"trim"_s, u"--output"_s, out, file, twin});
    EXPECT_EQ(both.exitCode, 1);
    EXPECT_THAT(both.err.toStdString(), HasSubstr("is there already"));
    const auto written = readBytes(platform::toPath(out + u"/a.wav"_s));
    EXPECT_EQ(cli({u"effect"_s, u"echo"_s, u"--output"_s, out, file}).exitCode, 1);
    EXPECT_EQ(readBytes(platform::toPath(out + u"/a.wav"_s)), written);
    const QString here = platform::toQString(folder.path());
    EXPECT_EQ(cli({u"effect"_s, u"echo"_s, u"--output"_s, here, file}).exitCode, 1);
    EXPECT_EQ(readBytes(platform::toPath(file)), readBytes(fixture("tone.wav")));
}

TEST(CliEffects, FailuresAreNamedAndTheOthersDone) {
    TempFolder folder;
    const QString good = copyOf("tone.wav", folder, u"good.wav"_s);
    const QString locked = copyOf("tone.wav", folder, u"locked.wav"_s);
    const QString broken = folder.file(u"broken.ogg"_s);
    writeText(broken, u"no sound"_s);
    const support::Unwritable unwritable(platform::toPath(locked));
    const Outcome outcome = cli({u"effect"_s, u"normalize"_s, locked, broken,
                                 folder.file(u"gone.mp3"_s), folder.file(u"no.m3u"_s), good});
    EXPECT_EQ(outcome.exitCode, 1);
    const std::string said = outcome.err.toStdString();
    for (const char* name : {"locked.wav", "broken.ogg", "gone.mp3", "no.m3u"})
        EXPECT_THAT(said, ContainsRegex(std::string("failed: [^\n]*") + name));
    EXPECT_EQ(outcome.out, "done: " + good.toUtf8() + "\n1 file done, 4 failed.\n");
    EXPECT_EQ(readBytes(platform::toPath(locked)), readBytes(fixture("tone.wav")));
    EXPECT_NE(readBytes(platform::toPath(good)), readBytes(fixture("tone.wav")));
    EXPECT_EQ(namesIn(folder).size(), 3);
}

TEST(CliEffects, AFullDiskLeavesTheFileAsItWas) {
    TempFolder folder;
    const QString file = copyOf("music.wav", folder, u"a.wav"_s);
    const Outcome outcome = support::run(
        u"bash"_s, {u"-c"_s, u"trap '' XFSZ; ulimit -f 500; exec \"$@\""_s, u"bash"_s,
                    QStringLiteral(TRACKSMITH_CLI), u"effect"_s, u"normalize"_s, file});
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_EQ(readBytes(platform::toPath(file)), readBytes(fixture("music.wav")));
    EXPECT_EQ(namesIn(folder), QStringList{u"a.wav"_s});
}

TEST(CliEffects, AnEmptyListIsDoneAtOnce) {
    TempFolder folder;
    writeText(folder.file(u"empty.m3u"_s), {});
    const Outcome outcome = cli({u"effect"_s, u"trim"_s, folder.file(u"empty.m3u"_s)});
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_EQ(outcome.out, "0 files done.\n");
}

TEST(CliUsage, WhatIsWrongIsSaidAndNothingDone) {
    TempFolder folder;
    const QString file = copyOf("tone.wav", folder, u"a.wav"_s);
    const QList<QStringList> wrong{{},
                                   {u"sing"_s},
                                   {u"effect"_s},
                                   {u"effect"_s, u"reverb"_s, file},
                                   {u"effect"_s, u"trim"_s},
                                   {u"effect"_s, u"trim"_s, u"--value"_s, u"5"_s, file},
                                   {u"effect"_s, u"normalize"_s, u"--value"_s, u"9"_s, file},
                                   {u"effect"_s, u"normalize"_s, u"--value"_s, u"101"_s, file},
                                   {u"effect"_s, u"amplify-plus"_s, u"--value"_s, u"91"_s, file},
                                   {u"effect"_s, u"silence-end"_s, u"--ms"_s, u"99"_s, file},
                                   {u"effect"_s, u"fade-in"_s, u"--level"_s, u"51"_s, file},
                                   {u"effect"_s, u"fade-in"_s, u"--seconds"_s, u"0"_s, file},
                                   {u"effect"_s, u"echo"_s, u"--time"_s, u"11"_s, file},
                                   {u"effect"_s, u"trim"_s, u"--jobs"_s, u"0"_s, file},
                                   {u"show"_s}};
    for (const QStringList& arguments : wrong) {
        const Outcome outcome = cli(arguments);
        EXPECT_EQ(outcome.exitCode, 2) << arguments.join(u' ').toStdString();
        EXPECT_FALSE(outcome.err.isEmpty()) << arguments.join(u' ').toStdString();
    }
    EXPECT_EQ(readBytes(platform::toPath(file)), readBytes(fixture("tone.wav")));
}

TEST(CliUsage, ANumberIsANumber) {
    TempFolder folder;
    const QString file = copyOf("tone.wav", folder, u"a.wav"_s);
    const QString out = folder.file(u"out"_s);
    const QList<QStringList> options{{u"effect"_s, u"fade-in"_s, u"--seconds"_s},
                                     {u"effect"_s, u"fade-out"_s, u"--level"_s},
                                     {u"effect"_s, u"normalize"_s, u"--value"_s},
                                     {u"transform"_s, u"--target"_s, out, u"--fade-in"_s},
                                     {u"transform"_s, u"--target"_s, out, u"--fade-out"_s},
                                     {u"transform"_s, u"--target"_s, out, u"--bits"_s},
                                     {u"crossfade"_s, u"--target"_s, out, u"--overlap"_s}};
    for (const QStringList& option : options) {
        for (const char* number : {"nan", "-nan", "inf", "-1", "1e999", "5s", "", " "}) {
            const Outcome outcome = cli(option + QStringList{QString::fromUtf8(number), file});
            EXPECT_EQ(outcome.exitCode, 2) << option.join(u' ').toStdString() << " " << number;
            EXPECT_THAT(outcome.err.toStdString(), HasSubstr(option.last().toStdString() + ": "));
        }
    }
    EXPECT_EQ(readBytes(platform::toPath(file)), readBytes(fixture("tone.wav")));
    EXPECT_FALSE(QDir(out).exists());
}

TEST(CliUsage, HelpAndVersionAreNoErrors) {
    EXPECT_EQ(cli({u"--version"_s}).out, "5.8\n");
    const Outcome help = cli({u"effect"_s, u"echo"_s, u"--help"_s});
    EXPECT_EQ(help.exitCode, 0);
    for (const char* option : {"--rate", "--gain", "--depth", "--time", "--output", "--jobs"})
        EXPECT_THAT(help.out.toStdString(), HasSubstr(option));
}

TEST(CliEffects, JsonTellsWhatWasEncodedAndWhyAllWas) {
    TempFolder folder;
    const QString good = copyOf("music.mp3", folder, u"good.mp3"_s);
    const QString junk = copyOf("music.mp3", folder, u"junk.mp3"_s);
    auto bytes = readBytes(platform::toPath(junk));
    bytes.insert(bytes.begin() + std::ssize(bytes) / 2, 50'000, std::byte{0});
    std::ofstream(platform::toPath(junk), std::ios::binary)
        .write(reinterpret_cast<const char*>(bytes.data()), std::ssize(bytes));
    const auto lines = objects(cli({u"--json"_s, u"effect"_s, u"fade-in"_s, u"--seconds"_s, u"2"_s,
                                    u"--jobs"_s, u"1"_s, good, junk}));
    ASSERT_EQ(lines.size(), 3);
    EXPECT_EQ(lines[0][u"saved"_s], u"spliced"_s);
    EXPECT_EQ(lines[0][u"frames"_s].toInt(), 20 * 44100);
    EXPECT_GE(lines[0][u"newFrames"_s].toInt(), 2 * 44100);
    EXPECT_LT(lines[0][u"newFrames"_s].toInt(), 3 * 44100);
    EXPECT_FALSE(lines[0].contains(u"note"_s));
    EXPECT_EQ(lines[1][u"saved"_s], u"encoded"_s);
    EXPECT_THAT(lines[1][u"note"_s].toString().toStdString(),
                HasSubstr("something else than sound stands between its frames"));
}

TEST(CliTerminal, ABarMovesBelowTheLines) {
    TempFolder folder;
    const QString file = copyOf("tone.mp3", folder, u"a.mp3"_s);
    const QString command =
        u"'%1' effect normalize '%2'"_s.arg(QStringLiteral(TRACKSMITH_CLI), file);
    qputenv("TERM", "xterm");
    const Outcome outcome = support::run(u"script"_s, {u"-qec"_s, command, u"/dev/null"_s});
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_THAT(outcome.out.toStdString(), HasSubstr("  0/1"));
    EXPECT_THAT(outcome.out.toStdString(), HasSubstr("done: " + file.toStdString()));
}

}  // namespace
