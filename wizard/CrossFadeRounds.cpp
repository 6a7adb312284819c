// SPDX-License-Identifier: GPL-3.0-or-later
#include "wizard/CrossFadeRounds.h"

#include <cstdint>

#include "wizard/Naming.h"
#include "wizard/Steps.h"
#include "wizard/Texts.h"

namespace wizard {

CrossFadeRounds::CrossFadeRounds(effects::Editor& editor, Session& session, const RunPorts& ports)
    : editor_(editor), session_(session), ports_(ports) {}

bool CrossFadeRounds::run() {
    cutHeads();
    if (ports_.events.closing()) return false;
    mixHeads();
    if (ports_.events.closing()) return false;
    ports_.bar.setStatus(texts::StatusIdle.toString());
    offerBurn();
    return true;
}

void CrossFadeRounds::cutHeads() {
    ports_.bar.setStatus(texts::StatusFirstRound.toString());
    ports_.view.showResults();
    const QStringList results = session_.List1.stringList();
    results_ = {results.begin(), results.end()};
    Settings& settings = session_.settings;
    if (settings.crossfade_value == 0) settings.crossfade_value = DefaultOverlapMs;
    editor_.CloseSound();
    const int last = session_.List1.rowCount() - 1;
    for (settings.i_count = 1; settings.i_count <= last && !ports_.events.closing();
         ++settings.i_count)
        cutHead(settings.i_count);
}

void CrossFadeRounds::cutHead(int index) {
    ports_.view.selectResult(index);
    // The first track that has sound keeps its head: there is nothing before it to mix it with.
    if (!sounds(index) || *session_.sounding.begin() == index) return;
    const QString path = result(index);
    Attempts attempt(ports_.view, path);
    if (!attempt([&] { editor_.Load(path); })) return;
    if (editor_.GetLength() <= editor_.TimeToPosition(session_.settings.crossfade_value)) return;
    editor_.SetSelectionActive(false);
    editor_.SetSelectionActive(true);
    attempt([&] {
        editor_.SetSelectionEnd(editor_.TimeToPosition(session_.settings.crossfade_value));
    });
    // What lies in no file yet must not be cut away.
    if (!attempt([&] { guardedSave(editor_, session_.originals, headOf(index), true); })) return;
    attempt([&] { editor_.DeleteSelection(); });
    editor_.SetSelectionActive(false);
    if (attempt([&] { guardedSave(editor_, session_.originals, path, false); })) cut_.insert(index);
}

void CrossFadeRounds::mixHeads() {
    ports_.bar.setStatus(texts::StatusSecondRound.toString());
    auto& i_count = session_.settings.i_count;
    editor_.CloseSound();
    const int last = session_.List1.rowCount() - 2;
    for (i_count = 0; i_count <= last && !ports_.events.closing(); ++i_count)
        if (!mixHead(i_count)) return;
}

bool CrossFadeRounds::mixHead(int index) {
    ports_.view.selectResult(index);
    if (!sounds(index)) return true;
    const int next = nextSounding(index);
    const QString path = result(index);
    Attempts attempt(ports_.view, path);
    attempt([&] { editor_.Load(path); });
    editor_.SetSelectionActive(false);
    editor_.SetSelectionActive(true);
    bool inRange = true;
    attempt([&] { inRange = selectTail(); });
    if (!inRange) return false;
    if (cut_.contains(next)) attempt([&] { editor_.MixFile(headOf(next), 100.0F, 100.0F); });
    attempt([&] { guardedSave(editor_, session_.originals, path, false); });
    editor_.SetSelectionActive(false);
    return true;
}

bool CrossFadeRounds::selectTail() {
    const std::int32_t overlap = editor_.TimeToPosition(session_.settings.crossfade_value);
    const std::int64_t start = std::int64_t{editor_.GetLength()} - overlap;
    if (start != static_cast<std::int32_t>(start)) return false;
    editor_.SetSelectionStart(static_cast<std::int32_t>(start));
    editor_.SetSelectionEnd(editor_.GetLength());
    return true;
}

void CrossFadeRounds::offerBurn() {
    if (!ports_.boxes.askYesNo(texts::BurnQuestion.toString(), texts::BurnTitle.toString())) return;
    for (int index = 0; index < session_.List1.rowCount(); ++index) ports_.view.selectResult(index);
    ports_.view.burn(session_.List1.stringList());
}

/// The nearest later track that has sound; -1 where there is none.
int CrossFadeRounds::nextSounding(int index) const {
    const auto later = session_.sounding.upper_bound(index);
    return later == session_.sounding.end() ? -1 : *later;
}

QString CrossFadeRounds::headOf(int index) const {
    return freePath(headFile(ports_.view.options().targetPath, index, result(index)), results_);
}

QString CrossFadeRounds::result(int index) const {
    return session_.List1.stringList().value(index);
}

}  // namespace wizard
