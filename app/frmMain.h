// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <memory>
#include <vector>

#include <QWidget>

class QActionGroup;
class QMenu;
class QTimer;

namespace Ui {
class frmMain;
}

namespace widgets {
class CommonDialog;
}

namespace app {

/// The main window: the playlist's list view, the player deck, and the two pop-up menus from which
/// every command starts. Its controls are those of frmMain.ui; a handler reads controls, makes one
/// call and shows the result, and what it calls lives in the folder of its subject. Window thread.
class frmMain : public QWidget {
    Q_OBJECT
  public:
    /// One row of the command map: a button or menu item, and the handler of its click.
    struct Command {
        const char* control;
        const char* handlerName;
        void (frmMain::*handler)();
    };

    explicit frmMain(QWidget* parent = nullptr);
    ~frmMain() override;

    /// All buttons and menu items that do something, in the order of the window.
    static const std::vector<Command>& commands();

    /// The two pop-up menus, under their fixed names.
    QMenu* mnuPlaylist_Menu = nullptr;
    QMenu* mnuCDStuff = nullptr;

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    // frmMain_menus.cpp
    void buildMenus();
    void followMenuButton(const QWidget* button);
    void popUpAt(QMenu* menu, const QWidget* button);
    void Button1_Click();
    void Button7_Click();
    void Label5_Click();

    void connectCommands();

    std::unique_ptr<Ui::frmMain> ui_;
    widgets::CommonDialog* CommonDialog1;
    QTimer* Timer1;
    QTimer* Timer2;
    QActionGroup* playlistMenuItems_ = nullptr;
    QActionGroup* burnMenuItems_ = nullptr;
};

}  // namespace app
