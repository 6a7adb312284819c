// SPDX-License-Identifier: GPL-3.0-or-later
// The entry of every test program without windows.
#include <QCoreApplication>
#include <gtest/gtest.h>

int main(int argc, char** argv) {
    ::testing::InitGoogleTest(&argc, argv);
    QCoreApplication app(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("tracksmith"));
    return RUN_ALL_TESTS();
}
