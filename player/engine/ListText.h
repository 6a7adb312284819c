// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>

#include <QByteArray>
#include <QString>
#include <QStringList>

namespace player {

/// The lines of a playlist file as text. `rate` says how well a reading of the file fits (here: how
/// many files its lines name); it is asked only where the bytes allow more than one reading.
///
/// In this order: a byte-order mark (UTF-8, UTF-16), the encoding that an #EXTENC line names,
/// strict UTF-8, and else Windows-1252 or the narrow encoding of the user's language, whichever
/// fits better. Lines end with CR LF, LF or CR and come without their end; everything else in them,
/// blanks included, is kept. Throws platform::Error ("is not text") for bytes that no text holds:
/// NUL and other control characters.
QStringList decodeListLines(const QByteArray& bytes,
                            const std::function<int(const QStringList&)>& rate);

}  // namespace player
