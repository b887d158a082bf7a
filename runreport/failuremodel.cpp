#include "runreport/failuremodel.h"

#include "look/colours.h"

#include <algorithm>

namespace {

using Model = FailureModel;
using Column = records::Column<RunFailure>;
using records::from;

/// Paths and names of files have no blanks to be wrapped at.
QVariant wrappable(const RunFailure &failure)
{
    QString reason;
    for (const QChar letter : failure.reason) {
        reason += letter;
        if (QStringLiteral("/\\_-.").contains(letter))
            reason += QChar(0x200b);
    }
    return reason;
}

QColor failed(const RunFailure & /*failure*/)
{
    return colours::toColor(colours::failure);
}

constexpr Column columns[] = {
    Column(Model::OrderColumn, u"订单", from<&RunFailure::orderName>),
    Column(Model::FileColumn, u"文件", from<&RunFailure::file>),
    Column(Model::ReasonColumn, u"原因", wrappable).coloured(failed),
};

} // namespace

FailureModel::FailureModel(QObject *parent)
    : RecordTable(records::columnsOf<columns, ColumnCount>(), parent)
{
}

int FailureModel::rowOf(const OrderIdentity &order, const QString &key) const
{
    const auto found =
        std::find_if(records_.cbegin(), records_.cend(),
                     [&](const RunFailure &failure) { return failure.isOf(order, key); });
    return found == records_.cend() ? -1 : int(found - records_.cbegin());
}

void FailureModel::put(const RunFailure &failure)
{
    if (known_.contains({failure.order, failure.key})) {
        change(rowOf(failure.order, failure.key),
               [&failure](RunFailure &known) { known = failure; });
        return;
    }
    known_.insert({failure.order, failure.key});
    beginInsertRows({}, records_.size(), records_.size());
    records_.append(failure);
    endInsertRows();
    emit countChanged(records_.size());
}

void FailureModel::take(const OrderIdentity &order, const QString &key)
{
    if (!known_.remove({order, key}))
        return;
    const int row = rowOf(order, key);
    beginRemoveRows({}, row, row);
    records_.remove(row);
    endRemoveRows();
    emit countChanged(records_.size());
}

void FailureModel::takeOrder(const OrderIdentity &order)
{
    QVector<RunFailure> others;
    std::copy_if(records_.cbegin(), records_.cend(), std::back_inserter(others),
                 [&order](const RunFailure &failure) { return failure.order != order; });
    if (others.size() != records_.size())
        setFailures(others);
}

WorkProgress FailureModel::workAtRest() const
{
    WorkProgress work;
    if (!records_.isEmpty())
        work.state = WorkProgress::State::Failed;
    return work;
}

void FailureModel::setFailures(const QVector<RunFailure> &failures)
{
    if (failures.isEmpty() && records_.isEmpty())
        return;
    known_.clear();
    for (const RunFailure &failure : failures)
        known_.insert({failure.order, failure.key});
    reset(failures);
    emit countChanged(records_.size());
}
