// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/player/CaptureBench.h"

#include <algorithm>
#include <thread>

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QTest>
#include <gtest/gtest.h>

#include "audio/read/Decoder.h"
#include "platform/Paths.h"
#include "tests/support/Fixtures.h"

namespace support {

using namespace Qt::Literals::StringLiterals;

constexpr int kPatienceMs = 60000;

bool waitUntil(const std::function<bool()>& condition) {
    return QTest::qWaitFor(condition, kPatienceMs);
}

class CaptureBench::Device final : public audio::output::OutputDevice {
  public:
    Device(int rate, audio::output::FrameSource& source, std::shared_ptr<Slot> slot)
        : memory_(rate, source), slot_(std::move(slot)) {}
    ~Device() override {
        const std::lock_guard lock(slot_->mutex);
        slot_->device = nullptr;
    }
    void start() override {
        const std::lock_guard lock(slot_->mutex);
        slot_->device = &memory_;
    }
    int rate() const override { return memory_.rate(); }
    std::string name() const override { return memory_.name(); }
    bool alive() const override { return true; }

  private:
    audio::output::MemoryOutput memory_;
    std::shared_ptr<Slot> slot_;
};

CaptureBench::CaptureBench(player::OpenSound openSound) {
    const auto openDevice = [slot = slot_](const audio::output::DeviceWish& wish,
                                           audio::output::FrameSource& source) {
        return std::make_unique<Device>(wish.rate, source, slot);
    };
    engine_ = std::make_unique<player::PlayerEngine>(
        player::EngineParts{openDevice, std::move(openSound)});
    const auto log = [this](const char* event, int player) {
        events.append(QString::fromLatin1(event) + u' ' + QString::number(player));
    };
    QObject::connect(engine_.get(), &player::PlayerEngine::PlaybackStarted,
                     [log](int player) { log("started", player); });
    QObject::connect(engine_.get(), &player::PlayerEngine::NowPlayingChanged,
                     [this, log](int player, int index) {
                         log("now", player);
                         events.back() += u' ' + QString::number(index);
                     });
    QObject::connect(engine_.get(), &player::PlayerEngine::PlaybackEnded,
                     [this, log](int player, int index) {
                         log("ended", player);
                         events.back() += u' ' + QString::number(index);
                     });
}

void CaptureBench::list(const QStringList& names) {
    QStringList paths;
    for (const QString& name : names)
        paths.append(name.startsWith(u'/') || name.contains(u':') ? name : fixturePath(name));
    EXPECT_EQ(engine_->PlaylistInsertFiles(0, paths, engine_->PlaylistGetCount(0)), 0);
}

std::vector<float> CaptureBench::pull(std::size_t frames, int rate) {
    // The name is there once the mixer's sound goes to the device.
    const auto ready = [this, rate] {
        if (engine_->OutputName() != u"memory"_s) return false;
        const std::lock_guard lock(slot_->mutex);
        return slot_->device && slot_->device->rate() == rate;
    };
    EXPECT_TRUE(waitUntil(ready)) << "no device at " << rate << " Hz";
    // What a seek drops leaves in a ramp, and only then is there room for what it wants; and a ring
    // holds no more than a few seconds.
    std::vector<float> all;
    for (std::size_t most = 128; all.size() < 2 * frames; most = 8192) {
        const auto block = pullReady(std::min(most, frames - all.size() / 2));
        if (block.empty()) break;
        all.insert(all.end(), block.begin(), block.end());
    }
    QCoreApplication::processEvents();
    return all;
}

std::vector<float> CaptureBench::pullReady(std::size_t frames) {
    const QDeadlineTimer patience(kPatienceMs);
    while (!engine_->IsReady(frames) && !patience.hasExpired()) std::this_thread::yield();
    EXPECT_FALSE(patience.hasExpired()) << "the decoders bring no sound";
    const std::lock_guard lock(slot_->mutex);
    return slot_->device ? slot_->device->pull(frames) : std::vector<float>();
}

std::vector<float> CaptureBench::pullUntil(const QString& event, int rate) {
    std::vector<float> all;
    const bool came = waitUntil([&] {
        for (int i = 0; i < 8 && !events.contains(event); ++i) {
            const auto block = pull(1024, rate);
            all.insert(all.end(), block.begin(), block.end());
        }
        // An event is noticed by a timer: what is pulled meanwhile comes after it.
        return events.contains(event);
    });
    EXPECT_TRUE(came) << event.toStdString() << " did not come, but "
                      << events.join(u", "_s).toStdString();
    return all;
}

QString fixturePath(const QString& name) {
    return platform::toQString(fixture(name.toStdString()));
}

std::vector<float> decoded(const QString& name) {
    audio::read::Decoder decoder(fixture(name.toStdString()));
    const auto channels = std::size_t(decoder.format().channels);
    std::vector<float> sound;
    std::vector<float> chunk(4096 * channels);
    while (const std::size_t frames = decoder.read(chunk.data(), 4096)) {
        for (std::size_t i = 0; i < frames * channels; ++i) {
            sound.push_back(chunk[i]);
            if (channels == 1) sound.push_back(chunk[i]);
        }
    }
    return sound;
}

std::vector<float> cut(const std::vector<float>& stereo, std::size_t first, std::size_t frames) {
    const std::size_t begin = std::min(2 * first, stereo.size());
    const std::size_t end = std::min(begin + 2 * frames, stereo.size());
    return {stereo.begin() + std::ptrdiff_t(begin), stereo.begin() + std::ptrdiff_t(end)};
}

}  // namespace support
