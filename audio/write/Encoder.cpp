// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/write/Encoder.h"

#include "audio/write/MuxerSink.h"
#include "audio/write/VorbisSink.h"
#include "audio/write/WaveSink.h"

namespace audio::write {
namespace {

bool isWave(const Format& format) {
    return format.container == Container::Wav && format.codec == Codec::Pcm &&
           format.sampleType != pcm::SampleType::Lossy;
}

bool isOggVorbis(const Format& format) {
    return format.container == Container::Ogg && format.codec == Codec::Vorbis;
}

std::unique_ptr<Encoder::Sink> openSink(const std::filesystem::path& file, const Format& format,
                                        const EncoderOptions& options) {
    if (format.sampleRate < 1 || format.channels < 1)
        throw fileError(file, "cannot be written without a rate and channels");
    if (isWave(format)) return std::make_unique<WaveSink>(file, format, options);
    if (isOggVorbis(format)) return std::make_unique<VorbisSink>(file, format, options);
    const ffmpeg::Recipe recipe = ffmpeg::recipeFor(format);
    if (!recipe)
        throw fileError(file, "cannot be written: there is no encoder for \"" + format.codecName +
                                  "\" in this kind of file");
    return std::make_unique<MuxerSink>(file, format, recipe, options.threads);
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
    return isWave(format) || isOggVorbis(format) || ffmpeg::recipeFor(format);
}

std::int64_t Encoder::storedFrames(const Format& format, std::int64_t frames) {
    if (isWave(format) || isOggVorbis(format)) return frames;
    const std::int64_t block = ffmpeg::recipeFor(format).block;
    return block > 0 ? (frames + block - 1) / block * block : frames;
}

}  // namespace audio::write
