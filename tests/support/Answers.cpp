// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/Answers.h"

#include <deque>
#include <functional>

#include <QAbstractButton>
#include <QApplication>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QElapsedTimer>
#include <QFileDialog>
#include <QInputDialog>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>
#include <QTest>
#include <QTimer>

#include "tests/support/Gui.h"

namespace support {
namespace {

/// Answers the dialog on screen if it is of the announced kind and ready; false otherwise.
using Answer = std::function<bool(QWidget*)>;

/// Looks at the modal window on screen a hundred times a second and gives it the next answer.
class Watcher : public QObject {
  public:
    Watcher() {
        connect(&timer_, &QTimer::timeout, this, [this] { look(); });
        timer_.setSingleShot(true);
        timer_.start(10);
    }

    std::deque<Answer> pending;

  private:
    void look() {
        timer_.start(10);  // anew each time: a press may lead into an event loop of its own
        QWidget* modal = QApplication::activeModalWidget();
        if (!modal || !modal->isVisible() || modal == answered_) return waiting_.invalidate();
        if (!pending.empty()) {
            const Answer answer = pending.front();
            // Taken off first: pressing a button may show the next box before it returns.
            pending.pop_front();
            const QPointer<QWidget> before = answered_;
            answered_ = modal;
            if (answer(modal)) return waiting_.invalidate();
            answered_ = before;
            pending.push_front(answer);
        }
        if (!waiting_.isValid()) waiting_.start();
        if (waiting_.elapsed() > patience) closeUnannounced(modal);
    }

    void closeUnannounced(QWidget* modal) {
        const auto* box = qobject_cast<QMessageBox*>(modal);
        ADD_FAILURE() << "a dialog that nobody announced: " << modal->metaObject()->className()
                      << " \"" << modal->windowTitle().toStdString() << "\" "
                      << (box ? box->text().toStdString() : std::string());
        waiting_.invalidate();
        modal->close();
    }

    QTimer timer_;
    QElapsedTimer waiting_;
    QPointer<QWidget> answered_;  // stays on screen for a moment after its answer
};

Watcher& watcher() {
    // Child of the application object, which its timer must not outlive.
    static QPointer<Watcher> instance;
    if (!instance) {
        instance = new Watcher;
        instance->setParent(qApp);
    }
    return *instance;
}

bool press(QAbstractButton* button) {
    if (!button || !button->isVisible() || !button->isEnabled()) return false;
    if (button->rect().isEmpty()) return false;  // its dialog is on the screen, not yet laid out
    QTest::mouseClick(button, Qt::LeftButton);
    return true;
}

bool pressStandard(QWidget* dialog, QDialogButtonBox::StandardButton which) {
    auto* box = dialog->findChild<QDialogButtonBox*>();
    return box && press(box->button(which));
}

std::shared_ptr<const SeenInput> onInputBox(const QString& text, bool accept) {
    auto seen = std::make_shared<SeenInput>();
    watcher().pending.push_back([seen, text, accept](QWidget* modal) {
        auto* box = qobject_cast<QInputDialog*>(modal);
        if (!box) return false;
        *seen = {true, box->labelText(), box->windowTitle(), box->textValue()};
        auto* field = box->findChild<QLineEdit*>();
        field->selectAll();
        if (accept && text.isEmpty()) QTest::keyClick(field, Qt::Key_Delete);
        if (accept) field->insert(text);  // keys can only be pressed for ASCII
        return pressStandard(box, accept ? QDialogButtonBox::Ok : QDialogButtonBox::Cancel);
    });
    return seen;
}

void chooseFilter(QFileDialog* dialog, int filter) {
    auto* combo = dialog->findChild<QComboBox*>(QStringLiteral("fileTypeCombo"));
    for (int i = combo->currentIndex(); i < filter - 1; ++i) QTest::keyClick(combo, Qt::Key_Down);
    for (int i = combo->currentIndex(); i > filter - 1; --i) QTest::keyClick(combo, Qt::Key_Up);
}

bool acceptFileDialog(QFileDialog* dialog, const QString& path) {
    auto* field = dialog->findChild<QLineEdit*>(QStringLiteral("fileNameEdit"));
    if (!field) return false;
    field->setText(path);
    auto* box = dialog->findChild<QDialogButtonBox*>();
    for (QAbstractButton* button : box->buttons()) {
        if (box->buttonRole(button) == QDialogButtonBox::AcceptRole) return press(button);
    }
    return false;
}

std::shared_ptr<const SeenFileDialog> onFileDialog(const QString& path, int filter, bool accept) {
    auto seen = std::make_shared<SeenFileDialog>();
    watcher().pending.push_back([seen, path, filter, accept](QWidget* modal) {
        auto* dialog = qobject_cast<QFileDialog*>(modal);
        if (!dialog) return false;
        const auto* field = dialog->findChild<QLineEdit*>(QStringLiteral("fileNameEdit"));
        *seen = {true, dialog->windowTitle(), {}, {}, field ? field->text() : QString()};
        if (const auto* filters = dialog->findChild<QComboBox*>(QStringLiteral("fileTypeCombo"))) {
            for (int i = 0; i < filters->count(); ++i) seen->filters += filters->itemText(i);
            seen->selectedFilter = filters->currentText();
        }
        if (!accept) return pressStandard(dialog, QDialogButtonBox::Cancel);
        if (filter > 0) chooseFilter(dialog, filter);
        return acceptFileDialog(dialog, path);
    });
    return seen;
}

}  // namespace

std::shared_ptr<const SeenBox> answerMessageBox(QMessageBox::StandardButton button) {
    auto seen = std::make_shared<SeenBox>();
    watcher().pending.push_back([seen, button](QWidget* modal) {
        auto* box = qobject_cast<QMessageBox*>(modal);
        if (!box) return false;
        *seen = {true, box->text(), box->windowTitle(), box->standardButtons(), box->icon()};
        return press(box->button(button));
    });
    return seen;
}

std::shared_ptr<const SeenInput> answerInputBox(const QString& text) {
    return onInputBox(text, true);
}

std::shared_ptr<const SeenInput> cancelInputBox() {
    return onInputBox({}, false);
}

std::shared_ptr<const SeenFileDialog> answerFileDialog(const QString& path, int filter) {
    return onFileDialog(path, filter, true);
}

std::shared_ptr<const SeenFileDialog> cancelFileDialog() {
    return onFileDialog({}, 0, false);
}

::testing::AssertionResult allAnswered() {
    if (waitFor([] { return watcher().pending.empty() && !QApplication::activeModalWidget(); })) {
        return ::testing::AssertionSuccess();
    }
    return ::testing::AssertionFailure() << forgetAnswers() << " announced boxes did not come";
}

int forgetAnswers() {
    const int count = static_cast<int>(watcher().pending.size());
    watcher().pending.clear();
    return count;
}

}  // namespace support
