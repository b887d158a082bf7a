#pragma once

#include "fileimport/rules/importrecords.h"
#include "marks/window/choicemarking.h"

class ImportFilePanel;
class ImportFileTableModel;
class ImportOrderTableModel;
class NoticeBar;
class OrderFileChooser;

/// The marks of the files chosen in the import window, shown in its file table; its chooser does
/// what the user picks in the line above the start button.
class ImportMarks : public ChoiceMarking
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

    /// \a window owns the \a parts.
    ImportMarks(QWidget *window, const Parts &parts);

    void setMode(ImportMode mode);

private:
    ImportMode mode_ = ImportMode::Originals;
};
