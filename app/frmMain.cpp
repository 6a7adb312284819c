// SPDX-License-Identifier: GPL-3.0-or-later
// Construction, start-up and shutdown of the main window.
#include "app/frmMain.h"

#include <chrono>

#include <QApplication>
#include <QCloseEvent>
#include <QDialog>
#include <QDir>
#include <QFile>
#include <QLabel>
#include <QTimer>

#include "app/Glyphs.h"
#include "app/MainControls.h"
#include "app/MainPorts.h"
#include "app/Skin.h"
#include "effects/batch/BatchRunner.h"
#include "effects/dialogs/EffectDialogs.h"
#include "effects/engine/AudioEditor.h"
#include "platform/Paths.h"
#include "platform/Program.h"
#include "platform/ResumeNext.h"
#include "player/deck/Deck.h"
#include "player/deck/Displays.h"
#include "player/engine/PlayerEngine.h"
#include "playlist/DiskQueue.h"
#include "playlist/PlaylistCommands.h"
#include "playlist/PlaylistFiles.h"
#include "ui_frmMain.h"
#include "widgets/CommonDialog.h"
#include "widgets/FitScreen.h"
#include "widgets/MsgBox.h"
#include "widgets/Named.h"

using namespace Qt::Literals::StringLiterals;

namespace app {
namespace {

player::DeckControls deckControls(const Ui::frmMain& ui) {
    return {ui.ListView1,
            ui.Label1,
            ui.Label6,
            ui.LabelPosition1,
            ui.Slider1,
            ui.SliderVolume1,
            ui.CommandPause1,
            {ui.CommandLoad1, ui.CommandSave1, ui.Button1, ui.Button2, ui.Button7,
             ui.CommandAddSong1, ui.CommandRemove1, ui.CommandMoveUp1, ui.CommandMoveDown1},
            ui.ListView2,
            ui.LabelPosition2,
            ui.CommandPause2};
}

player::DisplayColours displayColours() {
    return {skinColour(u"accent"_s), skinColour(u"ahead"_s), skinColour(u"alarm"_s)};
}

void setGlyphs(const Ui::frmMain& ui) {
    const std::pair<QAbstractButton*, Glyph> glyphs[] = {
        {ui.CommandPrev1, Glyph::PreviousTrack}, {ui.CommandNext1, Glyph::NextTrack},
        {ui.CommandPlay1, Glyph::Play},          {ui.CommandPause1, Glyph::Pause},
        {ui.CommandStop1, Glyph::Stop},          {ui.CommandMoveUp1, Glyph::Up},
        {ui.CommandMoveDown1, Glyph::Down}};
    for (const auto& [button, glyph] : glyphs) {
        button->setIcon(glyphIcon(glyph, skinColour(u"text"_s), skinColour(u"disabled"_s)));
    }
}

}  // namespace

frmMain::frmMain(QWidget* parent)
    : QWidget(parent),
      ui_(std::make_unique<Ui::frmMain>()),
      PlayerEngine1(widgets::named<player::PlayerEngine>(u"PlayerEngine1"_s, this)),
      AudioEditor1(widgets::named<effects::AudioEditor>(u"AudioEditor1"_s, this)),
      CommonDialog1(widgets::named<widgets::CommonDialog>(u"CommonDialog1"_s, this)),
      Timer1(widgets::named<QTimer>(u"Timer1"_s, this)),
      Timer2(widgets::named<QTimer>(u"Timer2"_s, this)),
      disk_(widgets::named<playlist::DiskQueue>(u"DiskQueue"_s, this)) {
    ui_->setupUi(this);
    for (QLabel* label : findChildren<QLabel*>()) label->setTextFormat(Qt::PlainText);
    setWindowTitle(u"%1 v%2"_s.arg(platform::programTitle(), platform::programVersion()));
    setGlyphs(*ui_);
    ui_->ListView1->setColumns({u"Track"_s, u"Duration"_s, u"Title"_s});
    ui_->ListView2->setColumns({u"Index"_s, u"Duration"_s, u"Title"_s});
    list_ = std::make_unique<playlist::PlaylistCommands>(*PlayerEngine1, *CommonDialog1);
    files_ = std::make_unique<playlist::PlaylistFiles>(*PlayerEngine1, *list_, *CommonDialog1,
                                                       *disk_, *ui_->Label7);
    deck_ = std::make_unique<player::Deck>(*PlayerEngine1, deckControls(*ui_));
    ports_ = std::make_unique<MainPorts>(*this, *ui_, *PlayerEngine1, closing_);
    loaded_ = std::make_unique<MainLoadedList>(
        MainLoadedList::Parts{*ui_, *PlayerEngine1, *list_, *files_});
    buildEffects();
    displays_ = std::make_unique<player::Displays>(*PlayerEngine1, displayColours());
    buildMenus();
    connectCommands();
    connectEvents();
    connectShortcuts();
    Form_Initialize();
    Form_Load();
    connectMediaKeys();
}

frmMain::~frmMain() = default;

// No result is examined: a working folder that is there already, or a missing sound, is no matter.
void frmMain::Form_Initialize() {
    platform::resumeNext([] { QDir().mkpath(platform::fixedPath(u"C:\\Zolvo_Temp"_s)); });
    AudioEditor1->SetTemporaryFolder(platform::fixedPath(u"C:\\Zolvo_Temp\\"_s));
    PlayerEngine1->LoadSound(0, platform::besideApplication(u"\\wt.mp3"_s));
    PlayerEngine1->PlaySound(0);
}

void frmMain::Form_Load() {
    PlayerEngine1->InitEngine(2, static_cast<std::intptr_t>(winId()), 0, 0, 0, 0);
    showDisplays();
    PlayerEngine1->SetPlayerFlag(0, true);
    PlayerEngine1->SetPlayerFlag(1, true);
    widgets::fitScreen(*this);
    startTimers();
    ui_->ListView1->setFocus();
}

void frmMain::showDisplays() {
    displays_->createWaveform(0, ui_->PictureWaveform1);
    displays_->createSpectrum(0, ui_->PictureWaveform2);
    displays_->show(0, true);
    ui_->ListView1->setColumnCharacters(0, 8);
    ui_->ListView1->setColumnCharacters(1, 10);
}

void frmMain::startTimers() {
    Timer1->start(std::chrono::milliseconds(500));
    Timer2->start(std::chrono::milliseconds(2000));
    Timer2_Timer();
}

// Closing cannot be refused; a list of one entry is left without asking.
void frmMain::Form_QueryUnload() {
    if (!asks_ || ui_->ListView1->rowCount() <= 1) return;
    const auto answer = widgets::msgBox(
        u"Do you want to save the current playlist before exit?  "_s, widgets::MsgButtons::YesNo,
        widgets::MsgIcon::Question, u"Save playlist?"_s);
    if (answer == widgets::MsgResult::Yes) CommandSave1_Click();
}

void frmMain::askNothingMore() {
    asks_ = false;
    if (auto* box = qobject_cast<QDialog*>(QApplication::activeModalWidget())) box->reject();
}

void frmMain::Form_Unload() {
    platform::resumeNext([] { QFile::remove(platform::fixedPath(u"C:\\burn_list.dat"_s)); });
}

void frmMain::closeEvent(QCloseEvent* event) {
    event->accept();
    if (closing_) return;
    closing_ = true;
    Form_QueryUnload();
    Form_Unload();
    PlayerEngine1->StopPlayer(0);
    Q_EMIT closed();
}

}  // namespace app
