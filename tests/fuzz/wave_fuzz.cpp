// SPDX-License-Identifier: GPL-3.0-or-later
// Any bytes as a WAV file: the chunk reader and the decoder either refuse them with a sentence or
// give exactly as many frames as they promised.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <unistd.h>
#include <vector>

#include "audio/read/Decoder.h"
#include "audio/wave/Layout.h"
#include "platform/Error.h"

namespace {

std::filesystem::path scratch() {
    static const auto path = std::filesystem::temp_directory_path() /
                             ("wave-fuzz-" + std::to_string(::getpid()) + ".wav");
    return path;
}

void require(bool condition, const char* what) {
    if (condition) return;
    std::fprintf(stderr, "broken promise: %s\n", what);
    std::abort();
}

void readLayout() {
    const audio::wave::Layout layout = audio::wave::readLayout(scratch());
    require(layout.frames() >= 0, "a count of frames");
    for (const auto& chunk : layout.chunks)
        require(chunk.body >= 0 && chunk.size >= 0 && chunk.body + chunk.size <= layout.fileSize,
                "chunks inside the file");
}

void readSound() {
    audio::read::Decoder decoder(scratch());
    const auto promised = decoder.frames();
    std::vector<float> block(4096 * static_cast<std::size_t>(decoder.format().channels));
    std::int64_t frames = 0;
    while (const std::size_t got = decoder.read(block.data(), 4096)) {
        frames += static_cast<std::int64_t>(got);
        require(frames <= promised, "no more frames than promised");
    }
    require(frames == promised, "as many frames as promised");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::ofstream(scratch(), std::ios::binary)
        .write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
    for (const auto& part : {readLayout, readSound}) {
        try {
            part();
        } catch (const platform::Error& error) {
            require(error.what()[0] != '\0', "a sentence");
        }
    }
    std::filesystem::remove(scratch());
    return 0;
}
