// SPDX-License-Identifier: GPL-3.0-or-later
#include "widgets/FolderDialog.h"

#include <QApplication>
#include <QDir>
#include <QFileDialog>

namespace widgets {

QString pickFolder(QWidget* owner, const QString& prompt) {
    QFileDialog dialog(owner ? owner : QApplication::activeWindow(), prompt);
    dialog.setObjectName(QStringLiteral("FolderDialog"));
    dialog.setFileMode(QFileDialog::Directory);
    dialog.setOption(QFileDialog::ShowDirsOnly);
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty()) return QString();
    return QDir::toNativeSeparators(dialog.selectedFiles().constFirst());
}

}  // namespace widgets
