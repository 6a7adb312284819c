// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <memory>

#include <QMessageBox>
#include <QString>
#include <QStringList>
#include <gtest/gtest.h>

/// Answers the boxes and dialogs that a command shows. Say before the command how they shall be
/// answered, in the order in which they will come; each is then waited for on the screen, worked
/// with mouse and keyboard, and recorded. A box that nobody announced fails the test and is closed.
namespace support {

/// What a message box showed.
struct SeenBox {
    bool shown = false;
    QString text;
    QString title;
    QMessageBox::StandardButtons buttons;
    QMessageBox::Icon icon = QMessageBox::NoIcon;
};

/// What an input box showed.
struct SeenInput {
    bool shown = false;
    QString prompt;
    QString title;
    QString defaultText;
};

/// What a file or folder dialog showed.
struct SeenFileDialog {
    bool shown = false;
    QString title;
    QStringList filters;     ///< as they stand on the screen
    QString selectedFilter;  ///< the one preselected
    QString fileName;        ///< what stood in the name field
};

std::shared_ptr<const SeenBox> answerMessageBox(QMessageBox::StandardButton button);

std::shared_ptr<const SeenInput> answerInputBox(const QString& text);
std::shared_ptr<const SeenInput> cancelInputBox();

/// Types the path (or several, each in quotes) into the name field and accepts. `filter` counts
/// from 1; 0 leaves the preselected one. For folders too.
std::shared_ptr<const SeenFileDialog> answerFileDialog(const QString& path, int filter = 0);
std::shared_ptr<const SeenFileDialog> cancelFileDialog();

/// Waits until every announced box has been shown and answered.
::testing::AssertionResult allAnswered();

/// Takes back what was announced and not shown; how many that were.
int forgetAnswers();

}  // namespace support
