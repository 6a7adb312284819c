// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/write/Encoder.h"

#include <algorithm>
#include <array>
#include <cstdlib>

#include "audio/write/Mp3Sink.h"
#include "audio/write/MuxerSink.h"
#include "audio/write/VorbisSink.h"
#include "audio/write/WaveSink.h"

namespace audio::write {
namespace {

bool isWave(const Format& format) {
    return format.container == Container::Wav && format.codec == Codec::Pcm &&
           format.sampleType != pcm::SampleType::Lossy;
}

bool isMp3(const Format& format) {
    return format.container == Container::Mpeg && format.codec == Codec::Mp3;
}

bool isOggVorbis(const Format& format) {
    return format.container == Container::Ogg && format.codec == Codec::Vorbis;
}

std::unique_ptr<Encoder::Sink> openSink(const std::filesystem::path& file, const Format& format,
                                        const EncoderOptions& options) {
    if (format.sampleRate < 1 || format.channels < 1)
        throw fileError(file, "cannot be written without a rate and channels");
    if (isWave(format)) return std::make_unique<WaveSink>(file, format, options);
    if (isMp3(format)) return std::make_unique<Mp3Sink>(file, format);
    if (isOggVorbis(format)) return std::make_unique<VorbisSink>(file, format, options);
    const ffmpeg::Recipe recipe = ffmpeg::recipeFor(format);
    if (!recipe)
        throw fileError(file, "cannot be written: there is no encoder for \"" + format.codecName +
                                  "\" in this kind of file");
    return std::make_unique<MuxerSink>(file, format, recipe, options.threads);
}

template <std::size_t Count>
int nearest(const std::array<int, Count>& choices, int wanted) {
    return *std::min_element(choices.begin(), choices.end(), [wanted](int a, int b) {
        return std::abs(a - wanted) < std::abs(b - wanted);
    });
}

}  // namespace

Encoder::Encoder(const std::filesystem::path& file, const Format& format,
                 const EncoderOptions& options)
    : sink_(openSink(file, format, options)) {}
Encoder::~Encoder() = default;

void Encoder::write(const float* interleaved, std::size_t frames) {
    sink_->write(interleaved, frames);
}

void Encoder::writePcm(const std::byte* bytes, std::size_t frames) {
    sink_->writePcm(bytes, frames);
}

void Encoder::copyPcm(std::int64_t firstFrame, std::int64_t frames,
                      const std::function<void(std::int64_t)>& copied) {
    sink_->copyPcm(firstFrame, frames, copied);
}

void Encoder::finish() {
    sink_->finish();
}

bool Encoder::canEncode(const Format& format) {
    return isWave(format) || isMp3(format) || isOggVorbis(format) || ffmpeg::recipeFor(format);
}

std::int64_t Encoder::storedFrames(const Format& format, std::int64_t frames) {
    if (isWave(format) || isMp3(format) || isOggVorbis(format)) return frames;
    const std::int64_t block = ffmpeg::recipeFor(format).block;
    return block > 0 ? (frames + block - 1) / block * block : frames;
}

Format nearestMp3(int sampleRate, int kbps, int channels) {
    // ISO/IEC 11172-3 and 13818-3, Layer III; the three lowest rates are the usual 2.5 extension.
    constexpr std::array rates = {8'000,  11'025, 12'000, 16'000, 22'050,
                                  24'000, 32'000, 44'100, 48'000};
    constexpr std::array high = {32, 40, 48, 56, 64, 80, 96, 112, 128, 160, 192, 224, 256, 320};
    constexpr std::array low = {8, 16, 24, 32, 40, 48, 56, 64, 80, 96, 112, 128, 144, 160};
    Format format;
    format.container = Container::Mpeg;
    format.containerName = "mp3";
    format.codec = Codec::Mp3;
    format.codecName = "mp3";
    format.sampleRate = nearest(rates, sampleRate);
    format.channels = std::clamp(channels, 1, 2);
    format.bitRate = std::int64_t{1'000} *
                     (format.sampleRate >= 32'000 ? nearest(high, kbps) : nearest(low, kbps));
    return format;
}

}  // namespace audio::write
