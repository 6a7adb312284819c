// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>
#include <set>
#include <vector>

#include <QMap>
#include <QStringList>

#include "effects/batch/BatchRunner.h"
#include "ports/Boxes.h"
#include "ports/EventPump.h"
#include "ports/FileList.h"
#include "ports/ProgressBar.h"
#include "tests/support/FakeEditor.h"

namespace support {

/// A window that writes down what a run asks of it, into the same list as the engine's calls.
class RecordingWindow : public effects::RunControls,
                        public ports::FileList,
                        public ports::ProgressBar,
                        public ports::Boxes,
                        public ports::EventPump {
  public:
    ports::Ports all() { return {*this, *this, *this, *this}; }

    int rowCount() const override { return rows; }
    bool rowSelected(int row) const override { return selected.contains(row); }
    QString entryPath(int entry) const override {
        return QStringLiteral("/music/%1.wav").arg(entry);
    }
    QString entryName(int entry) const override { return QStringLiteral("%1.wav").arg(entry); }
    void markRow(int row, const QString& reason) override { marks[row] = reason; }
    void clearRowMarks() override { marks.clear(); }

    void setShown(bool shown) override { log(shown ? "show bar" : "hide bar"); }
    void setMaximum(int pieces) override { log("bar maximum", pieces); }
    void setValue(int pieces) override { log("bar", pieces); }
    void setFraction(double fraction) override { fractions.push_back(fraction); }
    void setStatus(const QString& text) override {
        log(("status [" + text.toStdString() + "]").c_str());
    }

    void showMessage(const QString& text) override {
        log(("message [" + text.toStdString() + "]").c_str());
    }
    bool askYesNo(const QString&, const QString&) override { return false; }
    bool warnOkCancel(const QString&, const QString&) override { return false; }
    QString inputBox(const QString&, const QString&) override { return {}; }
    QString browseForFolder(const QString&) override { return {}; }

    void yield() override {
        log("yield");
        if (onYield) onYield();
    }
    void repaint() override { log("repaint"); }
    bool closing() const override { return closed; }

    void stopPlayback() override {
        log("stop");
        if (stopFails) throw std::runtime_error("The player does not answer.");
    }
    void setCommandsEnabled(bool enabled) override {
        log(enabled ? "enable commands" : "disable commands");
    }
    void setFileName(const QString& path) override {
        name = path;
        engine.calls << QStringLiteral("file name [%1]").arg(path);
    }
    QString fileName() const override { return name; }
    void replaceFile(const QString& path, const std::function<void()>& work) override {
        released << path;
        work();
    }

    void log(const char* what) { engine.calls << QString::fromUtf8(what); }
    void log(const char* what, int number) {
        engine.calls << QStringLiteral("%1 %2").arg(QString::fromUtf8(what)).arg(number);
    }

    int rows = 0;
    std::set<int> selected;
    QMap<int, QString> marks;
    std::vector<double> fractions;
    QStringList released;
    QString name;
    bool stopFails = false;
    bool closed = false;
    std::function<void()> onYield;
    FakeEditor engine;
};

}  // namespace support
