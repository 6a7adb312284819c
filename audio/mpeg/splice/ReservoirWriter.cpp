// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/mpeg/splice/ReservoirWriter.h"

#include <algorithm>
#include <array>
#include <utility>

#include "audio/mpeg/read/Checksums.h"

namespace audio::mpeg {
namespace {

void putHeader(std::span<std::uint8_t> frame, std::uint32_t word) {
    for (std::size_t i = 0; i < 4; ++i) frame[i] = static_cast<std::uint8_t>(word >> (24 - 8 * i));
}

platform::Error noRoom() {
    return CannotSplice("The bit reservoir has no room for a frame.");
}

}  // namespace

FrameHeader joinHeader(const FrameHeader& coding, const FrameHeader& slot,
                       const FrameHeader& like) {
    constexpr std::uint32_t slotBits = 0xF200;  // bit-rate, padding
    constexpr std::uint32_t codingBits = 0x30;  // mode extension
    const std::uint32_t word = (like.word & ~(slotBits | codingBits)) | (slot.word & slotBits) |
                               (coding.word & codingBits);
    const std::array<std::uint8_t, 4> bytes = {
        static_cast<std::uint8_t>(word >> 24), static_cast<std::uint8_t>(word >> 16),
        static_cast<std::uint8_t>(word >> 8), static_cast<std::uint8_t>(word)};
    return FrameHeader::parse(bytes).value_or(coding);
}

ReservoirWriter::ReservoirWriter(StreamWriter& writer, const FrameHeader& likeSource)
    : writer_(writer), like_(likeSource) {}

int ReservoirWriter::room() const {
    return static_cast<int>(std::min<std::int64_t>(capacity_ - used_, longestReservoir(like_)));
}

void ReservoirWriter::add(const LogicalFrame& frame, const FrameHeader& slot) {
    const FrameHeader header = joinHeader(frame.header, slot, like_);
    std::vector<std::uint8_t> bytes(static_cast<std::size_t>(header.size()), 0);
    putHeader(bytes, header.word);
    const auto overhead = static_cast<std::size_t>(header.overhead());
    const auto sideSize = static_cast<std::size_t>(header.sideInfoSize());
    const auto side = std::span(bytes).subspan(overhead - sideSize, sideSize);
    std::copy_n(frame.sideInfo.begin(), sideSize, side.begin());
    clearLeftovers();
    const int back = room();
    setMainDataBegin(header, side, back);
    updateFrameCrc(header, bytes);
    const std::int64_t start = capacity_ - back;
    push(std::move(bytes), overhead);
    used_ = start + static_cast<std::int64_t>(frame.main.size());
    if (used_ > capacity_) throw noRoom();
    put(start, frame.main);
}

void ReservoirWriter::addSilent(const FrameHeader& slot) {
    LogicalFrame silent;
    silent.header = slot;
    add(silent, slot);
}

void ReservoirWriter::beginKept(std::span<const std::uint8_t> reservoir) {
    if (static_cast<int>(reservoir.size()) > room()) throw noRoom();
    put(capacity_ - static_cast<std::int64_t>(reservoir.size()), reservoir);
    used_ = capacity_;
}

void ReservoirWriter::addKept(std::span<const std::uint8_t> frame) {
    const auto header = FrameHeader::parse(frame);
    const auto overhead = static_cast<std::size_t>(header->overhead());
    const auto sideSize = static_cast<std::size_t>(header->sideInfoSize());
    const SideInfo info = SideInfo::parse(*header, frame.subspan(overhead - sideSize, sideSize));
    used_ = capacity_ - info.mainDataBegin + info.mainBytes();
    push({frame.begin(), frame.end()}, overhead);
}

void ReservoirWriter::skipKept() {
    flush(capacity_);
}

void ReservoirWriter::endKept() {
    used_ = std::min(used_, capacity_);
    leftovers_ = true;
}

// What dropped frames had behind the last kept one's data is nobody's now.
void ReservoirWriter::clearLeftovers() {
    if (!std::exchange(leftovers_, false)) return;
    const std::int64_t from = std::max(used_, slots_.empty() ? capacity_ : slots_.front().begin);
    put(from, std::vector<std::uint8_t>(static_cast<std::size_t>(capacity_ - from), 0));
}

void ReservoirWriter::finish() {
    flush(capacity_);
}

void ReservoirWriter::push(std::vector<std::uint8_t> bytes, std::size_t overhead) {
    flush(capacity_ - longestReservoir(like_) - 1);
    Slot slot{std::move(bytes), capacity_, overhead};
    capacity_ = slot.end();
    slots_.push_back(std::move(slot));
}

void ReservoirWriter::put(std::int64_t at, std::span<const std::uint8_t> bytes) {
    auto slot = slots_.begin();
    while (!bytes.empty()) {
        while (slot != slots_.end() && slot->end() <= at) ++slot;
        if (slot == slots_.end() || at < slot->begin) throw noRoom();
        const auto count = std::min(bytes.size(), static_cast<std::size_t>(slot->end() - at));
        std::copy_n(bytes.begin(), count,
                    slot->bytes.begin() + static_cast<long>(slot->overhead) + (at - slot->begin));
        bytes = bytes.subspan(count);
        at += static_cast<std::int64_t>(count);
    }
}

void ReservoirWriter::flush(std::int64_t until) {
    while (!slots_.empty() && slots_.front().end() <= until) {
        writer_.noteFrame(slots_.front().bytes);
        writer_.write(slots_.front().bytes);
        slots_.pop_front();
    }
}

}  // namespace audio::mpeg
