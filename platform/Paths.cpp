// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/Paths.h"

#include <QCoreApplication>
#include <QDir>
#include <QStandardPaths>

#include "platform/NameBytes.h"

namespace platform {

QString fixedPath(const QString& windowsPath) {
#ifdef Q_OS_WIN
    return windowsPath;
#else
    const QString driveC = QStandardPaths::writableLocation(QStandardPaths::AppLocalDataLocation) +
                           QStringLiteral("/drive_c");
    QDir().mkpath(driveC);
    QString rest = windowsPath.mid(2);
    rest.replace(QLatin1Char('\\'), QLatin1Char('/'));
    return driveC + rest;
#endif
}

QString applicationFolder() {
    return QDir::toNativeSeparators(QCoreApplication::applicationDirPath());
}

QString besideApplication(const QString& relativeWindowsPath) {
    QString relative = relativeWindowsPath;
    relative.replace(QLatin1Char('\\'), nativeSeparator());
    return applicationFolder() + relative;
}

QChar nativeSeparator() {
    return QDir::separator();
}

std::filesystem::path toPath(const QString& text) {
#ifdef Q_OS_WIN
    return std::filesystem::path(text.toStdWString());
#else
    return std::filesystem::path(toNameBytes(text).toStdString());
#endif
}

QString toQString(const std::filesystem::path& path) {
#ifdef Q_OS_WIN
    return QString::fromStdWString(path.wstring());
#else
    return fromNameBytes(QByteArray::fromStdString(path.native()));
#endif
}

std::string toUtf8(const std::filesystem::path& path) {
    return toQString(path).toStdString();
}

}  // namespace platform
