// SPDX-License-Identifier: GPL-3.0-or-later
// Every encoder in every container, and every copy of one container into another, with several
// sounds each. Prints a table of what is wrong. Some minutes.
#include <iostream>
#include <map>

#include <gtest/gtest.h>

#include "tests/foreign/Foreign.h"
#include "tests/foreign/Judging.h"
#include "tests/support/TempFolder.h"

namespace {

TEST(ForeignLong, EveryMakerIsReadAsOthersDo) {
    std::map<std::string, std::string> faults;
    int files = 0;
    int refused = 0;
    for (unsigned seed = 1; seed <= 3; ++seed) {
        const foreign::Sound sound = foreign::soundOf(seed);
        for (const foreign::Maker& maker : foreign::allMakers()) {
            const support::TempFolder folder;
            const auto wav = folder / "sound.wav";
            foreign::writeWav(sound, wav);
            const auto file = foreign::make(maker, wav, folder.path());
            if (file.empty()) {
                ++refused;
                continue;
            }
            ++files;
            const std::string fault =
                foreign::faultOfReading(file, foreign::likenessOf(maker), 100, seed);
            if (!fault.empty()) faults[maker.name()] += " [" + std::to_string(seed) + "] " + fault;
        }
    }
    std::cout << files << " files, " << refused << " that the programs do not make, "
              << faults.size() << " makers with faults\n";
    for (const auto& [maker, fault] : faults) std::cout << maker << ":" << fault << "\n";
    EXPECT_TRUE(faults.empty());
    EXPECT_GT(files, 300);
}

}  // namespace
