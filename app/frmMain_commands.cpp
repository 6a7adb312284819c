// SPDX-License-Identifier: GPL-3.0-or-later
// The command map of the main window: which handler a button, a menu item or
// an event forwards to.
#include <QAbstractButton>
#include <QAction>
#include <QTimer>

#include "app/frmMain.h"
#include "player/engine/PlayerEngine.h"
#include "ui_frmMain.h"
#include "widgets/Dispatch.h"

namespace app {

// A handler bears its control's name: the map cannot forward a click to another control's handler.
#define CLICK(control) \
    { #control, #control "_Click", &frmMain::control##_Click }

const std::vector<frmMain::Command>& frmMain::commands() {
    static const std::vector<Command> map = {
        // buttons
        CLICK(CommandRewind1),
        CLICK(CommandForward1),
        CLICK(CommandLoad1),
        CLICK(CommandAddSong1),
        CLICK(CommandRemove1),
        CLICK(CommandMoveUp1),
        CLICK(CommandMoveDown1),
        CLICK(CommandSave1),
        CLICK(Button7),
        CLICK(CommandPlay1),
        CLICK(CommandPause1),
        CLICK(CommandStop1),
        CLICK(CommandPrev1),
        CLICK(CommandNext1),
        CLICK(Button1),
        CLICK(Button2),
        CLICK(Button12),
        // Options menu: the list
        CLICK(mnuDeselectAll),
        CLICK(mnuSelected_All),
        CLICK(mnuTest),
        // Options menu: effects
        CLICK(mnuAdd_Silence_end),
        CLICK(mnuSilence2Frt),
        CLICK(mnuAmpMinus_Selected),
        CLICK(mnuAmpPlus_Selected),
        CLICK(mnuEch_Selected),
        CLICK(mnuAutoFade_Selected),
        CLICK(mnuFadeIn_selected),
        CLICK(mnuFadeOut_selected),
        CLICK(mnuTrim_Silence),
        CLICK(mnuNormalize_selected),
        // Options menu: files
        CLICK(mnu2MP3Player),
        CLICK(mnu_copy2folder),
        CLICK(mnuEdit_IDTags_selected),
        CLICK(mnuOpen_in_Editor),
        CLICK(mnuRename),
        // Burn to CD menu
        CLICK(mnuAudio_CDWriter),
        CLICK(mnuData_CDWriter),
        CLICK(mnuCrossFader),
    };
    return map;
}

#undef CLICK

void frmMain::connectCommands() {
    for (const Command& command : commands()) {
        const QString name = QString::fromLatin1(command.control);
        if (auto* button = findChild<QAbstractButton*>(name)) {
            connect(button, &QAbstractButton::clicked, this,
                    widgets::guarded(this, command.handler));
        } else if (auto* item = findChild<QAction*>(name)) {
            connect(item, &QAction::triggered, this, widgets::guarded(this, command.handler));
        } else {
            qFatal("The command map names a control that the window lacks: %s", command.control);
        }
    }
}

void frmMain::connectEvents() {
    connect(Timer1, &QTimer::timeout, this, widgets::guarded(this, &frmMain::Timer1_Timer));
    connect(Timer2, &QTimer::timeout, this, widgets::guarded(this, &frmMain::Timer2_Timer));
    connect(ui_->Slider1, &widgets::SkinSlider::Changed, this,
            widgets::guarded(this, &frmMain::Slider1_Change));
    connect(ui_->SliderVolume1, &widgets::SkinSlider::Changed, this,
            widgets::guarded(this, &frmMain::SliderVolume1_Change));
    connect(ui_->PictureWaveform1, &widgets::PictureBox::pointed, this,
            widgets::guarded(this, &frmMain::PictureWaveform1_Pointed));
    connect(ui_->ListView1, &widgets::ListView::rowDoubleClicked, this,
            widgets::guarded(this, &frmMain::ListView1_DblClick));
    connect(ui_->ListView1, &widgets::ListView::scrolled, this,
            widgets::guarded(this, &frmMain::ListView1_Scrolled));
    connect(ui_->ListView1, &widgets::ListView::filesDropped, this,
            widgets::guarded(this, &frmMain::ListView1_FilesDropped));
    using player::PlayerEngine;
    connect(PlayerEngine1, &PlayerEngine::PlaybackStarted, this,
            widgets::guarded(this, &frmMain::PlayerEngine1_PlaybackStarted));
    connect(PlayerEngine1, &PlayerEngine::NowPlayingChanged, this,
            widgets::guarded(this, &frmMain::PlayerEngine1_NowPlayingChanged));
    connect(PlayerEngine1, &PlayerEngine::PlaybackEnded, this,
            widgets::guarded(this, &frmMain::PlayerEngine1_PlaybackEnded));
    connect(PlayerEngine1, &PlayerEngine::ItemInfoChanged, this,
            widgets::guarded(this, &frmMain::PlayerEngine1_ItemInfoChanged));
}

}  // namespace app
