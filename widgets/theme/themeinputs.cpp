#include "app/context/k.h"
#include "look/colours.h"
#include "widgets/theme/theme.h"
#include "widgets/theme/themesheets.h"

namespace theme {

using colours::css;
using sheets::scaled;

namespace {

/// What line edits, combo boxes and date edits have in common; \a selector is the class. As in all
/// sheets for inputs, the colour of the text is left to the palette: stated here it would paint
/// placeholders too.
QString inputFrame(const QString &selector)
{
    return QStringLiteral("%1 { background-color: %2; border: 1dp solid %4;"
                          " border-radius: 4dp; padding: 4dp 8dp; font-size: @text;"
                          " selection-background-color: %5; selection-color: %3; }"
                          "%1:hover { border-color: %6; }"
                          "%1:focus, %1:on { border: 1dp solid %7; background-color: %2; }"
                          "%1:disabled { background-color: %8; color: %9; }")
        .arg(selector, css(colours::surface), css(colours::inputText), css(colours::outline),
             css(colours::inputSelection), css(colours::outlineHover), css(colours::accent),
             css(colours::disabledSurface), css(colours::disabledText));
}

} // namespace

QString inputStyle()
{
    return scaled(inputFrame(QStringLiteral("QLineEdit")));
}

QString translucentInputStyle()
{
    return QStringLiteral("QLineEdit { background: transparent; border: none; border-radius: %1px;"
                          " padding: %2px %3px %2px %4px; font-size: %5px;"
                          " selection-background-color: %6; }")
        .arg(K::scaledPxString(4), K::scaledPxString(6), K::scaledPxString(10),
             K::scaledPxString(10), K::scaledPxString(13), css(colours::inputSelection));
}

QString comboStyle()
{
    return scaled(
        inputFrame(QStringLiteral("QComboBox")) +
        QStringLiteral("QComboBox { color: %2; combobox-popup: 0; }"
                       "QComboBox::drop-down { border: none; width: 24dp; }"
                       "QComboBox::down-arrow { image: none; }"
                       "QComboBox QAbstractItemView { background-color: %1; color: %2;"
                       " border: 1dp solid %3; outline: none;"
                       " selection-background-color: %4; selection-color: %2; }"
                       "QComboBox QAbstractItemView::item { min-height: 28dp;"
                       " border: none; padding: 0 8dp; color: %2; }"
                       "QComboBox QAbstractItemView::item:selected { background-color: %4; }")
            .arg(css(colours::surface), css(colours::inputText), css(colours::outline),
                 css(colours::accentTint)));
}

QString dateEditStyle()
{
    return scaled(inputFrame(QStringLiteral("QDateEdit")) +
                  QStringLiteral("QDateEdit { color: %2; }"
                                 "QDateEdit[prompting=\"true\"] { color: %1; }"
                                 "QDateEdit::drop-down { border: none; width: 24dp; }"
                                 "QDateEdit::down-arrow { image: none; }")
                      .arg(css(colours::placeholder), css(colours::inputText)));
}

QString calendarStyle()
{
    return scaled(
        QStringLiteral("QCalendarWidget QWidget { background-color: %1; color: %2;"
                       " font-size: @text; alternate-background-color: %6; }"
                       "#qt_calendar_navigationbar { background-color: %6; }"
                       "QCalendarWidget QToolButton { background: transparent; color: %2;"
                       " border: 2dp solid transparent; border-radius: 4dp; padding: 4dp 6dp;"
                       " }"
                       "#qt_calendar_prevmonth, #qt_calendar_nextmonth { font-size: 18dp; }"
                       "QCalendarWidget QToolButton:hover { background-color: %4; }"
                       "QCalendarWidget QToolButton:focus { border-color: %3; }"
                       "QCalendarWidget QToolButton::menu-indicator { image: none; }"
                       "QCalendarWidget QAbstractItemView { outline: none;"
                       " selection-background-color: %3; selection-color: %5; }"
                       "QCalendarWidget QAbstractItemView:disabled { color: %7; }")
            .arg(css(colours::surface), css(colours::heading), css(colours::accent),
                 css(colours::accentTint), css(colours::onFilled), css(colours::surfaceHeader),
                 css(colours::disabledText)));
}

} // namespace theme
