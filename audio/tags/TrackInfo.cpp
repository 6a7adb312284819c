// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/tags/TrackInfo.h"

#include <algorithm>
#include <asffile.h>
#include <exception>
#include <mpegfile.h>
#include <mpegproperties.h>
#include <system_error>
#include <wavfile.h>
#include <wavproperties.h>
#include <xingheader.h>

#include <fileref.h>
#include <tag.h>

#include "audio/codec/Decoder.h"

namespace audio::tags {
namespace {

/// The bytes of an MPEG file between its tags, or -1.
std::int64_t soundBytes(TagLib::MPEG::File& file) {
    const std::int64_t first = file.firstFrameOffset();
    const std::int64_t last = file.lastFrameOffset();
    return first < 0 || last <= first ? -1 : last - first;
}

/// The Xing header states frames and bytes of the sound that the encoder wrote. The share of those
/// bytes that the file really holds is the share of the duration.
std::int64_t mpegDuration(TagLib::MPEG::File& file, std::int64_t claimed) {
    const TagLib::MPEG::Properties* properties = file.audioProperties();
    const TagLib::MPEG::XingHeader* header = properties ? properties->xingHeader() : nullptr;
    if (!header || !header->isValid() || header->totalSize() == 0) return claimed;
    const std::int64_t bytes = soundBytes(file);
    const std::int64_t stated = header->totalSize();
    if (bytes < 0 || std::abs(bytes - stated) * 50 < stated) return claimed;
    return std::int64_t(double(claimed) * double(bytes) / double(stated));
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
    if (auto* mpeg = dynamic_cast<TagLib::MPEG::File*>(file.file()))
        return mpegDuration(*mpeg, claimed);
    if (auto* wav = dynamic_cast<TagLib::RIFF::WAV::File*>(file.file()))
        return wavDuration(*wav, claimed);
    if (auto* asf = dynamic_cast<TagLib::ASF::File*>(file.file()))
        return asfDuration(*asf, claimed);
    return claimed;
}

/// For formats that TagLib does not know; -1 where the decoder does not either.
std::int64_t decodersEstimate(const std::filesystem::path& path) {
    try {
        const codec::Decoder decoder(path);
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
        TrackInfo info;
        const TagLib::FileRef file(path.c_str());
        if (!file.isNull() && file.tag()) info.title = file.tag()->title().to8Bit(true);
        info.durationMs = file.isNull() ? -1 : durationOf(file);
        if (info.durationMs < 0) info.durationMs = decodersEstimate(path);
        return info;
    } catch (const std::exception&) {
        return {};
    }
}

}  // namespace audio::tags
