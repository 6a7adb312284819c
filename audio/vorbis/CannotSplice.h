// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "platform/Error.h"

namespace audio::vorbis {

/// This sound cannot be put together from packets of the source; its text says why, in a sentence.
/// All of the sound has to be encoded.
class CannotSplice : public platform::Error {
  public:
    using platform::Error::Error;
};

}  // namespace audio::vorbis
