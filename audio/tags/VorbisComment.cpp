// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/tags/VorbisComment.h"

#include <algorithm>
#include <cstring>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "audio/tags/LevelNames.h"
#include "platform/file/WindowReader.h"

namespace audio::tags {
namespace {

using Bytes = std::span<const std::uint8_t>;
using Packet = std::vector<std::uint8_t>;

constexpr std::size_t pageHeader = 27;

std::uint32_t littleEndian32(Bytes bytes, std::size_t at) {
    return static_cast<std::uint32_t>(bytes[at]) | static_cast<std::uint32_t>(bytes[at + 1]) << 8 |
           static_cast<std::uint32_t>(bytes[at + 2]) << 16 |
           static_cast<std::uint32_t>(bytes[at + 3]) << 24;
}

bool begins(const Packet& packet, std::string_view signature) {
    return packet.size() >= signature.size() &&
           std::memcmp(packet.data(), signature.data(), signature.size()) == 0;
}

/// Gathers the packets of every stream of an Ogg file (RFC 3533) from its first page on.
class PacketFinder {
  public:
    explicit PacketFinder(const std::filesystem::path& file) : reader_(file) {}

    /// The second packet of the stream whose first one is the head of Vorbis or of Opus.
    Packet comment() {
        while (const auto segments = nextPage()) {
            Packet& packet = open_[serial_];
            std::int64_t at = body_;
            for (const std::uint8_t lace : *segments) {
                const Bytes part = reader_.at(at, lace);
                packet.insert(packet.end(), part.begin(), part.end());
                at += lace;
                if (lace == 255) continue;
                if (soundSerial_ == serial_) return packet;
                if (begins(packet, "\x01vorbis") || begins(packet, "OpusHead"))
                    soundSerial_ = serial_;
                packet.clear();
            }
            position_ = at;
        }
        return {};
    }

  private:
    /// The lacing values of the page at the position; nothing where there is none.
    std::optional<Packet> nextPage() {
        const Bytes header = reader_.at(position_, pageHeader);
        if (header.size() < pageHeader || std::memcmp(header.data(), "OggS", 4) != 0) return {};
        serial_ = littleEndian32(header, 14);
        const std::size_t count = header[26];
        const std::int64_t table = position_ + static_cast<std::int64_t>(pageHeader);
        const Bytes lacing = reader_.at(table, count);
        if (lacing.size() < count) return {};
        body_ = table + static_cast<std::int64_t>(count);
        return Packet(lacing.begin(), lacing.end());
    }

    platform::file::WindowReader reader_;
    std::int64_t position_ = 0;
    std::int64_t body_ = 0;
    std::uint32_t serial_ = 0;
    std::optional<std::uint32_t> soundSerial_;
    std::map<std::uint32_t, Packet> open_;
};

/// Where the vendor text and each comment of a packet lie, lengths included.
struct CommentLayout {
    std::size_t countAt = 0;
    std::vector<std::pair<std::size_t, std::size_t>> comments;  // offset, size with length field
    std::size_t end = 0;
};

std::optional<CommentLayout> layoutOf(const Packet& packet) {
    constexpr std::string_view vorbis = "\x03vorbis";
    constexpr std::string_view opus = "OpusTags";
    const std::size_t signature = begins(packet, opus) ? opus.size() : vorbis.size();
    if (!begins(packet, vorbis) && !begins(packet, opus)) return {};
    if (packet.size() < signature + 8) return {};
    CommentLayout layout;
    std::size_t at = signature;
    const auto skip = [&packet, &at] {
        if (packet.size() - at < 4) return false;
        const std::size_t size = littleEndian32(packet, at);
        if (packet.size() - at - 4 < size) return false;
        at += 4 + size;
        return true;
    };
    if (!skip() || packet.size() - at < 4) return {};
    layout.countAt = at;
    const std::uint32_t count = littleEndian32(packet, at);
    at += 4;
    for (std::uint32_t i = 0; i < count; ++i) {
        const std::size_t start = at;
        if (!skip()) return {};
        layout.comments.emplace_back(start, at - start);
    }
    layout.end = at;
    return layout;
}

}  // namespace

std::vector<std::uint8_t> readVorbisComment(const std::filesystem::path& file, LevelFields levels) {
    Packet packet = PacketFinder(file).comment();
    return levels == LevelFields::Keep ? packet : withoutLevelComments(packet);
}

std::vector<std::uint8_t> withoutLevelComments(const Packet& packet) {
    const auto layout = layoutOf(packet);
    if (!layout) return packet;
    const auto at = [&packet](std::size_t offset) {
        return packet.begin() + static_cast<std::ptrdiff_t>(offset);
    };
    Packet result(packet.begin(), at(layout->countAt + 4));
    std::uint32_t kept = 0;
    for (const auto& [start, size] : layout->comments) {
        const std::string comment(at(start + 4), at(start + size));
        if (isLevelName(comment.substr(0, comment.find('=')))) continue;
        result.insert(result.end(), at(start), at(start + size));
        ++kept;
    }
    result.insert(result.end(), at(layout->end), packet.end());
    for (std::size_t i = 0; i < 4; ++i)
        result[layout->countAt + i] = static_cast<std::uint8_t>(kept >> (8 * i));
    return result;
}

}  // namespace audio::tags
