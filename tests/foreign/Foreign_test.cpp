// SPDX-License-Identifier: GPL-3.0-or-later
// Sound files of many makers are read as others read them, from any frame on.
#include "tests/foreign/Foreign.h"

#include <gtest/gtest.h>

#include "audio/read/Decoder.h"
#include "tests/foreign/Judging.h"
#include "tests/support/TempFolder.h"

namespace {

class Foreign : public testing::TestWithParam<foreign::Maker> {
  protected:
    support::TempFolder folder_;
};

TEST_P(Foreign, ReadsAsOthersDo) {
    int made = 0;
    for (const foreign::Sound& sound :
         {foreign::Sound{3, 44'100, 2, 2.1567}, foreign::Sound{4, 48'000, 1, 0.513}}) {
        const auto wav = folder_ / "sound.wav";
        foreign::writeWav(sound, wav);
        const auto file = foreign::make(GetParam(), wav, folder_.path());
        if (file.empty()) continue;
        ++made;
        EXPECT_EQ(foreign::faultOfReading(file, foreign::likenessOf(GetParam()), 1'000, sound.seed),
                  "")
            << GetParam().name() << " of " << sound.seconds << " s";
    }
    EXPECT_GT(made, 0) << "the programs make no such file";
}

using foreign::Maker;

// The movie's time scale rounds the edit list to milliseconds: the samples' durations are exact.
TEST(ForeignEnds, Mp4HoldsWhatWasEncoded) {
    const support::TempFolder folder;
    const auto wav = folder / "sound.wav";
    for (const Maker& maker : {Maker{"aac", {"m4a"}}, Maker{"aac", {"mov"}}, Maker{"alac", {"m4a"}},
                               Maker{"mp3", {"mp4"}}}) {
        for (const int frames : {44'151, 70'253}) {
            foreign::writeWav({5, 44'100, 2, frames / 44'100.0}, wav);
            audio::read::Decoder encoded(wav);
            audio::read::Decoder decoder(foreign::make(maker, wav, folder.path()));
            EXPECT_EQ(decoder.frames(), encoded.frames()) << maker.name();
        }
    }
}

// All sound of a short Ogg file lies on one page: its end is cut, never its start.
TEST(ForeignEnds, ShortOggHoldsWhatWasEncoded) {
    const support::TempFolder folder;
    const auto wav = folder / "sound.wav";
    for (const Maker& maker : {Maker{"oggenc", {"ogg"}}, Maker{"flac", {"ogg"}}}) {
        for (const double seconds : {0.02, 0.1, 0.5, 1.5, 3.0}) {
            foreign::writeWav({6, 44'100, 1, seconds}, wav);
            audio::read::Decoder encoded(wav);
            audio::read::Decoder decoder(foreign::make(maker, wav, folder.path()));
            EXPECT_EQ(decoder.frames(), encoded.frames()) << maker.name() << " of " << seconds;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(
    Makers, Foreign,
    testing::Values(Maker{"vorbis", {"webm", "ogg"}}, Maker{"vorbis", {"ogg", "mka"}},
                    Maker{"oggenc", {"ogg"}}, Maker{"oggenc-low", {"ogg", "webm"}},
                    Maker{"opus", {"opus"}}, Maker{"opus", {"webm"}}, Maker{"opus", {"caf"}},
                    Maker{"opus", {"mka", "opus"}}, Maker{"flac", {"flac"}}, Maker{"flac", {"ogg"}},
                    Maker{"flac", {"mka", "flac"}}, Maker{"flac-small", {"ogg", "mka"}},
                    Maker{"alac", {"m4a"}}, Maker{"alac", {"caf"}}, Maker{"aac", {"m4a"}},
                    Maker{"aac", {"mka", "m4a"}}, Maker{"aac", {"aac"}}, Maker{"aac", {"mov"}},
                    Maker{"aac", {"ts"}}, Maker{"mp3", {"mp3"}}, Maker{"mp3", {"mka"}},
                    Maker{"mp3", {"mp4"}}, Maker{"mp3", {"avi"}}, Maker{"mp2", {"mka", "ts"}},
                    Maker{"ac3", {"ac3"}}, Maker{"wmav2", {"wma"}}, Maker{"wmav1", {"wma"}},
                    Maker{"wmav2", {"mka"}}, Maker{"tta", {"tta"}}, Maker{"wavpack", {"wv"}},
                    Maker{"pcm16", {"w64"}}, Maker{"pcm16be", {"au"}}, Maker{"pcm16be", {"aiff"}},
                    Maker{"pcm16be", {"caf"}}, Maker{"pcmu8", {"wav"}}, Maker{"alaw", {"wav"}},
                    Maker{"adpcm-ms", {"wav"}}),
    [](const testing::TestParamInfo<Maker>& param) {
        std::string name = param.param.name();
        for (char& letter : name)
            if (!std::isalnum(static_cast<unsigned char>(letter))) letter = '_';
        return name;
    });

}  // namespace
