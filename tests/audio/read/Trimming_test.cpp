// SPDX-License-Identifier: GPL-3.0-or-later
// What containers say of delay and padding, and what packets say of their length: arithmetic
// without files. Expected values follow from the standards named.
#include "audio/read/Trimming.h"

#include <array>

#include <gtest/gtest.h>

#include "audio/read/PacketLengths.h"

namespace {

using audio::read::Kept;
using audio::read::Mp4End;
using audio::read::OggPageEnd;
using audio::read::Trim;
using audio::read::Trimmer;

void expectKept(const Kept& kept, std::int64_t front, std::int64_t count) {
    EXPECT_EQ(kept.front, front);
    EXPECT_EQ(kept.kept, count);
}

template <typename... Bytes>
auto packet(Bytes... bytes) {
    return std::array<std::uint8_t, sizeof...(Bytes)>{static_cast<std::uint8_t>(bytes)...};
}

}  // namespace

TEST(Trimmer, TheDelayIsTakenFromAsManyPacketsAsItCovers) {
    Trimmer trimmer(2'112);
    expectKept(trimmer.take(1'024, {}), 1'024, 0);
    expectKept(trimmer.take(1'024, {}), 1'024, 0);
    EXPECT_EQ(trimmer.skip(), 64);
    expectKept(trimmer.take(1'024, {}), 64, 960);
    expectKept(trimmer.take(1'024, {}), 0, 1'024);
}

TEST(Trimmer, PaddingGoesFromTheEndOfItsPacketAlone) {
    Trimmer trimmer;
    expectKept(trimmer.take(1'024, {.padding = 100}), 0, 924);
    expectKept(trimmer.take(1'024, {}), 0, 1'024);
    expectKept(trimmer.take(1'024, {.padding = 1'024}), 0, 0);
}

TEST(Trimmer, ASkipOfAPacketBeginsThere) {
    Trimmer trimmer;
    expectKept(trimmer.take(960, {}), 0, 960);
    expectKept(trimmer.take(960, {.skip = 312}), 312, 648);
    expectKept(trimmer.take(960, {.skip = 1'000}), 960, 0);
    expectKept(trimmer.take(960, {}), 40, 920);
}

TEST(Trimmer, WhatIsToBeDiscardedIsNoSound) {
    Trimmer trimmer;
    EXPECT_EQ(trimmer.take(1'024, {.discard = true}).kept, 0);
    expectKept(trimmer.take(1'024, {}), 0, 1'024);
}

// Vorbis I, appendix A.2: a first page whose granule position is less than what it holds begins
// before frame 0; on a last page the end is cut.
TEST(OggEnds, TheFirstPageSaysWhatLiesBeforeTheSound) {
    EXPECT_EQ(audio::read::oggStartSkip({.granule = 4'096, .frames = 4'096}), 0);
    EXPECT_EQ(audio::read::oggStartSkip({.granule = 4'000, .frames = 4'096}), 96);
    EXPECT_EQ(audio::read::oggStartSkip({.granule = 4'000, .frames = 4'096, .last = true}), 0);
}

TEST(OggEnds, TheLastPageSaysWhereTheSoundEnds) {
    const OggPageEnd cut{.granule = 10'000, .before = 8'000, .frames = 2'048, .last = true};
    EXPECT_EQ(audio::read::oggEndPadding(cut), 48);
    EXPECT_EQ(audio::read::oggEndPadding({.granule = 4'000, .frames = 4'096, .last = true}), 96);
    const OggPageEnd whole{.granule = 10'048, .before = 8'000, .frames = 2'048, .last = true};
    EXPECT_EQ(audio::read::oggEndPadding(whole), 0);
    const OggPageEnd more{.granule = 12'000, .before = 8'000, .frames = 2'048, .last = true};
    EXPECT_EQ(audio::read::oggEndPadding(more), 0) << "sound is not made from a number";
}

TEST(Mp4Ends, TheDurationOfTheSamplesIsExactWhereTheEditListIsCoarse) {
    // 44,151 frames behind a delay of 1,024, the movie in milliseconds: the edit ends at 45,188.
    const Mp4End end{
        .lastStart = 44 * 1'024, .mediaEnd = 45'175, .editEnd = 45'188, .editGrain = 45};
    EXPECT_EQ(audio::read::mp4EndPadding(end, 44 * 1'024, 1'024), 45 * 1'024 - 45'175);
}

TEST(Mp4Ends, DurationsOfAnotherCountSayNothing) {
    const Mp4End end{.lastStart = 44 * 2'048, .mediaEnd = 45 * 2'048, .editEnd = {}};
    EXPECT_EQ(audio::read::mp4EndPadding(end, 44 * 1'024, 1'024), 0);
}

// RFC 6716, table 2 and section 3.2, at 48 kHz.
TEST(PacketLengths, OpusIsToldByItsFirstTwoBytes) {
    EXPECT_EQ(audio::read::opusFrames(packet(0 << 3)), 480);            // SILK, 10 ms
    EXPECT_EQ(audio::read::opusFrames(packet(3 << 3)), 2'880);          // SILK, 60 ms
    EXPECT_EQ(audio::read::opusFrames(packet(16 << 3)), 120);           // CELT, 2.5 ms
    EXPECT_EQ(audio::read::opusFrames(packet(31 << 3 | 1, 0)), 1'920);  // CELT, 20 ms, two frames
    EXPECT_EQ(audio::read::opusFrames(packet(31 << 3 | 3, 3, 0)), 2'880);
    EXPECT_EQ(audio::read::opusFrames({}), std::nullopt);
    EXPECT_EQ(audio::read::opusFrames(packet(3 << 3 | 3, 48, 0)), std::nullopt);  // over 120 ms
}

// RFC 9639, section 9.1.
TEST(PacketLengths, FlacIsToldByTheHeadOfItsFrame) {
    const auto fixed =
        audio::read::flacHead(packet(0xFF, 0xF8, 0xC9, 0x18, 0x05, 0xD9, 0, 0, 0, 0));
    ASSERT_TRUE(fixed);
    EXPECT_EQ(fixed->frames, 4'096);
    EXPECT_EQ(fixed->number, 5);
    EXPECT_FALSE(fixed->numbersSamples);
    // Numbered by samples (10,000 in three bytes), the size less one in two bytes behind it.
    const auto variable =
        audio::read::flacHead(packet(0xFF, 0xF9, 0x79, 0x18, 0xE2, 0x9C, 0x90, 0x03, 0xE7, 0));
    ASSERT_TRUE(variable);
    EXPECT_EQ(variable->frames, 1'000);
    EXPECT_EQ(variable->number, 10'000);
    EXPECT_TRUE(variable->numbersSamples);
    EXPECT_FALSE(audio::read::flacHead(packet(0x00, 0xF8, 0xC9, 0x18, 0x05, 0xD9, 0, 0, 0, 0)));
    EXPECT_FALSE(audio::read::flacHead(packet(0xFF)));
}

TEST(PacketLengths, AlacSaysWhenAPacketIsNotFull) {
    EXPECT_EQ(audio::read::alacFrames(packet(0x20, 0, 0x02, 0, 0, 0, 0), 4'096), 4'096);
    // The count of 32 bits begins in the middle of the third byte.
    EXPECT_EQ(audio::read::alacFrames(packet(0x20, 0, 0x12, 0, 0, 0x07, 0xD0), 4'096), 1'000);
    EXPECT_EQ(audio::read::alacFrames(packet(0x20), 4'096), std::nullopt);
}
