// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/mpeg/splice/FrameJoiner.h"

#include <algorithm>

#include "audio/mpeg/splice/ReservoirFit.h"
#include "audio/mpeg/splice/ReservoirWriter.h"

namespace audio::mpeg {
namespace {

// Frames copied at a time.
constexpr std::int64_t copiedAtOnce = 256;

// Writes source frames as they are, past everything else.
class Copier {
  public:
    Copier(StreamWriter& writer, SourceFrames* source, std::function<void(std::int64_t)> progress)
        : writer_(writer), source_(source), progress_(std::move(progress)) {}

    void copy(std::int64_t first, std::int64_t count) {
        for (const std::int64_t end = first + count; first < end;) {
            const std::int64_t stop = std::min(end, first + copiedAtOnce);
            const std::int64_t offset = source_->index().frame(first).offset;
            const std::int64_t size = source_->index().frame(stop - 1).end() - offset;
            const auto bytes = source_->bytes(ByteRange{offset, size});
            for (std::int64_t i = first; i < stop; ++i) {
                const ByteRange frame = source_->index().frame(i);
                writer_.noteFrame(bytes.subspan(static_cast<std::size_t>(frame.offset - offset),
                                                static_cast<std::size_t>(frame.size)),
                                  frame.offset - offset);
            }
            writer_.write(bytes);
            progress_(stop - first);
            first = stop;
        }
    }

  private:
    StreamWriter& writer_;
    SourceFrames* source_;
    std::function<void(std::int64_t)> progress_;
};

/// Layer III.
class ReservoirJoiner : public FrameJoiner {
  public:
    ReservoirJoiner(const EncoderSettings& settings, const FrameHeader& like, StreamWriter& writer,
                    SourceFrames* source, std::function<void(std::int64_t)> progress)
        : freeSlots_(settings.rate != EncoderSettings::Rate::Constant),
          like_(like),
          source_(source),
          copier_(writer, source, std::move(progress)),
          out_(writer, like) {}

    void addEncoded(std::vector<LogicalFrame> frames, int needBehind,
                    const std::function<std::vector<LogicalFrame>(std::size_t, std::size_t, int)>&
                        cheaper) override {
        const FitProblem problem{std::move(frames), freeSlots_, out_.room(), needBehind, cheaper};
        const auto fitted = fit(problem);
        if (fitted.size() != problem.frames.size()) {
            throw DoesNotFit("The new frames do not fit between the old ones.");
        }
        for (const FittedFrame& frame : fitted) out_.add(frame.frame, frame.slot);
    }

    void addSilent(std::int64_t count, int needBehind) override {
        FrameHeader slot = like_;
        slot.word &= ~0x230U;
        slot.padding = false;
        for (std::int64_t i = 0; i < count; ++i) {
            const int need = i + 1 == count ? needBehind : 0;
            FrameHeader own = slot;
            for (int index = slot.bitRateIndex(); index <= 14; ++index) {
                own = slot.withBitRateIndex(index);
                if (own.size() - own.overhead() >= need) break;
            }
            out_.addSilent(own);
        }
    }

    void addKept(std::int64_t first, std::int64_t count) override {
        const auto reservoir = source_->reservoir(first);
        if (!reservoir && first > 0) {
            throw CannotSplice("The frames to be kept lack data that was cut off before them.");
        }
        if (reservoir) out_.beginKept(*reservoir);
        const std::int64_t copied = count - heldBack(first, count);
        if (copied > 0) {
            out_.skipKept();
            copier_.copy(first, copied);
        }
        for (std::int64_t i = first + copied; i < first + count; ++i) {
            out_.addKept(source_->bytes(i));
        }
        out_.endKept();
    }

    void finish() override { out_.finish(); }

    // How many of these frames' last ones hold the reservoir of what follows.
    std::int64_t heldBack(std::int64_t first, std::int64_t count) const {
        std::int64_t held = 0;
        for (std::int64_t bytes = 0; held < count && bytes <= longestReservoir(like_); ++held)
            bytes += source_->index().frame(first + count - 1 - held).size - like_.overhead();
        return held;
    }

    int needOf(std::int64_t sourceFrame) override {
        const auto reservoir = source_->reservoir(sourceFrame);
        return reservoir ? static_cast<int>(reservoir->size()) : 0;
    }
    int roomAfter(std::int64_t sourceFrame) override {
        const SideInfo info = source_->sideInfo(sourceFrame);
        const auto size = static_cast<int>(source_->index().frame(sourceFrame).size);
        const int left = info.mainDataBegin + size - like_.overhead() - info.mainBytes();
        return std::clamp(left, 0, longestReservoir(like_));
    }
    bool fits(const LogicalFrame& left, const LogicalFrame& right) const override {
        return left.info.windowsFit(right.info);
    }
    bool fitsAfterSource(std::int64_t sourceFrame, const LogicalFrame& right) override {
        return source_->sideInfo(sourceFrame).windowsFit(right.info);
    }
    bool fitsBeforeSource(const LogicalFrame& left, std::int64_t sourceFrame) override {
        // Data that was cut off cannot be given back: such a frame starts no run.
        return source_->reservoir(sourceFrame) &&
               left.info.windowsFit(source_->sideInfo(sourceFrame));
    }

  private:
    bool freeSlots_;
    FrameHeader like_;
    SourceFrames* source_;
    Copier copier_;
    ReservoirWriter out_;
};

/// Layer II: every frame stands by itself.
class PlainJoiner : public FrameJoiner {
  public:
    PlainJoiner(const FrameHeader& like, StreamWriter& writer, SourceFrames* source,
                std::function<void(std::int64_t)> progress)
        : like_(like), writer_(writer), copier_(writer, source, std::move(progress)) {}

    void addEncoded(
        std::vector<LogicalFrame> frames, int,
        const std::function<std::vector<LogicalFrame>(std::size_t, std::size_t, int)>&) override {
        constexpr std::uint32_t rightsBits = 0x10F;  // private, copyright, original, emphasis
        for (const LogicalFrame& frame : frames) {
            const std::uint32_t word =
                (frame.header.word & ~rightsBits) | (like_.word & rightsBits);
            std::vector<std::uint8_t> bytes;
            for (int shift = 24; shift >= 0; shift -= 8) {
                bytes.push_back(static_cast<std::uint8_t>(word >> shift));
            }
            bytes.insert(bytes.end(), frame.main.begin(), frame.main.end());
            writer_.noteFrame(bytes);
            writer_.write(bytes);
        }
    }
    void addSilent(std::int64_t, int) override {
        throw CannotSplice("Layer II has no frames without sound.");
    }
    void addKept(std::int64_t first, std::int64_t count) override { copier_.copy(first, count); }
    void finish() override {}
    int needOf(std::int64_t) override { return 0; }
    int roomAfter(std::int64_t) override { return 0; }
    bool fits(const LogicalFrame&, const LogicalFrame&) const override { return true; }
    bool fitsAfterSource(std::int64_t, const LogicalFrame&) override { return true; }
    bool fitsBeforeSource(const LogicalFrame&, std::int64_t) override { return true; }

  private:
    FrameHeader like_;
    StreamWriter& writer_;
    Copier copier_;
};

}  // namespace

std::unique_ptr<FrameJoiner> makeJoiner(const EncoderSettings& settings, StreamWriter& writer,
                                        const FrameHeader& like, SourceFrames* source,
                                        std::function<void(std::int64_t)> progress) {
    if (settings.layer == 3) {
        return std::make_unique<ReservoirJoiner>(settings, like, writer, source,
                                                 std::move(progress));
    }
    return std::make_unique<PlainJoiner>(like, writer, source, std::move(progress));
}

}  // namespace audio::mpeg
