// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <string_view>
#include <system_error>
#include <vector>

#include "audio/wave/Layout.h"
#include "platform/file/File.h"

namespace audio::wave {

/// What a WAVE file to be written is made of.
struct Plan {
    SoundFormat format;
    /// The bytes of sound that will come; -1 where that is not known. Where they need it the file
    /// becomes RF64; where they are unknown, room is reserved for that.
    std::int64_t dataBytes = -1;
    /// A WAVE file in whose order the chunks are written, and which makes the new file RF64 where
    /// it is RF64 itself. Empty: none. It must not change until finish().
    std::filesystem::path model;
    /// The body of the fmt chunk, which describes `format`. Empty: the model's or a new one.
    std::vector<std::byte> fmt;
    /// Whether the model's fmt chunk is repeated byte for byte: only where it describes `format`.
    bool repeatFormat = true;
    /// Whether the model's other chunks (all but fmt, data, fact, ds64) and what trails them are
    /// copied, byte for byte.
    bool copyChunks = true;
    /// The largest RIFF size field; beyond it the file becomes RF64.
    std::uint64_t riffLimit = 0xFFFFFFFE;
};

/// Writes a WAVE file: the chunks ahead of the sound at once, then the sound, then what follows and
/// the size fields. The sound's bytes are taken as they are. One thread at a time; throws
/// platform::Error naming the file, after which the writer is of no use.
class Writer {
  public:
    /// Creates or empties the file.
    Writer(const std::filesystem::path& file, const Plan& plan);

    void write(const std::byte* bytes, std::size_t count);

    /// Appends `count` bytes of the model's sound from its byte `offset` on, as they lie there and
    /// without reading them: inside the system. `copied` is told of every stretch of up to 16 MB;
    /// what it throws comes through.
    void copySound(std::int64_t offset, std::int64_t count,
                   const std::function<void(std::int64_t bytes)>& copied);

    /// Completes and closes the file.
    void finish();

    std::int64_t dataBytes() const { return written_; }

  private:
    void put(const std::byte* bytes, std::size_t count);
    void put(const std::vector<std::byte>& bytes) { put(bytes.data(), bytes.size()); }
    void putHeader(std::string_view id, std::uint64_t size);
    void putSizesChunk();
    void putFmt();
    void putFact();
    void copyFromModel(std::int64_t begin, std::int64_t end);
    void copyChunk(const Chunk& chunk);
    void padToEven();
    void patch(std::int64_t offset, const std::vector<std::byte>& bytes);
    void patchSizes(std::int64_t fileSize);
    [[noreturn]] void fail(const std::error_code& reason) const;
    bool isOther(const Chunk& chunk) const;

    std::filesystem::path file_;
    Plan plan_;
    std::optional<Layout> model_;
    platform::file::File modelFile_;
    platform::file::File output_;
    std::int64_t at_ = 0;
    std::int64_t written_ = 0;
    std::int64_t sizesBody_ = -1;  ///< where the ds64 (or reserved JUNK) body lies
    std::int64_t factBody_ = -1;
    std::int64_t dataBody_ = -1;
    bool rf64_ = false;
};

}  // namespace audio::wave
