// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <vector>

#include <taglib/tbytevector.h>
#include <taglib/tfile.h>
#include <taglib/tstring.h>

#include "audio/tags/LevelFields.h"

namespace audio::tags {

/// Cover art as all formats have it; `type` is the number that ID3v2, FLAC and ASF share.
struct Picture {
    TagLib::ByteVector data;
    TagLib::String mimeType;
    TagLib::String description;
    int type = 3;
};

/// The pictures of an open file of any format that has them.
std::vector<Picture> picturesOf(TagLib::File& file);
/// Adds pictures to an open file, in memory; a format that has none leaves them out.
void setPictures(TagLib::File& file, const std::vector<Picture>& pictures);

/// Copies what is no property: between two MP4 files every atom of their tag.
void copyNativeFields(TagLib::File& from, TagLib::File& to, LevelFields levels);

}  // namespace audio::tags
