// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

namespace CLI {
class Validator;
}

namespace cli {

/// For an option that takes a length of time: a number of seconds whose milliseconds are at least
/// 1 and fit 31 bits. Whatever else is typed, also "nan", is bad usage.
CLI::Validator lengthInSeconds();

/// Seconds as whole milliseconds.
std::int32_t toMilliseconds(double seconds);

}  // namespace cli
