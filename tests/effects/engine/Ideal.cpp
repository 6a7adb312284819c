// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/effects/engine/Ideal.h"

#include <algorithm>
#include <cmath>
#include <fstream>
#include <numbers>

#include <gtest/gtest.h>

#include "platform/Paths.h"
#include "tests/support/Fixtures.h"
#include "tests/support/TempFolder.h"

using namespace Qt::Literals::StringLiterals;

namespace ideal {
namespace {

float& at(Sound& sound, std::size_t frame, int channel) {
    return sound.samples[frame * std::size_t(sound.channels) + std::size_t(channel)];
}

float at(const Sound& sound, std::size_t frame, int channel) {
    return sound.samples[frame * std::size_t(sound.channels) + std::size_t(channel)];
}

std::ptrdiff_t sampleIndex(const Sound& sound, std::size_t frame) {
    return std::ptrdiff_t(frame * std::size_t(sound.channels));
}

}  // namespace

Sound faded(Sound sound, std::size_t start, std::size_t end, double a, double b) {
    for (std::size_t frame = start; frame < end; ++frame) {
        const double part = end - start > 1 ? double(frame - start) / double(end - start - 1) : 0;
        for (int c = 0; c < sound.channels; ++c)
            at(sound, frame, c) = float(double(at(sound, frame, c)) * (a + (b - a) * part));
    }
    return sound;
}

double highest(const Sound& sound) {
    double peak = 0;
    for (const float sample : sound.samples) peak = std::max(peak, std::abs(double(sample)));
    return peak;
}

Sound normalized(Sound sound, double level) {
    const double gain = level / highest(sound);
    return faded(std::move(sound), 0, sound.frames(), gain, gain);
}

Sound withSilence(Sound sound, std::size_t place, std::size_t frames) {
    sound.samples.insert(sound.samples.begin() + sampleIndex(sound, place),
                         frames * std::size_t(sound.channels), 0.0F);
    return sound;
}

Sound without(Sound sound, std::size_t start, std::size_t end) {
    sound.samples.erase(sound.samples.begin() + sampleIndex(sound, start),
                        sound.samples.begin() + sampleIndex(sound, end));
    return sound;
}

Sound echoed(const Sound& sound, double time, double depth, double gain, double rate, double cutoff,
             int count) {
    const std::size_t delay = std::size_t(std::lround(time * 0.1 * sound.rate));
    const double a = 1 - std::exp(-2 * std::numbers::pi * cutoff / sound.rate);
    Sound result = sound;
    for (int c = 0; c < sound.channels; ++c) {
        std::vector<double> sum(sound.frames());
        std::vector<double> repeat(sound.frames());
        for (std::size_t i = 0; i < sound.frames(); ++i) {
            repeat[i] = double(at(sound, i, c));
            sum[i] = (1 - gain / 100) * repeat[i];
        }
        double level = depth / 100;
        for (int k = 1; k <= count; ++k, level *= rate / 100) {
            double last = 0;
            for (double& value : repeat) value = last += a * (value - last);
            for (std::size_t i = delay * std::size_t(k); i < sound.frames(); ++i)
                sum[i] += level * repeat[i - delay * std::size_t(k)];
        }
        for (std::size_t i = 0; i < sound.frames(); ++i) at(result, i, c) = float(sum[i]);
    }
    return result;
}

Sound mixed(Sound sound, const Sound& other, std::ptrdiff_t start, double a, double b) {
    for (std::ptrdiff_t frame = 0; frame < std::ptrdiff_t(sound.frames()); ++frame)
        for (int c = 0; c < sound.channels; ++c) {
            const std::ptrdiff_t k = frame - start;
            const bool there = k >= 0 && k < std::ptrdiff_t(other.frames());
            const double added = there ? double(at(other, std::size_t(k), c)) : 0;
            float& sample = at(sound, std::size_t(frame), c);
            sample = float(a * double(sample) + b * added);
        }
    return sound;
}

Sound limited(Sound sound) {
    for (float& sample : sound.samples) sample = std::clamp(sample, -1.0F, 1.0F);
    return sound;
}

double snrOfEncodingOnce(const Sound& sound, const QString& encoder, const QString& extension,
                         std::size_t lost) {
    const support::TempFolder folder;
    std::ofstream(folder / "in.raw", std::ios::binary)
        .write(reinterpret_cast<const char*>(sound.samples.data()),
               std::streamsize(sound.samples.size() * sizeof(float)));
    const QString result = folder.file(u"out."_s + extension);
    QStringList arguments{u"-v"_s,  u"error"_s,
                          u"-f"_s,  u"f32le"_s,
                          u"-ar"_s, QString::number(sound.rate),
                          u"-ac"_s, QString::number(sound.channels),
                          u"-i"_s,  folder.file(u"in.raw"_s)};
    arguments << encoder.split(u' ') << result;
    const support::Outcome outcome = support::run(u"ffmpeg"_s, arguments);
    EXPECT_EQ(outcome.exitCode, 0) << outcome.err.toStdString();
    const Sound decoded = support::decodeWithFfmpeg(platform::toPath(result));
    return support::snrDb(sound.part(lost, sound.frames()).samples, decoded.samples);
}

}  // namespace ideal
