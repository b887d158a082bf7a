#include "cardcheck/window/cardfilemodel.h"

#include "files/transferprogress.h"
#include "look/colours.h"

namespace {

using evidence::CheckedFile;
using Column = records::Column<CheckedFile>;
using Model = CardFileModel;

QVariant state(const CheckedFile &file)
{
    return evidence::stateSign(file.state) + QLatin1Char(' ') + evidence::stateText(file.state);
}

/// The worst first; what does not count behind what does.
QVariant stateRank(const CheckedFile &file)
{
    return -int(file.state) + (file.file.counts() ? 0 : evidence::stateCount);
}

QColor stateColour(const CheckedFile &file)
{
    return colours::toColor(evidence::stateColour(file.state));
}

QVariant name(const CheckedFile &file)
{
    return file.file.shown;
}

QVariant kind(const CheckedFile &file)
{
    return cardfiles::kindText(file.file.kind);
}

QVariant size(const CheckedFile &file)
{
    return dataSizeText(double(file.file.bytes));
}

QVariant bytes(const CheckedFile &file)
{
    return file.file.bytes;
}

QVariant order(const CheckedFile &file)
{
    return QStringLiteral("%1 %2").arg(file.place.order.number, file.place.order.name).trimmed();
}

QVariant target(const CheckedFile &file)
{
    return file.place.target;
}

QVariant proof(const CheckedFile &file)
{
    return evidence::proofText(file);
}

constexpr Column columns[] = {
    Column(Model::StateColumn, u"状态", state).coloured(stateColour).sorted(stateRank),
    Column(Model::NameColumn, u"卡上的文件", name),
    Column(Model::KindColumn, u"类型", kind).centred(),
    Column(Model::SizeColumn, u"大小", size).sorted(bytes).aligned(Qt::AlignRight),
    Column(Model::OrderColumn, u"订单", order),
    Column(Model::TargetColumn, u"存储位置", target),
    Column(Model::ProofColumn, u"本次核对", proof),
};

} // namespace

CardFileModel::CardFileModel(QObject *parent)
    : RecordTable(records::columnsOf<columns, ColumnCount>(), parent)
{
}

void CardFileModel::setFile(int row, const CheckedFile &file)
{
    change(row, [&file](CheckedFile &record) { record = file; });
}

CardFileFilter::CardFileFilter(const CardFileModel *files, QObject *parent)
    : QSortFilterProxyModel(parent), files_(files)
{
}

void CardFileFilter::showOnly(std::optional<evidence::State> state)
{
    state_ = state;
    invalidateFilter();
}

bool CardFileFilter::filterAcceptsRow(int row, const QModelIndex &parent) const
{
    return !parent.isValid() && (!state_ || files_->file(row).state == *state_);
}
