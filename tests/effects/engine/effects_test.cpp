// SPDX-License-Identifier: GPL-3.0-or-later
// Every effect on every kind of file, what an independent decoder finds in the result held against
// the arithmetic.
#include <cmath>
#include <functional>

#include <gtest/gtest.h>

#include "effects/engine/AudioEditor.h"
#include "platform/Paths.h"
#include "tests/effects/engine/Formats.h"
#include "tests/effects/engine/Ideal.h"
#include "tests/support/Fixtures.h"
#include "tests/support/Sound.h"
#include "tests/support/TempFolder.h"

using namespace Qt::Literals::StringLiterals;
using support::Sound;

namespace {

std::size_t rounded(double value) {
    return std::size_t(std::llround(value));
}

class Effects : public testing::TestWithParam<FileKind> {
  protected:
    /// Edits a copy of the fixture in place and returns what is in it then.
    Sound edited(const std::function<void(effects::AudioEditor&)>& edit) {
        const auto file = support::scratchCopy(GetParam().name, folder.path());
        effects::AudioEditor editor;
        editor.SetTemporaryFolder(folder.file(u"scratch"_s));
        editor.Load(platform::toQString(file));
        EXPECT_EQ(std::size_t(editor.GetLength()), before.frames());
        edit(editor);
        editor.Save(platform::toQString(file), true, 0);
        return support::decodeWithFfmpeg(file);
    }

    void expectLength(const Sound& result, const Sound& wanted) {
        const std::size_t block = GetParam().block;
        EXPECT_EQ(result.frames(), (wanted.frames() + block - 1) / block * block);
        EXPECT_EQ(result.rate, before.rate);
        EXPECT_EQ(result.channels, before.channels);
    }

    void expectSound(const Sound& result, const Sound& wanted) {
        expectLength(result, wanted);
        const FileKind& kind = GetParam();
        if (kind.lossy()) {
            const double once =
                ideal::snrOfEncodingOnce(wanted, kind.encoder, kind.extension(), kind.lost);
            EXPECT_GT(support::snrDb(wanted.samples, result.samples), once - 2.0);
            return;
        }
        // Rounding is half a step; triangular noise adds up to one more.
        const double allowed = kind.step * (kind.dithered ? 1.51 : 1.0) + 1e-6;
        const Sound integers = kind.step > 0 ? ideal::limited(wanted) : wanted;
        EXPECT_LE(support::maxDifference(integers.samples, result.samples), allowed);
    }

    support::TempFolder folder;
    Sound before = support::decodeWithFfmpeg(support::fixture(GetParam().name));
};

INSTANTIATE_TEST_SUITE_P(AllKinds, Effects, testing::ValuesIn(allKinds()),
                         [](const auto& instance) { return testNameOf(instance.param); });

}  // namespace

TEST_P(Effects, AmplifyMinus) {
    expectSound(edited([](auto& editor) {
                    editor.SelectWholeFile();
                    editor.Amplify(55);
                }),
                ideal::faded(before, 0, before.frames(), 0.55, 0.55));
}

TEST_P(Effects, AmplifyPlus) {
    expectSound(edited([](auto& editor) {
                    editor.SelectWholeFile();
                    editor.Amplify(145);
                }),
                ideal::faded(before, 0, before.frames(), 1.45, 1.45));
}

TEST_P(Effects, Normalize) {
    expectSound(edited([](auto& editor) {
                    editor.SelectWholeFile();
                    editor.Normalize(50, true);
                }),
                ideal::normalized(before, 0.5));
}

TEST_P(Effects, FadeIn) {
    const std::size_t end = rounded(0.7 * before.rate);
    expectSound(edited([](auto& editor) {
                    editor.SetSelectionActive(true);
                    editor.SetSelectionStart(0);
                    editor.SetSelectionEnd(editor.TimeToPosition(700));
                    editor.Fade(10, 100);
                    editor.SetSelectionActive(false);
                }),
                ideal::faded(before, 0, end, 0.1, 1.0));
}

TEST_P(Effects, FadeOutLongerThanTheSound) {
    const std::size_t start = 0;
    expectSound(edited([](auto& editor) {
                    editor.SetSelectionActive(true);
                    editor.SetSelectionStart(editor.GetLength() - editor.TimeToPosition(5000));
                    editor.SetSelectionEnd(editor.GetLength());
                    editor.Fade(100, 0);
                }),
                ideal::faded(before, start, before.frames(), 1.0, 0.0));
}

TEST_P(Effects, SilenceToTheFront) {
    expectSound(edited([](auto& editor) {
                    editor.SetSelectionStart(0);
                    editor.InsertSilence(250);
                }),
                ideal::withSilence(before, 0, rounded(0.25 * before.rate)));
}

TEST_P(Effects, SilenceToTheEnd) {
    expectSound(edited([](auto& editor) {
                    editor.SetSelectionStart(editor.GetLength());
                    editor.InsertSilence(333);
                }),
                ideal::withSilence(before, before.frames(), rounded(0.333 * before.rate)));
}

TEST_P(Effects, Echo) {
    expectSound(edited([](auto& editor) {
                    editor.SelectWholeFile();
                    editor.Echo(1, 40, 10, 75, 8000, 10);
                }),
                ideal::echoed(before, 1, 40, 10, 75, 8000, 10));
}

TEST_P(Effects, DeleteFromTheMiddle) {
    const std::size_t start = rounded(0.5 * before.rate);
    expectSound(edited([&](auto& editor) {
                    editor.SetSelectionActive(true);
                    editor.SetSelectionStart(int(start));
                    editor.SetSelectionEnd(int(start) + 12345);
                    editor.DeleteSelection();
                    editor.SetSelectionActive(false);
                }),
                ideal::without(before, start, start + 12345));
}

TEST_P(Effects, MixWithItselfAtTheEnd) {
    const std::ptrdiff_t start = std::ptrdiff_t(before.frames()) - 20000;
    Sound wanted = ideal::mixed(before, before, start, 0.8, 0.6);
    std::copy_n(before.samples.begin(), start * before.channels, wanted.samples.begin());
    expectSound(edited([&](auto& editor) {
                    editor.SetSelectionActive(true);
                    editor.SetSelectionStart(int(start));
                    editor.SetSelectionEnd(editor.GetLength());
                    editor.MixFile(platform::toQString(support::fixture(GetParam().name)), 80, 60);
                    editor.SetSelectionActive(false);
                }),
                wanted);
}

TEST_P(Effects, SaveOfTheSelectionOnly) {
    expectSound(edited([](auto& editor) {
                    editor.SetSelectionActive(true);
                    editor.SetSelectionStart(10000);
                    editor.SetSelectionEnd(50000);
                }),
                before.part(10000, std::min<std::size_t>(before.frames(), 50000) - 10000));
}

TEST_P(Effects, SaveWithoutAnEffectKeepsTheSound) {
    const Sound after = edited([](auto&) {});
    if (GetParam().lossy())
        expectSound(after, before);
    else
        EXPECT_EQ(after.samples, before.samples);
}
