#include "fileimport/window/importfiletablemodel.h"

#include "fileimport/rules/importrules.h"
#include "look/colours.h"

namespace {

using Model = ImportFileTableModel;
using Column = records::Column<ImportFile>;
using records::from;

QVariant stateText(const ImportFile &file)
{
    switch (file.state) {
    case ImportFile::Waiting:
        return QStringLiteral("等待导入");
    case ImportFile::Imported:
        return QStringLiteral("导入成功");
    case ImportFile::Failed:
        return file.message.isEmpty() ? QStringLiteral("导入失败") : file.message;
    default:
        return {};
    }
}

QColor stateColour(const ImportFile &file)
{
    switch (file.state) {
    case ImportFile::Waiting:
        return colours::muted;
    case ImportFile::Imported:
        return colours::success;
    case ImportFile::Failed:
        return colours::failure;
    default:
        return {};
    }
}

QVariant action(const ImportFile &file)
{
    return file.state == ImportFile::Failed ? QStringLiteral("retry") : QString();
}

QString kindTip(const ImportFile &file)
{
    return importrules::isAnnounced(file)
               ? QString()
               : QStringLiteral("未登记到服务端的类型: 文件照常拷贝，但不会登记");
}

constexpr Column columns[] = {
    Column(Model::FileNameColumn, u"文件名", from<&ImportFile::fileName>)
        .withTip(from<&ImportFile::sourcePath>),
    Column(Model::StateColumn, u"导入状态", stateText)
        .centred()
        .coloured(stateColour)
        .withTip(kindTip),
    Column(Model::ActionColumn, u"操作", action).centred(),
    Column(Model::TargetColumn, u"导入路径", from<&ImportFile::targetFolder>),
};

} // namespace

ImportFileTableModel::ImportFileTableModel(QObject *parent)
    : RecordTable(records::columnsOf<columns, ColumnCount>(), parent)
{
}

void ImportFileTableModel::append(const ImportFile &file)
{
    beginInsertRows({}, records_.size(), records_.size());
    records_.append(file);
    endInsertRows();
}

void ImportFileTableModel::updateRow(int row, qint32 state, const QString &message)
{
    changeCells(row, StateColumn, ActionColumn, [&](ImportFile &file) {
        file.state = state;
        file.message = message;
    });
}

void ImportFileTableModel::setMarks(const QHash<QString, marks::Mark> &fileMarks)
{
    if (fileMarks == marks_)
        return;
    marks_ = fileMarks;
    if (!records_.isEmpty())
        emit dataChanged(index(0, FileNameColumn), index(records_.size() - 1, FileNameColumn));
}

QVariant ImportFileTableModel::other(const ImportFile &file, int column, int role) const
{
    Q_UNUSED(column)
    switch (role) {
    case StateRole:
        return int(file.state);
    case MarkRole:
        return int(marks_.value(file.sourcePath));
    default:
        return {};
    }
}
