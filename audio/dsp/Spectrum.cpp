// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/dsp/Spectrum.h"

#include <algorithm>
#include <cmath>
#include <new>
#include <numbers>

#include <kiss_fftr.h>

namespace audio::dsp {
namespace {

constexpr double kLowest = 40;
constexpr double kHighest = 16000;
constexpr double kFloorDb = -72;

}  // namespace

class Spectrum::Transform {
  public:
    Transform() : plan_(kiss_fftr_alloc(int(kWindow), 0, nullptr, nullptr)) {
        if (!plan_) throw std::bad_alloc();
    }
    ~Transform() { kiss_fftr_free(plan_); }
    Transform(const Transform&) = delete;
    Transform& operator=(const Transform&) = delete;

    const std::vector<kiss_fft_cpx>& run(const std::vector<float>& input) {
        kiss_fftr(plan_, input.data(), bins_.data());
        return bins_;
    }

  private:
    kiss_fftr_cfg plan_;
    std::vector<kiss_fft_cpx> bins_ = std::vector<kiss_fft_cpx>(kWindow / 2 + 1);
};

Spectrum::Spectrum()
    : transform_(std::make_unique<Transform>()),
      window_(kWindow),
      input_(kWindow),
      power_(kWindow / 2 + 1) {
    for (std::size_t i = 0; i < kWindow; ++i)
        window_[i] =
            float(0.5 - 0.5 * std::cos(2 * std::numbers::pi * double(i) / double(kWindow)));
}

Spectrum::~Spectrum() = default;

void Spectrum::analyse(std::span<const float> mono, int rate, std::span<float> bands) {
    std::transform(mono.begin(), mono.begin() + kWindow, window_.begin(), input_.begin(),
                   [](float sample, float weight) { return sample * weight; });
    const auto& bins = transform_->run(input_);
    // A full-scale sine through the Hann window has the magnitude kWindow / 4.
    const float scale = 16.0F / (float(kWindow) * float(kWindow));
    std::transform(bins.begin(), bins.end(), power_.begin(),
                   [scale](const auto& bin) { return (bin.r * bin.r + bin.i * bin.i) * scale; });

    const double top = std::min(kHighest, rate / 2.0);
    const auto binAt = [&](std::size_t band) {
        const double share = double(band) / double(bands.size());
        return kLowest * std::pow(top / kLowest, share) * double(kWindow) / rate;
    };
    for (std::size_t band = 0; band < bands.size(); ++band) {
        const auto last = power_.size() - 1;
        const auto first = std::min(std::size_t(std::lround(binAt(band))), last);
        const auto end = std::clamp(std::size_t(std::lround(binAt(band + 1))), first + 1, last + 1);
        const float loudest = *std::max_element(power_.begin() + std::ptrdiff_t(first),
                                                power_.begin() + std::ptrdiff_t(end));
        const double db = 10 * std::log10(double(loudest) + 1e-12);
        bands[band] = float(std::clamp(1 - db / kFloorDb, 0.0, 1.0));
    }
}

}  // namespace audio::dsp
