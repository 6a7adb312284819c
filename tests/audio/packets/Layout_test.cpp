// SPDX-License-Identifier: GPL-3.0-or-later
// Which packets are kept, and where they lie in the new stream.
#include "audio/packets/Layout.h"

#include <random>

#include <gtest/gtest.h>

namespace {

using audio::packets::Grid;
using audio::packets::Layout;
using audio::packets::Piece;
using Runs = std::vector<audio::packets::Run>;  // a test has a function of the name Run

/// A minute of 20 ms packets that begin with the encoder's delay.
Grid opus() {
    Grid grid;
    grid.size = 960;
    grid.skip = 312;
    grid.frames = 60 * 48'000;
    grid.count = (grid.skip + grid.frames + 959) / 960;
    grid.preRoll = 3'840;
    grid.overlap = 960;
    grid.leastSkip = 312;
    return grid;
}

std::int64_t keptPackets(const Layout& layout) {
    std::int64_t count = 0;
    for (const Piece& piece : layout.pieces)
        if (piece.kept()) count += piece.end - piece.first;
    return count;
}

/// Whether the pieces are the stream from its first to its last packet, and every kept packet gives
/// nothing that is heard but the source's own sound in its place.
void expectSound(const Grid& grid, const Runs& runs, const Layout& layout) {
    std::int64_t number = 0;
    for (const Piece& piece : layout.pieces) {
        EXPECT_EQ(piece.first, number);
        number = piece.end;
        if (!piece.kept()) continue;
        EXPECT_GE(piece.source, 0);
        EXPECT_LE(piece.source + piece.end - piece.first, grid.count);
        const std::int64_t first = std::max<std::int64_t>(0, piece.first * grid.size - layout.skip);
        const std::int64_t end = std::min(layout.frames, piece.end * grid.size - layout.skip);
        const std::int64_t source =
            piece.source * grid.size - grid.skip + first - (piece.first * grid.size - layout.skip);
        std::int64_t start = 0;
        for (const audio::packets::Run& run : runs) {
            if (first >= start && end <= start + run.frames) {
                EXPECT_GE(run.source, 0);
                EXPECT_EQ(run.source + first - start, source);
            }
            start += run.frames;
        }
    }
    EXPECT_EQ(number, layout.packets);
    EXPECT_GE(layout.packets * grid.size, layout.skip + layout.frames);
    EXPECT_LT((layout.packets - 1) * grid.size, layout.skip + layout.frames);
}

TEST(PacketLayout, AFadeInEncodesItsOwnPacketsAndThePreRollBehindThem) {
    const Grid grid = opus();
    const Layout layout = layOut(grid, Runs{{-1, 48'000}, {48'000, grid.frames - 48'000}});
    ASSERT_EQ(layout.pieces.size(), 2U);
    EXPECT_EQ(layout.pieces[0].end, (48'000 + 312 + 3'840 + 959) / 960);
    EXPECT_EQ(layout.skip, grid.skip);
    EXPECT_EQ(layout.pieces[1].source, layout.pieces[1].first);
}

TEST(PacketLayout, TrimsOfAnyLengthEncodeNothing) {
    const Grid grid = opus();
    for (const std::int64_t front : {1, 959, 1'234, 100'001}) {
        const Runs runs = {{front, grid.frames - front - 54'321}};
        const Layout layout = layOut(grid, runs);
        expectSound(grid, runs, layout);
        EXPECT_EQ(keptPackets(layout), layout.packets) << front;
        EXPECT_GE(layout.skip, std::min(grid.preRoll, grid.skip + front));
    }
}

TEST(PacketLayout, SilenceOfAnyLengthInFrontMovesAllPackets) {
    const Grid grid = opus();
    for (const std::int64_t silence : {1, 959, 48'000, 59'232}) {
        const Runs runs = {{-1, silence}, {0, grid.frames}};
        const Layout layout = layOut(grid, runs);
        expectSound(grid, runs, layout);
        EXPECT_GE(keptPackets(layout), grid.count - 5) << silence;
        EXPECT_GE(layout.skip, grid.leastSkip);
    }
}

TEST(PacketLayout, ACutInsideKeepsBothSidesOnTheGridAndTheLongerOneOffIt) {
    const Grid grid = opus();
    for (const std::int64_t cut : {960 * 50, 960 * 50 + 7}) {
        const Runs runs = {{0, 900'000}, {900'000 + cut, grid.frames - 900'000 - cut}};
        const Layout layout = layOut(grid, runs);
        expectSound(grid, runs, layout);
        const std::int64_t wanted =
            cut % 960 == 0 ? layout.packets - 10 : runs[1].frames / 960 - 10;
        EXPECT_GE(keptPackets(layout), wanted);
    }
}

TEST(PacketLayout, RandomEditsKeepOnlyWhatIsTheSources) {
    const Grid grid = opus();
    std::mt19937 random(7);
    for (int i = 0; i < 2'000; ++i) {
        Runs runs;
        for (std::int64_t at = 0; at < grid.frames;) {
            const auto frames = std::min<std::int64_t>(grid.frames - at, random() % 700'000 + 1);
            const unsigned kind = random() % 3;
            if (kind != 2) runs.push_back({kind == 0 ? at : -1, frames});
            at += frames;
        }
        if (!runs.empty()) expectSound(grid, runs, layOut(grid, runs));
    }
}

}  // namespace
