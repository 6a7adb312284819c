// SPDX-License-Identifier: GPL-3.0-or-later
// A list of 20,000 entries: what the user waits for. Limits are several times what an idle machine
// takes; the figures are printed.
#include <filesystem>
#include <fstream>

#include <QElapsedTimer>
#include <QTimer>

#include "tests/support/CpuClock.h"
#include "tests/support/MainWindow.h"

using namespace Qt::Literals::StringLiterals;
using namespace support;

namespace {

constexpr int entries = 20000;

struct LongList : MainWindow {
    QString path;

    /// One entry in a hundred is there.
    void listOfMostlyMissingFiles() {
        const QString real = song(u"real.mp3"_s);
        writeList(
            [&](int i) { return i % 100 == 0 ? real : folder.file(u"song %1.mp3"_s.arg(i)); });
    }

    /// Every entry is a file of its own name, whose title and duration must be read.
    void listOfFilesNeverRead() {
        const auto real = platform::toPath(song(u"real.mp3"_s));
        writeList([&](int i) {
            const QString name = folder.file(u"song %1.mp3"_s.arg(i));
            std::filesystem::create_hard_link(real, platform::toPath(name));
            return name;
        });
    }

    template <class PathOf>
    void writeList(PathOf&& pathOf) {
        path = folder.file(u"long.m3u"_s);
        std::ofstream file(platform::toPath(path), std::ios::binary);
        for (int i = 0; i < entries; ++i) file << pathOf(i).toStdString() << "\r\n";
    }

    bool isKnown(int row) { return !list().subItem(row, 1).isEmpty(); }

    /// Milliseconds that the window's thread works on an action until its result is painted.
    template <class Action>
    qint64 painted(Action&& action) {
        const CpuClock clock;
        action();
        list().viewport()->repaint();
        return clock.elapsed();
    }

    void report(const char* what, qint64 milliseconds) {
        RecordProperty(what, std::to_string(milliseconds));
        std::printf("    %-28s %lld ms\n", what, static_cast<long long>(milliseconds));
    }
};

/// The longest time for which the window's thread worked before the event loop came round.
class Stall : public QObject {
  public:
    Stall() {
        connect(&beat_, &QTimer::timeout, this,
                [this] { longest = std::max(longest, clock_.restart()); });
        clock_.restart();
        beat_.start(5);
    }
    std::int64_t longest = 0;

  private:
    QTimer beat_;
    CpuClock clock_;
};

}  // namespace

TEST_F(LongList, LoadsMovesAndRemovesAtOnce) {
    listOfMostlyMissingFiles();
    const qint64 load = painted([this] { open({path}); });
    report("load_and_paint", load);
    ASSERT_EQ(list().rowCount(), entries);
    EXPECT_LT(load, 1500);

    EXPECT_TRUE(waitFor([this] { return isKnown(entries - 99); }))
        << "the duration of a late entry was never read";

    list().selectRow(entries / 2);
    const qint64 move = painted([this] { button("CommandMoveUp1").click(); });
    report("move_up", move);
    EXPECT_EQ(list().currentRow(), entries / 2 - 1);
    EXPECT_LT(move, 300);

    const qint64 remove = painted([this] { button("CommandRemove1").click(); });
    report("remove", remove);
    EXPECT_EQ(list().rowCount(), entries - 1);
    EXPECT_LT(remove, 300);

    const qint64 select =
        painted([this] { QTest::keySequence(window.get(), QKeySequence(u"Ctrl+A"_s)); });
    report("select_all", select);
    EXPECT_EQ(list().selectedRows().size(), std::size_t(entries - 1));
    EXPECT_LT(select, 300);

    const qint64 clear = painted([this] { button("Button2").click(); });
    report("clear", clear);
    EXPECT_EQ(list().rowCount(), 0);
    EXPECT_LT(clear, 2000);
}

TEST_F(LongList, TheWindowRunsOnWhileDurationsArrive) {
    listOfFilesNeverRead();
    open({path});
    ASSERT_EQ(list().rowCount(), entries);
    ASSERT_FALSE(isKnown(entries)) << "all was known at once: this measures nothing";
    int arrived = 0;
    QObject::connect(&engine(), &player::PlayerEngine::ItemInfoChanged, window.get(),
                     [&arrived] { ++arrived; });
    settle();  // the first painting of the list is not what is measured

    Stall stall;
    QElapsedTimer clock;
    clock.start();
    int row = 1;
    EXPECT_TRUE(waitFor(
        [&] {
            while (row <= entries && isKnown(row)) ++row;
            return row > entries;
        },
        4 * patience))
        << "still unknown: " << row;
    report("all_durations", clock.elapsed());
    report("longest_stall_meanwhile", stall.longest);
    EXPECT_GT(arrived, entries / 10);
    EXPECT_LT(stall.longest, 500);
}

TEST_F(LongList, RowsOnScreenAreReadFirst) {
    listOfFilesNeverRead();
    open({path});
    ASSERT_FALSE(isKnown(entries)) << "all was known at once: this shows nothing";
    list().ensureVisible(entries);
    const auto [first, last] = list().shownRows();
    ASSERT_EQ(last, entries);
    ASSERT_LT(first, entries);

    EXPECT_TRUE(waitFor([&, first = first] {
        for (int row = first; row <= entries; ++row)
            if (!isKnown(row)) return false;
        return true;
    }));
    EXPECT_FALSE(isKnown(first - 1000)) << "rows that nobody sees were read before";
}
