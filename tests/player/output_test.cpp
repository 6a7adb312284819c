// SPDX-License-Identifier: GPL-3.0-or-later
// The engine without a device, and with devices that come and go.
#include <atomic>
#include <chrono>
#include <memory>
#include <thread>

#include <QElapsedTimer>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "audio/output/NullOutput.h"
#include "audio/output/OutputKeeper.h"
#include "platform/Error.h"
#include "tests/player/CaptureBench.h"

namespace {

using namespace Qt::Literals::StringLiterals;
using audio::output::DeviceWish;
using audio::output::FrameSource;
using audio::output::NullOutput;
using audio::output::OutputDevice;
using audio::output::Timing;
using support::waitUntil;

std::unique_ptr<OutputDevice> noDevice(const DeviceWish&, FrameSource&) {
    throw platform::Error("There is no device.");
}

TEST(NullClock, CountsForYears) {
    using namespace std::chrono_literals;
    constexpr std::int64_t hours = 24 * 365;
    for (const int rate : {8000, 44100, 192000}) {
        EXPECT_EQ(audio::output::durationOf(hours * 3600 * rate, rate), hours * 1h) << rate;
        EXPECT_EQ(audio::output::durationOf(rate / 100, rate), 10ms) << rate;
    }
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
    const auto open = [works](const DeviceWish& wish,
                              FrameSource& source) -> std::unique_ptr<OutputDevice> {
        if (!*works) throw platform::Error("There is no device.");
        return std::make_unique<FragileDevice>(wish.rate, source, works);
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
    const auto open = [&opened](const DeviceWish&, FrameSource&) -> std::unique_ptr<OutputDevice> {
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

/// A sound system that hangs, in the call that the test names, until it is let go.
struct HangingSystem {
    enum Call { Nowhere, Open, Close };
    std::atomic<Call> hangs = Nowhere;
    std::atomic<bool> still = false;  // the device has stopped asking for sound
    std::atomic<int> opened = 0;
    std::atomic<int> dropOuts = 0;
    std::atomic<int> bufferMs = 0;

    void pass(Call call) const {
        while (hangs == call) std::this_thread::yield();
    }
};

class HangingDevice final : public OutputDevice {
  public:
    HangingDevice(const DeviceWish& wish, FrameSource& source,
                  std::shared_ptr<HangingSystem> system)
        : clock_(std::make_unique<NullOutput>(wish.rate, source)), system_(std::move(system)) {
        system_->pass(HangingSystem::Open);
        system_->bufferMs = int(wish.buffer.count());
        ++system_->opened;
    }
    ~HangingDevice() override {
        clock_.reset();
        system_->pass(HangingSystem::Close);
    }
    void start() override { clock_->start(); }
    int rate() const override { return clock_->rate(); }
    std::string name() const override { return "hanging"; }
    bool alive() const override { return !system_->still; }
    int dropOuts() const override { return system_->opened == 1 ? system_->dropOuts.load() : 0; }

  private:
    std::unique_ptr<NullOutput> clock_;
    std::shared_ptr<HangingSystem> system_;
};

struct Watchdog : ::testing::Test {
    std::shared_ptr<HangingSystem> system = std::make_shared<HangingSystem>();
    std::unique_ptr<player::PlayerEngine> engine = std::make_unique<player::PlayerEngine>(
        player::EngineParts{[system = system](const DeviceWish& wish, FrameSource& source) {
                                return std::make_unique<HangingDevice>(wish, source, system);
                            },
                            player::openWithDecoder});
    ~Watchdog() override { system->hangs = HangingSystem::Nowhere; }

    void play() {
        engine->PlaylistInsertFile(0, support::fixturePath(u"music.wav"_s), 0);
        engine->PlaylistPlayItem(0, 0);
    }
    bool outputBecomes(const QString& name) {
        return waitUntil([&] { return engine->OutputName() == name; });
    }
    bool goesOn() {
        const auto from = engine->GetPosition(0);
        return waitUntil([&] { return engine->GetPosition(0) > from + 200; });
    }
};

TEST_F(Watchdog, ADeviceThatStandsStillAndNeverClosesGivesWayToTheNullOutput) {
    play();
    ASSERT_TRUE(outputBecomes(u"hanging"_s));
    ASSERT_TRUE(goesOn());
    system->hangs = HangingSystem::Close;
    system->still = true;
    ASSERT_TRUE(outputBecomes(u"no sound device"_s));
    EXPECT_TRUE(goesOn());
    EXPECT_EQ(system->opened, 1) << "no second device while the first one hangs";
    system->still = false;
    system->hangs = HangingSystem::Nowhere;
    EXPECT_TRUE(outputBecomes(u"hanging"_s)) << "it works again";
    EXPECT_TRUE(goesOn());
}

TEST_F(Watchdog, ADeviceThatNeverOpensGivesWayToTheNullOutput) {
    system->hangs = HangingSystem::Open;
    play();
    ASSERT_TRUE(outputBecomes(u"no sound device"_s));
    EXPECT_TRUE(goesOn());
    system->hangs = HangingSystem::Nowhere;
    EXPECT_TRUE(outputBecomes(u"hanging"_s));
}

TEST_F(Watchdog, TheEndWaitsForNoDevice) {
    play();
    ASSERT_TRUE(outputBecomes(u"hanging"_s));
    system->hangs = HangingSystem::Close;
    engine.reset();
    EXPECT_EQ(system->hangs, HangingSystem::Close) << "it still hangs";
}

TEST_F(Watchdog, DropOutsLengthenTheBuffer) {
    play();
    ASSERT_TRUE(outputBecomes(u"hanging"_s));
    EXPECT_EQ(system->bufferMs, 90);
    system->dropOuts = 3;
    EXPECT_TRUE(waitUntil([&] { return system->opened == 2; }));
    EXPECT_EQ(system->bufferMs, 180);
    EXPECT_TRUE(goesOn());
}

}  // namespace
