// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/commands/Transform.h"

#include <memory>

#include <CLI/CLI.hpp>

#include "cli/MixOptions.h"
#include "cli/Session.h"

namespace cli {

void addTransformCommand(CLI::App& app, Session& session) {
    const auto options = std::make_shared<MixOptions>();
    CLI::App* command =
        app.add_subcommand("transform", "Writes changed copies of sound files into a folder");
    options->addTo(*command);
    command->callback([options, &session] {
        Report& report = session.report();
        runMix(options->toRun(report), report);
    });
}

}  // namespace cli
