// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/foreign/Foreign.h"

#include <algorithm>
#include <array>
#include <random>
#include <string_view>

#include "tests/support/Fixtures.h"

namespace foreign {
namespace {

/// A program that encodes: %1 is the WAV file, %2 the file to make. Where the program can, it also
/// writes a title and an artist; ffmpeg is told to by make() itself.
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
        {"vorbis", "ffmpeg -i %1 -c:a libvorbis %2", {"ogg", "webm", "mka", "mp4", "oga"}},
        {"vorbis-native", "ffmpeg -i %1 -ac 2 -c:a vorbis -strict -2 %2", {"ogg", "mka"}},
        {"oggenc", "oggenc -Q -t Foreign -a Maker -q 4 -o %2 %1", {"ogg", "mka"}},
        {"oggenc-low", "oggenc -Q -t Foreign -a Maker -q -1 -o %2 %1", {"ogg", "webm"}},
        {"oggenc-high", "oggenc -Q -t Foreign -a Maker -q 10 -o %2 %1", {"ogg"}},
        {"oggenc-managed", "oggenc -Q -t Foreign -a Maker --managed -b 80 -o %2 %1", {"ogg"}},
        {"opus",
         "ffmpeg -i %1 -c:a libopus %2",
         {"opus", "webm", "mka", "caf", "mp4", "ts", "ogg"},
         Settles},
        {"opus-voice",
         "ffmpeg -i %1 -c:a libopus -b:a 14k -application voip %2",
         {"opus", "mka"},
         Settles},
        {"opus-60ms", "ffmpeg -i %1 -c:a libopus -frame_duration 60 %2", {"ogg", "webm"}, Settles},
        {"opus-native", "ffmpeg -i %1 -ar 48000 -c:a opus -strict -2 %2", {"opus"}, Settles},
        {"opusenc",
         "opusenc --quiet --title Foreign --artist Maker %1 %2",
         {"opus", "mka"},
         Settles},
        {"opusenc-small",
         "opusenc --quiet --title Foreign --artist Maker --framesize 2.5 %1 %2",
         {"opus"},
         Settles},
        {"opusenc-40ms",
         "opusenc --quiet --title Foreign --artist Maker --framesize 40 %1 %2",
         {"opus"},
         Settles},
        {"opusenc-cbr",
         "opusenc --quiet --title Foreign --artist Maker --hard-cbr --bitrate 96 %1 %2",
         {"opus", "webm"},
         Settles},
        {"opusenc-speech",
         "opusenc --quiet --title Foreign --artist Maker --speech --bitrate 20 %1 %2",
         {"opus"},
         Settles},
        {"flac", "ffmpeg -i %1 -c:a flac %2", {"flac", "ogg", "mka", "caf", "oga"}},
        {"flac-small", "ffmpeg -i %1 -c:a flac -frame_size 576 %2", {"flac", "ogg", "mka"}},
        {"flac-mp4", "ffmpeg -i %1 -c:a flac -strict -2 %2", {"mp4"}},
        {"flac-fast", "flac -s -0 -T TITLE=Foreign -T ARTIST=Maker -o %2 %1", {"flac", "mka"}},
        {"flac-best", "flac -s -8 -T TITLE=Foreign -T ARTIST=Maker -o %2 %1", {"flac", "ogg"}},
        {"flac-ogg", "flac -s --ogg -T TITLE=Foreign -T ARTIST=Maker -o %2 %1", {"oga", "flac"}},
        {"alac", "ffmpeg -i %1 -c:a alac %2", {"m4a", "mov", "caf", "mka", "mp4"}},
        {"aac",
         "ffmpeg -i %1 -c:a aac -aac_pns 0 %2",
         {"m4a", "aac", "mka", "mov", "ts", "flv", "3gp", "mp4", "m4b", "latm", "avi"}},
        {"aac-noise", "ffmpeg -i %1 -c:a aac -b:a 48k %2", {"m4a", "aac", "mkv"}, Noise},
        {"aac-fast", "ffmpeg -i %1 -c:a aac -aac_coder fast -aac_pns 0 %2", {"m4a", "aac"}},
        {"mp3",
         "ffmpeg -i %1 -c:a libmp3lame %2",
         {"mp3", "mka", "mp4", "avi", "ts", "mov", "flv"}},
        {"mp3-vbr", "ffmpeg -i %1 -c:a libmp3lame -q:a 2 %2", {"mp3", "mkv", "avi"}},
        {"mp3-abr", "ffmpeg -i %1 -c:a libmp3lame -abr 1 -b:a 96k %2", {"mp3", "mka"}},
        {"mp3-bare", "ffmpeg -i %1 -c:a libmp3lame -write_xing 0 %2", {"mp3", "mka"}},
        {"mp3-shine", "ffmpeg -i %1 -c:a libshine %2", {"mp3", "mka"}},
        {"lame", "lame --quiet --tt Foreign --ta Maker -V 3 %1 %2", {"mp3", "mka"}},
        {"lame-cbr", "lame --quiet --tt Foreign --ta Maker -b 128 --cbr %1 %2", {"mp3"}},
        {"lame-abr", "lame --quiet --tt Foreign --ta Maker --abr 140 %1 %2", {"mp3"}},
        {"lame-old", "lame --quiet --tt Foreign --ta Maker --vbr-old -V 5 %1 %2", {"mp3"}},
        {"lame-bare", "lame --quiet --tt Foreign --ta Maker -t -b 96 %1 %2", {"mp3"}},
        {"lame-crc", "lame --quiet --tt Foreign --ta Maker -p -b 160 %1 %2", {"mp3"}},
        {"lame-stereo", "lame --quiet --tt Foreign --ta Maker -m s -b 192 %1 %2", {"mp3"}},
        {"mp2", "ffmpeg -i %1 -c:a mp2 %2", {"mp2", "mka", "ts", "avi", "mpg", "mov"}},
        {"mp2-fixed", "ffmpeg -i %1 -c:a mp2fixed %2", {"mp2", "mka"}},
        {"mp2-twolame", "ffmpeg -i %1 -c:a libtwolame %2", {"mp2", "ts"}},
        {"twolame", "twolame --quiet -b 128 %1 %2", {"mp2", "mka"}},
        {"twolame-vbr", "twolame --quiet -v -V 5 %1 %2", {"mp2"}},
        {"twolame-crc", "twolame --quiet -p -b 96 %1 %2", {"mp2"}},
        {"ac3",
         "ffmpeg -i %1 -c:a ac3 %2",
         {"ac3", "mka", "mp4", "ts", "avi", "mov", "mpg"},
         Noise},
        {"ac3-fixed", "ffmpeg -i %1 -c:a ac3_fixed %2", {"ac3", "mka"}, Noise},
        {"eac3", "ffmpeg -i %1 -c:a eac3 %2", {"eac3", "mka", "mp4", "ts"}, Noise},
        {"dts", "ffmpeg -i %1 -c:a dca -strict -2 %2", {"dts", "mka", "ts", "avi", "wav"}, Noise},
        {"wmav2", "ffmpeg -i %1 -c:a wmav2 -b:a 128k %2", {"wma", "mka", "avi", "asf"}},
        {"wmav1", "ffmpeg -i %1 -c:a wmav1 -b:a 128k %2", {"wma", "mka", "avi"}},
        {"wmav2-low", "ffmpeg -i %1 -c:a wmav2 -b:a 48k %2", {"wma"}},
        {"tta", "ffmpeg -i %1 -c:a tta %2", {"tta", "mka"}},
        {"wavpack", "ffmpeg -i %1 -c:a wavpack %2", {"wv", "mka"}},
        {"wavpack-own", "wavpack -q -w Title=Foreign -w Artist=Maker %1 -o %2", {"wv", "mka"}},
        {"wavpack-high", "wavpack -q -hh -x -w Title=Foreign %1 -o %2", {"wv"}},
        {"wavpack-lossy", "wavpack -q -b4 -w Title=Foreign %1 -o %2", {"wv"}},
        {"mlp", "ffmpeg -i %1 -c:a truehd -strict -2 %2", {"thd", "mka"}},
        {"speex", "ffmpeg -i %1 -c:a libspeex %2", {"ogg", "spx"}, Noise},
        {"pcm16",
         "ffmpeg -i %1 -c:a pcm_s16le %2",
         {"wav", "w64", "mka", "mov", "avi", "caf", "aifc", "asf", "flv"}},
        {"pcm16be", "ffmpeg -i %1 -c:a pcm_s16be %2", {"aiff", "au", "caf", "mov"}},
        {"pcm8", "ffmpeg -i %1 -c:a pcm_s8 %2", {"aiff", "au", "caf"}},
        {"pcm24", "ffmpeg -i %1 -c:a pcm_s24le %2", {"wav", "w64", "mka", "mov", "caf"}},
        {"pcm24be", "ffmpeg -i %1 -c:a pcm_s24be %2", {"aiff", "au", "caf"}},
        {"pcm32", "ffmpeg -i %1 -c:a pcm_s32le %2", {"wav", "mka", "w64"}},
        {"pcm32be", "ffmpeg -i %1 -c:a pcm_s32be %2", {"aiff", "au", "caf"}},
        {"pcm64", "ffmpeg -i %1 -c:a pcm_s64le %2", {"wav"}},
        {"pcmf32", "ffmpeg -i %1 -c:a pcm_f32le %2", {"wav", "w64", "caf", "mka"}},
        {"pcmf32be", "ffmpeg -i %1 -c:a pcm_f32be %2", {"aiff", "au", "caf"}},
        {"pcmf64", "ffmpeg -i %1 -c:a pcm_f64le %2", {"wav", "mka", "w64"}},
        {"pcmf64be", "ffmpeg -i %1 -c:a pcm_f64be %2", {"aiff", "au"}},
        {"pcmu8", "ffmpeg -i %1 -c:a pcm_u8 %2", {"wav", "w64", "avi", "mka"}},
        {"pcm-dvd", "ffmpeg -i %1 -ar 48000 -c:a pcm_dvd %2", {"vob"}},
        {"pcm-rf64", "ffmpeg -i %1 -c:a pcm_s16le -rf64 always %2", {"wav"}},
        {"alaw", "ffmpeg -i %1 -c:a pcm_alaw %2", {"wav", "au", "mov", "mka", "caf", "w64"}},
        {"mulaw", "ffmpeg -i %1 -c:a pcm_mulaw %2", {"wav", "au", "caf", "w64"}},
        {"adpcm-ms", "ffmpeg -i %1 -c:a adpcm_ms %2", {"wav", "mka", "avi", "w64"}, Exact, false},
        {"adpcm-ima", "ffmpeg -i %1 -c:a adpcm_ima_wav %2", {"wav", "avi", "mka"}, Exact, false},
        {"adpcm-qt", "ffmpeg -i %1 -c:a adpcm_ima_qt %2", {"mov", "aifc"}, Exact, false},
        {"adpcm-yamaha", "ffmpeg -i %1 -c:a adpcm_yamaha %2", {"wav"}, Exact, false},
        {"adpcm-swf", "ffmpeg -i %1 -ar 22050 -c:a adpcm_swf %2", {"flv"}, Exact, false},
        {"g722", "ffmpeg -i %1 -ar 16000 -ac 1 -c:a g722 %2", {"wav", "mka"}, Exact, false},
        {"g726", "ffmpeg -i %1 -ar 8000 -ac 1 -c:a g726 %2", {"wav", "au"}, Exact, false},
        {"nellymoser", "ffmpeg -i %1 -ar 22050 -ac 1 -c:a nellymoser %2", {"flv"}, Noise},
        {"ra144", "ffmpeg -i %1 -ar 8000 -ac 1 -c:a real_144 %2", {"rm"}, Noise},
        {"ac3-rm", "ffmpeg -i %1 -c:a ac3 %2", {"rm"}, Noise},
        {"gsm", "ffmpeg -i %1 -ar 8000 -ac 1 -c:a libgsm_ms %2", {"wav"}},
        {"s302m", "ffmpeg -i %1 -ar 48000 -ac 2 -c:a s302m -strict -2 %2", {"ts"}},
        {"sox-wav", "sox %1 -b 24 %2", {"wav", "w64", "aiff", "caf", "au"}, Exact, false},
        {"sox-float", "sox %1 -e floating-point -b 32 %2", {"wav", "aifc", "au"}, Exact, false},
        {"sox-8bit", "sox %1 -b 8 %2", {"wav", "aiff", "au", "voc"}, Exact, false},
        {"sox-ulaw", "sox %1 -e u-law %2", {"wav", "au", "aifc"}, Exact, false},
        {"sox-alaw", "sox %1 -e a-law %2", {"wav", "au", "voc"}, Exact, false},
        {"sox-adpcm", "sox %1 -e ms-adpcm %2", {"wav"}, Exact, false},
        {"sox-ima", "sox %1 -e ima-adpcm %2", {"wav"}, Exact, false},
        {"sox-gsm", "sox %1 -r 8000 -c 1 -e gsm-full-rate %2", {"wav"}, Exact, false},
        {"sox-voc", "sox %1 %2", {"voc"}, Exact, false},
        {"sox-8svx", "sox %1 -c 1 %2", {"8svx"}, Exact, false},
        {"sox-native", "sox %1 %2", {"sox"}, Exact, false},
        {"sox-flac", "sox %1 %2", {"flac"}},
        {"sox-ogg", "sox %1 %2", {"ogg"}},
        {"sox-mp3", "sox %1 -C 128 %2", {"mp3"}},
        {"sox-mp2", "sox %1 -C 128 %2", {"mp2"}},
        {"sox-opus", "sox %1 %2", {"opus"}, Settles},
    };
    return all;
}

/// Whether the program writes each of the containers itself; others write their own one only.
bool writesAll(const Encoder& encoder) {
    const std::string_view command = encoder.command;
    return command.starts_with("ffmpeg") || command.starts_with("sox");
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
    if (list.front() != QStringLiteral("ffmpeg")) return list;
    list.insert(list.size() - 1, QStringLiteral("-metadata"));
    list.insert(list.size() - 1, QStringLiteral("title=Foreign"));
    return QStringList{QStringLiteral("ffmpeg"), QStringLiteral("-nostdin"), QStringLiteral("-v"),
                       QStringLiteral("error"), QStringLiteral("-y")} +
           list.mid(1);
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
        for (const Encoder& encoder : encoders())
            for (std::size_t own = 0; own < (writesAll(encoder) ? encoder.containers.size() : 1);
                 ++own) {
                makers.push_back({encoder.name, {encoder.containers[own]}});
                for (std::size_t other = 0; other < encoder.containers.size(); ++other)
                    if (encoder.copies && own != other)
                        makers.push_back(
                            {encoder.name, {encoder.containers[own], encoder.containers[other]}});
            }
        return makers;
    }();
    return all;
}

std::vector<std::string> allEncoders() {
    std::vector<std::string> names;
    for (const Encoder& encoder : encoders()) names.emplace_back(encoder.name);
    return names;
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
