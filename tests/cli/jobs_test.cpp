// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/Jobs.h"

#include <atomic>
#include <barrier>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <mutex>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/Interrupt.h"
#include "tests/support/TempFolder.h"

using namespace Qt::Literals::StringLiterals;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

TEST(Jobs, WorksOnEveryFileOnce) {
    QStringList files;
    for (int i = 0; i < 200; ++i) files << u"/m/%1.wav"_s.arg(i);
    std::vector<std::atomic<int>> visits(200);
    EXPECT_THAT(cli::forEachFile(files, 8, [&](std::size_t number) { ++visits[number]; }),
                IsEmpty());
    for (const auto& count : visits) EXPECT_EQ(count, 1);
}

TEST(Jobs, NothingToDoIsNoTrouble) {
    EXPECT_THAT(cli::forEachFile({}, 4, [](std::size_t) { FAIL(); }), IsEmpty());
}

// Two files meet at a barrier: it opens only when both are in work at the same time.
TEST(Jobs, SeveralFilesAreInWorkAtATime) {
    std::barrier meeting(2);
    EXPECT_THAT(cli::forEachFile({u"/m/a.wav"_s, u"/m/b.wav"_s}, 2,
                                 [&](std::size_t) { meeting.arrive_and_wait(); }),
                IsEmpty());
}

TEST(Jobs, OneFileUnderManyNamesIsNeverInTwoHands) {
    support::TempFolder folder;
    std::ofstream(folder / "a.wav") << "sound";
    std::filesystem::create_symlink(folder / "a.wav", folder / "link.wav");
    const QString plain = folder.file(u"a.wav"_s);
    const QString detour = folder.file(u"."_s) + u"/./a.wav"_s;
    const QString link = folder.file(u"link.wav"_s);
    std::atomic<int> inWork = 0;
    std::mutex mutex;
    std::vector<std::size_t> order;
    cli::forEachFile({plain, detour, link, plain}, 4, [&](std::size_t number) {
        EXPECT_EQ(++inWork, 1);
        {
            const std::lock_guard lock(mutex);
            order.push_back(number);
        }
        --inWork;
    });
    EXPECT_THAT(order, ElementsAre(0, 1, 2, 3));
}

// The flag of an interrupt stays for the life of the process, so this one runs in a child.
TEST(JobsDeathTest, AfterAnInterruptNoFurtherFileIsBegun) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(
        {
            platform::watchForInterrupt();
            int begun = 0;
            const auto left = cli::forEachFile({u"/a"_s, u"/b"_s, u"/c"_s}, 1, [&](std::size_t) {
                ++begun;
                std::raise(SIGINT);
            });
            std::exit(begun == 1 && left == std::vector<std::size_t>{1, 2} ? 42 : 1);
        },
        testing::ExitedWithCode(42), "");
}

}  // namespace
