// SPDX-License-Identifier: GPL-3.0-or-later
#include <filesystem>
#include <fstream>

#include <QStandardPaths>

#include "tests/support/MainWindow.h"

using namespace Qt::Literals::StringLiterals;
using namespace support;
using testing::HasSubstr;

namespace {

struct Files : MainWindow {
    std::string content(const QString& path) {
        std::ifstream file(platform::toPath(path), std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

    std::shared_ptr<const SeenFileDialog> save(const QString& path, int filter = 0) {
        auto seen = answerFileDialog(path, filter);
        press("CommandSave1");
        EXPECT_TRUE(allAnswered());
        return seen;
    }

    void load(const QString& path) {
        answerFileDialog(path);
        press("CommandLoad1");
        EXPECT_TRUE(allAnswered());
        EXPECT_TRUE(waitForDisk(*window));
    }
};

}  // namespace

TEST_F(Files, SaveWritesOnePathPerLineAndNamesTheFile) {
    const QStringList songs = addSongs(2);
    const QString path = folder.file(u"my list.m3u"_s);
    const auto seen = save(path);
    EXPECT_EQ(content(path), (songs[0] + u"\r\n"_s + songs[1] + u"\r\n"_s).toStdString());
    EXPECT_EQ(text("Label7"), u"Playlist loaded: "_s + path);
    EXPECT_EQ(seen->filters, QStringList({u"M3U PlayList (*.m3u)"_s, u"PLS PlayList (*.pls)"_s}));
    EXPECT_EQ(seen->selectedFilter, u"M3U PlayList (*.m3u)"_s);
}

TEST_F(Files, TheFilterDecidesTheFormatNotTheName) {
    addSongs(1);
    const QString pls = folder.file(u"looks like.m3u"_s);
    save(pls, 2);
    EXPECT_THAT(content(pls), HasSubstr("[playlist]"));
    const QString m3u = folder.file(u"looks like.pls"_s);
    save(m3u, 1);
    EXPECT_THAT(content(m3u), testing::Not(HasSubstr("[playlist]")));
}

TEST_F(Files, ACancelledSaveChangesNothing) {
    addSongs(2);
    cancelFileDialog();
    press("CommandSave1");
    EXPECT_TRUE(allAnswered());
    EXPECT_EQ(text("Label7"), u"Playlist loaded: New list not yet saved."_s);
}

TEST_F(Files, AFailedSaveSaysSoAndKeepsTheNewCaption) {
    addSongs(2);
    // No file can be made there, not even by root.
    const QString path = u"/proc/tracksmith.m3u"_s;
    answerFileDialog(path);
    const auto seen = answerMessageBox(QMessageBox::Ok);
    press("CommandSave1");
    EXPECT_TRUE(allAnswered());
    EXPECT_EQ(seen->text, u"Error saving playlist"_s);
    EXPECT_EQ(seen->title, u"Tracksmith"_s);
    EXPECT_EQ(seen->buttons, QMessageBox::StandardButtons(QMessageBox::Ok));
    EXPECT_EQ(seen->icon, QMessageBox::NoIcon);
    EXPECT_EQ(text("Label7"), u"Playlist loaded: "_s + path);
    EXPECT_EQ(list().rowCount(), 2);
}

TEST_F(Files, LoadShowsTheListNumberedFromOne) {
    addSongs(3);
    const QString path = folder.file(u"list.pls"_s);
    save(path, 2);
    press("Button2");
    load(path);
    EXPECT_EQ(text("Label7"), path);
    EXPECT_EQ(titles(), QStringList({u"1.mp3"_s, u"2.mp3"_s, u"3.mp3"_s}));
    EXPECT_EQ(list().rowText(1), u"1"_s);
    EXPECT_EQ(list().rowText(3), u"3"_s);
    EXPECT_EQ(list().currentRow(), 1);
}

TEST_F(Files, LoadOffersTheListFormats) {
    const auto seen = cancelFileDialog();
    press("CommandLoad1");
    EXPECT_TRUE(allAnswered());
    EXPECT_EQ(seen->filters,
              QStringList({u"Playlist formats (*.m3u;*.pls)"_s, u"M3U PlayList (*.m3u)"_s,
                           u"PLS PlayList (*.pls)"_s, u"All files (*.*)"_s}));
    EXPECT_EQ(seen->selectedFilter, u"Playlist formats (*.m3u;*.pls)"_s);
}

TEST_F(Files, WhatIsNoPlaylistIsRefusedAndTheOldListStays) {
    addSongs(2);
    const QString caption = text("Label7");
    for (const QString& path :
         {song(u"a song.m3u"_s, "tone.mp3"), folder.file(u"page.m3u"_s), folder.file(u"x.pls"_s)}) {
        if (!path.endsWith(u"a song.m3u")) {
            std::ofstream(platform::toPath(path)) << "<html><body>Hello there</body></html>";
        }
        const auto seen = answerFileDialog(path);
        const auto box = answerMessageBox(QMessageBox::Ok);
        press("CommandLoad1");
        EXPECT_TRUE(allAnswered());
        EXPECT_EQ(box->text, u"Error loading playlist"_s);
        EXPECT_EQ(box->icon, QMessageBox::NoIcon);
        EXPECT_EQ(text("Label7"), caption);
        EXPECT_EQ(titles(), QStringList({u"1.mp3"_s, u"2.mp3"_s}));
    }
}

TEST_F(Files, TheDialogsLeaveNothingAmongTheUsersSettings) {
    addSongs(1);
    save(folder.file(u"kept.m3u"_s));
    load(folder.file(u"kept.m3u"_s));
    const auto settings = QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation);
    EXPECT_FALSE(settings.isEmpty());
    EXPECT_FALSE(std::filesystem::exists(platform::toPath(settings + u"/QtProject.conf"_s)));
}

TEST_F(Files, ACancelledLoadChangesNothing) {
    addSongs(2);
    cancelFileDialog();
    press("CommandLoad1");
    EXPECT_TRUE(allAnswered());
    EXPECT_EQ(list().rowCount(), 2);
}

TEST_F(Files, MissingEntriesAndUrlsSurviveLoadAndSave) {
    const std::string entries =
        "http://example.invalid/stream.mp3\r\n" + folder.file(u"gone.mp3"_s).toStdString() + "\r\n";
    const QString path = folder.file(u"kept.m3u"_s);
    std::ofstream(platform::toPath(path), std::ios::binary) << "#EXTM3U\n" + entries;
    load(path);
    EXPECT_EQ(list().rowCount(), 2);
    const QString copy = folder.file(u"copy.m3u"_s);
    save(copy);
    EXPECT_EQ(content(copy), entries);
}

TEST_F(Files, AnEmptyFileIsAnEmptyList) {
    addSongs(2);
    const QString path = folder.file(u"empty.m3u"_s);
    std::ofstream(platform::toPath(path), std::ios::binary).flush();
    load(path);
    EXPECT_EQ(list().rowCount(), 0);
    EXPECT_EQ(text("Label7"), path);
}
