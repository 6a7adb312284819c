// SPDX-License-Identifier: GPL-3.0-or-later
// What the encoder is told besides the sound, what it refuses, and the codecs that state delays.
#include <cmath>
#include <limits>

#include <gtest/gtest.h>

#include "audio/read/Decoder.h"
#include "audio/wave/Layout.h"
#include "audio/write/Encoder.h"
#include "platform/Error.h"
#include "tests/audio/read/Reading.h"
#include "tests/support/FileSizeLimit.h"
#include "tests/support/Fixtures.h"
#include "tests/support/Sound.h"
#include "tests/support/TempFolder.h"

using namespace Qt::Literals::StringLiterals;

namespace {

using namespace audio;
using audio::read::Decoder;
using namespace audio::write;

class EncoderOptionsTest : public testing::Test {
  protected:
    static Format formatOf(const std::string& name) {
        return Decoder(support::fixture(name)).format();
    }

    void encode(const Format& format, const std::vector<float>& samples,
                const EncoderOptions& options = {}) {
        Encoder encoder(file(), format, options);
        encoder.write(samples.data(), samples.size() / std::size_t(format.channels));
        encoder.finish();
    }

    std::string refusal(const Format& format, const std::filesystem::path& target) {
        try {
            Encoder encoder(target, format);
            const std::vector<float> much(200'000 * std::size_t(format.channels), 0.1F);
            encoder.write(much.data(), 200'000);
            encoder.finish();
        } catch (const platform::Error& error) {
            EXPECT_NE(std::string(error.what()).find(target.string()), std::string::npos)
                << error.what();
            return error.what();
        }
        return {};
    }

    std::filesystem::path file() const { return folder_ / "written"; }
    support::TempFolder folder_;
};

TEST_F(EncoderOptionsTest, VorbisCommentHeaderIsWrittenAsItStands) {
    // "\3vorbis", a vendor text, one field whose case and value nobody may touch, the framing bit,
    // and padding behind it.
    EncoderOptions options;
    const auto add = [&](std::string_view text) {
        for (const char letter : text) options.vorbisComment.push_back(std::uint8_t(letter));
    };
    const std::string field = "mIxEd=\xC3\xA4 = value";
    add("\3vorbis");
    add(std::string_view("\4\0\0\0Some\1\0\0\0", 12));
    options.vorbisComment.push_back(std::uint8_t(field.size()));
    add(std::string_view("\0\0\0", 3));
    add(field);
    add(std::string_view("\1", 1));
    options.vorbisComment.resize(options.vorbisComment.size() + 300);
    const std::vector<float> sound = reading::readAll(support::fixture("tone.wav"));
    encode(formatOf("tone.ogg"), sound, options);

    const std::vector<std::byte> bytes = support::readBytes(file());
    const auto* raw = reinterpret_cast<const std::uint8_t*>(bytes.data());
    EXPECT_NE(std::search(raw, raw + bytes.size(), options.vorbisComment.begin(),
                          options.vorbisComment.end()),
              raw + bytes.size());
    const auto probe =
        support::run(u"ffprobe"_s, {u"-v"_s, u"error"_s, u"-show_entries"_s, u"stream_tags"_s,
                                    QString::fromStdString(file().string())});
    EXPECT_TRUE(probe.out.contains("\xC3\xA4 = value")) << probe.out.toStdString();
    EXPECT_EQ(support::decodeWithFfmpeg(file()).frames(), 88'200U);
}

TEST_F(EncoderOptionsTest, TheSameSoundGivesTheSameBytes) {
    for (const char* like : {"tone.ogg", "tone.wma", "tone.wav", "tone.flac"}) {
        const std::vector<float> sound = reading::readAll(support::fixture("tone.wav"));
        encode(formatOf(like), sound);
        const std::vector<std::byte> first = support::readBytes(file());
        encode(formatOf(like), sound);
        if (std::string(like) == "tone.wma") {  // its file identifier and date are new each time
            EXPECT_EQ(support::readBytes(file()).size(), first.size());
        } else {
            EXPECT_EQ(support::readBytes(file()), first) << like;
        }
    }
}

TEST_F(EncoderOptionsTest, WaveModelGivesFormatAndChunks) {
    EncoderOptions options;
    options.waveModel = support::fixture("tone-6ch.wav");
    options.expectedFrames = 88'200;
    const Format format = formatOf("tone-6ch.wav");
    encode(format, reading::readAll(support::fixture("tone-6ch.wav")), options);
    EXPECT_EQ(support::readBytes(file()), support::readBytes(support::fixture("tone-6ch.wav")));

    // Another format than the model's: its chunks, but not its description of the sound.
    Format narrow = format;
    narrow.sampleType = audio::pcm::SampleType::S16;
    narrow.bitsPerSample = 16;
    options.waveModel = support::fixture("music.wav");
    encode(narrow, std::vector<float>(6'000, 0.5F), options);
    EXPECT_EQ(audio::wave::readLayout(file()).format.channels, 6);
    EXPECT_EQ(support::decodeWithFfmpeg(file()).frames(), 1'000U);
}

TEST_F(EncoderOptionsTest, RawAndRenderedFramesAlternate) {
    for (const char* like :
         {"tone.wav", "tone-u8.wav", "tone-s24.wav", "tone-s32.wav", "tone-f64.wav"}) {
        Decoder decoder(support::fixture(like));
        const Format format = decoder.format();
        const auto width = std::size_t(bytesPerSample(format.sampleType)) * 2;
        std::vector<std::byte> bytes(width * 1'000);
        {
            EncoderOptions options;
            options.expectedFrames = 3'000;
            Encoder encoder(file(), format, options);
            decoder.readPcm(bytes.data(), 1'000);
            encoder.writePcm(bytes.data(), 1'000);
            const std::vector<float> silence(2'000);
            encoder.write(silence.data(), 1'000);
            decoder.readPcm(bytes.data(), 1'000);
            encoder.writePcm(bytes.data(), 1'000);
            encoder.finish();
        }
        Decoder written(file());
        EXPECT_EQ(written.frames(), 3'000);
        written.seek(2'000);
        std::vector<std::byte> back(bytes.size());
        EXPECT_EQ(written.readPcm(back.data(), 1'000), 1'000U);
        EXPECT_EQ(back, bytes) << like;
    }
}

TEST_F(EncoderOptionsTest, NothingWraps) {
    const std::vector<float> loud = {1.5F,
                                     -1.5F,
                                     1.0F,
                                     -1.0F,
                                     std::numeric_limits<float>::quiet_NaN(),
                                     0.0F,
                                     std::numeric_limits<float>::infinity(),
                                     -1e30F};
    for (const char* like :
         {"tone.wav", "tone-u8.wav", "tone-s24.wav", "tone-s32.wav", "tone.flac", "tone.aiff"}) {
        encode(formatOf(like), loud);
        const std::vector<float> back = support::decodeWithFfmpeg(file()).samples;
        ASSERT_EQ(back.size(), loud.size()) << like;
        EXPECT_NEAR(back[0], 1, 0.01) << like;
        EXPECT_NEAR(back[1], -1, 0.01) << like;
        EXPECT_NEAR(back[3], -1, 0.01) << like;
        EXPECT_NEAR(back[4], 0, 1e-6) << like;
        EXPECT_GT(back[6], 0.9) << like;
        EXPECT_LT(back[7], -0.9) << like;
    }
}

TEST_F(EncoderOptionsTest, LevelsAreKept) {
    std::vector<float> sound = reading::readAll(support::fixture("music.wav"));
    sound.resize(2 * 5 * 44'100);
    const auto energy = [](const std::vector<float>& samples) {
        double sum = 0;
        for (const float sample : samples) sum += double(sample) * double(sample);
        return sum;
    };
    for (const char* like : {"tone.wma", "tone.ogg"}) {
        encode(formatOf(like), sound);
        const double ratio = energy(support::decodeWithFfmpeg(file()).samples) / energy(sound);
        EXPECT_NEAR(10 * std::log10(ratio), 0, 0.12) << like;
    }
}

TEST_F(EncoderOptionsTest, TwentyFourBitFlacIsExact) {
    Format format = formatOf("tone.flac");
    format.sampleType = audio::pcm::SampleType::S24;
    format.bitsPerSample = 24;
    const std::vector<float> sound = reading::readAll(support::fixture("tone-s24.wav"));
    encode(format, sound);
    EXPECT_EQ(Decoder(file()).format().bitsPerSample, 24);
    EXPECT_EQ(support::maxDifference(support::decodeWithFfmpeg(file()).samples, sound), 0);
}

TEST_F(EncoderOptionsTest, WhatHasNoEncoderIsRefusedByName) {
    Format pro = formatOf("tone.wma");
    pro.codec = Codec::Other;
    pro.codecName = "wmapro";
    EXPECT_FALSE(Encoder::canEncode(pro));
    EXPECT_NE(refusal(pro, file()).find("wmapro"), std::string::npos);
    EXPECT_FALSE(Encoder::canEncode(formatOf("tone.mp3")));
    Format six = formatOf("tone.wma");
    six.channels = 6;
    EXPECT_NE(refusal(six, file()), "");
    EXPECT_NE(refusal(formatOf("tone-adpcm.wav"), file()).find("adpcm"), std::string::npos);
}

TEST_F(EncoderOptionsTest, FullDiskIsAnErrorInEveryFormat) {
    for (const char* like : {"tone.wav", "tone.ogg", "tone.wma", "tone.flac", "tone.m4a"}) {
        const support::FileSizeLimit full(5'000);
        EXPECT_NE(refusal(formatOf(like), file()).find("too large"), std::string::npos) << like;
    }
    for (const char* like : {"tone.wav", "tone.ogg", "tone.wma", "tone.flac"})
        EXPECT_NE(refusal(formatOf(like), folder_ / "no" / "folder"), "") << like;
}

// AAC and Opus state their delay and padding in the container, which both judges obey.
TEST_F(EncoderOptionsTest, StatedDelaysAreDropped) {
    Decoder aac(support::fixture("tone.m4a"));
    EXPECT_EQ(aac.frames(), 88'200);
    const std::vector<float> ours = reading::readAll(aac);
    ASSERT_EQ(ours.size(), 2U * 88'200);
    support::Sound judge = support::decodeWithFfmpeg(support::fixture("tone.m4a"));
    EXPECT_EQ(support::maxDifference(ours, judge.part(0, 88'200).samples), 0);
    const std::vector<float> original = reading::readAll(support::fixture("tone.wav"));
    EXPECT_GT(support::snrDb(original, ours), 15);

    Decoder opus(support::fixture("tone.opus"));
    EXPECT_EQ(opus.frames(), 96'000);
    EXPECT_EQ(
        support::maxDifference(reading::readAll(opus),
                               support::decodeWithFfmpeg(support::fixture("tone.opus")).samples),
        0);
}

TEST_F(EncoderOptionsTest, AacAndOpusKeepLengthAndPlace) {
    for (const char* like : {"tone.m4a", "tone.opus", "tone.aac"}) {
        const Format format = formatOf(like);
        const support::Sound original{reading::readAll(support::fixture(like)), format.sampleRate,
                                      2};
        encode(format, original.samples);
        const support::Sound back{reading::readAll(file()), format.sampleRate, 2};
        EXPECT_EQ(back.frames(), original.frames()) << like;
        EXPECT_EQ(support::lagOf(original, back, 1'500), 0) << like;
    }
}

}  // namespace
