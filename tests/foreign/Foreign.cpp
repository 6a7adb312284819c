// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/foreign/Foreign.h"

#include <algorithm>
#include <array>
#include <random>

#include "tests/support/Fixtures.h"

namespace foreign {
namespace {

/// A program that encodes: %1 is the WAV file, %2 the file to make.
struct Encoder {
    const char* name;
    const char* command;
    std::vector<const char*> containers;
    Likeness likeness = Likeness::Exact;
    bool copies = true;  ///< its packets can be copied from one of its containers into another
};

const std::vector<Encoder>& encoders() {
    using enum Likeness;
    static const std::vector<Encoder> all = {
        {"vorbis", "ffmpeg -i %1 -c:a libvorbis %2", {"ogg", "webm", "mka", "mp4"}},
        {"vorbis-native", "ffmpeg -i %1 -ac 2 -c:a vorbis -strict -2 %2", {"ogg", "mka"}},
        {"oggenc", "oggenc -Q -q 4 -o %2 %1", {"ogg", "mka"}},
        {"oggenc-low", "oggenc -Q -q -1 -o %2 %1", {"ogg", "webm"}},
        {"opus",
         "ffmpeg -i %1 -c:a libopus %2",
         {"opus", "webm", "mka", "caf", "mp4", "ts"},
         Settles},
        {"opus-voice",
         "ffmpeg -i %1 -c:a libopus -b:a 14k -application voip %2",
         {"opus", "mka"},
         Settles},
        {"opus-60ms", "ffmpeg -i %1 -c:a libopus -frame_duration 60 %2", {"ogg", "webm"}, Settles},
        {"flac", "ffmpeg -i %1 -c:a flac %2", {"flac", "ogg", "mka", "caf"}},
        {"flac-small", "ffmpeg -i %1 -c:a flac -frame_size 576 %2", {"flac", "ogg", "mka"}},
        {"flac-mp4", "ffmpeg -i %1 -c:a flac -strict -2 %2", {"mp4"}},
        {"alac", "ffmpeg -i %1 -c:a alac %2", {"m4a", "mov", "caf", "mka"}},
        {"aac",
         "ffmpeg -i %1 -c:a aac -aac_pns 0 %2",
         {"m4a", "aac", "mka", "mov", "ts", "flv", "3gp"}},
        {"aac-noise", "ffmpeg -i %1 -c:a aac -b:a 48k %2", {"m4a", "aac"}, Noise},
        {"mp3", "ffmpeg -i %1 -c:a libmp3lame %2", {"mp3", "mka", "mp4", "avi", "ts"}},
        {"lame", "lame --quiet -V 3 %1 %2", {"mp3", "mka"}},
        {"mp2", "ffmpeg -i %1 -c:a mp2 %2", {"mp2", "mka", "ts", "avi", "mpg"}},
        {"twolame", "twolame --quiet -b 128 %1 %2", {"mp2", "mka"}},
        {"ac3", "ffmpeg -i %1 -c:a ac3 %2", {"ac3", "mka", "mp4", "ts", "avi"}, Noise},
        {"eac3", "ffmpeg -i %1 -c:a eac3 %2", {"eac3", "mka", "mp4"}, Noise},
        {"dts", "ffmpeg -i %1 -c:a dca -strict -2 %2", {"dts", "mka"}, Noise},
        {"wmav2", "ffmpeg -i %1 -c:a wmav2 -b:a 128k %2", {"wma", "mka", "avi"}},
        {"wmav1", "ffmpeg -i %1 -c:a wmav1 -b:a 128k %2", {"wma", "mka"}},
        {"tta", "ffmpeg -i %1 -c:a tta %2", {"tta", "mka"}},
        {"wavpack", "ffmpeg -i %1 -c:a wavpack %2", {"wv", "mka"}},
        {"mlp", "ffmpeg -i %1 -c:a truehd -strict -2 %2", {"thd"}},
        {"speex", "ffmpeg -i %1 -c:a libspeex %2", {"ogg"}, Noise},
        {"pcm16", "ffmpeg -i %1 -c:a pcm_s16le %2", {"wav", "w64", "mka", "mov", "avi", "caf"}},
        {"pcm16be", "ffmpeg -i %1 -c:a pcm_s16be %2", {"aiff", "au", "caf", "mov"}},
        {"pcm24", "ffmpeg -i %1 -c:a pcm_s24le %2", {"wav", "w64", "mka", "mov"}},
        {"pcm32", "ffmpeg -i %1 -c:a pcm_s32le %2", {"wav", "mka"}},
        {"pcmf32", "ffmpeg -i %1 -c:a pcm_f32le %2", {"wav", "w64", "caf"}},
        {"pcmf64", "ffmpeg -i %1 -c:a pcm_f64le %2", {"wav", "mka"}},
        {"pcmu8", "ffmpeg -i %1 -c:a pcm_u8 %2", {"wav", "w64", "avi"}},
        {"alaw", "ffmpeg -i %1 -c:a pcm_alaw %2", {"wav", "au", "mov", "mka"}},
        {"mulaw", "ffmpeg -i %1 -c:a pcm_mulaw %2", {"wav", "au", "caf"}},
        {"adpcm-ms", "ffmpeg -i %1 -c:a adpcm_ms %2", {"wav", "mka", "avi"}, Exact, false},
        {"adpcm-ima", "ffmpeg -i %1 -c:a adpcm_ima_wav %2", {"wav", "avi"}, Exact, false},
        {"gsm", "ffmpeg -i %1 -ar 8000 -ac 1 -c:a libgsm_ms %2", {"wav"}},
        {"sox-wav", "sox %1 -b 24 %2", {"wav", "w64", "aiff", "caf"}, Exact, false},
        {"sox-voc", "sox %1 %2", {"voc"}},
        {"sox-flac", "sox %1 %2", {"flac"}},
        {"sox-ogg", "sox %1 %2", {"ogg"}},
    };
    return all;
}

const Encoder& encoderOf(const Maker& maker) {
    return *std::find_if(encoders().begin(), encoders().end(),
                         [&](const Encoder& encoder) { return maker.encoder == encoder.name; });
}

QStringList words(const std::string& command, const std::filesystem::path& in,
                  const std::filesystem::path& out) {
    QStringList list = QString::fromStdString(command).split(QLatin1Char(' '));
    for (QString& word : list) {
        if (word == QStringLiteral("%1")) word = QString::fromStdString(in.string());
        if (word == QStringLiteral("%2")) word = QString::fromStdString(out.string());
    }
    if (list.front() == QStringLiteral("ffmpeg"))
        list = QStringList{QStringLiteral("ffmpeg"), QStringLiteral("-nostdin"),
                           QStringLiteral("-v"), QStringLiteral("error"), QStringLiteral("-y")} +
               list.mid(1);
    return list;
}

bool succeeds(const std::string& command, const std::filesystem::path& in,
              const std::filesystem::path& out) {
    const QStringList list = words(command, in, out);
    std::error_code none;
    return support::run(list.front(), list.mid(1)).exitCode == 0 &&
           std::filesystem::file_size(out, none) > 0 && !none;
}

}  // namespace

Sound soundOf(unsigned seed) {
    std::mt19937 random(seed);
    constexpr std::array rates = {44'100, 44'100, 48'000, 32'000, 22'050, 16'000, 8'000};
    Sound sound{seed, rates[random() % rates.size()], 1 + int(random() % 2), 0};
    sound.seconds = 0.1 + double(random() % 5'000) / 1'000;
    return sound;
}

void writeWav(const Sound& sound, const std::filesystem::path& file) {
    std::mt19937 random(sound.seed);
    const std::string first = std::to_string(100 + random() % 400);
    const std::string second = std::to_string(1'000 + random() % 900);
    std::string wave = "0.4*sin(2*PI*(" + first + "+90*t)*t)+0.2*sin(2*PI*" + second +
                       "*t)*exp(-5*mod(t\\,0.25))+0.02*(2*random(0)-1)";
    if (sound.channels == 2) wave += "|0.3*sin(2*PI*(" + second + "-70*t)*t)+0.02*(2*random(1)-1)";
    support::run(
        QStringLiteral("ffmpeg"),
        {QStringLiteral("-nostdin"), QStringLiteral("-v"), QStringLiteral("error"),
         QStringLiteral("-y"), QStringLiteral("-f"), QStringLiteral("lavfi"), QStringLiteral("-i"),
         QString::fromStdString("aevalsrc=" + wave + ":s=" + std::to_string(sound.rate) +
                                ":d=" + std::to_string(sound.seconds)),
         QStringLiteral("-c:a"), QStringLiteral("pcm_s16le"),
         QString::fromStdString(file.string())});
}

std::string Maker::name() const {
    std::string text = encoder;
    for (const std::string& container : containers) text += " " + container;
    return text;
}

const std::vector<Maker>& allMakers() {
    static const std::vector<Maker> all = [] {
        std::vector<Maker> makers;
        for (const Encoder& encoder : encoders()) {
            for (const char* own : encoder.containers) {
                makers.push_back({encoder.name, {own}});
                for (const char* other : encoder.containers)
                    if (encoder.copies && own != other)
                        makers.push_back({encoder.name, {own, other}});
            }
        }
        return makers;
    }();
    return all;
}

Likeness likenessOf(const Maker& maker) {
    return encoderOf(maker).likeness;
}

std::filesystem::path make(const Maker& maker, const std::filesystem::path& wav,
                           const std::filesystem::path& folder) {
    std::filesystem::path made;
    std::string stem = "foreign";
    for (const std::string& container : maker.containers) {
        stem += "-" + container;
        const std::filesystem::path next = folder / (stem + "." + container);
        const std::string command =
            made.empty() ? encoderOf(maker).command : std::string("ffmpeg -i %1 -c:a copy %2");
        if (!succeeds(command, made.empty() ? wav : made, next)) return {};
        made = next;
    }
    return made;
}

}  // namespace foreign
