// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QColor>
#include <QString>

class QApplication;
class QWidget;

namespace app {

/// Dresses the whole program in its own look, once, before the first window: the base style, the
/// palette and the style sheet, both from app/skin.
void applySkin(QApplication& application);

/// A colour of app/skin/palette.ini by its role ("accent"). Black where there is none.
QColor skinColour(const QString& role);

/// Draws one widget's text in a colour of the skin.
void setTextColour(QWidget& widget, const QString& role);

}  // namespace app
