// SPDX-License-Identifier: GPL-3.0-or-later
// Ogg Vorbis that several encoders made, as ffmpeg's decoder, oggdec (libvorbis) and libogg see it:
// its length, its granule positions, and whether anything is to be heard where two encoders meet.
#include <algorithm>
#include <cmath>
#include <cstring>
#include <functional>
#include <ogg/ogg.h>
#include <random>
#include <thread>

#include <gtest/gtest.h>

#include "audio/read/Decoder.h"
#include "audio/write/VorbisSink.h"
#include "platform/Error.h"
#include "platform/Paths.h"
#include "tests/support/FileSizeLimit.h"
#include "tests/support/Fixtures.h"
#include "tests/support/Sound.h"
#include "tests/support/TempFolder.h"

using namespace Qt::Literals::StringLiterals;

namespace {

using namespace audio;
using audio::read::Decoder;
using namespace audio::vorbis;
using namespace audio::write;

constexpr double pi = 3.14159265358979;
// Small, so that a short sound has many seams.
constexpr std::int64_t chunk = 70'000;

Format vorbis(int channels, int rate, int kbps) {
    Format format;
    format.container = Container::Ogg;
    format.containerName = "ogg";
    format.codec = Codec::Vorbis;
    format.codecName = "vorbis";
    format.sampleRate = rate;
    format.channels = channels;
    format.bitRate = std::int64_t{1'000} * kbps;
    return format;
}

using Voice = std::function<double(std::size_t frame, int channel)>;

support::Sound soundOf(const Voice& voice, std::size_t frames, int channels, int rate) {
    support::Sound sound{{}, rate, channels};
    for (std::size_t i = 0; i < frames; ++i)
        for (int channel = 0; channel < channels; ++channel)
            sound.samples.push_back(static_cast<float>(voice(i, channel)));
    return sound;
}

double tone(double hertz, std::size_t frame) {
    return std::sin(2 * pi * hertz / 44'100 * static_cast<double>(frame));
}

Voice sine() {
    return [](std::size_t i, int channel) { return 0.5 * tone(440 + 220 * channel, i); };
}

// One attack moves all long blocks that come after it off the places of a fresh start.
Voice sineAfterClick() {
    return [](std::size_t i, int) { return i / 20 == 1'000 ? 0.95 : 0.5 * tone(440, i); };
}

Voice noise() {
    return [random = std::mt19937(7)](std::size_t, int) mutable {
        return static_cast<double>(random()) / 4294967296.0 - 0.5;
    };
}

Voice silence() {
    return [](std::size_t, int) { return 0.0; };
}

Voice clicks() {
    return [](std::size_t i, int) { return i % 7'919 < 4 ? 0.9 : 0.0; };
}

// Struck notes at uneven times: they ring, and every one is an attack.
Voice music() {
    return [](std::size_t i, int channel) {
        double sum = 0;
        for (const std::size_t period : {17'231U, 29'989U, 46'457U}) {
            const double since = static_cast<double>(i % period);
            const double hertz = 110 * static_cast<double>(1 + (i / period) % 7 + period % 3);
            sum += std::exp(-since / 9'000) * (tone(hertz, i) + 0.4 * tone(2.01 * hertz, i));
        }
        return sum * (channel == 0 ? 0.2 : 0.15);
    };
}

// Steady but rich, with one attack near the start, so that nothing brings encoders into step.
Voice organ() {
    return [](std::size_t i, int) {
        double sum = i / 10 == 3'000 ? 3 : 0;
        for (int k = 1; k < 9; ++k) sum += tone(110.7 * k, i) / k;
        return 0.2 * sum;
    };
}

struct Packets {
    std::vector<std::string> bytes;
    std::vector<std::int64_t> granules;  ///< at the ends of pages, -1 elsewhere
    bool ended = false;
};

// What libogg finds in a file; its checksums must be right.
Packets packetsOf(const std::filesystem::path& file) {
    const std::vector<std::byte> bytes = support::readBytes(file);
    ogg_sync_state sync{};
    ogg_stream_state stream{};
    ogg_sync_init(&sync);
    std::memcpy(ogg_sync_buffer(&sync, static_cast<long>(bytes.size())), bytes.data(),
                bytes.size());
    ogg_sync_wrote(&sync, static_cast<long>(bytes.size()));
    Packets found;
    ogg_page page{};
    for (bool begun = false; ogg_sync_pageout(&sync, &page) == 1; begun = true) {
        if (!begun) ogg_stream_init(&stream, ogg_page_serialno(&page));
        EXPECT_EQ(ogg_stream_pagein(&stream, &page), 0);
        ogg_packet packet{};
        while (ogg_stream_packetout(&stream, &packet) == 1) {
            found.bytes.emplace_back(reinterpret_cast<char*>(packet.packet), packet.bytes);
            found.granules.push_back(packet.granulepos);
            found.ended = packet.e_o_s != 0;
        }
    }
    ogg_stream_clear(&stream);
    ogg_sync_clear(&sync);
    return found;
}

// Granule positions must be the sums of the overlaps (Vorbis I, section 1.3.2 and A.2), which
// follow from the sizes of the blocks; the last cuts off what is too much.
void expectExactGranules(const std::filesystem::path& file, std::int64_t frames) {
    const Packets packets = packetsOf(file);
    ASSERT_GT(packets.bytes.size(), 4U);
    EXPECT_TRUE(packets.ended);
    const auto sizes = static_cast<unsigned char>(packets.bytes[0][28]);
    const std::int64_t shortBlock = 1 << (sizes & 15);
    const std::int64_t longBlock = 1 << (sizes >> 4);
    std::int64_t sum = 0;
    std::int64_t previous = 0;
    for (std::size_t i = 3; i < packets.bytes.size(); ++i) {
        // With two modes, as libvorbis sets up, the second bit of a packet is the mode: the size.
        const bool isLong = shortBlock != longBlock && (packets.bytes[i][0] & 2) != 0;
        const std::int64_t size = isLong ? longBlock : shortBlock;
        // A long block also tells the sizes of its neighbours, in the third and fourth bit.
        if (isLong && i > 3) {
            EXPECT_EQ((packets.bytes[i][0] & 4) != 0, previous == longBlock) << i;
        }
        if (previous != 0) sum += (previous + size) / 4;
        previous = size;
        if (packets.granules[i] < 0) continue;
        EXPECT_EQ(packets.granules[i], std::min(sum, frames)) << "packet " << i;
    }
    EXPECT_EQ(packets.granules.back(), frames);
}

support::Sound decodeWithOggdec(const std::filesystem::path& file, const support::Sound& like) {
    const auto decoded = support::run(u"oggdec"_s, {u"-Q"_s, u"-R"_s, u"-b"_s, u"16"_s, u"-o"_s,
                                                    u"-"_s, platform::toQString(file)});
    EXPECT_EQ(decoded.exitCode, 0) << decoded.err.toStdString();
    support::Sound sound{{}, like.rate, like.channels};
    for (qsizetype i = 0; i + 1 < decoded.out.size(); i += 2) {
        std::int16_t value = 0;
        std::memcpy(&value, decoded.out.data() + i, 2);
        sound.samples.push_back(static_cast<float>(value) / 32'768);
    }
    return sound;
}

// Energy of the error over some frames, per sample.
double errorIn(const support::Sound& original, const support::Sound& decoded, std::int64_t from,
               std::int64_t end) {
    const std::int64_t last = std::min(end, static_cast<std::int64_t>(original.frames()));
    const std::int64_t first = std::max<std::int64_t>(from, 0);
    double sum = 0;
    for (std::int64_t i = first * original.channels; i < last * original.channels; ++i) {
        const auto at = static_cast<std::size_t>(i);
        sum += std::pow(double(original.samples[at]) - double(decoded.samples[at]), 2);
    }
    return sum / static_cast<double>(std::max<std::int64_t>((last - first) * original.channels, 1));
}

// By how many dB the error around a place is above that of another decoding in the same place. The
// tenth of a step of 16 bits is what is never told apart.
double excessAt(std::int64_t place, const support::Sound& original, const support::Sound& decoded,
                const support::Sound& reference) {
    constexpr std::int64_t reach = 2'048;
    const double floor = 1e-11;
    const double here = errorIn(original, decoded, place - reach, place + reach);
    const double there = errorIn(original, reference, place - reach, place + reach);
    return 10 * std::log10((here + floor) / (there + floor));
}

class VorbisTest : public testing::Test {
  protected:
    // Returns how many chunks were done again behind the one before.
    static int encode(const std::filesystem::path& file, const Format& format,
                      const support::Sound& sound, const VorbisChunking& chunking,
                      std::size_t piece = 16'384) {
        EncoderOptions options;
        options.expectedFrames = static_cast<std::int64_t>(sound.frames());
        VorbisSink sink(file, format, options, chunking);
        for (std::size_t at = 0; at < sound.frames(); at += piece)
            sink.write(sound.samples.data() + at * std::size_t(sound.channels),
                       std::min(piece, sound.frames() - at));
        sink.finish();
        return sink.chunksDoneAgain();
    }

    static VorbisChunking inChunks(int threads = 2, std::int64_t frames = chunk) {
        VorbisChunking chunking;
        chunking.threads = threads;
        chunking.chunkFrames = frames;
        return chunking;
    }
    static VorbisChunking atOnce() { return inChunks(1, std::int64_t{1} << 40); }

    // Encodes both ways, and lets both judges look at the seams.
    void expectNoSeam(const Format& format, const support::Sound& sound) {
        encode(joined(), format, sound, inChunks());
        encode(single(), format, sound, atOnce());
        expectExactGranules(joined(), static_cast<std::int64_t>(sound.frames()));
        const auto complaints =
            support::run(u"ffmpeg"_s, {u"-v"_s, u"warning"_s, u"-nostdin"_s, u"-i"_s,
                                       platform::toQString(joined()), u"-f"_s, u"null"_s, u"-"_s});
        EXPECT_EQ(complaints.err.toStdString(), "");
        expectSoundLike(support::decodeWithFfmpeg(joined()), support::decodeWithFfmpeg(single()),
                        sound);
        if (format.channels > 2) return;  // oggdec writes them in the order of Vorbis
        expectSoundLike(decodeWithOggdec(joined(), sound), decodeWithOggdec(single(), sound),
                        sound);
    }

    static void expectSoundLike(const support::Sound& decoded, const support::Sound& reference,
                                const support::Sound& sound) {
        ASSERT_EQ(decoded.frames(), sound.frames());
        ASSERT_EQ(reference.frames(), sound.frames());
        for (std::int64_t seam = chunk; seam < std::int64_t(sound.frames()); seam += chunk)
            EXPECT_LT(excessAt(seam, sound, decoded, reference), 1) << "at " << seam;
        EXPECT_LT(errorIn(sound, decoded, 0, INT32_MAX),
                  1.05 * errorIn(sound, reference, 0, INT32_MAX) + 1e-11);
    }

    std::filesystem::path joined() const { return folder_ / "joined.ogg"; }
    std::filesystem::path single() const { return folder_ / "single.ogg"; }
    support::TempFolder folder_;
};

TEST_F(VorbisTest, NothingIsHeardWhereEncodersMeet) {
    const std::vector<std::pair<const char*, Voice>> voices = {
        {"sine", sine()},     {"sine after a click", sineAfterClick()},
        {"noise", noise()},   {"silence", silence()},
        {"clicks", clicks()}, {"music", music()},
        {"organ", organ()}};
    for (const auto& [name, voice] : voices) {
        SCOPED_TRACE(name);
        expectNoSeam(vorbis(2, 44'100, 128), soundOf(voice, 250'000, 2, 44'100));
    }
}

TEST_F(VorbisTest, EveryShapeOfSoundMeetsAlike) {
    struct Shape {
        int channels, rate, kbps;
    };
    for (const auto& [channels, rate, kbps] :
         {Shape{1, 8'000, 16}, Shape{2, 8'000, 24}, Shape{1, 11'025, 24}, Shape{1, 16'000, 32},
          Shape{2, 22'050, 48}, Shape{2, 32'000, 64}, Shape{2, 44'100, 45}, Shape{2, 48'000, 400},
          Shape{6, 48'000, 320}, Shape{2, 96'000, 192}}) {
        SCOPED_TRACE(std::to_string(channels) + " channels at " + std::to_string(rate));
        expectNoSeam(vorbis(channels, rate, kbps), soundOf(music(), 180'000, channels, rate));
    }
}

TEST_F(VorbisTest, BytesDependOnNoNumberOfThreadsOrPieces) {
    const Format format = vorbis(2, 44'100, 112);
    const support::Sound sound = soundOf(music(), 500'000, 2, 44'100);
    encode(joined(), format, sound, inChunks(1));
    const auto bytes = support::readBytes(joined());
    for (const int threads : {2, 4, 0}) {
        encode(joined(), format, sound, inChunks(threads), std::size_t(threads) * 1'777 + 333);
        EXPECT_EQ(support::readBytes(joined()), bytes) << threads;
    }
}

TEST_F(VorbisTest, TheEncoderTakesTheNumberOfThreads) {
    const Format format = vorbis(1, 44'100, 80);
    const support::Sound sound = soundOf(music(), 1'200'000, 1, 44'100);
    std::vector<std::vector<std::byte>> files;
    for (const int threads : {1, 3}) {
        EncoderOptions options;
        options.expectedFrames = 1'200'000;
        options.threads = threads;
        Encoder encoder(joined(), format, options);
        encoder.write(sound.samples.data(), sound.frames());
        encoder.finish();
        files.push_back(support::readBytes(joined()));
    }
    EXPECT_EQ(files[0], files[1]);
    EXPECT_EQ(support::decodeWithFfmpeg(joined()).frames(), sound.frames());
}

TEST_F(VorbisTest, PacketsAreThoseOfOneEncoder) {
    const Format format = vorbis(2, 44'100, 160);
    for (const Voice& voice : {music(), organ(), sineAfterClick(), noise()}) {
        const support::Sound sound = soundOf(voice, 400'000, 2, 44'100);
        encode(joined(), format, sound, inChunks());
        encode(single(), format, sound, atOnce());
        const std::vector<std::string> ours = packetsOf(joined()).bytes;
        const std::vector<std::string> theirs = packetsOf(single()).bytes;
        ASSERT_EQ(ours.size(), theirs.size());
        std::size_t differ = 0;
        for (std::size_t i = 0; i < ours.size(); ++i) differ += ours[i] != theirs[i] ? 1 : 0;
        EXPECT_LT(differ, ours.size() / 50);
    }
}

TEST_F(VorbisTest, LengthIsExactAroundTheEndOfAChunk) {
    const Format format = vorbis(1, 44'100, 64);
    const support::Sound all = soundOf(music(), std::size_t(3 * chunk), 1, 44'100);
    std::vector<std::int64_t> lengths = {0, 1, 2, 127, 1'023, 1'025, 2'048, 3'000};
    for (const std::int64_t around : {chunk, 2 * chunk, 2 * chunk + 10'240})
        for (const std::int64_t off : {-1, 0, 1, 100}) lengths.push_back(around + off);
    for (const std::int64_t length : lengths) {
        SCOPED_TRACE(length);
        const support::Sound sound = all.part(0, std::size_t(length));
        encode(joined(), format, sound, inChunks());
        if (length == 0) continue;  // a file without sound: that it is written is enough
        EXPECT_EQ(support::decodeWithFfmpeg(joined()).frames(), sound.frames());
        EXPECT_EQ(decodeWithOggdec(joined(), sound).frames(), sound.frames());
        if (length > 4'096) expectExactGranules(joined(), length);
    }
}

// Without a place to begin that falls into step, the encoder before does the chunk again.
TEST_F(VorbisTest, WhereNoStartFitsTheEncoderBeforeCarriesOn) {
    const Format format = vorbis(2, 44'100, 128);
    const support::Sound sound = soundOf(organ(), 600'000, 2, 44'100);
    VorbisChunking hopeless = inChunks();
    hopeless.tries = 0;
    EXPECT_GE(encode(joined(), format, sound, hopeless), 4);
    encode(single(), format, sound, atOnce());
    EXPECT_EQ(packetsOf(joined()).bytes, packetsOf(single()).bytes);
    expectExactGranules(joined(), 600'000);
}

// The measure itself: a seam whose windows do not match is far above what the others stay below.
TEST_F(VorbisTest, ASeamWithWindowsThatDoNotMatchWouldBeSeen) {
    const Format format = vorbis(2, 44'100, 128);
    const support::Sound sound = soundOf(music(), 200'000, 2, 44'100);
    const auto encoded = [&](std::int64_t start) {
        PlanarSound planar;
        planar.complete = true;
        planar.planes.resize(2);
        for (std::size_t i = 0; i < sound.samples.size(); ++i)
            planar.planes[i % 2].push_back(sound.samples[i]);
        VorbisEncoder encoder(joined(), format, start);
        std::vector<VorbisPacket> packets;
        VorbisBlock block;
        while (encoder.next(planar, block)) packets.push_back({block, encoder.packet()});
        return packets;
    };
    const std::vector<VorbisPacket> left = encoded(0);
    const auto seam = std::find_if(left.begin(), left.end(), [](const VorbisPacket& packet) {
        return packet.block.centre > 120'000 && packet.block.isLong && packet.block.nextIsLong;
    });
    ASSERT_NE(seam, left.end());
    std::vector<VorbisPacket> right = encoded((seam->block.nextCentre - 2'048) / 128 * 128);
    right.erase(right.begin(), std::find_if(right.begin(), right.end(), [&](const auto& packet) {
                    return packet.block.centre > seam->block.centre &&
                           !packet.block.follows(seam->block);
                }));
    ASSERT_FALSE(right.empty());

    const auto written = [&](std::vector<VorbisPacket> packets) {
        encode(joined(), format, sound, atOnce());
        Packets headers = packetsOf(joined());
        ogg_stream_state stream{};
        ogg_stream_init(&stream, 1);
        std::vector<std::byte> file;
        const auto put = [&](const void* bytes, std::size_t size, std::int64_t granule,
                             long number) {
            ogg_packet packet{};
            std::vector<unsigned char> copy(static_cast<const unsigned char*>(bytes),
                                            static_cast<const unsigned char*>(bytes) + size);
            packet.packet = copy.data();
            packet.bytes = static_cast<long>(size);
            packet.b_o_s = number == 0 ? 1 : 0;
            packet.granulepos = granule;
            packet.e_o_s = granule == 200'000 ? 1 : 0;
            packet.packetno = number;
            ogg_stream_packetin(&stream, &packet);
            ogg_page page{};
            while (ogg_stream_flush(&stream, &page) != 0) {
                const auto* header = reinterpret_cast<const std::byte*>(page.header);
                const auto* body = reinterpret_cast<const std::byte*>(page.body);
                file.insert(file.end(), header, header + page.header_len);
                file.insert(file.end(), body, body + page.body_len);
            }
        };
        long number = 0;
        for (; number < 3; ++number) {
            const std::string& header = headers.bytes[std::size_t(number)];
            put(header.data(), header.size(), 0, number);
        }
        for (const VorbisPacket& packet : packets)
            put(packet.bytes.data(), packet.bytes.size(),
                std::min<std::int64_t>(packet.block.centre, 200'000), number++);
        ogg_stream_clear(&stream);
        support::writeBytes(joined(), file);
        return support::decodeWithFfmpeg(joined());
    };
    const support::Sound good = written(left);
    std::vector<VorbisPacket> bad(left.begin(), seam + 1);
    bad.insert(bad.end(), right.begin(), right.end());
    support::Sound wrong = written(bad);
    wrong.samples.resize(sound.samples.size());
    ASSERT_EQ(good.frames(), sound.frames());
    EXPECT_GT(excessAt(seam->block.centre, sound, wrong, good), 6);
}

TEST_F(VorbisTest, AnUnfinishedFileCanBeLeft) {
    const support::Sound sound = soundOf(noise(), 600'000, 2, 44'100);
    for (int i = 0; i < 3; ++i) {
        VorbisSink sink(joined(), vorbis(2, 44'100, 128), {}, inChunks(4));
        sink.write(sound.samples.data(), sound.frames());
    }
    EXPECT_TRUE(std::filesystem::exists(joined()));
}

TEST_F(VorbisTest, AFullDiskNamesTheFile) {
    const support::Sound sound = soundOf(noise(), 600'000, 2, 44'100);
    try {
        const support::FileSizeLimit full(50'000);
        encode(joined(), vorbis(2, 44'100, 128), sound, inChunks());
        FAIL() << "it was written";
    } catch (const platform::Error& error) {
        EXPECT_NE(std::string(error.what()).find(joined().string()), std::string::npos)
            << error.what();
    }
}

TEST_F(VorbisTest, ChunksAreFewEnoughForMemoryAndManyEnoughForCores) {
    for (const int channels : {1, 2, 6, 8}) {
        for (const std::int64_t frames : {1'000'000LL, 13'230'000LL, 1'587'600'000LL}) {
            const std::int64_t length = VorbisChunking::of(frames, channels).chunkFrames;
            EXPECT_LE(length * channels, 1 << 21);
            EXPECT_GE((frames + length - 1) / length, 3);
        }
    }
    EXPECT_GE(VorbisChunking::of(1'000, 2).chunkFrames, 1'000);
}

}  // namespace
