// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/Skin.h"
#include "app/frmMain.h"
#include "widgets/Application.h"

int main(int argc, char** argv) {
    widgets::Application application(argc, argv);
    app::applySkin(application);
    app::frmMain window;
    window.show();
    return application.exec();
}
