// SPDX-License-Identifier: GPL-3.0-or-later
// The way into the cross-fade wizard.
#include "app/MainPorts.h"
#include "app/frmMain.h"
#include "effects/engine/AudioEditor.h"
#include "ui_frmMain.h"
#include "widgets/Dispatch.h"
#include "widgets/MsgBox.h"
#include "wizard/Texts.h"
#include "wizard/form/frmFadeWizard2.h"

namespace app {

namespace {

bool askReady() {
    return widgets::msgBox(wizard::texts::ReadyQuestion.toString(), widgets::MsgButtons::YesNo,
                           widgets::MsgIcon::Information,
                           wizard::texts::ReadyTitle.toString()) == widgets::MsgResult::Yes;
}

QStringList allPaths(const ports::FileList& list) {
    QStringList paths;
    for (int entry = 0; entry < list.rowCount(); ++entry) paths << list.entryPath(entry);
    return paths;
}

}  // namespace

void frmMain::mnuCrossFader_Click() {
    if (!askReady()) return;
    CommandStop1_Click();
    wizard::frmFadeWizard2& form = loadWizard();
    form.handOver(allPaths(ports_->list));
    if (form.fileCount() == 0)
        widgets::msgBox(wizard::texts::NoFiles.toString());
    else
        form.bringUp();
}

// One that is being closed only finishes the file in hand: the next visit gets one of its own.
wizard::frmFadeWizard2& frmMain::loadWizard() {
    if (frmFadeWizard2 && !frmFadeWizard2->isClosing()) return *frmFadeWizard2;
    auto* form = new wizard::frmFadeWizard2(std::make_unique<effects::AudioEditor>());
    connect(this, &frmMain::closed, form, &QWidget::close);
    connect(this, &QObject::destroyed, form, widgets::guarded([form] { delete form; }));
    frmFadeWizard2 = form;
    return *form;
}

}  // namespace app
