// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/pcm/Convert.h"

#include <bit>
#include <cstring>
#include <stdexcept>

#include "audio/pcm/Sample.h"

namespace audio::pcm {
namespace {

static_assert(std::endian::native == std::endian::little, "sample bytes are copied as they lie");

template <typename T>
float load(const std::byte* bytes) {
    T value;
    std::memcpy(&value, bytes, sizeof value);
    return toFloat(value);
}

float load24(const std::byte* bytes) {
    const auto value = std::to_integer<std::uint32_t>(bytes[0]) << 8 |
                       std::to_integer<std::uint32_t>(bytes[1]) << 16 |
                       std::to_integer<std::uint32_t>(bytes[2]) << 24;
    return toFloat(static_cast<std::int32_t>(value));  // its 24 bits at the top of 32
}

template <typename T>
void store(std::byte* bytes, T value) {
    std::memcpy(bytes, &value, sizeof value);
}

void store24(std::byte* bytes, std::int64_t value) {
    const auto bits = static_cast<std::uint32_t>(value);
    for (int i = 0; i < 3; ++i) bytes[i] = static_cast<std::byte>(bits >> (8 * i) & 0xFF);
}

template <std::size_t Width, typename Convert>
void eachIn(const std::byte* bytes, float* out, std::size_t samples, Convert convert) {
    for (std::size_t i = 0; i < samples; ++i) out[i] = convert(bytes + i * Width);
}

template <std::size_t Width, typename Convert>
void eachOut(const float* in, std::byte* bytes, std::size_t samples, Convert convert) {
    for (std::size_t i = 0; i < samples; ++i) convert(in[i], bytes + i * Width);
}

template <typename T>
void eachIn(const std::byte* bytes, float* out, std::size_t samples) {
    eachIn<sizeof(T)>(bytes, out, samples, [](const std::byte* b) { return load<T>(b); });
}

template <typename T>
void eachOut(const float* in, std::byte* bytes, std::size_t samples) {
    eachOut<sizeof(T)>(in, bytes, samples, [](float sample, std::byte* b) {
        if constexpr (std::is_floating_point_v<T>)
            store(b, T(toFloat(sample)));
        else
            store(b, static_cast<T>(toInteger<8 * sizeof(T)>(sample)));
    });
}

[[noreturn]] void refuse() {
    throw std::invalid_argument("Compressed sound has no samples to convert.");
}

}  // namespace

std::size_t bytesPerSample(SampleType type) {
    switch (type) {
        case SampleType::U8:
            return 1;
        case SampleType::S16:
            return 2;
        case SampleType::S24:
            return 3;
        case SampleType::S32:
        case SampleType::F32:
            return 4;
        case SampleType::S64:
        case SampleType::F64:
            return 8;
        case SampleType::Lossy:
            break;
    }
    return 0;
}

SampleType integerOf(int bits) {
    if (bits <= 16) return SampleType::S16;
    if (bits <= 24) return SampleType::S24;
    return bits <= 32 ? SampleType::S32 : SampleType::S64;
}

void toFloats(SampleType type, const std::byte* bytes, float* out, std::size_t samples) {
    switch (type) {
        case SampleType::U8:
            return eachIn<std::uint8_t>(bytes, out, samples);
        case SampleType::S16:
            return eachIn<std::int16_t>(bytes, out, samples);
        case SampleType::S24:
            return eachIn<3>(bytes, out, samples, load24);
        case SampleType::S32:
            return eachIn<std::int32_t>(bytes, out, samples);
        case SampleType::S64:
            return eachIn<std::int64_t>(bytes, out, samples);
        case SampleType::F32:
            return eachIn<float>(bytes, out, samples);
        case SampleType::F64:
            return eachIn<double>(bytes, out, samples);
        case SampleType::Lossy:
            refuse();
    }
}

void fromFloats(SampleType type, const float* in, std::byte* bytes, std::size_t samples) {
    switch (type) {
        case SampleType::U8:
            return eachOut<1>(in, bytes, samples, [](float sample, std::byte* b) {
                *b = static_cast<std::byte>(toInteger<8>(sample) + 128);
            });
        case SampleType::S16:
            return eachOut<std::int16_t>(in, bytes, samples);
        case SampleType::S24:
            return eachOut<3>(in, bytes, samples, [](float sample, std::byte* b) {
                store24(b, toInteger<24>(sample));
            });
        case SampleType::S32:
            return eachOut<std::int32_t>(in, bytes, samples);
        case SampleType::S64:
            return eachOut<std::int64_t>(in, bytes, samples);
        case SampleType::F32:
            return eachOut<float>(in, bytes, samples);
        case SampleType::F64:
            return eachOut<double>(in, bytes, samples);
        case SampleType::Lossy:
            refuse();
    }
}

}  // namespace audio::pcm
