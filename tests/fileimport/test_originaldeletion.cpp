#include "app/context/accountcontext.h"
#include "fileimport/originaldeletion.h"
#include "fileimport/originalrequests.h"
#include "net/background.h"
#include "tests/fileimport/registering.h"
#include "tests/support/democlient.h"

#include <QJsonDocument>
#include <QSemaphore>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

using namespace originalrequests;

namespace {

QStringList logged;

void keepLog(QtMsgType, const QMessageLogContext &, const QString &text)
{
    static QMutex mutex;
    const QMutexLocker lock(&mutex);
    logged.append(text);
}

QJsonObject json(const char *text)
{
    return QJsonDocument::fromJson(QByteArray(text).replace('\'', '"')).object();
}

} // namespace

/// Requests, the safety of paths, and deleting from service and disk.
class TestOriginalDeletion : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { qRegisterMetaType<OriginalDeletionSummary>(); }
    void init();
    void cleanup();
    void bodiesAndTitle();
    void listings_data();
    void listings();
    void paths_data();
    void paths();
    void oneFile_data();
    void oneFile();
    void mixedOutcomes();
    void refusalsTouchNothing_data();
    void refusalsTouchNothing();
    void unsafePathsAreNeverSubmitted();
    void stopLeavesWhatHasNotBegun();
    void destroyedInMidDeletion();

private:
    QString wire(const QString &name) const
    {
        return folder_->filePath(name).replace(QLatin1Char('/'), QLatin1Char('\\'));
    }
    /// Makes the file and registers it for the order; its entry as the service lists it.
    PhotoEntry registered(const QString &name);
    void start(OriginalDeletion *deletion, const QVector<PhotoEntry> &entries);

    DemoClient demo_;
    OrderMap order_;
    std::unique_ptr<QTemporaryDir> folder_;
};

void TestOriginalDeletion::init()
{
    demo_.reset();
    AccountContext::uid = QStringLiteral("9001");
    folder_ = std::make_unique<QTemporaryDir>();
    order_ = firstOrder();
    logged.clear();
}

void TestOriginalDeletion::cleanup()
{
    qInstallMessageHandler(nullptr);
    demo_.release();
    diskPool()->waitForDone();
}

PhotoEntry TestOriginalDeletion::registered(const QString &name)
{
    registerFile(folder_->filePath(name), {});
    const auto entries = listedEntries();
    demo_.clearRequests();
    for (const PhotoEntry &entry : entries) {
        if (entry.imgName == name)
            return entry;
    }
    qFatal("not on the books");
}

void TestOriginalDeletion::start(OriginalDeletion *deletion, const QVector<PhotoEntry> &entries)
{
    QVERIFY(deletion->start(order_, entries));
    QVERIFY(!deletion->start(order_, entries)); // one at a time
}

void TestOriginalDeletion::bodiesAndTitle()
{
    ImportOrder order;
    order.orderPhotoId = QStringLiteral("8&1");
    order.orderPayForKey = QStringLiteral("TS1");
    order.serviceTimes = QStringLiteral("2");
    order.wname = QStringLiteral("%3");
    order.mname = QStringLiteral("周");
    order.role1Name = QStringLiteral("程");
    order.delyp = QStringLiteral("0");
    const OrderMap map = orderMap(order, QStringLiteral("101"));
    QCOMPARE(title(map), QStringLiteral("已导入 TS1-2 %3 周 程"));
    QVERIFY(!mayDelete(map));
    QVERIFY(mayDelete(order_));
    QCOMPARE(map.size(), 12);
    QCOMPARE(listBody(map, QStringLiteral("17")),
             QByteArray("shopid=101&order_photo_id=8%261&timestamp=17"));
    QCOMPARE(deleteBody(map, {QStringLiteral("3"), QStringLiteral("4")}, QStringLiteral("17")),
             QByteArray("shopid=101&order_photo_id=8%261&ids=3,4&timestamp=17"));
}

void TestOriginalDeletion::listings_data()
{
    QTest::addColumn<QByteArray>("reply");
    QTest::addColumn<QString>("entries"); // name/id/variants/kind, one after the other
    QTest::addColumn<bool>("stale");
    const auto row = [](const char *name, const char *reply, const char *entries, bool stale) {
        QTest::newRow(name) << QByteArray(reply) << QString::fromUtf8(entries) << stale;
    };
    row("both kinds",
        "{'timestamp':'17','images_yuanpian':[{'img_name':'a.jpg','id':5,'localpath':'x',"
        "'localpath_90':'','localpath_1920':'v'}],"
        "'images_yuanshidang':[{'img_name':'b.cr2','id':'6','localpath_90':'u'}]}",
        "b.cr2/6/u/raw a.jpg/5/v/photo", false);
    row("timestamp as a number", "{'timestamp':17}", "", false);
    row("no timestamp", "{}", "", false);
    row("an earlier one", "{'timestamp':'16'}", "", true);
    row("wrong types", "{'timestamp':[],'images_yuanpian':{},'images_yuanshidang':[1,{}]}",
        "///raw", false);
}

void TestOriginalDeletion::listings()
{
    QFETCH(QByteArray, reply);
    const QJsonObject object = json(reply.constData());
    QStringList entries;
    const auto read = readListing(object);
    for (const PhotoEntry &entry : read) {
        const bool raw = entry.kind == PhotoEntry::Kind::RawFile;
        QCOMPARE(entry.icon.isEmpty(), !raw);
        entries.append(QStringList({entry.imgName, entry.id, entry.variants.join(QLatin1Char('+')),
                                    raw ? QStringLiteral("raw") : QStringLiteral("photo")})
                           .join(QLatin1Char('/')));
    }
    QTEST(entries.join(QLatin1Char(' ')), "entries");
    QTEST(isStale(object, QStringLiteral("17")), "stale");
}

void TestOriginalDeletion::paths_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<bool>("fine");
#ifdef Q_OS_WIN
    const QString root = QStringLiteral("D:\\");
#else
    const QString root = QStringLiteral("\\");
#endif
    const auto row = [](const QString &path, bool fine) {
        QTest::newRow(qPrintable(path)) << path << fine;
    };
    row(root + QStringLiteral("studio\\a.jpg"), true);
    row(root + QStringLiteral("studio/a.jpg"), true);
    row(root + QStringLiteral("studio\\..a.jpg"), true);
    row(QStringLiteral("\\\\nas\\photos\\a.jpg"), true);
    row(QStringLiteral("\\\\nas\\photos"), false);
    row(QStringLiteral("\\\\nas\\photos\\"), false);
    row(root, false);
    row(root + QStringLiteral("studio\\"), false);
    row(root + QStringLiteral("studio\\..\\a.jpg"), false);
    row(root + QStringLiteral("studio/../a.jpg"), false);
    row(root + QStringLiteral("studio\\.. \\a.jpg"), false);
    row(QStringLiteral("studio\\a.jpg"), false);
    row(QStringLiteral("D:a.jpg"), false);
    row(QString(), false);
}

void TestOriginalDeletion::paths()
{
    QFETCH(QString, path);
    QTEST(namesOneFile(path), "fine");
}

void TestOriginalDeletion::oneFile_data()
{
    QTest::addColumn<QString>("main"); // name in the folder
    QTest::addColumn<QStringList>("variants");
    QTest::addColumn<bool>("stopped");
    QTest::addColumn<bool>("success");
    QTest::addColumn<QString>("message"); // with "@" for the folder
    const QString fine = QStringLiteral("fine");
    const QString gone = QStringLiteral("gone");
    const auto row = [](const char *name, const QString &main, const QStringList &variants,
                        bool stopped, bool success, const char *message) {
        QTest::newRow(name) << main << variants << stopped << success << QString::fromUtf8(message);
    };
    row("removed", fine, {}, false, true, "");
    row("stopped before", fine, {}, true, false, "任务已中止，不执行删除");
    row("no path", {}, {}, false, false, "a.jpg 文件路径为空");
    row("missing", gone, {}, false, false, "a.jpg 文件不存在");
    row("read-only", QStringLiteral("protected"), {}, false, false, "a.jpg 没有删除权限");
    row("a folder", QStringLiteral("folder"), {}, false, false, "a.jpg 没有删除权限");
    row("in use", QStringLiteral("locked"), {}, false, false, "a.jpg 删除失败:in use");
    row("variants", fine, {QStringLiteral("small"), gone, QStringLiteral("locked")}, false, true,
        "@/gone 文件不存在\n@/locked 删除失败 in use");
    row("variants of a missing one", gone, {QStringLiteral("small")}, false, false,
        "a.jpg 文件不存在");
    row("variant that leads elsewhere", fine,
        {QStringLiteral("..\\fine"), QStringLiteral("folder"), QStringLiteral("protected")}, false,
        true, "@/../fine 的路径错误\n@/folder 的路径错误\n@/protected 没有删除权限");
}

void TestOriginalDeletion::oneFile()
{
    QFETCH(QString, main);
    QFETCH(QStringList, variants);
    QFETCH(QString, message);
    for (const char *name : {"fine", "small", "protected", "locked"}) {
        QFile file(folder_->filePath(QLatin1String(name)));
        QVERIFY(file.open(QIODevice::WriteOnly));
    }
    QVERIFY(QDir(folder_->path()).mkdir(QStringLiteral("folder")));
    QVERIFY(
        QFile::setPermissions(folder_->filePath(QStringLiteral("protected")), QFile::ReadOwner));
    PhotoEntry photo;
    photo.imgName = QStringLiteral("a.jpg");
    photo.localPath = main.isEmpty() ? QString() : wire(main);
    for (const QString &variant : qAsConst(variants))
        photo.variants.append(wire(variant));
    QFETCH(bool, stopped);
    const auto before = QDir(folder_->path()).entryList();

    DeleteFileRunnable task(photo, std::make_shared<std::atomic<bool>>(stopped),
                            [](const QString &path, QString *error) {
                                if (!path.endsWith(QLatin1String("locked")))
                                    return DeleteFileRunnable::removeFile(path, error);
                                *error = QStringLiteral("in use");
                                return false;
                            });
    DeleteFileResult result;
    connect(
        &task, &DeleteFileRunnable::deleteFinished, &task,
        [&](const DeleteFileResult &told) { result = told; }, Qt::DirectConnection);
    task.run();
    QCOMPARE(result.message, message.replace(QLatin1Char('@'), folder_->path()));
    QTEST(result.success, "success");
    QCOMPARE(result.photo.imgName, photo.imgName);
    QStringList expected = before;
    if (result.success)
        expected.removeOne(main);
    if (variants.contains(QStringLiteral("small")))
        expected.removeOne(QStringLiteral("small"));
    QCOMPARE(QDir(folder_->path()).entryList(), expected);
}

void TestOriginalDeletion::mixedOutcomes()
{
    QVector<PhotoEntry> entries;
    for (const char *name : {"a.jpg", "b.jpg", "c.jpg", "d.jpg", "e.jpg"})
        entries.append(registered(QLatin1String(name)));
    QVERIFY(QFile::remove(folder_->filePath(QStringLiteral("b.jpg"))));
    QVERIFY(QFile::setPermissions(folder_->filePath(QStringLiteral("c.jpg")), QFile::ReadOwner));
    entries[3].variants = QStringList(wire(QStringLiteral("90")));
    entries[4].localPath = folder_->path(); // a folder: not even submitted

    OriginalDeletion deletion;
    QSignalSpy progress(&deletion, &OriginalDeletion::progressed);
    QSignalSpy finished(&deletion, &OriginalDeletion::finished);
    qInstallMessageHandler(keepLog);
    start(&deletion, entries);
    QTRY_COMPARE(finished.size(), 1);
    qInstallMessageHandler(nullptr);
    const auto summary = finished.first().first().value<OriginalDeletionSummary>();
    QCOMPARE(summary.succeeded, 2);
    QCOMPARE(summary.failed, 2);
    QStringList messages = summary.messages;
    QCOMPARE(messages.takeFirst(), QStringLiteral("e.jpg 的路径错误"));
    messages.sort();
    QCOMPARE(messages, (QStringList{folder_->path() + QStringLiteral("/90 文件不存在"),
                                    QStringLiteral("b.jpg 文件不存在"),
                                    QStringLiteral("c.jpg 没有删除权限")}));
    QCOMPARE(progress.first(), (QList<QVariant>{0, 4}));
    QCOMPARE(progress.last(), (QList<QVariant>{4, 4}));
    QVERIFY(!QFile::exists(folder_->filePath(QStringLiteral("a.jpg"))));
    QVERIFY(QFile::exists(folder_->filePath(QStringLiteral("e.jpg"))));
    const QJsonObject request = demo_.requests(QStringLiteral("delete_pics")).first().toObject();
    QVERIFY(request.value(QStringLiteral("body"))
                .toString()
                .startsWith(QStringLiteral("shopid=101&order_photo_id=800001&ids=%1,%2,%3,%4&"
                                           "timestamp=")
                                .arg(entries[0].id, entries[1].id, entries[2].id, entries[3].id)));
    for (const char *line : {"开始删除 4 个文件", "删除完成 - 成功: 2  失败: 2"})
        QVERIFY2(logged.contains(QString::fromUtf8(line)), line);
}

void TestOriginalDeletion::refusalsTouchNothing_data()
{
    QTest::addColumn<int>("outcome");
    const auto row = [](const char *kind, ServiceReply::Outcome outcome) {
        QTest::newRow(kind) << int(outcome);
    };
    row("refuse", ServiceReply::Outcome::Refused);
    row("code-number", ServiceReply::Outcome::Refused);
    row("http-error", ServiceReply::Outcome::NoAnswer);
    row("html", ServiceReply::Outcome::NoAnswer);
}

void TestOriginalDeletion::refusalsTouchNothing()
{
    const QVector<PhotoEntry> entries{registered(QStringLiteral("a.jpg"))};
    demo_.misbehave(QStringLiteral("delete_pics"), QLatin1String(QTest::currentDataTag()));
    OriginalDeletion deletion;
    int outcome = -1;
    connect(&deletion, &OriginalDeletion::submitFailed, this,
            [&](const ServiceReply &reply) { outcome = int(reply.outcome); });
    QSignalSpy finished(&deletion, &OriginalDeletion::finished);
    start(&deletion, entries);
    QTRY_VERIFY(!deletion.isBusy());
    QTEST(outcome, "outcome");
    QCOMPARE(finished.size(), 0);
    QVERIFY(QFile::exists(folder_->filePath(QStringLiteral("a.jpg"))));
}

void TestOriginalDeletion::unsafePathsAreNeverSubmitted()
{
    PhotoEntry entry = registered(QStringLiteral("a.jpg"));
    entry.localPath = wire(QStringLiteral("..\\a.jpg"));
    OriginalDeletion deletion;
    QSignalSpy finished(&deletion, &OriginalDeletion::finished);
    start(&deletion, {entry});
    QTRY_COMPARE(finished.size(), 1);
    QCOMPARE(finished.first().first().value<OriginalDeletionSummary>().messages,
             QStringList(QStringLiteral("a.jpg 的路径错误")));
    QVERIFY(demo_.requests(QStringLiteral("delete_pics")).isEmpty());
}

void TestOriginalDeletion::stopLeavesWhatHasNotBegun()
{
    QVector<PhotoEntry> entries;
    for (int number = 0; number < 12; ++number)
        entries.append(registered(QStringLiteral("%1.jpg").arg(number)));
    QSemaphore begun;
    QSemaphore mayGoOn;
    OriginalDeletion deletion([&](const QString &path, QString *error) {
        begun.release();
        mayGoOn.acquire();
        return DeleteFileRunnable::removeFile(path, error);
    });
    QSignalSpy ended(&deletion, &OriginalDeletion::ended);
    start(&deletion, entries);
    QTRY_COMPARE(begun.available(), 4); // no more at once
    deletion.stop();
    QVERIFY(deletion.isBusy());
    mayGoOn.release(entries.size());
    QTRY_COMPARE(ended.size(), 1);
    QCOMPARE(QDir(folder_->path()).entryList(QDir::Files).size(), 8);

    // In mid-request nothing is waited for.
    demo_.misbehave(QStringLiteral("delete_pics"), QStringLiteral("hold"));
    start(&deletion, {registered(QStringLiteral("x.jpg"))});
    QTRY_COMPARE(demo_.state().value(QStringLiteral("held")).toInt(), 1);
    deletion.stop();
    QCOMPARE(ended.size(), 2);
    demo_.release();
    QTRY_COMPARE(demo_.state().value(QStringLiteral("held")).toInt(), 0);
    QVERIFY(QFile::exists(folder_->filePath(QStringLiteral("x.jpg"))));
}

void TestOriginalDeletion::destroyedInMidDeletion()
{
    QVector<PhotoEntry> entries;
    for (int number = 0; number < 12; ++number)
        entries.append(registered(QStringLiteral("%1.jpg").arg(number)));
    auto begun = std::make_shared<QSemaphore>();
    auto deletion =
        std::make_unique<OriginalDeletion>([begun](const QString &path, QString *error) {
            begun->release();
            return DeleteFileRunnable::removeFile(path, error);
        });
    start(deletion.get(), entries);
    QTRY_VERIFY(begun->available() > 0);
    qInstallMessageHandler(keepLog);
    deletion.reset();
    qInstallMessageHandler(nullptr);
    QVERIFY(logged.contains(QStringLiteral("开始清理线程池...")));
    QVERIFY(logged.contains(QStringLiteral("线程池已安全清理")));
}

QTEST_GUILESS_MAIN(TestOriginalDeletion)
#include "test_originaldeletion.moc"
