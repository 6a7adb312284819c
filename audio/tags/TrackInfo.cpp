// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/tags/TrackInfo.h"

#include <algorithm>
#include <cctype>
#include <exception>
#include <set>
#include <string>

#include <taglib/asffile.h>
#include <taglib/fileref.h>
#include <taglib/flacfile.h>
#include <taglib/infotag.h>
#include <taglib/tag.h>
#include <taglib/wavfile.h>

#include "audio/mpeg/read/FrameScanner.h"
#include "audio/read/Decoder.h"
#include "audio/tags/Durations.h"
#include "audio/tags/Id3v2Title.h"
#include "platform/Error.h"
#include "platform/file/Regular.h"

namespace audio::tags {
namespace {

bool isNamedMpeg(const std::filesystem::path& path) {
    std::string extension = path.extension().string();
    for (char& letter : extension) letter = char(std::tolower(static_cast<unsigned char>(letter)));
    static const std::set<std::string> names = {".mp1", ".mp2", ".mp3", ".mpa", ".mpga"};
    return names.contains(extension);
}

/// TagLib is asked for the title alone: looking for frames, it takes minutes over a file of zeros.
TrackInfo mpegInfo(const std::filesystem::path& path) {
    platform::file::WindowReader reader(path);
    mpeg::FrameScanner scanner(reader);
    TrackInfo info;
    info.durationMs = mpegDuration(reader, scanner);
    if (info.durationMs < 0 && scanner.tags().leadingEnd == 0) return info;
    if (const auto title = titleBehindOldFrames(reader)) {
        info.title = *title;
        return info;
    }
    const TagLib::FileRef file(path.c_str(), false);
    if (!file.isNull() && file.tag()) info.title = file.tag()->title().to8Bit(true);
    return info;
}

/// A WAV file's title stands in an ID3v2 chunk or, more often, in a LIST INFO chunk.
std::string titleOf(const TagLib::FileRef& file) {
    TagLib::String title = file.tag() ? file.tag()->title() : TagLib::String();
    auto* wav = dynamic_cast<TagLib::RIFF::WAV::File*>(file.file());
    if (title.isEmpty() && wav && wav->InfoTag()) title = wav->InfoTag()->title();
    return title.to8Bit(true);
}

/// By the file's own structure, for formats whose headers TagLib believes; -1 for others.
std::int64_t structuralDuration(TagLib::File* file, const std::filesystem::path& path) {
    try {
        if (dynamic_cast<TagLib::RIFF::WAV::File*>(file)) return waveDuration(path);
        if (dynamic_cast<TagLib::ASF::File*>(file)) return asfDuration(path);
        if (dynamic_cast<TagLib::FLAC::File*>(file)) return flacDuration(path);
    } catch (const platform::Error&) {
        // What cannot be taken apart may still have a header.
    }
    return -1;
}

std::int64_t durationOf(const TagLib::FileRef& file, const std::filesystem::path& path) {
    if (const std::int64_t found = structuralDuration(file.file(), path); found >= 0) return found;
    const TagLib::AudioProperties* properties = file.audioProperties();
    const std::int64_t claimed = properties ? properties->lengthInMilliseconds() : 0;
    return claimed > 0 ? claimed : -1;
}

/// For formats that TagLib does not know; -1 where the decoder does not either.
std::int64_t decodersEstimate(const std::filesystem::path& path) {
    try {
        const read::Decoder decoder(path);
        const std::int64_t frames = decoder.estimatedFrames();
        return frames <= 0 ? -1 : frames * 1000 / decoder.format().sampleRate;
    } catch (const std::exception&) {
        return -1;
    }
}

}  // namespace

TrackInfo readTrackInfo(const std::filesystem::path& path) noexcept {
    try {
        if (!platform::file::isRegular(path)) return {};
        if (isNamedMpeg(path)) return mpegInfo(path);
        TrackInfo info;
        const TagLib::FileRef file(path.c_str());
        if (!file.isNull()) info.title = titleOf(file);
        info.durationMs = file.isNull() ? -1 : durationOf(file, path);
        if (info.durationMs < 0) info.durationMs = decodersEstimate(path);
        return info;
    } catch (const std::exception&) {
        return {};
    }
}

}  // namespace audio::tags
