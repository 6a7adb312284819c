// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>

#include <QString>
#include <QStringList>
#include <gtest/gtest.h>

#include "wizard/OutputFormat.h"
#include "wizard/RunView.h"
#include "wizard/Texts.h"

namespace support {

/// A window that keeps what it is told and answers as it was set up.
class RecordingView : public wizard::RunView,
                      public ports::ProgressBar,
                      public ports::Boxes,
                      public ports::EventPump {
  public:
    RecordingView() {
        chosen.targetPath = QStringLiteral("/out/");
        chosen.format = QStringLiteral("WAV");
        chosen.frequency = wizard::initialFrequency();
        chosen.bitRate = wizard::initialBitRate(chosen.format);
        chosen.channels = wizard::initialChannels();
    }

    wizard::RunPorts all() { return {*this, *this, *this, *this}; }

    wizard::Options options() const override { return chosen; }
    void selectFile(int index) override { selectedFiles << index; }
    void showResults() override { resultsShown = true; }
    void selectResult(int index) override { selectedResults << index; }
    void stepFailed(const QString& sentence) override { failures << sentence; }
    void burn(const QStringList& results) override { burned = results; }

    void setShown(bool) override {}
    void setMaximum(int files) override { maximum = files; }
    void setValue(int files) override { progress << files; }
    void setFraction(double) override {}
    void setStatus(const QString& text) override { statuses << text; }

    void showMessage(const QString& text) override {
        EXPECT_EQ(text, wizard::texts::Completed.toString());
        ++completed;
    }
    bool askYesNo(const QString& text, const QString& title) override {
        EXPECT_EQ(text, wizard::texts::BurnQuestion.toString());
        EXPECT_EQ(title, wizard::texts::BurnTitle.toString());
        ++burnQuestions;
        return burnAnswer;
    }
    bool warnOkCancel(const QString&, const QString&) override { return false; }
    QString inputBox(const QString&, const QString&) override { return {}; }
    QString browseForFolder(const QString&) override { return {}; }

    void yield() override {}
    void repaint() override {}
    bool closing() const override { return closed; }

    wizard::Options chosen;
    bool closed = false, resultsShown = false, burnAnswer = false;
    int maximum = -1, burnQuestions = 0, completed = 0;
    QList<int> progress, selectedFiles, selectedResults;
    QStringList statuses, failures, burned;
};

}  // namespace support
