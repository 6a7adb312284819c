// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace audio::parallel {

/// How many threads shall work side by side: so many as are asked for, or one for each core where
/// that is 0; from 1 to 8, since each needs memory for the sound that it works on.
int threadCount(int asked = 0);

}  // namespace audio::parallel
