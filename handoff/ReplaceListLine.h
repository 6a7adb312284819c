// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QString>

namespace handoff {

/// A playlist file's bytes with `to` in the place of every line that is exactly `from` (letter case
/// and blanks counted). All other lines keep their bytes; every line ends in CR LF afterwards. The
/// file's encoding is kept: UTF-16 with a byte-order mark, UTF-8 with or without one, and for what
/// is no UTF-8 Windows-1252. Pure.
/// Throws platform::Error where `to` has no form in that encoding, or the bytes are no whole text.
QByteArray replaceListLine(const QByteArray& list, const QString& from, const QString& to);

}  // namespace handoff
