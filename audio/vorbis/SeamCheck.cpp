// SPDX-License-Identifier: GPL-3.0-or-later
#include <algorithm>
#include <cmath>

#include "audio/vorbis/PacketDecoder.h"
#include "audio/vorbis/PacketReader.h"
#include "audio/vorbis/Splice.h"

namespace audio::vorbis {
namespace {

// Blocks on either side of a seam that are decoded.
constexpr std::int64_t keptBeside = 3;
constexpr std::int64_t newBeside = 6;
// What the codec may do to sound: even the lowest quality stays well below the sound itself.
constexpr double mostNoise = 1.0;
constexpr double inaudible = 1e-7;  // energy of a sample: -70 dBFS

/// One finished file against the layout it was written by.
class SeamCheck {
  public:
    SeamCheck(const std::filesystem::path& file, const PacketIndex& source,
              const std::filesystem::path& written, const Layout& layout, const SoundReader& sound)
        : source_(source),
          index_(written),
          layout_(layout),
          old_(file, source),
          new_(written, index_),
          oldDecoder_(source.headers()),
          newDecoder_(source.headers()),
          sound_(sound, layout.frames, source.channels(), true) {}

    void run() {
        checkStream();
        checkKept();
        checkSeams();
    }

  private:
    [[noreturn]] static void fail(const char* what) { throw CannotSplice(what); }

    void checkStream() const {
        const bool same = index_.headers().identification == source_.headers().identification &&
                          index_.headers().setup == source_.headers().setup &&
                          index_.serial() == source_.serial();
        if (!same) fail("The headers of the new stream are others than the source's.");
        if (index_.packets() != layout_.size() || index_.frames() != layout_.frames ||
            index_.firstFrame() != std::max<std::int64_t>(0, -layout_.firstCentre))
            fail("The new stream has another length than was meant.");
        for (std::int64_t block = 0; block < layout_.size(); ++block)
            if (index_.isLong(block) != layout_.isLong(block))
                fail("The new stream has other blocks than were meant.");
    }

    void checkKept() {
        for (const Layout::Kept& kept : layout_.kept)
            for (std::int64_t i = 0; i < kept.count; ++i) {
                const auto now = new_.packet(kept.first + i);
                const auto was = old_.packet(kept.sourceFirst + i);
                if (!std::equal(now.begin(), now.end(), was.begin(), was.end()))
                    fail("A kept packet is not what it was.");
            }
    }

    void checkSeams() {
        for (std::int64_t block = 0; block < layout_.size(); ++block) {
            if (layout_.origin(block) == Origin::Kept) continue;
            std::int64_t end = block;
            while (end < layout_.size() && layout_.origin(end) != Origin::Kept) ++end;
            if (end - block <= 2 * newBeside) {
                compare(block - keptBeside, end + keptBeside);
            } else {
                compare(block - keptBeside, block + newBeside);
                compare(end - newBeside, end + keptBeside);
            }
            block = end;
        }
    }

    std::int64_t step(std::int64_t left, std::int64_t right) const {
        return (source_.blockSize(layout_.isLong(left)) +
                source_.blockSize(layout_.isLong(right))) /
               4;
    }

    /// Decodes these blocks. What each completes is compared with what was meant, and where it and
    /// the one before were kept from the same place, with the source.
    void compare(std::int64_t first, std::int64_t end) {
        first = std::max<std::int64_t>(first, 0);
        end = std::min(end, layout_.size());
        std::int64_t frame = index_.centre(first) + layout_.firstCentre;
        newDecoder_.reset();
        std::vector<std::vector<float>> planes(static_cast<std::size_t>(source_.channels()));
        Energy energy;
        for (std::int64_t block = first; block < end; ++block) {
            for (std::vector<float>& plane : planes) plane.clear();
            newDecoder_.decode(new_.packet(block), planes);
            if (block == first) continue;
            const std::int64_t length = step(block - 1, block);
            if (static_cast<std::int64_t>(planes.front().size()) != length)
                fail("A packet does not hold the sound that was meant.");
            compareWithSource(block, planes);
            addEnergy(frame, planes, energy);
            frame += length;
        }
        if (energy.difference > mostNoise * energy.meant + inaudible * energy.samples)
            fail("The sound around an edit is not the sound that was meant.");
    }

    struct Energy {
        double meant = 0;
        double difference = 0;
        double samples = 0;
    };

    void addEnergy(std::int64_t frame, const std::vector<std::vector<float>>& planes,
                   Energy& energy) {
        const auto length = static_cast<std::int64_t>(planes.front().size());
        const std::int64_t from = std::clamp<std::int64_t>(frame, 0, layout_.frames);
        const std::int64_t to = std::clamp<std::int64_t>(frame + length, from, layout_.frames);
        if (from == to) return;
        const Planes meant = sound_.stretch(from, to);
        for (std::size_t channel = 0; channel < planes.size(); ++channel)
            for (std::int64_t i = from; i < to; ++i) {
                const double wanted = meant.channels[channel][static_cast<std::size_t>(i - from)];
                const double got = planes[channel][static_cast<std::size_t>(i - frame)];
                energy.meant += wanted * wanted;
                energy.difference += (wanted - got) * (wanted - got);
                energy.samples += 1;
            }
    }

    void compareWithSource(std::int64_t block, const std::vector<std::vector<float>>& planes) {
        const std::int64_t packet = sourceOf(block);
        if (packet < 1 || sourceOf(block - 1) != packet - 1) return;
        std::vector<std::vector<float>> was(planes.size());
        oldDecoder_.reset();
        oldDecoder_.decode(old_.packet(packet - 1), was);
        for (std::vector<float>& plane : was) plane.clear();
        oldDecoder_.decode(old_.packet(packet), was);
        if (was != planes) fail("A kept packet would not sound as before.");
    }

    /// The packet of the source that a block is, -1 where it is new.
    std::int64_t sourceOf(std::int64_t block) const {
        const auto behind = std::upper_bound(
            layout_.kept.begin(), layout_.kept.end(), block,
            [](std::int64_t wanted, const Layout::Kept& kept) { return wanted < kept.first; });
        if (behind == layout_.kept.begin()) return -1;
        const Layout::Kept& kept = *std::prev(behind);
        return block < kept.first + kept.count ? kept.sourceFirst + block - kept.first : -1;
    }

    const PacketIndex& source_;
    PacketIndex index_;  ///< of the new file
    const Layout& layout_;
    PacketReader old_;
    PacketReader new_;
    PacketDecoder oldDecoder_;
    PacketDecoder newDecoder_;
    SoundWindow sound_;
};

}  // namespace

void checkSplice(const std::filesystem::path& file, const PacketIndex& index,
                 const std::filesystem::path& written, const Layout& layout,
                 const SoundReader& sound) {
    SeamCheck(file, index, written, layout, sound).run();
}

}  // namespace audio::vorbis
