// SPDX-License-Identifier: GPL-3.0-or-later
// The last moments of a save, seen through the calls of the system: who holds the file, what a stop
// does, and what happens where somebody else has been there.
#include <atomic>
#include <fcntl.h>
#include <grp.h>
#include <pwd.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <gmock/gmock.h>

#include "audio/edit/Saver.h"
#include "effects/engine/AudioEditor.h"
#include "platform/Error.h"
#include "platform/Paths.h"
#include "tests/platform/file/FileTools.h"
#include "tests/support/Fixtures.h"
#include "tests/support/Interposed.h"
#include "tests/support/NotHere.h"
#include "tests/support/Sound.h"
#include "tests/support/TempFolder.h"

namespace fs = std::filesystem;
using effects::AudioEditor;
using support::interposed;
using test::errorOf;
using testing::HasSubstr;

namespace {

const std::vector<std::string> kinds{"tone.wav",     "tone-s24.wav", "tone-rf64.wav", "tone.mp3",
                                     "tone-vbr.mp3", "tone.mp2",     "tone.ogg",      "tone.wma",
                                     "tone.flac",    "tone.m4a",     "tone.opus",     "tone.aiff",
                                     "tone.wv"};

void load(AudioEditor& editor, const fs::path& file) {
    editor.Load(platform::toQString(file));
    editor.SelectWholeFile();
}

void save(AudioEditor& editor, const fs::path& file) {
    editor.Save(platform::toQString(file), false, 0);
}

std::size_t filesIn(const fs::path& folder) {
    return static_cast<std::size_t>(
        std::distance(fs::directory_iterator(folder), fs::directory_iterator()));
}

class AtTheCommit : public testing::TestWithParam<std::string> {
  protected:
    support::TempFolder folder;
    support::InterposedReset reset;
};

INSTANTIATE_TEST_SUITE_P(Kinds, AtTheCommit, testing::ValuesIn(kinds), [](const auto& instance) {
    std::string name = instance.param;
    std::erase_if(name, [](char letter) { return letter == '.' || letter == '-'; });
    return name;
});

// Systems that replace no file which anybody holds would let no save succeed.
TEST_P(AtTheCommit, NobodyHoldsTheFile) {
    const fs::path file = support::scratchCopy(GetParam(), folder.path());
    int commits = 0;
    interposed.rename = [&](const char* from, const char* to) {
        ++commits;
        EXPECT_EQ(support::descriptorsOf(to), 0) << to;
        return support::systemRename(from, to);
    };
    AudioEditor editor;
    load(editor, file);
    editor.Amplify(60);
    save(editor, file);
    editor.TrimSilence(-20, 100, 2);  // reads the new file, which is then replaced once more
    editor.Fade(50, 100);
    editor.Echo(2, 40, 10, 75, 4000, 2);
    editor.MixFile(platform::toQString(file), 80, 20);  // the file itself once more
    save(editor, file);
    EXPECT_EQ(commits, 2);
    EXPECT_GT(support::decodeWithFfmpeg(file).frames(), 0U);
}

class LastPhase : public testing::Test {
  protected:
    /// Lets the system go on once the editor has been told to stop.
    void waitForStop() {
        reached = true;
        reached.notify_all();
        stopped.wait(false);
    }
    void stopWhenReached(AudioEditor& editor) {
        QObject::connect(&editor, &AudioEditor::Progress, [this, &editor](int) {
            if (!reached || stopped) return;
            editor.CloseSound();
            stopped = true;
            stopped.notify_all();
        });
    }

    support::TempFolder folder;
    const fs::path file = support::scratchCopy("tone.wav", folder.path());
    const std::vector<std::byte> before = support::readBytes(file);
    std::atomic<bool> reached = false;
    std::atomic<bool> stopped = false;
    support::InterposedReset reset;
};

TEST_F(LastPhase, AStopWhileTheDiskIsSlowLeavesTheFileAndSaysSo) {
    interposed.fsync = [this](int open) {
        waitForStop();
        return support::systemFsync(open);
    };
    AudioEditor editor;
    stopWhenReached(editor);
    load(editor, file);
    editor.Amplify(60);
    EXPECT_THAT(errorOf([&] { save(editor, file); }), HasSubstr("stopped"));
    EXPECT_TRUE(stopped);
    EXPECT_EQ(support::readBytes(file), before);
    EXPECT_EQ(filesIn(folder.path()), 1U);
}

TEST_F(LastPhase, AStopAfterTheCommitIsNotHeard) {
    interposed.rename = [this](const char* from, const char* to) {
        const int result = support::systemRename(from, to);
        waitForStop();
        return result;
    };
    AudioEditor editor;
    stopWhenReached(editor);
    load(editor, file);
    editor.Amplify(60);
    EXPECT_EQ(errorOf([&] { save(editor, file); }), "");
    EXPECT_TRUE(stopped);
    EXPECT_NE(support::readBytes(file), before);
    EXPECT_TRUE(editor.LastSaveReport().overSource);
    EXPECT_FALSE(editor.HasSound());
}

class SomebodyElse : public LastPhase {
  protected:
    /// A save that succeeds, with the sound still loaded.
    void trimAndSave(AudioEditor& editor) {
        editor.Load(platform::toQString(file));
        editor.SetSelectionActive(true);
        editor.SetSelectionEnd(editor.TimeToPosition(500));
        editor.DeleteSelection();
        save(editor, file);
    }
    void expectRefused(AudioEditor& editor) {
        const auto foreign = support::readBytes(file);
        EXPECT_THAT(errorOf([&] { editor.Save(platform::toQString(file), true, 0); }),
                    HasSubstr("changed by another program"));
        EXPECT_EQ(support::readBytes(file), foreign);
        EXPECT_EQ(filesIn(folder.path()), 1U);
    }
};

TEST_F(SomebodyElse, PutsALongerFileThereAfterASave) {
    AudioEditor editor;
    trimAndSave(editor);
    support::writeBytes(file, before);
    expectRefused(editor);
}

TEST_F(SomebodyElse, PutsAFileOfTheSameSizeThere) {
    AudioEditor editor;
    trimAndSave(editor);
    auto bytes = support::readBytes(file);
    bytes.back() ^= std::byte{1};
    support::writeBytes(file, bytes);
    const timespec times[] = {{1, 0}, {1, 0}};
    ASSERT_EQ(::utimensat(AT_FDCWD, file.c_str(), times, 0), 0);
    expectRefused(editor);
}

TEST_F(SomebodyElse, PutsAFileOfTheSameSizeAndTimeThere) {
    AudioEditor editor;
    trimAndSave(editor);
    struct stat about {};
    ASSERT_EQ(::stat(file.c_str(), &about), 0);
    auto bytes = support::readBytes(file);
    bytes.back() ^= std::byte{1};
    const fs::path other = folder / "other";
    support::writeBytes(other, bytes);
    const timespec times[] = {about.st_atim, about.st_mtim};
    ASSERT_EQ(::utimensat(AT_FDCWD, other.c_str(), times, 0), 0);
    fs::rename(other, file);
    expectRefused(editor);
}

TEST_F(SomebodyElse, ChangesTheFileDuringTheSave) {
    bool changed = false;
    interposed.pwrite = [&](int open, const void* bytes, size_t count, off_t at) {
        if (!std::exchange(changed, true)) {
            const timespec times[] = {{1, 0}, {1, 0}};
            EXPECT_EQ(::utimensat(AT_FDCWD, file.c_str(), times, 0), 0);
        }
        return support::systemPwrite(open, bytes, count, at);
    };
    AudioEditor editor;
    load(editor, file);
    editor.Amplify(60);
    EXPECT_THAT(errorOf([&] { save(editor, file); }), HasSubstr("changed by another program"));
    EXPECT_TRUE(changed);
    EXPECT_EQ(support::readBytes(file), before);
    EXPECT_EQ(filesIn(folder.path()), 1U);
}

TEST_F(SomebodyElse, ChangesTheFileWhileTheDiskIsSlow) {
    interposed.fsync = [&](int open) {
        const timespec times[] = {{1, 0}, {1, 0}};
        EXPECT_EQ(::utimensat(AT_FDCWD, file.c_str(), times, 0), 0);
        return support::systemFsync(open);
    };
    AudioEditor editor;
    load(editor, file);
    editor.Amplify(60);
    EXPECT_THAT(errorOf([&] { save(editor, file); }), HasSubstr("changed by another program"));
    EXPECT_EQ(support::readBytes(file), before);
}

// A disk that says it has written and has not.
TEST_F(LastPhase, AnUnfinishedFileIsThrownAway) {
    interposed.pwrite = [this](int open, const void* bytes, size_t count, off_t at) {
        if (at > static_cast<off_t>(before.size() / 2)) return static_cast<ssize_t>(count);
        return support::systemPwrite(open, bytes, count, at);
    };
    AudioEditor editor;
    load(editor, file);
    editor.Amplify(60);
    EXPECT_NE(errorOf([&] { save(editor, file); }), "");
    EXPECT_EQ(support::readBytes(file), before);
    EXPECT_EQ(filesIn(folder.path()), 1U);
}

// Shared music: the user's own file, of a group that is not his. Only root can make one.
TEST_F(LastPhase, AFileOfAnotherGroupCanBeSaved) {
    const passwd* nobody = ::getpwnam("nobody");
    if (::geteuid() != 0 || nobody == nullptr)
        return support::notHere("only root may give files to others");
    ASSERT_EQ(::chown(folder.path().c_str(), nobody->pw_uid, nobody->pw_gid), 0);
    ASSERT_EQ(::chown(file.c_str(), nobody->pw_uid, 23456), 0);
    ASSERT_EQ(::chmod(file.c_str(), 0660), 0);
    for (const fs::path& above :
         {folder.path().parent_path(), folder.path().parent_path().parent_path()})
        ::chmod(above.c_str(), 0755);
    const pid_t child = ::fork();
    if (child == 0) {
        const bool dropped = ::setgroups(0, nullptr) == 0 && ::setgid(nobody->pw_gid) == 0 &&
                             ::setuid(nobody->pw_uid) == 0;
        const std::string error = errorOf([&] {
            AudioEditor editor;
            load(editor, file);
            editor.Amplify(60);
            save(editor, file);
        });
        ::_exit(dropped && error.empty() ? 0 : 1);
    }
    int status = -1;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
    EXPECT_NE(support::readBytes(file), before);
    struct stat about {};
    ASSERT_EQ(::stat(file.c_str(), &about), 0);
    EXPECT_EQ(about.st_mode & 07777, 0600U);
}

}  // namespace
