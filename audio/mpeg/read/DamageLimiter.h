// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <span>

namespace audio::mpeg {

/// Takes the worst out of what a decoder makes of damaged MPEG frames. A sound frame never comes
/// near the garbage that a wrong bit can make of one (thousands of times full scale): a frame
/// beyond any encoder's reach, sixteen times full scale, becomes silence. Whatever else follows
/// damage, by the decoder's word or by that, is limited to full scale. Damage that neither tells of
/// is let through. Frames in order; one thread.
class DamageLimiter {
  public:
    /// A decoded frame's samples; `damaged` = what the decoder says of it. Returns whether it was
    /// damaged.
    bool apply(std::span<float> frame, bool damaged);
    /// Forgets the frames before.
    void reset() { afterDamage_ = false; }

  private:
    bool afterDamage_ = false;  // the frame before was damaged, and overlaps with the next
};

}  // namespace audio::mpeg
