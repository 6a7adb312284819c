// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <functional>
#include <vector>

#include <QStringList>

namespace cli {

/// Works on every file, several at a time, each on a thread of its own: `work` gets the number of
/// the file, from 0. A file that is named more than once, under whatever name, is never in two
/// hands: its turns follow each other in order. After an interrupt no further file is begun.
/// Returns the numbers of the files that were not begun, ascending. `work` must not throw.
std::vector<std::size_t> forEachFile(const QStringList& files, unsigned jobs,
                                     const std::function<void(std::size_t)>& work);

}  // namespace cli
