// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/pcm/Pcm.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstring>

namespace audio::pcm {
namespace {

static_assert(std::endian::native == std::endian::little, "sample bytes are copied as they lie");

template <typename T>
T load(const std::byte* bytes) {
    T value;
    std::memcpy(&value, bytes, sizeof value);
    return value;
}

template <typename T>
void store(std::byte* bytes, T value) {
    std::memcpy(bytes, &value, sizeof value);
}

std::int32_t load24(const std::byte* bytes) {
    const auto value = std::to_integer<std::uint32_t>(bytes[0]) << 8 |
                       std::to_integer<std::uint32_t>(bytes[1]) << 16 |
                       std::to_integer<std::uint32_t>(bytes[2]) << 24;
    return static_cast<std::int32_t>(value) >> 8;
}

void store24(std::byte* bytes, std::int32_t value) {
    const auto bits = static_cast<std::uint32_t>(value);
    for (int i = 0; i < 3; ++i) bytes[i] = static_cast<std::byte>(bits >> (8 * i) & 0xFF);
}

/// The nearest integer of a width, limited to what it can hold. 32 bits need a double.
template <int Bits, typename Number = float>
std::int32_t toInteger(float sample) {
    constexpr Number scale = Number(std::int64_t{1} << (Bits - 1));
    const Number value = std::isnan(sample) ? Number(0) : Number(sample) * scale;
    return static_cast<std::int32_t>(std::nearbyint(std::clamp(value, -scale, scale - Number(1))));
}

template <std::size_t Width, typename Convert>
void eachIn(const std::byte* bytes, float* out, std::size_t samples, Convert convert) {
    for (std::size_t i = 0; i < samples; ++i) out[i] = convert(bytes + i * Width);
}

template <std::size_t Width, typename Convert>
void eachOut(const float* in, std::byte* bytes, std::size_t samples, Convert convert) {
    for (std::size_t i = 0; i < samples; ++i) convert(in[i], bytes + i * Width);
}

float finite(double value) {
    return std::isfinite(value) ? static_cast<float>(value) : 0.0F;
}

}  // namespace

int bytesPerSample(SampleType type) {
    switch (type) {
        case SampleType::U8:
            return 1;
        case SampleType::S16:
            return 2;
        case SampleType::S24:
            return 3;
        case SampleType::S32:
            return 4;
        case SampleType::F32:
            return 4;
        case SampleType::F64:
            return 8;
        case SampleType::Lossy:
            break;
    }
    return 0;
}

void pcmToFloat(SampleType type, const std::byte* bytes, float* out, std::size_t samples) {
    switch (type) {
        case SampleType::U8:
            return eachIn<1>(bytes, out, samples, [](const std::byte* b) {
                return static_cast<float>(std::to_integer<int>(*b) - 128) / 128.0F;
            });
        case SampleType::S16:
            return eachIn<2>(bytes, out, samples, [](const std::byte* b) {
                return static_cast<float>(load<std::int16_t>(b)) / 32768.0F;
            });
        case SampleType::S24:
            return eachIn<3>(bytes, out, samples, [](const std::byte* b) {
                return static_cast<float>(load24(b)) / 8388608.0F;
            });
        case SampleType::S32:
            return eachIn<4>(bytes, out, samples, [](const std::byte* b) {
                return static_cast<float>(load<std::int32_t>(b)) / 2147483648.0F;
            });
        case SampleType::F32:
            return eachIn<4>(bytes, out, samples,
                             [](const std::byte* b) { return finite(double(load<float>(b))); });
        case SampleType::F64:
            return eachIn<8>(bytes, out, samples,
                             [](const std::byte* b) { return finite(load<double>(b)); });
        case SampleType::Lossy:
            break;
    }
}

void floatToPcm(SampleType type, const float* in, std::byte* bytes, std::size_t samples) {
    switch (type) {
        case SampleType::U8:
            return eachOut<1>(in, bytes, samples, [](float sample, std::byte* b) {
                *b = static_cast<std::byte>(toInteger<8>(sample) + 128);
            });
        case SampleType::S16:
            return eachOut<2>(in, bytes, samples, [](float sample, std::byte* b) {
                store(b, static_cast<std::int16_t>(toInteger<16>(sample)));
            });
        case SampleType::S24:
            return eachOut<3>(in, bytes, samples, [](float sample, std::byte* b) {
                store24(b, toInteger<24>(sample));
            });
        case SampleType::S32:
            return eachOut<4>(in, bytes, samples, [](float sample, std::byte* b) {
                store(b, toInteger<32, double>(sample));
            });
        case SampleType::F32:
            return eachOut<4>(in, bytes, samples,
                              [](float sample, std::byte* b) { store(b, finite(double(sample))); });
        case SampleType::F64:
            return eachOut<8>(in, bytes, samples, [](float sample, std::byte* b) {
                store(b, double(finite(double(sample))));
            });
        case SampleType::Lossy:
            break;
    }
}

}  // namespace audio::pcm
