// SPDX-License-Identifier: GPL-3.0-or-later
// Any bytes as an MPEG file: the index tells of nothing outside the file and the scanner finds the
// same frames; a splice either refuses with a sentence or gives a stream of the promised length.
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <unistd.h>
#include <vector>

#include "audio/mpeg/read/FrameScanner.h"
#include "audio/mpeg/splice/Splice.h"
#include "platform/Error.h"

namespace {

using namespace audio::mpeg;

std::filesystem::path scratch(const char* what) {
    return std::filesystem::temp_directory_path() /
           ("mpeg-fuzz-" + std::to_string(::getpid()) + what);
}

void require(bool condition, const char* what) {
    if (condition) return;
    std::fprintf(stderr, "broken promise: %s\n", what);
    std::abort();
}

class MemorySink : public StreamSink {
  public:
    void write(std::span<const std::uint8_t> bytes) override {
        bytes_.insert(bytes_.end(), bytes.begin(), bytes.end());
    }
    void rewrite(std::int64_t offset, std::span<const std::uint8_t> bytes) override {
        require(offset >= 0 && static_cast<std::size_t>(offset) + bytes.size() <= bytes_.size(),
                "rewriting what was written");
        std::copy(bytes.begin(), bytes.end(), bytes_.begin() + offset);
    }
    const std::vector<std::uint8_t>& bytes() const { return bytes_; }

  private:
    std::vector<std::uint8_t> bytes_;
};

void put(const std::filesystem::path& path, const std::uint8_t* data, std::size_t size) {
    std::ofstream(path, std::ios::binary)
        .write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
}

void checkIndex(const FrameIndex& index, std::int64_t fileSize) {
    require(index.frameCount() > 0, "at least one frame");
    require(index.trailing().end() == fileSize, "every byte accounted for");
    require(index.gaplessStart() + index.gaplessLength() <= index.rawLength(), "sound in frames");
    require(index.gaplessLength() >= 0, "a length");
    platform::file::WindowReader reader(scratch(".mp3"));
    FrameScanner scanner(reader);
    if (index.info()) require(scanner.next().has_value(), "the info frame again");
    std::int64_t end = index.leading().size;
    for (std::int64_t i = 0; i < index.frameCount(); ++i) {
        const auto again = scanner.next();
        require(again && again->offset == index.frame(i).offset, "the same frames again");
        require(index.frame(i).offset >= end && index.frame(i).end() <= index.audio().end(),
                "frames in order");
        end = index.frame(i).end();
    }
}

// Half of the sound replaced by silence, the rest kept; all but the first sample; one step quieter.
void checkSplices(const FrameIndex& index) {
    const std::int64_t length = index.gaplessLength();
    const auto quiet = [&index](float* out, std::size_t samples) {
        std::fill_n(out, samples * static_cast<std::size_t>(index.header().channels()), 0.0F);
    };
    const std::vector<std::vector<Segment>> plans = {
        {Segment::rendered(length / 2, quiet), Segment::source(length / 2, length - length / 2)},
        {Segment::source(std::min<std::int64_t>(1, length), std::max<std::int64_t>(0, length - 1))},
    };
    for (const auto& plan : plans) {
        MemorySink sink;
        try {
            splice(scratch(".mp3"), index, plan, sink, {});
        } catch (const platform::Error& error) {
            require(error.what()[0] != '\0', "a sentence");
            continue;
        }
        std::int64_t promised = 0;
        for (const Segment& segment : plan) promised += segment.length;
        put(scratch(".out"), sink.bytes().data(), sink.bytes().size());
        const FrameIndex out(scratch(".out"));
        require(out.header().layer == 2 || out.gaplessLength() == promised, "the promised length");
    }
    try {
        MemorySink sink;
        gain(scratch(".mp3"), index, -1, sink, {});
    } catch (const platform::Error& error) {
        require(error.what()[0] != '\0', "a sentence");
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    put(scratch(".mp3"), data, size);
    try {
        const FrameIndex index(scratch(".mp3"));
        checkIndex(index, static_cast<std::int64_t>(size));
        if (index.frameCount() < 4000) checkSplices(index);
    } catch (const platform::Error& error) {
        require(error.what()[0] != '\0', "a sentence");
    }
    return 0;
}
