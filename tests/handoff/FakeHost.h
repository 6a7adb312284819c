// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <set>
#include <vector>

#include <QStringList>

#include "handoff/Host.h"

namespace test {

/// A main window for tests without one: a list of paths, and boxes that are answered as told and
/// remembered.
class FakeHost : public handoff::Host {
  public:
    QStringList paths;
    std::set<int> selected;  ///< rows
    std::int16_t minutes = 0;
    std::int32_t saveResult = 0;
    bool answer = true;  ///< to every question

    QStringList shown;  ///< texts of all boxes
    QStringList saved;  ///< "player path"
    int barMaximum = -100;

    int rowCount() const override { return static_cast<int>(paths.size()); }
    bool rowSelected(int row) const override { return selected.count(row) > 0; }
    QString entryPath(int entry) const override { return paths.value(entry); }
    QString entryName(int entry) const override { return paths.value(entry).section(u'/', -1); }
    void clearRows() override { paths.clear(); }
    void setTitleCell(int, const QString&) override {}
    std::int16_t totalMinutes() const override { return minutes; }

    QString playlistCaption() const override { return {}; }
    void setPlaylistCaption(const QString&) override {}
    std::int32_t savePlaylistAsM3u(std::int16_t player, const QString& path) override {
        saved += QString::number(player) + u' ' + path;
        return saveResult;
    }
    std::int32_t loadPlaylist(const QString&) override { return 0; }
    void fillPlayListView() override {}
    void reloadPlaylist() override {}

    void setBarVisible(bool) override {}
    void setBarMaximum(int maximum) override { barMaximum = maximum; }
    void setBarValue(int) override {}
    void setFileProgress(double) override {}

    QString browseForFolder(const QString&) override { return {}; }
    void showMessage(const QString& text) override { shown += text; }
    bool askYesNo(const QString& text, const QString&) override { return ask(text); }
    bool warnOkCancel(const QString& text, const QString&) override { return ask(text); }
    QString inputBox(const QString&, const QString&) override { return {}; }

    void yield() override {}
    bool closing() const override { return false; }

  private:
    bool ask(const QString& text) {
        shown += text;
        return answer;
    }
};

}  // namespace test
