#include "ledger/ledger.h"
#include "runreport/runreport.h"
#include "tests/support/text.h"

#include <QTemporaryDir>
#include <QtTest>

class TestRunReport : public QObject
{
    Q_OBJECT

private slots:
    void countsARunByOrders()
    {
        const QTemporaryDir folder;
        Ledger ledger(folder.path());
        const ledger::NewRun run{{"9001"_s, "101"_s, ledger::Work::ImportOriginals}, "9001"_s};
        const ledger::RunId earlier = ledger.beginRun(run);
        ledger.failCopy(begin(&ledger, earlier, "TS1-1"_s, 1).value(0), "earlier"_s);
        const ledger::RunId id = ledger.beginRun(run);
        const QVector<ledger::CopyId> first = begin(&ledger, id, "TS1-1"_s, 4);
        ledger::CopyResult proved;
        proved.proof = Proof::Server;
        ledger::CopyResult compared;
        compared.proof = Proof::Size;
        ledger.finishCopy(first.at(0), proved);
        ledger.finishCopy(first.at(1), compared);
        ledger.finishCopy(first.at(2), proved);
        ledger.failCopy(first.at(3), "=磁盘已满"_s);
        ledger.registerCopies({first.at(0), first.at(1)});
        const QVector<ledger::CopyId> second = begin(&ledger, id, "TS2-1"_s, 1, false);
        ledger.finishCopy(second.first(), proved);
        ledger.endRun(id);

        const RunReport report = ledger.answer([](const LedgerReader &reader) {
            return RunReport::ofLatest(reader, ledger::Work::ImportOriginals);
        });
        QCOMPARE(report.headline(), "本次导入 2 个订单：选择 5，已拷贝 4，已核对 3，已登记 2，"
                                    "失败 1，未登记 1，不登记的类型 1"_s);
        QCOMPARE(
            report.lines(),
            QStringList({"TS1-1 周子墨：选择 4，已拷贝 3，已核对 2，已登记 2，失败 1，未登记 1"_s,
                         "　失败 3.jpg：=磁盘已满"_s,
                         "TS2-1 周子墨：选择 1，已拷贝 1，已核对 1，已登记 0，不登记的类型 1"_s}));
        QVERIFY(!report.isGood());
        QCOMPARE(report.failed(), 1);
        const auto empty = [&ledger](ledger::Work work, ledger::RunId told) {
            return ledger.answer([work, told](const LedgerReader &reader) {
                return RunReport::ofLatest(reader, work, told).isEmpty();
            });
        };
        QVERIFY(empty(ledger::Work::ImportOriginals, report.run)); // told already
        QVERIFY(empty(ledger::Work::ImportRetouched, 0));
        QVERIFY(report.csv().contains("\"3.jpg\",\"'=磁盘已满\"\r\n"));
        QCOMPARE(report.csv().count("\r\n"), 4);
    }

    void isGoodWhenNothingIsLeft()
    {
        const QTemporaryDir folder;
        Ledger ledger(folder.path());
        const ledger::RunId id =
            ledger.beginRun({{"9001"_s, "101"_s, ledger::Work::ImportOriginals}, "9001"_s});
        const QVector<ledger::CopyId> copies = begin(&ledger, id, "TS1-1"_s, 1);
        const auto report = [&ledger] {
            return ledger.answer([](const LedgerReader &reader) {
                return RunReport::ofLatest(reader, ledger::Work::ImportOriginals);
            });
        };
        QVERIFY(!report().isGood()); // begun, and nobody knows what became of it
        ledger.finishCopy(copies.first(), {});
        QVERIFY(!report().isGood());
        ledger.registerCopies(copies);
        QVERIFY(report().isGood());
    }

private:
    static QVector<ledger::CopyId> begin(Ledger *ledger, ledger::RunId run, const QString &order,
                                         int count, bool toRegister = true)
    {
        QVector<ledger::NewCopy> copies;
        for (int i = 0; i < count; ++i) {
            ledger::NewCopy copy;
            copy.source = "E:\\%1.jpg"_s.arg(i);
            copy.target = "\\\\nas\\%1\\%2.jpg"_s.arg(order).arg(i);
            copy.toRegister = toRegister;
            copies.append(copy);
        }
        return ledger->beginCopies(run, {{"101"_s, order, order}, order, "周子墨"_s}, copies);
    }
};

QTEST_GUILESS_MAIN(TestRunReport)
#include "test_runreport.moc"
