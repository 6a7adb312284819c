// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "audio/FrameRange.h"
#include "audio/dsp/Gain.h"
#include "audio/edit/Material.h"

namespace audio::edit {

constexpr int allChannels = -1;

/// A gain over a segment, which begins at the ramp's frame `offset`.
struct GainSlice {
    dsp::GainRamp ramp;
    std::int64_t offset = 0;
    int channel = allChannels;
    bool operator==(const GainSlice&) const = default;
};

/// A run of frames of one material, or of digital silence, and the gains on it.
struct Segment {
    std::shared_ptr<const Material> material;  ///< null: digital silence
    std::int64_t start = 0;                    ///< first frame in the material
    std::int64_t frames = 0;
    std::vector<GainSlice> gains;  ///< one after the other

    bool silent() const { return material == nullptr; }
    /// Whether these are frames of `source` as they lie there.
    bool untouched(const Material& source) const {
        return material.get() == &source && gains.empty();
    }
};

/// The sound that is being edited, as a row of segments. A value: cheap to copy, and every function
/// either succeeds or throws with the list unchanged. It reads no sound itself; see EditReader.
/// Ranges must lie inside the list.
class EditList {
  public:
    EditList() = default;
    /// All of a material.
    EditList(Shape shape, std::shared_ptr<const Material> material);

    const Shape& shape() const { return shape_; }
    std::int64_t frames() const { return frames_; }
    const std::vector<Segment>& segments() const { return segments_; }

    EditList slice(FrameRange range) const;
    void erase(FrameRange range);
    void insertSilence(std::int64_t at, std::int64_t frames);
    /// A gain in a straight line over the whole range; silence stays silence.
    void applyGain(FrameRange range, double first, double last, int channel = allChannels);
    /// Puts other sound of the same shape in the place of a range.
    void replace(FrameRange range, std::shared_ptr<const Material> material);
    /// Adds the material's frames from `start` on, times `factor`, behind the end.
    void append(std::shared_ptr<const Material> material, std::int64_t start, double factor);

    /// Whether nothing but `source`, from its first to its last frame, is in the list.
    bool isAllOf(const Material& source) const;
    /// Whether any stretch of `source` is there as it was.
    bool keepsAnyOf(const Material& source) const;
    /// Closes the files of all materials in the list (Material::closeFiles).
    void closeFiles() const;

  private:
    void replaceBy(FrameRange range, const EditList& middle);
    void append(const EditList& other);
    std::size_t splitAt(std::int64_t frame);

    Shape shape_;
    std::int64_t frames_ = 0;
    std::vector<Segment> segments_;
};

}  // namespace audio::edit
