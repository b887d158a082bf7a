#include "app/settings/storageroom.h"

#include "app/diagnosis/logring.h"
#include "ledger/ledger.h"
#include "tasks/background.h"
#include "tasks/ordersatwork.h"

#include <QDateTime>
#include <QDir>
#include <QFileInfo>

namespace {

struct Sizes
{
    qint64 ledger = -1;
    qint64 log = -1;
};

/// Of the files in \a folder that are called so; -1 when there is none.
qint64 sizeOf(const QString &folder, const QStringList &names)
{
    if (folder.isEmpty())
        return -1;
    const QFileInfoList files = QDir(folder).entryInfoList(names, QDir::Files | QDir::Hidden);
    qint64 bytes = files.isEmpty() ? -1 : 0;
    for (const QFileInfo &file : files)
        bytes += file.size();
    return bytes;
}

Sizes sizesIn(const QString &ledgerFolder, const QString &logFolder)
{
    return {sizeOf(ledgerFolder,
                   {QStringLiteral("ledger.db*"), QStringLiteral("ledger-damaged-*.db*")}),
            sizeOf(logFolder, {QStringLiteral("*.log")})};
}

} // namespace

StorageRoom::StorageRoom(const QString &ledgerFolder, const QString &logFolder, QObject *parent)
    : QObject(parent), ledgerFolder_(ledgerFolder), logFolder_(logFolder)
{
}

void StorageRoom::measure()
{
    onDisk(
        this, logFolder_,
        [ledger = ledgerFolder_, log = logFolder_] { return sizesIn(ledger, log); },
        looking_.only([this](const Sizes &sizes) { emit measured(sizes.ledger, sizes.log); }));
}

void StorageRoom::clearLog()
{
    onDisk(
        this, logFolder_, [log = logFolder_] { LogRing::clear(log); }, [this] { measure(); });
}

QString StorageRoom::obstacleToClearing() const
{
    if (ledgerFolder_.isEmpty())
        return QStringLiteral("没有保存导入记录");
    return ordersatwork::isIdle() ? QString() : QStringLiteral("有任务正在进行，结束后再清理");
}

void StorageRoom::clearLedger()
{
    Ledger::current().forgetBefore(QDateTime::currentMSecsSinceEpoch() -
                                       qint64(daysKept) * 86400000,
                                   this, [this] { measure(); });
}
