// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <memory>

#include "audio/dsp/Echo.h"
#include "audio/edit/EditList.h"

namespace audio::edit {

/// An edit list with an echo over it. What an effect needs to remember of the sound before makes it
/// a material of its own; gains are kept in the segments.
class EchoMaterial : public Material {
  public:
    /// Throws platform::Error for settings that cannot be.
    EchoMaterial(EditList input, const dsp::EchoSettings& settings);
    std::int64_t frames() const override { return input_.frames(); }
    std::unique_ptr<FrameReader> open() const override;
    void closeFiles() const override { input_.closeFiles(); }

  private:
    EditList input_;
    dsp::EchoSettings settings_;
};

/// An edit list × soundFactor + other sound of the same shape × its factor, both from their frame
/// 0 on; behind the other's end nothing is added.
class MixMaterial : public Material {
  public:
    struct Other {
        std::shared_ptr<const Material> material;
        double factor = 1.0;
    };
    MixMaterial(EditList sound, double soundFactor, Other other)
        : sound_(std::move(sound)), soundFactor_(soundFactor), other_(std::move(other)) {}
    std::int64_t frames() const override { return sound_.frames(); }
    std::unique_ptr<FrameReader> open() const override;
    void closeFiles() const override {
        sound_.closeFiles();
        other_.material->closeFiles();
    }

  private:
    EditList sound_;
    double soundFactor_;
    Other other_;
};

}  // namespace audio::edit
