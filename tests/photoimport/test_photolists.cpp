#include "photoimport/tforderlistmodel.h"
#include "photoimport/tfphotodeletion.h"
#include "photoimport/tfphotolistmodel.h"
#include "photoimport/tfthumbnailthread.h"
#include "tests/support/pictures.h"

#include <QAbstractItemModelTester>
#include <QJsonArray>
#include <QJsonDocument>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

namespace {

const QString share = QStringLiteral("\\\\nas\\share");

SourceFile file(const QString &path, const QVector<SourceJob> &jobs, qint64 size = 100)
{
    SourceFile made;
    made.path = path;
    made.name = path.section(QLatin1Char('/'), -1);
    made.size = size;
    made.jobs = jobs;
    return made;
}

SourceJob job(const char *kind, JobState state = JobState::Waiting, const char *message = "")
{
    return {QString::fromUtf8(kind), state, QString::fromUtf8(message)};
}

PhotoOrder order(const QString &id, const QVector<SourceFile> &files = {},
                 const QString &importPath = share)
{
    PhotoOrder made;
    made.info.id = id;
    made.info.orderPayForKey = QStringLiteral("TS") + id;
    made.info.importPath = importPath;
    made.files(0) = files;
    made.resummarise();
    return made;
}

orderqueries::PhotoEntry entry(const char *name, const char *path, const char *id)
{
    return {
        QString::fromUtf8(name), {}, share + QString::fromUtf8(path), QString::fromUtf8(id), {}};
}

QJsonObject parsed(const char *json)
{
    return QJsonDocument::fromJson(json).object();
}

} // namespace
Q_DECLARE_METATYPE(QVector<SourceFile>)

/// The lists of the photo import's window, without the window.
class TestPhotoLists : public QObject
{
    Q_OBJECT

private slots:
    void readsOrders();
    void choicesBecomeFiles();
    void mergesSearches();
    void statesOfOrders_data();
    void statesOfOrders();
    void onlyWhatIsLeftIsDone();
    void sharedFoldersAreFound();
    void resultsFindTheirFile();
    void photoRowsJoinFilesAndService();
    void deletionsStayInTheFolder();
    void thumbnailsAreUpright_data();
    void thumbnailsAreUpright();
    void hopelessPicturesHaveNone();
    void theThumbnailThreadReadsWhatIsWantedLast();
};

void TestPhotoLists::readsOrders()
{
    const auto found = photoorders::readOrders(
        parsed(
            R"({"openypml":1,"delyp":"0","data":[{"id":"7","netpath":"\\\\nas\\x","images":[)"
            R"({"id":1,"img_name":"a.jpg","localpath":"\\\\nas\\x\\原片\\a.jpg"},)"
            R"({"id":2,"img_name":"A.JPG","localpath":"\\\\NAS\\x\\all\\a.jpg"},)"
            R"({"id":3,"img_name":"..\\b.jpg","localpath":"\\\\nas\\x\\all\\..\\b.jpg"},)"
            R"({"id":4,"img_name":"c.jpg"},)"
            R"({"id":5,"img_name":"v.mp4","localpath":"\\\\nas\\x\\精修视频\\v.mp4"}]},{"id":7},)"
            R"({"mname":"nobody"},3,{"id":"8","imagesize_small":""}]})"),
        share);
    QVERIFY(found.isList);
    QCOMPARE(found.elements, 5);
    QCOMPARE(found.orders.size(), 2);
    QCOMPARE(found.orders.at(0).info.importPath, QStringLiteral("\\\\nas\\x"));
    QCOMPARE(found.orders.at(1).info.importPath, QString());
    QCOMPARE(found.orders.at(1).info.importPublicPath, share);
    QCOMPARE(found.orders.at(1).info.openypml, QStringLiteral("1"));
    QCOMPARE(found.orders.at(1).info.smallSize, 90);
    // Of what the service lists only what lies where the tool puts it is the tool's.
    QCOMPARE(found.orders.at(0).imported(0).size(), 1);
    QCOMPARE(found.orders.at(0).imported(0).first().id, QStringLiteral("2"));
    QCOMPARE(found.orders.at(0).imported(1).size(), 0);
    QCOMPARE(found.orders.at(0).imported(2).size(), 1);
    for (const char *json : {"{}", R"({"data":null})", R"({"data":"none"})"})
        QVERIFY(!photoorders::readOrders(parsed(json), share).isList);
}

void TestPhotoLists::choicesBecomeFiles()
{
    QTemporaryDir card;
    const QDir dir(card.path());
    QVERIFY(dir.mkpath(QStringLiteral("b")));
    for (const char *name : {"a10.jpg", "a9.JPG", "b/A9.jpg", "clip.mp4", "readme"}) {
        QFile made(dir.filePath(QLatin1String(name)));
        QVERIFY(made.open(QIODevice::WriteOnly) && made.write("12345") == 5);
    }
    FileChoice choice;
    choice.paths = QStringList{card.path()};
    choice.expand = true;
    FileChoiceResult result = describeChoice(choice);
    QCOMPARE(result.ignored, 2);
    QCOMPARE(result.files.size(), 3);
    QCOMPARE(result.clashes.size(), 1);
    QCOMPARE(result.clashes.first().size(), 2);
    QCOMPARE(result.files.first().size, 5);
    QCOMPARE(result.files.first().jobs.size(), 4);

    // A clash with what is listed counts as well; a listed file itself is only repeated.
    choice = {{dir.filePath(QStringLiteral("a9.JPG")), dir.filePath(QStringLiteral("a10.jpg"))},
              false,
              0,
              {file(dir.filePath(QStringLiteral("b/A9.jpg")), {})}};
    result = describeChoice(choice);
    QCOMPARE(result.clashes.size(), 1);
    choice.listed = {file(dir.filePath(QStringLiteral("a9.JPG")), {})};
    result = describeChoice(choice);
    QVERIFY(result.clashes.isEmpty());
    QCOMPARE(result.repeated, 1);
    QCOMPARE(result.files.size(), 1);

    for (const int mode : {1, 2, 9}) {
        choice = {{card.path()}, true, mode, {}};
        result = describeChoice(choice);
        QCOMPARE(result.files.size(), 1);
        QCOMPARE(result.files.first().jobs.size(), 1);
    }
}

void TestPhotoLists::mergesSearches()
{
    const QVector<SourceFile> waiting{file(QStringLiteral("/c/1.jpg"), {job("all")})};
    const QVector<SourceFile> finished{
        file(QStringLiteral("/c/2.jpg"), {job("all", JobState::Done)})};
    PhotoOrder renewed = order(QStringLiteral("3"));
    renewed.info.mname = QStringLiteral("新");
    const PhotoOrder fresh = order(QStringLiteral("4"));
    const QVector<PhotoOrder> merged = photoorders::merged({order(QStringLiteral("1"), waiting),
                                                            order(QStringLiteral("2"), finished),
                                                            order(QStringLiteral("3"), finished)},
                                                           {fresh, renewed});
    QCOMPARE(merged.size(), 3);
    QCOMPARE(merged.at(0).info.id, QStringLiteral("1")); // not found, but not finished either
    QCOMPARE(merged.at(1).info.id, QStringLiteral("4"));
    QCOMPARE(merged.at(2).info.mname, QStringLiteral("新"));
    QCOMPARE(merged.at(2).files(0).size(), 1);
}

void TestPhotoLists::statesOfOrders_data()
{
    using Files = QVector<SourceFile>;
    QTest::addColumn<Files>("files");
    QTest::addColumn<int>("run");
    QTest::addColumn<QString>("text");
    const auto done = job("all", JobState::Done);
    const auto failed = job("90", JobState::Failed, "x");
    const QString path = QStringLiteral("/c/1.jpg");
    SourceFile refused = file(path, {done});
    refused.registration = RegistrationState::Refused;
    QTest::newRow("none") << Files{} << 0 << "未选择";
    QTest::newRow("chosen") << Files{file(path, {job("all")})} << 0 << "已选择";
    QTest::newRow("queued") << Files{file(path, {job("all")})} << 1 << "等待导片";
    QTest::newRow("active") << Files{file(path, {done, failed}), file(path, {done, job("90")})} << 2
                            << "导片中 1/2";
    QTest::newRow("stopped") << Files{file(path, {done}), file(path, {job("all")})} << 0
                             << "已停止 1/2";
    QTest::newRow("failed") << Files{file(path, {done}), file(path, {done, failed})} << 0
                            << "成功:1, 失败:1";
    QTest::newRow("refused") << Files{refused} << 0 << "未登记:1";
    QTest::newRow("done") << Files{file(path, {done})} << 0 << "导片完成";
}

void TestPhotoLists::statesOfOrders()
{
    QFETCH(QVector<SourceFile>, files);
    QFETCH(int, run);
    PhotoOrder shown = order(QStringLiteral("1"), files);
    shown.run = PhotoOrder::Run(run);
    QTEST(photoorders::stateText(shown, 0), "text");
    QCOMPARE(photoorders::stateText(shown, 1).contains(QStringLiteral("导片完成")), false);
}

void TestPhotoLists::onlyWhatIsLeftIsDone()
{
    const PhotoOrder started =
        order(QStringLiteral("1"),
              {file(QStringLiteral("/c/0.jpg"),
                    {job("all", JobState::Done), job("90", JobState::Done),
                     job("190", JobState::Done), job("1920", JobState::Done)}),
               file(QStringLiteral("/c/1.jpg"), {job("all", JobState::Done), job("90"),
                                                 job("190", JobState::Failed), job("1920")}),
               file(QStringLiteral("/c/2.jpg"), {job("all"), job("90"), job("190"), job("1920")})});
    const auto names = [](const OrderInfo &info) {
        QStringList made;
        for (const PhotoInfo &photo : info.photos)
            made.append(QString::number(photo.sourceIndex) + QLatin1Char(':') + photo.kind +
                        photo.sourcePath.right(5));
        return made.join(QLatin1Char(' '));
    };
    QCOMPARE(names(photoorders::withJobs(started, 0)),
             QStringLiteral("1:901.jpg 1:1901.jpg 1:19201.jpg 2:all2.jpg 2:902.jpg 2:1902.jpg "
                            "2:19202.jpg"));
    QCOMPARE(names(photoorders::withJobs(started, 0, {2})),
             QStringLiteral("2:all2.jpg 2:902.jpg 2:1902.jpg 2:19202.jpg"));
    QCOMPARE(names(photoorders::withMainJobs(started, 0, {0, 2})),
             QStringLiteral("0:all0.jpg 2:all2.jpg"));
    QVERIFY(photoorders::withMainJobs(started, 0, {}).photos.isEmpty());
}

void TestPhotoLists::sharedFoldersAreFound()
{
    const QVector<PhotoOrder> orders{
        order(QStringLiteral("1")), order(QStringLiteral("2"), {}, share + QStringLiteral("\\2")),
        order(QStringLiteral("3"), {}, QStringLiteral("//NAS/Share/")),
        order(QStringLiteral("4"), {}, {}), order(QStringLiteral("5"), {}, {})};
    QCOMPARE(photoorders::sharedFoldersQuestion(orders, {2, 0, 1}).section(QLatin1Char('\n'), 1),
             QStringLiteral("\n//NAS/Share/\nTS1 \nTS3 "));
    QCOMPARE(photoorders::sharedFoldersQuestion(orders, {1, 3}), QString());
}

void TestPhotoLists::resultsFindTheirFile()
{
    tforderlistmodel model;
    const QAbstractItemModelTester tester(&model);
    model.setOrders({order(QStringLiteral("1")), order(QStringLiteral("2"))});
    model.addFiles(1, {file(QStringLiteral("/c/0.jpg"), {job("all"), job("90")}),
                       file(QStringLiteral("/c/1.jpg"), {job("all"), job("90")})});
    const QModelIndex state = model.index(1, tforderlistmodel::StateColumn);
    const QModelIndex bar = model.index(1, tforderlistmodel::ProgressColumn);
    PhotoInfo result;
    result.sourcePath = QStringLiteral("/c/1.jpg");
    result.kind = QStringLiteral("90");
    result.sourceIndex = 0; // the list has changed since
    const QString second = QStringLiteral("2");
    QCOMPARE(model.applyResult(second, result, false, QStringLiteral("坏")), 1);
    QCOMPARE(model.applyResult(QStringLiteral("1"), result, true, {}), -1);
    QCOMPARE(model.applyResult(QStringLiteral("gone"), result, true, {}), -1);
    QSignalSpy changed(&model, &QAbstractItemModel::dataChanged);
    model.flush();
    QCOMPARE(changed.count(), 1);
    QCOMPARE(state.data().toString(), QStringLiteral("成功:0, 失败:1"));
    QCOMPARE(bar.data(tforderlistmodel::ProgressRole).toDouble(), 0.25);
    const TransferProgress progress = model.progressOf({second, QStringLiteral("gone")});
    QCOMPARE(progress.filesTotal, 2);
    QCOMPARE(progress.bytesDone, 50);

    QCOMPARE(
        model.applyRegistration(second, result, RegistrationState::Refused, QStringLiteral("满")),
        1);
    QCOMPARE(model.files(1).at(1).failureText(), QStringLiteral("坏；登记失败: 满"));
    model.resetFailedJobs(1, {0});
    QVERIFY(model.files(1).at(1).hasFailed());
    model.resetFailedJobs(1, {});
    QVERIFY(!model.files(1).at(1).hasFailed());
    model.removeFiles(1, {0});
    QCOMPARE(model.files(1).size(), 1);
    model.setPhotoMode(2);
    QCOMPARE(state.data().toString(), QStringLiteral("未选择"));
    QCOMPARE(model.applyResult(second, result, true, {}), -1);
}

void TestPhotoLists::photoRowsJoinFilesAndService()
{
    PhotoOrder shown = order(QStringLiteral("1"), {file(QStringLiteral("/c/a.jpg"), {job("all")}),
                                                   file(QStringLiteral("/c/b.jpg"), {job("all")})});
    shown.importedByMode[0] = {entry("A.JPG", "\\all\\A.JPG", "2"),
                               entry("old.jpg", "\\all\\old.jpg", "3")};
    tfphotolistmodel model;
    const QAbstractItemModelTester tester(&model);
    model.show(&shown, 0);
    QStringList rows;
    for (int row = 0; row < model.rowCount(); ++row)
        rows.append(model.photo(row).name + QLatin1Char('=') + model.photo(row).serviceId);
    QCOMPARE(rows.join(QLatin1Char(' ')), QStringLiteral("a.jpg=2 b.jpg= old.jpg=3"));

    QCOMPARE(model.wantedThumbnails(0, 99).size(), 3);
    model.setThumbnail(QStringLiteral("/c/b.jpg"), {});
    model.setThumbnail(QStringLiteral("/c/a.jpg"), cornerPicture({40, 30}));
    QCOMPARE(model.wantedThumbnails(0, 99).size(), 1);
    QVERIFY(model.index(1).data(tfphotolistmodel::NoThumbnailRole).toBool());
    QVERIFY(!model.index(0).data(tfphotolistmodel::ThumbnailRole).value<QImage>().isNull());
    model.updateFile(1, file(QStringLiteral("/c/b.jpg"), {job("all", JobState::Done)}));
    QVERIFY(model.photo(1).file.isComplete());
    model.updateFile(0, file(QStringLiteral("/c/b.jpg"), {})); // of an order shown before
    QCOMPARE(model.photo(0).file.jobs.size(), 1);
    model.show(nullptr, 0);
    QCOMPARE(model.rowCount(), 0);
}

void TestPhotoLists::deletionsStayInTheFolder()
{
    const QStringList names{QStringLiteral("a.jpg"), QStringLiteral("..\\..\\b.jpg")};
    DeletionRequest request = deletionOf(order(QStringLiteral("1")), {}, names, 0);
    QCOMPARE(request.paths.at(0), share + QStringLiteral("\\all\\a.jpg"));
    QCOMPARE(request.paths.at(1).count(QLatin1Char('\\')),
             request.paths.at(0).count(QLatin1Char('\\')));
    request = deletionOf(order(QStringLiteral("1")), {}, names, 1);
    QCOMPARE(request.paths.at(0), share + QStringLiteral("\\试拍视频\\a.jpg"));
    QVERIFY(deletionOf(order(QStringLiteral("1"), {}, {}), {}, names, 0).paths.isEmpty());
}

void TestPhotoLists::thumbnailsAreUpright_data()
{
    QTest::addColumn<int>("orientation");
    QTest::addColumn<QColor>("topLeft");
    QTest::addColumn<QColor>("topRight");
    QTest::newRow("as it is") << 1 << QColor(Qt::red) << QColor(Qt::green);
    QTest::newRow("mirrored") << 2 << QColor(Qt::green) << QColor(Qt::red);
    QTest::newRow("upside down") << 3 << QColor(Qt::gray) << QColor(Qt::blue);
    QTest::newRow("flipped") << 4 << QColor(Qt::blue) << QColor(Qt::gray);
    QTest::newRow("transposed") << 5 << QColor(Qt::red) << QColor(Qt::blue);
    QTest::newRow("turned right") << 6 << QColor(Qt::blue) << QColor(Qt::red);
    QTest::newRow("transversed") << 7 << QColor(Qt::gray) << QColor(Qt::green);
    QTest::newRow("turned left") << 8 << QColor(Qt::green) << QColor(Qt::gray);
}

void TestPhotoLists::thumbnailsAreUpright()
{
    QFETCH(int, orientation);
    QTemporaryDir folder;
    QFile photo(folder.filePath(QStringLiteral("photo.jpg")));
    QVERIFY(photo.open(QIODevice::WriteOnly));
    photo.write(jpegOf(cornerPicture({1200, 800}), orientation));
    photo.close();
    const QImage shown = tfthumbnailthread::thumbnailOf(photo.fileName(), 120);
    QCOMPARE(shown.size(), orientation < 5 ? QSize(120, 80) : QSize(80, 120));
    const auto isNear = [](const QColor &one, const QColor &other) {
        return qAbs(one.red() - other.red()) + qAbs(one.green() - other.green()) +
                   qAbs(one.blue() - other.blue()) <
               60;
    };
    QFETCH(QColor, topLeft);
    QFETCH(QColor, topRight);
    QVERIFY(isNear(shown.pixelColor(4, 4), topLeft));
    QVERIFY(isNear(shown.pixelColor(shown.width() - 5, 4), topRight));
    // None is enlarged.
    QCOMPARE(tfthumbnailthread::thumbnailOf(photo.fileName(), 4000).width(),
             orientation < 5 ? 1200 : 800);
}

void TestPhotoLists::hopelessPicturesHaveNone()
{
    QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("photo.jpg"));
    const auto thumbnailOf = [&path](const QByteArray &bytes) {
        QFile photo(path);
        photo.open(QIODevice::WriteOnly);
        photo.write(bytes);
        photo.close();
        return tfthumbnailthread::thumbnailOf(path, 120);
    };
    QByteArray claims = jpegOf(cornerPicture({64, 64}));
    const int frame = claims.indexOf("\xff\xc0");
    QVERIFY(frame > 0);
    claims.replace(frame + 5, 4, QByteArray("\xea\x60\xea\x60", 4)); // 60,000 by 60,000
    QVERIFY(thumbnailOf(claims).isNull());
    QVERIFY(thumbnailOf("no picture at all").isNull());
    QVERIFY(thumbnailOf({}).isNull());
    QVERIFY(tfthumbnailthread::thumbnailOf(folder.filePath(QStringLiteral("none")), 120).isNull());
}

void TestPhotoLists::theThumbnailThreadReadsWhatIsWantedLast()
{
    QTemporaryDir folder;
    QStringList paths;
    for (int index = 0; index < 40; ++index) {
        QFile photo(folder.filePath(QStringLiteral("%1.jpg").arg(index)));
        QVERIFY(photo.open(QIODevice::WriteOnly));
        photo.write(jpegOf(cornerPicture({1600, 1200})));
        paths.append(photo.fileName());
    }
    tfthumbnailthread thread;
    QStringList read;
    connect(&thread, &tfthumbnailthread::thumbnailReady, this,
            [&read](const QString &path) { read.append(path); });
    thread.want(paths, 120);
    thread.want({paths.last()}, 120);
    QTRY_VERIFY(read.contains(paths.last()));
    QVERIFY(read.size() < 3); // the one that was being read, at most, and the one wanted
    thread.want(paths, 120);
    thread.stop();
    QVERIFY(thread.wait());
    thread.want(paths, 120);
    QVERIFY(!thread.isRunning());
}

QTEST_GUILESS_MAIN(TestPhotoLists)
#include "test_photolists.moc"
