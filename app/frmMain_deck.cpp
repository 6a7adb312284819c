// SPDX-License-Identifier: GPL-3.0-or-later
// The player deck: transport, sliders, position, engine events.
#include "app/frmMain.h"
#include "platform/ResumeNext.h"
#include "player/deck/Deck.h"
#include "player/deck/Displays.h"
#include "ui_frmMain.h"

namespace app {

void frmMain::CommandPlay1_Click() {
    deck_->Play();
}

void frmMain::CommandPause1_Click() {
    deck_->PauseOrResume();
}

void frmMain::CommandStop1_Click() {
    deck_->Stop();
    displays_->refresh();
}

void frmMain::CommandNext1_Click() {
    deck_->Next();
}

void frmMain::CommandPrev1_Click() {
    deck_->Previous();
}

void frmMain::CommandForward1_Click() {
    deck_->Forward();
}

void frmMain::CommandRewind1_Click() {
    deck_->Rewind();
}

void frmMain::Slider1_Change() {
    deck_->PositionChanged();
}

void frmMain::SliderVolume1_Change() {
    deck_->VolumeChanged();
}

void frmMain::Timer1_Timer() {
    deck_->ShowPosition();
    displays_->refresh();
}

void frmMain::mnuTest_Click() {
    deck_->TestFadeOverlay();
}

void frmMain::PictureWaveform1_Pointed(double share) {
    deck_->SeekTo(share);
}

void frmMain::ListView1_DblClick() {
    CommandPlay1_Click();
}

void frmMain::PlayerEngine1_PlaybackStarted(int player) {
    platform::resumeNext([this, player] { deck_->PlaybackStarted(player); });
}

void frmMain::PlayerEngine1_NowPlayingChanged(int player, int index) {
    platform::resumeNext([this, player, index] { deck_->NowPlayingChanged(player, index); });
}

// What follows the end is the engine's matter; the next tick of Timer1 shows it.
void frmMain::PlayerEngine1_PlaybackEnded(int, int) {}

}  // namespace app
