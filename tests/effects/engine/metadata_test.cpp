// SPDX-License-Identifier: GPL-3.0-or-later
// What is not sound comes through a save: as the bytes that it was, and as other programs read it.
#include <algorithm>
#include <functional>

#include <gtest/gtest.h>

#include "effects/engine/AudioEditor.h"
#include "platform/Error.h"
#include "platform/Paths.h"
#include "tests/support/Fixtures.h"
#include "tests/support/Sound.h"
#include "tests/support/TempFolder.h"

using namespace Qt::Literals::StringLiterals;
using effects::AudioEditor;

namespace {

namespace fs = std::filesystem;
using Bytes = std::vector<std::byte>;

QByteArray awkward(const QStringList& arguments) {
    const support::Outcome outcome = support::run(
        u"/usr/bin/python3"_s, QStringList{QStringLiteral(TRACKSMITH_AWKWARD)} + arguments);
    EXPECT_EQ(outcome.exitCode, 0) << outcome.err.toStdString();
    return outcome.out;
}

QString shown(const fs::path& file) {
    return QString::fromUtf8(awkward({u"show"_s, platform::toQString(file)}));
}

/// A fixture with unusual metadata, and how many bytes stand around the sound of an MPEG file.
struct Awkward {
    fs::path file;
    std::size_t leading = 0;
    std::size_t trailing = 0;
};

class Metadata : public testing::Test {
  protected:
    Awkward make(const std::string& variant, const std::string& fixture) {
        const fs::path made = folder / (variant + "-" + fixture);
        const QByteArray sizes =
            awkward({u"make"_s, QString::fromStdString(variant),
                     platform::toQString(support::fixture(fixture)), platform::toQString(made)});
        const QList<QByteArray> numbers = sizes.trimmed().split(' ');
        return {made, std::size_t(numbers.value(0).toInt()), std::size_t(numbers.value(1).toInt())};
    }

    void edit(const fs::path& file, const std::function<void(AudioEditor&)>& what) {
        AudioEditor editor;
        editor.SetTemporaryFolder(folder.file(u"scratch"_s));
        editor.Load(platform::toQString(file));
        what(editor);
        editor.Save(platform::toQString(file), true, 0);
    }

    static void fadeIn(AudioEditor& editor) {
        editor.SetSelectionActive(true);
        editor.SetSelectionEnd(editor.TimeToPosition(500));
        editor.Fade(0, 100);
        editor.SetSelectionActive(false);
    }
    static void amplify(AudioEditor& editor) {
        editor.SelectWholeFile();
        editor.Amplify(60);
    }
    static void addSilence(AudioEditor& editor) { editor.InsertSilence(300); }

    support::TempFolder folder;
};

Bytes head(const Bytes& bytes, std::size_t count) {
    return {bytes.begin(), bytes.begin() + std::ptrdiff_t(std::min(count, bytes.size()))};
}

Bytes tail(const Bytes& bytes, std::size_t count) {
    return {bytes.end() - std::ptrdiff_t(std::min(count, bytes.size())), bytes.end()};
}

/// What is left of a description when the statements about the level are taken out.
QString withoutLevels(const QString& description) {
    QStringList kept;
    bool skipping = false;
    for (const QString& line : description.split(u'\n')) {
        const QString key = line.section(u'"', 1, 1).toLower();
        const bool isLevel =
            key.contains(u"replaygain") || key.contains(u"mp3gain") || key.contains(u"itunnorm") ||
            key.contains(u"r128") || key.contains(u"rva2") || key.contains(u"relativevolume") ||
            line.contains(u"(iTunNORM)") || line.contains(u"replaygain", Qt::CaseInsensitive);
        if (isLevel && line.trimmed().endsWith(u'[')) skipping = true;
        if (!isLevel && !skipping) kept << line;
        if (skipping && (line.trimmed() == u"]" || line.trimmed() == u"],")) skipping = false;
    }
    return kept.join(u'\n');
}

/// Compares descriptions and names the lines that only one of them has. Commas at line ends depend
/// on what follows.
void expectSame(const QString& before, const QString& after, const std::string& what) {
    const auto linesOf = [](const QString& text) {
        return QString(text).remove(u',').split(u'\n');
    };
    const QStringList old = linesOf(before);
    const QStringList now = linesOf(after);
    for (const QString& line : old)
        EXPECT_TRUE(now.contains(line)) << what << " lost " << line.left(200).toStdString();
    for (const QString& line : now)
        EXPECT_TRUE(old.contains(line)) << what << " gained " << line.left(200).toStdString();
}

class MpegTags : public Metadata, public testing::WithParamInterface<const char*> {};

std::string nameOf(const char* variant) {
    std::string name = variant;
    std::erase(name, '-');
    return name;
}

INSTANTIATE_TEST_SUITE_P(Variants, MpegTags,
                         testing::Values("id3v22", "id3v23", "id3v24", "id3v1", "unsynchronised",
                                         "extended-header", "footer", "two-tags", "apev2",
                                         "apev2-in-front", "lyrics3", "junk-before",
                                         "tag-longer-than-file"),
                         [](const auto& instance) { return nameOf(instance.param); });

}  // namespace

TEST_P(MpegTags, AreTheSameBytesAfterAnEditOfAPart) {
    for (const char* fixture : {"tone.mp3", "tone.mp2"}) {
        const Awkward made = make(GetParam(), fixture);
        const Bytes before = support::readBytes(made.file);
        const QString description = shown(made.file);
        for (const auto& what : {fadeIn, addSilence}) {
            edit(made.file, what);
            const Bytes after = support::readBytes(made.file);
            EXPECT_EQ(head(after, made.leading), head(before, made.leading)) << fixture;
            EXPECT_EQ(tail(after, made.trailing), tail(before, made.trailing)) << fixture;
            EXPECT_NE(after, before);
        }
        expectSame(description, shown(made.file), fixture);
    }
}

TEST_P(MpegTags, LoseOnlyWhatIsNoLongerTrueWhenTheLevelChanges) {
    const Awkward made = make(GetParam(), "tone.mp3");
    const QString before = shown(made.file);
    edit(made.file, amplify);
    const QString after = shown(made.file);
    for (const char* gone : {"replaygain", "iTunNORM", "RVA2"})
        EXPECT_FALSE(after.contains(QString::fromLatin1(gone), Qt::CaseInsensitive)) << gone;
    expectSame(withoutLevels(before), withoutLevels(after), GetParam());
}

TEST_P(MpegTags, CanBeLeftOut) {
    const Awkward made = make(GetParam(), "tone.mp3");
    edit(made.file, [](AudioEditor& editor) {
        editor.SetKeepTags(false);
        fadeIn(editor);
    });
    const Bytes after = support::readBytes(made.file);
    ASSERT_GT(after.size(), 1000U);
    EXPECT_EQ(after[0], std::byte{0xFF});  // a frame
    const QString text =
        QString::fromLatin1(reinterpret_cast<const char*>(after.data()), qsizetype(after.size()));
    for (const QString& tag : {u"ID3\x03"_s, u"ID3\x04"_s, u"APETAGEX"_s, u"LYRICSBEGIN"_s})
        EXPECT_FALSE(text.contains(tag));
    EXPECT_NE(text.right(128).left(3), u"TAG"_s);
    EXPECT_NEAR(double(support::decodeWithFfmpeg(made.file).frames()), 88200.0, 0.0);
}

TEST_F(Metadata, MpegFilesWithoutOrdinaryHeadersKeepTheirLength) {
    for (const char* variant : {"vbri", "cut-last-frame"}) {
        SCOPED_TRACE(variant);
        const Awkward made = make(variant, "tone-untagged.mp3");
        const Bytes before = support::readBytes(made.file);
        AudioEditor editor;
        editor.Load(platform::toQString(made.file));
        const int length = editor.GetLength();
        EXPECT_GT(length, 80000);
        fadeIn(editor);
        editor.Save(platform::toQString(made.file), false, 0);
        EXPECT_EQ(editor.GetLength(), length) << variant;
        EXPECT_EQ(head(support::readBytes(made.file), made.leading), head(before, made.leading));
    }
}

namespace {

class WaveChunks : public Metadata, public testing::WithParamInterface<const char*> {};

INSTANTIATE_TEST_SUITE_P(Variants, WaveChunks,
                         testing::Values("bext-ixml", "list-after", "list-before", "id3-chunk",
                                         "odd-sizes", "everything"),
                         [](const auto& instance) { return nameOf(instance.param); });

class LyingWave : public Metadata, public testing::WithParamInterface<const char*> {};

INSTANTIATE_TEST_SUITE_P(Variants, LyingWave,
                         testing::Values("riff-size-zero", "riff-size-huge", "data-size-zero",
                                         "data-size-unknown", "data-past-the-end",
                                         "chunk-past-the-end"),
                         [](const auto& instance) { return nameOf(instance.param); });

QByteArray chunksOf(const fs::path& file) {
    return awkward({u"chunks"_s, platform::toQString(file)});
}

}  // namespace

TEST_P(WaveChunks, AreTheSameBytesInTheSameOrder) {
    for (const char* fixture : {"tone.wav", "tone-f32.wav", "tone-6ch.wav"}) {
        const Awkward made = make(GetParam(), fixture);
        const QByteArray before = chunksOf(made.file);
        for (const auto& what : {fadeIn, amplify, addSilence}) {
            edit(made.file, what);
            EXPECT_EQ(chunksOf(made.file).toStdString(), before.toStdString()) << fixture;
        }
    }
}

TEST_P(WaveChunks, CanBeLeftOut) {
    const Awkward made = make(GetParam(), "tone.wav");
    edit(made.file, [](AudioEditor& editor) { editor.SetKeepTags(false); });
    EXPECT_EQ(chunksOf(made.file).count('\n'), 1);  // fmt alone
    EXPECT_EQ(support::decodeWithFfmpeg(made.file).samples,
              support::decodeWithFfmpeg(support::fixture("tone.wav")).samples);
}

TEST_P(LyingWave, HasAllItsSoundAfterAnEdit) {
    const Awkward made = make(GetParam(), "tone.wav");
    AudioEditor editor;
    editor.Load(platform::toQString(made.file));
    // What stands behind sound of unknown size may be taken for sound, never the other way round.
    const int length = editor.GetLength();
    EXPECT_GE(length, 88200);
    EXPECT_LE(length, 88200 + 200);
    fadeIn(editor);
    editor.Save(platform::toQString(made.file), false, 0);
    const support::Sound before = support::decodeWithFfmpeg(support::fixture("tone.wav"));
    const support::Sound after = support::decodeWithFfmpeg(made.file);
    ASSERT_EQ(int(after.frames()), length);
    EXPECT_EQ(after.part(22050, 88200 - 22050).samples, before.part(22050, 88200).samples);
}

TEST_F(Metadata, FieldsAndPicturesOfOtherFormatsComeThrough) {
    for (const char* fixture : {"tone.ogg", "tone.wma", "tone-v1.wma", "tone.flac"}) {
        const Awkward made = make("fields", fixture);
        const QString before = shown(made.file);
        EXPECT_TRUE(before.contains(u"replaygain_track_gain"_s, Qt::CaseInsensitive)) << fixture;
        for (const auto& what : {fadeIn, addSilence}) edit(made.file, what);
        expectSame(before, shown(made.file), fixture);
        edit(made.file, amplify);
        expectSame(withoutLevels(before), withoutLevels(shown(made.file)), fixture);
        EXPECT_FALSE(shown(made.file).contains(u"replaygain"_s, Qt::CaseInsensitive)) << fixture;
    }
}

TEST_F(Metadata, OfOtherFormatsCanBeLeftOut) {
    for (const char* fixture : {"tone.ogg", "tone.wma", "tone.flac"}) {
        const Awkward made = make("fields", fixture);
        edit(made.file, [](AudioEditor& editor) {
            editor.SetKeepTags(false);
            fadeIn(editor);
        });
        const QString fields = shown(made.file);
        for (const char* gone : {"title", "Title", "artist", "Author", "Picture", "gain"})
            EXPECT_FALSE(fields.contains(QString::fromLatin1(gone)))
                << fixture << fields.toStdString();
    }
}

TEST_F(Metadata, AnOggFileWithoutItsEndIsWhole) {
    const Awkward made = make("no-end-of-stream", "tone.ogg");
    const std::size_t before = support::decodeWithFfmpeg(made.file).frames();
    edit(made.file, fadeIn);
    EXPECT_EQ(support::decodeWithFfmpeg(made.file).frames(), before);
}

TEST_F(Metadata, WhatCannotBeCarriedIsRefusedByName) {
    const auto several = folder.file(u"several.ogg"_s);
    const support::Outcome muxed = support::run(
        u"ffmpeg"_s,
        {u"-v"_s, u"error"_s, u"-i"_s, platform::toQString(support::fixture("tone.ogg")), u"-i"_s,
         platform::toQString(support::fixture("tone-mono.ogg")), u"-map"_s, u"0"_s, u"-map"_s,
         u"1"_s, u"-c"_s, u"copy"_s, several});
    ASSERT_EQ(muxed.exitCode, 0) << muxed.err.toStdString();
    const fs::path chained = support::scratchCopy("chained.ogg", folder.path());
    for (const fs::path& file : {platform::toPath(several), chained}) {
        const Bytes before = support::readBytes(file);
        AudioEditor editor;
        editor.Load(platform::toQString(file));
        fadeIn(editor);
        try {
            editor.Save(platform::toQString(file), false, 0);
            ADD_FAILURE() << file << " was saved";
        } catch (const platform::Error& error) {
            const std::string text = error.what();
            EXPECT_NE(text.find(file.filename().string()), std::string::npos) << text;
        }
        EXPECT_EQ(support::readBytes(file), before);
    }
}

TEST_F(Metadata, FieldsAndPicturesGoAlongIntoAnotherFormat) {
    const Awkward made = make("id3v24", "tone.mp3");
    const Awkward vorbis = make("fields", "tone.ogg");
    const Awkward wave = make("id3-chunk", "tone.wav");
    for (const fs::path& from : {made.file, vorbis.file, wave.file}) {
        AudioEditor editor;
        editor.Load(platform::toQString(from));
        for (const bool keep : {true, false}) {
            editor.SetKeepTags(keep);
            editor.SetOutputFormatMp3(44100, 192, 2);
            editor.Save(folder.file(u"out.mp3"_s), false, 0);
            editor.SetOutputFormatWav(44100, 2, 16);
            editor.Save(folder.file(u"out.wav"_s), false, 0);
            for (const char* out : {"out.mp3", "out.wav"}) {
                const QString fields = shown(folder / out);
                EXPECT_EQ(fields.contains(u"Tïtle – 音楽"_s), keep) << from << out;
                EXPECT_EQ(fields.contains(u"Picture"_s), keep) << from << out;
            }
        }
    }
}
