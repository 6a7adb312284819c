// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>

#include <QHash>
#include <QPointer>
#include <QWidget>

#include "effects/batch/RunnerHost.h"

namespace Ui {
class frmMain;
}
namespace effects {
class EffectDialogs;
}
namespace player {
class PlayerEngine;
}

namespace app {

/// The main window as a batch run sees it. Window thread.
class EffectsHost : public effects::RunnerHost {
  public:
    /// What of the window it speaks for; all must outlive it.
    struct Parts {
        QWidget& window;
        Ui::frmMain& ui;
        player::PlayerEngine& engine;
        effects::Editor& editor;
        const bool& closing;
        std::function<void()> stopPlayback;
        std::function<void()> saveStep;
        std::function<void(bool)> setDialogsEnabled;
    };

    explicit EffectsHost(Parts parts);

    effects::Editor& editor() override;
    int rowCount() const override;
    bool rowSelected(int row) const override;
    QString entryPath(int entry) const override;
    QString entryName(int entry) const override;
    void markRow(int row, const QString& reason) override;
    void clearRowMarks() override;
    void replaceFile(const QString& path, const std::function<void()>& work) override;
    void setBarVisible(bool visible) override;
    void setBarMaximum(int maximum) override;
    void setBarValue(int value) override;
    void setFileProgress(double fraction) override;
    void setStatus(const QString& text) override;
    void setFileName(const QString& path) override;
    QString fileName() const override;
    void stopPlayback() override;
    void saveStep() override;
    void setCommandButtonsEnabled(bool enabled) override;
    void setListEnabled(bool enabled) override;
    void setEditorVisible(bool visible) override;
    void yield() override;
    void repaint() override;
    void showMessage(const QString& text) override;
    bool closing() const override;

  private:
    void markAgain();

    Parts parts_;
    QHash<QString, QString> failed_;  // reason by path, until the next run
    QPointer<QWidget> focus_;         // what had the focus before the run
};

}  // namespace app
