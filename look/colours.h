#pragma once

#include <QColor>
#include <QRgb>
#include <QString>

/// The program's colours, named by what they mean. QtGui only, so that models can use them.
namespace colours {

// What the whole program shares.
inline constexpr QRgb accent = 0xff2980ff;
inline constexpr QRgb accentHover = 0xff3a8bff;
inline constexpr QRgb accentPressed = 0xff1f6ae0;
inline constexpr QRgb accentTint = 0xffe8f1ff; ///< selected rows, highlighted entries
inline constexpr QRgb focusRing = 0xff12408f;  ///< stands out on white and on the filled buttons
inline constexpr QRgb surface = 0xffffffff;
inline constexpr QRgb surfaceAlternate = 0xfff7f9fc; ///< every other row, the title bar
inline constexpr QRgb surfaceHeader = 0xfff0f3f8;
inline constexpr QRgb divider = 0xffe0e0e0;
inline constexpr QRgb outline = 0xffc8d0dc; ///< borders of inputs and windows
inline constexpr QRgb outlineHover = 0xff8fa3bf;
inline constexpr QRgb text = 0xff000000;
inline constexpr QRgb onFilled = 0xffffffff; ///< text on a filled button
inline constexpr QRgb heading = 0xff333333;
inline constexpr QRgb placeholder = 0xff8e8e93;
inline constexpr QRgb disabledText = 0xff9aa3af;
inline constexpr QRgb disabledSurface = 0xffe9edf2;
inline constexpr QRgb scrollHandle = 0xffc3cad4;
inline constexpr QRgb scrollHandleHover = 0xff9aa5b4;
inline constexpr QRgb toastSurface = 0xe6303640;
inline constexpr QRgb veil = 0xb3f0f3f8; ///< what an overlay lays over the window
inline constexpr QRgb closeHover = 0xffe81123;

// States of files, orders and results.
inline constexpr QRgb muted = 0xff999999; ///< nothing has happened yet
inline constexpr QRgb chosen = 0xff007aff;
inline constexpr QRgb inProgress = 0xffffc107;
inline constexpr QRgb success = 0xff28a745;
inline constexpr QRgb failure = 0xffdc3545;
inline constexpr QRgb failureHover = 0xffc42b3a; ///< of a button that deletes
inline constexpr QRgb elsewhere = 0xff7b4fc4;    ///< it belongs to another order, too
inline constexpr QRgb unproved = 0xffb86e00;     ///< there, but not everything about it is certain

// States of files that are deleted.
inline constexpr QRgb fileUntouched = 0xff8e8e93;
inline constexpr QRgb fileBeingDeleted = 0xff007aff;
inline constexpr QRgb fileDeleted = 0xff34c759;
inline constexpr QRgb deletionUnreported = 0xffff9500; ///< gone, but the service does not know
inline constexpr QRgb deletionFailed = 0xffff3b30;

// Lines of a window that tell of something that waits for the user.
inline constexpr QRgb noticeInformation = 0xff1f6ae0;
inline constexpr QRgb noticeInformationSurface = 0xffeef5ff;
inline constexpr QRgb noticeWarning = 0xffb26a00;
inline constexpr QRgb noticeWarningSurface = 0xfffff6e0;
inline constexpr QRgb noticeFailure = 0xffc62828;
inline constexpr QRgb noticeFailureSurface = 0xffffeeee;
inline constexpr QRgb noticeAction = 0xff0052b8; ///< readable on each of the surfaces

// Texts that are clicked.
inline constexpr QRgb link = 0xff007aff;
inline constexpr QRgb linkHover = 0xff0056cc;

// What can be done with an order or a file.
inline constexpr QRgb chooseAction = 0xff5b8def;
inline constexpr QRgb chooseActionHover = 0xff4a7cd8;
inline constexpr QRgb clearAction = 0xffe57373;
inline constexpr QRgb clearActionHover = 0xffd4625e;
inline constexpr QRgb openAction = 0xff8e99a4;
inline constexpr QRgb openActionHover = 0xff7a8590;
inline constexpr QRgb retry = 0xffff6b6b;
inline constexpr QRgb retryHover = 0xffff5252;

// The button that starts a run, and the same button while the run can be stopped.
inline constexpr QRgb start = 0xff52b788;
inline constexpr QRgb startBorder = 0xff40a072;
inline constexpr QRgb startHover = 0xff6bc99a;
inline constexpr QRgb startPressed = 0xff40a072;
inline constexpr QRgb stop = 0xffe57373;
inline constexpr QRgb stopBorder = 0xffd4625e;
inline constexpr QRgb stopHover = 0xffef8a8a;
inline constexpr QRgb stopPressed = 0xffd4625e;

// The grid of photos: cells, and what stands where a picture is not there, or not yet.
inline constexpr QRgb photoPending = 0xfff5f5f5;
inline constexpr QRgb photoName = 0xff666666;
inline constexpr QRgb photoFailed = 0xffffe6e6;
inline constexpr QRgb photoFailedBorder = 0xffffcccc;
inline constexpr QRgb photoFailedText = 0xffcc0000;
inline constexpr QRgb photoSelection = 0xff007aff;
inline constexpr QRgb photoSelectionHover = 0xff0056b3;
inline constexpr QRgb photoUnselected = 0xe6ffffff;

// Login, account verification and launcher.
inline constexpr QRgb loginSucceeded = 0xff27ae60;
inline constexpr QRgb translucentButton = 0xb3ffffff;
inline constexpr QRgb dialogHeading = 0xff1d1d1f;
inline constexpr QRgb inputText = 0xff1d1d1f;
inline constexpr QRgb inputSelection = 0x40007aff;
inline constexpr QRgb cardBorder = 0x4d646e82;
inline constexpr QRgb cardBorderHover = 0xcc2980ff;

// The editor of the rule that names product folders.
inline constexpr QRgb fieldDrag = 0xff007aff;    ///< what is dragged, and where it would land
inline constexpr QRgb fieldReorder = 0xffe8f4fd; ///< a field that is dragged to another place
inline constexpr QRgb fieldZone = 0xfffafafa;
inline constexpr QRgb fieldZoneBorder = 0xffaaaaaa;
inline constexpr QRgb fieldZoneHighlight = 0xfff0f8ff;
inline constexpr QRgb fieldDeleteHover = 0xffff3b30;

// The distribution window.
inline constexpr QRgb toolBackground = 0xfff2f2f7;
inline constexpr QRgb plainHeader = 0xfff9f9fb;
inline constexpr QRgb rowHover = 0xfff2f2f7;
inline constexpr QRgb searchFrom = 0xff34c759;
inline constexpr QRgb searchTo = 0xff2aa84a;
inline constexpr QRgb distributeFrom = 0xff007aff;
inline constexpr QRgb distributeTo = 0xff0060d0;
inline constexpr QRgb distributed = 0xff34c759; ///< the far end of the progress bar

inline QColor toColor(QRgb colour)
{
    return QColor::fromRgba(colour);
}

/// For style sheets: "#rrggbb", or "rgba(r, g, b, a)" with a from 0 to 1 when not opaque.
inline QString css(QRgb colour)
{
    if (qAlpha(colour) == 255)
        return toColor(colour).name(QColor::HexRgb);
    return QStringLiteral("rgba(%1, %2, %3, %4)")
        .arg(qRed(colour))
        .arg(qGreen(colour))
        .arg(qBlue(colour))
        .arg(qAlpha(colour) / 255.0, 0, 'g', 2);
}

} // namespace colours
