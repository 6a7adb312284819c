// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/modules/modPath.h"

#include <gtest/gtest.h>

using namespace Qt::Literals::StringLiterals;

TEST(modPath, FolderPart) {
    EXPECT_EQ(modPath::GetPathPart(u"C:\\Music\\a.mp3"_s), u"C:\\Music\\"_s);
    EXPECT_EQ(modPath::GetPathPart(u"a.mp3"_s), QString());
    EXPECT_EQ(modPath::GetPathPart(u"C:\\x\\"_s), u"C:\\x\\"_s);
    EXPECT_EQ(modPath::GetPathPart(u"/home/me/a.mp3"_s), u"/home/me/"_s);
}

TEST(modPath, FileNamePart) {
    EXPECT_EQ(modPath::GetFileNamePart(u"C:\\x\\y.wav"_s), u"y.wav"_s);
    EXPECT_EQ(modPath::GetFileNamePart(u" a.mp3 "_s), u" a.mp3 "_s);
}

// The cut is counted without the leading blanks and made with them.
TEST(modPath, FileNamePartWithLeadingBlanks) {
    EXPECT_EQ(modPath::GetFileNamePart(u"  C:\\x\\y.wav"_s), u"x\\y.wav"_s);
}
