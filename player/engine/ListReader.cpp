// SPDX-License-Identifier: GPL-3.0-or-later
#include "player/engine/ListReader.h"

#include <algorithm>
#include <map>
#include <optional>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QUrl>

#include "platform/Error.h"
#include "player/engine/ListText.h"
#include "player/engine/Playlist.h"

namespace player {
namespace {

using namespace Qt::Literals::StringLiterals;

constexpr qint64 kMaxBytes = 64 << 20;

const QStringList& audioSuffixes() {
    static const QStringList suffixes = {
        u"mp3"_s, u"mp2"_s,  u"mpga"_s, u"wav"_s, u"ogg"_s,  u"oga"_s, u"opus"_s, u"wma"_s,
        u"asf"_s, u"flac"_s, u"m4a"_s,  u"m4b"_s, u"mp4"_s,  u"aac"_s, u"aif"_s,  u"aiff"_s,
        u"ape"_s, u"wv"_s,   u"mpc"_s,  u"tta"_s, u"alac"_s, u"spx"_s, u"w64"_s,  u"rf64"_s};
    return suffixes;
}

bool namesAudio(const QString& line) {
    const qsizetype dot = line.lastIndexOf(u'.');
    return dot >= 0 && audioSuffixes().contains(line.mid(dot + 1).trimmed().toLower());
}

/// "#EXTINF:", "#EXTM3U" and their kin. Other lines that begin with "#" are comments, or files.
bool isDirective(QStringView line) {
    if (!line.startsWith("#EXT"_L1, Qt::CaseInsensitive)) return false;
    for (const QChar c : line.mid(4)) {
        if (c == u':' || c.isSpace()) return true;
        if (!c.isLetterOrNumber() && c != u'-') return false;
    }
    return true;
}

bool isBlank(const QString& line) {
    return QStringView(line).trimmed().isEmpty() || line == QChar(0x1A);
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

QString fromFileUri(const QString& name) {
    QUrl url(name.trimmed());
    if (url.host() == "localhost"_L1) url.setHost({});
    const QString path = url.toLocalFile();
    if (!path.isEmpty()) return QDir::toNativeSeparators(path);
    QString rest = name.trimmed().mid(5);  // "file:a b.mp3" is no URL, but is met
    while (rest.startsWith("//"_L1)) rest.remove(0, 1);
    return QUrl::fromPercentEncoding(rest.toUtf8());
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
        const QString decoded = QUrl::fromPercentEncoding(trimmed.toUtf8());
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

struct Lines {
    const QStringList& lines;
    const QString& folder;
    const FileExists& exists;
};

bool namesFile(const QString& name, const QString& folder, const FileExists& exists) {
    return exists(resolveListed(name, folder, exists));
}

/// How many of the first lines name a file, for the choice between two encodings.
int countFiles(const QStringList& lines, const QString& folder, const FileExists& exists) {
    int count = 0;
    int looked = 0;
    for (const QString& line : lines) {
        QString name = line;
        if (name.startsWith("file"_L1, Qt::CaseInsensitive) && name.contains(u'='))
            name = name.mid(name.indexOf(u'=') + 1);
        const bool ascii =
            std::all_of(name.begin(), name.end(), [](QChar c) { return c.unicode() < 0x80; });
        if (ascii || name.startsWith(u'#')) continue;
        count += namesFile(name, folder, exists);
        if (++looked == 200) break;
    }
    return count;
}

bool isPls(const QStringList& lines) {
    for (const QString& line : lines) {
        const QStringView text = QStringView(line).trimmed();
        if (text.isEmpty() || text.startsWith(u';') || text.startsWith(u'#')) continue;
        return text.compare("[playlist]"_L1, Qt::CaseInsensitive) == 0;
    }
    return false;
}

bool isMarkup(const QStringList& lines) {
    for (const QString& line : lines) {
        const QStringView text = QStringView(line).trimmed();
        if (text.isEmpty()) continue;
        return text.startsWith("<!"_L1) || text.startsWith("<?"_L1) ||
               text.startsWith("<html"_L1, Qt::CaseInsensitive) ||
               text.startsWith("<asx"_L1, Qt::CaseInsensitive);
    }
    return false;
}

bool isFullNameOrNone(const QString& line) {
    return isBlank(line) || line.startsWith(u'#') || isUrl(line) || isWindowsPath(line) ||
           QDir::isAbsolutePath(line);
}

bool isM3u(const Lines& list) {
    if (isMarkup(list.lines)) return false;
    for (const QString& line : list.lines) {
        if (isBlank(line)) continue;
        if (line.trimmed().startsWith("#EXTM3U"_L1, Qt::CaseInsensitive)) return true;
        if (line.trimmed().startsWith(u'#')) continue;
        if (namesAudio(line)) return true;
    }
    // No audio file by its suffix: then it takes nothing but full paths, or a file that is there.
    return std::all_of(list.lines.begin(), list.lines.end(), isFullNameOrNone) ||
           std::any_of(list.lines.begin(), list.lines.end(), [&list](const QString& line) {
               return !isBlank(line) && !isDirective(line.trimmed()) && line.size() < 4096 &&
                      namesFile(line, list.folder, list.exists);
           });
}

class PlsParser {
  public:
    explicit PlsParser(const Lines& list) : list_(list) {
        bool inside = false;
        for (const QString& line : list.lines) {
            const QStringView text = QStringView(line).trimmed();
            if (text.startsWith(u'[') && text.endsWith(u']'))
                inside = text.compare("[playlist]"_L1, Qt::CaseInsensitive) == 0;
            else if (inside)
                take(line);
        }
    }

    /// The File entries by number, entries of one number in the order of the file.
    std::vector<ListedEntry> entries() const {
        std::vector<ListedEntry> result;
        for (const auto& [number, name] : files_) {
            ListedEntry entry{resolveListed(name, list_.folder, list_.exists), {}, -1};
            if (const auto title = titles_.find(number); title != titles_.end())
                entry.title = title->second;
            if (const auto length = lengths_.find(number); length != lengths_.end())
                entry.durationMs = length->second;
            result.push_back(entry);
        }
        return result;
    }

  private:
    void take(const QString& line) {
        const qsizetype equals = line.indexOf(u'=');
        if (equals < 0) return;
        const QString key = line.left(equals).trimmed().toLower();
        const QString value = line.mid(equals + 1);
        if (const auto number = numberAfter(key, "file"_L1); number && !isBlank(value))
            files_.emplace(*number, value);
        if (const auto number = numberAfter(key, "title"_L1)) titles_[*number] = value.trimmed();
        if (const auto number = numberAfter(key, "length"_L1)) {
            bool ok = false;
            const qlonglong seconds = value.trimmed().toLongLong(&ok);
            if (ok && seconds >= 0 && seconds < 10'000'000) lengths_[*number] = seconds * 1000;
        }
    }

    static std::optional<qulonglong> numberAfter(const QString& key, QLatin1StringView word) {
        if (!key.startsWith(word)) return std::nullopt;
        bool ok = false;
        const qulonglong number = key.mid(word.size()).toULongLong(&ok);
        return ok ? std::optional(number) : std::nullopt;
    }

    const Lines& list_;
    std::multimap<qulonglong, QString> files_;
    std::map<qulonglong, QString> titles_;
    std::map<qulonglong, std::int64_t> lengths_;
};

/// "#EXTINF:123,Artist - Title" with attributes allowed between the number and the comma.
void takeExtInf(const QString& line, ListedEntry& next) {
    const qsizetype comma = line.indexOf(u',');
    next.title = comma < 0 ? QString() : line.mid(comma + 1).trimmed();
    const QString number = line.mid(8, (comma < 0 ? line.size() : comma) - 8).trimmed();
    bool ok = false;
    const double seconds = number.section(u' ', 0, 0).toDouble(&ok);
    next.durationMs = ok && seconds > 0 && seconds < 1e7 ? std::int64_t(seconds * 1000) : -1;
}

std::vector<ListedEntry> parseM3u(const Lines& list) {
    std::vector<ListedEntry> entries;
    ListedEntry next;
    for (const QString& line : list.lines) {
        if (isBlank(line)) continue;
        const QString text = line.trimmed();
        if (text.startsWith("#EXTINF:"_L1, Qt::CaseInsensitive)) takeExtInf(text, next);
        if (isDirective(text)) continue;
        // A bare file name may begin with the comment sign: such a file is an entry if it is there.
        if (text.startsWith(u'#') && !namesFile(line, list.folder, list.exists)) continue;
        next.path = resolveListed(line, list.folder, list.exists);
        entries.push_back(next);
        next = {};
    }
    return entries;
}

}  // namespace

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

std::vector<ListedEntry> readList(const QByteArray& bytes, const QString& folder,
                                  const FileExists& exists) {
    const QStringList lines = decodeListLines(
        bytes, [&](const QStringList& reading) { return countFiles(reading, folder, exists); });
    if (std::all_of(lines.begin(), lines.end(), isBlank)) return {};
    const Lines list{lines, folder, exists};
    std::vector<ListedEntry> entries;
    if (isPls(lines))
        entries = PlsParser(list).entries();
    else if (isM3u(list))
        entries = parseM3u(list);
    else
        throw platform::Error("it is not a playlist");
    if (entries.size() > kMaxEntries)
        throw platform::Error("it has " + std::to_string(entries.size()) +
                              " entries, more than a playlist holds (" +
                              std::to_string(kMaxEntries) + ")");
    return entries;
}

std::vector<ListedEntry> readListFile(const QString& path) {
    const auto fail = [&path](const std::string& reason) {
        return platform::Error("The playlist \"" + path.toStdString() +
                               "\" cannot be read: " + reason + ".");
    };
    const QFileInfo info(path);
    if (!info.exists()) throw fail("there is no such file");
    if (!info.isFile()) throw fail("it is not a file");
    if (info.size() > kMaxBytes) throw fail("it is too large to be a playlist");
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) throw fail(file.errorString().toStdString());
    const QByteArray bytes = file.read(kMaxBytes + 1);
    if (file.error() != QFileDevice::NoError) throw fail(file.errorString().toStdString());
    if (bytes.size() > kMaxBytes) throw fail("it is too large to be a playlist");
    try {
        return readList(bytes, info.absolutePath(),
                        [](const QString& name) { return QFileInfo(name).isFile(); });
    } catch (const platform::Error& reason) {
        throw fail(reason.what());
    }
}

}  // namespace player
