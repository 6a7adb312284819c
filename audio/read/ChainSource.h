// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <memory>
#include <optional>
#include <vector>

#include "audio/ogg/Links.h"
#include "audio/read/Source.h"

namespace audio::read {

/// Reads a chained Ogg file as one sound: its links one after the other, each by a source of its
/// own, of which one is open at a time. The first link says what the sound is; one of another rate
/// or number of channels, which would need resampling, is refused. Links that begin like the first
/// are opened only when their sound, or their length, is asked for.
class ChainSource : public Decoder::Source {
  public:
    ChainSource(const std::filesystem::path& file, const std::vector<ogg::Link>& links);

    /// Opens every link once, to count.
    std::int64_t frames() override;
    std::int64_t estimatedFrames() const override;
    std::size_t read(float* interleaved, std::size_t frames) override;
    void seek(std::int64_t frame) override;
    std::int64_t position() const override { return position_; }

  private:
    struct Link {
        FilePart part;
        std::optional<std::int64_t> frames;  ///< once it was counted
    };
    std::unique_ptr<Decoder::Source> open(std::size_t number) const;
    void goTo(std::size_t number);
    std::int64_t framesOf(std::size_t number);

    std::filesystem::path file_;
    std::vector<Link> links_;
    std::size_t current_ = 0;
    std::unique_ptr<Decoder::Source> source_;  ///< the current link's
    std::int64_t position_ = 0;
};

}  // namespace audio::read
