// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDBusAbstractAdaptor>
#include <QDBusObjectPath>
#include <QStringList>
#include <QVariantMap>

#include "app/mediakeys/MediaKeys.h"
#include "platform/Program.h"

namespace app {

// The two interfaces of MPRIS, version 2.2 (specifications.freedesktop.org/mpris-spec), with its
// names. Times are microseconds. Window thread.

/// The program as a whole.
class MediaPlayer2 : public QDBusAbstractAdaptor {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.mpris.MediaPlayer2")
    Q_PROPERTY(bool CanQuit READ yes)
    Q_PROPERTY(bool CanRaise READ yes)
    Q_PROPERTY(bool HasTrackList READ no)
    Q_PROPERTY(QString Identity READ identity)
    Q_PROPERTY(QString DesktopEntry READ desktopEntry)
    Q_PROPERTY(QStringList SupportedUriSchemes READ uriSchemes)
    Q_PROPERTY(QStringList SupportedMimeTypes READ mimeTypes)

  public:
    MediaPlayer2(QObject* parent, const MediaControls& controls)
        : QDBusAbstractAdaptor(parent), controls_(controls) {}

    bool yes() const { return true; }
    bool no() const { return false; }
    QString identity() const { return platform::programTitle(); }
    QString desktopEntry() const { return platform::programName(); }
    QStringList uriSchemes() const { return {QStringLiteral("file")}; }
    QStringList mimeTypes() const;

  public Q_SLOTS:
    void Raise();
    void Quit();

  private:
    MediaControls controls_;
};

class NowOnDeck;

/// The deck.
class MediaPlayer2Player : public QDBusAbstractAdaptor {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.mpris.MediaPlayer2.Player")
    Q_PROPERTY(QString PlaybackStatus READ playbackStatus)
    Q_PROPERTY(double Rate READ rate WRITE setRate)
    Q_PROPERTY(double MinimumRate READ rate)
    Q_PROPERTY(double MaximumRate READ rate)
    Q_PROPERTY(QVariantMap Metadata READ metadata)
    Q_PROPERTY(double Volume READ volume WRITE setVolume)
    Q_PROPERTY(qlonglong Position READ position)
    Q_PROPERTY(bool CanGoNext READ canGoNext)
    Q_PROPERTY(bool CanGoPrevious READ canGoPrevious)
    Q_PROPERTY(bool CanPlay READ canPlay)
    Q_PROPERTY(bool CanPause READ canPause)
    Q_PROPERTY(bool CanSeek READ canSeek)
    Q_PROPERTY(bool CanControl READ canControl)

  public:
    MediaPlayer2Player(QObject* parent, const MediaControls& controls, NowOnDeck& now)
        : QDBusAbstractAdaptor(parent), controls_(controls), now_(now) {}

    QString playbackStatus() const;
    double rate() const { return 1; }
    void setRate(double rate);  ///< 0 is a pause; the deck knows no other rate than 1
    QVariantMap metadata() const;
    double volume() const;  ///< 0 to 1
    void setVolume(double volume);
    qlonglong position() const;
    bool canGoNext() const;
    bool canGoPrevious() const;
    bool canPlay() const;
    bool canPause() const;
    bool canSeek() const;
    bool canControl() const { return true; }

    /// Path of the entry that is on the deck; one that stands for none where there is none.
    QDBusObjectPath track() const;

  public Q_SLOTS:
    void Play();
    void Pause();
    void PlayPause();
    void Stop();
    void Next();
    void Previous();
    void Seek(qlonglong offset);
    void SetPosition(const QDBusObjectPath& track, qlonglong position);
    void OpenUri(const QString& uri);

  Q_SIGNALS:
    void Seeked(qlonglong position);

  private:
    int status() const;
    int entry() const;  ///< -1 = none
    qlonglong length() const;
    void seekTo(qlonglong position);

    MediaControls controls_;
    NowOnDeck& now_;
};

}  // namespace app
