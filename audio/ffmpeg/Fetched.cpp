// SPDX-License-Identifier: GPL-3.0-or-later
// FFmpeg's functions under their own names, each fetched when it is first called: to load FFmpeg
// and the hundred libraries that it stands on takes longer than to fade a WAV file, which needs
// none of them. The headers check every signature here; a function that is missing is a linker's
// error.
extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libavutil/opt.h>
#include <libswresample/swresample.h>
}

#include <cstdint>
#include <string>

#include <QLibrary>

#include "platform/Error.h"

namespace {

/// One of FFmpeg's libraries, of the version whose headers were compiled; loaded once and for good.
class Library {
  public:
    Library(const char* name, int version)
        : library_(QStringLiteral("lib%1.so.%2").arg(QLatin1StringView(name)).arg(version)) {
        if (library_.load()) return;
        throw platform::Error("FFmpeg cannot be loaded: " + library_.errorString().toStdString() +
                              ".");
    }

    template <typename Function>
    Function* find(const char* name) {
        if (const QFunctionPointer found = library_.resolve(name))
            return reinterpret_cast<Function*>(found);
        throw platform::Error("FFmpeg cannot be used: " + library_.fileName().toStdString() +
                              " has no " + name + ".");
    }

  private:
    QLibrary library_;
};

Library& avutil() {
    static Library library("avutil", LIBAVUTIL_VERSION_MAJOR);
    return library;
}

Library& avcodec() {
    static Library library("avcodec", LIBAVCODEC_VERSION_MAJOR);
    return library;
}

Library& avformat() {
    static Library library("avformat", LIBAVFORMAT_VERSION_MAJOR);
    return library;
}

Library& swresample() {
    static Library library("swresample", LIBSWRESAMPLE_VERSION_MAJOR);
    return library;
}

}  // namespace

// The formatter takes the pointers among the parameters for multiplications.
// clang-format off
#define FETCHED(library, result, name, parameters, arguments)            \
    result name parameters {                                             \
        static auto* const real = library().find<decltype(name)>(#name); \
        return real arguments;                                           \
    }

extern "C" {

FETCHED(avutil, int, av_channel_layout_copy, (AVChannelLayout* a, const AVChannelLayout* b),
        (a, b))
FETCHED(avutil, void, av_channel_layout_default, (AVChannelLayout* a, int b), (a, b))
FETCHED(avutil, int, av_channel_layout_from_mask, (AVChannelLayout* a, std::uint64_t b), (a, b))
FETCHED(avutil, void, av_dict_free, (AVDictionary** a), (a))
FETCHED(avutil, AVDictionaryEntry*, av_dict_get,
        (const AVDictionary* a, const char* b, const AVDictionaryEntry* c, int d), (a, b, c, d))
FETCHED(avutil, int, av_dict_set, (AVDictionary** a, const char* b, const char* c, int d),
        (a, b, c, d))
FETCHED(avutil, int, av_dict_set_int, (AVDictionary** a, const char* b, std::int64_t c, int d),
        (a, b, c, d))
FETCHED(avutil, AVFrame*, av_frame_alloc, (), ())
FETCHED(avutil, void, av_frame_free, (AVFrame** a), (a))
FETCHED(avutil, int, av_frame_get_buffer, (AVFrame* a, int b), (a, b))
FETCHED(avutil, void, av_frame_unref, (AVFrame* a), (a))
FETCHED(avutil, void, av_free, (void* a), (a))
FETCHED(avutil, void, av_freep, (void* a), (a))
FETCHED(avutil, int, av_get_bytes_per_sample, (AVSampleFormat a), (a))
FETCHED(avutil, AVSampleFormat, av_get_packed_sample_fmt, (AVSampleFormat a), (a))
FETCHED(avutil, void, av_log_set_level, (int a), (a))
FETCHED(avutil, void*, av_malloc, (std::size_t a), (a))
FETCHED(avutil, int, av_opt_set_double, (void* a, const char* b, double c, int d), (a, b, c, d))
FETCHED(avutil, int, av_opt_set_int, (void* a, const char* b, std::int64_t c, int d), (a, b, c, d))
FETCHED(avutil, std::int64_t, av_rescale, (std::int64_t a, std::int64_t b, std::int64_t c),
        (a, b, c))
FETCHED(avutil, std::int64_t, av_rescale_q, (std::int64_t a, AVRational b, AVRational c), (a, b, c))
FETCHED(avutil, int, av_sample_fmt_is_planar, (AVSampleFormat a), (a))
FETCHED(avutil, int, av_strerror, (int a, char* b, std::size_t c), (a, b, c))

FETCHED(avcodec, int, av_get_exact_bits_per_sample, (AVCodecID a), (a))
FETCHED(avcodec, int, av_new_packet, (AVPacket* a, int b), (a, b))
FETCHED(avcodec, AVPacket*, av_packet_alloc, (), ())
FETCHED(avcodec, void, av_packet_free, (AVPacket** a), (a))
FETCHED(avcodec, std::uint8_t*, av_packet_get_side_data,
        (const AVPacket* a, AVPacketSideDataType b, std::size_t* c), (a, b, c))
FETCHED(avcodec, void, av_packet_move_ref, (AVPacket* a, AVPacket* b), (a, b))
FETCHED(avcodec, void, av_packet_rescale_ts, (AVPacket* a, AVRational b, AVRational c), (a, b, c))
FETCHED(avcodec, void, av_packet_unref, (AVPacket* a), (a))
FETCHED(avcodec, AVCodecContext*, avcodec_alloc_context3, (const AVCodec* a), (a))
FETCHED(avcodec, const AVCodecDescriptor*, avcodec_descriptor_get, (AVCodecID a), (a))
FETCHED(avcodec, const AVCodecDescriptor*, avcodec_descriptor_get_by_name, (const char* a), (a))
FETCHED(avcodec, const AVCodec*, avcodec_find_decoder, (AVCodecID a), (a))
FETCHED(avcodec, const AVCodec*, avcodec_find_decoder_by_name, (const char* a), (a))
FETCHED(avcodec, const AVCodec*, avcodec_find_encoder, (AVCodecID a), (a))
FETCHED(avcodec, const AVCodec*, avcodec_find_encoder_by_name, (const char* a), (a))
FETCHED(avcodec, void, avcodec_flush_buffers, (AVCodecContext* a), (a))
FETCHED(avcodec, void, avcodec_free_context, (AVCodecContext** a), (a))
FETCHED(avcodec, const char*, avcodec_get_name, (AVCodecID a), (a))
FETCHED(avcodec, int, avcodec_open2, (AVCodecContext* a, const AVCodec* b, AVDictionary** c),
        (a, b, c))
FETCHED(avcodec, AVCodecParameters*, avcodec_parameters_alloc, (), ())
FETCHED(avcodec, int, avcodec_parameters_copy,
        (AVCodecParameters* a, const AVCodecParameters* b), (a, b))
FETCHED(avcodec, void, avcodec_parameters_free, (AVCodecParameters** a), (a))
FETCHED(avcodec, int, avcodec_parameters_from_context,
        (AVCodecParameters* a, const AVCodecContext* b), (a, b))
FETCHED(avcodec, int, avcodec_parameters_to_context,
        (AVCodecContext* a, const AVCodecParameters* b), (a, b))
FETCHED(avcodec, int, avcodec_receive_frame, (AVCodecContext* a, AVFrame* b), (a, b))
FETCHED(avcodec, int, avcodec_receive_packet, (AVCodecContext* a, AVPacket* b), (a, b))
FETCHED(avcodec, int, avcodec_send_frame, (AVCodecContext* a, const AVFrame* b), (a, b))
FETCHED(avcodec, int, avcodec_send_packet, (AVCodecContext* a, const AVPacket* b), (a, b))

FETCHED(avformat, int, av_find_best_stream,
        (AVFormatContext* a, AVMediaType b, int c, int d, const AVCodec** e, int f),
        (a, b, c, d, e, f))
FETCHED(avformat, const AVOutputFormat*, av_guess_format,
        (const char* a, const char* b, const char* c), (a, b, c))
FETCHED(avformat, int, av_read_frame, (AVFormatContext* a, AVPacket* b), (a, b))
FETCHED(avformat, int, av_seek_frame, (AVFormatContext* a, int b, std::int64_t c, int d),
        (a, b, c, d))
FETCHED(avformat, int, av_write_frame, (AVFormatContext* a, AVPacket* b), (a, b))
FETCHED(avformat, int, av_write_trailer, (AVFormatContext* a), (a))
FETCHED(avformat, int, avformat_alloc_output_context2,
        (AVFormatContext** a, const AVOutputFormat* b, const char* c, const char* d), (a, b, c, d))
FETCHED(avformat, void, avformat_close_input, (AVFormatContext** a), (a))
FETCHED(avformat, int, avformat_find_stream_info, (AVFormatContext* a, AVDictionary** b), (a, b))
FETCHED(avformat, void, avformat_free_context, (AVFormatContext* a), (a))
FETCHED(avformat, int, avformat_index_get_entries_count, (const AVStream* a), (a))
FETCHED(avformat, const AVIndexEntry*, avformat_index_get_entry, (AVStream* a, int b), (a, b))
FETCHED(avformat, AVStream*, avformat_new_stream, (AVFormatContext* a, const AVCodec* b), (a, b))
FETCHED(avformat, int, avformat_open_input,
        (AVFormatContext** a, const char* b, const AVInputFormat* c, AVDictionary** d),
        (a, b, c, d))
FETCHED(avformat, int, avformat_query_codec, (const AVOutputFormat* a, AVCodecID b, int c),
        (a, b, c))
FETCHED(avformat, int, avformat_write_header, (AVFormatContext* a, AVDictionary** b), (a, b))
FETCHED(avformat, AVIOContext*, avio_alloc_context,
        (unsigned char* a, int b, int c, void* d, int (*e)(void*, std::uint8_t*, int),
         int (*f)(void*, std::uint8_t*, int), std::int64_t (*g)(void*, std::int64_t, int)),
        (a, b, c, d, e, f, g))
FETCHED(avformat, void, avio_context_free, (AVIOContext** a), (a))
FETCHED(avformat, void, avio_flush, (AVIOContext* a), (a))
FETCHED(avformat, std::int64_t, avio_size, (AVIOContext* a), (a))

FETCHED(swresample, int, swr_alloc_set_opts2,
        (SwrContext** a, AVChannelLayout* b, AVSampleFormat c, int d, AVChannelLayout* e,
         AVSampleFormat f, int g, int h, void* i),
        (a, b, c, d, e, f, g, h, i))
FETCHED(swresample, int, swr_convert,
        (SwrContext* a, std::uint8_t** b, int c, const std::uint8_t** d, int e), (a, b, c, d, e))
FETCHED(swresample, void, swr_free, (SwrContext** a), (a))
FETCHED(swresample, int, swr_get_out_samples, (SwrContext* a, int b), (a, b))
FETCHED(swresample, int, swr_init, (SwrContext* a), (a))
FETCHED(swresample, int, swr_set_matrix, (SwrContext* a, const double* b, int c), (a, b, c))

}  // extern "C"
