// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <condition_variable>
#include <cstddef>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include <QString>
#include <QStringList>

#include "audio/dsp/Peaks.h"
#include "audio/output/MemoryOutput.h"
#include "player/engine/PlayerEngine.h"
#include "player/engine/SoundSource.h"

namespace support {

/// Lets events through until the condition holds; false after a minute.
bool waitUntil(const std::function<bool()>& condition);

/// What player 0's list says of an entry.
inline QString info(const player::PlayerEngine& engine, int index, int kind) {
    return engine.PlaylistGetItemInfo(0, std::int16_t(index), kind);
}

/// A player engine whose sound goes to the test, frame by frame, at the test's own pace, and a log
/// of its events.
class CaptureBench {
  public:
    explicit CaptureBench(player::OpenSound openSound = player::openWithDecoder);
    /// With these on player 0's list.
    explicit CaptureBench(const QStringList& names) : CaptureBench() { list(names); }

    player::PlayerEngine& engine() { return *engine_; }

    /// Puts fixtures, or other files by their full path, on player 0's list.
    void list(const QStringList& names);
    /// Takes frames of what the engine plays, once it has a device of this rate. Events pass.
    std::vector<float> pull(std::size_t frames, int rate = 44100);
    /// Takes blocks until the event stands in the log.
    std::vector<float> pullUntil(const QString& event, int rate = 44100);

    /// "started 0", "now 0 2", "ended 0 1" in their order.
    QStringList events;

  private:
    /// A device would not wait for the decoders: the one who pulls does.
    std::vector<float> pullReady(std::size_t frames);

    class Device;
    /// The open device, if any. Its own thread makes and ends it.
    struct Slot {
        std::mutex mutex;
        audio::output::MemoryOutput* device = nullptr;
    };

    std::shared_ptr<Slot> slot_ = std::make_shared<Slot>();
    std::unique_ptr<player::PlayerEngine> engine_;
};

/// A fixture's path as text.
QString fixturePath(const QString& name);

/// All of a fixture as the decoder gives it, brought to stereo by doubling mono.
std::vector<float> decoded(const QString& name);

/// A stretch of interleaved stereo.
std::vector<float> cut(const std::vector<float>& stereo, std::size_t first, std::size_t frames);

}  // namespace support
