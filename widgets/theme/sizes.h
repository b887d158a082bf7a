#pragma once

#include <QSize>

/// The sizes of things that all windows share, in design pixels.
namespace theme {

/// Called, it is the length in pixels of the screen at the interface scale of that moment.
class Length
{
public:
    constexpr explicit Length(int designPixels) : designPixels_(designPixels) {}
    int operator()() const;

private:
    int designPixels_;
};

// Sizes of texts.
inline constexpr Length textSize{13};
inline constexpr Length headingSize{15};

// Sizes of things.
inline constexpr Length rowHeight{34};     ///< of a table
inline constexpr Length controlHeight{30}; ///< buttons and inputs
inline constexpr Length spacing{8};        ///< between neighbours
inline constexpr Length margin{12};        ///< between a window's edge and its content
inline constexpr Length radius{4};         ///< corners of buttons and inputs
inline constexpr Length hairline{1};       ///< thin borders
inline constexpr Length focusWidth{2};     ///< the ring around what has the focus
inline constexpr Length titleBarHeight{36};
inline constexpr Length titleButtonSize{21};
inline constexpr Length titleButtonSpacing{6};
inline constexpr Length gripWidth{5}; ///< how far from the edge a window is grabbed for resizing
inline constexpr Length checkBoxSize{16};   ///< the box alone
inline constexpr Length iconSize{16};       ///< small symbols inside inputs
inline constexpr Length noticeIconSize{32}; ///< the symbol of a message box
inline constexpr Length spinnerSize{36};
inline constexpr Length scrollBarWidth{10};
QSize calendarSize();
inline constexpr Length columnWidth{100};     ///< of a table before it has content
inline constexpr Length narrowestInput{140};  ///< a search field that still can be read
inline constexpr Length narrowestChoice{110}; ///< a combo box of names of any length
inline constexpr Length widestChoice{220};
inline constexpr Length narrowestNotice{220}; ///< the text of a message box
inline constexpr Length widestNotice{480};
inline constexpr Length progressBarWidth{240};

} // namespace theme
