#pragma once

#include "marks/window/choicemarking.h"

class NoticeBar;
class tffilechooser;
class tfhomephotos;
class tforderlistmodel;
class tfphotolistmodel;

/// The marks of the files chosen in the photo import, shown on the photos; its chooser does what
/// the user picks in the line above the start button.
class tfchoicemarks : public ChoiceMarking
{
    Q_OBJECT

public:
    struct Parts
    {
        tforderlistmodel *orders;
        tfphotolistmodel *photos; ///< of the order shown
        tfhomephotos *photoPanel;
        NoticeBar *bar;
        tffilechooser *chooser;
    };

    /// \a window owns the \a parts.
    tfchoicemarks(QWidget *window, const Parts &parts);
};
