#pragma once

#include <QWidget>

class EmptyStateTable;
class ImportFileTableModel;

/// The right half of the import window: the files of the order shown, with their states. It decides
/// nothing.
class ImportFilePanel : public QWidget
{
    Q_OBJECT

public:
    explicit ImportFilePanel(ImportFileTableModel *model, QWidget *parent = nullptr);

signals:
    /// By the button of a failed file, its key or the context menu; -1 without a current row.
    void retryClicked(int row);

private:
    void buildTable(ImportFileTableModel *model);

    EmptyStateTable *table_;
};
