// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/CommandLine.h"

#include <exception>
#include <iostream>

#include <CLI/CLI.hpp>

#include "cli/Invocation.h"
#include "cli/commands/Commands.h"
#include "platform/Program.h"

namespace cli {
namespace {

constexpr int failure = 1;
constexpr int badUsage = 2;

// Every command, in the order in which the help lists them: one add<Name>Command from commands/.
void addCommands(CLI::App& app, Invocation& invocation) {
    addShowCommand(app, invocation);
    addEffectCommand(app, invocation);
    addCopyCommand(app, invocation);
    addConvertListCommand(app, invocation);
    addTransformCommand(app, invocation);
    addCrossfadeCommand(app, invocation);
}

}  // namespace

int runCommandLine(int argc, const char* const* argv) {
    Invocation invocation(std::cout, std::cerr);
    CLI::App app("Works on playlists and sound files without a window.", "tracksmith-cli");
    app.add_flag("--json", invocation.json, "One JSON object a line, for programs");
    app.set_version_flag("--version", platform::programVersion().toStdString());
    app.require_subcommand(1);
    app.fallthrough();  // so that the shared options may stand behind the command
    addCommands(app, invocation);
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        return app.exit(error) == 0 ? 0 : badUsage;
    } catch (const std::exception& error) {
        std::cerr << "tracksmith-cli: " << error.what() << '\n';
        return failure;
    }
    return invocation.exitCode();
}

}  // namespace cli
