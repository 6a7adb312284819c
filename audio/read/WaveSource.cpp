// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/read/WaveSource.h"

#include <algorithm>

#include "audio/pcm/Convert.h"

namespace audio::read {
namespace {

constexpr std::size_t blockFrames = 8'192;

const char* codecNameOf(pcm::SampleType type) {
    switch (type) {
        case pcm::SampleType::U8:
            return "pcm_u8";
        case pcm::SampleType::S16:
            return "pcm_s16le";
        case pcm::SampleType::S24:
            return "pcm_s24le";
        case pcm::SampleType::S32:
            return "pcm_s32le";
        case pcm::SampleType::S64:
            return "pcm_s64le";
        case pcm::SampleType::F32:
            return "pcm_f32le";
        case pcm::SampleType::F64:
            return "pcm_f64le";
        case pcm::SampleType::Lossy:
            break;
    }
    return "";
}

}  // namespace

WaveSource::WaveSource(const std::filesystem::path& file, const wave::Layout& layout)
    : file_(file),
      stream_(file, std::ios::binary),
      data_(layout.data().body),
      frames_(layout.frames()),
      frameBytes_(static_cast<std::size_t>(layout.format.blockAlign)) {
    if (!stream_) throw fileError(file_, "cannot be opened");
    format_.container = Container::Wav;
    format_.containerName = "wav";
    format_.codec = Codec::Pcm;
    format_.sampleRate = layout.format.sampleRate;
    format_.channels = layout.format.channels;
    format_.channelMask = layout.format.channelMask;
    format_.sampleType = layout.format.sampleType().value();
    format_.codecName = codecNameOf(format_.sampleType);
    format_.bitsPerSample = layout.format.validBits;
    format_.bitRate = std::int64_t{8} * layout.format.blockAlign * layout.format.sampleRate;
}

std::size_t WaveSource::read(float* interleaved, std::size_t frames) {
    frames = std::min(frames, blockFrames);
    block_.resize(frames * frameBytes_);
    const std::size_t got = readPcm(block_.data(), frames);
    pcm::toFloats(format_.sampleType, block_.data(), interleaved,
                  got * static_cast<std::size_t>(format_.channels));
    return got;
}

std::size_t WaveSource::readPcm(std::byte* bytes, std::size_t frames) {
    frames = static_cast<std::size_t>(
        std::min<std::int64_t>(static_cast<std::int64_t>(frames), frames_ - position_));
    if (frames == 0) return 0;
    if (streamAt_ != position_) {
        stream_.clear();
        stream_.seekg(data_ + position_ * static_cast<std::int64_t>(frameBytes_));
    }
    const auto wanted = static_cast<std::streamsize>(frames * frameBytes_);
    stream_.read(reinterpret_cast<char*>(bytes), wanted);
    streamAt_ = -1;
    if (stream_.gcount() != wanted) throw fileError(file_, "can no longer be read");
    position_ += static_cast<std::int64_t>(frames);
    streamAt_ = position_;
    return frames;
}

void WaveSource::seek(std::int64_t frame) {
    position_ = std::clamp<std::int64_t>(frame, 0, frames_);
}

}  // namespace audio::read
