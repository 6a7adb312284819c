// SPDX-License-Identifier: GPL-3.0-or-later
// Companions are looked for beside the program. So that tests can put some there, a test program
// that links this file runs itself from a folder of its own, before anything else of it begins.
#include <cstdlib>
#include <filesystem>
#include <string>
#include <unistd.h>

#include <climits>

namespace fs = std::filesystem;

namespace {

[[gnu::constructor]] void runFromPrivateFolder(int, char** argv, char**) {
    const char* temporary = std::getenv("TMPDIR");
    const fs::path self = fs::read_symlink("/proc/self/exe");
    if (!temporary || self.parent_path().parent_path() == temporary) return;
    std::string folder = std::string(temporary) + "/program-XXXXXX";
    if (!mkdtemp(folder.data())) _exit(1);
    const fs::path there = fs::path(folder) / self.filename();
    std::error_code elsewhere;
    fs::create_hard_link(self, there, elsewhere);
    if (elsewhere) fs::copy_file(self, there);
    execv(there.c_str(), argv);
    _exit(1);
}

}  // namespace
