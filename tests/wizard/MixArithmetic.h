// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <functional>
#include <vector>

#include <QStringList>

/// What a mix must be, by arithmetic of the tests' own: whoever makes it (the pass and the rounds,
/// the wizard's window, the command line), every sample of every track is heard once, in order.
namespace support {

namespace mix {
inline constexpr std::size_t channels = 2;
inline constexpr int rate = 44100;
inline constexpr double oneStep = 1.0 / 32768;  ///< of a 16-bit sample
}  // namespace mix

using Samples = std::vector<float>;  ///< interleaved, mix::channels

/// A sound of 16-bit stereo noise, like no other of another seed and alike nowhere within itself;
/// `encoding` are ffmpeg's arguments for the file.
void makeNoise(const QString& path, double seconds, unsigned seed,
               const QStringList& encoding = {});

/// What another program than ours reads in each file.
std::vector<Samples> decoded(const QStringList& files);

/// Makes tracks of random lengths and mixes them with random overlaps, some of the tracks broken,
/// and holds every mix against the arithmetic, bit for bit but for the dither where two are heard.
class RandomMixes {
  public:
    /// Transforms the tracks: without an overlap (0) each for itself, else into one mix. Returns
    /// the results in the order of the tracks. `folder` is a new one.
    using Make =
        std::function<QStringList(const QStringList& tracks, int overlapMs, const QString& folder)>;

    int rounds = 8;
    double longest = 4.0;       ///< seconds of a track
    std::vector<int> overlaps;  ///< milliseconds to choose from; none = 200 to 2,500
    int most = 6;               ///< tracks of a mix

    /// `folder` is empty and ends with a separator.
    void run(const QString& folder, const Make& make) const;
};

}  // namespace support
