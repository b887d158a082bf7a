#include "net/background.h"
#include "photoimport/photorules.h"
#include "photoimport/tfimportthreadmanager.h"
#include "tests/support/loglines.h"
#include "tests/support/pictures.h"
#include "tests/support/smalldisk.h"

#include <QDir>
#include <QDirIterator>
#include <QImageReader>
#include <QSemaphore>
#include <QSet>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

#include <atomic>
#include <stdexcept>

namespace {

QString wireForm(QString path)
{
    return path.replace(QLatin1Char('/'), QLatin1Char('\\'));
}

} // namespace

/// For what takes seconds even on a machine with nothing else to do.
#define TRY_LONG(actual, expected) QTRY_COMPARE_WITH_TIMEOUT(actual, expected, 60000)

/// The pool, mostly with work that the test holds back and lets go.
class TestImportPool : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void splitsAnOrderAndKeepsIndexes();
    void ordersOneAfterTheOther();
    void theSameOrderTwice();
    void workerCounts();
    void aChangeOfTheWorkerCountDropsAllWork();
    void stopsAtOnceAndStartsAgain();
    void stoppedByWhoHearsOfAPhoto();
    void pauses();
    void failures_data();
    void failures();
    void pathErrors();
    void refusedStartsKeepTheirOrder();
    void timersDoNotPileUp();
    void reportsBusyWorkers();
    void realPhotos();
    void videos();
    void theTargetVanishes();
    void theTargetFillsUp();

private:
    using Manager = tfimportthreadmanager;

    void makePool(const PhotoOperations &operations);
    OrderInfo makeOrder(const QString &name, int photos, const QString &kind = {}) const;
    /// Jobs for files with this content below a folder of the test.
    OrderInfo realOrder(const QString &name, const QVector<QByteArray> &files, int mode) const;
    QStringList indexes() const;
    QString progressOf(const QString &orderId) const;
    QStringList errors() const;
    int logged(const char *line) const { return log_->count(QString::fromUtf8(line)); }

    std::unique_ptr<QTemporaryDir> folder_;
    std::unique_ptr<LogLines> log_;
    std::unique_ptr<Manager> pool_;
    std::unique_ptr<QSignalSpy> photos_;
    std::unique_ptr<QSignalSpy> progress_;
    std::unique_ptr<QSignalSpy> orders_;
    std::unique_ptr<QSignalSpy> all_;
    std::unique_ptr<QSignalSpy> ended_;
    std::unique_ptr<QSignalSpy> pathErrors_;
    QSemaphore gate_;
    std::atomic<int> begun_{0};
};

void TestImportPool::init()
{
    folder_ = std::make_unique<QTemporaryDir>();
    log_ = std::make_unique<LogLines>();
    begun_ = 0;
    gate_.tryAcquire(gate_.available());
    const auto work = [this](const QString &, const QString &) {
        ++begun_;
        gate_.acquire();
        return true;
    };
    makePool({work, work, {}});
}

void TestImportPool::cleanup()
{
    gate_.release(10000);
    pool_.reset();
    diskPool()->waitForDone();
    log_.reset();
}

void TestImportPool::makePool(const PhotoOperations &operations)
{
    pool_ = operations.copyOriginal ? std::make_unique<Manager>(operations)
                                    : std::make_unique<Manager>();
    photos_ = std::make_unique<QSignalSpy>(pool_.get(), &Manager::photoImported);
    progress_ = std::make_unique<QSignalSpy>(pool_.get(), &Manager::orderProgressUpdated);
    orders_ = std::make_unique<QSignalSpy>(pool_.get(), &Manager::orderImportCompleted);
    all_ = std::make_unique<QSignalSpy>(pool_.get(), &Manager::allTasksCompleted);
    ended_ = std::make_unique<QSignalSpy>(pool_.get(), &Manager::workersEnded);
    pathErrors_ = std::make_unique<QSignalSpy>(pool_.get(), &Manager::pathErrorOccurred);
}

OrderInfo TestImportPool::makeOrder(const QString &name, int photos, const QString &kind) const
{
    OrderInfo order;
    order.id = order.orderPayForKey = name;
    order.importPath = wireForm(folder_->filePath(name));
    for (int index = 0; index < photos; ++index) {
        PhotoInfo photo;
        photo.fileName = QStringLiteral("%1_%2.jpg").arg(name).arg(index);
        photo.kind = kind.isEmpty() ? photorules::originalKind : kind;
        order.photos.append(photo);
    }
    return order;
}

OrderInfo TestImportPool::realOrder(const QString &name, const QVector<QByteArray> &files,
                                    int mode) const
{
    OrderInfo order = makeOrder(name, 0);
    order.smallSize = 30;
    order.middleSize = 60;
    order.bigSize = 120;
    QStringList paths;
    for (const QByteArray &bytes : files) {
        QFile file(folder_->filePath(QStringLiteral("%1_%2.jpg").arg(name).arg(paths.size())));
        if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
            qFatal("fixture not written");
        paths << file.fileName();
    }
    order.photos = photorules::jobsFor(order, paths, mode);
    return order;
}

/// "order:index" of every report, sorted.
QStringList TestImportPool::indexes() const
{
    QStringList reported;
    for (const QList<QVariant> &report : qAsConst(*photos_)) {
        reported << QStringLiteral("%1:%2")
                        .arg(report.at(0).value<OrderInfo>().id)
                        .arg(report.at(2).toInt());
    }
    reported.sort();
    return reported;
}

QString TestImportPool::progressOf(const QString &orderId) const
{
    QStringList steps;
    for (const QList<QVariant> &step : qAsConst(*progress_)) {
        if (step.at(0).value<OrderInfo>().id == orderId)
            steps << QStringLiteral("%1/%2").arg(step.at(1).toInt()).arg(step.at(2).toInt());
    }
    return steps.join(QLatin1Char(' '));
}

QStringList TestImportPool::errors() const
{
    QStringList texts;
    for (const QList<QVariant> &report : qAsConst(*photos_)) {
        if (report.at(3).toBool() != report.at(4).toString().isEmpty())
            qFatal("success and message disagree");
        texts << report.at(4).toString();
    }
    return texts;
}

void TestImportPool::splitsAnOrderAndKeepsIndexes()
{
    QVERIFY(!pool_->isBusy());
    pool_->startImportOrder(makeOrder(QStringLiteral("A"), 10));
    QVERIFY(pool_->isQueuedOrActive(QStringLiteral("A")));
    QTRY_COMPARE(begun_, 4);
    QCOMPARE(logged("添加导片任务: A (包含 10 张照片)"), 1);
    gate_.release(10);
    TRY_LONG(orders_->size(), 1);
    QCOMPARE(begun_, 10);
    QStringList expected;
    for (int index = 0; index < 10; ++index)
        expected << QStringLiteral("A:%1").arg(index);
    QCOMPARE(indexes(), expected);
    QCOMPARE(photos_->first().at(1).toString(),
             QStringLiteral("A_%1.jpg").arg(photos_->first().at(2).toInt()));
    QCOMPARE(progressOf(QStringLiteral("A")),
             QStringLiteral("1/10 2/10 3/10 4/10 5/10 6/10 7/10 8/10 9/10 10/10"));
    QCOMPARE(orders_->first().at(1).toBool(), true);
    QCOMPARE(orders_->first().at(2).toString(), QString());
    QVERIFY(!pool_->isQueuedOrActive(QStringLiteral("A")));
    TRY_LONG(all_->size(), 1);
    QVERIFY(!pool_->isBusy());
    QVERIFY(pool_->finishedTasks() >= 3); // four, four and two
    QCOMPARE(orders_->size(), 1);
    QCOMPARE(logged("所有导片任务完成"), 1);
    QVERIFY(logged("assignNextTask - 9") >= 3);
}

void TestImportPool::ordersOneAfterTheOther()
{
    gate_.release(100);
    OrderInfo composed = makeOrder(QStringLiteral("C"), 1);
    composed.importPath.clear();
    composed.importPublicPath = wireForm(folder_->path());
    pool_->startImportAllOrders(
        {makeOrder(QStringLiteral("A"), 6), makeOrder(QStringLiteral("B"), 0), composed});
    TRY_LONG(all_->size(), 1);
    QCOMPARE(progressOf(QStringLiteral("B")), QStringLiteral("0/0"));
    QCOMPARE(orders_->size(), 3);
    QCOMPARE(photos_->size(), 7);
    QCOMPARE(logged("添加批量导片任务: 3 个订单"), 1);
    QCOMPARE(logged("startImportAllOrders---111"), 1);
    QVERIFY(QDir(folder_->filePath(QStringLiteral("1970/01/01-C/原始档"))).exists());
    QSet<QString> folders;
    for (const QList<QVariant> &report : qAsConst(*photos_))
        folders << report.at(0).value<OrderInfo>().importPath;
    QVERIFY(folders.contains(wireForm(folder_->filePath(QStringLiteral("1970/01/01-C")))));
}

void TestImportPool::theSameOrderTwice()
{
    pool_->startImportOrder(makeOrder(QStringLiteral("A"), 3));
    pool_->startImportOrder(makeOrder(QStringLiteral("A"), 3));
    QTRY_COMPARE(begun_, 4);
    gate_.release(100);
    TRY_LONG(all_->size(), 1);
    QCOMPARE(orders_->size(), 2);
    QStringList steps = progressOf(QStringLiteral("A")).split(QLatin1Char(' '));
    steps.sort();
    QCOMPARE(steps.join(QLatin1Char(' ')), QStringLiteral("1/3 1/3 2/3 2/3 3/3 3/3"));
}

void TestImportPool::workerCounts()
{
    QCOMPARE(pool_->maxWorkers(), 4);
    for (const auto &[wanted, got] : {std::pair(0, 1), {40, 16}, {16, 16}, {-5, 1}, {7, 7}}) {
        pool_->setMaxWorkers(wanted);
        QCOMPARE(pool_->maxWorkers(), got);
    }
    QCOMPARE(log_->all().filter(QStringLiteral("初始化 ")).join(QLatin1Char(' ')),
             QStringLiteral("初始化 4 个导片工作线程 初始化 1 个导片工作线程 "
                            "初始化 16 个导片工作线程 初始化 1 个导片工作线程 "
                            "初始化 7 个导片工作线程"));
    pool_->startImportOrder(makeOrder(QStringLiteral("A"), 20));
    QTRY_COMPARE(begun_, 7);
}

void TestImportPool::aChangeOfTheWorkerCountDropsAllWork()
{
    pool_->startImportOrder(makeOrder(QStringLiteral("A"), 10));
    QTRY_COMPARE(begun_, 4);
    pool_->setMaxWorkers(2);
    QVERIFY(!pool_->isBusy());
    QVERIFY(pool_->hasLiveWorkers()); // four still hold their photos, and are not waited for
    gate_.release(100);
    TRY_LONG(ended_->size(), 1);
    QVERIFY(!pool_->hasLiveWorkers());
    QCOMPARE(photos_->size(), 0);
    pool_->startImportOrder(makeOrder(QStringLiteral("B"), 3));
    TRY_LONG(orders_->size(), 1);
    QCOMPARE(begun_, 7);
}

void TestImportPool::stopsAtOnceAndStartsAgain()
{
    pool_->startImportOrder(makeOrder(QStringLiteral("A"), 10));
    pool_->startImportOrder(makeOrder(QStringLiteral("B"), 10));
    QTRY_COMPARE(begun_, 4);
    pool_->stopAllImport();
    QVERIFY(!pool_->isBusy());
    QVERIFY(pool_->hasLiveWorkers());
    QCOMPARE(logged("停止所有导片任务"), 1);

    pool_->startImportOrder(makeOrder(QStringLiteral("C"), 2));
    QTRY_COMPARE(begun_, 6); // by fresh workers, while the old ones still hold their photos
    QCOMPARE(logged("检测到已停止的工作线程，重新初始化"), 1);
    gate_.release(100);
    TRY_LONG(all_->size(), 1);
    QCOMPARE(indexes().join(QLatin1Char(' ')), QStringLiteral("C:0 C:1"));
    TRY_LONG(ended_->size(), 1);
    QCOMPARE(begun_, 6);
    QCOMPARE(logged("导片工作线程 0 结束"), 1);

    // A start that is stopped before its paths are checked.
    pool_->startImportOrder(makeOrder(QStringLiteral("D"), 2));
    pool_->stopAllImport();
    pool_->startImportOrder(makeOrder(QStringLiteral("E"), 1));
    TRY_LONG(all_->size(), 2);
    QCOMPARE(indexes().join(QLatin1Char(' ')), QStringLiteral("C:0 C:1 E:0"));
}

void TestImportPool::stoppedByWhoHearsOfAPhoto()
{
    gate_.release(100);
    connect(pool_.get(), &Manager::photoImported, pool_.get(), &Manager::stopAllImport);
    pool_->startImportOrder(makeOrder(QStringLiteral("A"), 1));
    TRY_LONG(ended_->size(), 1);
    QCOMPARE(photos_->size(), 1);
    QCOMPARE(progress_->size() + orders_->size() + all_->size(), 0);
}

void TestImportPool::pauses()
{
    pool_->startImportOrder(makeOrder(QStringLiteral("A"), 6));
    QTRY_COMPARE(begun_, 4);
    pool_->pauseAllImport();
    QVERIFY(pool_->isPaused());
    log_->clear();
    gate_.release(100);
    QTRY_COMPARE(photos_->size(), 4);
    // The pass that the reports ask for comes, and deals nothing.
    QTRY_VERIFY(logged("assignNextTask - 1") > 0);
    QCOMPARE(logged("assignNextTask - 2"), 0);
    QCOMPARE(begun_, 4);
    pool_->resumeAllImport();
    TRY_LONG(orders_->size(), 1);
    QCOMPARE(begun_, 6);
    QCOMPARE(logged("恢复所有导片任务"), 1);
}

void TestImportPool::failures_data()
{
    QTest::addColumn<QString>("kind");
    QTest::addColumn<QString>("error");
    QTest::newRow("original") << QStringLiteral("all") << QStringLiteral("原图拷贝失败");
    QTest::newRow("trial video") << QStringLiteral("试拍视频")
                                 << QStringLiteral("试拍视频拷贝失败");
    QTest::newRow("retouched video")
        << QStringLiteral("精修视频") << QStringLiteral("精修视频拷贝失败");
    QTest::newRow("variant") << QStringLiteral("190")
                             << QStringLiteral("图片压缩失败 (目标尺寸: 300)");
    QTest::newRow("size of the service's own")
        << QStringLiteral("555") << QStringLiteral("图片压缩失败 (目标尺寸: 300)");
    QTest::newRow("exception") << QStringLiteral("std") << QStringLiteral("处理异常: no memory");
    QTest::newRow("other exception") << QStringLiteral("other") << QStringLiteral("未知异常");
}

void TestImportPool::failures()
{
    QFETCH(QString, kind);
    QFETCH(QString, error);
    const auto copy = [](const QString &, const QString &) { return false; };
    makePool({copy, copy, [](const QString &, const QString &target, int) {
                  if (target.contains(QLatin1String("/std/")))
                      throw std::runtime_error("no memory");
                  if (target.contains(QLatin1String("/other/")))
                      throw 1;
                  return false;
              }});
    OrderInfo order = makeOrder(QStringLiteral("A"), 2, kind);
    order.photos[0].targetSize = QStringLiteral("300");
    order.photos[1].enabled = 0;
    pool_->startImportOrder(order);
    TRY_LONG(orders_->size(), 1);
    QStringList texts = errors();
    texts.sort();
    QCOMPARE(texts, (QStringList{QString(), error}));
    QVERIFY(QDir(folder_->filePath(QStringLiteral("A/") + kind)).exists());
}

void TestImportPool::pathErrors()
{
    const OrderInfo nowhere;
    pool_->startImportOrder(nowhere);
    pool_->startImportAllOrders({makeOrder(QStringLiteral("A"), 1), nowhere});
    QTRY_COMPARE(pathErrors_->size(), 2);
    QCOMPARE(pathErrors_->last().at(0).toString(),
             QStringLiteral("订单 - 的导入路径和公共导入路径都为空"));
    QCOMPARE(logged("路径验证失败: 订单 - 的导入路径和公共导入路径都为空, 路径: "), 1);
    QCOMPARE(logged("批量导片路径验证失败: 订单 - 的导入路径和公共导入路径都为空, 路径: "), 1);
    QVERIFY(!pool_->isBusy());
    QCOMPARE(begun_, 0);
}

void TestImportPool::refusedStartsKeepTheirOrder()
{
    gate_.release(100);
    pool_->setMaxWorkers(1);
    // A start out of the slot that hears of a refusal takes its turn, too.
    connect(pool_.get(), &Manager::pathErrorOccurred, pool_.get(),
            [this] { pool_->startImportOrder(makeOrder(QStringLiteral("C"), 1)); });
    pool_->startImportOrder(makeOrder(QStringLiteral("A"), 1));
    pool_->startImportOrder(OrderInfo());
    pool_->startImportOrder(makeOrder(QStringLiteral("B"), 1));
    TRY_LONG(orders_->size(), 3);
    QStringList order;
    for (const QList<QVariant> &report : qAsConst(*orders_))
        order << report.at(0).value<OrderInfo>().id;
    QCOMPARE(order.join(QString()), QStringLiteral("ABC"));
}

void TestImportPool::timersDoNotPileUp()
{
    pool_->startImportOrder(makeOrder(QStringLiteral("A"), 5));
    QTRY_COMPARE(begun_, 4);
    log_->clear();
    for (int request = 0; request < 1000; ++request)
        pool_->resumeAllImport();
    gate_.release(100);
    TRY_LONG(orders_->size(), 1);
    QVERIFY2(logged("assignNextTask - 1") < 20,
             qUtf8Printable(QString::number(logged("assignNextTask - 1"))));
}

void TestImportPool::reportsBusyWorkers()
{
    pool_->setMaxWorkers(1);
    pool_->startImportOrder(makeOrder(QStringLiteral("A"), 2));
    QTRY_COMPARE(begun_, 1);
    QTRY_VERIFY(logged("检测到可能的线程状态异常，尝试重新分配任务") > 0);
    QVERIFY(logged("assignNextTask - 4-没有空闲线程，500ms后重试") > 0);
    QVERIFY(logged("工作线程 0 空闲状态: 忙碌") > 0);
}

void TestImportPool::realPhotos()
{
    makePool({});
    QVector<QByteArray> files;
    for (int orientation = 1; orientation <= 8; ++orientation)
        files << jpegOf(cornerPicture({96, 64}), orientation);
    const OrderInfo order = realOrder(QStringLiteral("A"), files, photorules::Photos);
    pool_->startImportOrder(order);
    TRY_LONG(all_->size(), 1);
    QCOMPARE(errors().count(QString()), 32);
    for (int index = 0; index < 8; ++index) {
        const auto sizeIn = [index, this](const QString &folder) {
            return QImageReader(
                       folder_->filePath(QStringLiteral("A/%1/A_%2.jpg").arg(folder).arg(index)))
                .size();
        };
        const auto turned = [index](const QSize &size) {
            return index < 4 ? size : size.transposed();
        };
        QCOMPARE(sizeIn(QStringLiteral("all")), turned({96, 64}));
        QCOMPARE(sizeIn(QStringLiteral("90")), turned({30, 20}));
        QCOMPARE(sizeIn(QStringLiteral("190")), turned({60, 40}));
        QCOMPARE(sizeIn(QStringLiteral("1920")), turned({120, 80}));
    }
    QDirIterator hidden(folder_->path(), QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
    while (hidden.hasNext())
        QVERIFY2(!hidden.next().contains(QLatin1String(".part")),
                 qUtf8Printable(hidden.filePath()));
}

void TestImportPool::videos()
{
    makePool({});
    const OrderInfo order =
        realOrder(QStringLiteral("A"), {"one", "two", "three"}, photorules::TrialVideos);
    const QString folder = folder_->filePath(QStringLiteral("A/试拍视频/"));
    QVERIFY(QDir().mkpath(folder));
    QFile earlier(folder + QStringLiteral("A_0.jpg"));
    QVERIFY(earlier.open(QIODevice::WriteOnly));
    QFile kept(folder + QStringLiteral("A_1.jpg"));
    QVERIFY(kept.open(QIODevice::WriteOnly));
    QVERIFY(kept.setPermissions(QFileDevice::ReadOwner));
    QVERIFY(QFile::remove(folder_->filePath(QStringLiteral("A_2.jpg"))));
    pool_->startImportOrder(order);
    TRY_LONG(orders_->size(), 1);
    QCOMPARE(errors().count(QStringLiteral("试拍视频拷贝失败")), 2);
    QCOMPARE(logged("源文件不存在："), 1);
    QCOMPARE(logged(" 无法删除旧文件："), 1);
    QFile copy(folder + QStringLiteral("A_0.jpg"));
    QVERIFY(copy.open(QIODevice::ReadOnly));
    QCOMPARE(copy.readAll(), QByteArray("one"));
    QCOMPARE(kept.size(), 0);
}

void TestImportPool::theTargetVanishes()
{
    makePool({});
    pool_->setMaxWorkers(1);
    const QByteArray photo = jpegOf(cornerPicture({96, 64}), 1);
    connect(pool_.get(), &Manager::photoImported, this,
            [this](const OrderInfo &, const QString &, int photoIndex) {
                if (photoIndex != 1)
                    return;
                QVERIFY(QDir(folder_->filePath(QStringLiteral("A"))).removeRecursively());
                QFile inItsPlace(folder_->filePath(QStringLiteral("A")));
                QVERIFY(inItsPlace.open(QIODevice::WriteOnly));
            });
    pool_->startImportOrder(realOrder(QStringLiteral("A"), {photo, photo}, photorules::Photos));
    TRY_LONG(orders_->size(), 1);
    const QStringList texts = errors();
    QCOMPARE(texts.mid(0, 2), (QStringList{QString(), QString()}));
    QCOMPARE(
        texts.last(),
        QStringLiteral("无法创建目标目录: %1/1920").arg(folder_->filePath(QStringLiteral("A"))));
}

void TestImportPool::theTargetFillsUp()
{
    const SmallDisk disk(folder_->filePath(QStringLiteral("A")), 1);
    if (!disk.isMounted())
        QSKIP("no rights to mount a file system");
    makePool({});
    pool_->startImportOrder(realOrder(QStringLiteral("A"),
                                      QVector<QByteArray>(3, QByteArray(500000, 'x')),
                                      photorules::RetouchedVideos));
    TRY_LONG(orders_->size(), 1);
    const int copied = errors().count(QString());
    QVERIFY(copied < 3);
    QCOMPARE(errors().count(QStringLiteral("精修视频拷贝失败")), 3 - copied);
    const auto files = QDir(folder_->filePath(QStringLiteral("A/精修视频")))
                           .entryInfoList(QDir::Files | QDir::Hidden);
    QCOMPARE(files.size(), copied);
    for (const QFileInfo &file : files)
        QCOMPARE(file.size(), 500000);
}

QTEST_GUILESS_MAIN(TestImportPool)
#include "test_importpool.moc"
