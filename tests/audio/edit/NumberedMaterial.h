// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <algorithm>
#include <memory>
#include <vector>

#include "audio/edit/EditReader.h"
#include "audio/edit/Material.h"

/// Mono sound whose frame k has the value k + 1, so that every frame tells where it comes from.
class NumberedMaterial : public audio::edit::Material {
  public:
    explicit NumberedMaterial(std::int64_t frames) : frames_(frames) {}
    std::int64_t frames() const override { return frames_; }
    std::unique_ptr<audio::edit::FrameReader> open() const override {
        return std::make_unique<Reader>(frames_);
    }

  private:
    class Reader : public audio::edit::FrameReader {
      public:
        explicit Reader(std::int64_t frames) : frames_(frames) {}
        std::size_t read(float* out, std::size_t frames) override {
            // Odd pieces, as a decoder hands them out.
            const auto count =
                std::min<std::int64_t>({static_cast<std::int64_t>(frames), frames_ - at_, 37});
            for (std::int64_t i = 0; i < count; ++i) out[i] = static_cast<float>(++at_);
            return static_cast<std::size_t>(count);
        }
        void seek(std::int64_t frame) override { at_ = std::min(frame, frames_); }

      private:
        std::int64_t frames_;
        std::int64_t at_ = 0;
    };
    std::int64_t frames_;
};

inline std::vector<float> readAll(audio::edit::FrameReader& reader, std::size_t block = 50) {
    std::vector<float> all;
    std::vector<float> some(block);
    while (const std::size_t got = reader.read(some.data(), block))
        all.insert(all.end(), some.begin(), some.begin() + static_cast<std::ptrdiff_t>(got));
    return all;
}

inline std::vector<float> rendered(const audio::edit::EditList& list) {
    audio::edit::EditReader reader(list);
    return readAll(reader);
}
