// SPDX-License-Identifier: GPL-3.0-or-later
#include "ports/window/WindowBoxes.h"

#include "handoff/forms/BrowseForFolder.h"
#include "widgets/InputBox.h"
#include "widgets/MsgBox.h"

namespace ports {

using widgets::MsgButtons;
using widgets::MsgIcon;
using widgets::MsgResult;

void WindowBoxes::showMessage(const QString& text) {
    widgets::msgBox(text);
}

bool WindowBoxes::askYesNo(const QString& text, const QString& title) {
    return widgets::msgBox(text, MsgButtons::YesNo, MsgIcon::Question, title) == MsgResult::Yes;
}

bool WindowBoxes::warnOkCancel(const QString& text, const QString& title) {
    return widgets::msgBox(text, MsgButtons::OkCancel, MsgIcon::Exclamation, title) ==
           MsgResult::Ok;
}

QString WindowBoxes::inputBox(const QString& prompt, const QString& title) {
    return widgets::inputBox(prompt, title);
}

QString WindowBoxes::browseForFolder(const QString& prompt) {
    return handoff::BrowseForFolder(&window_, prompt);
}

}  // namespace ports
