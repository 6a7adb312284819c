// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include <QByteArray>
#include <QStringList>

namespace support {

/// Runs a program to its end and gives what it wrote on its standard output. Throws
/// std::runtime_error with its other output where it fails.
QByteArray run(const QString& program, const QStringList& arguments, const QByteArray& input = {});

/// Interleaved sound.
struct Sound {
    int rate = 44100;
    int channels = 2;
    std::vector<float> samples;
    std::int64_t length() const { return static_cast<std::int64_t>(samples.size()) / channels; }
};

/// Music-like test sound: chords, decaying hits on a noise floor; the same for the same seed.
Sound makeSound(int rate, int channels, std::int64_t length, unsigned seed = 1);
/// Writes 32-bit float WAV.
void writeWav(const std::filesystem::path& path, const Sound& sound);

/// What the lame program makes of the sound with these options.
void encodeMp3(const std::filesystem::path& path, const Sound& sound, const QStringList& options);
/// What the ffmpeg program makes of it as Layer II.
void encodeMp2(const std::filesystem::path& path, const Sound& sound, int bitRate);

enum class Judge { Ffmpeg, Mpg123 };
/// What an independent program decodes: float samples, gapless or all that the frames give.
Sound decode(const std::filesystem::path& path, Judge judge, bool gapless = true);

std::vector<std::uint8_t> readBytes(const std::filesystem::path& path);
void writeBytes(const std::filesystem::path& path, const std::vector<std::uint8_t>& bytes);
std::vector<std::uint8_t> operator+(std::vector<std::uint8_t> left,
                                    const std::vector<std::uint8_t>& right);
std::vector<std::uint8_t> bytesOf(const std::string& text);
/// A VBRI frame of 417 bytes that states 0x57 frames of quality 75, at 44.1 kHz in joint stereo.
std::vector<std::uint8_t> vbriFrame();

}  // namespace support
