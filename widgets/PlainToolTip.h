// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QTextDocument>

namespace widgets {

/// A text from a tag, a list or a file name as a tooltip that shows it letter by letter: Qt would
/// take markup in it for markup, which can name files to load.
inline QString plainToolTip(const QString& text) {
    if (!Qt::mightBeRichText(text)) return text;
    return QStringLiteral("<p style=\"white-space:pre-wrap\">") + text.toHtmlEscaped() +
           QStringLiteral("</p>");
}

}  // namespace widgets
