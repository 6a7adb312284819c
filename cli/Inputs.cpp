// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/Inputs.h"

#include <exception>
#include <filesystem>

#include <QFileInfo>

#include "cli/Report.h"
#include "lists/ListReader.h"
#include "platform/AbsolutePath.h"
#include "platform/Paths.h"
#include "platform/SystemError.h"

using namespace Qt::Literals::StringLiterals;

namespace cli {
namespace {

bool isList(const QString& path) {
    static const QStringList extensions{u"m3u"_s, u"m3u8"_s, u"pls"_s};
    return extensions.contains(QFileInfo(path).suffix(), Qt::CaseInsensitive);
}

}  // namespace

QString absolutePath(const std::string& typed) {
    return platform::absolutePath(platform::toQString(std::filesystem::path(typed)));
}

QString madeFolder(const std::string& typed) {
    if (typed.empty()) return {};
    const QString folder = absolutePath(typed);
    std::error_code reason;
    std::filesystem::create_directories(platform::toPath(folder), reason);
    if (reason) throw platform::systemError("The folder " + typed + " cannot be made", reason);
    return folder;
}

QStringList namedFiles(const std::vector<std::string>& arguments, Report& report) {
    QStringList files;
    for (const std::string& argument : arguments) {
        const QString path = absolutePath(argument);
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
