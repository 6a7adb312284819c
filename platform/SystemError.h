// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <system_error>

#include "platform/Error.h"

namespace platform {

/// An Error "<what>: <the system's reason>."
inline Error systemError(const std::string& what, const std::error_code& reason) {
    return Error(what + ": " + reason.message() + ".");
}

/// What the last failed call of the operating system left as its reason. Call it at once after.
std::error_code lastSystemError();

}  // namespace platform
