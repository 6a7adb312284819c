// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/foreign/Saving.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "audio/edit/Saver.h"
#include "audio/read/Decoder.h"
#include "effects/engine/AudioEditor.h"
#include "platform/Error.h"
#include "platform/Paths.h"
#include "tests/support/Fixtures.h"
#include "tests/support/Sound.h"

using namespace Qt::Literals::StringLiterals;

namespace foreign {
namespace {

namespace fs = std::filesystem;
using audio::edit::SaveMethod;

constexpr int saves = 10;
constexpr double mostDrift = 5;   // percent
constexpr double leastAlike = 6;  // dB that ten generations leave of what was encoded each time
constexpr double leastKept = 60;  // dB of what was copied; a decoder settles after a seam

/// What ffprobe tells of a file.
struct Probed {
    double bytes = 0;          ///< of all packets of sound
    QList<QByteArray> fields;  ///< the values of title and artist, in order of the alphabet
};

Probed probe(const fs::path& file) {
    const QByteArray told =
        support::run(u"ffprobe"_s,
                     {u"-v"_s, u"error"_s, u"-select_streams"_s, u"a:0"_s, u"-show_entries"_s,
                      u"packet=size:format_tags=title,artist:stream_tags=title,artist"_s, u"-of"_s,
                      u"default=noprint_wrappers=1"_s, platform::toQString(file)})
            .out;
    Probed probed;
    for (const QByteArray& line : told.split('\n')) {
        if (line.startsWith("size=")) probed.bytes += line.mid(5).toDouble();
        if (line.startsWith("TAG:")) probed.fields.append(line.mid(line.indexOf('=') + 1));
    }
    std::sort(probed.fields.begin(), probed.fields.end());
    return probed;
}

/// Frames by which a format that stores whole blocks only may grow at its first save.
std::int64_t blockOf(const audio::Format& format) {
    const bool blocks = format.codec == audio::Codec::Mp2 || format.codec == audio::Codec::Wma ||
                        format.containerName == "aac";
    return blocks ? 2'048 : 0;
}

/// All that a judge can tell about a file.
struct State {
    explicit State(const fs::path& file)
        : sound(support::decodeWithFfmpeg(file)),
          probed(probe(file)),
          frames(audio::read::Decoder(file).frames()) {}
    support::Sound sound;
    Probed probed;
    std::int64_t frames;  ///< as this program counts them
};

/// Where every save fades a little.
struct Edit {
    explicit Edit(std::int64_t frames) : start(frames / 10), end(start + frames / 50) {}
    std::int64_t start;
    std::int64_t end;
};

SaveMethod fadeOnce(const fs::path& file, const Edit& edit) {
    effects::AudioEditor editor;
    editor.Load(platform::toQString(file));
    editor.SetSelectionActive(true);
    editor.SetSelectionStart(std::int32_t(edit.start));
    editor.SetSelectionEnd(std::int32_t(edit.end));
    editor.Fade(100, 90);
    editor.Save(platform::toQString(file), false, 0);
    return editor.LastSaveReport().method;
}

std::string faultOfLength(const State& before, const State& after, const audio::Format& format) {
    const std::int64_t grown = after.frames - before.frames;
    if (grown < 0 || grown > blockOf(format))
        return std::to_string(before.frames) + " frames became " + std::to_string(after.frames);
    const std::int64_t heard =
        std::int64_t(after.sound.frames()) - std::int64_t(before.sound.frames());
    // ffmpeg plays the padding of MP4 too.
    const std::int64_t slack = format.containerName.starts_with("mov") ? 4'096 : blockOf(format);
    if (std::abs(heard) > slack) return "ffmpeg hears " + std::to_string(heard) + " frames more";
    return {};
}

/// How alike the sound behind the edit is to what it was.
double alikeBehind(const Edit& edit, const State& before, const State& after) {
    const auto first = std::size_t(edit.end) + std::size_t(before.sound.rate);
    const std::size_t frames = std::min(before.sound.frames(), after.sound.frames());
    if (frames <= first) return std::numeric_limits<double>::infinity();
    const support::Sound was = before.sound.part(first, frames - first);
    const support::Sound is = after.sound.part(first, frames - first);
    return was.samples == is.samples ? std::numeric_limits<double>::infinity()
                                     : support::snrDb(was.samples, is.samples);
}

std::string faultOf(const Saving& saving, const audio::Format& format, Likeness likeness) {
    const bool lossless = format.bitsPerSample > 0;
    if (lossless && !std::isinf(saving.outside)) return "sound outside the edit has changed";
    const bool exact =
        saving.kept && likeness != Likeness::Noise;  // else the decoder makes its own
    if (saving.outside < (exact ? leastKept : leastAlike))
        return "only " + std::to_string(int(saving.outside)) + " dB alike outside the edit";
    if (!lossless && std::abs(saving.drift) > mostDrift)
        return "the rate drifts by " + std::to_string(int(saving.drift)) + " %";
    return {};
}

}  // namespace

const char* Saving::outcome() const {
    if (!refusal.empty()) return "refused";
    if (!fault.empty()) return "faulty";
    return kept ? "kept" : "encoded";
}

Saving saveTenTimes(const fs::path& file, Likeness likeness) {
    Saving saving;
    const audio::Format format = audio::read::Decoder(file).format();
    const State before(file);
    const Edit edit(before.frames);
    saving.kept = true;
    for (int save = 0; save < saves; ++save) {
        try {
            saving.kept = fadeOnce(file, edit) != SaveMethod::Encoded && saving.kept;
        } catch (const std::exception& error) {
            (save == 0 ? saving.refusal : saving.fault) = error.what();
            return saving;
        }
    }
    const State after(file);
    saving.drift = (after.probed.bytes / before.probed.bytes - 1) * 100;
    saving.outside = alikeBehind(edit, before, after);
    saving.fault = faultOfLength(before, after, format);
    if (saving.fault.empty() && after.probed.fields != before.probed.fields)
        saving.fault = "the fields " + before.probed.fields.join(',').toStdString() + " became " +
                       after.probed.fields.join(',').toStdString();
    if (saving.fault.empty()) saving.fault = faultOf(saving, format, likeness);
    return saving;
}

std::string faultOfTransform(const fs::path& file, const fs::path& folder) {
    const fs::path wav = folder / "transformed.wav";
    try {
        effects::AudioEditor editor;
        editor.Load(platform::toQString(file));
        const audio::Format format = audio::read::Decoder(file).format();
        editor.SetOutputFormatWav(format.sampleRate, format.channels, 16);
        editor.Save(platform::toQString(wav), false, 0);
        const support::Sound ours = support::decodeWithFfmpeg(wav);
        audio::read::Decoder source(file);
        std::vector<float> sound(std::size_t(source.frames()) * std::size_t(format.channels));
        source.read(sound.data(), std::size_t(source.frames()));
        if (sound.size() != ours.samples.size()) return "a WAV of another length";
        constexpr float dither = 2.0F / 32'768;
        for (std::size_t i = 0; i < sound.size(); ++i)
            if (std::abs(std::clamp(sound[i], -1.0F, 1.0F) - ours.samples[i]) > dither)
                return "a WAV of other samples, from frame " +
                       std::to_string(i / std::size_t(format.channels));
        return {};
    } catch (const std::exception& error) {
        return error.what();
    }
}

}  // namespace foreign
