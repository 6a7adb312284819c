// SPDX-License-Identifier: GPL-3.0-or-later
// Files whose time stamps or numbers are wrong: sound is what their packets hold, in saves and
// conversions too, and comes out the same every time.
#include <cmath>

#include <gtest/gtest.h>

#include "platform/Paths.h"
#include "tests/effects/engine/Made.h"
#include "tests/support/Fixtures.h"
#include "tests/support/Python.h"
#include "tests/support/TempFolder.h"

using namespace Qt::Literals::StringLiterals;
using effects::AudioEditor;
using support::Sound;

namespace {

namespace fs = std::filesystem;

/// Two tones and a little noise, nothing of which repeats.
Sound music(int rate, int channels, double seconds) {
    Sound sound = noise(rate, channels, seconds, 0.02);
    for (std::size_t i = 0; i < sound.samples.size(); ++i) {
        const double time = double(i / std::size_t(channels)) / rate;
        sound.samples[i] += static_cast<float>(0.3 * std::sin(time * (2'000 + 300 * time)) +
                                               0.2 * std::sin(time * 9'000));
    }
    return sound;
}

/// Makes a file, and copies its packets through a container that rounds time stamps.
fs::path jittered(const support::TempFolder& folder, const Sound& sound, const QStringList& coding,
                  const char* through, const char* name) {
    const fs::path first = folder / through;
    makeFile(first, sound, coding);
    runProgram("ffmpeg -v error -y -i %1 -c copy %2", first, folder / name);
    return folder / name;
}

/// Writes other numbers into the second half of a FLAC file's frames, checksums right.
const QString renumber =
    uR"(
import sys
data = open(sys.argv[1], "rb").read()
def crc8(b):
    c = 0
    for x in b:
        c ^= x
        for _ in range(8): c = (c << 1 ^ 7) & 255 if c & 128 else c << 1
    return c
table = []
for i in range(256):
    c = i << 8
    for _ in range(8): c = (c << 1 ^ 0x8005) & 0xFFFF if c & 0x8000 else c << 1
    table.append(c)
def crc16(b):
    c = 0
    for x in b: c = (c << 8) & 0xFFFF ^ table[c >> 8 ^ x]
    return c
at = 4
while True:
    last, size = data[at] & 128, int.from_bytes(data[at + 1:at + 4], "big")
    at += 4 + size
    if last: break
def coded(number):
    return chr(number).encode("utf-8", "surrogatepass")
starts, number, i = [], 0, at
while i >= 0:
    starts.append(i)
    number += 1
    head = data[at:at + 2]
    i = data.find(head, i + 4)
    while i >= 0 and not (data[i + 4:i + 4 + len(coded(number))] == coded(number)): i = data.find(head, i + 1)
out = data[:at]
for n, (begin, end) in enumerate(zip(starts, starts[1:] + [len(data)])):
    frame = data[begin:end]
    old = coded(n)
    head = frame[:4 + len(old)]
    rest = frame[4 + len(old):-2]
    k = {6: 1, 7: 2}.get(frame[2] >> 4, 0) + {12: 1, 13: 2, 14: 2}.get(frame[2] & 15, 0)
    new = coded(n if n < len(starts) // 2 else n + 15)
    header = frame[:4] + new + rest[:k]
    frame = header + bytes([crc8(header)]) + rest[k + 1:]
    out += frame + crc16(frame).to_bytes(2, "big")
open(sys.argv[1], "wb").write(out)
)"_s;

}  // namespace

TEST(Jitter, FlacOfWrongFrameNumbersKeepsItsLength) {
    const support::TempFolder folder;
    const fs::path file = folder / "a.flac";
    makeFile(file, music(44'100, 1, 26), {u"-c:a"_s, u"flac"_s, u"-sample_fmt"_s, u"s16"_s});
    const Sound before = support::decodeWithFfmpeg(file);
    ASSERT_EQ(before.frames(), 26U * 44'100);
    support::python(renumber, {file});
    ASSERT_EQ(support::decodeWithFfmpeg(file).samples, before.samples);
    edit(file, [](AudioEditor& editor) {
        EXPECT_EQ(editor.GetLength(), 26 * 44'100);
        editor.InsertSilence(1'000);
    });
    const Sound after = support::decodeWithFfmpeg(file);
    ASSERT_EQ(after.frames(), 27U * 44'100);
    EXPECT_EQ(after.part(44'100, before.frames()).samples, before.samples);
}

TEST(Jitter, NormalizeGivesTheSameBytesEveryTime) {
    const support::TempFolder folder;
    const Sound sound = music(44'100, 2, 2.5);
    const fs::path files[] = {
        jittered(folder, sound, {u"-c:a"_s, u"libvorbis"_s}, "a.webm", "a.ogg"),
        jittered(folder, sound, {u"-c:a"_s, u"aac"_s}, "b.mka", "b.m4a"),
        jittered(folder, sound, {u"-c:a"_s, u"flac"_s}, "c.mka", "c.flac")};
    for (const fs::path& file : files) {
        std::vector<std::byte> first;
        for (int run = 0; run < 6; ++run) {
            const fs::path copy = folder / ("copy" + file.extension().string());
            fs::copy_file(file, copy, fs::copy_options::overwrite_existing);
            edit(copy, [](AudioEditor& editor) {
                editor.SelectWholeFile();
                editor.Normalize(100, true);
            });
            if (run == 0) first = support::readBytes(copy);
            ASSERT_TRUE(support::readBytes(copy) == first) << file << ", run " << run;
        }
    }
}

TEST(Jitter, ConversionToAnotherRateNeitherDriftsNorGaps) {
    const support::TempFolder folder;
    const fs::path file =
        jittered(folder, music(48'000, 2, 9), {u"-c:a"_s, u"libvorbis"_s}, "a.webm", "a.ogg");
    runProgram("oggdec -Q -b 16 -o %2 %1", file, folder / "judge48.wav");
    runProgram("ffmpeg -v error -i %1 -af aresample=44100:resampler=soxr -c:a pcm_f32le %2",
               folder / "judge48.wav", folder / "judge.wav");
    const Sound judge = support::decodeWithFfmpeg(folder / "judge.wav");
    AudioEditor editor;
    editor.Load(platform::toQString(file));
    editor.SetOutputFormatWav(44'100, 2, 16);
    editor.Save(folder.file(u"ours.wav"_s), false, 0);
    const Sound ours = support::decodeWithFfmpeg(folder / "ours.wav");
    EXPECT_NEAR(double(ours.frames()), double(judge.frames()), 1);
    EXPECT_GT(support::snrDb(judge.samples, ours.samples), 60);
}

// The delay of an M4A file that has no edit list, as iTunes states it.
TEST(Jitter, M4aBeginsWhereItunesSaysSo) {
    const support::TempFolder folder;
    const fs::path file = folder / "a.m4a";
    const Sound sound = music(44'100, 2, 3);
    makeFile(file, sound, {u"-c:a"_s, u"aac"_s, u"-use_editlist"_s, u"0"_s});
    support::python(
        uR"(
import sys, mutagen.mp4
file = mutagen.mp4.MP4(sys.argv[1])
frames = 3 * 44100 - 100  # fewer than the durations of its samples say
padding = -(frames + 1024) % 1024
text = " 00000000 %08X %08X %016X" % (1024, padding, frames) + " 00000000" * 8
file["----:com.apple.iTunes:iTunSMPB"] = mutagen.mp4.MP4FreeForm(text.encode())
file.save()
)"_s,
        {file});
    AudioEditor editor;
    editor.Load(platform::toQString(file));
    EXPECT_EQ(editor.GetLength(), 3 * 44'100 - 100);
    editor.SetOutputFormatWav(44'100, 2, 16);
    editor.Save(folder.file(u"ours.wav"_s), false, 0);
    const Sound ours = support::decodeWithFfmpeg(folder / "ours.wav");
    EXPECT_EQ(support::lagOf(sound, ours, 2'000), 0);
    EXPECT_GT(support::snrDb(sound.samples, ours.samples), 10);
}
