// SPDX-License-Identifier: GPL-3.0-or-later
// The wizard's run: the start button, and what the pass and the rounds ask of the window.
#include <QCheckBox>
#include <QCoreApplication>
#include <QScopeGuard>

#include "effects/engine/Editor.h"
#include "handoff/HandoffFiles.h"
#include "platform/Paths.h"
#include "platform/StartProgram.h"
#include "ports/window/WindowBoxes.h"
#include "ports/window/WindowEvents.h"
#include "ui_frmFadeWizard2.h"
#include "wizard/TransformationPass.h"
#include "wizard/form/MixPreview.h"
#include "wizard/form/RunBar.h"
#include "wizard/form/frmFadeWizard2.h"

using namespace Qt::Literals::StringLiterals;

namespace wizard {

namespace {

enum EffectCheck { Normalize = 8, FadeOut = 17, FadeIn = 18, CrossFade = 23, TrimSilence = 24 };

void selectRow(QListView* list, int row) {
    const QModelIndex index = list->model()->index(row, 0);
    if (index.isValid()) list->setCurrentIndex(index);
}

}  // namespace

// The engine is not to be called from within its own progress, so the button rests meanwhile.
void frmFadeWizard2::Button7_Click() {
    running_ = true;
    ui_->Button7->setEnabled(false);
    preview_->clearFailures();
    const auto atTheEnd = qScopeGuard([this] { runEnded(); });
    run();
}

void frmFadeWizard2::run() {
    ports::WindowBoxes boxes(*this);
    ports::WindowEvents events(closing_);
    TransformationPass pass(*AudioEditor1, session_, {*this, *bar_, boxes, events});
    if (const QString reason = pass.reasonAgainst(); !reason.isEmpty())
        return boxes.showMessage(reason);
    pass.run();
}

void frmFadeWizard2::runEnded() {
    running_ = false;
    ui_->Button7->setEnabled(true);
    preview_->setCurrent(-1);
    if (closing_) deleteLater();
}

void frmFadeWizard2::Button6_Click() {
    session_.stop();
}

void frmFadeWizard2::AudioEditor1_Progress(int percent) {
    bar_->setFraction(percent / 100.0);
    QCoreApplication::processEvents();
    if (percent < 100) return;
    bar_->setFraction(0);
    QCoreApplication::processEvents();
}

void frmFadeWizard2::updatePreview() {
    const Settings& settings = session_.settings;
    const auto seconds = [this](EffectCheck check, std::int32_t chosen, std::int32_t initial) {
        return ticked(check) ? (chosen ? chosen : initial) / 1000.0 : 0.0;
    };
    MixPreview::Shape shape;
    shape.overlap = seconds(CrossFade, settings.crossfade_value, DefaultOverlapMs);
    shape.fades.outSeconds = seconds(FadeOut, settings.fadeOutMs, DefaultFadeMs);
    shape.fades.inSeconds = seconds(FadeIn, settings.fadeInMs, DefaultFadeMs);
    shape.normalize = ticked(Normalize);
    shape.trim = ticked(TrimSilence);
    preview_->show(session_.lstFiles.stringList(), shape);
}

bool frmFadeWizard2::ticked(int checkBox) const {
    return effectChecks_.at(static_cast<std::size_t>(checkBox - 1))->isChecked();
}

Options frmFadeWizard2::options() const {
    Options options;
    options.targetPath = ui_->txtPath->text();
    options.trimSilence = ticked(TrimSilence);
    options.normalize = ticked(Normalize);
    options.fadeOut = ticked(FadeOut);
    options.fadeIn = ticked(FadeIn);
    options.crossFade = ticked(CrossFade);
    options.hasPrefix = !ui_->Text1a->text().isEmpty();
    if (ui_->Option2t->isChecked()) options.tags = TagChoice::SetNew;
    if (ui_->Option1t->isChecked()) options.tags = TagChoice::Strip;
    options.format = ui_->Combo1->currentText();
    options.frequency = ui_->Combo2->currentText();
    options.bitRate = ui_->Combo3->currentText();
    options.channels = ui_->Combo4->currentText();
    return options;
}

void frmFadeWizard2::selectFile(int index) {
    selectRow(ui_->lstFiles2, index);
    selectRow(ui_->lstFiles, index);
    preview_->setCurrent(index);
}

void frmFadeWizard2::showResults() {
    ui_->lstFiles->hide();
    ui_->List1->show();
}

void frmFadeWizard2::selectResult(int index) {
    selectRow(ui_->List1, index);
    preview_->setCurrent(index);
}

void frmFadeWizard2::stepFailed(const QString& sentence) {
    preview_->addFailure(sentence);
}

void frmFadeWizard2::burn(const QStringList& results) {
    handoff::writeBurnList(results);
    close();
    platform::startProgram(platform::besideApplication(u"\\Fornax\\Fornax_Blend.EXE"_s));
}

}  // namespace wizard
