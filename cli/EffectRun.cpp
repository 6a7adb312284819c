// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/EffectRun.h"

#include <exception>
#include <filesystem>
#include <system_error>

#include <QDir>
#include <QFileInfo>
#include <QJsonObject>
#include <QSet>

#include "audio/edit/Saver.h"
#include "cli/Jobs.h"
#include "cli/Report.h"
#include "effects/engine/AudioEditor.h"
#include "platform/Interrupt.h"
#include "platform/Paths.h"

using namespace Qt::Literals::StringLiterals;

namespace cli {
namespace {

struct Task {
    QString source;
    QString target;
};

bool isTaken(const QString& target) {
    std::error_code unknown;
    return std::filesystem::exists(
        std::filesystem::symlink_status(platform::toPath(target), unknown));
}

// Where each file goes. What has no place to go to is reported and left out.
std::vector<Task> tasksOf(const EffectRun& run, Report& report) {
    std::vector<Task> tasks;
    QSet<QString> sources;
    QSet<QString> targets;
    for (const QString& source : run.files) {
        if (run.outputFolder.isEmpty()) {
            tasks.push_back({source, source});
            continue;
        }
        if (sources.contains(source)) continue;
        sources += source;
        const QString name = QFileInfo(source).fileName();
        const QString target = QDir::toNativeSeparators(QDir(run.outputFolder).filePath(name));
        if (targets.contains(target) || isTaken(target)) {
            report.failed(
                source, u"%1 is there already; %2 was not written over it."_s.arg(target, source));
            continue;
        }
        targets += target;
        tasks.push_back({source, target});
    }
    return tasks;
}

QString nameOf(audio::edit::SaveMethod method) {
    switch (method) {
        case audio::edit::SaveMethod::Copied:
            return u"copied"_s;
        case audio::edit::SaveMethod::Pcm:
            return u"pcm"_s;
        case audio::edit::SaveMethod::Spliced:
            return u"spliced"_s;
        case audio::edit::SaveMethod::Encoded:
            break;
    }
    return u"encoded"_s;
}

// How the file was saved, and why not in a cheaper way.
QJsonObject detailsOf(const audio::edit::SaveReport& report) {
    QJsonObject details{{u"saved"_s, nameOf(report.method)},
                        {u"frames"_s, static_cast<qint64>(report.frames)},
                        {u"newFrames"_s, static_cast<qint64>(report.renderedFrames)}};
    if (report.packets > 0) {
        details[u"packets"_s] = static_cast<qint64>(report.packets);
        details[u"newPackets"_s] = static_cast<qint64>(report.newPackets);
    }
    if (!report.note.empty()) details[u"note"_s] = QString::fromStdString(report.note);
    if (!report.notice.empty()) details[u"notice"_s] = QString::fromStdString(report.notice);
    return details;
}

class FileWork {
  public:
    FileWork(const EffectRun& run, const Task& task, std::size_t number, Report& report)
        : run_(run), task_(task), number_(number), report_(report) {}

    void operator()() {
        try {
            const QJsonObject details = work();
            report_.progress(number_, 1);
            report_.done(task_.source, task_.target == task_.source ? QString() : task_.target,
                         details);
        } catch (const std::exception& error) {
            report_.progress(number_, 1);
            report_.failed(task_.source, QString::fromUtf8(error.what()));
        }
    }

  private:
    QJsonObject work() {
        effects::AudioEditor editor;
        int phase = 0;
        QObject::connect(&editor, &effects::AudioEditor::Progress, [&](int percent) {
            report_.progress(number_, (phase + percent / 100.0) / 3);
            if (platform::interrupted()) editor.CloseSound();  // ends the operation in hand
        });
        editor.Load(task_.source);
        phase = 1;
        effects::EffectSettings settings = run_.settings;
        run_.effect->apply(editor, settings, effects::callStrictly);
        phase = 2;
        editor.Save(task_.target, true, 0);
        return detailsOf(editor.LastSaveReport());
    }

    const EffectRun& run_;
    const Task& task_;
    const std::size_t number_;
    Report& report_;
};

}  // namespace

void applyEffect(const EffectRun& run, Report& report) {
    const std::vector<Task> tasks = tasksOf(run, report);
    QStringList sources;
    for (const Task& task : tasks) sources += task.source;
    report.begin(tasks.size());
    const std::vector<std::size_t> left = forEachFile(sources, run.jobs, [&](std::size_t number) {
        FileWork(run, tasks[number], number, report)();
    });
    for (const std::size_t number : left)
        report.failed(tasks[number].source,
                      u"%1 was not begun: the run was interrupted."_s.arg(tasks[number].source));
    report.end();
}

}  // namespace cli
