// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <memory>

#include "audio/output/OutputDevice.h"

namespace audio::output {

/// The default sound device through SDL, whose driver the environment may choose
/// (SDL_AUDIODRIVER). SDL converts where the device does not take float stereo at this rate.
/// Throws platform::Error where no device can be opened.
std::unique_ptr<OutputDevice> openSdlOutput(const DeviceWish& wish, FrameSource& source);

/// Tells sound servers what the program's stream is, in their mixers' words: a name, and the role
/// of music. What the user's environment says of it holds. Before any thread asks the environment.
void describeStream();

}  // namespace audio::output
