#include "cardcheck/window/orderfilemodel.h"

#include "files/transferprogress.h"
#include "look/colours.h"

#include <QDateTime>

namespace {

using orderfilelist::OrderFile;
using Column = records::Column<OrderFile>;
using Model = OrderFileModel;

QVariant state(const OrderFile &file)
{
    return orderfilelist::stateText(file.state);
}

QVariant stateRank(const OrderFile &file)
{
    return int(file.state);
}

QColor stateColour(const OrderFile &file)
{
    return colours::toColor(orderfilelist::stateColour(file.state));
}

QVariant name(const OrderFile &file)
{
    return file.shown;
}

QVariant inFolder(const OrderFile &file)
{
    return file.folderBytes < 0 ? QStringLiteral("—") : dataSizeText(double(file.folderBytes));
}

QVariant folderBytes(const OrderFile &file)
{
    return file.folderBytes;
}

QVariant atService(const OrderFile &file)
{
    return file.isListed ? QStringLiteral("已登记") : QStringLiteral("—");
}

QVariant inLedger(const OrderFile &file)
{
    if (file.copy.id == 0)
        return QStringLiteral("—");
    return QStringLiteral("%1 导入").arg(QDateTime::fromMSecsSinceEpoch(file.copy.finishedMs)
                                             .toString(QStringLiteral("yyyy-MM-dd HH:mm")));
}

QVariant source(const OrderFile &file)
{
    return file.copy.source;
}

constexpr Column columns[] = {
    Column(Model::StateColumn, u"状态", state).coloured(stateColour).sorted(stateRank),
    Column(Model::NameColumn, u"文件", name),
    Column(Model::FolderColumn, u"文件夹", inFolder).sorted(folderBytes).aligned(Qt::AlignRight),
    Column(Model::ServiceColumn, u"服务端", atService).centred(),
    Column(Model::LedgerColumn, u"本机记录", inLedger),
    Column(Model::SourceColumn, u"来自", source),
};

} // namespace

OrderFileModel::OrderFileModel(QObject *parent)
    : RecordTable(records::columnsOf<columns, ColumnCount>(), parent)
{
}
