// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/tags/Id3v2Level.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

#include "audio/tags/LevelNames.h"

// Layouts: ID3 tag version 2.2.0, 2.3.0 and 2.4.0 informal standards.
namespace audio::tags {
namespace {

using Bytes = std::span<const std::byte>;

constexpr std::size_t headerSize = 10;
constexpr unsigned unsynchronised = 0x80, extended = 0x40, withFooter = 0x10;

unsigned byteAt(Bytes bytes, std::size_t at) {
    return std::to_integer<unsigned>(bytes[at]);
}

std::size_t bigEndian(Bytes bytes, std::size_t at, std::size_t count, unsigned bitsPerByte) {
    std::size_t value = 0;
    for (std::size_t i = 0; i < count; ++i) value = value << bitsPerByte | byteAt(bytes, at + i);
    return value;
}

void putSize(std::vector<std::byte>& tag, std::size_t at, std::size_t size, unsigned bitsPerByte) {
    for (std::size_t i = 0; i < 4; ++i)
        tag[at + 3 - i] =
            static_cast<std::byte>(size >> (bitsPerByte * i) & ((1U << bitsPerByte) - 1));
}

// Takes out the zero that follows each 0xFF in unsynchronised data.
std::vector<std::byte> synchronised(Bytes bytes) {
    std::vector<std::byte> result;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        result.push_back(bytes[i]);
        if (byteAt(bytes, i) == 0xFF && i + 1 < bytes.size() && byteAt(bytes, i + 1) == 0) ++i;
    }
    return result;
}

/// The first text of a field in any of the four encodings, as far as it is ASCII.
std::string firstText(unsigned encoding, Bytes text) {
    const bool wide = encoding == 1 || encoding == 2;
    const std::size_t step = wide ? 2 : 1;
    std::string result;
    for (std::size_t i = 0; i + step <= text.size(); i += step) {
        const unsigned a = byteAt(text, i);
        const unsigned b = wide ? byteAt(text, i + 1) : 0;
        if (wide && ((a == 0xFF && b == 0xFE) || (a == 0xFE && b == 0xFF))) continue;
        if (a == 0 && b == 0) break;
        result += static_cast<char>(a != 0 ? a : b);
    }
    return result;
}

/// What differs between the versions of the tag.
struct Version {
    unsigned number;
    std::size_t idSize() const { return number == 2 ? 3 : 4; }
    std::size_t frameHeader() const { return number == 2 ? 6 : 10; }
    std::size_t frameSize(Bytes bytes, std::size_t at, bool plain) const {
        if (number == 2) return bigEndian(bytes, at + 3, 3, 8);
        return bigEndian(bytes, at + 4, 4, number == 4 && !plain ? 7 : 8);
    }
    /// The content of a frame, without what its flags put before it; nothing where it is packed.
    std::optional<std::vector<std::byte>> content(Bytes frame, bool allUnsynchronised) const {
        Bytes body = frame.subspan(frameHeader());
        bool unsync = false;
        if (number > 2) {
            const unsigned flags = byteAt(frame, 9);
            const bool packed = (flags & (number == 4 ? 0x0CU : 0xC0U)) != 0;
            const std::size_t before = (flags & (number == 4 ? 0x40U : 0x20U) ? 1U : 0U) +
                                       (number == 4 && (flags & 1U) != 0 ? 4U : 0U);
            if (packed || body.size() < before) return {};
            body = body.subspan(before);
            unsync = number == 4 && ((flags & 2U) != 0 || allUnsynchronised);
        }
        return unsync ? synchronised(body) : std::vector(body.begin(), body.end());
    }
};

bool statesLevel(Bytes frame, Version version, bool allUnsynchronised) {
    static constexpr std::array<std::string_view, 5> always{"RVA2", "RVAD", "RVA", "RGAD", "XRVA"};
    const std::string id(reinterpret_cast<const char*>(frame.data()), version.idSize());
    if (std::find(always.begin(), always.end(), id) != always.end()) return true;
    const bool user = id == "TXXX" || id == "TXX";
    const bool comment = id == "COMM" || id == "COM";
    if (!user && !comment) return false;
    const auto content = version.content(frame, allUnsynchronised);
    const std::size_t before = user ? 1 : 4;  // encoding, and a comment's language
    if (!content || content->size() < before) return false;
    return isLevelName(firstText(byteAt(*content, 0), Bytes(*content).subspan(before)));
}

struct Cut {
    std::size_t start;
    std::size_t end;
};

/// Where the frames to be cut lie and where the frames end.
struct Walk {
    std::vector<Cut> cuts;
    std::size_t end = 0;
};

std::optional<Walk> walkFrames(Bytes body, std::size_t at, Version version, bool unsync,
                               bool plainSizes) {
    Walk walk;
    while (at + version.frameHeader() <= body.size() && byteAt(body, at) != 0) {
        const std::size_t size = version.frameSize(body, at, plainSizes) + version.frameHeader();
        if (size > body.size() - at) return {};
        const auto isIdLetter = [](std::byte letter) {
            const auto c = std::to_integer<char>(letter);
            return (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9');
        };
        const Bytes id = body.subspan(at, version.idSize());
        if (!std::all_of(id.begin(), id.end(), isIdLetter)) return {};
        if (statesLevel(body.subspan(at, size), version, unsync))
            walk.cuts.push_back({at, at + size});
        at += size;
    }
    walk.end = at;
    return walk;
}

/// Finds bytes of the synchronised data in the unsynchronised original, asked for in rising order:
/// one walk finds them all.
class OriginalPlaces {
  public:
    explicit OriginalPlaces(Bytes original) : original_(original) {}

    std::size_t of(std::size_t place) {
        for (; plain_ < place && at_ < original_.size(); ++plain_, ++at_)
            if (byteAt(original_, at_) == 0xFF && at_ + 1 < original_.size() &&
                byteAt(original_, at_ + 1) == 0)
                ++at_;
        return at_;
    }

  private:
    Bytes original_;
    std::size_t plain_ = 0;  ///< bytes of the synchronised data that were passed
    std::size_t at_ = 0;     ///< bytes of the original
};

/// The size of the extended header that begins the body; nothing where there is a checksum in it.
std::optional<std::size_t> extendedHeader(Bytes body, Version version) {
    if (body.size() < 10) return {};
    const std::size_t size = bigEndian(body, 0, 4, version.number == 4 ? 7 : 8);
    const bool checksum =
        version.number == 4 ? (byteAt(body, 5) & 0x20U) != 0 : (byteAt(body, 4) & 0x80U) != 0;
    if (checksum) return {};
    return version.number == 4 ? size : size + 4;
}

std::vector<Cut> levelFrames(Bytes tag, Bytes body) {
    const Version version{byteAt(tag, 3)};
    const unsigned flags = byteAt(tag, 5);
    const bool unsync = (flags & unsynchronised) != 0;
    // Up to version 2.3 the whole tag is unsynchronised at once, sizes counted before that.
    const bool wholeUnsync = unsync && version.number < 4;
    const std::vector<std::byte> plain =
        wholeUnsync ? synchronised(body) : std::vector(body.begin(), body.end());
    std::size_t start = 0;
    if ((flags & extended) != 0) {
        const auto size = version.number > 2 ? extendedHeader(plain, version) : std::nullopt;
        if (!size || *size > plain.size()) return {};
        start = *size;
    }
    auto walk = walkFrames(plain, start, version, unsync, false);
    // Some programs write the sizes of version 2.3 into tags of version 2.4.
    if (!walk && version.number == 4) walk = walkFrames(plain, start, version, unsync, true);
    if (!walk) return {};
    if (wholeUnsync) {
        OriginalPlaces places(body);
        for (Cut& cut : walk->cuts) cut = {places.of(cut.start), places.of(cut.end)};
    }
    return walk->cuts;
}

}  // namespace

std::optional<std::size_t> id3v2Size(Bytes bytes) {
    if (bytes.size() < headerSize || std::memcmp(bytes.data(), "ID3", 3) != 0) return {};
    if (byteAt(bytes, 3) < 2 || byteAt(bytes, 3) > 4) return {};
    const std::size_t footer = (byteAt(bytes, 5) & withFooter) != 0 ? headerSize : 0;
    const std::size_t size = headerSize + bigEndian(bytes, 6, 4, 7) + footer;
    return size <= bytes.size() ? std::optional(size) : std::nullopt;
}

std::vector<std::byte> withoutLevelFrames(Bytes tag) {
    const bool footer = (byteAt(tag, 5) & withFooter) != 0;
    const Bytes body = tag.subspan(headerSize, tag.size() - headerSize - (footer ? headerSize : 0));
    std::vector<std::byte> result(tag.begin(), tag.begin() + headerSize);
    std::size_t at = 0;
    for (const Cut& cut : levelFrames(tag, body)) {
        const Bytes kept = body.subspan(at, cut.start - at);
        result.insert(result.end(), kept.begin(), kept.end());
        at = cut.end;
    }
    const Bytes rest = body.subspan(at);
    result.insert(result.end(), rest.begin(), rest.end());
    if (!footer) {
        result.resize(tag.size());
        return result;
    }
    const std::size_t bodySize = result.size() - headerSize;
    const Bytes last = tag.last(headerSize);
    result.insert(result.end(), last.begin(), last.end());
    putSize(result, 6, bodySize, 7);
    putSize(result, result.size() - 4, bodySize, 7);
    return result;
}

}  // namespace audio::tags
