// SPDX-License-Identifier: GPL-3.0-or-later
// Headers that state what no sound has are met with a sentence, not with memory.
#include <string>

#include <gtest/gtest.h>

#include "audio/read/Decoder.h"
#include "platform/Error.h"
#include "tests/audio/wave/RiffBuilder.h"
#include "tests/support/TempFolder.h"

namespace {

std::string refusalOf(int channels, int rate) {
    const support::TempFolder folder;
    const auto file = folder / "stated.wav";
    riff::Builder().fmt(16, channels, rate).chunk("data", riff::pattern(65'536)).save(file);
    try {
        audio::read::Decoder decoder(file);
        std::vector<float> frames(8U * unsigned(channels));
        decoder.read(frames.data(), 8);
    } catch (const platform::Error& error) {
        return error.what();
    }
    return {};
}

}  // namespace

TEST(Limits, MoreChannelsThanAnybodyRecordsAreRefused) {
    EXPECT_EQ(refusalOf(64, 44'100), "");
    EXPECT_NE(refusalOf(65, 44'100).find("states 65 channels"), std::string::npos);
    EXPECT_NE(refusalOf(32'767, 44'100).find("stated.wav"), std::string::npos);
}

TEST(Limits, RatesThatCannotBeAreRefused) {
    EXPECT_EQ(refusalOf(2, 8'000), "");
    EXPECT_EQ(refusalOf(2, 768'000), "");
    EXPECT_NE(refusalOf(2, 1).find("sampling rate of 1 Hz"), std::string::npos);
    EXPECT_NE(refusalOf(2, 2'000'000'000).find("sampling rate"), std::string::npos);
}
