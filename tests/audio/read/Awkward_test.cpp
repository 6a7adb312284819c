// SPDX-License-Identifier: GPL-3.0-or-later
// Files that are broken, cut, lie about themselves, or are no sound at all.
#include <algorithm>
#include <array>
#include <fstream>
#include <random>
#include <sys/stat.h>
#include <thread>

#include <gtest/gtest.h>

#include "audio/read/Decoder.h"
#include "platform/Error.h"
#include "tests/audio/read/Reading.h"
#include "tests/support/Fixtures.h"
#include "tests/support/Sound.h"
#include "tests/support/TempFolder.h"

namespace {

using audio::Codec;
using audio::Container;
using audio::read::Decoder;
using Bytes = std::vector<std::byte>;

Bytes bytesOf(const std::string& text) {
    Bytes bytes;
    for (const char letter : text) bytes.push_back(std::byte(letter));
    return bytes;
}

class Awkward : public testing::Test {
  protected:
    /// What the decoder says against a file; empty where it takes it.
    static std::string refusal(const std::filesystem::path& file) {
        try {
            Decoder decoder(file);
        } catch (const platform::Error& error) {
            EXPECT_NE(std::string(error.what()).find(file.filename().string()), std::string::npos)
                << error.what();
            return error.what();
        }
        return {};
    }

    std::filesystem::path save(const std::string& name, const Bytes& bytes) {
        support::writeBytes(folder_ / name, bytes);
        return folder_ / name;
    }

    support::TempFolder folder_;
};

TEST_F(Awkward, WhatIsNoSoundIsRefusedByName) {
    EXPECT_NE(refusal(folder_ / "missing.mp3").find("does not exist"), std::string::npos);
    EXPECT_NE(refusal(folder_.path()).find("is not a regular file"), std::string::npos);
    EXPECT_NE(refusal(save("empty.mp3", {})).find("is empty"), std::string::npos);
    for (const char* name : {"text.mp3", "text.ogg", "text.txt", "text.wav"})
        EXPECT_NE(refusal(save(name, bytesOf("This is a letter and not a song.\n"))), "") << name;
    EXPECT_NE(refusal(save("page.mp3", bytesOf("<!DOCTYPE html><html><body>404</body></html>"))),
              "");
    EXPECT_NE(refusal(save("zeros.mp3", Bytes(1 << 20))), "");
    EXPECT_NE(refusal(save("zeros.wma", Bytes(1 << 20))), "");
    EXPECT_NE(refusal(save("riff.wav", bytesOf("RIFF"))), "");
}

TEST_F(Awkward, APipeIsRefusedInsteadOfWaitedFor) {
    ASSERT_EQ(mkfifo((folder_ / "pipe.mp3").c_str(), 0600), 0);
    EXPECT_NE(refusal(folder_ / "pipe.mp3").find("is not a regular file"), std::string::npos);
    EXPECT_NE(refusal("/dev/zero").find("is not a regular file"), std::string::npos);
}

TEST_F(Awkward, PlaylistsAndScriptsAreNeverFollowed) {
    const std::string victim = support::fixture("tone.wav").string();
    const std::string playlist =
        "#EXTM3U\n#EXT-X-TARGETDURATION:10\n#EXTINF:2,\n" + victim + "\n#EXT-X-ENDLIST\n";
    const std::string script = "ffconcat version 1.0\nfile '" + victim + "'\n";
    const std::string sdp =
        "v=0\no=- 0 0 IN IP4 127.0.0.1\nc=IN IP4 127.0.0.1\nm=audio 5004 RTP/AVP 0\n";
    for (const char* name : {"a.m3u8", "a.mp3", "a.ogg", "a.ffconcat", "a.sdp", "a.txt", "a.wav"})
        for (const std::string& text :
             {playlist, script, sdp, victim, "http://localhost:1/a.mp3\n" + victim})
            EXPECT_NE(refusal(save(name, bytesOf(text))), "") << name << ": " << text;
    EXPECT_NE(refusal("http://localhost:1/a.mp3"), "");
    EXPECT_NE(refusal("concat:" + victim), "");
}

TEST_F(Awkward, AnyNameIsANameAndNoAddress) {
    for (const char* name :
         {"concat:a|b.wav", "http:x.wav", "file:y.wav", "q'uo\"te.wav", "per%20cent.wav",
          "späce ünï 音楽.wav", "-dash.wav", "sub,file,,.wav", "pipe:0"}) {
        for (const char* from : {"tone.wav", "tone.flac", "tone.mp3", "chained.ogg"}) {
            const auto file = support::scratchCopy(from, folder_.path(), name);
            EXPECT_GT(Decoder(file).frames(), 0) << name;
        }
    }
}

TEST_F(Awkward, AWrongExtensionDoesNotMatter) {
    for (const char* from :
         {"tone.mp3", "tone.ogg", "tone.wma", "tone.flac", "tone.mp2", "tone.wav"})
        for (const char* name : {"a.wav", "a.mp3", "a.ogg", "a", "a.tmp"}) {
            const auto file = support::scratchCopy(from, folder_.path(), name);
            EXPECT_EQ(Decoder(file).format().codecName,
                      Decoder(support::fixture(from)).format().codecName)
                << from << " as " << name;
        }
}

TEST_F(Awkward, ChainedOggIsOneSound) {
    Decoder decoder(support::fixture("chained.ogg"));
    EXPECT_TRUE(decoder.contents().chained);
    EXPECT_EQ(decoder.frames(), 88'200 + 882'000);
    const std::vector<float> all = reading::readAll(decoder);
    std::vector<float> parts = reading::readAll(support::fixture("tone.ogg"));
    const std::vector<float> second = reading::readAll(support::fixture("music.ogg"));
    parts.insert(parts.end(), second.begin(), second.end());
    EXPECT_EQ(support::maxDifference(all, parts), 0);
    std::mt19937 random(5);
    std::vector<float> block(600);
    for (int i = 0; i < 60; ++i) {
        const std::size_t target = i % 3 == 0 ? 88'100 + random() % 200 : random() % 970'000;
        decoder.seek(std::int64_t(target));
        const std::size_t got = decoder.read(block.data(), 200);
        ASSERT_EQ(got, std::min<std::size_t>(200, 970'200 - target));
        const auto first = all.begin() + std::ptrdiff_t(2 * target);
        ASSERT_TRUE(std::equal(first, first + std::ptrdiff_t(2 * got), block.begin())) << target;
    }
}

// What a link holds is looked at when its sound is wanted, not before.
TEST_F(Awkward, ALinkOfAChainIsOpenedWhenItIsNeeded) {
    const auto link = support::readBytes(support::fixture("tone.ogg"));
    const std::int64_t frames = Decoder(support::fixture("tone.ogg")).frames();
    auto bytes = link;
    bytes.insert(bytes.end(), link.begin(), link.end());
    // The second page of the second link holds its set-up, without which it cannot be opened.
    const auto begins = [&](std::size_t from) {
        constexpr std::array capture = {std::byte{'O'}, std::byte{'g'}, std::byte{'g'},
                                        std::byte{'S'}};
        const auto at = bytes.begin() + static_cast<std::ptrdiff_t>(from);
        return std::search(at, bytes.end(), capture.begin(), capture.end());
    };
    const auto setUp = begins(link.size() + 1);
    std::fill(setUp + 60, begins(std::size_t(setUp - bytes.begin()) + 1), std::byte{0});
    const auto file = folder_ / "chain.ogg";
    support::writeBytes(file, bytes);
    Decoder decoder(file);
    EXPECT_TRUE(decoder.contents().chained);
    const auto channels = static_cast<std::size_t>(decoder.format().channels);
    std::vector<float> sound(static_cast<std::size_t>(frames) * channels);
    EXPECT_EQ(decoder.read(sound.data(), static_cast<std::size_t>(frames)),
              static_cast<std::size_t>(frames));
    EXPECT_EQ(support::maxDifference(sound, reading::readAll(support::fixture("tone.ogg"))), 0);
    EXPECT_THROW(decoder.read(sound.data(), 1), platform::Error);
}

TEST_F(Awkward, ChainOfDifferentRatesIsRefused) {
    EXPECT_NE(refusal(support::fixture("chained-rates.ogg")).find("different rates"),
              std::string::npos);
}

TEST_F(Awkward, MultiplexedOggGivesItsSound) {
    const auto file = folder_ / "both.ogg";
    const auto outcome = support::run(
        QStringLiteral("ffmpeg"),
        {QStringLiteral("-v"), QStringLiteral("error"), QStringLiteral("-f"),
         QStringLiteral("lavfi"), QStringLiteral("-i"), QStringLiteral("testsrc=s=64x64:d=2"),
         QStringLiteral("-i"), QString::fromStdString(support::fixture("music.ogg").string()),
         QStringLiteral("-c:a"), QStringLiteral("copy"), QStringLiteral("-c:v"),
         QStringLiteral("libtheora"), QString::fromStdString(file.string())});
    ASSERT_EQ(outcome.exitCode, 0) << outcome.err.toStdString();
    Decoder decoder(file);
    EXPECT_EQ(decoder.contents().otherStreams, 1);
    EXPECT_FALSE(decoder.contents().chained);
    EXPECT_EQ(support::maxDifference(reading::readAll(decoder),
                                     reading::readAll(support::fixture("music.ogg"))),
              0);
}

TEST_F(Awkward, JunkBeforeAndBehindMpegSound) {
    const Bytes sound = support::readBytes(support::fixture("tone.mp3"));
    Bytes wrapped(20'000, std::byte{0x55});
    wrapped.insert(wrapped.end(), sound.begin(), sound.end());
    wrapped.insert(wrapped.end(), 5'000, std::byte{0x33});
    const auto file = save("wrapped.mp3", wrapped);
    EXPECT_EQ(Decoder(file).frames(), 88'200);
    EXPECT_EQ(support::maxDifference(reading::readAll(file),
                                     reading::readAll(support::fixture("tone.mp3"))),
              0);
}

TEST_F(Awkward, ALastFrameCutIsHeardAsOtherDecodersHearIt) {
    Bytes sound = support::readBytes(support::fixture("tone-untagged.mp3"));
    const std::vector<float> whole = reading::readAll(support::fixture("tone-untagged.mp3"));
    sound.resize(sound.size() - 100);
    const std::filesystem::path file = save("cut.mp3", sound);
    const std::vector<float> cut = reading::readAll(file);
    ASSERT_EQ(cut.size(), support::decodeWithFfmpeg(file).samples.size());
    EXPECT_TRUE(std::equal(cut.begin(), cut.end() - 2 * 1'152, whole.begin()));
}

TEST_F(Awkward, TwoMpegFilesInOneAreHeardToTheEnd) {
    Bytes both = support::readBytes(support::fixture("tone.mp3"));
    const Bytes second = support::readBytes(support::fixture("tone-untagged.mp3"));
    both.insert(both.end(), second.begin(), second.end());
    Decoder decoder(save("both.mp3", both));
    EXPECT_GT(decoder.frames(), 88'200 + 89'000);
    EXPECT_EQ(std::int64_t(reading::readAll(decoder).size()), 2 * decoder.frames());
}

struct Broken {
    const char* name;
    bool cutStaysReadable = true;
};
std::ostream& operator<<(std::ostream& stream, const Broken& file) {
    return stream << file.name;
}

class EveryBroken : public testing::TestWithParam<Broken> {
  protected:
    support::TempFolder folder_;
};

TEST_P(EveryBroken, CutFileEndsCleanly) {
    const Bytes whole = support::readBytes(support::fixture(GetParam().name));
    const std::vector<float> sound = reading::readAll(support::fixture(GetParam().name));
    for (const double share : {0.9, 0.51, 0.2}) {
        const auto file = folder_ / "cut";
        support::writeBytes(
            file, {whole.begin(), whole.begin() + std::ptrdiff_t(double(whole.size()) * share)});
        try {
            const std::vector<float> cut = reading::readAll(file);
            Decoder decoder(file);
            const auto channels = std::size_t(decoder.format().channels);
            EXPECT_EQ(decoder.frames(), std::int64_t(cut.size() / channels)) << share;
            EXPECT_LE(cut.size(), sound.size());
            EXPECT_GE(double(cut.size()), (share - 0.15) * double(sound.size())) << share;
            const std::size_t same = cut.size() - std::min(cut.size(), 8'192 * channels);
            EXPECT_TRUE(std::equal(cut.begin(), cut.begin() + std::ptrdiff_t(same), sound.begin()))
                << share;
            decoder.seek(decoder.frames() - 500);
            std::vector<float> end(600 * channels);
            EXPECT_EQ(decoder.read(end.data(), 600), 500U) << share;
        } catch (const platform::Error& error) {
            EXPECT_FALSE(GetParam().cutStaysReadable) << error.what();
        }
    }
}

// A damaged stretch is heard as such, has its own length, and moves nothing that follows it.
TEST_P(EveryBroken, DamageInTheMiddleMovesNothing) {
    Bytes bytes = support::readBytes(support::fixture(GetParam().name));
    const std::vector<float> sound = reading::readAll(support::fixture(GetParam().name));
    std::mt19937 random(11);
    const std::size_t middle = bytes.size() * 9 / 20;
    for (std::size_t i = 0; i < 1'500; ++i) bytes[middle + i] = std::byte(random() & 0xFF);
    const auto file = folder_ / "damaged";
    support::writeBytes(file, bytes);
    Decoder decoder(file);
    const std::int64_t frames = decoder.frames();
    EXPECT_EQ(frames * decoder.format().channels, std::int64_t(sound.size()));
    const std::vector<float> ours = reading::readAll(decoder);
    ASSERT_EQ(ours.size(), sound.size());
    const std::size_t from = sound.size() * 3 / 5 / 2 * 2;
    EXPECT_TRUE(std::equal(ours.begin() + std::ptrdiff_t(from), ours.end(),
                           sound.begin() + std::ptrdiff_t(from)));
    EXPECT_TRUE(
        std::equal(sound.begin(), sound.begin() + std::ptrdiff_t(sound.size() / 3), ours.begin()));
}

INSTANTIATE_TEST_SUITE_P(Codec, EveryBroken,
                         testing::Values(Broken{"music.mp3"}, Broken{"music-vbr.mp3"},
                                         Broken{"music.mp2"}, Broken{"music.ogg"},
                                         Broken{"music.wma"}, Broken{"music.flac"},
                                         Broken{"music.wav"}, Broken{"tone-rf64.wav"}),
                         [](const testing::TestParamInfo<Broken>& param) {
                             std::string name = param.param.name;
                             for (char& letter : name)
                                 if (!std::isalnum(static_cast<unsigned char>(letter)))
                                     letter = '_';
                             return name;
                         });

// Whatever the bytes say: an answer in reasonable time, of a length that is kept, or a sentence.
TEST_F(Awkward, MutatedFilesNeitherCrashNorHang) {
    std::mt19937 random(23);
    int readable = 0;
    for (const char* name :
         {"tone.mp3", "tone-vbr.mp3", "tone.mp2", "tone.ogg", "tone.wma", "tone.flac", "tone.m4a",
          "tone.opus", "tone-adpcm.wav", "tone-6ch.wav", "tone.aiff", "tone.wv"}) {
        const Bytes good = support::readBytes(support::fixture(name));
        for (int i = 0; i < 12; ++i) {
            Bytes bytes = good;
            const std::size_t reach =
                i % 2 == 0 ? std::min<std::size_t>(bytes.size(), 600) : bytes.size();
            for (unsigned flips = random() % 40 + 1; flips > 0; --flips)
                bytes[random() % reach] = std::byte(random() & 0xFF);
            if (i % 5 == 0) bytes.resize(bytes.size() - random() % bytes.size());
            const auto file = save("mutated", bytes);
            try {
                Decoder decoder(file);
                const std::int64_t frames = decoder.frames();
                std::vector<float> block(std::size_t(decoder.format().channels) * 1'000);
                decoder.seek(frames / 2);
                decoder.read(block.data(), 1'000);
                decoder.seek(0);
                const std::size_t read = reading::readAll(decoder).size();
                EXPECT_EQ(std::int64_t(read), frames * decoder.format().channels)
                    << name << " " << i;
                ++readable;
            } catch (const platform::Error&) {
            }
        }
    }
    EXPECT_GT(readable, 40);
}

TEST_F(Awkward, DifferentDecodersRunSideBySide) {
    const std::vector<float> mp3 = reading::readAll(support::fixture("music.mp3"));
    const std::vector<float> ogg = reading::readAll(support::fixture("music.ogg"));
    std::vector<std::vector<float>> results(6);
    std::vector<std::thread> threads;
    for (std::size_t i = 0; i < results.size(); ++i)
        threads.emplace_back([i, &results] {
            results[i] = reading::readAll(support::fixture(i % 2 == 0 ? "music.mp3" : "music.ogg"));
        });
    for (std::thread& thread : threads) thread.join();
    for (std::size_t i = 0; i < results.size(); ++i)
        EXPECT_EQ(support::maxDifference(results[i], i % 2 == 0 ? mp3 : ogg), 0) << i;
}

#ifndef __SANITIZE_ADDRESS__  // which keeps freed memory, and finds leaks by itself
// What is read has to be given back, however long the file is.
TEST_F(Awkward, MemoryDoesNotGrowWithTheSound) {
    const auto resident = [] {
        std::ifstream status("/proc/self/statm");
        long total = 0;
        long pages = 0;
        status >> total >> pages;
        return pages * 4'096;
    };
    for (const char* name : {"music.mp3", "music.ogg", "music.wma", "music.flac", "music.wav"}) {
        Decoder decoder(support::fixture(name));
        std::vector<float> block(2 * 8'192);
        const auto playThrough = [&] {
            decoder.seek(0);
            while (decoder.read(block.data(), 8'192) > 0) continue;
        };
        playThrough();
        const long before = resident();
        for (int i = 0; i < 15; ++i) playThrough();
        EXPECT_LT(resident() - before, 4'000'000) << name;
    }
}
#endif

TEST_F(Awkward, RawBytesAreThoseOfTheFile) {
    for (const char* name :
         {"tone.wav", "tone-u8.wav", "tone-s24.wav", "tone-s32.wav", "tone-f64.wav"}) {
        Decoder decoder(support::fixture(name));
        ASSERT_TRUE(decoder.hasPcm());
        const auto width = std::size_t(audio::pcm::bytesPerSample(decoder.format().sampleType)) * 2;
        Bytes bytes(88'200 * width);
        decoder.seek(1'000);
        EXPECT_EQ(decoder.readPcm(bytes.data(), 500), 500U);
        EXPECT_EQ(decoder.position(), 1'500);
        EXPECT_EQ(decoder.readPcm(bytes.data() + 500 * width, 90'000), 88'200U - 1'500U);
        const Bytes file = support::readBytes(support::fixture(name));
        bytes.resize((88'200 - 1'000) * width);
        EXPECT_NE(std::search(file.begin(), file.end(), bytes.begin(), bytes.end()), file.end())
            << name;
    }
    Decoder lossy(support::fixture("tone.mp3"));
    EXPECT_FALSE(lossy.hasPcm());
    std::byte byte{};
    EXPECT_THROW(lossy.readPcm(&byte, 1), platform::Error);
}

TEST_F(Awkward, FormatsAreDescribedAsTheyAre) {
    const auto mp3 = Decoder(support::fixture("tone-vbr.mp3")).format();
    EXPECT_EQ(mp3.container, Container::Mpeg);
    EXPECT_EQ(mp3.codec, Codec::Mp3);
    EXPECT_TRUE(mp3.variableBitRate);
    EXPECT_DOUBLE_EQ(mp3.quality, 2);
    const auto constant = Decoder(support::fixture("tone-320.mp3")).format();
    EXPECT_FALSE(constant.variableBitRate);
    EXPECT_EQ(constant.bitRate, 320'000);
    const auto average = Decoder(support::fixture("music-abr.mp3")).format();
    EXPECT_TRUE(average.variableBitRate);
    EXPECT_LT(average.quality, 0);
    EXPECT_NEAR(double(average.bitRate), 130'000, 20'000);
    const auto vorbis = Decoder(support::fixture("tone.ogg")).format();
    EXPECT_EQ(vorbis.container, Container::Ogg);
    EXPECT_EQ(vorbis.codec, Codec::Vorbis);
    EXPECT_EQ(vorbis.bitRate, 128'000);
    const auto wma = Decoder(support::fixture("tone-v1.wma")).format();
    EXPECT_EQ(wma.container, Container::Asf);
    EXPECT_EQ(wma.codec, Codec::Wma);
    EXPECT_EQ(wma.codecName, "wmav1");
    const auto flac = Decoder(support::fixture("tone.flac")).format();
    EXPECT_EQ(flac.codec, Codec::Other);
    EXPECT_EQ(flac.codecName, "flac");
    EXPECT_EQ(flac.bitsPerSample, 16);
    const auto six = Decoder(support::fixture("tone-6ch.wav")).format();
    EXPECT_EQ(six.channelMask, 0x3FU);
    EXPECT_EQ(six.codec, Codec::Pcm);
}

}  // namespace
