// SPDX-License-Identifier: GPL-3.0-or-later
#include <algorithm>

#include "audio/ffmpeg/Muxer.h"
#include "audio/packets/PacketSink.h"

namespace audio::packets {
namespace {

ffmpeg::Recipe mp4() {
    ffmpeg::Recipe recipe;
    recipe.muxer = av_guess_format("ipod", nullptr, nullptr);
    return recipe;
}

class Mp4File : public PacketSink {
  public:
    Mp4File(const AVCodecParameters& source, const Grid& grid, const Layout& layout,
            const std::filesystem::path& file)
        : size_(grid.size), at_(-layout.skip), end_(layout.frames), muxer_(file, mp4(), source) {}

    void put(std::span<const std::uint8_t> bytes) override {
        AVPacket& packet = *packet_;
        av_packet_unref(&packet);
        if (av_new_packet(&packet, static_cast<int>(bytes.size())) < 0) throw std::bad_alloc();
        std::copy(bytes.begin(), bytes.end(), packet.data);
        packet.pts = packet.dts = at_;
        packet.duration = std::min(size_, end_ - at_);
        packet.flags |= AV_PKT_FLAG_KEY;
        at_ += size_;
        muxer_.write(packet);
    }
    void finish() override { muxer_.finish(); }

  private:
    std::int64_t size_;
    std::int64_t at_;   ///< where the next packet begins in the sound
    std::int64_t end_;  ///< of the sound
    ffmpeg::Muxer muxer_;
    ffmpeg::PacketPtr packet_ = ffmpeg::makePacket();
};

}  // namespace

std::unique_ptr<PacketSink> openMp4File(const AVCodecParameters& source, const Grid& grid,
                                        const Layout& layout, const std::filesystem::path& file) {
    return std::make_unique<Mp4File>(source, grid, layout, file);
}

}  // namespace audio::packets
