// SPDX-License-Identifier: GPL-3.0-or-later
// However many threads encode, the packets are those of a single encoder.
#include "audio/ffmpeg/ParallelBlocks.h"

#include <algorithm>
#include <cmath>
#include <random>
#include <string>
#include <tuple>

#include <gtest/gtest.h>

#include "platform/Error.h"

namespace {

using namespace audio;
using namespace audio::ffmpeg;

constexpr std::size_t blocks = 96 * 2 + 37;  // two whole chunks and a part of one

struct Packet {
    std::int64_t stamp = 0;
    std::vector<std::uint8_t> bytes;
    bool operator==(const Packet&) const = default;
};

TakePacket into(std::vector<Packet>& packets) {
    return [&packets](const AVPacket& packet) {
        packets.push_back({packet.pts, {packet.data, packet.data + packet.size}});
    };
}

Format wma(const std::string& codec, int rate, int channels) {
    Format format;
    format.container = Container::Asf;
    format.containerName = "asf";
    format.codec = Codec::Wma;
    format.codecName = codec;
    format.sampleRate = rate;
    format.channels = channels;
    format.bitRate = std::max<std::int64_t>(32'000, std::int64_t{rate} * channels * 3 / 2);
    return format;
}

/// A tone that swells, and noise in bursts; at the end silence.
std::vector<float> soundFor(std::size_t frames, int channels) {
    std::mt19937 random(5);
    std::uniform_real_distribution<float> noise(-0.4F, 0.4F);
    std::vector<float> sound(frames * std::size_t(channels));
    for (std::size_t i = 0; i < frames * 9 / 10; ++i)
        for (int channel = 0; channel < channels; ++channel) {
            const float tone = 0.5F * std::sin(0.05F * float(i)) * std::sin(1e-4F * float(i));
            const bool burst = i / 5'000 % 3 == std::size_t(channel);
            sound[i * std::size_t(channels) + std::size_t(channel)] =
                tone + (burst ? noise(random) : 0.0F);
        }
    return sound;
}

class OnManyThreads : public testing::TestWithParam<std::tuple<const char*, int, int>> {};

class Sound {
  public:
    explicit Sound(const Format& format)
        : format_(format),
          recipe_(recipeFor(format)),
          block_(std::size_t(recipe_.block) * std::size_t(format.channels)),
          samples_(soundFor(blocks * std::size_t(recipe_.block), format.channels)) {}

    std::vector<Packet> byOne() const {
        std::vector<Packet> packets;
        BlockEncoder encoder("one", format_, recipe_);
        for (std::size_t i = 0; i < blocks; ++i)
            encoder.encode(samples_.data() + i * block_, frames(), std::int64_t(i) * recipe_.block,
                           into(packets));
        encoder.finish(into(packets));
        return packets;
    }

    std::vector<Packet> by(int threads, std::size_t count = blocks) const {
        std::vector<Packet> packets;
        ParallelBlocks encoder("many.wma", format_, recipe_, threads, into(packets));
        for (std::size_t i = 0; i < count; ++i) encoder.add(samples_.data() + i * block_, frames());
        encoder.finish();
        return packets;
    }

    /// A rate that the encoder refuses.
    void spoil() { format_.sampleRate = 96'000; }

  private:
    std::size_t frames() const { return std::size_t(recipe_.block); }

    Format format_;
    Recipe recipe_;
    std::size_t block_;
    std::vector<float> samples_;
};

INSTANTIATE_TEST_SUITE_P(Wma, OnManyThreads,
                         testing::Combine(testing::Values("wmav1", "wmav2"),
                                          testing::Values(11'025, 22'050, 32'000, 44'100, 48'000),
                                          testing::Values(1, 2)),
                         [](const auto& instance) {
                             return std::string(std::get<0>(instance.param)) + "_" +
                                    std::to_string(std::get<1>(instance.param)) + "_" +
                                    std::to_string(std::get<2>(instance.param));
                         });

TEST_P(OnManyThreads, ThePacketsAreThoseOfASingleEncoder) {
    const auto& [codec, rate, channels] = GetParam();
    const Sound sound(wma(codec, rate, channels));
    const std::vector<Packet> expected = sound.byOne();
    ASSERT_EQ(expected.size(), blocks);
    for (const int threads : {1, 2, 4}) EXPECT_TRUE(sound.by(threads) == expected) << threads;
}

TEST(ParallelBlocks, FewBlocksNeedOneChunk) {
    const Sound sound(wma("wmav2", 44'100, 2));
    const std::vector<Packet> expected = sound.byOne();
    for (const std::size_t count : {0, 1, 95, 96, 97}) {
        const auto end = expected.begin() + std::ptrdiff_t(count);
        EXPECT_TRUE(sound.by(2, count) == std::vector(expected.begin(), end)) << count;
    }
}

TEST(ParallelBlocks, AnErrorComesThroughWithTheFilesName) {
    Sound sound(wma("wmav2", 44'100, 2));
    sound.spoil();
    try {
        sound.by(2);
        FAIL() << "nothing was thrown";
    } catch (const platform::Error& error) {
        EXPECT_NE(std::string(error.what()).find("many.wma"), std::string::npos) << error.what();
    }
}

}  // namespace
