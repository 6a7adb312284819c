// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QAbstractSlider>
#include <QPointer>

#include "app/modules/modMain.h"
#include "tests/support/MainWindow.h"
#include "widgets/ProgressBar.h"

namespace support {

/// The real main window with sound files of its own in the list, and its effect dialogs.
struct EffectsWindow : MainWindow {
    void SetUp() override {
        modMain::EffectMode = 0;
        modMain::SelectedCount = 0;
        MainWindow::SetUp();
    }

    widgets::ProgressBar& bar() { return find<widgets::ProgressBar>(*window, "Bar"); }

    /// A copy of a fixture under another name, in the list.
    QString add(const char* fixtureName, const QString& name) {
        const QString path = song(name, fixtureName);
        open({path});
        return path;
    }
    QString add(const char* fixtureName) {
        return add(fixtureName, QString::fromUtf8(fixtureName));
    }

    void select(const std::vector<int>& rows) {
        list().setAllSelected(false);
        for (const int row : rows) list().setSelected(row, true);
    }

    /// Chooses an item of the Options menu and answers the tip with OK.
    void choose(const char* item) {
        answerMessageBox(QMessageBox::Ok);
        chooseFromMenu(*window, "Button1", item);
        ASSERT_TRUE(allAnswered());
    }

    /// The dialog of this name that is on the screen.
    template <class T = QWidget>
    static T& dialog(const char* name) {
        waitFor([name] { return openWindow(name) != nullptr; });
        auto* found = qobject_cast<T*>(openWindow(name));
        if (!found) throw std::runtime_error(std::string("no dialog ") + name);
        return *found;
    }
    static QAbstractSlider& slider(const QWidget& form, const char* name = "Slider1") {
        return find<QAbstractSlider>(form, name);
    }
    static QString label(const QWidget& form, const char* name) {
        return find<QLabel>(form, name).text();
    }

    /// Presses Apply, and OK on the closing message, which is returned.
    static std::shared_ptr<const SeenBox> apply(QWidget& form) {
        auto seen = answerMessageBox(QMessageBox::Ok);
        QPointer<QWidget> gone(&form);
        click(form, "Command1");
        EXPECT_TRUE(allAnswered());
        settle();
        EXPECT_TRUE(gone.isNull()) << "the dialog was not unloaded";
        return seen;
    }
};

}  // namespace support
