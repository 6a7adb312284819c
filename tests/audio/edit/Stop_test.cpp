// SPDX-License-Identifier: GPL-3.0-or-later
// Long work that was told to stop does not go on to the end of the sound: whatever reads, counts or
// measures a whole file asks on its way.
#include <atomic>
#include <future>
#include <memory>

#include <gtest/gtest.h>

#include "audio/edit/ParallelScan.h"
#include "audio/edit/Saver.h"
#include "audio/mpeg/read/FrameIndex.h"
#include "audio/parallel/Launch.h"
#include "audio/read/Decoder.h"
#include "tests/support/Fixtures.h"
#include "tests/support/TempFolder.h"

using namespace audio;
using parallel::Stopped;
using parallel::StopScope;

namespace {

/// Work that was told to stop before it began.
class ToldToStop {
  public:
    ToldToStop() { work_.cancel(); }

  private:
    edit::Work work_;
    StopScope scope_{work_.stop()};
};

std::int64_t framesOf(const std::filesystem::path& file) {
    return read::Decoder(file).frames();
}

TEST(Stop, CountingASoundEnds) {
    for (const char* name :
         {"tone.mp3", "tone.mp2", "tone.ogg", "tone.opus", "tone.flac", "tone.m4a", "tone.wma"}) {
        const std::filesystem::path file = support::fixture(name);
        EXPECT_GT(framesOf(file), 0) << name;
        const ToldToStop stop;
        EXPECT_THROW(framesOf(file), Stopped) << name;
    }
}

TEST(Stop, TheIndexOfAnMp3Ends) {
    const ToldToStop stop;
    EXPECT_THROW(mpeg::FrameIndex(support::fixture("tone.mp3")), Stopped);
}

TEST(Stop, AScanEndsOnEveryThread) {
    const auto source = std::make_shared<edit::SourceMaterial>(support::fixture("tone.wav"));
    const edit::EditList list(source->shape(), source);
    const std::vector<FrameRange> ranges{{0, 40'000}, {40'000, 88'200}};
    edit::Work work;
    std::atomic<int> blocks = 0;
    const auto stopAtOnce = [&](std::size_t, std::span<const float>) {
        ++blocks;
        work.cancel();
    };
    EXPECT_THROW(edit::scan(list, ranges, work, stopAtOnce), Stopped);
    EXPECT_LE(blocks, 2);  // one on each thread
}

TEST(Stop, ASaveOfEveryKindEndsAndLeavesTheTarget) {
    const support::TempFolder folder;
    for (const char* name : {"tone.wav", "tone.mp3", "tone.mp2", "tone.ogg", "tone.opus",
                             "tone.flac", "tone.m4a", "tone.wma", "tone.aiff"}) {
        const auto file = support::scratchCopy(name, folder.path());
        const auto before = support::readBytes(file);
        edit::SaveJob job;
        job.source = std::make_shared<edit::SourceMaterial>(file);
        job.list = edit::EditList(job.source->shape(), job.source);
        job.list.insertSilence(0, 44'100);
        job.output = job.source->format();
        edit::Work work;
        work.cancel();
        EXPECT_THROW(edit::save(job, file, work), Stopped) << name;
        EXPECT_TRUE(support::readBytes(file) == before) << name;
    }
}

// A trial that counts for itself is part of the work that began it, on whatever thread it runs.
TEST(Stop, ReachesWhatWasBegunFromThere) {
    edit::Work work;
    const StopScope scope(work.stop());
    edit::Work trial;
    trial.advance(1);
    auto beside = parallel::launch("beside", [&trial, &work] {
        trial.advance(1);
        work.cancel();
        trial.advance(1);
    });
    EXPECT_THROW(beside.get(), Stopped);
    EXPECT_THROW(trial.advance(1), Stopped);
}

TEST(Stop, IsNotHeardOnceTheWorkIsCommitted) {
    edit::Work work;
    work.commit();
    work.cancel();
    const StopScope scope(work.stop());
    EXPECT_NO_THROW(parallel::throwIfStopped());
}

}  // namespace
