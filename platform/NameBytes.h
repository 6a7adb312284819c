// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QString>

namespace platform {

/// A file name as the bytes that the system knows it by, and back: UTF-8, in which a byte that
/// belongs to no character is the lone surrogate U+DC00 + byte, so that every name has a text and
/// comes back unchanged. Such a text cannot be handed to Qt's own file classes.
QByteArray toNameBytes(const QString& text);
QString fromNameBytes(const QByteArray& bytes);

}  // namespace platform
