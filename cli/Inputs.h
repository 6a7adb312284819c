// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <vector>

#include <QStringList>

namespace cli {

class Report;

/// A path that was typed, whatever the bytes of its name, as an absolute native one.
QString absolutePath(const std::string& typed);

/// The same of a folder, which is made where it is missing; empty for nothing typed. Throws
/// platform::Error.
QString madeFolder(const std::string& typed);

/// The files that the arguments LIST|FILE... name, in order, as absolute native paths: a playlist
/// (by its extension: m3u, m3u8, pls) stands for its entries, anything else for itself. A playlist
/// that cannot be read is reported as failed; its entries are taken as they are, missing or not.
QStringList namedFiles(const std::vector<std::string>& arguments, Report& report);

}  // namespace cli
