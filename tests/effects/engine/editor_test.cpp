// SPDX-License-Identifier: GPL-3.0-or-later
// What the engine's calls mean beside the sound: selection, lengths, errors, progress, formats.
#include <cmath>
#include <fstream>
#include <thread>

#include <gtest/gtest.h>

#include "audio/edit/Saver.h"
#include "effects/engine/AudioEditor.h"
#include "platform/Error.h"
#include "platform/Paths.h"
#include "tests/support/CpuClock.h"
#include "tests/support/Fixtures.h"
#include "tests/support/Sound.h"
#include "tests/support/TempFolder.h"

using namespace Qt::Literals::StringLiterals;
using effects::AudioEditor;
using platform::Error;

namespace {

namespace fs = std::filesystem;

class Editor : public testing::Test {
  protected:
    QString copyOf(const std::string& name, const std::string& as = {}) {
        return platform::toQString(support::scratchCopy(name, folder.path(), as));
    }
    void loadTone() { editor.Load(copyOf("tone.wav")); }

    support::TempFolder folder;
    AudioEditor editor;
};

int filesIn(const fs::path& folder) {
    return int(std::distance(fs::directory_iterator(folder), {}));
}

}  // namespace

TEST_F(Editor, IsEmptyAtFirst) {
    EXPECT_FALSE(editor.HasSound());
    EXPECT_EQ(editor.GetLength(), 0);
    EXPECT_FALSE(editor.SelectionActive());
    editor.SelectWholeFile();
    EXPECT_THROW(editor.Fade(0, 100), Error);
    EXPECT_THROW(editor.Normalize(50, true), Error);
    EXPECT_THROW(editor.InsertSilence(100), Error);
    EXPECT_THROW(editor.TrimSilence(-20, 100, 2), Error);
    EXPECT_THROW(editor.TimeToPosition(100), Error);
    EXPECT_THROW(editor.Save(folder.file(u"a.wav"_s), true, 0), Error);
    EXPECT_EQ(filesIn(folder.path()), 0);
}

TEST_F(Editor, LoadAndCloseClearTheSelection) {
    loadTone();
    editor.SelectWholeFile();
    EXPECT_EQ(editor.SelectionEnd(), 88200);
    loadTone();
    EXPECT_FALSE(editor.SelectionActive());
    EXPECT_EQ(editor.SelectionEnd(), 0);
    editor.SelectWholeFile();
    editor.CloseSound();
    EXPECT_FALSE(editor.HasSound());
    EXPECT_FALSE(editor.SelectionActive());
    EXPECT_EQ(editor.SelectionEnd(), 0);
}

TEST_F(Editor, AFailedLoadLeavesTheEngineEmpty) {
    loadTone();
    const QString bad = folder.file(u"bad.mp3"_s);
    std::ofstream(platform::toPath(bad)) << "this is no sound";
    EXPECT_THROW(editor.Load(bad), Error);
    EXPECT_FALSE(editor.HasSound());
    EXPECT_EQ(editor.GetLength(), 0);
    EXPECT_THROW(editor.Save(bad, true, 0), Error);
    EXPECT_EQ(support::readBytes(platform::toPath(bad)).size(), 16U);
    EXPECT_THROW(editor.Load(folder.file(u"missing.mp3"_s)), Error);
    EXPECT_THROW(editor.Load(QString::fromStdString(folder.path().string())), Error);
    EXPECT_THROW(editor.Load(QString()), Error);
}

TEST_F(Editor, ErrorsNameTheFileAndAReason) {
    try {
        editor.Load(folder.file(u"Nö such – file.mp3"_s));
        FAIL();
    } catch (const Error& error) {
        const std::string text = error.what();
        EXPECT_NE(text.find("Nö such – file.mp3"), std::string::npos) << text;
        EXPECT_TRUE(text.ends_with('.')) << text;
    }
}

TEST_F(Editor, LoadKeepsTagsAgain) {
    const QString path = copyOf("tone.mp3");
    editor.Load(path);
    editor.SetKeepTags(false);
    editor.Load(path);
    editor.SelectWholeFile();
    editor.Amplify(50);
    editor.Save(path, false, 0);
    const auto bytes = support::readBytes(platform::toPath(path));
    const auto tag = bytes.end() - 128;
    EXPECT_EQ(std::vector<std::byte>(tag, tag + 3),
              (std::vector{std::byte{'T'}, std::byte{'A'}, std::byte{'G'}}));
}

TEST_F(Editor, TimeBecomesTheNearestFrame) {
    loadTone();
    EXPECT_EQ(editor.TimeToPosition(1000), 44100);
    EXPECT_EQ(editor.TimeToPosition(10), 441);
    EXPECT_EQ(editor.TimeToPosition(1), 44);
    EXPECT_EQ(editor.TimeToPosition(50000), 2205000);  // beyond the end: not clamped
    EXPECT_EQ(editor.TimeToPosition(-1000), -44100);
    EXPECT_EQ(editor.TimeToPosition(0), 0);
    EXPECT_THROW(editor.TimeToPosition(2000000000), Error);
}

TEST_F(Editor, SettersStoreWhatTheyAreGiven) {
    loadTone();
    editor.SetSelectionStart(-5);
    editor.SetSelectionEnd(1000000);
    EXPECT_EQ(editor.SelectionStart(), -5);
    EXPECT_EQ(editor.SelectionEnd(), 1000000);
}

TEST_F(Editor, AnEmptyRangeIsAnErrorThatChangesNothing) {
    loadTone();
    const auto expectRefusals = [this] {
        EXPECT_THROW(editor.Fade(0, 100), Error);
        EXPECT_THROW(editor.Amplify(50), Error);
        EXPECT_THROW(editor.Normalize(50, true), Error);
        EXPECT_THROW(editor.Echo(7, 40, 10, 75, 8000, 10), Error);
        EXPECT_THROW(editor.TrimSilence(-20, 100, 2), Error);
        EXPECT_THROW(editor.DeleteSelection(), Error);
        EXPECT_THROW(editor.MixFile(copyOf("tone.mp3"), 100, 100), Error);
        EXPECT_EQ(editor.GetLength(), 88200);
    };
    expectRefusals();  // inactive
    editor.SetSelectionActive(true);
    expectRefusals();  // 0, 0
    editor.SetSelectionStart(88200);
    editor.SetSelectionEnd(100000);
    expectRefusals();  // behind the end
    editor.SetSelectionStart(2000);
    editor.SetSelectionEnd(1000);
    expectRefusals();  // the wrong way round
    EXPECT_EQ(editor.SelectionStart(), 2000);
    EXPECT_EQ(editor.SelectionEnd(), 1000);
}

TEST_F(Editor, ValuesThatAreNoLevelsAreRefused) {
    loadTone();
    editor.SelectWholeFile();
    EXPECT_THROW(editor.Fade(-1, 100), Error);
    EXPECT_THROW(editor.Amplify(NAN), Error);
    EXPECT_THROW(editor.Normalize(INFINITY, true), Error);
    EXPECT_THROW(editor.InsertSilence(-1), Error);
    EXPECT_THROW(editor.Echo(0, 40, 10, 75, 8000, 10), Error);
    EXPECT_THROW(editor.Echo(7, 40, 10, 75, 0, 10), Error);
    EXPECT_THROW(editor.Echo(7, 40, 10, 75, 8000, -1), Error);
    EXPECT_THROW(editor.TrimSilence(-20, 0, 2), Error);
    EXPECT_THROW(editor.TrimSilence(-20, 100, 3), Error);
    EXPECT_THROW(editor.SetOutputFormatWav(44100, 2, 12), Error);
    EXPECT_THROW(editor.SetOutputFormatWav(0, 2, 16), Error);
    EXPECT_EQ(editor.GetLength(), 88200);
}

TEST_F(Editor, TheSelectionsEndStaysTheSoundsEnd) {
    loadTone();
    editor.SelectWholeFile();
    editor.InsertSilence(1000);
    EXPECT_EQ(editor.GetLength(), 132300);
    EXPECT_EQ(editor.SelectionEnd(), 132300);
    editor.SetSelectionStart(100000);
    editor.DeleteSelection();
    EXPECT_EQ(editor.GetLength(), 100000);
    EXPECT_EQ(editor.SelectionEnd(), 100000);
    EXPECT_EQ(editor.SelectionStart(), 100000);
    editor.SetSelectionStart(0);
    editor.SetSelectionEnd(50000);
    editor.InsertSilence(100);
    EXPECT_EQ(editor.SelectionEnd(), 50000);
}

TEST_F(Editor, ASoundLongerThanPositionsReachIsRefused) {
    loadTone();
    editor.SetSelectionStart(0);
    editor.InsertSilence(40000000);
    EXPECT_THROW(editor.InsertSilence(40000000), Error);
    EXPECT_EQ(editor.GetLength(), 88200 + 1764000000);
}

TEST_F(Editor, SilenceIsNotNormalized) {
    const QString path = copyOf("tone.wav");
    editor.Load(path);
    editor.SelectWholeFile();
    editor.Amplify(0);
    editor.Normalize(100, true);
    editor.Save(path, true, 0);
    for (const float sample : support::decodeWithFfmpeg(platform::toPath(path)).samples)
        ASSERT_EQ(sample, 0.0F);
}

TEST_F(Editor, UnlinkedChannelsAreNormalizedEachByItself) {
    const QString path = copyOf("tone-f32.wav");
    editor.Load(path);
    editor.SelectWholeFile();
    editor.Normalize(80, false);
    editor.Save(path, true, 0);
    const auto sound = support::decodeWithFfmpeg(platform::toPath(path));
    float peaks[2] = {};
    for (std::size_t i = 0; i < sound.samples.size(); ++i)
        peaks[i % 2] = std::max(peaks[i % 2], std::fabs(sound.samples[i]));
    EXPECT_NEAR(peaks[0], 0.8, 1e-6);
    EXPECT_NEAR(peaks[1], 0.8, 1e-6);
}

TEST_F(Editor, UntouchedBytesOfAWavFileStay) {
    for (const char* name : {"tone.wav", "tone-s32.wav", "tone-f64.wav", "tone-rf64.wav"}) {
        const QString path = copyOf(name);
        const auto before = support::readBytes(platform::toPath(path));
        editor.Load(path);
        editor.Save(path, true, 0);
        EXPECT_EQ(support::readBytes(platform::toPath(path)), before) << name;
        EXPECT_EQ(editor.LastSaveReport().method, audio::edit::SaveMethod::Copied);
        editor.SetSelectionActive(true);
        editor.SetSelectionEnd(1000);
        editor.Fade(0, 100);
        editor.Save(path, false, 0);
        const auto after = support::readBytes(platform::toPath(path));
        EXPECT_EQ(editor.LastSaveReport().method, audio::edit::SaveMethod::Pcm);
        EXPECT_EQ(editor.LastSaveReport().renderedFrames, 1000);
        ASSERT_EQ(after.size(), before.size());
        const std::ptrdiff_t rest = 1000 * 2 * 8 + 4096;
        EXPECT_TRUE(std::equal(before.begin() + rest, before.end(), after.begin() + rest)) << name;
        EXPECT_NE(after, before);
    }
}

TEST_F(Editor, TheSameEditWritesTheSameBytes) {
    std::vector<std::vector<std::byte>> results;
    for (int i = 0; i < 2; ++i) {
        const QString path = copyOf("tone.wav");
        editor.Load(path);
        editor.SelectWholeFile();
        editor.Amplify(55);
        editor.Save(path, true, 0);
        results.push_back(support::readBytes(platform::toPath(path)));
    }
    EXPECT_EQ(results[0], results[1]);
}

TEST_F(Editor, AfterASaveOverItselfTheFileIsTheSound) {
    const QString path = copyOf("tone.wav");
    editor.Load(path);
    editor.SetSelectionActive(true);
    editor.SetSelectionEnd(20000);
    editor.Save(folder.file(u"head.wav"_s), true, 0);
    EXPECT_EQ(editor.GetLength(), 88200);
    editor.DeleteSelection();
    editor.SetSelectionActive(false);
    editor.Save(path, false, 0);
    EXPECT_EQ(editor.GetLength(), 68200);
    editor.SelectWholeFile();
    editor.Amplify(50);
    editor.Save(path, false, 0);
    const auto original = support::decodeWithFfmpeg(support::fixture("tone.wav"));
    EXPECT_EQ(support::decodeWithFfmpeg(folder / "head.wav").samples,
              original.part(0, 20000).samples);
    const auto result = support::decodeWithFfmpeg(platform::toPath(path));
    ASSERT_EQ(result.frames(), 68200U);
    EXPECT_NEAR(result.samples[1000], original.samples[41000] / 2, 2.0 / 32768);
}

TEST_F(Editor, ASourceThatOthersChangedIsRefused) {
    const QString path = copyOf("tone.wav");
    editor.Load(path);
    editor.SelectWholeFile();
    editor.Amplify(50);
    support::scratchCopy("tone-48k.wav", folder.path(), "tone.wav");
    const auto now = support::readBytes(platform::toPath(path));
    EXPECT_THROW(editor.Save(path, true, 0), Error);
    EXPECT_EQ(support::readBytes(platform::toPath(path)), now);
    fs::remove(platform::toPath(path));
    EXPECT_THROW(editor.Save(path, true, 0), Error);
    EXPECT_EQ(filesIn(folder.path()), 0);
}

TEST_F(Editor, NothingLeftIsNotSaved) {
    const QString path = copyOf("tone.mp3");
    const auto before = support::readBytes(platform::toPath(path));
    editor.Load(path);
    editor.SelectWholeFile();
    editor.DeleteSelection();
    EXPECT_EQ(editor.GetLength(), 0);
    EXPECT_THROW(editor.Save(path, false, 0), Error);
    EXPECT_EQ(support::readBytes(platform::toPath(path)), before);
}

TEST_F(Editor, ConvertsToWav) {
    for (const char* name : {"tone.mp3", "tone.ogg", "tone.flac", "tone-48k.wav", "tone-6ch.wav"}) {
        editor.Load(copyOf(name));
        editor.SetOutputFormatWav(22050, 1, 8);
        editor.Save(folder.file(u"out.wav"_s), false, 0);
        auto result = support::decodeWithFfmpeg(folder / "out.wav");
        EXPECT_EQ(result.rate, 22050) << name;
        EXPECT_EQ(result.channels, 1);
        EXPECT_NEAR(double(result.frames()), 44100.0, 1.0);
        editor.SetOutputFormatWav(44100, 2, 16);
        editor.Save(folder.file(u"out.wav"_s), false, 0);
        result = support::decodeWithFfmpeg(folder / "out.wav");
        EXPECT_EQ(result.rate, 44100);
        EXPECT_EQ(result.channels, 2);
        EXPECT_NEAR(double(result.frames()), 88200.0, 1.0);
        editor.CloseSound();
    }
}

TEST_F(Editor, ConvertsToMp3WithTheNearestLegalBitRate) {
    const struct {
        int rate, kbps, channels, wantedRate, wantedKbps;
    } cases[] = {{44100, 128, 2, 44100, 128},
                 {44100, 1411, 2, 44100, 320},
                 {22050, 320, 1, 22050, 160},
                 {8000, 16, 1, 8000, 16}};
    editor.Load(copyOf("tone.wav"));
    for (const auto& item : cases) {
        editor.SetOutputFormatMp3(item.rate, item.kbps, item.channels);
        editor.Save(folder.file(u"out.mp3"_s), false, 0);
        const support::Outcome shown =
            support::run(u"ffprobe"_s, {u"-v"_s, u"error"_s, u"-show_entries"_s,
                                        u"stream=codec_name,sample_rate,channels,bit_rate"_s,
                                        u"-of"_s, u"csv=p=0"_s, folder.file(u"out.mp3"_s)});
        EXPECT_EQ(shown.out.trimmed(), "mp3," + QByteArray::number(item.wantedRate) + ',' +
                                           QByteArray::number(item.channels) + ',' +
                                           QByteArray::number(item.wantedKbps * 1000));
        const auto sound = support::decodeWithFfmpeg(folder / "out.mp3");
        EXPECT_NEAR(double(sound.frames()), 2.0 * item.wantedRate, 1.0);
    }
    editor.CloseSound();
    editor.Load(copyOf("tone.wav"));
    editor.Save(folder.file(u"plain.wav"_s), false, 0);  // the format went with CloseSound
    EXPECT_EQ(support::readBytes(folder / "plain.wav"),
              support::readBytes(support::fixture("tone.wav")));
}

TEST_F(Editor, MixesAFileOfAnotherRateAndShape) {
    const QString path = copyOf("tone-f32.wav");
    editor.Load(path);
    editor.SelectWholeFile();
    editor.MixFile(platform::toQString(support::fixture("tone-48k.wav")), 0, 100);
    editor.Save(path, false, 0);
    // The same sweep at another rate: resampled it is nearly the same sound.
    const auto wanted = support::decodeWithFfmpeg(support::fixture("tone.wav"));
    const auto result = support::decodeWithFfmpeg(platform::toPath(path));
    EXPECT_EQ(result.frames(), 88200U);
    EXPECT_GT(support::snrDb(wanted.samples, result.samples), 20.0);
}

TEST_F(Editor, AMixWithAMissingFileChangesNothing) {
    const QString path = copyOf("tone.wav");
    const auto before = support::readBytes(platform::toPath(path));
    editor.Load(path);
    editor.SelectWholeFile();
    EXPECT_THROW(editor.MixFile(folder.file(u"missing.wav"_s), 100, 100), Error);
    editor.Save(path, false, 0);
    EXPECT_EQ(support::readBytes(platform::toPath(path)), before);
}

TEST_F(Editor, ProgressComesOftenAndEndsWithAHundred) {
    std::vector<int> seen;
    support::CpuClock sinceLast;
    std::int64_t longest = 0;
    const auto thread = std::this_thread::get_id();
    bool sameThread = true;
    QObject::connect(&editor, &AudioEditor::Progress, [&](int percent) {
        sameThread = sameThread && std::this_thread::get_id() == thread;
        longest = std::max(longest, sinceLast.restart());
        seen.push_back(percent);
    });
    const QString path = copyOf("music.ogg");
    editor.Load(path);
    editor.SelectWholeFile();
    editor.Normalize(80, true);
    seen.clear();
    longest = 0;
    sinceLast.restart();
    editor.Save(path, true, 0);
    ASSERT_GT(seen.size(), 2U);
    EXPECT_TRUE(std::is_sorted(seen.begin(), seen.end()));
    EXPECT_EQ(seen.back(), 100);
    EXPECT_TRUE(sameThread);
    EXPECT_LT(longest, 300) << "milliseconds of work on the caller's own thread";
}

TEST_F(Editor, ClosingTheSoundDuringASaveLeavesTheFile) {
    const QString path = copyOf("music.ogg");
    const auto before = support::readBytes(platform::toPath(path));
    editor.Load(path);
    editor.SelectWholeFile();
    editor.Amplify(50);
    bool closed = false;
    QObject::connect(&editor, &AudioEditor::Progress, [&](int percent) {
        if (!closed && percent > 0 && percent < 100) {
            editor.CloseSound();
            closed = true;
        }
    });
    EXPECT_THROW(editor.Save(path, true, 0), Error);
    EXPECT_TRUE(closed);
    EXPECT_FALSE(editor.HasSound());
    EXPECT_EQ(support::readBytes(platform::toPath(path)), before);
    EXPECT_EQ(filesIn(folder.path()), 1);
}

TEST_F(Editor, OtherCallsDuringProgressAreRefused) {
    const QString path = copyOf("music.ogg");
    editor.Load(path);
    editor.SelectWholeFile();
    editor.Amplify(50);
    int refused = 0;
    QObject::connect(&editor, &AudioEditor::Progress, [&](int percent) {
        if (percent == 100) return;
        EXPECT_THROW(editor.Load(path), Error);
        EXPECT_THROW(editor.Save(path, true, 0), Error);
        EXPECT_THROW(editor.Amplify(50), Error);
        EXPECT_GT(editor.GetLength(), 0);
        ++refused;
    });
    editor.Save(path, true, 0);
    EXPECT_GT(refused, 0);
    EXPECT_TRUE(editor.HasSound());
}

TEST_F(Editor, ManyEditorsWorkAtOnce) {
    std::vector<std::thread> threads;
    std::vector<QString> paths;
    for (const char* name : {"tone.mp3", "tone.ogg", "tone.wav", "tone.wma"})
        paths.push_back(copyOf(name));
    for (const QString& path : paths)
        threads.emplace_back([path] {
            AudioEditor own;
            own.Load(path);
            own.SelectWholeFile();
            own.Normalize(50, true);
            own.Save(path, true, 0);
        });
    for (std::thread& thread : threads) thread.join();
    for (const QString& path : paths) {
        float peak = 0;
        for (const float sample : support::decodeWithFfmpeg(platform::toPath(path)).samples)
            peak = std::max(peak, std::fabs(sample));
        EXPECT_NEAR(peak, 0.5, 0.06) << path.toStdString();
    }
}
