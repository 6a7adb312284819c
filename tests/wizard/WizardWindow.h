// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <memory>

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QPointer>
#include <gtest/gtest.h>

#include "effects/engine/AudioEditor.h"
#include "tests/support/Answers.h"
#include "tests/support/Gui.h"
#include "tests/support/TempFolder.h"
#include "wizard/form/frmFadeWizard2.h"

namespace support {

/// The wizard's real window, shown and active, worked with mouse and keyboard.
class WizardWindow : public testing::Test {
  protected:
    void SetUp() override {
        window = new wizard::frmFadeWizard2(std::make_unique<effects::AudioEditor>());
        ASSERT_TRUE(activate(*window));
    }
    void TearDown() override {
        EXPECT_TRUE(allAnswered());
        if (window) window->close();
        EXPECT_TRUE(waitFor([this] {
            settle();
            return window.isNull();
        }));
    }

    template <class T = QWidget>
    T& control(const char* name) {
        return find<T>(*window, name);
    }
    void press(const char* name) { click(*window, name); }
    /// Clicks a check box where its box is.
    void tick(int checkBox) {
        auto& box = control<QCheckBox>(("Check" + std::to_string(checkBox)).c_str());
        ASSERT_TRUE(box.isVisible() && box.isEnabled());
        QTest::mouseClick(&box, Qt::LeftButton, Qt::NoModifier, QPoint(8, box.height() / 2));
    }

    /// Picks an entry of a list box with the keyboard.
    void choose(const char* combo, const QString& text) {
        auto& box = control<QComboBox>(combo);
        box.setFocus();
        const int wanted = box.findText(text);
        ASSERT_GE(wanted, 0) << combo << " does not offer " << text.toStdString();
        while (box.currentIndex() > wanted) QTest::keyClick(&box, Qt::Key_Up);
        while (box.currentIndex() < wanted) QTest::keyClick(&box, Qt::Key_Down);
    }
    QStringList entries(const char* combo) {
        const auto& box = control<QComboBox>(combo);
        QStringList texts;
        for (int i = 0; i < box.count(); ++i) texts << box.itemText(i);
        return texts;
    }
    QStringList lines(const char* list) {
        const auto* model = control<QListView>(list).model();
        QStringList texts;
        for (int i = 0; i < model->rowCount(); ++i) texts << model->index(i, 0).data().toString();
        return texts;
    }
    QString labelText(const char* label) { return control<QLabel>(label).text(); }
    QString fieldText(const char* field) { return control<QLineEdit>(field).text(); }

    QPointer<wizard::frmFadeWizard2> window;
    TempFolder folder;
};

}  // namespace support
