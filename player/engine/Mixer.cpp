// SPDX-License-Identifier: GPL-3.0-or-later
#include "player/engine/Mixer.h"

#include <algorithm>

namespace player {

void Mixer::render(float* stereo, std::size_t frames,
                   const audio::output::Timing& timing) noexcept {
    std::fill_n(stereo, 2 * frames, 0.0F);
    for (Voice* voice : voices_) voice->channel().render(stereo, frames, timing);
}

}  // namespace player
