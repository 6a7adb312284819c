// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>

#include <QString>

namespace effects {

class Editor;

/// What a batch run needs of the main window, and nothing else of it. Window thread. Rows of the
/// list are counted from 1, entries of the playlist from 0.
class RunnerHost {
  public:
    virtual ~RunnerHost() = default;

    virtual Editor& editor() = 0;

    // The list and its entries.
    virtual int rowCount() const = 0;
    virtual bool rowSelected(int row) const = 0;  ///< false for a row that there is not
    virtual QString entryPath(int entry) const = 0;
    virtual QString entryName(int entry) const = 0;
    /// Marks a row as failed, the reason as its tooltip, until clearRowMarks().
    virtual void markRow(int row, const QString& reason) = 0;
    virtual void clearRowMarks() = 0;

    /// Does the work, which replaces this file, while the player holds no handle on it.
    virtual void replaceFile(const QString& path, const std::function<void()>& work) = 0;

    // The bar and the lines of text.
    virtual void setBarVisible(bool visible) = 0;
    virtual void setBarMaximum(int maximum) = 0;
    virtual void setBarValue(int value) = 0;
    /// How much of the file in hand is done, 0 to 1; moves the bar without changing its value.
    virtual void setFileProgress(double fraction) = 0;
    virtual void setStatus(const QString& text) = 0;
    virtual void setFileName(const QString& path) = 0;  ///< the box that the save step reads
    virtual QString fileName() const = 0;

    // The commands.
    virtual void stopPlayback() = 0;                          ///< as the Stop button does
    virtual void saveStep() = 0;                              ///< as the Save button does
    virtual void setCommandButtonsEnabled(bool enabled) = 0;  ///< the sixteen, in their order
    virtual void setListEnabled(bool enabled) = 0;
    virtual void setEditorVisible(bool visible) = 0;

    /// Lets pending window events be handled.
    virtual void yield() = 0;
    /// Lets the window be drawn, but takes no input.
    virtual void repaint() = 0;
    /// A box with this text and OK, without title or icon; returns when it is dismissed.
    virtual void showMessage(const QString& text) = 0;
    /// Whether the window has been closed meanwhile: the run then ends after the file in hand.
    virtual bool closing() const = 0;
};

}  // namespace effects
