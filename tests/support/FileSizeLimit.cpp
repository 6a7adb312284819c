// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/FileSizeLimit.h"

#include <csignal>
#include <sys/resource.h>

namespace support {

FileSizeLimit::FileSizeLimit(std::uintmax_t bytes) {
    std::signal(SIGXFSZ, SIG_IGN);
    rlimit limit{};
    getrlimit(RLIMIT_FSIZE, &limit);
    before_ = limit.rlim_cur;
    limit.rlim_cur = bytes;
    setrlimit(RLIMIT_FSIZE, &limit);
}

FileSizeLimit::~FileSizeLimit() {
    rlimit limit{};
    getrlimit(RLIMIT_FSIZE, &limit);
    limit.rlim_cur = before_;
    setrlimit(RLIMIT_FSIZE, &limit);
}

}  // namespace support
