// SPDX-License-Identifier: GPL-3.0-or-later
#include <cmath>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include <CLI/CLI.hpp>

#include "cli/EffectRun.h"
#include "cli/Inputs.h"
#include "cli/Invocation.h"
#include "cli/Seconds.h"
#include "cli/commands/Commands.h"

namespace cli {
namespace {

using effects::Effect;
using effects::EffectId;

/// What the options of all effects are read into; each effect offers only its own.
struct Options {
    std::vector<std::string> arguments;
    std::string output;
    unsigned jobs = std::max(1U, std::thread::hardware_concurrency());
    double seconds = 5;
    effects::EffectSettings settings;
};

CLI::Option* addInteger(CLI::App& command, const char* name, double& value, int minimum,
                        int maximum, const char* description) {
    return command
        .add_option_function<int>(
            name, [&value](int given) { value = given; }, description)
        ->check(CLI::Range(minimum, maximum))
        ->default_str(std::to_string(std::lround(value)));
}

CLI::Option* addInteger(CLI::App& command, const char* name, float& value, int minimum, int maximum,
                        const char* description) {
    return command
        .add_option_function<int>(
            name, [&value](int given) { value = static_cast<float>(given); }, description)
        ->check(CLI::Range(minimum, maximum))
        ->default_str(std::to_string(std::lround(value)));
}

void addEchoOptions(CLI::App& command, effects::EchoValues& echo) {
    addInteger(command, "--rate", echo.rate, 10, 95, "Level of each repeat in percent of the last");
    addInteger(command, "--gain", echo.gain, 10, 95, "Percent taken from the sound itself");
    addInteger(command, "--depth", echo.depth, 10, 95, "Level of the first repeat in percent");
    addInteger(command, "--time", echo.time, 1, 10, "Delay in tenths of a second");
}

void addFadeOptions(CLI::App& command, Options& options) {
    command.add_option("--seconds", options.seconds, "Length of the fade")
        ->check(lengthInSeconds())
        ->capture_default_str();
    addInteger(command, "--level", options.settings.level, 0, 50,
               "Percent at the quiet end of the fade");
}

void addValueOption(CLI::App& command, const Effect& effect, double& value) {
    const effects::ValueRange& range = effect.value;
    const bool silence = effect.id == EffectId::SilenceFront || effect.id == EffectId::SilenceEnd;
    value = range.initial;
    addInteger(command, silence ? "--ms" : "--value", value, range.minimum, range.maximum,
               silence ? "Length of the silence in milliseconds" : "Percent");
}

void addOptions(CLI::App& command, const Effect& effect, Options& options) {
    if (effect.id == EffectId::Echo) return addEchoOptions(command, options.settings.echo);
    if (effect.id == EffectId::FadeIn || effect.id == EffectId::FadeOut)
        return addFadeOptions(command, options);
    if (effect.value.maximum > 0) addValueOption(command, effect, options.settings.value);
}

const char* descriptionOf(EffectId id) {
    switch (id) {
        case EffectId::AmplifyMinus:
            return "Lowers the level by so many percent";
        case EffectId::AmplifyPlus:
            return "Raises the level by so many percent";
        case EffectId::Normalize:
            return "Brings the highest peak to so many percent of full scale";
        case EffectId::SilenceFront:
            return "Adds silence in front";
        case EffectId::SilenceEnd:
            return "Adds silence at the end";
        case EffectId::Trim:
            return "Cuts silence at both ends";
        case EffectId::FadeIn:
            return "Fades the start in";
        case EffectId::FadeOut:
            return "Fades the end out";
        case EffectId::Echo:
            return "Adds an echo";
    }
    return "";
}

void run(const Effect& effect, Options& options, Invocation& invocation) {
    Report& report = invocation.report();
    EffectRun run;
    run.effect = &effect;
    run.settings = options.settings;
    run.settings.fadeMs = toMilliseconds(options.seconds);
    run.outputFolder = madeFolder(options.output);
    run.jobs = options.jobs;
    run.files = namedFiles(options.arguments, report);
    applyEffect(run, report);
}

void addEffect(CLI::App& group, const Effect& effect, Invocation& invocation) {
    const auto options = std::make_shared<Options>();
    CLI::App* command = group.add_subcommand(std::string(effect.name), descriptionOf(effect.id));
    addOptions(*command, effect, *options);
    command->add_option("--output", options->output, "Write copies into this folder instead")
        ->type_name("DIR");
    command->add_option("--jobs", options->jobs, "Files in work at a time")
        ->check(CLI::Range(1U, 1024U))
        ->capture_default_str();
    command->add_option("files", options->arguments, "Playlists and sound files")
        ->required()
        ->type_name("LIST|FILE");
    command->callback([&effect, options, &invocation] { run(effect, *options, invocation); });
}

}  // namespace

void addEffectCommand(CLI::App& app, Invocation& invocation) {
    CLI::App* group = app.add_subcommand("effect", "Changes sound files in place");
    group->require_subcommand(1);
    for (const Effect& effect : effects::allEffects()) addEffect(*group, effect, invocation);
}

}  // namespace cli
