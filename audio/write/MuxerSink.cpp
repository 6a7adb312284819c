// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/write/MuxerSink.h"

#include <algorithm>
#include <cstring>

#include "audio/FileError.h"

namespace audio::write {

MuxerSink::MuxerSink(const std::filesystem::path& file, const Format& format,
                     const ffmpeg::Recipe& recipe, int threads)
    : file_(file), recipe_(recipe), encoder_(file, format, recipe), cutLeft_(recipe.cut) {
    openMuxer();
    if (recipe_.independentBlocks)
        parallel_.emplace(file, format, recipe, threads, [this](AVPacket& packet) { put(packet); });
    takeSilence(static_cast<std::size_t>(recipe_.lead));
}

void MuxerSink::require(int result, const std::string& what) const {
    if (result < 0) throw fileError(file_, what + ": " + ffmpeg::ffmpegReason(result));
}

void MuxerSink::openMuxer() {
    AVFormatContext* made = nullptr;
    const std::string name = "file:" + platform::toUtf8(file_);
    require(avformat_alloc_output_context2(&made, recipe_.muxer, nullptr, name.c_str()),
            "cannot be written");
    muxer_.reset(made);
    muxer_->flags |= AVFMT_FLAG_BITEXACT;  // nothing of the muxer's own in the tags
    AVStream* stream = avformat_new_stream(made, nullptr);
    if (!stream) throw std::bad_alloc();
    stream->time_base = encoder_.context().time_base;
    require(avcodec_parameters_from_context(stream->codecpar, &encoder_.context()),
            "cannot be written");
    require(avio_open(&made->pb, name.c_str(), AVIO_FLAG_WRITE), "could not be written");

    AVDictionary* options = nullptr;
    av_dict_set(&options, "write_id3v2", "0", 0);
    if (std::strcmp(recipe_.muxer->name, "asf") == 0)
        av_dict_set_int(&options, "packet_size", asfPacketSize(encoder_.context().block_align), 0);
    const int result = avformat_write_header(made, &options);
    av_dict_free(&options);
    require(result, "could not be written");
}

/// Whole blocks and their headers, so that the muxer has nothing to fill up: each packet has a
/// header of at most 15 bytes, each block in it one of 17 (ASF specification, section 5.2).
int MuxerSink::asfPacketSize(int blockBytes) {
    constexpr int packetHeader = 15;
    constexpr int blockHeader = 17;
    constexpr int aimedAt = 5'760;
    const int blocks = std::max(1, (aimedAt - packetHeader) / (blockBytes + blockHeader));
    return std::clamp(packetHeader + blocks * (blockBytes + blockHeader), 200, 65'535);
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
    if (packets_++ >= mostPackets_) return;
    packet.stream_index = 0;
    av_packet_rescale_ts(&packet, encoder_.context().time_base, muxer_->streams[0]->time_base);
    require(av_write_frame(muxer_.get(), &packet), "could not be written");
    require(muxer_->pb->error, "could not be written");
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
    require(av_write_trailer(muxer_.get()), "could not be completed");
    avio_flush(muxer_->pb);
    require(muxer_->pb->error, "could not be written");
    require(avio_closep(&muxer_->pb), "could not be written");
}

}  // namespace audio::write
