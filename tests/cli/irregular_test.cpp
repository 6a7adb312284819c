// SPDX-License-Identifier: GPL-3.0-or-later
// Every command, given what is no regular file: a sentence, no waiting and no memory eaten.
#include "tests/support/Irregular.h"

#include <filesystem>
#include <fstream>

#include <gmock/gmock.h>

#include "tests/cli/CliRun.h"

namespace fs = std::filesystem;
using namespace Qt::Literals::StringLiterals;
using support::cli;
using support::Outcome;
using testing::HasSubstr;

namespace {

class Irregular : public testing::Test {
  protected:
    Irregular() { fs::create_directory(folder / "out"); }

    /// Runs a command that must fail and name the file and the reason.
    void expectRefused(const QStringList& arguments, const fs::path& file) {
        SCOPED_TRACE(arguments.join(u' ').toStdString());
        const Outcome outcome = cli(arguments);
        EXPECT_EQ(outcome.exitCode, 1);
        EXPECT_THAT(outcome.err.toStdString(), HasSubstr(file.filename().string()));
        EXPECT_THAT(outcome.err.toStdString(), HasSubstr("not a regular file"));
    }

    support::TempFolder folder;
    const QString out = folder.file(u"out"_s);
};

}  // namespace

TEST_F(Irregular, AsASoundItIsRefusedByEveryCommand) {
    for (const fs::path& file : support::makeIrregular(folder.path(), ".mp3")) {
        const QString path = platform::toQString(file);
        expectRefused({u"show"_s, path}, file);
        expectRefused({u"effect"_s, u"normalize"_s, path}, file);
        expectRefused({u"effect"_s, u"fade-in"_s, u"--output"_s, out, path}, file);
        expectRefused({u"transform"_s, u"--target"_s, out, path}, file);
        expectRefused({u"crossfade"_s, u"--target"_s, out, path}, file);
    }
    EXPECT_TRUE(fs::is_empty(folder / "out"));
}

TEST_F(Irregular, AsAnEntryItIsNotCopied) {
    for (const fs::path& file : support::makeIrregular(folder.path(), ".mp3")) {
        std::ofstream(folder / "list.m3u") << file.string() << "\n";
        expectRefused({u"copy"_s, folder.file(u"list.m3u"_s), u"--to"_s, out}, file);
        EXPECT_FALSE(fs::exists(fs::symlink_status(folder / "out" / file.filename())));
    }
}

TEST_F(Irregular, AsAListItIsRefused) {
    for (const fs::path& file : support::makeIrregular(folder.path(), ".m3u")) {
        const QString path = platform::toQString(file);
        expectRefused({u"show"_s, path}, file);
        expectRefused({u"copy"_s, path, u"--to"_s, out}, file);
        expectRefused({u"convert-list"_s, path, folder.file(u"new.pls"_s)}, file);
    }
}

TEST_F(Irregular, WhereTheNewListShouldGoItIsLeftAlone) {
    const QString song = support::copyOf("tone.mp3", folder, u"song.mp3"_s);
    std::ofstream(folder / "list.m3u") << song.toStdString() << "\n";
    ASSERT_EQ(::mkfifo((folder / "out/temp.m3u").c_str(), 0600), 0);
    const Outcome outcome = cli({u"copy"_s, folder.file(u"list.m3u"_s), u"--to"_s, out});
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_THAT(outcome.err.toStdString(), HasSubstr("not a regular file"));
    EXPECT_TRUE(fs::is_fifo(folder / "out/temp.m3u"));
}
