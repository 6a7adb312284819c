// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/write/Mp3InfoFrame.h"

#include <algorithm>
#include <span>
#include <string_view>

#include "audio/mpeg/read/Checksums.h"
#include "audio/mpeg/read/InfoTag.h"

namespace audio::write {
namespace {

using mpeg::InfoTag;

constexpr std::uint32_t allFields = 0x0F;  // frames, bytes, table of contents, quality
constexpr int xingBytes = 120;             // with all of them
constexpr int highestIndex = 14;
constexpr std::uint8_t constantBitRate = 0x01;  // revision 0, method 1

mpeg::FrameHeader roomyHeader(const mpeg::FrameHeader& sound) {
    int index = sound.bitRateIndex();
    while (index < highestIndex && !Mp3InfoFrame::fitsInto(sound.withBitRateIndex(index))) ++index;
    return sound.withBitRateIndex(index);
}

void put(std::vector<std::uint8_t>& bytes, std::size_t at, std::uint32_t value, int count) {
    for (int i = count; i-- > 0; value >>= 8) bytes[at + std::size_t(i)] = std::uint8_t(value);
}

}  // namespace

bool Mp3InfoFrame::fitsInto(const mpeg::FrameHeader& header) {
    const int size = header.size() - (header.padding ? 1 : 0);
    return size >= header.overhead() + xingBytes + int(InfoTag::extensionSize);
}

Mp3InfoFrame::Mp3InfoFrame(const mpeg::FrameHeader& sound) : header_(roomyHeader(sound)) {}

void Mp3InfoFrame::follow(const unsigned char* bytes, std::size_t count) {
    musicCrc_ = mpeg::lameCrc(musicCrc_, std::span(bytes, count));
    musicBytes_ += static_cast<std::uint32_t>(count);
}

std::vector<std::uint8_t> Mp3InfoFrame::bytes(std::uint32_t frames, int delay, int padding) const {
    std::vector<std::uint8_t> frame(static_cast<std::size_t>(header_.size()));
    put(frame, 0, header_.word, 4);
    const auto tag = static_cast<std::size_t>(4 + header_.sideInfoSize());
    constexpr std::string_view name = "Info";
    std::copy(name.begin(), name.end(), frame.begin() + std::ptrdiff_t(tag));
    const std::uint32_t all = musicBytes_ + static_cast<std::uint32_t>(frame.size());
    put(frame, tag + 4, allFields, 4);
    put(frame, tag + 8, frames, 4);
    put(frame, tag + 12, all, 4);
    for (std::uint32_t i = 0; i < 100; ++i) frame[tag + 16 + i] = std::uint8_t(i * 256 / 100);
    const std::size_t lame = tag + xingBytes;
    constexpr std::string_view encoder = "LAME3.100";
    std::copy(encoder.begin(), encoder.end(), frame.begin() + std::ptrdiff_t(lame));
    frame[lame + InfoTag::methodField] = constantBitRate;
    put(frame, lame + InfoTag::delayField,
        static_cast<std::uint32_t>(delay) << 12 | static_cast<std::uint32_t>(padding), 3);
    put(frame, lame + InfoTag::musicLengthField, all, 4);
    put(frame, lame + InfoTag::musicCrcField, musicCrc_, 2);
    const std::size_t crcAt = lame + InfoTag::tagCrcField;
    put(frame, crcAt, mpeg::lameCrc(0, std::span(frame.data(), crcAt)), 2);
    return frame;
}

}  // namespace audio::write
