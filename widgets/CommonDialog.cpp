// SPDX-License-Identifier: GPL-3.0-or-later
#include "widgets/CommonDialog.h"

#include <algorithm>

#include <QApplication>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>

#include "widgets/Dispatch.h"

namespace widgets {
namespace {

struct NameFilter {
    QString shown;     // as Qt takes it: "description (*.a *.b)"
    QString patterns;  // "*.a *.b"
};

QString withoutPatterns(QString description) {
    const qsizetype open = description.lastIndexOf(QLatin1Char('('));
    return (open > 0 ? description.left(open) : description).trimmed();
}

QList<NameFilter> parseFilter(const QString& filter) {
    const QStringList parts = filter.split(QLatin1Char('|'), Qt::SkipEmptyParts);
    QList<NameFilter> filters;
    for (qsizetype i = 0; i + 1 < parts.size(); i += 2) {
        QString patterns = parts[i + 1];
        patterns.replace(QLatin1Char(';'), QLatin1Char(' '));
        // "*.*" means every file, also one without a dot.
        if (patterns == QStringLiteral("*.*")) patterns = QStringLiteral("*");
        filters.append(
            {withoutPatterns(parts[i]) + QStringLiteral(" (") + patterns + QLatin1Char(')'),
             patterns});
    }
    return filters;
}

QString suffixOf(const NameFilter& filter) {
    const QString first = filter.patterns.section(QLatin1Char(' '), 0, 0);
    return first.startsWith(QStringLiteral("*.")) ? first.mid(2) : QString();
}

QStringList shownFilters(const QList<NameFilter>& filters) {
    QStringList shown;
    for (const NameFilter& filter : filters) shown.append(filter.shown);
    return shown;
}

}  // namespace

void CommonDialog::ShowOpen() {
    show(false);
}

void CommonDialog::ShowSave() {
    show(true);
}

void CommonDialog::show(bool save) {
    const QList<NameFilter> filters = parseFilter(Filter);
    QFileDialog dialog(QApplication::activeWindow(), DialogTitle, folder_);
    dialog.setObjectName(QStringLiteral("CommonDialog"));
    dialog.setAcceptMode(save ? QFileDialog::AcceptSave : QFileDialog::AcceptOpen);
    dialog.setFileMode(save               ? QFileDialog::AnyFile
                       : AllowMultiSelect ? QFileDialog::ExistingFiles
                                          : QFileDialog::ExistingFile);
    dialog.setNameFilters(shownFilters(filters));
    const auto applySuffix = [&dialog, &filters, save](const QString& shown) {
        for (const NameFilter& filter : filters) {
            if (save && filter.shown == shown) dialog.setDefaultSuffix(suffixOf(filter));
        }
    };
    connect(&dialog, &QFileDialog::filterSelected, &dialog, guarded(applySuffix));
    if (!filters.isEmpty()) {
        const qsizetype index = std::clamp<qsizetype>(FilterIndex - 1, 0, filters.size() - 1);
        dialog.selectNameFilter(filters[index].shown);
        applySuffix(filters[index].shown);
    }
    if (!FileName.isEmpty()) dialog.selectFile(FileName);

    const bool accepted = dialog.exec() == QDialog::Accepted;
    FileNames.clear();
    if (accepted) {
        for (const QString& file : dialog.selectedFiles()) {
            FileNames.append(QDir::toNativeSeparators(file));
        }
    }
    FileName = FileNames.isEmpty() ? QString() : FileNames.constFirst();
    FilterIndex = static_cast<int>(shownFilters(filters).indexOf(dialog.selectedNameFilter())) + 1;
    if (accepted) folder_ = dialog.directory().absolutePath();
}

}  // namespace widgets
