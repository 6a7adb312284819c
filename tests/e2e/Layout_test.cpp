// SPDX-License-Identifier: GPL-3.0-or-later
// Nothing is cut and nothing overlaps, from 800×600 to 4K and from 100 to 300 % scaling. Run on the
// usual test screen, on one of 3840×2160, and there with QT_SCALE_FACTOR=3.
#include <QAbstractScrollArea>
#include <QMenu>
#include <QPushButton>
#include <QScreen>
#include <QStyle>
#include <QStyleOptionButton>

#include "tests/support/MainWindow.h"

using namespace Qt::Literals::StringLiterals;
using namespace support;

namespace {

struct Layout : MainWindow {
    std::vector<QWidget*> shownLeaves() {
        std::vector<QWidget*> leaves;
        for (QWidget* child : window->findChildren<QWidget*>()) {
            const bool inside = qobject_cast<QAbstractScrollArea*>(child->parentWidget()) ||
                                child->parentWidget()->objectName().startsWith(u"qt_");
            const bool ours = !child->objectName().isEmpty() &&
                              !child->objectName().startsWith(u"qt_") &&
                              child->objectName() != u"Frame1" && !inside;
            if (child->isVisible() && !child->isWindow() && ours) leaves.push_back(child);
        }
        return leaves;
    }

    QRect placeOf(const QWidget* child) {
        return {child->mapTo(window.get(), QPoint(0, 0)), child->size()};
    }

    void expectNothingCutOrOverlapping(const QSize& size) {
        window->resize(size);
        ASSERT_TRUE(waitFor([&] { return window->size() == size; }))
            << size.width() << "x" << size.height() << " is not possible";
        settle();
        const auto leaves = shownLeaves();
        ASSERT_GE(leaves.size(), 25U);
        for (std::size_t i = 0; i < leaves.size(); ++i) {
            const std::string name = leaves[i]->objectName().toStdString();
            EXPECT_TRUE(window->rect().contains(placeOf(leaves[i]))) << name << " is cut";
            if (const auto* pushButton = qobject_cast<QPushButton*>(leaves[i])) {
                EXPECT_GE(pushButton->width(), pushButton->sizeHint().width()) << name;
                EXPECT_GE(pushButton->height(), pushButton->minimumSizeHint().height()) << name;
            }
            for (std::size_t k = i + 1; k < leaves.size(); ++k) {
                EXPECT_FALSE(placeOf(leaves[i]).intersects(placeOf(leaves[k])))
                    << name << " overlaps " << leaves[k]->objectName().toStdString();
            }
        }
    }

    void fillWithLongTexts() {
        const QString name =
            u"Eine außerordentlich lange Überschrift für ein Musikstück, "
            "das niemals aufhören will und weiter und weiter geht.mp3"_s;
        open({song(name), song(u"قصة طويلة.mp3"_s), song(u"音楽.mp3"_s)});
        find<QLabel>(*window, "Label1").setText(name + name);
        find<QLabel>(*window, "Label5").setText(u"Working on: "_s + name + name);
        find<QLabel>(*window, "Label6").setText(u"125:07 / 1250:00"_s);
        find<QLabel>(*window, "Label7").setText(u"Playlist loaded: /home/someone/"_s + name + name);
        find<QWidget>(*window, "Bar").show();
    }
};

}  // namespace

TEST_F(Layout, FromSmallToTheWholeScreen) {
    fillWithLongTexts();
    const QSize screen = window->screen()->size();
    const QSize titleBar(0, 30);
    ASSERT_EQ(window->devicePixelRatio(), qMax(1, qEnvironmentVariableIntValue("QT_SCALE_FACTOR")));
    ASSERT_GE(screen.width(), 1280);
    ASSERT_GE(screen.height(), 720);
    for (const QSize& size : {QSize(800, 600), QSize(1024, 720), QSize(1280, 720), screen}) {
        SCOPED_TRACE(std::to_string(size.width()) + "x" + std::to_string(size.height()));
        expectNothingCutOrOverlapping(size - titleBar);
    }
}

TEST_F(Layout, TheWindowOpensWithinTheScreen) {
    EXPECT_TRUE(window->screen()->geometry().contains(window->frameGeometry()));
}

TEST_F(Layout, TheSmallestWindowFitsASmallScreen) {
    EXPECT_LE(window->minimumSizeHint().width(), 800);
    EXPECT_LE(window->minimumSizeHint().height(), 570);
}

TEST_F(Layout, LongTextsStayWhole) {
    fillWithLongTexts();
    window->resize(800, 570);
    settle();
    EXPECT_TRUE(text("Label7").endsWith(u"geht.mp3"));
    EXPECT_TRUE(list().subItem(1, 2).startsWith(u"Eine außerordentlich"));
}

TEST_F(Layout, TextContrastIsEnough) {
    const auto luminance = [](const QColor& colour) {
        const auto part = [](double c) {
            return c <= 0.03928 ? c / 12.92 : std::pow((c + 0.055) / 1.055, 2.4);
        };
        return 0.2126 * part(colour.redF()) + 0.7152 * part(colour.greenF()) +
               0.0722 * part(colour.blueF());
    };
    // (L1 + 0.05) / (L2 + 0.05), WCAG 2.1 success criterion 1.4.3
    const auto contrast = [&](const char* ink, const char* paper) {
        const double a = luminance(app::skinColour(QLatin1String(ink))) + 0.05;
        const double b = luminance(app::skinColour(QLatin1String(paper))) + 0.05;
        return a > b ? a / b : b / a;
    };
    for (const char* paper :
         {"window", "panel", "raised", "raisedHover", "pressed", "field", "stripe"}) {
        EXPECT_GE(contrast("text", paper), 4.5) << "text on " << paper;
    }
    for (const char* paper : {"window", "panel", "field"}) {
        EXPECT_GE(contrast("quiet", paper), 4.5) << "quiet on " << paper;
        EXPECT_GE(contrast("alarm", paper), 4.5) << "alarm on " << paper;
    }
    EXPECT_GE(contrast("accent", "panel"), 4.5);
    EXPECT_GE(contrast("selectionText", "selection"), 4.5);
    EXPECT_GE(contrast("accentText", "accent"), 4.5);
}
