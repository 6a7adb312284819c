// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/wave/Layout.h"

#include <fstream>
#include <random>

#include <gtest/gtest.h>

#include "platform/Error.h"
#include "tests/audio/wave/RiffBuilder.h"
#include "tests/support/TempFolder.h"

namespace {

using namespace audio::wave;
using riff::Builder;

class WaveLayout : public testing::Test {
  protected:
    std::vector<std::string> idsOf(const Layout& layout) {
        std::vector<std::string> ids;
        for (const Chunk& chunk : layout.chunks) ids.push_back(chunk.id);
        return ids;
    }
    std::filesystem::path file() const { return folder_ / "a.wav"; }
    support::TempFolder folder_;
};

using Ids = std::vector<std::string>;

TEST_F(WaveLayout, PlainFile) {
    const auto sound = riff::pattern(400);
    Builder().fmt().chunk("data", sound).chunk("LIST", riff::pattern(26)).save(file());
    const Layout layout = readLayout(file());
    EXPECT_TRUE(looksLikeWave(file()));
    EXPECT_EQ(idsOf(layout), (Ids{"fmt ", "data", "LIST"}));
    EXPECT_EQ(layout.frames(), 100);
    EXPECT_EQ(layout.data().body, 44);
    EXPECT_EQ(layout.format.channels, 2);
    EXPECT_EQ(layout.format.sampleRate, 44'100);
    EXPECT_EQ(layout.format.bitsPerSample, 16);
    EXPECT_EQ(layout.trailing, layout.fileSize);
    EXPECT_FALSE(layout.rf64);
}

TEST_F(WaveLayout, ExtensibleFormatByTheFfmpegProgram) {
    const Layout layout = readLayout(support::fixture("tone-6ch.wav"));
    EXPECT_TRUE(layout.format.extensible);
    EXPECT_EQ(layout.format.tag, formatTagPcm);
    EXPECT_EQ(layout.format.channels, 6);
    EXPECT_EQ(layout.format.channelMask, 0x3FU);
    EXPECT_EQ(layout.format.bitsPerSample, 24);
    EXPECT_EQ(layout.frames(), 88'200);
}

TEST_F(WaveLayout, Rf64ByTheFfmpegProgram) {
    const Layout layout = readLayout(support::fixture("tone-rf64.wav"));
    EXPECT_TRUE(layout.rf64);
    EXPECT_EQ(layout.frames(), 88'200);
    EXPECT_EQ(layout.chunks.front().id, "ds64");
}

TEST_F(WaveLayout, OddChunksWithAndWithoutPadding) {
    for (const bool pad : {true, false}) {
        Builder()
            .chunk("bext", riff::pattern(605), -1, pad)
            .fmt()
            .chunk("junk", riff::pattern(1), -1, pad)
            .chunk("data", riff::pattern(40))
            .chunk("id3 ", riff::pattern(11), -1, pad)
            .save(file());
        const Layout layout = readLayout(file());
        EXPECT_EQ(idsOf(layout), (Ids{"bext", "fmt ", "junk", "data", "id3 "})) << pad;
        EXPECT_EQ(layout.frames(), 10);
        EXPECT_EQ(layout.chunks.back().size, 11);
    }
}

TEST_F(WaveLayout, DataAheadOfTheFormat) {
    Builder().chunk("data", riff::pattern(40)).fmt().save(file());
    EXPECT_EQ(readLayout(file()).frames(), 10);
}

TEST_F(WaveLayout, ChunkPastTheEndIsWhatIsThere) {
    Builder()
        .fmt()
        .chunk("data", riff::pattern(40))
        .chunk("LIST", riff::pattern(20), 9'000)
        .save(file());
    const Layout layout = readLayout(file());
    EXPECT_EQ(layout.frames(), 10);
    EXPECT_EQ(layout.chunks.back().id, "LIST");
    EXPECT_EQ(layout.chunks.back().size, 20);
}

TEST_F(WaveLayout, RiffSizeIsNotBelieved) {
    for (const std::int64_t stated : {0LL, 4LL, 12'345LL, 0xFFFFFFFFLL}) {
        Builder()
            .fmt()
            .chunk("data", riff::pattern(40))
            .chunk("cue ", riff::pattern(4))
            .save(file(), stated);
        EXPECT_EQ(idsOf(readLayout(file())), (Ids{"fmt ", "data", "cue "})) << stated;
    }
}

TEST_F(WaveLayout, SizeOfAnUnfinishedRecordingIsTheRestOfTheFile) {
    for (const std::int64_t stated : {0LL, 0xFFFFFFFFLL, 100'000LL}) {
        Builder().fmt().chunk("data", riff::pattern(400), stated).save(file(), 0);
        EXPECT_EQ(readLayout(file()).frames(), 100) << stated;
    }
}

TEST_F(WaveLayout, TrulyEmptySoundStaysEmpty) {
    Builder().fmt().chunk("data", {}).chunk("LIST", riff::pattern(40)).save(file());
    EXPECT_EQ(readLayout(file()).frames(), 0);
    Builder().fmt().chunk("data", {}).save(file());
    EXPECT_EQ(readLayout(file()).frames(), 0);
}

TEST_F(WaveLayout, EmptyDataChunkAheadOfTheRealOne) {
    Builder().fmt().chunk("data", {}).chunk("data", riff::pattern(40)).save(file());
    EXPECT_EQ(readLayout(file()).frames(), 10);
}

TEST_F(WaveLayout, HalfAFrameAtTheEndDoesNotCount) {
    Builder().fmt().chunk("data", riff::pattern(43)).save(file());
    EXPECT_EQ(readLayout(file()).frames(), 10);
}

TEST_F(WaveLayout, BytesBehindTheLastChunkAreKnown) {
    Builder().fmt().chunk("data", riff::pattern(40)).add(riff::pattern(9)).save(file());
    const Layout layout = readLayout(file());
    EXPECT_EQ(layout.chunks.size(), 2U);
    EXPECT_EQ(layout.fileSize - layout.trailing, 9);
}

TEST_F(WaveLayout, SoundOfMoreThanFourGigabytes) {
    // A sparse file: 5 GB long, a few kilobytes on disk.
    constexpr std::int64_t dataBytes = 5'000'000'000;
    std::vector<std::byte> sizes;
    appendLittleEndian<8>(sizes, std::uint64_t(dataBytes) + 100);
    appendLittleEndian<8>(sizes, std::uint64_t(dataBytes));
    appendLittleEndian<8>(sizes, std::uint64_t(dataBytes) / 4);
    appendLittleEndian<4>(sizes, 0);
    Builder("RF64")
        .chunk("ds64", sizes)
        .fmt()
        .chunk("data", {}, 0xFFFFFFFF)
        .save(file(), 0xFFFFFFFF);
    const auto head = std::int64_t(std::filesystem::file_size(file()));
    std::filesystem::resize_file(file(), std::uintmax_t(head + dataBytes));
    EXPECT_EQ(readLayout(file()).frames(), dataBytes / 4);

    // The same by a recorder that knows no RF64: its size field wrapped.
    Builder().fmt().chunk("data", {}, dataBytes & 0xFFFFFFFF).save(file(), 1'234);
    std::filesystem::resize_file(file(), std::uintmax_t(44 + dataBytes));
    EXPECT_EQ(readLayout(file()).frames(), dataBytes / 4);
}

TEST_F(WaveLayout, WhatIsNoWaveFileIsRefusedByName) {
    const auto refused = [this](const std::string& reason) {
        try {
            readLayout(file());
        } catch (const platform::Error& error) {
            const std::string sentence = error.what();
            return sentence.find("a.wav") != std::string::npos &&
                   sentence.find(reason) != std::string::npos;
        }
        return false;
    };
    EXPECT_TRUE(refused("cannot be opened"));
    support::writeBytes(file(), riff::text("RIFF"));
    EXPECT_TRUE(refused("is not a WAVE file"));
    support::writeBytes(file(), riff::text("RIFF....AVI LIST"));
    EXPECT_TRUE(refused("is not a WAVE file"));
    EXPECT_FALSE(looksLikeWave(file()));
    Builder().chunk("data", riff::pattern(40)).save(file());
    EXPECT_TRUE(refused("without a format chunk"));
    Builder().fmt().save(file());
    EXPECT_TRUE(refused("without a data chunk"));
    Builder().chunk("fmt ", riff::pattern(7)).chunk("data", riff::pattern(40)).save(file());
    EXPECT_TRUE(refused("makes no sense"));
    Builder().chunk("fmt ", riff::Bytes(16)).chunk("data", riff::pattern(40)).save(file());
    EXPECT_TRUE(refused("makes no sense"));
}

TEST_F(WaveLayout, AMillionTinyChunksEnd) {
    riff::Bytes many;
    for (int i = 0; i < 200'000; ++i) {
        appendText(many, "AAAA");
        appendLittleEndian<4>(many, 0);
    }
    Builder().fmt().chunk("data", riff::pattern(40)).add(many).save(file());
    const Layout layout = readLayout(file());
    EXPECT_EQ(layout.frames(), 10);
    EXPECT_LT(layout.chunks.size(), 20'000U);
    EXPECT_LT(layout.trailing, layout.fileSize);
}

// Whatever the bytes say, every chunk lies inside the file, in order, and nothing crashes.
TEST_F(WaveLayout, MutatedFilesNeverReachOutside) {
    const riff::Bytes good = Builder("RF64")
                                 .chunk("ds64", riff::Bytes(28))
                                 .chunk("bext", riff::pattern(33))
                                 .fmt(24, 6)
                                 .chunk("data", riff::pattern(360))
                                 .chunk("LIST", riff::pattern(50))
                                 .finish();
    std::mt19937 random(3);
    int readable = 0;
    for (int i = 0; i < 500; ++i) {
        riff::Bytes bytes = good;
        for (unsigned flips = random() % 12 + 1; flips > 0; --flips)
            bytes[random() % std::min<std::size_t>(bytes.size(), 160)] = std::byte(random() & 0xFF);
        bytes.resize(random() % 4 == 0 ? random() % bytes.size() : bytes.size());
        support::writeBytes(file(), bytes);
        try {
            const Layout layout = readLayout(file());
            ++readable;
            std::int64_t end = 12;
            for (const Chunk& chunk : layout.chunks) {
                ASSERT_GE(chunk.offset, end);
                ASSERT_GE(chunk.size, 0);
                end = chunk.body + chunk.size;
                ASSERT_LE(end, layout.fileSize);
            }
            ASSERT_LE(layout.data().body + layout.frames() * layout.format.blockAlign,
                      layout.fileSize);
        } catch (const platform::Error&) {
        }
    }
    EXPECT_GT(readable, 50);
}

}  // namespace
