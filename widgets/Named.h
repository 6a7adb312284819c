// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>
#include <QString>

namespace widgets {

/// A part of a form that stands in no .ui file, under its fixed name. Its owner ends it.
template <class Part>
Part* named(const QString& name, QObject* owner) {
    auto* part = new Part(owner);
    part->setObjectName(name);
    return part;
}

}  // namespace widgets
