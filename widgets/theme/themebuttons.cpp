#include "app/context/k.h"
#include "look/colours.h"
#include "widgets/theme/theme.h"
#include "widgets/theme/themesheets.h"

namespace theme {

using colours::css;
using sheets::padding;
using sheets::scaled;

namespace {

QString filledButton(QRgb background, QRgb hover, QRgb pressed)
{
    return scaled(QStringLiteral("QPushButton { background-color: %1; color: %4; border: none;"
                                 " border-radius: 4dp; font-size: @text; min-width: 50dp; %8 }"
                                 "QPushButton:hover { background-color: %2; }"
                                 "QPushButton:pressed { background-color: %3; }"
                                 "QPushButton:focus { border: 2dp solid %5; %9 }"
                                 "QPushButton:disabled { background-color: %6; color: %7; }")
                      .arg(css(background), css(hover), css(pressed), css(colours::onFilled),
                           css(colours::focusRing), css(colours::disabledSurface),
                           css(colours::disabledText), padding(6, 12, 0),
                           padding(6, 12, focusWidth())));
}

QString runButton(QRgb background, QRgb border, QRgb hover, QRgb pressed)
{
    const QString frame =
        QStringLiteral("QPushButton { border: 1dp solid %1; border-radius: 6dp; %2 }"
                       "QPushButton:focus { border: 2dp solid %3; %4 }"
                       "QPushButton:disabled { background-color: %5; color: %6;"
                       " border-color: %5; }")
            .arg(css(border), padding(8, 20, hairline()), css(colours::focusRing),
                 padding(8, 20, focusWidth()), css(colours::disabledSurface),
                 css(colours::disabledText));
    return scaled(QStringLiteral("QPushButton { background-color: %1; color: %2;"
                                 " font-size: @text; font-weight: 600; }"
                                 "QPushButton:hover { background-color: %3; }"
                                 "QPushButton:pressed { background-color: %4; }")
                      .arg(css(background), css(colours::onFilled), css(hover), css(pressed)) +
                  frame);
}

} // namespace

QString primaryButtonStyle()
{
    return filledButton(colours::accent, colours::accentHover, colours::accentPressed);
}

QString secondaryButtonStyle()
{
    return scaled(QStringLiteral("QPushButton { background-color: %1; color: %2;"
                                 " border: 1dp solid %3; border-radius: 4dp; font-size: @text;"
                                 " min-width: 50dp; %8 }"
                                 "QPushButton:hover { background-color: %4; }"
                                 "QPushButton:focus { border: 2dp solid %5; %9 }"
                                 "QPushButton:disabled { background-color: %6; color: %7; }")
                      .arg(css(colours::surface), css(colours::heading), css(colours::outline),
                           css(colours::surfaceHeader), css(colours::accent),
                           css(colours::disabledSurface), css(colours::disabledText),
                           padding(6, 12, hairline()), padding(6, 12, focusWidth())));
}

QString filterButtonStyle()
{
    return secondaryButtonStyle() +
           scaled(QStringLiteral("QPushButton:checked { background-color: %1; border-color: %2; }")
                      .arg(css(colours::accentTint), css(colours::accent)));
}

QString buttonStyle(QRgb background, QRgb hover)
{
    return filledButton(background, hover, hover);
}

QString translucentButtonStyle()
{
    return scaled(QStringLiteral("QPushButton { background-color: %1; color: %2;"
                                 " border: 1dp solid %3; border-radius: 4dp; font-size: @text; %6 }"
                                 "QPushButton:hover { background-color: %4; }"
                                 "QPushButton:focus { border: 2dp solid %5; %7 }")
                      .arg(css(colours::translucentButton), css(colours::heading),
                           css(colours::outline), css(colours::surface), css(colours::accent),
                           padding(8, 12, hairline()), padding(8, 12, focusWidth())));
}

QString gradientButtonStyle()
{
    return scaled(QStringLiteral("QPushButton { background: qlineargradient(x1: 0, y1: 0, x2: 0,"
                                 " y2: 1, stop: 0 %1, stop: 1 %2); color: %4; border: none;"
                                 " border-radius: 4dp; font-size: @text; font-weight: 600; %6 }"
                                 "QPushButton:hover { background: %1; }"
                                 "QPushButton:pressed { background: %3; }"
                                 "QPushButton:focus { border: 2dp solid %5; %7 }")
                      .arg(css(colours::accentHover), css(colours::accentPressed),
                           css(colours::accentPressed), css(colours::onFilled),
                           css(colours::focusRing), padding(8, 12, 0),
                           padding(8, 12, focusWidth())));
}

QString startButtonStyle()
{
    return runButton(colours::start, colours::startBorder, colours::startHover,
                     colours::startPressed);
}

QString stopButtonStyle()
{
    return runButton(colours::stop, colours::stopBorder, colours::stopHover, colours::stopPressed);
}

QString textButtonStyle()
{
    return scaled(
        QStringLiteral("QPushButton { background-color: transparent; color: %1;"
                       " border: 2dp solid transparent; border-radius: 4dp;"
                       " font-size: @text; font-weight: 600; min-width: 0; padding: 1dp 4dp; }"
                       "QPushButton:hover { text-decoration: underline; }"
                       "QPushButton:focus { border-color: %2; }"
                       "QPushButton:disabled { color: %3; }")
            .arg(css(colours::noticeAction), css(colours::focusRing), css(colours::disabledText)));
}

QString loginSucceededStyle()
{
    return QStringLiteral("background: %1 !important; font-size: %2px;")
        .arg(css(colours::loginSucceeded), K::scaledPxString(13));
}

QString gradientButtonStyle(QRgb from, QRgb to)
{
    const QString gradient =
        QStringLiteral("QPushButton:enabled { background-color: qlineargradient(x1:0, y1:0, x2:1,"
                       " y2:0, stop:0 %1, stop:1 %2); font-weight: 600; }"
                       "QPushButton:enabled:hover { background-color: %1; }"
                       "QPushButton:enabled:pressed { background-color: %2; }")
            .arg(css(from), css(to));
    return filledButton(from, to, to) + gradient;
}

QString fieldSourceStyle()
{
    return scaled(QStringLiteral("QPushButton { background-color: %1; color: %2;"
                                 " border: 1dp solid %3; border-radius: 6dp; font-size: @text;"
                                 " padding: 0; }"
                                 "QPushButton:hover { border-color: %4; color: %4; }"
                                 "QPushButton:focus { border: 2dp solid %4; }")
                      .arg(css(colours::surfaceHeader), css(colours::dialogHeading),
                           css(colours::outline), css(colours::fieldDrag)));
}

QString fieldButtonStyle()
{
    return scaled(QStringLiteral("FieldButton { background-color: %1; color: %2;"
                                 " border: 1dp solid %3; border-radius: 6dp; font-size: @text;"
                                 " text-align: left; padding: 0 0 0 %6px; }"
                                 "FieldButton:hover { border-color: %4; }"
                                 "FieldButton:focus { border: 2dp solid %4; padding-left: %5px; }")
                      .arg(css(colours::surface), css(colours::dialogHeading),
                           css(colours::outline), css(colours::fieldDrag))
                      .arg(K::scaledPx(8) - focusWidth())
                      .arg(K::scaledPx(8) - hairline()));
}

QString fieldPartStyle()
{
    return scaled(
        QStringLiteral("QPushButton { background-color: %1; color: %2; border: none;"
                       " border-radius: 4dp; font-size: @text; min-width: 16dp;"
                       " padding: 0 4dp; }"
                       "QPushButton:hover { background-color: %3; }")
            .arg(css(colours::surfaceHeader), css(colours::heading), css(colours::accentTint)));
}

QString fieldDeleteStyle()
{
    return scaled(QStringLiteral("QPushButton { background-color: transparent; color: %1;"
                                 " border: none; border-radius: 4dp; font-size: @text;"
                                 " padding: 0; }"
                                 "QPushButton:hover { background-color: %2; color: %3; }")
                      .arg(css(colours::placeholder), css(colours::fieldDeleteHover),
                           css(colours::onFilled)));
}

} // namespace theme
