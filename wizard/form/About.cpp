// SPDX-License-Identifier: GPL-3.0-or-later
#include "wizard/form/About.h"

#include <QDialog>
#include <QDialogButtonBox>
#include <QLabel>
#include <QVBoxLayout>

#include "platform/Program.h"

using namespace Qt::Literals::StringLiterals;

namespace wizard {

namespace {

void addLine(QVBoxLayout* layout, const QString& text, double size) {
    auto* line = new QLabel(text);
    line->setTextFormat(Qt::PlainText);
    line->setWordWrap(true);
    QFont font = line->font();
    font.setPointSizeF(font.pointSizeF() * size);
    line->setFont(font);
    layout->addWidget(line);
}

}  // namespace

void showAbout(QWidget* owner) {
    auto* about = new QDialog(owner);
    about->setObjectName(u"frmAbout"_s);
    about->setAttribute(Qt::WA_DeleteOnClose);
    about->setWindowTitle(u"About Cross Fade Wizard v2.7"_s);
    auto* layout = new QVBoxLayout(about);
    layout->setContentsMargins(20, 18, 20, 14);
    layout->setSpacing(10);
    addLine(layout, u"Cross Fade Wizard v2.7"_s, 1.5);
    addLine(layout, u"Part of %1 v%2"_s.arg(platform::programTitle(), platform::programVersion()),
            1.0);
    addLine(
        layout,
        u"Turns a playlist into a continuous mix: every track is trimmed, levelled and faded as "
        u"you choose, written into a folder of its own, and overlapped with the next one. The "
        u"files of your playlist are only ever read."_s,
        1.0);
    addLine(layout, u"Free software under the GNU General Public License, version 3 or later."_s,
            1.0);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok);
    QObject::connect(buttons, &QDialogButtonBox::accepted, about, &QDialog::accept);
    layout->addWidget(buttons);
    about->setMinimumWidth(460);
    about->open();
}

}  // namespace wizard
