// SPDX-License-Identifier: GPL-3.0-or-later
// A list of 20,000 entries: what the user waits for. Limits are several times what an idle machine
// takes; the figures are printed.
#include <fstream>

#include <QElapsedTimer>
#include <QTimer>

#include "tests/support/MainWindow.h"

using namespace Qt::Literals::StringLiterals;
using namespace support;

namespace {

constexpr int entries = 20000;

struct LongList : MainWindow {
    QString path;

    void SetUp() override {
        MainWindow::SetUp();
        path = folder.file(u"long.m3u"_s);
        std::ofstream file(platform::toPath(path), std::ios::binary);
        const QString real = song(u"real.mp3"_s);
        for (int i = 0; i < entries; ++i) {
            if (i % 100 == 0) {
                file << real.toStdString() << "\r\n";
            } else {
                file << folder.file(u"song %1.mp3"_s.arg(i)).toStdString() << "\r\n";
            }
        }
    }

    /// Milliseconds that an action takes until its result is painted.
    template <class Action>
    qint64 painted(Action&& action) {
        QElapsedTimer clock;
        clock.start();
        action();
        list().viewport()->repaint();
        return clock.elapsed();
    }

    void report(const char* what, qint64 milliseconds) {
        RecordProperty(what, std::to_string(milliseconds));
        std::printf("    %-28s %lld ms\n", what, static_cast<long long>(milliseconds));
    }
};

/// The longest time for which the event loop did not come round.
class Stall : public QObject {
  public:
    Stall() {
        connect(&beat_, &QTimer::timeout, this,
                [this] { longest = std::max(longest, clock_.restart()); });
        clock_.start();
        beat_.start(5);
    }
    qint64 longest = 0;

  private:
    QTimer beat_;
    QElapsedTimer clock_;
};

}  // namespace

TEST_F(LongList, LoadsMovesAndRemovesAtOnce) {
    const qint64 load = painted([this] { window->openPaths({path}); });
    report("load_and_paint", load);
    ASSERT_EQ(list().rowCount(), entries);
    EXPECT_LT(load, 1500);

    Stall stall;
    EXPECT_TRUE(waitFor([this] { return !list().subItem(entries - 99, 1).isEmpty(); }))
        << "the duration of a late entry was never read";
    report("longest_stall", stall.longest);
    EXPECT_LT(stall.longest, 400);

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
