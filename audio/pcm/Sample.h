// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <type_traits>

/// What one sample is worth, as an integer and as a float of full scale ±1. Pure arithmetic, in a
/// header so that loops over samples become vector instructions.
namespace audio::pcm {

inline float toFloat(std::uint8_t value) {
    return static_cast<float>(int{value} - 128) / 128.0F;
}
inline float toFloat(std::int16_t value) {
    return static_cast<float>(value) / 32768.0F;
}
inline float toFloat(std::int32_t value) {
    return static_cast<float>(value) / 2147483648.0F;
}
inline float toFloat(std::int64_t value) {
    return static_cast<float>(value) / 9223372036854775808.0F;
}
inline float toFloat(double value) {  // what is not a number, or infinite, is silence
    return std::isfinite(value) ? static_cast<float>(value) : 0.0F;
}
inline float toFloat(float value) {
    return std::isfinite(value) ? value : 0.0F;
}

/// The nearest integer of a width, limited to what it can hold; 0 for what is not a number.
template <int Bits>
std::int64_t toInteger(float sample) {
    using Number = std::conditional_t<(Bits > 24), double, float>;
    constexpr Number scale = Number(std::uint64_t{1} << (Bits - 1));
    const Number value = std::isnan(sample) ? Number(0) : Number(sample) * scale;
    if constexpr (Bits == 64) {  // the highest one is no double
        if (value >= scale) return INT64_MAX;
        return static_cast<std::int64_t>(std::nearbyint(std::max(value, -scale)));
    } else {
        static_assert(Bits <= 32);
        return static_cast<std::int32_t>(
            std::nearbyint(std::clamp(value, -scale, scale - Number(1))));
    }
}

/// The same where the width is known only at run time; at most 32 bits.
inline std::int32_t toInteger(float sample, int bits) {
    const double scale = std::ldexp(1.0, bits - 1);
    const double value = std::isnan(sample) ? 0.0 : double(sample) * scale;
    return static_cast<std::int32_t>(std::nearbyint(std::clamp(value, -scale, scale - 1)));
}

}  // namespace audio::pcm
