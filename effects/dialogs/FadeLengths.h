// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <optional>

#include <QStringList>

namespace effects {

/// What the fade dialogs offer, in the order of their lists: "front 5 secs of file" to "front 50
/// secs of file", and the same with "end".
QStringList fadeInLengths();
QStringList fadeOutLengths();

/// The milliseconds that an item stands for; none for a text that is no item of the list, to the
/// letter.
std::optional<std::int32_t> fadeMilliseconds(const QStringList& lengths, const QString& text);

}  // namespace effects
