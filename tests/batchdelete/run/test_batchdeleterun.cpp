#include "batchdelete/rules/deletionrules.h"
#include "batchdelete/run/batchdeleterun.h"
#include "batchdelete/run/deletiontexts.h"
#include "batchdelete/run/filescanworker.h"
#include "ledger/ledger.h"
#include "tasks/background.h"
#include "tests/support/datarows.h"
#include "tests/support/files.h"
#include "tests/support/login.h"
#include "tests/support/smalldisk.h"
#include "tests/support/text.h"

#include <QDir>
#include <QSignalSpy>
#include <QtTest>

namespace {

const QString before = "delete_pic_before"_s;
const QString after = "delete_pic_after"_s;
using End = DeletionSummary::End;

} // namespace

/// Deletions against the demo service, without a window: what the window would show is collected in
/// "shown". The service itself refuses a report of a file that was not announced or is still there.
class TestBatchDeleteRun : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        logIn(&demo_);
        shown_.clear();
        ends_.clear();
        questions_.clear();
        refusals_.clear();
        run_ = std::make_unique<BatchDeleteRun>();
        connect(run_.get(), &BatchDeleteRun::filesListed, this,
                [this](const OrderIdentity &id, const QVector<BatchDeleteFileInfo> &files) {
                    shown_[id].setFiles(files);
                });
        connect(run_.get(), &BatchDeleteRun::fileChanged, this,
                [this](const OrderIdentity &id, int index, const BatchDeleteFileInfo &file) {
                    shown_[id].setFile(index, file);
                });
        connect(run_.get(), &BatchDeleteRun::orderNoted, this,
                [this](const OrderIdentity &id, const QString &note) { shown_[id].note = note; });
        connect(run_.get(), &BatchDeleteRun::finished, this,
                [this](const DeletionSummary &summary) { ends_.append(summary); });
        connect(run_.get(), &BatchDeleteRun::announcementFailed, this,
                [this](const ServiceReply &reply) { refusals_.append(reply.message); });
        connect(run_->reporter(), &DeletionReporter::resubmitNeeded, this,
                [this](const QString &question) { questions_.append(question); });
    }

    void cleanup()
    {
        demo_.release();
        run_.reset();
        diskPool().waitForDone();
    }

    void deletesOneOrderAfterTheOther()
    {
        const auto first = makeOrder(0, 3);
        const auto second = makeOrder(2, 2);
        const auto untouched = makeOrder(3, 2);
        start({first, second});
        QVERIFY(!run_->start({first}, identity_, {}));
        for (const auto &order : {first, second})
            QCOMPARE(ordersatwork::toolAt({identity_.shopId, order.id, order.orderPhotoId}),
                     "批量删除"_s);
        QTRY_COMPARE(ends_.size(), 1);
        QCOMPARE(states(first), "222"_s);
        QCOMPARE(states(second), "22"_s);
        QVERIFY(namesOnDisk(first).isEmpty() && namesOnDisk(second).isEmpty());
        QVERIFY(QDir(pathOf(first)).exists());
        QCOMPARE(namesOnDisk(untouched).size(), 2);
        QCOMPARE(booked(first, "deleted").size(), 3);
        QCOMPARE(booked(first, "announced"), booked(first, "deleted"));
        QCOMPARE(booked(second, "deleted").size(), 2);
        QCOMPARE(deletiontexts::summaryText(ends_.first()), "全部删除完成！"_s);

        QStringList order;
        const QJsonArray all = demo_.requests();
        for (const QJsonValue &request : all)
            order.append(request["action"_s].toString());
        QCOMPARE(order, QStringList({before, after, after, after, before, after, after}));
        QVERIFY(all.first()["body"_s].toString().startsWith(
            "shopid=101&eid=3101&superid=7001&personid=3101&order_photo_id=800001&pics=[{"_s));
        QTRY_VERIFY(!run_->isBusy());
    }

    void entersWhatItDoesInTheLedger()
    {
        const QTemporaryDir kept;
        Ledger ledger(kept.path());
        ledger.makeCurrent();
        const auto order = makeOrder(0, 3);
        QVERIFY(QFile::setPermissions(pathOf(order, "2.jpg"_s), QFile::ReadOwner));
        demo_.misbehave(after, "drop"_s, {{"times"_s, 1}});
        connect(run_->reporter(), &DeletionReporter::resubmitNeeded, this,
                [this] { run_->reporter()->answerResubmit(false); });
        runOut({order});
        const auto rows = [&ledger, order] {
            QStringList told;
            const auto deletions = ledger.answer([order](const LedgerReader &reader) {
                return reader.deletionsOfOrder(order.identity());
            });
            for (const ledger::Deletion &each : deletions) {
                const QString name = each.file.path.section(QLatin1Char('\\'), -1);
                told.append(name + QLatin1Char(':') + (each.announcedMs ? "a"_s : QString()) +
                            (each.deletedMs ? "d"_s : QString()) +
                            (each.reportedMs ? "r"_s : QString()) +
                            (each.failure.isEmpty() ? QString() : "!"_s));
            }
            told.sort();
            return told;
        };
        QCOMPARE(rows(), QStringList({"0.jpg:ad!"_s, "1 a&b.jpg:adr"_s, "2.jpg:a!"_s}));
        QVERIFY(
            QFile::setPermissions(pathOf(order, "2.jpg"_s), QFile::ReadOwner | QFile::WriteOwner));
        retry(order, {0, 1, 2});
        const QStringList retried = rows();
        for (const QString &row : retried)
            QVERIFY2(row.contains(":adr"_s), qUtf8Printable(row)); // no rows were added
        QCOMPARE(retried.size(), 3);
    }

    /// An import that goes on in another program of this machine; one that is over is none.
    void leavesWhatAnotherProgramWorksOn()
    {
        const QTemporaryDir kept;
        Ledger ledger(kept.path());
        ledger.makeCurrent();
        const auto order = makeOrder(0, 2);
        {
            Ledger other(kept.path());
            const ledger::RunId import = other.beginRun({{"9002"_s, "101"_s, {}}, {}});
            ledger::NewCopy copy;
            copy.target = R"(\\nas\a.jpg)"_s;
            other.beginCopies(import, {order.identity(), {}, {}}, {copy});
            QVERIFY(other.waitUntilWritten());
            runOut({order});
            QCOMPARE(namesOnDisk(order).size(), 2);
            QVERIFY(demo_.requests(before).isEmpty());
            other.endRun(import);
            QVERIFY(other.waitUntilWritten());
        }
        ends_.clear();
        runOut({order});
        QVERIFY(namesOnDisk(order).isEmpty());
    }

    void filesThatCannotBeDeletedAreTold()
    {
        if (shortcutsForLinks)
            QSKIP("Qt makes shortcuts for links here, which are files.");
        const auto order = makeOrder(0, 3);
        QVERIFY(QFile::setPermissions(pathOf(order, "2.jpg"_s), QFile::ReadOwner));
        QVERIFY(QFile::link(QDir::tempPath(), pathOf(order, "zz"_s)));
        runOut({order});
        QCOMPARE(states(order), "2442"_s);              // 0.jpg 2.jpg zz 原片/1
        QCOMPARE(booked(order, "announced").size(), 3); // the link to a folder is none of them
        QCOMPARE(booked(order, "deleted").size(), 2);
        QCOMPARE(namesOnDisk(order).size(), 1);
        QVERIFY(deletiontexts::failedList(shown_.value(order.identity()))
                    .shown.contains("2.jpg: 没有删除权限"_s));
        QCOMPARE(deletiontexts::summaryText(ends_.first()),
                 "全部删除完成！\n\n成功 2 个文件，失败 2 个文件"_s);

        // Retried: what can be now, and what was never to be.
        QVERIFY(
            QFile::setPermissions(pathOf(order, "2.jpg"_s), QFile::ReadOwner | QFile::WriteOwner));
        retry(order, {0, 1, 2, 3, 99, -1});
        QCOMPARE(states(order), "2242"_s);
        QCOMPARE(booked(order, "deleted").size(), 3);
        QCOMPARE(requests(after), 3);
        QCOMPARE(requests(before), 1);
        QVERIFY(QFileInfo(pathOf(order, "zz"_s)).isSymLink());
        QVERIFY(!run_->retry(shown_.value(order.identity()), {0, 1, 2, 3}, identity_, {}));
        QCOMPARE(ends_.size(), 1);
    }

    void whatWasNotAnnouncedStays()
    {
        const auto order = makeOrder(0, 2);
        const QString path = pathOf(order, "0.jpg"_s);
        const auto refresh = [&] {
            FileScanWorker worker;
            connect(&worker, &FileScanWorker::finished, this, [&](const FileScanResult &found) {
                BatchDeleteOrderInfo &known = shown_[order.identity()];
                known.setFiles(deletionrules::merged(known.files(), found.files));
            });
            worker.scan(order.netPath);
        };
        demo_.hold(before);
        start({order});
        QTRY_COMPARE(demo_.held(), 1);
        writeFile(path, "another");
        demo_.release();
        QTRY_COMPARE(ends_.size(), 1);
        QCOMPARE(states(order), "42"_s);
        QVERIFY(deletiontexts::failedList(shown_.value(order.identity()))
                    .shown.endsWith("0.jpg: 文件已变化，未删除"_s));
        QTRY_VERIFY(!run_->isBusy());
        QVERIFY(!run_->retry(shown_.value(order.identity()), {0}, identity_, {}));

        // Seen and announced anew it may go, unless it changes again or the service objects.
        refresh();
        demo_.refuse(before, "不"_s);
        retry(order, {0});
        QCOMPARE(refusals_, QStringList("不"_s));
        writeFile(path, "yet another");
        retry(order, {0});
        QVERIFY(!run_->retry(shown_.value(order.identity()), {0}, identity_, {}));
        QCOMPARE(readFile(path), QByteArray("yet another"));
        refresh();
        QCOMPARE(states(order), "42"_s);
        QVERIFY(QFile::setPermissions(path, QFile::ReadOwner));
        retry(order, {0});
        QVERIFY(QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner));
        QCOMPARE(requests(before), 4);
        // What has stayed as it was announced goes without more ado.
        refresh();
        retry(order, {0});
        QCOMPARE(states(order), "22"_s);
        QCOMPARE(requests(before), 4);
        QCOMPARE(demo_.body(before).count("picname"_s), 1);
    }

    void ordersThatAreSkipped()
    {
        if (shortcutsForLinks)
            QSKIP("Qt makes shortcuts for links here, which are files.");
        auto missing = makeOrder(0, 0);
        missing.netPath += "\\none"_s;
        const auto empty = makeOrder(2, 0);
        auto link = makeOrder(3, 1);
        const QString real = pathOf(link).chopped(1);
        QVERIFY(QFile::rename(real, real + "-real"_s));
        QVERIFY(QFile::link(real + "-real"_s, real));
        const auto fine = makeOrder(5, 1);
        auto elsewhere = makeOrder(1, 1);
        elsewhere.branch = "102"_s;
        const auto taken = makeOrder(4, 1);
        ordersatwork::Claim claim;
        QVERIFY(!ordersatwork::claim({taken.identity()}, "导入原片"_s, &claim));
        runOut({missing, empty, link, elsewhere, taken, fine});
        QCOMPARE(shown_.value(taken.identity()).note,
                 ordersatwork::refusal(taken.displayNumber(), "导入原片"_s));
        QCOMPARE(namesOnDisk(taken).size(), 1);
        QVERIFY(ordersatwork::toolAt(fine.identity()).isEmpty());
        QCOMPARE(shown_.value(missing.identity()).note, "目录不存在: "_s + missing.netPath);
        QCOMPARE(shown_.value(empty.identity()).note, "目录中没有可删除的文件"_s);
        QVERIFY(shown_.value(link.identity()).note.contains("链接"_s));
        QCOMPARE(namesOnDisk(link).size(), 1);
        QVERIFY(shown_.value(elsewhere.identity()).note.contains("属于其他分店"_s));
        QCOMPARE(namesOnDisk(elsewhere).size(), 1);
        QVERIFY(!run_->retry(elsewhere, {0}, identity_, {}));
        QCOMPARE(states(fine), "2"_s);
        QCOMPARE(requests(before), 1);
        QVERIFY(deletiontexts::summaryText(ends_.first()).endsWith("跳过 5 个订单"_s));
        QVERIFY(!run_->start({}, identity_, {}));
    }

    void failedAnnouncements()
    {
        const auto first = makeOrder(0, 2);
        const auto second = makeOrder(2, 2);
        const QString message = "不可以"_s;
        for (const QString &kind : {"drop"_s, "refuse"_s}) {
            ends_.clear();
            demo_.misbehave(before, kind, {{"message"_s, message}});
            runOut({first, second});
            QCOMPARE(refusals_.takeLast(), kind == "refuse"_s ? message : QString());
            QCOMPARE(int(ends_.first().end), int(End::NotAnnounced));
            QCOMPARE(ends_.first().untouched, 1);
            QCOMPARE(states(first), "00"_s);
            QTRY_VERIFY(!run_->isBusy());
        }
        QCOMPARE(namesOnDisk(first).size() + namesOnDisk(second).size(), 4);
        QCOMPARE(requests(after), 0);
    }

    void failedReports()
    {
        const QString message = "不可以"_s;
        for (const QString &kind : {"drop"_s, "refuse"_s}) {
            ends_.clear();
            questions_.clear();
            demo_.clearRequests();
            const QString question =
                (kind == "drop"_s ? "删除信息提交失败"_s : message) + "，需要继续提交吗？"_s;
            const auto order = makeOrder(kind == "drop"_s ? 0 : 2, 2);
            demo_.misbehave(after, kind, {{"message"_s, message}, {"times"_s, 2}});
            start({order});
            QTRY_COMPARE(questions_, QStringList(question));
            QCOMPARE(states(order), "10"_s);
            QCOMPARE(namesOnDisk(order).size(), 1);
            run_->reporter()->answerResubmit(true);
            QTRY_COMPARE(questions_.size(), 2);
            run_->reporter()->answerResubmit(true);
            run_->reporter()->answerResubmit(false); // nobody asked
            QTRY_COMPARE(ends_.size(), 1);
            QCOMPARE(states(order), "22"_s);
            QCOMPARE(requests(after), 4);
            QCOMPARE(booked(order, "deleted").size(), 2);
            QTRY_VERIFY(!run_->isBusy());
        }
    }

    void decliningFinishesTheOrderOnly()
    {
        const auto first = makeOrder(0, 3);
        const auto second = makeOrder(2, 2);
        demo_.refuse(after, "不"_s);
        start({first, second});
        QTRY_COMPARE(questions_.size(), 1);
        run_->reporter()->answerResubmit(false);
        QTRY_COMPARE(ends_.size(), 1);
        QCOMPARE(int(ends_.first().end), int(End::Declined));
        QCOMPARE(states(first), "322"_s);
        QVERIFY(namesOnDisk(first).isEmpty());
        QCOMPARE(namesOnDisk(second).size(), 2);
        QCOMPARE(requests(before), 1);
        QVERIFY(deletiontexts::failedList(shown_.value(first.identity()))
                    .shown.endsWith("0.jpg: 不"_s));

        // Another run finds nothing there, and forgets nothing.
        QTRY_VERIFY(!run_->isBusy());
        writeFile(pathOf(first, "new.jpg"_s));
        start({shown_.value(first.identity())});
        QTRY_COMPARE(ends_.size(), 2);
        QCOMPARE(states(first), "32"_s);
        QCOMPARE(booked(first, "announced").size(), 4);
        retry(first, {0, 1});
        QCOMPARE(states(first), "22"_s);
        QCOMPARE(requests(after), 5);
    }

    void decliningTwiceAsksOnceForTheRest()
    {
        for (const bool goOn : {true, false}) {
            ends_.clear();
            questions_.clear();
            const auto order = makeOrder(goOn ? 0 : 2, 5);
            QSignalSpy paused(run_.get(), &BatchDeleteRun::pausedForDeclines);
            demo_.misbehave(after, "refuse"_s, {{"message"_s, "不"_s}, {"times"_s, goOn ? 5 : 2}});
            start({order});
            for (int declined = 1; declined <= 2; ++declined) {
                QTRY_COMPARE(questions_.size(), declined);
                QVERIFY(paused.isEmpty());
                run_->reporter()->answerResubmit(false);
            }
            QCOMPARE(paused.size(), 1);
            QVERIFY(ends_.isEmpty());
            run_->answerPause(goOn);
            run_->answerPause(!goOn); // nobody asked
            QTRY_COMPARE(ends_.size(), 1);
            QCOMPARE(questions_.size(), 2);
            QCOMPARE(paused.size(), 1);
            QCOMPARE(int(ends_.first().end), int(goOn ? End::Declined : End::Stopped));
            QCOMPARE(namesOnDisk(order).size(), goOn ? 0 : 3);
            QTRY_VERIFY(!run_->isBusy());
        }
        // The next run asks again.
        QCOMPARE(requests(after), 7);
        const auto order = makeOrder(3, 1);
        demo_.refuse(after, "不"_s);
        start({order});
        QTRY_COMPARE(questions_.size(), 3);
        run_->reporter()->answerResubmit(true);
        QTRY_COMPARE(ends_.size(), 2);
    }

    void aDiskThatGoesAwayIsNoDeletion()
    {
        auto order = makeOrder(0, 0);
        const QString mountPoint = pathOf(order, "disk"_s);
        SmallDisk disk(mountPoint, 4);
        if (!disk.isMounted())
            QSKIP("mounting is not allowed here");
        order.netPath += "\\disk\\order"_s;
        shown_[order.identity()] = order;
        QVERIFY(QDir().mkpath(pathOf(order)));
        for (const char *name : {"a", "b", "c"}) {
            writeFile(pathOf(order, QLatin1String(name)));
        }
        demo_.hold(after);
        start({order});
        QTRY_COMPARE(demo_.held(), 1);
        disk.vanish();
        demo_.release();
        QTRY_COMPARE(ends_.size(), 1);
        QCOMPARE(shown_.value(order.identity()).succeeded(), 1);
        QCOMPARE(shown_.value(order.identity()).failed(), 2);
        QCOMPARE(booked(order, "deleted").size(), 1);
        QVERIFY(deletiontexts::failedList(shown_.value(order.identity()))
                    .shown.endsWith("订单目录无法访问"_s));
        QVERIFY(!shown_.value(order.identity()).note.isEmpty());
    }

    void aFolderThatIsRemovedIsADeletion()
    {
        const auto order = makeOrder(0, 3);
        demo_.hold(after);
        start({order});
        QTRY_COMPARE(demo_.held(), 1);
        QVERIFY(QDir(pathOf(order)).removeRecursively());
        demo_.release();
        QTRY_COMPARE(ends_.size(), 1);
        QCOMPARE(states(order), "222"_s);
        QCOMPARE(booked(order, "deleted").size(), 3);
        QVERIFY(deletiontexts::succeededList(shown_.value(order.identity()))
                    .shown.contains("2.jpg (文件不存在)"_s));
    }

    void stops_data()
    {
        // held: the request that is waiting for its answer
        addColumns<QString, int, QString, int>({"held", "times", "states", "left"});
        newRow("while announcing", before, 1, "000", 3);
        newRow("while reporting", after, 1, "200", 2);
        newRow("not even for the answer", after, 2, "300", 2);
    }

    void stops()
    {
        QFETCH(QString, held);
        QFETCH(int, times);
        QFETCH(int, left);
        const auto first = makeOrder(0, 3);
        const auto second = makeOrder(2, 1);
        demo_.hold(held);
        start({first, second});
        QTRY_COMPARE(demo_.held(), 1);
        for (int time = 1; time <= times; ++time)
            run_->stop();
        // What is going on is finished first.
        QCOMPARE(ends_.isEmpty(), held == after && times == 1);
        demo_.release();
        QTRY_COMPARE(ends_.size(), 1);
        QTRY_VERIFY(!run_->isBusy());
        QTEST(states(first), "states"); // a late answer changes nothing
        QCOMPARE(namesOnDisk(first).size(), left);
        QCOMPARE(namesOnDisk(second).size(), 1);
        QCOMPARE(int(ends_.first().end), int(End::Stopped));
        QVERIFY(run_->start({first, second}, identity_, {}));
        QTRY_COMPARE(ends_.size(), 2);
        QVERIFY(namesOnDisk(first).isEmpty() && namesOnDisk(second).isEmpty());
    }

    void retriesOutsideARun()
    {
        // A retry that fails asks like a run does, and may be stopped.
        auto order = makeOrder(0, 1);
        order.listed = 5; // looked at, but not processed
        QVERIFY(!run_->retry(order, {0}, identity_, {}));
        demo_.misbehave(after, "drop"_s, {{"times"_s, 2}});
        start({order});
        QTRY_COMPARE(questions_.size(), 1);
        run_->reporter()->answerResubmit(false);
        QTRY_VERIFY(!run_->isBusy());
        QVERIFY(run_->retry(shown_.value(order.identity()), {0}, identity_, {}));
        QVERIFY(!run_->isRunning());
        QTRY_COMPARE(questions_.size(), 2);
        run_->stop();
        run_->stop();
        QVERIFY(!run_->isBusy());
        QCOMPARE(states(order), "3"_s);
    }

private:
    /// An order of the demo studio with a folder of its own and \a count files in it.
    BatchDeleteOrderInfo makeOrder(int number, int count)
    {
        const QJsonObject state = demo_.state();
        const QJsonObject studios = state.value("orders"_s).toArray().at(number).toObject();
        BatchDeleteOrderInfo order;
        order.branch = identity_.shopId;
        order.id = studios.value("id"_s).toString();
        order.orderPhotoId = studios.value("order_photo_id"_s).toString();
        const QString folder = state.value("share"_s).toString() + "/test/"_s + order.id;
        order.netPath = wireForm(folder);
        QDir().mkpath(folder + "/原片"_s);
        for (int index = 0; index < count; ++index) {
            writeFile(folder + (index % 2 == 0 ? "/%1.jpg"_s : "/原片/%1 a&b.jpg"_s).arg(index));
        }
        shown_.insert(order.identity(), order);
        return order;
    }

    QString pathOf(const BatchDeleteOrderInfo &order, const QString &name = {})
    {
        return QString(order.netPath).replace(QLatin1Char('\\'), QLatin1Char('/')) +
               QLatin1Char('/') + name;
    }

    QStringList namesOnDisk(const BatchDeleteOrderInfo &order) { return filesBelow(pathOf(order)); }

    /// The number of each file's state, by path.
    QString states(const BatchDeleteOrderInfo &order)
    {
        QMap<QString, int> byPath;
        const auto files = shown_.value(order.identity()).files();
        for (const BatchDeleteFileInfo &file : files)
            byPath.insert(file.shortPath(), file.state);
        QString states;
        for (const int state : qAsConst(byPath))
            states += QString::number(state);
        return states;
    }

    /// What the service has on its books: "announced" or "deleted".
    QStringList booked(const BatchDeleteOrderInfo &order, const char *book)
    {
        QStringList names;
        const QJsonArray orders = demo_.state().value("orders"_s).toArray();
        for (const QJsonValue &each : orders) {
            if (each["id"_s].toString() != order.id)
                continue;
            const QJsonArray paths = each[QLatin1String(book)].toArray();
            for (const QJsonValue &path : paths)
                names.append(path.toString().section(QLatin1Char('/'), -1));
        }
        return names;
    }

    int requests(const QString &action) { return demo_.requests(action).size(); }

    void start(const QVector<BatchDeleteOrderInfo> &orders)
    {
        QVERIFY(run_->start(orders, identity_, {}));
    }
    void runOut(const QVector<BatchDeleteOrderInfo> &orders)
    {
        start(orders);
        QTRY_COMPARE(ends_.size(), 1);
    }
    void retry(const BatchDeleteOrderInfo &order, const QVector<int> &indexes)
    {
        QTRY_VERIFY(!run_->isBusy());
        QVERIFY(run_->retry(shown_.value(order.identity()), indexes, identity_, {}));
        QTRY_VERIFY(!run_->isBusy());
    }

    DemoClient demo_;
    orderqueries::Identity identity_{"101"_s, "7001"_s, "3101"_s};
    std::unique_ptr<BatchDeleteRun> run_;
    QHash<OrderIdentity, BatchDeleteOrderInfo> shown_;
    QList<DeletionSummary> ends_;
    QStringList questions_;
    QStringList refusals_;
};

QTEST_GUILESS_MAIN(TestBatchDeleteRun)
#include "test_batchdeleterun.moc"
