// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/MixRun.h"

#include <set>

#include <QJsonArray>
#include <QJsonObject>

#include "cli/CommandPorts.h"
#include "cli/Report.h"
#include "effects/engine/AudioEditor.h"
#include "lists/ListWriter.h"
#include "lists/Names.h"
#include "wizard/Naming.h"
#include "wizard/RunView.h"
#include "wizard/Session.h"
#include "wizard/TransformationPass.h"

using namespace Qt::Literals::StringLiterals;

namespace cli {
namespace {

/// The command line in the place of the wizard's window, its bar too.
class MixReport : public wizard::RunView, public ReportBar {
  public:
    MixReport(const MixRun& run, const wizard::Session& session, Report& report)
        : ReportBar(report, run.options.crossFade ? 2 : 1),
          run_(run),
          session_(session),
          report_(report) {}

    wizard::Options options() const override { return run_.options; }
    void selectFile(int index) override { take(index, 0); }
    void selectResult(int index) override { take(index, 1); }
    void showResults() override {}
    void stepFailed(const QString& sentence) override { reportFailed(current_, sentence); }

    // One more file is transformed; the pass ends with a last call that puts its bar back to 0.
    void setValue(int files) override {
        if (files > 0 && !run_.options.crossFade) reportDone(current_);
    }

    // Only here is a track of a mix done: until the rounds are over, any of them may still fail.
    void burn(const QStringList& results) override {
        QStringList tracks;
        for (qsizetype index = 0; index < results.size(); ++index) {
            reportDone(index);
            if (lists::isFile(results[index])) tracks += results[index];
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
    void take(int index, int round) {
        current_ = index;
        begin(static_cast<std::size_t>(index), round);
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
    NoBoxes boxes;
    Interrupt events;
    effects::AudioEditor editor;
    QObject::connect(&editor, &effects::Editor::Progress,
                     [&](int percent) { view.setFraction(percent / 100.0); });
    wizard::TransformationPass pass(editor, session, {view, view, boxes, events});
    if (const QString reason = pass.reasonAgainst(); !reason.isEmpty())
        return report.failed(run.options.targetPath, reason);
    report.begin(static_cast<std::size_t>(run.files.size()));
    if (!pass.run()) view.reportInterrupt();
    report.end();
}

}  // namespace cli
