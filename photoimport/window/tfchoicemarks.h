#pragma once

#include "marks/run/choicemarks.h"
#include "marks/window/marknotices.h"

#include <QObject>

class NoticeBar;
class tffilechooser;
class tfhomephotos;
class tforderlistmodel;
class tfphotolistmodel;

/// The marks of the files chosen in the photo import: has them looked at whenever a choice changes,
/// shows them on the photos and in the line above the start button, and has the chooser do what the
/// user picks there. While an import runs it shows and does nothing.
class tfchoicemarks : public QObject
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

    /// Dialogs belong to \a window, which owns the \a parts and this.
    tfchoicemarks(QWidget *window, const Parts &parts);

    /// The order whose photos are shown now; empty for none. Its files may be others than before.
    void setShown(const OrderIdentity &order);
    void setImporting(bool importing);
    /// Orders or their files may be others than before.
    void refresh();

private:
    void showMarks();
    void showNotices();

    Parts parts_;
    bool importing_ = false;
    OrderIdentity shown_;
    ChoiceMarks marks_;
    MarkNotices notices_;
};
