// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/edit/SourceMaterial.h"

#include <limits>

#include "platform/Error.h"
#include "platform/Paths.h"

namespace audio::edit {
namespace {

// Hands its decoder back, so that the next reader need not open and index the file again.
class SourceReader : public FrameReader {
  public:
    explicit SourceReader(const SourceMaterial& source)
        : source_(source), decoder_(source.takeDecoder()) {
        decoder_->seek(0);
    }
    ~SourceReader() override { source_.giveBack(std::move(decoder_)); }

    std::size_t read(float* interleaved, std::size_t frames) override {
        return decoder_->read(interleaved, frames);
    }
    void seek(std::int64_t frame) override { decoder_->seek(frame); }

  private:
    const SourceMaterial& source_;
    std::unique_ptr<read::Decoder> decoder_;
};

}  // namespace

int integerBits(const Format& format) {
    if (format.sampleType == pcm::SampleType::F32 || format.sampleType == pcm::SampleType::F64)
        return 0;
    if (format.codec != Codec::Pcm) return format.bitsPerSample;
    return 8 * static_cast<int>(pcm::bytesPerSample(format.sampleType));
}

SourceMaterial::SourceMaterial(const std::filesystem::path& file)
    : stamp_(platform::file::Stamp::of(file)) {
    std::error_code ignored;
    path_ = std::filesystem::absolute(file, ignored);
    auto decoder = std::make_unique<read::Decoder>(path_);
    format_ = decoder->format();
    frames_ = decoder->frames();
    contents_ = decoder->contents();
    if (frames_ > std::numeric_limits<std::int32_t>::max())
        throw platform::Error("\"" + platform::toUtf8(path_) +
                              "\" is too long to be edited: it has more than 2147483647 frames.");
    testDecode(*decoder);
    idle_.push_back(std::move(decoder));
}

SourceMaterial::~SourceMaterial() = default;

std::unique_ptr<FrameReader> SourceMaterial::open() const {
    return std::make_unique<SourceReader>(*this);
}

void SourceMaterial::requireUnchanged() const {
    if (platform::file::Stamp::of(path_) == stamp_) return;
    throw platform::Error("\"" + platform::toUtf8(path_) +
                          "\" has been changed by another program since it was loaded.");
}

std::unique_ptr<read::Decoder> SourceMaterial::takeDecoder() const {
    requireUnchanged();
    {
        const std::lock_guard lock(mutex_);
        if (!idle_.empty()) {
            auto decoder = std::move(idle_.back());
            idle_.pop_back();
            return decoder;
        }
    }
    return std::make_unique<read::Decoder>(path_);
}

void SourceMaterial::giveBack(std::unique_ptr<read::Decoder> decoder) const {
    const std::lock_guard lock(mutex_);
    if (idle_.size() < 2) idle_.push_back(std::move(decoder));
}

void SourceMaterial::closeFiles() const {
    const std::lock_guard lock(mutex_);
    idle_.clear();
}

void SourceMaterial::testDecode(read::Decoder& decoder) const {
    if (frames_ == 0) return;
    std::vector<float> few(static_cast<std::size_t>(1024 * format_.channels));
    if (decoder.read(few.data(), 1024) > 0) return;
    throw platform::Error("\"" + platform::toUtf8(path_) + "\" cannot be decoded.");
}

}  // namespace audio::edit
