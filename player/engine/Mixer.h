// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <cstddef>

#include "audio/output/OutputDevice.h"
#include "player/engine/Voice.h"

namespace player {

/// All voices in one block of sound. Called by the device.
class Mixer final : public audio::output::FrameSource {
  public:
    explicit Mixer(std::array<Voice*, kPlayers> voices) : voices_(voices) {}
    void render(float* stereo, std::size_t frames,
                const audio::output::Timing& timing) noexcept override;

  private:
    const std::array<Voice*, kPlayers> voices_;
};

}  // namespace player
