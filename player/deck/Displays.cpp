// SPDX-License-Identifier: GPL-3.0-or-later
#include "player/deck/Displays.h"

#include <algorithm>
#include <chrono>
#include <cmath>

#include <QPainter>

#include "audio/dsp/Peaks.h"
#include "player/engine/PlayerEngine.h"
#include "widgets/Dispatch.h"
#include "widgets/PictureBox.h"

namespace player {
namespace {

constexpr std::chrono::milliseconds frameTime(33);
constexpr float barFall = 0.045F;  // of the height, per frame
constexpr float topFall = 0.012F;

int markerX(double share, int width) {
    return static_cast<int>(std::lround(share * (width - 1)));
}

}  // namespace

Displays::Displays(PlayerEngine& engine, const DisplayColours& colours, QObject* parent)
    : QObject(parent), engine_(engine), colours_(colours) {
    frames_.setInterval(frameTime);
    connect(&frames_, &QTimer::timeout, this, widgets::guarded(this, &Displays::tick));
    connect(&engine_, &PlayerEngine::PlaybackStarted, this,
            widgets::guarded(this, &Displays::play));
    connect(&engine_, &PlayerEngine::NowPlayingChanged, this,
            widgets::guarded(this, &Displays::takePeaks));
    connect(&engine_, &PlayerEngine::PeaksChanged, this,
            widgets::guarded(this, &Displays::takePeaks));
    connect(&engine_, &PlayerEngine::PlaybackEnded, this,
            widgets::guarded(this, &Displays::refresh));
}

void Displays::createWaveform(int player, widgets::PictureBox* area) {
    player_ = static_cast<std::int16_t>(player);
    waveform_ = area;
    area->setPainter([this](QPainter& painter, const QSize& size) { drawWaveform(painter, size); });
}

void Displays::createSpectrum(int player, widgets::PictureBox* area) {
    player_ = static_cast<std::int16_t>(player);
    spectrum_ = area;
    area->setPainter([this](QPainter& painter, const QSize& size) { drawSpectrum(painter, size); });
}

void Displays::show(int player, bool shown) {
    if (player != player_) return;
    for (widgets::PictureBox* area : {waveform_, spectrum_}) {
        if (area) area->setVisible(shown);
    }
}

void Displays::play(int player) {
    if (player == player_) frames_.start();
}

void Displays::takePeaks(int player) {
    if (player != player_) return;
    peaks_ = engine_.Peaks(player_);
    heard_ = QImage();
    if (waveform_) waveform_->update();
}

void Displays::refresh() {
    if (!frames_.isActive()) tick();
}

void Displays::tick() {
    if (waveform_) moveMarker();
    if (spectrum_) moveBars();
    const bool still = std::ranges::all_of(tops_, [](float top) { return top <= 0; });
    if (still && engine_.GetPlayerStatus(player_) != StatusPlaying) frames_.stop();
}

// Only the columns between the old and the new place of the marker change.
void Displays::moveMarker() {
    const double share = playedShare();
    if ((share < 0) != (share_ < 0)) {
        share_ = share;
        peaks_ = engine_.Peaks(player_);
        heard_ = QImage();
        return waveform_->update();
    }
    const int from = markerX(share_, waveform_->width());
    const int to = markerX(share, waveform_->width());
    share_ = share;
    if (from == to) return;
    waveform_->update(std::min(from, to) - 2, 0, std::abs(to - from) + 5, waveform_->height());
}

void Displays::moveBars() {
    std::array<float, bandCount> bands{};
    engine_.Spectrum(player_, bands);
    bool moved = false;
    for (std::size_t i = 0; i < bands.size(); ++i) {
        const float bar = std::max({bands[i], bars_[i] - barFall, 0.0F});
        const float top = std::max({bar, tops_[i] - topFall, 0.0F});
        moved = moved || bar != bars_[i] || top != tops_[i];
        bars_[i] = bar;
        tops_[i] = top;
    }
    if (moved) spectrum_->update();
}

double Displays::playedShare() const {
    const std::int64_t position = engine_.PositionMs(player_);
    const std::int64_t length = engine_.LengthMs(player_);
    if (position < 0) return -1;
    return length > 0 ? std::clamp(double(position) / double(length), 0.0, 1.0) : 0;
}

void Displays::renderPeaks(const QSize& size, double ratio) {
    const QSize pixels = size * ratio;
    if (heard_.size() == pixels) return;
    heard_ = peaksImage(pixels, colours_.heard);
    ahead_ = peaksImage(pixels, colours_.ahead);
    heard_.setDevicePixelRatio(ratio);
    ahead_.setDevicePixelRatio(ratio);
}

QImage Displays::peaksImage(const QSize& pixels, const QColor& colour) const {
    QImage image(pixels, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    if (!peaks_ || peaks_->columns.empty()) return image;
    QPainter painter(&image);
    painter.setPen(colour);
    const auto& columns = peaks_->columns;
    const auto count = columns.size();
    const auto width = static_cast<std::size_t>(pixels.width());
    const double middle = (pixels.height() - 1) / 2.0;
    for (std::size_t x = 0; x < width; ++x) {
        const std::size_t first = x * count / width;
        const std::size_t last = std::max(first + 1, (x + 1) * count / width);
        float low = 0;
        float high = 0;
        for (std::size_t i = first; i < last; ++i) {
            low = std::min(low, columns[i].low);
            high = std::max(high, columns[i].high);
        }
        const auto y = [middle](float sample) {
            return static_cast<int>(std::lround(middle - std::clamp(sample, -1.0F, 1.0F) * middle));
        };
        painter.drawLine(static_cast<int>(x), y(high), static_cast<int>(x), y(low));
    }
    return image;
}

void Displays::drawWaveform(QPainter& painter, const QSize& size) {
    const QSize inside = size - QSize(2, 2);
    if (inside.isEmpty()) return;
    painter.setPen(colours_.ahead);
    painter.drawLine(1, size.height() / 2, size.width() - 2, size.height() / 2);
    if (share_ < 0) return;
    renderPeaks(inside, waveform_->devicePixelRatioF());
    const int marker = markerX(share_, size.width());
    painter.save();
    painter.setClipRect(QRect(0, 0, marker, size.height()), Qt::IntersectClip);
    painter.drawImage(QPoint(1, 1), heard_);
    painter.restore();
    painter.save();
    painter.setClipRect(QRect(marker, 0, size.width() - marker, size.height()), Qt::IntersectClip);
    painter.drawImage(QPoint(1, 1), ahead_);
    painter.restore();
    painter.setPen(colours_.marker);
    painter.drawLine(marker, 1, marker, size.height() - 2);
}

void Displays::drawSpectrum(QPainter& painter, const QSize& size) const {
    const QRectF area = QRectF(QPointF(0, 0), size).adjusted(4, 4, -4, -3);
    const double step = area.width() / bandCount;
    for (std::size_t i = 0; i < bandCount; ++i) {
        const double x = area.left() + step * double(i);
        const double bar = area.height() * bars_[i];
        const double top = area.height() * tops_[i];
        painter.fillRect(
            QRectF(x, area.bottom() - std::max(bar, 1.0), step - 1.5, std::max(bar, 1.0)),
            bar > 1 ? colours_.heard : colours_.ahead);
        if (top > 1) {
            painter.fillRect(QRectF(x, area.bottom() - top - 1, step - 1.5, 1.5), colours_.marker);
        }
    }
}

}  // namespace player
