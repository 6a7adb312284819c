// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/tags/ApeLevel.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

#include "audio/tags/LevelNames.h"

namespace audio::tags {
namespace {

using Bytes = std::span<const std::byte>;

// Header and footer: "APETAGEX", version, size (items and footer), count of items, flags, zeros.
constexpr std::string_view signature = "APETAGEX";
constexpr std::size_t frameSize = 32;
constexpr std::size_t sizeField = 12, countField = 16, flagsField = 20;
constexpr std::uint32_t hasHeader = 1U << 31, isHeader = 1U << 29;

std::uint32_t number(Bytes bytes, std::size_t at) {
    std::uint32_t value = 0;
    std::memcpy(&value, bytes.data() + at, 4);
    return value;
}

void putNumber(std::vector<std::byte>& bytes, std::size_t at, std::size_t value) {
    const auto narrow = static_cast<std::uint32_t>(value);
    std::memcpy(bytes.data() + at, &narrow, 4);
}

std::optional<ApePlace> placeAt(Bytes bytes, std::size_t at) {
    if (bytes.size() - at < frameSize) return {};
    const std::size_t size = number(bytes, at + sizeField);
    const std::uint32_t flags = number(bytes, at + flagsField);
    if (size < frameSize || size > bytes.size()) return {};
    if ((flags & isHeader) != 0) {
        const std::size_t end = at + frameSize + size;
        return end <= bytes.size() ? std::optional(ApePlace{at, end}) : std::nullopt;
    }
    const std::size_t whole = size + ((flags & hasHeader) != 0 ? frameSize : 0);
    if (whole > at + frameSize) return {};
    return ApePlace{at + frameSize - whole, at + frameSize};
}

/// The end of the item at a place, and its key; nothing where it is damaged.
struct Item {
    std::string key;
    std::size_t end = 0;
};

std::optional<Item> itemAt(Bytes items, std::size_t at) {
    if (items.size() - at < 9) return {};
    const std::size_t valueSize = number(items, at);
    const auto key = items.subspan(at + 8);
    const auto zero = std::find(key.begin(), key.end(), std::byte{0});
    if (zero == key.end()) return {};
    const auto keySize = static_cast<std::size_t>(zero - key.begin());
    if (key.size() - keySize - 1 < valueSize) return {};
    return Item{std::string(reinterpret_cast<const char*>(key.data()), keySize),
                at + 8 + keySize + 1 + valueSize};
}

}  // namespace

std::optional<ApePlace> findApeTag(Bytes bytes) {
    const auto* letters = reinterpret_cast<const char*>(bytes.data());
    const std::string_view text(letters, bytes.size());
    for (std::size_t at = text.find(signature); at != std::string_view::npos;
         at = text.find(signature, at + 1))
        if (const auto place = placeAt(bytes, at)) return place;
    return {};
}

std::vector<std::byte> withoutLevelItems(Bytes tag) {
    const std::vector<std::byte> unchanged(tag.begin(), tag.end());
    if (tag.size() < frameSize) return unchanged;
    const bool header = (number(tag, tag.size() - frameSize + flagsField) & hasHeader) != 0 &&
                        tag.size() >= 2 * frameSize;
    const Bytes footer = tag.last(frameSize);
    const Bytes items =
        tag.subspan(header ? frameSize : 0, tag.size() - frameSize - (header ? frameSize : 0));
    const std::size_t count = number(footer, countField);
    std::vector<std::byte> result(tag.begin(), tag.begin() + (header ? frameSize : 0));
    std::size_t at = 0;
    std::size_t kept = 0;
    for (std::size_t i = 0; i < count; ++i) {
        const auto item = itemAt(items, at);
        if (!item) return unchanged;
        const Bytes whole = items.subspan(at, item->end - at);
        at = item->end;
        if (isLevelName(item->key)) continue;
        result.insert(result.end(), whole.begin(), whole.end());
        ++kept;
    }
    const Bytes rest = items.subspan(at);
    result.insert(result.end(), rest.begin(), rest.end());
    result.insert(result.end(), footer.begin(), footer.end());
    const std::size_t size = result.size() - (header ? frameSize : 0);
    for (const std::size_t frame : {std::size_t{0}, result.size() - frameSize}) {
        if (frame == 0 && !header) continue;
        putNumber(result, frame + sizeField, size);
        putNumber(result, frame + countField, kept);
    }
    return result;
}

}  // namespace audio::tags
