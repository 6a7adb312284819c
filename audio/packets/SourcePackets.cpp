// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/packets/SourcePackets.h"

#include <utility>

#include "audio/FileError.h"

namespace audio::packets {

SourcePackets::SourcePackets(const std::filesystem::path& file)
    : file_(file), reader_(read::openPackets(ffmpeg::Input(file))) {}

std::span<const std::uint8_t> SourcePackets::at(std::int64_t number) {
    if (number >= 0 && number == number_ - 1) return before_;
    if (number < number_) {
        reader_->rewind();
        number_ = -1;
    }
    for (; number_ < number; ++number_) {
        if (!reader_->read(packet_)) throw fileError(file_, "has changed while it was read");
        std::swap(before_, last_);
        last_.assign(packet_.bytes().begin(), packet_.bytes().end());
    }
    return last_;
}

}  // namespace audio::packets
