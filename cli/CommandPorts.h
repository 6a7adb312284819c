// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>

#include <QStringList>

#include "ports/Boxes.h"
#include "ports/EventPump.h"
#include "ports/FileList.h"
#include "ports/ProgressBar.h"

namespace cli {

class Report;

// The ports of a flow where there is no window.

/// The files that a command was given, none of them selected. What becomes of each is the Report's
/// to tell.
class ListedFiles : public ports::FileList {
  public:
    explicit ListedFiles(QStringList paths) : paths_(std::move(paths)) {}

    int rowCount() const override { return static_cast<int>(paths_.size()); }
    bool rowSelected(int) const override { return false; }
    QString entryPath(int entry) const override { return paths_.value(entry); }
    QString entryName(int entry) const override;
    void markRow(int, const QString&) override {}
    void clearRowMarks() override {}

  private:
    QStringList paths_;
};

/// The progress of one file after the other, in one round or several, on a Report, which must
/// outlive it. Within a round it never goes back.
class ReportBar : public ports::ProgressBar {
  public:
    explicit ReportBar(Report& report, int rounds = 1) : report_(report), rounds_(rounds) {}

    /// From now on what is told is of this file, from 0, in this round.
    void begin(std::size_t file, int round = 0);

    void setShown(bool) override {}
    void setMaximum(int) override {}
    void setValue(int) override {}
    void setFraction(double fraction) override;
    void setStatus(const QString&) override {}

  private:
    Report& report_;
    const int rounds_;
    std::size_t file_ = 0;
    int round_ = 0;
    double fraction_ = 0;
};

/// Nobody is there to be told or asked: every question is answered by yes.
class NoBoxes : public ports::Boxes {
  public:
    void showMessage(const QString&) override {}
    bool askYesNo(const QString&, const QString&) override { return true; }
    bool warnOkCancel(const QString&, const QString&) override { return true; }
    QString inputBox(const QString&, const QString&) override { return {}; }
    QString browseForFolder(const QString&) override { return {}; }
};

/// Whoever started the command ends it by an interrupt.
class Interrupt : public ports::EventPump {
  public:
    void yield() override {}
    void repaint() override {}
    bool closing() const override;
};

}  // namespace cli
