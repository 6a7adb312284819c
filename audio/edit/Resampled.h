// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <memory>
#include <vector>

#include "audio/edit/Material.h"
#include "audio/ffmpeg/Resampler.h"

namespace audio::edit {

/// Sound at another rate or with other channels, converted while it is read.
class ResampledReader : public FrameReader {
  public:
    ResampledReader(std::unique_ptr<FrameReader> inner, Shape from, Shape to);

    std::size_t read(float* interleaved, std::size_t frames) override;
    /// Backwards it converts from the beginning again.
    void seek(std::int64_t frame) override;

    /// How many frames `frames` of them become.
    static std::int64_t length(std::int64_t frames, Shape from, Shape to);

  private:
    void begin();
    bool fill();

    std::unique_ptr<FrameReader> inner_;
    Shape from_;
    Shape to_;
    std::unique_ptr<ffmpeg::Resampler> resampler_;
    std::vector<float> input_;
    std::vector<float> ready_;
    std::size_t used_ = 0;  ///< samples of ready_ handed out
    std::int64_t position_ = 0;
    bool ended_ = false;
};

/// A material at another rate or with other channels.
class ResampledMaterial : public Material {
  public:
    ResampledMaterial(std::shared_ptr<const Material> inner, Shape from, Shape to)
        : inner_(std::move(inner)), from_(from), to_(to) {}

    std::int64_t frames() const override {
        return ResampledReader::length(inner_->frames(), from_, to_);
    }
    std::unique_ptr<FrameReader> open() const override {
        return std::make_unique<ResampledReader>(inner_->open(), from_, to_);
    }
    void closeFiles() const override { inner_->closeFiles(); }

  private:
    std::shared_ptr<const Material> inner_;
    Shape from_;
    Shape to_;
};

}  // namespace audio::edit
