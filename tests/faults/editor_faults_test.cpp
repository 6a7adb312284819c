// SPDX-License-Identifier: GPL-3.0-or-later
// Whatever goes wrong, the file is the old one or the new one, and nothing is left behind.
#include <csignal>
#include <functional>
#include <grp.h>
#include <pwd.h>
#include <random>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QElapsedTimer>
#include <QProcess>
#include <gtest/gtest.h>

#include "effects/engine/AudioEditor.h"
#include "platform/Error.h"
#include "platform/Paths.h"
#include "tests/platform/file/FileTools.h"
#include "tests/support/Fixtures.h"
#include "tests/support/NotHere.h"
#include "tests/support/Sound.h"
#include "tests/support/TempFolder.h"

using namespace Qt::Literals::StringLiterals;
using effects::AudioEditor;

namespace {

namespace fs = std::filesystem;
using Bytes = std::vector<std::byte>;
using test::errorOf;

const std::vector<std::string> kinds{"tone.wav", "tone.mp3", "tone.mp2",
                                     "tone.ogg", "tone.wma", "tone.flac"};

std::vector<std::string> namesIn(const fs::path& folder) {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(folder))
        names.push_back(entry.path().filename().string());
    std::sort(names.begin(), names.end());
    return names;
}

void amplifyAndSave(const fs::path& source, const fs::path& target) {
    AudioEditor editor;
    editor.Load(platform::toQString(source));
    editor.SelectWholeFile();
    editor.Amplify(60);
    editor.Save(platform::toQString(target), true, 0);
}

/// Runs a function in a process of its own, so that limits and rights of that process change
/// nothing here. Returns what the function printed as its verdict: empty = all is well.
std::string inChild(const std::function<std::string()>& action) {
    int ends[2];
    if (::pipe(ends) != 0) return "no pipe";
    const pid_t child = ::fork();
    if (child == 0) {
        std::string verdict;
        try {
            verdict = action();
        } catch (const std::exception& error) {
            verdict = std::string("escaped: ") + error.what();
        }
        [[maybe_unused]] const auto put = ::write(ends[1], verdict.data(), verdict.size());
        ::_exit(0);
    }
    ::close(ends[1]);
    std::string verdict;
    char buffer[512];
    for (ssize_t got; (got = ::read(ends[0], buffer, sizeof buffer)) > 0;)
        verdict.append(buffer, std::size_t(got));
    ::close(ends[0]);
    int status = 0;
    ::waitpid(child, &status, 0);
    if (!WIFEXITED(status) || WEXITSTATUS(status) != 0) return "the process died: " + verdict;
    return verdict;
}

/// An ordinary user for a process that is root's.
bool dropRights() {
    if (::geteuid() != 0) return true;
    const passwd* nobody = ::getpwnam("nobody");
    return nobody != nullptr && ::setgroups(0, nullptr) == 0 && ::setgid(nobody->pw_gid) == 0 &&
           ::setuid(nobody->pw_uid) == 0;
}

class Faults : public testing::TestWithParam<std::string> {
  protected:
    /// A child's verdict: an error that names the file, the old bytes, and no other file.
    std::string refusedAndUntouched(const fs::path& file, const Bytes& before,
                                    const std::vector<std::string>& names) const {
        const std::string error = errorOf([&] { amplifyAndSave(file, file); });
        if (error.empty()) return "the save succeeded";
        const bool named = error.find(file.filename().string()) != std::string::npos;
        const bool scratch = error.find(".part\"") != std::string::npos;
        if (!named && !scratch) return "the error does not name the file: " + error;
        if (support::readBytes(file) != before) return "the file has changed";
        if (namesIn(file.parent_path()) != names) return "something was left behind";
        return {};
    }

    /// A save by a user who can reach the file, in a folder and on a file of these modes.
    void refusesAnOrdinaryUser(mode_t folderMode, mode_t fileMode) const {
        const fs::path file = support::scratchCopy(GetParam(), folder.path());
        const Bytes before = support::readBytes(file);
        const auto names = namesIn(folder.path());
        ::chmod(folder.path().c_str(), folderMode);
        ::chmod(file.c_str(), fileMode);
        ::chmod(folder.path().parent_path().c_str(), 0755);
        ::chmod(folder.path().parent_path().parent_path().c_str(), 0755);
        EXPECT_EQ(inChild([&] {
                      if (!dropRights()) return std::string("rights cannot be dropped");
                      return refusedAndUntouched(file, before, names);
                  }),
                  "");
        ::chmod(folder.path().c_str(), 0755);
    }

    support::TempFolder folder;
};

INSTANTIATE_TEST_SUITE_P(Kinds, Faults, testing::ValuesIn(kinds), [](const auto& instance) {
    std::string name = instance.param;
    std::erase(name, '.');
    return name;
});

}  // namespace

// The limit on a file's size makes every write fail from a certain place on, as a full disk does.
TEST_P(Faults, DiskFullAtAnyPlace) {
    const fs::path file = support::scratchCopy(GetParam(), folder.path());
    const Bytes before = support::readBytes(file);
    const auto names = namesIn(folder.path());
    for (const double part : {0.0, 0.01, 0.5, 0.9}) {
        EXPECT_EQ(inChild([&] {
                      ::signal(SIGXFSZ, SIG_IGN);
                      const auto size = rlim_t(double(before.size()) * part);
                      const rlimit limit{size, size};
                      if (::setrlimit(RLIMIT_FSIZE, &limit) != 0) return std::string("no limit");
                      return refusedAndUntouched(file, before, names);
                  }),
                  "")
            << part;
    }
}

TEST_P(Faults, FolderThatMayNotBeWritten) {
    refusesAnOrdinaryUser(0555, 0666);
}

TEST_P(Faults, FileThatMayNotBeWritten) {
    refusesAnOrdinaryUser(0777, 0444);
}

TEST_P(Faults, TargetBehindALink) {
    fs::create_directory(folder / "real");
    const fs::path file = support::scratchCopy(GetParam(), folder / "real");
    const fs::path link = folder / GetParam();
    fs::create_symlink(file, link);
    const std::size_t frames = support::decodeWithFfmpeg(file).frames();
    amplifyAndSave(link, link);
    EXPECT_TRUE(fs::is_symlink(link));
    EXPECT_FALSE(fs::is_symlink(file));
    EXPECT_EQ(support::decodeWithFfmpeg(file).frames(), frames);
    EXPECT_EQ(namesIn(folder / "real").size(), 1U);
}

TEST_P(Faults, TargetOpenElsewhereKeepsItsOldContentThere) {
    const fs::path file = support::scratchCopy(GetParam(), folder.path());
    const Bytes before = support::readBytes(file);
    std::FILE* open = std::fopen(file.c_str(), "rb");
    ASSERT_NE(open, nullptr);
    amplifyAndSave(file, file);
    Bytes seen(before.size());
    EXPECT_EQ(std::fread(seen.data(), 1, seen.size(), open), before.size());
    std::fclose(open);
    EXPECT_EQ(seen, before);
    EXPECT_NE(support::readBytes(file), before);
}

TEST_P(Faults, FileThatVanishesBetweenLoadAndSave) {
    const fs::path file = support::scratchCopy(GetParam(), folder.path());
    AudioEditor editor;
    editor.Load(platform::toQString(file));
    editor.SelectWholeFile();
    editor.Amplify(60);
    fs::remove(file);
    EXPECT_NE(errorOf([&] { editor.Save(platform::toQString(file), true, 0); }), "");
    EXPECT_TRUE(namesIn(folder.path()).empty());
}

TEST_P(Faults, FolderThatVanishesBetweenLoadAndSave) {
    fs::create_directory(folder / "gone");
    const fs::path file = support::scratchCopy(GetParam(), folder / "gone");
    AudioEditor editor;
    editor.Load(platform::toQString(file));
    fs::remove_all(folder / "gone");
    EXPECT_NE(errorOf([&] { editor.Save(platform::toQString(file), true, 0); }), "");
    EXPECT_TRUE(namesIn(folder.path()).empty());
}

TEST_P(Faults, InputCutShortIsSavedAsItIsHeardOrRefused) {
    for (const double part : {0.0, 0.0005, 0.1, 0.7, 0.999}) {
        const fs::path file = support::scratchCopy(GetParam(), folder.path());
        fs::resize_file(file, std::uintmax_t(double(fs::file_size(file)) * part));
        const Bytes before = support::readBytes(file);
        const std::string error = errorOf([&] { amplifyAndSave(file, file); });
        EXPECT_EQ(namesIn(folder.path()).size(), 1U) << part;
        if (error.empty())
            EXPECT_GT(support::decodeWithFfmpeg(file).frames(), 0U) << part;
        else
            EXPECT_EQ(support::readBytes(file), before) << part << ": " << error;
    }
}

TEST_P(Faults, DamagedInputNeverDoesHarm) {
    std::mt19937 random(11);
    for (int round = 0; round < 12; ++round) {
        const fs::path file = support::scratchCopy(GetParam(), folder.path());
        Bytes bytes = support::readBytes(file);
        for (int i = 0; i < 1 << (round / 2); ++i)
            bytes[random() % bytes.size()] = std::byte(random() % 256);
        support::writeBytes(file, bytes);
        const std::string error = errorOf([&] { amplifyAndSave(file, file); });
        EXPECT_EQ(namesIn(folder.path()).size(), 1U);
        if (!error.empty()) {
            EXPECT_EQ(support::readBytes(file), bytes) << error;
            EXPECT_TRUE(error.ends_with('.')) << error;
        }
    }
}

TEST_P(Faults, ASaveOverAFolderIsRefused) {
    const fs::path file = support::scratchCopy(GetParam(), folder.path());
    fs::create_directory(folder / "folder.wav");
    EXPECT_NE(errorOf([&] { amplifyAndSave(file, folder / "folder.wav"); }), "");
    EXPECT_EQ(namesIn(folder.path()).size(), 2U);
}

// A real file system that runs full, where this process may mount one.
TEST(FullDisk, TheOldFileStays) {
    const support::TempFolder folder;
    if (::mount("tmpfs", folder.path().c_str(), "tmpfs", 0, "size=400k") != 0)
        return support::notHere("no file system may be mounted");
    const fs::path file = support::scratchCopy("tone.wav", folder.path());
    const Bytes before = support::readBytes(file);
    const std::string error = errorOf([&] { amplifyAndSave(file, file); });
    EXPECT_NE(error.find("No space left"), std::string::npos) << error;
    EXPECT_EQ(support::readBytes(file), before);
    EXPECT_EQ(namesIn(folder.path()).size(), 1U);
    ::umount(folder.path().c_str());
}

// Killed at a random moment of a long run: every file is whole, with its full length.
TEST(KilledProcess, EveryFileIsWhole) {
    const support::TempFolder folder;
    std::mt19937 random(3);
    QStringList arguments;
    std::vector<std::size_t> frames;
    for (const std::string& kind : kinds) {
        const fs::path file = support::scratchCopy(kind, folder.path());
        arguments << platform::toQString(file);
        frames.push_back(support::decodeWithFfmpeg(file).frames());
    }
    for (int round = 0; round < 8; ++round) {
        QProcess process;
        process.start(QStringLiteral(TRACKSMITH_EDIT_FOREVER), arguments);
        ASSERT_TRUE(process.waitForStarted());
        const int saves = 1 + int(random() % 12);
        int seen = 0;
        QElapsedTimer timer;
        timer.start();
        while (seen < saves && timer.elapsed() < 60000) {
            process.waitForReadyRead(1000);
            seen += int(process.readAllStandardOutput().count('\n'));
        }
        ASSERT_GE(seen, saves) << process.readAllStandardError().toStdString();
        process.waitForReadyRead(int(random() % 40));  // into the next one
        process.kill();
        process.waitForFinished();
        for (qsizetype i = 0; i < arguments.size(); ++i) {
            const fs::path file = platform::toPath(arguments[i]);
            EXPECT_EQ(support::decodeWithFfmpeg(file).frames(), frames[std::size_t(i)]) << file;
        }
    }
}
