// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <set>

#include <QSet>

#include "effects/engine/Editor.h"
#include "wizard/RunView.h"
#include "wizard/Session.h"

namespace wizard {

/// The two rounds over the files that the pass wrote (the session's results): the first cuts the
/// head of every track after the first into a file of its own, the second mixes each head over the
/// tail of the track before. Played without a gap, the files are one continuous mix. The rounds
/// apply no fade; the head files stay in the target folder.
///
/// Every sample of every track is heard once, in order:
/// - Only what this run wrote takes part. A track without sound is passed over, and the next head
///   goes onto the nearest earlier track that has some; the first of those keeps its head.
/// - A track that is no longer than the overlap keeps its head and is joined end to start.
/// - A head goes into the mix only if it was cut off its own track in this run. Where the track
///   before is shorter than it, it begins with that track and is heard to its end.
/// - A head file bears no track's name.
/// An engine call that fails is passed over otherwise.
///
/// Runs in the caller's thread and yields only through the engine's progress. session.stop() ends
/// each round after the entry in hand.
class CrossFadeRounds {
  public:
    CrossFadeRounds(effects::Editor& editor, Session& session, const RunPorts& ports);

    /// Both rounds, then the question about burning and the burn itself. False where the run was
    /// given up.
    bool run();

  private:
    void cutHeads();
    void cutHead(int index);
    void mixHeads();
    /// False where the round has to end.
    bool mixHead(int index);
    /// Selects the overlap at the end; false where its start is no position.
    bool selectTail();
    bool sounds(int index) const { return session_.sounding.contains(index); }
    int nextSounding(int index) const;
    void offerBurn();
    QString result(int index) const;
    QString headOf(int index) const;

    effects::Editor& editor_;
    Session& session_;
    RunPorts ports_;
    QSet<QString> results_;  ///< whose names no head file may take
    std::set<int> cut_;      ///< entries whose head lies in its file and no longer in their track
};

}  // namespace wizard
