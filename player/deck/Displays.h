// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <memory>

#include <QColor>
#include <QImage>
#include <QObject>
#include <QTimer>

class QPainter;
namespace audio::dsp {
struct Peaks;
}
namespace widgets {
class PictureBox;
}

namespace player {

class PlayerEngine;

/// What the displays are drawn with.
struct DisplayColours {
    QColor heard = QColor(0x4f, 0xc0, 0x8d);   ///< green: the part that was heard, and the bars
    QColor ahead = QColor(0x2c, 0x5a, 0x47);   ///< the part to come
    QColor marker = QColor(0xff, 0x5a, 0x4d);  ///< red: the play position, and the bars' tops
};

/// The two display areas of one player: the peaks of the whole track with the play position, and
/// the spectrum of what is heard. Looks thirty times a second while the player plays, repaints only
/// what moved, and does nothing while the player stands still. Window thread only.
class Displays : public QObject {
    Q_OBJECT
  public:
    /// The engine must outlive this object.
    explicit Displays(PlayerEngine& engine, const DisplayColours& colours = {},
                      QObject* parent = nullptr);

    /// Draws into an area, which must outlive this object, for a player.
    void createWaveform(int player, widgets::PictureBox* area);
    void createSpectrum(int player, widgets::PictureBox* area);
    /// Shows or hides both areas.
    void show(int player, bool shown);

    /// Something may have moved while nothing plays (a seek, Stop): looks once.
    void refresh();

  private:
    static constexpr int bandCount = 32;

    void play(int player);
    void takePeaks(int player);
    void tick();
    void moveMarker();
    void moveBars();
    double playedShare() const;
    void renderPeaks(const QSize& size, double ratio);
    QImage peaksImage(const QSize& pixels, const QColor& colour) const;
    void drawWaveform(QPainter& painter, const QSize& size);
    void drawSpectrum(QPainter& painter, const QSize& size) const;

    PlayerEngine& engine_;
    DisplayColours colours_;
    std::int16_t player_ = 0;
    widgets::PictureBox* waveform_ = nullptr;
    widgets::PictureBox* spectrum_ = nullptr;
    QTimer frames_;
    std::shared_ptr<const audio::dsp::Peaks> peaks_;
    QImage heard_;  // the peaks in either colour, rendered once per size and set of peaks
    QImage ahead_;
    double share_ = -1;                    // played part of the track; negative = nothing loaded
    std::array<float, bandCount> bars_{};  // as shown: they fall slower than the sound
    std::array<float, bandCount> tops_{};
};

}  // namespace player
