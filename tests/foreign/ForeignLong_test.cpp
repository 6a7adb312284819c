// SPDX-License-Identifier: GPL-3.0-or-later
// Every encoder in every container, and every copy of one container into another: read, jumped in,
// turned into WAV, and saved ten times over. Each encoder prints a row of what came out. A quarter
// of an hour of work; GoogleTest's shards share it among processes.
#include <algorithm>
#include <cmath>
#include <iostream>
#include <map>

#include <gtest/gtest.h>

#include "tests/foreign/Foreign.h"
#include "tests/foreign/Judging.h"
#include "tests/foreign/KnownLimits.h"
#include "tests/foreign/Saving.h"
#include "tests/support/TempFolder.h"

namespace {

/// A file that was made, and what it is called in what is told of it.
struct Made {
    foreign::Maker maker;
    unsigned seed;
    std::filesystem::path file;
    std::string name() const { return maker.name() + " [" + std::to_string(seed) + "]"; }
};

/// All files of one encoder, counted by what came out.
class Row {
  public:
    explicit Row(std::string encoder) : encoder_(std::move(encoder)) {}

    void judge(unsigned seed, double seconds, bool saves) {
        const support::TempFolder folder;
        const auto wav = folder / "sound.wav";
        foreign::Sound sound = foreign::soundOf(seed);
        if (seconds > 0) sound.seconds = seconds;
        foreign::writeWav(sound, wav);
        for (const foreign::Maker& maker : foreign::allMakers()) {
            if (maker.encoder != encoder_) continue;
            const support::TempFolder own;
            judge({maker, seed, foreign::make(maker, wav, own.path())}, saves);
        }
    }

    void print() {
        std::cout << "row " << encoder_ << ": " << counts_["made"] << " files, " << counts_["none"]
                  << " not made; read " << counts_["read"] << "; of " << counts_["saved"]
                  << " saved: WAV " << counts_["transform"] << ", kept " << counts_["kept"]
                  << ", encoded " << counts_["encoded"] << ", refused " << counts_["refused"]
                  << ", faulty " << counts_["faulty"] << "; rate " << drift_ << " %, outside "
                  << outside_ << " dB" << std::endl;
    }
    int files() { return counts_["made"]; }

  private:
    // What ffmpeg itself does not read counts as not made.
    void judge(const Made& made, bool saves) {
        const std::string fault =
            made.file.empty() ? "not made"
                              : foreign::faultOfReading(made.file, foreign::likenessOf(made.maker),
                                                        100, made.seed);
        if (!fault.empty() && (made.file.empty() || !foreign::ffmpegReads(made.file))) {
            ++counts_["none"];
            return;
        }
        ++counts_["made"];
        take(made, "read", fault);
        if (!saves || !foreign::opens(made.file)) return;
        ++counts_["saved"];
        take(made, "transform", foreign::faultOfTransform(made.file, made.file.parent_path()));
        save(made);
    }

    /// Counts what has no fault; a known limit is told with its reason, any other fault fails.
    void take(const Made& made, const std::string& step, const std::string& fault) {
        if (fault.empty()) {
            ++counts_[step];
            return;
        }
        const std::string reason = foreign::knownLimit(made.name(), step);
        std::cout << (reason.empty() ? "fault " : "limit ") << made.name() << ", " << step << ": "
                  << fault << (reason.empty() ? "" : " (" + reason + ")") << std::endl;
        EXPECT_NE(reason, "") << made.name() << ", " << step << ": " << fault;
    }

    void save(const Made& made) {
        const foreign::Saving saving =
            foreign::saveTenTimes(made.file, foreign::likenessOf(made.maker));
        ++counts_[saving.outcome()];
        take(made, "save", saving.fault);
        if (!saving.refusal.empty()) {
            std::cout << "refused " << made.name() << ": " << saving.refusal << std::endl;
            return;
        }
        if (std::abs(saving.drift) > std::abs(drift_)) drift_ = saving.drift;
        outside_ = std::min(outside_, saving.outside);
    }

    std::string encoder_;
    std::map<std::string, int> counts_;
    double drift_ = 0;           ///< the greatest, in percent
    double outside_ = INFINITY;  ///< the smallest, in dB
};

class ForeignLong : public testing::TestWithParam<std::string> {};

TEST_P(ForeignLong, IsReadAndSavedAsItShould) {
    Row row(GetParam());
    row.judge(1, 2.3, true);
    row.judge(2, 0, false);
    row.print();
    EXPECT_GT(row.files(), 0);
}

INSTANTIATE_TEST_SUITE_P(Encoders, ForeignLong, testing::ValuesIn(foreign::allEncoders()),
                         [](const testing::TestParamInfo<std::string>& instance) {
                             std::string name = instance.param;
                             std::replace(name.begin(), name.end(), '-', '_');
                             return name;
                         });

}  // namespace
