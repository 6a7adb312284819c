// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <filesystem>
#include <set>

#include <QString>
#include <QStringListModel>

#include "platform/file/FileId.h"
#include "wizard/Settings.h"

namespace wizard {

/// The user's own files: whatever the wizard was ever asked to read. The wizard writes none of
/// them.
class Originals {
  public:
    void add(const QString& path);

    /// Whether this path is one of them, under whatever name (links are followed).
    bool contains(const QString& path) const;

  private:
    std::set<platform::file::FileId> files_;
    std::set<std::filesystem::path> paths_;  ///< links resolved, where the files were
};

/// One visit to the wizard: its settings and its lists. A window shows the lists as they are, and
/// both may change while a pass runs. The thread of the window (or of the command line) only.
struct Session {
    Settings settings;
    QStringListModel lstFiles;   ///< full paths of the files to transform
    QStringListModel lstFiles2;  ///< bare names of those that were added inside the wizard
    QStringListModel List1;      ///< full paths of the results, in the order of lstFiles
    Originals originals;         ///< what the run in hand must not write
    std::set<int> sounding;      ///< rows of List1 that hold sound this run wrote

    /// The playlist, in the place of what it handed over before; what was added inside the wizard
    /// stays behind it.
    void handOver(const QStringList& playlist);
    void addFileAndName(const QString& path);  ///< into lstFiles and lstFiles2
    void remove(int added);                    ///< a row of lstFiles2, with its row of lstFiles
    void stop();                               ///< ends the running pass or round after its file
};

/// Adds an entry at the end of a list.
void append(QStringListModel& list, const QString& text);

}  // namespace wizard
