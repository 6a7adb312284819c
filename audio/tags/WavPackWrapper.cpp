// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/tags/WavPackWrapper.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <span>
#include <string>
#include <string_view>

#include "audio/tags/MpegTags.h"
#include "platform/Error.h"
#include "platform/Paths.h"
#include "platform/file/WindowReader.h"

// WavPack 4 & 5 Binary File / Block Format, sections "Block Header" and "Metadata Sub-Blocks".
namespace audio::tags {
namespace {

using platform::file::WindowReader;

constexpr std::size_t blockHeader = 32;
constexpr std::size_t largestBlock = 1 << 20;
enum SubBlock : std::uint8_t { waveHead = 0x21, waveTail, otherHead, otherTail };
constexpr std::uint8_t oddSize = 0x40;
constexpr std::uint8_t largeSize = 0x80;

std::size_t number(std::span<const std::uint8_t> bytes, std::size_t at) {
    const auto half = [&](std::size_t i) {
        return std::size_t{bytes[i]} | std::size_t{bytes[i + 1]} << 8;
    };
    return half(at) | half(at + 2) << 16;
}

/// Chunks that say nothing which the sound does not say, or nothing at all.
bool followsFromTheSound(std::string_view name) {
    constexpr std::array<std::string_view, 8> plain = {"fmt ", "fact", "data", "ds64",
                                                       "JUNK", "junk", "PAD ", "FLLR"};
    return std::find(plain.begin(), plain.end(), name) != plain.end();
}

std::string shown(std::string_view name) {
    std::string text(name);
    for (char& letter : text)
        if (std::isprint(static_cast<unsigned char>(letter)) == 0) letter = '?';
    return text;
}

/// The first chunk of a wrapper that is more than the sound; empty where there is none.
std::string foreignChunk(std::span<const std::uint8_t> bytes) {
    constexpr std::size_t riffHead = 12;
    constexpr std::size_t chunkHead = 8;
    const auto nameAt = [&](std::size_t at) {
        return std::string_view(reinterpret_cast<const char*>(bytes.data() + at), 4);
    };
    std::size_t at = 0;
    if (bytes.size() >= riffHead && nameAt(8) == "WAVE") at = riffHead;
    // The byte that made the sound's size even.
    if (at == 0 && !bytes.empty() && bytes[0] == 0) at = 1;
    while (at + chunkHead <= bytes.size()) {
        if (!followsFromTheSound(nameAt(at))) return shown(nameAt(at));
        if (nameAt(at) == "data") break;
        const std::size_t size = number(bytes, at + 4);
        at += chunkHead + size + size % 2;
    }
    return {};
}

/// The same of a block's sub-blocks.
std::string foreignIn(std::span<const std::uint8_t> block) {
    for (std::size_t at = blockHeader; at + 2 <= block.size();) {
        const std::uint8_t id = block[at];
        std::size_t size = std::size_t{block[at + 1]} * 2;
        at += 2;
        if ((id & largeSize) != 0) {
            if (at + 2 > block.size()) break;
            size += std::size_t{block[at]} << 9 | std::size_t{block[at + 1]} << 17;
            at += 2;
        }
        if (size > block.size() - at) break;
        const std::size_t used = size - ((id & oddSize) != 0 && size > 0 ? 1 : 0);
        const auto type = static_cast<std::uint8_t>(id & ~(oddSize | largeSize));
        if ((type == otherHead || type == otherTail) && used > 0) return "of another format";
        if (type == waveHead || type == waveTail)
            if (std::string name = foreignChunk(block.subspan(at, used)); !name.empty())
                return name;
        at += size;
    }
    return {};
}

std::string foreignIn(WindowReader& reader, const mpeg::TagRanges& around) {
    for (std::int64_t at = around.leadingEnd; at < around.trailingStart;) {
        const auto head = reader.at(at, blockHeader);
        if (head.size() < blockHeader ||
            std::string_view("wvpk") !=
                std::string_view(reinterpret_cast<const char*>(head.data()), 4))
            break;
        const std::size_t size = number(head, 4) + 8;
        if (size > largestBlock) break;
        if (std::string name = foreignIn(reader.at(at, size)); !name.empty()) return name;
        at += static_cast<std::int64_t>(size);
    }
    return {};
}

}  // namespace

void writeWithWavPackTags(const Carriage& carriage, platform::file::Replacement& file) {
    WindowReader reader(carriage.source);
    const std::string name = foreignIn(reader, mpeg::findTags(reader));
    if (!name.empty())
        throw platform::Error("\"" + platform::toUtf8(carriage.source) +
                              "\" cannot be saved: it keeps chunks of the file that was packed (" +
                              name + "), which cannot be carried over.");
    writeBetweenTags(carriage, file);
}

}  // namespace audio::tags
