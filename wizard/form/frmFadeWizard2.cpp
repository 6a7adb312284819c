// SPDX-License-Identifier: GPL-3.0-or-later
#include "wizard/form/frmFadeWizard2.h"

#include <chrono>

#include <QApplication>
#include <QCheckBox>
#include <QCloseEvent>
#include <QDesktopServices>
#include <QTimer>

#include "effects/engine/Editor.h"
#include "platform/Paths.h"
#include "ui_frmFadeWizard2.h"
#include "widgets/CommonDialog.h"
#include "widgets/Dispatch.h"
#include "widgets/FitScreen.h"
#include "widgets/Named.h"
#include "wizard/Genres.h"
#include "wizard/OutputFormat.h"
#include "wizard/form/MixPreview.h"
#include "wizard/form/RunBar.h"

using namespace Qt::Literals::StringLiterals;

namespace wizard {

namespace {

void keepPlaceWhenHidden(QWidget* widget) {
    QSizePolicy policy = widget->sizePolicy();
    policy.setRetainSizeWhenHidden(true);
    widget->setSizePolicy(policy);
}

}  // namespace

frmFadeWizard2::frmFadeWizard2(std::unique_ptr<effects::Editor> editor, QWidget* parent)
    : QMainWindow(parent),
      openPage([](const QUrl& page) { QDesktopServices::openUrl(page); }),
      ui_(std::make_unique<Ui::frmFadeWizard2>()),
      AudioEditor1(editor.release()),
      CommonDialog1(widgets::named<widgets::CommonDialog>(u"CommonDialog1"_s, this)),
      Timer1(widgets::named<QTimer>(u"Timer1"_s, this)) {
    AudioEditor1->setParent(this);
    AudioEditor1->setObjectName(u"AudioEditor1"_s);
    ui_->setupUi(this);
    bar_ = std::make_unique<RunBar>(*ui_);
    preview_ = new MixPreview(ui_->timelinePane);
    ui_->timelineLayout->addWidget(preview_);
    buildEffectChecks();
    connectControls();
    Form_Load();
}

frmFadeWizard2::~frmFadeWizard2() = default;

void frmFadeWizard2::buildEffectChecks() {
    constexpr int Rows = 8;
    for (const EffectRow& row : effectRows()) {
        auto* check = new QCheckBox(row.caption, ui_->Frame1);
        check->setObjectName(u"Check%1"_s.arg(row.checkBox));
        const int place = static_cast<int>(effectChecks_.size());
        ui_->checksLayout->addWidget(check, place % Rows, place / Rows);
        connect(check, &QCheckBox::toggled, this,
                widgets::guarded([this, &row](bool on) { Check_Click(row, on); }));
        effectChecks_.push_back(check);
    }
}

void frmFadeWizard2::connectControls() {
    using widgets::guarded;
    const auto click = [this](QAbstractButton* button, void (frmFadeWizard2::*handler)()) {
        connect(button, &QAbstractButton::clicked, this, guarded(this, handler));
    };
    click(ui_->Button1, &frmFadeWizard2::Button1_Click);
    click(ui_->Button2, &frmFadeWizard2::Button2_Click);
    click(ui_->Button3, &frmFadeWizard2::Button3_Click);
    click(ui_->Button6, &frmFadeWizard2::Button6_Click);
    click(ui_->Button7, &frmFadeWizard2::Button7_Click);
    click(ui_->Button10, &frmFadeWizard2::Button10_Click);
    click(ui_->Button13, &frmFadeWizard2::Button13_Click);
    click(ui_->Button14, &frmFadeWizard2::Button14_Click);
    click(ui_->Button38, &frmFadeWizard2::Button38_Click);
    connectFileField(ui_->Button4, ui_->Button8, ui_->Text1);
    connectFileField(ui_->Button5, ui_->Button9, ui_->Text2);
    connectFileField(ui_->Button11, ui_->Button12, ui_->Text3);
    connect(ui_->mnuAbout, &QAction::triggered, this,
            guarded(this, &frmFadeWizard2::Button14_Click));
    connect(ui_->mnuUpdates, &QAction::triggered, this,
            guarded(this, &frmFadeWizard2::openSupportPage));
    connect(ui_->mnuSupport, &QAction::triggered, this,
            guarded(this, &frmFadeWizard2::openSupportPage));
    connect(ui_->Combo1, &QComboBox::currentTextChanged, this,
            guarded(this, &frmFadeWizard2::Combo1_Click));
    connect(Timer1, &QTimer::timeout, this, guarded(this, &frmFadeWizard2::Timer1_Timer));
    connect(AudioEditor1, &effects::Editor::Progress, this,
            guarded(this, &frmFadeWizard2::AudioEditor1_Progress));
    const auto& files = session_.lstFiles;
    connect(&files, &QAbstractItemModel::dataChanged, this,
            guarded(this, &frmFadeWizard2::updatePreview));
    connect(&files, &QAbstractItemModel::rowsRemoved, this,
            guarded(this, &frmFadeWizard2::updatePreview));
    connect(&files, &QAbstractItemModel::modelReset, this,
            guarded(this, &frmFadeWizard2::updatePreview));
}

void frmFadeWizard2::connectFileField(QAbstractButton* select, QAbstractButton* clear,
                                      QLineEdit* field) {
    connect(select, &QAbstractButton::clicked, this,
            widgets::guarded([this, field] { selectFile(field); }));
    connect(clear, &QAbstractButton::clicked, field, &QLineEdit::clear);
}

void frmFadeWizard2::Form_Load() {
    showLists();
    showValues(false);
    offerFormats();
    AudioEditor1->SetTemporaryFolder(platform::fixedPath(u"C:\\Zolvo_Temp\\"_s));
    Timer1->start(std::chrono::milliseconds(500));
    widgets::fitScreen(*this);
}

void frmFadeWizard2::showLists() {
    ui_->lstFiles->setModel(&session_.lstFiles);
    ui_->lstFiles2->setModel(&session_.lstFiles2);
    ui_->List1->setModel(&session_.List1);
    for (QWidget* widget :
         {static_cast<QWidget*>(ui_->Combo5), static_cast<QWidget*>(ui_->Label13),
          static_cast<QWidget*>(ui_->Button10), static_cast<QWidget*>(ui_->LabelFront)})
        keepPlaceWhenHidden(widget);
}

void frmFadeWizard2::offerFormats() {
    ui_->Combo1->addItems(formatTexts());
    ui_->Combo2->addItems(frequencyTexts());
    ui_->Combo2->setCurrentText(initialFrequency());
    ui_->Combo4->addItems(channelTexts());
    ui_->Combo4->setCurrentText(initialChannels());
    ui_->infoGenre->addItems(genreNames());
    ui_->infoGenre->setCurrentIndex(-1);
}

void frmFadeWizard2::Form_Activate() {
    session_.settings.forgetEffectValues();
}

void frmFadeWizard2::Form_Unload() {
    closing_ = true;
    session_.stop();
    Timer1->stop();
    preview_->stop();
    if (!running_) deleteLater();
}

bool frmFadeWizard2::event(QEvent* event) {
    if (event->type() == QEvent::WindowDeactivate) followDeactivation();
    if (event->type() == QEvent::WindowActivate && !std::exchange(boxOfOurOwn_, false))
        Form_Activate();
    return QMainWindow::event(event);
}

// A box that the window itself shows is part of it: coming back from one is no new visit.
void frmFadeWizard2::followDeactivation() {
    const QWidget* box = QApplication::activeModalWidget();
    boxOfOurOwn_ = box && box->parentWidget() && box->parentWidget()->window() == this;
}

void frmFadeWizard2::closeEvent(QCloseEvent* event) {
    Form_Unload();
    event->accept();
}

void frmFadeWizard2::handOver(const QStringList& playlist) {
    if (running_) return;
    session_.handOver(playlist);
    ui_->List1->hide();
    ui_->lstFiles->show();
}

int frmFadeWizard2::fileCount() const {
    return session_.lstFiles.rowCount();
}

void frmFadeWizard2::bringUp() {
    show();
    raise();
    activateWindow();
}

void frmFadeWizard2::unloadallforms() {
    for (QWidget* form : QApplication::topLevelWidgets()) form->close();
    QCoreApplication::quit();
}

}  // namespace wizard
