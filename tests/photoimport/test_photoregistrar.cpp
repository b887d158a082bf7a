#include "app/context/accountcontext.h"
#include "net/background.h"
#include "photoimport/photoregistrar.h"
#include "photoimport/photorules.h"
#include "platform/pathform.h"
#include "tests/support/datarows.h"
#include "tests/support/democlient.h"
#include "tests/support/files.h"
#include "tests/support/loglines.h"
#include "tests/support/text.h"

#include <QJsonArray>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

using namespace photorules;

/// Tells the demo studio of photos, without a pool.
class TestPhotoRegistrar : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        demo_.reset();
        AccountContext::uid = "9001"_s;
        folder_ = std::make_unique<QTemporaryDir>();
        registrar_ = std::make_unique<PhotoRegistrar>();
        registered_ =
            std::make_unique<QSignalSpy>(registrar_.get(), &PhotoRegistrar::photoRegistered);
        refused_ = std::make_unique<QSignalSpy>(registrar_.get(), &PhotoRegistrar::photoRefused);
        orders_ = std::make_unique<QSignalSpy>(registrar_.get(), &PhotoRegistrar::orderRegistered);
        ordersRefused_ =
            std::make_unique<QSignalSpy>(registrar_.get(), &PhotoRegistrar::orderRefused);
        idle_ = std::make_unique<QSignalSpy>(registrar_.get(), &PhotoRegistrar::idle);
    }

    void cleanup()
    {
        demo_.release();
        registrar_.reset();
        diskPool()->waitForDone();
    }

    void registers_data()
    {
        addColumns<int, int, QString, QString>({"mode", "registered", "output", "type"});
        newRow("photos", 0, 2, "\\all\\1.jpg", QString());
        newRow("trial videos", 1, 2, "\\试拍视频\\1.jpg", "2");
        newRow("retouched videos", 2, 2, "\\精修视频\\1.jpg", "3");
    }

    void registers()
    {
        QFETCH(int, mode);
        QFETCH(int, registered);
        QFETCH(QString, output);
        const OrderInfo order = makeOrder(2, mode);
        for (int index = 0; index < order.photos.size(); ++index)
            registrar_->upImportPhotoInfo(order, index, mode, identity_);
        registrar_->upImportOrderData(order, identity_);
        QCOMPARE(registrar_->pending(), registered + 1);
        QTRY_COMPARE(idle_->size(), 1);
        QCOMPARE(registered_->size(), registered);
        QCOMPARE(orders_->size(), 1);
        QCOMPARE(orders_->first().first().toString(), order.id);

        const QString action = mode == 0 ? "savepicpath"_s : "savepicpathmv"_s;
        QStringList paths;
        const QJsonArray requests = demo_.requests(action);
        for (const QJsonValue &request : requests) {
            const QJsonValue fields = request[u"fields"];
            QCOMPARE(fields[u"size"].toString(), "5"_s);
            QTEST(fields[u"type"].toString(), "type");
            paths << fields[u"path"].toString();
        }
        QCOMPARE(paths.size(), registered);
        QVERIFY(paths.contains(order.importPath + output));
        QCOMPARE(demo_.requests("saveorderphotopath"_s).at(0)[u"fields"][u"path"].toString(),
                 order.importPath);
    }

    void missingOutputs()
    {
        const OrderInfo order = makeOrder(1, Photos);
        QVERIFY(QFile::remove(folder_->filePath("all/0.jpg"_s)));
        const LogLines log;
        registrar_->upImportPhotoInfo(order, 0, Photos, identity_);
        QTRY_COMPARE(refused_->size(), 1);
        QCOMPARE(log.count("导入照片路径失败，不执行upImportPhotoInfo"_s), 1);
        QVERIFY(demo_.requests("savepicpath"_s).isEmpty());
        // No such job.
        registrar_->upImportPhotoInfo(order, 99, Photos, identity_);
        QCOMPARE(registrar_->pending(), 0);
    }

    void refusals_data()
    {
        addColumns<QString, QString, QString>({"kind", "message", "reason"});
        const QString locked = "照片已锁定"_s;
        newRow("message", "refuse", locked, locked);
        newRow("no message", "refuse", QString(), "服务器拒绝登记");
        newRow("no JSON", "html", QString(), "服务器没有响应");
    }

    void refusals()
    {
        QFETCH(QString, kind);
        QFETCH(QString, message);
        QFETCH(QString, reason);
        const OrderInfo order = makeOrder(1, Photos);
        for (const char *action : {"savepicpath", "saveorderphotopath"}) {
            demo_.misbehave(QLatin1String(action), kind, {{"message"_s, message}});
        }
        registrar_->upImportPhotoInfo(order, 0, Photos, identity_);
        registrar_->upImportOrderData(order, identity_);
        QTRY_COMPARE(idle_->size(), 1);
        QCOMPARE(refused_->size(), 1);
        QCOMPARE(refused_->first().at(0).toString(), order.id);
        QCOMPARE(refused_->first().at(1).value<PhotoInfo>().fileName, "0.jpg"_s);
        QCOMPARE(refused_->first().at(2).toString(), reason);
        QCOMPARE(ordersRefused_->size(), 1);
        QCOMPARE(ordersRefused_->first().at(1).toString(), reason);
        // Asked for again, it goes through.
        registrar_->upImportPhotoInfo(order, 0, Photos, identity_);
        QTRY_COMPARE(registered_->size(), 1);
    }

    void aFewAtATime()
    {
        demo_.hold("savepicpathmv"_s, 8);
        const OrderInfo order = makeOrder(10, TrialVideos);
        for (int index = 0; index < order.photos.size(); ++index)
            registrar_->upImportPhotoInfo(order, index, TrialVideos, identity_);
        QTRY_COMPARE(held(), PhotoRegistrar::requestsAtOnce);
        QCOMPARE(registrar_->pending(), 10);
        demo_.release();
        QTRY_COMPARE(held(), PhotoRegistrar::requestsAtOnce);
        QCOMPARE(demo_.requests("savepicpathmv"_s).size(), 8);
        demo_.release();
        QTRY_COMPARE(idle_->size(), 1);
        QCOMPARE(registered_->size(), 10);
    }

    void cancelled()
    {
        demo_.hold("savepicpathmv"_s, 4);
        const OrderInfo order = makeOrder(6, TrialVideos);
        for (int index = 0; index < order.photos.size(); ++index)
            registrar_->upImportPhotoInfo(order, index, TrialVideos, identity_);
        QTRY_COMPARE(held(), PhotoRegistrar::requestsAtOnce);
        registrar_->cancel();
        QCOMPARE(registrar_->pending(), 0);
        registrar_->upImportPhotoInfo(order, 5, TrialVideos, identity_);
        demo_.release();
        QTRY_COMPARE(idle_->size(), 1);
        QCOMPARE(registered_->size(), 1);
        QCOMPARE(registered_->first().at(1).value<PhotoInfo>().fileName, "5.jpg"_s);
        QCOMPARE(refused_->size(), 0);
    }

private:
    /// The demo studio's first order with this many sources, whose outputs lie on disk.
    OrderInfo makeOrder(int sources, int mode)
    {
        const QJsonObject known = demo_.state().value("orders"_s).toArray().first().toObject();
        OrderInfo order;
        order.id = known.value("id"_s).toString();
        order.orderPhotoId = known.value("order_photo_id"_s).toString();
        order.importPath = wireForm(folder_->path());
        QStringList paths;
        for (int index = 0; index < sources; ++index)
            paths << "/card/%1.jpg"_s.arg(index);
        order.photos = jobsFor(order, paths, mode);
        prepareFolders(foldersOf(order.importPath, order.photos));
        for (const PhotoInfo &photo : qAsConst(order.photos)) {
            writeFile(platform::toLocalPath(outputPathOf(order.importPath, photo)), "12345");
        }
        return order;
    }

    int held() { return demo_.held(); }

    DemoClient demo_;
    const orderqueries::Identity identity_{"101"_s, "7001"_s, "3101"_s};
    std::unique_ptr<QTemporaryDir> folder_;
    std::unique_ptr<PhotoRegistrar> registrar_;
    std::unique_ptr<QSignalSpy> registered_;
    std::unique_ptr<QSignalSpy> refused_;
    std::unique_ptr<QSignalSpy> orders_;
    std::unique_ptr<QSignalSpy> ordersRefused_;
    std::unique_ptr<QSignalSpy> idle_;
};

QTEST_GUILESS_MAIN(TestPhotoRegistrar)
#include "test_photoregistrar.moc"
