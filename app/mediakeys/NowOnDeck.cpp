// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/mediakeys/NowOnDeck.h"

#include <utility>

#include <QFile>
#include <QStringList>
#include <QUrl>

#include "platform/Paths.h"
#include "widgets/Dispatch.h"

using namespace Qt::Literals::StringLiterals;

namespace app {

NowOnDeck::NowOnDeck(std::function<void()> changed) : changed_(std::move(changed)) {
    pool_.setMaxThreadCount(1);
}

NowOnDeck::~NowOnDeck() {
    pool_.clear();
    pool_.waitForDone();
}

void NowOnDeck::addTo(QVariantMap& data, const QString& path) {
    if (path != wanted_) read(path);
    data.insert(known_);
}

void NowOnDeck::read(const QString& path) {
    wanted_ = path;
    known_.clear();
    pool_.clear();
    pool_.start([this, path] {
        Read read{path, audio::tags::readTrackDetails(platform::toPath(path))};
        QMetaObject::invokeMethod(&here_,
                                  widgets::guarded([this, read = std::move(read)] { take(read); }),
                                  Qt::QueuedConnection);
    });
}

void NowOnDeck::take(const Read& read) {
    if (read.path != wanted_) return;
    const audio::tags::TrackDetails& details = read.details;
    QStringList artists;
    for (const std::string& artist : details.artists)
        artists.append(QString::fromStdString(artist));
    if (!artists.isEmpty()) known_[u"xesam:artist"_s] = artists;
    if (!details.album.empty()) known_[u"xesam:album"_s] = QString::fromStdString(details.album);
    // A name of its own each time: panels keep what they once showed under a name.
    const QString ending = details.artType == "image/png" ? u".png"_s : u".jpg"_s;
    QFile cover(covers_.filePath(QString::number(++coverCount_) + ending));
    const auto size = qint64(details.art.size());
    if (size > 0 && cover.open(QIODevice::WriteOnly) &&
        cover.write(details.art.data(), size) == size)
        known_[u"mpris:artUrl"_s] =
            QString::fromLatin1(QUrl::fromLocalFile(cover.fileName()).toEncoded());
    changed_();
}

}  // namespace app
