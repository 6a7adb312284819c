// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <atomic>

#include <QHash>
#include <QList>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QThreadPool>

namespace wizard {

/// What a preview knows of one file.
struct TrackScan {
    double seconds = 0;  ///< near at first, exact once the peaks are there; 0 = unknown
    QList<float> peaks;  ///< highest absolute sample in each of many equal spans
    float peak = 0;      ///< the highest of them
};

/// Reads lengths and peaks of files on a worker: first all lengths, then the peaks one file after
/// the other. Keeps what it has read for as long as it lives. A file that cannot be read stays at
/// what is known of it. Lives on the window thread; its worker reaches it by queued calls only.
class TrackScanner : public QObject {
    Q_OBJECT
  public:
    explicit TrackScanner(QObject* parent = nullptr);
    ~TrackScanner() override;

    /// Has these files read that have not been asked for yet.
    void want(const QStringList& paths);

    /// What is known by now.
    TrackScan known(const QString& path) const { return scans_.value(path); }

    /// Ends the reading; nothing is read afterwards.
    void stop();

  Q_SIGNALS:
    void changed();

  private:
    void readLength(const QString& path);
    void readPeaks(const QString& path);
    void keep(const QString& path, const TrackScan& scan);

    QHash<QString, TrackScan> scans_;    // window thread
    std::atomic<bool> stopped_ = false;  // any thread
    QThreadPool pool_;
};

}  // namespace wizard
