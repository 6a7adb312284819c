// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QStringList>

namespace wizard {

/// The genre names of the numbers 0 to 147 in number order: the ID3v1 table with its extensions, as
/// the tag library knows it.
QStringList genreNames();

}  // namespace wizard
