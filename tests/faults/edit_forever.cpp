// SPDX-License-Identifier: GPL-3.0-or-later
// Edits the named files in place, one after the other and again from the first, until it is killed.
// Prints a line after every save.
#include <cstdio>

#include <QCoreApplication>

#include "effects/engine/AudioEditor.h"

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    const QStringList files = QCoreApplication::arguments().mid(1);
    effects::AudioEditor editor;
    for (;;) {
        for (const QString& file : files) {
            editor.Load(file);
            editor.SetSelectionActive(true);
            editor.SetSelectionEnd(editor.TimeToPosition(100));
            editor.Fade(90, 100);
            editor.SetSelectionActive(false);
            editor.Save(file, true, 0);
            std::puts("saved");
            std::fflush(stdout);
        }
    }
}
