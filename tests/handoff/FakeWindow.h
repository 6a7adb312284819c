// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <set>
#include <vector>

#include <QStringList>

#include "handoff/LoadedList.h"
#include "ports/Boxes.h"
#include "ports/EventPump.h"
#include "ports/FileList.h"
#include "ports/Ports.h"
#include "ports/ProgressBar.h"

namespace test {

/// A main window for tests without one: a list of paths, and boxes that are answered as told and
/// remembered.
class FakeWindow : public handoff::LoadedList,
                   public ports::FileList,
                   public ports::ProgressBar,
                   public ports::Boxes,
                   public ports::EventPump {
  public:
    QStringList paths;
    std::set<int> selected;  ///< rows
    std::int32_t saveResult = 0;
    bool answer = true;  ///< to every question

    QStringList shown;  ///< texts of all boxes
    QStringList saved;  ///< "player path"
    int barMaximum = -100;

    ports::Ports all() { return {*this, *this, *this, *this}; }

    int rowCount() const override { return static_cast<int>(paths.size()); }
    bool rowSelected(int row) const override { return selected.count(row) > 0; }
    QString entryPath(int entry) const override { return paths.value(entry); }
    QString entryName(int entry) const override { return paths.value(entry).section(u'/', -1); }
    void markRow(int, const QString&) override {}
    void clearRowMarks() override {}

    QString caption() const override { return {}; }
    void setCaption(const QString&) override {}
    std::int32_t saveAsM3u(std::int16_t player, const QString& path) override {
        saved += QString::number(player) + u' ' + path;
        return saveResult;
    }
    void replaceBy(const QString&) override {}
    void reload() override {}
    void setTitleCell(int, const QString&) override {}

    void setShown(bool) override {}
    void setMaximum(int pieces) override { barMaximum = pieces; }
    void setValue(int) override {}
    void setFraction(double) override {}
    void setStatus(const QString&) override {}

    void showMessage(const QString& text) override { shown += text; }
    bool askYesNo(const QString& text, const QString&) override { return ask(text); }
    bool warnOkCancel(const QString& text, const QString&) override { return ask(text); }
    QString inputBox(const QString&, const QString&) override { return {}; }
    QString browseForFolder(const QString&) override { return {}; }

    void yield() override {}
    void repaint() override {}
    bool closing() const override { return false; }

  private:
    bool ask(const QString& text) {
        shown += text;
        return answer;
    }
};

}  // namespace test
