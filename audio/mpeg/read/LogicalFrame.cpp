// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/mpeg/read/LogicalFrame.h"

#include <algorithm>

#include "platform/Error.h"

namespace audio::mpeg {

std::vector<LogicalFrame> takeApart(std::span<const std::uint8_t> stream) {
    const auto broken = [] { return platform::Error("The MP3 encoder gave a damaged stream."); };
    std::vector<LogicalFrame> frames;
    std::vector<std::uint8_t> reservoir;
    while (!stream.empty()) {
        const auto header = FrameHeader::parse(stream);
        if (!header || header->layer != 3 || header->freeFormat()) throw broken();
        const auto size = static_cast<std::size_t>(header->size());
        const auto overhead = static_cast<std::size_t>(header->overhead());
        const auto sideSize = static_cast<std::size_t>(header->sideInfoSize());
        if (size > stream.size()) throw broken();

        LogicalFrame frame;
        frame.header = *header;
        std::copy_n(stream.begin() + static_cast<long>(overhead - sideSize), sideSize,
                    frame.sideInfo.begin());
        frame.info = SideInfo::parse(*header, frame.sideInfo);

        const auto back = static_cast<std::size_t>(frame.info.mainDataBegin);
        if (back > reservoir.size()) throw broken();
        reservoir.erase(reservoir.begin(), reservoir.end() - static_cast<long>(back));
        reservoir.insert(reservoir.end(), stream.begin() + static_cast<long>(overhead),
                         stream.begin() + static_cast<long>(size));
        const auto length = static_cast<std::size_t>(frame.info.mainBytes());
        if (length > reservoir.size()) throw broken();
        frame.main.assign(reservoir.begin(), reservoir.begin() + static_cast<long>(length));
        frames.push_back(std::move(frame));
        stream = stream.subspan(size);
    }
    return frames;
}

}  // namespace audio::mpeg
