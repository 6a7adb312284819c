// SPDX-License-Identifier: GPL-3.0-or-later
#include "widgets/MsgBox.h"

#include <algorithm>

#include <QApplication>
#include <QLabel>
#include <QMessageBox>

#include "widgets/Application.h"

namespace widgets {
namespace {

QMessageBox::StandardButtons standardButtons(MsgButtons buttons) {
    switch (buttons) {
        case MsgButtons::OkCancel:
            return QMessageBox::Ok | QMessageBox::Cancel;
        case MsgButtons::YesNo:
            return QMessageBox::Yes | QMessageBox::No;
        case MsgButtons::YesNoCancel:
            return QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel;
        case MsgButtons::Ok:
            break;
    }
    return QMessageBox::Ok;
}

QMessageBox::Icon standardIcon(MsgIcon icon) {
    switch (icon) {
        case MsgIcon::Information:
            return QMessageBox::Information;
        case MsgIcon::Question:
            return QMessageBox::Question;
        case MsgIcon::Exclamation:
            return QMessageBox::Warning;
        case MsgIcon::Critical:
            return QMessageBox::Critical;
        case MsgIcon::None:
            break;
    }
    return QMessageBox::NoIcon;
}

QMessageBox::StandardButton escapeButton(MsgButtons buttons) {
    switch (buttons) {
        case MsgButtons::Ok:
            return QMessageBox::Ok;
        case MsgButtons::YesNo:
            return QMessageBox::No;
        case MsgButtons::OkCancel:
        case MsgButtons::YesNoCancel:
            break;
    }
    return QMessageBox::Cancel;
}

MsgResult result(int pressed) {
    switch (pressed) {
        case QMessageBox::Ok:
            return MsgResult::Ok;
        case QMessageBox::Yes:
            return MsgResult::Yes;
        case QMessageBox::No:
            return MsgResult::No;
        default:
            return MsgResult::Cancel;
    }
}

// The box would break lines at 500 pixels, though the texts come with breaks of their own.
void keepLines(QMessageBox& box) {
    auto* label = box.findChild<QLabel*>(QStringLiteral("qt_msgbox_label"));
    if (!label) return;
    constexpr int widest = 640;
    const int width = label->fontMetrics().size(0, box.text()).width() + 2 * label->margin() + 4;
    label->setMinimumWidth(std::min(width, widest));
}

}  // namespace

MsgResult msgBox(const QString& text, MsgButtons buttons, MsgIcon icon, const QString& title) {
    QMessageBox box(standardIcon(icon), title.isEmpty() ? Application::title() : title, QString(),
                    standardButtons(buttons), QApplication::activeWindow());
    box.setObjectName(QStringLiteral("MsgBox"));
    box.setTextFormat(Qt::PlainText);
    box.setText(text);
    box.ensurePolished();
    keepLines(box);
    box.setEscapeButton(escapeButton(buttons));
    return result(box.exec());
}

}  // namespace widgets
