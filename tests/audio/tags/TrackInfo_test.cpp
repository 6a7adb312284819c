// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/tags/TrackInfo.h"

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <string>

#include <QStringList>
#include <gtest/gtest.h>

#include "tests/support/CpuClock.h"
#include "tests/support/Fixtures.h"
#include "tests/support/Python.h"
#include "tests/support/Sound.h"
#include "tests/support/TempFolder.h"

namespace {

using audio::tags::readTrackInfo;

class InfoOf : public ::testing::TestWithParam<const char*> {};

TEST_P(InfoOf, DurationIsThatOfTheSound) {
    const auto sound = support::decodeWithFfmpeg(support::fixture(GetParam()));
    const double expected = 1000.0 * double(sound.frames()) / sound.rate;
    EXPECT_NEAR(double(readTrackInfo(support::fixture(GetParam())).durationMs), expected, 120);
}

INSTANTIATE_TEST_SUITE_P(Formats, InfoOf,
                         ::testing::Values("tone.wav", "tone-u8.wav", "tone-f32.wav", "tone.mp3",
                                           "tone-vbr.mp3", "music-abr.mp3", "tone-untagged.mp3",
                                           "tone.mp2", "tone.ogg", "tone.wma", "tone-v1.wma",
                                           "tone.flac", "tone.m4a", "tone.opus", "tone.aiff",
                                           "tone-22k.mp3", "tone-rf64.wav"));

TEST(TrackInfo, TitlesOfAllTagForms) {
    EXPECT_EQ(readTrackInfo(support::fixture("tone.mp3")).title, "Tone");
    const support::TempFolder folder;
    const std::string title = "Zoë – 日本 \"x\"";
    for (const std::string name : {"t.mp3", "t.wav", "t.ogg", "t.wma", "t.flac", "t.m4a"}) {
        const auto result =
            support::run(QStringLiteral("ffmpeg"),
                         {QStringLiteral("-v"), QStringLiteral("error"), QStringLiteral("-i"),
                          QString::fromStdString(support::fixture("tone.wav").string()),
                          QStringLiteral("-metadata"), QString::fromStdString("title=" + title),
                          QString::fromStdString((folder / name).string())});
        ASSERT_EQ(result.exitCode, 0) << result.err.toStdString();
        EXPECT_EQ(readTrackInfo(folder / name).title, title) << name;
    }
}

TEST(TrackInfo, AHeaderThatClaimsMoreThanIsThereIsNotBelieved) {
    const support::TempFolder folder;
    for (const std::string name : {"music.mp3", "music-abr.mp3", "music.wav", "music.wma"}) {
        auto bytes = support::readBytes(support::fixture(name));
        bytes.resize(bytes.size() / 10);
        support::writeBytes(folder / name, bytes);
        const auto duration = readTrackInfo(folder / name).durationMs;
        EXPECT_GT(duration, 1000) << name;
        EXPECT_LT(duration, 3600) << name;
    }
}

TEST(TrackInfo, TwoJoinedFilesAreAsLongAsBoth) {
    const support::TempFolder folder;
    auto bytes = support::readBytes(support::fixture("music.mp3"));
    const auto once = bytes;
    bytes.insert(bytes.end(), once.begin(), once.end());
    support::writeBytes(folder / "twice.mp3", bytes);
    EXPECT_NEAR(double(readTrackInfo(folder / "twice.mp3").durationMs), 40000, 400);
}

TEST(TrackInfo, WhatIsNoSoundHasNoInfo) {
    const support::TempFolder folder;
    support::writeBytes(folder / "empty.mp3", {});
    support::writeBytes(folder / "zeros.mp3", std::vector<std::byte>(100000));
    support::writeBytes(folder / "zeros.wav", std::vector<std::byte>(100));
    for (const std::string name : {"empty.mp3", "zeros.mp3", "zeros.wav", "missing.ogg", ""}) {
        const auto info = readTrackInfo(folder / name);
        EXPECT_EQ(info.title, "") << name;
        EXPECT_EQ(info.durationMs, -1) << name;
    }
}

namespace {

void runTool(const QString& program, const QStringList& arguments) {
    const auto outcome = support::run(program, arguments);
    ASSERT_EQ(outcome.exitCode, 0) << outcome.err.toStdString();
}

void patch(const QString& script, const std::filesystem::path& file) {
    support::python(
        QStringLiteral("import sys\ndata = bytearray(open(sys.argv[1], 'rb').read())\n") + script +
            QStringLiteral("\nopen(sys.argv[1], 'wb').write(data)\n"),
        {file});
}

QString pathOf(const std::filesystem::path& file) {
    return QString::fromStdString(file.string());
}

}  // namespace

// Its first frames, of silence, have a tenth of the others' rate.
TEST(TrackInfo, HeadersAreCountedWhereNoTagStatesAVariableRate) {
    const support::TempFolder folder;
    const auto start = folder / "start.wav";
    const auto file = folder / "vbr.mp3";
    runTool(QStringLiteral("sox"), {pathOf(support::fixture("music.wav")), pathOf(start),
                                    QStringLiteral("pad"), QStringLiteral("4")});
    runTool(QStringLiteral("lame"), {QStringLiteral("--quiet"), QStringLiteral("-V2"),
                                     QStringLiteral("-t"), pathOf(start), pathOf(file)});
    EXPECT_NEAR(double(readTrackInfo(file).durationMs), 24'000, 120);
}

TEST(TrackInfo, AFactChunkIsNotBelieved) {
    const support::TempFolder folder;
    for (const char* number : {"FFFFFF00", "64000000"})
        for (const QString& coding : {QStringLiteral("a-law"), QStringLiteral("float"),
                                      QStringLiteral("ms-adpcm"), QStringLiteral("ima-adpcm")}) {
            const auto file = folder / (coding.toStdString() + ".wav");
            runTool(QStringLiteral("sox"), {pathOf(support::fixture("tone.wav")),
                                            QStringLiteral("-e"), coding, pathOf(file)});
            patch(QStringLiteral("at = data.index(b'fact') + 8\n"
                                 "data[at:at + 4] = bytes.fromhex('%1')")
                      .arg(QString::fromLatin1(number)),
                  file);
            // ADPCM is padded to a whole block.
            EXPECT_NEAR(double(readTrackInfo(file).durationMs), 2'000, 60) << file;
        }
}

TEST(TrackInfo, FlacWithoutATotalIsAsLongAsItsLastFrameSays) {
    const support::TempFolder folder;
    const QString zeroTotal = QStringLiteral("data[21] &= 0xF0\ndata[22:26] = bytes(4)");
    const auto ours = support::scratchCopy("music.flac", folder.path());
    const auto theirs = folder / "theirs.flac";
    const auto variable = folder / "variable.flac";
    runTool(QStringLiteral("flac"), {QStringLiteral("-s"), QStringLiteral("-o"), pathOf(theirs),
                                     pathOf(support::fixture("music.wav"))});
    runTool(QStringLiteral("ffmpeg"),
            {QStringLiteral("-v"), QStringLiteral("error"), QStringLiteral("-i"),
             pathOf(support::fixture("music.wav")), QStringLiteral("-frame_size"),
             QStringLiteral("1000"), pathOf(variable)});
    for (const auto& file : {ours, theirs, variable}) {
        patch(zeroTotal, file);
        EXPECT_NEAR(double(readTrackInfo(file).durationMs), 20'000, 5) << file;
    }
}

// The pictures stand behind the sound, so that a reader that takes any stream for it finds them.
TEST(TrackInfo, AsfWithMovingPicturesIsAsLongAsItPlays) {
    const support::TempFolder folder;
    const auto file = folder / "film.wmv";
    runTool(QStringLiteral("ffmpeg"),
            {QStringLiteral("-v"), QStringLiteral("error"), QStringLiteral("-f"),
             QStringLiteral("lavfi"), QStringLiteral("-i"),
             QStringLiteral("color=size=64x64:duration=20"), QStringLiteral("-i"),
             pathOf(support::fixture("music.wav")), QStringLiteral("-map"), QStringLiteral("1"),
             QStringLiteral("-map"), QStringLiteral("0"), QStringLiteral("-c:v"),
             QStringLiteral("wmv2"), QStringLiteral("-c:a"), QStringLiteral("wmav2"),
             QStringLiteral("-b:a"), QStringLiteral("64k"), pathOf(file)});
    EXPECT_NEAR(double(readTrackInfo(file).durationMs), 20'000, 120);
}

TEST(TrackInfo, ATitleBehindFramesOfAnOlderVersionIsFound) {
    const support::TempFolder folder;
    for (const char* filler : {" ", "\\0"}) {
        const auto file = support::scratchCopy("tone-untagged.mp3", folder.path());
        patch(QStringLiteral("def frame(name, text):\n"
                             "    body = b'\\1' + text.encode('utf-16')\n"
                             "    return name + len(body).to_bytes(4, 'big') + b'\\0\\0' + body\n"
                             "body = frame(b'TSA%1', 'x') + frame(b'TST%1', 'y') + "
                             "frame(b'TPE1', 'z') + frame(b'TIT2', 'Größe')\n"
                             "size = bytes(len(body) >> s & 127 for s in (21, 14, 7, 0))\n"
                             "data[0:0] = b'ID3\\3\\0\\0' + size + body")
                  .arg(QString::fromLatin1(filler)),
              file);
        EXPECT_EQ(readTrackInfo(file).title, "Größe");
    }
}

// A download that was given its size before its bytes.
TEST(TrackInfo, AQuarterOfAGigabyteOfZerosIsReadInNoTime) {
    const support::TempFolder folder;
    support::writeBytes(folder / "zeros.mp3", {});
    auto bytes = support::readBytes(support::fixture("tone.mp3"));
    support::writeBytes(folder / "begun.mp3", bytes);
    const support::CpuClock clock;
    for (const std::string name : {"zeros.mp3", "begun.mp3"})
        std::filesystem::resize_file(folder / name, 1 << 28);
    EXPECT_EQ(readTrackInfo(folder / "zeros.mp3").durationMs, -1);
    EXPECT_EQ(readTrackInfo(folder / "begun.mp3").title, "Tone");
    EXPECT_LT(clock.elapsed(), 2000);
}

}  // namespace
