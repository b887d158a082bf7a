#pragma once

#include "widgets/theme/sizes.h"

#include <QRgb>
#include <QString>

/// The look that all windows share: style sheets, made of the colours by meaning and of design
/// pixels times the interface scale. Nothing is cached: what is asked for after the scale has
/// changed has the new scale.
namespace theme {

/// Gives every widget the application font, those included for which Windows has fonts of its own
/// (tables, menus, status bars). Called once, after K::initApplication().
void applyApplicationFont();

/// For a whole window: text size, tool tips, scroll bars. Its child widgets inherit it.
QString windowStyle();
QString titleBarStyle();
/// White, black text, blue buttons.
QString messageBoxStyle();

/// The one button of a window that does its main work.
QString primaryButtonStyle();
/// A button beside the primary one: outlined instead of filled.
QString secondaryButtonStyle();
/// A button that stays pressed: one of several ways to look at a list.
QString filterButtonStyle();
/// A filled button with white text.
QString buttonStyle(QRgb background, QRgb hover);
/// The button that starts a run, and its look while pressing it stops the run.
QString startButtonStyle();
QString stopButtonStyle();
/// The two buttons of a dialog that paints its own background.
QString translucentButtonStyle();
QString gradientButtonStyle();
/// A text that is pressed, within a line of text.
QString textButtonStyle();
/// The login button once the login has succeeded.
QString loginSucceededStyle();

/// A button filled from left to right with the two colours.
QString gradientButtonStyle(QRgb from, QRgb to);

QString inputStyle();
/// A line edit that lies on a frame drawn by its dialog.
QString translucentInputStyle();
QString comboStyle();
QString dateEditStyle();
QString calendarStyle();
QString tableStyle();
/// A list or grid of items, or a read-only text of many lines.
QString listStyle();
/// A table whose rows look the same when they are selected.
QString plainTableStyle();
/// A white half of a split window, by its object name.
QString sidePanelStyle(const QString &objectName);
QString splitterStyle();
/// A thin line between two areas.
QString dividerStyle();
QString scrollBarStyle();
QString menuStyle();
QString progressBarStyle();
/// A progress bar whose chunk goes from one colour to the other.
QString gradientProgressStyle(QRgb from, QRgb to);
/// A label that heads a part of a window.
QString headingStyle();
/// In the naming rule's editor: a field that can be added, one that is in the rule, and on the
/// latter its separator and its "×".
QString fieldSourceStyle();
QString fieldButtonStyle();
QString fieldPartStyle();
QString fieldDeleteStyle();
/// A line of small print, and one that warns.
QString hintStyle();
QString warningStyle();
/// The large mark that says how something ended.
QString resultMarkStyle(QRgb colour);

} // namespace theme
