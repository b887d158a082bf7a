#pragma once

#include <QCoreApplication>
#include <QDropEvent>
#include <QMimeData>
#include <QUrl>
#include <QWidget>

/// Drops the files onto the widget as a file manager does that would rather move them. True when
/// they were taken, and copied.
inline bool dropFiles(QWidget *onto, const QPoint &at, const QStringList &paths)
{
    QMimeData data;
    QList<QUrl> urls;
    for (const QString &path : paths)
        urls.append(QUrl::fromLocalFile(path));
    data.setUrls(urls);
    const auto actions = Qt::CopyAction | Qt::MoveAction;
    QDragEnterEvent enter(at, actions, &data, Qt::LeftButton, {});
    QDragMoveEvent move(at, actions, &data, Qt::LeftButton, {});
    QDropEvent drop(at, actions, &data, Qt::LeftButton, {});
    for (QEvent *event : std::initializer_list<QEvent *>{&enter, &move, &drop})
        QCoreApplication::sendEvent(onto, event);
    return drop.isAccepted() && drop.dropAction() == Qt::CopyAction;
}
