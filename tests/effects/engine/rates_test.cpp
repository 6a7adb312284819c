// SPDX-License-Identifier: GPL-3.0-or-later
// Save after save of formats that are encoded anew: length and rate stay what they were.
#include <functional>

#include <gtest/gtest.h>

#include "effects/engine/AudioEditor.h"
#include "platform/Paths.h"
#include "tests/support/Fixtures.h"
#include "tests/support/Python.h"
#include "tests/support/Sound.h"
#include "tests/support/TempFolder.h"

using namespace Qt::Literals::StringLiterals;
using effects::AudioEditor;

namespace {

namespace fs = std::filesystem;

fs::path encoded(const support::TempFolder& folder, const QString& name, const QStringList& how) {
    const fs::path file = folder / name.toStdString();
    const support::Outcome made =
        support::run(u"ffmpeg"_s, QStringList{u"-v"_s, u"error"_s, u"-t"_s, u"7"_s, u"-i"_s,
                                              platform::toQString(support::fixture("music.wav"))} +
                                      how + QStringList{platform::toQString(file)});
    EXPECT_EQ(made.exitCode, 0) << made.err.toStdString();
    return file;
}

/// Bits per second of the packets of a file that hold more than silence, as ffprobe sees them.
double rateOf(const fs::path& file) {
    const support::Outcome shown =
        support::run(u"ffprobe"_s, {u"-v"_s, u"error"_s, u"-select_streams"_s, u"a:0"_s,
                                    u"-show_entries"_s, u"packet=duration_time,size"_s, u"-of"_s,
                                    u"csv=p=0"_s, platform::toQString(file)});
    constexpr double silence = 40;  // bytes; of music none here has so few
    double bytes = 0;
    double length = 0;
    for (const QByteArray& packet : shown.out.trimmed().split('\n')) {
        const QList<QByteArray> fields = packet.split(',');
        if (fields.value(1).toDouble() < silence) continue;
        length += fields.value(0).toDouble();
        bytes += fields.value(1).toDouble();
    }
    EXPECT_GT(length, 3) << file;
    return bytes * 8 / length;
}

struct Coding {
    const char* name;
    const char* options;
};

class Rates : public testing::TestWithParam<Coding> {
  protected:
    void edit(const std::function<void(AudioEditor&)>& what) {
        AudioEditor editor;
        editor.Load(platform::toQString(file));
        what(editor);
        editor.Save(platform::toQString(file), false, 0);
    }

    support::TempFolder folder;
    fs::path file = encoded(folder, QString::fromLatin1(GetParam().name),
                            QString::fromLatin1(GetParam().options).split(u' '));
};

INSTANTIATE_TEST_SUITE_P(Codings, Rates,
                         testing::Values(Coding{"a.opus", "-c:a libopus -b:a 96k"},
                                         Coding{"b.opus", "-c:a libopus -b:a 128k -vbr off"},
                                         Coding{"c.opus", "-c:a libopus -b:a 24k -ac 1"},
                                         Coding{"d.m4a", "-c:a aac -b:a 128k"},
                                         Coding{"e.m4a", "-c:a aac -b:a 64k -ac 1"},
                                         Coding{"f.aac", "-c:a aac -b:a 128k"}),
                         [](const auto& instance) {
                             return std::string(instance.param.name, 1) +
                                    std::string(instance.param.name + 2);
                         });

}  // namespace

TEST_P(Rates, TenSavesOfTheWholeKeepLengthAndRate) {
    const std::size_t frames = support::decodeWithFfmpeg(file).frames();
    const double before = rateOf(file);
    for (int save = 0; save < 10; ++save)
        edit([save](AudioEditor& editor) {
            editor.SelectWholeFile();
            editor.Amplify(save % 2 == 0 ? 90 : 111);
        });
    EXPECT_NEAR(rateOf(file), before, 0.05 * before);
    const std::size_t block = file.extension() == ".aac" ? 1'024 : 1;
    EXPECT_NEAR(double(support::decodeWithFfmpeg(file).frames()), double(frames), double(block));
}

TEST_P(Rates, SilenceThatIsPutInDoesNotLowerTheRate) {
    const double before = rateOf(file);
    for (int save = 0; save < 3; ++save)
        edit([](AudioEditor& editor) { editor.InsertSilence(10'000); });
    EXPECT_NEAR(rateOf(file), before, 0.05 * before);
}

TEST_P(Rates, CoverArtDoesNotRaiseTheRate) {
    support::python(
        uR"(
import sys, base64, mutagen, mutagen.flac, mutagen.id3, mutagen.mp4
file = mutagen.File(sys.argv[1])
data = bytes(range(256)) * 8000
if sys.argv[1].endswith("aac"):
    tag = mutagen.id3.ID3()
    tag.add(mutagen.id3.APIC(encoding=0, mime="image/png", type=3, desc="", data=data))
    tag.save(sys.argv[1])
    sys.exit()
if sys.argv[1].endswith("m4a"):
    file["covr"] = [mutagen.mp4.MP4Cover(data, mutagen.mp4.MP4Cover.FORMAT_PNG)]
else:
    art = mutagen.flac.Picture()
    art.data, art.mime, art.type = data, "image/png", 3
    file["metadata_block_picture"] = [base64.b64encode(art.write()).decode()]
file.save()
)"_s,
        {file});
    const double before = rateOf(file);
    edit([](AudioEditor& editor) {
        editor.SelectWholeFile();
        editor.Amplify(90);
    });
    EXPECT_NEAR(rateOf(file), before, 0.05 * before);
}
