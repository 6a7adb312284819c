// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

#include <QString>

namespace handoff {

/// What the copy, rename and hand-off commands need of the main window, and nothing else of it.
/// Window thread. Rows of the list are counted from 1, entries of the playlist from 0; where no
/// player is named, player 0 is meant.
class Host {
  public:
    virtual ~Host() = default;

    // The list and its entries.
    virtual int rowCount() const = 0;
    virtual bool rowSelected(int row) const = 0;  ///< false for a row that there is not
    virtual QString entryPath(int entry) const = 0;
    virtual QString entryName(int entry) const = 0;
    virtual void clearRows() = 0;
    virtual void setTitleCell(int row, const QString& text) = 0;
    virtual std::int16_t totalMinutes() const = 0;

    // The playlist as a whole.
    virtual QString playlistCaption() const = 0;
    virtual void setPlaylistCaption(const QString& caption) = 0;
    /// Both answer 0 for success.
    virtual std::int32_t savePlaylistAsM3u(std::int16_t player, const QString& path) = 0;
    virtual std::int32_t loadPlaylist(const QString& path) = 0;
    virtual void fillPlayListView() = 0;
    virtual void reloadPlaylist() = 0;  ///< from the file that the caption names

    // The bar.
    virtual void setBarVisible(bool visible) = 0;
    virtual void setBarMaximum(int maximum) = 0;
    virtual void setBarValue(int value) = 0;
    /// How much is done, 0 to 1, of a file that the bar's value does not count yet; moves the bar
    /// without changing its value. Negative: no file is in hand.
    virtual void setFileProgress(double fraction) = 0;

    // Boxes; each returns when it is dismissed.
    virtual QString browseForFolder(const QString& prompt) = 0;  ///< empty = cancelled
    virtual void showMessage(const QString& text) = 0;           ///< OK, no icon
    virtual bool askYesNo(const QString& text, const QString& title) = 0;
    /// OK and Cancel with the exclamation icon; true for OK.
    virtual bool warnOkCancel(const QString& text, const QString& title) = 0;
    virtual QString inputBox(const QString& prompt, const QString& title) = 0;

    /// Lets pending window events be handled.
    virtual void yield() = 0;
    /// Whether the window has been closed meanwhile: long work then ends after the file in hand.
    virtual bool closing() const = 0;
};

}  // namespace handoff
