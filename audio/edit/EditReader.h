// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <map>
#include <memory>

#include "audio/edit/EditList.h"

namespace audio::edit {

/// Renders an edit list: gathers the segments' sound and applies their gains. Every material is
/// opened once at most and read forwards where the list allows.
class EditReader : public FrameReader {
  public:
    explicit EditReader(EditList list) : list_(std::move(list)) {}

    std::size_t read(float* interleaved, std::size_t frames) override;
    void seek(std::int64_t frame) override;

  private:
    struct Opened {
        std::unique_ptr<FrameReader> reader;
        std::int64_t position = 0;
    };
    void readSegment(const Segment& segment, float* interleaved, std::size_t frames);

    EditList list_;
    std::map<const Material*, Opened> opened_;
    std::size_t segment_ = 0;
    std::int64_t intoSegment_ = 0;
};

}  // namespace audio::edit
