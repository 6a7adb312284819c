// SPDX-License-Identifier: GPL-3.0-or-later
// Effects on the selected files, and the editor engine's save step.
#include <QMenu>

#include "app/MainControls.h"
#include "app/MainPorts.h"
#include "app/frmMain.h"
#include "app/modules/modMain.h"
#include "effects/dialogs/EffectDialogs.h"
#include "effects/dialogs/FadeLengths.h"
#include "effects/dialogs/frmEcho_Effects.h"
#include "effects/dialogs/frmEffects.h"
#include "effects/dialogs/frmFadeIn.h"
#include "effects/dialogs/frmFadeOut.h"
#include "effects/engine/AudioEditor.h"
#include "platform/ResumeNext.h"
#include "ui_frmMain.h"
#include "widgets/Dispatch.h"
#include "widgets/MsgBox.h"

using namespace Qt::Literals::StringLiterals;

namespace app {
namespace {

// Effects overwrite the files themselves: this question is all that stands before them.
bool confirmTip() {
    const QStringList lines{
        u"It is strongly advised that you copy the playlist files to a 'Project Folder'"_s,
        u"BEFORE applying any effects!"_s,
        QString(),
        u"You can easily do so via the 'Copy loaded files...' menu item."_s,
        QString(),
        u"This way your orginal files will be preserved."_s,
        QString(),
        u"Proceed now?  "_s};
    return widgets::msgBox(lines.join(u"\r\n"_s), widgets::MsgButtons::OkCancel,
                           widgets::MsgIcon::Exclamation,
                           u"IMPORTANT TIP!"_s) == widgets::MsgResult::Ok;
}

}  // namespace

void frmMain::buildEffects() {
    controls_ = std::make_unique<MainControls>(MainControls::Parts{
        *this, *ui_, *PlayerEngine1, *AudioEditor1, [this] { CommandStop1_Click(); },
        [this](bool enabled) { dialogs_->setEnabled(enabled); }});
    runner_ = std::make_unique<effects::BatchRunner>(*AudioEditor1, ports_->all(), *controls_);
    dialogs_ = std::make_unique<effects::EffectDialogs>(*runner_, this);
    connect(AudioEditor1, &effects::Editor::Progress, this,
            widgets::guarded(this, &frmMain::AudioEditor1_Progress));
    auto* common = new QMenu(this);
    common->addActions({ui_->mnuAmpMinus_Selected, ui_->mnuAmpPlus_Selected,
                        ui_->mnuNormalize_selected, ui_->mnuSilence2Frt, ui_->mnuAdd_Silence_end});
    ui_->mnuEffects_Selected->setMenu(common);
}

void frmMain::mnuAmpMinus_Selected_Click() {
    if (confirmTip()) showEffects(modMain::ModeAmplifyMinus, u"Amplify - %1"_s);
}

void frmMain::mnuAmpPlus_Selected_Click() {
    if (confirmTip()) showEffects(modMain::ModeAmplifyPlus, u"Amplify + %1"_s);
}

void frmMain::mnuNormalize_selected_Click() {
    if (confirmTip()) showEffects(modMain::ModeNormalize, u"Normalize %1"_s);
}

void frmMain::mnuSilence2Frt_Click() {
    if (confirmTip()) showEffects(modMain::ModeSilenceFront, u"Add silence to front of the file"_s);
}

void frmMain::mnuAdd_Silence_end_Click() {
    if (confirmTip()) showEffects(modMain::ModeSilenceEnd, u"Add silence to end of the file"_s);
}

// The mode comes first: the dialog sets up its slider by it. "%1" in a caption is the dialog's own.
void frmMain::showEffects(std::int16_t mode, const QString& caption) {
    modMain::EffectMode = mode;
    effects::frmEffects& dialog = dialogs_->newEffects();
    dialog.show();
    dialog.setWindowTitle(caption.contains(u"%1"_s) ? caption.arg(dialog.windowTitle()) : caption);
}

void frmMain::mnuFadeIn_selected_Click() {
    if (!confirmTip()) return;
    effects::frmFadeIn& dialog = dialogs_->newFadeIn();
    dialog.setWindowTitle(u"Fade in (soft to load) effect"_s);
    dialog.fillLengths(effects::fadeInLengths());
    dialog.show();
}

void frmMain::mnuFadeOut_selected_Click() {
    if (!confirmTip()) return;
    effects::frmFadeOut& dialog = dialogs_->newFadeOut();
    dialog.setWindowTitle(u"Fade out (load to soft) effect"_s);
    dialog.fillLengths(effects::fadeOutLengths());
    dialog.show();
}

void frmMain::mnuEch_Selected_Click() {
    if (confirmTip()) dialogs_->newEcho().show();
}

void frmMain::mnuTrim_Silence_Click() {
    if (confirmTip()) runner_->trim();
}

// Deliberately without an action: the tip is all there is.
void frmMain::mnuAutoFade_Selected_Click() {
    confirmTip();
}

void frmMain::Button12_Click() {
    runner_->save();
}

void frmMain::AudioEditor1_Progress(int percent) {
    runner_->progress(percent);
}

void frmMain::AutoFadeInOut() {
    effects::autoFadeInOut(*AudioEditor1, [](const auto& call) { platform::resumeNext(call); });
}

}  // namespace app
