// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/ffmpeg/Ffmpeg.h"

#include <algorithm>
#include <array>
#include <mutex>
#include <new>

namespace audio::ffmpeg {

void Free::operator()(AVPacket* packet) const {
    av_packet_free(&packet);
}
void Free::operator()(AVFrame* frame) const {
    av_frame_free(&frame);
}
void Free::operator()(AVCodecContext* context) const {
    avcodec_free_context(&context);
}
void Free::operator()(AVCodecParameters* parameters) const {
    avcodec_parameters_free(&parameters);
}
void Free::operator()(SwrContext* context) const {
    swr_free(&context);
}
void Free::operator()(AVIOContext* context) const {
    av_freep(&context->buffer);
    avio_context_free(&context);
}
void CloseInput::operator()(AVFormatContext* context) const {
    avformat_close_input(&context);
}
void FreeOutput::operator()(AVFormatContext* context) const {
    avformat_free_context(context);
}

ParametersPtr copyParameters(const AVCodecParameters& from) {
    ParametersPtr copy(avcodec_parameters_alloc());
    if (!copy || avcodec_parameters_copy(copy.get(), &from) < 0) throw std::bad_alloc();
    return copy;
}

PacketPtr makePacket() {
    PacketPtr packet(av_packet_alloc());
    if (!packet) throw std::bad_alloc();
    return packet;
}

FramePtr makeFrame() {
    FramePtr frame(av_frame_alloc());
    if (!frame) throw std::bad_alloc();
    return frame;
}

void fillPacket(AVPacket& packet, std::span<const std::uint8_t> bytes) {
    av_packet_unref(&packet);
    if (av_new_packet(&packet, static_cast<int>(bytes.size())) < 0) throw std::bad_alloc();
    std::copy(bytes.begin(), bytes.end(), packet.data);
}

std::string ffmpegReason(int error) {
    std::array<char, AV_ERROR_MAX_STRING_SIZE> text{};
    av_strerror(error, text.data(), text.size());
    return text.data();
}

std::optional<pcm::SampleType> sampleTypeOf(AVSampleFormat format) {
    switch (format) {
        case AV_SAMPLE_FMT_U8:
        case AV_SAMPLE_FMT_U8P:
            return pcm::SampleType::U8;
        case AV_SAMPLE_FMT_S16:
        case AV_SAMPLE_FMT_S16P:
            return pcm::SampleType::S16;
        case AV_SAMPLE_FMT_S32:
        case AV_SAMPLE_FMT_S32P:
            return pcm::SampleType::S32;
        case AV_SAMPLE_FMT_S64:
        case AV_SAMPLE_FMT_S64P:
            return pcm::SampleType::S64;
        case AV_SAMPLE_FMT_FLT:
        case AV_SAMPLE_FMT_FLTP:
            return pcm::SampleType::F32;
        case AV_SAMPLE_FMT_DBL:
        case AV_SAMPLE_FMT_DBLP:
            return pcm::SampleType::F64;
        case AV_SAMPLE_FMT_NONE:
        case AV_SAMPLE_FMT_NB:
            break;
    }
    return std::nullopt;
}

void silenceFfmpeg() {
    static std::once_flag once;
    std::call_once(once, [] { av_log_set_level(AV_LOG_QUIET); });
}

}  // namespace audio::ffmpeg
