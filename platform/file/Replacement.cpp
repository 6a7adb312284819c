// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/file/Replacement.h"

#include <string>

#include "platform/Error.h"
#include "platform/Paths.h"
#include "platform/SystemError.h"
#include "platform/file/File.h"
#include "platform/file/Regular.h"
#include "platform/file/Temporary.h"

namespace platform::file {
namespace {

namespace fs = std::filesystem;

// The file behind any links; for a link that points nowhere yet, the place it points to.
fs::path resolved(const fs::path& target) {
    std::error_code failure;
    fs::path current = fs::absolute(target, failure);
    if (failure) throw systemError("\"" + toUtf8(target) + "\" cannot be saved", failure);
    for (int depth = 0; depth < 40; ++depth) {
        std::error_code error;
        if (!fs::is_symlink(current, error)) {
            const fs::path whole = fs::weakly_canonical(current, error);
            return error ? current : whole;
        }
        const fs::path next = fs::read_symlink(current, error);
        if (error) break;
        current = next.is_absolute() ? next : current.parent_path() / next;
    }
    throw Error("\"" + toUtf8(target) + "\" cannot be saved: its symbolic links lead nowhere.");
}

}  // namespace

class Replacement::Impl {
  public:
    explicit Impl(const fs::path& path) : target(resolved(path)) {
        std::error_code error;
        existed = fs::exists(target, error);
        if (reasonAgainst(target) == notRegular()) fail(notRegular().message());
        if (existed && !isWritable(target)) fail("it is write-protected");
        if (!temporary.create(target.parent_path(), target.extension(), error))
            fail("no file can be created in its folder (" + error.message() + ")");
        name = temporary.path();
    }

    [[noreturn]] void fail(const std::string& reason) const {
        throw Error("\"" + toUtf8(target) + "\" cannot be saved: " + reason + ".");
    }

    template <typename Action>
    void step(const char* what, Action action) {
        std::error_code error;
        if (!action(error)) fail(std::string(what) + " failed (" + error.message() + ")");
    }

    bool targetIsThere() const {
        std::error_code unknown;
        const fs::file_status status = fs::symlink_status(target, unknown);
        return status.type() != fs::file_type::not_found;
    }

    /// Where the system has taken the old file away and not put the new one in its place, the new
    /// one is all there is.
    void putInPlace() {
        std::error_code error;
        if (temporary.replace(target, Sync::Now, error)) return;
        const std::string reason = "putting it in its place failed (" + error.message() + ")";
        if (!existed || targetIsThere()) fail(reason);
        fail(reason + ", and the file itself is gone; its new content is kept in \"" +
             toUtf8(temporary.keep()) + "\"");
    }

    fs::path target;
    Temporary temporary;
    fs::path name;  ///< of the temporary
    std::int64_t position = 0;
    bool existed = false;  ///< the target, at the beginning
    bool committed = false;
};

Replacement::Replacement(const fs::path& target) : impl_(std::make_unique<Impl>(target)) {}

Replacement::~Replacement() = default;

const fs::path& Replacement::target() const {
    return impl_->target;
}

const fs::path& Replacement::temporary() const {
    return impl_->name;
}

void Replacement::write(std::span<const std::byte> bytes) {
    impl_->step("writing", [&](std::error_code& error) {
        return impl_->temporary.file().writeAt(impl_->position, bytes, error);
    });
    impl_->position += static_cast<std::int64_t>(bytes.size());
}

void Replacement::write(const void* bytes, std::size_t size) {
    write(std::span(static_cast<const std::byte*>(bytes), size));
}

void Replacement::copyFrom(const fs::path& source, std::int64_t offset, std::int64_t size) {
    File from;
    impl_->step("reading its source",
                [&](std::error_code& error) { return from.openForReading(source, error); });
    impl_->step("copying from its source", [&](std::error_code& error) {
        return impl_->temporary.file().copyFrom(from, offset, size, impl_->position, error);
    });
    impl_->position += size;
}

void Replacement::seek(std::int64_t position) {
    impl_->position = position;
}

std::int64_t Replacement::position() const {
    return impl_->position;
}

void Replacement::truncate(std::int64_t size) {
    impl_->step("shortening it", [&](std::error_code& error) {
        return impl_->temporary.file().resize(size, error);
    });
    impl_->position = size;
}

Stamp Replacement::commit(const Checks& checks) {
    Impl& impl = *impl_;
    if (impl.committed) impl.fail("it was saved already");
    if (checks.verify) checks.verify(impl.name);
    File& file = impl.temporary.file();
    if (impl.targetIsThere())
        impl.step("keeping its owner, mode and attributes", [&](std::error_code& error) {
            return file.copyAttributesOf(impl.target, error);
        });
    impl.step("writing it to the disk", [&](std::error_code& error) { return file.sync(error); });
    Stamp stamp;
    impl.step("looking at it", [&](std::error_code& error) {
        const auto seen = file.stamp(error);
        if (seen) stamp = *seen;
        return seen.has_value();
    });
    if (checks.last) checks.last();
    impl.putInPlace();
    impl.committed = true;
    return stamp;
}

void replaceWith(const fs::path& target, std::span<const std::byte> bytes) {
    Replacement replacement(target);
    replacement.write(bytes);
    replacement.commit();
}

}  // namespace platform::file
