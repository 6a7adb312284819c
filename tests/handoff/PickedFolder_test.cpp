// SPDX-License-Identifier: GPL-3.0-or-later
#include "handoff/PickedFolder.h"

#include <QStorageInfo>
#include <gtest/gtest.h>

#include "tests/support/TempFolder.h"

using namespace Qt::Literals::StringLiterals;
using handoff::pickedFolder;

TEST(PickedFolder, AFolderHasNoSeparatorAtItsEnd) {
    const support::TempFolder folder;
    const QString path = folder.file(u"x"_s).chopped(2);
    EXPECT_EQ(pickedFolder(path), path);
    EXPECT_EQ(pickedFolder(path + u'/'), path);
}

// A portable player is a file system of its own: copies shall land in it, not beside it.
TEST(PickedFolder, TheRootOfADriveHasOne) {
    EXPECT_EQ(pickedFolder(u"/"_s), u"/"_s);
    int roots = 0;
    for (const QStorageInfo& drive : QStorageInfo::mountedVolumes()) {
        if (!QFileInfo(drive.rootPath()).isDir() || drive.rootPath() == u"/"_s) continue;
        EXPECT_EQ(pickedFolder(drive.rootPath()), drive.rootPath() + u'/');
        ++roots;
    }
    RecordProperty("roots", roots);
}

TEST(PickedFolder, NothingPickedIsNothing) {
    EXPECT_EQ(pickedFolder({}), QString());
}
