// SPDX-License-Identifier: GPL-3.0-or-later
// Opus and AAC: packets outside an edit are the source's own, and no seam is heard. ffmpeg and
// opusdec judge.
#include <functional>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "audio/edit/Saver.h"
#include "effects/engine/AudioEditor.h"
#include "platform/Error.h"
#include "platform/Paths.h"
#include "tests/support/Fixtures.h"
#include "tests/support/Python.h"
#include "tests/support/Sound.h"
#include "tests/support/TempFolder.h"

using namespace Qt::Literals::StringLiterals;
using audio::edit::SaveMethod;
using effects::AudioEditor;
using support::Sound;

namespace {

namespace fs = std::filesystem;

/// How a file is made of the fixture: by ffmpeg, or by opusenc where the name says so.
struct Kind {
    const char* name;
    const char* options;
};

fs::path made(const support::TempFolder& folder, const Kind& kind) {
    const fs::path file = folder / kind.name;
    const QString wav = platform::toQString(support::fixture("music.wav"));
    const QString out = platform::toQString(file);
    const QStringList options = QString::fromLatin1(kind.options).split(u' ');
    const bool own = file.filename().string().starts_with("opusenc");
    const support::Outcome outcome =
        own ? support::run(u"opusenc"_s,
                           QStringList{u"--quiet"_s} + options + QStringList{wav, out})
            : support::run(u"ffmpeg"_s, QStringList{u"-v"_s, u"error"_s, u"-i"_s, wav} + options +
                                            QStringList{u"-metadata"_s, u"title=Song"_s, out});
    EXPECT_EQ(outcome.exitCode, 0) << outcome.err.toStdString();
    return file;
}

/// What was saved: how, and what ffmpeg hears before and after.
struct Edited {
    audio::edit::SaveReport report;
    Sound before;
    Sound after;
    int rate() const { return before.rate; }
    /// How alike two stretches of half a second or more are.
    double alike(double seconds, double moved, double length) const {
        const auto frames = [this](double of) { return std::size_t(of * rate()); };
        return support::snrDb(before.part(frames(seconds), frames(length)).samples,
                              after.part(frames(seconds + moved), frames(length)).samples);
    }
    /// The greatest difference from a second on to the end, of sound that was moved so far.
    double differenceFrom(double seconds, std::int64_t moved) const {
        const auto first = std::size_t(seconds * rate());
        const std::size_t count = std::min(before.frames(), after.frames()) - first - 8'192;
        return support::maxDifference(
            before.part(first, count).samples,
            after.part(std::size_t(std::int64_t(first) + moved), count).samples);
    }
};

Edited edit(const fs::path& file, const std::function<void(AudioEditor&)>& what) {
    Edited edited;
    edited.before = support::decodeWithFfmpeg(file);
    AudioEditor editor;
    editor.Load(platform::toQString(file));
    what(editor);
    editor.Save(platform::toQString(file), false, 0);
    edited.report = editor.LastSaveReport();
    edited.after = support::decodeWithFfmpeg(file);
    return edited;
}

void select(AudioEditor& editor, double from, double to) {
    editor.SetSelectionActive(true);
    editor.SetSelectionStart(editor.TimeToPosition(int(from * 1'000)));
    editor.SetSelectionEnd(editor.TimeToPosition(int(to * 1'000)));
}

class Packets : public testing::TestWithParam<Kind> {
  protected:
    support::TempFolder folder;
    fs::path file = made(folder, GetParam());
};

INSTANTIATE_TEST_SUITE_P(Kinds, Packets,
                         testing::Values(Kind{"stereo.opus", "-c:a libopus -b:a 96k"},
                                         Kind{"mono.opus", "-c:a libopus -b:a 48k -ac 1"},
                                         Kind{"opusenc.opus", "--bitrate 128"},
                                         Kind{"opusenc_small.opus", "--framesize 2.5"},
                                         Kind{"opusenc_long.opus", "--framesize 60"},
                                         Kind{"stereo.m4a", "-c:a aac -aac_pns 0 -b:a 128k"},
                                         Kind{"mono.m4a", "-c:a aac -aac_pns 0 -b:a 64k -ac 1"}),
                         [](const auto& instance) {
                             const fs::path name = instance.param.name;
                             return name.stem().string() + "_" +
                                    name.extension().string().substr(1);
                         });

constexpr double nothing = 2e-6;  // what rounding leaves of a decoder's other past

}  // namespace

TEST_P(Packets, AFadeLeavesTheRestOfThePacketsAlone) {
    const Edited edited = edit(file, [](AudioEditor& editor) {
        select(editor, 0, 2);
        editor.Fade(0, 100);
    });
    EXPECT_EQ(edited.report.method, SaveMethod::Spliced) << edited.report.note;
    EXPECT_LT(edited.report.renderedFrames, 3 * edited.rate());
    EXPECT_EQ(edited.after.frames(), edited.before.frames());
    EXPECT_LT(edited.differenceFrom(3, 0), nothing);
    EXPECT_GT(edited.alike(2.0, 0, 0.5), 15);  // the seam lies here
}

TEST_P(Packets, SilenceInFrontMovesThem) {
    const Edited edited = edit(file, [](AudioEditor& editor) { editor.InsertSilence(1'234); });
    const auto moved = std::int64_t(std::llround(1.234 * edited.rate()));
    EXPECT_EQ(edited.report.method, SaveMethod::Spliced) << edited.report.note;
    EXPECT_EQ(std::int64_t(edited.after.frames() - edited.before.frames()) / 2'048, moved / 2'048);
    EXPECT_LT(edited.differenceFrom(1, moved), nothing);
    EXPECT_GT(edited.alike(0.0, double(moved) / edited.rate(), 0.5), 15);
}

TEST_P(Packets, ATrimmedStartIsCutOffWithoutEncoding) {
    const Edited edited = edit(file, [](AudioEditor& editor) {
        select(editor, 0, 1.2345);
        editor.DeleteSelection();
    });
    const auto cut = std::int64_t(std::llround(1.234 * edited.rate()));  // in milliseconds
    // A last packet of another size, as opusenc writes it, is not kept.
    EXPECT_LE(edited.report.renderedFrames, 2'880) << edited.report.note;
    EXPECT_EQ(std::int64_t(edited.before.frames() - edited.after.frames()) / 2'048, cut / 2'048);
    EXPECT_LT(edited.differenceFrom(2, -cut), nothing);
}

TEST_P(Packets, ACutInsideKeepsTheLongerSide) {
    const Edited edited = edit(file, [](AudioEditor& editor) {
        select(editor, 4, 5.0005);
        editor.DeleteSelection();
    });
    // Packets of 2.5 ms: what one bends at a cut like this is heard, and the check says so.
    if (file.filename() == "opusenc_small.opus" && edited.report.method == SaveMethod::Encoded) {
        EXPECT_THAT(edited.report.note, testing::HasSubstr("seam"));
        return;
    }
    EXPECT_EQ(edited.report.method, SaveMethod::Spliced) << edited.report.note;
    const auto cut = std::int64_t(std::llround(1.0 * edited.rate()));
    EXPECT_LT(edited.differenceFrom(7, -cut), nothing);
    EXPECT_GT(edited.alike(3.0, 0, 0.9), 10);
}

TEST_P(Packets, TheRateAndTheTitleStayOverTenSaves) {
    const auto size = fs::file_size(file);
    AudioEditor editor;
    for (int save = 0; save < 10; ++save) {
        editor.Load(platform::toQString(file));
        select(editor, 5, 6);
        editor.Fade(100, 95);
        editor.Save(platform::toQString(file), false, 0);
        ASSERT_EQ(editor.LastSaveReport().method, SaveMethod::Spliced)
            << save << ": " << editor.LastSaveReport().note;
    }
    EXPECT_NEAR(double(fs::file_size(file)), double(size), 0.02 * double(size));
    if (!file.filename().string().starts_with("opusenc")) {
        const support::Outcome told = support::run(
            u"ffprobe"_s, {u"-v"_s, u"error"_s, u"-show_entries"_s,
                           u"format_tags=title:stream_tags=title"_s, platform::toQString(file)});
        EXPECT_THAT(told.out.toStdString(), testing::HasSubstr("title=Song"));
    }
}

TEST(PacketsRefused, OpusOfManyChannelsIsEncodedWholeAndTold) {
    const support::TempFolder folder;
    const fs::path file = made(folder, {"surround.opus", "-c:a libopus -ac 6 -b:a 200k"});
    const Edited edited = edit(file, [](AudioEditor& editor) {
        select(editor, 0, 1);
        editor.Fade(0, 100);
    });
    EXPECT_EQ(edited.report.method, SaveMethod::Encoded);
    EXPECT_EQ(edited.report.note, "It has more channels than can be joined.");
}

TEST(PacketsRefused, AacThatCannotBeJoinedStaysAsItIs) {
    const support::TempFolder folder;
    const fs::path file = made(folder, {"surround.m4a", "-c:a aac -ac 6 -b:a 200k"});
    const auto bytes = support::readBytes(file);
    try {
        edit(file, [](AudioEditor& editor) {
            select(editor, 0, 1);
            editor.Fade(0, 100);
        });
        ADD_FAILURE() << "it was saved";
    } catch (const platform::Error& error) {
        EXPECT_THAT(error.what(), testing::HasSubstr("surround.m4a"));
        EXPECT_THAT(error.what(), testing::HasSubstr("more channels than can be joined"));
    }
    EXPECT_EQ(support::readBytes(file), bytes);
    const Edited whole = edit(file, [](AudioEditor& editor) {
        editor.SelectWholeFile();
        editor.Amplify(90);
    });
    EXPECT_EQ(whole.report.method, SaveMethod::Encoded);
}

// iTunes states in a field of its own where the sound begins and ends: after an edit it is untrue.
TEST(PacketsRefused, ALengthThatAFieldStatesDoesNotCutTheEditedSound) {
    const support::TempFolder folder;
    const fs::path file = made(folder, {"itunes.m4a", "-c:a aac -aac_pns 0 -b:a 128k"});
    support::python(
        uR"(
import sys, mutagen.mp4
file = mutagen.mp4.MP4(sys.argv[1])
text = " 00000000 00000400 000002B0 00000000000D7550" + " 00000000" * 8
file["----:com.apple.iTunes:iTunSMPB"] = [mutagen.mp4.MP4FreeForm(text.encode())]
file["----:com.apple.iTunes:OTHER"] = [mutagen.mp4.MP4FreeForm(b"kept")]
file.save()
)"_s,
        {file});
    const Edited edited = edit(file, [](AudioEditor& editor) { editor.InsertSilence(1'000); });
    EXPECT_EQ(edited.report.frames, 882'000 + 44'100);
    EXPECT_LT(edited.differenceFrom(1, 44'100), nothing);
    const auto bytes = support::readBytes(file);
    const std::string_view text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    EXPECT_NE(text.find("OTHER"), std::string_view::npos);
}
