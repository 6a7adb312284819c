// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/parallel/Launch.h"

#include <filesystem>
#include <new>
#include <string>

#include "platform/Error.h"
#include "platform/Paths.h"

namespace audio::parallel {

void rethrowAsError() {
    try {
        throw;
    } catch (const platform::Error&) {
        throw;
    } catch (const std::bad_alloc&) {
        throw platform::Error("There is not enough memory for this sound.");
    } catch (const std::filesystem::filesystem_error& error) {
        throw platform::Error("The file \"" + platform::toUtf8(error.path1()) +
                              "\" cannot be used: " + error.code().message() + ".");
    } catch (const std::exception& error) {
        throw platform::Error(std::string("The work on this sound failed: ") + error.what() + ".");
    } catch (...) {
        throw platform::Error("The work on this sound failed for an unknown reason.");
    }
}

std::exception_ptr currentError() {
    try {
        rethrowAsError();
    } catch (...) {
        return std::current_exception();
    }
}

}  // namespace audio::parallel
