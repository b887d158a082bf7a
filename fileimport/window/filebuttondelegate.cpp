#include "fileimport/window/filebuttondelegate.h"

#include "app/context/k.h"
#include "fileimport/window/importfiletablemodel.h"
#include "look/colours.h"
#include "widgets/tables/cellpainting.h"

#include <QEvent>
#include <QPainter>

namespace {

bool hasButton(const QModelIndex &index)
{
    return index.column() == ImportFileTableModel::ActionColumn &&
           index.data(ImportFileTableModel::StateRole).toInt() == ImportFile::Failed;
}

} // namespace

void FileButtonDelegate::paint(QPainter *painter, const QStyleOptionViewItem &option,
                               const QModelIndex &index) const
{
    if (index.column() != ImportFileTableModel::ActionColumn) {
        QStyledItemDelegate::paint(painter, option, index);
        return;
    }
    if (!hasButton(index))
        return;
    const int besides = K::scaledPx(10);
    const int above = K::scaledPx(5);
    const QRect button = option.rect.adjusted(besides, above, -besides, -above);
    const bool hovered = option.state.testFlag(QStyle::State_MouseOver);
    painter->save();
    cellpainting::paintButton(painter, button, QStringLiteral("重新导入"),
                              hovered ? colours::retryHover : colours::retry);
    painter->restore();
}

bool FileButtonDelegate::editorEvent(QEvent *event, QAbstractItemModel *model,
                                     const QStyleOptionViewItem &option, const QModelIndex &index)
{
    if (event->type() == QEvent::MouseButtonRelease && hasButton(index)) {
        emit retryClicked(index.row());
        return true;
    }
    return QStyledItemDelegate::editorEvent(event, model, option, index);
}
