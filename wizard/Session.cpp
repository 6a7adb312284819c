// SPDX-License-Identifier: GPL-3.0-or-later
#include "wizard/Session.h"

#include <filesystem>
#include <system_error>

#include "platform/Paths.h"
#include "wizard/Naming.h"

namespace wizard {
namespace {

// Not every file system keeps the number of a file; its place is the same all the same.
std::filesystem::path resolved(const std::filesystem::path& file) {
    std::error_code unknown;
    const auto place = std::filesystem::weakly_canonical(file, unknown);
    return unknown ? file : place;
}

}  // namespace

void Originals::add(const QString& path) {
    const auto file = platform::toPath(path);
    if (const auto id = platform::file::idOf(file)) files_.insert(*id);
    paths_.insert(resolved(file));
}

bool Originals::contains(const QString& path) const {
    const auto file = platform::toPath(path);
    const auto id = platform::file::idOf(file);
    return (id && files_.contains(*id)) || paths_.contains(resolved(file));
}

void Session::handOver(const QStringList& playlist) {
    const QStringList added = lstFiles.stringList().last(lstFiles2.rowCount());
    lstFiles.setStringList(playlist + added);
}

void Session::addFileAndName(const QString& path) {
    append(lstFiles, path);
    append(lstFiles2, bareName(path));
}

// What was added inside the wizard stands at the end of lstFiles, behind the playlist.
void Session::remove(int added) {
    lstFiles.removeRow(lstFiles.rowCount() - lstFiles2.rowCount() + added);
    lstFiles2.removeRow(added);
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
