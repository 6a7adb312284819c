// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/read/Trimming.h"

#include <algorithm>
#include <cstdlib>

namespace audio::read {

Kept Trimmer::take(std::int64_t frames, const Trim& trim) {
    if (trim.skip > 0) skip_ = trim.skip;
    if (trim.discard) {
        skip_ = std::max<std::int64_t>(0, skip_ - frames);
        return {};
    }
    const std::int64_t front = std::min(skip_, frames);
    skip_ -= front;
    const std::int64_t left = frames - front;
    return {front, trim.padding > 0 && trim.padding <= left ? left - trim.padding : left};
}

std::int64_t oggStartSkip(const OggPageEnd& first) {
    if (first.last) return 0;  // a stream of one page: its end is cut
    return std::clamp<std::int64_t>(first.frames - first.granule, 0, first.frames);
}

std::int64_t oggEndPadding(const OggPageEnd& page) {
    if (!page.last) return 0;
    return std::clamp<std::int64_t>(page.before + page.frames - page.granule, 0, page.frames);
}

std::int64_t mp4EndPadding(const Mp4End& end, std::int64_t decoded, std::int64_t frames) {
    if (end.lastStart != decoded) return 0;
    std::int64_t last = std::min(end.mediaEnd, decoded + frames);
    if (end.editEnd && std::abs(*end.editEnd - last) > end.editGrain)
        last = std::min(last, *end.editEnd);
    return last > decoded ? decoded + frames - last : 0;
}

}  // namespace audio::read
