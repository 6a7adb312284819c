// SPDX-License-Identifier: GPL-3.0-or-later
// Short sounds in Ogg, Vorbis and FLAC, which lie on one page: whatever is put into them, their
// length is exact. And what stands beside the sound of Ogg FLAC.
#include <array>
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

Sound tone(int rate, int channels, std::size_t frames) {
    Sound sound{{}, rate, channels};
    for (std::size_t i = 0; i < frames; ++i)
        for (int channel = 0; channel < channels; ++channel)
            sound.samples.push_back(
                0.5F * static_cast<float>(std::sin(double(i) * (0.05 + 0.02 * channel))));
    return sound;
}

/// A program that makes Ogg: %1 is the WAV file, %2 the file to make.
struct Maker {
    const char* name;
    const char* command;
    bool vorbis;
};

void make(const Maker& maker, const Sound& sound, const fs::path& file) {
    const fs::path wav = file.string() + ".wav";
    makeFile(wav, sound, {u"-c:a"_s, u"pcm_s16le"_s});
    runProgram(maker.command, wav, file);
}

std::int64_t framesOfOggdec(const fs::path& file, int channels) {
    const fs::path raw = file.string() + ".raw";
    const auto outcome = support::run(
        u"oggdec"_s,
        {u"-Q"_s, u"-R"_s, u"-o"_s, platform::toQString(raw), platform::toQString(file)});
    EXPECT_EQ(outcome.exitCode, 0) << outcome.err.toStdString();
    return std::int64_t(fs::file_size(raw)) / 2 / channels;
}

class ShortOgg : public testing::TestWithParam<Maker> {
  protected:
    void expectLength(std::int64_t frames, int channels) {
        EXPECT_EQ(std::int64_t(support::decodeWithFfmpeg(file).frames()), frames);
        if (GetParam().vorbis) {
            EXPECT_EQ(framesOfOggdec(file, channels), frames);
        }
    }

    support::TempFolder folder;
    fs::path file = folder / "a.ogg";
};

constexpr std::array rates = {8'000, 11'025, 22'050, 44'100, 48'000, 96'000};
constexpr std::array<std::size_t, 8> lengths = {1, 63, 441, 1'323, 5'001, 16'384, 66'150, 100'003};

INSTANTIATE_TEST_SUITE_P(
    Makers, ShortOgg,
    testing::Values(Maker{"oggenc", "oggenc -Q -q 4 -o %2 %1", true},
                    Maker{"flac", "flac --ogg --silent --force -o %2 %1", false},
                    Maker{"ffmpegFlac", "ffmpeg -y -v error -i %1 -c:a flac %2", false}),
    [](const auto& instance) { return std::string(instance.param.name); });

const Maker oggFlac{"flac", "flac --ogg --silent --force -T artist=one -T artist=two -o %2 %1",
                    false};

/// Every metadata block of Ogg FLAC but the description of the stream and the seek table; the
/// numbers of the pages are in order.
const QString headersOfOggFlac =
    uR"(
import sys, hashlib
from mutagen.ogg import OggPage
pages = []
with open(sys.argv[1], "rb") as file:
    while True:
        try: pages.append(OggPage(file))
        except EOFError: break
assert [page.sequence for page in pages] == list(range(len(pages)))
heads = pages[:next(i for i, page in enumerate(pages) if page.packets[0][:1] == b"\xff")]
packets = OggPage.to_packets(heads, strict=True)
assert int.from_bytes(packets[0][7:9], "big") == len(packets) - 1
assert [packet[0] >> 7 for packet in packets[1:]] == [0] * (len(packets) - 2) + [1]
for packet in packets[1:]:
    if packet[0] & 127 != 3: print(packet[0] & 127, hashlib.md5(packet[4:]).hexdigest())
)"_s;

/// Puts a picture block, an unknown block and one of 300,000 bytes before the sound.
const QString addHeaders =
    uR"(
import sys
from mutagen.ogg import OggPage
import io
data = open(sys.argv[1], "rb").read()
file, pages = io.BytesIO(data), []
while True:
    try: pages.append(OggPage(file))
    except EOFError: break
first = next(i for i, page in enumerate(pages) if page.packets[0][:1] == b"\xff")
packets = OggPage.to_packets(pages[:first], strict=True)
packets[-1] = bytes([packets[-1][0] & 127]) + packets[-1][1:]
def block(kind, body): return bytes([kind]) + len(body).to_bytes(3, "big") + body
art = b"".join(n.to_bytes(4, "big") for n in (3, 9)) + b"image/png" + bytes(4)
art += b"".join(n.to_bytes(4, "big") for n in (1, 1, 24, 0, 5)) + b"bytes"
packets += [block(6, art), block(100, b"\xff\x00\x01"), block(2 | 128, b"test" + bytes(range(256)) * 1200)]
packets[0] = packets[0][:7] + (len(packets) - 1).to_bytes(2, "big") + packets[0][9:]
heads = OggPage.from_packets(packets[:1]) + OggPage.from_packets(packets[1:], sequence=1)
heads[0].first = True
pages = heads + pages[first:]
for number, page in enumerate(pages):
    page.serial, page.sequence = pages[-1].serial, number
    if number < len(heads): page.position = 0
open(sys.argv[1], "wb").write(b"".join(page.write() for page in pages))
)"_s;

}  // namespace

TEST_P(ShortOgg, SilenceAndFadesLeaveTheLengthExact) {
    for (std::size_t i = 0; i < lengths.size(); ++i) {
        const int rate = rates[(i + i / 6) % rates.size()];
        const int channels = 1 + int(i / 3 % 2);
        const std::size_t length = lengths[i];
        SCOPED_TRACE(std::to_string(length) + " frames of " + std::to_string(rate) + " Hz");
        make(GetParam(), tone(rate, channels, length), file);
        auto frames = std::int64_t(length);
        edit(file, [](AudioEditor& editor) { editor.InsertSilence(500); });
        frames += rate / 2 + rate % 2;  // milliseconds become the nearest frame
        expectLength(frames, channels);
        edit(file, [](AudioEditor& editor) {
            editor.SetSelectionStart(editor.GetLength());
            editor.InsertSilence(100);
            editor.SelectWholeFile();
            editor.Fade(0, 100);
        });
        frames += std::llround(0.1 * rate);
        expectLength(frames, channels);
    }
}

TEST(OggFlac, SilenceMovesTheSoundBitForBit) {
    const support::TempFolder folder;
    const fs::path file = folder / "a.oga";
    make(oggFlac, tone(44'100, 2, 66'150), file);
    const Sound before = support::decodeWithFfmpeg(file);
    edit(file, [](AudioEditor& editor) { editor.InsertSilence(300); });
    const Sound after = support::decodeWithFfmpeg(file);
    ASSERT_EQ(after.frames(), before.frames() + 13'230);
    EXPECT_EQ(after.part(13'230, before.frames()).samples, before.samples);
    for (const float sample : after.part(0, 13'230).samples) ASSERT_EQ(sample, 0);
}

TEST(OggFlac, EveryMetadataBlockComesThrough) {
    const support::TempFolder folder;
    const fs::path file = folder / "a.oga";
    make(oggFlac, tone(44'100, 1, 66'150), file);
    support::python(addHeaders, {file});
    const QByteArray before = support::python(headersOfOggFlac, {file});
    ASSERT_EQ(before.count('\n'), 5) << before.toStdString();
    edit(file, [](AudioEditor& editor) { editor.InsertSilence(300); });
    EXPECT_EQ(support::python(headersOfOggFlac, {file}).toStdString(), before.toStdString());
    EXPECT_EQ(support::decodeWithFfmpeg(file).frames(), 79'380U);
    edit(file, [](AudioEditor& editor) { editor.InsertSilence(300); });
    EXPECT_EQ(support::python(headersOfOggFlac, {file}).toStdString(), before.toStdString());
}
