// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/effects/engine/ForeignMp3.h"

#include <algorithm>
#include <fstream>
#include <iterator>

#include "audio/mpeg/read/FrameHeader.h"

namespace foreign {
namespace {

using audio::mpeg::FrameHeader;

void put(Bytes& bytes, std::uint64_t value, int count) {
    while (count-- > 0)
        bytes.push_back(count < 8 ? static_cast<std::uint8_t>(value >> (8 * count)) : 0);
}

void put(Bytes& bytes, const std::string& text) {
    bytes.insert(bytes.end(), text.begin(), text.end());
}

/// Bytes of each frame.
std::vector<std::size_t> framesOf(const Bytes& sound) {
    std::vector<std::size_t> sizes;
    std::size_t at = 0;
    while (at + 4 <= sound.size()) {
        const auto header = FrameHeader::parse(std::span(sound).subspan(at, 4));
        if (!header) break;
        sizes.push_back(std::min(static_cast<std::size_t>(header->size()), sound.size() - at));
        at += sizes.back();
    }
    return sizes;
}

/// A frame like the sound's, without CRC and padding, that holds so many bytes.
Bytes emptyFrame(const Bytes& sound, std::size_t needed) {
    FrameHeader header = FrameHeader::parse(sound).value();
    header.word = (header.word | 0x10000U) & ~0x230U;
    header.crc = header.padding = false;
    for (int index = 1; index <= 14; ++index) {
        header = header.withBitRateIndex(index);
        if (static_cast<std::size_t>(header.size()) >= needed) break;
    }
    Bytes frame;
    put(frame, header.word, 4);
    frame.resize(static_cast<std::size_t>(header.size()));
    return frame;
}

Bytes joined(Bytes left, const Bytes& right) {
    left.insert(left.end(), right.begin(), right.end());
    return left;
}

}  // namespace

Bytes soundOf(const std::filesystem::path& file) {
    std::ifstream in(file, std::ios::binary);
    const Bytes bytes{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
    const auto header = FrameHeader::parse(bytes).value();
    const auto letters = bytes.begin() + header.overhead();
    const bool tagged =
        std::equal(letters, letters + 4, "Xing") || std::equal(letters, letters + 4, "Info");
    return {bytes.begin() + (tagged ? header.size() : 0), bytes.end()};
}

Bytes xing(const Bytes& sound, unsigned flags, const Bytes& extension) {
    Bytes tag;
    put(tag, "Xing");
    put(tag, flags, 4);
    if (flags & 1) put(tag, framesOf(sound).size(), 4);
    if (flags & 2) put(tag, sound.size() + 417, 4);
    for (unsigned i = 0; flags & 4 && i < 100; ++i) put(tag, i * 256 / 100, 1);
    if (flags & 8) put(tag, 50, 4);
    return joined(tag, extension);
}

Bytes extension(const std::string& name, unsigned delay, unsigned padding, std::size_t size) {
    Bytes bytes;
    put(bytes, name);
    bytes.resize(9);
    put(bytes, 4, 1);    // method
    put(bytes, 160, 1);  // low-pass
    put(bytes, 0, 10);   // levels, flags, bit-rate
    put(bytes, std::uint64_t{delay} << 12 | padding, 3);
    bytes.resize(36);
    bytes.resize(size);
    return bytes;
}

Bytes behindXing(const Bytes& sound, const Bytes& says, std::size_t frameSize) {
    const auto at = static_cast<std::size_t>(4 + FrameHeader::parse(sound)->sideInfoSize());
    Bytes frame = emptyFrame(sound, std::max(frameSize, at + says.size()));
    std::copy(says.begin(), says.end(), frame.begin() + static_cast<std::ptrdiff_t>(at));
    return joined(frame, sound);
}

Bytes behindVbri(const Bytes& sound, unsigned delay) {
    const std::vector<std::size_t> frames = framesOf(sound);
    const std::size_t stretch = (frames.size() + 99) / 100;
    const std::size_t entries = (frames.size() + stretch - 1) / stretch;
    Bytes frame = emptyFrame(sound, 36 + 26 + 2 * entries);
    Bytes tag;
    put(tag, "VBRI");
    put(tag, 1, 2);
    put(tag, delay, 2);
    put(tag, 75, 2);
    put(tag, frame.size() + sound.size(), 4);
    put(tag, frames.size(), 4);
    put(tag, entries, 2);
    put(tag, 1, 2);  // scale
    put(tag, 2, 2);  // bytes of an entry
    put(tag, stretch, 2);
    for (std::size_t i = 0; i < frames.size(); i += stretch) {
        std::size_t size = 0;
        for (std::size_t k = i; k < std::min(frames.size(), i + stretch); ++k) size += frames[k];
        put(tag, size, 2);
    }
    std::copy(tag.begin(), tag.end(), frame.begin() + 36);
    return joined(frame, sound);
}

void write(const std::filesystem::path& file, const Bytes& bytes) {
    std::ofstream(file, std::ios::binary)
        .write(reinterpret_cast<const char*>(bytes.data()),
               static_cast<std::streamsize>(bytes.size()));
}

}  // namespace foreign
