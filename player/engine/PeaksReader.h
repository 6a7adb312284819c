// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <future>
#include <memory>
#include <mutex>
#include <stop_token>

#include <QString>

#include "audio/dsp/Peaks.h"
#include "player/engine/SoundSource.h"

namespace player {

/// Decodes one file at a time, on a thread of its own, to find its peaks, and keeps the last
/// answer. Calls come from one thread and return at once, but where they say otherwise.
class PeaksReader {
  public:
    /// `changed` is called on the worker whenever peaks() has something new.
    PeaksReader(OpenSound openSound, std::function<void()> changed);
    ~PeaksReader();
    PeaksReader(const PeaksReader&) = delete;
    PeaksReader& operator=(const PeaksReader&) = delete;

    /// The peaks of this file as far as they are known; null where nothing is. Asked for another
    /// file than before, begins with that one.
    std::shared_ptr<const audio::dsp::Peaks> peaks(const QString& path);
    /// Lets go of a file, and forgets its peaks.
    void release(const QString& path);
    /// Waits until no file is open that is not wanted, up to this moment.
    void awaitRest(std::chrono::steady_clock::time_point until);

  private:
    void run();
    void want(const QString& path);
    void measure(const QString& path, const std::stop_token& stop);
    void publish(const audio::dsp::Peaks& peaks, const std::stop_token& stop);

    const OpenSound openSound_;
    const std::function<void()> changed_;
    std::mutex mutex_;  // guards all below
    std::condition_variable wake_;
    std::condition_variable rested_;
    QString path_;
    std::shared_ptr<const audio::dsp::Peaks> peaks_;
    std::stop_source stop_;  // of the file that is wanted
    unsigned request_ = 0;   // counts the files asked for
    unsigned done_ = 0;      // the last request that was taken up
    bool busy_ = false;
    bool quit_ = false;
    std::future<void> thread_;  // started with the first request
};

}  // namespace player
