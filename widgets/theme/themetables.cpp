#include "look/colours.h"
#include "widgets/theme/theme.h"
#include "widgets/theme/themesheets.h"

namespace theme {

using colours::css;
using sheets::scaled;

QString tableStyle()
{
    return scaled(
               QStringLiteral("QTableView { background-color: %1; alternate-background-color: %2;"
                              " color: %3; border: 1dp solid %4; font-size: @text;"
                              " selection-background-color: %5; selection-color: %3; }"
                              "QTableView:focus { border-color: %6; }"
                              "QTableView::item { border: none; padding: 0 4dp; }"
                              "QHeaderView { background-color: %7; border: none; }"
                              "QHeaderView::section { background-color: %7; color: %3;"
                              " border: none; border-right: 1dp solid %4;"
                              " border-bottom: 1dp solid %4; padding: 4dp 6dp;"
                              " font-size: @text; font-weight: 600; }"
                              "QTableCornerButton::section { background-color: %7; border: none; }")
                   .arg(css(colours::surface), css(colours::surfaceAlternate),
                        css(colours::heading), css(colours::divider), css(colours::accentTint),
                        css(colours::accent), css(colours::surfaceHeader))) +
           scrollBarStyle();
}

QString listStyle()
{
    return scaled(QStringLiteral("QListView, QPlainTextEdit { background-color: %1; color: %2;"
                                 " border: 1dp solid %3; font-size: @text; outline: none;"
                                 " selection-background-color: %5; selection-color: %2; }"
                                 "QListView:focus, QPlainTextEdit:focus { border-color: %4; }")
                      .arg(css(colours::surface), css(colours::heading), css(colours::divider),
                           css(colours::accent), css(colours::accentTint))) +
           scrollBarStyle();
}

QString plainTableStyle()
{
    return tableStyle() +
           scaled(QStringLiteral(
                      "QTableView { selection-background-color: transparent; outline: none; }"
                      "QTableView::item:focus { border: 1dp solid %2; }"
                      "QHeaderView, QHeaderView::section { background-color: %1; }")
                      .arg(css(colours::plainHeader), css(colours::accent)));
}

QString scrollBarStyle()
{
    return scaled(
        QStringLiteral("QScrollBar:vertical { background: transparent; width: 10dp; margin: 0; }"
                       "QScrollBar:horizontal { background: transparent; height: 10dp;"
                       " margin: 0; }"
                       "QScrollBar::handle { background-color: %1; border-radius: 4dp;"
                       " margin: 1dp; }"
                       "QScrollBar::handle:vertical { min-height: 28dp; }"
                       "QScrollBar::handle:horizontal { min-width: 28dp; }"
                       "QScrollBar::handle:hover { background-color: %2; }"
                       "QScrollBar::add-line, QScrollBar::sub-line { width: 0; height: 0; }"
                       "QScrollBar::add-page, QScrollBar::sub-page { background: transparent; }"
                       "QAbstractScrollArea::corner { background: transparent;"
                       " border: none; }")
            .arg(css(colours::scrollHandle), css(colours::scrollHandleHover)));
}

QString menuStyle()
{
    return scaled(QStringLiteral("QMenu { background-color: %1; color: %2;"
                                 " border: 1dp solid %3; padding: 4dp 0; font-size: @text; }"
                                 "QMenu::item { padding: 6dp 24dp 6dp 16dp; }"
                                 "QMenu::item:selected { background-color: %4; color: %2; }"
                                 "QMenu::item:disabled { color: %5; }"
                                 "QMenu::separator { height: 1dp; background: %6;"
                                 " margin: 4dp 8dp; }")
                      .arg(css(colours::surface), css(colours::heading), css(colours::outline),
                           css(colours::accentTint), css(colours::disabledText),
                           css(colours::divider)));
}

} // namespace theme
