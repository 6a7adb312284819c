// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/wave/Layout.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <fstream>
#include <map>

#include "audio/wave/Bytes.h"
#include "platform/Error.h"
#include "platform/Paths.h"

namespace audio::wave {
namespace {

constexpr std::int64_t headerSize = 8;
constexpr std::uint64_t unknownSize = 0xFFFFFFFF;
constexpr std::size_t mostChunks = 10'000;  // what follows in a file with more is trailing bytes
constexpr std::size_t largestFmt = 4'096;

[[noreturn]] void refuse(const std::filesystem::path& file, const std::string& reason) {
    throw platform::Error("The file \"" + platform::toUtf8(file) + "\" " + reason + ".");
}

/// Walks the chunks of one open file.
class Walker {
  public:
    explicit Walker(const std::filesystem::path& file)
        : file_(file), stream_(file, std::ios::binary) {
        std::error_code failure;
        if (stream_)
            layout_.fileSize = static_cast<std::int64_t>(std::filesystem::file_size(file, failure));
        if (!stream_ || failure) refuse(file, "cannot be opened");
    }

    Layout walk() {
        readForm();
        std::int64_t at = 12;
        while (layout_.chunks.size() < mostChunks && plausibleHeader(at)) at = takeChunk(at);
        layout_.trailing = std::min(at, layout_.fileSize);
        finishFormat();
        finishData();
        return std::move(layout_);
    }

  private:
    std::vector<std::byte> bytesAt(std::int64_t offset, std::size_t count) {
        std::vector<std::byte> bytes(count);
        stream_.clear();
        stream_.seekg(offset);
        stream_.read(reinterpret_cast<char*>(bytes.data()), static_cast<std::streamsize>(count));
        bytes.resize(static_cast<std::size_t>(std::max<std::streamsize>(stream_.gcount(), 0)));
        return bytes;
    }

    void readForm() {
        const std::vector<std::byte> head = bytesAt(0, 12);
        const auto* text = reinterpret_cast<const char*>(head.data());
        if (head.size() == 12) layout_.form.assign(text, 4);
        layout_.rf64 = layout_.form == "RF64" || layout_.form == "BW64";
        if ((layout_.form != "RIFF" && !layout_.rf64) || std::memcmp(text + 8, "WAVE", 4) != 0)
            refuse(file_, "is not a WAVE file");
    }

    bool plausibleHeader(std::int64_t offset) {
        if (offset + headerSize > layout_.fileSize) return false;
        const std::vector<std::byte> id = bytesAt(offset, 4);
        return id.size() == 4 && std::all_of(id.begin(), id.end(), [](std::byte letter) {
                   return letter >= std::byte{0x20} && letter < std::byte{0x7F};
               });
    }

    bool chunkFits(std::int64_t offset) {
        if (!plausibleHeader(offset)) return false;
        const std::vector<std::byte> size = bytesAt(offset + 4, 4);
        return offset + headerSize + std::int64_t(littleEndian<4>(size.data())) <= layout_.fileSize;
    }

    /// Takes in the chunk at an offset; returns where the next one begins.
    std::int64_t takeChunk(std::int64_t offset) {
        const std::vector<std::byte> header = bytesAt(offset, headerSize);
        Chunk chunk;
        chunk.id.assign(reinterpret_cast<const char*>(header.data()), 4);
        chunk.offset = offset;
        chunk.body = offset + headerSize;
        const std::int64_t present = layout_.fileSize - chunk.body;
        const std::int64_t stated = statedSize(chunk, littleEndian<4>(header.data() + 4));
        chunk.size = std::clamp<std::int64_t>(stated, 0, present);
        if (chunk.id == "ds64") readSizes(chunk);
        if (chunk.id == "data" && neverFinished(chunk, stated)) chunk.size = present;
        layout_.chunks.push_back(chunk);

        const std::int64_t end = chunk.body + chunk.size;
        const bool unpadded = chunk.size % 2 == 1 && chunkFits(end) && !chunkFits(end + 1);
        return chunk.size % 2 == 1 && !unpadded ? end + 1 : end;
    }

    std::int64_t statedSize(const Chunk& chunk, std::uint64_t field) const {
        if (!layout_.rf64 || field != unknownSize) return static_cast<std::int64_t>(field);
        const auto wide = wideSizes_.find(chunk.id);
        return wide == wideSizes_.end() ? static_cast<std::int64_t>(field) : wide->second;
    }

    /// A recorder that was killed leaves 0 or 0xFFFFFFFF; one that knows no RF64 lets the size
    /// wrap.
    bool neverFinished(const Chunk& chunk, std::int64_t stated) {
        const std::int64_t present = layout_.fileSize - chunk.body;
        if (stated >= present || stated == static_cast<std::int64_t>(unknownSize)) return true;
        const bool mayLie = stated == 0 || present > static_cast<std::int64_t>(unknownSize);
        const std::int64_t next = chunk.body + stated + stated % 2;
        return mayLie && present - stated > 1 && !plausibleHeader(next);
    }

    /// The ds64 chunk: riff size, data size, sample count, then a table of other large chunks.
    void readSizes(const Chunk& chunk) {
        const std::vector<std::byte> body = bytesAt(
            chunk.body, static_cast<std::size_t>(std::min<std::int64_t>(chunk.size, 4'096)));
        const auto remember = [&](const std::string& id, const std::byte* number) {
            const std::uint64_t value = littleEndian<8>(number);
            wideSizes_[id] = static_cast<std::int64_t>(std::min<std::uint64_t>(value, INT64_MAX));
        };
        if (body.size() < 24) return;
        remember("data", body.data() + 8);
        for (std::size_t at = 28; at + 12 <= body.size(); at += 12)
            remember(std::string(reinterpret_cast<const char*>(body.data() + at), 4),
                     body.data() + at + 4);
    }

    void finishFormat() {
        const auto fmt = std::find_if(layout_.chunks.begin(), layout_.chunks.end(),
                                      [](const Chunk& chunk) { return chunk.id == "fmt "; });
        if (fmt == layout_.chunks.end()) refuse(file_, "is a WAVE file without a format chunk");
        layout_.fmt = bytesAt(fmt->body, std::min(largestFmt, static_cast<std::size_t>(fmt->size)));
        const std::optional<SoundFormat> format = parseFormat(layout_.fmt);
        if (!format || format->channels < 1 || format->sampleRate < 1 || format->blockAlign < 1)
            refuse(file_, "is a WAVE file with a format chunk that makes no sense");
        layout_.format = *format;
    }

    void finishData() {
        // Some writers leave an empty data chunk ahead of the real one.
        const auto byId = [](const Chunk& chunk) { return chunk.id == "data"; };
        auto data = std::find_if(layout_.chunks.begin(), layout_.chunks.end(),
                                 [&](const Chunk& chunk) { return byId(chunk) && chunk.size > 0; });
        if (data == layout_.chunks.end())
            data = std::find_if(layout_.chunks.begin(), layout_.chunks.end(), byId);
        if (data == layout_.chunks.end()) refuse(file_, "is a WAVE file without a data chunk");
        layout_.dataIndex = static_cast<std::size_t>(data - layout_.chunks.begin());
    }

    std::filesystem::path file_;
    std::ifstream stream_;
    Layout layout_;
    std::map<std::string, std::int64_t> wideSizes_;
};

// The sixteen bytes of a sub-format: the format tag, then what is the same in all of them.
constexpr std::array<unsigned char, 14> subFormatTail = {0x00, 0x00, 0x00, 0x00, 0x10, 0x00, 0x80,
                                                         0x00, 0x00, 0xAA, 0x00, 0x38, 0x9B, 0x71};

}  // namespace

std::optional<pcm::SampleType> SoundFormat::sampleType() const {
    // A sample occupies whole bytes, its bits at their top: 12 bits lie in two bytes, 20 in three.
    const int width = (bitsPerSample + 7) / 8;
    if (channels < 1 || blockAlign != width * channels) return std::nullopt;
    if (tag == formatTagFloat) {
        if (width == 4) return pcm::SampleType::F32;
        if (width == 8) return pcm::SampleType::F64;
    } else if (tag == formatTagPcm) {
        if (width == 1) return pcm::SampleType::U8;
        if (width == 2) return pcm::SampleType::S16;
        if (width == 3) return pcm::SampleType::S24;
        if (width == 4) return pcm::SampleType::S32;
        if (width == 8) return pcm::SampleType::S64;
    }
    return std::nullopt;
}

bool looksLikeWave(const std::filesystem::path& file) {
    std::ifstream stream(file, std::ios::binary);
    std::array<char, 12> head{};
    stream.read(head.data(), head.size());
    if (!stream || std::memcmp(head.data() + 8, "WAVE", 4) != 0) return false;
    const std::string form(head.data(), 4);
    return form == "RIFF" || form == "RF64" || form == "BW64";
}

Layout readLayout(const std::filesystem::path& file) {
    return Walker(file).walk();
}

std::optional<SoundFormat> parseFormat(const std::vector<std::byte>& fmtBody) {
    if (fmtBody.size() < 16) return std::nullopt;
    const std::byte* body = fmtBody.data();
    SoundFormat format;
    format.tag = static_cast<int>(littleEndian<2>(body));
    format.channels = static_cast<int>(littleEndian<2>(body + 2));
    format.sampleRate =
        static_cast<int>(std::min<std::uint64_t>(littleEndian<4>(body + 4), INT32_MAX));
    format.byteRate = static_cast<std::int64_t>(littleEndian<4>(body + 8));
    format.blockAlign = static_cast<int>(littleEndian<2>(body + 12));
    format.bitsPerSample = static_cast<int>(littleEndian<2>(body + 14));
    format.validBits = format.bitsPerSample;
    format.extensible = format.tag == formatTagExtensible && fmtBody.size() >= 40;
    if (format.extensible) {
        const int valid = static_cast<int>(littleEndian<2>(body + 18));
        if (valid > 0 && valid <= format.bitsPerSample) format.validBits = valid;
        format.channelMask = static_cast<std::uint32_t>(littleEndian<4>(body + 20));
        format.tag = static_cast<int>(littleEndian<2>(body + 24));
    }
    return format;
}

std::vector<std::byte> buildFormat(const SoundFormat& format) {
    const int blockAlign = format.channels * ((format.bitsPerSample + 7) / 8);
    const bool extensible = format.extensible || format.channels > 2 || format.channelMask != 0 ||
                            (format.tag == formatTagPcm && format.bitsPerSample > 16);
    std::vector<std::byte> body;
    appendLittleEndian<2>(body, std::uint64_t(extensible ? formatTagExtensible : format.tag));
    appendLittleEndian<2>(body, std::uint64_t(format.channels));
    appendLittleEndian<4>(body, std::uint64_t(format.sampleRate));
    appendLittleEndian<4>(body, std::uint64_t(blockAlign) * std::uint64_t(format.sampleRate));
    appendLittleEndian<2>(body, std::uint64_t(blockAlign));
    appendLittleEndian<2>(body, std::uint64_t(format.bitsPerSample));
    if (!extensible) {
        if (format.tag != formatTagPcm) appendLittleEndian<2>(body, 0);
        return body;
    }
    appendLittleEndian<2>(body, 22);
    const int validBits = format.validBits > 0 ? format.validBits : format.bitsPerSample;
    appendLittleEndian<2>(body, std::uint64_t(validBits));
    appendLittleEndian<4>(body, format.channelMask);
    appendLittleEndian<2>(body, std::uint64_t(format.tag));
    for (const unsigned char byte : subFormatTail) body.push_back(std::byte{byte});
    return body;
}

}  // namespace audio::wave
