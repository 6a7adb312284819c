// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <cstddef>
#include <iosfwd>
#include <mutex>
#include <vector>

#include <QJsonObject>
#include <QString>

namespace cli {

/// What a command tells its reader: a line per file, and what became of the whole. On a terminal a
/// bar moves below the lines; otherwise the lines are plain, failures on the error stream; for
/// programs each line is one JSON object on the output stream. Any thread.
class Report {
  public:
    enum class Style { Terminal, Plain, Json };

    Report(Style style, std::ostream& out, std::ostream& err);
    ~Report();
    Report(const Report&) = delete;
    Report& operator=(const Report&) = delete;

    Style style() const { return style_; }

    /// Opens a run over so many files: from here to end() a terminal shows the bar.
    void begin(std::size_t files);
    /// How much of a file of the run (counted from 0) is done, 0 to 1.
    void progress(std::size_t file, double fraction);
    /// One file was done; `output` where the result lies in another file, `details` for programs,
    /// of which "notice" is told to people too.
    void done(const QString& file, const QString& output = {}, const QJsonObject& details = {});
    /// One file was not done; the reason is a whole sentence. Counts for the exit code.
    void failed(const QString& file, const QString& reason);
    /// Closes the run with its summary.
    void end();

    /// A line of the command's own: the text for people, the object for programs.
    void line(const QString& text, const QJsonObject& fields);

    std::size_t failures() const;

  private:
    void write(std::ostream& stream, const QString& text);
    void writeJson(const QJsonObject& fields);
    void drawBar();
    void clearBar();

    const Style style_;
    std::ostream& out_;
    std::ostream& err_;
    mutable std::mutex mutex_;  // guards all that follows and the two streams
    std::vector<double> fractions_;
    std::size_t done_ = 0;
    std::size_t failed_ = 0;
    bool barShown_ = false;
    std::chrono::steady_clock::time_point drawn_;
};

}  // namespace cli
