// SPDX-License-Identifier: GPL-3.0-or-later
// Files whose names are no UTF-8 (a byte 0xE9, as old systems wrote é), by every command.
#include <filesystem>

#include <gmock/gmock.h>

#include "tests/cli/CliRun.h"
#include "tests/platform/file/FileTools.h"
#include "tests/support/Sound.h"

namespace fs = std::filesystem;
using namespace Qt::Literals::StringLiterals;
using support::Outcome;
using support::Sound;
using test::namesIn;
using test::readFile;
using test::writeFile;
using testing::ElementsAre;
using testing::HasSubstr;

namespace {

const std::vector<std::string> kinds{"wav", "mp3", "mp2", "ogg", "wma", "flac"};

class Names : public testing::Test {
  protected:
    Names() {
        fs::create_directory(old);
        fs::create_directory(folder / "out");
    }

    /// A sound under such a name, in a folder of such a name.
    fs::path song(const std::string& kind) {
        return support::scratchCopy("tone." + kind, old, "caf\xE9." + kind);
    }

    /// Arguments are bytes: QProcess could not hand these on.
    Outcome cli(const std::vector<std::string>& arguments) {
        std::string line = "'" TRACKSMITH_CLI "'";
        for (const std::string& argument : arguments) line += " '" + argument + "'";
        writeFile(folder / "run.sh", line + "\n");
        return support::run(u"sh"_s, {folder.file(u"run.sh"_s)});
    }
    void expectDone(const std::vector<std::string>& arguments) {
        const Outcome outcome = cli(arguments);
        EXPECT_EQ(outcome.exitCode, 0) << outcome.err.toStdString();
    }

    support::TempFolder folder;
    const fs::path old = folder / "fran\xE7\x61is";
};

}  // namespace

TEST_F(Names, AreListedAsTheyAre) {
    const fs::path file = song("mp3");
    const Outcome outcome = cli({"show", file.string()});
    EXPECT_EQ(outcome.exitCode, 0) << outcome.err.toStdString();
    EXPECT_THAT(outcome.out.toStdString(), HasSubstr(file.string()));
    EXPECT_EQ(cli({"--json", "show", file.string()}).exitCode, 0);
}

TEST_F(Names, AreReadAndChangedInEveryFormat) {
    for (const std::string& kind : kinds) {
        SCOPED_TRACE(kind);
        const fs::path file = song(kind);
        const std::string before = readFile(file);
        expectDone({"effect", "amplify-minus", "--value", "50", file.string()});
        EXPECT_NE(readFile(file), before);
        fs::copy_file(file, folder / ("judged." + kind));
        EXPECT_GT(support::decodeWithFfmpeg(folder / ("judged." + kind)).frames(), 1000U);
    }
    EXPECT_EQ(namesIn(old).size(), kinds.size());
}

TEST_F(Names, AreKeptInAFolderForTheResults) {
    const fs::path file = song("ogg");
    expectDone({"effect", "fade-out", "--output", (old / "new").string(), file.string()});
    EXPECT_THAT(namesIn(old / "new"), ElementsAre("caf\xE9.ogg"));
    // What is there already is seen, and not written over.
    EXPECT_EQ(
        cli({"effect", "fade-out", "--output", (old / "new").string(), file.string()}).exitCode, 1);
}

TEST_F(Names, AreMixed) {
    std::vector<std::string> arguments{"crossfade",
                                       "--overlap",
                                       "1",
                                       "--target",
                                       (old / "mix").string(),
                                       "--burn-list",
                                       (old / "burn.txt").string()};
    for (const char* kind : {"mp3", "wma"}) arguments.push_back(song(kind).string());
    expectDone(arguments);
    EXPECT_EQ(readFile(old / "burn.txt"), (old / "mix/caf\xE9.wav").string() + "\r\n" +
                                              (old / "mix/caf\xE9 (2).wav").string() + "\r\n");
}

TEST_F(Names, AreCopiedAndTheListThatIsWrittenLoadsAgain) {
    const fs::path file = song("mp3");
    const fs::path list = old / "list.m3u";
    writeFile(list, "caf\xE9.mp3\r\n");
    expectDone({"copy", list.string(), "--to", (folder / "out").string()});
    EXPECT_EQ(readFile(folder / "out/caf\xE9.mp3"), readFile(file));
    const Outcome outcome = cli({"show", (folder / "out/temp.m3u").string()});
    EXPECT_EQ(outcome.exitCode, 0) << outcome.err.toStdString();
    EXPECT_THAT(outcome.out.toStdString(), HasSubstr((folder / "out/caf\xE9.mp3").string()));
}

TEST_F(Names, SurviveEveryKindOfList) {
    const fs::path file = song("mp3");
    writeFile(old / "list.m3u", file.string() + "\r\n");
    const std::string pls = (old / "list.pls").string();
    const std::string back = (old / "b\xE9.m3u").string();
    expectDone({"convert-list", (old / "list.m3u").string(), pls});
    expectDone({"convert-list", pls, back});
    EXPECT_EQ(readFile(back), file.string() + "\r\n");
}

TEST_F(Names, OfTheCurrentFolderMatterNot) {
    song("mp3");
    writeFile(folder / "here.sh", "cd '" + old.string() + "' && '" TRACKSMITH_CLI "' show *.mp3\n");
    const Outcome outcome = support::run(u"sh"_s, {folder.file(u"here.sh"_s)});
    EXPECT_EQ(outcome.exitCode, 0) << outcome.err.toStdString();
}
