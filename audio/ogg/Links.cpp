// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/ogg/Links.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <fstream>
#include <numeric>

#include "audio/FileError.h"

namespace audio::ogg {
namespace {

constexpr std::int64_t pageHeader = 27;
constexpr unsigned char beginsStream = 0x02;

/// Where the next page begins, searching byte by byte from `at`: sync may have been lost.
std::int64_t findPage(std::ifstream& stream, std::int64_t at, std::int64_t fileSize) {
    std::vector<char> block(1 << 16);
    while (at + pageHeader <= fileSize) {
        stream.clear();
        stream.seekg(at);
        stream.read(block.data(), static_cast<std::streamsize>(block.size()));
        const auto end = block.begin() + stream.gcount();
        constexpr std::array<char, 4> capture = {'O', 'g', 'g', 'S'};
        const auto found = std::search(block.begin(), end, capture.begin(), capture.end());
        if (found != end) return at + (found - block.begin());
        if (stream.gcount() < 4) break;
        at += stream.gcount() - 3;
    }
    return fileSize;
}

}  // namespace

std::vector<FilePart> findLinks(const std::filesystem::path& file) {
    std::ifstream stream(file, std::ios::binary);
    if (!stream) throw fileError(file, "cannot be opened");
    stream.rdbuf()->pubsetbuf(nullptr, 0);  // only headers are read, far from one another
    stream.close();
    stream.open(file, std::ios::binary);
    const auto size = static_cast<std::int64_t>(std::filesystem::file_size(file));

    std::vector<FilePart> links;
    bool lastBegan = false;
    for (std::int64_t at = findPage(stream, 0, size); at < size;) {
        std::array<unsigned char, pageHeader + 255> page{};
        stream.clear();
        stream.seekg(at);
        stream.read(reinterpret_cast<char*>(page.data()), page.size());
        if (stream.gcount() < pageHeader) break;
        if (std::memcmp(page.data(), "OggS", 4) != 0) {
            at = findPage(stream, at + 1, size);
            continue;
        }
        const bool begins = (page[5] & beginsStream) != 0;
        if (begins && !lastBegan) links.push_back({at, size});
        lastBegan = begins;
        const auto* lacing = page.data() + pageHeader;
        at += pageHeader + page[26] + std::accumulate(lacing, lacing + page[26], std::int64_t{0});
    }
    for (std::size_t i = 0; i + 1 < links.size(); ++i) links[i].end = links[i + 1].begin;
    return links;
}

}  // namespace audio::ogg
