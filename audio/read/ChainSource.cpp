// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/read/ChainSource.h"

#include <algorithm>

#include "audio/parallel/Stop.h"
#include "audio/read/PacketSource.h"

namespace audio::read {

ChainSource::ChainSource(const std::filesystem::path& file, const std::vector<ogg::Link>& links)
    : file_(file) {
    for (const ogg::Link& link : links) links_.push_back({link.part, {}});
    source_ = open(0);
    format_ = source_->format();
    contents_ = source_->contents();
    contents_.chained = true;
    for (const ogg::Link& link : links) {
        if (link.heads == links.front().heads) continue;
        const Format other = ffmpeg::Input(file_, link.part).format();
        if (other.sampleRate != format_.sampleRate || other.channels != format_.channels)
            throw fileError(file, "is a chain of sounds of different rates or channels");
    }
}

std::unique_ptr<Decoder::Source> ChainSource::open(std::size_t number) const {
    return std::make_unique<PacketSource>(ffmpeg::Input(file_, links_[number].part));
}

void ChainSource::goTo(std::size_t number) {
    if (number == current_) return;
    source_ = open(number);
    current_ = number;
}

std::int64_t ChainSource::framesOf(std::size_t number) {
    std::optional<std::int64_t>& frames = links_[number].frames;
    if (!frames) frames = number == current_ ? source_->frames() : open(number)->frames();
    return *frames;
}

std::int64_t ChainSource::frames() {
    std::int64_t sum = 0;
    for (std::size_t i = 0; i < links_.size(); ++i) {
        parallel::throwIfStopped();
        sum += framesOf(i);
    }
    return sum;
}

// By the bytes that the first link takes, where the others were not counted.
std::int64_t ChainSource::estimatedFrames() const {
    const std::int64_t own = source_->estimatedFrames();
    const FilePart& part = links_[current_].part;
    if (own < 0 || part.end <= part.begin) return -1;
    const double perByte = static_cast<double>(own) / static_cast<double>(part.end - part.begin);
    double sum = 0;
    for (const Link& link : links_)
        sum += link.frames ? static_cast<double>(*link.frames)
                           : perByte * static_cast<double>(link.part.end - link.part.begin);
    return static_cast<std::int64_t>(sum);
}

std::size_t ChainSource::read(float* interleaved, std::size_t frames) {
    while (true) {
        const std::size_t got = source_->read(interleaved, frames);
        damaged_ = damaged_ || source_->damaged();
        position_ += static_cast<std::int64_t>(got);
        if (got > 0 || current_ + 1 == links_.size()) return got;
        goTo(current_ + 1);
    }
}

void ChainSource::seek(std::int64_t frame) {
    position_ = std::max<std::int64_t>(frame, 0);
    std::int64_t inLink = position_;
    std::size_t number = 0;
    while (number + 1 < links_.size() && inLink >= framesOf(number)) inLink -= framesOf(number++);
    position_ -= std::max<std::int64_t>(0, inLink - framesOf(number));
    goTo(number);
    source_->seek(std::min(inLink, framesOf(number)));
}

}  // namespace audio::read
