// SPDX-License-Identifier: GPL-3.0-or-later
// What the containers of FLAC, AAC, ALAC, WavPack, AIFF and compressed WAVE hold beside the sound
// comes through a save, as other programs read it.
#include <functional>
#include <random>

#include <gtest/gtest.h>

#include "effects/engine/AudioEditor.h"
#include "platform/Error.h"
#include "platform/Paths.h"
#include "tests/support/Fixtures.h"
#include "tests/support/Python.h"
#include "tests/support/Sound.h"
#include "tests/support/TempFolder.h"

using namespace Qt::Literals::StringLiterals;
using effects::AudioEditor;

namespace {

namespace fs = std::filesystem;

constexpr int rate = 44'100;

class Carried : public testing::Test {
  protected:
    fs::path copyOf(const std::string& fixture) {
        return support::scratchCopy(fixture, folder.path());
    }

    static void edit(const fs::path& file, const std::function<void(AudioEditor&)>& what) {
        AudioEditor editor;
        editor.Load(platform::toQString(file));
        what(editor);
        editor.Save(platform::toQString(file), false, 0);
    }
    static void fadeIn(AudioEditor& editor) {
        editor.SetSelectionActive(true);
        editor.SetSelectionEnd(editor.TimeToPosition(500));
        editor.Fade(0, 100);
    }
    static void addSilence(AudioEditor& editor) { editor.InsertSilence(1'000); }
    static void amplify(AudioEditor& editor) {
        editor.SelectWholeFile();
        editor.Amplify(60);
    }
    static void cutTheFirstSecond(AudioEditor& editor) {
        editor.SetSelectionActive(true);
        editor.SetSelectionEnd(rate);
        editor.DeleteSelection();
        editor.SetSelectionActive(false);
    }

    /// What is said of the file is the same after edits of a part of it.
    void expectKept(const fs::path& file, const QString& say) {
        const QByteArray before = support::python(say, {file});
        ASSERT_FALSE(before.trimmed().isEmpty());
        for (const auto& what : {fadeIn, addSilence}) {
            edit(file, what);
            EXPECT_EQ(support::python(say, {file}).toStdString(), before.toStdString()) << file;
        }
    }

    static std::string run(const QString& program, const QStringList& arguments) {
        const support::Outcome outcome = support::run(program, arguments);
        EXPECT_EQ(outcome.exitCode, 0) << outcome.err.toStdString();
        return outcome.out.toStdString();
    }

    support::TempFolder folder;
};

/// Every chunk of an AIFF ("big") or WAVE ("little") file but those that follow from the sound.
QString chunksOf(const QString& byteOrder) {
    return uR"(
import sys, hashlib
data = open(sys.argv[1], "rb").read()
def number(at): return int.from_bytes(data[at:at + 4], "%1")
assert number(4) == len(data) - 8
at = 12
while at < len(data):
    kind, size = data[at:at + 4], number(at + 4)
    sound = kind in (b"COMM", b"SSND", b"data", b"fact")
    print(kind, "" if sound else hashlib.md5(data[at + 8:at + 8 + size]).hexdigest())
    at += 8 + size + size % 2
)"_s.arg(byteOrder);
}

/// Every metadata block of a FLAC file but those that follow from the sound.
const QString blocksOfFlac =
    uR"(
import sys, hashlib
data = open(sys.argv[1], "rb").read()
at = data.index(b"fLaC") + 4
print("before:", data[:at - 4][:20])
while True:
    kind, size = data[at] & 127, int.from_bytes(data[at + 1:at + 4], "big")
    if kind not in (0, 3):
        print(kind, size, hashlib.md5(data[at + 4:at + 4 + size]).hexdigest())
    last, at = data[at] & 128, at + 4 + size
    if last: break
print("behind:", data[-128:] if data[-128:-125] == b"TAG" else b"")
)"_s;

/// The user data of an MP4 file's movie, as it lies there.
const QString userDataOfMp4 =
    uR"(
import sys, hashlib
data = open(sys.argv[1], "rb").read()
def boxes(begin, end):
    while begin + 8 <= end:
        size = int.from_bytes(data[begin:begin + 4], "big")
        if size < 8: break
        yield data[begin + 4:begin + 8], begin, begin + size
        begin += size
for kind, begin, end in boxes(0, len(data)):
    if kind == b"uuid": print(kind, hashlib.md5(data[begin:end]).hexdigest())
    if kind != b"moov": continue
    for inner, first, last in boxes(begin + 8, end):
        if inner in (b"udta", b"meta"):
            print(inner, last - first, hashlib.md5(data[first:last]).hexdigest())
)"_s;

const QString fieldsByMutagen =
    uR"(
import sys, hashlib, mutagen
tags = mutagen.File(sys.argv[1]).tags
for key in sorted(tags.keys()):
    value = tags[key]
    value = value if isinstance(value, list) else [value]
    print(key, [hashlib.md5(bytes(v)).hexdigest() if isinstance(v, bytes) else str(v)[:200] for v in value])
)"_s;

}  // namespace

TEST_F(Carried, FlacKeepsEveryMetadataBlock) {
    const fs::path file = copyOf("tone.flac");
    support::python(
        uR"(
import sys, base64, mutagen.flac, mutagen.id3
file = mutagen.flac.FLAC(sys.argv[1])
art = mutagen.flac.Picture()
art.data, art.mime, art.type = bytes(range(256)) * 40, "image/png", 3
file.add_picture(art)
art.type = 4
file.add_picture(art)
art.type = 5
file["metadata_block_picture"] = [base64.b64encode(art.write()).decode()]
file["artist"] = ["one", "two", "three"]
file["Artist"] = ["one", "two", "three"]
file.save()
data = open(sys.argv[1], "rb").read()
size = int.from_bytes(data[5:8], "big")
application = bytes([2, 0, 0, 12]) + b"testabcdefgh"
foreign = bytes([100, 0, 0, 3]) + b"\x00\xff\x01"
id3 = mutagen.id3.ID3()
id3.add(mutagen.id3.TIT2(encoding=3, text=["In front"]))
id3.save(sys.argv[1] + ".id3")
front = open(sys.argv[1] + ".id3", "rb").read()
tail = b"TAG" + b"Behind".ljust(125, b"\0")
open(sys.argv[1], "wb").write(front + data[:8 + size] + application + foreign + data[8 + size:] + tail)
)"_s,
        {file});
    expectKept(file, blocksOfFlac);
    EXPECT_EQ(support::decodeWithFfmpeg(file).frames(), 88'200U + 44'100U);
}

// The last comment says that it is longer than the block.
TEST_F(Carried, FlacCommentsOfAWrongSizeStay) {
    const fs::path file = copyOf("tone.flac");
    support::python(
        uR"(
import sys, mutagen.flac
file = mutagen.flac.FLAC(sys.argv[1])
file["title"], file["last"] = ["A title"], ["value"]
file.save()
data = bytearray(open(sys.argv[1], "rb").read())
at = data.lower().index(b"last=value") - 4
data[at] = 200
open(sys.argv[1], "wb").write(data)
)"_s,
        {file});
    expectKept(file, blocksOfFlac);
}

TEST_F(Carried, FlacCueSheetMovesWithTheSound) {
    const fs::path file = copyOf("music.flac");
    support::writeBytes(folder / "sheet.cue", {});
    support::python(
        uR"(
import sys
open(sys.argv[1], "w").write('''FILE "x.wav" WAVE
  TRACK 01 AUDIO
    INDEX 01 00:00:00
  TRACK 02 AUDIO
    INDEX 00 00:04:00
    INDEX 01 00:05:00
  TRACK 03 AUDIO
    INDEX 01 00:12:00
''')
)"_s,
        {folder / "sheet.cue"});
    run(u"metaflac"_s,
        {u"--import-cuesheet-from="_s + folder.file(u"sheet.cue"_s), platform::toQString(file)});
    const auto indexes = [&] {
        return run(u"metaflac"_s, {u"--export-cuesheet-to=-"_s, platform::toQString(file)});
    };
    edit(file, amplify);
    EXPECT_NE(indexes().find("INDEX 01 00:05:00"), std::string::npos) << indexes();
    edit(file, addSilence);
    EXPECT_NE(indexes().find("INDEX 00 00:05:00"), std::string::npos) << indexes();
    EXPECT_NE(indexes().find("INDEX 01 00:06:00"), std::string::npos) << indexes();
    EXPECT_NE(indexes().find("INDEX 01 00:13:00"), std::string::npos) << indexes();
    edit(file, cutTheFirstSecond);
    EXPECT_NE(indexes().find("INDEX 01 00:05:00"), std::string::npos) << indexes();
    const std::string listed =
        run(u"metaflac"_s, {u"--list"_s, u"--block-type=CUESHEET"_s, platform::toQString(file)});
    EXPECT_NE(listed.find("offset: 882000"), std::string::npos) << listed;  // the lead-out
}

TEST_F(Carried, FlacLosesOnlyTheLevelWhenTheLevelChanges) {
    const fs::path file = copyOf("tone.flac");
    run(u"metaflac"_s, {u"--set-tag=REPLAYGAIN_TRACK_GAIN=-6 dB"_s, u"--set-tag=TITLE=Kept"_s,
                        platform::toQString(file)});
    edit(file, amplify);
    run(u"flac"_s, {u"-s"_s, u"-t"_s, platform::toQString(file)});
    const std::string tags =
        run(u"metaflac"_s, {u"--export-tags-to=-"_s, platform::toQString(file)});
    EXPECT_NE(tags.find("TITLE=Kept"), std::string::npos);
    EXPECT_EQ(tags.find("REPLAYGAIN"), std::string::npos);
    edit(file, [](AudioEditor& editor) {
        editor.SetKeepTags(false);
        fadeIn(editor);
    });
    EXPECT_EQ(
        run(u"metaflac"_s, {u"--export-tags-to=-"_s, platform::toQString(file)}).find("TITLE"),
        std::string::npos);
}

TEST_F(Carried, Mp4KeepsItsUserDataByteForByte) {
    for (const char* fixture : {"tone.m4a", "tone-alac.m4a"}) {
        const fs::path file = copyOf(fixture);
        support::python(
            uR"(
import sys, mutagen.mp4
file = mutagen.mp4.MP4(sys.argv[1])
file["\xa9ART"] = ["one", "two", "three"]
file["\xa9nam"] = ["A title"]
file["trkn"] = [(3, 12)]
file["----:com.apple.iTunes:MOOD"] = [b"calm", b"blue"]
file["covr"] = [mutagen.mp4.MP4Cover(b"\x89PNG" + bytes(9000), mutagen.mp4.MP4Cover.FORMAT_PNG),
                mutagen.mp4.MP4Cover(b"\xff\xd8" + bytes(500))]
file.save()
# A second box of the same name, as some programs write several artists; one of nobody's; and XMP.
data = bytearray(open(sys.argv[1], "rb").read())
def box(kind, body): return (len(body) + 8).to_bytes(4, "big") + kind + body
extra = (box(b"\xa9ART", box(b"data", b"\0\0\0\1\0\0\0\0four")) +
         box(b"QqQq", box(b"data", b"\0\0\0\0\0\0\0\0\xff\x00odd")))
at = data.index(b"ilst") - 4
end = at + int.from_bytes(data[at:at + 4], "big")
data[end:end] = extra
for kind in (b"ilst", b"meta", b"udta", b"moov"):
    at = data.index(kind) - 4
    data[at:at + 4] = (int.from_bytes(data[at:at + 4], "big") + len(extra)).to_bytes(4, "big")
data += box(b"uuid", bytes(range(16)) + b"<x/>")
open(sys.argv[1], "wb").write(data)
)"_s,
            {file});
        const QByteArray fields = support::python(fieldsByMutagen, {file});
        EXPECT_TRUE(fields.contains("'three'")) << fields.toStdString();
        expectKept(file, userDataOfMp4);
        EXPECT_EQ(support::python(fieldsByMutagen, {file}), fields);
        const double packet = 1'024;  // of AAC, whose padding the judge leaves in
        EXPECT_NEAR(double(support::decodeWithFfmpeg(file).frames()), 88'200 + 44'100, packet);
    }
}

TEST_F(Carried, Mp4LosesOnlyTheLevelWhenTheLevelChanges) {
    const fs::path file = copyOf("tone.m4a");
    support::python(
        uR"(
import sys, mutagen.mp4
file = mutagen.mp4.MP4(sys.argv[1])
file["\xa9ART"] = ["one", "two", "three"]
file["----:com.apple.iTunes:iTunNORM"] = [b" 00000A2B"]
file["----:com.apple.iTunes:replaygain_track_gain"] = [b"-6 dB"]
file["----:com.apple.iTunes:MOOD"] = [b"calm"]
file.save()
)"_s,
        {file});
    edit(file, amplify);
    const std::string fields = support::python(fieldsByMutagen, {file}).toStdString();
    EXPECT_NE(fields.find("'three'"), std::string::npos) << fields;
    EXPECT_NE(fields.find("MOOD"), std::string::npos) << fields;
    EXPECT_EQ(fields.find("iTunNORM"), std::string::npos) << fields;
    EXPECT_EQ(fields.find("replaygain"), std::string::npos) << fields;
}

// Three chapters in the user data alone, as audio-book tools write them.
TEST_F(Carried, Mp4ChaptersMoveWithTheSound) {
    const fs::path file = copyOf("music.m4a");
    support::python(
        uR"(
import sys
data = bytearray(open(sys.argv[1], "rb").read())
def box(kind, body): return (len(body) + 8).to_bytes(4, "big") + kind + body
chapters = b"".join((s * 10000000).to_bytes(8, "big") + bytes([len(t)]) + t
                    for s, t in ((0, b"One"), (5, b"Two"), (12, b"Three")))
extra = box(b"chpl", b"\1\0\0\0\0\0\0\0\3" + chapters)
at = data.index(b"moov") - 4
assert at + int.from_bytes(data[at:at + 4], "big") == len(data)
udta = data.find(b"udta", at)
if udta < 0:
    extra = box(b"udta", extra)
    data += extra
else:
    end = udta - 4 + int.from_bytes(data[udta - 4:udta], "big")
    data[end:end] = extra
    data[udta - 4:udta] = (int.from_bytes(data[udta - 4:udta], "big") + len(extra)).to_bytes(4, "big")
data[at:at + 4] = (int.from_bytes(data[at:at + 4], "big") + len(extra)).to_bytes(4, "big")
open(sys.argv[1], "wb").write(data)
)"_s,
        {file});
    const auto starts = [&] {
        return run(u"ffprobe"_s, {u"-v"_s, u"error"_s, u"-show_entries"_s, u"chapter=start_time"_s,
                                  u"-of"_s, u"csv=p=0"_s, platform::toQString(file)});
    };
    ASSERT_EQ(starts(), "0.000000\n5.000000\n12.000000\n");
    edit(file, fadeIn);
    EXPECT_EQ(starts(), "0.000000\n5.000000\n12.000000\n");
    edit(file, addSilence);
    EXPECT_EQ(starts(), "1.000000\n6.000000\n13.000000\n");
}

TEST_F(Carried, Mp4ChaptersOnATrackOfTheirOwnAreRefusedAsSuch) {
    const fs::path file = folder / "book.m4a";
    support::writeBytes(folder / "chapters.txt", {});
    support::python(
        uR"(
import sys
open(sys.argv[1], "w").write(";FFMETADATA1\n" + "".join(
    f"[CHAPTER]\nTIMEBASE=1/1\nSTART={s}\nEND={s+1}\ntitle=c{s}\n" for s in (0, 1)))
)"_s,
        {folder / "chapters.txt"});
    run(u"ffmpeg"_s,
        {u"-v"_s, u"error"_s, u"-i"_s, platform::toQString(support::fixture("tone.m4a")), u"-i"_s,
         folder.file(u"chapters.txt"_s), u"-map_chapters"_s, u"1"_s, u"-c"_s, u"copy"_s,
         platform::toQString(file)});
    const auto before = support::readBytes(file);
    try {
        edit(file, fadeIn);
        ADD_FAILURE() << "was saved";
    } catch (const platform::Error& error) {
        EXPECT_NE(std::string(error.what()).find("chapters"), std::string::npos) << error.what();
    }
    EXPECT_EQ(support::readBytes(file), before);
}

TEST_F(Carried, WavPackKeepsItsItemsAndCovers) {
    const fs::path file = copyOf("tone.wv");
    support::python(
        uR"(
import sys, mutagen.wavpack, mutagen.apev2 as ape
file = mutagen.wavpack.WavPack(sys.argv[1])
file["Artist"] = ["one", "two", "three"]
file['Cover Art (Front)'] = ape.APEValue(b"front.png\0" + bytes(range(256)) * 20, ape.BINARY)
file['Cover Art (Back)'] = ape.APEValue(b"back.png\0" + bytes(range(255)) * 20, ape.BINARY)
file["Related"] = ape.APEValue("http://example.org", ape.EXTERNAL)
file.save()
)"_s,
        {file});
    expectKept(file, fieldsByMutagen);
    run(u"wvunpack"_s, {u"-q"_s, u"-v"_s, platform::toQString(file)});
    edit(file, amplify);
    EXPECT_TRUE(support::python(fieldsByMutagen, {file}).contains("Cover Art (Back)"));
}

// The program wavpack keeps all of a WAVE file but its sound for the day it is unpacked.
TEST_F(Carried, WavPackWithForeignChunksIsRefusedAsSuch) {
    const fs::path wav = folder / "packed.wav";
    const fs::path file = folder / "packed.wv";
    const auto pack = [&] {
        run(u"wavpack"_s,
            {u"-q"_s, u"-y"_s, platform::toQString(wav), u"-o"_s, platform::toQString(file)});
    };
    // A plain head is no reason.
    run(u"sox"_s, {platform::toQString(support::fixture("tone.wav")), u"-b"_s, u"16"_s,
                   platform::toQString(wav)});
    pack();
    edit(file, fadeIn);

    const QString chunkBehind =
        uR"(
import sys
data = open(sys.argv[1], "rb").read()
data += b"cue " + (4).to_bytes(4, "little") + bytes(4)
open(sys.argv[1], "wb").write(data[:4] + (len(data) - 8).to_bytes(4, "little") + data[8:])
)"_s;
    const QString chunkBefore =
        uR"(
import sys
data = open(sys.argv[1], "rb").read()
chunk = b"LIST" + (18).to_bytes(4, "little") + b"INFOINAM" + (6).to_bytes(4, "little") + b"Title\0"
data = data[:12] + chunk + data[12:]
open(sys.argv[1], "wb").write(data[:4] + (len(data) - 8).to_bytes(4, "little") + data[8:])
)"_s;
    for (const auto& [script, name] : {std::pair(chunkBehind, "cue "), {chunkBefore, "LIST"}}) {
        support::python(script, {wav});
        pack();
        const auto before = support::readBytes(file);
        try {
            edit(file, fadeIn);
            ADD_FAILURE() << "was saved with " << name;
        } catch (const platform::Error& error) {
            EXPECT_NE(std::string(error.what()).find(name), std::string::npos) << error.what();
        }
        EXPECT_EQ(support::readBytes(file), before);
    }
}

TEST_F(Carried, RawAacAndTtaKeepTheTagsAroundThem) {
    const fs::path tta = folder / "tone.tta";
    run(u"ffmpeg"_s, {u"-v"_s, u"error"_s, u"-i"_s,
                      platform::toQString(support::fixture("tone.wav")), platform::toQString(tta)});
    for (const fs::path& file : {copyOf("tone.aac"), tta}) {
        support::python(
            uR"(
import sys, mutagen.id3 as id3
tag = id3.ID3()
tag.add(id3.TIT2(encoding=3, text=["A title", "another"]))
tag.add(id3.APIC(encoding=0, mime="image/png", type=3, desc="front", data=bytes(range(256)) * 9))
tag.add(id3.PRIV(owner="someone", data=b"\x00\xff\xe5private"))
tag.save(sys.argv[1])
open(sys.argv[1], "ab").write(b"TAG" + b"Behind".ljust(125, b"\0"))
)"_s,
            {file});
        expectKept(file,
                   uR"(
import sys, hashlib
data = open(sys.argv[1], "rb").read()
size = 10 + sum(data[6 + i] << (21 - 7 * i) for i in range(4))
print(data[:3], size, hashlib.md5(data[:size]).hexdigest(), data[-128:])
)"_s);
    }
}

TEST_F(Carried, OpusKeepsFieldsAndCovers) {
    const fs::path file = copyOf("tone.opus");
    support::python(
        uR"(
import sys, base64, mutagen, mutagen.flac
file = mutagen.File(sys.argv[1])
art = mutagen.flac.Picture()
covers = []
for kind in (3, 4):
    art.data, art.mime, art.type = bytes(range(200 + kind)) * 300, "image/png", kind
    covers.append(base64.b64encode(art.write()).decode())
file["metadata_block_picture"] = covers
file["artist"] = ["one", "two", "three"]
file["odd field"] = ["x=y"]
file.save()
)"_s,
        {file});
    expectKept(file,
               uR"(
import sys, hashlib, mutagen
tags = mutagen.File(sys.argv[1]).tags
for key in sorted(k.lower() for k in tags.keys()):
    if key != "encoder":
        print(key, sorted(hashlib.md5(v.encode()).hexdigest() for v in tags[key]))
)"_s);
}

TEST_F(Carried, AiffKeepsEveryChunk) {
    const fs::path file = copyOf("tone.aiff");
    support::python(
        uR"(
import sys, mutagen.aiff, mutagen.id3 as id3
file = mutagen.aiff.AIFF(sys.argv[1])
file.add_tags()
file.tags.add(id3.TPE1(encoding=3, text=["one", "two", "three"]))
file.tags.add(id3.POPM(email="me@example.org", rating=196, count=7))
file.tags.add(id3.APIC(encoding=0, mime="image/png", type=3, desc="a", data=bytes(range(256))))
file.tags.add(id3.APIC(encoding=0, mime="image/png", type=4, desc="b", data=bytes(range(255))))
file.save()
data = bytearray(open(sys.argv[1], "rb").read())
def chunk(kind, body): return kind + len(body).to_bytes(4, "big") + body + bytes(len(body) % 2)
data[12:12] = chunk(b"NAME", b"A name")
data += chunk(b"ANNO", b"odd") + chunk(b"APPL", b"stocabc")
data[4:8] = (len(data) - 8).to_bytes(4, "big")
open(sys.argv[1], "wb").write(data)
)"_s,
        {file});
    expectKept(file, chunksOf(u"big"_s));
    EXPECT_EQ(support::decodeWithFfmpeg(file).frames(), 88'200U + 44'100U);
}

TEST_F(Carried, CompressedWaveKeepsEveryChunk) {
    const fs::path alaw = folder / "tone-alaw.wav";
    run(u"sox"_s, {platform::toQString(support::fixture("tone.wav")), u"-e"_s, u"a-law"_s,
                   platform::toQString(alaw)});
    for (const fs::path& file : {copyOf("tone-mulaw.wav"), alaw}) {
        support::python(
            uR"(
import sys
data = bytearray(open(sys.argv[1], "rb").read())
def chunk(kind, body): return kind + len(body).to_bytes(4, "little") + body + bytes(len(body) % 2)
data[12:12] = chunk(b"bext", bytes(602))
data += chunk(b"LIST", b"INFO" + chunk(b"INAM", b"A title")) + chunk(b"odd ", b"abc")
data[4:8] = (len(data) - 8).to_bytes(4, "little")
open(sys.argv[1], "wb").write(data)
)"_s,
            {file});
        expectKept(file, chunksOf(u"little"_s));
        EXPECT_EQ(support::decodeWithFfmpeg(file).frames(), 88'200U + 44'100U);
    }
}

TEST_F(Carried, WithoutAnyTagsNoFormatIsRefusedForThem) {
    for (const char* name : {"t.au", "t.caf", "t.w64"}) {
        const fs::path file = folder / name;
        run(u"ffmpeg"_s,
            {u"-v"_s, u"error"_s, u"-i"_s, platform::toQString(support::fixture("tone.wav")),
             u"-fflags"_s, u"+bitexact"_s, u"-map_metadata"_s, u"-1"_s, platform::toQString(file)});
        edit(file, addSilence);
        EXPECT_EQ(support::decodeWithFfmpeg(file).frames(), 88'200U + 44'100U) << name;
    }
}

// Bytes around the sound turned over at random: the file is saved whole, or refused and as it was.
TEST_F(Carried, WhatIsDamagedIsSavedWholeOrLeftAlone) {
    std::mt19937 random(7);
    for (const char* fixture :
         {"tone.flac", "tone.m4a", "tone.aiff", "tone.wv", "tone-mulaw.wav"}) {
        const auto whole = support::readBytes(support::fixture(fixture));
        const bool atEnd = std::string(fixture) == "tone.m4a";
        for (int round = 0; round < 25; ++round) {
            auto bytes = whole;
            for (int flip = 0; flip < 3; ++flip) {
                const std::size_t at = random() % 400;
                bytes[atEnd ? bytes.size() - 1 - at : at] = std::byte(random() % 256);
            }
            const fs::path file = folder / fixture;
            support::writeBytes(file, bytes);
            try {
                AudioEditor editor;
                editor.Load(platform::toQString(file));
                const std::int32_t length = editor.GetLength();
                fadeIn(editor);
                editor.Save(platform::toQString(file), false, 0);
                AudioEditor again;
                again.Load(platform::toQString(file));
                EXPECT_EQ(again.GetLength(), length) << fixture << " round " << round;
            } catch (const platform::Error& error) {
                EXPECT_NE(std::string(error.what()), "");
                EXPECT_EQ(support::readBytes(file), bytes) << fixture << " round " << round;
            }
        }
    }
}
