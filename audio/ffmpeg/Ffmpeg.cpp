// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/ffmpeg/Ffmpeg.h"

#include <array>
#include <mutex>
#include <new>

namespace audio::ffmpeg {

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

std::string ffmpegReason(int error) {
    std::array<char, AV_ERROR_MAX_STRING_SIZE> text{};
    av_strerror(error, text.data(), text.size());
    return text.data();
}

void silenceFfmpeg() {
    static std::once_flag once;
    std::call_once(once, [] { av_log_set_level(AV_LOG_QUIET); });
}

}  // namespace audio::ffmpeg
