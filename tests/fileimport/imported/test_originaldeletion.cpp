#include "fileimport/imported/leftphotos.h"
#include "fileimport/imported/originaldeletion.h"
#include "fileimport/imported/originalrequests.h"
#include "ledger/ledger.h"
#include "net/orderfiles.h"
#include "tasks/background.h"
#include "tests/fileimport/run/registering.h"
#include "tests/support/datarows.h"
#include "tests/support/files.h"
#include "tests/support/login.h"
#include "tests/support/loglines.h"
#include "tests/support/text.h"

#include <QJsonDocument>
#include <QSemaphore>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

#include <algorithm>

using namespace originalrequests;

namespace {

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

    void init()
    {
        logIn(&demo_);
        folder_ = std::make_unique<QTemporaryDir>();
        order_ = firstOrder(folder_->path());
    }

    void cleanup()
    {
        demo_.release();
        diskPool().waitForDone();
    }

    void bodiesAndTitle()
    {
        ImportOrder order;
        order.branch = "101"_s;
        order.orderPhotoId = "8&1"_s;
        order.orderPayForKey = "TS1"_s;
        order.serviceTimes = "2"_s;
        order.wname = "%3"_s;
        order.mname = "周"_s;
        order.role1Name = "程"_s;
        order.delyp = "0"_s;
        const OrderMap map = orderMap(order);
        QCOMPARE(title(map), "已导入 TS1-2 %3 周 程"_s);
        QVERIFY(!mayDelete(map));
        QVERIFY(mayDelete(order_));
        QCOMPARE(map.size(), 14);
        QCOMPARE(listBody(map, "17"_s), QByteArray("shopid=101&order_photo_id=8%261&timestamp=17"));
        QCOMPARE(deleteBody(map, {"3"_s, "4"_s}, "17"_s),
                 QByteArray("shopid=101&order_photo_id=8%261&ids=3,4&timestamp=17"));
    }

    void listings_data()
    {
        // entries: name/id/variants/kind, one after the other
        addColumns<QByteArray, QString, bool>({"reply", "entries", "stale"});
        const auto row = [](const char *name, const char *reply, const char *entries, bool stale) {
            newRow(name, QByteArray(reply), QString::fromUtf8(entries), stale);
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

    void listings()
    {
        QFETCH(QByteArray, reply);
        const QJsonObject object = json(reply.constData());
        QStringList entries;
        const auto read = readListing(object);
        for (const PhotoEntry &entry : read) {
            const bool raw = entry.kind == PhotoEntry::Kind::RawFile;
            QCOMPARE(entry.icon.isEmpty(), !raw);
            entries.append(
                QStringList({entry.imgName, entry.id, entry.variants.join(QLatin1Char('+')),
                             raw ? "raw"_s : "photo"_s})
                    .join(QLatin1Char('/')));
        }
        QTEST(entries.join(QLatin1Char(' ')), "entries");
        QTEST(orderfiles::isStale(object, "17"_s), "stale");
    }

    void places_data()
    {
        addColumns<QString, bool>({"path", "held"});
        const QString root = "\\\\nas\\photos\\"_s;
        const QStringList held{root + "2024\\own\\a.jpg"_s, root + "2024/OWN/原片/a.jpg"_s,
                               root + "2024\\own\\..a.jpg"_s, root + "old\\a.jpg"_s};
        const QStringList others{root + "2024\\other\\a.jpg"_s,
                                 root + "2024\\own\\nested\\a.jpg"_s,
                                 root + "2024\\own\\..\\old\\a.jpg"_s,
                                 root + "2024\\own\\.. \\a.jpg"_s,
                                 root + "2024\\own"_s + "\\"_s,
                                 root,
                                 "\\\\nas\\photo\\a.jpg"_s,
                                 "\\\\nas\\a.jpg"_s,
                                 "/home/studio/a.jpg"_s,
                                 "C:\\Users\\a.jpg"_s,
                                 "2024\\own\\a.jpg"_s,
                                 "D:a.jpg"_s,
                                 QString()};
        const QStringList all = held + others;
        for (const QString &path : all)
            newRow(qPrintable(path), path, held.contains(path));
    }

    void places()
    {
        QFETCH(QString, path);
        QVector<ImportOrder> listed(4);
        const QString root = "\\\\nas\\photos"_s;
        const QStringList folders{"\\2024\\own"_s, "/2024/Other/"_s, "\\2024\\own\\nested"_s};
        for (int index = 0; index < listed.size(); ++index) {
            listed[index].id = "1"_s; // services of one order
            listed[index].orderPhotoId = QString::number(index);
            if (index < folders.size())
                listed[index].importPath = root + folders.at(index);
        }
        listed[0].importPublicPath = root;
        QTEST(photoPlaceOf(orderMap(listed[0]), listed).holds(path), "held");
        // Without a folder of its own, an order has no photos.
        QVERIFY(!photoPlaceOf(orderMap(listed[3]), listed).holds(path));
    }

    void oneFile_data()
    {
        // main: name in the folder; message: with "@" for the folder
        addColumns<QString, QStringList, bool, bool, QString>(
            {"main", "variants", "stopped", "success", "message"});
        const QString fine = "fine"_s;
        const QString gone = "gone"_s;
        const auto row = [](const char *name, const QString &main, const QStringList &variants,
                            bool stopped, bool success, const char *message) {
            newRow(name, main, variants, stopped, success, QString::fromUtf8(message));
        };
        row("removed", fine, {}, false, true, "");
        row("stopped before", fine, {}, true, false, "任务已中止，不执行删除");
        row("no path", {}, {}, false, false, "a.jpg 文件路径为空");
        row("missing", gone, {}, false, false, "a.jpg 文件不存在");
        row("read-only", "protected"_s, {}, false, false, "a.jpg 没有删除权限");
        row("a folder", "folder"_s, {}, false, false, "a.jpg 的路径错误");
        row("another order's", "../a.jpg"_s, {"small"_s}, false, false, "a.jpg 的路径错误");
        row("in use", "locked"_s, {}, false, false, "a.jpg 删除失败:in use");
        row("variants", fine, {"small"_s, gone, "locked"_s}, false, true,
            "@/gone 文件不存在\n@/locked 删除失败 in use");
        row("variants of a missing one", gone, {"small"_s}, false, false, "a.jpg 文件不存在");
        row("variant that leads elsewhere", fine, {"..\\fine"_s, "folder"_s, "protected"_s}, false,
            true, "@/../fine 的路径错误\n@/folder 的路径错误\n@/protected 没有删除权限");
    }

    void oneFile()
    {
        QFETCH(QString, main);
        QFETCH(QStringList, variants);
        QFETCH(QString, message);
        for (const char *name : {"fine", "small", "protected", "locked"})
            writeFile(folder_->filePath(QLatin1String(name)));
        QVERIFY(QDir(folder_->path()).mkdir("folder"_s));
        QVERIFY(QFile::setPermissions(folder_->filePath("protected"_s), QFile::ReadOwner));
        PhotoEntry photo;
        photo.imgName = "a.jpg"_s;
        photo.localPath = main.isEmpty() ? QString() : wire(main);
        for (const QString &variant : qAsConst(variants))
            photo.variants.append(wire(variant));
        QFETCH(bool, stopped);
        const auto before = QDir(folder_->path()).entryList();

        StopFlag flag;
        if (stopped)
            flag.raise();
        DeleteFileRunnable task(photo, photoPlaceOf(order_, {}), flag,
                                [](const QString &path, QString *error) {
                                    if (!path.endsWith(QLatin1String("locked")))
                                        return DeleteFileRunnable::removeFile(path, error);
                                    *error = "in use"_s;
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
        if (variants.contains("small"_s))
            expected.removeOne("small"_s);
        QCOMPARE(QDir(folder_->path()).entryList(), expected);
    }

    void mixedOutcomes()
    {
        QVector<PhotoEntry> entries;
        for (const char *name : {"a.jpg", "b.jpg", "c.jpg", "d.jpg", "e.jpg"})
            entries.append(registered(QLatin1String(name)));
        QVERIFY(QFile::remove(folder_->filePath("b.jpg"_s)));
        QVERIFY(QFile::setPermissions(folder_->filePath("c.jpg"_s), QFile::ReadOwner));
        entries[3].variants = QStringList(wire("90"_s));
        entries[4].localPath = wire("../e.jpg"_s); // the service forgets it all the same

        QSemaphore othersDone;
        OriginalDeletion deletion([&](const QString &path, QString *error) {
            if (!path.endsWith(QLatin1String("a.jpg")))
                return DeleteFileRunnable::removeFile(path, error);
            othersDone.acquire();
            *error = "in use"_s;
            return false;
        });
        QSignalSpy progress(&deletion, &OriginalDeletion::progressed);
        QSignalSpy finished(&deletion, &OriginalDeletion::finished);
        const LogLines log;
        start(&deletion, entries);
        QTRY_COMPARE(progress.size(), 5);
        othersDone.release();
        QTRY_COMPARE(finished.size(), 1);
        const auto summary = finished.first().first().value<OriginalDeletionSummary>();
        QCOMPARE(summary.succeeded, 1);
        QCOMPARE(summary.failed, 4);
        QCOMPARE(
            leftphotos::lines(summary.left),
            (QStringList{wireForm(folder_->path()), "a.jpg 删除失败:in use"_s, "b.jpg 文件不存在"_s,
                         "c.jpg 没有删除权限"_s, folder_->path() + "/90 文件不存在"_s, wire(".."_s),
                         "e.jpg 的路径错误"_s}));
        QCOMPARE(progress.first(), (QList<QVariant>{0, 5}));
        QCOMPARE(progress.last(), (QList<QVariant>{5, 5}));
        QVERIFY(!QFile::exists(folder_->filePath("d.jpg"_s)));
        QVERIFY(QFile::exists(folder_->filePath("e.jpg"_s)));
        const QJsonObject request = demo_.requests("delete_pics"_s).first().toObject();
        QVERIFY(request.value("body"_s).toString().startsWith(
            "shopid=101&order_photo_id=800001&ids=%1,%2,%3,%4,%5&timestamp="_s.arg(
                entries[0].id, entries[1].id, entries[2].id, entries[3].id, entries[4].id)));
        for (const char *line : {"开始删除 5 个文件", "删除完成 - 成功: 1  失败: 4"})
            QVERIFY2(log.count(QString::fromUtf8(line)) == 1, line);
    }

    void foldersToShow_data()
    {
        addColumns<QStringList, QString, QString>({"paths", "importPath", "folder"});
        const QString own = "\\\\nas\\photos\\own"_s;
        const QString photos = own + "\\原片"_s;
        newRow("in one folder", QStringList{photos + "\\a"_s, photos + "\\b"_s}, own, photos);
        newRow("in two", QStringList{photos + "\\a"_s, own + "\\b"_s}, own, own);
        newRow("elsewhere", QStringList{"\\\\evil\\x\\a"_s}, own, own);
        newRow("nothing says where", QStringList{photos + "\\a"_s}, QString(), QString());
    }

    void foldersToShow()
    {
        QFETCH(QStringList, paths);
        QFETCH(QString, importPath);
        QVector<DeleteFileResult> left(paths.size());
        for (int index = 0; index < paths.size(); ++index)
            left[index].photo.localPath = paths.at(index);
        QTEST(leftphotos::folderToShow(left, importPath), "folder");
    }

    void refusalsTouchNothing_data()
    {
        QTest::addColumn<int>("outcome");
        for (const char *kind : {"refuse", "code-number"})
            newRow(kind, int(ServiceReply::Outcome::Refused));
        for (const char *kind : {"http-error", "html"})
            newRow(kind, int(ServiceReply::Outcome::NoAnswer));
    }

    void refusalsTouchNothing()
    {
        const QVector<PhotoEntry> entries{registered("a.jpg"_s)};
        demo_.misbehave("delete_pics"_s, QLatin1String(QTest::currentDataTag()));
        OriginalDeletion deletion;
        int outcome = -1;
        connect(&deletion, &OriginalDeletion::submitFailed, this,
                [&](const ServiceReply &reply) { outcome = int(reply.outcome); });
        QSignalSpy finished(&deletion, &OriginalDeletion::finished);
        QSignalSpy unanswered(&deletion, &OriginalDeletion::unanswered);
        start(&deletion, entries);
        QTRY_VERIFY(!deletion.isBusy());
        QTEST(outcome, "outcome");
        QCOMPARE(unanswered.isEmpty(), outcome == int(ServiceReply::Outcome::Refused));
        QCOMPARE(finished.size(), 0);
        QVERIFY(QFile::exists(folder_->filePath("a.jpg"_s)));
    }

    void whatIsRecorded_data()
    {
        // of photos "gone", "protected" and "missing"
        addColumns<QString, int, int>({"fault", "announced", "deleted"});
        newRow("agreed", QString(), 3, 2);
        newRow("refused", "refuse"_s, 0, 0);
        newRow("no answer", "http-error"_s, 0, 0);
    }

    void whatIsRecorded()
    {
        QFETCH(QString, fault);
        const QTemporaryDir elsewhere;
        Ledger ledger(elsewhere.path());
        ledger.makeCurrent();
        QVector<PhotoEntry> entries;
        for (const char *name : {"gone", "protected", "missing"})
            entries.append(registered(QLatin1String(name)));
        QVERIFY(QFile::setPermissions(folder_->filePath("protected"_s), QFile::ReadOwner));
        QVERIFY(QFile::remove(folder_->filePath("missing"_s)));
        ledger::NewCopy copy;
        copy.target = entries.at(1).localPath;
        ledger::CopyResult result;
        result.targetHash = QByteArray(16, 'h');
        result.targetBytes = 5;
        result.targetModifiedMs = 7;
        const ledger::RunId run = ledger.beginRun({});
        ledger.finishCopy(ledger.beginCopies(run, {}, {copy}).value(0), result);

        if (!fault.isEmpty())
            demo_.misbehave("delete_pics"_s, fault);
        OriginalDeletion deletion;
        start(&deletion, entries);
        QTRY_VERIFY(!deletion.isBusy());
        const OrderIdentity order = identityOf(order_);
        const auto recorded = [&] {
            return ledger.answer(
                [&](const LedgerReader &reader) { return reader.deletionsOfOrder(order); });
        };
        const auto count = [](const QVector<ledger::Deletion> &rows, auto when) {
            return int(std::count_if(rows.cbegin(), rows.cend(), when));
        };
        const auto isAnnounced = [](const ledger::Deletion &row) { return row.announcedMs != 0; };
        const auto isDeleted = [](const ledger::Deletion &row) { return row.deletedMs != 0; };
        const auto rows = recorded();
        QCOMPARE(rows.size(), 3);
        QTEST(count(rows, isAnnounced), "announced");
        QTEST(count(rows, isDeleted), "deleted");
        const ledger::Deletion &left = rows.at(1);
        QVERIFY(!left.failure.isEmpty() && left.deletedMs == 0);
        QCOMPARE(left.file.photo, entries.at(1).id);
        QCOMPARE(left.file.hash, result.targetHash);
        QCOMPARE(left.file.bytes, 5);
        QCOMPARE(left.file.modifiedMs, 7);
        QVERIFY(rows.at(0).file.hash.isEmpty()); // the ledger does not know what it was

        // A later list tells that the service has deleted one after all.
        PhotoDeletionRecording::announceForgotten(order, {entries.at(1).id});
        QTRY_VERIFY(recorded().at(1).announcedMs != 0);
        QCOMPARE(count(recorded(), isAnnounced), fault.isEmpty() ? 3 : 1);
    }

    void stopLeavesWhatHasNotBegun()
    {
        const auto entries = registeredDozen();
        QSemaphore begun;
        QSemaphore mayGoOn;
        OriginalDeletion deletion([&](const QString &path, QString *error) {
            begun.release();
            mayGoOn.acquire();
            return DeleteFileRunnable::removeFile(path, error);
        });
        QSignalSpy finished(&deletion, &OriginalDeletion::finished);
        start(&deletion, entries);
        QTRY_COMPARE(begun.available(), 4); // no more at once
        deletion.stop();
        QVERIFY(deletion.isBusy());
        mayGoOn.release(entries.size());
        QTRY_VERIFY(!deletion.isBusy());
        QCOMPARE(QDir(folder_->path()).entryList(QDir::Files).size(), 8);
        auto lines =
            leftphotos::lines(finished.first().first().value<OriginalDeletionSummary>().left);
        QCOMPARE(lines.size(), 1 + 8); // the folder, and each with its name
        QCOMPARE(lines.last(), entries.last().imgName + " 任务已中止，不执行删除"_s);
    }

    void leftInMidRequest_data()
    {
        addColumns<bool, bool, bool>({"cancelled", "answered", "unanswered"});
        newRow("closed, the answer comes", false, true, false);
        newRow("closed, no answer comes", false, false, true);
        newRow("cancelled", true, false, true);
    }

    void leftInMidRequest()
    {
        QFETCH(bool, cancelled);
        QFETCH(bool, answered);
        const QVector<PhotoEntry> entries{registered("x.jpg"_s)};
        demo_.hold("delete_pics"_s);
        OriginalDeletion deletion;
        QSignalSpy finished(&deletion, &OriginalDeletion::finished);
        QSignalSpy unanswered(&deletion, &OriginalDeletion::unanswered);
        start(&deletion, entries);
        QTRY_COMPARE(demo_.held(), 1);
        if (!answered)
            deletion.setPatience(1);
        if (cancelled)
            deletion.cancel();
        else
            deletion.stop();
        QCOMPARE(deletion.isBusy(), !cancelled);
        if (answered)
            demo_.release();
        QTRY_VERIFY(!deletion.isBusy());
        QTEST(unanswered.size() == 1, "unanswered");
        QCOMPARE(finished.size(), answered ? 1 : 0);
        if (answered) { // the service has forgotten it, the disk has not
            const auto summary = finished.first().first().value<OriginalDeletionSummary>();
            QCOMPARE(summary.left.value(0).photo.imgName, "x.jpg"_s);
        }
        QVERIFY(QFile::exists(folder_->filePath("x.jpg"_s)));
    }

    void destroyedInMidDeletion()
    {
        const auto entries = registeredDozen();
        auto begun = std::make_shared<QSemaphore>();
        auto deletion =
            std::make_unique<OriginalDeletion>([begun](const QString &path, QString *error) {
                begun->release();
                return DeleteFileRunnable::removeFile(path, error);
            });
        start(deletion.get(), entries);
        QTRY_VERIFY(begun->available() > 0);
        const LogLines log;
        deletion.reset();
        QVERIFY(log.count("开始清理线程池..."_s) == 1);
        QVERIFY(log.count("线程池已安全清理"_s) == 1);
    }

private:
    QString wire(const QString &name) const { return wireForm(folder_->filePath(name)); }

    /// Makes the file and registers it for the order; its entry as the service lists it.
    PhotoEntry registered(const QString &name)
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

    QVector<PhotoEntry> registeredDozen()
    {
        for (int number = 0; number < 12; ++number)
            registerFile(folder_->filePath("%1.jpg"_s.arg(number)), {});
        return listedEntries();
    }

    void start(OriginalDeletion *deletion, const QVector<PhotoEntry> &entries)
    {
        QVERIFY(deletion->start(order_, entries));
        QVERIFY(!deletion->start(order_, entries)); // one at a time
    }

    DemoClient demo_;
    OrderMap order_;
    std::unique_ptr<QTemporaryDir> folder_;
};

QTEST_GUILESS_MAIN(TestOriginalDeletion)
#include "test_originaldeletion.moc"
