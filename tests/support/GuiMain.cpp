// SPDX-License-Identifier: GPL-3.0-or-later
// The entry of every test program with windows: the program's own application object, and dialogs
// that tests can reach into.
#include <gtest/gtest.h>

#include "widgets/Application.h"

int main(int argc, char** argv) {
    ::testing::InitGoogleTest(&argc, argv);
    QCoreApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
    widgets::Application application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    return RUN_ALL_TESTS();
}
