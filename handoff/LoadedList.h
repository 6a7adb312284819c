// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

#include <QString>

namespace handoff {

/// The playlist that the window shows, as a whole, with the file it was loaded from. Where no
/// player is named, player 0 is meant. Window thread.
class LoadedList {
  public:
    virtual ~LoadedList() = default;

    virtual QString caption() const = 0;
    virtual void setCaption(const QString& caption) = 0;
    /// Answers 0 for success.
    virtual std::int32_t saveAsM3u(std::int16_t player, const QString& path) = 0;
    /// Loads another list in place of this one and shows it.
    virtual void replaceBy(const QString& path) = 0;
    virtual void reload() = 0;  ///< from the file that the caption names
    virtual void setTitleCell(int row, const QString& text) = 0;
};

}  // namespace handoff
