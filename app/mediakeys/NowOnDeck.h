// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>

#include <QObject>
#include <QString>
#include <QTemporaryDir>
#include <QThreadPool>
#include <QVariantMap>

#include "audio/tags/TrackDetails.h"

namespace app {

/// Artist, album and cover of the file that is on the deck, for the desktop's panels: read on a
/// thread of its own, the cover kept as a file as long as this object lives. Window thread.
class NowOnDeck {
  public:
    /// `changed` is called when what a file was asked for became known.
    explicit NowOnDeck(std::function<void()> changed);
    /// Waits for the file in hand.
    ~NowOnDeck();
    NowOnDeck(const NowOnDeck&) = delete;
    NowOnDeck& operator=(const NowOnDeck&) = delete;

    /// Adds what is known of this file, under the names of the xesam and mpris fields; asked for
    /// another file than before, begins to read that one.
    void addTo(QVariantMap& data, const QString& path);

  private:
    struct Read {
        QString path;
        audio::tags::TrackDetails details;
    };

    void read(const QString& path);
    void take(const Read& read);

    const std::function<void()> changed_;
    QString wanted_;
    QVariantMap known_;  // of wanted_
    QTemporaryDir covers_;
    int coverCount_ = 0;
    QObject here_;  // results are taken on its thread
    QThreadPool pool_;
};

}  // namespace app
