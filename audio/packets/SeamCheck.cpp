// SPDX-License-Identifier: GPL-3.0-or-later
#include <algorithm>
#include <vector>

#include "audio/packets/CannotJoin.h"
#include "audio/packets/SourcePackets.h"
#include "audio/packets/Splice.h"
#include "audio/read/Decoder.h"

namespace audio::packets {
namespace {

constexpr std::int64_t mostCompared = 16;  // packets of an encoded piece, at each end
constexpr double inaudible = 1e-9;         // mean square: −90 dBFS
constexpr double belowSignal = 0.1;        // 10 dB, as no seam that goes wrong is
constexpr double overEncoder = 4;          // 6 dB

/// How far what is heard in a stretch is from what was meant; mean squares.
struct Difference {
    double error = 0;
    double signal = 0;
};

class Checker {
  public:
    Checker(const SpliceJob& job, const std::filesystem::path& written)
        : job_(job), grid_(job.stream.grid), written_(written), decoder_(written) {}

    void checkKept(const std::vector<Piece>& pieces) {
        SourcePackets source(job_.source);
        SourcePackets written(written_);
        for (const Piece& piece : pieces) {
            if (!piece.kept()) continue;
            for (std::int64_t number = piece.first; number < piece.end; ++number) {
                const auto own = written.at(number);
                const auto wanted = source.at(number - piece.first + piece.source);
                if (!std::equal(own.begin(), own.end(), wanted.begin(), wanted.end()))
                    throw CannotJoin("A packet that was kept came out as another.");
            }
        }
    }

    void checkSeams(const Piece& piece) {
        const double encoder = worstWithin(piece);
        const std::int64_t settled = (grid_.preRoll + grid_.size - 1) / grid_.size;
        for (std::int64_t number = piece.first - 1; number <= piece.first; ++number)
            check(number, encoder);
        for (std::int64_t number = piece.end - 1; number <= piece.end + settled; ++number)
            check(number, encoder);
    }

  private:
    Difference differenceIn(std::int64_t packet) {
        const std::int64_t start =
            std::max<std::int64_t>(0, packet * grid_.size - job_.layout.skip);
        const std::int64_t end =
            std::min((packet + 1) * grid_.size - job_.layout.skip, job_.layout.frames);
        if (start >= end) return {};
        const auto frames = static_cast<std::size_t>(end - start);
        const auto samples = frames * static_cast<std::size_t>(decoder_.format().channels);
        heard_.assign(samples, 0.0F);
        meant_.assign(samples, 0.0F);
        decoder_.seek(start);
        decoder_.read(heard_.data(), frames);
        job_.sound(start + job_.layout.skip, frames, meant_.data());
        Difference difference;
        for (std::size_t i = 0; i < samples; ++i) {
            const double error = double(heard_[i]) - double(meant_[i]);
            difference.error += error * error / double(samples);
            difference.signal += double(meant_[i]) * double(meant_[i]) / double(samples);
        }
        return difference;
    }

    /// The greatest error that the encoder alone makes, near both ends of a piece.
    double worstWithin(const Piece& piece) {
        double worst = 0;
        for (std::int64_t number = piece.first + 1; number + 1 < piece.end; ++number) {
            if (number > piece.first + mostCompared && number < piece.end - mostCompared)
                number = piece.end - mostCompared;
            worst = std::max(worst, differenceIn(number).error);
        }
        return worst;
    }

    void check(std::int64_t number, double encoder) {
        if (number < 0 || number >= job_.layout.packets) return;
        const Difference own = differenceIn(number);
        // What a packet's neighbours hold covers it too: masking reaches some 20 ms.
        const double signal = std::max(own.signal, differenceIn(number - 1).signal);
        if (own.error > std::max({inaudible, overEncoder * encoder, belowSignal * signal}))
            throw CannotJoin("A seam between its packets and new ones would be heard.");
    }

    const SpliceJob& job_;
    const Grid& grid_;
    std::filesystem::path written_;
    read::Decoder decoder_;
    std::vector<float> heard_;
    std::vector<float> meant_;
};

}  // namespace

void checkSplice(const SpliceJob& job, const std::vector<Piece>& pieces,
                 const std::filesystem::path& written) {
    Checker checker(job, written);
    checker.checkKept(pieces);
    for (const Piece& piece : pieces)
        if (!piece.kept()) checker.checkSeams(piece);
}

}  // namespace audio::packets
