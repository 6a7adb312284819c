// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <memory>

#include <QAbstractButton>
#include <QAbstractSlider>
#include <QLabel>
#include <QPointer>
#include <gmock/gmock.h>

#include "app/Skin.h"
#include "app/frmMain.h"
#include "app/modules/modMain.h"
#include "platform/Paths.h"
#include "tests/support/Answers.h"
#include "tests/support/Fixtures.h"
#include "tests/support/Gui.h"
#include "tests/support/TempFolder.h"
#include "widgets/ListView.h"
#include "widgets/ProgressBar.h"

namespace support {

/// The real main window with sound files of its own in the list, and its effect dialogs.
struct EffectsWindow : testing::Test {
    TempFolder folder;
    std::unique_ptr<app::frmMain> window;

    void SetUp() override {
        if (qApp->styleSheet().isEmpty()) app::applySkin(*qApp);
        modMain::EffectMode = 0;
        modMain::SelectedCount = 0;
        window = std::make_unique<app::frmMain>();
        ASSERT_TRUE(activate(*window));
    }
    void TearDown() override {
        EXPECT_EQ(forgetAnswers(), 0) << "announced boxes did not come";
        window.reset();
    }

    widgets::ListView& list() { return find<widgets::ListView>(*window, "ListView1"); }
    widgets::ProgressBar& bar() { return find<widgets::ProgressBar>(*window, "Bar"); }
    QString text(const char* label) { return find<QLabel>(*window, label).text(); }

    /// A copy of a fixture under another name, in the list.
    QString add(const char* fixtureName, const QString& name) {
        const QString path =
            platform::toQString(scratchCopy(fixtureName, folder.path(), name.toStdString()));
        window->openPaths({path});
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
