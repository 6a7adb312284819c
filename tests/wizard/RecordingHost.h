// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>

#include <QString>
#include <QStringList>

#include "wizard/Host.h"
#include "wizard/OutputFormat.h"

namespace support {

/// A host that keeps what it is told and answers as it was set up.
class RecordingHost : public wizard::Host {
  public:
    RecordingHost() {
        chosen.targetPath = QStringLiteral("/out/");
        chosen.format = QStringLiteral("WAV");
        chosen.frequency = wizard::initialFrequency();
        chosen.bitRate = wizard::initialBitRate(chosen.format);
        chosen.channels = wizard::initialChannels();
    }

    wizard::Options options() const override { return chosen; }
    bool abandoned() const override { return closed; }
    void showStatus(const QString& text) override { statuses << text; }
    void setFileMaximum(int files) override { maximum = files; }
    void setFileProgress(int files) override { progress << files; }
    void setEngineProgress(int percent) override { engineProgress = percent; }
    void selectFile(int index) override { selectedFiles << index; }
    void showResults() override { resultsShown = true; }
    void selectResult(int index) override { selectedResults << index; }
    void stepFailed(const QString& sentence) override { failures << sentence; }
    void refuse(const QString& reason) override { refused << reason; }
    void sayCompleted() override { ++completed; }
    bool askReadyToBurn() override {
        ++burnQuestions;
        return burnAnswer;
    }
    void burn(const QStringList& results) override { burned = results; }

    wizard::Options chosen;
    bool closed = false, resultsShown = false, burnAnswer = false;
    int maximum = -1, engineProgress = -1, burnQuestions = 0, completed = 0;
    QList<int> progress, selectedFiles, selectedResults;
    QStringList statuses, failures, refused, burned;
};

}  // namespace support
