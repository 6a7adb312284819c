// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/MixOptions.h"

#include <CLI/CLI.hpp>

#include "cli/Inputs.h"
#include "cli/Seconds.h"
#include "platform/Paths.h"
#include "wizard/OutputFormat.h"

using namespace Qt::Literals::StringLiterals;

namespace cli {
namespace {

QString folderWithSeparator(const std::string& name) {
    const QString folder = madeFolder(name);
    const QChar separator = platform::nativeSeparator();
    return folder.endsWith(separator) ? folder : folder + separator;
}

std::set<int> numbersIn(const QStringList& bitTexts) {
    std::set<int> numbers;
    for (const QString& text : bitTexts) numbers.insert(text.section(u'-', 0, 0).toInt());
    return numbers;
}

// CLI::IsMember takes no text at all for 0, and says of other words nothing but the word.
CLI::Validator oneOf(const std::set<int>& numbers) {
    const std::string choice = CLI::detail::generate_set(numbers);
    const auto reasonAgainst = [numbers, choice](const std::string& typed) {
        int number = 0;
        const bool found = CLI::detail::lexical_cast(typed, number) && numbers.contains(number);
        return found ? std::string() : "\"" + typed + "\" is not in " + choice;
    };
    return CLI::Validator(reasonAgainst, choice);
}

}  // namespace

void MixOptions::addTo(CLI::App& command) {
    command.add_option("--target", target, "Folder for the new files")
        ->required()
        ->type_name("DIR");
    command.add_flag("--trim", trim, "Cut silence at both ends");
    command.add_flag("--normalize", normalize, "Bring every file to full level");
    command.add_option("--fade-out", fadeOut, "Fade the last seconds to a tenth")
        ->check(lengthInSeconds());
    command.add_option("--fade-in", fadeIn, "Fade the first seconds in from a tenth")
        ->check(lengthInSeconds());
    command.add_option("--format", format, "Format of the new files")
        ->check(CLI::IsMember({"wav", "mp3"}))
        ->capture_default_str();
    command.add_option("--frequency", frequency, "Sample rate in Hz")
        ->check(oneOf({8000, 11025, 16000, 22050, 24000, 32000, 44100, 48000}))
        ->capture_default_str();
    command.add_option("--bits", bits, "Bits of a WAV sample")
        ->check(oneOf(numbersIn(wizard::bitRateTexts(u"WAV"_s))))
        ->capture_default_str();
    command.add_option("--bitrate", bitrate, "MP3 bit-rate in kbit/s")
        ->check(oneOf(numbersIn(wizard::bitRateTexts(u"MP3"_s))))
        ->capture_default_str();
    command.add_option("--channels", channels, "1 = mono, 2 = stereo")
        ->check(CLI::Range(1, 2))
        ->capture_default_str();
    command.add_flag("--strip-tags", stripTags, "Leave the tags out");
    command.add_option("files", arguments, "Playlists and sound files, in the order of the mix")
        ->required()
        ->type_name("LIST|FILE");
}

MixRun MixOptions::toRun(Report& report) const {
    MixRun run;
    wizard::Options& options = run.options;
    options.targetPath = folderWithSeparator(target);
    options.trimSilence = trim;
    options.normalize = normalize;
    options.fadeOut = fadeOut > 0;
    options.fadeIn = fadeIn > 0;
    options.tags = stripTags ? wizard::TagChoice::Strip : wizard::TagChoice::LeaveAsIs;
    options.format = QString::fromStdString(format).toUpper();
    options.frequency = wizard::frequencyText(frequency);
    options.bitRate = u"%1-bit"_s.arg(format == "mp3" ? bitrate : bits);
    options.channels = wizard::channelTexts().at(channels - 1);
    run.fadeOutMs = toMilliseconds(fadeOut);
    run.fadeInMs = toMilliseconds(fadeIn);
    run.files = namedFiles(arguments, report);
    return run;
}

}  // namespace cli
