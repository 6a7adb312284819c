// SPDX-License-Identifier: GPL-3.0-or-later
// The deck on the real window, playing real files into a silent device.
#include <algorithm>
#include <fstream>

#include <QMouseEvent>
#include <QScreen>
#include <QStyleOptionSlider>

#include "tests/support/MainWindow.h"
#include "widgets/SkinSlider.h"

using namespace Qt::Literals::StringLiterals;
using namespace support;

namespace {

struct DeckTest : MainWindow {
    void SetUp() override {
        MainWindow::SetUp();
        open({song(u"a.mp3"_s, "music.mp3"), song(u"b.ogg"_s, "music.ogg"),
              song(u"c.wav"_s, "music.wav")});
        ASSERT_EQ(list().rowCount(), 3);
    }

    void TearDown() override {
        press("CommandStop1");
        MainWindow::TearDown();
    }

    bool statusBecomes(int status) {
        return waitFor([=, this] { return engine().GetPlayerStatus(0) == status; });
    }
    /// Percent, whatever unit the deck left behind.
    int position() {
        const std::int16_t unit = engine().PositionUnit();
        engine().SetPositionUnit(player::UnitPercent);
        const int percent = engine().GetPosition(0);
        engine().SetPositionUnit(unit);
        return percent;
    }
    bool heardRow(int row) {
        return waitFor([=, this] { return engine().PlaylistNowPlaying(0) == row - 1; });
    }
    /// It is on the deck until then, though it is no entry.
    bool soundOfTheStartIsOver() {
        return waitFor([this] {
            return engine().GetPosition(0) < 0 && text("Label6").isEmpty() && slider().value() == 0;
        });
    }
    void doubleClick(int row) {
        const QPoint place = list().visualRect(list().model()->index(row - 1, 2)).center();
        QTest::mouseClick(list().viewport(), Qt::LeftButton, Qt::NoModifier, place);
        QTest::mouseDClick(list().viewport(), Qt::LeftButton, Qt::NoModifier, place);
    }
    /// Seventy seconds.
    QString longTone() {
        const QString path = folder.file(u"long.wav"_s);
        const Outcome made = run(u"ffmpeg"_s, {u"-v"_s, u"error"_s, u"-f"_s, u"lavfi"_s, u"-i"_s,
                                               u"sine=440:d=70"_s, path});
        EXPECT_EQ(made.exitCode, 0) << made.err.toStdString();
        return path;
    }
    widgets::SkinSlider& slider() { return find<widgets::SkinSlider>(*window, "Slider1"); }
};

}  // namespace

TEST_F(DeckTest, PlayPlaysTheSelectedEntryAndNamesIt) {
    list().selectRow(2);
    press("CommandPlay1");
    EXPECT_EQ(text("Label1"), list().subItem(2, 2));
    EXPECT_FALSE(list().multiSelect());
    EXPECT_TRUE(statusBecomes(player::StatusPlaying));
    EXPECT_TRUE(heardRow(2));
}

TEST_F(DeckTest, DoubleClickDoesWhatPlayDoes) {
    doubleClick(3);
    EXPECT_TRUE(heardRow(3));
    EXPECT_EQ(text("Label1"), list().subItem(3, 2));
    EXPECT_FALSE(button("CommandLoad1").isEnabled());
}

TEST_F(DeckTest, PauseTwiceGivesResumeAndThenPauseAgain) {
    press("CommandPlay1");
    ASSERT_TRUE(heardRow(1));
    press("CommandPause1");
    EXPECT_EQ(button("CommandPause1").text(), u"Resume"_s);
    EXPECT_TRUE(statusBecomes(player::StatusPaused));
    EXPECT_FALSE(button("CommandLoad1").isEnabled()) << "paused is not idle";
    press("CommandPause1");
    EXPECT_TRUE(waitFor([this] { return button("CommandPause1").text() == u"Pause"; }));
    EXPECT_TRUE(statusBecomes(player::StatusPlaying));
}

TEST_F(DeckTest, PauseWhileStoppedDoesNothing) {
    press("CommandStop1");
    ASSERT_TRUE(statusBecomes(player::StatusStopped));
    press("CommandPause1");
    EXPECT_EQ(button("CommandPause1").text(), u"Pause"_s);
    EXPECT_EQ(engine().GetPlayerStatus(0), player::StatusStopped);
}

TEST_F(DeckTest, StopReleasesTheLockAndEmptiesTheLine) {
    press("CommandPlay1");
    ASSERT_TRUE(heardRow(1));
    press("CommandStop1");
    EXPECT_EQ(text("Label1"), QString());
    EXPECT_TRUE(list().multiSelect());
    EXPECT_TRUE(button("CommandLoad1").isEnabled());
    EXPECT_TRUE(statusBecomes(player::StatusStopped));
}

TEST_F(DeckTest, PlayWithoutRowsStillLocks) {
    press("Button2");
    press("CommandPlay1");
    EXPECT_FALSE(button("Button2").isEnabled());
    EXPECT_FALSE(button("CommandAddSong1").isEnabled());
    press("CommandPause1");
    press("CommandNext1");
    EXPECT_FALSE(button("Button2").isEnabled()) << "only Stop releases the lock";
    press("CommandStop1");
    EXPECT_TRUE(button("Button2").isEnabled());
}

TEST_F(DeckTest, NextAndPreviousMoveTheHighlight) {
    press("CommandPlay1");
    ASSERT_TRUE(heardRow(1));
    press("CommandNext1");
    EXPECT_TRUE(waitFor([this] { return list().currentRow() == 2; }));
    EXPECT_TRUE(waitFor([this] { return text("Label1") == list().subItem(2, 2); }));
    EXPECT_TRUE(list().hasFocus());
    press("CommandPrev1");
    EXPECT_TRUE(waitFor([this] { return list().currentRow() == 1; }));
}

TEST_F(DeckTest, TheEndOfASongLeadsToTheNextAndTheLockStays) {
    press("CommandPlay1");
    ASSERT_TRUE(heardRow(1));
    slider().setValue(98);
    EXPECT_TRUE(waitFor([this] { return list().currentRow() == 2; }));
    EXPECT_TRUE(waitFor([this] { return text("Label1") == list().subItem(2, 2); }));
    EXPECT_FALSE(button("CommandLoad1").isEnabled());
}

TEST_F(DeckTest, TheEndOfTheListShowsNothingPlayingAndTheLockStays) {
    list().selectRow(3);
    press("CommandPlay1");
    ASSERT_TRUE(heardRow(3));
    slider().setValue(98);
    EXPECT_TRUE(statusBecomes(player::StatusStopped));
    EXPECT_TRUE(waitFor([this] { return text("LabelPosition1") == u"0%"; }));
    EXPECT_TRUE(waitFor([this] { return text("Label1").isEmpty(); }));
    EXPECT_FALSE(button("CommandLoad1").isEnabled());
}

TEST_F(DeckTest, TheSliderSeeks) {
    press("CommandPlay1");
    ASSERT_TRUE(heardRow(1));
    press("CommandPause1");
    ASSERT_TRUE(statusBecomes(player::StatusPaused));
    slider().setValue(50);
    EXPECT_TRUE(waitFor([this] { return position() == 50; }));
    EXPECT_TRUE(waitFor([this] { return text("LabelPosition1") == u"50%"; }));
    EXPECT_TRUE(waitFor([this] { return text("Label6").startsWith(u"0:10"); })) << "of 20 seconds";
}

// Both events are there before the first one is handled, as with a quick click on a busy machine.
TEST_F(DeckTest, APressAndItsReleaseInOneBatchLeaveTheSliderFree) {
    press("CommandPlay1");
    ASSERT_TRUE(heardRow(1));
    const QPointF place(slider().rect().center());
    const QPointF onScreen = slider().mapToGlobal(place);
    for (const auto type : {QEvent::MouseButtonPress, QEvent::MouseButtonRelease}) {
        const auto held = type == QEvent::MouseButtonPress ? Qt::LeftButton : Qt::NoButton;
        QCoreApplication::postEvent(
            &slider(),
            new QMouseEvent(type, place, onScreen, Qt::LeftButton, held, Qt::NoModifier));
    }
    settle();
    EXPECT_FALSE(slider().isSliderDown());
    EXPECT_TRUE(waitFor([this] { return position() >= 49; }));
}

TEST_F(DeckTest, ThePositionSliderLiesUnderTheWaveformSecondBySecond) {
    QWidget& waveform = find<QWidget>(*window, "PictureWaveform1");
    press("CommandPlay1");
    ASSERT_TRUE(heardRow(1));
    press("CommandPause1");
    for (const int percent : {0, 25, 50, 100}) {
        slider().setShownValue(percent);
        QStyleOptionSlider option;
        option.initFrom(&slider());
        option.orientation = Qt::Horizontal;
        option.maximum = slider().maximum();
        option.sliderPosition = option.sliderValue = percent;
        const QRect handle = slider().style()->subControlRect(QStyle::CC_Slider, &option,
                                                              QStyle::SC_SliderHandle, &slider());
        const int knob = slider().mapTo(window.get(), handle.center()).x();
        const int left = waveform.mapTo(window.get(), QPoint(0, 0)).x();
        EXPECT_NEAR(knob, left + percent * (waveform.width() - 1) / 100.0, 1.5) << percent;
    }
    EXPECT_GT(slider().mapTo(window.get(), QPoint(0, 0)).y(),
              waveform.mapTo(window.get(), QPoint(0, waveform.height() - 1)).y());
}

TEST_F(DeckTest, PauseAndResumeMoveNothing) {
    const auto places = [this] {
        QList<QRect> rects;
        for (const char* name : {"CommandPause1", "CommandStop1", "CommandNext1", "SliderVolume1"})
            rects.append(find<QWidget>(*window, name).geometry());
        return rects;
    };
    const auto before = places();
    press("CommandPlay1");
    ASSERT_TRUE(heardRow(1));
    press("CommandPause1");
    ASSERT_EQ(button("CommandPause1").text(), u"Resume"_s);
    settle();
    EXPECT_EQ(places(), before);
}

TEST_F(DeckTest, TheVolumeSliderIsUsableInTheSmallestWindow) {
    window->resize(window->minimumSizeHint());
    settle();
    EXPECT_GE(find<QWidget>(*window, "SliderVolume1").width(), 100);
}

TEST_F(DeckTest, AClickOnATransportButtonLeavesSpaceToPlayAndPause) {
    list().setFocus();
    press("CommandPlay1");
    ASSERT_TRUE(heardRow(1));
    press("CommandForward1");
    QTest::keyClick(window->focusWidget(), Qt::Key_Space);
    EXPECT_TRUE(statusBecomes(player::StatusPaused));
}

TEST_F(DeckTest, StopGivesPauseItsCaptionBack) {
    press("CommandPlay1");
    ASSERT_TRUE(heardRow(1));
    press("CommandPause1");
    ASSERT_EQ(button("CommandPause1").text(), u"Resume"_s);
    press("CommandStop1");
    EXPECT_EQ(button("CommandPause1").text(), u"Pause"_s);
}

TEST_F(DeckTest, TheRowThatPlaysBearsASignOfItsOwn) {
    const auto shown = [this](int row, int role) {
        return list().model()->data(list().model()->index(row - 1, 0), role);
    };
    list().selectRow(2);
    press("CommandPlay1");
    ASSERT_TRUE(waitFor([this] { return list().playingRow() == 2; }));
    EXPECT_EQ(shown(2, Qt::DisplayRole).toString(), u"▶ "_s + list().rowText(2));
    EXPECT_TRUE(shown(2, Qt::FontRole).value<QFont>().bold());
    EXPECT_EQ(shown(1, Qt::DisplayRole).toString(), list().rowText(1));
    list().selectRow(1);
    EXPECT_EQ(list().playingRow(), 2) << "apart from the selection";
    press("CommandNext1");
    EXPECT_TRUE(waitFor([this] { return list().playingRow() == 3; }));
    press("CommandStop1");
    EXPECT_EQ(list().playingRow(), 0);
}

TEST_F(DeckTest, AfterStopAndClearTheDeckShowsNothingThatIsGone) {
    QWidget& waveform = find<QWidget>(*window, "PictureWaveform1");
    ASSERT_TRUE(soundOfTheStartIsOver());
    const QImage idle = waveform.grab().toImage();
    press("CommandPlay1");
    ASSERT_TRUE(heardRow(1));
    ASSERT_TRUE(waitFor([&] { return waveform.grab().toImage() != idle; }));
    press("CommandStop1");
    press("Button2");
    EXPECT_TRUE(waitFor([this] { return text("Label6").isEmpty() && text("Label1").isEmpty(); }));
    EXPECT_TRUE(waitFor([&] { return waveform.grab().toImage() == idle; }));
}

// Previous and Next choose the entry that Play is to begin with; nothing plays.
TEST_F(DeckTest, WhileIdleTheLineOfTheTitleStaysEmpty) {
    press("CommandPlay1");
    ASSERT_TRUE(heardRow(1));
    press("CommandStop1");
    press("CommandNext1");
    ASSERT_TRUE(waitFor([this] { return list().currentRow() == 2; }));
    EXPECT_EQ(text("Label1"), QString());
}

TEST_F(DeckTest, AnEffectShowsItsNewLengthOnTheDeck) {
    press("CommandPlay1");
    ASSERT_TRUE(heardRow(1));
    press("CommandStop1");
    const QString path = engine().PlaylistGetItemInfo(0, 0, player::ItemInfoPath);
    EXPECT_NEAR(double(engine().LengthMs(0)), 20000, 100);
    answerMessageBox(QMessageBox::Ok);
    chooseFromMenu(*window, "Button1", "mnuSilence2Frt");
    ASSERT_TRUE(waitFor([] { return openWindow("frmEffects") != nullptr; }));
    auto& dialog = *openWindow("frmEffects");
    find<QSlider>(dialog, "Slider1").setValue(find<QSlider>(dialog, "Slider1").maximum());
    answerMessageBox(QMessageBox::Ok);
    click(dialog, "Command1");
    ASSERT_TRUE(allAnswered());
    EXPECT_TRUE(waitFor([this] { return engine().LengthMs(0) > 20500; })) << engine().LengthMs(0);
    EXPECT_NE(list().subItem(1, 1), u"0:20"_s);
}

TEST_F(DeckTest, AClickOnTheSliderSeeksThere) {
    press("CommandPlay1");
    ASSERT_TRUE(heardRow(1));
    press("CommandPause1");
    ASSERT_TRUE(statusBecomes(player::StatusPaused));
    click(slider());
    EXPECT_NEAR(slider().value(), 50, 1);
    EXPECT_TRUE(waitFor([this] { return std::abs(position() - 50) <= 1; }));
}

TEST_F(DeckTest, TheTimerMovesTheSliderWithoutSeeking) {
    press("CommandPlay1");
    ASSERT_TRUE(heardRow(1));
    int changes = 0;
    QObject::connect(&slider(), &widgets::SkinSlider::Changed, window.get(),
                     [&changes] { ++changes; });
    EXPECT_TRUE(waitFor([this] { return slider().value() >= 5; }));
    EXPECT_EQ(changes, 0);
    EXPECT_EQ(text("LabelPosition1"), QString::number(slider().value()) + u'%');
    EXPECT_TRUE(waitFor([this] { return engine().PositionUnit() == player::UnitMilliseconds; }))
        << "the timer leaves milliseconds behind";
}

TEST_F(DeckTest, PointingAtTheWaveformSeeks) {
    press("CommandPlay1");
    ASSERT_TRUE(heardRow(1));
    press("CommandPause1");
    ASSERT_TRUE(statusBecomes(player::StatusPaused));
    click(*window, "PictureWaveform1");
    EXPECT_TRUE(waitFor([this] { return std::abs(position() - 50) <= 1; }));
}

TEST_F(DeckTest, ForwardAndRewindStepTenSeconds) {
    press("CommandPlay1");
    ASSERT_TRUE(heardRow(1));
    press("CommandPause1");
    ASSERT_TRUE(statusBecomes(player::StatusPaused));
    slider().setValue(25);
    ASSERT_TRUE(waitFor([this] { return position() == 25; }));
    press("CommandForward1");
    EXPECT_TRUE(waitFor([this] { return position() == 75; })) << "of 20 seconds";
    press("CommandRewind1");
    EXPECT_TRUE(waitFor([this] { return position() == 25; }));
}

TEST_F(DeckTest, AnEntryThatCannotBePlayedIsPassedOver) {
    press("Button2");
    const QString path = folder.file(u"list.m3u"_s);
    std::ofstream(platform::toPath(path)) << "gone.mp3\ngone too.mp3\n"
                                          << song(u"a2.mp3"_s, "music.mp3").toStdString() << "\n";
    open({path});
    list().selectRow(1);
    press("CommandPlay1");
    EXPECT_TRUE(heardRow(3));
    EXPECT_TRUE(waitFor([this] { return list().currentRow() == 3; }));
}

TEST_F(DeckTest, SpacePausesAndResumes) {
    list().setFocus();
    QTest::keyClick(&list(), Qt::Key_Space);
    ASSERT_TRUE(heardRow(1));
    QTest::keyClick(&list(), Qt::Key_Space);
    EXPECT_TRUE(statusBecomes(player::StatusPaused));
    QTest::keyClick(&list(), Qt::Key_Space);
    EXPECT_TRUE(statusBecomes(player::StatusPlaying));
}

TEST_F(DeckTest, TheVolumeSliderReachesTheEngine) {
    auto& volume = find<widgets::SkinSlider>(*window, "SliderVolume1");
    press("CommandPlay1");
    ASSERT_TRUE(heardRow(1));
    std::array<float, 32> bands{};
    const auto loudest = [&] {
        engine().Spectrum(0, bands);
        return *std::ranges::max_element(bands);
    };
    EXPECT_TRUE(waitFor([&] { return loudest() > 0.2F; }));
    volume.setValue(0);
    EXPECT_TRUE(waitFor([&] { return loudest() < 0.05F; }));
}

TEST_F(DeckTest, TheDisplaysDrawWhilePlaying) {
    QWidget& waveform = find<QWidget>(*window, "PictureWaveform1");
    QWidget& spectrum = find<QWidget>(*window, "PictureWaveform2");
    const QImage idleWave = waveform.grab().toImage();
    const QImage idleSpectrum = spectrum.grab().toImage();
    press("CommandPlay1");
    ASSERT_TRUE(heardRow(1));
    EXPECT_TRUE(waitFor([&] { return waveform.grab().toImage() != idleWave; }));
    EXPECT_TRUE(waitFor([&] { return spectrum.grab().toImage() != idleSpectrum; }));
    slider().setValue(50);
    const QColor red = app::skinColour(u"alarm"_s);
    EXPECT_TRUE(waitFor([&] {
        const QImage image = waveform.grab().toImage();
        for (int x = image.width() * 45 / 100; x < image.width() * 55 / 100; ++x) {
            if (image.pixelColor(x, 3) == red) return true;
        }
        return false;
    })) << "the play position in the middle";
}

// What is on the screen, not a fresh picture of the control: only what moved is painted anew.
TEST_F(DeckTest, ThePlayPositionMovesOnTheScreen) {
    QWidget& waveform = find<QWidget>(*window, "PictureWaveform1");
    const QColor red = app::skinColour(u"alarm"_s);
    const auto markerOnScreen = [&] {
        const QPoint corner = waveform.mapTo(window.get(), QPoint(0, 0));
        const QImage image = window->screen()
                                 ->grabWindow(window->winId(), corner.x(), corner.y(),
                                              waveform.width(), waveform.height())
                                 .toImage();
        for (int x = 0; x < image.width(); ++x) {
            if (image.pixelColor(x, 3) == red) return x;
        }
        return -1;
    };
    ASSERT_TRUE(soundOfTheStartIsOver());
    press("CommandPlay1");
    ASSERT_TRUE(heardRow(1));
    EXPECT_TRUE(waitFor([&] { return position() > 2 && markerOnScreen() >= 40; }))
        << markerOnScreen();
    EXPECT_NEAR(markerOnScreen(), position() * waveform.width() / 100, 25);
}

TEST_F(DeckTest, FadeAndOverlayPlayBothPlayersAndStopEndsBoth) {
    press("Button2");
    open({longTone(), song(u"next.mp3"_s, "music.mp3")});
    chooseFromMenu(*window, "Button1", "mnuTest");
    EXPECT_TRUE(heardRow(1));
    EXPECT_TRUE(waitFor([this] { return engine().GetPlayerStatus(1) == player::StatusPlaying; }));
    EXPECT_FALSE(button("CommandLoad1").isEnabled());
    EXPECT_TRUE(waitFor([this] { return position() >= 42; })) << "from 30 of 70 seconds on";
    EXPECT_TRUE(waitFor([this] { return text("LabelPosition2").endsWith(u'%'); }));
    press("CommandStop1");
    EXPECT_TRUE(statusBecomes(player::StatusStopped));
    EXPECT_TRUE(waitFor([this] { return engine().GetPlayerStatus(1) == player::StatusStopped; }));
}

TEST_F(DeckTest, FadeAndOverlayOfAnEmptyListDoesNothing) {
    press("Button2");
    chooseFromMenu(*window, "Button1", "mnuTest");
    EXPECT_TRUE(button("CommandLoad1").isEnabled());
}
