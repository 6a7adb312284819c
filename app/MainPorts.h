// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QHash>
#include <QString>

#include "ports/FileList.h"
#include "ports/Ports.h"
#include "ports/ProgressBar.h"
#include "ports/window/WindowBoxes.h"
#include "ports/window/WindowEvents.h"

namespace Ui {
class frmMain;
}
namespace player {
class PlayerEngine;
}

namespace app {

/// The main window's list, and player 0's playlist behind it. Window thread.
class MainList : public ports::FileList {
  public:
    MainList(Ui::frmMain& ui, player::PlayerEngine& engine);

    int rowCount() const override;
    bool rowSelected(int row) const override;
    QString entryPath(int entry) const override;
    QString entryName(int entry) const override;
    void markRow(int row, const QString& reason) override;
    void clearRowMarks() override;

  private:
    void markAgain();

    Ui::frmMain& ui_;
    player::PlayerEngine& engine_;
    QHash<QString, QString> failed_;  // reason by path, until the marks are cleared
};

/// The main window's bar and its status label. Window thread.
class MainBar : public ports::ProgressBar {
  public:
    explicit MainBar(Ui::frmMain& ui) : ui_(ui) {}

    void setShown(bool shown) override;
    void setMaximum(int pieces) override;
    void setValue(int pieces) override;
    void setFraction(double fraction) override;
    void setStatus(const QString& text) override;

  private:
    Ui::frmMain& ui_;
};

/// All that flow reaches of the main window; what it speaks for must outlive it.
struct MainPorts {
    MainPorts(QWidget& window, Ui::frmMain& ui, player::PlayerEngine& engine, const bool& closing)
        : list(ui, engine), bar(ui), boxes(window), events(closing) {}

    ports::Ports all() { return {list, bar, boxes, events}; }

    MainList list;
    MainBar bar;
    ports::WindowBoxes boxes;
    ports::WindowEvents events;
};

}  // namespace app
