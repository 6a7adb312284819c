// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/mediakeys/MediaPlayer2.h"

#include <algorithm>
#include <cmath>

#include <QAbstractButton>
#include <QApplication>
#include <QUrl>

#include "app/mediakeys/NowOnDeck.h"
#include "lists/ListReader.h"
#include "player/deck/Deck.h"
#include "player/engine/PlayerEngine.h"
#include "widgets/Dispatch.h"
#include "widgets/SkinSlider.h"

using namespace Qt::Literals::StringLiterals;

namespace app {
namespace {

constexpr qlonglong microsecondsInMs = 1000;

// A click on a disabled button does nothing; a box that waits for its answer keeps clicks away too.
bool reachable(const QWidget& control) {
    return control.isEnabled() && !QApplication::activeModalWidget();
}

void press(QAbstractButton& button) {
    if (reachable(button)) button.click();
}

}  // namespace

void MediaPlayer2::Raise() {
    controls_.window.setWindowState(controls_.window.windowState() & ~Qt::WindowMinimized);
    controls_.window.show();
    controls_.window.raise();
    controls_.window.activateWindow();
}

// Closing may ask a question, which the caller does not wait for.
void MediaPlayer2::Quit() {
    if (!reachable(controls_.window)) return;
    QMetaObject::invokeMethod(&controls_.window, &QWidget::close, Qt::QueuedConnection);
}

QStringList MediaPlayer2::mimeTypes() const {
    return {u"audio/mpeg"_s,         u"audio/mp4"_s,       u"audio/ogg"_s,      u"audio/opus"_s,
            u"audio/flac"_s,         u"audio/x-wav"_s,     u"audio/x-vorbis"_s, u"audio/x-ms-wma"_s,
            u"audio/x-vorbis+ogg"_s, u"audio/x-mpegurl"_s, u"audio/x-scpls"_s};
}

int MediaPlayer2Player::entry() const {
    return controls_.engine.PlaylistNowPlaying(0);
}

// The sound of the start belongs to no entry.
int MediaPlayer2Player::status() const {
    return entry() < 0 ? player::StatusStopped : controls_.engine.GetPlayerStatus(0);
}

qlonglong MediaPlayer2Player::length() const {
    return entry() < 0 ? -1 : controls_.engine.LengthMs(0) * microsecondsInMs;
}

QString MediaPlayer2Player::playbackStatus() const {
    switch (status()) {
        case player::StatusPlaying:
            return u"Playing"_s;
        case player::StatusPaused:
            return u"Paused"_s;
        default:
            return u"Stopped"_s;
    }
}

QDBusObjectPath MediaPlayer2Player::track() const {
    if (entry() < 0) return QDBusObjectPath(u"/org/mpris/MediaPlayer2/TrackList/NoTrack"_s);
    return QDBusObjectPath(u"/org/tracksmith/track/%1"_s.arg(entry()));
}

QVariantMap MediaPlayer2Player::metadata() const {
    QVariantMap data{{u"mpris:trackid"_s, QVariant::fromValue(track())}};
    if (entry() < 0) return data;
    const auto about = [this](player::ItemInfoKind kind) {
        return controls_.engine.PlaylistGetItemInfo(0, static_cast<std::int16_t>(entry()), kind);
    };
    const QString path = about(player::ItemInfoPath);
    const QUrl url = lists::isUrl(path) ? QUrl(path) : QUrl::fromLocalFile(path);
    const QString title = about(player::ItemInfoTitle);
    data[u"xesam:title"_s] = title.isEmpty() ? about(player::ItemInfoName) : title;
    data[u"xesam:url"_s] = QString::fromLatin1(url.toEncoded());
    if (length() > 0) data[u"mpris:length"_s] = length();
    now_.addTo(data, path);
    return data;
}

double MediaPlayer2Player::volume() const {
    return static_cast<double>(controls_.volume.value()) / controls_.volume.maximum();
}

void MediaPlayer2Player::setVolume(double volume) {
    const double share = std::isnan(volume) ? 0 : std::clamp(volume, 0.0, 1.0);
    if (reachable(controls_.volume))
        controls_.volume.setValue(
            static_cast<int>(std::lround(share * controls_.volume.maximum())));
}

qlonglong MediaPlayer2Player::position() const {
    return entry() < 0 ? 0
                       : std::max<qlonglong>(0, controls_.engine.PositionMs(0)) * microsecondsInMs;
}

bool MediaPlayer2Player::canGoNext() const {
    const int count = controls_.engine.PlaylistGetCount(0);
    return reachable(controls_.next) && entry() >= 0 && entry() + 1 < count;
}

bool MediaPlayer2Player::canGoPrevious() const {
    return reachable(controls_.previous) && entry() > 0;
}

bool MediaPlayer2Player::canPlay() const {
    return reachable(controls_.play) && controls_.engine.PlaylistGetCount(0) > 0;
}

bool MediaPlayer2Player::canPause() const {
    return reachable(controls_.pause) && entry() >= 0;
}

bool MediaPlayer2Player::canSeek() const {
    return reachable(controls_.position) && status() != player::StatusStopped && length() > 0;
}

void MediaPlayer2Player::setRate(double rate) {
    if (rate == 0) Pause();
}

void MediaPlayer2Player::Play() {
    if (status() != player::StatusPlaying) PlayPause();
}

void MediaPlayer2Player::Pause() {
    if (status() == player::StatusPlaying) press(controls_.pause);
}

void MediaPlayer2Player::PlayPause() {
    press(controls_.deck.idle() ? controls_.play : controls_.pause);
}

void MediaPlayer2Player::Stop() {
    press(controls_.stop);
}

void MediaPlayer2Player::Next() {
    press(controls_.next);
}

void MediaPlayer2Player::Previous() {
    press(controls_.previous);
}

// Beyond the end, Seek is Next; SetPosition there, or for a track that is gone, is nothing.
void MediaPlayer2Player::Seek(qlonglong offset) {
    if (!canSeek()) return;
    const qlonglong room = length() - position();
    if (offset > room) return Next();
    seekTo(std::max<qlonglong>(0, position() + std::max(offset, -length())));
}

void MediaPlayer2Player::SetPosition(const QDBusObjectPath& track, qlonglong position) {
    if (!canSeek() || track != this->track() || position < 0 || position > length()) return;
    seekTo(position);
}

void MediaPlayer2Player::seekTo(qlonglong position) {
    controls_.deck.SeekToMs(position / microsecondsInMs);
    Q_EMIT Seeked(this->position());
}

// What plays gives way, as it does to a click on Stop; the list keeps what it has.
void MediaPlayer2Player::OpenUri(const QString& uri) {
    const QUrl url(uri, QUrl::StrictMode);
    if (!url.isLocalFile() || !reachable(controls_.window) || !reachable(controls_.stop)) return;
    QMetaObject::invokeMethod(
        this, widgets::guarded([this, path = url.toLocalFile()] { controls_.open(path); }),
        Qt::QueuedConnection);
}

}  // namespace app
