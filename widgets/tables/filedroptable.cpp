#include "widgets/tables/filedroptable.h"

#include "app/context/k.h"
#include "look/colours.h"

#include <QDropEvent>
#include <QMimeData>
#include <QScrollBar>
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

FileDropTable::FileDropTable(QWidget *parent) : FrozenTable(parent), mark_(new QWidget(this))
{
    setAcceptDrops(true);
    mark_->setAttribute(Qt::WA_TransparentForMouseEvents);
    mark_->setAttribute(Qt::WA_StyledBackground);
    mark_->setStyleSheet(QStringLiteral("border: %1px solid %2; background: transparent;")
                             .arg(K::scaledPx(2))
                             .arg(colours::css(colours::accent)));
    mark_->hide();
    connect(verticalScrollBar(), &QScrollBar::valueChanged, this, &FileDropTable::placeMark);
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

void FileDropTable::markRow(const QModelIndex &index)
{
    dropRow_ = index;
    mark_->setVisible(index.isValid());
    placeMark();
}

void FileDropTable::placeMark()
{
    if (!dropRow_.isValid())
        return;
    const QRect area = viewport()->geometry();
    const QRect row(area.left(), area.top() + rowViewportPosition(dropRow_.row()), area.width(),
                    rowHeight(dropRow_.row()));
    mark_->setGeometry(row.intersected(area));
    mark_->raise();
}
