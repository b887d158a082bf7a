#include "fileimport/window/filehalf.h"

#include "widgets/theme/theme.h"

#include <QAbstractItemModel>

FileHalf::FileHalf(QWidget *files, const QAbstractItemModel *model, QWidget *parent)
    : QSplitter(Qt::Vertical, parent), model_(model)
{
    setStyleSheet(theme::splitterStyle());
    setChildrenCollapsible(false);
    addWidget(files);
    connect(model, &QAbstractItemModel::modelReset, this, &FileHalf::share);
    connect(model, &QAbstractItemModel::rowsInserted, this, &FileHalf::share);
    connect(model, &QAbstractItemModel::rowsRemoved, this, &FileHalf::share);
}

void FileHalf::resizeEvent(QResizeEvent *event)
{
    QSplitter::resizeEvent(event);
    share();
}

void FileHalf::share()
{
    const bool isEmpty = model_->rowCount() == 0;
    if (count() < 2 || height() == 0 || wasEmpty_ == isEmpty)
        return;
    wasEmpty_ = isEmpty;
    setStretchFactor(0, isEmpty ? 0 : 1); // so that it stays while the window grows
    const int files =
        isEmpty ? widget(0)->minimumSizeHint().height() + theme::rowHeight() : height() / 2;
    setSizes({files, height() - files});
}
