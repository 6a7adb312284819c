// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/MainWindow.h"

using namespace Qt::Literals::StringLiterals;
using namespace support;
using testing::ElementsAre;

namespace {

struct Editing : MainWindow {
    bool totalsShow(const QString& duration) {
        return waitFor([&] { return text("Label2") == u"Total Duration (mm.s): "_s + duration; });
    }
};

}  // namespace

TEST_F(Editing, AddingToAnEmptyList) {
    const auto seen = answerFileDialog(song(u"first song.mp3"_s));
    press("CommandAddSong1");
    EXPECT_TRUE(allAnswered());
    EXPECT_EQ(list().rowCount(), 1);
    EXPECT_EQ(list().currentRow(), 1);
    EXPECT_TRUE(list().hasFocus());
    EXPECT_EQ(text("Label7"), u"Playlist loaded: New list not yet saved."_s);
    EXPECT_EQ(list().rowText(1), u"1"_s);
    const QStringList filters{u"All Supported Files(*.mp3;*.mp2;*.wav;*.ogg;*.wma)"_s,
                              u"MP3 and MP2 sounds (*.mp3;*.mp2)"_s,
                              u"WAV sounds (*.wav)"_s,
                              u"OGG Vorbis sounds (*.ogg)"_s,
                              u"Windows Media sounds (*.wma)"_s,
                              u"All files (*.*)"_s};
    EXPECT_EQ(seen->filters, filters);
    EXPECT_EQ(seen->selectedFilter, filters.first());
    EXPECT_EQ(seen->fileName, QString());
}

TEST_F(Editing, AddingGoesInFrontOfTheSelectedRow) {
    addSongs(4);
    list().selectRow(3);
    addByDialog(song(u"new.mp3"_s));
    EXPECT_EQ(titles(),
              QStringList({u"1.mp3"_s, u"2.mp3"_s, u"new.mp3"_s, u"3.mp3"_s, u"4.mp3"_s}));
    EXPECT_EQ(list().currentRow(), 3);
    EXPECT_THAT(list().selectedRows(), ElementsAre(3));
    EXPECT_EQ(list().rowText(5), u"5"_s);
}

TEST_F(Editing, ACancelledDialogAddsNothing) {
    addSongs(2);
    list().selectRow(2);
    cancelFileDialog();
    press("CommandAddSong1");
    EXPECT_TRUE(allAnswered());
    EXPECT_EQ(list().rowCount(), 2);
    EXPECT_EQ(list().currentRow(), 2);
    EXPECT_TRUE(list().hasFocus());
}

TEST_F(Editing, TitleAndDurationOfATaggedFile) {
    open({song(u"tagged.mp3"_s, "tone.mp3")});
    const QString title = engine().PlaylistGetItemInfo(0, 0, player::ItemInfoTitle);
    EXPECT_FALSE(title.isEmpty());
    EXPECT_EQ(list().subItem(1, 2), title);
    EXPECT_EQ(list().subItem(1, 1), engine().PlaylistGetItemInfo(0, 0, player::ItemInfoDuration));
}

TEST_F(Editing, AFileWithoutATitleShowsItsName) {
    open({song(u"Ünicode “x”.mp3"_s)});
    EXPECT_EQ(list().subItem(1, 2), u"Ünicode “x”.mp3"_s);
}

TEST_F(Editing, RemoveTakesTheSelectedEntryAndTheFirstRowIsSelectedThen) {
    addSongs(3);
    list().selectRow(2);
    press("CommandRemove1");
    EXPECT_EQ(titles(), QStringList({u"1.mp3"_s, u"3.mp3"_s}));
    EXPECT_EQ(list().currentRow(), 1);
    EXPECT_TRUE(list().hasFocus());
    EXPECT_EQ(engine().PlaylistGetCount(0), 2);
}

TEST_F(Editing, RemoveAndMoveOnAnEmptyListDoNothing) {
    press("CommandRemove1");
    press("CommandMoveUp1");
    press("CommandMoveDown1");
    EXPECT_EQ(list().rowCount(), 0);
}

TEST_F(Editing, MoveUpAndDown) {
    addSongs(3);
    list().selectRow(3);
    press("CommandMoveUp1");
    EXPECT_EQ(titles(), QStringList({u"1.mp3"_s, u"3.mp3"_s, u"2.mp3"_s}));
    EXPECT_THAT(list().selectedRows(), ElementsAre(2));
    press("CommandMoveUp1");
    press("CommandMoveDown1");
    EXPECT_EQ(titles(), QStringList({u"1.mp3"_s, u"3.mp3"_s, u"2.mp3"_s}));
    EXPECT_EQ(list().currentRow(), 2);
}

TEST_F(Editing, TheEndsOfTheListDoNotMove) {
    addSongs(3);
    press("CommandMoveUp1");
    EXPECT_EQ(list().currentRow(), 1);
    list().selectRow(3);
    press("CommandMoveDown1");
    EXPECT_EQ(list().currentRow(), 3);
    EXPECT_EQ(titles(), QStringList({u"1.mp3"_s, u"2.mp3"_s, u"3.mp3"_s}));
}

TEST_F(Editing, ClearEmptiesListAndCaption) {
    addSongs(5);
    press("Button2");
    EXPECT_EQ(list().rowCount(), 0);
    EXPECT_EQ(engine().PlaylistGetCount(0), 0);
    EXPECT_EQ(text("Label7"), QString());
    press("Button2");
    EXPECT_EQ(list().rowCount(), 0) << "an empty list may be cleared";
}

TEST_F(Editing, TotalsFollowTheListWithinTwoSeconds) {
    addSongs(2);
    EXPECT_TRUE(waitFor([this] { return text("Label4") == u"Tolal File Count: 2"; }));
    press("Button2");
    EXPECT_TRUE(totalsShow(u"0.0"_s));
    EXPECT_EQ(text("Label4"), u"Tolal File Count: 0"_s);
}

TEST_F(Editing, TotalsAreAddedUpFromWhatTheListShows) {
    addSongs(2);
    list().setSubItem(1, 1, u"1:30"_s);
    list().setSubItem(2, 1, u"1:30"_s);
    EXPECT_TRUE(totalsShow(u"3.0"_s));
}

TEST_F(Editing, MoreThanSeventyEightMinutesTurnRed) {
    addSongs(2);
    list().setSubItem(1, 1, u"77:59"_s);
    list().setSubItem(2, 1, u"0:01"_s);
    ASSERT_TRUE(totalsShow(u"78.0"_s));
    const auto ink = [this] {
        return find<QLabel>(*window, "Label2").palette().color(QPalette::WindowText);
    };
    EXPECT_EQ(ink(), app::skinColour(u"text"_s));
    list().setSubItem(2, 1, u"0:02"_s);
    EXPECT_TRUE(waitFor([&] { return ink() == app::skinColour(u"alarm"_s); }));
    EXPECT_EQ(text("Label2"), u"Total Duration (mm.s): 78.0"_s);
    list().setSubItem(2, 1, u"0:01"_s);
    EXPECT_TRUE(waitFor([&] { return ink() == app::skinColour(u"text"_s); }));
}
