// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>
#include <QString>
#include <QStringList>

namespace widgets {

/// The open and save dialogs, driven by properties: set FileName, Filter and FilterIndex, show one
/// of the two, read them back. A cancelled dialog leaves FileName empty. It remembers the folder it
/// was last used in for as long as the program runs. Window thread only.
///
/// A filter is "description|patterns" pairs joined by "|", patterns separated by ";":
/// "WAV sounds (*.wav)|*.wav|All files (*.*)|*.*". FilterIndex counts from 1; 0 preselects the
/// first and, as after every showing, reads back as the number of the one the user left selected.
/// The dialog bears the objectName "CommonDialog".
class CommonDialog : public QObject {
    Q_OBJECT
  public:
    using QObject::QObject;

    QString DialogTitle;  ///< empty = the system's own
    QString FileName;     ///< native separators; of several files the first
    QStringList FileNames;
    QString Filter;
    int FilterIndex = 0;
    bool AllowMultiSelect = false;  ///< for ShowOpen: several existing files

    void ShowOpen();
    /// Asks before an existing file is chosen. A name typed without an extension gets that of the
    /// selected filter.
    void ShowSave();

  private:
    void show(bool save);

    QString folder_;
};

}  // namespace widgets
