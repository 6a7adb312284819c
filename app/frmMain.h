// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

#include <QPointer>
#include <QStringList>
#include <QUrl>
#include <QWidget>

class QActionGroup;
class QMenu;
class QTimer;

namespace Ui {
class frmMain;
}
namespace effects {
class AudioEditor;
class BatchRunner;
class EffectDialogs;
}  // namespace effects
namespace player {
class Deck;
class Displays;
class PlayerEngine;
}  // namespace player
namespace playlist {
class DiskQueue;
class PlaylistCommands;
class PlaylistFiles;
struct DroppedFiles;
struct ReadList;
}  // namespace playlist
namespace widgets {
class CommonDialog;
}
namespace wizard {
class frmFadeWizard2;
}

namespace app {

class MainControls;
class MainLoadedList;
struct MainPorts;

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

    /// Adds sound files and folders given by hand behind the last entry, or loads a list among
    /// them; says what there is no file of. What is on a slow disk comes after the call has
    /// returned; `then` is called when all is there.
    void openPaths(const QStringList& paths, std::function<void()> then = {});

    /// From now on closing asks nothing, and a box that waits for an answer goes without one: the
    /// system ends the session or the program.
    void askNothingMore();

    /// Fades in over the first sixth of what the editor engine holds and out over its last sixth.
    void AutoFadeInOut();

    /// The two pop-up menus, under their fixed names.
    QMenu* mnuPlaylist_Menu = nullptr;
    QMenu* mnuCDStuff = nullptr;

  Q_SIGNALS:
    /// The window was closed and everything is put away: the program may end.
    void closed();

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

  private:
    // frmMain.cpp: start-up and shutdown
    void Form_Initialize();
    void Form_Load();
    void showDisplays();
    void startTimers();
    void Form_QueryUnload();
    void Form_Unload();

    // frmMain_commands.cpp
    void connectCommands();
    void connectEvents();

    // frmMain_keys.cpp
    void connectShortcuts();
    void connectMediaKeys();
    void openAndPlay(const QString& path);
    void playOpened(int rowsBefore);

    // frmMain_menus.cpp
    void buildMenus();
    void followButton(const QWidget* button);
    void popUpAt(QMenu* menu, const QWidget* button);
    void Button1_Click();
    void Button7_Click();
    void Label5_Click();

    // frmMain_playlist.cpp
    void CommandAddSong1_Click();
    void CommandRemove1_Click();
    void CommandMoveUp1_Click();
    void CommandMoveDown1_Click();
    void Button2_Click();
    void mnuSelected_All_Click();
    void mnuDeselectAll_Click();
    void CommandSave1_Click();
    void CommandLoad1_Click();
    void Timer2_Timer();
    void PlayerEngine1_ItemInfoChanged(int player, int index);
    void ListView1_Scrolled();
    void ListView1_FilesDropped(const QList<QUrl>& urls, int row);
    void insertPaths(const QStringList& paths, int row, std::function<void()> then = {});
    void takeDropped(const playlist::ReadList& list, playlist::DroppedFiles dropped, int row);

    // frmMain_deck.cpp
    void CommandPlay1_Click();
    void CommandPause1_Click();
    void CommandStop1_Click();
    void CommandNext1_Click();
    void CommandPrev1_Click();
    void CommandForward1_Click();
    void CommandRewind1_Click();
    void Slider1_Change();
    void SliderVolume1_Change();
    void Timer1_Timer();
    void mnuTest_Click();
    void PictureWaveform1_Pointed(double share);
    void ListView1_DblClick();
    void PlayerEngine1_PlaybackStarted(int player);
    void PlayerEngine1_NowPlayingChanged(int player, int index);
    void PlayerEngine1_PlaybackEnded(int player, int index);

    // frmMain_effects.cpp
    void buildEffects();
    void mnuAmpMinus_Selected_Click();
    void mnuAmpPlus_Selected_Click();
    void mnuNormalize_selected_Click();
    void mnuSilence2Frt_Click();
    void mnuAdd_Silence_end_Click();
    void showEffects(std::int16_t mode, const QString& caption);
    void mnuFadeIn_selected_Click();
    void mnuFadeOut_selected_Click();
    void mnuEch_Selected_Click();
    void mnuTrim_Silence_Click();
    void mnuAutoFade_Selected_Click();
    void Button12_Click();
    void AudioEditor1_Progress(int percent);

    // frmMain_handoff.cpp
    void mnu2MP3Player_Click();
    void mnu_copy2folder_Click();
    void mnuEdit_IDTags_selected_Click();
    void mnuOpen_in_Editor_Click();
    void mnuRename_Click();
    void mnuAudio_CDWriter_Click();
    void mnuData_CDWriter_Click();

    // frmMain_wizard.cpp
    void mnuCrossFader_Click();
    wizard::frmFadeWizard2& loadWizard();

    std::unique_ptr<Ui::frmMain> ui_;
    player::PlayerEngine* PlayerEngine1;
    effects::AudioEditor* AudioEditor1;
    widgets::CommonDialog* CommonDialog1;
    QTimer* Timer1;  // position, every 500 ms
    QTimer* Timer2;  // totals, every 2000 ms
    QActionGroup* playlistMenuItems_ = nullptr;
    QActionGroup* burnMenuItems_ = nullptr;
    std::unique_ptr<playlist::PlaylistCommands> list_;
    playlist::DiskQueue* disk_;
    std::unique_ptr<playlist::PlaylistFiles> files_;
    std::unique_ptr<player::Deck> deck_;
    std::unique_ptr<player::Displays> displays_;
    std::unique_ptr<MainPorts> ports_;
    std::unique_ptr<MainLoadedList> loaded_;
    std::unique_ptr<MainControls> controls_;
    std::unique_ptr<effects::BatchRunner> runner_;
    std::unique_ptr<effects::EffectDialogs> dialogs_;
    QPointer<wizard::frmFadeWizard2> frmFadeWizard2;  // the visit in hand, if there is one
    std::int16_t TotalMinutes = 0;                    // of the list, written by Timer2_Timer
    std::unique_ptr<QObject> mediaKeys_;              // where the desktop has any
    bool asks_ = true;                                // closing asks whether to save the list
    bool closing_ = false;  // the window was closed; long work ends after the file in hand
};

}  // namespace app
