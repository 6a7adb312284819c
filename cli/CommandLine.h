// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace cli {

/// The whole program: reads the arguments, runs the command they name and answers the exit code: 0
/// all done, 1 some files failed (each named with its reason, the others done), 2 bad usage.
int runCommandLine(int argc, const char* const* argv);

}  // namespace cli
