// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/MixOptions.h"

#include <cmath>

#include <CLI/CLI.hpp>
#include <QDir>
#include <QFile>
#include <QFileInfo>

#include "cli/Inputs.h"
#include "platform/Error.h"
#include "platform/Paths.h"
#include "wizard/OutputFormat.h"

using namespace Qt::Literals::StringLiterals;

namespace cli {
namespace {

constexpr double longestSeconds = 2'000'000;  // its milliseconds still fit 31 bits

QString folderWithSeparator(const std::string& name) {
    const QString folder = QFileInfo(QFile::decodeName(name.c_str())).absoluteFilePath();
    if (!QDir().mkpath(folder)) throw platform::Error("The folder " + name + " cannot be made.");
    const QString native = QDir::toNativeSeparators(folder);
    const QChar separator = platform::nativeSeparator();
    return native.endsWith(separator) ? native : native + separator;
}

std::set<int> numbersIn(const QStringList& bitTexts) {
    std::set<int> numbers;
    for (const QString& text : bitTexts) numbers.insert(text.section(u'-', 0, 0).toInt());
    return numbers;
}

}  // namespace

std::int32_t toMilliseconds(double seconds) {
    return static_cast<std::int32_t>(std::lround(seconds * 1000));
}

void MixOptions::addTo(CLI::App& command) {
    const auto seconds = CLI::Range(0.001, longestSeconds);
    command.add_option("--target", target, "Folder for the new files")
        ->required()
        ->type_name("DIR");
    command.add_flag("--trim", trim, "Cut silence at both ends");
    command.add_flag("--normalize", normalize, "Bring every file to full level");
    command.add_option("--fade-out", fadeOut, "Fade the last seconds to a tenth")->check(seconds);
    command.add_option("--fade-in", fadeIn, "Fade the first seconds in from a tenth")
        ->check(seconds);
    command.add_option("--format", format, "Format of the new files")
        ->check(CLI::IsMember({"wav", "mp3"}))
        ->capture_default_str();
    command.add_option("--frequency", frequency, "Sample rate in Hz")
        ->check(CLI::IsMember({8000, 11025, 16000, 22050, 24000, 32000, 44100, 48000}))
        ->capture_default_str();
    command.add_option("--bits", bits, "Bits of a WAV sample")
        ->check(CLI::IsMember(numbersIn(wizard::bitRateTexts(u"WAV"_s))))
        ->capture_default_str();
    command.add_option("--bitrate", bitrate, "MP3 bit-rate in kbit/s")
        ->check(CLI::IsMember(numbersIn(wizard::bitRateTexts(u"MP3"_s))))
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
