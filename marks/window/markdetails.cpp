#include "marks/window/markdetails.h"

#include "app/context/k.h"
#include "files/transferprogress.h"
#include "records/recordtable.h"
#include "widgets/tables/tables.h"
#include "widgets/theme/plaintext.h"
#include "widgets/theme/theme.h"

#include <QDateTime>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QPushButton>
#include <QVBoxLayout>

#include <algorithm>

using marks::Detail;

namespace {

constexpr int widthPx = 1120;
constexpr int heightPx = 460;
constexpr int pathColumnPx = 256;
constexpr int timeColumnPx = 140;
constexpr int sizeColumnPx = 76;

enum Column { Order, Note, Source, Size, Time, Other, OtherSize, OtherTime, ColumnCount };

QString timeText(qint64 msSinceEpoch)
{
    return QDateTime::fromMSecsSinceEpoch(msSinceEpoch)
        .toString(QStringLiteral("yyyy-MM-dd HH:mm:ss"));
}

QVariant order(const Detail &detail)
{
    return detail.orderNumber;
}

QVariant note(const Detail &detail)
{
    return detail.note;
}

QVariant source(const Detail &detail)
{
    return detail.file.source;
}

QVariant size(const Detail &detail)
{
    return dataSizeText(double(detail.file.size));
}

QVariant time(const Detail &detail)
{
    return timeText(detail.file.modified);
}

QVariant other(const Detail &detail)
{
    return detail.otherPath;
}

QVariant otherSize(const Detail &detail)
{
    return detail.other ? dataSizeText(double(detail.other->size)) : QString();
}

QVariant otherTime(const Detail &detail)
{
    return detail.other ? timeText(detail.other->modified) : QString();
}

constexpr records::Column<Detail> columns[] = {
    records::Column<Detail>(Order, u"订单号", order),
    records::Column<Detail>(Note, u"说明", note),
    records::Column<Detail>(Source, u"选择的文件", source),
    records::Column<Detail>(Size, u"大小", size),
    records::Column<Detail>(Time, u"修改时间", time),
    records::Column<Detail>(Other, u"已有的文件", other),
    records::Column<Detail>(OtherSize, u"大小", otherSize),
    records::Column<Detail>(OtherTime, u"修改时间", otherTime),
};

class DetailTable : public RecordTable<Detail>
{
public:
    DetailTable(const QVector<Detail> &details, QObject *parent)
        : RecordTable(records::columnsOf<columns, ColumnCount>(), parent)
    {
        reset(details);
    }
};

template <typename Tells>
void hideUnlessAny(QTableView *table, int column, const QVector<Detail> &details, Tells tells)
{
    table->setColumnHidden(column, std::none_of(details.cbegin(), details.cend(), tells));
}

} // namespace

MarkDetails::MarkDetails(QWidget *window, const QString &heading, const QVector<Detail> &details)
    : FramelessDialog(window, QStringLiteral("查看"))
{
    resize(K::scaledPx(widthPx), K::scaledPx(heightPx));
    auto *label = new PlainLabel(heading, this);
    label->setStyleSheet(theme::headingStyle());
    label->setWordWrap(true);
    auto *table = new EmptyStateTable(this);
    table->setObjectName(QStringLiteral("detailTable"));
    prepareTable(table);
    table->setModel(new DetailTable(details, table));
    for (const int paths : {Source, Other}) {
        table->setItemDelegateForColumn(paths, new ElidedTextDelegate(Qt::ElideMiddle, table));
        table->setColumnWidth(paths, K::scaledPx(pathColumnPx));
    }
    for (const int times : {Note, Time, OtherTime})
        table->setColumnWidth(times, K::scaledPx(timeColumnPx));
    for (const int sizes : {Size, OtherSize})
        table->setColumnWidth(sizes, K::scaledPx(sizeColumnPx));
    hideUnlessAny(table, Note, details, [](const Detail &one) { return !one.note.isEmpty(); });
    for (const int ofOther : {Other, OtherSize, OtherTime}) {
        hideUnlessAny(table, ofOther, details,
                      [](const Detail &one) { return !one.otherPath.isEmpty(); });
    }
    auto *close = new QPushButton(QStringLiteral("关闭"), this);
    close->setStyleSheet(theme::secondaryButtonStyle());
    connect(close, &QPushButton::clicked, this, &QDialog::reject);
    auto *buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(close);
    content()->addWidget(label);
    content()->addWidget(table, 1);
    content()->addLayout(buttons);
    table->selectRow(0);
    table->setFocus();
}
