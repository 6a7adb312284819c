// SPDX-License-Identifier: GPL-3.0-or-later
#include "wizard/Genres.h"

#include <id3v1genres.h>

namespace wizard {

QStringList genreNames() {
    constexpr int Count = 148;
    QStringList names;
    for (int number = 0; number < Count; ++number)
        names << QString::fromUtf8(TagLib::ID3v1::genre(number).toCString(true));
    return names;
}

}  // namespace wizard
