#include "photoimport/window/tfhomeorders_orderlistwidget.h"

#include "app/context/k.h"
#include "photoimport/orders/tforderlistmodel.h"
#include "photoimport/window/tfprogressdelegate.h"
#include "widgets/tables/arrangedcolumns.h"
#include "widgets/tables/sortedrows.h"

tfhomeorders_OrderListWidget::tfhomeorders_OrderListWidget(tforderlistmodel *model, QWidget *parent)
    : FileDropTable(parent), model_(model)
{
    setObjectName(QStringLiteral("orderTable"));
    setAccessibleName(QStringLiteral("订单"));
    prepareTable(this);
    wrapHeaders(this);
    rows_ = new SortedRows(this, model_, tforderlistmodel::SortRole);
    setItemDelegateForColumn(tforderlistmodel::ProgressColumn, new tfprogressdelegate(this));
    setItemDelegateForColumn(tforderlistmodel::PathColumn,
                             new ElidedTextDelegate(Qt::ElideMiddle, this));
    setColumnWidths();
    columns_ = new ArrangedColumns(this, {tforderlistmodel::NumberColumn});
    connect(this, &FileDropTable::filesDropped, this, [this](int row, const QStringList &paths) {
        emit filesDroppedOnOrder(rows_->position(row), paths);
    });
    connect(rows_, &SortedRows::currentChanged, this,
            &tfhomeorders_OrderListWidget::orderSelectionChanged);
}

void tfhomeorders_OrderListWidget::setColumnWidths()
{
    using Model = tforderlistmodel;
    const struct
    {
        Model::Column column;
        int width;
    } widths[] = {
        {Model::NumberColumn, 90},       {Model::CustomersColumn, 110}, {Model::ShotDateColumn, 88},
        {Model::PhotographerColumn, 60}, {Model::ImportedColumn, 44},   {Model::ChosenColumn, 44},
        {Model::StateColumn, 118},       {Model::ProgressColumn, 76},   {Model::PathColumn, 140},
    };
    for (const auto &entry : widths)
        setColumnWidth(entry.column, K::scaledPx(entry.width));
}

void tfhomeorders_OrderListWidget::openColumns()
{
    columns_->open(QStringLiteral("photoimport"));
}

int tfhomeorders_OrderListWidget::selectedOrder() const
{
    return rows_->current();
}

bool tfhomeorders_OrderListWidget::selectPhotoSet(const QString &orderPhotoId)
{
    const int row = model_->rowOfPhotoSet(orderPhotoId);
    if (row >= 0)
        rows_->makeCurrent(row);
    return row >= 0;
}

void tfhomeorders_OrderListWidget::keepPlaceWhile(const std::function<void()> &change)
{
    rows_->keepPlaceWhile(change,
                          {[this](int row) {
                               return model_->hasRow(row) ? model_->order(row).info.identity()
                                                          : OrderIdentity();
                           },
                           [this](const OrderIdentity &order) { return model_->rowOf(order); }});
}

void tfhomeorders_OrderListWidget::addOrderAction(const QString &text, const QKeySequence &shortcut,
                                                  std::function<void(int row)> act)
{
    rows_->addAction(text, shortcut, std::move(act));
}
