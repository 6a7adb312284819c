// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/ffmpeg/StreamDecoder.h"

#include <algorithm>

#include "audio/pcm/Sample.h"
#include "platform/Error.h"

namespace audio::ffmpeg {
namespace {

/// Appends a frame's samples; a channel that the frame lacks repeats its last one.
template <typename T>
void append(const AVFrame& frame, bool planar, int channels, std::vector<float>& out) {
    const auto count = static_cast<std::size_t>(frame.nb_samples);
    const auto width = static_cast<std::size_t>(channels);
    const int own = std::max(1, frame.ch_layout.nb_channels);
    const std::size_t base = out.size();
    out.resize(base + count * width);
    for (int channel = 0; channel < channels; ++channel) {
        const int from = std::min(channel, own - 1);
        const T* in = reinterpret_cast<const T*>(frame.extended_data[planar ? from : 0]);
        const std::size_t step = planar ? 1 : static_cast<std::size_t>(own);
        if (!planar) in += from;
        float* to = out.data() + base + static_cast<std::size_t>(channel);
        for (std::size_t i = 0; i < count; ++i) to[i * width] = pcm::toFloat(in[i * step]);
    }
}

bool appendFrame(const AVFrame& frame, int channels, std::vector<float>& out) {
    const auto format = static_cast<AVSampleFormat>(frame.format);
    const bool planar = av_sample_fmt_is_planar(format) != 0;
    switch (sampleTypeOf(format).value_or(pcm::SampleType::Lossy)) {
        case pcm::SampleType::U8:
            append<std::uint8_t>(frame, planar, channels, out);
            return true;
        case pcm::SampleType::S16:
            append<std::int16_t>(frame, planar, channels, out);
            return true;
        case pcm::SampleType::S32:
            append<std::int32_t>(frame, planar, channels, out);
            return true;
        case pcm::SampleType::S64:
            append<std::int64_t>(frame, planar, channels, out);
            return true;
        case pcm::SampleType::F32:
            append<float>(frame, planar, channels, out);
            return true;
        case pcm::SampleType::F64:
            append<double>(frame, planar, channels, out);
            return true;
        case pcm::SampleType::S24:
        case pcm::SampleType::Lossy:
            break;
    }
    return false;
}

}  // namespace

const AVCodec* findDecoder(AVCodecID id) {
    const char* exact = nullptr;
    if (id == AV_CODEC_ID_MP1) exact = "mp1float";
    if (id == AV_CODEC_ID_MP2) exact = "mp2float";  // the default one dithers
    if (id == AV_CODEC_ID_MP3) exact = "mp3float";
    const AVCodec* codec = exact ? avcodec_find_decoder_by_name(exact) : nullptr;
    return codec ? codec : avcodec_find_decoder(id);
}

StreamDecoder::StreamDecoder(const AVCodecParameters& parameters, AVRational timeBase, Trims trims)
    : frame_(makeFrame()) {
    silenceFfmpeg();
    const AVCodec* codec = findDecoder(parameters.codec_id);
    if (!codec) {
        const std::string name = avcodec_get_name(parameters.codec_id);
        throw platform::Error("there is no decoder for \"" + name + "\"");
    }
    codec_.reset(avcodec_alloc_context3(codec));
    if (!codec_) throw std::bad_alloc();
    int error = avcodec_parameters_to_context(codec_.get(), &parameters);
    codec_->pkt_timebase = timeBase;
    codec_->thread_count = 1;  // a frame of sound is too short to share
    codec_->request_sample_fmt = AV_SAMPLE_FMT_FLT;
    if (trims == Trims::Left) codec_->flags2 |= AV_CODEC_FLAG2_SKIP_MANUAL;
    if (error >= 0) error = avcodec_open2(codec_.get(), codec, nullptr);
    if (error < 0) throw platform::Error(ffmpegReason(error));
    channels_ = codec_->ch_layout.nb_channels;
}

StreamDecoder::Result StreamDecoder::decode(const AVPacket* packet, std::vector<float>& out) {
    Result result;
    if (channels_ < 1) channels_ = codec_->ch_layout.nb_channels;
    const std::size_t before = out.size();
    int error = avcodec_send_packet(codec_.get(), packet);
    result.damaged = error < 0 && error != AVERROR_EOF;
    while ((error = avcodec_receive_frame(codec_.get(), frame_.get())) >= 0) {
        if (channels_ < 1) channels_ = frame_->ch_layout.nb_channels;
        if (channels_ < 1 || !appendFrame(*frame_, channels_, out)) result.damaged = true;
    }
    if (error != AVERROR(EAGAIN) && error != AVERROR_EOF) result.damaged = true;
    if (channels_ > 0) result.frames = (out.size() - before) / static_cast<std::size_t>(channels_);
    return result;
}

void StreamDecoder::flush() {
    avcodec_flush_buffers(codec_.get());
}

}  // namespace audio::ffmpeg
