// SPDX-License-Identifier: GPL-3.0-or-later
// The pass and the rounds on real files, judged by other programs than ours.
#include <algorithm>
#include <cmath>
#include <iostream>
#include <map>

#include <QDir>
#include <QFile>
#include <gtest/gtest.h>

#include "effects/engine/AudioEditor.h"
#include "platform/Paths.h"
#include "tests/support/Fixtures.h"
#include "tests/support/Sound.h"
#include "tests/support/TempFolder.h"
#include "tests/wizard/MixArithmetic.h"
#include "tests/wizard/RecordingView.h"
#include "wizard/Naming.h"
#include "wizard/Session.h"
#include "wizard/TransformationPass.h"

using namespace Qt::Literals::StringLiterals;

namespace {

using support::decoded;
using support::Samples;

constexpr std::size_t Channels = support::mix::channels;
constexpr int Rate = support::mix::rate;
constexpr double OneStep = support::mix::oneStep;

class MixTest : public testing::Test {
  protected:
    void SetUp() override {
        for (const char* name : {"in", "plain", "mix"})
            ASSERT_TRUE(QDir(folder.file({})).mkpath(QString::fromLatin1(name)));
    }

    /// A track of noise, like no other and alike nowhere within itself.
    QString track(const QString& name, double seconds, const QStringList& encoding = {}) {
        const QString path = folder.file(u"in/"_s + name);
        support::makeNoise(path, seconds, ++serial_, encoding);
        wizard::append(session.lstFiles, path);
        return path;
    }

    /// Runs the pass into a folder; returns the results.
    QStringList run(const QString& target, bool crossFade) {
        view.chosen.targetPath = folder.file(target + u'/');
        view.chosen.crossFade = crossFade;
        wizard::TransformationPass pass(editor, session, view.all());
        EXPECT_EQ(pass.reasonAgainst(), QString());
        pass.run();
        return session.List1.stringList();
    }

    /// The tracks one after the other, each head added to the tail before it: what the mix must be.
    /// `shared` gets, for every sample, whether two tracks are heard in it.
    static Samples overlapped(const std::vector<Samples>& tracks, std::size_t overlap,
                              std::vector<bool>& shared) {
        Samples mix;
        for (const Samples& track : tracks) {
            const std::size_t common = mix.empty() ? 0 : std::min(overlap, track.size());
            const std::size_t start = mix.size() - common;
            mix.resize(start + track.size());
            shared.resize(mix.size());
            for (std::size_t i = 0; i < track.size(); ++i) {
                mix[start + i] = std::clamp(mix[start + i] + track[i], -1.0F, 1 - float(OneStep));
                if (i < common) shared[start + i] = true;
            }
        }
        return mix;
    }

    static Samples joined(const std::vector<Samples>& parts) {
        Samples all;
        for (const Samples& part : parts) all.insert(all.end(), part.begin(), part.end());
        return all;
    }

    /// Compares the mix sample for sample: bit for bit where one track is heard, and within the
    /// dither of a written 16-bit sample where there are two.
    void expectMix(const std::vector<Samples>& tracks, const std::vector<Samples>& results,
                   std::size_t overlapFrames) {
        std::vector<bool> shared;
        const Samples expected = overlapped(tracks, overlapFrames * Channels, shared);
        const Samples mix = joined(results);
        ASSERT_EQ(mix.size(), expected.size());
        double worstAlone = 0, worstShared = 0;
        for (std::size_t i = 0; i < mix.size(); ++i) {
            double& worst = shared[i] ? worstShared : worstAlone;
            worst = std::max(worst, std::abs(double(mix[i]) - double(expected[i])));
        }
        EXPECT_EQ(worstAlone, 0);
        EXPECT_LE(worstShared, 1.01 * OneStep);
    }

    support::TempFolder folder;
    effects::AudioEditor editor;
    wizard::Session session;
    support::RecordingView view;
    unsigned serial_ = 0;
};

TEST_F(MixTest, TheMixIsTheTracksOverlappedSampleForSample) {
    track(u"A.wav"_s, 6.0);
    track(u"B.wav"_s, 7.31);
    track(u"C.wav"_s, 5.117);
    track(u"D.wav"_s, 9.0);
    const auto tracks = decoded(run(u"plain"_s, false));
    session.settings.crossfade_value = 2000;
    const auto results = decoded(run(u"mix"_s, true));
    expectMix(tracks, results, 2 * Rate);
    EXPECT_TRUE(view.failures.isEmpty()) << view.failures.join(u'\n').toStdString();

    EXPECT_EQ(results[0].size(), tracks[0].size());
    for (std::size_t i = 1; i < tracks.size(); ++i)
        EXPECT_EQ(results[i].size(), tracks[i].size() - 2 * Rate * Channels);
    const auto head = decoded({folder.file(u"mix/2_C.wav"_s)}).front();
    EXPECT_EQ(head, Samples(tracks[2].begin(), tracks[2].begin() + 2 * Rate * Channels));
    EXPECT_FALSE(QFile::exists(folder.file(u"mix/0_A.wav"_s)));
}

TEST_F(MixTest, SoItIsWithEveryStepTicked) {
    view.chosen.trimSilence = view.chosen.normalize = true;
    view.chosen.fadeOut = view.chosen.fadeIn = true;
    session.settings.fadeOutMs = session.settings.fadeInMs = 5000;
    track(u"A.mp3"_s, 12.0, {u"-b:a"_s, u"128k"_s});
    track(u"B.ogg"_s, 13.3, {u"-c:a"_s, u"libvorbis"_s});
    track(u"C.wav"_s, 11.7);
    const auto tracks = decoded(run(u"plain"_s, false));
    session.settings.crossfade_value = 5000;
    expectMix(tracks, decoded(run(u"mix"_s, true)), 5 * Rate);
    EXPECT_TRUE(view.failures.isEmpty()) << view.failures.join(u'\n').toStdString();
}

TEST_F(MixTest, WhateverTheLengthsEverySampleOfEveryTrackIsHeardOnceInOrder) {
    support::RandomMixes mixes;
    mixes.run(folder.file(u"random/"_s), [this](const QStringList& tracks, int overlapMs,
                                                const QString& target) {
        session.lstFiles.setStringList(tracks);
        session.settings.crossfade_value = overlapMs;
        view.failures.clear();
        const QStringList results =
            run(QDir(folder.file({})).relativeFilePath(target), overlapMs > 0);
        const auto broken = std::ranges::count_if(
            tracks, [](const QString& track) { return QFile(track).size() < 100; });
        EXPECT_EQ(view.failures.size(), broken) << view.failures.join(u'\n').toStdString();
        return results;
    });
}

TEST_F(MixTest, TheTracksAroundABrokenOneAreMixed) {
    track(u"A.wav"_s, 4.0);
    QFile(track(u"B.wav"_s, 4.0)).resize(30);
    track(u"C.wav"_s, 4.0);
    const QStringList plain = run(u"plain"_s, false);
    session.settings.crossfade_value = 1000;
    const QStringList mixed = run(u"mix"_s, true);
    EXPECT_EQ(mixed.size(), 3);  // the list of results stays as it is
    expectMix(decoded({plain[0], plain[2]}), decoded({mixed[0], mixed[2]}), Rate);
}

TEST_F(MixTest, AResultOfAnEarlierRunTakesNoPart) {
    track(u"A.wav"_s, 4.0);
    const QString second = track(u"B.wav"_s, 4.0);
    session.settings.crossfade_value = 1000;
    const QStringList earlier = run(u"mix"_s, true);
    const auto stale = support::readBytes(platform::toPath(earlier[1]));
    QFile(second).resize(30);
    const QStringList plain = run(u"plain"_s, false);
    const QStringList mixed = run(u"mix"_s, true);
    EXPECT_EQ(support::readBytes(platform::toPath(mixed[1])), stale);
    EXPECT_EQ(decoded({mixed[0]}), decoded({plain[0]}));
}

TEST_F(MixTest, FiftySecondsOfOverlapOnShortTracksEndInOrder) {
    for (const QString& name : {u"A.wav"_s, u"B.wav"_s, u"C.wav"_s}) track(name, 2.0);
    session.settings.crossfade_value = 50000;
    run(u"mix"_s, true);
    EXPECT_EQ(view.burnQuestions, 1);
    EXPECT_EQ(session.List1.rowCount(), 3);
}

TEST_F(MixTest, ASingleTrackStaysAsItIs) {
    track(u"A.wav"_s, 3.0);
    const auto tracks = decoded(run(u"plain"_s, false));
    EXPECT_EQ(decoded(run(u"mix"_s, true)), tracks);
    EXPECT_EQ(view.burnQuestions, 1);
}

/// Takes a head file away between the two rounds.
class HeadTaker : public support::RecordingView {
  public:
    QString head;
    void setStatus(const QString& text) override {
        if (text.contains(u"second round"_s)) QFile::remove(head);
    }
};

TEST_F(MixTest, AMissingHeadFileLeavesTheTrackAsItIsAndTheRoundGoesOn) {
    for (const QString& name : {u"A.wav"_s, u"B.wav"_s, u"C.wav"_s}) track(name, 5.0);
    const auto tracks = decoded(run(u"plain"_s, false));
    session.settings.crossfade_value = 1000;
    HeadTaker taker;
    taker.chosen = view.chosen;
    taker.chosen.targetPath = folder.file(u"mix/"_s);
    taker.chosen.crossFade = true;
    taker.head = folder.file(u"mix/1_B.wav"_s);
    wizard::TransformationPass pass(editor, session, taker.all());
    EXPECT_EQ(pass.reasonAgainst(), QString());
    pass.run();
    const auto results = decoded(session.List1.stringList());
    EXPECT_EQ(results[0], tracks[0]);
    EXPECT_EQ(taker.failures.size(), 1);
    const Samples b(tracks[1].begin() + Rate * Channels, tracks[1].end());
    expectMix({b, tracks[2]}, {results[1], results[2]}, Rate);
}

TEST_F(MixTest, AStaleHeadOfAnEarlierRunIsNeverHeard) {
    for (const QString& name : {u"A.wav"_s, u"B.wav"_s}) track(name, 4.0);
    session.settings.crossfade_value = 1000;
    run(u"mix"_s, true);
    ASSERT_TRUE(QFile::exists(folder.file(u"mix/1_B.wav"_s)));
    const auto tracks = decoded(run(u"plain"_s, false));

    // B cannot be read any more, so nothing is cut off it this time.
    QFile::remove(session.lstFiles.stringList().at(1));
    QFile::remove(folder.file(u"mix/B.wav"_s));
    const auto results = run(u"mix"_s, true);
    EXPECT_EQ(decoded({results[0]}).front(), tracks[0]);
    EXPECT_EQ(view.failures.size(), 1);
}

TEST_F(MixTest, OriginalsAreOnlyRead) {
    view.chosen.normalize = view.chosen.trimSilence = true;
    std::map<QString, std::vector<std::byte>> before;
    for (const QString& name : {u"Ä 'quoted' \"name\".wav"_s, u"B.mp3"_s, u"C.flac"_s}) {
        const QString path = track(name, 4.0,
                                   name.endsWith(u"mp3"_s)    ? QStringList{u"-b:a"_s, u"128k"_s}
                                   : name.endsWith(u"flac"_s) ? QStringList{u"-c:a"_s, u"flac"_s}
                                                              : QStringList{});
        before[path] = support::readBytes(platform::toPath(path));
    }
    session.settings.crossfade_value = 1000;
    const QStringList results = run(u"mix"_s, true);
    for (const auto& [path, bytes] : before)
        EXPECT_EQ(support::readBytes(platform::toPath(path)), bytes);
    EXPECT_EQ(results.at(2), folder.file(u"mix/C.fwav"_s));
    EXPECT_EQ(decoded(results).size(), 3U);
    EXPECT_TRUE(view.failures.isEmpty()) << view.failures.join(u'\n').toStdString();
}

TEST_F(MixTest, TheFadesRunToAndFromATenth) {
    track(u"A.wav"_s, 10.0);
    const auto plain = decoded(run(u"plain"_s, false)).front();
    view.chosen.fadeOut = view.chosen.fadeIn = true;
    session.settings.fadeOutMs = session.settings.fadeInMs = 4000;
    const auto faded = decoded(run(u"mix"_s, false)).front();
    ASSERT_EQ(faded.size(), plain.size());
    const std::size_t frames = plain.size() / Channels;
    const auto gain = [&](std::size_t frame) {
        const double length = 4.0 * Rate;
        const double in = frame < length ? 0.1 + 0.9 * double(frame) / (length - 1) : 1;
        const double left = double(frames - 1 - frame);
        const double out = left < length ? 0.1 + 0.9 * left / (length - 1) : 1;
        return in * out;
    };
    double worst = 0;
    for (std::size_t i = 0; i < plain.size(); ++i)
        worst = std::max(worst, std::abs(faded[i] - plain[i] * gain(i / Channels)));
    EXPECT_LE(worst, 2.01 * OneStep);  // two generations of dither where the two fades meet
}

TEST_F(MixTest, NormalizesToFullScale) {
    view.chosen.normalize = true;
    track(u"A.wav"_s, 2.0);
    const auto sound = decoded(run(u"mix"_s, false)).front();
    const auto [low, high] = std::ranges::minmax_element(sound);
    EXPECT_NEAR(std::max(-*low, *high), 1.0, 2 * OneStep);
}

TEST_F(MixTest, WritesTheChosenFormat) {
    track(u"A.wav"_s, 3.0);
    const auto probe = [](const QString& file) {
        return support::run(u"ffprobe"_s, {u"-v"_s, u"error"_s, u"-show_entries"_s,
                                           u"stream=codec_name,sample_rate,channels,bit_rate"_s,
                                           u"-of"_s, u"csv=p=0"_s, file})
            .out.trimmed();
    };
    view.chosen.frequency = u"11050"_s;
    view.chosen.bitRate = u"8-bit"_s;
    view.chosen.channels = u"Mono"_s;
    EXPECT_EQ(probe(run(u"mix"_s, false).first()), "pcm_u8,11025,1,88200");
    view.chosen.format = u"MP3"_s;
    view.chosen.frequency = u"48000"_s;
    view.chosen.bitRate = u"192-bit"_s;
    view.chosen.channels = u"Stereo"_s;
    EXPECT_EQ(probe(run(u"mix"_s, false).first()), "mp3,48000,2,192000");
}

TEST_F(MixTest, KeepsOrStripsTheTags) {
    const auto title = [](const QString& file) {
        return support::run(u"ffprobe"_s, {u"-v"_s, u"error"_s, u"-show_entries"_s,
                                           u"format_tags=title"_s, u"-of"_s, u"csv=p=0"_s, file})
            .out.trimmed();
    };
    track(u"A.mp3"_s, 3.0, {u"-b:a"_s, u"128k"_s, u"-metadata"_s, u"title=Kept"_s});
    view.chosen.format = u"MP3"_s;
    view.chosen.bitRate = u"128-bit"_s;
    EXPECT_EQ(title(run(u"mix"_s, false).first()), "Kept");
    view.chosen.tags = wizard::TagChoice::SetNew;
    EXPECT_EQ(title(run(u"mix"_s, false).first()), "Kept");
    view.chosen.tags = wizard::TagChoice::Strip;
    EXPECT_EQ(title(run(u"mix"_s, false).first()), "");
}

TEST_F(MixTest, AnUnreadableFileIsPassedOverAndNamed) {
    track(u"A.wav"_s, 3.0);
    const QString broken = folder.file(u"in/broken.wav"_s);
    QFile(broken).open(QIODevice::WriteOnly);
    wizard::append(session.lstFiles, broken);
    wizard::append(session.lstFiles, folder.file(u"in/missing.mp3"_s));
    track(u"B.wav"_s, 3.0);
    const QStringList results = run(u"mix"_s, false);
    EXPECT_EQ(results.size(), 4);
    EXPECT_TRUE(QFile::exists(results.at(0)) && QFile::exists(results.at(3)));
    EXPECT_FALSE(QFile::exists(results.at(1)) || QFile::exists(results.at(2)));
    ASSERT_EQ(view.failures.size(), 2);
    EXPECT_TRUE(view.failures.first().contains(u"broken.wav"_s));
    EXPECT_EQ(view.completed, 1);
}

TEST_F(MixTest, ATargetFolderThatIsNotThereFailsEveryFileAndHarmsNone) {
    track(u"A.wav"_s, 3.0);
    run(u"nowhere/at/all"_s, false);
    EXPECT_EQ(view.failures.size(), 1);
    EXPECT_EQ(view.completed, 1);
}

TEST_F(MixTest, Mp3FilesJoinWithoutAGapOrAClick) {
    // Music that goes on over the join: there every click would be heard.
    const QString music = platform::toQString(support::fixture("music.wav"));
    for (const QString& name : {u"A.wav"_s, u"B.wav"_s}) {
        wizard::append(session.lstFiles, folder.file(u"in/"_s + name));
        ASSERT_TRUE(QFile::copy(music, folder.file(u"in/"_s + name)));
    }
    session.settings.crossfade_value = 5000;
    const Samples wanted = joined(decoded(run(u"plain"_s, true)));
    view.chosen.format = u"MP3"_s;
    view.chosen.bitRate = u"192-bit"_s;
    const QStringList results = run(u"mix"_s, true);
    std::vector<Samples> heard;
    for (const QString& file : results)
        heard.push_back(support::decodeWithMpg123(platform::toPath(file)).samples);
    EXPECT_EQ(heard[0].size(), std::size_t(20 * Rate) * Channels);
    EXPECT_EQ(heard[1].size(), std::size_t(15 * Rate) * Channels);

    const Samples mix = joined(heard);
    ASSERT_EQ(mix.size(), wanted.size());
    const auto quality = [&](std::size_t middle, std::size_t frames) {
        const auto first = std::ptrdiff_t((middle - frames) * Channels);
        const auto last = std::ptrdiff_t((middle + frames) * Channels);
        return support::snrDb({wanted.begin() + first, wanted.begin() + last},
                              {mix.begin() + first, mix.begin() + last});
    };
    const std::size_t join = 20 * Rate;
    const double atJoin = quality(join, 1152);
    const double around = quality(join, 5 * Rate);
    RecordProperty("dB_at_join", std::to_string(atJoin));
    RecordProperty("dB_around", std::to_string(around));
    std::cout << "at the join " << atJoin << " dB, ten seconds around it " << around << " dB\n";
    EXPECT_GT(atJoin, around - 6);
}

}  // namespace
