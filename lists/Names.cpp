// SPDX-License-Identifier: GPL-3.0-or-later
#include "lists/Names.h"

#include <algorithm>

#include <QDir>
#include <QFileInfo>
#include <QStringList>
#include <QUrl>

#include "platform/NameBytes.h"
#include "platform/Paths.h"
#include "platform/file/Regular.h"

namespace lists {
namespace {

using namespace Qt::Literals::StringLiterals;

const QStringList& audioSuffixes() {
    static const QStringList suffixes = {
        u"mp3"_s, u"mp2"_s,  u"mpga"_s, u"wav"_s, u"ogg"_s,  u"oga"_s, u"opus"_s, u"wma"_s,
        u"asf"_s, u"flac"_s, u"m4a"_s,  u"m4b"_s, u"mp4"_s,  u"aac"_s, u"aif"_s,  u"aiff"_s,
        u"ape"_s, u"wv"_s,   u"mpc"_s,  u"tta"_s, u"alac"_s, u"spx"_s, u"w64"_s,  u"rf64"_s};
    return suffixes;
}

QString toNative(QString name) {
    const QChar native = QDir::separator();
    return name.replace(native == u'/' ? u'\\' : u'/', native);
}

/// An absolute path for a name; `folder` loses its links where the name climbs out of it, since
/// ".." means the parent of the folder behind a link.
QString absolute(const QString& name, const QString& folder) {
    if (isWindowsPath(name) && QDir::separator() == u'/') return name;
    if (QDir::isAbsolutePath(name)) return name;
    const bool climbs = name.startsWith(".."_L1) || name.contains("/.."_L1);
    const QString canonical = climbs ? QFileInfo(folder).canonicalFilePath() : folder;
    const QString joined = (canonical.isEmpty() ? folder : canonical) + u'/' + name;
    const bool plain = !climbs && !name.startsWith(u'.') && !joined.contains("//"_L1) &&
                       !joined.contains("/./"_L1);
    return QDir::toNativeSeparators(plain ? joined : QDir::cleanPath(joined));
}

QString percentDecoded(const QString& text) {
    return platform::fromNameBytes(QByteArray::fromPercentEncoding(platform::toNameBytes(text)));
}

QString fromFileUri(const QString& name) {
    QUrl url(name.trimmed());
    if (url.host() == "localhost"_L1) url.setHost({});
    const QString path = localPath(url);
    if (!path.isEmpty()) return path;
    QString rest = name.trimmed().mid(5);  // "file:a b.mp3" is no URL, but is met
    while (rest.startsWith("//"_L1)) rest.remove(0, 1);
    return percentDecoded(rest);
}

QStringList readings(const QString& name) {
    QStringList all{name};
    const auto add = [&all](const QString& reading) {
        if (!reading.isEmpty() && !all.contains(reading)) all.append(reading);
    };
    const QString trimmed = name.trimmed();
    add(trimmed);
    add(toNative(trimmed));
    if (trimmed.contains(u'%')) {
        const QString decoded = percentDecoded(trimmed);
        if (!decoded.contains(QChar(0))) {
            add(decoded);
            add(toNative(decoded));
        }
    }
    return all;
}

/// What a name that no reading finds most likely means.
QString likeliest(const QString& name) {
    QString start = name;
    while (!start.isEmpty() && start[0].isSpace()) start.remove(0, 1);
    if (isWindowsPath(start) || start.contains(u'/')) return start;
    return toNative(start);
}

}  // namespace

bool isFile(const QString& path) {
    return platform::file::isRegular(platform::toPath(path));
}

bool namesAudio(const QString& line) {
    const qsizetype dot = line.lastIndexOf(u'.');
    return dot >= 0 && audioSuffixes().contains(line.mid(dot + 1).trimmed().toLower());
}

bool isUrl(const QString& name) {
    const qsizetype end = name.indexOf("://"_L1);
    if (end < 2 || !name[0].isLetter()) return false;
    return std::all_of(name.begin(), name.begin() + end, [](QChar c) {
        return c.unicode() < 0x80 && (c.isLetterOrNumber() || c == u'+' || c == u'-' || c == u'.');
    });
}

bool isWindowsPath(const QString& name) {
    const bool drive = name.size() >= 3 && name[0].isLetter() && name[0].unicode() < 0x80 &&
                       name[1] == u':' && (name[2] == u'\\' || name[2] == u'/');
    return drive || name.startsWith("\\\\"_L1);
}

QString nameOf(const QString& path) {
    qsizetype cut = path.lastIndexOf(u'/');
    if (QDir::separator() == u'\\' || isWindowsPath(path))
        cut = std::max(cut, path.lastIndexOf(u'\\'));
    return path.mid(cut + 1);
}

QString localPath(const QUrl& url) {
    const QString path = url.toLocalFile();
    if (path.isEmpty() || QDir::separator() == u'\\' || !url.host().isEmpty())
        return QDir::toNativeSeparators(path);
    return percentDecoded(url.path(QUrl::FullyEncoded));
}

QString resolveListed(const QString& name, const QString& folder, const FileExists& exists) {
    if (name.trimmed().startsWith("file:"_L1, Qt::CaseInsensitive)) {
        const QString path = fromFileUri(name);
        return isUrl(path) ? path : absolute(path, folder);
    }
    if (isUrl(name.trimmed())) return name.trimmed();
    const QStringList all = readings(name);
    if (all.size() > 1)
        for (const QString& reading : all)
            if (const QString path = absolute(reading, folder); exists(path)) return path;
    return absolute(likeliest(name), folder);
}

}  // namespace lists
