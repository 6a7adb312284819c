// SPDX-License-Identifier: GPL-3.0-or-later
#include "lists/ListReader.h"

#include <algorithm>
#include <map>
#include <optional>

#include <QDir>

#include "lists/ListText.h"
#include "platform/AbsolutePath.h"
#include "platform/Error.h"
#include "platform/Paths.h"
#include "platform/file/ReadWhole.h"

namespace lists {
namespace {

using namespace Qt::Literals::StringLiterals;

constexpr qint64 kMaxBytes = 64 << 20;

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

struct Lines {
    const QStringList& lines;
    const QString& folder;
    const FileExists& exists;
};

bool namesFile(const QString& name, const QString& folder, const FileExists& exists) {
    return exists(resolveListed(name, folder, exists));
}

/// What of a line may be a name; nothing of a comment with a meaning.
QString nameIn(const QString& line) {
    if (isDirective(line)) return {};
    if (!line.startsWith("file"_L1, Qt::CaseInsensitive) || !line.contains(u'=')) return line;
    return line.mid(line.indexOf(u'=') + 1);
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

QString folderOf(const QString& file) {
    return platform::toQString(platform::toPath(platform::absolutePath(file)).parent_path());
}

}  // namespace

std::vector<ListedEntry> readList(const QByteArray& bytes, const QString& folder,
                                  const FileExists& exists) {
    const ListText text(bytes, [&](const QString& line) {
        const QString name = nameIn(line);
        return !name.isEmpty() && namesFile(name, folder, exists);
    });
    const QStringList lines = text.lines();
    if (!std::all_of(lines.begin(), lines.end(), isLineOfText))
        throw platform::Error("it is not text");
    if (std::all_of(lines.begin(), lines.end(), isBlank)) return {};
    const Lines list{lines, folder, exists};
    std::vector<ListedEntry> entries;
    if (isPls(lines))
        entries = PlsParser(list).entries();
    else if (isM3u(list))
        entries = parseM3u(list);
    else
        throw platform::Error("it is not a playlist");
    if (entries.size() > maxEntries)
        throw platform::Error("it has " + std::to_string(entries.size()) +
                              " entries, more than a playlist holds (" +
                              std::to_string(maxEntries) + ")");
    return entries;
}

std::vector<ListedEntry> readListFile(const QString& path) {
    const auto fail = [&path](const std::string& reason) {
        return platform::Error("The playlist \"" + path.toStdString() +
                               "\" cannot be read: " + reason + ".");
    };
    std::error_code error;
    const auto bytes = platform::file::readWhole(platform::toPath(path), kMaxBytes, error);
    if (error == std::errc::no_such_file_or_directory) throw fail("there is no such file");
    if (error == std::errc::file_too_large) throw fail("it is too large to be a playlist");
    if (!bytes) throw fail(error.message());
    try {
        return readList(*bytes, folderOf(path), isFile);
    } catch (const platform::Error& reason) {
        throw fail(reason.what());
    }
}

}  // namespace lists
