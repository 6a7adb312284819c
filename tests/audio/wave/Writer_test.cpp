// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/wave/Writer.h"

#include <algorithm>

#include <gtest/gtest.h>

#include "platform/Error.h"
#include "tests/audio/wave/RiffBuilder.h"
#include "tests/support/FileSizeLimit.h"
#include "tests/support/Sound.h"
#include "tests/support/TempFolder.h"

namespace {

using namespace audio::wave;
using riff::Builder;

class WaveWriter : public testing::Test {
  protected:
    static Plan planFor(int bits = 16, int channels = 2) {
        Plan plan;
        plan.format.tag = formatTagPcm;
        plan.format.bitsPerSample = bits;
        plan.format.channels = channels;
        plan.format.sampleRate = 44'100;
        plan.format.blockAlign = channels * bits / 8;
        return plan;
    }

    void write(const Plan& plan, const riff::Bytes& sound) {
        Writer writer(target(), plan);
        writer.write(sound.data(), sound.size() / 2);
        writer.write(sound.data() + sound.size() / 2, sound.size() - sound.size() / 2);
        writer.finish();
        EXPECT_EQ(writer.dataBytes(), std::int64_t(sound.size()));
    }

    std::filesystem::path target() const { return folder_ / "new.wav"; }
    std::filesystem::path model() const { return folder_ / "model.wav"; }
    support::TempFolder folder_;
};

/// What has to come through: every chunk but those of the sound itself, with its bytes.
std::vector<std::pair<std::string, riff::Bytes>> othersOf(const std::filesystem::path& file) {
    const Layout layout = readLayout(file);
    const riff::Bytes bytes = support::readBytes(file);
    std::vector<std::pair<std::string, riff::Bytes>> others;
    for (const Chunk& chunk : layout.chunks)
        if (chunk.id != "fmt " && chunk.id != "data" && chunk.id != "fact" && chunk.id != "ds64")
            others.emplace_back(chunk.id, riff::part(bytes, chunk.body, chunk.size));
    return others;
}

riff::Bytes soundOf(const std::filesystem::path& file) {
    const Layout layout = readLayout(file);
    return riff::part(support::readBytes(file), layout.data().body, layout.data().size);
}

TEST_F(WaveWriter, PlainFileIsTheSmallestPossible) {
    Plan plan = planFor();
    plan.dataBytes = 400;
    write(plan, riff::pattern(400));
    EXPECT_EQ(support::readBytes(target()),
              Builder().fmt().chunk("data", riff::pattern(400)).finish());
    EXPECT_EQ(support::decodeWithFfmpeg(target()).frames(), 100U);
}

TEST_F(WaveWriter, OddSoundIsPadded) {
    Plan plan = planFor(8, 1);
    plan.dataBytes = 401;
    write(plan, riff::pattern(401));
    EXPECT_EQ(std::filesystem::file_size(target()) % 2, 0U);
    EXPECT_EQ(readLayout(target()).frames(), 401);
    EXPECT_EQ(support::decodeWithFfmpeg(target()).frames(), 401U);
}

TEST_F(WaveWriter, CopiesChunksByteForByteOnTheirSideOfTheSound) {
    Builder()
        .chunk("JUNK", riff::Bytes(28))
        .chunk("bext", riff::pattern(603, 2))
        .fmt()
        .chunk("iXML", riff::pattern(77, 3))
        .chunk("data", riff::pattern(400))
        .chunk("LIST", riff::pattern(26, 4))
        .chunk("id3 ", riff::pattern(1'001, 5))
        .chunk("cue ", riff::pattern(28, 6))
        .chunk("zzzz", riff::pattern(13, 7), 5'000)
        .save(model());
    Plan plan = planFor();
    plan.dataBytes = 800;
    plan.model = model();
    write(plan, riff::pattern(800, 9));
    EXPECT_EQ(othersOf(target()), othersOf(model()));
    EXPECT_EQ(soundOf(target()), riff::pattern(800, 9));
    const Layout layout = readLayout(target());
    EXPECT_EQ(layout.dataIndex, readLayout(model()).dataIndex);
    EXPECT_EQ(support::decodeWithFfmpeg(target()).frames(), 200U);
}

TEST_F(WaveWriter, SameSoundAgainGivesTheSameFile) {
    for (const char* name : {"tone.wav", "tone-6ch.wav", "tone-f32.wav", "tone-rf64.wav"}) {
        const Layout layout = readLayout(support::fixture(name));
        Plan plan;
        plan.format = layout.format;
        plan.dataBytes = layout.data().size;
        plan.model = support::fixture(name);
        write(plan, soundOf(support::fixture(name)));
        EXPECT_EQ(support::readBytes(target()), support::readBytes(support::fixture(name))) << name;
    }
}

TEST_F(WaveWriter, WithoutCopyingOnlyTheSoundIsLeft) {
    Builder()
        .chunk("bext", riff::pattern(60))
        .fmt()
        .chunk("data", riff::pattern(40))
        .chunk("LIST", riff::pattern(8))
        .save(model());
    Plan plan = planFor();
    plan.dataBytes = 40;
    plan.model = model();
    plan.copyChunks = false;
    write(plan, riff::pattern(40));
    EXPECT_TRUE(othersOf(target()).empty());
}

TEST_F(WaveWriter, BytesBehindTheLastChunkAreCopied) {
    Builder().fmt().chunk("data", riff::pattern(40)).add(riff::pattern(128, 8)).save(model());
    Plan plan = planFor();
    plan.dataBytes = 80;
    plan.model = model();
    write(plan, riff::pattern(80));
    const riff::Bytes bytes = support::readBytes(target());
    EXPECT_EQ(riff::part(bytes, std::int64_t(bytes.size()) - 128, 128), riff::pattern(128, 8));
}

TEST_F(WaveWriter, BecomesRf64WhereRiffIsTooSmall) {
    // As with 4 GB, only sooner.
    for (const std::int64_t announced : {100'000LL, -1LL}) {
        Plan plan = planFor();
        plan.riffLimit = 50'000;
        plan.dataBytes = announced;
        write(plan, riff::pattern(100'000));
        const Layout layout = readLayout(target());
        EXPECT_TRUE(layout.rf64) << announced;
        EXPECT_EQ(layout.frames(), 25'000);
        EXPECT_EQ(soundOf(target()), riff::pattern(100'000));
        EXPECT_EQ(support::decodeWithFfmpeg(target()).frames(), 25'000U);
    }
}

TEST_F(WaveWriter, CarriesStretchesOfTheModelsSoundOver) {
    const riff::Bytes sound = riff::pattern(std::size_t{40} << 20);
    Builder().chunk("odd ", riff::pattern(7)).fmt().chunk("data", sound).save(model());
    Plan plan = planFor();
    plan.model = model();
    plan.dataBytes = 33'000'007 + 4;
    Writer writer(target(), plan);
    std::vector<std::int64_t> stretches;
    writer.copySound(5'000'001, 33'000'007,
                     [&](std::int64_t bytes) { stretches.push_back(bytes); });
    writer.write(sound.data(), 4);
    writer.copySound(9, 0, [](std::int64_t) { FAIL(); });
    writer.finish();

    riff::Bytes expected = riff::part(sound, 5'000'001, 33'000'007);
    expected.insert(expected.end(), sound.begin(), sound.begin() + 4);
    EXPECT_TRUE(soundOf(target()) == expected);
    EXPECT_EQ(othersOf(target()), othersOf(model()));
    EXPECT_GE(stretches.size(), 3U);
    std::int64_t sum = 0;
    for (const std::int64_t stretch : stretches) {
        EXPECT_LE(stretch, std::int64_t{16} << 20);
        sum += stretch;
    }
    EXPECT_EQ(sum, 33'000'007);
}

TEST_F(WaveWriter, StopsWhereTheProgressThrows) {
    Builder().fmt().chunk("data", riff::Bytes(std::size_t{40} << 20)).save(model());
    Plan plan = planFor();
    plan.model = model();
    plan.dataBytes = std::int64_t{40} << 20;
    Writer writer(target(), plan);
    int stretches = 0;
    EXPECT_THROW(writer.copySound(0, plan.dataBytes,
                                  [&](std::int64_t) {
                                      if (++stretches == 2) throw std::runtime_error("enough");
                                  }),
                 std::runtime_error);
    EXPECT_LE(std::filesystem::file_size(target()), std::uintmax_t{33} << 20);
}

TEST_F(WaveWriter, AModelThatEndsEarlyIsAnError) {
    Builder().fmt().chunk("data", riff::pattern(40'000)).save(model());
    Plan plan = planFor();
    plan.model = model();
    plan.dataBytes = 40'000;
    Writer writer(target(), plan);
    std::filesystem::resize_file(model(), 20'000);
    EXPECT_THROW(writer.copySound(0, 40'000, [](std::int64_t) {}), platform::Error);
}

TEST_F(WaveWriter, UnannouncedButSmallStaysRiff) {
    write(planFor(), riff::pattern(400));
    const Layout layout = readLayout(target());
    EXPECT_FALSE(layout.rf64);
    EXPECT_EQ(layout.chunks.front().id, "JUNK");
    EXPECT_EQ(support::decodeWithFfmpeg(target()).frames(), 100U);
}

TEST_F(WaveWriter, LargerThanAnnouncedIsAnError) {
    Plan plan = planFor();
    plan.riffLimit = 50'000;
    plan.dataBytes = 400;
    EXPECT_THROW(write(plan, riff::pattern(100'000)), platform::Error);
}

TEST_F(WaveWriter, FullDiskIsAnErrorThatNamesTheFile) {
    try {
        const support::FileSizeLimit full(100'000);
        Writer writer(target(), planFor());
        const riff::Bytes much = riff::pattern(1 << 20);
        writer.write(much.data(), much.size());
        writer.finish();
        FAIL() << "nothing was thrown";
    } catch (const platform::Error& error) {
        EXPECT_NE(std::string(error.what()).find(target().string()), std::string::npos);
        EXPECT_NE(std::string(error.what()).find("too large"), std::string::npos) << error.what();
    }
}

TEST_F(WaveWriter, FolderThatIsNotThereIsAnError) {
    EXPECT_THROW(Writer(folder_ / "no" / "such.wav", planFor()), platform::Error);
}

}  // namespace
