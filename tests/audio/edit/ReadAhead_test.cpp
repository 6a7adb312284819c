// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/edit/ReadAhead.h"

#include <numeric>

#include <gtest/gtest.h>

#include "audio/edit/Resampled.h"
#include "platform/Error.h"
#include "tests/audio/edit/NumberedMaterial.h"

using namespace audio::edit;

namespace {

/// Gives a few frames and then fails.
class FailingReader : public FrameReader {
  public:
    std::size_t read(float* out, std::size_t) override {
        if (++reads_ > 3) throw platform::Error("The disk is gone.");
        *out = static_cast<float>(reads_);
        return 1;
    }
    void seek(std::int64_t) override {}

  private:
    int reads_ = 0;
};

}  // namespace

TEST(ReadAhead, IsWhatIsInside) {
    const NumberedMaterial material(200000);
    ReadAhead ahead(material.open(), 1);
    std::vector<float> expected(200000);
    std::iota(expected.begin(), expected.end(), 1.0F);
    EXPECT_EQ(readAll(ahead, 12345), expected);
    EXPECT_EQ(ahead.read(expected.data(), 1), 0U);
}

TEST(ReadAhead, SeeksBothWays) {
    const NumberedMaterial material(200000);
    ReadAhead ahead(material.open(), 1);
    float frame = 0;
    for (const std::int64_t at : {150000, 3, 199999, 0}) {
        ahead.seek(at);
        ASSERT_EQ(ahead.read(&frame, 1), 1U);
        EXPECT_EQ(frame, static_cast<float>(at + 1));
    }
}

TEST(ReadAhead, AnErrorComesAfterTheSoundBeforeIt) {
    ReadAhead ahead(std::make_unique<FailingReader>(), 1);
    float frame = 0;
    for (const float expected : {1.0F, 2.0F, 3.0F}) {
        ASSERT_EQ(ahead.read(&frame, 1), 1U);
        EXPECT_EQ(frame, expected);
    }
    EXPECT_THROW(ahead.read(&frame, 1), platform::Error);
}

TEST(ReadAhead, CanBeAbandonedAtAnyTime) {
    const NumberedMaterial material(2000000);
    for (int i = 0; i < 50; ++i) {
        ReadAhead ahead(material.open(), 1);
        float frame = 0;
        if (i % 2 == 0) ahead.read(&frame, 1);
    }
}
