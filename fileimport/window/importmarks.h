#pragma once

#include "fileimport/rules/importrecords.h"
#include "marks/run/choicemarks.h"

#include <QObject>

class ImportFilePanel;
class ImportFileTableModel;
class ImportOrderTableModel;
class MarkNotices;
class NoticeBar;
class OrderFileChooser;

/// The marks of the files chosen in the import window: has them looked at whenever a choice
/// changes, shows them in the file table and in the line above the start button, and has the
/// chooser do what the user picks there. While an import runs it shows and does nothing.
class ImportMarks : public QObject
{
    Q_OBJECT

public:
    struct Parts
    {
        ImportOrderTableModel *orders;
        ImportFileTableModel *files; ///< of the order shown
        ImportFilePanel *filePanel;
        NoticeBar *bar;
        OrderFileChooser *chooser;
    };

    /// Dialogs belong to \a window, which owns the \a parts and this.
    ImportMarks(QWidget *window, const Parts &parts);

    void setMode(ImportMode mode) { mode_ = mode; }
    /// The order that the file table shows now; empty for none.
    void setShown(const OrderIdentity &order);
    void setImporting(bool importing);
    /// Orders or their files may be others than before.
    void refresh();

private:
    void showMarks();
    void showNotices();

    Parts parts_;
    ImportMode mode_ = ImportMode::Originals;
    bool importing_ = false;
    OrderIdentity shown_;
    ChoiceMarks marks_;
    MarkNotices *notices_;
};
