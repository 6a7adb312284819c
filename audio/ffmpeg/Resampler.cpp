// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/ffmpeg/Resampler.h"

#include <algorithm>
#include <array>
#include <cstdint>

#include "audio/ffmpeg/Ffmpeg.h"
#include "platform/Error.h"

namespace audio::ffmpeg {
namespace {

/// One channel becomes two alike; wherever channels are added up, the weights add up to one, so
/// that full scale stays full scale.
void setChannelWeights(SwrContext* swr, int in, int out) {
    constexpr std::array<double, 2> alike = {1, 1};
    av_opt_set_double(swr, "rematrix_maxval", 1, 0);
    if (in == 1 && out == 2) swr_set_matrix(swr, alike.data(), 1);
}

/// The filter of libsoxr at 20 bits: even to 0.01 dB up to 0.91 of the lower rate's half (20 kHz
/// for 44.1 kHz), and images and aliases below -120 dB. swresample's own, for where it was built
/// without that library, cannot keep images away beside the half of a rate that is raised.
int startFilter(SwrContext* swr) {
    av_opt_set_int(swr, "resampler", SWR_ENGINE_SOXR, 0);
    av_opt_set_double(swr, "precision", 20, 0);
    const int result = swr_init(swr);
    if (result >= 0) return result;
    av_opt_set_int(swr, "resampler", SWR_ENGINE_SWR, 0);
    av_opt_set_int(swr, "filter_size", 160, 0);
    av_opt_set_double(swr, "cutoff", 0.95, 0);
    av_opt_set_double(swr, "kaiser_beta", 11, 0);
    return swr_init(swr);
}

}  // namespace

class Resampler::Impl {
  public:
    Impl(int inRate, int inChannels, int outRate, int outChannels)
        : inRate_(inRate),
          outRate_(outRate),
          inChannels_(std::size_t(inChannels)),
          outChannels_(std::size_t(outChannels)) {
        AVChannelLayout in{};
        AVChannelLayout out{};
        av_channel_layout_default(&in, inChannels);
        av_channel_layout_default(&out, outChannels);
        SwrContext* made = nullptr;
        int result = swr_alloc_set_opts2(&made, &out, AV_SAMPLE_FMT_FLT, outRate, &in,
                                         AV_SAMPLE_FMT_FLT, inRate, 0, nullptr);
        swr_.reset(made);
        if (result >= 0) {
            setChannelWeights(made, inChannels, outChannels);
            result = startFilter(made);
        }
        if (result < 0)
            throw platform::Error("Sound of " + std::to_string(inRate) + " Hz cannot become " +
                                  std::to_string(outRate) + " Hz: " + ffmpegReason(result) + ".");
    }

    void convert(const float* in, std::size_t frames, std::vector<float>& out) {
        const int room = swr_get_out_samples(swr_.get(), static_cast<int>(frames));
        const std::size_t before = out.size();
        out.resize(before + static_cast<std::size_t>(std::max(0, room)) * outChannels_);
        auto* to = reinterpret_cast<std::uint8_t*>(out.data() + before);
        const auto* from = reinterpret_cast<const std::uint8_t*>(in);
        const int got =
            swr_convert(swr_.get(), &to, room, in ? &from : nullptr, static_cast<int>(frames));
        if (got < 0)
            throw platform::Error("Sound could not be resampled: " + ffmpegReason(got) + ".");
        const std::int64_t due = dueAfter(taken_ + static_cast<std::int64_t>(frames));
        const std::int64_t keep = std::min<std::int64_t>(got, due - given_);
        out.resize(before + static_cast<std::size_t>(keep) * outChannels_);
        taken_ += static_cast<std::int64_t>(frames);
        given_ += keep;
    }

    void finish(std::vector<float>& out) {
        convert(nullptr, 0, out);
        const std::int64_t missing = dueAfter(taken_) - given_;
        out.resize(out.size() + static_cast<std::size_t>(missing) * outChannels_);
        swr_init(swr_.get());
        taken_ = given_ = 0;
    }

    std::size_t inChannels() const { return inChannels_; }

  private:
    std::int64_t dueAfter(std::int64_t taken) const {
        return (taken * outRate_ + inRate_ - 1) / inRate_;
    }

    SwrPtr swr_;
    std::int64_t inRate_;
    std::int64_t outRate_;
    std::size_t inChannels_;
    std::size_t outChannels_;
    std::int64_t taken_ = 0;
    std::int64_t given_ = 0;
};

Resampler::Resampler(int inRate, int inChannels, int outRate, int outChannels)
    : impl_(std::make_unique<Impl>(inRate, inChannels, outRate, outChannels)) {}
Resampler::~Resampler() = default;

void Resampler::push(const float* interleaved, std::size_t frames, std::vector<float>& out) {
    constexpr std::size_t most = 1 << 16;
    while (frames > 0) {
        const std::size_t count = std::min(most, frames);
        impl_->convert(interleaved, count, out);
        interleaved += count * impl_->inChannels();
        frames -= count;
    }
}

void Resampler::finish(std::vector<float>& out) {
    impl_->finish(out);
}

}  // namespace audio::ffmpeg
