// SPDX-License-Identifier: GPL-3.0-or-later
#include "wizard/form/TimelineView.h"

#include <algorithm>
#include <array>
#include <cmath>

#include <QHelpEvent>
#include <QPainter>
#include <QToolTip>

#include "widgets/PlainToolTip.h"

using namespace Qt::Literals::StringLiterals;

namespace wizard {

namespace {

constexpr int RulerHeight = 18;
constexpr int NameHeight = 16;
constexpr QColor Shared(255, 190, 92, 70);  // the overlaps
constexpr QColor DiscEnd(255, 123, 114);

// The smallest step of whole minutes whose marks stay this far apart.
double rulerStep(double pixelsPerSecond) {
    constexpr double Apart = 56;
    for (const double minutes : {1.0, 2.0, 5.0, 10.0, 20.0, 30.0, 60.0})
        if (minutes * 60 * pixelsPerSecond >= Apart) return minutes * 60;
    return 3600 * std::ceil(Apart / (3600 * pixelsPerSecond));
}

}  // namespace

TimelineView::TimelineView(QWidget* parent) : QWidget(parent) {
    setObjectName(u"MixTimeline"_s);
    setAccessibleName(u"Timeline of the mix to come"_s);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
}

QSize TimelineView::sizeHint() const {
    return {600, 150};
}

QSize TimelineView::minimumSizeHint() const {
    return {200, 110};
}

void TimelineView::setMix(const Timeline& mix, std::vector<Track> tracks, const FadeShape& fades,
                          bool normalize) {
    mix_ = mix;
    tracks_ = std::move(tracks);
    fades_ = fades;
    normalize_ = normalize;
    update();
}

void TimelineView::setCurrent(int track) {
    current_ = track;
    update();
}

double TimelineView::x(double seconds) const {
    return mix_.seconds > 0 ? seconds / mix_.seconds * width() : 0;
}

QRectF TimelineView::lane(std::size_t track) const {
    const PlacedTrack& placed = mix_.tracks[track];
    const double height = (this->height() - RulerHeight) / 2.0;
    return {x(placed.start), track % 2 ? height : 0.0, x(placed.seconds), height};
}

void TimelineView::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.fillRect(rect(), palette().color(QPalette::Base));
    if (mix_.seconds <= 0) {
        painter.setPen(palette().color(QPalette::PlaceholderText));
        painter.drawText(rect(), Qt::AlignCenter, u"The tracks of the mix appear here"_s);
        return;
    }
    for (std::size_t i = 0; i < tracks_.size(); ++i) paintTrack(painter, i);
    paintOverlaps(painter);
    paintRuler(painter);
}

void TimelineView::paintTrack(QPainter& painter, std::size_t index) const {
    const QRectF box = lane(index).adjusted(0, 1, 0, -1);
    QColor plate = palette().color(QPalette::Button);
    if (static_cast<int>(index) == current_)
        plate = palette().color(QPalette::Highlight).darker(230);
    painter.fillRect(box, plate);
    paintWave(painter, index, box.adjusted(0, NameHeight, 0, -1));
    painter.setPen(palette().color(QPalette::Text));
    const QString name = u"%1  %2"_s.arg(index + 1).arg(tracks_[index].name);
    const QRectF text = box.adjusted(5, 0, -5, 0);
    painter.drawText(text, Qt::AlignLeft | Qt::AlignTop,
                     painter.fontMetrics().elidedText(name, Qt::ElideRight, int(text.width())));
}

void TimelineView::paintWave(QPainter& painter, std::size_t index, const QRectF& box) const {
    const TrackScan& scan = tracks_[index].scan;
    if (scan.peaks.empty() || box.width() < 1) return;
    const double scale = normalize_ && scan.peak > 0 ? 1 / double(scan.peak) : 1;
    const double perPixel = static_cast<double>(scan.peaks.size()) / box.width();
    painter.setPen(palette().color(QPalette::Highlight));
    for (int column = 0; column < int(box.width()); ++column) {
        const auto first = scan.peaks.begin() + qsizetype(column * perPixel);
        const auto left = scan.peaks.end() - first;
        const double peak =
            *std::max_element(first, first + std::min(left, qsizetype(perPixel) + 1));
        const double at = scan.seconds * column / box.width();
        const double half =
            std::min(1.0, peak * scale * fades_.gain(at, scan.seconds)) * box.height() / 2;
        const double x = box.left() + column;
        painter.drawLine(QPointF(x, box.center().y() - half), QPointF(x, box.center().y() + half));
    }
}

void TimelineView::paintOverlaps(QPainter& painter) const {
    for (const PlacedTrack& track : mix_.tracks) {
        if (track.overlap <= 0) continue;
        const QRectF shared(x(track.start), 0, x(track.overlap), height() - RulerHeight);
        painter.fillRect(shared, Shared);
        painter.setPen(Shared.lighter());
        painter.drawLine(shared.topLeft(), shared.bottomLeft());
        painter.drawLine(shared.topRight(), shared.bottomRight());
    }
}

void TimelineView::paintRuler(QPainter& painter) const {
    painter.setPen(palette().color(QPalette::PlaceholderText));
    const double step = rulerStep(width() / mix_.seconds);
    const int top = height() - RulerHeight;
    for (double at = 0; at < mix_.seconds; at += step) {
        painter.drawLine(QPointF(x(at), top), QPointF(x(at), top + 4));
        painter.drawText(QPointF(x(at) + 3, height() - 4), clock(at));
    }
    if (mix_.seconds <= DiscSeconds) return;
    painter.setPen(QPen(DiscEnd, 2));
    painter.drawLine(QPointF(x(DiscSeconds), 0), QPointF(x(DiscSeconds), height()));
}

int TimelineView::trackAt(const QPoint& point) const {
    for (std::size_t i = 0; i < mix_.tracks.size(); ++i)
        if (lane(i).contains(point)) return static_cast<int>(i);
    return -1;
}

bool TimelineView::event(QEvent* event) {
    if (event->type() != QEvent::ToolTip) return QWidget::event(event);
    const auto* help = static_cast<QHelpEvent*>(event);
    const int track = trackAt(help->pos());
    if (track < 0)
        QToolTip::hideText();
    else {
        const PlacedTrack& placed = mix_.tracks[std::size_t(track)];
        QToolTip::showText(help->globalPos(),
                           widgets::plainToolTip(u"%1\nheard from %2 to %3"_s.arg(
                               tracks_[std::size_t(track)].name, clock(placed.start),
                               clock(placed.start + placed.seconds))));
    }
    return true;
}

}  // namespace wizard
