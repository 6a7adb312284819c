// SPDX-License-Identifier: GPL-3.0-or-later
#include "wizard/Settings.h"

#include <gtest/gtest.h>

#include "wizard/EffectTable.h"
#include "wizard/Genres.h"
#include "wizard/Naming.h"
#include "wizard/OutputFormat.h"
#include "wizard/Timeline.h"

using namespace Qt::Literals::StringLiterals;
using wizard::Settings;

namespace {

const wizard::EffectRow& row(int checkBox) {
    return wizard::effectRows()[static_cast<std::size_t>(checkBox - 1)];
}

wizard::Options format(const QString& name, const QString& hertz, const QString& bits) {
    wizard::Options options;
    options.format = name;
    options.frequency = hertz;
    options.bitRate = bits;
    options.channels = u"Stereo"_s;
    return options;
}

TEST(EffectTable, HoldsOneRowForEachCheckBoxInOrder) {
    int checkBox = 0;
    for (const auto& effect : wizard::effectRows()) EXPECT_EQ(effect.checkBox, ++checkBox);
    EXPECT_EQ(checkBox, 24);
}

TEST(EffectTable, CrossFadeHasCode57AndNothingHas23) {
    ASSERT_NE(wizard::effectWithCode(57), nullptr);
    EXPECT_EQ(wizard::effectWithCode(57)->caption, u"Cross Fade"_s);
    EXPECT_EQ(wizard::effectWithCode(23), nullptr);
    EXPECT_EQ(wizard::effectWithCode(0), nullptr);
}

TEST(EffectTable, ShowsAnEntryOfItsOwnListFirst) {
    for (const auto& effect : wizard::effectRows()) {
        if (effect.numbers.empty()) continue;
        EXPECT_TRUE(effect.texts().contains(effect.text(effect.shown)))
            << effect.caption.toStdString();
    }
}

TEST(EffectTable, OffersTheWordsOfTheLengths) {
    EXPECT_EQ(row(17).texts().first(), u"end 5 secs of file"_s);
    EXPECT_EQ(row(17).texts().last(), u"end 50 secs of file"_s);
    EXPECT_EQ(row(18).text(row(18).shown), u"front 30 secs of file"_s);
    EXPECT_EQ(row(23).texts(),
              (QStringList{u"5 secs crossfade"_s, u"10 secs crossfade"_s, u"15 secs crossfade"_s,
                           u"20 secs crossfade"_s, u"30 secs crossfade"_s, u"40 secs crossfade"_s,
                           u"50 secs crossfade"_s}));
    EXPECT_EQ(row(22).texts().size(), 19);
    EXPECT_EQ(row(22).texts().last(), u"190"_s);
}

TEST(StoreValue, NormalizeSharesTheFlangersSetting) {
    Settings settings;
    storeValue(row(7), u"30"_s, settings);
    storeValue(row(8), u"80"_s, settings);
    EXPECT_EQ(settings.flan_val, 80.0);
    EXPECT_EQ(settings.norm_val, std::nullopt);
}

TEST(StoreValue, TakesTheNumberATextBeginsWith) {
    EXPECT_EQ(wizard::leadingNumber(u"60"_s), 60.0);
    EXPECT_EQ(wizard::leadingNumber(u"  -1.5e1 percent"_s), -15.0);
    EXPECT_EQ(wizard::leadingNumber(u".25x"_s), 0.25);
    EXPECT_EQ(wizard::leadingNumber(u"7 8"_s), 7.0);
    EXPECT_EQ(wizard::leadingNumber(u"loud"_s), 0.0);
    EXPECT_EQ(wizard::leadingNumber({}), 0.0);
}

TEST(StoreValue, KeepsALengthThatNoEntryNames) {
    Settings settings;
    storeValue(row(17), u"end 15 secs of file"_s, settings);
    EXPECT_EQ(settings.fadeOutMs, 15000);
    for (const QString& text : {u"end 15 secs of fil"_s, u"END 10 secs of file"_s, u"10"_s, u""_s,
                                u"front 5 secs of file"_s})
        storeValue(row(17), text, settings);
    EXPECT_EQ(settings.fadeOutMs, 15000);
    storeValue(row(23), u"25 secs crossfade"_s, settings);
    EXPECT_EQ(settings.crossfade_value, 0);
    storeValue(row(23), u"50 secs crossfade"_s, settings);
    EXPECT_EQ(settings.crossfade_value, 50000);
}

TEST(ForgetEffectValues, LeavesAmplifyPlusTimeShiftAndTheLengths) {
    Settings settings;
    for (const auto& effect : wizard::effectRows())
        if (!effect.numbers.empty()) storeValue(effect, effect.texts().first(), settings);
    settings.norm_val = 60;
    settings.workingon = 57;
    settings.forgetEffectValues();
    EXPECT_EQ(settings.amp_plus, 110.0);
    EXPECT_EQ(settings.time_shift, 10.0);
    EXPECT_EQ(settings.fadeOutMs, 5000);
    EXPECT_EQ(settings.fadeInMs, 5000);
    EXPECT_EQ(settings.crossfade_value, 5000);
    EXPECT_EQ(settings.workingon, 0);
    for (const auto& effect : wizard::effectRows()) {
        if (!effect.value || effect.checkBox == 2 || effect.checkBox == 22) continue;
        EXPECT_EQ(settings.*effect.value, std::nullopt) << effect.caption.toStdString();
    }
    EXPECT_EQ(settings.norm_val, std::nullopt);
}

TEST(OutputFormat, OffersTheListsInOrder) {
    EXPECT_EQ(wizard::formatTexts(), (QStringList{u"WAV"_s, u"MP3"_s}));
    EXPECT_EQ(wizard::frequencyTexts().at(1), u"11050"_s);
    EXPECT_EQ(wizard::bitRateTexts(u"WAV"_s), (QStringList{u"8-bit"_s, u"16-bit"_s}));
    EXPECT_EQ(wizard::bitRateTexts(u"MP3"_s).size(), 15);
    EXPECT_EQ(wizard::bitRateTexts(u"MP3"_s).last(), u"320-bit"_s);
    EXPECT_TRUE(wizard::bitRateTexts(u"OGG"_s).isEmpty());
    EXPECT_EQ(wizard::initialBitRate(u"MP3"_s), u"128-bit"_s);
}

TEST(OutputFormat, Shows11050ForTheRate11025) {
    Settings settings;
    readFormat(format(u"WAV"_s, u"11050"_s, u"8-bit"_s), settings);
    EXPECT_EQ(settings.Freq, 11025);
    EXPECT_EQ(settings.my_wav_bitrate, 8);
    EXPECT_EQ(settings.Chan, 2);
}

TEST(OutputFormat, ReadsEveryEntryOfItsLists) {
    for (const QString& text : wizard::bitRateTexts(u"MP3"_s)) {
        Settings settings;
        readFormat(format(u"MP3"_s, u"48000"_s, text), settings);
        EXPECT_EQ(QString::number(settings.my_wav_bitrate) + u"-bit"_s, text);
    }
    for (const QString& text : wizard::frequencyTexts()) {
        Settings settings;
        readFormat(format(u"WAV"_s, text, u"16-bit"_s), settings);
        EXPECT_EQ(settings.Freq, text == u"11050"_s ? 11025 : text.toInt());
    }
}

TEST(OutputFormat, KeepsWhatATextOutsideItsListLeaves) {
    Settings settings;
    readFormat(format(u"WAV"_s, u"22050"_s, u"8-bit"_s), settings);
    auto odd = format(u"WAV"_s, u"96000"_s, u"12-bit"_s);
    odd.channels = u"Mono"_s;
    readFormat(odd, settings);
    EXPECT_EQ(settings.Freq, 22050);
    EXPECT_EQ(settings.my_wav_bitrate, 8);
    EXPECT_EQ(settings.Chan, 1);
}

TEST(Naming, CutsThreeCharactersWhateverTheEnding) {
    EXPECT_EQ(wizard::outputStem(u"/music/Song.mp3"_s), u"Song."_s);
    EXPECT_EQ(wizard::outputStem(u"/music/Track.flac"_s), u"Track.f"_s);
    EXPECT_EQ(wizard::outputStem(u"/music/ab"_s), u""_s);
    EXPECT_EQ(wizard::outputStem(u"Ünï 'q\".wav"_s), u"Ünï 'q\"."_s);
    EXPECT_EQ(wizard::headFile(u"/out/"_s, 2, u"/out/Song.wav"_s), u"/out/2_Song.wav"_s);
}

TEST(Genres, NamesThe148InNumberOrder) {
    const QStringList names = wizard::genreNames();
    ASSERT_EQ(names.size(), 148);
    EXPECT_EQ(names.first(), u"Blues"_s);
    EXPECT_EQ(names.at(17), u"Rock"_s);
    EXPECT_FALSE(names.contains(QString()));
}

TEST(Timeline, EachTrackBeginsBeforeTheEndOfTheOneBefore) {
    const std::vector<double> lengths = {200, 300, 100};
    const auto mix = wizard::layOut(lengths, 20);
    EXPECT_EQ(mix.seconds, 560);
    EXPECT_EQ(mix.tracks[0].start, 0);
    EXPECT_EQ(mix.tracks[1].start, 180);
    EXPECT_EQ(mix.tracks[2].start, 460);
    EXPECT_EQ(mix.tracks[2].overlap, 20);
    EXPECT_EQ(wizard::layOut(lengths, 0).seconds, 600);
    EXPECT_EQ(wizard::layOut({}, 20).seconds, 0);
}

TEST(Timeline, ATrackWithoutARestBehindItsHeadStaysWhole) {
    const std::vector<double> lengths = {60, 20, 60};
    const auto mix = wizard::layOut(lengths, 20);
    EXPECT_EQ(mix.tracks[1].overlap, 0);
    EXPECT_EQ(mix.tracks[1].start, 60);
    EXPECT_EQ(mix.tracks[2].start, 60);
    EXPECT_EQ(mix.seconds, 120);
}

TEST(Timeline, AHeadThatIsLongerThanTheFileBeforeBeginsWithIt) {
    const std::vector<double> lengths = {40, 26.5, 40};
    const auto mix = wizard::layOut(lengths, 20);
    EXPECT_EQ(mix.tracks[1].start, 20);
    EXPECT_EQ(mix.tracks[2].start, 40);  // 20 s of the second lie in the first track's file
    EXPECT_EQ(mix.tracks[2].overlap, 6.5);
    EXPECT_EQ(mix.seconds, 80);
}

TEST(Timeline, TracksWithoutSoundArePassedOver) {
    const std::vector<double> lengths = {0, 40, 0, 30, 0};
    const auto mix = wizard::layOut(lengths, 10);
    EXPECT_EQ(mix.tracks[1].start, 0);
    EXPECT_EQ(mix.tracks[3].start, 30);
    EXPECT_EQ(mix.tracks[3].overlap, 10);
    EXPECT_EQ(mix.seconds, 60);
}

TEST(Timeline, FadesRunFromAndToATenth) {
    const wizard::FadeShape fades{10, 20};
    EXPECT_DOUBLE_EQ(fades.gain(0, 100), 0.1);
    EXPECT_DOUBLE_EQ(fades.gain(50, 100), 1);
    EXPECT_DOUBLE_EQ(fades.gain(90, 100), 0.55);
    EXPECT_DOUBLE_EQ(fades.gain(100, 100), 0.1);
    EXPECT_EQ(wizard::clock(4803.6), u"80:04"_s);
}

}  // namespace
