// SPDX-License-Identifier: GPL-3.0-or-later
#include <fstream>

#include <QDropEvent>
#include <QMimeData>

#include "tests/support/MainWindow.h"

using namespace Qt::Literals::StringLiterals;
using namespace support;

namespace {

struct Drop : MainWindow {
    bool boxDuringDrop = false;  // while the last drop had not returned

    /// Drops files on the upper half of a row; 0 = on the empty space below the rows. Returns
    /// whether the list took them.
    bool drop(const QStringList& paths, int row) {
        QMimeData data;
        QList<QUrl> urls;
        for (const QString& path : paths) urls.append(QUrl::fromLocalFile(path));
        data.setUrls(urls);
        QWidget* area = list().viewport();
        const QRect rect = list().visualRect(list().model()->index(row - 1, 2));
        const QPoint place =
            row == 0 ? area->rect().bottomRight() - QPoint(5, 5) : rect.topLeft() + QPoint(5, 2);
        if (!area->acceptDrops() || !list().acceptDrops()) return false;
        QDragEnterEvent enter(place, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(area, &enter);
        QDropEvent dropped(place, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        if (enter.isAccepted()) QCoreApplication::sendEvent(area, &dropped);
        boxDuringDrop = openWindow("MsgBox") != nullptr;
        settle();
        EXPECT_TRUE(waitForDisk(*window));
        return enter.isAccepted();
    }

    QString listFile(const QString& name, const QStringList& songs) {
        std::ofstream file(platform::toPath(folder.file(name)));
        for (const QString& entry : songs) file << entry.toStdString() << "\r\n";
        return folder.file(name);
    }
};

}  // namespace

TEST_F(Drop, FilesGoInFrontOfTheRowInTheirOrder) {
    addSongs(2);
    EXPECT_TRUE(drop({song(u"b.mp3"_s), song(u"a.mp3"_s)}, 2));
    EXPECT_EQ(titles(), QStringList({u"1.mp3"_s, u"b.mp3"_s, u"a.mp3"_s, u"2.mp3"_s}));
    EXPECT_EQ(list().currentRow(), 2);
}

TEST_F(Drop, FilesDroppedBelowTheRowsGoToTheEnd) {
    addSongs(2);
    EXPECT_TRUE(drop({song(u"x.mp3"_s)}, 0));
    EXPECT_EQ(titles().last(), u"x.mp3"_s);
    EXPECT_EQ(list().currentRow(), 3);
}

TEST_F(Drop, FilesDroppedOnAnEmptyListMakeANewList) {
    EXPECT_TRUE(drop({song(u"x.mp3"_s)}, 0));
    EXPECT_EQ(text("Label7"), u"Playlist loaded: New list not yet saved."_s);
}

TEST_F(Drop, AFolderIsAddedInNaturalOrder) {
    song(u"10.mp3"_s);
    song(u"9.mp3"_s);
    EXPECT_TRUE(drop({platform::toQString(folder.path())}, 0));
    EXPECT_EQ(titles(), QStringList({u"9.mp3"_s, u"10.mp3"_s}));
}

TEST_F(Drop, AListIsLoaded) {
    const QStringList old = addSongs(2);
    const QString path = listFile(u"new.m3u"_s, {song(u"x.mp3"_s)});
    EXPECT_TRUE(drop({path}, 1));
    EXPECT_EQ(titles(), QStringList({u"x.mp3"_s}));
    EXPECT_EQ(text("Label7"), path);
}

TEST_F(Drop, ABrokenListIsRefusedAndTheOldOneStays) {
    addSongs(2);
    std::ofstream(folder.path() / "bad.m3u", std::ios::binary) << std::string(100, '\0');
    const auto seen = answerMessageBox(QMessageBox::Ok);
    drop({folder.file(u"bad.m3u"_s)}, 1);
    EXPECT_TRUE(allAnswered());
    EXPECT_EQ(seen->text, u"Error loading playlist"_s);
    EXPECT_EQ(list().rowCount(), 2);
}

TEST_F(Drop, NothingIsTakenWhileTheListIsLocked) {
    addSongs(2);
    press("CommandPlay1");
    EXPECT_FALSE(drop({song(u"x.mp3"_s)}, 1));
    EXPECT_EQ(list().rowCount(), 2);
    press("CommandStop1");
    EXPECT_TRUE(drop({song(u"x.mp3"_s)}, 1));
    EXPECT_EQ(list().rowCount(), 3);
}

TEST_F(Drop, ArgumentsThatDoNotExistAreNamed) {
    const auto seen = answerMessageBox(QMessageBox::Ok);
    open({song(u"x.mp3"_s), folder.file(u"no such.mp3"_s)});
    EXPECT_TRUE(allAnswered());
    EXPECT_THAT(seen->text.toStdString(), testing::HasSubstr("no such.mp3"));
    EXPECT_EQ(titles(), QStringList({u"x.mp3"_s}));
}

// The program that the files come from waits for the drop to return.
TEST_F(Drop, ReturnsBeforeItAsksOrTells) {
    addSongs(1);
    std::ofstream(folder.path() / "notes.txt") << "no sound";
    const auto seen = answerMessageBox(QMessageBox::Ok);
    EXPECT_TRUE(drop({folder.file(u"notes.txt"_s)}, 0));
    EXPECT_FALSE(boxDuringDrop);
    EXPECT_TRUE(allAnswered());
    EXPECT_TRUE(seen->text.contains(u"notes.txt"_s)) << seen->text.toStdString();
    EXPECT_EQ(list().rowCount(), 1);
}

TEST_F(Drop, AListWithSoundsIsAddedAndReplacesNothing) {
    addSongs(2);
    const QString path = listFile(u"new.m3u"_s, {song(u"x.mp3"_s)});
    EXPECT_TRUE(drop({song(u"a.mp3"_s), path}, 0));
    EXPECT_EQ(titles(), QStringList({u"1.mp3"_s, u"2.mp3"_s, u"a.mp3"_s, u"x.mp3"_s}));
}

TEST_F(Drop, TheSecondListIsAddedToTheFirst) {
    addSongs(2);
    const QString first = listFile(u"first.m3u"_s, {song(u"x.mp3"_s)});
    const QString second = listFile(u"second.m3u"_s, {song(u"y.mp3"_s)});
    EXPECT_TRUE(drop({first, second}, 0));
    EXPECT_EQ(titles(), QStringList({u"x.mp3"_s, u"y.mp3"_s}));
    EXPECT_EQ(text("Label7"), first);
}

TEST_F(Drop, ATitleWithMarkupIsATooltipLetterByLetter) {
    const QString path = song(u"<img src=x> b.mp3"_s);
    EXPECT_TRUE(drop({path}, 0));
    const QString tip = list().model()->index(0, 2).data(Qt::ToolTipRole).toString();
    EXPECT_TRUE(tip.contains(u"&lt;img src=x&gt; b.mp3"_s)) << tip.toStdString();
}
