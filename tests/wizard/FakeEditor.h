// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <functional>

#include <QString>
#include <QStringList>

namespace support {

/// What stands in for the editor engine where only the order of the calls matters: it writes each
/// call down and does as it is told.
struct FakeEditor {
    QStringList calls;
    std::int32_t length = 441000;  ///< frames of whatever is loaded
    std::int32_t rate = 44100;
    std::function<bool(const QString& call)> fails;   ///< calls for which it throws
    std::function<void(const QString& call)> during;  ///< run within each call

    static FakeEditor& instance();
    static void reset();
};

}  // namespace support
