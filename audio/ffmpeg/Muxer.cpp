// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/ffmpeg/Muxer.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <new>
#include <span>

#include "audio/FileError.h"

namespace audio::ffmpeg {
namespace {

constexpr int bufferBytes = 1 << 18;

/// Whole blocks and their headers, so that the muxer has nothing to fill up: each packet has a
/// header of at most 15 bytes, each block in it one of 17 (ASF specification, section 5.2).
int asfPacketSize(int blockBytes) {
    constexpr int packetHeader = 15;
    constexpr int blockHeader = 17;
    constexpr int aimedAt = 5'760;
    const int blocks = std::max(1, (aimedAt - packetHeader) / (blockBytes + blockHeader));
    return std::clamp(packetHeader + blocks * (blockBytes + blockHeader), 200, 65'535);
}

ParametersPtr parametersOf(const BlockEncoder& encoder) {
    ParametersPtr parameters(avcodec_parameters_alloc());
    if (!parameters || avcodec_parameters_from_context(parameters.get(), &encoder.context()) < 0)
        throw std::bad_alloc();
    return parameters;
}

}  // namespace

Muxer::Muxer(const std::filesystem::path& file, const Recipe& recipe, const BlockEncoder& encoder)
    : Muxer(file, recipe, *parametersOf(encoder)) {}

Muxer::Muxer(const std::filesystem::path& file, const Recipe& recipe,
             const AVCodecParameters& parameters)
    : file_(file), timeBase_{1, parameters.sample_rate} {
    if (!output_.openForWriting(file_, failure_)) require(-1, "could not be written");
    auto* buffer = static_cast<unsigned char*>(av_malloc(bufferBytes));
    if (!buffer) throw std::bad_alloc();
    io_.reset(avio_alloc_context(buffer, bufferBytes, 1, this, nullptr, &Muxer::put, &Muxer::seek));
    if (!io_) {
        av_free(buffer);
        throw std::bad_alloc();
    }
    writeHeader(recipe, parameters);
}

void Muxer::require(int result, const std::string& what) const {
    if (result >= 0) return;
    throw fileError(file_, what + ": " + (failure_ ? failure_.message() : ffmpegReason(result)));
}

void Muxer::writeHeader(const Recipe& recipe, const AVCodecParameters& parameters) {
    AVFormatContext* made = nullptr;
    require(avformat_alloc_output_context2(&made, recipe.muxer, nullptr, nullptr),
            "cannot be written");
    muxer_.reset(made);
    made->pb = io_.get();
    made->flags |= AVFMT_FLAG_BITEXACT | AVFMT_FLAG_CUSTOM_IO;  // nothing of its own in the tags
    AVStream* stream = avformat_new_stream(made, nullptr);
    if (!stream) throw std::bad_alloc();
    stream->time_base = timeBase_;
    require(avcodec_parameters_copy(stream->codecpar, &parameters), "cannot be written");
    stream->codecpar->codec_tag = 0;  // the muxer's own choice

    AVDictionary* options = nullptr;
    av_dict_set(&options, "write_id3v2", "0", 0);
    if (std::strcmp(recipe.muxer->name, "asf") == 0)
        av_dict_set_int(&options, "packet_size", asfPacketSize(parameters.block_align), 0);
    const int result = avformat_write_header(made, &options);
    av_dict_free(&options);
    require(result, "could not be written");
}

void Muxer::write(AVPacket& packet) {
    packet.stream_index = 0;
    av_packet_rescale_ts(&packet, timeBase_, muxer_->streams[0]->time_base);
    require(av_write_frame(muxer_.get(), &packet), "could not be written");
    require(io_->error, "could not be written");
}

void Muxer::finish() {
    require(av_write_trailer(muxer_.get()), "could not be completed");
    avio_flush(io_.get());
    require(io_->error, "could not be written");
    output_.close();
}

int Muxer::put(void* muxer, std::uint8_t* bytes, int count) {
    auto& own = *static_cast<Muxer*>(muxer);
    const auto written = std::as_bytes(std::span(bytes, static_cast<std::size_t>(count)));
    if (!own.output_.writeAt(own.position_, written, own.failure_)) return AVERROR(EIO);
    own.position_ += count;
    own.size_ = std::max(own.size_, own.position_);
    return count;
}

std::int64_t Muxer::seek(void* muxer, std::int64_t offset, int whence) {
    auto& own = *static_cast<Muxer*>(muxer);
    if (whence == AVSEEK_SIZE) return own.size_;
    if (whence == SEEK_CUR) offset += own.position_;
    if (whence == SEEK_END) offset += own.size_;
    if (offset < 0) return AVERROR(EINVAL);
    return own.position_ = offset;
}

}  // namespace audio::ffmpeg
