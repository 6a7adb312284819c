// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/mediakeys/MediaKeys.h"

#include <chrono>
#include <cstdlib>

#include <QAbstractButton>
#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QMetaProperty>
#include <QThread>
#include <QTimer>

#include "app/mediakeys/MediaPlayer2.h"
#include "app/mediakeys/NowOnDeck.h"
#include "player/engine/PlayerEngine.h"
#include "widgets/Dispatch.h"

using namespace Qt::Literals::StringLiterals;

namespace app {
namespace {

constexpr QLatin1StringView objectPath("/org/mpris/MediaPlayer2");
constexpr QLatin1StringView serviceName("org.mpris.MediaPlayer2.tracksmith");
constexpr std::chrono::milliseconds lookAgain{500};
constexpr std::chrono::milliseconds farewell{1000};
constexpr qlonglong jump = 1'000'000;  // microseconds; less is the ticking of two clocks

// Without an address the library would start a bus, or wait for one.
bool hasSessionBus() {
    if (!qEnvironmentVariableIsEmpty("DBUS_SESSION_BUS_ADDRESS")) return true;
    const QString runtime = qEnvironmentVariable("XDG_RUNTIME_DIR");
    return !runtime.isEmpty() && QFileInfo::exists(runtime + u"/bus"_s);
}

QDBusMessage askBus(const QString& method) {
    const QString bus = u"org.freedesktop.DBus"_s;
    return QDBusMessage::createMethodCall(bus, u"/org/freedesktop/DBus"_s, bus, method);
}

/// The object on the bus: its name there, and the news of what changed.
class MediaKeys : public QObject {
  public:
    explicit MediaKeys(const MediaControls& controls)
        : now_([this] { tellChanges(); }), program_(this, controls), deck_(this, controls, now_) {
        for (const QAbstractButton* button : {&controls.play, &controls.pause, &controls.stop})
            connect(button, &QAbstractButton::clicked, this,
                    widgets::guarded(this, &MediaKeys::tellChanges));
        using player::PlayerEngine;
        const auto follow = [this, &controls](auto signal) {
            connect(&controls.engine, signal, this, widgets::guarded([this] { tellChanges(); }));
        };
        follow(&PlayerEngine::PlaybackStarted);
        follow(&PlayerEngine::NowPlayingChanged);
        follow(&PlayerEngine::PlaybackEnded);
        connect(&deck_, &MediaPlayer2Player::Seeked, this,
                widgets::guarded(this, &MediaKeys::tookSeek));
        ticking_.setInterval(lookAgain);
        connect(&ticking_, &QTimer::timeout, this, widgets::guarded(this, &MediaKeys::tick));
        connectToBus();
    }
    ~MediaKeys() override {
        if (connecting_ && !connecting_->wait(farewell)) connecting_.release();
        if (!name_.isEmpty()) QDBusConnection::sessionBus().send(askBus(u"ReleaseName"_s) << name_);
    }
    Q_DISABLE_COPY_MOVE(MediaKeys)

  private:
    // A bus that answers slowly keeps this thread waiting, and nobody else; one that has not
    // answered when the program ends is left behind with it.
    void connectToBus() {
        connecting_.reset(QThread::create([] { QDBusConnection::sessionBus(); }));
        connect(connecting_.get(), &QThread::finished, this,
                widgets::guarded(this, &MediaKeys::tookBus));
        connecting_->start();
    }

    void tookBus() {
        QDBusConnection bus = QDBusConnection::sessionBus();
        if (bus.isConnected() && bus.registerObject(objectPath, this)) claim(serviceName);
    }

    void claim(const QString& name) {
        constexpr uint doNotQueue = 4;
        const auto call = askBus(u"RequestName"_s) << name << doNotQueue;
        auto* answer =
            new QDBusPendingCallWatcher(QDBusConnection::sessionBus().asyncCall(call), this);
        connect(answer, &QDBusPendingCallWatcher::finished, this,
                widgets::guarded([this, name, answer] {
                    answer->deleteLater();
                    took(name, *answer);
                }));
    }

    void took(const QString& name, const QDBusPendingReply<uint>& answer) {
        constexpr uint isOwner = 1;
        if (answer.isError()) return;
        if (answer.value() == isOwner) return begin(name);
        const qint64 process = QCoreApplication::applicationPid();
        if (name == serviceName) claim(name + u".instance"_s + QString::number(process));
    }

    void begin(const QString& name) {
        name_ = name;
        told_ = properties();
        sinceTick_.start();
        ticking_.start();
    }

    // Not the position: it changes all the time, and who shows it reckons it himself.
    QVariantMap properties() const {
        QVariantMap values;
        const QMetaObject* interface = deck_.metaObject();
        for (int i = interface->propertyOffset(); i < interface->propertyCount(); ++i)
            if (const QMetaProperty property = interface->property(i);
                property.name() != "Position"_ba)
                values[QString::fromLatin1(property.name())] = property.read(&deck_);
        return values;
    }

    void tellChanges() {
        if (name_.isEmpty()) return;
        const QVariantMap now = properties();
        QVariantMap changed;
        for (auto property = now.begin(); property != now.end(); ++property)
            if (told_.value(property.key()) != property.value())
                changed[property.key()] = property.value();
        if (changed.isEmpty()) return;
        told_ = now;
        const QString properties = u"org.freedesktop.DBus.Properties"_s;
        QDBusConnection::sessionBus().send(
            QDBusMessage::createSignal(objectPath, properties, u"PropertiesChanged"_s)
            << u"org.mpris.MediaPlayer2.Player"_s << changed << QStringList());
    }

    // A seek that was told is no jump to be told again.
    void tookSeek(qlonglong position) {
        sinceTick_.start();
        position_ = position;
    }

    // What the user moves in the window is told here.
    void tick() {
        tellChanges();
        const qlonglong position = deck_.position();
        const bool plays = deck_.playbackStatus() == u"Playing";
        const qlonglong passed = plays ? sinceTick_.nsecsElapsed() / 1000 : 0;
        const bool jumped = std::abs(position - position_ - passed) > jump;
        const bool stays = deck_.track() == track_ && deck_.canSeek();
        if (jumped && stays) Q_EMIT deck_.Seeked(position);
        sinceTick_.start();
        position_ = position;
        track_ = deck_.track();
    }

    std::unique_ptr<QThread> connecting_;
    NowOnDeck now_;
    MediaPlayer2 program_;
    MediaPlayer2Player deck_;
    QString name_;  // on the bus; empty = not there
    QVariantMap told_;
    QTimer ticking_;
    QElapsedTimer sinceTick_;
    qlonglong position_ = 0;
    QDBusObjectPath track_;
};

}  // namespace

std::unique_ptr<QObject> attachMediaKeys(const MediaControls& controls) {
    return hasSessionBus() ? std::make_unique<MediaKeys>(controls) : nullptr;
}

}  // namespace app
