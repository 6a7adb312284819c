// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/StartProgram.h"

#include <sys/wait.h>
#include <unistd.h>

#include <QTest>
#include <gmock/gmock.h>

#include "platform/Paths.h"
#include "tests/platform/file/FileTools.h"
#include "tests/support/TempFolder.h"

namespace fs = std::filesystem;
using namespace test;
using testing::HasSubstr;

namespace {

class StartProgram : public testing::Test {
  protected:
    QString program(const std::string& name, const std::string& script) {
        writeFile(folder / name, "#!/bin/sh\n" + script + "\n");
        fs::permissions(folder / name, fs::perms::owner_all);
        return platform::toQString(folder / name);
    }
    bool appears(const std::string& name) {
        return QTest::qWaitFor([&] { return fs::exists(folder / name); }, 30'000);
    }
    support::TempFolder folder;
};

}  // namespace

TEST_F(StartProgram, StartsWithoutArguments) {
    const std::string out = (folder / "out").string();
    platform::startProgram(program(
        "a companion.EXE", "echo $# > '" + out + ".part'; mv '" + out + ".part' '" + out + "'"));
    ASSERT_TRUE(appears("out"));
    EXPECT_EQ(readFile(out), "0\n");
}

// The program belongs to nobody here: there is no child to wait for, alive or dead.
TEST_F(StartProgram, LeavesNoChildBehind) {
    platform::startProgram(program("quick", "touch '" + (folder / "done").string() + "'"));
    EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1);
    ASSERT_TRUE(appears("done"));
    EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1);
}

TEST_F(StartProgram, TellsWhatCannotBeStarted) {
    EXPECT_THAT(errorOf([&] { platform::startProgram(folder.file(QStringLiteral("gone.EXE"))); }),
                HasSubstr("gone.EXE"));
    writeFile(folder / "text.EXE", "not a program");
    EXPECT_THAT(errorOf([&] { platform::startProgram(folder.file(QStringLiteral("text.EXE"))); }),
                HasSubstr("text.EXE"));
}
