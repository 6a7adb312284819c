// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/mpeg/splice/Splice.h"

#include <algorithm>
#include <cmath>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/audio/mpeg/splice/SpliceTools.h"
#include "tests/support/TempFolder.h"

using namespace Qt::Literals::StringLiterals;
using namespace audio::mpeg;
using support::Judge;
using support::Sound;

namespace {

struct Variant {
    const char* name;
    int rate;
    int channels;
    QStringList lame;  // empty: Layer II
};

void PrintTo(const Variant& variant, std::ostream* out) {
    *out << variant.name;
}

std::vector<Variant> variants() {
    return {
        {"cbr128", 44100, 2, {u"-b128"_s}},
        {"cbr192", 44100, 2, {u"-b192"_s}},
        {"cbr320", 44100, 2, {u"-b320"_s}},
        {"v0", 44100, 2, {u"-V0"_s}},
        {"v2", 44100, 2, {u"-V2"_s}},
        {"v5old", 44100, 2, {u"-V5"_s, u"--vbr-old"_s}},
        {"abr160", 44100, 2, {u"--abr"_s, u"160"_s}},
        {"crc128", 44100, 2, {u"-b128"_s, u"-p"_s}},
        {"plain48", 48000, 2, {u"-b160"_s, u"-ms"_s}},
        {"mono64", 44100, 1, {u"-b64"_s}},
        {"untagged", 44100, 2, {u"-b128"_s, u"-t"_s}},
        {"untaggedV4", 44100, 2, {u"-V4"_s, u"-t"_s}},
        {"lsf64", 22050, 2, {u"-b64"_s}},
        {"lsfV5", 24000, 2, {u"-V5"_s}},
        {"mono11", 11025, 1, {u"-b24"_s}},
        {"layer2", 44100, 2, {}},
    };
}

class SpliceTest : public ::testing::TestWithParam<Variant> {
  protected:
    void SetUp() override {
        const Variant& variant = GetParam();
        spf_ = variant.lame.isEmpty() || variant.rate >= 32000 ? 1152 : 576;
        file_ = folder_ / (variant.lame.isEmpty() ? "source.mp2" : "source.mp3");
        const Sound sound = support::makeSound(variant.rate, variant.channels, spf_ * 420 + 77, 7);
        if (variant.lame.isEmpty()) {
            support::encodeMp2(file_, sound, 192000);
        } else {
            support::encodeMp3(file_, sound, variant.lame);
        }
        index_ = std::make_unique<FrameIndex>(file_);
        source_ = support::decode(file_, Judge::Ffmpeg);
        sourceAgain_ = support::decode(file_, Judge::Mpg123);
        ASSERT_EQ(source_.length(), index_->gaplessLength());
    }

    SpliceOutcome write(const std::vector<Segment>& plan, int threads = 2) {
        support::MemorySink sink;
        SpliceOptions options;
        options.threads = threads;
        out_ = folder_ / ("out" + file_.extension().string());
        const SpliceOutcome outcome = splice(file_, *index_, plan, sink, options);
        EXPECT_EQ(outcome.bytes, static_cast<std::int64_t>(sink.bytes().size()));
        support::writeBytes(out_, sink.bytes());
        return outcome;
    }

    // Whether the sound is wholly old outside what the encoded frames reach, in two decoders.
    void expectUntouched(const SpliceOutcome& outcome, const std::vector<Segment>& plan) {
        support::expectFieldsTrue(out_);
        for (const Judge judge : {Judge::Ffmpeg, Judge::Mpg123}) {
            SCOPED_TRACE(judge == Judge::Ffmpeg ? "ffmpeg" : "mpg123");
            const Sound& before = judge == Judge::Ffmpeg ? source_ : sourceAgain_;
            const Sound after = support::decode(out_, judge);
            std::int64_t length = 0;
            for (const Segment& segment : plan) length += segment.length;
            if (index_->header().layer == 2) length = (length + spf_ - 1) / spf_ * spf_;
            ASSERT_EQ(after.length(), length);
            ASSERT_EQ(FrameIndex(out_).gaplessLength(), length);
            compareKept(outcome, plan, before, after);
        }
    }

    void compareKept(const SpliceOutcome& outcome, const std::vector<Segment>& plan,
                     const Sound& before, const Sound& after) {
        const std::int64_t tail = index_->header().layer == 2 ? 480 : 1056;
        std::int64_t position = 0;
        for (const Segment& segment : plan) {
            std::int64_t from = position;
            const std::int64_t end = position + segment.length;
            for (const auto& touched : outcome.encoded) {
                const std::int64_t a = touched.first * spf_ - outcome.gaplessStart;
                const std::int64_t b =
                    (touched.first + touched.count) * spf_ + tail - outcome.gaplessStart;
                if (b <= from || a >= end) continue;
                if (!segment.sound) check(segment, position, from, a, before, after);
                from = std::max(from, b);
            }
            if (!segment.sound) check(segment, position, from, end, before, after);
            position = end;
        }
    }

    void check(const Segment& segment, std::int64_t position, std::int64_t from, std::int64_t end,
               const Sound& before, const Sound& after) {
        if (end <= from) return;
        const float difference = support::largestDifference(
            after, from, before, segment.sourceStart + from - position, end - from);
        EXPECT_LE(difference, 1e-6F) << "in [" << from << ", " << end << ")";
        checked_ += end - from;
    }

    // How far the error at the worst seam lies over that of a plain encode there, or of the region
    // on average where that is larger, in dB.
    double worstSeam(const SpliceOutcome& outcome, const Sound& wanted) {
        support::MemorySink sink;
        encode(settingsOf(file_, *index_), support::soundFrom(std::make_shared<Sound>(wanted)),
               wanted.length(), sink, {});
        const auto plainFile = folder_ / ("plain" + file_.extension().string());
        support::writeBytes(plainFile, sink.bytes());
        const Sound plain = support::decode(plainFile, Judge::Ffmpeg);
        const Sound after = support::decode(out_, Judge::Ffmpeg);
        const std::int64_t window = 3 * spf_;
        double worst = -100;
        for (const auto& region : outcome.encoded) {
            const std::int64_t left = region.first * spf_ - outcome.gaplessStart;
            const std::int64_t right = left + region.count * spf_ + 1056 - window;
            const std::int64_t from = std::max<std::int64_t>(0, left);
            const std::int64_t end = std::min(wanted.length(), right + window);
            const double average = support::meanSquare(plain, from, wanted, from, end - from);
            for (const std::int64_t at : {left, right}) {
                if (at < 0 || at + window > wanted.length()) continue;
                // Quieter than this nobody hears.
                const double floor = 1e-9;
                const double ours = support::meanSquare(after, at, wanted, at, window) + floor;
                const double theirs =
                    std::max(support::meanSquare(plain, at, wanted, at, window), average) + floor;
                worst = std::max(worst, 10 * std::log10(ours / theirs));
            }
        }
        return worst;
    }
    void expectSmoothSeams(const SpliceOutcome& outcome, const Sound& wanted) {
        EXPECT_LE(worstSeam(outcome, wanted), 3.0);
    }

    std::vector<Segment> replaced(const Sound& wanted, std::int64_t start, std::int64_t length) {
        const std::int64_t end = start + length;
        return {Segment::source(0, start), support::renderedFrom(wanted, start, length),
                Segment::source(end, source_.length() - end)};
    }

    support::TempFolder folder_;
    std::filesystem::path file_;
    std::filesystem::path out_;
    std::unique_ptr<FrameIndex> index_;
    Sound source_;
    Sound sourceAgain_;
    std::int64_t spf_ = 1152;
    std::int64_t checked_ = 0;
};

TEST_P(SpliceTest, NothingChangedIsTheSameFile) {
    const std::vector<Segment> plan = {Segment::source(0, source_.length())};
    const SpliceOutcome outcome = write(plan);
    EXPECT_EQ(outcome.keptFrames, index_->frameCount());
    EXPECT_TRUE(outcome.encoded.empty());
    const auto before = support::readBytes(file_);
    const auto after = support::readBytes(out_);
    const auto first = static_cast<long>(index_->frame(0).offset);
    EXPECT_TRUE(
        std::equal(before.begin() + first, before.end(), after.begin() + first, after.end()));
    expectUntouched(outcome, plan);
}

TEST_P(SpliceTest, FadeInTheMiddle) {
    Sound wanted = source_;
    const std::int64_t start = 120 * spf_ + 333;
    const std::int64_t length = 60 * spf_ + 55;
    support::fade(wanted, start, length / 2, 1.0F, 0.3F);
    support::fade(wanted, start + length / 2, length - length / 2, 0.3F, 1.0F);
    const auto plan = replaced(wanted, start, length);
    const SpliceOutcome outcome = write(plan);
    EXPECT_EQ(outcome.frames, index_->frameCount());
    ASSERT_EQ(outcome.encoded.size(), 1U);
    EXPECT_LE(outcome.encoded[0].count, 62 + 2 * 8 + 3);
    expectUntouched(outcome, plan);
    EXPECT_GT(checked_, 2 * 220 * spf_);
    expectSmoothSeams(outcome, wanted);
}

TEST_P(SpliceTest, FadesAtBothEnds) {
    Sound wanted = source_;
    const std::int64_t length = 60 * spf_;
    const std::int64_t tail = source_.length() - length;
    support::fade(wanted, 0, length, 0.0F, 1.0F);
    support::fade(wanted, tail, length, 1.0F, 0.0F);
    const std::vector<Segment> plan = {support::renderedFrom(wanted, 0, length),
                                       Segment::source(length, tail - length),
                                       support::renderedFrom(wanted, tail, length)};
    const SpliceOutcome outcome = write(plan);
    EXPECT_EQ(outcome.frames, index_->frameCount());
    expectUntouched(outcome, plan);
    EXPECT_GT(checked_, 2 * 150 * spf_);
    expectSmoothSeams(outcome, wanted);
}

TEST_P(SpliceTest, TrimmedAtBothEnds) {
    const std::int64_t cut = 20 * spf_ + 417;
    const std::int64_t length = source_.length() - cut - 31 * spf_ - 100;
    const std::vector<Segment> plan = {Segment::source(cut, length)};
    const SpliceOutcome outcome = write(plan);
    if (index_->header().layer == 3) {
        EXPECT_TRUE(outcome.encoded.empty());
    }
    expectUntouched(outcome, plan);
    if (index_->header().layer == 3) {
        EXPECT_EQ(checked_, 2 * length);
    }
}

TEST_P(SpliceTest, SilenceInFrontAndBehind) {
    const Sound silence{source_.rate, source_.channels,
                        std::vector<float>(static_cast<std::size_t>(source_.rate) *
                                           static_cast<std::size_t>(source_.channels))};
    for (const bool front : {true, false}) {
        const Segment old = Segment::source(0, source_.length());
        const Segment quiet = support::renderedFrom(silence, 0, source_.rate);
        const std::vector<Segment> plan = front ? std::vector{quiet, old} : std::vector{old, quiet};
        checked_ = 0;
        const SpliceOutcome outcome = write(plan);
        expectUntouched(outcome, plan);
        if (index_->header().layer == 3) {
            EXPECT_GT(checked_, 2 * 300 * spf_);
        }
        const Sound after = support::decode(out_, Judge::Ffmpeg);
        const Sound wanted =
            front ? support::joined(silence, source_) : support::joined(source_, silence);
        EXPECT_LT(
            support::meanSquare(after, front ? 0 : source_.length() + 3 * spf_, wanted,
                                front ? 0 : source_.length() + 3 * spf_, source_.rate - 4 * spf_),
            1e-7);
    }
}

TEST_P(SpliceTest, CutInTheMiddle) {
    for (const std::int64_t cut : {std::int64_t{40} * spf_, std::int64_t{40} * spf_ + 501}) {
        const std::int64_t at = 150 * spf_ + 99;
        const std::vector<Segment> plan = {Segment::source(0, at),
                                           Segment::source(at + cut, source_.length() - at - cut)};
        const SpliceOutcome outcome = write(plan);
        expectUntouched(outcome, plan);
        const Sound wanted =
            support::joined(support::part(source_, 0, at),
                            support::part(source_, at + cut, source_.length() - at - cut));
        expectSmoothSeams(outcome, wanted);
        if (cut % spf_ == 0) {
            EXPECT_LE(outcome.frames - outcome.keptFrames, 24);
        }
    }
}

TEST_P(SpliceTest, RandomEdits) {
    std::mt19937 random(static_cast<unsigned>(std::hash<std::string>{}(GetParam().name)));
    const auto pick = [&random](std::int64_t low, std::int64_t high) {
        return std::uniform_int_distribution<std::int64_t>(low, high)(random);
    };
    // More of them for a long run: TRACKSMITH_SPLICE_EDITS=125 makes 2,000 over all variants.
    const int asked = qEnvironmentVariableIntValue("TRACKSMITH_SPLICE_EDITS");
    const int edits = asked > 0 ? asked : 4;
    for (int edit = 0; edit < edits; ++edit) {
        SCOPED_TRACE("edit " + std::to_string(edit));
        // One to four segments: pieces of the source anywhere, some of them made quieter.
        std::vector<Segment> plan;
        const int pieces = static_cast<int>(pick(1, 4));
        std::int64_t start = pick(0, 1) * pick(0, 40 * spf_);
        for (int i = 0; i < pieces; ++i) {
            const std::int64_t left = source_.length() - start;
            const std::int64_t length = i + 1 == pieces && pick(0, 1) ? left : pick(1, left);
            if (pick(0, 2) == 0) {
                Sound changed = source_;
                support::fade(changed, start, length, 0.5F, 0.9F);
                plan.push_back(support::renderedFrom(changed, start, length));
            } else {
                plan.push_back(Segment::source(start, length));
            }
            start =
                std::min(start + length + pick(0, 1) * pick(0, 20) * spf_, source_.length() - 1);
        }
        const SpliceOutcome outcome = write(plan);
        expectUntouched(outcome, plan);
    }
}

INSTANTIATE_TEST_SUITE_P(Variants, SpliceTest, ::testing::ValuesIn(variants()),
                         [](const auto& test) { return std::string(test.param.name); });

}  // namespace
