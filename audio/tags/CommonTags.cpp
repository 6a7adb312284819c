// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/tags/CommonTags.h"

#include <memory>

#include <taglib/fileref.h>
#include <taglib/tpropertymap.h>

#include "audio/tags/LevelNames.h"
#include "audio/tags/Pictures.h"
#include "platform/Error.h"
#include "platform/Paths.h"

namespace audio::tags {
namespace {

TagLib::FileRef open(const std::filesystem::path& file) {
    // By the file's content where its name tells nothing.
    return TagLib::FileRef(file.c_str(), false);
}

TagLib::PropertyMap propertiesOf(const TagLib::FileRef& file, LevelFields levels) {
    TagLib::PropertyMap properties = file.file()->properties();
    if (levels == LevelFields::Keep) return properties;
    TagLib::PropertyMap kept;
    for (const auto& [name, values] : properties)
        if (!isLevelName(name.to8Bit(true))) kept.insert(name, values);
    return kept;
}

}  // namespace

bool copyCommonTags(const std::filesystem::path& from, const std::filesystem::path& to,
                    LevelFields levels) {
    const TagLib::FileRef source = open(from);
    if (source.isNull()) return false;
    const TagLib::PropertyMap properties = propertiesOf(source, levels);
    const std::vector<Picture> pictures = picturesOf(*source.file());
    if (properties.isEmpty() && pictures.empty()) return true;

    TagLib::FileRef target = open(to);
    if (target.isNull()) return false;
    copyNativeFields(*source.file(), *target.file(), levels);
    target.file()->setProperties(properties);
    setPictures(*target.file(), pictures);
    if (target.save()) return true;
    throw platform::Error("The tags of \"" + platform::toUtf8(from) +
                          "\" could not be written to the new file.");
}

}  // namespace audio::tags
