// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/foreign/Judging.h"

#include <algorithm>
#include <cmath>
#include <random>

#include "audio/read/Decoder.h"
#include "platform/Error.h"
#include "tests/audio/read/Reading.h"
#include "tests/support/Fixtures.h"
#include "tests/support/Sound.h"

namespace foreign {
namespace {

using audio::read::Decoder;
using reading::readAll;

/// Frames that oggdec gives; -1 where the file is not for it.
std::int64_t framesOfOggdec(const std::filesystem::path& file, int channels) {
    const std::filesystem::path raw = file.string() + ".raw";
    const auto outcome =
        support::run(QStringLiteral("oggdec"),
                     {QStringLiteral("-Q"), QStringLiteral("-R"), QStringLiteral("-o"),
                      QString::fromStdString(raw.string()), QString::fromStdString(file.string())});
    std::error_code none;
    const auto size = std::filesystem::file_size(raw, none);
    std::filesystem::remove(raw, none);
    return outcome.exitCode == 0 ? std::int64_t(size) / 2 / channels : -1;
}

std::string faultOfStraight(const std::filesystem::path& file, const Decoder& decoder,
                            const std::vector<float>& ours) {
    const support::Sound judge = support::decodeWithFfmpeg(file);
    const int channels = decoder.format().channels;
    if (judge.channels != channels || judge.rate != decoder.format().sampleRate)
        return "other channels or rate than ffmpeg";
    const auto frames = std::int64_t(ours.size()) / channels;
    const auto theirs = std::int64_t(judge.frames());
    const bool oggVorbis =
        decoder.format().containerName == "ogg" && decoder.format().codecName == "vorbis";
    const bool mp4 = decoder.format().containerName.starts_with("mov");
    const std::string lengths =
        std::to_string(frames) + " frames, others " + std::to_string(theirs);
    std::int64_t shift = 0;
    if (oggVorbis) {
        const std::int64_t oggdec = framesOfOggdec(file, channels);
        if (oggdec >= 0 && oggdec != frames) return lengths + ", oggdec " + std::to_string(oggdec);
        if (frames < theirs) shift = theirs - frames;  // dropped at the start
    } else if (mp4 ? frames > theirs || theirs - frames >= 4'096 : frames != theirs) {
        return lengths;
    }
    const auto common = std::size_t(std::min(frames, theirs)) * std::size_t(channels);
    const auto first = judge.samples.begin() + std::ptrdiff_t(shift * channels);
    if (!std::equal(ours.begin(), ours.begin() + std::ptrdiff_t(common), first,
                    [](float a, float b) { return std::abs(a - b) < 1e-6; }))
        return "other samples than ffmpeg";
    return {};
}

std::string faultOfJumps(Decoder& decoder, const std::vector<float>& straight, Likeness likeness,
                         int jumps, unsigned seed) {
    const auto channels = std::size_t(decoder.format().channels);
    const auto length = std::int64_t(straight.size() / channels);
    std::mt19937 random(seed);
    std::vector<float> block(700 * channels);
    double signal = 0;
    double noise = 0;
    for (int i = 0; i < jumps; ++i) {
        const auto target = std::int64_t(random() % std::uint64_t(length + 4));
        const std::int64_t expected = std::min(target, length);
        const std::size_t size = 1 + random() % 700;
        decoder.seek(target);
        const std::size_t got = decoder.read(block.data(), size);
        if (std::int64_t(got) != std::min<std::int64_t>(std::int64_t(size), length - expected))
            return "a jump to " + std::to_string(target) + " gives too little";
        for (std::size_t k = 0; k < got * channels; ++k) {
            const double wanted = straight[std::size_t(expected) * channels + k];
            const double error = std::abs(double(block[k]) - wanted);
            if (likeness != Likeness::Noise && error > (likeness == Likeness::Exact ? 1e-6 : 1e-3))
                return "a jump to " + std::to_string(target) + " gives other samples";
            signal += wanted * wanted;
            noise += error * error;
        }
    }
    return noise * 10 > signal ? "jumps give noise" : std::string();
}

}  // namespace

std::string faultOfReading(const std::filesystem::path& file, Likeness likeness, int jumps,
                           unsigned seed) {
    try {
        Decoder decoder(file);
        const std::vector<float> ours = readAll(decoder);
        if (decoder.damaged()) return "counts as damaged";
        if (std::string fault = faultOfStraight(file, decoder, ours); !fault.empty()) return fault;
        Decoder counting(file);
        const std::int64_t frames = counting.frames();
        if (frames * counting.format().channels != std::int64_t(ours.size()))
            return "counts " + std::to_string(frames) + " frames but reads " +
                   std::to_string(ours.size() / std::size_t(counting.format().channels));
        Decoder jumping(file);
        if (std::string fault = faultOfJumps(jumping, ours, likeness, jumps, seed); !fault.empty())
            return fault;
        // What was read to its end, and counted, is read from the start again.
        return faultOfJumps(decoder, ours, likeness, 10, seed + 1);
    } catch (const platform::Error& error) {
        return error.what();
    }
}

bool ffmpegReads(const std::filesystem::path& file) {
    return support::run(
               QStringLiteral("ffprobe"),
               {QStringLiteral("-v"), QStringLiteral("error"), QStringLiteral("-show_entries"),
                QStringLiteral("stream=codec_name"), QString::fromStdString(file.string())})
               .exitCode == 0;
}

bool opens(const std::filesystem::path& file) {
    try {
        const Decoder decoder(file);
        return true;
    } catch (const platform::Error&) {
        return false;
    }
}

}  // namespace foreign
