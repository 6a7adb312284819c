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

/// One filter: its text, to the letter, and the patterns "*.a *.b".
struct NameFilter {
    QString shown;
    QString patterns;
    /// As Qt takes it; the dialog leaves the last brackets out where it shows it.
    QString forQt() const { return shown + QLatin1Char('(') + patterns + QLatin1Char(')'); }
    /// Whether the dialog means this one: it tells a choice by what it shows, or by all of it.
    bool isMeant(const QString& chosen) const { return chosen == shown || chosen == forQt(); }
};

QList<NameFilter> parseFilter(const QString& filter) {
    const QStringList parts = filter.split(QLatin1Char('|'), Qt::SkipEmptyParts);
    QList<NameFilter> filters;
    for (qsizetype i = 0; i + 1 < parts.size(); i += 2) {
        QString patterns = parts[i + 1];
        patterns.replace(QLatin1Char(';'), QLatin1Char(' '));
        // "*.*" means every file, also one without a dot.
        if (patterns == QStringLiteral("*.*")) patterns = QStringLiteral("*");
        filters.append({parts[i], patterns});
    }
    return filters;
}

QString suffixOf(const NameFilter& filter) {
    const QString first = filter.patterns.section(QLatin1Char(' '), 0, 0);
    return first.startsWith(QStringLiteral("*.")) ? first.mid(2) : QString();
}

QStringList filtersForQt(const QList<NameFilter>& filters) {
    QStringList texts;
    for (const NameFilter& filter : filters) texts.append(filter.forQt());
    return texts;
}

/// Counted from 1; 0 where the dialog shows none.
int numberOf(const QString& chosen, const QList<NameFilter>& filters) {
    for (qsizetype i = 0; i < filters.size(); ++i)
        if (filters[i].isMeant(chosen)) return static_cast<int>(i) + 1;
    return 0;
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
    dialog.setOption(QFileDialog::HideNameFilterDetails);
    dialog.setNameFilters(filtersForQt(filters));
    const auto applySuffix = [&dialog, &filters, save](const QString& chosen) {
        for (const NameFilter& filter : filters) {
            if (save && filter.isMeant(chosen)) dialog.setDefaultSuffix(suffixOf(filter));
        }
    };
    connect(&dialog, &QFileDialog::filterSelected, &dialog, guarded(applySuffix));
    if (!filters.isEmpty()) {
        const qsizetype index = std::clamp<qsizetype>(FilterIndex - 1, 0, filters.size() - 1);
        dialog.selectNameFilter(filters[index].forQt());
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
    FilterIndex = numberOf(dialog.selectedNameFilter(), filters);
    if (accepted) folder_ = dialog.directory().absolutePath();
}

}  // namespace widgets
