// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/pcm/Dither.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>

namespace audio::pcm {
namespace {

static_assert(std::endian::native == std::endian::little, "samples are copied as they lie");

constexpr std::uint64_t seed = 0x5EED0F5071D17E12;

// The finaliser of SplitMix64 (Steele, Lea, Flood: Fast splittable pseudorandom number generators).
std::uint64_t scramble(std::uint64_t x) {
    x += 0x9E3779B97F4A7C15;
    x = (x ^ (x >> 30)) * 0xBF58476D1CE4E5B9;
    x = (x ^ (x >> 27)) * 0x94D049BB133111EB;
    return x ^ (x >> 31);
}

// Rounds to the integers of [low, high]; what is not a number becomes silence.
template <typename Integer>
Integer limited(float value, float low, float high) {
    if (!(value > low)) return std::isnan(value) ? Integer{0} : static_cast<Integer>(low);
    return static_cast<Integer>(value < high ? std::lrintf(value) : static_cast<long>(high));
}

void storeDithered8(std::span<const float> samples, std::uint64_t index, std::byte* bytes) {
    for (const float sample : samples) {
        const float noise = sample == 0.0F ? 0.0F : ditherNoise(index);
        const int value = limited<std::int16_t>(sample * 128.0F + noise, -128.0F, 127.0F);
        *bytes++ = static_cast<std::byte>(value + 128);
        ++index;
    }
}

void storeDithered16(std::span<const float> samples, std::uint64_t index, std::byte* bytes) {
    for (const float sample : samples) {
        const float noise = sample == 0.0F ? 0.0F : ditherNoise(index);
        const auto value = limited<std::int16_t>(sample * 32768.0F + noise, -32768.0F, 32767.0F);
        std::memcpy(bytes, &value, 2);
        bytes += 2;
        ++index;
    }
}

std::int64_t rounded(double value, double low, double high) {
    if (std::isnan(value)) return 0;
    return std::llrint(std::clamp(value, low, high));
}

void store24(std::span<const float> samples, std::byte* bytes) {
    for (const float sample : samples) {
        const std::int64_t value =
            rounded(static_cast<double>(sample) * 8388608.0, -8388608.0, 8388607.0);
        std::memcpy(bytes, &value, 3);
        bytes += 3;
    }
}

void store32(std::span<const float> samples, std::byte* bytes) {
    for (const float sample : samples) {
        const std::int64_t value =
            rounded(static_cast<double>(sample) * 2147483648.0, -2147483648.0, 2147483647.0);
        std::memcpy(bytes, &value, 4);
        bytes += 4;
    }
}

template <typename Stored>
Stored loaded(const std::byte* bytes) {
    Stored value;
    std::memcpy(&value, bytes, sizeof value);
    return value;
}

float sampleAt(const std::byte* bytes, PcmFormat format) {
    switch (format) {
        case PcmFormat::U8:
            return static_cast<float>(static_cast<int>(*bytes) - 128) / 128.0F;
        case PcmFormat::S16:
            return static_cast<float>(loaded<std::int16_t>(bytes)) / 32768.0F;
        case PcmFormat::S24: {
            std::uint32_t value = 0;
            std::memcpy(&value, bytes, 3);
            return static_cast<float>(static_cast<std::int32_t>(value << 8)) / 2147483648.0F;
        }
        case PcmFormat::S32:
            return static_cast<float>(loaded<std::int32_t>(bytes)) / 2147483648.0F;
        case PcmFormat::F32:
            return loaded<float>(bytes);
        case PcmFormat::F64:
            return static_cast<float>(loaded<double>(bytes));
    }
    return 0.0F;
}

}  // namespace

std::size_t bytesPerSample(PcmFormat format) {
    switch (format) {
        case PcmFormat::U8:
            return 1;
        case PcmFormat::S16:
            return 2;
        case PcmFormat::S24:
            return 3;
        case PcmFormat::S32:
        case PcmFormat::F32:
            return 4;
        case PcmFormat::F64:
            return 8;
    }
    return 0;
}

float ditherNoise(std::uint64_t sampleIndex) {
    const std::uint64_t bits = scramble(seed ^ sampleIndex);
    constexpr float scale = 1.0F / 4294967296.0F;
    // The difference of two even distributions over [0, 1) is the triangular one over (−1, 1).
    return (static_cast<float>(static_cast<std::uint32_t>(bits)) -
            static_cast<float>(static_cast<std::uint32_t>(bits >> 32))) *
           scale;
}

void toPcm(std::span<const float> samples, PcmFormat format, std::uint64_t firstIndex,
           std::byte* bytes) {
    switch (format) {
        case PcmFormat::U8:
            return storeDithered8(samples, firstIndex, bytes);
        case PcmFormat::S16:
            return storeDithered16(samples, firstIndex, bytes);
        case PcmFormat::S24:
            return store24(samples, bytes);
        case PcmFormat::S32:
            return store32(samples, bytes);
        case PcmFormat::F32:
            std::memcpy(bytes, samples.data(), samples.size_bytes());
            return;
        case PcmFormat::F64:
            for (const float sample : samples) {
                const double value = sample;
                std::memcpy(bytes, &value, 8);
                bytes += 8;
            }
            return;
    }
}

void fromPcm(const std::byte* bytes, PcmFormat format, std::span<float> samples) {
    const std::size_t size = bytesPerSample(format);
    for (float& sample : samples) {
        sample = sampleAt(bytes, format);
        bytes += size;
    }
}

}  // namespace audio::pcm
