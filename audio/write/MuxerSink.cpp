// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/write/MuxerSink.h"

#include <algorithm>

namespace audio::write {

MuxerSink::MuxerSink(const std::filesystem::path& file, const Format& format,
                     const ffmpeg::Recipe& recipe, int threads)
    : recipe_(recipe),
      encoder_(file, format, recipe),
      muxer_(file, recipe, encoder_),
      cutLeft_(recipe.cut) {
    if (recipe_.independentBlocks)
        parallel_.emplace(file, format, recipe, threads, [this](AVPacket& packet) { put(packet); });
    takeSilence(static_cast<std::size_t>(recipe_.lead));
}

void MuxerSink::write(const float* interleaved, std::size_t frames) {
    written_ += static_cast<std::int64_t>(frames);
    const std::size_t skipped = std::min(frames, static_cast<std::size_t>(cutLeft_));
    cutLeft_ -= static_cast<int>(skipped);
    take(interleaved + skipped * channels(), frames - skipped);
}

void MuxerSink::take(const float* interleaved, std::size_t frames) {
    fifo_.insert(fifo_.end(), interleaved, interleaved + frames * channels());
    taken_ += static_cast<std::int64_t>(frames);
    encodeBlock(encoder_.blockFrames());
}

void MuxerSink::takeSilence(std::size_t frames) {
    const std::vector<float> silence(frames * channels());
    take(silence.data(), frames);
}

/// Encodes from the FIFO while it holds at least so many frames.
void MuxerSink::encodeBlock(std::size_t least) {
    const std::size_t width = channels();
    std::size_t at = 0;
    while (fifo_.size() / width - at >= least && fifo_.size() / width > at) {
        const std::size_t frames = std::min(encoder_.blockFrames(), fifo_.size() / width - at);
        encode(fifo_.data() + at * width, frames);
        at += frames;
    }
    fifo_.erase(fifo_.begin(), fifo_.begin() + static_cast<std::ptrdiff_t>(at * width));
}

void MuxerSink::encode(const float* interleaved, std::size_t frames) {
    if (parallel_)
        parallel_->add(interleaved, frames);
    else
        encoder_.encode(interleaved, frames, encoded_, [this](AVPacket& packet) { put(packet); });
    encoded_ += static_cast<std::int64_t>(frames);
}

void MuxerSink::put(AVPacket& packet) {
    if (packets_++ < mostPackets_) muxer_.write(packet);
}

void MuxerSink::finish() {
    if (recipe_.block > 0) {
        const std::int64_t block = recipe_.block;
        const std::int64_t stored = (written_ + block - 1) / block * block + recipe_.lead;
        takeSilence(static_cast<std::size_t>(std::max<std::int64_t>(0, stored - taken_)));
    }
    encodeBlock(1);
    // Where the delay was cut at the start, what follows the last whole block is delay again.
    if (recipe_.cut > 0) mostPackets_ = taken_ / recipe_.block;
    if (parallel_)
        parallel_->finish();
    else
        encoder_.finish([this](AVPacket& packet) { put(packet); });
    muxer_.finish();
}

}  // namespace audio::write
