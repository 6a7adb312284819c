// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/tags/Mp4Atoms.h"

#include <algorithm>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "audio/tags/LevelNames.h"
#include "platform/Error.h"
#include "platform/Paths.h"
#include "platform/file/WindowReader.h"

// Boxes: ISO/IEC 14496-12. The list of fields and the chapters of user data are in no standard.
namespace audio::tags {
namespace {

using Bytes = std::vector<std::uint8_t>;
using View = std::span<const std::uint8_t>;

constexpr std::size_t boxHeader = 8;
constexpr std::int64_t largestMovie = std::int64_t{1} << 29;

struct Box {
    std::string type;
    View bytes;  ///< header and body
    std::size_t header = boxHeader;
    View body() const { return bytes.subspan(header); }
};

std::uint64_t number(View bytes, std::size_t at, std::size_t size) {
    std::uint64_t value = 0;
    for (std::size_t i = 0; i < size; ++i) value = value << 8 | bytes[at + i];
    return value;
}

void append(Bytes& to, View bytes) {
    to.insert(to.end(), bytes.begin(), bytes.end());
}

void appendNumber(Bytes& to, std::uint64_t value, std::size_t size) {
    for (std::size_t i = 0; i < size; ++i)
        to.push_back(static_cast<std::uint8_t>(value >> (8 * (size - 1 - i))));
}

/// The type and the size of the box that begins these bytes; nothing where none does.
struct Heading {
    std::string type;
    std::uint64_t size = 0;
    std::size_t header = boxHeader;
};
std::optional<Heading> headingOf(View bytes, std::uint64_t room) {
    if (bytes.size() < boxHeader) return {};
    Heading heading{{bytes.begin() + 4, bytes.begin() + 8}, number(bytes, 0, 4), boxHeader};
    if (heading.size == 0) heading.size = room;
    if (heading.size == 1) {
        if (bytes.size() < 16) return {};
        heading.size = number(bytes, 8, 8);
        heading.header = 16;
    }
    if (heading.size < heading.header || heading.size > room) return {};
    return heading;
}

/// The boxes in a body; bytes behind the last one are left out.
std::vector<Box> boxesIn(View body) {
    std::vector<Box> boxes;
    while (const auto heading = headingOf(body, body.size())) {
        const auto size = static_cast<std::size_t>(heading->size);
        boxes.push_back({heading->type, body.first(size), heading->header});
        body = body.subspan(size);
    }
    return boxes;
}

const Box* find(const std::vector<Box>& boxes, const std::string& type) {
    const auto found =
        std::find_if(boxes.begin(), boxes.end(), [&](const Box& box) { return box.type == type; });
    return found == boxes.end() ? nullptr : &*found;
}

Bytes boxOf(const std::string& type, View body) {
    Bytes box;
    appendNumber(box, body.size() + boxHeader, 4);
    box.insert(box.end(), type.begin(), type.end());
    append(box, body);
    return box;
}

/// The same box with each box in it, behind `skipped` bytes of its body, made anew; what is no box
/// stays as it is. An empty answer takes one out.
Bytes rebuilt(const Box& box, std::size_t skipped, const std::function<Bytes(const Box&)>& made) {
    const View body = box.body();
    Bytes result(body.begin(), body.begin() + static_cast<std::ptrdiff_t>(skipped));
    std::size_t at = skipped;
    for (const Box& inner : boxesIn(body.subspan(skipped))) {
        const Bytes bytes = made(inner);
        append(result, bytes);
        at += inner.bytes.size();
    }
    append(result, body.subspan(at));
    return boxOf(box.type, result);
}

Bytes copyOf(const Box& box) {
    return {box.bytes.begin(), box.bytes.end()};
}

/// A field with a name of its own: "----" with the boxes mean, name and data.
std::string fieldName(const Box& field) {
    if (field.type != "----") return {};
    const std::vector<Box> parts = boxesIn(field.body());
    const Box* name = find(parts, "name");
    if (!name || name->body().size() < 4) return {};
    const View text = name->body().subspan(4);
    return {text.begin(), text.end()};
}

/// Whether a field says of the sound what is no longer so: where it begins and ends in the packets,
/// which the edit list of the new file states, or its level.
bool isOutdated(const Box& field, LevelFields levels) {
    const std::string name = fieldName(field);
    return name == "iTunSMPB" || (levels == LevelFields::Drop && isLevelName(name));
}

Bytes withoutOutdated(const Box& meta, LevelFields levels) {
    // As QuickTime writes it, the box has no version.
    const bool plain = meta.body().size() >= 8 && number(meta.body(), 4, 4) == 0x68646C72;  // hdlr
    const std::size_t skipped = plain ? 0 : std::min<std::size_t>(4, meta.body().size());
    return rebuilt(meta, skipped, [levels](const Box& box) {
        if (box.type != "ilst") return copyOf(box);
        return rebuilt(box, 0, [levels](const Box& field) {
            return isOutdated(field, levels) ? Bytes() : copyOf(field);
        });
    });
}

/// Chapters: version and flags, four bytes more in version 1, their number, and for each its start
/// in units of 100 ns, the length of its title and the title.
Bytes movedChapters(const Box& box, const Carriage& carriage) {
    constexpr std::int64_t perSecond = 10'000'000;
    Bytes result = copyOf(box);
    std::size_t at = box.header + 4;
    if (result.size() <= at) return result;
    if (result[box.header] != 0) at += 4;
    if (result.size() <= at) return result;
    std::size_t left = result[at++];
    for (; left > 0 && result.size() - at >= 9; --left) {
        const auto start = static_cast<std::int64_t>(number(result, at, 8));
        const std::int64_t seconds = start / perSecond;
        const std::int64_t frame =
            seconds * carriage.sampleRate + start % perSecond * carriage.sampleRate / perSecond;
        const std::int64_t now =
            start + (carriage.moved(frame) - frame) * perSecond / std::max(1, carriage.sampleRate);
        for (std::size_t i = 0; i < 8; ++i)
            result[at + i] = static_cast<std::uint8_t>(std::max<std::int64_t>(0, now) >>
                                                       (56 - 8 * static_cast<int>(i)));
        at += 9 + result[at + 8];
        if (at > result.size()) break;
    }
    return result;
}

Bytes carriedUserData(const Box& userData, const Carriage& carriage) {
    return rebuilt(userData, 0, [&](const Box& box) {
        if (box.type == "chpl") return movedChapters(box, carriage);
        if (box.type == "meta") return withoutOutdated(box, carriage.levels);
        return copyOf(box);
    });
}

/// What lies in a file beside the sound's own bytes.
class Movie {
  public:
    explicit Movie(const std::filesystem::path& file) : file_(file), reader_(file) {
        std::int64_t at = 0;
        while (at < reader_.size()) {
            const std::int64_t room = reader_.size() - at;
            const auto heading = headingOf(reader_.at(at, 16), static_cast<std::uint64_t>(room));
            if (!heading) break;
            take(*heading, at);
            at += static_cast<std::int64_t>(heading->size);
        }
        if (bytes_.empty()) refuse();
    }

    std::vector<Box> boxes() const { return boxesIn(View(bytes_).subspan(header_)); }
    std::int64_t offset() const { return offset_; }
    std::int64_t end() const { return offset_ + static_cast<std::int64_t>(bytes_.size()); }
    bool isLast() const { return last_; }
    /// Where the boxes lie that programs put beside the movie.
    const std::vector<std::pair<std::int64_t, std::int64_t>>& foreign() const { return foreign_; }

    [[noreturn]] void refuse() const {
        throw platform::Error("\"" + platform::toUtf8(file_) +
                              "\" cannot be saved: the boxes that hold its tags are damaged.");
    }

  private:
    void take(const Heading& heading, std::int64_t at) {
        const auto size = static_cast<std::int64_t>(heading.size);
        last_ = heading.type == "moov";
        if (heading.type == "uuid" || heading.type == "meta") foreign_.emplace_back(at, size);
        if (!last_) return;
        if (size > largestMovie) refuse();
        const View read = reader_.at(at, static_cast<std::size_t>(size));
        bytes_.assign(read.begin(), read.end());
        header_ = heading.header;
        offset_ = at;
    }

    std::filesystem::path file_;
    platform::file::WindowReader reader_;
    Bytes bytes_;
    std::size_t header_ = boxHeader;
    std::int64_t offset_ = 0;
    bool last_ = false;
    std::vector<std::pair<std::int64_t, std::int64_t>> foreign_;
};

bool isSound(const Box& track) {
    const std::vector<Box> parts = boxesIn(track.body());
    const Box* media = find(parts, "mdia");
    if (!media) return false;
    const std::vector<Box> inner = boxesIn(media->body());
    const Box* handler = find(inner, "hdlr");
    return handler && handler->body().size() >= 12 &&
           number(handler->body(), 8, 4) == 0x736F756E;  // soun
}

/// The user data of the track of sound; empty where it has none.
Bytes trackData(const Movie& movie, const Carriage& carriage) {
    for (const Box& box : movie.boxes()) {
        if (box.type != "trak" || !isSound(box)) continue;
        const std::vector<Box> parts = boxesIn(box.body());
        const Box* userData = find(parts, "udta");
        return userData ? carriedUserData(*userData, carriage) : Bytes();
    }
    return {};
}

Bytes merged(const Movie& sound, const Movie& source, const Carriage& carriage) {
    Bytes body;
    for (const Box& box : sound.boxes()) {
        if (box.type == "udta" || box.type == "meta") continue;
        Bytes bytes = copyOf(box);
        if (box.type == "trak") {
            Bytes track(box.body().begin(), box.body().end());
            append(track, trackData(source, carriage));
            bytes = boxOf(box.type, track);
        }
        append(body, bytes);
    }
    for (const Box& box : source.boxes()) {
        if (box.type == "udta") append(body, carriedUserData(box, carriage));
        if (box.type == "meta") append(body, copyOf(box));
    }
    return boxOf("moov", body);
}

}  // namespace

void writeWithMp4Atoms(const Carriage& carriage, platform::file::Replacement& file) {
    const Movie sound(carriage.encoded);
    const Movie source(carriage.source);
    // The muxer puts the movie last, so that no place in it moves when it grows.
    if (!sound.isLast()) sound.refuse();
    file.copyFrom(carriage.encoded, 0, sound.offset());
    const Bytes movie = merged(sound, source, carriage);
    file.write(movie.data(), movie.size());
    for (const auto& [offset, size] : source.foreign())
        file.copyFrom(carriage.source, offset, size);
}

}  // namespace audio::tags
