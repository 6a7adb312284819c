// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/mpeg/read/InfoTag.h"

#include <algorithm>
#include <string_view>

namespace audio::mpeg {
namespace {

using Bytes = std::span<const std::uint8_t>;

bool lettersAt(Bytes frame, std::size_t offset, std::string_view letters) {
    if (offset + letters.size() > frame.size()) return false;
    return std::equal(letters.begin(), letters.end(), frame.begin() + static_cast<long>(offset),
                      [](char a, std::uint8_t b) { return static_cast<std::uint8_t>(a) == b; });
}

std::uint32_t number(Bytes frame, std::size_t offset, std::size_t count) {
    std::uint32_t value = 0;
    for (std::size_t i = 0; i < count; ++i) value = value << 8 | frame[offset + i];
    return value;
}

// Reads the optional fields one after another, each there only when its flag is set.
class FieldReader {
  public:
    FieldReader(Bytes frame, std::size_t offset) : frame_(frame), next_(offset) {}

    /// Offset of a field of `size` bytes; 0 where the frame is too short.
    std::size_t take(std::size_t size) {
        if (next_ + size > frame_.size()) return 0;
        next_ += size;
        return next_ - size;
    }
    std::optional<std::uint32_t> takeNumber(std::size_t& offset) {
        offset = take(4);
        if (offset == 0) return std::nullopt;
        return number(frame_, offset, 4);
    }

  private:
    Bytes frame_;
    std::size_t next_;
};

// Other programs' words on the gaps are not taken: decoders do not agree on them.
bool statesTrueGaps(std::string_view encoder) {
    return encoder.starts_with("LAME") || encoder.starts_with("Lavf") ||
           encoder.starts_with("Lavc");
}

void readExtension(Bytes frame, std::size_t offset, InfoTag& tag) {
    // A name that does not begin with a letter is padding, not an encoder.
    const std::uint8_t first = frame[offset];
    if (!((first >= 'A' && first <= 'Z') || (first >= 'a' && first <= 'z'))) return;
    tag.lameOffset = offset;
    for (std::size_t i = 0; i < 9 && frame[offset + i] >= ' '; ++i) {
        tag.encoder.push_back(static_cast<char>(frame[offset + i]));
    }
    tag.vbrMethod = frame[offset + InfoTag::methodField] & 15;
    tag.statedKbps = frame[offset + InfoTag::bitRateField];
    if (statesTrueGaps(tag.encoder)) {
        const std::uint32_t gaps = number(frame, offset + InfoTag::delayField, 3);
        tag.delay = static_cast<int>(gaps >> 12);
        tag.padding = static_cast<int>(gaps & 4095);
    }
    tag.extended = offset + InfoTag::extensionSize <= frame.size();
    if (!tag.extended) return;
    tag.musicLength = number(frame, offset + InfoTag::musicLengthField, 4);
    tag.musicCrc = static_cast<std::uint16_t>(number(frame, offset + InfoTag::musicCrcField, 2));
    tag.tagCrc = static_cast<std::uint16_t>(number(frame, offset + InfoTag::tagCrcField, 2));
}

InfoTag readXing(Bytes frame, std::size_t offset, InfoTag::Kind kind) {
    InfoTag tag;
    tag.kind = kind;
    tag.offset = offset;
    FieldReader fields(frame, offset + 4);
    const std::size_t flagsAt = fields.take(4);
    const std::uint32_t flags = flagsAt ? number(frame, flagsAt, 4) : 0;
    if (flags & 1) tag.frames = fields.takeNumber(tag.framesOffset);
    if (flags & 2) tag.bytes = fields.takeNumber(tag.bytesOffset);
    if (flags & 4) tag.tocOffset = fields.take(100);
    if (flags & 8) tag.quality = fields.takeNumber(tag.qualityOffset);
    constexpr std::size_t needed = InfoTag::miscField;  // the gaps lie before it
    if (const std::size_t extension = fields.take(needed); extension && flagsAt) {
        readExtension(frame, extension, tag);
    }
    return tag;
}

InfoTag readVbri(Bytes frame, std::size_t offset) {
    InfoTag tag;
    tag.kind = InfoTag::Kind::Vbri;
    tag.offset = offset;
    // "VBRI", version, delay, quality (2 bytes each), bytes, frames (4 bytes each), table. Its
    // delay is passed over, as decoders do.
    if (offset + 18 > frame.size() || number(frame, offset + 4, 2) != 1) return tag;
    tag.quality = number(frame, offset + 8, 2);
    tag.bytesOffset = offset + 10;
    tag.framesOffset = offset + 14;
    tag.bytes = number(frame, tag.bytesOffset, 4);
    tag.frames = number(frame, tag.framesOffset, 4);
    return tag;
}

}  // namespace

std::optional<InfoTag> InfoTag::parse(const FrameHeader& header, Bytes frame) {
    if (header.layer != 3) return std::nullopt;
    const std::size_t behindSideInfo = 4 + static_cast<std::size_t>(header.sideInfoSize());
    std::optional<InfoTag> tag;
    // LAME puts its tag there even when the header announces a CRC; others count the CRC.
    for (const std::size_t offset : {behindSideInfo, behindSideInfo + 2}) {
        if (lettersAt(frame, offset, "Info")) tag = readXing(frame, offset, Kind::Info);
        if (lettersAt(frame, offset, "Xing")) tag = readXing(frame, offset, Kind::Xing);
        if (tag || !header.crc) break;
    }
    constexpr std::size_t vbriOffset = 36;
    if (!tag && lettersAt(frame, vbriOffset, "VBRI")) tag = readVbri(frame, vbriOffset);
    if (!tag || (tag->frames.value_or(0) == 0 && tag->bytes.value_or(0) == 0)) return std::nullopt;
    return tag;
}

}  // namespace audio::mpeg
