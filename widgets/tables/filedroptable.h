#pragma once

#include "widgets/tables/frozentable.h"

#include <QPersistentModelIndex>
#include <QStringList>

class QMimeData;

/// The local files and folders among what is dragged.
QStringList droppedPaths(const QMimeData *data);

/// A table whose rows take files and folders from outside: they are dropped on a row, which is
/// marked while they hover over it.
class FileDropTable : public FrozenTable
{
    Q_OBJECT

public:
    explicit FileDropTable(QWidget *parent = nullptr);

signals:
    /// \a row is the row of the view; \a paths are local files and folders.
    void filesDropped(int row, const QStringList &paths);

protected:
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dragMoveEvent(QDragMoveEvent *event) override;
    void dragLeaveEvent(QDragLeaveEvent *event) override;
    void dropEvent(QDropEvent *event) override;

private:
    void markRow(const QModelIndex &index);
    void placeMark();

    QPersistentModelIndex dropRow_;
    QWidget *mark_; ///< around that row, over the frozen columns as well
};
