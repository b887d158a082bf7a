#include "batchdelete/window/batchdeletefilemodel.h"

#include "files/transferprogress.h"

namespace {

using Model = BatchDeleteFileModel;
using File = BatchDeleteFileInfo;
using Column = records::Column<File>;
using records::from;

QVariant sizeText(const File &file)
{
    return dataSizeText(double(file.size));
}

QVariant stateText(const File &file)
{
    return deletionStateText(file.state);
}

QColor stateColour(const File &file)
{
    return deletionStateColour(file.state);
}

QString retryText(const File &file)
{
    if (file.state == File::NotReported)
        return QStringLiteral("重新提交");
    return file.mayRetryDelete() ? QStringLiteral("重新删除") : QString();
}

constexpr Column columns[] = {
    Column(Model::FolderColumn, u"目录", from<&File::folder>),
    Column(Model::SizeColumn, u"文件大小", sizeText).aligned(Qt::AlignRight),
    Column(Model::StateColumn, u"状态", stateText)
        .coloured(stateColour)
        .withTip(from<&File::reason>),
    Column(Model::PathColumn, u"文件路径", from<&File::fullPath>),
};

} // namespace

BatchDeleteFileModel::BatchDeleteFileModel(QObject *parent)
    : RecordTable(records::columnsOf<columns, ColumnCount>(), parent)
{
}

void BatchDeleteFileModel::setFile(int row, const BatchDeleteFileInfo &file)
{
    changeCells(row, StateColumn, StateColumn, [&file](File &shown) { shown = file; });
}

QVariant BatchDeleteFileModel::other(const BatchDeleteFileInfo &file, int column, int role) const
{
    Q_UNUSED(column)
    switch (role) {
    case ReasonRole:
        return file.reason;
    case RetryRole:
        return retryText(file);
    default:
        return {};
    }
}
