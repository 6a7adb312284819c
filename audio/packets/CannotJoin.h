// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "platform/Error.h"

namespace audio::packets {

/// Packets of this file cannot be joined to new ones; what() is a sentence for a person.
class CannotJoin : public platform::Error {
  public:
    using Error::Error;
};

}  // namespace audio::packets
