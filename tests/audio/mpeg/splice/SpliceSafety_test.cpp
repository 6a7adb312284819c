// SPDX-License-Identifier: GPL-3.0-or-later
#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <lame/lame.h>

#include "audio/mpeg/read/LogicalFrame.h"
#include "audio/mpeg/read/SourceSound.h"
#include "audio/mpeg/splice/ReservoirFit.h"
#include "audio/mpeg/splice/ReservoirWriter.h"
#include "audio/mpeg/splice/SeamCheck.h"
#include "audio/mpeg/splice/Splice.h"
#include "tests/audio/mpeg/splice/SpliceTools.h"
#include "tests/support/TempFolder.h"

using namespace Qt::Literals::StringLiterals;
using namespace audio::mpeg;
using support::Judge;
using support::Sound;
using support::operator+;

namespace {

using Bytes = std::vector<std::uint8_t>;

class SpliceSafetyTest : public ::testing::Test {
  protected:
    std::filesystem::path make(const char* name, const QStringList& options,
                               std::int64_t length = 200000, unsigned seed = 3) {
        const auto path = folder_ / name;
        support::encodeMp3(path, support::makeSound(44100, 2, length, seed), options);
        return path;
    }
    std::filesystem::path put(const char* name, const Bytes& bytes) {
        support::writeBytes(folder_ / name, bytes);
        return folder_ / name;
    }
    SpliceOutcome spliced(const std::filesystem::path& file, const std::vector<Segment>& plan,
                          const char* name, int threads = 0) {
        support::MemorySink sink;
        SpliceOptions options;
        options.threads = threads;
        const auto outcome = splice(file, FrameIndex(file), plan, sink, options);
        put(name, sink.bytes());
        return outcome;
    }
    void expectRefused(const std::filesystem::path& file) {
        const FrameIndex index(file);
        const auto reason = whyNotSpliceable(file, index);
        ASSERT_TRUE(reason);
        EXPECT_NE(reason->find(file.string()), std::string::npos);
        support::MemorySink sink;
        EXPECT_THROW(splice(file, index, {Segment::source(0, index.gaplessLength())}, sink, {}),
                     CannotSplice);
        EXPECT_TRUE(sink.bytes().empty());
    }
    support::TempFolder folder_;
};

// The frames again, whatever slots they need.
Bytes rewritten(const std::vector<LogicalFrame>& frames) {
    FitProblem problem;
    problem.frames = frames;
    problem.freeSlots = true;
    problem.cheaper = [](std::size_t, std::size_t, int) { return std::vector<LogicalFrame>(); };
    support::MemorySink sink;
    StreamWriter writer(sink, static_cast<std::int64_t>(frames.size()));
    ReservoirWriter out(writer, frames.front().header);
    for (const FittedFrame& frame : fit(problem)) out.add(frame.frame, frame.slot);
    out.finish();
    writer.finish({});
    return sink.bytes();
}

// What LAME makes of the sound at 192 kbit/s, if need be with short blocks alone.
std::vector<LogicalFrame> encodedWith(const Sound& sound, bool shortBlocks) {
    lame_t lame = lame_init();
    lame_set_in_samplerate(lame, sound.rate);
    lame_set_brate(lame, 192);
    lame_set_force_short_blocks(lame, shortBlocks ? 1 : 0);
    lame_set_bWriteVbrTag(lame, 0);
    lame_init_params(lame);
    const auto length = static_cast<int>(sound.length());
    Bytes bytes(static_cast<std::size_t>(length) * 2 + 7200);
    int size = lame_encode_buffer_interleaved_ieee_float(lame, sound.samples.data(), length,
                                                         bytes.data(), 0);
    size += lame_encode_flush(lame, bytes.data() + size, 0);
    lame_close(lame);
    return takeApart(std::span(bytes).first(static_cast<std::size_t>(size)));
}

// Steady sound, in which LAME uses long blocks alone.
Sound steadySound(std::int64_t length) {
    Sound sound{44100, 2, {}};
    for (std::int64_t i = 0; i < length; ++i) {
        const double time = static_cast<double>(i) / 44100;
        for (const double hertz : {330.0, 440.0}) {
            sound.samples.push_back(
                static_cast<float>(0.3 * std::sin(6.283185307179586 * hertz * time) +
                                   0.2 * std::sin(6.283185307179586 * (hertz * 2.7) * time)));
        }
    }
    return sound;
}

}  // namespace

TEST_F(SpliceSafetyTest, WindowsThatDoNotFitAreHeard) {
    const Sound sound = steadySound(150000);
    const auto longs = encodedWith(sound, false);
    const auto shorts = encodedWith(sound, true);
    const Sound reference = support::decode(put("short.mp3", rewritten(shorts)), Judge::Ffmpeg);
    const std::size_t seam = 60;
    ASSERT_FALSE(longs[seam - 1].info.windowsFit(shorts[seam].info));
    ASSERT_TRUE(longs[seam - 1].info.windowsFit(longs[seam].info));
    const auto errorOfSeam = [&](const std::vector<LogicalFrame>& right) {
        std::vector<LogicalFrame> joined(longs.begin(), longs.begin() + static_cast<long>(seam));
        joined.insert(joined.end(), right.begin() + static_cast<long>(seam), right.end());
        const Sound decoded = support::decode(put("joined.mp3", rewritten(joined)), Judge::Ffmpeg);
        const std::int64_t at = static_cast<std::int64_t>(seam) * 1152;
        return 10 * std::log10(support::meanSquare(decoded, at, sound, at - 1105, 1152) /
                               support::meanSquare(reference, at, sound, at - 1105, 1152));
    };
    EXPECT_GT(errorOfSeam(shorts), 3.0);
    EXPECT_LT(errorOfSeam(longs), 3.0);
}

TEST_F(SpliceSafetyTest, EncodersOwnScalingIsMadeUpFor) {
    // LAME alone would make 128 kbit/s quieter by 0.45 dB.
    const auto file = make("cbr.mp3", {u"-b128"_s});
    const Sound source = support::decode(file, Judge::Ffmpeg);
    const std::vector<Segment> plan = {Segment::source(0, 80000),
                                       support::renderedFrom(source, 80000, 40000),
                                       Segment::source(120000, source.length() - 120000)};
    spliced(file, plan, "out.mp3");
    const Sound out = support::decode(folder_ / "out.mp3", Judge::Ffmpeg);
    double product = 0;
    double power = 0;
    for (std::size_t i = 2 * 85000; i < 2 * 115000; ++i) {
        product += static_cast<double>(out.samples[i]) * static_cast<double>(source.samples[i]);
        power += static_cast<double>(source.samples[i]) * static_cast<double>(source.samples[i]);
    }
    // Coding takes a little of the noise each time.
    EXPECT_NEAR(20 * std::log10(product / power), 0.0, 0.25);
}

TEST_F(SpliceSafetyTest, BrokenReservoirIsNoticed) {
    const auto file = make("cbr.mp3", {u"-b128"_s});
    const FrameIndex index(file);
    const Bytes bytes = support::readBytes(file);
    for (const bool broken : {false, true}) {
        SeamCheck check(file, index);
        check.expectKept(60, 4, 60);
        const auto feed = [&] {
            for (std::int64_t i = 30; i < 70; ++i) {
                const ByteRange range = index.frame(i);
                Bytes frame(bytes.begin() + range.offset, bytes.begin() + range.end());
                // One byte of main data that another frame needs.
                if (broken && i == 61) frame[frame.size() - 40] ^= 0x10;
                check.frame(i, frame);
            }
            check.finish();
        };
        if (broken) {
            EXPECT_THROW(feed(), CannotSplice);
        } else {
            EXPECT_NO_THROW(feed());
        }
    }
}

// Small frames reach back over many others, and so do the ones before them that they overlap.
TEST_F(SpliceSafetyTest, AFrameSoundsTheSameWhereverDecodingBegins) {
    for (const char* rate : {"-V6", "-V5", "-b56", "-b48", "-b32"}) {
        SCOPED_TRACE(rate);
        const auto file = folder_ / "small.mp3";
        support::encodeMp3(
            file, support::makeSound(44100, 1, 400000, 5),
            {u"-m"_s, u"m"_s, u"--resample"_s, u"44.1"_s, QString::fromLatin1(rate)});
        const FrameIndex index(file);
        SourceSound running(file, index);
        std::vector<float> wanted(1152);
        std::vector<float> found(1152);
        for (std::int64_t frame = 0; frame < index.frameCount(); ++frame) {
            running.read(frame * 1152, 1152, wanted.data());
            SourceSound(file, index).read(frame * 1152, 1152, found.data());
            ASSERT_EQ(found, wanted) << "frame " << frame;
        }
    }
}

TEST_F(SpliceSafetyTest, BytesDependOnNoNumberOfThreads) {
    const auto file = make("cbr.mp3", {u"-b128"_s}, 3000000);
    const Sound source = support::decode(file, Judge::Ffmpeg);
    for (const int threads : {1, 2, 4}) {
        const std::vector<Segment> plan = {support::renderedFrom(source, 0, 2000000),
                                           Segment::source(2000000, source.length() - 2000000)};
        spliced(file, plan, ("t" + std::to_string(threads)).c_str(), threads);
    }
    EXPECT_TRUE(support::readBytes(folder_ / "t1") == support::readBytes(folder_ / "t2"));
    EXPECT_TRUE(support::readBytes(folder_ / "t1") == support::readBytes(folder_ / "t4"));
}

TEST_F(SpliceSafetyTest, WhatCannotBeSplicedIsNamed) {
    expectRefused(make("free.mp3", {u"--freeformat"_s, u"-b200"_s, u"-t"_s}));
    const Bytes first = support::readBytes(make("a.mp3", {u"-t"_s, u"-b128"_s}));
    support::encodeMp3(folder_ / "b.mp3", support::makeSound(22050, 2, 100000),
                       {u"-t"_s, u"-b64"_s});
    expectRefused(put("both.mp3", first + support::readBytes(folder_ / "b.mp3")));
    expectRefused(put("lost.mp3", first + Bytes(99, 7) + first));
}

TEST_F(SpliceSafetyTest, VbriFrameGivesWayToAnInfoFrame) {
    const Bytes sound = support::readBytes(make("v.mp3", {u"-t"_s, u"-V4"_s}));
    const auto file = put("vbri.mp3", support::vbriFrame() + sound);
    const FrameIndex index(file);
    spliced(file, {Segment::source(30001, 100003)}, "out.mp3");
    support::expectFieldsTrue(folder_ / "out.mp3");
    const Sound before = support::decode(file, Judge::Ffmpeg);
    const Sound after = support::decode(folder_ / "out.mp3", Judge::Ffmpeg);
    // mpg123 takes a VBRI frame for a frame of silence, but reads what replaces it.
    EXPECT_EQ(support::decode(folder_ / "out.mp3", Judge::Mpg123).length(), 100003);
    ASSERT_EQ(after.length(), 100003);
    ASSERT_EQ(before.length(), index.gaplessLength());
    EXPECT_LE(support::largestDifference(before, 30001, after, 0, 100003), 1e-6F);
    EXPECT_EQ(FrameIndex(folder_ / "out.mp3").info()->kind, InfoTag::Kind::Xing);
}

TEST_F(SpliceSafetyTest, StreamWhoseStartWasCutOff) {
    const auto whole = make("whole.mp3", {u"-t"_s, u"-b128"_s});
    const FrameIndex wholeIndex(whole);
    const Bytes bytes = support::readBytes(whole);
    const Bytes cut(bytes.begin() + wholeIndex.frame(37).offset, bytes.end());
    const auto file = put("cut.mp3", cut);
    const Sound source = support::decode(file, Judge::Ffmpeg);
    Sound wanted = source;
    support::fade(wanted, 60000, 40000, 1.0F, 0.5F);
    const std::vector<Segment> plan = {Segment::source(0, 60000),
                                       support::renderedFrom(wanted, 60000, 40000),
                                       Segment::source(100000, source.length() - 100000)};
    spliced(file, plan, "out.mp3");
    const Sound out = support::decode(folder_ / "out.mp3", Judge::Ffmpeg);
    ASSERT_EQ(out.length(), source.length());
    EXPECT_EQ(support::largestDifference(out, 0, source, 0, 45000), 0.0F);
    EXPECT_EQ(support::largestDifference(out, 115000, source, 115000, source.length() - 115000),
              0.0F);
    // With silence in front, its first frames would find other data in the reservoir: they are
    // either left as they sound or the whole is refused.
    const Sound quiet{44100, 2, std::vector<float>(2 * 44100)};
    try {
        spliced(file, {support::renderedFrom(quiet, 0, 44100), Segment::source(0, source.length())},
                "front.mp3");
        const Sound front = support::decode(folder_ / "front.mp3", Judge::Ffmpeg);
        ASSERT_EQ(front.length(), source.length() + 44100);
        EXPECT_LE(support::largestDifference(front, 44100 + 20000, source, 20000,
                                             source.length() - 20000),
                  1e-6F);
    } catch (const CannotSplice&) {
        SUCCEED();
    }
}

TEST_F(SpliceSafetyTest, SegmentsOutsideTheSourceAreRefused) {
    const auto file = make("cbr.mp3", {u"-b128"_s});
    const std::int64_t length = FrameIndex(file).gaplessLength();
    EXPECT_THROW(spliced(file, {Segment::source(1, length)}, "x"), platform::Error);
    EXPECT_THROW(spliced(file, {Segment::source(-1, 10)}, "x"), platform::Error);
}

TEST_F(SpliceSafetyTest, WhatSinkSoundOrProgressThrowComesThrough) {
    const auto file = make("cbr.mp3", {u"-b128"_s}, 2000000);
    const FrameIndex index(file);
    struct Stop {};
    support::MemorySink sink;
    const std::vector<Segment> plan = {
        Segment::rendered(index.gaplessLength(), [](float*, std::size_t) { throw Stop(); })};
    EXPECT_THROW(splice(file, index, plan, sink, {}), Stop);
    SpliceOptions options;
    options.progress = [](double) { throw Stop(); };
    EXPECT_THROW(splice(file, index, {Segment::source(0, 1000000)}, sink, options), Stop);
}

TEST_F(SpliceSafetyTest, GainIsExact) {
    EXPECT_EQ(exactGainSteps(50), -4);
    EXPECT_EQ(exactGainSteps(100), 0);
    EXPECT_EQ(exactGainSteps(200), 4);
    EXPECT_EQ(exactGainSteps(400), 8);
    EXPECT_EQ(exactGainSteps(25), -8);
    for (const double percent : {45.0, 70.0, 71.0, 84.0, 141.0, 50.1, 0.0, -50.0}) {
        EXPECT_FALSE(exactGainSteps(percent)) << percent;
    }
    for (const QStringList& options : {QStringList{u"-b128"_s, u"-p"_s}, QStringList{u"-V2"_s},
                                       QStringList{u"-b128"_s, u"-t"_s}}) {
        const auto file = make("g.mp3", options);
        support::MemorySink sink;
        gain(file, FrameIndex(file), -4, sink, {});
        const auto out = put("out.mp3", sink.bytes());
        support::expectFieldsTrue(out);
        EXPECT_EQ(std::filesystem::file_size(out), std::filesystem::file_size(file));
        for (const Judge judge : {Judge::Ffmpeg, Judge::Mpg123}) {
            Sound before = support::decode(file, judge);
            for (float& sample : before.samples) sample *= 0.5F;
            const Sound after = support::decode(out, judge);
            ASSERT_EQ(after.length(), before.length());
            EXPECT_LE(support::largestDifference(before, 0, after, 0, after.length()), 1e-6F);
        }
        EXPECT_THROW(gain(file, FrameIndex(file), 150, sink, {}), CannotSplice);
        EXPECT_THROW(gain(file, FrameIndex(file), -250, sink, {}), CannotSplice);
    }
}

TEST_F(SpliceSafetyTest, ShortestSounds) {
    for (const std::int64_t length : {0, 1, 100, 1152, 5000}) {
        const Sound sound = support::makeSound(44100, 2, length);
        for (const int layer : {2, 3}) {
            EncoderSettings settings;
            settings.layer = layer;
            settings.bitRate = 192000;
            support::MemorySink sink;
            encode(settings, support::soundFrom(std::make_shared<Sound>(sound)), length, sink, {});
            const auto path = put(layer == 3 ? "tiny.mp3" : "tiny.mp2", sink.bytes());
            const std::int64_t expected =
                layer == 3 ? length : std::max<std::int64_t>(1, (length + 1151) / 1152) * 1152;
            EXPECT_EQ(FrameIndex(path).gaplessLength(), expected);
            // FFmpeg gives no output without sound, nor Layer II by a frame or two.
            if (length == 0 || (layer == 2 && length < 5000)) continue;
            EXPECT_EQ(support::decode(path, Judge::Ffmpeg).length(), expected);
        }
    }
}

TEST_F(SpliceSafetyTest, LayerTwoComesOutWhereItWentIn) {
    const Sound sound = support::makeSound(48000, 2, 1152 * 200);
    EncoderSettings settings;
    settings.layer = 2;
    settings.sampleRate = 48000;
    settings.bitRate = 256000;
    support::MemorySink sink;
    encode(settings, support::soundFrom(std::make_shared<Sound>(sound)), sound.length(), sink, {});
    const Sound out = support::decode(put("a.mp2", sink.bytes()), Judge::Ffmpeg);
    ASSERT_EQ(out.length(), sound.length());
    double best = 1;
    std::int64_t bestShift = -100;
    for (std::int64_t shift = -3; shift <= 3; ++shift) {
        const double error =
            support::meanSquare(out, 2000 + shift, sound, 2000, sound.length() - 4000);
        if (error < best) bestShift = shift;
        best = std::min(best, error);
    }
    EXPECT_EQ(bestShift, 0);
    EXPECT_LT(best, 2e-3);
}
