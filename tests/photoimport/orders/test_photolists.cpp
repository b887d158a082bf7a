#include "look/colours.h"
#include "photoimport/imported/tfphotolistmodel.h"
#include "photoimport/orders/foundorders.h"
#include "photoimport/orders/tforderlistmodel.h"
#include "tests/support/datarows.h"
#include "tests/support/files.h"
#include "tests/support/pictures.h"
#include "tests/support/text.h"

#include <QAbstractItemModelTester>
#include <QJsonArray>
#include <QJsonDocument>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

namespace {

const QString share = "\\\\nas\\share"_s;

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
    made.info.orderPayForKey = "TS"_s + id;
    made.info.importPath = importPath;
    made.files(PhotoMode::Photos) = files;
    made.resummarise();
    return made;
}

orderqueries::OrderPhoto entry(const char *name, const char *path, const char *id)
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

    void choicesBecomeFiles()
    {
        QTemporaryDir card;
        const QDir dir(card.path());
        QVERIFY(dir.mkpath("b"_s));
        for (const char *name : {"a10.jpg", "a9.JPG", "b/A9.jpg", "clip.mp4", "readme"}) {
            writeFile(dir.filePath(QLatin1String(name)), "12345");
        }
        FileChoice choice;
        choice.paths = QStringList{card.path()};
        choice.expand = true;
        FileChoiceResult result = describeChoice(choice);
        QCOMPARE(chosenfiles::kindsText(result.ignored), ".mp4 1 个，无扩展名 1 个"_s);
        QCOMPARE(result.files.size(), 3);
        QCOMPARE(result.clashes.size(), 1);
        QCOMPARE(result.clashes.first().size(), 2);
        QCOMPARE(result.files.first().size, 5);
        QCOMPARE(result.files.first().jobs.size(), 4);

        // A listed file itself is no clash, but repeated.
        choice = {{dir.filePath("a9.JPG"_s), dir.filePath("a10.jpg"_s)},
                  false,
                  PhotoMode::Photos,
                  {file(dir.filePath("a9.JPG"_s), {})}};
        result = describeChoice(choice);
        QVERIFY(result.clashes.isEmpty());
        QCOMPARE(result.repeated, 1);
        QCOMPARE(result.files.size(), 1);

        for (const PhotoMode mode :
             {PhotoMode::TrialVideos, PhotoMode::RetouchedVideos, PhotoMode::Unknown}) {
            choice = {{card.path()}, true, mode, {}};
            result = describeChoice(choice);
            QCOMPARE(result.files.size(), 1);
            QCOMPARE(result.files.first().jobs.size(), 1);
        }
    }

    void mergesSearches()
    {
        const QVector<SourceFile> waiting{file("/c/1.jpg"_s, {job("all")})};
        const QVector<SourceFile> finished{file("/c/2.jpg"_s, {job("all", JobState::Done)})};
        PhotoOrder renewed = order("3"_s);
        renewed.info.mname = "新"_s;
        const PhotoOrder fresh = order("4"_s);
        const QVector<PhotoOrder> merged = photoorders::merged(
            {order("1"_s, waiting), order("2"_s, finished), order("3"_s, finished)},
            {fresh, renewed});
        QCOMPARE(merged.size(), 3);
        QCOMPARE(merged.at(0).info.id, "1"_s); // not found, but not finished either
        QCOMPARE(merged.at(1).info.id, "4"_s);
        QCOMPARE(merged.at(2).info.mname, "新"_s);
        QCOMPARE(merged.at(2).files(PhotoMode::Photos).size(), 1);
    }

    void statesOfOrders_data()
    {
        using Files = QVector<SourceFile>;
        addColumns<Files, int, QString, QString, unsigned int>(
            {"files", "run", "text", "bar", "colour"});
        const auto done = job("all", JobState::Done);
        const auto failed = job("90", JobState::Failed, "x");
        const QString path = "/c/1.jpg"_s;
        const auto going = colours::accentHover;
        SourceFile refused = file(path, {done});
        refused.registration = RegistrationState::Refused;
        newRow("none", Files{}, 0, "未选择", QString(), going);
        newRow("chosen", Files{file(path, {job("all")})}, 0, "已选择", "0%", going);
        newRow("queued", Files{file(path, {job("all")})}, 1, "等待导片", "0%", going);
        newRow("active", Files{file(path, {done}), file(path, {done, job("90")})}, 2, "导片中 1/2",
               "75%", going);
        newRow("stopped", Files{file(path, {done}), file(path, {job("all")})}, 0, "已停止 1/2",
               "50%", going);
        newRow("failed", Files{file(path, {done}), file(path, {done, failed})}, 0, "成功:1, 失败:1",
               "失败 1", colours::failure);
        newRow("refused", Files{refused}, 0, "未登记:1", "未登记 1", colours::failure);
        newRow("done", Files{file(path, {done})}, 0, "导片完成", "100%", colours::success);
        newRow("raw", Files{file(path, {done, job("90", JobState::Impossible)})}, 0,
               "完成, 没有小图:1", "100%", colours::success);
    }

    void statesOfOrders()
    {
        QFETCH(QVector<SourceFile>, files);
        QFETCH(int, run);
        PhotoOrder shown = order("1"_s, files);
        shown.run = PhotoOrder::Run(run);
        QTEST(photoorders::stateText(shown, PhotoMode::Photos), "text");
        QTEST(photoorders::progressText(shown, PhotoMode::Photos), "bar");
        QTEST(photoorders::progressColour(shown, PhotoMode::Photos), "colour");
        QCOMPARE(photoorders::stateText(shown, PhotoMode::TrialVideos).contains("导片完成"_s),
                 false);
    }

    void outcomes()
    {
        SourceFile full =
            file("/c/1.jpg"_s, {job("all", JobState::Failed, "原图拷贝失败"),
                                job("90", JobState::Failed, "x"), job("190", JobState::Done)});
        full.jobs[0].failure.reason = full.jobs[1].failure.reason = "满"_s;
        const SourceFile raw =
            file("/c/2.nef"_s, {job("all", JobState::Done), job("90", JobState::Impossible)});
        PhotoOrder refused = order("1"_s, {full, raw});
        refused.folderRefusal = "x"_s;
        RunOutcome outcome;
        outcome.add(refused, PhotoMode::Photos);
        outcome.add(order("2"_s, {full}), PhotoMode::Photos);
        QCOMPARE(outcome.text(), "导片结束，2 个文件失败，1 项未登记。\n满: 2 个文件\n"
                                 "没有小图: 1 个文件（这类文件只导入原图）\n"
                                 "请在照片列表中查看原因，再点“重试失败”。"_s);
        outcome = {};
        outcome.add(order("3"_s, {raw}), PhotoMode::Photos);
        QCOMPARE(outcome.text(), "导片完成！\n没有小图: 1 个文件（这类文件只导入原图）"_s);
        const QString all = "文件已全部导入"_s;
        QCOMPARE(
            photoorders::nothingToImport({order("1"_s), order("3"_s, {raw})}, PhotoMode::Photos),
            all);
        QVERIFY(photoorders::nothingToImport({order("1"_s)}, PhotoMode::Photos)
                    .startsWith("请先为订单添加"_s));
        QVERIFY(photoorders::nothingToImport({order("3"_s, {raw}), refused}, PhotoMode::Photos)
                    .isEmpty());
    }

    void onlyWhatIsLeftIsDone()
    {
        const PhotoOrder started = order(
            "1"_s, {file("/c/0.jpg"_s, {job("all", JobState::Done), job("90", JobState::Done),
                                        job("190", JobState::Done), job("1920", JobState::Done)}),
                    file("/c/1.jpg"_s, {job("all", JobState::Done), job("90"),
                                        job("190", JobState::Failed), job("1920")}),
                    file("/c/2.jpg"_s, {job("all"), job("90"), job("190"), job("1920")})});
        const auto names = [](const OrderInfo &info) {
            QStringList made;
            for (const PhotoInfo &photo : info.photos)
                made.append(QString::number(photo.sourceIndex) + QLatin1Char(':') + photo.kind +
                            photo.sourcePath.right(5));
            return made.join(QLatin1Char(' '));
        };
        QCOMPARE(names(photoorders::withJobs(started, PhotoMode::Photos)),
                 "1:901.jpg 1:1901.jpg 1:19201.jpg 2:all2.jpg 2:902.jpg 2:1902.jpg "
                 "2:19202.jpg"_s);
        QCOMPARE(names(photoorders::withJobs(started, PhotoMode::Photos, {2})),
                 "2:all2.jpg 2:902.jpg 2:1902.jpg 2:19202.jpg"_s);
        QCOMPARE(names(photoorders::withMainJobs(started, PhotoMode::Photos, {0, 2})),
                 "0:all0.jpg 2:all2.jpg"_s);
        QVERIFY(photoorders::withMainJobs(started, PhotoMode::Photos, {}).photos.isEmpty());
    }

    void sharedFoldersAreFound()
    {
        const QVector<PhotoOrder> orders{order("1"_s), order("2"_s, {}, share + "\\2"_s),
                                         order("3"_s, {}, "//NAS/Share/"_s), order("4"_s, {}, {}),
                                         order("5"_s, {}, {})};
        QCOMPARE(
            photoorders::sharedFoldersQuestion(orders, {2, 0, 1}).section(QLatin1Char('\n'), 1),
            "\n//NAS/Share/\nTS1 \nTS3 "_s);
        QCOMPARE(photoorders::sharedFoldersQuestion(orders, {1, 3}), QString());
    }

    void resultsFindTheirFile()
    {
        tforderlistmodel model;
        const QAbstractItemModelTester tester(&model);
        model.setOrders({order("1"_s), order("2"_s)});
        model.setFiles(1, {file("/c/0.jpg"_s, {job("all"), job("90")}),
                           file("/c/1.jpg"_s, {job("all"), job("90")})});
        const QModelIndex state = model.index(1, tforderlistmodel::StateColumn);
        const QModelIndex bar = model.index(1, tforderlistmodel::ProgressColumn);
        PhotoInfo result;
        result.sourcePath = "/c/1.jpg"_s;
        result.kind = "90"_s;
        result.sourceIndex = 0; // the list has changed since
        const OrderIdentity second{{}, "2"_s, {}};
        model.applyFailure(second, result, {"盘满"_s, false});
        QCOMPARE(model.applyResult(second, result, false, "坏"_s), 1);
        QCOMPARE(model.files(1).at(1).failureReasons(), QStringList("盘满"_s));
        QCOMPARE(model.applyResult({{}, "1"_s, {}}, result, true, {}), -1);
        QCOMPARE(model.applyResult({{}, "gone"_s, {}}, result, true, {}), -1);
        QSignalSpy changed(&model, &QAbstractItemModel::dataChanged);
        model.flush();
        QCOMPARE(changed.count(), 1);
        QCOMPARE(state.data().toString(), "成功:0, 失败:1"_s);
        QCOMPARE(bar.data(tforderlistmodel::ProgressRole).toDouble(), 0.25);
        const TransferProgress progress = model.progressOf({second, {{}, "gone"_s, {}}});
        QCOMPARE(progress.filesTotal, 2);
        QCOMPARE(progress.bytesDone, 50);

        QCOMPARE(model.applyRegistration(second, result, RegistrationState::Refused, "满"_s), 1);
        QCOMPARE(model.files(1).at(1).failureText(), "坏；登记失败: 满"_s);
        const FilesToRetry retry = filesToRetry(model.files(1), {});
        QCOMPARE(retry.failed, {1});
        QCOMPARE(retry.unregistered, {1});
        QVERIFY(filesToRetry(model.files(1), {0, -1}).failed.isEmpty());
        model.resetFailedJobs(1, {0});
        QVERIFY(model.files(1).at(1).hasFailed());
        model.resetFailedJobs(1, {});
        QVERIFY(!model.files(1).at(1).hasFailed());
        // A raw file's variants are not waited for any more, nor tried again.
        model.applyFailure(second, result, {"x"_s, true});
        model.applyResult(second, result, false, "坏"_s);
        QVERIFY(model.files(1).at(1).failureText().startsWith("登记失败"_s));
        QCOMPARE(photoorders::withJobs(model.order(1), PhotoMode::Photos, {1}).photos.size(), 3);
        model.removeFiles(1, {0});
        QCOMPARE(model.files(1).size(), 1);
        model.setPhotoMode(PhotoMode::RetouchedVideos);
        QCOMPARE(state.data().toString(), "未选择"_s);
        QCOMPARE(model.applyResult(second, result, true, {}), -1);
    }

    void whatIsDeletedLeavesTheList()
    {
        PhotoOrder shown = order("1"_s, {file("/c/a.jpg"_s, {job("all", JobState::Done)}),
                                         file("/c/b.jpg"_s, {job("all", JobState::Done)}),
                                         file("/d/A.JPG"_s, {job("all")})});
        shown.importedByMode[0] = {entry("A.JPG", "\\all\\A.JPG", "2"),
                                   entry("b.jpg", "\\all\\b.jpg", "3")};
        tforderlistmodel model;
        model.setOrders({shown});
        model.forgetDeleted(0, {"2"_s}, {"A.JPG"_s});
        model.forgetDeleted(-1, {"3"_s}, {"b.jpg"_s}); // another search has replaced the list
        QCOMPARE(model.order(0).imported(PhotoMode::Photos).size(), 1);
        QCOMPARE(model.files(0).size(), 2);
        QCOMPARE(model.files(0).last().path, "/d/A.JPG"_s); // to be imported yet: another photo
    }

    void photoRowsJoinFilesAndService()
    {
        PhotoOrder shown =
            order("1"_s, {file("/c/a.jpg"_s, {job("all")}), file("/c/b.jpg"_s, {job("all")})});
        shown.importedByMode[0] = {entry("A.JPG", "\\all\\A.JPG", "2"),
                                   entry("old.jpg", "\\all\\old.jpg", "3")};
        tfphotolistmodel model;
        const QAbstractItemModelTester tester(&model);
        model.show(&shown, PhotoMode::Photos);
        QStringList rows;
        for (int row = 0; row < model.rowCount(); ++row)
            rows.append(model.photo(row).name + QLatin1Char('=') + model.photo(row).serviceId);
        QCOMPARE(rows.join(QLatin1Char(' ')), "a.jpg=2 b.jpg= old.jpg=3"_s);

        QCOMPARE(model.wantedThumbnails(0, 99).size(), 3);
        model.setThumbnail("/c/b.jpg"_s, {});
        model.setThumbnail("/c/a.jpg"_s, cornerPicture({40, 30}));
        QCOMPARE(model.wantedThumbnails(0, 99).size(), 1);
        QVERIFY(model.index(1).data(tfphotolistmodel::NoThumbnailRole).toBool());
        QVERIFY(!model.index(0).data(tfphotolistmodel::ThumbnailRole).value<QImage>().isNull());
        model.updateFile(1, file("/c/b.jpg"_s, {job("all", JobState::Done)}));
        QVERIFY(model.photo(1).file.isComplete());
        model.updateFile(0, file("/c/b.jpg"_s, {})); // of an order shown before
        QCOMPARE(model.photo(0).file.jobs.size(), 1);
        model.show(nullptr, PhotoMode::Photos);
        QCOMPARE(model.rowCount(), 0);
    }
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
        {"3"_s, share});
    QVERIFY(found.isList);
    QCOMPARE(found.elements, 5);
    QCOMPARE(found.orders.size(), 2);
    QCOMPARE(found.orders.at(0).info.importPath, "\\\\nas\\x"_s);
    QCOMPARE(found.orders.at(1).info.importPath, QString());
    QCOMPARE(found.orders.at(1).info.importPublicPath, share);
    QCOMPARE(found.orders.at(1).info.openypml, "1"_s);
    QCOMPARE(found.orders.at(1).info.smallSize, 90);
    // Of what the service lists only what lies where the tool puts it is the tool's.
    QCOMPARE(found.orders.at(0).imported(PhotoMode::Photos).size(), 1);
    QCOMPARE(found.orders.at(0).imported(PhotoMode::Photos).first().id, "2"_s);
    QCOMPARE(found.orders.at(0).imported(PhotoMode::TrialVideos).size(), 0);
    QCOMPARE(found.orders.at(0).imported(PhotoMode::RetouchedVideos).size(), 1);
    for (const char *json : {"{}", R"({"data":null})", R"({"data":"none"})"})
        QVERIFY(!photoorders::readOrders(parsed(json), {"3"_s, share}).isList);
}

QTEST_GUILESS_MAIN(TestPhotoLists)
#include "test_photolists.moc"
