// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/read/ChainSource.h"

#include <algorithm>

#include "audio/read/PacketSource.h"

namespace audio::read {

ChainSource::ChainSource(const std::filesystem::path& file, const std::vector<FilePart>& links) {
    for (const FilePart& part : links)
        links_.push_back(std::make_unique<PacketSource>(ffmpeg::Input(file, part)));
    format_ = links_.front()->format();
    contents_ = links_.front()->contents();
    contents_.chained = true;
    for (const auto& link : links_)
        if (link->format().sampleRate != format_.sampleRate ||
            link->format().channels != format_.channels)
            throw fileError(file, "is a chain of sounds of different rates or channels");
}

std::int64_t ChainSource::frames() {
    std::int64_t sum = 0;
    for (const auto& link : links_) sum += link->frames();
    return sum;
}

std::int64_t ChainSource::estimatedFrames() const {
    std::int64_t sum = 0;
    for (const auto& link : links_) {
        if (link->estimatedFrames() < 0) return -1;
        sum += link->estimatedFrames();
    }
    return sum;
}

std::size_t ChainSource::read(float* interleaved, std::size_t frames) {
    while (current_ < links_.size()) {
        Decoder::Source& link = *links_[current_];
        const std::size_t got = link.read(interleaved, frames);
        damaged_ = damaged_ || link.damaged();
        position_ += static_cast<std::int64_t>(got);
        if (got > 0 || current_ + 1 == links_.size()) return got;
        links_[++current_]->seek(0);
    }
    return 0;
}

void ChainSource::seek(std::int64_t frame) {
    position_ = std::clamp<std::int64_t>(frame, 0, frames());
    std::int64_t inLink = position_;
    current_ = 0;
    while (current_ + 1 < links_.size() && inLink >= links_[current_]->frames())
        inLink -= links_[current_++]->frames();
    links_[current_]->seek(inLink);
}

}  // namespace audio::read
