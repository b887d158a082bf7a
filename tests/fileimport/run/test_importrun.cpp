#include "fileimport/run/filechoice.h"
#include "fileimport/run/importrun.h"
#include "files/contenthash.h"
#include "ledger/ledger.h"
#include "platform/pathform.h"
#include "tasks/background.h"
#include "tests/support/datarows.h"
#include "tests/support/files.h"
#include "tests/support/login.h"
#include "tests/support/text.h"

#include <QDir>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

namespace {

const QString batch = "savepicpath_batch"_s;

} // namespace

/// Imports against the demo service, without a window: what the window would show is collected in
/// "shown", as it would collect it.
class TestImportRun : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        logIn(&demo_);
        card_ = std::make_unique<QTemporaryDir>();
        ledgerFolder_ = std::make_unique<QTemporaryDir>();
        ledger_ = std::make_unique<Ledger>(ledgerFolder_->path());
        ledger_->makeCurrent();
        run_ = std::make_unique<ImportRun>(ImportMode::Originals);
        shown_.clear();
        registered_.clear();
        unregistered_.clear();
        questions_.clear();
        notices_.clear();
        allImported_ = 0;
        connectRun();
    }

    void cleanup()
    {
        demo_.release();
        run_.reset();
        diskPool().waitForDone();
        ledger_.reset();
        ledgerFolder_.reset();
    }

    void importsOneOrderAfterTheOther()
    {
        const ImportOrder first = makeOrder(0, 9);
        const ImportOrder without = makeOrder(1, 0);
        const ImportOrder second = makeOrder(2, 4);
        start({first, without, second});
        QTRY_COMPARE(allImported_, 1);
        QVERIFY(!run_->isBusy());
        QCOMPARE(registered_, (QVector<OrderIdentity>{first.identity(), second.identity()}));
        QCOMPARE(states(first.identity()).count(ImportFile::Imported), 9);
        QVERIFY(shown_[first.identity()].photoState() == PhotoState::Done);
        const QStringList onDisk = filesBelow(platform::toLocalPath(first.importPath));
        QCOMPARE(onDisk.filter("原片/"_s).size(), 7);
        QCOMPARE(onDisk.filter("原始档/"_s).size(), 2);
        // The folder is told when the first file lies there, then once per order what it holds.
        QTRY_COMPARE(requests("saveorderphotopath"_s), 2);
        QCOMPARE(requests(batch), 2);
        const QJsonObject state = demo_.state().value("orders"_s).toArray().at(0).toObject();
        QCOMPARE(state.value("yuanpian"_s).toArray().size(), 7);
        QCOMPARE(state.value("yuanshidang"_s).toArray().size(), 2);
    }

    void anOrderOfAnotherBranchIsRefused()
    {
        const ImportOrder own = makeOrder(0, 1);
        ImportOrder other = makeOrder(2, 1);
        other.branch = "102"_s;
        QSignalSpy refused(run_.get(), &ImportRun::orderRefused);
        start({other, own});
        QTRY_COMPARE(allImported_, 1);
        run_->retry(other, 0, identity_);
        run_->registerAgain(other, identity_);
        QCOMPARE(refused.size(), 3);
        QVERIFY(refused.first().first().toString().endsWith(
            " 属于其他分店，请切换到该分店后重新搜索"_s));
        QVERIFY(!run_->hasLiveTasks());
        QCOMPARE(registered_, QVector<OrderIdentity>{own.identity()});
        QCOMPARE(requests(batch), 1);
        QVERIFY(filesBelow(platform::toLocalPath(other.importPath)).isEmpty());
    }

    void failuresAreCountedAndTheRunGoesOn()
    {
        const ImportOrder first = makeOrder(0, 3);
        const ImportOrder second = makeOrder(2, 1);
        removeSource(first.identity(), 1);
        start({first, second});
        QTRY_COMPARE(allImported_, 1);
        QCOMPARE(states(first.identity()), (QList<int>{1, 2, 1}));
        QCOMPARE(shown_[first.identity()].files.at(1).message,
                 "原文件不存在: %1"_s.arg(sourceOf(first.identity(), 1)));
        QCOMPARE(photoStateText(shown_[first.identity()]), "成功:2, 失败:1"_s);
        QCOMPARE(registered_, (QVector<OrderIdentity>{first.identity(), second.identity()}));
        const QVector<ledger::Copy> told = copies(first.identity()); // newest first
        QCOMPARE(told.size(), 3);
        QCOMPARE(told.at(1).failure, "原文件不存在: %1"_s.arg(sourceOf(first.identity(), 1)));
        QVERIFY(!told.at(1).isFinished());
        for (const int position : {0, 2}) {
            const ledger::Copy &copy = told.at(position);
            QVERIFY(copy.isFinished());
            const ContentReading target = readContent(platform::toLocalPath(copy.target));
            QCOMPARE(copy.target, first.importPath + wireForm("/原片/"_s) +
                                      shown_[first.identity()].files.at(2 - position).targetName());
            QCOMPARE(copy.sourceHash, target.hash);
            QCOMPARE(copy.targetHash, target.hash);
            QCOMPARE(copy.proof, target.proof);
            QCOMPARE(copy.sourceBytes, target.size);
            QCOMPARE(copy.order.number, first.displayNumber());
            QTRY_COMPARE(copies(first.identity()).at(position).registration,
                         ledger::Registration::Done);
        }

        restoreSource(first.identity(), 1);
        start({shown_[first.identity()], shown_[second.identity()]}); // what was left of the first
        QTRY_COMPARE(allImported_, 2);
        QCOMPARE(photoStateText(shown_[first.identity()]), "导入完成"_s);
        QCOMPARE(requests(batch), 3);
        QVERIFY(!run_->start({shown_[first.identity()], shown_[second.identity()]}, identity_));
    }

    void retryOutsideARunRegistersItsOrderAlone()
    {
        const ImportOrder order = makeOrder(0, 3);
        const ImportOrder other = makeOrder(2, 2);
        removeSource(order.identity(), 1);
        removeSource(order.identity(), 2);
        start({order});
        QTRY_COMPARE(allImported_, 1);
        demo_.clearRequests();
        restoreSource(order.identity(), 1);
        restoreSource(order.identity(), 2);

        run_->retry(shown_[order.identity()], 1, identity_);
        QVERIFY(run_->hasLiveTasks());
        run_->retry(shown_[order.identity()], 1, identity_); // pressed twice: one copy
        QTRY_COMPARE(requests(batch), 1);
        QTRY_VERIFY(!run_->isBusy());
        QCOMPARE(photoStateText(shown_[order.identity()]), "成功:2, 失败:1"_s);
        run_->retry(shown_[order.identity()], 2, identity_);
        QTRY_COMPARE(photoStateText(shown_[order.identity()]), "导入完成"_s);
        QTRY_VERIFY(!run_->isBusy());
        QCOMPARE(registered_,
                 (QVector<OrderIdentity>{order.identity(), order.identity(), order.identity()}));
        QCOMPARE(allImported_, 1);
        QCOMPARE(states(other.identity()), (QList<int>{0, 0}));
    }

    void retryWhileItsOrderIsRegisteredRegistersAgain()
    {
        const ImportOrder order = makeOrder(0, 2);
        removeSource(order.identity(), 1);
        demo_.hold(batch);
        start({order});
        QTRY_COMPARE(demo_.held(), 1);
        restoreSource(order.identity(), 1);
        run_->retry(shown_[order.identity()], 1, identity_);
        QTRY_COMPARE(allImported_, 1);
        QTRY_VERIFY(!run_->isBusy());
        QCOMPARE(photoStateText(shown_[order.identity()]), "导入完成"_s);
        const QJsonObject last = demo_.requests(batch).last().toObject();
        QVERIFY(last.value("body"_s).toString().contains(order.id + "_1.jpg"_s));
    }

    void stopLeavesWaitingAndCancelledFiles()
    {
        const ImportOrder order = makeOrder(0, 100);
        start({order});
        const QString folder = platform::toLocalPath(order.importPath);
        // Until a copy is under way that cannot be taken back.
        QTRY_VERIFY(!filesBelow(folder).isEmpty());
        const int seen = states(order.identity()).count(ImportFile::Imported);
        run_->stopAllImports();
        QVERIFY(!run_->isRunning());
        // Four are being copied still: the order stays at work, for other tools too, until they
        // have ended.
        QVERIFY(run_->isAtWork(order.identity()));
        QCOMPARE(ordersatwork::toolAt(order.identity()), "导入原片"_s);
        QVERIFY(ImportRun(ImportMode::Retouched).refusalOf({order}).contains(order.displayName()));
        QCOMPARE(run_->refusalOf({order}), QString());
        QCOMPARE(photoStateText(shown_[order.identity()]), "导入中 %1/100"_s.arg(seen));
        QTRY_VERIFY(!run_->hasLiveTasks());
        QVERIFY(!run_->isAtWork(order.identity()));
        QCOMPARE(ordersatwork::toolAt(order.identity()), QString());
        const QList<int> after = states(order.identity());
        const int imported = after.count(ImportFile::Imported);
        const int failed = after.count(ImportFile::Failed);
        QVERIFY(after.count(ImportFile::Waiting) > 0);
        for (const ImportFile &file : qAsConst(shown_[order.identity()].files)) {
            if (file.state == ImportFile::Failed)
                QCOMPARE(file.message, "任务已取消"_s);
        }
        QCOMPARE(photoStateText(shown_[order.identity()]),
                 "成功:%0, 失败:%1"_s.arg(imported).arg(failed));
        demo_.state(); // a round trip
        QCOMPARE(requests(batch), 0);
        QVERIFY(registered_.isEmpty());
        QCOMPARE(unregistered_.isEmpty(), imported == 0); // what lies there is not forgotten

        start({shown_[order.identity()]});
        QTRY_COMPARE(allImported_, 1);
        QCOMPARE(photoStateText(shown_[order.identity()]), "导入完成"_s);
        QCOMPARE(requests(batch), 1);
        // Each attempt has a row of its own; those of the stop say so.
        int done = 0;
        const QVector<ledger::Copy> told = copies(order.identity());
        for (const ledger::Copy &copy : told) {
            QVERIFY(copy.isFinished() == copy.failure.isEmpty());
            QVERIFY(copy.isFinished() || copy.failure == "任务已取消"_s);
            done += copy.isFinished() ? 1 : 0;
        }
        QCOMPARE(done, 100);
    }

    void stopWhileRegisteringLeavesTheOrderUnregistered()
    {
        const ImportOrder first = makeOrder(0, 2);
        const ImportOrder second = makeOrder(2, 2);
        demo_.hold(batch);
        start({first, second});
        QTRY_COMPARE(demo_.held(), 1);
        run_->stopAllImports();
        demo_.release();
        QVERIFY(!run_->isBusy());
        QCOMPARE(ordersatwork::toolAt(first.identity()), QString());
        QCOMPARE(unregistered_, QVector<OrderIdentity>(1, first.identity()));
        QVERIFY(shown_[first.identity()].photoState() == PhotoState::Failed);
        QCOMPARE(states(second.identity()), (QList<int>{0, 0}));

        // Listed anew, and without a folder of its own, it is registered where its files lie.
        QVector<ImportOrder> listed{shown_[second.identity()], shown_[first.identity()]};
        listed[1].unregistered = false;
        listed[1].files.clear();
        listed[1].importPath.clear();
        run_->keepMarks(&listed);
        QVERIFY(!listed.at(0).unregistered);
        QVERIFY(listed.at(1).unregistered);
        QCOMPARE(run_->unregisteredOrders(), 1);
        QCOMPARE(registrations(first.identity()), "Awaited Awaited"_s);
        // By another window, too.
        run_ = std::make_unique<ImportRun>(ImportMode::Originals);
        connectRun();
        run_->registerAgain(listed.at(1), identity_);
        QTRY_COMPARE(registered_, QVector<OrderIdentity>(1, first.identity()));
        QTRY_COMPARE(registrations(first.identity()), "Done Done"_s);
        QCOMPARE(run_->unregisteredOrders(), 0);
        const QJsonObject again = demo_.requests(batch).last().toObject();
        QVERIFY(again.value("body"_s).toString().contains(first.id + "_1.jpg"_s));
        QVERIFY(!run_->isBusy());
    }

    void failedRegistrations_data()
    {
        QTest::addColumn<QString>("question");
        newRow("drop", "网络不好，是否重新提交？如果取消，会停止导入。");
        newRow("refuse", "不行 是否重新提交?");
    }

    void failedRegistrations()
    {
        QFETCH(QString, question);
        const QString kind = QLatin1String(QTest::currentDataTag());
        const ImportOrder first = makeOrder(0, 2);
        const ImportOrder second = makeOrder(2, 1);
        demo_.misbehave(batch, kind, {{"times"_s, 2}, {"message"_s, "不行"_s}});
        start({first, second});
        QTRY_COMPARE(questions_.size(), 1);
        QCOMPARE(questions_.first(), question);
        run_->answerResubmit(first.identity(), true);
        run_->answerResubmit(first.identity(), false); // to a question that is answered already
        QVERIFY(run_->isRunning());
        QTRY_COMPARE(questions_.size(), 2);
        run_->answerResubmit(first.identity(), true);
        QTRY_COMPARE(allImported_, 1);
        QCOMPARE(registered_, (QVector<OrderIdentity>{first.identity(), second.identity()}));

        demo_.misbehave(batch, kind);
        run_->registerAgain(shown_[first.identity()], identity_);
        QTRY_COMPARE(questions_.size(), 3);
        run_->answerResubmit(first.identity(), false);
        QVERIFY(!run_->isBusy());
        QCOMPARE(unregistered_, QVector<OrderIdentity>(1, first.identity()));
    }

    void aFolderThatGoesAwayFailsTheFilesAndIsNotAnnounced()
    {
        const ImportOrder order = makeOrder(0, 5);
        QVERIFY(QDir(platform::toLocalPath(order.importPath)).removeRecursively());
        start({order});
        for (const bool again : {true, false}) {
            QTRY_COMPARE(questions_.size(), again ? 1 : 2);
            QVERIFY(questions_.last().startsWith("导片目录无法访问: "_s));
            run_->answerResubmit(order.identity(), again);
        }
        QVERIFY(!run_->isBusy());
        QCOMPARE(states(order.identity()).count(ImportFile::Failed), 5);
        QCOMPARE(requests(batch), 0);
        QCOMPARE(unregistered_, QVector<OrderIdentity>(1, order.identity()));
    }

    void aMismatchEndsTheRun()
    {
        const ImportOrder first = makeOrder(0, 4);
        const ImportOrder second = makeOrder(2, 1);
        demo_.misbehave(batch, "missing-fields"_s, {{"fields"_s, QJsonArray{"server_imgnames"_s}}});
        start({first, second});
        QTRY_COMPARE(notices_.size(), 1);
        QVERIFY(notices_.first().contains(first.id + "_1.jpg"_s));
        QVERIFY(!run_->isBusy());
        QCOMPARE(states(second.identity()), QList<int>{0});
        QCOMPARE(allImported_, 0);

        // What the service has not got is not forgotten: the next start takes it up.
        QCOMPARE(photoStateText(shown_[first.identity()]), "成功:1, 失败:3"_s);
        QCOMPARE(states(first.identity()), (QList<int>{2, 2, 2, 1}));
        QCOMPARE(shown_[first.identity()].files.first().message, "服务端未收到"_s);
        QTRY_COMPARE(registrations(first.identity()), "Done Awaited Awaited Awaited"_s);
        start({shown_[first.identity()], shown_[second.identity()]});
        QTRY_COMPARE(allImported_, 1);
        QCOMPARE(states(first.identity()), (QList<int>{1, 1, 1, 1}));
    }

    /// The disk is full, or the ledger was switched off.
    void importsWithoutTheLedger()
    {
        ledger_ = std::make_unique<Ledger>(writeFile(card_->filePath("no folder"_s)));
        ledger_->makeCurrent();
        const ImportOrder order = makeOrder(0, 3);
        start({order});
        QTRY_COMPARE(allImported_, 1);
        QCOMPARE(photoStateText(shown_[order.identity()]), "导入完成"_s);
        QVERIFY(copies(order.identity()).isEmpty());
    }

private:
    void connectRun()
    {
        connect(run_.get(), &ImportRun::fileChanged, this,
                [this](const OrderIdentity &orderId, const ImportFile &file) {
                    ImportFile &own = shown_[orderId].files[file.fileIndex];
                    own.state = file.state;
                    own.message = file.message;
                });
        connect(run_.get(), &ImportRun::filesChanged, this,
                [this](const OrderIdentity &orderId, const QVector<ImportFile> &files) {
                    shown_[orderId].files = files;
                });
        connect(run_.get(), &ImportRun::orderActivityChanged, this,
                [this](const OrderIdentity &orderId, bool importing) {
                    shown_[orderId].importing = importing;
                });
        connect(run_.get(), &ImportRun::orderRegistered, this,
                [this](const OrderIdentity &orderId) {
                    registered_ += orderId;
                    shown_[orderId].unregistered = false;
                });
        connect(run_.get(), &ImportRun::orderLeftUnregistered, this,
                [this](const OrderIdentity &orderId) {
                    unregistered_ += orderId;
                    shown_[orderId].unregistered = true;
                });
        connect(run_.get(), &ImportRun::resubmitNeeded, this,
                [this](const OrderIdentity &, const QString &question) { questions_ += question; });
        connect(run_.get(), &ImportRun::mismatchFound, this,
                [this](const OrderIdentity &, const BoxText &notice) { notices_ += notice.shown; });
        connect(run_.get(), &ImportRun::allImported, this, [this] { ++allImported_; });
    }

    QVector<ledger::Copy> copies(const OrderIdentity &orderId) const
    {
        return ledger_->answer(
            [&orderId](const LedgerReader &reader) { return reader.copiesOfOrder(orderId); });
    }

    /// Of the order's copies, newest first.
    QString registrations(const OrderIdentity &orderId) const
    {
        static const char *const names[] = {"NotWanted", "Awaited", "Done", "Dismissed"};
        QStringList told;
        const QVector<ledger::Copy> all = copies(orderId);
        for (const ledger::Copy &copy : all)
            told += QLatin1String(names[int(copy.registration)]);
        return told.join(QLatin1Char(' '));
    }

    /// An order of the demo studio with \a count readable files.
    ImportOrder makeOrder(int number, int count)
    {
        const QJsonArray known = demo_.state().value("orders"_s).toArray();
        const auto field = [studios = known.at(number).toObject()](const char *name) {
            return studios.value(QLatin1String(name)).toString();
        };
        ImportOrder order;
        order.branch = identity_.shopId;
        order.id = field("id");
        order.orderPhotoId = field("order_photo_id");
        order.orderPayForKey = field("orderpayforkey");
        order.serviceTimes = field("servicetimes");
        order.importPath = wireForm(demo_.share() + "/test/"_s + order.id);
        ChoiceRequest request;
        request.importPath = order.importPath;
        request.orderIndex = number;
        for (int index = 0; index < count; ++index) {
            const QString name =
                "%1_%2.%3"_s.arg(order.id).arg(index).arg(index % 4 == 3 ? "cr2"_s : "jpg"_s);
            request.paths += writeFile(card_->filePath(name), QByteArray(1000 + index, 'p'));
        }
        order.files = prepareChoice(request).files;
        shown_.insert(order.identity(), order);
        return order;
    }

    void start(const QVector<ImportOrder> &orders) { QVERIFY(run_->start(orders, identity_)); }

    void removeSource(const OrderIdentity &orderId, int index)
    {
        QVERIFY(QFile::rename(sourceOf(orderId, index), sourceOf(orderId, index) + ".away"_s));
    }

    void restoreSource(const OrderIdentity &orderId, int index)
    {
        QVERIFY(QFile::rename(sourceOf(orderId, index) + ".away"_s, sourceOf(orderId, index)));
    }

    QString sourceOf(const OrderIdentity &orderId, int index)
    {
        return shown_[orderId].files[index].sourcePath;
    }

    QList<int> states(const OrderIdentity &orderId)
    {
        QList<int> states;
        for (const ImportFile &file : qAsConst(shown_[orderId].files))
            states.append(file.state);
        return states;
    }

    int requests(const QString &action) { return demo_.requests(action).size(); }

    DemoClient demo_;
    orderqueries::Identity identity_{"101"_s, "7001"_s, "3101"_s};
    std::unique_ptr<QTemporaryDir> card_;
    std::unique_ptr<QTemporaryDir> ledgerFolder_;
    std::unique_ptr<Ledger> ledger_;
    std::unique_ptr<ImportRun> run_;
    QHash<OrderIdentity, ImportOrder> shown_;
    QVector<OrderIdentity> registered_;
    QVector<OrderIdentity> unregistered_;
    QStringList questions_;
    QStringList notices_;
    int allImported_ = 0;
};

QTEST_GUILESS_MAIN(TestImportRun)
#include "test_importrun.moc"
