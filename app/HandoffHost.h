// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

#include "handoff/Host.h"

class QWidget;
namespace Ui {
class frmMain;
}
namespace player {
class PlayerEngine;
}
namespace playlist {
class PlaylistCommands;
class PlaylistFiles;
}  // namespace playlist

namespace app {

/// The main window as the copy, rename and hand-off commands see it. Window thread.
class HandoffHost : public handoff::Host {
  public:
    /// What of the window it speaks for; all must outlive it.
    struct Parts {
        QWidget& window;
        Ui::frmMain& ui;
        player::PlayerEngine& engine;
        playlist::PlaylistCommands& list;
        playlist::PlaylistFiles& files;
        const std::int16_t& totalMinutes;
        const bool& closing;
    };

    explicit HandoffHost(const Parts& parts) : parts_(parts) {}

    int rowCount() const override;
    bool rowSelected(int row) const override;
    QString entryPath(int entry) const override;
    QString entryName(int entry) const override;
    void clearRows() override;
    void setTitleCell(int row, const QString& text) override;
    std::int16_t totalMinutes() const override;

    QString playlistCaption() const override;
    void setPlaylistCaption(const QString& caption) override;
    std::int32_t savePlaylistAsM3u(std::int16_t player, const QString& path) override;
    std::int32_t loadPlaylist(const QString& path) override;
    void fillPlayListView() override;
    void reloadPlaylist() override;

    void setBarVisible(bool visible) override;
    void setBarMaximum(int maximum) override;
    void setBarValue(int value) override;
    void setFileProgress(double fraction) override;

    QString browseForFolder(const QString& prompt) override;
    void showMessage(const QString& text) override;
    bool askYesNo(const QString& text, const QString& title) override;
    bool warnOkCancel(const QString& text, const QString& title) override;
    QString inputBox(const QString& prompt, const QString& title) override;

    void yield() override;
    bool closing() const override;

  private:
    Parts parts_;
};

}  // namespace app
