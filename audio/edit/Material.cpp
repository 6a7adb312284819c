// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/edit/Material.h"

#include <algorithm>

namespace audio::edit {

std::size_t readFully(FrameReader& reader, float* interleaved, std::size_t frames, int channels) {
    const std::size_t frameSize = static_cast<std::size_t>(channels);
    std::size_t done = 0;
    while (done < frames) {
        const std::size_t got = reader.read(interleaved + done * frameSize, frames - done);
        if (got == 0) break;
        done += got;
    }
    std::fill(interleaved + done * frameSize, interleaved + frames * frameSize, 0.0F);
    return done;
}

}  // namespace audio::edit
