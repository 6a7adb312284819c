// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/frmMain.h"

#include <chrono>

#include <QTimer>

#include "ui_frmMain.h"
#include "widgets/CommonDialog.h"

using namespace Qt::Literals::StringLiterals;

namespace app {

namespace {

template <class Part>
Part* named(const QString& name, QObject* owner) {
    auto* part = new Part(owner);
    part->setObjectName(name);
    return part;
}

}  // namespace

frmMain::frmMain(QWidget* parent)
    : QWidget(parent),
      ui_(std::make_unique<Ui::frmMain>()),
      CommonDialog1(named<widgets::CommonDialog>(u"CommonDialog1"_s, this)),
      Timer1(named<QTimer>(u"Timer1"_s, this)),
      Timer2(named<QTimer>(u"Timer2"_s, this)) {
    ui_->setupUi(this);
    Timer1->setInterval(std::chrono::milliseconds(500));
    Timer2->setInterval(std::chrono::milliseconds(2000));
    ui_->ListView1->setColumns({u"Track"_s, u"Duration"_s, u"Title"_s});
    ui_->ListView1->setColumnCharacters(0, 9);
    ui_->ListView1->setColumnCharacters(1, 11);
    ui_->ListView2->setColumns({u"Index"_s, u"Duration"_s, u"Title"_s});
    buildMenus();
    connectCommands();
}

frmMain::~frmMain() = default;

}  // namespace app
