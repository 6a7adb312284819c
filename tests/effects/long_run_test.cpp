// SPDX-License-Identifier: GPL-3.0-or-later
// The window while a run goes on, files that cannot be changed, and the end of the window within.
#include <algorithm>
#include <fstream>

#include <QTimer>

#include "tests/effects/EffectsWindow.h"
#include "tests/support/CpuClock.h"
#include "tests/support/Sound.h"
#include "tests/support/Unwritable.h"

using namespace Qt::Literals::StringLiterals;
using support::answerMessageBox;
using support::click;
using support::decodeWithFfmpeg;
using support::find;
using support::fixture;
using support::readBytes;
using support::settle;
using support::waitFor;

namespace {

const char* const sixteen[] = {
    "CommandLoad1",   "CommandSave1",     "CommandAddSong1", "CommandRemove1",
    "CommandMoveUp1", "CommandMoveDown1", "CommandPlay1",    "CommandPause1",
    "CommandStop1",   "CommandPrev1",     "CommandNext1",    "Button1",
    "Button2",        "Button7",          "CommandRewind1",  "CommandForward1"};

/// A window with something that looks at it all through a run.
struct LongRun : support::EffectsWindow {
    QTimer watch;

    void watchWith(const std::function<void()>& look) {
        watch.callOnTimeout(look);
        watch.start(5);
    }
    bool atWork() { return text("Label5").startsWith(u"Working on: "_s); }
    int countEnabled() {
        return static_cast<int>(std::count_if(
            std::begin(sixteen), std::end(sixteen),
            [&](const char* name) { return find<QWidget>(*window, name).isEnabled(); }));
    }
    QString addMusic(const QString& name) { return add("music.ogg", name); }
    void broken(const QString& name) {
        const auto path = folder.path() / name.toStdString();
        std::ofstream(path) << "This is no sound at all.";
        open({platform::toQString(path)});
    }
};

TEST_F(LongRun, TheWindowShowsTheWorkAndTakesNoOtherCommand) {
    addMusic(u"1.ogg"_s);
    addMusic(u"2.ogg"_s);
    addMusic(u"3.ogg"_s);
    select({1, 3});
    choose("mnuEch_Selected");
    QWidget& other = dialog("frmEcho_Effects");
    choose("mnuNormalize_selected");
    int looks = 0;
    QStringList lines;
    std::vector<int> values;
    std::vector<double> fractions;
    watchWith([&] {
        if (!atWork()) return;
        ++looks;
        if (!lines.contains(text("Label5"))) lines << text("Label5");
        EXPECT_EQ(countEnabled(), 0);
        EXPECT_TRUE(find<QWidget>(*window, "Button12").isEnabled());
        EXPECT_FALSE(list().isEnabled());
        EXPECT_FALSE(other.isEnabled());
        EXPECT_TRUE(bar().isVisible());
        EXPECT_EQ(bar().maximum(), 2);  // of the rows 1 and 3 the last is never counted
        values.push_back(bar().value());
        fractions.push_back(bar().fraction());
    });
    apply(dialog("frmEffects"));
    watch.stop();
    EXPECT_GT(looks, 3);
    EXPECT_EQ(lines, (QStringList{u"Working on: 1.ogg"_s, u"Working on: 3.ogg"_s}));
    EXPECT_TRUE(std::is_sorted(values.begin(), values.end()));
    EXPECT_EQ(values.back(), 2);
    std::sort(fractions.begin(), fractions.end());
    EXPECT_GT(std::unique(fractions.begin(), fractions.end()) - fractions.begin(), 3);
    EXPECT_EQ(countEnabled(), 16);
    EXPECT_TRUE(list().isEnabled());
    EXPECT_TRUE(other.isEnabled());
    EXPECT_FALSE(bar().isVisible());
    EXPECT_EQ(bar().value(), 0);
    EXPECT_TRUE(text("Label5").isEmpty());
}

TEST_F(LongRun, TheWindowIsNeverBlockedForLong) {
    addMusic(u"1.ogg"_s);
    select({1});
    choose("mnuNormalize_selected");
    support::CpuClock sinceLast;
    std::int64_t longest = -1;
    watchWith([&] {
        const std::int64_t passed = sinceLast.restart();
        if (atWork()) longest = std::max(longest, passed);
    });
    apply(dialog("frmEffects"));
    EXPECT_GE(longest, 0) << "no event was let through";
    EXPECT_LT(longest, 300) << "milliseconds of work on the window's thread";
}

TEST_F(LongRun, TheSaveButtonCannotInterfere) {
    const QString file = addMusic(u"1.ogg"_s);
    const QString second = addMusic(u"2.ogg"_s);
    select({1, 2});
    choose("mnuNormalize_selected");
    int presses = 0;
    watchWith([&] {
        if (!atWork()) return;
        ++presses;
        click(*window, "Button12");
    });
    apply(dialog("frmEffects"));
    watch.stop();
    EXPECT_GT(presses, 3);
    for (int row : {1, 2})
        EXPECT_TRUE(list().mark(row).isEmpty()) << list().mark(row).toStdString();
    const support::Sound old = decodeWithFfmpeg(fixture("music.ogg"));
    for (const QString& name : {file, second})
        EXPECT_EQ(decodeWithFfmpeg(platform::toPath(name)).frames(), old.frames());
}

TEST_F(LongRun, ClosingTheWindowEndsTheRunAfterTheFileInHand) {
    const QString first = addMusic(u"1.ogg"_s);
    const QString second = addMusic(u"2.ogg"_s);
    const QString third = addMusic(u"3.ogg"_s);
    select({1, 2, 3});
    choose("mnuNormalize_selected");
    QPointer<QWidget> form(&dialog("frmEffects"));
    bool closed = false;
    QObject::connect(window.get(), &app::frmMain::closed, window.get(), [&] { closed = true; });
    const auto question = answerMessageBox(QMessageBox::No);
    watchWith([&] {
        if (!atWork() || bar().fraction() <= 0) return;
        watch.stop();
        window->close();
    });
    click(*form, "Command1");
    settle();
    EXPECT_TRUE(closed);
    EXPECT_FALSE(window->isVisible());
    EXPECT_TRUE(form.isNull());
    EXPECT_EQ(question->title, u"Save playlist?"_s);
    const auto old = readBytes(fixture("music.ogg"));
    EXPECT_NE(readBytes(platform::toPath(first)), old);
    EXPECT_EQ(decodeWithFfmpeg(platform::toPath(first)).frames(),
              decodeWithFfmpeg(fixture("music.ogg")).frames());
    EXPECT_EQ(readBytes(platform::toPath(second)), old);
    EXPECT_EQ(readBytes(platform::toPath(third)), old);
}

TEST_F(LongRun, FilesThatCouldNotBeChangedAreMarkedUntilTheNextRun) {
    add("tone.wav", u"good.wav"_s);
    broken(u"broken.mp3"_s);
    const QString gone = add("tone.wav", u"gone.wav"_s);
    const QString locked = add("tone.wav", u"locked.wav"_s);
    QFile::remove(gone);
    const auto before = readBytes(platform::toPath(locked));
    {
        const support::Unwritable unwritable(platform::toPath(locked));
        select({1, 2, 3, 4});
        choose("mnuNormalize_selected");
        EXPECT_EQ(apply(dialog("frmEffects"))->text, u"Effects applied to selected file(s)."_s);
    }
    EXPECT_TRUE(list().mark(1).isEmpty());
    EXPECT_TRUE(list().mark(2).contains(u"broken.mp3"_s)) << list().mark(2).toStdString();
    EXPECT_TRUE(list().mark(3).contains(u"gone.wav"_s)) << list().mark(3).toStdString();
    EXPECT_TRUE(list().mark(4).contains(u"locked.wav"_s)) << list().mark(4).toStdString();
    EXPECT_EQ(readBytes(platform::toPath(locked)), before);
    EXPECT_FALSE(QFile::exists(gone)) << "the sound of another file was saved in its place";
    const auto shown = list().model()->index(1, 2).data(Qt::ToolTipRole).toString();
    EXPECT_EQ(shown, list().mark(2));
    add("tone.wav", u"another.wav"_s);  // the rows are made anew
    EXPECT_TRUE(list().mark(3).contains(u"gone.wav"_s));
    EXPECT_TRUE(list().mark(4).contains(u"locked.wav"_s));
    EXPECT_TRUE(list().mark(5).isEmpty());
    select({1});
    choose("mnuNormalize_selected");
    apply(dialog("frmEffects"));
    for (int row = 1; row <= 4; ++row) EXPECT_TRUE(list().mark(row).isEmpty()) << row;
}

TEST_F(LongRun, TwoHundredMixedFilesWithBrokenAndReadOnlyOnesAmongThem) {
    const char* const kinds[] = {"tone.wav", "tone.mp3", "tone.ogg", "tone.wma", "tone.mp2"};
    std::vector<QString> good;
    std::vector<QString> locked;
    for (int i = 0; i < 200; ++i) {
        if (i == 40 || i == 90 || i == 150) {
            broken(u"%1 broken.mp3"_s.arg(i));
            continue;
        }
        const char* kind = kinds[i % 5];
        const QString path = add(kind, u"%1 %2"_s.arg(i).arg(QString::fromUtf8(kind)));
        (i == 60 || i == 151 ? locked : good).push_back(path);
    }
    ASSERT_EQ(list().rowCount(), 200);
    const support::Unwritable first(platform::toPath(locked[0]));
    const support::Unwritable second(platform::toPath(locked[1]));
    list().setAllSelected(true);
    choose("mnuFadeOut_selected");
    apply(dialog("frmFadeOut"));
    int marked = 0;
    for (int row = 1; row <= 200; ++row) marked += list().mark(row).isEmpty() ? 0 : 1;
    EXPECT_EQ(marked, 5);
    for (const QString& path : locked)
        EXPECT_EQ(readBytes(platform::toPath(path)),
                  readBytes(fixture(path.section(u' ', -1).toStdString())));
    for (const QString& path : good) {
        const std::string kind = path.section(u' ', -1).toStdString();
        EXPECT_NE(readBytes(platform::toPath(path)), readBytes(fixture(kind))) << kind;
    }
    for (std::size_t i = 0; i < good.size(); i += 20) {
        const std::string kind = good[i].section(u' ', -1).toStdString();
        EXPECT_EQ(decodeWithFfmpeg(platform::toPath(good[i])).frames(),
                  decodeWithFfmpeg(fixture(kind)).frames())
            << good[i].toStdString();
    }
    EXPECT_EQ(QDir(folder.file(u"."_s)).entryList(QDir::Files | QDir::Hidden).size(), 200);
}

}  // namespace
