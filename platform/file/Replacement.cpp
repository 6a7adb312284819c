// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/file/Replacement.h"

#include <string>

#include "platform/Error.h"
#include "platform/Paths.h"
#include "platform/SystemError.h"
#include "platform/file/File.h"
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
        const fs::file_status status = fs::status(target, error);
        if (fs::exists(status) && !fs::is_regular_file(status)) fail("it is not an ordinary file");
        if (fs::exists(status) && !isWritable(target)) fail("it is write-protected");
        create();
    }
    ~Impl() {
        file.close();
        std::error_code ignored;
        if (!committed) fs::remove(temporary, ignored);
    }
    Impl(const Impl&) = delete;
    Impl& operator=(const Impl&) = delete;

    [[noreturn]] void fail(const std::string& reason) const {
        throw Error("\"" + toUtf8(target) + "\" cannot be saved: " + reason + ".");
    }

    void create() {
        removeLeftovers(target.parent_path());
        for (int attempt = 0; attempt < 100; ++attempt) {
            temporary = temporaryBeside(target);
            std::error_code error;
            if (file.createNew(temporary, error)) return;
            if (error != std::errc::file_exists)
                fail("no file can be created in its folder (" + error.message() + ")");
        }
        fail("no file can be created in its folder");
    }

    template <typename Action>
    void step(const char* what, Action action) {
        std::error_code error;
        if (!action(error)) fail(std::string(what) + " failed (" + error.message() + ")");
    }

    fs::path target;
    fs::path temporary;
    File file;
    std::int64_t position = 0;
    bool committed = false;
};

Replacement::Replacement(const fs::path& target) : impl_(std::make_unique<Impl>(target)) {}

Replacement::~Replacement() = default;

const fs::path& Replacement::target() const {
    return impl_->target;
}

const fs::path& Replacement::temporary() const {
    return impl_->temporary;
}

void Replacement::write(std::span<const std::byte> bytes) {
    impl_->step("writing", [&](std::error_code& error) {
        return impl_->file.writeAt(impl_->position, bytes, error);
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
        return impl_->file.copyFrom(from, offset, size, impl_->position, error);
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
    impl_->step("shortening it",
                [&](std::error_code& error) { return impl_->file.resize(size, error); });
    impl_->position = size;
}

void Replacement::commit(const std::function<void(const fs::path&)>& verify) {
    Impl& impl = *impl_;
    if (impl.committed) impl.fail("it was saved already");
    if (verify) verify(impl.temporary);
    std::error_code ignored;
    if (fs::exists(impl.target, ignored))
        impl.step("keeping its owner, mode and attributes", [&](std::error_code& error) {
            return impl.file.copyAttributesOf(impl.target, error);
        });
    impl.step("writing it to the disk",
              [&](std::error_code& error) { return impl.file.sync(error); });
    impl.step("putting it in its place", [&](std::error_code& error) {
        return impl.file.replace(impl.temporary, impl.target, error);
    });
    impl.committed = true;
}

}  // namespace platform::file
