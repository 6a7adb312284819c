// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/MixRun.h"

#include <algorithm>

#include <QJsonArray>
#include <QJsonObject>

#include "cli/Report.h"
#include "effects/engine/AudioEditor.h"
#include "handoff/LineFile.h"
#include "platform/Interrupt.h"
#include "wizard/Host.h"
#include "wizard/Naming.h"
#include "wizard/Session.h"
#include "wizard/TransformationPass.h"

using namespace Qt::Literals::StringLiterals;

namespace cli {
namespace {

/// The command line in the place of the wizard's window.
class ReportingHost : public wizard::Host {
  public:
    ReportingHost(const MixRun& run, const wizard::Session& session, Report& report)
        : run_(run), session_(session), report_(report) {}

    wizard::Options options() const override { return run_.options; }
    bool abandoned() const override { return platform::interrupted(); }
    void showStatus(const QString&) override {}
    void setFileMaximum(int) override {}
    void selectFile(int index) override { begin(index, 0); }
    void selectResult(int index) override { begin(index, 1); }
    void showResults() override {}
    void refuse(const QString& reason) override {
        refused_ = true;
        report_.failed(run_.options.targetPath, reason);
    }
    void sayCompleted() override { finished_ = true; }
    bool askReadyToBurn() override { return true; }

    void setEngineProgress(int percent) override {
        fraction_ = std::max(fraction_, percent / 100.0);
        report_.progress(current_, (round_ + fraction_) / rounds());
    }

    // One more file is transformed; the pass ends with a last call that puts its bar back to 0.
    void setFileProgress(int files) override {
        if (files == 0) return;
        const QString source = run_.files.at(static_cast<qsizetype>(current_));
        if (failedNow_) return;
        report_.done(source, session_.List1.stringList().last());
    }

    void stepFailed(const QString& sentence) override {
        failedNow_ = true;
        report_.failed(run_.files.at(static_cast<qsizetype>(current_)), sentence);
    }

    void burn(const QStringList& results) override {
        finished_ = true;
        QJsonObject fields{{u"mix"_s, QJsonArray::fromStringList(results)}};
        if (!run_.burnList.isEmpty()) {
            handoff::writeLines(run_.burnList, results);
            fields[u"burnList"_s] = run_.burnList;
        }
        report_.line(summary(results.size()), fields);
    }

    bool finished() const { return refused_ || finished_; }

  private:
    double rounds() const { return run_.options.crossFade ? 2 : 1; }

    void begin(int index, int round) {
        current_ = static_cast<std::size_t>(index);
        round_ = round;
        fraction_ = 0;
        failedNow_ = false;
    }

    QString summary(qsizetype tracks) const {
        QString text = u"The mix of %1 tracks is in %2"_s.arg(tracks).arg(run_.options.targetPath);
        if (!run_.burnList.isEmpty()) text += u", its burn list is %1"_s.arg(run_.burnList);
        return text;
    }

    const MixRun& run_;
    const wizard::Session& session_;
    Report& report_;
    std::size_t current_ = 0;  // the file in hand
    int round_ = 0;            // 0 = the pass, 1 = a round of the cross fade
    double fraction_ = 0;
    bool failedNow_ = false;
    bool refused_ = false;
    bool finished_ = false;
};

void reportInterrupt(const MixRun& run, qsizetype transformed, Report& report) {
    for (const QString& file : run.files.mid(transformed))
        report.failed(file, u"%1 was not begun: the run was interrupted."_s.arg(file));
    if (transformed == run.files.size())
        report.failed(run.options.targetPath,
                      u"The cross fade was interrupted: the files in %1 are no finished mix."_s.arg(
                          run.options.targetPath));
}

}  // namespace

void runMix(const MixRun& run, Report& report) {
    wizard::Session session;
    session.lstFiles.setStringList(run.files);
    session.settings.fadeOutMs = run.fadeOutMs;
    session.settings.fadeInMs = run.fadeInMs;
    session.settings.crossfade_value = run.overlapMs;
    ReportingHost host(run, session, report);
    if (const QString reason = wizard::nameGivenTwice(run.files, run.options); !reason.isEmpty())
        return host.refuse(reason);

    effects::AudioEditor editor;
    QObject::connect(&editor, &effects::AudioEditor::Progress,
                     [&](int percent) { host.setEngineProgress(percent); });
    report.begin(static_cast<std::size_t>(run.files.size()));
    wizard::TransformationPass(editor, session, host).run();
    if (!host.finished()) reportInterrupt(run, session.List1.rowCount(), report);
    report.end();
}

}  // namespace cli
