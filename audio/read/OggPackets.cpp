// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/read/OggPackets.h"

#include <algorithm>
#include <cstring>
#include <numeric>
#include <string_view>
#include <utility>

namespace audio::read {
namespace {

constexpr std::int64_t longestLoss = 60;  // seconds; more is not believed

std::string_view beginning(AVCodecID codec) {
    switch (codec) {
        case AV_CODEC_ID_VORBIS:
            return "\x01vorbis";
        case AV_CODEC_ID_OPUS:
            return "OpusHead";
        case AV_CODEC_ID_FLAC:
            return "\x7F"
                   "FLAC";
        default:
            return {};
    }
}

}  // namespace

bool OggPackets::serves(const ffmpeg::Input& input) {
    const AVCodecID codec = input.parameters().codec_id;
    if (input.containerName() != "ogg" || beginning(codec).empty()) return false;
    OggPackets trial(input);
    SoundPacket packet;
    return trial.read(packet);
}

OggPackets::OggPackets(const ffmpeg::Input& input)
    : codec_(input.parameters().codec_id),
      part_(input.part()),
      pages_(input.file()),
      lengths_(input.parameters()) {
    if (part_.end <= part_.begin)
        part_.end = static_cast<std::int64_t>(std::filesystem::file_size(input.file()));
    restartAt(part_.begin);
}

OggPackets::~OggPackets() {
    if (serial_) ogg_stream_clear(&stream_);
}

void OggPackets::restartAt(std::int64_t offset) {
    pages_.seek(offset);
    if (serial_) ogg_stream_reset_serialno(&stream_, *serial_);
    lengths_.restart();
    partAt_ = -1;
    ready_.clear();
    waiting_.clear();
    granule_.reset();
    fromStart_ = offset == part_.begin;
    broken_ = false;
}

void OggPackets::rewind() {
    restartAt(part_.begin);
}

bool OggPackets::seek(const PacketMark& mark) {
    restartAt(mark.offset);
    granule_ = mark.time;
    return true;
}

std::optional<PacketMark> OggPackets::mark(const SoundPacket&) const {
    return lastMarked_ ? std::optional(last_) : std::nullopt;
}

ogg_page* OggPackets::nextPage() {
    ogg_page* page = pages_.next();
    return page && pages_.offset() < part_.end ? page : nullptr;
}

/// Whether a page is one of the sound's; the first one that begins like its codec says which are.
bool OggPackets::belongs(ogg_page& page) {
    if (!serial_) {
        const std::string_view start = beginning(codec_);
        const auto size = static_cast<std::size_t>(std::max(0L, page.body_len));
        if (ogg_page_bos(&page) == 0 || size < start.size() ||
            std::memcmp(page.body, start.data(), start.size()) != 0)
            return false;
        serial_ = ogg_page_serialno(&page);
        ogg_stream_init(&stream_, *serial_);
    }
    return ogg_page_serialno(&page) == *serial_;
}

bool OggPackets::isHeader(const ogg_packet& packet) const {
    const std::string_view text(reinterpret_cast<const char*>(packet.packet),
                                static_cast<std::size_t>(packet.bytes));
    if (codec_ == AV_CODEC_ID_VORBIS) return (packet.packet[0] & 1) != 0;
    if (codec_ == AV_CODEC_ID_FLAC) return packet.packet[0] != 0xFF;
    return text.starts_with("OpusHead") || text.starts_with("OpusTags");
}

bool OggPackets::read(SoundPacket& packet) {
    while (ready_.empty()) {
        if (ogg_page* page = nextPage()) {
            if (belongs(*page)) takePage(*page);
        } else {
            if (waiting_.empty()) return false;
            release();
        }
    }
    Queued next = std::move(ready_.front());
    ready_.pop_front();
    ffmpeg::fillPacket(*packet.data, next.bytes);
    packet.stated = next.frames;
    packet.trim = next.trim;
    packet.lost = next.lost;
    packet.damaged = next.damaged;
    lastMarked_ = next.beginsPage;
    last_ = {next.page, next.before, static_cast<std::uint32_t>(next.bytes.size()),
             sumOf(next.bytes)};
    return true;
}

void OggPackets::takePage(ogg_page& page) {
    const std::int64_t granule = ogg_page_granulepos(&page);
    const bool last = ogg_page_eos(&page) != 0;
    ogg_stream_pagein(&stream_, &page);
    bool continues = ogg_page_continued(&page) != 0 && partAt_ >= 0;
    bool first = true;  // no packet began on this page yet
    ogg_packet packet{};
    for (int result = 1; result != 0;) {
        result = ogg_stream_packetout(&stream_, &packet);
        if (result < 0) {
            broken_ = !fromStart_ || granule_ || !waiting_.empty();
            continues = false;
        } else if (result > 0) {
            const bool sound = packet.bytes > 0 && !isHeader(packet);
            if (sound && continues) queue(packet, partAt_, partFirst_);
            if (sound && !continues) queue(packet, pages_.offset(), std::exchange(first, false));
            continues = false;
        }
    }
    const bool unfinished = stream_.lacing_fill > stream_.lacing_returned;
    if (unfinished && !continues) {
        partAt_ = pages_.offset();
        partFirst_ = first;
    } else if (!unfinished) {
        partAt_ = -1;
    }
    const bool headers = !granule_ && waiting_.empty();
    if (granule >= 0 && !headers) settle(granule, last);
}

void OggPackets::queue(const ogg_packet& packet, std::int64_t page, bool begins) {
    Queued next;
    next.bytes.assign(packet.packet, packet.packet + packet.bytes);
    next.page = page;
    next.beginsPage = begins;
    next.frames = lengths_.of(next.bytes);
    next.damaged = broken_;
    next.before = granule_.value_or(0);
    for (const Queued& other : waiting_) next.before += other.frames.value_or(0);
    broken_ = false;
    waiting_.push_back(std::move(next));
}

/// A granule position came: it tells of the packets since the one before.
void OggPackets::settle(std::int64_t granule, bool last) {
    OggPageEnd end{granule, granule_.value_or(0), 0, last};
    bool stated = true;
    for (const Queued& packet : waiting_) {
        stated = stated && packet.frames.has_value();
        end.frames += packet.frames.value_or(0);
    }
    const auto lossAt = std::find_if(waiting_.begin(), waiting_.end(),
                                     [](const Queued& packet) { return packet.damaged; });
    const bool known = granule_ || fromStart_;
    if (stated && known && lossAt != waiting_.end()) {
        const std::int64_t lost = end.granule - end.before - end.frames;
        if (lost > 0 && lost <= longestLoss * 48'000) lossAt->lost = lost;
    } else if (stated && known && codec_ != AV_CODEC_ID_FLAC && !waiting_.empty()) {
        if (!granule_ && codec_ == AV_CODEC_ID_VORBIS)
            waiting_.front().trim.skip = oggStartSkip(end);
        pad(oggEndPadding(end));
    }
    granule_ = granule;
    release();
}

void OggPackets::pad(std::int64_t padding) {
    for (auto packet = waiting_.rbegin(); packet != waiting_.rend() && padding > 0; ++packet) {
        packet->trim.padding = std::min(padding, packet->frames.value_or(0));
        padding -= packet->trim.padding;
    }
}

void OggPackets::release() {
    std::move(waiting_.begin(), waiting_.end(), std::back_inserter(ready_));
    waiting_.clear();
}

}  // namespace audio::read
