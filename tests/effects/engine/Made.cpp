// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/effects/engine/Made.h"

#include <cstring>
#include <random>

#include <gtest/gtest.h>

#include "platform/Paths.h"
#include "tests/support/Fixtures.h"

using namespace Qt::Literals::StringLiterals;
using support::Sound;

void makeFile(const std::filesystem::path& file, const Sound& sound, const QStringList& options) {
    const std::filesystem::path raw = file.string() + ".f32";
    std::vector<std::byte> bytes(sound.samples.size() * sizeof(float));
    std::memcpy(bytes.data(), sound.samples.data(), bytes.size());
    support::writeBytes(raw, bytes);
    const QStringList input{u"-v"_s,
                            u"error"_s,
                            u"-y"_s,
                            u"-f"_s,
                            u"f32le"_s,
                            u"-ar"_s,
                            QString::number(sound.rate),
                            u"-ac"_s,
                            QString::number(sound.channels),
                            u"-i"_s,
                            platform::toQString(raw)};
    const auto outcome =
        support::run(u"ffmpeg"_s, input + options + QStringList{platform::toQString(file)});
    ASSERT_EQ(outcome.exitCode, 0) << outcome.err.toStdString();
    std::filesystem::remove(raw);
}

Sound noise(int rate, int channels, double seconds, double level, unsigned seed) {
    Sound sound{{}, rate, channels};
    std::mt19937 random(seed);
    std::uniform_real_distribution<float> value(-1, 1);
    sound.samples.resize(static_cast<std::size_t>(seconds * rate) *
                         static_cast<std::size_t>(channels));
    for (float& sample : sound.samples) sample = value(random) * static_cast<float>(level);
    return sound;
}

void extend(Sound& sound, const Sound& more) {
    sound.samples.insert(sound.samples.end(), more.samples.begin(), more.samples.end());
}

void edit(const std::filesystem::path& file,
          const std::function<void(effects::AudioEditor&)>& change) {
    effects::AudioEditor editor;
    editor.Load(platform::toQString(file));
    change(editor);
    editor.Save(platform::toQString(file), false, 0);
}

void runProgram(const char* command, const std::filesystem::path& first,
                const std::filesystem::path& second) {
    QStringList words = QString::fromLatin1(command).split(u' ');
    words.replaceInStrings(u"%1"_s, platform::toQString(first));
    words.replaceInStrings(u"%2"_s, platform::toQString(second));
    const auto outcome = support::run(words.front(), words.mid(1));
    ASSERT_EQ(outcome.exitCode, 0) << outcome.err.toStdString();
}
