#pragma once

#include <QString>
#include <QVector>

#include <functional>

class FramelessWindow;

/// One tool of the program, as its card in the launcher offers it.
struct Tool
{
    QString label; ///< the card's name
    QString icon;  ///< resource path of an SVG
    /// Makes the tool's window, titled and in its mode, without parent and not yet shown. Empty for
    /// a tool that this version does not have.
    std::function<FramelessWindow *()> makeWindow = {};
};

/// All tools in the order of their cards. The only place that knows which window belongs to which
/// card: taking a tool out of the program is removing its folder and its makeWindow here.
const QVector<Tool> &allTools();

/// The order browser, which has no card but a button below them.
const Tool &orderBrowser();
/// What was done before, which has such a button too.
const Tool &history();
/// The check of camera cards, which has such a button too.
const Tool &cardCheck();
/// What the user of this machine may choose, with such a button, too.
const Tool &settings();
