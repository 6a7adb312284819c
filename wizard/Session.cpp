// SPDX-License-Identifier: GPL-3.0-or-later
#include "wizard/Session.h"

#include <algorithm>
#include <filesystem>
#include <system_error>

#include "platform/Paths.h"
#include "wizard/Naming.h"

namespace wizard {

void Originals::add(const QString& path) {
    paths_.insert(path);
}

bool Originals::contains(const QString& path) const {
    const auto file = platform::toPath(path);
    return paths_.contains(path) || std::ranges::any_of(paths_, [&](const QString& original) {
               std::error_code missing;
               return std::filesystem::equivalent(file, platform::toPath(original), missing);
           });
}

void Session::addFile(const QString& path) {
    append(lstFiles, path);
}

void Session::addFileAndName(const QString& path) {
    append(lstFiles, path);
    append(lstFiles2, bareName(path));
}

void Session::stop() {
    settings.i_count = lstFiles.rowCount();
}

void append(QStringListModel& list, const QString& text) {
    const int row = list.rowCount();
    list.insertRow(row);
    list.setData(list.index(row), text);
}

}  // namespace wizard
