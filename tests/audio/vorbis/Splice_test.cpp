// SPDX-License-Identifier: GPL-3.0-or-later
// Random edits of Ogg Vorbis files of many makers: ffmpeg's decoder and oggdec have to hear the
// untouched sound without any difference.
#include <algorithm>
#include <cstdlib>
#include <optional>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "audio/vorbis/SetupMatch.h"
#include "tests/audio/vorbis/Edits.h"
#include "tests/audio/vorbis/VorbisFiles.h"
#include "tests/support/TempFolder.h"

namespace {

using namespace vorbis_files;
using Qt::Literals::StringLiterals::operator""_s;

struct Maker {
    const char* name;
    int rate;
    int channels;
    double seconds;
    bool byOggenc;
    QStringList options;
    bool matches = true;     ///< libvorbis makes such a set-up header
    std::int64_t moved = 0;  ///< granule positions
};

void PrintTo(const Maker& maker, std::ostream* out) {
    *out << maker.name;
}

const std::vector<Maker>& makers() {
    static const std::vector<Maker> all = {
        {"q_1", 44'100, 2, 2.5, true, {u"-q"_s, u"-1"_s}},
        {"q0", 44'100, 2, 2.5, true, {u"-q"_s, u"0"_s}},
        {"q2point7", 44'100, 2, 2.5, true, {u"-q"_s, u"2.7"_s}},
        {"q5", 44'100, 2, 2.5, true, {u"-q"_s, u"5"_s}},
        {"q8mono", 44'100, 1, 2.5, true, {u"-q"_s, u"8"_s}},
        {"q10", 44'100, 2, 2.5, true, {u"-q"_s, u"10"_s}},
        {"surround", 48'000, 6, 1.5, true, {u"-q"_s, u"4"_s}},
        {"rate8000", 8'000, 1, 6, true, {u"-q"_s, u"3"_s}},
        {"rate11025", 11'025, 2, 5, true, {u"-q"_s, u"3"_s}},
        {"rate22050", 22'050, 2, 4, true, {u"-q"_s, u"6"_s}},
        {"rate32000", 32'000, 2, 3, true, {u"-q"_s, u"1"_s}},
        {"rate96000", 96'000, 2, 1.5, true, {u"-q"_s, u"6"_s}},
        {"average", 44'100, 2, 2.5, true, {u"-b"_s, u"128"_s}},
        {"managed",
         44'100,
         2,
         2.5,
         true,
         {u"--managed"_s, u"-b"_s, u"128"_s, u"-m"_s, u"96"_s, u"-M"_s, u"160"_s}},
        {"noiseTune",
         44'100,
         2,
         2.5,
         true,
         {u"-q"_s, u"4"_s, u"--advanced-encode-option"_s, u"impulse_noisetune=-10"_s}},
        {"lowpass",
         44'100,
         2,
         2.5,
         true,
         {u"-q"_s, u"4"_s, u"--advanced-encode-option"_s, u"lowpass_frequency=12"_s},
         false},
        {"ffmpegLibvorbis", 44'100, 2, 2.5, false, {u"-c:a"_s, u"libvorbis"_s, u"-q:a"_s, u"4"_s}},
        {"ffmpegRate", 48'000, 2, 2.5, false, {u"-c:a"_s, u"libvorbis"_s, u"-b:a"_s, u"160k"_s}},
        {"ffmpegOwn",
         44'100,
         2,
         2.5,
         false,
         {u"-c:a"_s, u"vorbis"_s, u"-strict"_s, u"-2"_s, u"-b:a"_s, u"160k"_s},
         false},
        {"tiny", 44'100, 2, 0.06, true, {u"-q"_s, u"5"_s}},
        {"startDropped", 44'100, 2, 2.5, true, {u"-q"_s, u"5"_s}, true, -97},
        {"countBeginsLater", 44'100, 2, 2.5, true, {u"-q"_s, u"5"_s}, true, 1'234'567},
    };
    return all;
}

class SpliceTest : public testing::TestWithParam<Maker> {
  protected:
    static Source make(const Maker& maker, const support::TempFolder& folder) {
        const auto file = folder.path() / "source.ogg";
        const auto frames = static_cast<std::size_t>(maker.seconds * maker.rate);
        const support::Sound sound = music(frames, maker.channels, maker.rate);
        EXPECT_TRUE(maker.byOggenc ? oggenc(sound, file, maker.options)
                                   : ffmpeg(sound, file, maker.options));
        if (maker.moved != 0) moveGranules(file, maker.moved);
        return Source(file);
    }
};

// So many for each maker; more by hand.
int editCount() {
    const char* asked = std::getenv("TRACKSMITH_VORBIS_EDITS");
    return asked ? std::atoi(asked) : 4;
}

// Each maker meets other edits.
unsigned seedOf(const Maker& maker) {
    unsigned seed = 17;
    for (const char* letter = maker.name; *letter != 0; ++letter)
        seed = seed * 31 + static_cast<unsigned char>(*letter);
    return seed;
}

TEST_P(SpliceTest, UntouchedSoundStaysWhatItIs) {
    const support::TempFolder folder;
    const Source source = make(GetParam(), folder);
    const bool matches = audio::vorbis::matchingSetup(source.index.headers()).has_value();
    EXPECT_EQ(matches, GetParam().matches);
    int done = 0;
    int refused = 0;
    for (int number = 0; number < editCount(); ++number) {
        std::mt19937 random(seedOf(GetParam()) + static_cast<unsigned>(number));
        const Edit edit = randomEdit(source, random);
        SCOPED_TRACE(edit.name + ", number " + std::to_string(number));
        try {
            judge(edit, source, apply(edit, source, folder.path() / "edited.ogg"));
            ++done;
        } catch (const audio::vorbis::CannotSplice& error) {
            ++refused;
            RecordProperty("refused" + std::to_string(refused), edit.name + ": " + error.what());
            const bool small = source.index.packets() < 40 || edit.sound.frames() < 8'192;
            EXPECT_TRUE(small || !matches) << error.what();
            EXPECT_TRUE(small || edit.needsEncoder || edit.name.find("silence") == 0)
                << error.what();
        }
    }
    RecordProperty("done", done);
    EXPECT_GT(done, 0);
}

INSTANTIATE_TEST_SUITE_P(Makers, SpliceTest, testing::ValuesIn(makers()),
                         [](const auto& maker) { return std::string(maker.param.name); });

/// A spliced file in which one thing was changed afterwards.
class SabotageTest : public testing::Test {
  protected:
    SabotageTest() {
        const auto file = folder_.path() / "source.ogg";
        EXPECT_TRUE(oggenc(music(110'250, 2, 44'100), file, {u"-q"_s, u"5"_s}));
        source_.emplace(file);
        std::mt19937 random(1);
        do {
            edit_ = randomEdit(*source_, random);
        } while (edit_.name != "gain inside");
        result_ = apply(edit_, *source_, folder_.path() / "edited.ogg");
        packets_ = packetsOf(result_.file);
    }
    void check() {
        writePackets(packets_, result_.file);
        checkSplice(source_->file, source_->index, result_.file, result_.outcome.layout,
                    [this](std::int64_t frame, std::size_t count, float* interleaved) {
                        std::copy_n(edit_.sound.samples.begin() + frame * 2, count * 2,
                                    interleaved);
                    });
    }
    /// The first packet of this origin with sound on both sides.
    std::size_t packetOf(audio::vorbis::Origin origin) const {
        const auto& layout = result_.outcome.layout;
        for (std::int64_t block = 2; block + 2 < layout.size(); ++block)
            if (layout.origin(block) == origin && layout.isLong(block))
                return static_cast<std::size_t>(block) + 3;
        ADD_FAILURE() << "no such packet";
        return 3;
    }

    support::TempFolder folder_;
    std::optional<Source> source_;
    Edit edit_;
    Result result_;
    std::vector<Packet> packets_;
};

TEST_F(SabotageTest, WhatWasNotTouchedPasses) {
    EXPECT_NO_THROW(check());
}

TEST_F(SabotageTest, AWrongWindowIsFound) {
    packets_[packetOf(audio::vorbis::Origin::Coded)].bytes[0] ^= 1 << 2;  // "a long one before"
    EXPECT_THROW(check(), audio::vorbis::CannotSplice);
}

TEST_F(SabotageTest, AChangedKeptPacketIsFound) {
    packets_[packetOf(audio::vorbis::Origin::Kept)].bytes.back() ^= 1 << 4;
    EXPECT_THROW(check(), audio::vorbis::CannotSplice);
}

TEST_F(SabotageTest, AGranulePositionOffByOneIsFound) {
    packets_.back().granule -= 1;
    EXPECT_THROW(check(), audio::vorbis::CannotSplice);
}

TEST_F(SabotageTest, AMissingPacketIsFound) {
    packets_.erase(packets_.begin() +
                   static_cast<std::ptrdiff_t>(packetOf(audio::vorbis::Origin::Coded)));
    EXPECT_THROW(check(), audio::vorbis::CannotSplice);
}

TEST_F(SabotageTest, OtherSoundIsFound) {
    const std::size_t coded = packetOf(audio::vorbis::Origin::Coded);
    for (std::int64_t block = 0; block < result_.outcome.layout.size(); ++block)
        if (result_.outcome.layout.origin(block) == audio::vorbis::Origin::Coded &&
            result_.outcome.layout.isLong(block))
            packets_[static_cast<std::size_t>(block) + 3].bytes =
                packets_[coded + static_cast<std::size_t>(block) % 5].bytes;
    EXPECT_THROW(check(), audio::vorbis::CannotSplice);
}

}  // namespace
