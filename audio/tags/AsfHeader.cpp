// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/tags/AsfHeader.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <span>
#include <string>

#include "audio/tags/AsfAttributes.h"
#include "platform/Error.h"
#include "platform/Paths.h"
#include "platform/file/WindowReader.h"

// Object layouts and identifiers: Advanced Systems Format Specification, revision 01.20.03.
namespace audio::tags {
namespace {

using Bytes = std::vector<std::byte>;
using Guid = std::array<std::uint8_t, 16>;

constexpr std::size_t objectHeader = 24;          // identifier, size
constexpr std::size_t fileHeader = 30;            // … number of objects, two reserved bytes
constexpr std::size_t extensionHeader = 46;       // … reserved identifier, reserved, data size
constexpr std::size_t fileSizeField = 40;         // in the file properties object
constexpr std::uint64_t largestHeader = 1 << 28;  // pictures included

constexpr Guid headerId{0x30, 0x26, 0xB2, 0x75, 0x8E, 0x66, 0xCF, 0x11,
                        0xA6, 0xD9, 0x00, 0xAA, 0x00, 0x62, 0xCE, 0x6C};
constexpr Guid filePropertiesId{0xA1, 0xDC, 0xAB, 0x8C, 0x47, 0xA9, 0xCF, 0x11,
                                0x8E, 0xE4, 0x00, 0xC0, 0x0C, 0x20, 0x53, 0x65};
constexpr Guid extensionId{0xB5, 0x03, 0xBF, 0x5F, 0x2E, 0xA9, 0xCF, 0x11,
                           0x8E, 0xE3, 0x00, 0xC0, 0x0C, 0x20, 0x53, 0x65};
constexpr Guid contentId{0x33, 0x26, 0xB2, 0x75, 0x8E, 0x66, 0xCF, 0x11,
                         0xA6, 0xD9, 0x00, 0xAA, 0x00, 0x62, 0xCE, 0x6C};
constexpr Guid extendedContentId{0x40, 0xA4, 0xD0, 0xD2, 0x07, 0xE3, 0xD2, 0x11,
                                 0x97, 0xF0, 0x00, 0xA0, 0xC9, 0x5E, 0xA8, 0x50};
constexpr Guid markerId{0x01, 0xCD, 0x87, 0xF4, 0x51, 0xA9, 0xCF, 0x11,
                        0x8E, 0xE6, 0x00, 0xC0, 0x0C, 0x20, 0x53, 0x65};
constexpr Guid scriptId{0x30, 0x1A, 0xFB, 0x1E, 0x62, 0x0B, 0xD0, 0x11,
                        0xA3, 0x9B, 0x00, 0xA0, 0xC9, 0x03, 0x48, 0xF6};
constexpr Guid brandingId{0xFA, 0xB3, 0x11, 0x22, 0x23, 0xBD, 0xD2, 0x11,
                          0xB4, 0xB7, 0x00, 0xA0, 0xC9, 0x55, 0xFC, 0x6E};
constexpr Guid paddingId{0x74, 0xD4, 0x06, 0x18, 0xDF, 0xCA, 0x09, 0x45,
                         0xA4, 0xBA, 0x9A, 0xAB, 0xCB, 0x96, 0xAA, 0xE8};
constexpr Guid metadataId{0xEA, 0xCB, 0xF8, 0xC5, 0xAF, 0x5B, 0x77, 0x48,
                          0x84, 0x67, 0xAA, 0x8C, 0x44, 0xFA, 0x4C, 0xCA};
constexpr Guid libraryId{0x94, 0x1C, 0x23, 0x44, 0x98, 0x94, 0xD1, 0x49,
                         0xA1, 0x41, 0x1D, 0x13, 0x4E, 0x45, 0x70, 0x54};
constexpr Guid languagesId{0xA9, 0x46, 0x43, 0x7C, 0xE0, 0xEF, 0xFC, 0x4B,
                           0xB2, 0x29, 0x39, 0x3E, 0xDE, 0x41, 0x5C, 0x85};
constexpr Guid encryptionId{0xFB, 0xB3, 0x11, 0x22, 0x23, 0xBD, 0xD2, 0x11,
                            0xB4, 0xB7, 0x00, 0xA0, 0xC9, 0x55, 0xFC, 0x6E};
constexpr Guid extendedEncryptionId{0x14, 0xE6, 0x8A, 0x29, 0x22, 0x26, 0x17, 0x4C,
                                    0xB9, 0x35, 0xDA, 0xE0, 0x7E, 0xE9, 0x28, 0x9C};

constexpr std::array carried{contentId, extendedContentId, markerId,  scriptId,   brandingId,
                             paddingId, metadataId,        libraryId, languagesId};

std::uint64_t number(std::span<const std::byte> bytes, std::size_t at, std::size_t size) {
    std::uint64_t value = 0;
    std::memcpy(&value, bytes.data() + at, size);
    return value;
}

void setNumber(Bytes& bytes, std::size_t at, std::uint64_t value, std::size_t size) {
    std::memcpy(bytes.data() + at, &value, size);
}

/// One object: header and body.
struct Object {
    std::span<const std::byte> bytes;

    bool is(const Guid& id) const { return std::memcmp(bytes.data(), id.data(), id.size()) == 0; }
    bool isCarried() const {
        return std::any_of(carried.begin(), carried.end(),
                           [this](const Guid& id) { return is(id); });
    }
};

[[noreturn]] void damaged(const std::filesystem::path& file) {
    throw platform::Error("The header of \"" + platform::toUtf8(file) +
                          "\" is damaged, so its tags cannot be carried over.");
}

std::vector<Object> objectsIn(std::span<const std::byte> bytes, const std::filesystem::path& file) {
    std::vector<Object> objects;
    while (!bytes.empty()) {
        if (bytes.size() < objectHeader) damaged(file);
        const std::uint64_t size = number(bytes, 16, 8);
        if (size < objectHeader || size > bytes.size()) damaged(file);
        objects.push_back({bytes.first(static_cast<std::size_t>(size))});
        bytes = bytes.subspan(static_cast<std::size_t>(size));
    }
    return objects;
}

/// The header object of a file, taken apart.
struct Header {
    Bytes bytes;
    std::vector<Object> objects;    ///< of the top level
    std::vector<Object> extension;  ///< those inside the header extension
    std::int64_t fileSize = 0;

    explicit Header(const std::filesystem::path& file) {
        platform::file::WindowReader reader(file);
        fileSize = reader.size();
        const auto start = reader.at(0, fileHeader);
        if (start.size() < fileHeader ||
            std::memcmp(start.data(), headerId.data(), headerId.size()) != 0)
            damaged(file);
        const std::uint64_t size = number(std::as_bytes(start), 16, 8);
        if (size < fileHeader || size > largestHeader) damaged(file);
        const auto all = std::as_bytes(reader.at(0, static_cast<std::size_t>(size)));
        if (all.size() < size) damaged(file);
        bytes.assign(all.begin(), all.end());
        objects = objectsIn(std::span(bytes).subspan(fileHeader), file);
        for (const Object& object : objects) {
            if (!object.is(extensionId)) continue;
            if (object.bytes.size() < extensionHeader) damaged(file);
            extension = objectsIn(object.bytes.subspan(extensionHeader), file);
        }
    }
};

void append(Bytes& to, std::span<const std::byte> bytes) {
    to.insert(to.end(), bytes.begin(), bytes.end());
}

Bytes carriedObject(const Object& object, LevelFields levels) {
    if (levels == LevelFields::Drop && object.is(extendedContentId))
        return withoutLevelAttributes(object.bytes, AsfAttributeKind::Extended);
    if (levels == LevelFields::Drop && (object.is(metadataId) || object.is(libraryId)))
        return withoutLevelAttributes(object.bytes, AsfAttributeKind::Metadata);
    return {object.bytes.begin(), object.bytes.end()};
}

/// The metadata of one list and the stream's own objects of the other, in the order of the first:
/// where an object that describes the stream stood, the new stream's own stands.
std::vector<Bytes> merged(const std::vector<Object>& metadata, std::vector<Object> stream,
                          LevelFields levels) {
    std::vector<Bytes> result;
    const auto take = [&result](const Object& object) {
        result.emplace_back(object.bytes.begin(), object.bytes.end());
    };
    std::erase_if(stream, [](const Object& object) { return object.isCarried(); });
    for (const Object& object : metadata) {
        if (object.isCarried()) {
            result.push_back(carriedObject(object, levels));
            continue;
        }
        const auto own = std::find_if(stream.begin(), stream.end(), [&object](const Object& other) {
            return std::equal(other.bytes.begin(), other.bytes.begin() + 16, object.bytes.begin());
        });
        if (own == stream.end()) continue;
        take(*own);
        stream.erase(own);
    }
    for (const Object& object : stream) take(object);
    return result;
}

Bytes extensionObject(const std::vector<Bytes>& content) {
    // The two fixed values behind the size: a reserved identifier and the number 6.
    static constexpr Guid reserved{0x11, 0xD2, 0xD3, 0xAB, 0xBA, 0xA9, 0xCF, 0x11,
                                   0x8E, 0xE6, 0x00, 0xC0, 0x0C, 0x20, 0x53, 0x65};
    Bytes object(extensionHeader);
    std::memcpy(object.data(), extensionId.data(), 16);
    std::memcpy(object.data() + 24, reserved.data(), 16);
    setNumber(object, 40, 6, 2);
    for (const Bytes& inner : content) append(object, inner);
    setNumber(object, 16, object.size(), 8);
    setNumber(object, 42, object.size() - extensionHeader, 4);
    return object;
}

void requireUnprotected(const Header& header, const std::filesystem::path& file) {
    for (const Object& object : header.objects)
        if (object.is(encryptionId) || object.is(extendedEncryptionId))
            throw platform::Error("\"" + platform::toUtf8(file) +
                                  "\" is protected against copying, so it cannot be saved.");
}

}  // namespace

void writeWithAsfMetadata(const std::filesystem::path& encoded, const std::filesystem::path& source,
                          LevelFields levels, platform::file::Replacement& file) {
    const Header sound(encoded);
    const Header metadata(source);
    requireUnprotected(metadata, source);

    const Bytes extension = extensionObject(merged(metadata.extension, sound.extension, levels));
    const std::vector<Bytes> objects = merged(metadata.objects, sound.objects, levels);
    Bytes header(sound.bytes.begin(), sound.bytes.begin() + fileHeader);
    for (const Bytes& object : objects)
        append(header, Object{object}.is(extensionId) ? extension : object);
    setNumber(header, 16, header.size(), 8);
    setNumber(header, 24, objects.size(), 4);
    const std::int64_t rest = sound.fileSize - static_cast<std::int64_t>(sound.bytes.size());
    for (const Object& object : objectsIn(std::span(header).subspan(fileHeader), encoded))
        if (object.is(filePropertiesId) && object.bytes.size() >= fileSizeField + 8)
            setNumber(header,
                      static_cast<std::size_t>(object.bytes.data() - header.data()) + fileSizeField,
                      header.size() + static_cast<std::uint64_t>(rest), 8);
    file.write(header);
    file.copyFrom(encoded, static_cast<std::int64_t>(sound.bytes.size()), rest);
}

}  // namespace audio::tags
