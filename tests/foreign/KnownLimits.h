// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>

namespace foreign {

/// Why a file of the long list does not come out as it should, where that is known and left as it
/// is; empty for all others. `file` = the maker's name and the sound's number; `step` = "read",
/// "transform" or "save".
std::string knownLimit(const std::string& file, const std::string& step);

}  // namespace foreign
