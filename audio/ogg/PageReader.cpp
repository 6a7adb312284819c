// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/ogg/PageReader.h"

#include <algorithm>

namespace audio::ogg {
namespace {

constexpr std::size_t blockBytes = 1 << 16;

}  // namespace

PageReader::PageReader(const std::filesystem::path& file) : file_(file) {
    ogg_sync_init(&sync_);
}

PageReader::~PageReader() {
    ogg_sync_clear(&sync_);
}

ogg_page* PageReader::next() {
    while (true) {
        const long found = ogg_sync_pageseek(&sync_, &page_);
        if (found > 0) {
            offset_ = position_;
            position_ += found;
            return &page_;
        }
        position_ -= found;  // bytes that were passed over count negative
        if (found == 0 && !fill()) return nullptr;
    }
}

bool PageReader::fill() {
    const auto bytes = file_.at(readTo_, blockBytes);
    char* buffer = ogg_sync_buffer(&sync_, static_cast<long>(blockBytes));
    std::copy(bytes.begin(), bytes.end(), buffer);
    ogg_sync_wrote(&sync_, static_cast<long>(bytes.size()));
    readTo_ += static_cast<std::int64_t>(bytes.size());
    return !bytes.empty();
}

void PageReader::seek(std::int64_t offset) {
    ogg_sync_reset(&sync_);
    readTo_ = offset;
    position_ = offset;
}

}  // namespace audio::ogg
