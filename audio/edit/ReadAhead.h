// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <condition_variable>
#include <deque>
#include <exception>
#include <future>
#include <memory>
#include <mutex>
#include <vector>

#include "audio/edit/Material.h"

namespace audio::edit {

/// Reads another reader on a thread of its own, a few blocks ahead, so that what comes before it
/// and what comes after it run side by side. An error of the inner reader is thrown by the read()
/// that reaches it. Memory: a handful of blocks of 16,384 frames, and
/// of a megabyte at most.
class ReadAhead : public FrameReader {
  public:
    ReadAhead(std::unique_ptr<FrameReader> inner, int channels);
    ~ReadAhead() override;

    std::size_t read(float* interleaved, std::size_t frames) override;
    void seek(std::int64_t frame) override;

  private:
    struct Block {
        std::vector<float> samples;
        std::size_t used = 0;  ///< samples handed out
    };
    void start();
    void stop();
    void run();
    bool waitForRoom();
    void put(std::vector<float> samples);

    std::unique_ptr<FrameReader> inner_;  // the worker's while it runs
    std::size_t channels_;
    std::int64_t position_ = 0;  // the consumer's

    std::mutex mutex_;  // guards all below
    std::condition_variable changed_;
    std::deque<Block> blocks_;
    std::vector<std::vector<float>> spare_;
    std::exception_ptr failure_;
    bool ended_ = false;
    bool stopping_ = false;
    std::future<void> worker_;  // the consumer's
};

}  // namespace audio::edit
