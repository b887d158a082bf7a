#include "batchdelete/window/batchdelete_delegates.h"

#include "app/context/k.h"
#include "batchdelete/window/batchdeletefilemodel.h"
#include "batchdelete/window/batchdeleteordermodel.h"
#include "look/colours.h"
#include "widgets/inputs/customcheckboxnew.h"
#include "widgets/tables/cellpainting.h"
#include "widgets/theme/theme.h"

#include <QPainter>

namespace {

using cellpainting::isClickIn;
using cellpainting::paintButton;
using cellpainting::paintCell;
using cellpainting::paintTextButton;

constexpr int gapPx = 6;
constexpr int abovePx = 5;
constexpr int viewButtonPx = 66;
constexpr int retryButtonPx = 66;
constexpr int barPx = 3;
constexpr int whole = 100;

/// The \a fromRight-th button of \a width design pixels, counted from the right.
QRect buttonAt(const QRect &cell, int fromRight, int width)
{
    const int gap = K::scaledPx(gapPx);
    const int above = K::scaledPx(abovePx);
    const int step = K::scaledPx(width) + gap;
    return {cell.right() + 1 - (fromRight + 1) * step, cell.top() + above, K::scaledPx(width),
            cell.height() - 2 * above};
}

bool hasButton(const QModelIndex &index, BatchDeleteProgressDelegate::Button button)
{
    const int role = button == BatchDeleteProgressDelegate::ViewSucceeded
                         ? BatchDeleteOrderModel::SucceededRole
                         : BatchDeleteOrderModel::FailedRole;
    return index.data(role).toInt() > 0;
}

} // namespace

void BatchDeleteCheckDelegate::paint(QPainter *painter, const QStyleOptionViewItem &option,
                                     const QModelIndex &index) const
{
    QStyleOptionViewItem cell = option;
    initStyleOption(&cell, index);
    cell.features &= ~QStyleOptionViewItem::HasCheckIndicator;
    paintCell(painter, cell);
    const int size = theme::checkBoxSize();
    QRect box(0, 0, size, size);
    box.moveCenter(option.rect.center());
    CheckBoxLook look;
    look.state = Qt::CheckState(index.data(Qt::CheckStateRole).toInt());
    look.enabled = option.state.testFlag(QStyle::State_Enabled) &&
                   index.flags().testFlag(Qt::ItemIsUserCheckable);
    look.hovered = option.state.testFlag(QStyle::State_MouseOver);
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    paintCheckBox(painter, box, look);
    painter->restore();
}

bool BatchDeleteCheckDelegate::editorEvent(QEvent *event, QAbstractItemModel *model,
                                           const QStyleOptionViewItem &option,
                                           const QModelIndex &index)
{
    if (!isClickIn(event, option.rect))
        return false;
    const bool checked = index.data(Qt::CheckStateRole).toInt() == Qt::Checked;
    return model->setData(index, int(checked ? Qt::Unchecked : Qt::Checked), Qt::CheckStateRole);
}

QString BatchDeleteProgressDelegate::text(Button button)
{
    return button == ViewSucceeded ? QStringLiteral("查看成功") : QStringLiteral("查看失败");
}

QRect BatchDeleteProgressDelegate::buttonRect(const QRect &cell, Button button)
{
    return buttonAt(cell, ButtonCount - 1 - button, viewButtonPx);
}

void BatchDeleteProgressDelegate::paint(QPainter *painter, const QStyleOptionViewItem &option,
                                        const QModelIndex &index) const
{
    QStyleOptionViewItem cell = option;
    initStyleOption(&cell, index);
    const QString counts = cell.text;
    cell.text.clear();
    paintCell(painter, cell);

    painter->save();
    const int gap = K::scaledPx(gapPx);
    QRect room = option.rect.adjusted(gap, 0, 0, 0);
    room.setRight(buttonRect(option.rect, ViewSucceeded).left() - gap);
    painter->setPen(colours::toColor(colours::heading));
    painter->drawText(room, Qt::AlignLeft | Qt::AlignVCenter, counts);
    const QString note = index.data(BatchDeleteOrderModel::NoteRole).toString();
    const int used = cell.fontMetrics.horizontalAdvance(counts) + gap;
    painter->setPen(colours::toColor(colours::deletionFailed));
    painter->drawText(
        room.adjusted(used, 0, 0, 0), Qt::AlignLeft | Qt::AlignVCenter,
        cell.fontMetrics.elidedText(QString(note).replace(QLatin1Char('\n'), QLatin1Char(' ')),
                                    Qt::ElideRight, room.width() - used));
    const int percent = index.data(BatchDeleteOrderModel::PercentRole).toInt();
    QRect bar = room;
    bar.setTop(bar.bottom() - K::scaledPx(barPx) - 1);
    bar.setHeight(K::scaledPx(barPx));
    if (percent > 0) {
        painter->fillRect(bar, colours::toColor(colours::divider));
        bar.setWidth(bar.width() * percent / whole);
        painter->fillRect(bar, colours::toColor(colours::accent));
    }
    for (int button = 0; button < ButtonCount; ++button) {
        paintTextButton(painter, buttonRect(option.rect, Button(button)), text(Button(button)),
                        hasButton(index, Button(button)));
    }
    painter->restore();
}

bool BatchDeleteProgressDelegate::editorEvent(QEvent *event, QAbstractItemModel *model,
                                              const QStyleOptionViewItem &option,
                                              const QModelIndex &index)
{
    for (int button = 0; button < ButtonCount; ++button) {
        if (!isClickIn(event, buttonRect(option.rect, Button(button))))
            continue;
        if (hasButton(index, Button(button)))
            emit buttonClicked(index.row(), Button(button));
        return true;
    }
    return QStyledItemDelegate::editorEvent(event, model, option, index);
}

BatchDeleteStateDelegate::BatchDeleteStateDelegate(QObject *parent)
    : ElidedTextDelegate(Qt::ElideRight, parent)
{
}

QRect BatchDeleteStateDelegate::buttonRect(const QRect &cell)
{
    return buttonAt(cell, 0, retryButtonPx);
}

void BatchDeleteStateDelegate::paint(QPainter *painter, const QStyleOptionViewItem &option,
                                     const QModelIndex &index) const
{
    const QString reason = index.data(BatchDeleteFileModel::ReasonRole).toString();
    const QString retry = index.data(BatchDeleteFileModel::RetryRole).toString();
    ElidedTextDelegate::paint(painter, option, index);
    if (reason.isEmpty() && retry.isEmpty())
        return;
    painter->save();
    const QRect button = buttonRect(option.rect);
    QStyleOptionViewItem cell = option;
    initStyleOption(&cell, index);
    const int gap = K::scaledPx(gapPx);
    QRect room =
        option.rect.adjusted(cell.fontMetrics.horizontalAdvance(cell.text) + 3 * gap, 0, -gap, 0);
    if (!retry.isEmpty())
        room.setRight(button.left() - gap);
    painter->setPen(colours::toColor(colours::muted));
    painter->drawText(room, Qt::AlignLeft | Qt::AlignVCenter,
                      cell.fontMetrics.elidedText(reason, Qt::ElideRight, room.width()));
    const bool hovered = option.state.testFlag(QStyle::State_MouseOver);
    if (!retry.isEmpty())
        paintButton(painter, button, retry, hovered ? colours::retryHover : colours::retry);
    painter->restore();
}

bool BatchDeleteStateDelegate::editorEvent(QEvent *event, QAbstractItemModel *model,
                                           const QStyleOptionViewItem &option,
                                           const QModelIndex &index)
{
    const bool hasRetry = !index.data(BatchDeleteFileModel::RetryRole).toString().isEmpty();
    if (hasRetry && isClickIn(event, buttonRect(option.rect))) {
        emit retryClicked(index.row());
        return true;
    }
    return ElidedTextDelegate::editorEvent(event, model, option, index);
}
