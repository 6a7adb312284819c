// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/tags/TrackDetails.h"

#include <algorithm>
#include <exception>

#include <taglib/fileref.h>
#include <taglib/tag.h>
#include <taglib/tpropertymap.h>

#include "audio/tags/Pictures.h"
#include "platform/file/Regular.h"

namespace audio::tags {
namespace {

constexpr int kFrontCover = 3;

void takeArt(TagLib::File& file, TrackDetails& details) {
    const std::vector<Picture> pictures = picturesOf(file);
    if (pictures.empty()) return;
    const auto isFront = [](const Picture& picture) { return picture.type == kFrontCover; };
    const auto front = std::find_if(pictures.begin(), pictures.end(), isFront);
    const Picture& art = front == pictures.end() ? pictures.front() : *front;
    details.art.assign(art.data.data(), art.data.data() + art.data.size());
    details.artType = art.mimeType.to8Bit(true);
}

}  // namespace

TrackDetails readTrackDetails(const std::filesystem::path& path) noexcept {
    try {
        if (!platform::file::isRegular(path)) return {};
        const TagLib::FileRef file(path.c_str(), false);
        if (file.isNull() || !file.tag()) return {};
        TrackDetails details;
        TagLib::PropertyMap fields = file.file()->properties();
        for (const TagLib::String& artist : fields["ARTIST"])
            details.artists.push_back(artist.to8Bit(true));
        details.album = fields["ALBUM"].toString().to8Bit(true);
        takeArt(*file.file(), details);
        return details;
    } catch (const std::exception&) {
        return {};
    }
}

}  // namespace audio::tags
