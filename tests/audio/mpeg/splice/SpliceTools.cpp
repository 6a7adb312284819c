// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/audio/mpeg/splice/SpliceTools.h"

#include <algorithm>
#include <cmath>

#include <gtest/gtest.h>

#include "audio/mpeg/read/FrameIndex.h"

namespace support {
namespace {

using Bytes = std::vector<std::uint8_t>;

// Bit by bit, unlike the program's own.
unsigned plainCrc(const Bytes& bytes, std::size_t from, std::size_t to, bool reflected) {
    unsigned crc = reflected ? 0 : 0xFFFF;
    for (std::size_t i = from; i < to; ++i) {
        for (int bit = 0; bit < 8; ++bit) {
            if (reflected) {
                const unsigned in = bytes[i] >> bit & 1U;
                crc = ((crc ^ in) & 1U) != 0 ? crc >> 1 ^ 0xA001U : crc >> 1;
            } else {
                const unsigned in = bytes[i] >> (7 - bit) & 1U;
                crc = ((crc >> 15 ^ in) & 1U) != 0 ? (crc << 1 ^ 0x8005U) & 0xFFFFU
                                                   : crc << 1 & 0xFFFFU;
            }
        }
    }
    return crc;
}

void expectFrameCrcs(const audio::mpeg::FrameIndex& index, const Bytes& bytes) {
    if (!index.header().crc || index.header().layer != 3) return;
    for (std::int64_t i = 0; i < index.frameCount(); ++i) {
        const auto at = static_cast<std::size_t>(index.frame(i).offset);
        Bytes covered(bytes.begin() + static_cast<long>(at) + 2,
                      bytes.begin() + static_cast<long>(at) + 4);
        const auto side = bytes.begin() + static_cast<long>(at) + 6;
        covered.insert(covered.end(), side, side + index.header().sideInfoSize());
        const unsigned stated = bytes[at + 4] * 256U + bytes[at + 5];
        ASSERT_EQ(stated, plainCrc(covered, 0, covered.size(), false)) << "frame " << i;
    }
}

}  // namespace

audio::mpeg::SoundCallback soundFrom(std::shared_ptr<const Sound> sound, std::int64_t start) {
    auto at = std::make_shared<std::size_t>(static_cast<std::size_t>(start * sound->channels));
    return [sound, at](float* interleaved, std::size_t samples) {
        const std::size_t count = samples * static_cast<std::size_t>(sound->channels);
        ASSERT_LE(*at + count, sound->samples.size());
        std::copy_n(sound->samples.begin() + static_cast<long>(*at), count, interleaved);
        *at += count;
    };
}

audio::mpeg::Segment renderedFrom(const Sound& sound, std::int64_t start, std::int64_t length) {
    return audio::mpeg::Segment::rendered(
        length, soundFrom(std::make_shared<Sound>(part(sound, start, length))));
}

Sound part(const Sound& sound, std::int64_t start, std::int64_t length) {
    const auto from = sound.samples.begin() + start * sound.channels;
    return {sound.rate, sound.channels, {from, from + length * sound.channels}};
}

Sound joined(Sound left, const Sound& right) {
    left.samples.insert(left.samples.end(), right.samples.begin(), right.samples.end());
    return left;
}

void fade(Sound& sound, std::int64_t start, std::int64_t length, float a, float b) {
    for (std::int64_t i = 0; i < length; ++i) {
        const float gain = a + (b - a) * static_cast<float>(i) /
                                   static_cast<float>(std::max<std::int64_t>(1, length - 1));
        for (int c = 0; c < sound.channels; ++c) {
            sound.samples[static_cast<std::size_t>((start + i) * sound.channels + c)] *= gain;
        }
    }
}

float largestDifference(const Sound& a, std::int64_t aStart, const Sound& b, std::int64_t bStart,
                        std::int64_t length) {
    float largest = 0;
    for (std::int64_t i = 0; i < length * a.channels; ++i) {
        const float left = a.samples[static_cast<std::size_t>(aStart * a.channels + i)];
        const float right = b.samples[static_cast<std::size_t>(bStart * a.channels + i)];
        largest = std::max(largest, std::abs(left - right));
    }
    return largest;
}

double meanSquare(const Sound& a, std::int64_t aStart, const Sound& b, std::int64_t bStart,
                  std::int64_t length) {
    double sum = 0;
    for (std::int64_t i = 0; i < length * a.channels; ++i) {
        const double difference =
            static_cast<double>(a.samples[static_cast<std::size_t>(aStart * a.channels + i)]) -
            static_cast<double>(b.samples[static_cast<std::size_t>(bStart * a.channels + i)]);
        sum += difference * difference;
    }
    return sum / static_cast<double>(std::max<std::int64_t>(1, length * a.channels));
}

void expectFieldsTrue(const std::filesystem::path& file) {
    const audio::mpeg::FrameIndex index(file);
    const Bytes bytes = readBytes(file);
    expectFrameCrcs(index, bytes);
    if (!index.info()) return;
    const auto& info = *index.info();
    EXPECT_EQ(info.frames.value_or(0), index.frameCount());
    EXPECT_EQ(info.bytes.value_or(0), index.audio().size);
    if (info.lameOffset == 0) return;
    EXPECT_EQ(info.musicLength, index.audio().size);
    const auto audio = static_cast<std::size_t>(index.audio().offset);
    EXPECT_EQ(info.musicCrc, plainCrc(bytes, static_cast<std::size_t>(index.infoFrame().end()),
                                      static_cast<std::size_t>(index.audio().end()), true));
    EXPECT_EQ(info.tagCrc, plainCrc(bytes, audio, audio + info.lameOffset + 34, true));
}

}  // namespace support
