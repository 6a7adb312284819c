// SPDX-License-Identifier: GPL-3.0-or-later
// A WAV file is patched: what an edit does not touch comes out as the bytes that it was.
#include <algorithm>
#include <fstream>
#include <ostream>
#include <string>

#include <gtest/gtest.h>

#include "audio/edit/Saver.h"
#include "audio/wave/Layout.h"
#include "effects/engine/AudioEditor.h"
#include "platform/Paths.h"
#include "tests/audio/wave/RiffBuilder.h"
#include "tests/support/Fixtures.h"
#include "tests/support/Sound.h"
#include "tests/support/TempFolder.h"

using effects::AudioEditor;

namespace {

namespace fs = std::filesystem;
using riff::Builder;
using riff::Bytes;

/// A file with chunks on both sides of the sound.
Builder decorated(int bits, int channels, const Bytes& sound) {
    return Builder()
        .chunk("bext", riff::pattern(603, 2))
        .fmt(bits, channels)
        .chunk("iXML", riff::pattern(77, 3))
        .chunk("data", sound)
        .chunk("cue ", riff::pattern(28, 6))
        .chunk("LIST", riff::pattern(27, 4))
        .add(riff::pattern(128, 8));
}

struct Made {
    const char* name;
    void (*make)(const fs::path& file);
};

std::ostream& operator<<(std::ostream& out, const Made& made) {
    return out << made.name;
}

const Made files[] = {
    {"plain", [](const fs::path& file) { fs::copy_file(support::fixture("tone.wav"), file); }},
    {"rf64", [](const fs::path& file) { fs::copy_file(support::fixture("tone-rf64.wav"), file); }},
    {"f32", [](const fs::path& file) { fs::copy_file(support::fixture("tone-f32.wav"), file); }},
    {"f64", [](const fs::path& file) { fs::copy_file(support::fixture("tone-f64.wav"), file); }},
    {"chunks16", [](const fs::path& file) { decorated(16, 2, riff::pattern(80'004)).save(file); }},
    {"chunks24", [](const fs::path& file) { decorated(24, 2, riff::pattern(90'006)).save(file); }},
    {"surround", [](const fs::path& file) { decorated(24, 6, riff::pattern(180'000)).save(file); }},
    {"odd8", [](const fs::path& file) { decorated(8, 1, riff::pattern(40'001)).save(file); }},
};

class WaveSave : public testing::TestWithParam<Made> {
  protected:
    support::TempFolder folder;
};

void edit(const fs::path& file, std::int32_t start, std::int32_t end,
          const std::function<void(AudioEditor&)>& what) {
    AudioEditor editor;
    editor.Load(platform::toQString(file));
    editor.SetSelectionActive(true);
    editor.SetSelectionStart(start);
    editor.SetSelectionEnd(end);
    what(editor);
    editor.SetSelectionActive(false);
    editor.Save(platform::toQString(file), false, 0);
}

/// A file of digital silence, of which the disk holds the header alone.
void makeSilence(const fs::path& file, std::uint32_t dataBytes) {
    Builder().fmt().chunk("data", {}, dataBytes).save(file, dataBytes + 60);
    fs::resize_file(file, fs::file_size(file) + dataBytes);
}

/// How often this process has asked the system to write.
long writeCalls() {
    std::ifstream statistics("/proc/self/io");
    for (std::string name, value; statistics >> name >> value;)
        if (name == "syscw:") return std::stol(value);
    return -1;
}

bool isLoaded(const std::string& library) {
    std::ifstream maps("/proc/self/maps");
    const std::string all{std::istreambuf_iterator<char>(maps), {}};
    return all.find(library) != std::string::npos;
}

}  // namespace

INSTANTIATE_TEST_SUITE_P(Layouts, WaveSave, testing::ValuesIn(files),
                         [](const auto& instance) { return std::string(instance.param.name); });

TEST_P(WaveSave, AFadeChangesItsRangeAndNothingElse) {
    const fs::path file = folder / "sound.wav";
    for (const auto& [start, end] : {std::pair{0, 500}, {3'000, 9'001}, {8'000, 1 << 30}}) {
        fs::remove(file);
        GetParam().make(file);
        const Bytes before = support::readBytes(file);
        const audio::wave::Layout layout = audio::wave::readLayout(file);
        edit(file, start, end, [](AudioEditor& editor) { editor.Fade(20, 60); });

        Bytes after = support::readBytes(file);
        ASSERT_EQ(after.size(), before.size());
        const std::int64_t last = std::min<std::int64_t>(end, layout.frames());
        const auto from = layout.data().body + start * std::int64_t{layout.format.blockAlign};
        const auto to = layout.data().body + last * std::int64_t{layout.format.blockAlign};
        EXPECT_FALSE(std::equal(after.begin() + from, after.begin() + to, before.begin() + from));
        std::copy(before.begin() + from, before.begin() + to, after.begin() + from);
        EXPECT_TRUE(after == before) << start;
    }
}

TEST_F(WaveSave, CutAndInsertedFramesMoveTheOthersUnchanged) {
    const Bytes sound = riff::pattern(80'004);
    const fs::path file = folder / "sound.wav";
    decorated(16, 2, sound).save(file);
    edit(file, 1'000, 4'001, [](AudioEditor& editor) { editor.DeleteSelection(); });
    Bytes expected = riff::part(sound, 0, 4'000);
    expected.insert(expected.end(), sound.begin() + 16'004, sound.end());
    EXPECT_TRUE(support::readBytes(file) == decorated(16, 2, expected).finish());

    edit(file, 500, 501, [](AudioEditor& editor) { editor.InsertSilence(100); });
    expected.insert(expected.begin() + 2'000, std::size_t{4'410} * 4, std::byte{0});
    EXPECT_TRUE(support::readBytes(file) == decorated(16, 2, expected).finish());
}

TEST_F(WaveSave, AShortFadeOfALongFileWritesLittle) {
    constexpr std::int32_t frames = 600 * 44'100;
    const fs::path file = folder / "long.wav";
    makeSilence(file, frames * 4U);
    const long before = writeCalls();
    ASSERT_GE(before, 0);
    edit(file, frames - 441'000, frames, [](AudioEditor& editor) { editor.Fade(100, 0); });
    // In blocks of 64 KB it would be 1,615. What wakes the event loop counts too: more when slow.
    EXPECT_LT(writeCalls() - before, 400);
    EXPECT_EQ(audio::wave::readLayout(file).frames(), frames);
}

TEST_F(WaveSave, StoppedInTheMiddleOfTheCopyLeavesTheTarget) {
    const fs::path file = folder / "long.wav";
    makeSilence(file, 48U << 20);
    const fs::path target = support::scratchCopy("tone.wav", folder.path());
    const Bytes before = support::readBytes(target);
    audio::edit::SaveJob job;
    job.source = std::make_shared<audio::edit::SourceMaterial>(file);
    job.list = audio::edit::EditList(job.source->shape(), job.source);
    job.list.insertSilence(10, 10);
    job.output = job.source->format();
    audio::edit::Work work;
    work.cancel();  // noticed after the first stretch
    EXPECT_THROW(audio::edit::save(job, target, work), audio::edit::Cancelled);
    EXPECT_TRUE(support::readBytes(target) == before);
    EXPECT_EQ(std::distance(fs::directory_iterator(folder.path()), {}), 2);
}

// To load FFmpeg takes longer than the edit; it comes when a format needs it.
TEST_F(WaveSave, AnEditLoadsNoFfmpeg) {
    const fs::path file = support::scratchCopy("tone.wav", folder.path());
    edit(file, 0, 4'000, [](AudioEditor& editor) { editor.Fade(0, 100); });
    EXPECT_TRUE(isLoaded("libQt6Core"));
    EXPECT_FALSE(isLoaded("libavcodec"));
    AudioEditor().Load(platform::toQString(support::fixture("tone.flac")));
    EXPECT_TRUE(isLoaded("libavcodec"));
}
