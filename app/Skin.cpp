// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/Skin.h"

#include <QApplication>
#include <QFile>
#include <QMap>
#include <QPalette>
#include <QRegularExpression>
#include <QStyleFactory>
#include <QWidget>

using namespace Qt::Literals::StringLiterals;

// Resources of a static library are registered only when asked for, from outside any namespace.
static void registerResources() {
    Q_INIT_RESOURCE(skin);
}

namespace app {
namespace {

QString resourceText(const QString& name) {
    QFile file(u":/skin/"_s + name);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

QMap<QString, QColor> readColours() {
    registerResources();
    QMap<QString, QColor> colours;
    const QString text = resourceText(u"palette.ini"_s);
    for (const QString& line : text.split(u'\n', Qt::SkipEmptyParts)) {
        if (!line.startsWith(u';'))
            colours[line.section(u'=', 0, 0)] = QColor(line.section(u'=', 1));
    }
    return colours;
}

const QMap<QString, QColor>& colours() {
    static const QMap<QString, QColor> read = readColours();
    return read;
}

QPalette palette() {
    QPalette palette(skinColour(u"text"_s), skinColour(u"raised"_s), skinColour(u"line"_s),
                     skinColour(u"pressed"_s), skinColour(u"line"_s), skinColour(u"text"_s),
                     skinColour(u"text"_s), skinColour(u"field"_s), skinColour(u"window"_s));
    palette.setColor(QPalette::AlternateBase, skinColour(u"stripe"_s));
    palette.setColor(QPalette::Highlight, skinColour(u"accent"_s));
    palette.setColor(QPalette::HighlightedText, skinColour(u"accentText"_s));
    palette.setColor(QPalette::PlaceholderText, skinColour(u"quiet"_s));
    palette.setColor(QPalette::ToolTipBase, skinColour(u"raised"_s));
    palette.setColor(QPalette::ToolTipText, skinColour(u"text"_s));
    palette.setColor(QPalette::Link, skinColour(u"focus"_s));
    for (const QPalette::ColorRole role :
         {QPalette::WindowText, QPalette::Text, QPalette::ButtonText}) {
        palette.setColor(QPalette::Disabled, role, skinColour(u"disabled"_s));
    }
    return palette;
}

QString styleSheet() {
    QString sheet = resourceText(u"skin.qss"_s);
    static const QRegularExpression role(u"@(\\w+)"_s);
    qsizetype from = 0;
    for (auto match = role.match(sheet); match.hasMatch(); match = role.match(sheet, from)) {
        const QString colour = skinColour(match.captured(1)).name();
        sheet.replace(match.capturedStart(), match.capturedLength(), colour);
        from = match.capturedStart() + colour.size();
    }
    return sheet;
}

}  // namespace

QColor skinColour(const QString& role) {
    return colours().value(role, Qt::black);
}

void setTextColour(QWidget& widget, const QString& role) {
    const QString rule = u"color: %1;"_s.arg(skinColour(role).name());
    if (widget.styleSheet() != rule) widget.setStyleSheet(rule);
}

void applySkin(QApplication& application) {
    application.setStyle(QStyleFactory::create(u"Fusion"_s));
    application.setPalette(palette());
    application.setStyleSheet(styleSheet());
}

}  // namespace app
