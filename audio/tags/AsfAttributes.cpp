// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/tags/AsfAttributes.h"

#include <cstdint>
#include <cstring>
#include <optional>
#include <string>

#include "audio/tags/LevelNames.h"

namespace audio::tags {
namespace {

constexpr std::size_t countField = 24;
constexpr std::size_t firstAttribute = 26;

std::size_t number(std::span<const std::byte> bytes, std::size_t at, std::size_t size) {
    std::uint64_t value = 0;
    std::memcpy(&value, bytes.data() + at, size);
    return static_cast<std::size_t>(value);
}

/// Latin letters of a UTF-16 name; anything else becomes a question mark, which no name has.
std::string plainName(std::span<const std::byte> utf16) {
    std::string name;
    for (std::size_t i = 0; i + 1 < utf16.size(); i += 2) {
        const std::size_t letter = number(utf16, i, 2);
        if (letter == 0) break;
        name += letter < 128 ? static_cast<char>(letter) : '?';
    }
    return name;
}

struct Attribute {
    std::string name;
    std::size_t size = 0;
};

// Extended: name length, name, type, value length, value. Metadata: language, stream, name length,
// type, value length, name, value.
std::optional<Attribute> attributeAt(std::span<const std::byte> rest, AsfAttributeKind kind) {
    const bool extended = kind == AsfAttributeKind::Extended;
    if (rest.size() < (extended ? 2U : 12U)) return {};
    const std::size_t nameSize = number(rest, extended ? 0 : 4, 2);
    const std::size_t nameAt = extended ? 2 : 12;
    if (rest.size() < nameAt + nameSize + (extended ? 4 : 0)) return {};
    const std::size_t valueSize =
        extended ? number(rest, nameAt + nameSize + 2, 2) : number(rest, 8, 4);
    const std::size_t size = nameAt + nameSize + (extended ? 4 : 0) + valueSize;
    if (rest.size() < size) return {};
    return Attribute{plainName(rest.subspan(nameAt, nameSize)), size};
}

}  // namespace

std::vector<std::byte> withoutLevelAttributes(std::span<const std::byte> object,
                                              AsfAttributeKind kind) {
    const std::vector<std::byte> unchanged(object.begin(), object.end());
    if (object.size() < firstAttribute) return unchanged;
    std::vector<std::byte> result(object.begin(), object.begin() + firstAttribute);
    const std::size_t count = number(object, countField, 2);
    std::size_t at = firstAttribute;
    std::uint16_t kept = 0;
    for (std::size_t i = 0; i < count; ++i) {
        const auto attribute = attributeAt(object.subspan(at), kind);
        if (!attribute) return unchanged;
        const auto bytes = object.subspan(at, attribute->size);
        at += attribute->size;
        if (isLevelName(attribute->name)) continue;
        result.insert(result.end(), bytes.begin(), bytes.end());
        ++kept;
    }
    result.insert(result.end(), object.begin() + static_cast<std::ptrdiff_t>(at), object.end());
    const std::uint64_t size = result.size();
    std::memcpy(result.data() + 16, &size, 8);
    std::memcpy(result.data() + countField, &kept, 2);
    return result;
}

}  // namespace audio::tags
