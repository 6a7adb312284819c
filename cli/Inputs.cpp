// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/Inputs.h"

#include <exception>
#include <filesystem>

#include <QDir>
#include <QFileInfo>

#include "cli/Report.h"
#include "lists/ListReader.h"
#include "platform/Paths.h"

using namespace Qt::Literals::StringLiterals;

namespace cli {
namespace {

bool isList(const QString& path) {
    static const QStringList extensions{u"m3u"_s, u"m3u8"_s, u"pls"_s};
    return extensions.contains(QFileInfo(path).suffix(), Qt::CaseInsensitive);
}

QString absolute(const std::string& argument) {
    const QString name = platform::toQString(std::filesystem::path(argument));
    return QDir::toNativeSeparators(QFileInfo(name).absoluteFilePath());
}

}  // namespace

QStringList namedFiles(const std::vector<std::string>& arguments, Report& report) {
    QStringList files;
    for (const std::string& argument : arguments) {
        const QString path = absolute(argument);
        if (!isList(path)) {
            files += path;
            continue;
        }
        try {
            for (const lists::ListedEntry& entry : lists::readListFile(path)) files += entry.path;
        } catch (const std::exception& error) {
            report.failed(path, QString::fromUtf8(error.what()));
        }
    }
    return files;
}

}  // namespace cli
