// SPDX-License-Identifier: GPL-3.0-or-later
#include <memory>
#include <string>

#include <CLI/CLI.hpp>

#include "cli/Inputs.h"
#include "cli/Invocation.h"
#include "cli/MixOptions.h"
#include "cli/Seconds.h"
#include "cli/commands/Commands.h"

namespace cli {
namespace {

struct CrossfadeOptions {
    MixOptions mix;
    double overlap = 20;  // seconds
    std::string burnList;
};

void crossfade(const CrossfadeOptions& options, Invocation& invocation) {
    Report& report = invocation.report();
    MixRun run = options.mix.toRun(report);
    run.options.crossFade = true;
    run.overlapMs = toMilliseconds(options.overlap);
    if (!options.burnList.empty()) run.burnList = absolutePath(options.burnList);
    runMix(run, report);
}

}  // namespace

void addCrossfadeCommand(CLI::App& app, Invocation& invocation) {
    const auto options = std::make_shared<CrossfadeOptions>();
    CLI::App* command =
        app.add_subcommand("crossfade", "Makes one continuous mix of sound files in a folder");
    options->mix.addTo(*command);
    command->add_option("--overlap", options->overlap, "Seconds that two tracks are heard together")
        ->check(lengthInSeconds())
        ->capture_default_str();
    command->add_option("--burn-list", options->burnList, "Write the paths of the mix to this file")
        ->type_name("FILE");
    command->callback([options, &invocation] { crossfade(*options, invocation); });
}

}  // namespace cli
