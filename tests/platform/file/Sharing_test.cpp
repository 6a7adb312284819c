// SPDX-License-Identifier: GPL-3.0-or-later
// On a file system that can share blocks between files, sound that stays as it is takes no room
// twice. Needs the right to mount one.
#include <unistd.h>

#include <gmock/gmock.h>

#include "platform/Paths.h"
#include "platform/file/Copy.h"
#include "platform/file/Replacement.h"
#include "tests/platform/file/FileTools.h"
#include "tests/support/Fixtures.h"
#include "tests/support/TempFolder.h"

namespace fs = std::filesystem;
using namespace Qt::Literals::StringLiterals;
using test::noise;
using test::readFile;
using test::writeFile;
using testing::HasSubstr;
using testing::Not;

namespace {

/// A small Btrfs in a file, mounted while it lives; nowhere where that is not allowed.
class Btrfs {
  public:
    Btrfs() {
        std::string none;
        writeFile(image_, none);
        fs::resize_file(image_, std::uintmax_t{128} << 20);
        fs::create_directory(place_);
        run(u"mkfs.btrfs"_s, {u"-q"_s, platform::toQString(image_)});
        if (why_.empty())
            run(u"mount"_s,
                {u"-o"_s, u"loop"_s, platform::toQString(image_), platform::toQString(place_)});
    }
    ~Btrfs() {
        if (why_.empty()) support::run(u"umount"_s, {platform::toQString(place_)});
    }
    Btrfs(const Btrfs&) = delete;
    Btrfs& operator=(const Btrfs&) = delete;

    /// Why there is none here; empty where there is one.
    const std::string& whyNot() const { return why_; }
    const fs::path& path() const { return place_; }

  private:
    void run(const QString& program, const QStringList& arguments) {
        const support::Outcome outcome = support::run(program, arguments);
        if (outcome.exitCode != 0)
            why_ = program.toStdString() + " refuses: " + outcome.err.toStdString();
    }

    support::TempFolder folder_;
    fs::path image_ = folder_ / "image";
    fs::path place_ = folder_ / "mounted";
    std::string why_;
};

class Sharing : public testing::Test {
  protected:
    void SetUp() override {
        if (!disk.whyNot().empty()) GTEST_SKIP() << "cannot run here: " << disk.whyNot();
        writeFile(source, bytes);
        ::sync();  // only what is on the disk has blocks
    }
    /// What filefrag says of the file's extents, each with its flags.
    static std::string extentsOf(const fs::path& file) {
        ::sync();
        return support::run(u"filefrag"_s, {u"-v"_s, platform::toQString(file)}).out.toStdString();
    }

    Btrfs disk;
    const std::string bytes = noise(3'000'001);
    const fs::path source = disk.path() / "source.wav";
};

TEST_F(Sharing, ACopyTakesNoRoom) {
    EXPECT_THAT(extentsOf(source), Not(HasSubstr("shared")));
    platform::file::copy(source, disk.path() / "copy.wav");
    EXPECT_EQ(readFile(disk.path() / "copy.wav"), bytes);
    EXPECT_THAT(extentsOf(disk.path() / "copy.wav"), HasSubstr("shared"));
}

TEST_F(Sharing, AStretchThatLiesAlikeIsSharedAndWhatIsAroundItIsRight) {
    const auto save = [&](const std::string& head, std::int64_t from, const std::string& name) {
        platform::file::Replacement file(disk.path() / name);
        file.write(head.data(), head.size());
        file.copyFrom(source, from, 2'000'000);
        file.commit();
        EXPECT_EQ(readFile(disk.path() / name),
                  head + bytes.substr(static_cast<std::size_t>(from), 2'000'000));
        return extentsOf(disk.path() / name);
    };
    EXPECT_THAT(save(std::string(8'192 + 100, 'h'), 100, "alike.wav"), HasSubstr("shared"));
    EXPECT_THAT(save(std::string(101, 'h'), 100, "shifted.wav"), Not(HasSubstr("shared")));
}

}  // namespace
