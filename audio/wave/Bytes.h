// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

namespace audio::wave {

/// A little-endian number of `Size` bytes at `bytes`.
template <std::size_t Size>
std::uint64_t littleEndian(const std::byte* bytes) {
    std::uint64_t value = 0;
    for (std::size_t i = 0; i < Size; ++i)
        value |= std::to_integer<std::uint64_t>(bytes[i]) << (8 * i);
    return value;
}

/// Appends a little-endian number of `Size` bytes.
template <std::size_t Size>
void appendLittleEndian(std::vector<std::byte>& bytes, std::uint64_t value) {
    for (std::size_t i = 0; i < Size; ++i)
        bytes.push_back(static_cast<std::byte>((value >> (8 * i)) & 0xFF));
}

inline void appendText(std::vector<std::byte>& bytes, std::string_view text) {
    for (const char letter : text) bytes.push_back(static_cast<std::byte>(letter));
}

}  // namespace audio::wave
