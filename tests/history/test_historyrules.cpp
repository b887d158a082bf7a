#include "history/rules/filerecord.h"
#include "history/rules/historysheet.h"
#include "history/rules/historywish.h"
#include "history/rules/recordtexts.h"
#include "tests/support/datarows.h"
#include "tests/support/text.h"

#include <QtTest>

using recordtexts::Ending;
using Wish = HistoryWish;

Q_DECLARE_METATYPE(recordtexts::Ending)
Q_DECLARE_METATYPE(ledger::Registration)
Q_DECLARE_METATYPE(ledger::Work)
Q_DECLARE_METATYPE(FileRecord::State)

namespace {

/// Counts as "chosen finished awaited failed deletions deleted".
ledger::Entry entryOf(const QString &counts, const QString &run)
{
    const QStringList each = counts.split(QLatin1Char(' '));
    ledger::Entry entry;
    entry.chosen = each.at(0).toInt();
    entry.finished = each.at(1).toInt();
    entry.awaited = each.at(2).toInt();
    entry.failed = each.at(3).toInt();
    entry.deletions = each.value(4).toInt();
    entry.deleted = each.value(5).toInt();
    entry.run.endedMs = run == "ended"_s ? 1 : 0;
    entry.run.brokenOff = run == "broken off"_s;
    return entry;
}

} // namespace

class TestHistoryRules : public QObject
{
    Q_OBJECT

private slots:
    void tellsHowARunEnded_data()
    {
        addColumns<QString, QString, Ending, QString, bool, bool>(
            {"counts", "run", "ending", "text", "failed", "unregistered"});
        newRow("good", "3 3 0 0", "ended", Ending::Good, "完成", false, false);
        newRow("going on", "3 1 1 1", "", Ending::GoesOn, "进行中", false, true);
        newRow("broken off", "3 1 0 0", "broken off", Ending::BrokenOff, "中断，2 个未完成", true,
               false);
        newRow("broken off at its very end", "3 3 0 0", "broken off", Ending::Good, "完成", false,
               false);
        newRow("one failed", "3 2 2 1", "ended", Ending::Failed, "1 个失败", true, true);
        newRow("stopped", "3 2 0 0", "ended", Ending::Failed, "1 个未完成", true, false);
        newRow("not registered", "3 3 3 0", "ended", Ending::Unregistered, "3 个未登记", false,
               true);
        newRow("deleted", "0 0 0 0 5 5", "ended", Ending::Good, "完成", false, false);
        newRow("not all deleted", "0 0 0 0 5 3", "ended", Ending::Failed, "2 个未完成", true,
               false);
    }

    void tellsHowARunEnded()
    {
        QFETCH(QString, counts);
        QFETCH(QString, run);
        const ledger::Entry entry = entryOf(counts, run);
        QTEST(recordtexts::endingOf(entry), "ending");
        QTEST(recordtexts::endingText(entry), "text");
        Wish wish;
        QVERIFY(historywish::isWanted(wish, entry));
        wish.state = Wish::State::Failed;
        QTEST(historywish::isWanted(wish, entry), "failed");
        wish.state = Wish::State::Unregistered;
        QTEST(historywish::isWanted(wish, entry), "unregistered");
    }

    void asksTheLedger_data()
    {
        addColumns<QString, QString, QDate, QDate, QString>(
            {"order", "file", "from", "to", "expected"});
        const QDate first(2026, 11, 1);
        const QDate last(2026, 12, 1);
        newRow("by the beginning", "", " IMG_1 ", QDate(), QDate(), "start=IMG_1");
        newRow("in an order", " TS1", "G_1", QDate(), QDate(), "order=TS1 part=G_1");
        newRow("within a month", "", "G_1", first, last, "part=G_1");
        newRow("within a month, backwards", "", "G_1", last, first, "part=G_1");
        newRow("for longer", "", "G_1", first, last.addDays(1), "start=G_1");
        newRow("since", "", "G_1", first, QDate(), "start=G_1");
    }

    void asksTheLedger()
    {
        QFETCH(QString, order);
        QFETCH(QString, file);
        QFETCH(QDate, from);
        QFETCH(QDate, to);
        Wish wish;
        wish.order = order;
        wish.file = file;
        wish.from = from;
        wish.to = to;
        const ledger::HistorySearch search = historywish::searchOf(wish);
        QStringList said;
        if (!search.order.isEmpty())
            said.append("order="_s + search.order);
        if (!search.fileStart.isEmpty())
            said.append("start="_s + search.fileStart);
        if (!search.filePart.isEmpty())
            said.append("part="_s + search.filePart);
        QTEST(said.join(QLatin1Char(' ')), "expected");
        QVERIFY(!search.from.isValid() || !search.to.isValid() || search.from <= search.to);
        QVERIFY(search.works.isEmpty());
    }

    /// Each work is found under one kind, and all have names.
    void sortsAllWorksIntoKinds()
    {
        QVector<ledger::Work> sorted;
        for (const Wish::Kind kind :
             {Wish::Kind::Imports, Wish::Kind::Distributions, Wish::Kind::Deletions}) {
            Wish wish;
            wish.kind = kind;
            sorted += historywish::searchOf(wish).works;
        }
        for (int work = int(ledger::Work::ImportOriginals);
             work <= int(ledger::Work::PhotoDeletion); ++work) {
            QCOMPARE(sorted.count(ledger::Work(work)), 1);
            QVERIFY(recordtexts::workText(ledger::Work(work)) != "未知"_s);
        }
        QCOMPARE(sorted.size(), int(ledger::Work::PhotoDeletion));
    }

    void tellsOfCopies_data()
    {
        addColumns<bool, ledger::Registration, QString, QString, FileRecord::State>(
            {"finished", "registration", "failure", "text", "state"});
        using ledger::Registration;
        using State = FileRecord::State;
        newRow("registered", true, Registration::Done, "", "已登记", State::Good);
        newRow("not announced", true, Registration::NotWanted, "", "已拷贝", State::Good);
        newRow("awaited", true, Registration::Awaited, "", "已拷贝，未登记", State::Open);
        newRow("refused", true, Registration::Awaited, "服务端未收到",
               "已拷贝，未登记：服务端未收到", State::Open);
        newRow("failed", false, Registration::Awaited, "磁盘已满", "磁盘已满", State::Failed);
        newRow("broken off", false, Registration::Awaited, "", "未完成", State::Open);
    }

    void tellsOfCopies()
    {
        QFETCH(bool, finished);
        QFETCH(ledger::Registration, registration);
        QFETCH(QString, failure);
        ledger::Copy copy;
        copy.target = "\\\\nas\\a\\IMG_1.jpg"_s;
        copy.finishedMs = finished ? 1 : 0;
        copy.registration = registration;
        copy.failure = failure;
        copy.sourceHash = QByteArray::fromHex("00ff");
        const FileRecord file = FileRecord::of(copy);
        QCOMPARE(file.name, "IMG_1.jpg"_s);
        QCOMPARE(file.hash, "00ff"_s);
        QTEST(file.stateText, "text");
        QTEST(file.state, "state");
    }

    void tellsOfDeletions_data()
    {
        addColumns<QString, ledger::Work, QString>({"steps", "work", "text"});
        using ledger::Work;
        newRow("not announced", "", Work::BatchDeletion, "未提交，未删除");
        newRow("announced", "a", Work::BatchDeletion, "已提交，未删除");
        newRow("failed", "af", Work::BatchDeletion, "已提交，未删除：占用");
        newRow("not reported", "ad", Work::BatchDeletion, "已删除，服务端未知");
        newRow("reported", "adr", Work::BatchDeletion, "已删除");
        newRow("a photo, which needs no report", "ad", Work::PhotoDeletion, "已删除");
    }

    void tellsOfDeletions()
    {
        QFETCH(QString, steps);
        QFETCH(ledger::Work, work);
        const auto has = [&steps](char step) { return steps.contains(QLatin1Char(step)) ? 1 : 0; };
        ledger::Deletion deletion;
        deletion.work = work;
        deletion.announcedMs = has('a');
        deletion.deletedMs = has('d');
        deletion.reportedMs = has('r');
        deletion.failure = has('f') ? "占用"_s : QString();
        QTEST(FileRecord::of(deletion).stateText, "text");
    }

    /// A proof is called what it is.
    void namesProofs()
    {
        QStringList names;
        for (int proof = 0; proof <= int(ledger::Proof::Derived); ++proof)
            names.append(proofText(Proof(proof)));
        QCOMPARE(names,
                 QStringList({QString(), "大小一致"_s, "已读回（缓存）"_s, "已从服务器读回"_s,
                              "已从介质读回"_s, "由原片生成，可完整读取"_s}));
    }

    void writesTables()
    {
        ledger::Entry entry = entryOf("2 1 0 1"_s, "ended"_s);
        entry.order.number = "=1+1"_s;
        entry.order.name = "周\"子墨"_s;
        entry.run.desk.work = ledger::Work::ImportOriginals;
        entry.volumes = {{"EOS"_s, "1234"_s}, {}, {QString(), "77"_s}};
        const QList<QByteArray> lines = historysheet::entriesCsv({entry}).split('\n');
        QCOMPARE(lines.size(), 3); // the last has an end
        QCOMPARE(QString::fromUtf8(lines.at(1)).trimmed(),
                 "\"\",\"导入原片\",\"'=1+1\",\"周\"\"子墨\",\"\",\"EOS（1234），77\",\"2\",\"1\","
                 "\"0\",\"0\",\"1\",\"0\",\"1 个失败\""_s);
        FileRecord file;
        file.name = "@a,b.jpg"_s;
        file.bytes = 12;
        const QString files = QString::fromUtf8(historysheet::filesCsv(entry, {file, file}));
        QCOMPARE(files.count("\r\n"_s), 3);
        QVERIFY(files.contains("\"'=1+1\",\"'@a,b.jpg\",\"\",\"\",\"\",\"12\""_s));
    }
};

QTEST_GUILESS_MAIN(TestHistoryRules)
#include "test_historyrules.moc"
