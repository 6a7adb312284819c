// SPDX-License-Identifier: GPL-3.0-or-later
// The engine without a device, and with devices that come and go.
#include <atomic>
#include <chrono>
#include <memory>

#include <QElapsedTimer>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "audio/output/NullOutput.h"
#include "audio/output/OutputKeeper.h"
#include "platform/Error.h"
#include "tests/player/CaptureBench.h"

namespace {

using namespace Qt::Literals::StringLiterals;
using audio::output::FrameSource;
using audio::output::NullOutput;
using audio::output::OutputDevice;
using audio::output::Timing;
using support::waitUntil;

std::unique_ptr<OutputDevice> noDevice(int, FrameSource&) {
    throw platform::Error("There is no device.");
}

TEST(NullClock, ATrackTakesItsTimeAndRaisesItsEvents) {
    player::PlayerEngine engine({noDevice, player::openWithDecoder});
    QStringList events;
    QObject::connect(&engine, &player::PlayerEngine::NowPlayingChanged,
                     [&](int, int index) { events.append(QString::number(index)); });
    QObject::connect(&engine, &player::PlayerEngine::PlaybackEnded,
                     [&](int, int) { events.append(u"ended"_s); });
    engine.PlaylistInsertFile(0, support::fixturePath(u"tone.wav"_s), 0);
    engine.PlaylistInsertFile(0, support::fixturePath(u"tone-48k.wav"_s), 1);
    QElapsedTimer time;
    time.start();
    engine.PlaylistPlayItem(0, 0);
    ASSERT_TRUE(waitUntil([&] { return engine.GetPosition(0) >= 500; }));
    EXPECT_GE(time.elapsed(), 450);
    EXPECT_EQ(engine.OutputName(), u"no sound device"_s);
    ASSERT_TRUE(waitUntil([&] { return events.contains(u"ended"_s); }));
    EXPECT_GE(time.elapsed(), 3900);
    EXPECT_THAT(events, ::testing::ElementsAre(u"0"_s, u"1"_s, u"ended"_s));
}

/// A device by the clock that the test can break.
class FragileDevice final : public OutputDevice {
  public:
    FragileDevice(int rate, FrameSource& source, std::shared_ptr<std::atomic<bool>> works)
        : clock_(rate, source), works_(std::move(works)) {}
    void start() override { clock_.start(); }
    int rate() const override { return clock_.rate(); }
    std::string name() const override { return "fragile"; }
    bool alive() const override { return *works_; }

  private:
    NullOutput clock_;
    std::shared_ptr<std::atomic<bool>> works_;
};

TEST(DeviceChanges, PlaybackFollowsADeviceThatGoesAndComes) {
    const auto works = std::make_shared<std::atomic<bool>>(true);
    const auto open = [works](int rate, FrameSource& source) -> std::unique_ptr<OutputDevice> {
        if (!*works) throw platform::Error("There is no device.");
        return std::make_unique<FragileDevice>(rate, source, works);
    };
    player::PlayerEngine engine({open, player::openWithDecoder});
    engine.PlaylistInsertFile(0, support::fixturePath(u"music.wav"_s), 0);
    engine.PlaylistPlayItem(0, 0);
    ASSERT_TRUE(waitUntil([&] { return engine.GetPosition(0) > 100; }));
    EXPECT_EQ(engine.OutputName(), u"fragile"_s);
    const auto before = engine.GetPosition(0);
    *works = false;
    ASSERT_TRUE(waitUntil([&] { return engine.OutputName() == u"no sound device"_s; }));
    const auto after = engine.GetPosition(0);
    EXPECT_GE(after, before);
    ASSERT_TRUE(waitUntil([&] { return engine.GetPosition(0) > after + 200; }));
    *works = true;
    ASSERT_TRUE(waitUntil([&] { return engine.OutputName() == u"fragile"_s; }));
    const auto back = engine.GetPosition(0);
    EXPECT_GT(back, after);
    ASSERT_TRUE(waitUntil([&] { return engine.GetPosition(0) > back + 200; }));
    EXPECT_EQ(engine.GetPlayerStatus(0), player::StatusPlaying);
}

TEST(DeviceChanges, NothingIsOpenedBeforeSomethingPlays) {
    std::atomic<int> opened = 0;
    const auto open = [&opened](int, FrameSource&) -> std::unique_ptr<OutputDevice> {
        ++opened;
        throw platform::Error("There is no device.");
    };
    player::PlayerEngine engine({open, player::openWithDecoder});
    engine.LoadSound(0, support::fixturePath(u"tone.wav"_s));
    ASSERT_TRUE(waitUntil([&] { return engine.LengthMs(0) == 2000; }));
    EXPECT_EQ(opened, 0);
    engine.PlaySound(0);
    ASSERT_TRUE(waitUntil([&] { return opened > 0; }));
}

}  // namespace
