// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>
#include <set>
#include <vector>

#include <QMap>
#include <QStringList>

#include "effects/batch/BatchRunner.h"
#include "tests/support/FakeEditor.h"

namespace support {

/// A window that writes down what a run asks of it, into the same list as the engine's calls.
class RecordingRunnerHost : public effects::RunnerHost {
  public:
    effects::Editor& editor() override { return engine; }
    int rowCount() const override { return rows; }
    bool rowSelected(int row) const override { return selected.contains(row); }
    QString entryPath(int entry) const override {
        return QStringLiteral("/music/%1.wav").arg(entry);
    }
    QString entryName(int entry) const override { return QStringLiteral("%1.wav").arg(entry); }
    void markRow(int row, const QString& reason) override { marks[row] = reason; }
    void clearRowMarks() override { marks.clear(); }
    void replaceFile(const QString& path, const std::function<void()>& work) override {
        released << path;
        work();
    }
    void setBarVisible(bool visible) override { log(visible ? "show bar" : "hide bar"); }
    void setBarMaximum(int maximum) override { log("bar maximum", maximum); }
    void setBarValue(int value) override { log("bar", value); }
    void setFileProgress(double fraction) override { fractions.push_back(fraction); }
    void setStatus(const QString& text) override {
        log(("status [" + text.toStdString() + "]").c_str());
    }
    void setFileName(const QString& path) override { name = path; }
    QString fileName() const override { return name; }
    void stopPlayback() override {
        log("stop");
        if (stopFails) throw std::runtime_error("The player does not answer.");
    }
    void saveStep() override {
        log("save step");
        runner->save();
    }
    void setCommandButtonsEnabled(bool enabled) override {
        log(enabled ? "enable buttons" : "disable buttons");
    }
    void setListEnabled(bool enabled) override { log(enabled ? "enable list" : "disable list"); }
    void setEditorVisible(bool visible) override { log(visible ? "show editor" : "hide editor"); }
    void yield() override {
        log("yield");
        if (onYield) onYield();
    }
    void repaint() override { log("repaint"); }
    void showMessage(const QString& text) override {
        log(("message [" + text.toStdString() + "]").c_str());
    }
    bool closing() const override { return closed; }

    void log(const char* what) { engine.calls << QString::fromUtf8(what); }
    void log(const char* what, int number) {
        engine.calls << QStringLiteral("%1 %2").arg(QString::fromUtf8(what)).arg(number);
    }

    effects::BatchRunner* runner = nullptr;
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
