#pragma once

#include "files/sharedfolderopener.h"
#include "history/run/historylook.h"
#include "history/run/sheetfile.h"
#include "history/window/entrytable.h"
#include "history/window/filetable.h"
#include "widgets/windows/framelesswindow.h"

#include <functional>

class EmptyStateTable;
class HistorySearchBar;
class QLabel;
class QPushButton;
class SortedRows;

/// 导入记录: what this user imported, distributed and deleted on this machine, and of each run's
/// order the files with what is proved of them.
class HistoryWindow : public FramelessWindow
{
    Q_OBJECT

public:
    explicit HistoryWindow(QWidget *parent = nullptr);
    ~HistoryWindow() override;

protected:
    void showEvent(QShowEvent *event) override;

private:
    void buildLayout();
    QWidget *entryHalf();
    QWidget *fileHalf();
    QPushButton *button(const char *name, const QString &text);
    void connectLook();
    void search();
    void showStretch(const HistoryStretch &stretch, bool isFirst);
    void showCurrent();
    void showFiles(ledger::EntryId entry, const QVector<FileRecord> &files, bool isWhole);
    void exportEntries();
    void exportFiles();
    void writeSheet(const QString &name, const std::function<QByteArray()> &make);
    void openTarget();
    QString copiedRow() const;

    HistoryLook look_;
    SheetFile sheet_;
    SharedFolderOpener folderOpener_;
    EntryTable entries_;
    FileTable files_;
    ledger::Entry current_; ///< whose files are shown
    bool opened_ = false;
    HistorySearchBar *bar_;
    EmptyStateTable *entryTable_;
    EmptyStateTable *fileTable_;
    SortedRows *entryRows_ = nullptr;
    SortedRows *fileRows_ = nullptr;
    QLabel *count_;
    QLabel *heading_;
    QPushButton *more_;
    QPushButton *exportEntries_;
    QPushButton *exportFiles_;
};
