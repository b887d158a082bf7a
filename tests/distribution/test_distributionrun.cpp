#include "app/context/accountcontext.h"
#include "distribution/distributionrequests.h"
#include "distribution/distributionrun.h"
#include "distribution/fjdataoperate.h"
#include "net/background.h"
#include "tests/support/democlient.h"
#include "tests/support/smalldisk.h"

#include <QDir>
#include <QDirIterator>
#include <QGuiApplication>
#include <QImage>
#include <QJsonArray>
#include <QRegularExpression>
#include <QSemaphore>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

using Type = DesignFileSplitTypes;

Q_DECLARE_METATYPE(DesignFileSplitTypes)

namespace {

const QString reports = QStringLiteral("download_success");
const QString detailAction = QStringLiteral("orderphotodetail");
const QString orderFolder = QStringLiteral("TS10001-服务1 周子墨-林婉清 到店自取");

DownloadOptions optionsOf(const QString &letters)
{
    DownloadOptions options;
    options.originals = letters.contains(QLatin1Char('o'));
    options.fullSize = letters.contains(QLatin1Char('f'));
    options.basic = letters.contains(QLatin1Char('b'));
    options.basicWithRejected = letters.contains(QLatin1Char('r'));
    options.retouched = letters.contains(QLatin1Char('t'));
    return options;
}

} // namespace

/// Runs against the demo service, on real files, without a window.
class TestDistributionRun : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void writesTheTreeOfEachMode_data();
    void writesTheTreeOfEachMode();
    void copiesWhatTheReplyNames();
    void deliversUpright();
    void reportsWhatWasDownloaded();
    void leavesOutWhatIsNotWanted();
    void countsInEachMode_data();
    void countsInEachMode();
    void tellsWhatGoesOn();
    void badDetailsAreListedAndTheRunGoesOn_data();
    void badDetailsAreListedAndTheRunGoesOn();
    void hostileNamesStayInTheirFolder();
    void stopsAfterTheTasksInFlight();
    void stopsWhileWaitingForTheService();
    void aFullDiskFailsWhatDoesNotFit();
    void aDirectoryThatCannotBeMade();

private:
    OrderData order(int number);
    RunSettings settings(Type type, const QString &options);
    RunSummary run(const QVector<OrderData> &orders, const RunSettings &settings);
    QString target(const QString &path) { return folder_->filePath(path); }
    QStringList tree(const QString &folder);

    DemoClient demo_;
    std::unique_ptr<QTemporaryDir> folder_;
    std::unique_ptr<DistributionRun> run_;
    RunSummary summary_; ///< of the last run
};

void TestDistributionRun::init()
{
    demo_.reset();
    AccountContext::uid = QStringLiteral("9001");
    folder_ = std::make_unique<QTemporaryDir>();
    run_ = std::make_unique<DistributionRun>();
    run_->setPerform(&FJDataOperate::perform);
    connect(run_.get(), &DistributionRun::finished, this,
            [this](const RunSummary &summary) { summary_ = summary; });
}

void TestDistributionRun::cleanup()
{
    demo_.release();
    run_.reset();
    diskPool()->waitForDone();
}

OrderData TestDistributionRun::order(int number)
{
    OrderData order;
    order.orderPhotoId = QString::number(800000 + number);
    order.orderPayForKey = QStringLiteral("TS%1").arg(10000 + number);
    order.serviceTimes = QStringLiteral("1");
    return order;
}

RunSettings TestDistributionRun::settings(Type type, const QString &options)
{
    RunSettings settings;
    settings.type = type;
    settings.directory = folder_->path();
    settings.options = optionsOf(options);
    settings.identity = {QStringLiteral("101"), QStringLiteral("7001"), QStringLiteral("3101")};
    settings.namingRule = QStringLiteral(R"([{"name":"名","key":"name","separator":"_"}])");
    return settings;
}

RunSummary TestDistributionRun::run(const QVector<OrderData> &orders, const RunSettings &settings)
{
    QSignalSpy idle(run_.get(), &DistributionRun::idle);
    if (!run_->start(orders, settings) || (idle.isEmpty() && !idle.wait(60000)))
        qFatal("the run did not end");
    return summary_;
}

QStringList TestDistributionRun::tree(const QString &folder)
{
    QStringList paths;
    QDirIterator files(folder, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
    while (files.hasNext())
        paths.append(QDir(folder).relativeFilePath(files.next()));
    paths.sort();
    return paths;
}

void TestDistributionRun::writesTheTreeOfEachMode_data()
{
    QTest::addColumn<DesignFileSplitTypes>("type");
    QTest::addColumn<QString>("options");
    QTest::addColumn<QStringList>("expected"); // {1,2} in a name stands for several

    const QString all = QStringLiteral("obrft");
    const QStringList downloaded{
        QStringLiteral("原始档/IMG_000{3,5,7,9}.jpg"), QStringLiteral("原始档/IMG_0003.CR2"),
        QStringLiteral("原始档/IMG_0005.nef"),         QStringLiteral("原图/IMG_000{3,5,7,9}.jpg"),
        QStringLiteral("简修/IMG_000{3,5,7,9}.jpg"),   QStringLiteral("简修/汰片/TP_0001.jpg"),
        QStringLiteral("精修/IMG_000{3,5}.jpg")};
    QTest::newRow("下载原始档, all") << Type::DownloadOriginals << all << downloaded;
    QTest::newRow("下载照片交付, all") << Type::DownloadDelivery << all << downloaded;
    QTest::newRow("下载原始档, usual")
        << Type::DownloadOriginals << QStringLiteral("o") << QStringList(downloaded.mid(0, 3));
    QTest::newRow("下载照片交付, usual") << Type::DownloadDelivery << QStringLiteral("ft")
                                         << QStringList{downloaded.at(3), downloaded.at(6)};
    QTest::newRow("下载原始档, 简修 alone")
        << Type::DownloadOriginals << QStringLiteral("b") << QStringList(downloaded.mid(4, 1));

    const QStringList sheet{
        QStringLiteral("明细制作单.pdf"),           QStringLiteral("其他/条形码.jpg"),
        QStringLiteral("其他/快递信息.txt"),        QStringLiteral("其他/标记/IMG_0003.jpg"),
        QStringLiteral("裁剪/500011_IMG_0003.jpg"), QStringLiteral("缩略图/IMG_000{3,5,7,9}.jpg"),
        QStringLiteral("缩略图/RD_000{1,2}.jpg")};
    const QString factory = QStringLiteral("晨光制作厂 周子墨-林婉清 2026-01-15取 快递/");
    const QStringList products{factory + QStringLiteral("迎宾海报_/IMG_0003.jpg"),
                               factory + QStringLiteral("纪念相册 12寸_/IMG_000{3,5}.jpg"),
                               factory + QStringLiteral("纪念相册 12寸_ (2)/IMG_000{5,7}.jpg"),
                               factory + QStringLiteral("家庭套装_/IMG_000{3,5}.jpg"),
                               factory + QStringLiteral("组合框_/IMG_000{3,5}.jpg")};
    const QStringList archive{QStringLiteral("入底/RD_000{1,2}.jpg")};
    const QStringList finished{QStringLiteral("成品/IMG_000{3,5,7,9}.jpg")};
    QTest::newRow("下载选片结果, usual") << Type::DownloadSelection << QStringLiteral("ft")
                                         << QStringList(sheet + products + archive + finished);
    QTest::newRow("下载选片结果, 精修 alone")
        << Type::DownloadSelection << QStringLiteral("t")
        << QStringList(sheet + products + QStringList(QStringLiteral("成品/IMG_000{3,5}.jpg")));

    QStringList filled = sheet + products;
    for (QString path : products) {
        filled << path.replace(QLatin1String("_/"), QStringLiteral("_/缩略图/"))
                      .replace(QLatin1String("(2)/"), QStringLiteral("(2)/缩略图/"));
        path.replace(QStringLiteral("缩略图"), QStringLiteral("成品"));
        filled << path.replace(QLatin1String("{5,7}"), QLatin1String("5"));
    }
    filled << archive << QStringLiteral("其他/成品/IMG_0009.jpg");
    QTest::newRow("设计分件, usual") << Type::Distribution << QStringLiteral("ft") << filled;
    QTest::newRow("设计分件, all")
        << Type::Distribution << all
        << QStringList(filled + QStringList{factory + QStringLiteral("纪念相册 12寸_ (2)/成品/"
                                                                     "IMG_0007.jpg"),
                                            QStringLiteral("汰片/TP_0001.jpg"),
                                            QStringLiteral("其他/成品原始档/IMG_0003.{jpg,CR2}"),
                                            QStringLiteral("其他/成品原始档/IMG_0005.{jpg,nef}"),
                                            QStringLiteral("其他/成品原始档/IMG_000{7,9}.jpg")});
}

namespace {

/// "a{1,2}" as "a1" and "a2".
QStringList spreadOut(const QStringList &patterns)
{
    static const QRegularExpression choice(QStringLiteral("\\{([^}]*)\\}"));
    QStringList paths;
    for (const QString &pattern : patterns) {
        const QRegularExpressionMatch match = choice.match(pattern);
        if (!match.hasMatch()) {
            paths.append(pattern);
            continue;
        }
        const QStringList choices = match.captured(1).split(QLatin1Char(','));
        for (const QString &one : choices)
            paths.append(QString(pattern).replace(match.captured(0), one));
    }
    paths.removeDuplicates();
    paths.sort();
    return paths;
}

QByteArray content(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

void TestDistributionRun::writesTheTreeOfEachMode()
{
    QFETCH(DesignFileSplitTypes, type);
    QFETCH(QString, options);
    QFETCH(QStringList, expected);
    const RunSummary summary = run({order(1)}, settings(type, options));
    QCOMPARE(summary.errors, QStringList());
    QCOMPARE(summary.completed, 1);
    QCOMPARE(tree(target(orderFolder)), spreadOut(expected));
    QCOMPARE(QDir(folder_->path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot).size(), 1);
    // A second run meets the same folders and adds none.
    run({order(1)}, settings(type, options));
    QCOMPARE(tree(target(orderFolder)), spreadOut(expected));
}

void TestDistributionRun::copiesWhatTheReplyNames()
{
    run({order(1)}, settings(Type::Distribution, QStringLiteral("ofbt")));
    const QDir share(demo_.state().value(QStringLiteral("share")).toString());
    const QString root = share.filePath(QStringLiteral("海棠路旗舰店/选片/TS10001-1/"));
    const QDir made(target(orderFolder));
    const QString product = QStringLiteral("晨光制作厂 周子墨-林婉清 2026-01-15取 快递/"
                                           "纪念相册 12寸_ (2)/");
    const QList<QPair<QString, QString>> copies{
        {product + QStringLiteral("IMG_0007.jpg"), QStringLiteral("选片/all/IMG_0007.jpg")},
        {product + QStringLiteral("成品/IMG_0005.jpg"), QStringLiteral("精修/all/IMG_0005.jpg")},
        {product + QStringLiteral("成品/IMG_0007.jpg"), QStringLiteral("简修/all/IMG_0007.jpg")},
        {product + QStringLiteral("缩略图/IMG_0007.jpg"), QStringLiteral("选片/90/IMG_0007.jpg")},
        {QStringLiteral("其他/成品原始档/IMG_0003.CR2"), QStringLiteral("选片/all/IMG_0003.CR2")},
        {QStringLiteral("其他/成品/IMG_0009.jpg"), QStringLiteral("简修/all/IMG_0009.jpg")},
        {QStringLiteral("入底/RD_0002.jpg"), QStringLiteral("选片/all/RD_0002.jpg")}};
    for (const auto &[copy, source] : copies) {
        QVERIFY2(!content(root + source).isEmpty(), qPrintable(source));
        QVERIFY2(content(made.filePath(copy)) == content(root + source), qPrintable(copy));
    }
    QVERIFY(
        content(made.filePath(QStringLiteral("其他/快递信息.txt"))).startsWith("收件人：林婉清"));
    QVERIFY(QImage(made.filePath(QStringLiteral("其他/条形码.jpg"))).width() > 100);
}

void TestDistributionRun::deliversUpright()
{
    run({order(1)}, settings(Type::DownloadDelivery, QStringLiteral("of")));
    const QDir made(target(orderFolder));
    // IMG_0005 lies on its side; as an original it is delivered as it is.
    const QImage upright(made.filePath(QStringLiteral("原图/IMG_0005.jpg")));
    QCOMPARE(upright.size(), QSize(400, 600));
    QVERIFY(content(made.filePath(QStringLiteral("原始档/IMG_0005.jpg"))) !=
            content(made.filePath(QStringLiteral("原图/IMG_0005.jpg"))));
    QCOMPARE(content(made.filePath(QStringLiteral("原始档/IMG_0003.jpg"))),
             content(made.filePath(QStringLiteral("原图/IMG_0003.jpg"))));
    QVERIFY(demo_.requests(reports).isEmpty());
}

void TestDistributionRun::reportsWhatWasDownloaded()
{
    QSignalSpy moved(run_.get(), &DistributionRun::photoDownloaded);
    run({order(1)}, settings(Type::DownloadOriginals, QStringLiteral("of")));
    const QJsonArray sent = demo_.requests(reports);
    QCOMPARE(sent.size(), 4); // once a photo, however many copies of it were made
    QCOMPARE(moved.size(), 4);
    QStringList bodies;
    for (const QJsonValue &each : sent)
        bodies.append(
            each[QStringLiteral("body")].toString().section(QStringLiteral("&token"), 0, 0));
    bodies.sort();
    QCOMPARE(bodies.first(), QStringLiteral("id=8000011001&shopid=101&eid=3101&superid=7001"
                                            "&personid=3101"));
}

void TestDistributionRun::leavesOutWhatIsNotWanted()
{
    RunSettings wanted = settings(Type::DownloadOriginals, QStringLiteral("ot"));
    wanted.leftOut.insert(order(1).orderPhotoId, {QStringLiteral("8000011001")});
    run({order(1)}, wanted);
    QCOMPARE(tree(target(orderFolder)), spreadOut({QStringLiteral("原始档/IMG_000{5,7,9}.jpg"),
                                                   QStringLiteral("原始档/IMG_0005.nef"),
                                                   QStringLiteral("精修/IMG_0005.jpg")}));
    QCOMPARE(demo_.requests(reports).size(), 4); // IMG_0005 is two photos to the service
}

void TestDistributionRun::countsInEachMode_data()
{
    QTest::addColumn<DesignFileSplitTypes>("type");
    QTest::addColumn<QString>("options");
    QTest::addColumn<int>("results");
    QTest::addColumn<int>("failed");
    QTest::addColumn<int>("reported");
    // Two files are gone from the share: IMG_0005.jpg in full size and the thumbnail of IMG_0003.
    QTest::newRow("1") << Type::DownloadOriginals << QStringLiteral("of") << 10 << 2 << 3;
    QTest::newRow("3") << Type::DownloadDelivery << QStringLiteral("of") << 10 << 2 << 0;
    // 6 originals, 4 finished, 2 archive, 6 thumbnails, crop, mark, barcode, text, products, sheet.
    QTest::newRow("2, selection") << Type::DownloadSelection << QStringLiteral("of") << 24 << 4
                                  << 3;
    QTest::newRow("2, selection without originals")
        << Type::DownloadSelection << QStringLiteral("f") << 18 << 3 << 0;
}

void TestDistributionRun::countsInEachMode()
{
    QFETCH(DesignFileSplitTypes, type);
    QFETCH(QString, options);
    QFETCH(int, results);
    QFETCH(int, failed);
    QFETCH(int, reported);
    run({order(1)}, settings(Type::DownloadDelivery, QStringLiteral("b")));
    demo_.clearRequests();
    const QDir share(demo_.state().value(QStringLiteral("share")).toString() +
                     QStringLiteral("/海棠路旗舰店/选片/TS10001-1/选片"));
    QVERIFY(QFile::remove(share.filePath(QStringLiteral("all/IMG_0005.jpg"))));
    QVERIFY(QFile::remove(share.filePath(QStringLiteral("90/IMG_0003.jpg"))));

    QSignalSpy counted(run_.get(), &DistributionRun::resultCounted);
    QSignalSpy progress(run_.get(), &DistributionRun::progressChanged);
    const RunSummary summary = run({order(1)}, settings(type, options));
    QCOMPARE(counted.size(), results);
    QCOMPARE(std::count_if(counted.cbegin(), counted.cend(),
                           [](const QList<QVariant> &each) { return !each.first().toBool(); }),
             failed);
    QCOMPARE(progress.last(), (QList<QVariant>{results, results}));
    int highest = 0;
    for (const QList<QVariant> &each : qAsConst(progress)) {
        QVERIFY(each.first().toInt() >= highest);
        highest = each.first().toInt();
    }
    QCOMPARE(demo_.requests(reports).size(), reported);
    QCOMPARE(summary.completed, 1);
    const QString missing = QStringLiteral("TS10001-服务1: IMG_0005.jpg");
    QVERIFY(std::any_of(summary.errors.cbegin(), summary.errors.cend(),
                        [&](const QString &line) { return line.startsWith(missing); }));
}

void TestDistributionRun::tellsWhatGoesOn()
{
    QSignalSpy steps(run_.get(), &DistributionRun::stepChanged);
    run({order(1)}, settings(Type::Distribution, QStringLiteral("f")));
    QStringList told;
    for (const QList<QVariant> &step : qAsConst(steps)) {
        const QString what = step.first().toString().section(QLatin1Char(' '), 0, 0);
        if (told.isEmpty() || told.last() != what)
            told.append(what);
    }
    told.removeOne(QStringLiteral("正在拷贝照片")); // told when it takes its time
    QCOMPARE(told,
             (QStringList{QStringLiteral("正在读取订单资料"), QStringLiteral("正在创建产品文件夹"),
                          QStringLiteral("正在生成明细制作单"), QString()}));
}

void TestDistributionRun::badDetailsAreListedAndTheRunGoesOn_data()
{
    QTest::addColumn<QString>("kind");
    QTest::addColumn<QJsonObject>("more");
    QTest::addColumn<QString>("error");
    const auto text = [](const char *value) { return QString::fromUtf8(value); };
    QTest::newRow("refused") << text("refuse") << QJsonObject{{text("message"), text("订单已锁定")}}
                             << text("订单已锁定");
    QTest::newRow("dropped") << text("drop") << QJsonObject() << text("连接不上服务端");
    QTest::newRow("broken") << text("broken-json") << QJsonObject() << text("连接不上服务端");
    QTest::newRow("code as number") << text("code-number") << QJsonObject() << text("操作成功");
    QTest::newRow("without order")
        << text("missing-fields") << QJsonObject{{text("fields"), QJsonArray{text("order")}}}
        << text("订单资料不完整，没有订单号");
    QTest::newRow("of another order")
        << text("stale") << QJsonObject() << text("服务端返回了其他订单的资料");
    QTest::newRow("photos of a wrong type")
        << text("data-wrong-type")
        << QJsonObject{{text("fields"), QJsonArray{text("images"), text("goods")}}}
        << text("没有可下载的照片");
}

void TestDistributionRun::badDetailsAreListedAndTheRunGoesOn()
{
    QFETCH(QString, kind);
    QFETCH(QJsonObject, more);
    QFETCH(QString, error);
    const RunSettings wanted = settings(Type::DownloadDelivery, QStringLiteral("f"));
    OrderData other = order(5);
    run({other}, wanted);
    demo_.misbehave(detailAction, kind, more);
    const RunSummary summary = run({order(1), other}, wanted);
    QVERIFY(!summary.errors.isEmpty());
    QCOMPARE(summary.errors.first(), QStringLiteral("TS10001-服务1: ") + error);
    QCOMPARE(summary.orders, 2);
    QCOMPARE(demo_.requests(detailAction).size(), 3);
    QVERIFY(tree(folder_->path()).size() >= 3); // the other order's
}

void TestDistributionRun::hostileNamesStayInTheirFolder()
{
    for (const Type type : {Type::Distribution, Type::DownloadSelection, Type::DownloadOriginals})
        run({order(5)}, settings(type, QStringLiteral("obrft")));
    const QFileInfoList entries =
        QDir(folder_->path()).entryInfoList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden);
    QCOMPARE(entries.size(), 1);
    QVERIFY(entries.first().fileName().startsWith(
        QStringLiteral("TS10005-服务1 .._.._赵_强_-.._李_丽__")));
    const QStringList made = tree(entries.first().filePath());
    QVERIFY(made.contains(QStringLiteral("成品/.._.._out.jpg")));
    QVERIFY(made.contains(QStringLiteral("原始档/a_b_.jpg")));
}

void TestDistributionRun::stopsAfterTheTasksInFlight()
{
    std::atomic<int> begun{0};
    QSemaphore gate;
    run_->setPerform([&](const DistributionTask &task) {
        ++begun;
        gate.acquire();
        return TaskResult{true, task.type, task.imgName, task.imageId, {}};
    });
    QSignalSpy finished(run_.get(), &DistributionRun::finished);
    QSignalSpy counted(run_.get(), &DistributionRun::resultCounted);
    QVERIFY(
        run_->start({order(1), order(5)}, settings(Type::Distribution, QStringLiteral("ofbrt"))));
    const int threads = QThread::idealThreadCount();
    QTRY_COMPARE(begun.load(), threads);
    run_->stop();
    QVERIFY(run_->isRunning()); // those in flight end by themselves
    gate.release(1000);
    QTRY_COMPARE(finished.size(), 1);
    QCOMPARE(begun.load(), threads);
    QCOMPARE(counted.size(), threads);
    QVERIFY(summary_.stopped);
    QCOMPARE(summary_.completed, 0);
    QCOMPARE(demo_.requests(detailAction).size(), 1);
}

void TestDistributionRun::stopsWhileWaitingForTheService()
{
    demo_.misbehave(detailAction, QStringLiteral("hold"));
    QSignalSpy finished(run_.get(), &DistributionRun::finished);
    QVERIFY(run_->start({order(1)}, settings(Type::Distribution, QString())));
    QVERIFY(!run_->start({order(2)}, settings(Type::Distribution, QString())));
    QTRY_COMPARE(demo_.state().value(QStringLiteral("held")).toInt(), 1);
    run_->stop();
    QCOMPARE(finished.size(), 1);
    QVERIFY(!run_->isRunning());
    QVERIFY(tree(folder_->path()).isEmpty());
}

void TestDistributionRun::aFullDiskFailsWhatDoesNotFit()
{
    run({order(1)}, settings(Type::DownloadDelivery, QStringLiteral("b")));
    const QDir share(demo_.state().value(QStringLiteral("share")).toString() +
                     QStringLiteral("/海棠路旗舰店/选片/TS10001-1/选片/all"));
    constexpr int photoSize = 900000;
    for (const char *name : {"IMG_0003.jpg", "IMG_0005.jpg", "IMG_0007.jpg", "IMG_0009.jpg"}) {
        QFile photo(share.filePath(QString::fromLatin1(name)));
        QVERIFY(photo.open(QIODevice::WriteOnly) && photo.write(QByteArray(photoSize, 'p')) > 0);
    }
    const SmallDisk disk(target(QStringLiteral("disk")), 2);
    if (!disk.isMounted())
        QSKIP("no right to mount");
    RunSettings small = settings(Type::DownloadOriginals, QStringLiteral("f"));
    small.directory = target(QStringLiteral("disk"));
    const RunSummary summary = run({order(1)}, small);
    const QString made = small.directory + QLatin1Char('/') + orderFolder;
    const QStringList written = tree(made);
    QVERIFY(!summary.errors.isEmpty());
    QCOMPARE(written.size() + summary.errors.size(), 4);
    QCOMPARE(demo_.requests(reports).size(), written.size());
    for (const QString &file : written)
        QCOMPARE(QFileInfo(made + QLatin1Char('/') + file).size(), qint64(photoSize));
}

void TestDistributionRun::aDirectoryThatCannotBeMade()
{
    QFile blocked(target(QStringLiteral("file")));
    QVERIFY(blocked.open(QIODevice::WriteOnly));
    RunSettings wanted = settings(Type::Distribution, QStringLiteral("f"));
    wanted.directory = blocked.fileName();
    const RunSummary summary = run({order(1)}, wanted);
    QCOMPARE(summary.completed, 0);
    QCOMPARE(summary.errors.size(), 1);
    QVERIFY(summary.errors.first().endsWith(QStringLiteral(" 路径创建失败/连接不上服务端")));
}

int main(int argc, char **argv)
{
    QGuiApplication application(argc, argv);
    TestDistributionRun test;
    return QTest::qExec(&test, argc, argv);
}
#include "test_distributionrun.moc"
