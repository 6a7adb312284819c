// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/tags/TrackInfo.h"

#include <algorithm>
#include <asffile.h>
#include <cctype>
#include <cmath>
#include <exception>
#include <infotag.h>
#include <set>
#include <string>
#include <system_error>
#include <wavfile.h>
#include <wavproperties.h>

#include <fileref.h>
#include <tag.h>

#include "audio/mpeg/read/FrameScanner.h"
#include "audio/mpeg/read/InfoTag.h"
#include "audio/read/Decoder.h"

namespace audio::tags {
namespace {

/// In milliseconds; -1 where no frame is found. The Info or Xing tag states frames and bytes of the
/// sound that the encoder wrote; the share of those bytes that the file really holds is the share
/// of the duration. Without one, the first frame's bit-rate stands for all.
std::int64_t mpegDuration(mpeg::FrameScanner& scanner) {
    const auto first = scanner.next();
    if (!first) return -1;
    const mpeg::FrameHeader& header = first->header;
    const double bytes = double(scanner.tags().trailingStart - first->offset);
    const auto tag = mpeg::InfoTag::parse(header, scanner.bytes(*first));
    if (!tag || !tag->frames)
        return header.bitRate > 0 ? std::int64_t(bytes * 8000 / header.bitRate) : -1;
    const double samples =
        double(*tag->frames) * header.samples() - tag->delay.value_or(0) - tag->padding.value_or(0);
    const double claimed = std::max(0.0, samples * 1000 / header.sampleRate);
    const double stated = double(tag->bytes.value_or(0));
    const bool whole = stated == 0 || std::abs(bytes - stated) * 50 < stated;
    return std::int64_t(whole ? claimed : claimed * bytes / stated);
}

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
    info.durationMs = mpegDuration(scanner);
    if (info.durationMs < 0 && scanner.tags().leadingEnd == 0) return info;
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

std::int64_t wavDuration(TagLib::RIFF::WAV::File& file, std::int64_t claimed) {
    const TagLib::RIFF::WAV::Properties* properties = file.audioProperties();
    if (!properties) return claimed;
    const std::int64_t bytesPerSecond = std::int64_t(properties->sampleRate()) *
                                        properties->channels() * properties->bitsPerSample() / 8;
    return bytesPerSecond > 0 ? std::min(claimed, file.length() * 1000 / bytesPerSecond) : claimed;
}

/// ASF packets are padded, so that a bit-rate allows no more than a bound.
std::int64_t asfDuration(TagLib::ASF::File& file, std::int64_t claimed) {
    const int kbps = file.audioProperties() ? file.audioProperties()->bitrate() : 0;
    return kbps > 0 ? std::min(claimed, std::int64_t(file.length()) * 8 / kbps) : claimed;
}

std::int64_t durationOf(const TagLib::FileRef& file) {
    const TagLib::AudioProperties* properties = file.audioProperties();
    const std::int64_t claimed = properties ? properties->lengthInMilliseconds() : 0;
    if (claimed <= 0) return -1;
    if (auto* wav = dynamic_cast<TagLib::RIFF::WAV::File*>(file.file()))
        return wavDuration(*wav, claimed);
    if (auto* asf = dynamic_cast<TagLib::ASF::File*>(file.file()))
        return asfDuration(*asf, claimed);
    return claimed;
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
        std::error_code error;
        if (!std::filesystem::is_regular_file(path, error)) return {};
        if (isNamedMpeg(path)) return mpegInfo(path);
        TrackInfo info;
        const TagLib::FileRef file(path.c_str());
        if (!file.isNull()) info.title = titleOf(file);
        info.durationMs = file.isNull() ? -1 : durationOf(file);
        if (info.durationMs < 0) info.durationMs = decodersEstimate(path);
        return info;
    } catch (const std::exception&) {
        return {};
    }
}

}  // namespace audio::tags
