// SPDX-License-Identifier: GPL-3.0-or-later
// What the sound callback does with fades: however many there are, it takes no memory for them.
#include <atomic>
#include <cstdlib>
#include <new>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "player/engine/VoiceChannel.h"

namespace {

std::atomic<long> living = 0;          // blocks of memory, of all threads
thread_local long* counted = nullptr;  // while not null, what this thread takes and gives back

void* take(std::size_t size) {
    ++living;
    if (counted) ++*counted;
    if (void* block = std::malloc(size > 0 ? size : 1)) return block;
    throw std::bad_alloc();
}

void give(void* block) {
    if (!block) return;
    --living;
    if (counted) ++*counted;
    std::free(block);
}

}  // namespace

void* operator new(std::size_t size) {
    return take(size);
}
void* operator new[](std::size_t size) {
    return take(size);
}
void operator delete(void* block) noexcept {
    give(block);
}
void operator delete[](void* block) noexcept {
    give(block);
}
void operator delete(void* block, std::size_t) noexcept {
    give(block);
}
void operator delete[](void* block, std::size_t) noexcept {
    give(block);
}

namespace {

constexpr int rate = 44100;
constexpr int fades = 20000;
constexpr std::size_t blockFrames = 64;

/// A channel that plays a constant 1, and the two threads' halves of its work.
class Fades : public testing::Test {
  protected:
    Fades() {
        channel.setRunning(true);
        channel.publish(0, rate, true);
        feed();
    }
    void feed() {
        const std::vector<float> ones(2 * blockFrames, 1.0F);
        while (channel.ring().space() >= blockFrames)
            channel.ring().write(ones.data(), blockFrames);
    }
    /// One block as the device asks for it; `own` counts what that takes and gives back.
    void callBack(long& own) {
        block.fill(0);
        audio::output::Timing timing{};
        timing.rate = rate;
        counted = &own;
        channel.render(block.data(), blockFrames, timing);
        counted = nullptr;
    }

    player::VoiceChannel channel;
    std::array<float, 2 * blockFrames> block{};
};

}  // namespace

TEST_F(Fades, ThousandsOfThemTakeNoMemoryAndLeaveNone) {
    long inCallback = 0;
    callBack(inCallback);
    const long before = living;
    for (int n = 0; n < fades; ++n) {
        channel.setFade({.start = 0, .length = 10 * rate, .from = 99, .to = 99.0 * (n % 2)});
        callBack(inCallback);
        if (channel.level() < std::int64_t(blockFrames)) {
            const long held = living;
            feed();
            ASSERT_EQ(living, held);
        }
    }
    EXPECT_EQ(inCallback, 0);
    EXPECT_EQ(living, before);
}

TEST_F(Fades, TheLatestIsTheOneThatIsHeard) {
    long ignored = 0;
    for (int n = 0; n < fades; ++n) channel.setFade({.start = 0, .length = 1, .from = 0, .to = 99});
    channel.setFade({.start = 0, .length = 1, .from = 0, .to = 0});
    callBack(ignored);
    EXPECT_EQ(block.back(), 0.0F);
    EXPECT_TRUE(channel.fadedOut());
    channel.clearFade();
    callBack(ignored);
    EXPECT_EQ(block.back(), 1.0F);
}

// The decoder thread puts them while the callback takes them: none is torn, and the last one holds.
TEST_F(Fades, TwoThreadsShareThemWithoutMemory) {
    const long before = living;
    std::atomic<bool> done = false;
    long inCallback = 0;
    bool torn = false;
    {
        std::thread putting([&] {
            for (int n = 0; n < fades; ++n)
                channel.setFade({.start = 0, .length = 1, .from = 99, .to = 99});
            channel.setFade({.start = 0, .length = 1, .from = 0, .to = 0});
            done = true;
        });
        while (!done) {
            callBack(inCallback);
            for (const float sample : block) torn = torn || (sample != 0.0F && sample != 1.0F);
            feed();
        }
        putting.join();
    }
    EXPECT_FALSE(torn);
    callBack(inCallback);
    EXPECT_EQ(block.back(), 0.0F);
    EXPECT_EQ(inCallback, 0);
    EXPECT_EQ(living, before);
}
