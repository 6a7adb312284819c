// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/tags/VorbisComment.h"

#include <string>

#include <gtest/gtest.h>

#include "tests/support/Fixtures.h"
#include "tests/support/Python.h"
#include "tests/support/TempFolder.h"

using namespace audio::tags;
using namespace Qt::Literals::StringLiterals;

namespace {

std::string field(const std::string& text) {
    std::string result;
    for (int i = 0; i < 4; ++i) result += static_cast<char>(text.size() >> (8 * i) & 255);
    return result + text;
}

std::vector<std::uint8_t> packet(const std::vector<std::string>& comments,
                                 const std::string& rest = "\x01") {
    std::string result = "\x03vorbis" + field("a vendor");
    result += std::string{static_cast<char>(comments.size()), 0, 0, 0};
    for (const std::string& comment : comments) result += field(comment);
    result += rest;
    return {result.begin(), result.end()};
}

}  // namespace

TEST(VorbisComment, OnlyTheLevelCommentsGo) {
    EXPECT_EQ(withoutLevelComments(packet({"TITLE=a", "REPLAYGAIN_TRACK_GAIN=-1 dB", "Artist=b",
                                           "artist=c", "R128_TRACK_GAIN=5", "odd"},
                                          std::string("\x01padding"))),
              packet({"TITLE=a", "Artist=b", "artist=c", "odd"}, std::string("\x01padding")));
}

TEST(VorbisComment, WhatIsDamagedStaysAsItIs) {
    auto cut = packet({"TITLE=a", "REPLAYGAIN_TRACK_GAIN=-1 dB"});
    cut.resize(cut.size() - 10);
    EXPECT_EQ(withoutLevelComments(cut), cut);
    EXPECT_EQ(withoutLevelComments({}), std::vector<std::uint8_t>());
}

TEST(VorbisComment, ALongPacketOverManyPagesIsReadWhole) {
    const support::TempFolder folder;
    const auto file = support::scratchCopy("tone.ogg", folder.path());
    support::python(
        u"import sys,mutagen.oggvorbis as o\n"
        "f=o.OggVorbis(sys.argv[1])\n"
        "f['metadata_block_picture']=['x'*300000]\n"
        "f['title']=['one','two']\n"
        "f['replaygain_track_gain']=['-3 dB']\n"
        "f.save()\n"_s,
        {file});
    const auto whole = readVorbisComment(file, LevelFields::Keep);
    const auto dropped = readVorbisComment(file, LevelFields::Drop);
    EXPECT_GT(whole.size(), 300000U);
    const std::string gain = field("replaygain_track_gain=-3 dB");
    EXPECT_EQ(dropped.size() + gain.size(), whole.size());
    const std::string text(dropped.begin(), dropped.end());
    EXPECT_NE(text.find(field("title=one")), std::string::npos);
    EXPECT_NE(text.find(field("title=two")), std::string::npos);
}

TEST(VorbisComment, FilesOfOtherKindsHaveNone) {
    EXPECT_TRUE(readVorbisComment(support::fixture("tone.wav"), LevelFields::Keep).empty());
    EXPECT_TRUE(readVorbisComment(support::fixture("tone.flac"), LevelFields::Keep).empty());
}

TEST(VorbisComment, OpusHasItToo) {
    const auto packet = readVorbisComment(support::fixture("tone.opus"), LevelFields::Keep);
    EXPECT_EQ(std::string(packet.begin(), packet.begin() + 8), "OpusTags");
}
