// SPDX-License-Identifier: GPL-3.0-or-later
// Work beside the caller: what comes back of it, and how much of it there is at a time.
#include <atomic>
#include <filesystem>
#include <new>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "audio/parallel/OrderedTasks.h"
#include "platform/Error.h"

using namespace audio::parallel;

namespace {

/// What get() throws where the task throws `thrown`.
template <typename Thrown>
std::string sentenceOf(const Thrown& thrown) {
    auto result = launch("test", [&]() -> int { throw thrown; });
    try {
        result.get();
    } catch (const platform::Error& error) {
        return error.what();
    }
    return {};
}

class Special : public platform::Error {
  public:
    using platform::Error::Error;
};

TEST(Launch, WhatAWorkerThrowsArrivesAsASentence) {
    EXPECT_EQ(sentenceOf(platform::Error("As it is.")), "As it is.");
    EXPECT_EQ(sentenceOf(std::bad_alloc()), "There is not enough memory for this sound.");
    const auto code = std::make_error_code(std::errc::no_space_on_device);
    const std::string full =
        sentenceOf(std::filesystem::filesystem_error("copy", "/music/a.wav", code));
    EXPECT_NE(full.find("\"/music/a.wav\""), std::string::npos) << full;
    EXPECT_NE(full.find(code.message()), std::string::npos) << full;
    EXPECT_NE(sentenceOf(std::runtime_error("odd")).find("odd"), std::string::npos);
    EXPECT_FALSE(sentenceOf(42).empty());
}

TEST(Launch, AnErrorKeepsItsKind) {
    auto result = launch("test", []() -> int { throw Special("kept"); });
    EXPECT_THROW(result.get(), Special);
}

TEST(OrderedTasks, ResultsComeInTheOrderInWhichTheyWereBegun) {
    OrderedTasks<int> tasks(4, 4);
    std::vector<int> taken;
    for (int i = 0; i < 100; ++i) {
        while (tasks.full()) taken.push_back(tasks.take());
        tasks.begin([i] { return i; });
    }
    while (!tasks.empty()) taken.push_back(tasks.take());
    ASSERT_EQ(taken.size(), 100U);
    for (int i = 0; i < 100; ++i) EXPECT_EQ(taken[std::size_t(i)], i);
}

TEST(OrderedTasks, ManyRowsShareOneBudget) {
    constexpr int rows = 16;
    std::atomic<int> running = 0;
    std::atomic<int> most = 0;
    std::atomic<int> held = 0;
    std::atomic<int> mostHeld = 0;
    const auto raise = [](std::atomic<int>& highest, int value) {
        int now = highest;
        while (value > now && !highest.compare_exchange_weak(now, value)) {
        }
    };
    std::vector<std::future<void>> files;
    for (int row = 0; row < rows; ++row)
        files.push_back(launch("row", [&] {
            OrderedTasks<int> tasks(8, 2);
            for (int i = 0; i < 50; ++i) {
                while (tasks.full()) {
                    tasks.take();
                    --held;
                }
                raise(mostHeld, ++held);
                tasks.begin([&] {
                    raise(most, ++running);
                    --running;
                    return 0;
                });
            }
            for (; !tasks.empty(); --held) tasks.take();
        }));
    for (auto& file : files) file.get();
    EXPECT_LE(most, threadCount());
    EXPECT_LE(mostHeld, 2 * rows + threadCount() + 2);  // sixteen rows of ten would hold 160
    EXPECT_EQ(held, 0);
}

}  // namespace
