// SPDX-License-Identifier: GPL-3.0-or-later
#include "player/deck/Deck.h"

#include <QAbstractButton>
#include <QCoreApplication>
#include <QLabel>

#include "player/engine/PlayerEngine.h"
#include "widgets/ListView.h"
#include "widgets/SkinSlider.h"

using namespace Qt::Literals::StringLiterals;

namespace player {
namespace {

constexpr int titleColumn = 2;
constexpr std::int32_t overlayMs = 30000;
constexpr std::int16_t fullLevel = 99;

QString percentText(std::int32_t position) {
    return QString::number(position < 0 ? 0 : position) + u'%';
}

}  // namespace

Deck::Deck(PlayerEngine& engine, const DeckControls& controls)
    : engine_(engine), controls_(controls) {}

void Deck::Play() {
    controls_.list->setMultiSelect(false);
    PlaySelectedEntry();
    lockEditing(true);
}

void Deck::PlaySelectedEntry() {
    if (controls_.list->rowCount() == 0) return;
    engine_.PlaylistPlayItem(0, static_cast<std::int16_t>(controls_.list->currentRow() - 1));
    showSelectedTitle();
}

void Deck::Stop() {
    controls_.list->setMultiSelect(true);
    engine_.StopPlayer(0);
    lockEditing(false);
    controls_.nowPlaying->clear();
    controls_.pause->setText(u"Pause"_s);
    markPlayingRow();
}

// On resume the caption waits for the engine, which reports with PlaybackStarted.
void Deck::PauseOrResume() {
    const std::int32_t status = engine_.GetPlayerStatus(0);
    if (status == StatusStopped) return;
    if (status == StatusPaused) return engine_.ResumePlayer(0);
    engine_.PausePlayer(0);
    controls_.pause->setText(u"Resume"_s);
}

void Deck::Next() {
    engine_.PlaylistNext(0);
}

void Deck::Previous() {
    engine_.PlaylistPrevious(0);
}

void Deck::Forward() {
    engine_.Forward(0);
}

void Deck::Rewind() {
    engine_.Rewind(0);
}

// The position timer may tick during the first yield and leave another unit behind.
void Deck::PositionChanged() {
    engine_.SetPositionUnit(UnitPercent);
    QCoreApplication::processEvents();
    engine_.SetPositionUnit(UnitPercent);
    engine_.Seek(0, controls_.position->value());
    QCoreApplication::processEvents();
}

void Deck::VolumeChanged() {
    engine_.SetVolume(0, static_cast<std::int16_t>(controls_.volume->value()));
}

void Deck::SeekTo(double share) {
    const std::int64_t length = engine_.LengthMs(0);
    if (length > 0) SeekToMs(static_cast<std::int64_t>(static_cast<double>(length) * share));
}

void Deck::SeekToMs(std::int64_t position) {
    engine_.SeekMs(0, position);
    ShowPosition();
}

bool Deck::idle() const {
    return !locked_ || engine_.GetPlayerStatus(0) == StatusStopped;
}

void Deck::TestFadeOverlay() {
    const int rows = controls_.list->rowCount();
    if (rows == 0) return;
    const int row = controls_.list->currentRow();
    const auto next = static_cast<std::int16_t>(row % rows);
    controls_.list->setMultiSelect(false);
    showSelectedTitle();
    lockEditing(true);
    engine_.PlaylistPlayItem(0, static_cast<std::int16_t>(row - 1));
    engine_.SeekMs(0, overlayMs);
    engine_.FadePlayer(0, fullLevel, 0, overlayMs);
    engine_.LoadSound(1, engine_.PlaylistGetItemInfo(0, next, ItemInfoPath));
    engine_.FadePlayer(1, 0, fullLevel, overlayMs);
}

void Deck::ShowPosition() {
    engine_.SetPositionUnit(UnitPercent);
    const std::int32_t position = engine_.GetPosition(0);
    controls_.percent->setText(percentText(position));
    if (position < 0) {
        controls_.nowPlaying->clear();
        controls_.positionText->clear();
        controls_.position->setShownValue(0);
    } else {
        controls_.positionText->setText(engine_.GetFormattedPosition(0, 1, 1));
        controls_.position->setShownValue(position);
    }
    controls_.percent2->setText(percentText(engine_.GetPosition(1)));
    engine_.SetPositionUnit(UnitMilliseconds);
    markPlayingRow();
}

void Deck::PlaybackStarted(int player) {
    if (player != 0) return controls_.pause2->setText(u"Pause"_s);
    controls_.pause->setText(u"Pause"_s);
    showTitleOfWhatPlays();
}

// The engine reports a later entry with this event alone, so the line of the title follows here.
void Deck::NowPlayingChanged(int player, int index) {
    widgets::ListView* list = player == 0 ? controls_.list : controls_.list2;
    if (index < 0 || index >= list->rowCount()) return;
    list->selectRow(index + 1);
    list->ensureVisible(index + 1);
    list->setFocus();
    if (player != 0) return;
    showTitleOfWhatPlays();
    markPlayingRow();
}

void Deck::lockEditing(bool locked) {
    locked_ = locked;
    for (QAbstractButton* button : controls_.editingLock) button->setEnabled(!locked);
}

void Deck::showSelectedTitle() {
    const int row = controls_.list->currentRow();
    if (row > 0) controls_.nowPlaying->setText(controls_.list->subItem(row, titleColumn));
}

// The line stays empty while nothing is on, or only the sound of the start, which is no entry.
void Deck::showTitleOfWhatPlays() {
    const bool on = engine_.GetPlayerStatus(0) != StatusStopped;
    if (on && engine_.PlaylistNowPlaying(0) >= 0) showSelectedTitle();
}

void Deck::markPlayingRow() {
    const bool on = engine_.GetPlayerStatus(0) != StatusStopped;
    controls_.list->setPlayingRow(on ? engine_.PlaylistNowPlaying(0) + 1 : 0);
}

}  // namespace player
