#pragma once

#include "files/sharedfolderopener.h"
#include "orderbrowser/run/sheetwriter.h"

#include <QPushButton>

class BrowserTable;

/// The button that exports what the table shows: asks what and where to, writes it, tells how far
/// that is and where it lies. Pressed meanwhile it cancels.
class ExportButton : public QPushButton
{
    Q_OBJECT

public:
    /// \a table lives as long as the button.
    explicit ExportButton(const BrowserTable *table, QWidget *parent = nullptr);

    bool isUnderWay() const { return writer_.isUnderWay(); }

signals:
    void ended();

private:
    void ask();
    void cancel();
    void end();
    void exportRows(bool selectedAlone, bool wholePhones);
    void onWritten(const QString &path, bool written);

    const BrowserTable *table_;
    SheetWriter writer_;
    SharedFolderOpener folderOpener_;
};
