// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/tags/Pictures.h"

#include <taglib/aifffile.h>
#include <taglib/asffile.h>
#include <taglib/asfpicture.h>
#include <taglib/attachedpictureframe.h>
#include <taglib/flacfile.h>
#include <taglib/flacpicture.h>
#include <taglib/id3v2tag.h>
#include <taglib/mp4coverart.h>
#include <taglib/mp4file.h>
#include <taglib/mpegfile.h>
#include <taglib/oggflacfile.h>
#include <taglib/opusfile.h>
#include <taglib/vorbisfile.h>
#include <taglib/wavfile.h>
#include <taglib/xiphcomment.h>

#include "audio/tags/LevelNames.h"

namespace audio::tags {
namespace {

// Of the formats whose cover art lies in an ID3v2 tag.
TagLib::ID3v2::Tag* id3v2Of(TagLib::File& file, bool create) {
    if (auto* mpeg = dynamic_cast<TagLib::MPEG::File*>(&file)) return mpeg->ID3v2Tag(create);
    if (auto* wav = dynamic_cast<TagLib::RIFF::WAV::File*>(&file)) return wav->ID3v2Tag();
    if (auto* aiff = dynamic_cast<TagLib::RIFF::AIFF::File*>(&file)) return aiff->tag();
    return nullptr;
}

TagLib::Ogg::XiphComment* xiphOf(TagLib::File& file) {
    if (auto* vorbis = dynamic_cast<TagLib::Ogg::Vorbis::File*>(&file)) return vorbis->tag();
    if (auto* opus = dynamic_cast<TagLib::Ogg::Opus::File*>(&file)) return opus->tag();
    if (auto* flac = dynamic_cast<TagLib::Ogg::FLAC::File*>(&file)) return flac->tag();
    return nullptr;
}

std::vector<Picture> fromId3v2(TagLib::ID3v2::Tag& tag) {
    std::vector<Picture> pictures;
    for (TagLib::ID3v2::Frame* frame : tag.frameList("APIC"))
        if (const auto* art = dynamic_cast<TagLib::ID3v2::AttachedPictureFrame*>(frame))
            pictures.push_back({art->picture(), art->mimeType(), art->description(), art->type()});
    return pictures;
}

std::vector<Picture> fromFlac(const TagLib::List<TagLib::FLAC::Picture*>& list) {
    std::vector<Picture> pictures;
    for (const TagLib::FLAC::Picture* art : list)
        pictures.push_back({art->data(), art->mimeType(), art->description(), art->type()});
    return pictures;
}

std::vector<Picture> fromAsf(TagLib::ASF::Tag& tag) {
    std::vector<Picture> pictures;
    for (const TagLib::ASF::Attribute& attribute : tag.attribute("WM/Picture")) {
        const TagLib::ASF::Picture art = attribute.toPicture();
        if (art.isValid())
            pictures.push_back({art.picture(), art.mimeType(), art.description(), art.type()});
    }
    return pictures;
}

std::vector<Picture> fromMp4(TagLib::MP4::Tag& tag) {
    std::vector<Picture> pictures;
    if (!tag.contains("covr")) return pictures;
    for (const TagLib::MP4::CoverArt& art : tag.item("covr").toCoverArtList())
        pictures.push_back({art.data(),
                            art.format() == TagLib::MP4::CoverArt::PNG ? "image/png" : "image/jpeg",
                            {},
                            3});
    return pictures;
}

TagLib::FLAC::Picture* newFlacPicture(const Picture& picture) {
    auto* art = new TagLib::FLAC::Picture;  // the tag takes it over
    art->setData(picture.data);
    art->setMimeType(picture.mimeType);
    art->setDescription(picture.description);
    art->setType(static_cast<TagLib::FLAC::Picture::Type>(picture.type));
    return art;
}

void addTo(TagLib::ID3v2::Tag& tag, const Picture& picture) {
    auto* frame = new TagLib::ID3v2::AttachedPictureFrame;  // the tag takes it over
    frame->setPicture(picture.data);
    frame->setMimeType(picture.mimeType);
    frame->setDescription(picture.description);
    frame->setTextEncoding(TagLib::String::UTF16);
    frame->setType(static_cast<TagLib::ID3v2::AttachedPictureFrame::Type>(picture.type));
    tag.addFrame(frame);
}

void addTo(TagLib::ASF::Tag& tag, const Picture& picture) {
    TagLib::ASF::Picture art;
    art.setPicture(picture.data);
    art.setMimeType(picture.mimeType);
    art.setDescription(picture.description);
    art.setType(static_cast<TagLib::ASF::Picture::Type>(picture.type));
    tag.addAttribute("WM/Picture", art);
}

void addTo(TagLib::MP4::Tag& tag, const Picture& picture) {
    TagLib::MP4::CoverArtList list;
    if (tag.contains("covr")) list = tag.item("covr").toCoverArtList();
    list.append(TagLib::MP4::CoverArt(
        picture.mimeType == "image/png" ? TagLib::MP4::CoverArt::PNG : TagLib::MP4::CoverArt::JPEG,
        picture.data));
    tag.setItem("covr", list);
}

}  // namespace

std::vector<Picture> picturesOf(TagLib::File& file) {
    if (auto* flac = dynamic_cast<TagLib::FLAC::File*>(&file)) return fromFlac(flac->pictureList());
    if (auto* xiph = xiphOf(file)) return fromFlac(xiph->pictureList());
    if (auto* asf = dynamic_cast<TagLib::ASF::File*>(&file)) return fromAsf(*asf->tag());
    if (auto* mp4 = dynamic_cast<TagLib::MP4::File*>(&file))
        return mp4->tag() ? fromMp4(*mp4->tag()) : std::vector<Picture>();
    if (auto* tag = id3v2Of(file, false)) return fromId3v2(*tag);
    return {};
}

void setPictures(TagLib::File& file, const std::vector<Picture>& pictures) {
    for (const Picture& picture : pictures) {
        if (auto* flac = dynamic_cast<TagLib::FLAC::File*>(&file))
            flac->addPicture(newFlacPicture(picture));
        else if (auto* xiph = xiphOf(file))
            xiph->addPicture(newFlacPicture(picture));
        else if (auto* asf = dynamic_cast<TagLib::ASF::File*>(&file))
            addTo(*asf->tag(), picture);
        else if (auto* mp4 = dynamic_cast<TagLib::MP4::File*>(&file))
            addTo(*mp4->tag(), picture);
        else if (auto* tag = id3v2Of(file, true))
            addTo(*tag, picture);
    }
}

void copyNativeFields(TagLib::File& from, TagLib::File& to, LevelFields levels) {
    const auto* source = dynamic_cast<TagLib::MP4::File*>(&from);
    const auto* target = dynamic_cast<TagLib::MP4::File*>(&to);
    if (!source || !target || !source->tag() || !target->tag()) return;
    for (const auto& [name, item] : source->tag()->itemMap()) {
        const std::string key = name.to8Bit(true);
        const bool isLevel = isLevelName(key.substr(key.rfind(':') + 1));
        // Pictures are added by setPictures().
        if (name == "covr" || (isLevel && levels == LevelFields::Drop)) continue;
        target->tag()->setItem(name, item);
    }
}

}  // namespace audio::tags
