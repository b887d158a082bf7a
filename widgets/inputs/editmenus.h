#pragma once

#include <QObject>

class ContextMenu;
class QApplication;
class QContextMenuEvent;
class QWidget;

/// Gives every line edit, spin box, date edit, text view and label whose text can be selected the
/// program's own context menu, in its language and look. One for the whole application, since the
/// framework makes such fields by itself, too. Fields that have a menu of their own keep it.
/// Interface thread.
class EditMenus : public QObject
{
    Q_OBJECT

public:
    /// \a application owns it.
    explicit EditMenus(QApplication *application);

    /// The menu of the field that \a widget is or lies in, not shown yet, a child of the field;
    /// null where there is no such field. Begins with the field's own actions.
    static ContextMenu *menuOf(QWidget *widget);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
};
