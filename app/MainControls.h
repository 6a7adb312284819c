// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <functional>

#include <QPointer>
#include <QWidget>

#include "effects/batch/RunControls.h"
#include "handoff/LoadedList.h"

namespace Ui {
class frmMain;
}
namespace effects {
class Editor;
}
namespace player {
class PlayerEngine;
}
namespace playlist {
class PlaylistCommands;
class PlaylistFiles;
}  // namespace playlist

namespace app {

/// What a batch run works of the main window. Window thread.
class MainControls : public effects::RunControls {
  public:
    /// All must outlive this.
    struct Parts {
        QWidget& window;
        Ui::frmMain& ui;
        player::PlayerEngine& engine;
        effects::Editor& editor;
        std::function<void()> stopPlayback;
        std::function<void(bool)> setDialogsEnabled;
    };

    explicit MainControls(Parts parts) : parts_(std::move(parts)) {}

    void stopPlayback() override;
    void setCommandsEnabled(bool enabled) override;
    void setFileName(const QString& path) override;
    QString fileName() const override;
    void replaceFile(const QString& path, const std::function<void()>& work) override;

  private:
    void setButtonsEnabled(bool enabled);

    Parts parts_;
    QPointer<QWidget> focus_;  // what had the focus before the run
};

/// The main window's playlist as the copy, rename and hand-off commands see it. Window thread.
class MainLoadedList : public handoff::LoadedList {
  public:
    /// All must outlive this.
    struct Parts {
        Ui::frmMain& ui;
        player::PlayerEngine& engine;
        playlist::PlaylistCommands& list;
        playlist::PlaylistFiles& files;
    };

    explicit MainLoadedList(const Parts& parts) : parts_(parts) {}

    QString caption() const override;
    void setCaption(const QString& caption) override;
    std::int32_t saveAsM3u(std::int16_t player, const QString& path) override;
    void replaceBy(const QString& path) override;
    void reload() override;
    void setTitleCell(int row, const QString& text) override;

  private:
    Parts parts_;
};

}  // namespace app
