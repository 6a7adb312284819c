// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/MixRun.h"

#include <algorithm>
#include <set>

#include <QFileInfo>
#include <QJsonArray>
#include <QJsonObject>

#include "cli/Report.h"
#include "effects/engine/AudioEditor.h"
#include "lists/LineFile.h"
#include "platform/Interrupt.h"
#include "wizard/Naming.h"
#include "wizard/RunView.h"
#include "wizard/Session.h"
#include "wizard/TransformationPass.h"

using namespace Qt::Literals::StringLiterals;

namespace cli {
namespace {

/// Whoever started the run stops it by an interrupt.
class Interrupt : public ports::EventPump {
  public:
    void yield() override {}
    void repaint() override {}
    bool closing() const override { return platform::interrupted(); }
};

/// The command line in the place of the wizard's window: its bar and boxes too, which ask nothing.
class MixReport : public wizard::RunView, public ports::ProgressBar, public ports::Boxes {
  public:
    MixReport(const MixRun& run, const wizard::Session& session, Report& report)
        : run_(run), session_(session), report_(report) {}

    wizard::Options options() const override { return run_.options; }
    void selectFile(int index) override { begin(index, 0); }
    void selectResult(int index) override { begin(index, 1); }
    void showResults() override {}
    void stepFailed(const QString& sentence) override { reportFailed(current_, sentence); }

    void setShown(bool) override {}
    void setMaximum(int) override {}
    void setStatus(const QString&) override {}
    // One more file is transformed; the pass ends with a last call that puts its bar back to 0.
    void setValue(int files) override {
        if (files > 0 && !run_.options.crossFade) reportDone(current_);
    }
    void setFraction(double fraction) override {
        fraction_ = std::max(fraction_, fraction);
        report_.progress(static_cast<std::size_t>(current_), (round_ + fraction_) / rounds());
    }

    void showMessage(const QString&) override {}
    bool askYesNo(const QString&, const QString&) override { return true; }
    bool warnOkCancel(const QString&, const QString&) override { return true; }
    QString inputBox(const QString&, const QString&) override { return {}; }
    QString browseForFolder(const QString&) override { return {}; }

    // Only here is a track of a mix done: until the rounds are over, any of them may still fail.
    void burn(const QStringList& results) override {
        QStringList tracks;
        for (qsizetype index = 0; index < results.size(); ++index) {
            reportDone(index);
            if (QFileInfo::exists(results[index])) tracks += results[index];
        }
        QJsonObject fields{{u"mix"_s, QJsonArray::fromStringList(tracks)}};
        if (!run_.burnList.isEmpty()) {
            lists::writeLines(run_.burnList, tracks);
            fields[u"burnList"_s] = run_.burnList;
        }
        report_.line(summary(tracks.size()), fields);
    }

    void reportInterrupt() {
        const qsizetype transformed = session_.List1.rowCount();
        const qsizetype done = run_.options.crossFade ? 0 : transformed;
        for (qsizetype index = done; index < run_.files.size(); ++index)
            reportFailed(index, (index < transformed
                                     ? u"%1 is in no finished mix: the run was interrupted."_s
                                     : u"%1 was not begun: the run was interrupted."_s)
                                    .arg(run_.files[index]));
    }

  private:
    double rounds() const { return run_.options.crossFade ? 2 : 1; }

    void begin(int index, int round) {
        current_ = index;
        round_ = round;
        fraction_ = 0;
    }

    void reportDone(qsizetype index) {
        if (!failed_.contains(index))
            report_.done(run_.files[index], session_.List1.stringList().at(index));
    }

    // What fails in a round after that follows from the first failure, and a file counts once.
    void reportFailed(qsizetype index, const QString& sentence) {
        if (failed_.insert(index).second) report_.failed(run_.files[index], sentence);
    }

    QString summary(qsizetype tracks) const {
        const QString count = tracks == 1 ? u"1 track"_s : u"%1 tracks"_s.arg(tracks);
        QString text = u"The mix of %1 is in %2"_s.arg(count, run_.options.targetPath);
        if (!run_.burnList.isEmpty()) text += u", its burn list is %1"_s.arg(run_.burnList);
        return text;
    }

    const MixRun& run_;
    const wizard::Session& session_;
    Report& report_;
    qsizetype current_ = 0;  // the file in hand
    int round_ = 0;          // 0 = the pass, 1 = a round of the cross fade
    double fraction_ = 0;
    std::set<qsizetype> failed_;
};

}  // namespace

void runMix(const MixRun& run, Report& report) {
    wizard::Session session;
    session.lstFiles.setStringList(run.files);
    session.settings.fadeOutMs = run.fadeOutMs;
    session.settings.fadeInMs = run.fadeInMs;
    session.settings.crossfade_value = run.overlapMs;
    MixReport view(run, session, report);
    Interrupt events;
    effects::AudioEditor editor;
    QObject::connect(&editor, &effects::Editor::Progress,
                     [&](int percent) { view.setFraction(percent / 100.0); });
    wizard::TransformationPass pass(editor, session, {view, view, view, events});
    if (const QString reason = pass.reasonAgainst(); !reason.isEmpty())
        return report.failed(run.options.targetPath, reason);
    report.begin(static_cast<std::size_t>(run.files.size()));
    if (!pass.run()) view.reportInterrupt();
    report.end();
}

}  // namespace cli
