// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/wizard/MixArithmetic.h"

#include <algorithm>
#include <cmath>
#include <fstream>
#include <random>
#include <set>

#include <QDir>
#include <QFile>
#include <gtest/gtest.h>

#include "platform/Paths.h"
#include "tests/support/Fixtures.h"
#include "tests/support/Sound.h"

using namespace Qt::Literals::StringLiterals;

namespace support {
namespace {

/// The file of one track in a mix.
struct File {
    Samples samples;
    std::vector<bool> shared;  ///< two tracks are heard: written as a mix, with the dither of one
};

/// A track that is longer than the overlap gives its head to the file before, the others are
/// joined end to start. Where the file before is shorter than the head, the rest is appended.
std::vector<File> filesOf(const std::vector<Samples>& tracks, std::size_t overlap) {
    std::vector<File> files;
    for (const Samples& track : tracks) {
        const std::size_t head = !files.empty() && track.size() > overlap ? overlap : 0;
        if (head > 0) {
            auto& [before, shared] = files.back();
            const std::size_t start = before.size() > head ? before.size() - head : 0;
            const std::size_t heard = before.size() - start;
            before.resize(start + head);
            shared.resize(start + head);
            for (std::size_t i = 0; i < head; ++i) {
                before[start + i] =
                    std::clamp(before[start + i] + track[i], -1.0F, 1 - float(mix::oneStep));
                shared[start + i] = i < heard;
            }
        }
        files.push_back({{track.begin() + std::ptrdiff_t(head), track.end()},
                         std::vector<bool>(track.size() - head)});
    }
    return files;
}

void expectFiles(const std::vector<Samples>& mixed, const std::vector<File>& expected) {
    ASSERT_EQ(mixed.size(), expected.size());
    for (std::size_t file = 0; file < mixed.size(); ++file) {
        SCOPED_TRACE(testing::Message() << "file " << file);
        const auto& [samples, shared] = expected[file];
        ASSERT_EQ(mixed[file].size(), samples.size());
        for (std::size_t i = 0; i < samples.size(); ++i)
            ASSERT_NEAR(mixed[file][i], samples[i], shared[i] ? 1.01 * mix::oneStep : 0)
                << "at sample " << i;
    }
}

}  // namespace

void makeNoise(const QString& path, double seconds, unsigned seed, const QStringList& encoding) {
    const QString raw = path + u".raw"_s;
    std::mt19937 random(seed);
    std::uniform_int_distribution<std::int16_t> loudness(-9000, 9000);
    std::vector<std::int16_t> noise(static_cast<std::size_t>(seconds * mix::rate) * mix::channels);
    std::ranges::generate(noise, [&] { return loudness(random); });
    std::ofstream(platform::toPath(raw), std::ios::binary)
        .write(reinterpret_cast<const char*>(noise.data()),
               static_cast<std::streamsize>(noise.size() * sizeof noise[0]));
    const QStringList arguments = {u"-nostdin"_s, u"-loglevel"_s, u"error"_s, u"-f"_s,
                                   u"s16le"_s,    u"-ar"_s,       u"44100"_s, u"-ac"_s,
                                   u"2"_s,        u"-i"_s,        raw};
    EXPECT_EQ(run(u"ffmpeg"_s, arguments + encoding + QStringList{path}).exitCode, 0);
    QFile::remove(raw);
}

std::vector<Samples> decoded(const QStringList& files) {
    std::vector<Samples> sounds;
    for (const QString& file : files)
        sounds.push_back(decodeWithFfmpeg(platform::toPath(file)).samples);
    return sounds;
}

void RandomMixes::run(const QString& folder, const Make& make) const {
    std::mt19937 random(20);
    std::uniform_real_distribution<double> seconds(0.1, longest);
    for (int round = 0; round < rounds && !testing::Test::HasFatalFailure(); ++round) {
        const QString here = folder + QString::number(round) + u'/';
        for (const QString& name : {u"in"_s, u"plain"_s, u"mix"_s})
            ASSERT_TRUE(QDir().mkpath(here + name));
        const int overlap = overlaps.empty() ? std::uniform_int_distribution(200, 2500)(random)
                                             : overlaps[random() % overlaps.size()];
        QStringList tracks;
        std::set<qsizetype> broken;
        const int count = std::uniform_int_distribution(2, most)(random);
        for (int n = 0; n < count; ++n) {
            tracks += here + u"in/%1.wav"_s.arg(n);
            makeNoise(tracks.back(), seconds(random), random());
            if (random() % 4 != 0) continue;
            broken.insert(n);
            QFile(tracks.back()).resize(40);
        }
        SCOPED_TRACE(testing::Message() << count << " tracks, " << broken.size()
                                        << " broken, overlap " << overlap << " ms");
        const QStringList plain = make(tracks, 0, here + u"plain/"_s);
        const QStringList mixed = make(tracks, overlap, here + u"mix/"_s);
        ASSERT_EQ(plain.size(), count);
        ASSERT_EQ(mixed.size(), count);
        QStringList good, results;
        for (qsizetype n = 0; n < count; ++n) {
            if (broken.contains(n)) continue;
            good += plain[n];
            results += mixed[n];
        }
        const auto frames = static_cast<std::size_t>(std::llround(overlap * (mix::rate / 1000.0)));
        expectFiles(decoded(results), filesOf(decoded(good), frames * mix::channels));
    }
}

}  // namespace support
