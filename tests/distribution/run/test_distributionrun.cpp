#include "distribution/rules/distributionrequests.h"
#include "distribution/run/distributionrun.h"
#include "distribution/run/fjdataoperate.h"
#include "ledger/ledger.h"
#include "tasks/background.h"
#include "tests/support/datarows.h"
#include "tests/support/files.h"
#include "tests/support/login.h"
#include "tests/support/patience.h"
#include "tests/support/smalldisk.h"
#include "tests/support/text.h"

#include <QDir>
#include <QImage>
#include <QImageReader>
#include <QJsonArray>
#include <QRegularExpression>
#include <QSemaphore>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

using Type = DesignFileSplitTypes;

Q_DECLARE_METATYPE(DesignFileSplitTypes)

namespace {

const QString reports = "download_success"_s;
const QString detailAction = "orderphotodetail"_s;
const QString orderFolder = "TS10001-服务1 周子墨-林婉清 到店自取"_s;

DownloadOptions optionsOf(const QString &letters)
{
    const auto has = [&letters](char letter) { return letters.contains(QLatin1Char(letter)); };
    return {has('o'), has('f'), has('b'), has('r'), has('t')};
}

/// "a{1,2}" as "a1" and "a2".
QStringList spreadOut(const QStringList &patterns)
{
    static const QRegularExpression choice("\\{([^}]*)\\}"_s);
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

} // namespace

/// Runs against the demo service, on real files, without a window.
class TestDistributionRun : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        logIn(&demo_);
        folder_ = std::make_unique<QTemporaryDir>();
        run_ = std::make_unique<DistributionRun>();
        run_->setPerform(&FJDataOperate::perform);
        connect(run_.get(), &DistributionRun::finished, this,
                [this](const RunSummary &summary) { summary_ = summary; });
    }

    void cleanup()
    {
        demo_.release();
        run_.reset();
        diskPool().waitForDone();
    }

    void writesTheTreeOfEachMode_data()
    {
        // expected: {1,2} in a name stands for several
        addColumns<DesignFileSplitTypes, QString, QStringList>({"type", "options", "expected"});

        const QString all = "obrft"_s;
        const QStringList downloaded{"原始档/IMG_000{3,5,7,9}.jpg"_s, "原始档/IMG_0003.CR2"_s,
                                     "原始档/IMG_0005.nef"_s,         "原图/IMG_000{3,5,7,9}.jpg"_s,
                                     "简修/IMG_000{3,5,7,9}.jpg"_s,   "简修/汰片/TP_0001.jpg"_s,
                                     "精修/IMG_000{3,5}.jpg"_s};
        newRow("下载原始档, all", Type::DownloadOriginals, all, downloaded);
        newRow("下载照片交付, all", Type::DownloadDelivery, all, downloaded);
        newRow("下载原始档, usual", Type::DownloadOriginals, "o",
               QStringList(downloaded.mid(0, 3)));
        newRow("下载照片交付, usual", Type::DownloadDelivery, "ft",
               QStringList{downloaded.at(3), downloaded.at(6)});
        newRow("下载原始档, 简修 alone", Type::DownloadOriginals, "b",
               QStringList(downloaded.mid(4, 1)));

        const QStringList sheet{"明细制作单.pdf"_s,           "其他/条形码.jpg"_s,
                                "其他/快递信息.txt"_s,        "其他/标记/IMG_0003.jpg"_s,
                                "裁剪/500011_IMG_0003.jpg"_s, "缩略图/IMG_000{3,5,7,9}.jpg"_s,
                                "缩略图/RD_000{1,2}.jpg"_s};
        const QString factory = "晨光制作厂 周子墨-林婉清 2026-01-15取 快递/"_s;
        const QStringList products{
            factory + "迎宾海报_/IMG_0003.jpg"_s, factory + "纪念相册 12寸_/IMG_000{3,5}.jpg"_s,
            factory + "纪念相册 12寸_ (2)/IMG_000{5,7}.jpg"_s,
            factory + "家庭套装_/IMG_000{3,5}.jpg"_s, factory + "组合框_/IMG_000{3,5}.jpg"_s};
        const QStringList archive{"入底/RD_000{1,2}.jpg"_s};
        const QStringList finished{"成品/IMG_000{3,5,7,9}.jpg"_s};
        newRow("下载选片结果, usual", Type::DownloadSelection, "ft",
               QStringList(sheet + products + archive + finished));
        newRow("下载选片结果, 精修 alone", Type::DownloadSelection, "t",
               QStringList(sheet + products + QStringList("成品/IMG_000{3,5}.jpg"_s)));

        QStringList filled = sheet + products;
        for (QString path : products) {
            filled << path.replace(QLatin1String("_/"), "_/缩略图/"_s)
                          .replace(QLatin1String("(2)/"), "(2)/缩略图/"_s);
            path.replace("缩略图"_s, "成品"_s);
            filled << path.replace(QLatin1String("{5,7}"), QLatin1String("5"));
        }
        filled << archive << "其他/成品/IMG_0009.jpg"_s;
        newRow("设计分件, usual", Type::Distribution, "ft", filled);
        newRow("设计分件, all", Type::Distribution, all,
               QStringList(filled + QStringList{factory + "纪念相册 12寸_ (2)/成品/"
                                                          "IMG_0007.jpg"_s,
                                                "汰片/TP_0001.jpg"_s,
                                                "其他/成品原始档/IMG_0003.{jpg,CR2}"_s,
                                                "其他/成品原始档/IMG_0005.{jpg,nef}"_s,
                                                "其他/成品原始档/IMG_000{7,9}.jpg"_s}));
    }

    void writesTheTreeOfEachMode()
    {
        QFETCH(DesignFileSplitTypes, type);
        QFETCH(QString, options);
        QFETCH(QStringList, expected);
        const RunSummary summary = run({order(1)}, settings(type, options));
        QCOMPARE(summary.errors, QStringList());
        QCOMPARE(summary.completed, 1);
        QCOMPARE(filesBelow(target(orderFolder)), spreadOut(expected));
        QCOMPARE(QDir(folder_->path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot).size(),
                 1);
        QCOMPARE(summary.proofs.size(), 1);
        QVERIFY(summary.proofs.first().proof.isComplete());
        QCOMPARE(summary.proofs.first().proof.expected, filesBelow(target(orderFolder)).size());
        QCOMPARE(summary.proofs.first().proof.others, 0);
        // IMG_0005 lies on its side; as an original it is delivered as it is.
        const auto width = [this](const QString &photo) {
            return QImageReader(target(orderFolder + photo)).size().width();
        };
        if (type == Type::DownloadDelivery)
            QCOMPARE(width("/原图/IMG_0005.jpg"_s), 400);
        if (options.contains(QLatin1Char('o')) && type != Type::Distribution)
            QCOMPARE(width("/原始档/IMG_0005.jpg"_s), 600);
        // A second run meets the same folders and adds none; what stands there besides is told.
        writeFile(target(orderFolder + "/旧/a.jpg"_s));
        const RunSummary second = run({order(1)}, settings(type, options));
        QCOMPARE(second.proofs.first().number, "TS10001-服务1"_s);
        QCOMPARE(second.proofs.first().proof.others, 1);
        QVERIFY(QDir(target(orderFolder + "/旧"_s)).removeRecursively());
        QCOMPARE(filesBelow(target(orderFolder)), spreadOut(expected));
    }

    void copiesWhatTheReplyNames()
    {
        run({order(1)}, settings(Type::Distribution, "ofbt"_s));
        const QDir share(demo_.share());
        const QString root = share.filePath("海棠路旗舰店/选片/TS10001-1/"_s);
        const QDir made(target(orderFolder));
        const QString product = "晨光制作厂 周子墨-林婉清 2026-01-15取 快递/"
                                "纪念相册 12寸_ (2)/"_s;
        const QList<QPair<QString, QString>> copies{
            {product + "IMG_0007.jpg"_s, "选片/all/IMG_0007.jpg"_s},
            {product + "成品/IMG_0005.jpg"_s, "精修/all/IMG_0005.jpg"_s},
            {product + "成品/IMG_0007.jpg"_s, "简修/all/IMG_0007.jpg"_s},
            {product + "缩略图/IMG_0007.jpg"_s, "选片/90/IMG_0007.jpg"_s},
            {"其他/成品原始档/IMG_0003.CR2"_s, "选片/all/IMG_0003.CR2"_s},
            {"其他/成品/IMG_0009.jpg"_s, "简修/all/IMG_0009.jpg"_s},
            {"入底/RD_0002.jpg"_s, "选片/all/RD_0002.jpg"_s}};
        for (const auto &[copy, source] : copies) {
            QVERIFY2(QFileInfo(root + source).size() > 0, qPrintable(source));
            QVERIFY2(readFile(made.filePath(copy)) == readFile(root + source), qPrintable(copy));
        }
        QVERIFY(readFile(made.filePath("其他/快递信息.txt"_s)).startsWith("收件人：林婉清"));
        QVERIFY(QImage(made.filePath("其他/条形码.jpg"_s)).width() > 100);
    }

    void knowsWhatEarlierRunsWrote()
    {
        const QTemporaryDir kept;
        Ledger ledger(kept.path());
        ledger.makeCurrent();
        RunSettings wanted = settings(Type::DownloadDelivery, "f"_s);
        run({order(1)}, wanted);
        const auto rows = [&ledger, this] {
            return ledger.answer([this](const LedgerReader &reader) {
                return reader.copiesBelow(target(orderFolder));
            });
        };
        const QVector<ledger::Copy> first = rows();
        QCOMPARE(first.size(), 4);
        for (const ledger::Copy &copy : first) {
            QVERIFY(copy.isFinished());
            QCOMPARE(copy.work, ledger::Work::DownloadDelivery);
            QCOMPARE(copy.order.number, "TS10001-1"_s);
            const bool upright = copy.target.endsWith("IMG_0005.jpg"_s);
            QCOMPARE(copy.kind, upright ? ledger::CopyKind::Upright : ledger::CopyKind::Bytes);
            QCOMPARE(copy.proof, upright ? ledger::Proof::None : ledger::Proof::Size);
        }

        // Two photos are not wanted any more; one of them was worked on, and is somebody's now.
        writeFile(target(orderFolder + "/原图/IMG_0009.jpg"_s), "cropped");
        wanted.leftOut.insert(order(1).identity(), {"8000011001"_s, "8000011004"_s});
        const OrderProof proof = run({order(1)}, wanted).proofs.first().proof;
        QCOMPARE(proof.expected, 2);
        QVERIFY(proof.isComplete());
        QCOMPARE(proof.others, 2);
        QCOMPARE(proof.earlier.size(), 1);
        QCOMPARE(QDir::cleanPath(proof.earlier.first().path),
                 target(orderFolder + "/原图/IMG_0003.jpg"_s));
        // Another card's files are no leftovers of this one's.
        const OrderProof other =
            run({order(1)}, settings(Type::DownloadOriginals, "o"_s)).proofs.first().proof;
        QVERIFY(other.earlier.isEmpty());
        QCOMPARE(other.ofOtherCards.size(), 3);

        // What fails is missing, and what stands there stays.
        const QDir share(demo_.share() + "/海棠路旗舰店/选片/TS10001-1/选片"_s);
        QVERIFY(QFile::rename(share.filePath("all/IMG_0007.jpg"_s), share.filePath("away"_s)));
        const OrderProof incomplete = run({order(1)}, wanted).proofs.first().proof;
        QVERIFY(QFile::rename(share.filePath("away"_s), share.filePath("all/IMG_0007.jpg"_s)));
        QCOMPARE(incomplete.missing.size(), 1);
        QCOMPARE(incomplete.missing.first().why, MissingFile::Why::NotReplaced);
        QCOMPARE(incomplete.inPlace, 1);
    }

    void leavesOutWhatIsNotWanted()
    {
        RunSettings wanted = settings(Type::DownloadOriginals, "ot"_s);
        wanted.leftOut.insert(order(1).identity(), {"8000011001"_s});
        run({order(1)}, wanted);
        QCOMPARE(filesBelow(target(orderFolder)),
                 spreadOut({"原始档/IMG_000{5,7,9}.jpg"_s, "原始档/IMG_0005.nef"_s,
                            "精修/IMG_0005.jpg"_s}));
        QCOMPARE(demo_.requests(reports).size(), 4); // IMG_0005 is two photos to the service

        wanted.options = optionsOf("f"_s);
        for (const Type type : {Type::DownloadSelection, Type::Distribution}) {
            const QString unused = "8000011004"_s; // no product uses it
            wanted.type = type;
            wanted.leftOut.insert(order(1).identity(), {"8000011001"_s, unused});
            run({order(1)}, wanted);
        }
        QCOMPARE(filesBelow(target(orderFolder + "/成品"_s)), spreadOut({"IMG_000{5,7}.jpg"_s}));
        QVERIFY(filesBelow(target(orderFolder + "/其他/成品"_s)).isEmpty());

        // A photo counts with all its files: the place of a raw file is taken by a folder.
        demo_.clearRequests();
        QVERIFY(QDir(target(orderFolder + "/原始档"_s)).removeRecursively());
        QVERIFY(QDir().mkpath(target(orderFolder + "/原始档/IMG_0005.nef"_s)));
        run({order(1)}, settings(Type::DownloadOriginals, "o"_s));
        QCOMPARE(demo_.requests(reports).size(), 3);
    }

    void countsInEachMode_data()
    {
        addColumns<DesignFileSplitTypes, QString, int, int, int>(
            {"type", "options", "results", "failed", "reported"});
        // Two files are gone from the share: IMG_0005.jpg in full size and the thumbnail of
        // IMG_0003.
        newRow("1", Type::DownloadOriginals, "of", 10, 2, 3);
        newRow("3", Type::DownloadDelivery, "of", 10, 2, 0);
        // 6 originals, 4 finished, 2 archive, 6 thumbnails, crop, mark, barcode, text, products,
        // sheet.
        newRow("2, selection", Type::DownloadSelection, "of", 24, 4, 3);
        newRow("2, without originals", Type::Distribution, "f", 24, 6, 0);
    }

    void countsInEachMode()
    {
        QFETCH(DesignFileSplitTypes, type);
        QFETCH(QString, options);
        QFETCH(int, results);
        QFETCH(int, failed);
        QFETCH(int, reported);
        run({order(1)}, settings(Type::DownloadDelivery, "b"_s));
        demo_.clearRequests();
        const QDir share(demo_.share() + "/海棠路旗舰店/选片/TS10001-1/选片"_s);
        QVERIFY(QFile::remove(share.filePath("all/IMG_0005.jpg"_s)));
        QVERIFY(QFile::remove(share.filePath("90/IMG_0003.jpg"_s)));

        QSignalSpy counted(run_.get(), &DistributionRun::resultCounted);
        QSignalSpy progress(run_.get(), &DistributionRun::progressChanged);
        QSignalSpy moved(run_.get(), &DistributionRun::photoDownloaded);
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
        QCOMPARE(moved.size(), reported); // once a photo, however many copies of it were made
        QCOMPARE(demo_.requests(reports).size(), reported);
        if (reported > 0) {
            const QString body = demo_.body(reports).section("&token"_s, 0, 0);
            const QString id = body.section(QLatin1Char('&'), 0, 0).mid(3);
            QVERIFY(std::any_of(moved.cbegin(), moved.cend(), [&](const QList<QVariant> &each) {
                return each.first().value<OrderIdentity>() == order(1).identity() &&
                       each.last() == id;
            }));
            QCOMPARE(body.section(QLatin1Char('&'), 1),
                     "shopid=101&eid=3101&superid=7001&personid=3101"_s);
        }
        QCOMPARE(summary.completed, 1);
        QVERIFY(summary.errors.filter("缩略图不存在"_s).size() <= 1); // in however many products
        const QString missing = "TS10001-服务1: IMG_0005.jpg"_s;
        QVERIFY(std::any_of(summary.errors.cbegin(), summary.errors.cend(),
                            [&](const QString &line) { return line.startsWith(missing); }));
    }

    void tellsWhatGoesOn()
    {
        QSignalSpy steps(run_.get(), &DistributionRun::stepChanged);
        run({order(1)}, settings(Type::Distribution, "f"_s));
        QStringList told;
        for (const QList<QVariant> &step : qAsConst(steps)) {
            const QString what = step.first().toString().section(QLatin1Char(' '), 0, 0);
            const bool takesItsTime = what == "正在拷贝照片"_s || what == "等待服务端图片"_s;
            if (!takesItsTime && (told.isEmpty() || told.last() != what))
                told.append(what);
        }
        QCOMPARE(told, (QStringList{"正在读取订单资料"_s, "正在创建产品文件夹"_s,
                                    "正在生成明细制作单"_s, QString()}));
        // While nothing but the barcode is still to come.
        demo_.hold("image"_s, -1);
        const QString waiting = "等待服务端图片 13/16"_s;
        QVERIFY(run_->start({order(1)}, settings(Type::DownloadSelection, "f"_s)));
        QTRY_VERIFY(!steps.isEmpty() && steps.last().first() == waiting);
        demo_.release();
        QTRY_VERIFY(!run_->isRunning());
    }

    void badDetailsAreListedAndTheRunGoesOn_data()
    {
        addColumns<QString, QJsonObject, QString>({"kind", "more", "error"});
        newRow("refused", "refuse"_s, QJsonObject{{"message"_s, "订单已锁定"_s}}, "订单已锁定"_s);
        newRow("dropped", "drop"_s, QJsonObject(), "连接不上服务端"_s);
        newRow("without order", "missing-fields"_s,
               QJsonObject{{"fields"_s, QJsonArray{"order"_s}}}, "订单资料不完整，没有订单号"_s);
        newRow("of another order", "stale"_s, QJsonObject(), "服务端返回了其他订单的资料"_s);
        newRow("photos of a wrong type", "data-wrong-type"_s,
               QJsonObject{{"fields"_s, QJsonArray{"images"_s, "goods"_s}}}, "没有可下载的照片"_s);
    }

    void badDetailsAreListedAndTheRunGoesOn()
    {
        QFETCH(QString, kind);
        QFETCH(QJsonObject, more);
        QFETCH(QString, error);
        const RunSettings wanted = settings(Type::DownloadDelivery, "f"_s);
        run({order(5)}, wanted);
        demo_.misbehave(detailAction, kind, more);
        const RunSummary summary = run({order(1), order(5)}, wanted);
        QVERIFY(!summary.errors.isEmpty());
        QCOMPARE(summary.errors.first(), "TS10001-服务1: "_s + error);
        QCOMPARE(summary.orders, 2);
        QCOMPARE(demo_.requests(detailAction).size(), 3);
        // The other order's hostile names stay in its folder.
        const QStringList made = filesBelow(folder_->path());
        QVERIFY(made.filter("TS10005-服务1 .._.._赵_强_-.._李_丽__"_s).size() >= 3);
        QCOMPARE(made.filter("/原图/.._.._out.jpg"_s).size(), 1);
    }

    void whatFailsIsListedAndTheOrderIsFinished_data()
    {
        addColumns<QString, int, QString>({"pictures", "failed", "error"});
        newRow("crop, mark and barcode", "http-error", 3, ".jpg图片下载失败:");
        newRow("no pictures", "not-a-picture", 3, ".jpg无法从数据创建图像");
        newRow("sheet", "none", 1, "明细制作单.pdf生成失败");
    }

    void whatFailsIsListedAndTheOrderIsFinished()
    {
        QFETCH(QString, pictures);
        QFETCH(int, failed);
        QFETCH(QString, error);
        demo_.misbehave("image"_s, pictures, {{"times"_s, failed}});
        if (pictures == "none"_s)
            QVERIFY(QDir().mkpath(target(orderFolder + "/明细制作单.pdf"_s)));
        const RunSummary summary = run({order(1)}, settings(Type::DownloadSelection, "f"_s));
        QCOMPARE(summary.completed, 1);
        QCOMPARE(summary.errors.size(), failed);
        QCOMPARE(summary.errors.filter(error).size(), failed);
        QVERIFY(summary.errors.filter("token"_s).isEmpty()); // the barcode's address has one
    }

    void whatIsNotTheBranchsOrInOtherHandsIsLeftAlone()
    {
        OrderData elsewhere = order(5);
        elsewhere.branch = "102"_s;
        const RunSummary refused = run({elsewhere}, settings(Type::DownloadDelivery, "f"_s));
        QCOMPARE(refused.refused, QStringList("TS10005-服务1"_s));
        QCOMPARE(refused.errors.size(), 1);
        QVERIFY(demo_.requests(detailAction).isEmpty());
        RunSettings blocked = settings(Type::Distribution, "f"_s);
        blocked.directory = writeFile(target("file"_s));
        const RunSummary unmade = run({order(1)}, blocked);
        QCOMPARE(unmade.refused.size(), 1);
        QVERIFY(unmade.errors.first().endsWith(" 路径创建失败/连接不上服务端"_s));
        demo_.clearRequests();
        const OrderIdentity identity{"101"_s, {}, order(1).orderPhotoId};
        QString tool;
        connect(run_.get(), &DistributionRun::resultCounted, this,
                [found = &tool, identity] { *found = ordersatwork::toolAt(identity); });
        const RunSettings wanted = settings(Type::DownloadDelivery, "f"_s);
        {
            const ordersatwork::Claim claim({identity}, "批量删除"_s);
            const RunSummary summary = run({order(1), order(5)}, wanted);
            QCOMPARE(summary.completed, 1);
            QCOMPARE(summary.errors.filter("批量删除"_s).size(), 1);
            QCOMPARE(demo_.requests(detailAction).size(), 1);
        }
        QCOMPARE(run({order(1)}, wanted).completed, 1);
        QCOMPARE(tool, "下载照片交付"_s);
        QVERIFY(ordersatwork::toolAt(identity).isEmpty());
    }

    void twoOrdersAreNotMixedInOneFolder()
    {
        // Both of one customer, and nothing tells which service of the order they are.
        demo_.misbehave(detailAction, "missing-fields"_s,
                        {{"fields"_s, QJsonArray{"order.servicetimes"_s}}, {"times"_s, 2}});
        const RunSummary summary =
            run({order(1), order(2)}, settings(Type::DownloadDelivery, "f"_s));
        QCOMPARE(summary.completed, 1);
        QCOMPARE(summary.errors.size(), 1);
        QVERIFY(summary.errors.first().contains("与前面的订单文件夹相同"_s));
    }

    void stopsAfterTheTasksInFlight()
    {
        std::atomic<int> begun{0};
        QSemaphore gate;
        run_->setPerform([&](const DistributionTask &task) {
            ++begun;
            gate.acquire();
            return TaskResult{true, task.type, task.imgName, task.imageId, {}, {}, {}};
        });
        QSignalSpy finished(run_.get(), &DistributionRun::finished);
        QSignalSpy counted(run_.get(), &DistributionRun::resultCounted);
        QVERIFY(run_->start({order(1), order(5)}, settings(Type::Distribution, "ofbrt"_s)));
        const int threads = QThread::idealThreadCount();
        QTRY_COMPARE(begun.load(), threads);
        run_->stop();
        QVERIFY(run_->isRunning()); // those in flight end by themselves
        QVERIFY(!run_->start({order(2)}, settings(Type::Distribution, QString())));
        gate.release(1000);
        QTRY_COMPARE(finished.size(), 1);
        QCOMPARE(begun.load(), threads);
        QCOMPARE(counted.size(), threads);
        QVERIFY(summary_.stopped);
        QCOMPARE(summary_.completed, 0);
        QCOMPARE(demo_.requests(detailAction).size(), 1);
    }

    void waitsForTheReportsUnlessTheyAreAbandoned()
    {
        demo_.hold(reports, -1);
        QSignalSpy finished(run_.get(), &DistributionRun::finished);
        QSignalSpy idle(run_.get(), &DistributionRun::idle);
        QVERIFY(run_->start({order(1)}, settings(Type::DownloadOriginals, "o"_s)));
        QTRY_COMPARE(finished.size(), 1);
        QVERIFY(run_->isBusy() && idle.isEmpty());
        run_->abandonReports();
        QVERIFY(!run_->isBusy());
        QCOMPARE(idle.size(), 1);
    }

    void aFullDiskFailsWhatDoesNotFit()
    {
        run({order(1)}, settings(Type::DownloadDelivery, "b"_s));
        const QDir share(demo_.share() + "/海棠路旗舰店/选片/TS10001-1/选片/all"_s);
        constexpr int photoSize = 900000;
        for (const char *name : {"IMG_0003.jpg", "IMG_0005.jpg", "IMG_0007.jpg", "IMG_0009.jpg"}) {
            writeFile(share.filePath(QString::fromLatin1(name)), QByteArray(photoSize, 'p'));
        }
        const SmallDisk disk(target("disk"_s), 2);
        if (!disk.isMounted())
            QSKIP("no right to mount");
        RunSettings small = settings(Type::DownloadOriginals, "f"_s);
        small.directory = target("disk"_s);
        const RunSummary summary = run({order(1)}, small);
        const QString made = small.directory + QLatin1Char('/') + orderFolder;
        const QStringList written = filesBelow(made);
        QVERIFY(!summary.errors.isEmpty());
        QCOMPARE(written.size() + summary.errors.size(), 4);
        QCOMPARE(demo_.requests(reports).size(), written.size());
        for (const QString &file : written)
            QCOMPARE(QFileInfo(made + QLatin1Char('/') + file).size(), qint64(photoSize));
    }

private:
    OrderData order(int number)
    {
        OrderData order;
        order.branch = "101"_s;
        order.orderPhotoId = QString::number(800000 + number);
        order.orderPayForKey = "TS%1"_s.arg(10000 + number);
        order.serviceTimes = "1"_s;
        return order;
    }

    RunSettings settings(Type type, const QString &options);

    RunSummary run(const QVector<OrderData> &orders, const RunSettings &settings)
    {
        QSignalSpy idle(run_.get(), &DistributionRun::idle);
        if (!run_->start(orders, settings) || (idle.isEmpty() && !idle.wait(60000)))
            qFatal("the run did not end");
        return summary_;
    }

    QString target(const QString &path) { return folder_->filePath(path); }

    DemoClient demo_;
    std::unique_ptr<QTemporaryDir> folder_;
    std::unique_ptr<DistributionRun> run_;
    RunSummary summary_; ///< of the last run
};

RunSettings TestDistributionRun::settings(Type type, const QString &options)
{
    RunSettings settings;
    settings.type = type;
    settings.directory = folder_->path();
    settings.options = optionsOf(options);
    settings.identity = {"101"_s, "7001"_s, "3101"_s};
    settings.namingRule = QStringLiteral(R"([{"name":"名","key":"name","separator":"_"}])");
    return settings;
}

QTEST_MAIN(TestDistributionRun)
#include "test_distributionrun.moc"
