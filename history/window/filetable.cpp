#include "history/window/filetable.h"

#include "history/rules/recordtexts.h"
#include "look/colours.h"

namespace {

using Model = FileTable;
using Column = records::Column<FileRecord>;
using records::from;

QVariant sizeOf(const FileRecord &file)
{
    return recordtexts::sizeText(file.bytes);
}

QVariant timeOf(const FileRecord &file)
{
    return recordtexts::timeText(file.timeMs);
}

QString cardOf(const FileRecord &file)
{
    return file.card.isEmpty() ? QString() : QStringLiteral("存储卡 ") + file.card;
}

QColor colourOf(const FileRecord &file)
{
    switch (file.state) {
    case FileRecord::State::Good:
        return colours::toColor(colours::success);
    case FileRecord::State::Open:
        return colours::toColor(colours::deletionUnreported);
    case FileRecord::State::Failed:
        return colours::toColor(colours::failure);
    }
    return {};
}

constexpr Column columns[] = {
    Column(Model::NameColumn, u"文件名", from<&FileRecord::name>),
    Column(Model::StateColumn, u"状态", from<&FileRecord::stateText>).coloured(colourOf),
    Column(Model::ProofColumn, u"核对", from<&FileRecord::proof>),
    Column(Model::KindColumn, u"方式", from<&FileRecord::kind>),
    Column(Model::SizeColumn, u"大小", sizeOf)
        .sorted(from<&FileRecord::bytes>)
        .aligned(Qt::AlignRight),
    Column(Model::TimeColumn, u"时间", timeOf),
    Column(Model::SourceColumn, u"来源", from<&FileRecord::source>).withTip(cardOf),
    Column(Model::TargetColumn, u"目标", from<&FileRecord::target>),
    Column(Model::HashColumn, u"XXH3-128", from<&FileRecord::hash>),
};

} // namespace

FileTable::FileTable(QObject *parent)
    : RecordTable(records::columnsOf<columns, ColumnCount>(), parent)
{
}
