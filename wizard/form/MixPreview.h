// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QMap>
#include <QStringList>
#include <QTimer>
#include <QWidget>

#include "wizard/Timeline.h"
#include "wizard/form/TrackScanner.h"

class QLabel;

namespace wizard {

class TimelineView;

/// The mix to come at a glance: the tracks as waveforms in the places where they will be heard,
/// overlaps shaded, and the total against what a disc holds. It shows what the options promise and
/// decides nothing. Window thread.
class MixPreview : public QWidget {
    Q_OBJECT
  public:
    /// The options that shape the mix.
    struct Shape {
        double overlap = 0;  ///< seconds; 0 = no cross fade
        FadeShape fades;
        bool normalize = false;
        bool trim = false;
    };

    explicit MixPreview(QWidget* parent = nullptr);

    void show(const QStringList& paths, const Shape& shape);
    /// Marks the track in hand; -1 = none.
    void setCurrent(int track);
    /// What went wrong with the track in hand, to be read where the tracks are; the first sentence
    /// of each track is kept.
    void addFailure(const QString& sentence);
    void clearFailures();
    /// Ends the reading of files.
    void stop();

    using QWidget::show;

  private:
    void refreshSoon();
    void refresh();
    QString totalText(double seconds) const;
    QString noteText() const;

    QStringList paths_;
    Shape shape_;
    int current_ = -1;
    QMap<int, QString> failures_;  // by track
    TrackScanner scanner_;
    QTimer soon_;  // so that many changes in a row are drawn once
    TimelineView* view_;
    QLabel* total_;
    QLabel* note_;
};

}  // namespace wizard
