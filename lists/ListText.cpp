// SPDX-License-Identifier: GPL-3.0-or-later
#include "lists/ListText.h"

#include <algorithm>
#include <optional>
#include <type_traits>

#include "lists/NarrowReading.h"
#include "platform/Error.h"

namespace lists {
namespace {

using namespace Qt::Literals::StringLiterals;

template <class Unit>
Unit lineEnd(char c) {
    if constexpr (std::is_same_v<Unit, QChar>)
        return QLatin1Char(c);
    else
        return c;
}

/// Calls `take` with each line of a QString or a QByteArray.
template <class Text, class Take>
void splitLines(const Text& text, Take&& take) {
    using Unit = typename Text::value_type;
    const Unit feed = lineEnd<Unit>('\n');
    const Unit carriage = lineEnd<Unit>('\r');
    const auto isEnd = [&](Unit unit) { return unit == feed || unit == carriage; };
    for (qsizetype start = 0; start < text.size();) {
        const auto found = std::find_if(text.begin() + start, text.end(), isEnd);
        const qsizetype end = found - text.begin();
        take(text.mid(start, end - start));
        const bool both =
            end + 1 < text.size() && text.at(end) == carriage && text.at(end + 1) == feed;
        start = end + (both ? 2 : 1);
    }
}

bool isPlainText(const QString& text) {
    return text.isValidUtf16() && std::none_of(text.begin(), text.end(), [](QChar c) {
               const bool allowed = c == u'\t' || c == u'\r' || c == u'\n';
               return (c.unicode() < 0x20 && !allowed) || c.category() == QChar::Other_NotAssigned;
           });
}

/// UTF-16 that says so nowhere: an even number of bytes with NULs among them that are plain text
/// in one order. Line ends, dots and slashes are ASCII in every list, so the right order has more.
std::optional<Encoding> unmarkedWide(const QByteArray& bytes) {
    if (bytes.size() % 2 != 0 || !bytes.contains('\0')) return std::nullopt;
    std::optional<Encoding> best;
    qsizetype most = 0;
    for (const Encoding& order : {Encoding::utf16Little(), Encoding::utf16Big()}) {
        const QString text = order.decode(bytes).value();
        const auto ascii =
            std::count_if(text.begin(), text.end(), [](QChar c) { return c.unicode() < 0x80; });
        if (ascii > most && isPlainText(text)) {
            best = order;
            most = ascii;
        }
    }
    return best;
}

std::optional<Encoding> declared(const QByteArray& bytes) {
    const QByteArray head = bytes.left(4096).toUpper();
    const qsizetype at = head.indexOf("#EXTENC:");
    if (at < 0 || (at > 0 && head[at - 1] != '\n' && head[at - 1] != '\r')) return std::nullopt;
    qsizetype end = at;
    while (end < head.size() && head[end] != '\n' && head[end] != '\r') ++end;
    return Encoding::named(head.mid(at + 8, end - at - 8).trimmed());
}

bool staysOneLine(const QString& text) {
    return !text.contains(u'\n') && !text.contains(u'\r') && !text.contains(QChar(0));
}

}  // namespace

ListText::ListText(const QByteArray& bytes, const NamesFile& namesFile) {
    if (bytes.startsWith("\xEF\xBB\xBF"))
        mark_ = bytes.left(3);
    else if (bytes.startsWith("\xFF\xFE") || bytes.startsWith("\xFE\xFF"))
        mark_ = bytes.left(2);
    const QByteArray rest = bytes.mid(mark_.size());
    if (mark_.size() == 2)
        readWide(rest, mark_[0] == '\xFF' ? Encoding::utf16Little() : Encoding::utf16Big());
    else if (const auto wide = mark_.isEmpty() ? unmarkedWide(rest) : std::nullopt)
        readWide(rest, *wide);
    else
        readNarrow(rest, namesFile);
}

void ListText::readWide(const QByteArray& bytes, const Encoding& encoding) {
    const std::optional<QString> text = encoding.decode(bytes);
    if (!text) throw platform::Error("it ends in half a character");
    main_ = encoding;
    splitLines(*text, [&](const QString& line) {
        lines_.push_back({encoding.encode(line).value_or(QByteArray()), line, encoding});
    });
}

void ListText::readNarrow(const QByteArray& bytes, const NamesFile& namesFile) {
    std::vector<QByteArray> raw;
    splitLines(bytes, [&](const QByteArray& line) { raw.push_back(line); });
    NarrowReading reading(declared(bytes).value_or(Encoding::utf8()), namesFile);
    std::vector<std::optional<Encoding>> found;
    for (const QByteArray& line : raw) found.push_back(reading.look(line));
    main_ = reading.main();
    for (std::size_t i = 0; i < raw.size(); ++i) {
        const Encoding encoding = found[i] ? *found[i] : reading.likeliest(raw[i]);
        lines_.push_back({raw[i], encoding.decode(raw[i]).value_or(QString()), encoding});
    }
}

QStringList ListText::lines() const {
    QStringList texts;
    texts.reserve(static_cast<qsizetype>(lines_.size()));
    for (const Line& line : lines_) texts += line.text;
    return texts;
}

void ListText::replaceLine(const QString& from, const QString& to) {
    const auto isMeant = [&from](const Line& line) { return line.text == from; };
    for (Line& line : lines_) {
        if (!isMeant(line)) continue;
        const std::optional<QByteArray> bytes = line.encoding.encode(to);
        if (!bytes || !staysOneLine(to) || (line.encoding.isWide() && !to.isValidUtf16()))
            throw platform::Error("“" + to.toStdString() +
                                  "” cannot be written into the playlist: its encoding has no form "
                                  "for that name.");
        line = {*bytes, to, line.encoding};
    }
}

QByteArray ListText::bytes() const {
    const QByteArray end = main_.isWide() ? main_.encode(u"\r\n"_s).value() : QByteArray("\r\n");
    QByteArray all = mark_;
    for (const Line& line : lines_) all += line.bytes + end;
    return all;
}

bool isLineOfText(const QString& line) {
    return std::none_of(line.begin(), line.end(), [](QChar c) {
        return c.unicode() < 0x20 && c != u'\t' && c != u'\f' && c.unicode() != 0x1A;
    });
}

QByteArray encodeLine(const QString& text) {
    const std::optional<QByteArray> bytes = Encoding::utf8().encode(text);
    if (!bytes || !staysOneLine(text))
        throw platform::Error("“" + text.toStdString() + "” cannot be put into a text file");
    return *bytes + "\r\n";
}

}  // namespace lists
