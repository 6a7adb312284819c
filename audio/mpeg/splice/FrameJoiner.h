// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

#include "audio/mpeg/encode/EncoderSettings.h"
#include "audio/mpeg/read/LogicalFrame.h"
#include "audio/mpeg/read/SourceFrames.h"
#include "audio/mpeg/splice/StreamWriter.h"

namespace audio::mpeg {

/// New frames did not fit before the frame behind them; nothing of them was written.
class DoesNotFit : public CannotSplice {
  public:
    using CannotSplice::CannotSplice;
};

/// Puts kept and new frames behind one another, as the layer has it. One thread. Every function
/// throws CannotSplice where the frames do not fit.
class FrameJoiner {
  public:
    virtual ~FrameJoiner() = default;

    /// New frames; `needBehind` = bytes of reservoir to be left for the frame behind them;
    /// `cheaper` encodes part of them again (first, count, steps) where they do not fit. Throws
    /// DoesNotFit where even that does not help.
    virtual void addEncoded(
        std::vector<LogicalFrame> frames, int needBehind,
        const std::function<std::vector<LogicalFrame>(std::size_t, std::size_t, int)>& cheaper) = 0;
    /// `count` frames of silence that leave `needBehind` bytes.
    virtual void addSilent(std::int64_t count, int needBehind) = 0;
    /// Source frames [first, first + count).
    virtual void addKept(std::int64_t first, std::int64_t count) = 0;
    virtual void finish() = 0;

    /// Bytes of reservoir that the source's frame needs before it.
    virtual int needOf(std::int64_t sourceFrame) = 0;
    /// Bytes of reservoir that the source's frames up to this one leave.
    virtual int roomAfter(std::int64_t sourceFrame) = 0;
    /// Whether the windows of two frames fit; for a source frame, either side.
    virtual bool fits(const LogicalFrame& left, const LogicalFrame& right) const = 0;
    virtual bool fitsAfterSource(std::int64_t sourceFrame, const LogicalFrame& right) = 0;
    virtual bool fitsBeforeSource(const LogicalFrame& left, std::int64_t sourceFrame) = 0;
};

/// `like` is a header of the stream that new frames resemble in what says nothing of their coding.
/// `source` may be null where everything is encoded. `progress` is told the kept frames written.
std::unique_ptr<FrameJoiner> makeJoiner(const EncoderSettings& settings, StreamWriter& writer,
                                        const FrameHeader& like, SourceFrames* source,
                                        std::function<void(std::int64_t)> progress);

}  // namespace audio::mpeg
