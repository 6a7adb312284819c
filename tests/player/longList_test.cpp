// SPDX-License-Identifier: GPL-3.0-or-later
// A list of twenty thousand entries.
#include <algorithm>
#include <filesystem>
#include <string>

#include <QFile>
#include <gtest/gtest.h>

#include "tests/player/CaptureBench.h"
#include "tests/support/CpuClock.h"
#include "tests/support/Fixtures.h"
#include "tests/support/TempFolder.h"

namespace {

using namespace Qt::Literals::StringLiterals;
using player::PlayerEngine;
using support::info;
using support::waitUntil;

/// A list of 20,000 real files: links to two, of which those of even numbers lead to the one with a
/// title, each of a name of its own.
class TwentyThousand : public ::testing::Test {
  protected:
    static constexpr int kCount = 20000;
    TwentyThousand() {
        QFile list(folder.file(u"list.m3u"_s));
        EXPECT_TRUE(list.open(QIODevice::WriteOnly));
        const auto titled = support::fixture("tone.mp3");
        const auto untitled = support::fixture("tone-vbr.mp3");
        for (int i = 0; i < kCount; ++i) {
            const std::string name = "t" + std::to_string(i) + ".mp3";
            std::filesystem::create_symlink(i % 2 ? untitled : titled, folder / name);
            list.write(name.c_str());
            list.write("\r\n");
        }
    }
    support::TempFolder folder;
    support::CaptureBench bench;
};

TEST_F(TwentyThousand, AreUsableAtOnceAndNeverHoldTheWindowUp) {
    auto& engine = bench.engine();
    const support::CpuClock time;
    ASSERT_EQ(engine.PlaylistLoad(0, folder.file(u"list.m3u"_s), 1), 0);
    const auto loaded = time.elapsed();
    EXPECT_EQ(engine.PlaylistGetCount(0), kCount);
    engine.PlaylistPrefer(0, 19000, 19010);

    int events = 0;
    QObject::connect(&engine, &PlayerEngine::ItemInfoChanged, [&](int, int) { ++events; });
    const auto complete = [&] {
        for (int i = kCount - 1; i >= 0; --i)
            if (info(engine, i, player::ItemInfoDuration).isEmpty()) return false;
        return true;
    };
    std::int64_t longest = 0;
    int moved = 0;
    EXPECT_TRUE(waitUntil([&] {
        if (++moved <= 20) {
            const support::CpuClock edit;
            engine.PlaylistMoveItem(0, std::int16_t(kCount - 1), 0);
            longest = std::max(longest, edit.elapsed());
        }
        return complete();
    }));
    EXPECT_GT(events, 0);
    EXPECT_LT(loaded, 2000);  // 0.3 s of it on a quiet machine
    EXPECT_LT(longest, 100);
    // The edits meanwhile left every answer with its own file.
    for (int i = 0; i < kCount; ++i) {
        const bool even =
            info(engine, i, player::ItemInfoName).chopped(4).back().digitValue() % 2 == 0;
        ASSERT_EQ(info(engine, i, player::ItemInfoTitle), even ? u"Tone"_s : QString()) << i;
    }
    RecordProperty("load_ms", int(loaded));
    RecordProperty("events", events);
}

}  // namespace
