// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/read/Decoder.h"

#include <algorithm>

#include "audio/Limits.h"
#include "audio/RequireFile.h"
#include "audio/ogg/Links.h"
#include "audio/read/ChainSource.h"
#include "audio/read/MpegSource.h"
#include "audio/read/PacketSource.h"
#include "audio/read/WaveSource.h"
#include "audio/wave/Layout.h"

namespace audio::read {
namespace {

void requireContent(const std::filesystem::path& file) {
    requireFile(file);
    std::error_code failure;
    const std::uintmax_t size = std::filesystem::file_size(file, failure);
    if (!failure && size == 0) throw fileError(file, "is empty");
}

/// Whether frames of MPEG audio follow one another right behind the file's leading tags.
bool isMpegAudio(const std::filesystem::path& file) {
    platform::file::WindowReader reader(file);
    const std::int64_t start = mpeg::findTags(reader).leadingEnd;
    if (!mpeg::FrameHeader::parse(reader.at(start, 4))) return false;
    mpeg::FrameScanner scanner(reader);
    const auto first = scanner.next();
    if (!first || first->offset != start) return false;
    const auto second = scanner.next();
    return !second || second->junkBefore == 0;
}

std::unique_ptr<Decoder::Source> openSource(const std::filesystem::path& file) {
    requireContent(file);
    if (wave::looksLikeWave(file)) {
        const wave::Layout layout = wave::readLayout(file);
        if (layout.format.sampleType()) return std::make_unique<WaveSource>(file, layout);
    }
    // A few frames are too little for a probe by content alone, but not for one that follows them.
    if (isMpegAudio(file)) return std::make_unique<MpegSource>(file);
    ffmpeg::Input input(file);
    if (input.containerName() == "mp3") return std::make_unique<MpegSource>(file);
    if (input.containerName() == "ogg") {
        const std::vector<ogg::Link> links = ogg::findLinks(file);
        if (links.size() > 1) return std::make_unique<ChainSource>(file, links);
    }
    return std::make_unique<PacketSource>(std::move(input));
}

}  // namespace

Decoder::Decoder(const std::filesystem::path& file) : source_(openSource(file)) {
    requireWithinLimits(file, source_->format());
}
Decoder::~Decoder() = default;

const Format& Decoder::format() const {
    return source_->format();
}

const Contents& Decoder::contents() const {
    return source_->contents();
}

std::int64_t Decoder::frames() {
    return source_->frames();
}

std::int64_t Decoder::estimatedFrames() const {
    return source_->estimatedFrames();
}

std::size_t Decoder::read(float* interleaved, std::size_t frames) {
    std::size_t done = 0;
    while (done < frames) {
        const std::size_t got = source_->read(
            interleaved + done * static_cast<std::size_t>(format().channels), frames - done);
        if (got == 0) break;
        done += got;
    }
    return done;
}

void Decoder::seek(std::int64_t frame) {
    source_->seek(frame);
}

std::int64_t Decoder::position() const {
    return source_->position();
}

bool Decoder::hasPcm() const {
    return source_->hasPcm();
}

std::size_t Decoder::readPcm(std::byte* bytes, std::size_t frames) {
    if (!hasPcm()) throw platform::Error("Only uncompressed sound can be read byte by byte.");
    return source_->readPcm(bytes, frames);
}

bool Decoder::damaged() const {
    return source_->damaged();
}

}  // namespace audio::read
