// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/ogg/Links.h"

#include <algorithm>

#include "audio/ogg/PageReader.h"
#include "audio/parallel/Stop.h"

namespace audio::ogg {
namespace {

/// What holds the rate and channels of Vorbis (Vorbis I, section 4.2.2), Opus (RFC 7845, section
/// 5.1) and FLAC (RFC 9639, sections 8.2 and 10.1).
constexpr long headBytes = 30;

}  // namespace

std::vector<Link> findLinks(const std::filesystem::path& file) {
    PageReader pages(file);
    const auto size = static_cast<std::int64_t>(std::filesystem::file_size(file));
    std::vector<Link> links;
    bool lastBegan = false;
    while (const ogg_page* page = pages.next()) {
        parallel::throwIfStopped();
        const bool begins = ogg_page_bos(page) != 0;
        if (begins && !lastBegan) links.push_back({{pages.offset(), size}, {}});
        if (begins) {
            auto& heads = links.back().heads;
            heads.insert(heads.end(), page->body, page->body + std::min(page->body_len, headBytes));
        }
        lastBegan = begins;
    }
    for (std::size_t i = 0; i + 1 < links.size(); ++i) links[i].part.end = links[i + 1].part.begin;
    return links;
}

}  // namespace audio::ogg
