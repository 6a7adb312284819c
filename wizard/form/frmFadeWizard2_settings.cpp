// SPDX-License-Identifier: GPL-3.0-or-later
// What the user sets in the wizard: effects and their values, format, lists and paths.
#include <QCheckBox>
#include <QTimer>

#include "handoff/forms/BrowseForFolder.h"
#include "platform/Paths.h"
#include "ui_frmFadeWizard2.h"
#include "widgets/CommonDialog.h"
#include "widgets/MsgBox.h"
#include "wizard/OutputFormat.h"
#include "wizard/Texts.h"
#include "wizard/form/About.h"
#include "wizard/form/frmFadeWizard2.h"

using namespace Qt::Literals::StringLiterals;

namespace wizard {

namespace {

constexpr int TooManyFiles = 100;

QUrl supportPage() {
    return QUrl(u"https://tracksmith.example/support"_s);
}

// The count is written on a light plate, where black and red are both easy to read.
QString plate(const QString& colour) {
    return u"color: %1; background-color: #dfe5ea; border-radius: 3px; padding: 1px 6px;"_s.arg(
        colour);
}

}  // namespace

void frmFadeWizard2::Check_Click(const EffectRow& row, bool on) {
    updatePreview();
    if (row.kind == EffectKind::Silent) return;
    if (row.kind == EffectKind::Bare) return hideFrontLabel(row);
    showValues(on);
    ui_->Combo5->clear();
    if (on) offerValues(row);
}

void frmFadeWizard2::offerValues(const EffectRow& row) {
    ui_->Combo5->addItems(row.texts());
    ui_->Combo5->setCurrentIndex(ui_->Combo5->findText(row.text(row.shown)));
    session_.settings.workingon = row.code;
}

// An effect without values takes the label of the front file away instead of the values' own.
void frmFadeWizard2::hideFrontLabel(const EffectRow& row) {
    ui_->Combo5->hide();
    ui_->LabelFront->hide();
    ui_->Button10->hide();
    session_.settings.workingon = row.code;
}

void frmFadeWizard2::showValues(bool visible) {
    ui_->Combo5->setVisible(visible);
    ui_->Label13->setVisible(visible);
    ui_->Button10->setVisible(visible);
}

void frmFadeWizard2::Button10_Click() {
    const EffectRow* row = effectWithCode(session_.settings.workingon);
    if (row && ticked(row->checkBox))
        storeValue(*row, ui_->Combo5->currentText(), session_.settings);
    showValues(false);
    session_.settings.workingon = 0;
    updatePreview();
}

void frmFadeWizard2::Combo1_Click() {
    const QString format = ui_->Combo1->currentText();
    ui_->Combo3->clear();
    ui_->Combo3->addItems(bitRateTexts(format));
    ui_->Combo3->setCurrentText(initialBitRate(format));
}

void frmFadeWizard2::Button38_Click() {
    CommonDialog1->DialogTitle = u"Open ..."_s;
    CommonDialog1->Filter = u"All (*.mp2; *.mp3; *.wav)|*.mp2; *.mp3; *.wav"_s;
    CommonDialog1->FileName.clear();
    CommonDialog1->AllowMultiSelect = true;
    CommonDialog1->ShowOpen();
    if (CommonDialog1->FileName.isEmpty()) return;
    for (const QString& path : CommonDialog1->FileNames) session_.addFileAndName(path);
}

void frmFadeWizard2::Button1_Click() {
    const QItemSelectionModel* selection = ui_->lstFiles2->selectionModel();
    for (int index = session_.lstFiles2.rowCount() - 1; index >= 0; --index)
        if (selection->isRowSelected(index)) session_.remove(index);
}

void frmFadeWizard2::Button2_Click() {
    session_.lstFiles.setStringList({});
    session_.lstFiles2.setStringList({});
}

void frmFadeWizard2::Button3_Click() {
    const QString folder = handoff::BrowseForFolder(this, u"Select Target Folder..."_s);
    if (!folder.isEmpty()) ui_->txtPath->setText(folder + platform::nativeSeparator());
}

void frmFadeWizard2::selectFile(QLineEdit* box) {
    CommonDialog1->DialogTitle = u"Select file..."_s;
    CommonDialog1->Filter =
        u"Wav Files (*.wav)|*.wav|MP3 Files (*.mp3)|*.mp3"
        "|OggVorbis Files (*.ogg)|*.ogg|WMA Files (*.wma)|*.wma"_s;
    CommonDialog1->FileName.clear();
    CommonDialog1->AllowMultiSelect = false;
    CommonDialog1->ShowOpen();
    if (!CommonDialog1->FileName.isEmpty()) box->setText(CommonDialog1->FileName);
}

void frmFadeWizard2::Button13_Click() {
    widgets::msgBox(texts::MoreInfo.toString());
}

void frmFadeWizard2::Button14_Click() {
    showAbout(this);
}

void frmFadeWizard2::openSupportPage() {
    openPage(supportPage());
}

void frmFadeWizard2::Timer1_Timer() {
    const int files = session_.lstFiles2.rowCount();
    const bool tooMany = files >= TooManyFiles;
    ui_->Label14->setStyleSheet(plate(tooMany ? u"#b00000"_s : u"black"_s));
    ui_->Label14->setText(QString::number(files) +
                          (tooMany ? texts::TooManyFiles.toString() : QString()));
}

}  // namespace wizard
