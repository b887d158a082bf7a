#include "photoimport/run/photoimportrun.h"
#include "photoimport/run/tfimportthreadmanager.h"
#include "tasks/background.h"
#include "tests/support/datarows.h"
#include "tests/support/files.h"
#include "tests/support/loglines.h"
#include "tests/support/patience.h"
#include "tests/support/smalldisk.h"
#include "tests/support/text.h"

#include <QDir>
#include <QSemaphore>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

#include <algorithm>
#include <atomic>
#include <stdexcept>

/// The pool, mostly with work that the test holds back and lets go.
class TestImportPool : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        folder_ = std::make_unique<QTemporaryDir>();
        log_ = std::make_unique<LogLines>();
        begun_ = 0;
        gate_.tryAcquire(gate_.available());
        const auto work = [this](const QString &, const QString &, JobFailure *,
                                 WrittenOriginal *) {
            ++begun_;
            gate_.acquire();
            return true;
        };
        makePool({work, work, {}});
    }

    void cleanup()
    {
        gate_.release(10000);
        pool_.reset();
        diskPool().waitForDone();
        log_.reset();
    }

    void splitsAnOrderAndKeepsIndexes()
    {
        QVERIFY(!pool_->isBusy());
        pool_->startImportOrder(makeOrder("A"_s, 10));
        QVERIFY(pool_->isQueuedOrActive({{}, "A"_s, {}}));
        QTRY_COMPARE(begun_, 4);
        QCOMPARE(logged("添加导片任务: A (包含 10 张照片)"), 1);
        gate_.release(10);
        QTRY_COMPARE(pool_->orders.size(), 1);
        QCOMPARE(begun_, 10);
        QCOMPARE(indexes(), "A:0 A:1 A:2 A:3 A:4 A:5 A:6 A:7 A:8 A:9"_s);
        QCOMPARE(pool_->photos.first().at(1).toString(),
                 "A_%1.jpg"_s.arg(pool_->photos.first().at(2).toInt()));
        QCOMPARE(progressOf("A"_s), "1/10 2/10 3/10 4/10 5/10 6/10 7/10 8/10 9/10 10/10"_s);
        QCOMPARE(pool_->orders.first().mid(1), (QVariantList{true, QString()}));
        QVERIFY(!pool_->isQueuedOrActive({{}, "A"_s, {}}));
        QTRY_COMPARE(pool_->all.size(), 1);
        QVERIFY(!pool_->isBusy());
        QVERIFY(pool_->finishedTasks() >= 3); // four, four and two
        QCOMPARE(pool_->orders.size(), 1);
        QCOMPARE(logged("所有导片任务完成"), 1);
        QVERIFY(logged("assignNextTask - 9") >= 3);
    }

    void ordersOneAfterTheOther()
    {
        gate_.release(100);
        OrderInfo composed = makeOrder("C"_s, 1);
        composed.importPath.clear();
        composed.importPublicPath = wireForm(folder_->path());
        pool_->startImportAllOrders({makeOrder("A"_s, 6), makeOrder("B"_s, 0), composed});
        QTRY_COMPARE(pool_->all.size(), 1);
        QCOMPARE(progressOf("B"_s), "0/0"_s);
        QCOMPARE(pool_->orders.size(), 3);
        QCOMPARE(pool_->photos.size(), 7);
        QCOMPARE(logged("添加批量导片任务: 3 个订单"), 1);
        QCOMPARE(logged("startImportAllOrders---111"), 1);
        QVERIFY(QDir(folder_->filePath("1970/01/01-C/原始档"_s)).exists());
    }

    void theSameOrderTwice()
    {
        pool_->startImportOrder(makeOrder("A"_s, 3));
        pool_->startImportOrder(makeOrder("A"_s, 3));
        QTRY_COMPARE(begun_, 4);
        gate_.release(100);
        QTRY_COMPARE(pool_->all.size(), 1);
        QCOMPARE(pool_->orders.size(), 2);
        QStringList steps = progressOf("A"_s).split(QLatin1Char(' '));
        steps.sort();
        QCOMPARE(steps.join(QLatin1Char(' ')), "1/3 1/3 2/3 2/3 3/3 3/3"_s);
    }

    void workerCounts()
    {
        QCOMPARE(pool_->maxWorkers(), 4);
        for (const auto &[wanted, got] : {std::pair(0, 1), {40, 16}, {16, 16}, {-5, 1}, {7, 7}}) {
            pool_->setMaxWorkers(wanted);
            QCOMPARE(pool_->maxWorkers(), got);
        }
        QCOMPARE(log_->all().filter("初始化 "_s).size(), 5);
        pool_->startImportOrder(makeOrder("A"_s, 20));
        QTRY_COMPARE(begun_, 7);

        // A change drops all work.
        pool_->ended.clear();
        pool_->setMaxWorkers(2);
        QVERIFY(!pool_->isBusy());
        QVERIFY(pool_->hasLiveWorkers()); // seven still hold their photos, and are not waited for
        gate_.release(100);
        QTRY_COMPARE(pool_->ended.size(), 1);
        QVERIFY(!pool_->hasLiveWorkers());
        QCOMPARE(pool_->photos.size(), 0);
        pool_->startImportOrder(makeOrder("B"_s, 3));
        QTRY_COMPARE(pool_->orders.size(), 1);
        QCOMPARE(begun_, 10);
    }

    void stopsAtOnceAndStartsAgain()
    {
        pool_->startImportOrder(makeOrder("A"_s, 10));
        pool_->startImportOrder(makeOrder("B"_s, 10));
        QTRY_COMPARE(begun_, 4);
        pool_->stopAllImport();
        QVERIFY(!pool_->isBusy());
        QVERIFY(pool_->hasLiveWorkers());
        QCOMPARE(logged("停止所有导片任务"), 1);

        pool_->startImportOrder(makeOrder("C"_s, 2));
        QTRY_COMPARE(begun_, 6); // by fresh workers, while the old ones still hold their photos
        QCOMPARE(logged("检测到已停止的工作线程，重新初始化"), 1);
        gate_.release(100);
        QTRY_COMPARE(pool_->all.size(), 1);
        QCOMPARE(indexes(), "C:0 C:1"_s);
        QTRY_COMPARE(pool_->ended.size(), 1);
        QCOMPARE(begun_, 6);
        QCOMPARE(logged("导片工作线程 0 结束"), 1);

        // A start that is stopped before its paths are checked.
        pool_->startImportOrder(makeOrder("D"_s, 2));
        pool_->stopAllImport();
        pool_->startImportOrder(makeOrder("E"_s, 1));
        QTRY_COMPARE(pool_->all.size(), 2);
        QCOMPARE(indexes(), "C:0 C:1 E:0"_s);
    }

    void stoppedByWhoHearsOfAPhoto()
    {
        gate_.release(100);
        connect(pool_.get(), &Manager::photoImported, pool_.get(), &Manager::stopAllImport);
        pool_->startImportOrder(makeOrder("A"_s, 1));
        QTRY_COMPARE(pool_->ended.size(), 1);
        QCOMPARE(pool_->photos.size(), 1);
        QCOMPARE(pool_->progress.size() + pool_->orders.size() + pool_->all.size(), 0);
    }

    void pauses()
    {
        pool_->startImportOrder(makeOrder("A"_s, 6));
        QTRY_COMPARE(begun_, 4);
        pool_->pauseAllImport();
        QVERIFY(pool_->isPaused());
        log_->clear();
        gate_.release(100);
        QTRY_COMPARE(pool_->photos.size(), 4);
        // The pass that the reports ask for comes, and deals nothing.
        QTRY_VERIFY(logged("assignNextTask - 1") > 0);
        QCOMPARE(logged("assignNextTask - 2"), 0);
        QCOMPARE(begun_, 4);
        pool_->resumeAllImport();
        QTRY_COMPARE(pool_->orders.size(), 1);
        QCOMPARE(begun_, 6);
        QCOMPARE(logged("恢复所有导片任务"), 1);
    }

    void failures_data()
    {
        addColumns<QString, QString>({"kind", "error"});
        newRow("original", "all", "原图拷贝失败");
        newRow("trial video", "试拍视频", "试拍视频拷贝失败");
        newRow("retouched video", "精修视频", "精修视频拷贝失败");
        newRow("variant", "190", "图片压缩失败 (目标尺寸: 300)");
        newRow("size of the service's own", "555", "图片压缩失败 (目标尺寸: 300)");
        newRow("no folder", "blocked", "无法创建目标目录: %1");
        newRow("exception", "std", "处理异常: no memory");
        newRow("other exception", "other", "未知异常");
    }

    void failures()
    {
        QFETCH(QString, kind);
        QFETCH(QString, error);
        const auto copy = [](const QString &, const QString &, JobFailure *, WrittenOriginal *) {
            return false;
        };
        makePool({copy, copy, [kind](const QString &, const QString &, int, JobFailure *) {
                      if (kind == "std"_s)
                          throw std::runtime_error("no memory");
                      if (kind == "other"_s)
                          throw 1;
                      return false;
                  }});
        OrderInfo order = makeOrder("A"_s, 2, kind);
        order.photos[0].targetSize = "300"_s;
        order.photos[1].enabled = 0;
        const QString target = folder_->filePath("A/"_s + kind);
        if (kind == "blocked"_s)
            writeFile(target);
        importWhole(order);
        QStringList texts = errors();
        texts.sort();
        QCOMPARE(texts, (QStringList{QString(), error.replace("%1"_s, target)}));
        QCOMPARE(QDir(target).exists(), kind != "blocked"_s);
    }

    void refusedStartsKeepTheirOrder()
    {
        gate_.release(100);
        pool_->setMaxWorkers(1);
        // A start out of the slot that hears of a refusal takes its turn, too.
        connect(pool_.get(), &Manager::pathErrorOccurred, pool_.get(),
                [this] { pool_->startImportOrder(makeOrder("C"_s, 1)); });
        pool_->startImportOrder(makeOrder("A"_s, 1));
        pool_->startImportOrder(OrderInfo());
        pool_->startImportAllOrders({makeOrder("X"_s, 1), OrderInfo()});
        pool_->startImportOrder(makeOrder("B"_s, 1));
        QTRY_COMPARE(pool_->orders.size(), 4);
        QString order;
        for (const QList<QVariant> &report : qAsConst(pool_->orders))
            order += report.at(0).value<OrderInfo>().id;
        QCOMPARE(order, "ABCC"_s);
        QCOMPARE(pool_->pathErrors.size(), 2);
        QCOMPARE(pool_->pathErrors.last().at(0).toString(),
                 "订单 - 的导入路径和公共导入路径都为空"_s);
        QCOMPARE(logged("路径验证失败: 订单 - 的导入路径和公共导入路径都为空, 路径: "), 1);
        QCOMPARE(logged("批量导片路径验证失败: 订单 - 的导入路径和公共导入路径都为空, 路径: "), 1);
    }

    void aRunLeavesNothingWaiting()
    {
        PhotoOrder good;
        good.info = makeOrder("B"_s, 0);
        tforderlistmodel orders;
        orders.setOrders({PhotoOrder(), good});
        PhotoImportRun run(&orders);
        // The other order joins before the run hears of the refusal.
        connect(run.pool(), &Manager::pathErrorOccurred, &run, [&run] { run.start({1}, {}, {}); });
        // Pausing as the last photo ends must not leave the next run waiting.
        connect(run.pool(), &Manager::orderImportCompleted, run.pool(), &Manager::pauseAllImport);
        QSignalSpy refused(&run, &PhotoImportRun::refused);
        QSignalSpy ended(&run, &PhotoImportRun::ended);
        run.start({0}, {}, {});
        QTRY_COMPARE(ended.size(), 1);
        QCOMPARE(refused.size(), 1);
        for (const int row : {0, 1})
            QVERIFY(!run.isQueuedOrActive(row));
        QVERIFY(!run.pool()->isPaused());
    }

    void busyWorkersAreWaitedFor()
    {
        pool_->setMaxWorkers(1);
        pool_->startImportOrder(makeOrder("A"_s, 2));
        QTRY_COMPARE(begun_, 1);
        QTRY_VERIFY(logged("检测到可能的线程状态异常，尝试重新分配任务") > 0);
        QVERIFY(logged("assignNextTask - 4-没有空闲线程，500ms后重试") > 0);
        QVERIFY(logged("工作线程 0 空闲状态: 忙碌") > 0);
        log_->clear();
        for (int request = 0; request < 1000; ++request)
            pool_->resumeAllImport();
        gate_.release(100);
        QTRY_COMPARE(pool_->orders.size(), 1);
        QVERIFY(logged("assignNextTask - 1") < 500); // timers do not pile up
    }

    void videos()
    {
        const QString source = writeFile(folder_->filePath("a.mp4"_s), "one");
        const QString target = writeFile(folder_->filePath("b.mp4"_s), "an earlier file");
        const QString kept = writeFile(folder_->filePath("c.mp4"_s));
        QVERIFY(QFile::setPermissions(kept, QFileDevice::ReadOwner));
        QVERIFY(tfimportworker::copyFile(source, target));
        QCOMPARE(readFile(target), QByteArray("one"));
        QStringList reasons;
        for (const auto &[from, to] :
             {std::pair(source, kept), {folder_->path() + "/x"_s, target}}) {
            JobFailure failure;
            QVERIFY(!tfimportworker::copyFile(from, to, &failure));
            reasons += failure.reason;
        }
        QCOMPARE(reasons, (QStringList{"无法删除旧文件"_s, "源文件不存在"_s}));
        QCOMPARE(logged("源文件不存在：") + logged(" 无法删除旧文件："), 2);
        QCOMPARE(readFile(kept) + readFile(target), QByteArray("one"));
    }

    void theTargetFillsUp()
    {
        const SmallDisk disk(folder_->filePath("A"_s), 1);
        if (!disk.isMounted())
            QSKIP("no rights to mount a file system");
        QStringList paths;
        for (const char *name : {"1.mp4", "2.mp4", "3.mp4"})
            paths << writeFile(folder_->filePath(QLatin1String(name)), QByteArray(600000, 'x'));
        PhotoOrder order;
        order.info = makeOrder("A"_s, 0);
        order.files(PhotoMode::RetouchedVideos) =
            describeChoice({paths, false, PhotoMode::RetouchedVideos, {}}).files;
        tforderlistmodel orders;
        orders.setPhotoMode(PhotoMode::RetouchedVideos);
        orders.setOrders({order});
        PhotoImportRun run(&orders);
        run.pool()->setMaxWorkers(1);
        QSignalSpy ended(&run, &PhotoImportRun::ended);
        run.start({0}, {}, {});
        QTRY_COMPARE(ended.size(), 1);
        const auto outcome = ended.first().first().value<RunOutcome>();
        QCOMPARE(outcome.reasons, (QMap<QString, int>{{"目标磁盘空间不足"_s, 2}}));
        QCOMPARE(orders.files(0).last().failureText(), "精修视频拷贝失败"_s);
        QCOMPARE(filesBelow(folder_->filePath("A"_s)), QStringList("精修视频/1.mp4"_s));
    }

    void ordersOfOthersAreNotTouched()
    {
        PhotoOrder order;
        order.info = makeOrder("A"_s, 0);
        order.info.branch = "8"_s;
        order.files(PhotoMode::Photos) =
            describeChoice({{folder_->filePath("gone.jpg"_s)}, false, PhotoMode::Photos, {}}).files;
        tforderlistmodel orders;
        orders.setOrders({order});
        PhotoImportRun run(&orders);
        QStringList told;
        connect(&run, &PhotoImportRun::refused, this,
                [&told](const QString &message) { told.append(message); });
        const auto isRefused = [&](const char *shop) {
            const orderqueries::Identity identity{QLatin1String(shop), {}, {}};
            return run.start({0}, {}, identity) && !run.isBusy() &&
                   !run.registerAgain(0, {0}, identity) && !run.isBusy();
        };
        const QString otherBranch = orderqueries::otherBranchText(order.displayName());
        QVERIFY(isRefused("9"));
        QCOMPARE(told, (QStringList{otherBranch, otherBranch}));
        told.clear();
        {
            const ordersatwork::Claim deletion({order.identity()}, "批量删除"_s);
            QVERIFY(isRefused("8"));
            const QString inHand = ordersatwork::refusal("A"_s, "批量删除"_s);
            QCOMPARE(told, (QStringList{inHand, inHand}));
        }
        // What is being registered is in hand, until the last answer.
        for (const bool cancelled : {true, false}) {
            QVERIFY(run.registerAgain(0, {0}, {"8"_s, {}, {}}));
            QCOMPARE(ordersatwork::toolAt(order.identity()), photorules::toolName());
            if (cancelled)
                run.cancelRegistrations();
            QCOMPARE(run.isBusy(), !cancelled);
            QTRY_VERIFY(ordersatwork::toolAt(order.identity()).isEmpty());
        }
        QVERIFY(orders.files(0).first().failureText().startsWith("登记失败: 导入后的文件不存在"_s));
        QVERIFY(logged("导入照片路径失败，不执行upImportPhotoInfo") > 0);
    }

private:
    using Manager = tfimportthreadmanager;
    struct Pool : Manager
    {
        using Manager::Manager;
        QSignalSpy photos{this, &Manager::photoImported};
        QSignalSpy progress{this, &Manager::orderProgressUpdated};
        QSignalSpy orders{this, &Manager::orderImportCompleted};
        QSignalSpy all{this, &Manager::allTasksCompleted};
        QSignalSpy ended{this, &Manager::workersEnded};
        QSignalSpy pathErrors{this, &Manager::pathErrorOccurred};
    };

    void importWhole(const OrderInfo &order)
    {
        pool_->startImportOrder(order);
        QTRY_COMPARE(pool_->orders.size(), 1);
    }

    void makePool(const PhotoOperations &operations) { pool_ = std::make_unique<Pool>(operations); }

    OrderInfo makeOrder(const QString &name, int photos, const QString &kind = {}) const
    {
        OrderInfo order;
        order.id = order.orderPayForKey = name;
        order.importPath = wireForm(folder_->filePath(name));
        for (int index = 0; index < photos; ++index) {
            PhotoInfo photo;
            photo.fileName = "%1_%2.jpg"_s.arg(name).arg(index);
            photo.kind = kind.isEmpty() ? photorules::originalKind : kind;
            order.photos.append(photo);
        }
        return order;
    }

    /// "order:index" of every report, sorted.
    QString indexes() const
    {
        QStringList reported;
        for (const QList<QVariant> &report : qAsConst(pool_->photos))
            reported << report.at(0).value<OrderInfo>().id + ":"_s + report.at(2).toString();
        reported.sort();
        return reported.join(QLatin1Char(' '));
    }

    QString progressOf(const QString &orderId) const
    {
        QStringList steps;
        for (const QList<QVariant> &step : qAsConst(pool_->progress)) {
            if (step.at(0).value<OrderInfo>().id == orderId)
                steps << step.at(1).toString() + "/"_s + step.at(2).toString();
        }
        return steps.join(QLatin1Char(' '));
    }

    QStringList errors() const
    {
        QStringList texts;
        for (const QList<QVariant> &report : qAsConst(pool_->photos)) {
            if (report.at(3).toBool() != report.at(4).toString().isEmpty())
                qFatal("success and message disagree");
            texts << report.at(4).toString();
        }
        return texts;
    }

    int logged(const char *line) const { return log_->count(QString::fromUtf8(line)); }

    std::unique_ptr<QTemporaryDir> folder_;
    std::unique_ptr<LogLines> log_;
    std::unique_ptr<Pool> pool_;
    QSemaphore gate_;
    std::atomic<int> begun_{0};
};

QTEST_GUILESS_MAIN(TestImportPool)
#include "test_importpool.moc"
