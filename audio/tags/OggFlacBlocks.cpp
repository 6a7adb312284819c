// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/tags/OggFlacBlocks.h"

#include <algorithm>
#include <array>
#include <fstream>
#include <ogg/ogg.h>
#include <optional>
#include <string_view>

#include "audio/FileError.h"
#include "audio/tags/FlacMetadata.h"

namespace audio::tags {
namespace {

using Bytes = std::vector<std::uint8_t>;

// The first packet: this, two numbers of the version, how many header packets follow (16 bits), the
// signature of FLAC, and the description of the stream.
constexpr std::string_view mapping = "\177FLAC";
constexpr std::size_t countAt = 7;
constexpr std::size_t firstBlockAt = 13;
constexpr std::uint8_t frameSync = 0xFF;  // no block is of this type

struct Stream {
    explicit Stream(int serial) { ogg_stream_init(&state, serial); }
    ~Stream() { ogg_stream_clear(&state); }
    Stream(const Stream&) = delete;
    Stream& operator=(const Stream&) = delete;
    ogg_stream_state state{};
};

/// The pages of the FLAC stream in an Ogg file, one after the other.
class Pages {
  public:
    explicit Pages(const std::filesystem::path& file)
        : file_(file), stream_(file, std::ios::binary) {
        if (!stream_) throw fileError(file_, "cannot be opened");
        ogg_sync_init(&sync_);
    }
    ~Pages() { ogg_sync_clear(&sync_); }
    Pages(const Pages&) = delete;
    Pages& operator=(const Pages&) = delete;

    /// False at the end. The page is valid until the next call.
    bool next(ogg_page& page) {
        while (any(page)) {
            if (!serial_ && beginsFlac(page)) serial_ = ogg_page_serialno(&page);
            if (serial_ && ogg_page_serialno(&page) == *serial_) return true;
        }
        return false;
    }

  private:
    static bool beginsFlac(const ogg_page& page) {
        return page.body_len > static_cast<long>(firstBlockAt + flacBlockHeader) &&
               std::equal(mapping.begin(), mapping.end(), page.body);
    }
    bool any(ogg_page& page) {
        constexpr long piece = 1 << 16;
        for (int result = 0; (result = ogg_sync_pageout(&sync_, &page)) != 1;) {
            if (result < 0) continue;
            stream_.read(ogg_sync_buffer(&sync_, piece), piece);
            if (stream_.gcount() == 0) return false;
            ogg_sync_wrote(&sync_, static_cast<long>(stream_.gcount()));
        }
        return true;
    }

    std::filesystem::path file_;
    std::ifstream stream_;
    ogg_sync_state sync_{};
    std::optional<int> serial_;
};

/// What stands before the sound.
struct Headers {
    int serial = 0;
    Bytes first;  ///< the first packet, up to its block
    std::vector<FlacBlock> blocks;
};

FlacBlock blockOf(std::span<const std::uint8_t> packet, const std::filesystem::path& file) {
    if (packet.size() < flacBlockHeader) refuseFlacBlocks(file);
    const FlacBlockHead head = flacBlockHead(packet);
    if (head.size != packet.size() - flacBlockHeader) refuseFlacBlocks(file);
    return {head.type, {packet.begin() + flacBlockHeader, packet.end()}};
}

/// Reads up to the first packet of sound; `page` is the one it begins on.
Headers readHeaders(Pages& pages, ogg_page& page, const std::filesystem::path& file) {
    if (!pages.next(page)) refuseFlacBlocks(file);
    Headers headers;
    headers.serial = ogg_page_serialno(&page);
    Stream stream(headers.serial);
    do {
        ogg_stream_pagein(&stream.state, &page);
        ogg_packet packet{};
        for (int got = 0; (got = ogg_stream_packetout(&stream.state, &packet)) != 0;) {
            if (got < 0) refuseFlacBlocks(file);
            std::span<const std::uint8_t> bytes(packet.packet,
                                                static_cast<std::size_t>(packet.bytes));
            if (!bytes.empty() && bytes[0] == frameSync) return headers;
            if (headers.blocks.empty()) {
                headers.first.assign(bytes.begin(), bytes.begin() + firstBlockAt);
                bytes = bytes.subspan(firstBlockAt);
            }
            headers.blocks.push_back(blockOf(bytes, file));
        }
    } while (pages.next(page));
    refuseFlacBlocks(file);
}

void put(const ogg_page& page, platform::file::Replacement& file) {
    file.write(page.header, static_cast<std::size_t>(page.header_len));
    file.write(page.body, static_cast<std::size_t>(page.body_len));
}

/// The header packets on pages of their own; returns how many pages they took.
std::uint32_t putHeaders(const Headers& headers, const std::vector<FlacBlock>& blocks,
                         platform::file::Replacement& file) {
    Stream stream(headers.serial);
    ogg_page page{};
    for (std::size_t i = 0; i < blocks.size(); ++i) {
        Bytes bytes = storedBlock(blocks[i], i + 1 == blocks.size());
        if (i == 0) bytes.insert(bytes.begin(), headers.first.begin(), headers.first.end());
        ogg_packet packet{};
        packet.packet = bytes.data();
        packet.bytes = static_cast<long>(bytes.size());
        packet.b_o_s = i == 0 ? 1 : 0;
        packet.packetno = static_cast<std::int64_t>(i);
        ogg_stream_packetin(&stream.state, &packet);
        while (ogg_stream_flush(&stream.state, &page) != 0) put(page, file);
    }
    return static_cast<std::uint32_t>(stream.state.pageno);
}

void setNumber(ogg_page& page, std::uint32_t number) {
    for (int i = 0; i < 4; ++i) page.header[18 + i] = static_cast<std::uint8_t>(number >> 8 * i);
    ogg_page_checksum_set(&page);
}

}  // namespace

void writeWithOggFlacBlocks(const Carriage& carriage, platform::file::Replacement& file) {
    ogg_page page{};
    Pages theirs(carriage.source);
    const Headers source = readHeaders(theirs, page, carriage.source);
    Pages sound(carriage.encoded);
    Headers headers = readHeaders(sound, page, carriage.encoded);
    const std::vector<FlacBlock> blocks = mergedBlocks(headers.blocks, source.blocks, carriage);
    headers.first[countAt] = static_cast<std::uint8_t>((blocks.size() - 1) >> 8);
    headers.first[countAt + 1] = static_cast<std::uint8_t>(blocks.size() - 1);
    std::uint32_t number = putHeaders(headers, blocks, file);
    do {
        setNumber(page, number++);
        put(page, file);
    } while (sound.next(page));
}

}  // namespace audio::tags
