// SPDX-License-Identifier: GPL-3.0-or-later
// Every control and menu item of the main window: name, caption, order, and whether it is enabled
// while nothing plays and after Play.
#include <set>

#include <QAccessible>
#include <QAction>
#include <QLineEdit>
#include <QMenu>
#include <QTimer>

#include "tests/support/MainWindow.h"
#include "widgets/Application.h"
#include "widgets/SkinButton.h"
#include "widgets/SkinSlider.h"

using namespace Qt::Literals::StringLiterals;
using namespace support;
using testing::ElementsAreArray;

namespace {

struct Button {
    const char* name;
    const char* caption;
    bool enabledAfterPlay;
};

// In the window's own order.
constexpr Button buttons[] = {
    {"CommandRewind1", "<<< Rewind", true},
    {"CommandForward1", "Forward >>>", true},
    {"CommandLoad1", "Load list", false},
    {"CommandAddSong1", "Add file", false},
    {"CommandRemove1", "Remove", false},
    {"CommandMoveUp1", "Move up", false},
    {"CommandMoveDown1", "Move down", false},
    {"CommandSave1", "Save As list", false},
    {"Button7", "Burn to CD", false},
    {"CommandPlay1", "Play", true},
    {"CommandPause1", "Pause", true},
    {"CommandStop1", "Stop", true},
    {"CommandPrev1", "Move up", true},
    {"CommandNext1", "Move down", true},
    {"Button1", "Options", false},
    {"Button2", "Clear list", false},
    {"Button12", "Save", true},
};

struct Item {
    const char* name;
    const char* caption;  // as stored without the mark of a mnemonic
};

constexpr Item playlistItems[] = {
    {"mnu2MP3Player", "Copy loaded files (playlist) to 'M3 Player' via USB port"},
    {"mnu_copy2folder", "Copy loaded files (playlist) to 'Project' folder"},
    {"mnuDeselectAll", "Deselect all of playlist"},
    {"mnuSelected_All", "Select all of playlist"},
    {"mnuEdit_IDTags_selected", "Edit MP3 ID tags of selected (MP3 format only!)"},
    {"mnuEffects_Selected", "Effects (common) to selected"},
    {"mnuTest", "Test Fade/ Overlay"},
    {"mnuAdd_Silence_end", "Add silence to end of selected"},
    {"mnuSilence2Frt", "Add silence to front of selected"},
    {"mnuAmpMinus_Selected", "Amplify - to selected"},
    {"mnuAmpPlus_Selected", "Amplify + to selected"},
    {"mnuEch_Selected", "Echo to selected"},
    {"mnuAutoFade_Selected", "Fade automatic (in && out) to selected"},
    {"mnuFadeIn_selected", "Fade in (soft to load) to front of selected"},
    {"mnuFadeOut_selected", "Fade out (loud to soft) to end of selected"},
    {"mnuTrim_Silence", "Trim Silence to selected"},
    {"mnuNormalize_selected", "Normalize to selected"},
    {"mnuOpen_in_Editor", "Open selected file in the Audio Editor"},
    {"mnuRename", "Rename selected file"},
};

constexpr Item burnItems[] = {
    {"mnuAudio_CDWriter", "Audio CD Writer"},
    {"mnuData_CDWriter", "Data CD Writer"},
    {"mnuCrossFader", "Cross Fade pre-burn Wizard"},
};

/// "&Copy (a && b)" as "Copy (a && b)": only the single mark goes.
QString withoutMnemonic(QString text) {
    for (qsizetype i = 0; i + 1 < text.size(); ++i) {
        if (text[i] != u'&') continue;
        if (text[i + 1] == u'&') {
            ++i;
        } else {
            text.remove(i, 1);
        }
    }
    return text;
}

QChar mnemonicOf(const QString& text) {
    for (qsizetype i = 0; i + 1 < text.size(); ++i) {
        if (text[i] != u'&') continue;
        if (text[i + 1] != u'&') return text[i + 1].toLower();
        ++i;
    }
    return {};
}

template <std::size_t count>
void compareMenu(const QMenu& menu, const Item (&items)[count]) {
    const QList<QAction*> actions = menu.actions();
    ASSERT_EQ(actions.size(), static_cast<qsizetype>(count));
    std::set<QChar> mnemonics;
    for (std::size_t i = 0; i < count; ++i) {
        const QAction& action = *actions[static_cast<qsizetype>(i)];
        EXPECT_EQ(action.objectName(), QLatin1String(items[i].name));
        EXPECT_EQ(withoutMnemonic(action.text()), QLatin1String(items[i].caption));
        EXPECT_TRUE(action.isEnabled()) << items[i].name;
        EXPECT_TRUE(mnemonics.insert(mnemonicOf(action.text())).second)
            << items[i].name << " shares its mnemonic";
    }
    EXPECT_FALSE(mnemonics.contains(QChar())) << "an item without a mnemonic";
}

struct Controls : MainWindow {};

}  // namespace

TEST_F(Controls, WindowTitle) {
    EXPECT_EQ(window->windowTitle(), u"Tracksmith v5.8"_s);
    EXPECT_EQ(widgets::Application::title(), u"Tracksmith"_s);
}

TEST_F(Controls, ButtonsHaveTheirCaptionsAndAreEnabledWhileIdle) {
    for (const Button& expected : buttons) {
        QAbstractButton& found = button(expected.name);
        EXPECT_TRUE(qobject_cast<widgets::SkinButton*>(&found)) << expected.name;
        EXPECT_EQ(found.text(), QLatin1String(expected.caption)) << expected.name;
        EXPECT_TRUE(found.isEnabled()) << expected.name;
        EXPECT_TRUE(found.isVisible()) << expected.name;
        EXPECT_FALSE(found.toolTip().isEmpty()) << expected.name;
        QAccessibleInterface* read = QAccessible::queryAccessibleInterface(&found);
        ASSERT_TRUE(read) << expected.name;
        EXPECT_FALSE(read->text(QAccessible::Name).isEmpty()) << expected.name;
    }
}

TEST_F(Controls, PlayLocksTheNineEditingButtonsAndStopReleasesThem) {
    press("CommandPlay1");
    for (const Button& expected : buttons) {
        EXPECT_EQ(button(expected.name).isEnabled(), expected.enabledAfterPlay) << expected.name;
    }
    for (const Item& item : playlistItems) {
        EXPECT_FALSE(find<QAction>(*window, item.name).isEnabled()) << item.name;
    }
    for (const Item& item : burnItems) {
        EXPECT_FALSE(find<QAction>(*window, item.name).isEnabled()) << item.name;
    }
    press("CommandStop1");
    for (const Button& expected : buttons) {
        EXPECT_TRUE(button(expected.name).isEnabled()) << expected.name;
    }
    EXPECT_TRUE(find<QAction>(*window, "mnuRename").isEnabled());
}

TEST_F(Controls, TabOrderIsTheOrderOfTheTable) {
    QStringList expected = {u"txtFile_Name"_s};
    for (const Button& entry : buttons) {
        if (QLatin1String(entry.name) != u"Button12") expected.append(QLatin1String(entry.name));
    }
    expected += {u"Slider1"_s, u"SliderVolume1"_s, u"ListView1"_s, u"Button12"_s};

    QWidget* start = &find<QWidget>(*window, "txtFile_Name");
    start->setFocus();
    QStringList reached;
    for (qsizetype i = 0; i < expected.size(); ++i) {
        reached.append(window->focusWidget()->objectName());
        QTest::keyClick(window->focusWidget(), Qt::Key_Tab);
    }
    EXPECT_EQ(reached, expected);
    EXPECT_EQ(window->focusWidget(), start) << "Tab goes round";
}

TEST_F(Controls, BothMenusHoldTheirItemsInOrder) {
    compareMenu(*window->mnuPlaylist_Menu, playlistItems);
    compareMenu(*window->mnuCDStuff, burnItems);
    EXPECT_EQ(window->mnuPlaylist_Menu->title(), u"Playlist_Menu"_s);
    EXPECT_EQ(window->mnuCDStuff->title(), u"CDStuff"_s);
}

TEST_F(Controls, TheOthersAreThereUnderTheirNames) {
    EXPECT_FALSE(find<QWidget>(*window, "Bar").isVisible());
    EXPECT_TRUE(find<QWidget>(*window, "PictureWaveform1").isVisible());
    EXPECT_TRUE(find<QWidget>(*window, "PictureWaveform2").isVisible());
    EXPECT_EQ(find<QLineEdit>(*window, "txtFile_Name").text(), QString());
    find<QLineEdit>(*window, "Text1");
    find<QFrame>(*window, "Frame1");
    find<QObject>(*window, "CommonDialog1");
    find<QObject>(*window, "PlayerEngine1");
    EXPECT_EQ(find<QTimer>(*window, "Timer1").interval(), 500);
    EXPECT_EQ(find<QTimer>(*window, "Timer2").interval(), 2000);
    EXPECT_TRUE(find<QTimer>(*window, "Timer1").isActive());
    EXPECT_TRUE(find<QTimer>(*window, "Timer2").isActive());
    for (const char* label : {"Label1", "Label2", "Label4", "Label5", "Label6", "Label7"}) {
        find<QLabel>(*window, label);
    }
    EXPECT_EQ(find<QLabel>(*window, "Label5").font().family(), u"Arial"_s);
}

TEST_F(Controls, SlidersHaveTheirRanges) {
    const auto& position = find<widgets::SkinSlider>(*window, "Slider1");
    EXPECT_EQ(position.minimum(), 0);
    EXPECT_EQ(position.maximum(), 100);
    EXPECT_EQ(position.value(), 0);
    const auto& volume = find<widgets::SkinSlider>(*window, "SliderVolume1");
    EXPECT_EQ(volume.minimum(), 0);
    EXPECT_EQ(volume.maximum(), 99);
    EXPECT_EQ(volume.value(), 99);
}

TEST_F(Controls, TheListsHaveTheirColumns) {
    const auto captions = [this](const char* name) {
        const QAbstractItemModel* model = find<widgets::ListView>(*window, name).model();
        QStringList texts;
        for (int i = 0; i < model->columnCount(); ++i) {
            texts.append(model->headerData(i, Qt::Horizontal).toString());
        }
        return texts;
    };
    EXPECT_EQ(captions("ListView1"), QStringList({u"Track"_s, u"Duration"_s, u"Title"_s}));
    EXPECT_EQ(captions("ListView2"), QStringList({u"Index"_s, u"Duration"_s, u"Title"_s}));
}

TEST_F(Controls, TheCommandMapNamesEachControlOnceAndItsOwnHandler) {
    std::set<std::string> seen;
    for (const app::frmMain::Command& command : app::frmMain::commands()) {
        EXPECT_TRUE(seen.insert(command.control).second) << command.control;
        EXPECT_EQ(std::string(command.control) + "_Click", command.handlerName);
        EXPECT_TRUE(window->findChild<QObject*>(QLatin1String(command.control))) << command.control;
    }
}

TEST_F(Controls, TheSecondDeckIsInert) {
    EXPECT_FALSE(find<QWidget>(*window, "ListView2").isVisible());
    EXPECT_FALSE(find<QWidget>(*window, "LabelPosition2").isVisible());
    QAbstractButton& pause = button("CommandPause2");
    EXPECT_FALSE(pause.isVisible());
    pause.click();
    EXPECT_EQ(engine().GetPlayerStatus(1), player::StatusStopped);
}

TEST_F(Controls, AClickOnTheStatusLineDoesNothing) {
    QTest::mouseClick(&find<QLabel>(*window, "Label5"), Qt::LeftButton);
    EXPECT_EQ(text("Label5"), QString());
}
