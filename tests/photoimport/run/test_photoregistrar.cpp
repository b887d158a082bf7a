#include "app/context/accountcontext.h"
#include "photoimport/rules/photorules.h"
#include "photoimport/run/photoregistrar.h"
#include "platform/pathform.h"
#include "tasks/background.h"
#include "tests/support/datarows.h"
#include "tests/support/democlient.h"
#include "tests/support/files.h"
#include "tests/support/loglines.h"
#include "tests/support/patience.h"
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
        registrar_ = std::make_unique<Registrar>();
    }

    void cleanup()
    {
        demo_.release();
        registrar_.reset();
        diskPool().waitForDone();
    }

    void registers_data()
    {
        addColumns<int, QString, QString>({"mode", "action", "output"});
        newRow("photos", 0, "savepicpath", "\\all\\1.jpg");
        newRow("trial videos", 1, "savepicpathmv", "\\试拍视频\\1.jpg");
        newRow("retouched videos", 2, "savepicpathmv", "\\精修视频\\1.jpg");
    }

    void registers()
    {
        QFETCH(int, mode);
        QFETCH(QString, action);
        QFETCH(QString, output);
        const OrderInfo order = makeOrder(2, mode);
        registerAll(order, mode);
        registrar_->upImportOrderData(order, identity_);
        QCOMPARE(registrar_->pending(), 3);
        QTRY_COMPARE(registrar_->idle.size(), 1);
        QCOMPARE(registrar_->registered.size(), 2);
        QCOMPARE(registrar_->orders.size(), 1);
        QCOMPARE(registrar_->orders.first().first().value<OrderIdentity>(), order.identity());

        QCOMPARE(demo_.requests(action).size(), 2);
        const QString bodies = demo_.body(action, 0) + demo_.body(action, 1);
        QVERIFY(bodies.contains("&size=5&"_s));
        QVERIFY(bodies.contains("&path=%1%2&"_s.arg(order.importPath, output)));
        QVERIFY(demo_.body("saveorderphotopath"_s).contains("&path=%1&"_s.arg(order.importPath)));
    }

    void missingOutputs()
    {
        const OrderInfo order = makeOrder(1, Photos);
        QVERIFY(QFile::remove(folder_->filePath("all/0.jpg"_s)));
        const LogLines log;
        registrar_->upImportPhotoInfo(order, 0, Photos, identity_);
        QTRY_COMPARE(registrar_->refused.size(), 1);
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
        for (const char *action : {"savepicpath", "saveorderphotopath"})
            demo_.misbehave(QLatin1String(action), kind, {{"message"_s, message}});
        registrar_->upImportPhotoInfo(order, 0, Photos, identity_);
        registrar_->upImportOrderData(order, identity_);
        QTRY_COMPARE(registrar_->idle.size(), 1);
        QCOMPARE(registrar_->refused.size(), 1);
        QCOMPARE(registrar_->refused.first().at(0).value<OrderIdentity>(), order.identity());
        QCOMPARE(registrar_->refused.first().at(1).value<PhotoInfo>().fileName, "0.jpg"_s);
        QCOMPARE(registrar_->refused.first().at(2).toString(), reason);
        QCOMPARE(registrar_->ordersRefused.size(), 1);
        QCOMPARE(registrar_->ordersRefused.first().at(1).toString(), reason);
        // Asked for again, it goes through.
        registrar_->upImportPhotoInfo(order, 0, Photos, identity_);
        QTRY_COMPARE(registrar_->registered.size(), 1);
    }

    void aFewAtATime()
    {
        demo_.hold("savepicpathmv"_s, 8);
        const OrderInfo order = makeOrder(10, TrialVideos);
        registerAll(order, TrialVideos);
        QTRY_COMPARE(demo_.held(), PhotoRegistrar::requestsAtOnce);
        QCOMPARE(registrar_->pending(), 10);
        demo_.release();
        QTRY_COMPARE(demo_.held(), PhotoRegistrar::requestsAtOnce);
        QCOMPARE(demo_.requests("savepicpathmv"_s).size(), 8);
        demo_.release();
        QTRY_COMPARE(registrar_->idle.size(), 1);
        QCOMPARE(registrar_->registered.size(), 10);
    }

    void cancelled()
    {
        demo_.hold("savepicpathmv"_s, 4);
        const OrderInfo order = makeOrder(6, TrialVideos);
        registerAll(order, TrialVideos);
        QTRY_COMPARE(demo_.held(), PhotoRegistrar::requestsAtOnce);
        registrar_->cancel();
        QCOMPARE(registrar_->pending(), 0);
        registrar_->upImportPhotoInfo(order, 5, TrialVideos, identity_);
        demo_.release();
        QTRY_COMPARE(registrar_->idle.size(), 1);
        QCOMPARE(registrar_->registered.size(), 1);
        QCOMPARE(registrar_->registered.first().at(1).value<PhotoInfo>().fileName, "5.jpg"_s);
        QCOMPARE(registrar_->refused.size(), 0);
    }

private:
    struct Registrar : PhotoRegistrar
    {
        QSignalSpy registered{this, &PhotoRegistrar::photoRegistered};
        QSignalSpy refused{this, &PhotoRegistrar::photoRefused};
        QSignalSpy orders{this, &PhotoRegistrar::orderRegistered};
        QSignalSpy ordersRefused{this, &PhotoRegistrar::orderRefused};
        QSignalSpy idle{this, &PhotoRegistrar::idle};
    };

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
        for (const PhotoInfo &photo : qAsConst(order.photos))
            writeFile(platform::toLocalPath(outputPathOf(order.importPath, photo)), "12345");
        return order;
    }

    void registerAll(const OrderInfo &order, int mode)
    {
        for (int index = 0; index < order.photos.size(); ++index)
            registrar_->upImportPhotoInfo(order, index, mode, identity_);
    }

    DemoClient demo_;
    const orderqueries::Identity identity_{"101"_s, "7001"_s, "3101"_s};
    std::unique_ptr<QTemporaryDir> folder_;
    std::unique_ptr<Registrar> registrar_;
};

QTEST_GUILESS_MAIN(TestPhotoRegistrar)
#include "test_photoregistrar.moc"
