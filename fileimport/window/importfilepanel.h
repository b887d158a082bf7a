#pragma once

#include "marks/rules/filemark.h"

#include <QHash>
#include <QWidget>

class EmptyStateTable;
class ImportFileTableModel;
class MarkFilter;
class QSortFilterProxyModel;

/// The right half of the import window: the files of the order shown, with their states. It decides
/// nothing.
class ImportFilePanel : public QWidget
{
    Q_OBJECT

public:
    explicit ImportFilePanel(ImportFileTableModel *model, QWidget *parent = nullptr);

    /// How many files have which mark; the user sees all of them, or those of one.
    void setMarkCounts(const QHash<marks::Mark, int> &counts);

signals:
    /// By the button of a failed file, its key or the context menu: a row of the model, -1 without
    /// a current one.
    void retryClicked(int row);

private:
    void buildTable(ImportFileTableModel *model);
    void retryAt(int viewRow);

    EmptyStateTable *table_;
    QSortFilterProxyModel *shown_; ///< the files of the mark that is chosen
    MarkFilter *filter_;
};
