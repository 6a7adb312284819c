// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/Sound.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>

#include <gtest/gtest.h>

#include "platform/Paths.h"
#include "tests/support/Fixtures.h"

using namespace Qt::Literals::StringLiterals;

namespace support {
namespace {

std::vector<float> floatsOf(const QByteArray& bytes) {
    std::vector<float> samples(static_cast<std::size_t>(bytes.size()) / sizeof(float));
    if (!samples.empty()) std::memcpy(samples.data(), bytes.data(), samples.size() * sizeof(float));
    return samples;
}

}  // namespace

Sound Sound::part(std::size_t first, std::size_t count) const {
    const std::size_t begin = std::min(first, frames()) * std::size_t(channels);
    const std::size_t end = std::min(first + count, frames()) * std::size_t(channels);
    return {{samples.begin() + std::ptrdiff_t(begin), samples.begin() + std::ptrdiff_t(end)},
            rate,
            channels};
}

Sound decodeWithFfmpeg(const std::filesystem::path& file) {
    const QString path = u"file:"_s + platform::toQString(file);
    const Outcome probe = run(
        u"ffprobe"_s, {u"-v"_s, u"error"_s, u"-select_streams"_s, u"a:0"_s, u"-show_entries"_s,
                       u"stream=codec_name,sample_rate,channels"_s, u"-of"_s, u"csv=p=0"_s, path});
    // A stream of a programme is told of twice, and side data may follow.
    const QList<QByteArray> fields = probe.out.trimmed().split('\n').front().split(',');
    EXPECT_GE(fields.size(), 3) << "ffprobe cannot read " << file << ": "
                                << probe.err.toStdString();
    if (fields.size() < 3) return {};

    QStringList arguments{u"-v"_s, u"error"_s, u"-nostdin"_s};
    if (fields[0] == "mp2") arguments << u"-c:a"_s << u"mp2float"_s;
    // Vorbis may begin before its first frame; ffmpeg gives those frames negative times and plays
    // them.
    const bool dropsAtStart = fields[0] == "vorbis";
    if (dropsAtStart) arguments << u"-copyts"_s;
    arguments << u"-i"_s << path << u"-map"_s << u"0:a:0"_s;
    if (dropsAtStart) arguments << u"-af"_s << u"atrim=start=0"_s;
    arguments << u"-f"_s << u"f32le"_s << u"-c:a"_s << u"pcm_f32le"_s << u"-"_s;
    const Outcome decoded = run(u"ffmpeg"_s, arguments);
    EXPECT_EQ(decoded.exitCode, 0) << file << ": " << decoded.err.toStdString();
    return {floatsOf(decoded.out), fields[1].toInt(), fields[2].toInt()};
}

Sound decodeWithMpg123(const std::filesystem::path& file) {
    const Outcome decoded =
        run(u"mpg123"_s, {u"-q"_s, u"-e"_s, u"f32"_s, u"-w"_s, u"-"_s, platform::toQString(file)});
    EXPECT_EQ(decoded.exitCode, 0) << file << ": " << decoded.err.toStdString();
    const qsizetype fmt = decoded.out.indexOf("fmt ");
    const qsizetype data = decoded.out.indexOf("data");
    EXPECT_TRUE(fmt > 0 && data > fmt) << file;
    if (fmt < 0 || data < fmt) return {};
    Sound sound{floatsOf(decoded.out.mid(data + 8)), 0, 0};
    std::uint16_t channels = 0;
    std::memcpy(&channels, decoded.out.data() + fmt + 10, sizeof channels);
    std::memcpy(&sound.rate, decoded.out.data() + fmt + 12, sizeof sound.rate);
    sound.channels = channels;
    return sound;
}

double maxDifference(const std::vector<float>& a, const std::vector<float>& b) {
    if (a.size() != b.size()) return std::numeric_limits<double>::infinity();
    double greatest = 0;
    for (std::size_t i = 0; i < a.size(); ++i)
        greatest = std::max(greatest, std::abs(double(a[i]) - double(b[i])));
    return greatest;
}

double snrDb(const std::vector<float>& reference, const std::vector<float>& other) {
    double signal = 0;
    double noise = 0;
    for (std::size_t i = 0; i < std::min(reference.size(), other.size()); ++i) {
        const double difference = double(reference[i]) - double(other[i]);
        signal += double(reference[i]) * double(reference[i]);
        noise += difference * difference;
    }
    return 10 * std::log10((signal + 1e-30) / (noise + 1e-30));
}

int lagOf(const Sound& reference, const Sound& other, int most) {
    const auto first = static_cast<std::ptrdiff_t>(reference.frames() / 4);
    const auto count = std::min<std::ptrdiff_t>(20'000, std::ptrdiff_t(reference.frames()) / 2);
    const auto valueAt = [](const Sound& sound, std::ptrdiff_t frame) {
        const bool inside = frame >= 0 && frame < std::ptrdiff_t(sound.frames());
        return inside ? double(sound.samples[std::size_t(frame) * std::size_t(sound.channels)]) : 0;
    };
    int best = 0;
    double greatest = -1;
    for (int lag = -most; lag <= most; ++lag) {
        double sum = 0;
        for (std::ptrdiff_t i = first; i < first + count; ++i)
            sum += valueAt(reference, i) * valueAt(other, i + lag);
        if (sum > greatest) best = lag;
        greatest = std::max(greatest, sum);
    }
    return best;
}

}  // namespace support
