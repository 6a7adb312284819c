// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <vector>

#include "audio/edit/EditList.h"
#include "audio/edit/Work.h"

/// Looking at all of a sound on every core, for measurements whose parts can be taken one by one.
namespace audio::edit {

/// A range cut into pieces of one length, a multiple of `unit` frames: sixteen at most, and none
/// shorter than some seconds. One piece where the list's sound can only be rendered from its start.
/// The cut depends on the sound alone, never on the machine.
std::vector<FrameRange> piecesOf(const EditList& list, FrameRange range, std::int64_t unit);

/// Reads each range, several at a time, and gives `take` its number and its sound block after
/// block, interleaved: blocks of one range in order and on one thread, those of different ranges on
/// different ones. Counts the frames as work. Throws the first error of reading or of `take`, after
/// all threads have ended.
void scan(const EditList& list, const std::vector<FrameRange>& ranges, Work& work,
          const std::function<void(std::size_t number, std::span<const float>)>& take);

}  // namespace audio::edit
