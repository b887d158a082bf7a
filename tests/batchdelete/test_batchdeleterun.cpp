#include "batchdelete/batchdeleterun.h"
#include "batchdelete/deletionreport.h"
#include "net/background.h"
#include "tests/support/democlient.h"
#include "tests/support/smalldisk.h"

#include <QDir>
#include <QDirIterator>
#include <QJsonDocument>
#include <QSignalSpy>
#include <QtTest>

namespace {

const QString before = QStringLiteral("delete_pic_before");
const QString after = QStringLiteral("delete_pic_after");
using End = DeletionSummary::End;

} // namespace

/// Deletions against the demo service, without a window: what the window would show is collected in
/// "shown". The service itself refuses a report of a file that was not announced or is still there.
class TestBatchDeleteRun : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void deletesOneOrderAfterTheOther();
    void filesThatCannotBeDeletedAreTold();
    void whatIsGoneAlreadyIsReported();
    void ordersThatAreSkipped();
    void failedAnnouncements_data();
    void failedAnnouncements();
    void failedReports_data();
    void failedReports();
    void anAnswerThatGotLostIsAskedForAgain();
    void decliningFinishesTheOrderOnly();
    void aDiskThatGoesAwayIsNoDeletion();
    void stops_data();
    void stops();
    void askedTwiceItDoesNotWaitForTheService();
    void retriesOutsideARun();
    void closingAsksNothing();

private:
    /// An order of the demo studio with a folder of its own and \a count files in it.
    BatchDeleteOrderInfo makeOrder(int number, int count);
    QString pathOf(const BatchDeleteOrderInfo &order, const QString &name = {});
    QStringList namesOnDisk(const BatchDeleteOrderInfo &order);
    QString states(const BatchDeleteOrderInfo &order);
    /// What the service has on its books: "announced" or "deleted".
    QStringList booked(const BatchDeleteOrderInfo &order, const char *book);
    int requests(const QString &action) { return demo_.requests(action).size(); }
    void start(const QVector<BatchDeleteOrderInfo> &orders);

    DemoClient demo_;
    orderqueries::Identity identity_{QStringLiteral("101"), QStringLiteral("7001"),
                                     QStringLiteral("3101")};
    std::unique_ptr<BatchDeleteRun> run_;
    QHash<QString, BatchDeleteOrderInfo> shown_;
    QList<DeletionSummary> ends_;
    QStringList questions_;
    QStringList refusals_;
};

void TestBatchDeleteRun::init()
{
    demo_.reset();
    AccountContext::uid = QStringLiteral("9001");
    shown_.clear();
    ends_.clear();
    questions_.clear();
    refusals_.clear();
    run_ = std::make_unique<BatchDeleteRun>();
    connect(run_.get(), &BatchDeleteRun::orderScanned, this,
            [this](const QString &id, const QVector<BatchDeleteFileInfo> &files) {
                shown_[id].setFiles(files);
            });
    connect(run_.get(), &BatchDeleteRun::fileChanged, this,
            [this](const QString &id, int index, const BatchDeleteFileInfo &file) {
                shown_[id].setFile(index, file);
            });
    connect(run_.get(), &BatchDeleteRun::orderNoted, this,
            [this](const QString &id, const QString &note) { shown_[id].note = note; });
    connect(run_.get(), &BatchDeleteRun::finished, this,
            [this](const DeletionSummary &summary) { ends_.append(summary); });
    connect(run_.get(), &BatchDeleteRun::announcementFailed, this,
            [this](const ServiceReply &reply) { refusals_.append(reply.message); });
    connect(run_->reporter(), &DeletionReporter::resubmitNeeded, this,
            [this](const QString &question) { questions_.append(question); });
}

void TestBatchDeleteRun::cleanup()
{
    demo_.release();
    run_.reset();
    diskPool()->waitForDone();
}

BatchDeleteOrderInfo TestBatchDeleteRun::makeOrder(int number, int count)
{
    const QJsonObject state = demo_.state();
    const QJsonObject studios =
        state.value(QStringLiteral("orders")).toArray().at(number).toObject();
    BatchDeleteOrderInfo order;
    order.id = studios.value(QStringLiteral("id")).toString();
    order.orderPhotoId = studios.value(QStringLiteral("order_photo_id")).toString();
    const QString folder =
        state.value(QStringLiteral("share")).toString() + QStringLiteral("/test/") + order.id;
    order.netPath = QString(folder).replace(QLatin1Char('/'), QLatin1Char('\\'));
    QDir().mkpath(folder + QStringLiteral("/原片"));
    for (int index = 0; index < count; ++index) {
        QFile file(folder +
                   (index % 2 == 0 ? QStringLiteral("/%1.jpg") : QStringLiteral("/原片/%1 a&b.jpg"))
                       .arg(index));
        if (!file.open(QIODevice::WriteOnly))
            qFatal("fixture not written");
    }
    shown_.insert(order.id, order);
    return order;
}

QString TestBatchDeleteRun::pathOf(const BatchDeleteOrderInfo &order, const QString &name)
{
    return QString(order.netPath).replace(QLatin1Char('\\'), QLatin1Char('/')) + QLatin1Char('/') +
           name;
}

QStringList TestBatchDeleteRun::namesOnDisk(const BatchDeleteOrderInfo &order)
{
    QStringList names;
    QDirIterator files(pathOf(order), QDir::Files | QDir::System | QDir::Hidden,
                       QDirIterator::Subdirectories);
    while (files.hasNext()) {
        files.next();
        names.append(files.fileName());
    }
    names.sort();
    return names;
}

/// The number of each file's state, by path.
QString TestBatchDeleteRun::states(const BatchDeleteOrderInfo &order)
{
    QMap<QString, int> byPath;
    const auto files = shown_.value(order.id).files();
    for (const BatchDeleteFileInfo &file : files)
        byPath.insert(file.shortPath(), file.state);
    QString states;
    for (const int state : qAsConst(byPath))
        states += QString::number(state);
    return states;
}

QStringList TestBatchDeleteRun::booked(const BatchDeleteOrderInfo &order, const char *book)
{
    QStringList names;
    const QJsonArray orders = demo_.state().value(QStringLiteral("orders")).toArray();
    for (const QJsonValue &each : orders) {
        if (each[QStringLiteral("id")].toString() != order.id)
            continue;
        const QJsonArray paths = each[QLatin1String(book)].toArray();
        for (const QJsonValue &path : paths)
            names.append(path.toString().section(QLatin1Char('/'), -1));
    }
    return names;
}

void TestBatchDeleteRun::start(const QVector<BatchDeleteOrderInfo> &orders)
{
    QVERIFY(run_->start(orders, identity_, {}));
}

void TestBatchDeleteRun::deletesOneOrderAfterTheOther()
{
    const auto first = makeOrder(0, 3);
    const auto second = makeOrder(2, 2);
    const auto untouched = makeOrder(3, 2);
    start({first, second});
    QVERIFY(!run_->start({first}, identity_, {}));
    QTRY_COMPARE(ends_.size(), 1);
    QCOMPARE(states(first), QStringLiteral("222"));
    QCOMPARE(states(second), QStringLiteral("22"));
    QVERIFY(namesOnDisk(first).isEmpty() && namesOnDisk(second).isEmpty());
    QVERIFY(QDir(pathOf(first)).exists());
    QCOMPARE(namesOnDisk(untouched).size(), 2);
    QCOMPARE(booked(first, "deleted").size(), 3);
    QCOMPARE(booked(first, "announced"), booked(first, "deleted"));
    QCOMPARE(booked(second, "deleted").size(), 2);
    QCOMPARE(deletionreport::summaryText(ends_.first()), QStringLiteral("全部删除完成！"));

    QStringList order;
    const QJsonArray all = demo_.requests();
    for (const QJsonValue &request : all)
        order.append(request[QStringLiteral("action")].toString());
    QCOMPARE(order, QStringList({before, after, after, after, before, after, after}));
    QVERIFY(all.first()[QStringLiteral("body")].toString().startsWith(QStringLiteral(
        "shopid=101&eid=3101&superid=7001&personid=3101&order_photo_id=800001&pics=[{")));
    QTRY_VERIFY(!run_->isBusy());
}

void TestBatchDeleteRun::filesThatCannotBeDeletedAreTold()
{
    const auto order = makeOrder(0, 3);
    QVERIFY(QFile::setPermissions(pathOf(order, QStringLiteral("2.jpg")), QFile::ReadOwner));
    QVERIFY(QFile::link(QDir::tempPath(), pathOf(order, QStringLiteral("zz"))));
    start({order});
    QTRY_COMPARE(ends_.size(), 1);
    QCOMPARE(states(order), QStringLiteral("2442")); // 0.jpg 2.jpg zz 原片/1
    QCOMPARE(booked(order, "announced").size(), 3);  // the link to a folder is none of them
    QCOMPARE(booked(order, "deleted").size(), 2);
    QCOMPARE(namesOnDisk(order).size(), 1);
    QVERIFY(deletionreport::failedList(shown_.value(order.id))
                .contains(QStringLiteral("2.jpg: 没有删除权限")));
    QCOMPARE(deletionreport::summaryText(ends_.first()),
             QStringLiteral("全部删除完成！\n\n成功 2 个文件，失败 2 个文件"));

    // Retried: what can be now, and what was never to be.
    QVERIFY(QFile::setPermissions(pathOf(order, QStringLiteral("2.jpg")),
                                  QFile::ReadOwner | QFile::WriteOwner));
    QTRY_VERIFY(!run_->isBusy());
    QVERIFY(run_->retry(shown_.value(order.id), {0, 1, 2, 3, 99, -1}, identity_));
    QTRY_VERIFY(!run_->isBusy());
    QCOMPARE(states(order), QStringLiteral("2242"));
    QCOMPARE(booked(order, "deleted").size(), 3);
    QCOMPARE(requests(after), 3);
    QCOMPARE(requests(before), 1);
    QVERIFY(QFileInfo(pathOf(order, QStringLiteral("zz"))).isSymLink());
    QVERIFY(!run_->retry(shown_.value(order.id), {0, 1, 2, 3}, identity_));
    QCOMPARE(ends_.size(), 1);
}

void TestBatchDeleteRun::whatIsGoneAlreadyIsReported()
{
    const auto order = makeOrder(0, 2);
    demo_.misbehave(before, QStringLiteral("hold"));
    start({order});
    QTRY_COMPARE(demo_.state().value(QStringLiteral("held")).toInt(), 1);
    QVERIFY(QFile::remove(pathOf(order, QStringLiteral("0.jpg"))));
    demo_.release();
    QTRY_COMPARE(ends_.size(), 1);
    QCOMPARE(states(order), QStringLiteral("22"));
    QCOMPARE(booked(order, "deleted").size(), 2);
    QVERIFY(deletionreport::succeededList(shown_.value(order.id))
                .contains(QStringLiteral("0.jpg (文件不存在)")));
}

void TestBatchDeleteRun::ordersThatAreSkipped()
{
    auto missing = makeOrder(0, 0);
    missing.netPath += QStringLiteral("\\none");
    const auto empty = makeOrder(2, 0);
    auto link = makeOrder(3, 1);
    const QString real = pathOf(link).chopped(1);
    QVERIFY(QFile::rename(real, real + QStringLiteral("-real")));
    QVERIFY(QFile::link(real + QStringLiteral("-real"), real));
    const auto fine = makeOrder(5, 1);
    start({missing, empty, link, fine});
    QTRY_COMPARE(ends_.size(), 1);
    QCOMPARE(shown_.value(missing.id).note, QStringLiteral("目录不存在: ") + missing.netPath);
    QCOMPARE(shown_.value(empty.id).note, QStringLiteral("目录中没有可删除的文件"));
    QVERIFY(shown_.value(link.id).note.contains(QStringLiteral("链接")));
    QCOMPARE(namesOnDisk(link).size(), 1);
    QCOMPARE(states(fine), QStringLiteral("2"));
    QCOMPARE(requests(before), 1);
    QVERIFY(deletionreport::summaryText(ends_.first()).endsWith(QStringLiteral("跳过 3 个订单")));
    QVERIFY(!run_->start({}, identity_, {}));
}

void TestBatchDeleteRun::failedAnnouncements_data()
{
    QTest::addColumn<QString>("kind");
    QTest::addColumn<QString>("message");
    for (const char *kind : {"drop", "http-error", "broken-json", "empty", "array"})
        QTest::newRow(kind) << kind << QString();
    QTest::newRow("refuse") << "refuse"
                            << "不可以";
    QTest::newRow("code-number") << "code-number"
                                 << "操作成功";
}

void TestBatchDeleteRun::failedAnnouncements()
{
    QFETCH(QString, kind);
    QFETCH(QString, message);
    const auto first = makeOrder(0, 2);
    const auto second = makeOrder(2, 2);
    demo_.misbehave(before, kind, {{QStringLiteral("message"), message}});
    start({first, second});
    QTRY_COMPARE(ends_.size(), 1);
    QCOMPARE(refusals_, QStringList(message));
    QCOMPARE(int(ends_.first().end), int(End::NotAnnounced));
    QCOMPARE(ends_.first().untouched, 1);
    QCOMPARE(states(first), QStringLiteral("00"));
    QCOMPARE(namesOnDisk(first).size() + namesOnDisk(second).size(), 4);
    QCOMPARE(requests(after), 0);
}

void TestBatchDeleteRun::failedReports_data()
{
    QTest::addColumn<QString>("kind");
    QTest::addColumn<QString>("question");
    const QString ask = QStringLiteral("，需要继续提交吗？");
    for (const char *kind : {"drop", "http-error", "broken-json", "empty", "array"})
        QTest::newRow(kind) << kind << QStringLiteral("删除信息提交失败") + ask;
    QTest::newRow("refuse") << "refuse" << QStringLiteral("不可以") + ask;
}

void TestBatchDeleteRun::failedReports()
{
    QFETCH(QString, kind);
    QFETCH(QString, question);
    const auto order = makeOrder(0, 2);
    const QString fine = QStringLiteral("不可以");
    demo_.misbehave(after, kind, {{QStringLiteral("message"), fine}, {QStringLiteral("times"), 2}});
    start({order});
    QTRY_COMPARE(questions_, QStringList(question));
    QCOMPARE(states(order), QStringLiteral("10"));
    QCOMPARE(namesOnDisk(order).size(), 1);
    run_->reporter()->answerResubmit(true);
    QTRY_COMPARE(questions_.size(), 2);
    run_->reporter()->answerResubmit(true);
    run_->reporter()->answerResubmit(false); // nobody asked
    QTRY_COMPARE(ends_.size(), 1);
    QCOMPARE(states(order), QStringLiteral("22"));
    QCOMPARE(requests(after), 4);
    QCOMPARE(booked(order, "deleted").size(), 2);
}

void TestBatchDeleteRun::anAnswerThatGotLostIsAskedForAgain()
{
    // The service has taken both, only its answers are cut short; told again, it knows.
    const auto order = makeOrder(0, 1);
    demo_.misbehave(before, QStringLiteral("drop-silent"), {{QStringLiteral("times"), 1}});
    demo_.misbehave(after, QStringLiteral("broken-json"));
    start({order});
    QTRY_COMPARE(questions_.size(), 1);
    QCOMPARE(booked(order, "deleted").size(), 1);
    run_->reporter()->answerResubmit(true);
    QTRY_COMPARE(ends_.size(), 1);
    QCOMPARE(states(order), QStringLiteral("2"));
    QCOMPARE(requests(after), 2);
}

void TestBatchDeleteRun::decliningFinishesTheOrderOnly()
{
    const auto first = makeOrder(0, 3);
    const auto second = makeOrder(2, 2);
    demo_.misbehave(after, QStringLiteral("refuse"),
                    {{QStringLiteral("message"), QStringLiteral("不")}});
    start({first, second});
    QTRY_COMPARE(questions_.size(), 1);
    run_->reporter()->answerResubmit(false);
    QTRY_COMPARE(ends_.size(), 1);
    QCOMPARE(int(ends_.first().end), int(End::Declined));
    QCOMPARE(states(first), QStringLiteral("322"));
    QVERIFY(namesOnDisk(first).isEmpty());
    QCOMPARE(namesOnDisk(second).size(), 2);
    QCOMPARE(requests(before), 1);
    QVERIFY(
        deletionreport::failedList(shown_.value(first.id)).endsWith(QStringLiteral("0.jpg: 不")));

    QTRY_VERIFY(!run_->isBusy());
    QVERIFY(run_->retry(shown_.value(first.id), {0, 1, 2}, identity_));
    QTRY_VERIFY(!run_->isBusy());
    QCOMPARE(states(first), QStringLiteral("222"));
    QCOMPARE(requests(after), 4);
}

void TestBatchDeleteRun::aDiskThatGoesAwayIsNoDeletion()
{
    auto order = makeOrder(0, 0);
    const QString mountPoint = pathOf(order, QStringLiteral("disk"));
    SmallDisk disk(mountPoint, 4);
    if (!disk.isMounted())
        QSKIP("mounting is not allowed here");
    order.netPath += QStringLiteral("\\disk\\order");
    shown_[order.id] = order;
    QVERIFY(QDir().mkpath(pathOf(order)));
    for (const char *name : {"a", "b", "c"}) {
        QFile file(pathOf(order, QLatin1String(name)));
        QVERIFY(file.open(QIODevice::WriteOnly));
    }
    demo_.misbehave(after, QStringLiteral("hold"));
    start({order});
    QTRY_COMPARE(demo_.state().value(QStringLiteral("held")).toInt(), 1);
    disk.vanish();
    demo_.release();
    QTRY_COMPARE(ends_.size(), 1);
    QCOMPARE(shown_.value(order.id).succeeded(), 1);
    QCOMPARE(shown_.value(order.id).failed(), 2);
    QCOMPARE(booked(order, "deleted").size(), 1);
    QVERIFY(deletionreport::failedList(shown_.value(order.id))
                .endsWith(QStringLiteral("网络路径无法访问")));
    QVERIFY(!shown_.value(order.id).note.isEmpty());
}

void TestBatchDeleteRun::stops_data()
{
    QTest::addColumn<QString>("held"); // the request that is waiting for its answer
    QTest::addColumn<QString>("states");
    QTest::addColumn<int>("left");
    QTest::newRow("while announcing") << before << "000" << 3;
    QTest::newRow("while reporting") << after << "200" << 2;
}

void TestBatchDeleteRun::stops()
{
    QFETCH(QString, held);
    QFETCH(int, left);
    const auto first = makeOrder(0, 3);
    const auto second = makeOrder(2, 1);
    demo_.misbehave(held, QStringLiteral("hold"));
    start({first, second});
    QTRY_COMPARE(demo_.state().value(QStringLiteral("held")).toInt(), 1);
    run_->stop();
    QCOMPARE(ends_.isEmpty(), held == after); // what is going on is finished first
    demo_.release();
    QTRY_COMPARE(ends_.size(), 1);
    QTEST(states(first), "states");
    QCOMPARE(namesOnDisk(first).size(), left);
    QCOMPARE(namesOnDisk(second).size(), 1);
    QCOMPARE(int(ends_.first().end), int(End::Stopped));
    QTRY_VERIFY(!run_->isBusy());
    QVERIFY(run_->start({first, second}, identity_, {}));
    QTRY_COMPARE(ends_.size(), 2);
    QVERIFY(namesOnDisk(first).isEmpty() && namesOnDisk(second).isEmpty());
}

void TestBatchDeleteRun::askedTwiceItDoesNotWaitForTheService()
{
    const auto order = makeOrder(0, 2);
    demo_.misbehave(after, QStringLiteral("hold"));
    start({order});
    QTRY_COMPARE(demo_.state().value(QStringLiteral("held")).toInt(), 1);
    run_->stop();
    QVERIFY(run_->isBusy());
    run_->stop();
    QTRY_COMPARE(ends_.size(), 1);
    QCOMPARE(states(order), QStringLiteral("30"));
    demo_.release(); // a late answer changes nothing
    QTRY_VERIFY(!run_->isBusy());
    QCOMPARE(states(order), QStringLiteral("30"));
    QVERIFY(run_->retry(shown_.value(order.id), {0}, identity_));
    QTRY_COMPARE(states(order), QStringLiteral("20"));
}

void TestBatchDeleteRun::retriesOutsideARun()
{
    // A retry that fails asks like a run does, and may be stopped.
    auto order = makeOrder(0, 1);
    demo_.misbehave(after, QStringLiteral("drop"), {{QStringLiteral("times"), 2}});
    start({order});
    QTRY_COMPARE(questions_.size(), 1);
    run_->reporter()->answerResubmit(false);
    QTRY_VERIFY(!run_->isBusy());
    QVERIFY(run_->retry(shown_.value(order.id), {0}, identity_));
    QVERIFY(!run_->isRunning());
    QTRY_COMPARE(questions_.size(), 2);
    run_->stop();
    run_->stop();
    QVERIFY(!run_->isBusy());
    QCOMPARE(states(order), QStringLiteral("3"));
}

void TestBatchDeleteRun::closingAsksNothing()
{
    const auto order = makeOrder(0, 2);
    demo_.misbehave(after, QStringLiteral("hold"));
    QSignalSpy ended(run_.get(), &BatchDeleteRun::ended);
    start({order});
    QTRY_COMPARE(demo_.state().value(QStringLiteral("held")).toInt(), 1);
    demo_.misbehave(after, QStringLiteral("refuse"),
                    {{QStringLiteral("message"), QStringLiteral("不")}});
    run_->close();
    demo_.release(); // the file under way is reported still
    QTRY_COMPARE(ended.size(), 1);
    QVERIFY(questions_.isEmpty());
    QCOMPARE(states(order), QStringLiteral("20"));
    QCOMPARE(namesOnDisk(order).size(), 1);
    QVERIFY(!run_->start({order}, identity_, {}));
    QVERIFY(!run_->isBusy());
}

QTEST_GUILESS_MAIN(TestBatchDeleteRun)
#include "test_batchdeleterun.moc"
