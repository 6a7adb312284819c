// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/platform/file/FileTools.h"

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <random>
#include <stdexcept>
#include <sys/stat.h>
#include <unistd.h>

namespace fs = std::filesystem;

namespace test {

void writeFile(const fs::path& file, const std::string& bytes) {
    std::ofstream(file, std::ios::binary) << bytes;
}

std::string readFile(const fs::path& file) {
    std::ifstream in(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

std::string noise(std::size_t size) {
    std::mt19937 random(1);
    std::string bytes(size, '\0');
    for (char& byte : bytes) byte = static_cast<char>(random());
    return bytes;
}

std::vector<std::string> namesIn(const fs::path& folder) {
    std::vector<std::string> names;
    for (const fs::directory_entry& entry : fs::directory_iterator(folder))
        names.push_back(entry.path().filename().string());
    std::sort(names.begin(), names.end());
    return names;
}

FolderElsewhere::FolderElsewhere(const fs::path& here) {
    struct stat home {};
    stat(here.c_str(), &home);
    for (std::string folder : {"/dev/shm/ts-XXXXXX", "/run/ts-XXXXXX", "/var/tmp/ts-XXXXXX"}) {
        if (!mkdtemp(folder.data())) continue;
        struct stat there {};
        if (stat(folder.c_str(), &there) == 0 && there.st_dev != home.st_dev) {
            path_ = folder;
            return;
        }
        fs::remove(folder);
    }
    throw std::runtime_error("This test needs a second file system to write to (/dev/shm).");
}

FolderElsewhere::~FolderElsewhere() {
    std::error_code ignored;
    fs::remove_all(path_, ignored);
}

}  // namespace test
