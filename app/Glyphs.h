// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QColor>
#include <QIcon>

namespace app {

/// The signs on the buttons whose captions alone could be mistaken.
enum class Glyph { PreviousTrack, NextTrack, Play, Pause, Stop, Up, Down };

/// A sign in two colours, for an enabled and a disabled button, drawn for every scaling up to 300
/// %.
QIcon glyphIcon(Glyph glyph, const QColor& colour, const QColor& disabled);

}  // namespace app
