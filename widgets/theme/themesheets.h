#pragma once

#include <QString>

/// How the theme's style sheets are written: in design pixels. For the theme's own sources.
namespace theme::sheets {

/// A style sheet whose sizes are written in design pixels ("6dp") and whose text size is written
/// "@text".
QString scaled(QString sheet);

/// "padding" of a button whose border takes \a border pixels out of it, so that nothing moves when
/// the focus ring replaces a thinner border.
QString padding(int vertical, int horizontal, int border);

} // namespace theme::sheets
