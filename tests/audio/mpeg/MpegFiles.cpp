// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/audio/mpeg/MpegFiles.h"

#include <cmath>
#include <cstring>
#include <fstream>
#include <random>
#include <stdexcept>

#include <QProcess>

#include "audio/mpeg/read/FrameIndex.h"
#include "platform/Paths.h"

namespace support {
namespace {

constexpr int processTimeLimit = 240000;

QString text(const std::filesystem::path& path) {
    return platform::toQString(path);
}

QByteArray floatWav(const Sound& sound) {
    const auto dataSize = static_cast<std::uint32_t>(sound.samples.size() * 4);
    QByteArray wav;
    const auto put = [&wav](std::uint32_t value, int bytes) {
        for (int i = 0; i < bytes; ++i) wav.append(static_cast<char>(value >> (8 * i) & 255));
    };
    wav.append("RIFF");
    put(dataSize + 36, 4);
    wav.append("WAVEfmt ");
    put(16, 4);
    put(3, 2);  // IEEE float
    put(static_cast<std::uint32_t>(sound.channels), 2);
    put(static_cast<std::uint32_t>(sound.rate), 4);
    put(static_cast<std::uint32_t>(sound.rate * sound.channels * 4), 4);
    put(static_cast<std::uint32_t>(sound.channels * 4), 2);
    put(32, 2);
    wav.append("data");
    put(dataSize, 4);
    wav.append(reinterpret_cast<const char*>(sound.samples.data()), dataSize);
    return wav;
}

}  // namespace

QByteArray run(const QString& program, const QStringList& arguments, const QByteArray& input) {
    QProcess process;
    process.start(program, arguments);
    process.write(input);
    process.closeWriteChannel();
    if (!process.waitForFinished(processTimeLimit) || process.exitCode() != 0) {
        throw std::runtime_error((program + QStringLiteral(" ") + arguments.join(QLatin1Char(' ')) +
                                  QStringLiteral(": "))
                                     .toStdString() +
                                 process.readAllStandardError().toStdString());
    }
    return process.readAllStandardOutput();
}

Sound makeSound(int rate, int channels, std::int64_t length, unsigned seed) {
    Sound sound{rate, channels, {}};
    sound.samples.resize(static_cast<std::size_t>(length * channels));
    std::mt19937 random(seed);
    std::normal_distribution<float> noise(0.0F, 1.0F);
    const double twoPi = 6.283185307179586;
    const double base = 110.0 + seed % 50;
    for (std::int64_t i = 0; i < length; ++i) {
        const double time = static_cast<double>(i) / rate;
        const double sinceHit = std::fmod(time, 0.37);
        const double hit = std::exp(-sinceHit * 30) * 0.25;
        const double chord = 0.12 * std::sin(twoPi * base * time) +
                             0.08 * std::sin(twoPi * base * 2.52 * time + std::sin(time)) +
                             0.05 * std::sin(twoPi * base * 7.1 * time);
        for (int c = 0; c < channels; ++c) {
            const double pan = c == 0 ? 1.0 : 0.8;
            const double left = chord * pan + (hit + 0.01) * static_cast<double>(noise(random));
            sound.samples[static_cast<std::size_t>(i * channels + c)] = static_cast<float>(left);
        }
    }
    return sound;
}

void writeWav(const std::filesystem::path& path, const Sound& sound) {
    const QByteArray wav = floatWav(sound);
    std::ofstream(path, std::ios::binary).write(wav.constData(), wav.size());
}

void encodeMp3(const std::filesystem::path& path, const Sound& sound, const QStringList& options) {
    const std::filesystem::path wav = path.string() + ".wav";
    writeWav(wav, sound);
    run(QStringLiteral("lame"),
        QStringList{QStringLiteral("--quiet")} + options + QStringList{text(wav), text(path)});
    std::filesystem::remove(wav);
}

void encodeMp2(const std::filesystem::path& path, const Sound& sound, int bitRate) {
    const std::filesystem::path wav = path.string() + ".wav";
    writeWav(wav, sound);
    run(QStringLiteral("ffmpeg"),
        {QStringLiteral("-v"), QStringLiteral("error"), QStringLiteral("-y"), QStringLiteral("-i"),
         text(wav), QStringLiteral("-c:a"), QStringLiteral("mp2"), QStringLiteral("-b:a"),
         QString::number(bitRate), QStringLiteral("-f"), QStringLiteral("mp2"), text(path)});
    std::filesystem::remove(wav);
}

Sound decode(const std::filesystem::path& path, Judge judge, bool gapless) {
    QStringList arguments;
    if (judge == Judge::Ffmpeg) {
        arguments = {QStringLiteral("-v"), QStringLiteral("fatal")};
        if (!gapless) arguments << QStringLiteral("-flags2") << QStringLiteral("+skip_manual");
        arguments << QStringLiteral("-c:a")
                  << (path.extension() == ".mp2" ? QStringLiteral("mp2float")
                                                 : QStringLiteral("mp3float"))
                  << QStringLiteral("-i") << text(path) << QStringLiteral("-f")
                  << QStringLiteral("f32le") << QStringLiteral("-");
    } else {
        arguments = {QStringLiteral("-q"), QStringLiteral("-s"), QStringLiteral("-e"),
                     QStringLiteral("f32")};
        if (!gapless) arguments << QStringLiteral("--no-gapless");
        arguments << text(path);
    }
    const QByteArray pcm = run(
        judge == Judge::Ffmpeg ? QStringLiteral("ffmpeg") : QStringLiteral("mpg123"), arguments);
    Sound sound;
    const audio::mpeg::FrameIndex index(path);
    sound.rate = index.header().sampleRate;
    sound.channels = index.header().channels();
    sound.samples.resize(static_cast<std::size_t>(pcm.size()) / 4);
    std::memcpy(sound.samples.data(), pcm.constData(), sound.samples.size() * 4);
    return sound;
}

std::vector<std::uint8_t> readBytes(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

void writeBytes(const std::filesystem::path& path, const std::vector<std::uint8_t>& bytes) {
    std::ofstream(path, std::ios::binary)
        .write(reinterpret_cast<const char*>(bytes.data()),
               static_cast<std::streamsize>(bytes.size()));
}

std::vector<std::uint8_t> operator+(std::vector<std::uint8_t> left,
                                    const std::vector<std::uint8_t>& right) {
    left.insert(left.end(), right.begin(), right.end());
    return left;
}

std::vector<std::uint8_t> bytesOf(const std::string& text) {
    return {text.begin(), text.end()};
}

std::vector<std::uint8_t> vbriFrame() {
    std::vector<std::uint8_t> frame(417, 0);
    std::copy_n(std::begin({0xFF, 0xFB, 0x90, 0x40}), 4, frame.begin());
    const auto says = bytesOf(std::string("VBRI\0\1\4\x89\0\x4B\0\0\x10\0\0\0\0\x57", 18));
    std::copy(says.begin(), says.end(), frame.begin() + 36);
    return frame;
}

}  // namespace support
