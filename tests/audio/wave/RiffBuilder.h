// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "audio/wave/Bytes.h"
#include "audio/wave/Layout.h"
#include "tests/support/Fixtures.h"

namespace riff {

using Bytes = std::vector<std::byte>;

inline Bytes text(std::string_view letters) {
    Bytes bytes;
    audio::wave::appendText(bytes, letters);
    return bytes;
}

/// Bytes that are like no others, for a chunk or for sound.
inline Bytes pattern(std::size_t size, unsigned seed = 1) {
    Bytes bytes(size);
    unsigned value = seed * 2'654'435'761U + 1;
    for (std::byte& byte : bytes) {
        value = value * 1'664'525U + 1'013'904'223U;
        byte = std::byte(0x80U | (value >> 24));  // never takes the shape of a chunk's name
    }
    return bytes;
}

/// Puts a WAVE file together chunk by chunk, rightly or wrongly.
class Builder {
  public:
    explicit Builder(std::string_view form = "RIFF") : bytes_(text(form)) {
        audio::wave::appendLittleEndian<4>(bytes_, 0);
        add(text("WAVE"));
    }

    Builder& add(const Bytes& raw) {
        bytes_.insert(bytes_.end(), raw.begin(), raw.end());
        return *this;
    }

    /// A chunk whose size field says `stated`, padded where `pad`.
    Builder& chunk(std::string_view id, const Bytes& body, std::int64_t stated = -1,
                   bool pad = true) {
        add(text(id));
        audio::wave::appendLittleEndian<4>(
            bytes_, stated < 0 ? body.size() : static_cast<std::uint64_t>(stated));
        add(body);
        if (pad && body.size() % 2 == 1) bytes_.push_back(std::byte{0});
        return *this;
    }

    Builder& fmt(int bits = 16, int channels = 2, int rate = 44'100) {
        audio::wave::SoundFormat format;
        format.tag = audio::wave::formatTagPcm;
        format.bitsPerSample = bits;
        format.channels = channels;
        format.sampleRate = rate;
        return chunk("fmt ", audio::wave::buildFormat(format));
    }

    /// The whole file, with a RIFF size that says `stated`, or the truth.
    Bytes finish(std::int64_t stated = -1) const {
        Bytes bytes = bytes_;
        Bytes size;
        audio::wave::appendLittleEndian<4>(
            size, stated < 0 ? bytes.size() - 8 : static_cast<std::uint64_t>(stated));
        std::copy(size.begin(), size.end(), bytes.begin() + 4);
        return bytes;
    }

    std::filesystem::path save(const std::filesystem::path& file, std::int64_t stated = -1) const {
        support::writeBytes(file, finish(stated));
        return file;
    }

  private:
    Bytes bytes_;
};

inline Bytes part(const Bytes& bytes, std::int64_t offset, std::int64_t size) {
    return {bytes.begin() + offset, bytes.begin() + offset + size};
}

}  // namespace riff
