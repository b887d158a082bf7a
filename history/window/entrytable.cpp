#include "history/window/entrytable.h"

#include "history/rules/recordtexts.h"

namespace {

using Model = EntryTable;
using ledger::Entry;
using Column = records::Column<Entry>;

QVariant timeOf(const Entry &entry)
{
    return recordtexts::timeText(entry.begunMs);
}

/// Of one second, in the order in which they were written.
QVariant ageOf(const Entry &entry)
{
    return entry.id;
}

QVariant workOf(const Entry &entry)
{
    return recordtexts::workText(entry.run.desk.work);
}

QVariant numberOf(const Entry &entry)
{
    return entry.order.number;
}

QVariant customersOf(const Entry &entry)
{
    return entry.order.name;
}

QVariant sizeOf(const Entry &entry)
{
    return entry.bytes == 0 ? QString() : recordtexts::sizeText(entry.bytes);
}

QVariant bytesOf(const Entry &entry)
{
    return entry.bytes;
}

QVariant whoOf(const Entry &entry)
{
    return entry.run.who;
}

QColor colourOf(const Entry &entry)
{
    return recordtexts::endingColour(recordtexts::endingOf(entry));
}

using records::from;

constexpr Column columns[] = {
    Column(Model::TimeColumn, u"时间", timeOf).sorted(ageOf),
    Column(Model::WorkColumn, u"工具", workOf),
    Column(Model::OrderColumn, u"订单号", numberOf),
    Column(Model::CustomersColumn, u"客户", customersOf),
    Column(Model::CountsColumn, u"数量", from<recordtexts::countsText>),
    Column(Model::SizeColumn, u"大小", sizeOf).sorted(bytesOf).aligned(Qt::AlignRight),
    Column(Model::CardColumn, u"存储卡", from<recordtexts::cardsText>),
    Column(Model::WhoColumn, u"操作人", whoOf),
    Column(Model::EndingColumn, u"结果", from<recordtexts::endingText>).coloured(colourOf),
};

} // namespace

EntryTable::EntryTable(QObject *parent)
    : RecordTable(records::columnsOf<columns, ColumnCount>(), parent)
{
}

void EntryTable::append(const QVector<ledger::Entry> &entries)
{
    if (entries.isEmpty())
        return;
    beginInsertRows({}, records_.size(), records_.size() + entries.size() - 1);
    records_ += entries;
    endInsertRows();
}
