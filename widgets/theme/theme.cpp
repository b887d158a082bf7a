#include "widgets/theme/theme.h"

#include "app/context/k.h"
#include "look/colours.h"
#include "widgets/theme/themesheets.h"

#include <QApplication>
#include <QFont>

namespace theme {

using colours::css;
using sheets::padding;
using sheets::scaled;

namespace {

QString dangerousBoxStyle()
{
    return scaled(QStringLiteral("QPushButton#dangerButton { background-color: %1; }"
                                 "QPushButton#dangerButton:hover { background-color: %2; }"
                                 "QPushButton#safeButton { background-color: %3; color: %4;"
                                 " border: 1dp solid %5; %6 }"
                                 "QPushButton#safeButton:hover { background-color: %7; }"
                                 "QPushButton#safeButton:focus { border: 2dp solid %8; %9 }")
                      .arg(css(colours::failure), css(colours::failureHover), css(colours::surface),
                           css(colours::heading), css(colours::outline), padding(6, 12, hairline()),
                           css(colours::surfaceHeader), css(colours::focusRing),
                           padding(6, 12, focusWidth())));
}

} // namespace

void applyApplicationFont()
{
    QApplication::setFont(QGuiApplication::font());
}

QString windowStyle()
{
    return scaled(QStringLiteral("* { font-size: @text; }"
                                 "QToolTip { background-color: %1; color: %2;"
                                 " border: 1dp solid %3; padding: 3dp; }")
                      .arg(css(colours::surface), css(colours::heading), css(colours::outline))) +
           scrollBarStyle();
}

QString titleBarStyle()
{
    return scaled(
        QStringLiteral(
            "#titleLabel { background-color: transparent; color: %1; font-size: @text; font-weight: 600; }"
            "QToolButton { background: transparent; color: %1;"
            " border: 2dp solid transparent; border-radius: 4dp; padding: 0;"
            " font-size: 18dp; }"
            "QToolButton:hover { background-color: %2; }"
            "QToolButton:focus { border-color: %3; }"
            "QToolButton#titleAction { font-size: @text; color: %6; padding: 0 6dp; }"
            "#closeButton:hover { background-color: %4; color: %5; }")
            .arg(css(colours::heading), css(colours::divider), css(colours::accent),
                 css(colours::closeHover), css(colours::onFilled), css(colours::muted)));
}

QString messageBoxStyle()
{
    return scaled(QStringLiteral("QDialog { background-color: %1; }"
                                 "QLabel, QAbstractScrollArea { background-color: %1; color: %2;"
                                 " border: none; font-size: @text; }"
                                 "QAbstractScrollArea#noticeExplanation { color: %8; }"
                                 "QPushButton { background-color: %3; color: %5; border: none;"
                                 " border-radius: 4dp; padding: 6dp 12dp; min-width: 60dp;"
                                 " font-size: @text; }"
                                 "QPushButton:hover { background-color: %4; }"
                                 "QPushButton:focus { border: 2dp solid %6; %7 }")
                      .arg(css(colours::surface), css(colours::text), css(colours::accent),
                           css(colours::accentHover), css(colours::onFilled),
                           css(colours::focusRing), padding(6, 12, focusWidth()),
                           css(colours::heading))) +
           dangerousBoxStyle() + scrollBarStyle();
}

QString sidePanelStyle(const QString &objectName)
{
    return windowStyle() + QStringLiteral("QWidget#%1 { background-color: %2; }")
                               .arg(objectName, css(colours::surface));
}

QString splitterStyle()
{
    return QStringLiteral("QSplitter::handle {    background-color: %1;    width: 1px;}")
        .arg(css(colours::divider));
}

QString dividerStyle()
{
    return QStringLiteral("background-color: %1; border: none;").arg(css(colours::divider));
}

QString progressBarStyle()
{
    return scaled(QStringLiteral("QProgressBar { background-color: %1; border: none;"
                                 " border-radius: 3dp; min-height: 6dp; max-height: 6dp; }"
                                 "QProgressBar::chunk { background-color: %2;"
                                 " border-radius: 3dp; }")
                      .arg(css(colours::divider), css(colours::accent)));
}

QString gradientProgressStyle(QRgb from, QRgb to)
{
    return progressBarStyle() +
           QStringLiteral("QProgressBar::chunk { background-color: qlineargradient(x1:0, y1:0,"
                          " x2:1, y2:0, stop:0 %1, stop:1 %2); }")
               .arg(css(from), css(to));
}

QString headingStyle()
{
    return scaled(QStringLiteral("QLabel { font-size: %1px; font-weight: 600; color: %2;"
                                 " padding: 5dp 0; }")
                      .arg(QString::number(headingSize()), css(colours::heading)));
}

QString hintStyle()
{
    return scaled(
        QStringLiteral("QLabel { font-size: @text; color: %1; }").arg(css(colours::heading)));
}

QString warningStyle()
{
    return scaled(
        QStringLiteral("QLabel { font-size: @text; color: %1; }").arg(css(colours::failure)));
}

QString resultMarkStyle(QRgb colour)
{
    return scaled(QStringLiteral("QLabel { font-size: 30dp; font-weight: 600; color: %1; }")
                      .arg(css(colour)));
}

} // namespace theme
