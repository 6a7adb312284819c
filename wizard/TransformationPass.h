// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

#include <QHash>
#include <QString>

#include "effects/engine/Editor.h"
#include "wizard/Naming.h"
#include "wizard/RunView.h"
#include "wizard/Session.h"
#include "wizard/Steps.h"

namespace wizard {

/// What the wizard's start button does: every file of the session is loaded, trimmed, normalized
/// and faded as ticked, and saved in the chosen format into the target folder; with a cross fade
/// ticked, the two rounds follow. Of all that the window offers it uses trim, normalize, the two
/// fades, the format, the tag choice and the cross fade.
///
/// A step that fails is passed over and the next one is taken; the results list gets every file's
/// path all the same, but only what was written takes part in the rounds. The originals are never
/// written: where the target folder holds one of them under a result's name, that is a reason
/// against the run.
///
/// Runs in the caller's thread and yields only through the engine's progress. session.stop() ends
/// the loop after the file in hand.
class TransformationPass {
  public:
    TransformationPass(effects::Editor& editor, Session& session, const RunPorts& ports);

    /// Why the run cannot begin; empty where it can. Asked before run().
    QString reasonAgainst();
    /// The whole run, up to its closing message or the burn. False where it was given up.
    bool run();

  private:
    QString originalInTheWay() const;
    void transformAll();
    bool transform(const QString& path);
    void keepResult(bool written);
    void applyEffects(Attempts& attempt, const Options& options);
    void fade(Attempts& attempt, const Options& options);
    void fadeRange(std::int32_t start, std::int32_t end, float from, float to);
    /// Whether the result was written.
    bool save(Attempts& attempt, const QString& path, const Options& options);

    effects::Editor& editor_;
    Session& session_;
    RunPorts ports_;
    ResultPaths paths_;
    QHash<QString, int> written_;  ///< by path, the row of List1 that holds what lies there
    QString outputPath_;           ///< the last one built, which a file of no format repeats
};

}  // namespace wizard
