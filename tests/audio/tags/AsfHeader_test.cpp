// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/tags/AsfHeader.h"

#include <string>

#include <gtest/gtest.h>

#include "platform/Error.h"
#include "tests/support/Fixtures.h"
#include "tests/support/Python.h"
#include "tests/support/Sound.h"
#include "tests/support/TempFolder.h"

using namespace audio::tags;
using namespace Qt::Literals::StringLiterals;

namespace {

const QString tagIt =
    u"import sys,mutagen.asf as a\n"
    "f=a.ASF(sys.argv[1])\n"
    "f['Title']='Ünï – 音楽'\n"
    "f['Author']=['one','two']\n"
    "f['WM/Picture']=[a.ASFByteArrayAttribute(b'\\x03'+(70000).to_bytes(4,'little')"
    "+'image/png'.encode('utf-16-le')+b'\\0\\0'+b'\\0\\0'+b'p'*70000)]\n"
    "f['replaygain_track_gain']='-4 dB'\n"
    "f['WM/Lyrics']='la'\n"
    "f.save()\n"_s;
const QString showIt =
    u"import sys,mutagen.asf as a\n"
    "f=a.ASF(sys.argv[1])\n"
    "print(sorted((k,[bytes(v) if isinstance(v,a.ASFByteArrayAttribute) else str(v) for v in f[k]])"
    " for k in f.keys()))\n"_s;

}  // namespace

TEST(AsfHeader, MetadataOfOneAndSoundOfTheOther) {
    const support::TempFolder folder;
    const auto source = support::scratchCopy("tone.wma", folder.path());
    support::python(tagIt, {source});
    for (const LevelFields levels : {LevelFields::Keep, LevelFields::Drop}) {
        platform::file::Replacement file(folder / "out.wma");
        writeWithAsfMetadata(support::fixture("music.wma"), source, levels, file);
        file.commit();
        QByteArray expected = support::python(showIt, {source});
        if (levels == LevelFields::Drop) {
            EXPECT_TRUE(expected.contains("replaygain"));
            expected.replace("('replaygain_track_gain', ['-4 dB'])", "");
            expected.replace(", ]", "]").replace(", , ", ", ");
        }
        EXPECT_EQ(support::python(showIt, {folder / "out.wma"}).toStdString(),
                  expected.toStdString());
        EXPECT_EQ(support::decodeWithFfmpeg(folder / "out.wma").samples,
                  support::decodeWithFfmpeg(support::fixture("music.wma")).samples);
    }
}

TEST(AsfHeader, TheStatedFileSizeIsTheFileSize) {
    const support::TempFolder folder;
    const auto source = support::scratchCopy("tone.wma", folder.path());
    support::python(tagIt, {source});
    platform::file::Replacement file(folder / "out.wma");
    writeWithAsfMetadata(support::fixture("music.wma"), source, LevelFields::Keep, file);
    file.commit();
    const support::Outcome shown =
        support::run(u"exiftool"_s, {u"-n"_s, u"-s3"_s, u"-ASF:FileLength"_s,
                                     QString::fromStdString((folder / "out.wma").string())});
    EXPECT_EQ(shown.out.trimmed().toLongLong(),
              static_cast<qlonglong>(std::filesystem::file_size(folder / "out.wma")));
}

TEST(AsfHeader, AFileThatIsNoAsfIsRefused) {
    const support::TempFolder folder;
    platform::file::Replacement file(folder / "out.wma");
    EXPECT_THROW(writeWithAsfMetadata(support::fixture("tone.wma"), support::fixture("tone.wav"),
                                      LevelFields::Keep, file),
                 platform::Error);
}
