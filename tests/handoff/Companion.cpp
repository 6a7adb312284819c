// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/handoff/Companion.h"

#include <QTest>

#include "platform/Paths.h"
#include "tests/platform/file/FileTools.h"

namespace fs = std::filesystem;

namespace test {

Companion::Companion(const std::string& relative, const QString& handoffFile)
    : program_(platform::toPath(platform::applicationFolder()) / relative),
      record_(program_.string() + ".record") {
    fs::create_directories(program_.parent_path());
    const std::string record = record_.string();
    const std::string file = handoffFile.toStdString();
    writeFile(program_, "#!/bin/sh\nmkdir '" + record + ".part'\necho $# >'" + record +
                            ".part/arguments'\ncp '" + file + "' '" + record +
                            ".part/found' || printf none >'" + record + ".part/found'\nmv '" +
                            record + ".part' '" + record + "'\n");
    fs::permissions(program_, fs::perms::owner_all);
}

Companion::~Companion() {
    fs::remove(program_);
    fs::remove_all(record_);
}

bool Companion::started() const {
    return QTest::qWaitFor([this] { return hasStarted(); }, 30'000);
}

bool Companion::hasStarted() const {
    return fs::exists(record_);
}

int Companion::arguments() const {
    return std::stoi(readFile(record_ / "arguments"));
}

std::string Companion::found() const {
    return readFile(record_ / "found");
}

}  // namespace test
