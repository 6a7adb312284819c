// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/tags/CommonTags.h"

#include <gtest/gtest.h>

#include "tests/support/Fixtures.h"
#include "tests/support/Python.h"
#include "tests/support/TempFolder.h"

namespace {

using audio::tags::LevelFields;

TEST(CommonTags, CoversOfFlacInOggGoAlong) {
    const support::TempFolder folder;
    const auto from = folder / "from.oga";
    const auto to = folder / "to.oga";
    for (const auto& file : {from, to}) {
        const auto made =
            support::run(QStringLiteral("flac"),
                         {QStringLiteral("-s"), QStringLiteral("--ogg"), QStringLiteral("-o"),
                          QString::fromStdString(file.string()),
                          QString::fromStdString(support::fixture("tone.wav").string())});
        ASSERT_EQ(made.exitCode, 0) << made.err.toStdString();
    }
    support::python(QStringLiteral(R"(
import sys, base64, mutagen, mutagen.flac
file = mutagen.File(sys.argv[1])
art = mutagen.flac.Picture()
art.data, art.mime, art.type = bytes(range(203)) * 300, "image/png", 4
file["metadata_block_picture"] = [base64.b64encode(art.write()).decode()]
file["artist"] = ["one", "two", "three"]
file.save()
)"),
                    {from});
    ASSERT_TRUE(audio::tags::copyCommonTags(from, to, LevelFields::Keep));
    const QString fields = QStringLiteral(R"(
import sys, mutagen
tags = mutagen.File(sys.argv[1]).tags
print(tags["artist"], tags["metadata_block_picture"])
)");
    EXPECT_EQ(support::python(fields, {to}), support::python(fields, {from}));
}

}  // namespace
