// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <filesystem>
#include <functional>
#include <memory>
#include <vector>

#include "audio/parallel/OrderedTasks.h"
#include "audio/vorbis/VorbisEncoder.h"

namespace audio::vorbis {

/// How a sound is divided. All but the number of threads decides on the bytes.
struct VorbisChunking {
    int threads = 0;  ///< that encode; 0: one for each core
    std::int64_t chunkFrames = 1 << 20;
    int tries = 8;  ///< places where a chunk's encoder may try to begin

    /// For a sound of so many frames, -1 where that is not known.
    static VorbisChunking of(std::int64_t frames, int channels, int threads = 0);
};

/// A stretch of the stream that gets an encoder of its own: the blocks with centres in [first,
/// end), of the last chunk all to the end.
struct VorbisChunk {
    PlanarSound sound;  ///< from far enough before `first` to what deciding on the last block takes
    std::int64_t first = 0;
    std::int64_t end = 0;
    std::int64_t settled = 0;          ///< centre of a block: from here on packets are made
    std::vector<std::int64_t> starts;  ///< where the encoder may begin, best first
};

/// Encodes Vorbis on several threads, so that the packets follow one another as if one encoder had
/// made them, and hands them over in order.
///
/// What an encoder in variable bit-rate carries from block to block is the place of the blocks,
/// a memory of some thousand frames in its search for attacks, and the loudest peak so far, which
/// decays. The last two are settled some blocks after a start. The place of long blocks moves with
/// every run of short ones, so one encoder runs over all the sound and only decides on windows,
/// which costs about a fifteenth of encoding. The encoder of a chunk begins where its blocks fall
/// on the places of that one; whether they do is seen before anything is encoded, and else another
/// start is tried. Where none fits the encoder of the chunk before carries on, so that windows
/// always overlap as they must (Vorbis I, section 1.3.2), at the price of doing that chunk alone.
///
/// Used by one thread. Memory: sound of about 2^21 samples for each chunk in work, one more than
/// there are threads.
class VorbisChunks {
  public:
    using Take = std::function<void(const VorbisPacket&)>;

    /// `file` = what errors name. `take` gets every packet, on the thread that calls here. Throws
    /// platform::Error where Vorbis has no such rate or number of channels.
    VorbisChunks(const std::filesystem::path& file, const Format& format,
                 const VorbisChunking& chunking, Take take);
    /// Joins the threads, without waiting for the end of what they do.
    ~VorbisChunks();
    VorbisChunks(const VorbisChunks&) = delete;
    VorbisChunks& operator=(const VorbisChunks&) = delete;

    /// The three headers of the stream.
    const std::vector<std::vector<std::uint8_t>>& headers() const { return headers_; }

    /// Where the next sound goes: `frames` more on each plane, to be filled, then added().
    std::vector<std::vector<float>>& planes() { return sound_.planes; }
    /// Goes on with what was appended to planes(). Throws what the encoders threw.
    void added();
    /// The end of the sound: hands over all that is left.
    void finish();

    /// Chunks that the encoder before them had to do.
    int carriedOn() const { return carriedOn_; }

  private:
    struct Result {
        VorbisChunk chunk;
        std::unique_ptr<VorbisEncoder> encoder;  ///< behind its last packet; none fell into step
        std::vector<VorbisPacket> packets;
    };
    void start(std::int64_t end);
    void dropSound();
    void run(VorbisChunk chunk);
    std::vector<std::int64_t> startsFor(std::size_t settled) const;
    Result encode(VorbisChunk chunk) const;
    std::unique_ptr<VorbisEncoder> inStep(const VorbisChunk& chunk, std::int64_t start) const;
    std::vector<VorbisPacket> packets(VorbisEncoder& encoder, const VorbisChunk& chunk) const;
    void goOn() const;
    void join();

    std::filesystem::path file_;
    Format format_;
    VorbisChunking chunking_;
    Take take_;
    VorbisEncoder windows_;  ///< only decides
    std::vector<std::vector<std::uint8_t>> headers_;
    PlanarSound sound_;                ///< that no chunk has for its own
    std::deque<VorbisBlock> decided_;  ///< blocks in sound_
    std::int64_t first_ = 0;           ///< of the next chunk
    int carriedOn_ = 0;
    std::unique_ptr<VorbisEncoder> left_;  ///< made the packets so far
    VorbisBlock last_;                     ///< the last of them

    std::atomic<bool> stopping_ = false;
    parallel::OrderedTasks<Result> running_;  // uses all above
};

}  // namespace audio::vorbis
