// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/tags/TrackDetails.h"

#include <cstring>
#include <string>
#include <vector>

#include <QStringList>
#include <gtest/gtest.h>

#include "tests/support/Fixtures.h"
#include "tests/support/TempFolder.h"

namespace {

using audio::tags::readTrackDetails;
using namespace Qt::Literals::StringLiterals;

class DetailsOf : public ::testing::TestWithParam<const char*> {};

TEST_P(DetailsOf, ArtistAndAlbumAsFfmpegWroteThem) {
    const support::TempFolder folder;
    const auto file = folder / GetParam();
    const auto made =
        support::run(u"ffmpeg"_s, {u"-v"_s, u"error"_s, u"-i"_s,
                                   QString::fromStdString(support::fixture("tone.wav").string()),
                                   u"-metadata"_s, u"artist=Zoë 日本"_s, u"-metadata"_s,
                                   u"album=Ålbum"_s, QString::fromStdString(file.string())});
    ASSERT_EQ(made.exitCode, 0) << made.err.toStdString();
    const auto details = readTrackDetails(file);
    EXPECT_EQ(details.artists, std::vector<std::string>{"Zoë 日本"});
    EXPECT_EQ(details.album, "Ålbum");
    EXPECT_TRUE(details.art.empty());
}

INSTANTIATE_TEST_SUITE_P(Formats, DetailsOf,
                         ::testing::Values("t.mp3", "t.wav", "t.ogg", "t.wma", "t.flac", "t.m4a"));

TEST(TrackDetails, CoverOfAFlacFile) {
    const support::TempFolder folder;
    const QString cover = folder.file(u"cover.png"_s);
    const QString file = folder.file(u"t.flac"_s);
    ASSERT_EQ(support::run(u"ffmpeg"_s, {u"-v"_s, u"error"_s, u"-f"_s, u"lavfi"_s, u"-i"_s,
                                         u"color=red:s=16x16"_s, u"-frames:v"_s, u"1"_s, cover})
                  .exitCode,
              0);
    const auto made = support::run(
        u"ffmpeg"_s, {u"-v"_s, u"error"_s, u"-i"_s,
                      QString::fromStdString(support::fixture("tone.wav").string()), u"-i"_s, cover,
                      u"-map"_s, u"0:a"_s, u"-map"_s, u"1:v"_s, u"-c:v"_s, u"copy"_s,
                      u"-disposition:v"_s, u"attached_pic"_s, file});
    ASSERT_EQ(made.exitCode, 0) << made.err.toStdString();
    const auto details = readTrackDetails(file.toStdString());
    const auto bytes = support::readBytes(cover.toStdString());
    ASSERT_EQ(details.art.size(), bytes.size());
    EXPECT_EQ(std::memcmp(details.art.data(), bytes.data(), bytes.size()), 0);
    EXPECT_EQ(details.artType, "image/png");
}

TEST(TrackDetails, WhatIsNoSoundFileHasNone) {
    EXPECT_TRUE(readTrackDetails("/none/there.mp3").artists.empty());
    EXPECT_TRUE(readTrackDetails("/dev/null").album.empty());
}

}  // namespace
