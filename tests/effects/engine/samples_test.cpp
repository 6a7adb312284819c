// SPDX-License-Identifier: GPL-3.0-or-later
// Samples of every type that a file can hold: what an edit or a conversion does not have to change
// comes out as it went in, and what it changes is right. Files made and judged by ffmpeg.
#include <ostream>
#include <string>

#include <gtest/gtest.h>

#include "effects/engine/AudioEditor.h"
#include "platform/Paths.h"
#include "tests/support/Fixtures.h"
#include "tests/support/Sound.h"
#include "tests/support/TempFolder.h"

using effects::AudioEditor;
using namespace Qt::Literals::StringLiterals;

namespace {

struct Kind {
    const char* codec;
    const char* ending;
    int bits;  ///< of the samples' precision
};

std::ostream& operator<<(std::ostream& out, const Kind& kind) {
    return out << kind.codec << " in " << kind.ending;
}

const Kind kinds[] = {
    {"pcm_u8", "wav", 8},      {"pcm_s16le", "wav", 16},  {"pcm_s24le", "wav", 24},
    {"pcm_s32le", "wav", 24},  {"pcm_s64le", "wav", 24},  {"pcm_f32le", "wav", 24},
    {"pcm_f64le", "wav", 24},  {"pcm_s16be", "aiff", 16}, {"pcm_s24be", "aiff", 24},
    {"pcm_s32be", "aiff", 24}, {"pcm_s16be", "au", 16},   {"pcm_f32be", "au", 24},
    {"pcm_f64be", "au", 24},   {"pcm_s16le", "w64", 16},  {"pcm_s24le", "w64", 24},
    {"pcm_s16be", "caf", 16},  {"pcm_s32le", "caf", 24},  {"flac", "flac", 16},
    {"alac", "m4a", 16},       {"wavpack", "wv", 16},     {"tta", "tta", 16}};

class Samples : public testing::Test {
  protected:
    /// A fixture's sound as another kind of file.
    QString made(const Kind& kind, const QStringList& more = {}) const {
        const QString path = folder_.file(u"made.%1"_s.arg(QLatin1StringView(kind.ending)));
        const QString from = platform::toQString(support::fixture("tone.wav"));
        QStringList arguments{u"-v"_s, u"error"_s, u"-y"_s, u"-i"_s, from, u"-t"_s, u"0.5"_s};
        arguments += more;
        arguments += {u"-c:a"_s, QString::fromLatin1(kind.codec), path};
        const auto outcome = support::run(u"ffmpeg"_s, arguments);
        EXPECT_EQ(outcome.exitCode, 0) << outcome.err.toStdString();
        return path;
    }
    support::Sound heard(const QString& path) const {
        return support::decodeWithFfmpeg(platform::toPath(path));
    }
    support::Sound asWav(const QString& path, int channels) {
        AudioEditor editor;
        editor.Load(path);
        editor.SetOutputFormatWav(44'100, channels, 16);
        const QString target = folder_.file(u"out.wav"_s);
        editor.Save(target, false, 0);
        return heard(target);
    }
    support::TempFolder folder_;
};

class EveryKind : public Samples, public testing::WithParamInterface<Kind> {};

TEST_P(EveryKind, AFadeChangesItsRangeRightAndNothingElse) {
    const QString path = made(GetParam());
    const support::Sound before = heard(path);
    constexpr std::int32_t end = 5'000;
    AudioEditor editor;
    editor.Load(path);
    editor.SetKeepTags(false);  // some of these containers' tags cannot be carried
    editor.SetSelectionActive(true);
    editor.SetSelectionStart(0);
    editor.SetSelectionEnd(end);
    editor.Fade(50, 100);
    editor.SetSelectionActive(false);
    editor.Save(path, false, 0);

    const support::Sound after = heard(path);
    ASSERT_EQ(after.frames(), before.frames());
    const auto rest = before.frames() - end;
    EXPECT_EQ(after.part(end, rest).samples, before.part(end, rest).samples);
    std::vector<float> ideal = before.part(0, end).samples;
    for (std::size_t i = 0; i < ideal.size(); ++i)
        ideal[i] *= float(0.5 + 0.5 * double(i / 2) / double(end - 1));
    const double step = 1.0 / double(1 << (GetParam().bits - 1));
    EXPECT_LT(support::maxDifference(ideal, after.part(0, end).samples), 2 * step);
}

INSTANTIATE_TEST_SUITE_P(Types, EveryKind, testing::ValuesIn(kinds), [](const auto& instance) {
    return std::string(instance.param.codec) + "_" + instance.param.ending;
});

TEST_F(Samples, LosslessSoundBecomesWavBitForBit) {
    for (const Kind& kind : kinds) {
        if (kind.bits > 16) continue;
        const QString path = made(kind);
        EXPECT_EQ(asWav(path, 2).samples, heard(path).samples) << kind;
    }
}

TEST_F(Samples, MonoIsDoubledBitForBit) {
    for (const Kind& kind : {Kind{"flac", "flac", 16}, Kind{"pcm_s16le", "wav", 16}}) {
        const QString path = made(kind, {u"-ac"_s, u"1"_s});
        std::vector<float> doubled;
        for (const float sample : heard(path).samples) doubled.insert(doubled.end(), 2, sample);
        EXPECT_EQ(asWav(path, 2).samples, doubled) << kind;
    }
}

TEST_F(Samples, FewerBitsAreDithered) {
    const QString path = made({"pcm_s24le", "wav", 24}, {u"-af"_s, u"volume=0.001"_s});
    const std::vector<float> fine = heard(path).samples;
    const std::vector<float> coarse = asWav(path, 2).samples;
    ASSERT_EQ(coarse.size(), fine.size());
    std::size_t further = 0;  // than rounding alone would go
    for (std::size_t i = 0; i < fine.size(); ++i)
        further += std::abs(coarse[i] - fine[i]) > 0.51F / 32'768.0F;
    EXPECT_GT(further, fine.size() / 10);
    EXPECT_LT(support::maxDifference(coarse, fine), 1.51 / 32'768.0);
}

}  // namespace
