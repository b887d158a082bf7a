#include "orderbrowser/run/folderlook.h"
#include "orderbrowser/run/rangesearch.h"
#include "orderbrowser/run/viewstore.h"
#include "tasks/background.h"
#include "tests/support/files.h"
#include "tests/support/login.h"
#include "tests/support/loglines.h"
#include "tests/support/patience.h"
#include "tests/support/text.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSemaphore>
#include <QTemporaryDir>
#include <QtTest>

using orderqueries::OrderSearch;

namespace {

const QString action = "order_list"_s;

BrowserSearch shot(const QDate &from, const QDate &until)
{
    BrowserSearch search;
    search.search.type = OrderSearch::ShootingDate;
    search.search.shootingDate = from;
    search.until = until;
    return search;
}

} // namespace

/// Searches of the demo studio's orders, and the file of the views.
class TestRangeSearch : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        logIn(&demo_);
        run_ = std::make_unique<RangeSearch>();
        connect(run_.get(), &RangeSearch::finished, this,
                [this](const ServiceReply &reply, const OrderListing &listing) {
                    replies_.append(reply);
                    found_ = listing;
                });
        connect(run_.get(), &RangeSearch::progressed, this,
                [this](int answered, int) { progress_.append(answered); });
    }

    void cleanup()
    {
        demo_.release();
        run_.reset();
        replies_.clear();
        progress_.clear();
        diskPool().waitForDone();
        processorPool().waitForDone();
    }

    void findsAllWithTheStudiosOwnFields()
    {
        start({});
        QTRY_COMPARE(replies_.size(), 1);
        QVERIFY(
            demo_.body(action).startsWith("keyword=&searchtype=1&role7id=&ratio=90&shopid=101"_s));
        const OrderListing &all = found_;
        QVERIFY(!all.folders.isEmpty());
        QVERIFY(all.orders.size() > 3);
        const int own = orderfields::positionOf(all.fields, "deposit"_s);
        QVERIFY(own >= orderfields::known().size());
        QCOMPARE(all.fields.at(own).kind, orderfields::Kind::Number);
        QVERIFY(all.value(0, own).startsWith("1,"_s));
    }

    /// A day each, two at a time, of which each order is in one.
    void searchesARangeDayByDay()
    {
        const QDate day(2025, 9, 30);
        demo_.clearRequests();
        demo_.hold(action, 2);
        start(shot(day, day.addDays(3)));
        QTRY_COMPARE(demo_.held(), 2);
        QCOMPARE(demo_.requests(action).size(), 2);
        demo_.release();
        QTRY_COMPARE(replies_.size(), 1);
        QCOMPARE(progress_, (QVector<int>{1, 2, 3, 4}));
        QCOMPARE(demo_.requests(action).size(), 4);
        QStringList asked; // two at a time arrive in any order
        for (int i = 0; i < 4; ++i)
            asked.append(demo_.body(action, i).section(QLatin1Char('&'), 0, 1));
        asked.sort();
        QCOMPARE(asked.first(), "keyword=2025-09-30&searchtype=4"_s);
        QCOMPARE(asked.last(), "keyword=2025-10-03&searchtype=4"_s);
        QVERIFY(found_.rowOf({"101"_s, "50001"_s, "800001"_s}) >= 0);
        QVERIFY(found_.rowOf({"101"_s, "50002"_s, "800002"_s}) >= 0);
    }

    void endsWithTheFirstFailure()
    {
        demo_.refuse(action, "系统维护"_s);
        demo_.clearRequests();
        start(shot({2025, 9, 1}, {2025, 9, 30}));
        QTRY_COMPARE(replies_.size(), 1);
        QCOMPARE(replies_.first().message, "系统维护"_s);
        QVERIFY(demo_.requests(action).size() < 5);
    }

    void abandonsTheEarlierSearch()
    {
        demo_.hold(action, 2);
        start(shot({2025, 9, 1}, {2025, 9, 30}));
        QTRY_COMPARE(demo_.held(), 2);
        start({});
        QTRY_COMPARE(replies_.size(), 1);
        demo_.hold(action, 1);
        start({});
        QTRY_COMPARE(demo_.held(), 3);
        run_->cancel();
        demo_.release();
        start({});
        QTRY_COMPARE(replies_.size(), 2);
    }

    void keepsViewsInAFile()
    {
        const auto read = [](const QString &uid) {
            ViewStore store(uid);
            OrderViews views;
            bool hasRead = false;
            connect(&store, &ViewStore::hasRead, &store, [&](const OrderViews &found) {
                views = found;
                hasRead = true;
            });
            store.read();
            if (!QTest::qWaitFor([&] { return hasRead; }, 20000))
                qFatal("no views");
            return views;
        };
        ViewStore store("../9001"_s);
        const QFileInfo file(store.path());
        QVERIFY(QDir(file.absolutePath()).removeRecursively());
        QCOMPARE(read("../9001"_s).names(), OrderViews().names());

        OrderViews views;
        for (int i = 0; i < 20; ++i) {
            views.addCopy(QString::number(i));
            store.write(views);
        }
        QTRY_COMPARE(read("../9001"_s).current().name, "19"_s);
        QCOMPARE(read("9002"_s).names(), OrderViews().names());

        QFile damaged(store.path());
        QVERIFY(damaged.open(QIODevice::WriteOnly | QIODevice::Truncate));
        damaged.write(R"({"version": 2})");
        damaged.close();
        const LogLines log;
        QCOMPARE(read("../9001"_s).names(), OrderViews().names());
        QCOMPARE(log.count("order views cannot be read"_s), 1);
        QVERIFY(!QFileInfo::exists(store.path()));
        const QStringList aside =
            QDir(file.absolutePath()).entryList({file.fileName() + ".*"_s}, QDir::Files);
        QCOMPARE(aside.size(), 1);
    }

    void looksAtFolders()
    {
        const QTemporaryDir folder;
        writeFile(folder.filePath("a.jpg"_s), "12345");
        writeFile(folder.filePath("原片/b.jpg"_s), "123");
        writeFile(folder.filePath("原片/all/c.jpg"_s), "1");
        QVERIFY(QDir(folder.path()).mkdir("精修片"_s));
        FolderContent content = lookAt(wireForm(folder.path()));
        QCOMPARE(content.state, FolderContent::State::There);
        QStringList parts;
        for (const FolderContent::Part &part : qAsConst(content.parts))
            parts.append("%1:%2:%3"_s.arg(part.name).arg(part.files).arg(part.bytes));
        QCOMPARE(parts, (QStringList{":1:5"_s, "原片:2:4"_s, "精修片:0:0"_s}));
        content = lookAt(wireForm(folder.filePath("gone"_s)));
        QCOMPARE(content.state, FolderContent::State::Missing);
        content = lookAt("..\\photos"_s);
        QCOMPARE(content.state, FolderContent::State::Refused);
    }

    void givesUpOnASilentDisk()
    {
        const QTemporaryDir folder;
        QSemaphore answers;
        QObject context;
        for (int i = 0; i < 2; ++i) // as many looks as one disk has at a time
            onDisk(
                &context, folder.path(), [&answers] { answers.acquire(); }, [] {});
        const FolderContent content = lookAt(wireForm(folder.path()), 50);
        answers.release(2);
        diskPool().waitForDone();
        QCOMPARE(content.state, FolderContent::State::TimedOut);
    }

private:
    static FolderContent lookAt(const QString &path, int limitMs = patienceMs)
    {
        FolderLook look(nullptr, limitMs);
        FolderContent content;
        bool hasFound = false;
        connect(&look, &FolderLook::found, &look, [&](const FolderContent &found) {
            content = found;
            hasFound = true;
        });
        look.look(path);
        if (!QTest::qWaitFor([&] { return hasFound; }, patienceMs))
            qFatal("nothing found");
        return content;
    }
    void start(const BrowserSearch &search)
    {
        run_->start(search, {"101"_s, "7001"_s, "3101"_s}, {"101"_s, {}});
    }

    DemoClient demo_;
    std::unique_ptr<RangeSearch> run_;
    QVector<ServiceReply> replies_;
    OrderListing found_;
    QVector<int> progress_;
};

QTEST_GUILESS_MAIN(TestRangeSearch)
#include "test_rangesearch.moc"
