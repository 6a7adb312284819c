// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <vector>

#include <QString>
#include <QWidget>

#include "wizard/Timeline.h"
#include "wizard/form/TrackScanner.h"

namespace wizard {

/// Draws a mix: the tracks as waveforms, in two lanes by turns so that overlaps lie above each
/// other, a ruler in minutes, and a line where a disc is full. Window thread.
class TimelineView : public QWidget {
    Q_OBJECT
  public:
    struct Track {
        QString name;
        TrackScan scan;
    };

    explicit TimelineView(QWidget* parent = nullptr);

    void setMix(const Timeline& mix, std::vector<Track> tracks, const FadeShape& fades,
                bool normalize);
    void setCurrent(int track);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

  protected:
    void paintEvent(QPaintEvent* event) override;
    bool event(QEvent* event) override;

  private:
    double x(double seconds) const;
    QRectF lane(std::size_t track) const;
    void paintTrack(QPainter& painter, std::size_t index) const;
    void paintWave(QPainter& painter, std::size_t index, const QRectF& box) const;
    void paintOverlaps(QPainter& painter) const;
    void paintRuler(QPainter& painter) const;
    int trackAt(const QPoint& point) const;

    Timeline mix_;
    std::vector<Track> tracks_;
    FadeShape fades_;
    bool normalize_ = false;
    int current_ = -1;
};

}  // namespace wizard
