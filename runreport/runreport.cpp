#include "runreport/runreport.h"

#include "files/csv.h"
#include "ledger/ledgerreader.h"

#include <QCoreApplication>

#include <algorithm>

namespace {

constexpr int mostOrders = 200; // looked through
constexpr int mostFiles = 1000000;

QString nameOf(QString path)
{
    path.replace(QLatin1Char('\\'), QLatin1Char('/'));
    return path.section(QLatin1Char('/'), -1);
}

QString countsOf(const OrderReport &order)
{
    QStringList parts{QStringLiteral("选择 %1").arg(order.chosen),
                      QStringLiteral("已拷贝 %1").arg(order.copied),
                      QStringLiteral("已核对 %1").arg(order.verified),
                      QStringLiteral("已登记 %1").arg(order.registered)};
    if (!order.failures.isEmpty())
        parts.append(QStringLiteral("失败 %1").arg(order.failures.size()));
    if (order.unregistered > 0)
        parts.append(QStringLiteral("未登记 %1").arg(order.unregistered));
    if (order.unannounced > 0)
        parts.append(QStringLiteral("不登记的类型 %1").arg(order.unannounced));
    return parts.join(QStringLiteral("，"));
}

} // namespace

OrderReport OrderReport::of(const ledger::Entry &entry, const QVector<ledger::Copy> &copies)
{
    OrderReport report;
    report.order = entry.order.identity;
    report.number = entry.order.number;
    report.name = entry.order.name;
    report.chosen = copies.size();
    for (const ledger::Copy &copy : copies) {
        if (!copy.isFinished()) {
            report.failures.append({nameOf(copy.target), copy.failure.isEmpty()
                                                             ? QStringLiteral("未完成")
                                                             : copy.failure});
            continue;
        }
        ++report.copied;
        if (copy.proof != Proof::None)
            ++report.proofs[copy.proof];
        report.verified += int(copy.proof) > int(Proof::Size) ? 1 : 0;
        switch (copy.registration) {
        case ledger::Registration::Done:
            ++report.registered;
            break;
        case ledger::Registration::NotWanted:
            ++report.unannounced;
            break;
        case ledger::Registration::Awaited:
        case ledger::Registration::Dismissed:
            ++report.unregistered;
            break;
        }
    }
    return report;
}

QString OrderReport::proofText() const
{
    QStringList texts;
    // What proves more stands first.
    for (auto proof = proofs.cend(); proof != proofs.cbegin();) {
        --proof;
        texts.append(QStringLiteral("%1 %2").arg(::proofText(proof.key())).arg(proof.value()));
    }
    return texts.join(QStringLiteral("，"));
}

RunReport RunReport::ofLatest(const LedgerReader &reader, ledger::Work work, ledger::RunId told)
{
    ledger::HistorySearch search;
    search.works = {work};
    search.most = mostOrders;
    const QVector<ledger::Entry> newest = reader.history(search).entries;
    // Another program may have entered something since.
    const auto own = std::find_if(newest.cbegin(), newest.cend(), [](const ledger::Entry &entry) {
        return entry.run.processId == QCoreApplication::applicationPid();
    });
    RunReport report;
    if (own == newest.cend() || own->run.id == told)
        return report;
    report.run = own->run.id;
    const QVector<ledger::Entry> entries = reader.entriesOf(report.run);
    for (const ledger::Entry &entry : entries)
        report.orders.append(OrderReport::of(entry, reader.copiesOfEntry(entry.id, 0, mostFiles)));
    return report;
}

void RunReport::add(const QHash<OrderIdentity, QVector<OrderReport::Failure>> &failures)
{
    for (OrderReport &order : orders)
        order.failures += failures.value(order.order);
}

bool RunReport::isGood() const
{
    return std::all_of(orders.cbegin(), orders.cend(), [](const OrderReport &order) {
        return order.failures.isEmpty() && order.unregistered == 0;
    });
}

int RunReport::failed() const
{
    int failed = 0;
    for (const OrderReport &order : orders)
        failed += order.failures.size();
    return failed;
}

int RunReport::unregistered() const
{
    int unregistered = 0;
    for (const OrderReport &order : orders)
        unregistered += order.unregistered;
    return unregistered;
}

QString RunReport::headline() const
{
    OrderReport all;
    for (const OrderReport &order : orders) {
        all.chosen += order.chosen;
        all.copied += order.copied;
        all.verified += order.verified;
        all.registered += order.registered;
        all.unregistered += order.unregistered;
        all.unannounced += order.unannounced;
        all.failures += order.failures;
    }
    return QStringLiteral("本次导入 %1 个订单：").arg(orders.size()) + countsOf(all);
}

QStringList RunReport::lines() const
{
    QStringList all;
    for (const OrderReport &order : orders) {
        all.append(QStringLiteral("%1 %2：%3").arg(order.number, order.name, countsOf(order)));
        for (const OrderReport::Failure &failure : order.failures)
            all.append(QStringLiteral("　失败 %1：%2").arg(failure.file, failure.reason));
    }
    return all;
}

QByteArray RunReport::csv() const
{
    QByteArray table = csv::mark();
    table += csv::line({QStringLiteral("订单号"), QStringLiteral("客户"), QStringLiteral("选择"),
                        QStringLiteral("已拷贝"), QStringLiteral("已核对"),
                        QStringLiteral("核对方式"), QStringLiteral("已登记"),
                        QStringLiteral("未登记"), QStringLiteral("不登记的类型"),
                        QStringLiteral("失败"), QStringLiteral("文件"), QStringLiteral("原因")});
    for (const OrderReport &order : orders) {
        table += csv::line({order.number,
                            order.name,
                            QString::number(order.chosen),
                            QString::number(order.copied),
                            QString::number(order.verified),
                            order.proofText(),
                            QString::number(order.registered),
                            QString::number(order.unregistered),
                            QString::number(order.unannounced),
                            QString::number(order.failures.size()),
                            {},
                            {}});
        for (const OrderReport::Failure &failure : order.failures)
            table += csv::line({order.number,
                                order.name,
                                {},
                                {},
                                {},
                                {},
                                {},
                                {},
                                {},
                                {},
                                failure.file,
                                failure.reason});
    }
    return table;
}
