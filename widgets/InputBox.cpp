// SPDX-License-Identifier: GPL-3.0-or-later
#include "widgets/InputBox.h"

#include <QApplication>
#include <QInputDialog>

namespace widgets {

QString inputBox(const QString& prompt, const QString& title, const QString& defaultText) {
    QInputDialog box(QApplication::activeWindow());
    box.setObjectName(QStringLiteral("InputBox"));
    box.setInputMode(QInputDialog::TextInput);
    box.setWindowTitle(title);
    box.setLabelText(prompt);
    box.setTextValue(defaultText);
    return box.exec() == QDialog::Accepted ? box.textValue() : QString();
}

}  // namespace widgets
