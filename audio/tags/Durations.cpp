// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/tags/Durations.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstring>
#include <span>

#include "audio/mpeg/read/InfoTag.h"
#include "audio/wave/Layout.h"

namespace audio::tags {
namespace {

using mpeg::FrameHeader;
using mpeg::FrameScanner;
using mpeg::ScannedFrame;
using platform::file::WindowReader;
using Bytes = std::span<const std::uint8_t>;

std::uint64_t littleEndian(Bytes bytes, std::size_t at, std::size_t size) {
    std::uint64_t value = 0;
    for (std::size_t i = size; i > 0; --i) value = value << 8 | bytes[at + i - 1];
    return value;
}

std::uint64_t bigEndian(Bytes bytes, std::size_t at, std::size_t size) {
    std::uint64_t value = 0;
    for (std::size_t i = 0; i < size; ++i) value = value << 8 | bytes[at + i];
    return value;
}

/// The share of the tag's bytes that the file really holds is the share of the duration.
std::int64_t taggedDuration(const FrameHeader& header, const mpeg::InfoTag& tag, double bytes) {
    const double samples =
        double(*tag.frames) * header.samples() - tag.delay.value_or(0) - tag.padding.value_or(0);
    const double claimed = std::max(0.0, samples * 1000 / header.sampleRate);
    const double stated = double(tag.bytes.value_or(0));
    const bool whole = stated == 0 || std::abs(bytes - stated) * 50 < stated;
    return std::int64_t(whole ? claimed : claimed * bytes / stated);
}

/// Whether two frames of this stream and bit-rate follow one another near a place.
bool hasRateNear(WindowReader& reader, std::int64_t place, const FrameHeader& first) {
    constexpr std::size_t searched = 8'192;  // more than two frames
    const Bytes bytes = reader.at(place, searched);
    for (std::size_t at = 0; at + 4 <= bytes.size(); ++at) {
        const auto header = FrameHeader::parse(bytes.subspan(at, 4));
        if (!header || !header->sameStream(first) || header->size() <= 0) continue;
        const std::size_t next = at + static_cast<std::size_t>(header->size());
        if (next + 4 > bytes.size()) break;
        const auto second = FrameHeader::parse(bytes.subspan(next, 4));
        if (second && second->sameStream(first)) return header->bitRate == first.bitRate;
    }
    return false;
}

bool hasOneRate(WindowReader& reader, const ScannedFrame& first, std::int64_t end) {
    constexpr std::int64_t samples = 16;
    const std::int64_t step = (end - first.offset) / (samples + 1);
    for (std::int64_t i = 1; i <= samples; ++i)
        if (!hasRateNear(reader, first.offset + i * step, first.header)) return false;
    return true;
}

std::int64_t countedDuration(FrameScanner& scanner, const ScannedFrame& first) {
    constexpr std::int64_t mostBytes = std::int64_t{64} << 20;
    double seconds = double(first.header.samples()) / first.header.sampleRate;
    std::int64_t counted = first.size;
    while (counted < mostBytes) {
        const auto frame = scanner.next();
        if (!frame) return std::int64_t(seconds * 1000);
        seconds += double(frame->header.samples()) / frame->header.sampleRate;
        counted += frame->size;
    }
    const double rest = double(scanner.tags().trailingStart - scanner.position());
    return std::int64_t(seconds * 1000 * (1 + rest / double(counted)));
}

/// A body of sound of so many bytes; -1 where the format does not tell how many make a second.
std::int64_t lengthOf(const wave::SoundFormat& format, std::int64_t bytes) {
    constexpr int aLaw = 6;
    constexpr int muLaw = 7;
    const bool frameByFrame = format.tag == wave::formatTagPcm ||
                              format.tag == wave::formatTagFloat || format.tag == aLaw ||
                              format.tag == muLaw;
    if (frameByFrame && format.blockAlign > 0 && format.sampleRate > 0)
        return bytes / format.blockAlign * 1000 / format.sampleRate;
    return format.byteRate > 0 ? bytes * 1000 / format.byteRate : -1;
}

// FLAC's numbers: RFC 9639, sections 8.2 (description of the stream) and 9.1 (frame header).

std::uint8_t checksum(Bytes bytes) {
    unsigned crc = 0;
    for (const std::uint8_t byte : bytes) {
        crc ^= byte;
        for (int bit = 0; bit < 8; ++bit) crc = (crc << 1) ^ ((crc & 0x80) != 0 ? 0x107 : 0);
    }
    return static_cast<std::uint8_t>(crc);
}

/// Samples in a block, whose code may ask for one or two bytes `behind` the number.
std::uint64_t blockSize(unsigned code, Bytes behind) {
    if (code == 1) return 192;
    if (code >= 2 && code <= 5) return std::uint64_t{576} << (code - 2);
    if (code == 6 && !behind.empty()) return behind[0] + std::uint64_t{1};
    if (code == 7 && behind.size() >= 2) return bigEndian(behind, 0, 2) + 1;
    return code >= 8 ? std::uint64_t{256} << (code - 8) : 0;
}

/// The sample behind a frame whose header begins these bytes; 0 where none does.
std::uint64_t endOfFrame(Bytes bytes, std::uint64_t blockOfAll) {
    if (bytes.size() < 16 || bytes[0] != 0xFF || (bytes[1] & 0xFE) != 0xF8) return 0;
    const auto length = bytes[4] < 0x80 ? std::size_t{1} : std::size_t(std::countl_one(bytes[4]));
    if (length > 7) return 0;
    std::uint64_t number = length == 1 ? bytes[4] : bytes[4] & (0x7F >> length);
    for (std::size_t i = 1; i < length; ++i) number = number << 6 | (bytes[4 + i] & 0x3F);
    const unsigned sizeCode = bytes[2] >> 4;
    const unsigned rateCode = bytes[2] & 15;
    std::size_t at = 4 + length;
    const std::uint64_t size = blockSize(sizeCode, bytes.subspan(at, 2));
    at += sizeCode == 6 ? 1 : sizeCode == 7 ? 2 : 0;
    at += rateCode == 12 ? 1 : rateCode == 13 || rateCode == 14 ? 2 : 0;
    if (size == 0 || at >= bytes.size() || checksum(bytes.first(at)) != bytes[at]) return 0;
    const bool countsSamples = (bytes[1] & 1) != 0;
    return (countsSamples ? number : number * blockOfAll) + size;
}

}  // namespace

std::int64_t mpegDuration(WindowReader& reader, FrameScanner& scanner) {
    const auto first = scanner.next();
    if (!first) return -1;
    const FrameHeader& header = first->header;
    const std::int64_t end = scanner.tags().trailingStart;
    const double bytes = double(end - first->offset);
    const auto tag = mpeg::InfoTag::parse(header, scanner.bytes(*first));
    if (tag && tag->frames) return taggedDuration(header, *tag, bytes);
    if (header.bitRate > 0 && hasOneRate(reader, *first, end))
        return std::int64_t(bytes * 8000 / header.bitRate);
    return countedDuration(scanner, *first);
}

std::int64_t waveDuration(const std::filesystem::path& file) {
    if (!wave::looksLikeWave(file)) return -1;
    const wave::Layout layout = wave::readLayout(file);
    return lengthOf(layout.format, layout.data().size);
}

std::int64_t asfDuration(const std::filesystem::path& file) {
    // ASF specification, sections 3.1 and 3.2; times are in units of 100 ns, the preroll in ms.
    static constexpr std::array<std::uint8_t, 16> properties{0xA1, 0xDC, 0xAB, 0x8C, 0x47, 0xA9,
                                                             0xCF, 0x11, 0x8E, 0xE4, 0x00, 0xC0,
                                                             0x0C, 0x20, 0x53, 0x65};
    constexpr std::int64_t dataHeader = 50;
    WindowReader reader(file);
    const Bytes top = reader.at(0, 30);
    if (top.size() < 30) return -1;
    const auto headerSize = static_cast<std::int64_t>(littleEndian(top, 16, 8));
    for (std::int64_t at = 30; at + 24 <= std::min(headerSize, reader.size());) {
        const Bytes object = reader.at(at, 104);
        if (object.size() < 24) return -1;
        const std::uint64_t size = littleEndian(object, 16, 8);
        if (object.size() == 104 &&
            std::equal(properties.begin(), properties.end(), object.data())) {
            const double packets = double(littleEndian(object, 56, 8));
            const double played =
                double(littleEndian(object, 64, 8)) / 10'000 - double(littleEndian(object, 80, 8));
            const double packetSize = double(littleEndian(object, 96, 4));
            const double stated = packets * packetSize;
            const double present = double(reader.size() - headerSize - dataHeader);
            if (played <= 0 || stated <= 0 || present <= 0) return -1;
            return std::int64_t(played * std::min(1.0, present / stated));
        }
        if (size < 24 || size > std::uint64_t(headerSize)) return -1;
        at += static_cast<std::int64_t>(size);
    }
    return -1;
}

std::int64_t flacDuration(const std::filesystem::path& file) {
    constexpr std::size_t searched = std::size_t{1} << 20;  // more than any frame
    WindowReader reader(file);
    const mpeg::TagRanges around = mpeg::findTags(reader);
    const Bytes head = reader.at(around.leadingEnd, 42);
    if (head.size() < 42 || std::memcmp(head.data(), "fLaC", 4) != 0) return -1;
    const std::uint64_t block = bigEndian(head, 8, 2);
    const std::uint64_t rate = bigEndian(head, 18, 3) >> 4;
    std::uint64_t samples = bigEndian(head, 21, 5) & 0xF'FFFF'FFFF;
    if (rate == 0) return -1;
    if (samples == 0) {
        const std::int64_t from =
            std::max(around.leadingEnd + 42, around.trailingStart - std::int64_t(searched));
        const Bytes tail = reader.at(from, std::size_t(around.trailingStart - from));
        for (std::size_t at = tail.size(); at > 0 && samples == 0; --at)
            samples = endOfFrame(tail.subspan(at - 1), block);
    }
    return samples > 0 ? std::int64_t(samples * 1000 / rate) : -1;
}

}  // namespace audio::tags
