// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/ffmpeg/Input.h"

#include <algorithm>
#include <array>

#include "audio/RequireFile.h"
#include "platform/NameBytes.h"

namespace audio::ffmpeg {
namespace {

// Demuxers of files that hold their sound themselves. Everything else that FFmpeg knows (streams
// from a network, playlists, concatenation scripts, images, subtitles, capture devices) stays shut.
constexpr const char* allowedFormats =
    "aac,ac3,aiff,amr,ape,asf,asf_o,au,avi,caf,dsf,dts,dtshd,eac3,flac,flv,iff,loas,matroska,mov,"
    "mp3,mpc,mpc8,mpeg,mpegts,oma,ogg,qcp,rm,sox,tak,truehd,tta,voc,vqf,w64,wav,wv,xwma";

constexpr int mostBadPackets = 64;  // one after another, before the file counts as ended

std::string address(const std::filesystem::path& file, FilePart part) {
    const std::string name =
        "file:" + platform::toNameBytes(platform::toQString(file)).toStdString();
    if (part.end <= part.begin) return name;
    return "subfile,,start," + std::to_string(part.begin) + ",end," + std::to_string(part.end) +
           ",,:" + name;
}

/// Opens a container without looking into its packets.
InputPtr openContainer(const std::filesystem::path& file, FilePart part) {
    silenceFfmpeg();
    requireFile(file);

    AVDictionary* options = nullptr;
    av_dict_set(&options, "protocol_whitelist", part.end > part.begin ? "file,subfile" : "file", 0);
    av_dict_set(&options, "format_whitelist", allowedFormats, 0);
    AVFormatContext* opened = nullptr;
    const int error = avformat_open_input(&opened, address(file, part).c_str(), nullptr, &options);
    av_dict_free(&options);
    if (error == AVERROR(EACCES)) throw fileError(file, "may not be read: permission denied");
    if (error == AVERROR_INVALIDDATA || error == AVERROR(EINVAL) || error == AVERROR_EOF)
        throw fileError(file, "is not a sound file that can be read");
    if (error < 0) throw fileError(file, "cannot be opened: " + ffmpegReason(error));
    return InputPtr(opened);
}

/// Whether what MP4 says of a sound of this codec is so; of the others it says what it likes.
bool describesItself(AVCodecID codec) {
    return codec == AV_CODEC_ID_ALAC || codec == AV_CODEC_ID_FLAC || codec == AV_CODEC_ID_OPUS ||
           av_get_exact_bits_per_sample(codec) > 0;
}

bool isPicture(const AVStream& stream) {
    return (stream.disposition & AV_DISPOSITION_ATTACHED_PIC) != 0;
}

bool isLossless(const AVCodecParameters& parameters) {
    const AVCodecDescriptor* about = avcodec_descriptor_get(parameters.codec_id);
    return about && (about->props & AV_CODEC_PROP_LOSSLESS) != 0;
}

int bitsOf(const AVCodecParameters& parameters) {
    if (parameters.bits_per_raw_sample > 0) return parameters.bits_per_raw_sample;
    if (const int bits = av_get_exact_bits_per_sample(parameters.codec_id); bits > 0) return bits;
    if (parameters.bits_per_coded_sample > 0) return parameters.bits_per_coded_sample;
    return 8 * av_get_bytes_per_sample(static_cast<AVSampleFormat>(parameters.format));
}

Container containerOf(const std::string& name) {
    if (name == "ogg") return Container::Ogg;
    if (name == "asf" || name == "asf_o") return Container::Asf;
    if (name == "wav") return Container::Wav;
    if (name == "mp3") return Container::Mpeg;
    return Container::Other;
}

Codec codecOf(AVCodecID id) {
    switch (id) {
        case AV_CODEC_ID_MP3:
            return Codec::Mp3;
        case AV_CODEC_ID_MP2:
            return Codec::Mp2;
        case AV_CODEC_ID_VORBIS:
            return Codec::Vorbis;
        case AV_CODEC_ID_WMAV1:
        case AV_CODEC_ID_WMAV2:
            return Codec::Wma;
        default:
            return Codec::Other;
    }
}

}  // namespace

Input::Input(const std::filesystem::path& file, FilePart part) : file_(file), part_(part) {
    open();
}

void Input::open() {
    context_ = openContainer(file_, part_);
    // Looking into the packets takes most of the time of opening; these headers say it all.
    if (!describedByHeader() && avformat_find_stream_info(context_.get(), nullptr) < 0)
        throw fileError(file_, "is damaged: its description cannot be read");
    chooseStream();
    const auto encrypted = [this](const char* key) {
        return av_dict_get(context_->metadata, key, nullptr, 0) != nullptr;
    };
    if (encrypted("ASF_Protection_Type") || encrypted("ASF_Key_ID"))
        throw fileError(file_, "is protected against copying and cannot be read");
}

bool Input::describedByHeader() const {
    constexpr std::array names = {"ogg", "flac", "mov,mp4,m4a,3gp,3g2,mj2", "asf"};
    if (std::find(names.begin(), names.end(), containerName()) == names.end()) return false;
    for (unsigned i = 0; i < context_->nb_streams; ++i) {
        const AVCodecParameters& own = *context_->streams[i]->codecpar;
        if (own.codec_type != AVMEDIA_TYPE_AUDIO) continue;
        if (own.codec_id == AV_CODEC_ID_NONE || own.sample_rate < 1 ||
            own.ch_layout.nb_channels < 1)
            return false;
        if (containerName().starts_with("mov") && !describesItself(own.codec_id)) return false;
    }
    return context_->nb_streams > 0;
}

void Input::chooseStream() {
    const int best = av_find_best_stream(context_.get(), AVMEDIA_TYPE_AUDIO, -1, -1, nullptr, 0);
    if (best < 0) throw fileError(file_, "holds no sound");
    for (unsigned i = 0; i < context_->nb_streams; ++i)
        if (static_cast<int>(i) != best) context_->streams[i]->discard = AVDISCARD_ALL;
    stream_ = context_->streams[best];
    if (parameters().sample_rate < 1) throw fileError(file_, "states no sampling rate");
}

bool Input::read(AVPacket& packet) {
    for (int bad = 0; bad < mostBadPackets;) {
        av_packet_unref(&packet);
        const int error = av_read_frame(context_.get(), &packet);
        if (error == AVERROR_INVALIDDATA || error == AVERROR(EAGAIN)) {
            ++bad;
            continue;
        }
        if (error < 0) return false;
        if (packet.stream_index == stream_->index) return true;
    }
    return false;
}

bool Input::seek(std::int64_t timestamp) {
    return av_seek_frame(context_.get(), stream_->index, timestamp, AVSEEK_FLAG_BACKWARD) >= 0;
}

bool Input::seekBytes(std::int64_t offset) {
    return av_seek_frame(context_.get(), -1, offset, AVSEEK_FLAG_BYTE) >= 0;
}

void Input::rewind() {
    open();
}

Format Input::format() const {
    const AVCodecParameters& own = parameters();
    Format format;
    format.containerName = containerName();
    format.container = containerOf(format.containerName);
    format.codec = codecOf(own.codec_id);
    format.codecName = avcodec_get_name(own.codec_id);
    format.sampleRate = own.sample_rate;
    format.channels = own.ch_layout.nb_channels;
    if (own.ch_layout.order == AV_CHANNEL_ORDER_NATIVE && format.channels > 2)
        format.channelMask = own.ch_layout.u.mask;
    if (isLossless(own)) {
        format.bitsPerSample = bitsOf(own);
        format.sampleType = pcm::integerOf(format.bitsPerSample);
    }
    format.bitRate = own.bit_rate;
    if (format.bitRate <= 0) format.bitRate = std::max<std::int64_t>(0, context_->bit_rate);
    const std::int64_t frames = statedFrames();
    if (format.bitRate <= 0 && frames > 0)
        format.bitRate = av_rescale(8 * avio_size(context_->pb), own.sample_rate, frames);
    format.variableBitRate = own.codec_id == AV_CODEC_ID_VORBIS || own.codec_id == AV_CODEC_ID_OPUS;
    return format;
}

Contents Input::contents() const {
    Contents contents;
    contents.audioStreams = 0;
    for (unsigned i = 0; i < context_->nb_streams; ++i) {
        const AVStream& stream = *context_->streams[i];
        if (stream.codecpar->codec_type == AVMEDIA_TYPE_AUDIO)
            ++contents.audioStreams;
        else
            ++(isPicture(stream) ? contents.pictures : contents.otherStreams);
    }
    contents.chapters = static_cast<int>(context_->nb_chapters);
    return contents;
}

std::int64_t Input::statedFrames() const {
    const AVRational perFrame{1, parameters().sample_rate};
    if (stream_->duration != AV_NOPTS_VALUE && stream_->duration > 0)
        return av_rescale_q(stream_->duration, stream_->time_base, perFrame);
    if (context_->duration != AV_NOPTS_VALUE && context_->duration > 0)
        return av_rescale_q(context_->duration, AVRational{1, AV_TIME_BASE}, perFrame);
    return -1;
}

}  // namespace audio::ffmpeg
