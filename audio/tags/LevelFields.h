// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

/// What a file holds besides its sound: titles and durations, and the carrying of everything that
/// is not sound from one file to the next.
namespace audio::tags {

/// Statements about the sound's level: ReplayGain fields of every kind, RVA2, iTunNORM. They are
/// true as long as the level of the sound is what it was.
enum class LevelFields { Keep, Drop };

}  // namespace audio::tags
