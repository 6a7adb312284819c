// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "audio/mpeg/read/SourceFrames.h"
#include "audio/mpeg/splice/ChunkEncoder.h"
#include "audio/mpeg/splice/FrameJoiner.h"
#include "audio/mpeg/splice/Layout.h"
#include "audio/mpeg/splice/OutputSound.h"
#include "audio/mpeg/splice/SeamCheck.h"
#include "audio/mpeg/splice/Splice.h"

namespace audio::mpeg {

/// Carries a layout out: encodes what has to be, finds the seams, and joins everything. One thread
/// drives it, others encode.
class PieceWriter {
  public:
    /// `source` and `check` may be null where nothing is kept. All references must outlive it.
    PieceWriter(const EncoderSettings& settings, const Layout& layout, OutputSound& sound,
                StreamWriter& writer, SourceFrames* source, SeamCheck* check,
                const FrameHeader& like, int threads, std::function<void(double)> progress);
    ~PieceWriter();

    void run();

    std::vector<SpliceOutcome::Encoded> encoded() const { return encoded_; }
    std::int64_t keptFrames() const { return kept_; }

  private:
    std::vector<ChunkPlan> planAll() const;
    void addRegion(const Piece* before, const Piece* after);
    std::int64_t leftSeam(const Chunk& chunk, const Piece& before) const;
    std::vector<std::int64_t> rightSeams(const Chunk& chunk, const Piece& after) const;
    std::int64_t addLast(const Chunk& chunk, std::int64_t first, const Piece& after);
    std::int64_t innerSeam(const Chunk& left, const Chunk& right) const;
    int tolerance(const Chunk& chunk) const;
    void addFrames(const Chunk& chunk, std::int64_t first, std::int64_t end, int needBehind);
    void addKept(std::int64_t end);
    void expectKept(std::int64_t first, std::int64_t count, std::int64_t sourceFirst);
    void report();

    EncoderSettings settings_;
    const Layout& layout_;
    SeamCheck* check_;
    std::int64_t done_ = 0;
    std::int64_t kept_ = 0;
    std::function<void(double)> progress_;
    std::function<void()> tick_;
    std::unique_ptr<FrameJoiner> joiner_;
    std::unique_ptr<ChunkEncoder> encoder_;
    std::vector<SpliceOutcome::Encoded> encoded_;
    const Piece* open_ = nullptr;  // the kept piece being written
    std::int64_t openFirst_ = 0;   // from this frame of the new stream on
};

/// The header of a first frame encoded like this.
FrameHeader plainHeader(const EncoderSettings& settings);

}  // namespace audio::mpeg
