// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/tags/TrackInfo.h"

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <string>

#include <QStringList>
#include <gtest/gtest.h>

#include "tests/support/Fixtures.h"
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

// A download that was given its size before its bytes.
TEST(TrackInfo, AQuarterOfAGigabyteOfZerosIsReadInNoTime) {
    const support::TempFolder folder;
    support::writeBytes(folder / "zeros.mp3", {});
    auto bytes = support::readBytes(support::fixture("tone.mp3"));
    support::writeBytes(folder / "begun.mp3", bytes);
    const auto start = std::chrono::steady_clock::now();
    for (const std::string name : {"zeros.mp3", "begun.mp3"})
        std::filesystem::resize_file(folder / name, 1 << 28);
    EXPECT_EQ(readTrackInfo(folder / "zeros.mp3").durationMs, -1);
    EXPECT_EQ(readTrackInfo(folder / "begun.mp3").title, "Tone");
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(5));
}

}  // namespace
