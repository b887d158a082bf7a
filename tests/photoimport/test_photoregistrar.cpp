#include "app/context/accountcontext.h"
#include "net/background.h"
#include "photoimport/photoregistrar.h"
#include "photoimport/photorules.h"
#include "platform/pathform.h"
#include "tests/support/democlient.h"
#include "tests/support/loglines.h"

#include <QDir>
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
    void init();
    void cleanup();
    void registers_data();
    void registers();
    void missingOutputs();
    void refusals_data();
    void refusals();
    void aFewAtATime();
    void cancelled();

private:
    /// The demo studio's first order with this many sources, whose outputs lie on disk.
    OrderInfo makeOrder(int sources, int mode);
    int held() { return demo_.state().value(QStringLiteral("held")).toInt(); }

    DemoClient demo_;
    const orderqueries::Identity identity_{QStringLiteral("101"), QStringLiteral("7001"),
                                           QStringLiteral("3101")};
    std::unique_ptr<QTemporaryDir> folder_;
    std::unique_ptr<PhotoRegistrar> registrar_;
    std::unique_ptr<QSignalSpy> registered_;
    std::unique_ptr<QSignalSpy> refused_;
    std::unique_ptr<QSignalSpy> orders_;
    std::unique_ptr<QSignalSpy> ordersRefused_;
    std::unique_ptr<QSignalSpy> idle_;
};

void TestPhotoRegistrar::init()
{
    demo_.reset();
    AccountContext::uid = QStringLiteral("9001");
    folder_ = std::make_unique<QTemporaryDir>();
    registrar_ = std::make_unique<PhotoRegistrar>();
    registered_ = std::make_unique<QSignalSpy>(registrar_.get(), &PhotoRegistrar::photoRegistered);
    refused_ = std::make_unique<QSignalSpy>(registrar_.get(), &PhotoRegistrar::photoRefused);
    orders_ = std::make_unique<QSignalSpy>(registrar_.get(), &PhotoRegistrar::orderRegistered);
    ordersRefused_ = std::make_unique<QSignalSpy>(registrar_.get(), &PhotoRegistrar::orderRefused);
    idle_ = std::make_unique<QSignalSpy>(registrar_.get(), &PhotoRegistrar::idle);
}

void TestPhotoRegistrar::cleanup()
{
    demo_.release();
    registrar_.reset();
    diskPool()->waitForDone();
}

OrderInfo TestPhotoRegistrar::makeOrder(int sources, int mode)
{
    const QJsonObject known =
        demo_.state().value(QStringLiteral("orders")).toArray().first().toObject();
    OrderInfo order;
    order.id = known.value(QStringLiteral("id")).toString();
    order.orderPhotoId = known.value(QStringLiteral("order_photo_id")).toString();
    order.importPath = folder_->path().replace(QLatin1Char('/'), QLatin1Char('\\'));
    QStringList paths;
    for (int index = 0; index < sources; ++index)
        paths << QStringLiteral("/card/%1.jpg").arg(index);
    order.photos = jobsFor(order, paths, mode);
    prepareFolders(foldersOf(order.importPath, order.photos));
    for (const PhotoInfo &photo : qAsConst(order.photos)) {
        QFile file(platform::toLocalPath(outputPathOf(order.importPath, photo)));
        if (!file.open(QIODevice::WriteOnly) || file.write("12345") != 5)
            qFatal("fixture not written");
    }
    return order;
}

void TestPhotoRegistrar::registers_data()
{
    QTest::addColumn<int>("mode");
    QTest::addColumn<int>("registered");
    QTest::addColumn<QString>("output");
    QTest::addColumn<QString>("type");
    QTest::newRow("photos") << 0 << 2 << QStringLiteral("\\all\\1.jpg") << QString();
    QTest::newRow("trial videos") << 1 << 2 << QStringLiteral("\\试拍视频\\1.jpg")
                                  << QStringLiteral("2");
    QTest::newRow("retouched videos")
        << 2 << 2 << QStringLiteral("\\精修视频\\1.jpg") << QStringLiteral("3");
}

void TestPhotoRegistrar::registers()
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

    const QString action =
        mode == 0 ? QStringLiteral("savepicpath") : QStringLiteral("savepicpathmv");
    QStringList paths;
    const QJsonArray requests = demo_.requests(action);
    for (const QJsonValue &request : requests) {
        const QJsonValue fields = request[u"fields"];
        QCOMPARE(fields[u"size"].toString(), QStringLiteral("5"));
        QTEST(fields[u"type"].toString(), "type");
        paths << fields[u"path"].toString();
    }
    QCOMPARE(paths.size(), registered);
    QVERIFY(paths.contains(order.importPath + output));
    QCOMPARE(
        demo_.requests(QStringLiteral("saveorderphotopath")).at(0)[u"fields"][u"path"].toString(),
        order.importPath);
}

void TestPhotoRegistrar::missingOutputs()
{
    const OrderInfo order = makeOrder(1, Photos);
    QVERIFY(QFile::remove(folder_->filePath(QStringLiteral("all/0.jpg"))));
    const LogLines log;
    registrar_->upImportPhotoInfo(order, 0, Photos, identity_);
    QTRY_COMPARE(refused_->size(), 1);
    QCOMPARE(log.count(QStringLiteral("导入照片路径失败，不执行upImportPhotoInfo")), 1);
    QVERIFY(demo_.requests(QStringLiteral("savepicpath")).isEmpty());
    // No such job.
    registrar_->upImportPhotoInfo(order, 99, Photos, identity_);
    QCOMPARE(registrar_->pending(), 0);
}

void TestPhotoRegistrar::refusals_data()
{
    QTest::addColumn<QString>("kind");
    QTest::addColumn<QString>("message");
    QTest::addColumn<QString>("reason");
    const QString locked = QStringLiteral("照片已锁定");
    QTest::newRow("message") << QStringLiteral("refuse") << locked << locked;
    QTest::newRow("no message") << QStringLiteral("refuse") << QString()
                                << QStringLiteral("服务器拒绝登记");
    QTest::newRow("no JSON") << QStringLiteral("html") << QString()
                             << QStringLiteral("服务器没有响应");
}

void TestPhotoRegistrar::refusals()
{
    QFETCH(QString, kind);
    QFETCH(QString, message);
    QFETCH(QString, reason);
    const OrderInfo order = makeOrder(1, Photos);
    for (const char *action : {"savepicpath", "saveorderphotopath"}) {
        demo_.misbehave(QLatin1String(action), kind, {{QStringLiteral("message"), message}});
    }
    registrar_->upImportPhotoInfo(order, 0, Photos, identity_);
    registrar_->upImportOrderData(order, identity_);
    QTRY_COMPARE(idle_->size(), 1);
    QCOMPARE(refused_->size(), 1);
    QCOMPARE(refused_->first().at(0).toString(), order.id);
    QCOMPARE(refused_->first().at(1).value<PhotoInfo>().fileName, QStringLiteral("0.jpg"));
    QCOMPARE(refused_->first().at(2).toString(), reason);
    QCOMPARE(ordersRefused_->size(), 1);
    QCOMPARE(ordersRefused_->first().at(1).toString(), reason);
    // Asked for again, it goes through.
    registrar_->upImportPhotoInfo(order, 0, Photos, identity_);
    QTRY_COMPARE(registered_->size(), 1);
}

void TestPhotoRegistrar::aFewAtATime()
{
    demo_.misbehave(QStringLiteral("savepicpathmv"), QStringLiteral("hold"),
                    {{QStringLiteral("times"), 8}});
    const OrderInfo order = makeOrder(10, TrialVideos);
    for (int index = 0; index < order.photos.size(); ++index)
        registrar_->upImportPhotoInfo(order, index, TrialVideos, identity_);
    QTRY_COMPARE(held(), PhotoRegistrar::requestsAtOnce);
    QCOMPARE(registrar_->pending(), 10);
    demo_.release();
    QTRY_COMPARE(held(), PhotoRegistrar::requestsAtOnce);
    QCOMPARE(demo_.requests(QStringLiteral("savepicpathmv")).size(), 8);
    demo_.release();
    QTRY_COMPARE(idle_->size(), 1);
    QCOMPARE(registered_->size(), 10);
}

void TestPhotoRegistrar::cancelled()
{
    demo_.misbehave(QStringLiteral("savepicpathmv"), QStringLiteral("hold"),
                    {{QStringLiteral("times"), 4}});
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
    QCOMPARE(registered_->first().at(1).value<PhotoInfo>().fileName, QStringLiteral("5.jpg"));
    QCOMPARE(refused_->size(), 0);
}

QTEST_GUILESS_MAIN(TestPhotoRegistrar)
#include "test_photoregistrar.moc"
