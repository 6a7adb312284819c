// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/tags/AiffChunks.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <string>
#include <utility>
#include <vector>

#include "audio/tags/Id3v2Level.h"
#include "platform/Error.h"
#include "platform/Paths.h"
#include "platform/file/WindowReader.h"

// Audio Interchange File Format, version 1.3, and its extension AIFF-C.
namespace audio::tags {
namespace {

constexpr std::int64_t formHeader = 12;
constexpr std::int64_t chunkHeader = 8;

struct Chunk {
    std::string id;
    std::int64_t offset = 0;  ///< of the header
    std::int64_t size = 0;    ///< of header and body, without padding
};

struct Form {
    std::string kind;  ///< "AIFF" or "AIFC"
    std::vector<Chunk> chunks;
};

std::string textOf(std::span<const std::uint8_t> bytes) {
    return {bytes.begin(), bytes.end()};
}

Form readForm(const std::filesystem::path& file) {
    platform::file::WindowReader reader(file);
    const std::string head = textOf(reader.at(0, formHeader));
    Form form;
    if (head.size() == formHeader && head.starts_with("FORM")) form.kind = head.substr(8);
    if (form.kind != "AIFF" && form.kind != "AIFC")
        throw platform::Error("\"" + platform::toUtf8(file) + "\" is no AIFF file.");
    std::int64_t at = formHeader;
    while (at + chunkHeader <= reader.size()) {
        const auto header = reader.at(at, chunkHeader);
        const std::int64_t stated =
            std::int64_t(header[4]) << 24 | header[5] << 16 | header[6] << 8 | header[7];
        const std::int64_t size = std::min(chunkHeader + stated, reader.size() - at);
        form.chunks.push_back({textOf(header.first(4)), at, size});
        at += size + size % 2;
    }
    return form;
}

bool isOfSound(const Chunk& chunk) {
    static constexpr std::array own{"COMM", "SSND", "FVER"};
    return std::find(own.begin(), own.end(), chunk.id) != own.end();
}

std::array<std::uint8_t, 4> bigEndian(std::int64_t value) {
    return {static_cast<std::uint8_t>(value >> 24), static_cast<std::uint8_t>(value >> 16),
            static_cast<std::uint8_t>(value >> 8), static_cast<std::uint8_t>(value)};
}

/// Writes the chunks one after the other.
class FormWriter {
  public:
    FormWriter(const Carriage& carriage, platform::file::Replacement& file)
        : carriage_(carriage), file_(file) {}

    void begin(const std::string& kind) {
        file_.write("FORM\0\0\0\0", 8);
        file_.write(kind.data(), kind.size());
    }
    void copy(const std::filesystem::path& from, const Chunk& chunk) {
        file_.copyFrom(from, chunk.offset, chunk.size);
        pad();
    }
    void carry(const Chunk& chunk) {
        const bool tag = chunk.id == "ID3 " || chunk.id == "id3 ";
        if (tag && carriage_.levels == LevelFields::Drop)
            putTag(chunk);
        else
            copy(carriage_.source, chunk);
    }
    void finish() {
        const std::int64_t end = file_.position();
        file_.seek(4);
        file_.write(bigEndian(end - chunkHeader).data(), 4);
        file_.seek(end);
    }

  private:
    void putTag(const Chunk& chunk) {
        platform::file::WindowReader reader(carriage_.source);
        const auto body = std::as_bytes(reader.at(
            chunk.offset + chunkHeader, static_cast<std::size_t>(chunk.size - chunkHeader)));
        const std::vector<std::byte> tag = withoutLevelFrames(body);
        file_.write(chunk.id.data(), chunk.id.size());
        file_.write(bigEndian(static_cast<std::int64_t>(tag.size())).data(), 4);
        file_.write(tag);
        pad();
    }
    void pad() {
        if (file_.position() % 2 == 1) file_.write("", 1);
    }

    const Carriage& carriage_;
    platform::file::Replacement& file_;
};

}  // namespace

void writeWithAiffChunks(const Carriage& carriage, platform::file::Replacement& file) {
    const Form sound = readForm(carriage.encoded);
    const Form source = readForm(carriage.source);
    FormWriter writer(carriage, file);
    writer.begin(sound.kind);
    bool described = false;
    const auto put = [&](const std::string& id) {
        for (const Chunk& chunk : sound.chunks)
            if (chunk.id == id) writer.copy(carriage.encoded, chunk);
    };
    const auto describe = [&] {
        if (std::exchange(described, true)) return;
        put("FVER");
        put("COMM");
    };
    for (const Chunk& chunk : source.chunks) {
        if (isOfSound(chunk)) describe();
        if (chunk.id == "SSND") put("SSND");
        if (!isOfSound(chunk)) writer.carry(chunk);
    }
    writer.finish();
}

}  // namespace audio::tags
