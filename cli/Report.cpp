// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/Report.h"

#include <algorithm>
#include <numeric>
#include <ostream>

#include <QFileInfo>
#include <QJsonDocument>

#include "platform/NameBytes.h"
#include "platform/Terminal.h"

using namespace Qt::Literals::StringLiterals;

namespace cli {
namespace {

constexpr std::chrono::milliseconds redrawPause{50};

// Names come from files: none of them may steer the reader's terminal or break a line.
QString printable(QString text) {
    for (QChar& character : text)
        if (character.category() == QChar::Other_Control && character != u'\t')
            character = QChar::ReplacementCharacter;
    return text;
}

QString failureLine(const QString& file, const QString& reason) {
    const bool named = reason.contains(QFileInfo(file).fileName());
    return named ? u"failed: "_s + reason : u"failed: "_s + file + u": "_s + reason;
}

QString countOf(std::size_t files) {
    return files == 1 ? u"1 file"_s : u"%1 files"_s.arg(files);
}

}  // namespace

Report::Report(Style style, std::ostream& out, std::ostream& err)
    : style_(style), out_(out), err_(err) {}

Report::~Report() {
    clearBar();
}

void Report::begin(std::size_t files) {
    const std::lock_guard lock(mutex_);
    fractions_.assign(files, 0);
    drawBar();
}

void Report::progress(std::size_t file, double fraction) {
    const std::lock_guard lock(mutex_);
    if (file >= fractions_.size()) return;
    fractions_[file] = std::max(fractions_[file], std::clamp(fraction, 0.0, 1.0));
    if (std::chrono::steady_clock::now() - drawn_ >= redrawPause) drawBar();
}

void Report::done(const QString& file, const QString& output, const QJsonObject& details) {
    const std::lock_guard lock(mutex_);
    ++done_;
    if (style_ == Style::Json) {
        QJsonObject fields = details;
        fields[u"file"_s] = file;
        fields[u"status"_s] = u"done"_s;
        if (!output.isEmpty()) fields[u"output"_s] = output;
        return writeJson(fields);
    }
    const QString notice = details[u"notice"_s].toString();
    write(out_, u"done: "_s + file + (output.isEmpty() ? QString() : u" -> "_s + output) +
                    (notice.isEmpty() ? QString() : u" ("_s + notice + u")"_s));
}

void Report::failed(const QString& file, const QString& reason) {
    const std::lock_guard lock(mutex_);
    ++failed_;
    if (style_ == Style::Json)
        return writeJson({{u"file"_s, file}, {u"status"_s, u"failed"_s}, {u"reason"_s, reason}});
    write(style_ == Style::Terminal ? out_ : err_, failureLine(file, reason));
}

void Report::end() {
    const std::lock_guard lock(mutex_);
    clearBar();
    fractions_.clear();
    if (style_ == Style::Json)
        return writeJson(
            {{u"done"_s, static_cast<qint64>(done_)}, {u"failed"_s, static_cast<qint64>(failed_)}});
    const QString failures = failed_ == 0 ? QString() : u", %1 failed"_s.arg(failed_);
    write(out_, countOf(done_) + u" done"_s + failures + u"."_s);
}

void Report::line(const QString& text, const QJsonObject& fields) {
    const std::lock_guard lock(mutex_);
    if (style_ == Style::Json) return writeJson(fields);
    write(out_, text);
}

std::size_t Report::failures() const {
    const std::lock_guard lock(mutex_);
    return failed_;
}

void Report::write(std::ostream& stream, const QString& text) {
    clearBar();
    stream << platform::toNameBytes(printable(text)).constData() << '\n' << std::flush;
    drawBar();
}

void Report::writeJson(const QJsonObject& fields) {
    out_ << QJsonDocument(fields).toJson(QJsonDocument::Compact).constData() << '\n' << std::flush;
}

void Report::drawBar() {
    if (style_ != Style::Terminal || fractions_.empty()) return;
    const double sum = std::accumulate(fractions_.begin(), fractions_.end(), 0.0);
    const double fraction = sum / static_cast<double>(fractions_.size());
    const QString numbers = u" %1 %  %2/%3"_s.arg(static_cast<int>(fraction * 100), 3)
                                .arg(done_ + failed_)
                                .arg(fractions_.size());
    const int room = platform::terminalWidth() - static_cast<int>(numbers.size()) - 3;
    const int width = std::clamp(room, 0, 60);
    const int filled = static_cast<int>(fraction * width);
    const QString bar = u"["_s + QString(filled, u'#') + QString(width - filled, u'-') + u"]"_s;
    out_ << '\r' << (bar + numbers).toLocal8Bit().constData() << "\x1b[K" << std::flush;
    barShown_ = true;
    drawn_ = std::chrono::steady_clock::now();
}

void Report::clearBar() {
    if (!barShown_) return;
    out_ << "\r\x1b[K" << std::flush;
    barShown_ = false;
}

}  // namespace cli
