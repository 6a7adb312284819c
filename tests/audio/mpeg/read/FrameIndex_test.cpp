// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/mpeg/read/FrameIndex.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "audio/mpeg/read/FrameScanner.h"
#include "platform/Error.h"
#include "tests/audio/mpeg/MpegFiles.h"
#include "tests/support/TempFolder.h"

using namespace Qt::Literals::StringLiterals;
using audio::mpeg::ByteRange;
using audio::mpeg::FrameIndex;
using support::Judge;
using support::operator+;

namespace {

using Bytes = std::vector<std::uint8_t>;

Bytes id3v2(std::size_t size, bool footer = false) {
    Bytes tag = support::bytesOf("ID3");
    tag.insert(tag.end(), {4, 0, static_cast<std::uint8_t>(footer ? 0x10 : 0)});
    for (int shift = 21; shift >= 0; shift -= 7) {
        tag.push_back(static_cast<std::uint8_t>(size >> shift & 127));
    }
    tag.resize(10 + size, 0);
    if (footer) {
        Bytes end(tag.begin(), tag.begin() + 10);
        std::copy_n("3DI", 3, end.begin());
        tag = tag + end;
    }
    return tag;
}

Bytes ape(std::size_t itemBytes) {
    Bytes half = support::bytesOf("APETAGEX");
    const std::size_t size = itemBytes + 32;
    half.insert(half.end(),
                {0xD0, 7, 0, 0, static_cast<std::uint8_t>(size),
                 static_cast<std::uint8_t>(size >> 8), 0, 0, 1, 0, 0, 0, 0, 0, 0, 0x80});
    half.resize(32, 0);
    Bytes header = half;
    header[23] = 0xA0;
    return header + Bytes(itemBytes, 'x') + half;
}

Bytes id3v1() {
    Bytes tag = support::bytesOf("TAGTitle");
    tag.resize(128, 0);
    return tag;
}

Bytes lyrics3() {
    const std::string body = "LYRICSBEGININD0000211LYR00005Words";
    const std::string size = std::to_string(body.size());
    return support::bytesOf(body + std::string(6 - size.size(), '0') + size + "LYRICS200");
}

class FrameIndexTest : public ::testing::Test {
  protected:
    std::filesystem::path make(const char* name, const QStringList& options, int rate = 44100,
                               int channels = 2, std::int64_t length = 100000) {
        const auto path = folder_ / name;
        support::encodeMp3(path, support::makeSound(rate, channels, length), options);
        return path;
    }
    std::filesystem::path put(const char* name, const Bytes& bytes) {
        support::writeBytes(folder_ / name, bytes);
        return folder_ / name;
    }
    static void expectJudgesAgree(const std::filesystem::path& path) {
        SCOPED_TRACE(path.string());
        const FrameIndex index(path);
        EXPECT_EQ(index.gaplessLength(), support::decode(path, Judge::Ffmpeg).length());
        EXPECT_EQ(index.gaplessLength(), support::decode(path, Judge::Mpg123).length());
        EXPECT_EQ(index.rawLength(), support::decode(path, Judge::Mpg123, false).length());
    }
    support::TempFolder folder_;
};

}  // namespace

TEST_F(FrameIndexTest, LengthIsWhatDecodersGive) {
    expectJudgesAgree(make("cbr.mp3", {u"-b"_s, u"128"_s}));
    expectJudgesAgree(make("vbr.mp3", {u"-V2"_s}));
    expectJudgesAgree(make("abr.mp3", {u"--abr"_s, u"160"_s}));
    expectJudgesAgree(make("crc.mp3", {u"-b"_s, u"128"_s, u"-p"_s}));
    expectJudgesAgree(make("none.mp3", {u"-t"_s, u"-b"_s, u"192"_s}));
    expectJudgesAgree(make("mono.mp3", {u"-b"_s, u"64"_s}, 44100, 1));
    expectJudgesAgree(make("lsf.mp3", {u"-b"_s, u"64"_s}, 22050));
    expectJudgesAgree(make("mpeg25.mp3", {u"-b"_s, u"24"_s}, 11025, 1));
    expectJudgesAgree(make("48k.mp3", {u"-b"_s, u"320"_s}, 48000));
    expectJudgesAgree(make("tiny.mp3", {u"-b"_s, u"128"_s}, 44100, 2, 3));
}

TEST_F(FrameIndexTest, LayerTwoHasNoGaps) {
    const auto path = folder_ / "a.mp2";
    support::encodeMp2(path, support::makeSound(44100, 2, 100000), 192000);
    const FrameIndex index(path);
    EXPECT_EQ(index.header().layer, 2);
    EXPECT_EQ(index.gaplessStart(), 0);
    EXPECT_EQ(index.gaplessLength(), support::decode(path, Judge::Ffmpeg).length());
    EXPECT_EQ(index.gaplessLength(), support::decode(path, Judge::Mpg123).length());
}

TEST_F(FrameIndexTest, TagFieldsAreTheEncodersOwn) {
    const FrameIndex index(make("v2.mp3", {u"-V2"_s}));
    ASSERT_TRUE(index.info());
    EXPECT_EQ(index.info()->kind, audio::mpeg::InfoTag::Kind::Xing);
    EXPECT_EQ(index.info()->delay, 576);
    EXPECT_EQ(index.info()->frames, index.frameCount());
    EXPECT_EQ(index.info()->bytes, index.audio().size);
    EXPECT_EQ(index.info()->quality, 80U);
    EXPECT_EQ(index.info()->encoder.substr(0, 4), "LAME");
    EXPECT_EQ(index.gaplessLength(), 100000);
    EXPECT_TRUE(index.variableBitRate());
    EXPECT_TRUE(index.statesGaps());
}

TEST_F(FrameIndexTest, TagsAroundTheSoundAreFound) {
    const Bytes sound = support::readBytes(make("plain.mp3", {u"-b"_s, u"128"_s}));
    const FrameIndex plain(folder_ / "plain.mp3");
    const std::vector<Bytes> leads = {{},
                                      id3v2(500),
                                      id3v2(300, true),
                                      id3v2(200) + id3v2(777),
                                      ape(100),
                                      Bytes(1000, 0),
                                      id3v2(100) + support::bytesOf("some junk \xFF\xFB\x90 here"),
                                      Bytes(3000, 0xFF)};
    const std::vector<Bytes> trails = {{},
                                       id3v1(),
                                       ape(50),
                                       ape(50) + id3v1(),
                                       lyrics3() + id3v1(),
                                       Bytes(77, 0),
                                       Bytes(500, 0xFF) + id3v1()};
    for (const Bytes& lead : leads) {
        for (const Bytes& trail : trails) {
            const auto path = put("tagged.mp3", lead + sound + trail);
            SCOPED_TRACE(std::to_string(lead.size()) + " + " + std::to_string(trail.size()));
            const FrameIndex index(path);
            EXPECT_EQ(index.leading().size, static_cast<std::int64_t>(lead.size()));
            EXPECT_EQ(index.audio().size, static_cast<std::int64_t>(sound.size()));
            EXPECT_EQ(index.trailing().size, static_cast<std::int64_t>(trail.size()));
            EXPECT_EQ(index.trailing().end(),
                      static_cast<std::int64_t>(lead.size() + sound.size() + trail.size()));
            EXPECT_EQ(index.gaplessLength(), plain.gaplessLength());
            EXPECT_TRUE(index.junk().empty());
            EXPECT_FALSE(index.lastFrameCut());
        }
    }
}

TEST_F(FrameIndexTest, TagLongerThanTheFileIsNotBelieved) {
    const Bytes sound = support::readBytes(make("plain.mp3", {u"-b"_s, u"128"_s}));
    Bytes lie = id3v2(50);
    lie[6] = 0x7F;
    const FrameIndex index(put("lie.mp3", lie + sound));
    EXPECT_EQ(index.leading().size, static_cast<std::int64_t>(lie.size()));
    EXPECT_EQ(index.audio().size, static_cast<std::int64_t>(sound.size()));
}

TEST_F(FrameIndexTest, CutLastFrameIsAFrame) {
    const Bytes sound = support::readBytes(make("plain.mp3", {u"-b"_s, u"128"_s, u"-t"_s}));
    const FrameIndex whole(folder_ / "plain.mp3");
    const ByteRange last = whole.frame(whole.frameCount() - 1);
    for (const std::int64_t left : {37, 40, 200, 416}) {
        SCOPED_TRACE(left);
        const Bytes cut(sound.begin(), sound.begin() + last.offset + left);
        const FrameIndex index(put("cut.mp3", cut + id3v1()));
        EXPECT_TRUE(index.lastFrameCut());
        EXPECT_EQ(index.frameCount(), whole.frameCount());
        EXPECT_EQ(index.frame(index.frameCount() - 1).size, left);
        EXPECT_EQ(index.trailing().size, 128);
        EXPECT_EQ(index.gaplessLength(),
                  support::decode(put("cut.mp3", cut), Judge::Ffmpeg).length());
    }
}

TEST_F(FrameIndexTest, LastFrameWithoutSoundIsLeftOut) {
    const Bytes sound = support::readBytes(make("plain.mp3", {u"-b"_s, u"128"_s, u"-t"_s}));
    const FrameIndex whole(folder_ / "plain.mp3");
    const ByteRange last = whole.frame(whole.frameCount() - 1);
    const Bytes cut(sound.begin(), sound.begin() + last.offset + 36);
    const FrameIndex index(put("cut.mp3", cut + id3v1()));
    EXPECT_TRUE(index.lastFrameCut());
    EXPECT_EQ(index.frameCount(), whole.frameCount() - 1);
    EXPECT_EQ(index.trailing().size, 128);
}

TEST_F(FrameIndexTest, LostSyncIsAFact) {
    const Bytes sound = support::readBytes(make("plain.mp3", {u"-b"_s, u"128"_s}));
    const FrameIndex whole(folder_ / "plain.mp3");
    const auto at = static_cast<long>(whole.frame(30).offset);
    const Bytes head(sound.begin(), sound.begin() + at);
    const Bytes tail(sound.begin() + at, sound.end());
    const FrameIndex index(put("lost.mp3", head + Bytes(333, 0x41) + tail));
    ASSERT_EQ(index.junk().size(), 1U);
    EXPECT_EQ(index.junk()[0].offset, at);
    EXPECT_EQ(index.junk()[0].size, 333);
    EXPECT_EQ(index.frameCount(), whole.frameCount());
    EXPECT_EQ(index.frame(30).offset, at + 333);
}

TEST_F(FrameIndexTest, RateChangeIsAFact) {
    const Bytes first = support::readBytes(make("a.mp3", {u"-t"_s, u"-b"_s, u"128"_s}));
    const Bytes second = support::readBytes(make("b.mp3", {u"-t"_s, u"-b"_s, u"64"_s}, 22050, 1));
    const FrameIndex one(folder_ / "a.mp3");
    const FrameIndex two(folder_ / "b.mp3");
    const FrameIndex index(put("both.mp3", first + second));
    ASSERT_EQ(index.changes().size(), 1U);
    EXPECT_EQ(index.changes()[0].frame, one.frameCount());
    EXPECT_EQ(index.changes()[0].header.sampleRate, 22050);
    EXPECT_EQ(index.rawLength(), one.rawLength() + two.rawLength());
    EXPECT_EQ(index.frameCount(), one.frameCount() + two.frameCount());
}

TEST_F(FrameIndexTest, FreeFormatIsMeasured) {
    const auto path = make("free.mp3", {u"--freeformat"_s, u"-b"_s, u"200"_s, u"-t"_s});
    const FrameIndex index(path);
    EXPECT_TRUE(index.freeFormat());
    // FFmpeg refuses free format: one judge.
    const QByteArray pcm = support::run(
        u"mpg123"_s, {u"-q"_s, u"-s"_s, u"--no-gapless"_s, QString::fromStdString(path.string())});
    EXPECT_EQ(index.rawLength(), pcm.size() / 4);
    EXPECT_NEAR(static_cast<double>(index.averageBitRate()), 200000, 500);
}

TEST_F(FrameIndexTest, TwoFilesInOneAreHeardToTheEnd) {
    const Bytes sound = support::readBytes(make("plain.mp3", {u"-b"_s, u"128"_s}));
    const auto path = put("twice.mp3", sound + sound);
    EXPECT_EQ(FrameIndex(path).gaplessLength(), support::decode(path, Judge::Ffmpeg).length());
}

TEST_F(FrameIndexTest, VbriFrameHoldsNoSound) {
    const Bytes sound = support::readBytes(make("v.mp3", {u"-t"_s, u"-V4"_s}));
    const FrameIndex index(put("vbri.mp3", support::vbriFrame() + sound));
    ASSERT_TRUE(index.info());
    EXPECT_EQ(index.info()->kind, audio::mpeg::InfoTag::Kind::Vbri);
    EXPECT_EQ(index.info()->frames, 0x57U);
    EXPECT_EQ(index.info()->quality, 75U);
    EXPECT_EQ(index.infoFrame().size, 417);
    EXPECT_EQ(index.gaplessStart(), 0);
    EXPECT_EQ(index.frameCount(), FrameIndex(folder_ / "v.mp3").frameCount());
}

TEST_F(FrameIndexTest, WhatHoldsNoSoundIsRefusedByName) {
    for (const Bytes& bytes :
         {Bytes(), Bytes(100000, 0), Bytes(100000, 0xFF), id3v2(4000), support::bytesOf("RIFF")}) {
        const auto path = put("none.mp3", bytes);
        try {
            FrameIndex index(path);
            ADD_FAILURE() << "accepted";
        } catch (const platform::Error& error) {
            EXPECT_NE(std::string(error.what()).find(path.string()), std::string::npos);
        }
    }
    EXPECT_THROW(FrameIndex(folder_ / "missing.mp3"), platform::Error);
}

TEST_F(FrameIndexTest, ScannerReadsNoFurtherThanAsked) {
    const auto path = make("plain.mp3", {u"-b"_s, u"128"_s});
    const FrameIndex index(path);
    platform::file::WindowReader reader(path);
    audio::mpeg::FrameScanner scanner(reader);
    ASSERT_TRUE(scanner.next());
    for (std::int64_t i = 0; i < index.frameCount(); ++i) {
        const auto frame = scanner.next();
        ASSERT_TRUE(frame);
        EXPECT_EQ(frame->offset, index.frame(i).offset);
        EXPECT_EQ(scanner.position(), index.frame(i).end());
    }
    EXPECT_FALSE(scanner.next());
}
