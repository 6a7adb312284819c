// SPDX-License-Identifier: GPL-3.0-or-later
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "audio/tags/ApeLevel.h"
#include "audio/tags/Id3v2Level.h"
#include "audio/tags/LevelNames.h"
#include "audio/tags/MpegTags.h"
#include "tests/support/Fixtures.h"
#include "tests/support/TempFolder.h"

using namespace audio::tags;
using namespace std::string_literals;

namespace {

std::span<const std::byte> bytes(const std::string& text) {
    return std::as_bytes(std::span(text.data(), text.size()));
}

std::string text(const std::vector<std::byte>& content) {
    return {reinterpret_cast<const char*>(content.data()), content.size()};
}

std::string number(std::size_t value, int count, int bits) {
    std::string result;
    for (int i = count - 1; i >= 0; --i)
        result += static_cast<char>(value >> (bits * i) & ((1U << bits) - 1));
    return result;
}

std::string frame22(const std::string& id, const std::string& body) {
    return id + number(body.size(), 3, 8) + body;
}

std::string frame23(const std::string& id, const std::string& body) {
    return id + number(body.size(), 4, 8) + "\0\0"s + body;
}

std::string frame24(const std::string& id, const std::string& body,
                    const std::string& flags = "\0\0"s) {
    return id + number(body.size(), 4, 7) + flags + body;
}

std::string tag(char version, char flags, const std::string& body) {
    const std::string size = number(body.size(), 4, 7);
    const std::string rest = std::string() + version + '\0' + flags + size;
    return "ID3" + rest + body + (flags & 0x10 ? "3DI" + rest : "");
}

std::string unsynchronised(const std::string& body) {
    std::string result;
    for (std::size_t i = 0; i < body.size(); ++i) {
        result += body[i];
        const auto next = i + 1 < body.size() ? static_cast<unsigned char>(body[i + 1]) : 0;
        if (body[i] == '\xFF' && (next >= 0xE0 || next == 0)) result += '\0';
    }
    return result;
}

std::string stripped(const std::string& whole) {
    return text(withoutLevelFrames(bytes(whole)));
}

const std::string title = "\x03Title\xFF\xE0 with a false sync"s;
const std::string gain = "\0replaygain_track_gain\0-6.0 dB"s;
const std::string wideGain = "\x01\xFF\xFEr\0e\0p\0l\0a\0y\0g\0a\0i\0n\0_\0x\0\0\0\xFF\xFE-\0"s;
const std::string norm = "\0engiTunNORM\0 00000A2B"s;
const std::string padding(50, '\0');

}  // namespace

TEST(LevelNames, OfEveryProgram) {
    for (const char* name : {"replaygain_track_gain", "REPLAYGAIN_ALBUM_PEAK", "R128_TRACK_GAIN",
                             "iTunNORM", "MP3GAIN_MINMAX"})
        EXPECT_TRUE(isLevelName(name)) << name;
    for (const char* name : {"TITLE", "replay", "iTunSMPB", "", "R128"})
        EXPECT_FALSE(isLevelName(name)) << name;
}

TEST(Id3v2Level, Version23LosesOnlyTheLevelFrames) {
    const std::string kept = frame23("TIT2", title) + frame23("PRIV", "me\0\x01\x02"s);
    const std::string whole =
        tag(3, 0,
            frame23("TIT2", title) + frame23("TXXX", gain) + frame23("RVAD", "\1\2\3") +
                frame23("PRIV", "me\0\x01\x02"s) + frame23("COMM", norm) + padding);
    const std::string result = stripped(whole);
    EXPECT_EQ(result.size(), whole.size());
    EXPECT_EQ(result.substr(0, 10), whole.substr(0, 10));
    EXPECT_EQ(result.substr(10, kept.size()), kept);
    EXPECT_EQ(result.find_first_not_of('\0', 10 + kept.size()), std::string::npos);
}

TEST(Id3v2Level, Version24WithWideTextsAndDataLengths) {
    const std::string kept = frame24("TIT2", title);
    const std::string whole =
        tag(4, 0,
            frame24("TXXX", wideGain) + kept + frame24("TXXX", "\0\0\0\x1F"s + gain, "\0\1"s) +
                frame24("RVA2", "x"));
    const std::string result = stripped(whole);
    EXPECT_EQ(result.size(), whole.size());
    EXPECT_EQ(result.substr(10, kept.size()), kept);
    EXPECT_EQ(result.find("replaygain"), std::string::npos);
}

TEST(Id3v2Level, Version22) {
    const std::string kept = frame22("TT2", title) + frame22("PIC", "\0JPG\3\0data"s);
    const std::string whole =
        tag(2, 0, frame22("RVA", "abc") + kept + frame22("TXX", gain) + frame22("COM", norm));
    const std::string result = stripped(whole);
    EXPECT_EQ(result.size(), whole.size());
    EXPECT_EQ(result.substr(10, kept.size()), kept);
    EXPECT_EQ(result.find_first_not_of('\0', 10 + kept.size()), std::string::npos);
}

TEST(Id3v2Level, UnsynchronisedVersion23IsCutInPlace) {
    const std::string before = frame23("TIT2", title);
    const std::string after = frame23("APIC", "\0image/png\0\3\0\xFF\xFB\xFF\0\xFF\xFF"s);
    const std::string whole =
        tag(3, '\x80', unsynchronised(before + frame23("TXXX", wideGain) + after));
    const std::string kept = unsynchronised(before) + unsynchronised(after);
    const std::string result = stripped(whole);
    EXPECT_EQ(result.size(), whole.size());
    EXPECT_EQ(result.substr(10, kept.size()), kept);
}

TEST(Id3v2Level, AFooterLeavesNoRoomForPadding) {
    const std::string kept = frame24("TIT2", title);
    EXPECT_EQ(stripped(tag(4, 0x10, kept + frame24("TXXX", gain))), tag(4, 0x10, kept));
}

TEST(Id3v2Level, WhatIsDamagedStaysAsItIs) {
    const std::string tooLong = tag(3, 0, "TXXX" + number(5000, 4, 8) + "\0\0"s + gain);
    EXPECT_EQ(stripped(tooLong), tooLong);
    const std::string noFrames = tag(4, 0, "\x01\x02\x03garbage that is no frame"s);
    EXPECT_EQ(stripped(noFrames), noFrames);
    EXPECT_FALSE(id3v2Size(bytes("ID3\3\0\0\0\0\1\0"s)));
    EXPECT_FALSE(id3v2Size(bytes("ID3")));
}

namespace {

std::string little(std::size_t value) {
    const std::string big = number(value, 4, 8);
    return {big.rbegin(), big.rend()};
}

std::string apeTag(const std::vector<std::pair<std::string, std::string>>& items, bool header) {
    std::string body;
    for (const auto& [key, value] : items)
        body += little(value.size()) + little(0) + key + '\0' + value;
    const auto edge = [&](std::size_t flags) {
        return "APETAGEX" + little(2000) + little(body.size() + 32) + little(items.size()) +
               little(flags) + std::string(8, '\0');
    };
    const std::size_t has = header ? 0x80000000 : 0;
    return (header ? edge(has | 0x20000000) : "") + body + edge(has);
}

}  // namespace

TEST(ApeLevel, OnlyTheLevelItemsGo) {
    for (const bool header : {true, false}) {
        const std::string whole = apeTag({{"Title", "T"},
                                          {"REPLAYGAIN_TRACK_GAIN", "-3 dB"},
                                          {"Cover Art (Front)", "a.jpg\0\xFF\xD8"s},
                                          {"MP3GAIN_UNDO", "+1,+1,N"}},
                                         header);
        const auto place = findApeTag(bytes("junk" + whole + "TAG"));
        ASSERT_TRUE(place);
        EXPECT_EQ(place->start, 4U);
        EXPECT_EQ(place->end, 4 + whole.size());
        EXPECT_EQ(text(withoutLevelItems(bytes(whole))),
                  apeTag({{"Title", "T"}, {"Cover Art (Front)", "a.jpg\0\xFF\xD8"s}}, header));
    }
}

TEST(ApeLevel, WhatIsDamagedStaysAsItIs) {
    std::string whole = apeTag({{"Title", "T"}}, true);
    whole[32] = '\x7F';
    EXPECT_EQ(text(withoutLevelItems(bytes(whole))), whole);
    EXPECT_FALSE(findApeTag(bytes("APETAGEX and no more")));
}

TEST(MpegTags, EverythingAroundTheSoundIsCarried) {
    const support::TempFolder folder;
    const std::string first = tag(3, 0, frame23("TIT2", title) + frame23("TXXX", gain) + padding);
    const std::string second = tag(4, 0,
                                   frame24("TALB",
                                           "\x03"
                                           "Album"));
    const std::string leading = first + second + "some junk";
    const std::string ape = apeTag({{"Title", "T"}, {"replaygain_track_peak", "1"}}, true);
    const std::string trailing = ape + "TAG" + std::string(125, 'x');
    const auto plain = support::readBytes(support::fixture("tone-untagged.mp3"));
    support::writeBytes(folder / "a.mp3", {});
    std::string whole = leading + text(plain) + trailing;
    const auto all = bytes(whole);
    support::writeBytes(folder / "a.mp3", {all.begin(), all.end()});

    const auto carried = [&](LevelFields levels) {
        const MpegTags around(folder / "a.mp3", levels);
        platform::file::Replacement file(folder / "b");
        around.writeLeading(file);
        file.write("|", 1);
        around.writeTrailing(file);
        file.commit();
        return text(support::readBytes(folder / "b"));
    };
    EXPECT_EQ(carried(LevelFields::Keep), leading + "|" + trailing);
    const std::string dropped = carried(LevelFields::Drop);
    EXPECT_EQ(dropped.find("replaygain"), std::string::npos);
    EXPECT_EQ(dropped.find('|'), leading.size());
    EXPECT_NE(dropped.find(second + "some junk|"), std::string::npos);
    EXPECT_TRUE(dropped.ends_with(apeTag({{"Title", "T"}}, true) + "TAG" + std::string(125, 'x')));
}
