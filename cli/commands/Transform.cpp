// SPDX-License-Identifier: GPL-3.0-or-later
#include <memory>

#include <CLI/CLI.hpp>

#include "cli/Invocation.h"
#include "cli/MixOptions.h"
#include "cli/commands/Commands.h"

namespace cli {

void addTransformCommand(CLI::App& app, Invocation& invocation) {
    const auto options = std::make_shared<MixOptions>();
    CLI::App* command =
        app.add_subcommand("transform", "Writes changed copies of sound files into a folder");
    options->addTo(*command);
    command->callback([options, &invocation] {
        Report& report = invocation.report();
        runMix(options->toRun(report), report);
    });
}

}  // namespace cli
