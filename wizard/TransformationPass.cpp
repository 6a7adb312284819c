// SPDX-License-Identifier: GPL-3.0-or-later
#include "wizard/TransformationPass.h"

#include "wizard/CrossFadeRounds.h"
#include "wizard/Naming.h"
#include "wizard/OutputFormat.h"
#include "wizard/Texts.h"

namespace wizard {

using namespace Qt::Literals::StringLiterals;

TransformationPass::TransformationPass(effects::Editor& editor, Session& session,
                                       const RunPorts& ports)
    : editor_(editor), session_(session), ports_(ports) {}

QString TransformationPass::reasonAgainst() {
    if (ports_.view.options().targetPath.isEmpty()) return texts::TargetPathMissing.toString();
    session_.originals = {};
    for (const QString& path : session_.lstFiles.stringList()) session_.originals.add(path);
    const QString path = originalInTheWay();
    return path.isEmpty() ? QString() : texts::originalInTheWay(path);
}

bool TransformationPass::run() {
    transformAll();
    if (ports_.events.closing()) return false;
    if (ports_.view.options().crossFade) return CrossFadeRounds(editor_, session_, ports_).run();
    ports_.boxes.showMessage(texts::Completed.toString());
    return true;
}

QString TransformationPass::originalInTheWay() const {
    const Options options = ports_.view.options();
    ResultPaths paths;
    QString name = session_.settings.FileName;
    for (const QString& path : session_.lstFiles.stringList()) {
        const QString output = paths.next(path, options, name);
        if (session_.originals.contains(output)) return output;
    }
    return {};
}

void TransformationPass::transformAll() {
    editor_.CloseSound();
    session_.List1.setStringList({});
    session_.sounding.clear();
    written_.clear();
    paths_ = {};
    ports_.bar.setMaximum(session_.lstFiles.rowCount());

    auto& i_count = session_.settings.i_count;
    const auto more = [&] {
        return i_count < session_.lstFiles.rowCount() && !ports_.events.closing();
    };
    for (i_count = 0; more(); ++i_count) {
        const QString path = session_.lstFiles.stringList().at(i_count);
        ports_.view.selectFile(i_count);
        keepResult(transform(path));
        ports_.bar.setValue(i_count + 1);
    }

    editor_.CloseSound();
    i_count = 0;
    ports_.bar.setValue(0);
}

// A later file of the same path takes an earlier one's place on the disk.
void TransformationPass::keepResult(bool written) {
    const int row = session_.List1.rowCount();
    append(session_.List1, outputPath_);
    if (!written) return;
    if (const auto earlier = written_.constFind(outputPath_); earlier != written_.constEnd())
        session_.sounding.erase(*earlier);
    written_.insert(outputPath_, row);
    session_.sounding.insert(row);
}

bool TransformationPass::transform(const QString& path) {
    const Options options = ports_.view.options();
    Attempts attempt(ports_.view, path);
    session_.originals.add(path);
    attempt([&] { editor_.Load(path); });
    ports_.bar.setStatus(texts::StatusApplying.toString());
    applyEffects(attempt, options);
    fade(attempt, options);
    editor_.SetKeepTags(true);
    return save(attempt, path, options);
}

void TransformationPass::applyEffects(Attempts& attempt, const Options& options) {
    auto& norm_val = session_.settings.norm_val;
    attempt([&] { editor_.SelectWholeFile(); });
    if (options.trimSilence) attempt([&] { editor_.TrimSilence(-20.0F, 100.0F, 2); });
    if (!options.normalize) return;
    if (!norm_val) norm_val = 100.0;
    attempt([&] { editor_.Normalize(static_cast<float>(*norm_val), true); });
}

void TransformationPass::fade(Attempts& attempt, const Options& options) {
    Settings& settings = session_.settings;
    if (options.fadeOut) {
        if (settings.fadeOutMs == 0) settings.fadeOutMs = DefaultFadeMs;
        attempt([&] {
            const auto length = editor_.GetLength();
            fadeRange(length - editor_.TimeToPosition(settings.fadeOutMs), length, 100.0F, 10.0F);
        });
    }
    if (options.fadeIn) {
        if (settings.fadeInMs == 0) settings.fadeInMs = DefaultFadeMs;
        attempt([&] { fadeRange(0, editor_.TimeToPosition(settings.fadeInMs), 10.0F, 100.0F); });
    }
}

void TransformationPass::fadeRange(std::int32_t start, std::int32_t end, float from, float to) {
    editor_.SetSelectionActive(true);
    editor_.SetSelectionStart(start);
    editor_.SetSelectionEnd(end);
    editor_.Fade(from, to);
}

bool TransformationPass::save(Attempts& attempt, const QString& path, const Options& options) {
    Settings& settings = session_.settings;
    const QString ending = fileEnding(options.format);
    const QString output = paths_.next(path, options, settings.FileName);
    if (ending.isEmpty()) return false;
    readFormat(options, settings);
    if (options.tags == TagChoice::LeaveAsIs) editor_.SetKeepTags(true);
    if (options.tags == TagChoice::Strip) editor_.SetKeepTags(false);
    outputPath_ = output;
    attempt([&] {
        if (ending == u"wav"_s)
            editor_.SetOutputFormatWav(settings.Freq, settings.Chan, settings.my_wav_bitrate);
        else
            editor_.SetOutputFormatMp3(settings.Freq, settings.my_wav_bitrate, settings.Chan);
    });
    return attempt([&] { guardedSave(editor_, session_.originals, outputPath_, false); });
}

}  // namespace wizard
