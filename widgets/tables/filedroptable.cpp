#include "widgets/tables/filedroptable.h"

#include "app/context/k.h"
#include "look/colours.h"

#include <QDropEvent>
#include <QMimeData>
#include <QPainter>
#include <QUrl>

QStringList droppedPaths(const QMimeData *data)
{
    QStringList paths;
    const QList<QUrl> urls = data->urls();
    for (const QUrl &url : urls) {
        if (url.isLocalFile())
            paths.append(url.toLocalFile());
    }
    return paths;
}

FileDropTable::FileDropTable(QWidget *parent) : EmptyStateTable(parent)
{
    setAcceptDrops(true);
}

void FileDropTable::dragEnterEvent(QDragEnterEvent *event)
{
    if (event->mimeData()->hasUrls())
        event->acceptProposedAction();
}

void FileDropTable::dragMoveEvent(QDragMoveEvent *event)
{
    const QModelIndex index = indexAt(event->pos());
    markRow(index);
    // Only a copy is ever made of what is dropped, whatever the source proposes.
    event->setDropAction(Qt::CopyAction);
    event->setAccepted(index.isValid() && event->mimeData()->hasUrls());
}

void FileDropTable::dragLeaveEvent(QDragLeaveEvent *event)
{
    Q_UNUSED(event)
    markRow({});
}

void FileDropTable::dropEvent(QDropEvent *event)
{
    markRow({});
    const QModelIndex index = indexAt(event->pos());
    const QStringList paths = droppedPaths(event->mimeData());
    if (!index.isValid() || paths.isEmpty())
        return;
    event->setDropAction(Qt::CopyAction);
    event->accept();
    selectRow(index.row());
    emit filesDropped(index.row(), paths);
}

void FileDropTable::paintEvent(QPaintEvent *event)
{
    EmptyStateTable::paintEvent(event);
    if (!dropRow_.isValid())
        return;
    const int line = K::scaledPx(2);
    QRect row = visualRect(dropRow_);
    row.setLeft(0);
    row.setRight(viewport()->width() - 1);
    QPainter painter(viewport());
    painter.setPen(QPen(colours::toColor(colours::accent), line));
    painter.drawRect(row.adjusted(line / 2, line / 2, -line / 2, -line / 2));
}

void FileDropTable::markRow(const QModelIndex &index)
{
    dropRow_ = index;
    viewport()->update();
}
