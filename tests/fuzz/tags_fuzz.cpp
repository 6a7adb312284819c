// SPDX-License-Identifier: GPL-3.0-or-later
// Any bytes as tags: what is taken out of them never makes them longer, and doing it twice changes
// nothing more.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <span>
#include <vector>

#include "audio/tags/ApeLevel.h"
#include "audio/tags/AsfAttributes.h"
#include "audio/tags/CueSheet.h"
#include "audio/tags/Id3v2Level.h"
#include "audio/tags/VorbisComment.h"

using namespace audio::tags;

namespace {

void require(bool condition, const char* what) {
    if (condition) return;
    std::fprintf(stderr, "broken promise: %s\n", what);
    std::abort();
}

void id3v2(std::span<const std::byte> bytes) {
    const auto size = id3v2Size(bytes);
    if (!size) return;
    const auto once = withoutLevelFrames(bytes.first(*size));
    require(once.size() <= *size, "an ID3v2 tag that does not grow");
    require(withoutLevelFrames(once) == once, "an ID3v2 tag without level frames stays");
}

void ape(std::span<const std::byte> bytes) {
    const auto place = findApeTag(bytes);
    if (!place) return;
    require(place->start < place->end && place->end <= bytes.size(), "an APE tag inside the bytes");
    const auto tag = bytes.subspan(place->start, place->end - place->start);
    const auto once = withoutLevelItems(tag);
    require(once.size() <= tag.size(), "an APE tag that does not grow");
    require(withoutLevelItems(once) == once, "an APE tag without level items stays");
}

void asf(std::span<const std::byte> bytes) {
    for (const auto kind : {AsfAttributeKind::Extended, AsfAttributeKind::Metadata})
        require(withoutLevelAttributes(bytes, kind).size() <= bytes.size(),
                "an ASF object that does not grow");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto bytes = std::as_bytes(std::span(data, size));
    id3v2(bytes);
    ape(bytes);
    asf(bytes);
    const std::vector<std::uint8_t> packet(data, data + size);
    const auto stay = [](std::int64_t frame) { return frame; };
    require(movedCueSheet(packet, stay) == packet, "a cue sheet that stays where nothing moves");
    require(movedCueSheet(packet, [](std::int64_t frame) { return frame + 1; }).size() == size,
            "a cue sheet that does not grow");
    require(withoutLevelComments(packet).size() <= size, "a comment packet that does not grow");
    return 0;
}
