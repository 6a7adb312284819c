// SPDX-License-Identifier: GPL-3.0-or-later
// Thousands of files: what is asked of the disk, counted, grows with their number and no faster.
#include <atomic>
#include <dlfcn.h>
#include <sys/stat.h>

#include <gtest/gtest.h>

#include "tests/support/FakeEditor.h"
#include "tests/support/TempFolder.h"
#include "tests/wizard/RecordingView.h"
#include "wizard/Naming.h"
#include "wizard/TransformationPass.h"

using namespace Qt::Literals::StringLiterals;

namespace {

std::atomic<long> lookUps = 0;

constexpr int files = 5000;
constexpr long perFile = 40;  // a few look-ups for each folder of its path; with n² there are n

}  // namespace

// In front of the system's own, for the whole program.
extern "C" int stat(const char* path, struct stat* about) noexcept {
    static const auto next =
        reinterpret_cast<int (*)(const char*, struct stat*)>(::dlsym(RTLD_NEXT, "stat"));
    ++lookUps;
    return next(path, about);
}

namespace {

class Many : public testing::Test {
  protected:
    Many() {
        QStringList paths;
        for (int n = 0; n < files; ++n) paths += folder.file(u"%1/song.mp3"_s.arg(n));
        session.lstFiles.setStringList(paths);
        view.chosen.targetPath = folder.file(u"out/"_s);
        view.chosen.crossFade = true;
        editor.during = [this](const QString& call) {
            if (beforeFirst >= 0 || !call.startsWith(u"Load"_s)) return;
            beforeFirst = lookUps;
            view.closed = endsAtFirst;
        };
    }

    support::TempFolder folder;
    support::FakeEditor editor;
    wizard::Session session;
    support::RecordingView view;
    long beforeFirst = -1;  ///< the look-ups before the first file was begun
    bool endsAtFirst = false;
};

TEST_F(Many, TheFirstIsBegunAfterAFewLookUpsForEach) {
    lookUps = 0;
    wizard::TransformationPass pass(editor, session, view.all());
    ASSERT_EQ(pass.reasonAgainst(), QString());
    EXPECT_GT(lookUps, files);
    EXPECT_LT(lookUps, 2 * perFile * files);
    endsAtFirst = true;
    EXPECT_FALSE(pass.run());
    ASSERT_GE(beforeFirst, 0);
    EXPECT_LT(beforeFirst, 2 * perFile * files);
}

TEST_F(Many, TheWholeRunAsksNoMoreForEachThanForFew) {
    lookUps = 0;
    wizard::TransformationPass pass(editor, session, view.all());
    ASSERT_EQ(pass.reasonAgainst(), QString());
    ASSERT_TRUE(pass.run());
    EXPECT_EQ(session.List1.rowCount(), files);
    EXPECT_LT(lookUps, 8 * perFile * files);
}

// All of one name: each finds its number without trying those before it.
TEST_F(Many, ResultsOfOneNameGetTheirNumbers) {
    wizard::ResultPaths results;
    QString name;
    QStringList paths;
    for (const QString& path : session.lstFiles.stringList())
        paths += results.next(path, view.chosen, name);
    EXPECT_EQ(paths[0], folder.file(u"out/song.wav"_s));
    EXPECT_EQ(paths[1], folder.file(u"out/song (2).wav"_s));
    EXPECT_EQ(paths[files - 1], folder.file(u"out/song (%1).wav"_s.arg(files)));
    EXPECT_EQ(results.next(u"/else/song (2).mp3"_s, view.chosen, name),
              folder.file(u"out/song (2) (2).wav"_s));
}

}  // namespace
