#include "widgets/theme.h"

#include "app/context/k.h"
#include "widgets/colours.h"

#include <QApplication>
#include <QFont>
#include <QRegularExpression>

namespace theme {

namespace {

using colours::css;

/// A style sheet whose sizes are written in design pixels ("6dp") and whose text size is written
/// "@text".
QString scaled(QString sheet)
{
    static const QRegularExpression designPixels(QStringLiteral("\\b(\\d+)dp\\b"));
    sheet.replace(QLatin1String("@text"), QString::number(textSize()) + QStringLiteral("px"));
    QRegularExpressionMatch match;
    qsizetype from = 0;
    while ((from = sheet.indexOf(designPixels, int(from), &match)) >= 0) {
        const QString pixels = K::scaledPxString(match.captured(1).toInt()) + QStringLiteral("px");
        sheet.replace(int(from), match.capturedLength(), pixels);
        from += pixels.size();
    }
    return sheet;
}

/// "padding" of a button whose border takes \a border pixels out of it, so that nothing moves when
/// the focus ring replaces a thinner border.
QString padding(int vertical, int horizontal, int border)
{
    return QStringLiteral("padding: %1px %2px;")
        .arg(K::scaledPx(vertical) - border)
        .arg(K::scaledPx(horizontal) - border);
}

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

/// What line edits, combo boxes and date edits have in common; \a selector is the class. The colour
/// of the text is left to the palette: stated here it would paint placeholders too.
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

void applyApplicationFont()
{
    QApplication::setFont(QGuiApplication::font());
}

int textSize()
{
    return K::scaledPx(13);
}

int headingSize()
{
    return K::scaledPx(15);
}

int rowHeight()
{
    return K::scaledPx(34);
}

int controlHeight()
{
    return K::scaledPx(30);
}

int spacing()
{
    return K::scaledPx(8);
}

int margin()
{
    return K::scaledPx(12);
}

int radius()
{
    return K::scaledPx(4);
}

int hairline()
{
    return K::scaledPx(1);
}

int focusWidth()
{
    return K::scaledPx(2);
}

int titleBarHeight()
{
    return K::scaledPx(36);
}

int titleButtonSize()
{
    return K::scaledPx(21);
}

int titleButtonSpacing()
{
    return K::scaledPx(6);
}

int gripWidth()
{
    return K::scaledPx(5);
}

int checkBoxSize()
{
    return K::scaledPx(16);
}

int iconSize()
{
    return K::scaledPx(16);
}

int noticeIconSize()
{
    return K::scaledPx(32);
}

int spinnerSize()
{
    return K::scaledPx(36);
}

int scrollBarWidth()
{
    return K::scaledPx(10);
}

QSize calendarSize()
{
    return {K::scaledPx(290), K::scaledPx(230)};
}

int columnWidth()
{
    return K::scaledPx(100);
}

int narrowestInput()
{
    return K::scaledPx(140);
}

int narrowestChoice()
{
    return K::scaledPx(110);
}

int widestChoice()
{
    return K::scaledPx(220);
}

int narrowestNotice()
{
    return K::scaledPx(220);
}

int widestNotice()
{
    return K::scaledPx(480);
}

int progressBarWidth()
{
    return K::scaledPx(240);
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
            "#closeButton:hover { background-color: %4; color: %5; }")
            .arg(css(colours::heading), css(colours::divider), css(colours::accent),
                 css(colours::closeHover), css(colours::onFilled)));
}

QString messageBoxStyle()
{
    return scaled(QStringLiteral("QDialog { background-color: %1; }"
                                 "QLabel, QAbstractScrollArea { background-color: %1; color: %2;"
                                 " border: none; font-size: @text; }"
                                 "QPushButton { background-color: %3; color: %5; border: none;"
                                 " border-radius: 4dp; padding: 6dp 12dp; min-width: 60dp;"
                                 " font-size: @text; }"
                                 "QPushButton:hover { background-color: %4; }"
                                 "QPushButton:focus { border: 2dp solid %6; %7 }")
                      .arg(css(colours::surface), css(colours::text), css(colours::accent),
                           css(colours::accentHover), css(colours::onFilled),
                           css(colours::focusRing), padding(6, 12, focusWidth()))) +
           scrollBarStyle();
}

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

QString inputStyle()
{
    return scaled(inputFrame(QStringLiteral("QLineEdit")));
}

QString translucentInputStyle()
{
    return QStringLiteral(
               "QLineEdit {     background: transparent;     border: none;     border-radius: "
               "%1px;     padding: %2px %3px %2px %4px;     font-size: %5px;     color: %6;     "
               "selection-background-color: %7; } QLineEdit::placeholder { color: %8; }")
        .arg(K::scaledPxString(4), K::scaledPxString(6), K::scaledPxString(10),
             K::scaledPxString(10), K::scaledPxString(13), css(colours::inputText),
             css(colours::inputSelection), css(colours::placeholder));
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
           scaled(
               QStringLiteral(
                   "QTableView { selection-background-color: transparent; outline: none; }"
                   "QTableView::item:hover { background-color: %1; }"
                   "QTableView::item:focus { border: 1dp solid %3; }"
                   "QHeaderView, QHeaderView::section { background-color: %2; }")
                   .arg(css(colours::rowHover), css(colours::plainHeader), css(colours::accent)));
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
