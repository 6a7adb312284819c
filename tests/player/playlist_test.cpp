// SPDX-License-Identifier: GPL-3.0-or-later
#include "player/engine/Playlist.h"

#include <QStringList>
#include <gtest/gtest.h>

namespace {

using namespace Qt::Literals::StringLiterals;
using player::Entry;
using player::Playlist;

std::vector<Entry> named(const QStringList& paths) {
    std::vector<Entry> entries;
    for (const QString& path : paths) entries.push_back({0, path, {}, -1});
    return entries;
}

QStringList order(const Playlist& list) {
    QStringList paths;
    for (const Entry& entry : list.entries()) paths.append(entry.path);
    return paths;
}

class PlaylistOfFour : public ::testing::Test {
  protected:
    PlaylistOfFour() {
        auto entries = named({u"a"_s, u"b"_s, u"c"_s, u"d"_s});
        EXPECT_TRUE(list.insert(0, entries));
    }
    player::EntryId id(int index) const { return list.at(index)->id; }
    QString pathAfter(player::EntryId of, int direction) const {
        const auto entry = list.neighbour(of, direction);
        return entry ? entry->path : QString();
    }
    Playlist list;
};

TEST_F(PlaylistOfFour, InsertsInFrontAndMovesBothWays) {
    auto more = named({u"x"_s, u"y"_s});
    ASSERT_TRUE(list.insert(2, more));
    EXPECT_EQ(order(list), (QStringList{u"a"_s, u"b"_s, u"x"_s, u"y"_s, u"c"_s, u"d"_s}));
    list.move(0, 5);
    EXPECT_EQ(order(list).join(u""_s), u"bxycda"_s);
    list.move(4, 1);
    EXPECT_EQ(order(list).join(u""_s), u"bdxyca"_s);
    list.move(0, 6);
    list.move(-1, 0);
    list.remove(6);
    EXPECT_EQ(order(list).join(u""_s), u"bdxyca"_s);
}

TEST_F(PlaylistOfFour, AnEntryIsFoundWhereverItMoves) {
    const auto c = id(2);
    list.move(2, 0);
    EXPECT_EQ(list.indexOf(c), 0);
    list.remove(0);
    EXPECT_EQ(list.indexOf(c), -1);
    EXPECT_FALSE(list.setInfo(c, u"t"_s, 1));
}

TEST_F(PlaylistOfFour, NeighboursOfARemovedEntry) {
    const auto b = id(1);
    EXPECT_EQ(pathAfter(b, 1), u"c"_s);
    list.remove(1);
    EXPECT_EQ(pathAfter(b, 1), u"c"_s);
    EXPECT_EQ(pathAfter(b, -1), u"a"_s);
    list.remove(1);
    EXPECT_EQ(pathAfter(b, 1), u"d"_s);
    list.remove(1);
    EXPECT_EQ(pathAfter(b, 1), QString());
    EXPECT_EQ(pathAfter(b, -1), u"a"_s);
    list.remove(0);
    EXPECT_EQ(pathAfter(b, -1), QString());
}

TEST_F(PlaylistOfFour, AReloadedListGoesOnFromTheSameFile) {
    const auto c = id(2);
    auto other = named({u"d"_s, u"c"_s, u"e"_s});
    ASSERT_TRUE(list.replace(other));
    EXPECT_EQ(list.indexOf(c), 1);
    EXPECT_EQ(pathAfter(c, 1), u"e"_s);
    EXPECT_EQ(pathAfter(c, -1), u"d"_s);
    auto without = named({u"z"_s});
    ASSERT_TRUE(list.replace(without));
    EXPECT_EQ(list.indexOf(c), -1);
    EXPECT_EQ(pathAfter(c, 1), QString());
}

TEST_F(PlaylistOfFour, AReloadedListTellsEqualPathsApart) {
    auto twice = named({u"b"_s, u"b"_s, u"a"_s});
    const auto b = id(1);
    ASSERT_TRUE(list.replace(twice));
    EXPECT_EQ(id(0), b);
    EXPECT_NE(id(1), b);
}

TEST_F(PlaylistOfFour, TheEntryAfterTheLastIndexIsRefused) {
    std::vector<Entry> many(player::kMaxEntries - 4);
    ASSERT_TRUE(list.insert(4, many));
    EXPECT_EQ(list.count(), 32767);
    auto one = named({u"x"_s});
    EXPECT_FALSE(list.insert(0, one));
    EXPECT_EQ(list.count(), 32767);
    EXPECT_EQ(list.at(0)->path, u"a"_s);
}

}  // namespace
