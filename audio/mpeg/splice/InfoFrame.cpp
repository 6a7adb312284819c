// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/mpeg/splice/InfoFrame.h"

#include <algorithm>
#include <cmath>
#include <string_view>

#include "audio/mpeg/read/Checksums.h"

namespace audio::mpeg {
namespace {

// "Info", flags, frames, bytes, table of contents, quality, extension.
constexpr int tagSize = 4 + 4 + 4 + 4 + 100 + 4 + static_cast<int>(InfoTag::extensionSize);

// The sound's header without a CRC, in a slot that holds the tag.
FrameHeader headerFor(const EncoderSettings& settings, const FrameHeader& likeSound) {
    FrameHeader header = likeSound;
    header.word = (header.word | 0x10000U) & ~0x230U;  // no CRC, no padding, no mode extension
    header.crc = header.padding = false;
    const int lowest =
        settings.rate == EncoderSettings::Rate::Constant ? likeSound.bitRateIndex() : 1;
    for (int index = lowest; index <= 14; ++index) {
        header = header.withBitRateIndex(index);
        if (header.size() >= header.overhead() + tagSize) break;
    }
    return header;
}

std::uint32_t methodOf(EncoderSettings::Rate rate) {
    switch (rate) {
        case EncoderSettings::Rate::Constant:
            return 1;
        case EncoderSettings::Rate::Average:
            return 2;
        case EncoderSettings::Rate::Quality:
            return 4;
    }
    return 0;
}

// LAME's byte of facts: the rate of the sound, and the stereo mode.
std::uint32_t miscOf(const FrameHeader& header) {
    const std::uint32_t rate = header.sampleRate <= 32000   ? 0
                               : header.sampleRate == 44100 ? 1
                               : header.sampleRate == 48000 ? 2
                                                            : 3;
    constexpr std::uint32_t modes[] = {1, 3, 2, 0};  // stereo, joint, dual, mono
    return rate << 6 | modes[static_cast<std::size_t>(header.mode)] << 2;
}

}  // namespace

InfoFrame::InfoFrame(const EncoderSettings& settings, const FrameHeader& likeSound)
    : header_(headerFor(settings, likeSound)) {
    bytes_.resize(static_cast<std::size_t>(header_.size()), 0);
    put(0, header_.word, 4);
    const bool constant = settings.rate == EncoderSettings::Rate::Constant;
    const std::string_view letters = constant ? "Info" : "Xing";
    const auto at = static_cast<std::size_t>(header_.overhead());
    std::copy(letters.begin(), letters.end(), bytes_.begin() + static_cast<long>(at));
    put(at + 4, 15, 4);
    put(at + 8, 1, 4);  // frames, until they are counted: a tag without any is none
    // LAME's figure: 100 − 10·V − q, with V 4 for constant bit-rates, and q 3.
    const double quality =
        settings.rate == EncoderSettings::Rate::Quality ? 100 - 10 * settings.quality : 57;
    put(at + 116, static_cast<std::uint32_t>(std::lround(std::clamp(quality, 0.0, 100.0))), 4);
    const std::size_t extension = at + 120;
    constexpr std::string_view encoder = "LAME3.100";
    std::copy(encoder.begin(), encoder.end(), bytes_.begin() + static_cast<long>(extension));
    put(extension + InfoTag::methodField, methodOf(settings.rate), 1);
    const int kbps = settings.rate == EncoderSettings::Rate::Quality ? 32 : settings.bitRate / 1000;
    put(extension + InfoTag::bitRateField, static_cast<std::uint32_t>(std::min(kbps, 255)), 1);
    put(extension + InfoTag::miscField, miscOf(header_), 1);
    tag_ = InfoTag::parse(header_, bytes_).value_or(InfoTag());
}

InfoFrame::InfoFrame(std::vector<std::uint8_t> source)
    : bytes_(std::move(source)), header_(FrameHeader::parse(bytes_).value_or(FrameHeader())) {
    tag_ = InfoTag::parse(header_, bytes_).value_or(InfoTag());
}

void InfoFrame::fillIn(const Layout& layout, const Geometry& geometry, const StreamWriter& writer) {
    if (tag_.framesOffset) put(tag_.framesOffset, static_cast<std::uint32_t>(layout.frames), 4);
    if (tag_.bytesOffset) put(tag_.bytesOffset, static_cast<std::uint32_t>(writer.bytes()), 4);
    if (tag_.tocOffset) {
        const auto table = writer.tableOfContents();
        std::copy(table.begin(), table.end(), bytes_.begin() + static_cast<long>(tag_.tocOffset));
    }
    if (layout.statesGaps && tag_.extended) {
        put(tag_.lameOffset + InfoTag::delayField,
            static_cast<std::uint32_t>(layout.delay(geometry)) << 12 |
                static_cast<std::uint32_t>(layout.padding(geometry)),
            3);
    }
}

void InfoFrame::putChecksums(const StreamWriter& writer) {
    if (!tag_.extended) return;
    put(tag_.lameOffset + InfoTag::musicLengthField, static_cast<std::uint32_t>(writer.bytes()), 4);
    put(tag_.lameOffset + InfoTag::musicCrcField, writer.musicCrc(), 2);
    const std::size_t end = tag_.lameOffset + InfoTag::tagCrcField;
    put(end, lameCrc(0, std::span(bytes_).first(end)), 2);
}

void InfoFrame::clearLevels() {
    if (tag_.lameOffset == 0) return;
    put(tag_.lameOffset + InfoTag::peakField, 0, 4);
    put(tag_.lameOffset + InfoTag::trackGainField, 0, 2);
    put(tag_.lameOffset + InfoTag::albumGainField, 0, 2);
}

void InfoFrame::put(std::size_t offset, std::uint32_t value, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
        bytes_[offset + i] = static_cast<std::uint8_t>(value >> (8 * (count - 1 - i)));
    }
}

}  // namespace audio::mpeg
