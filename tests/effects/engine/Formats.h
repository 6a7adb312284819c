// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <ostream>
#include <string>
#include <vector>

#include <QString>

/// A kind of file that is edited in place, and what may be asked of the result.
struct FileKind {
    std::string name;       ///< of the fixture
    double step = 0;        ///< lossless: one LSB, full scale 1; 0 for floats and lossy formats
    bool dithered = false;  ///< lossless: 16 bits or fewer
    QString encoder;        ///< lossy: how ffmpeg encodes the like once
    std::size_t block = 1;  ///< lengths are multiples of this
    std::size_t lost = 0;   ///< frames that ffmpeg's encoder drops from the start

    bool lossy() const { return !encoder.isEmpty(); }
    QString extension() const { return QString::fromStdString(name.substr(name.rfind('.') + 1)); }
};

inline std::ostream& operator<<(std::ostream& out, const FileKind& kind) {
    return out << kind.name;
}

const std::vector<FileKind>& losslessKinds();
const std::vector<FileKind>& lossyKinds();
std::vector<FileKind> allKinds();

/// A name that GoogleTest takes.
std::string testNameOf(const FileKind& kind);
