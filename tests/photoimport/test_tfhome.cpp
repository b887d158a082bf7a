#include "app/context/accountcontext.h"
#include "app/context/k.h"
#include "net/background.h"
#include "photoimport/tfhome.h"
#include "photoimport/tfhomeorders_orderlistwidget.h"
#include "photoimport/tfphotoview.h"
#include "platform/pathform.h"
#include "tests/support/democlient.h"
#include "tests/support/pictures.h"
#include "widgets/filedialog.h"
#include "widgets/messagebox.h"
#include "widgets/toast.h"

#include <QComboBox>
#include <QDir>
#include <QDropEvent>
#include <QGuiApplication>
#include <QLineEdit>
#include <QMimeData>
#include <QPushButton>
#include <QTemporaryDir>
#include <QtTest>

using Column = tforderlistmodel::Column;

/// The photo import's window against the demo service, by mouse, keys and drops.
class TestTfHome : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();
    void fitsNarrowScreens_data();
    void fitsNarrowScreens();
    void opensWithOrdersAndPersons();
    void importsWhatIsDropped();
    void filesOfOneNameAreNotTaken();
    void refusedStartsChangeNothing();
    void sharedFoldersAreAskedAbout();
    void anOrderIsNotQueuedTwice();
    void stopsAndGoesOn();
    void failedFilesAreRetried();
    void refusedRegistrationsAreRetried();
    void deletesAtTheServiceFirst();
    void videosGoTheirOwnWay();
    void unfinishedOrdersSurviveASearch();
    void closesInMidRun();

private:
    void open();
    template <typename Widget> Widget *part(const char *name)
    {
        auto *found = window_->findChild<Widget *>(QLatin1String(name));
        if (!found)
            qFatal("no %s", name);
        return found;
    }
    tfhomeorders_OrderListWidget *table()
    {
        return part<tfhomeorders_OrderListWidget>("orderTable");
    }
    tfphotoview *photos() { return part<tfphotoview>("photoView"); }
    void click(const char *button) { QTest::mouseClick(part<QPushButton>(button), Qt::LeftButton); }
    int rowOf(const QString &number);
    QString text(const QString &number, int column);
    void select(const QString &number) { table()->selectRow(rowOf(number)); }
    void drop(QWidget *onto, const QPoint &at, const QStringList &paths);
    /// Makes pictures on the card and drops the card onto the order.
    void dropPhotos(const QString &number, int count);
    QString imported(const QString &number, const QString &path);
    QString state(const QString &number) { return text(number, Column::StateColumn); }
    const QStringList &boxes();

    DemoClient demo_;
    std::unique_ptr<QTemporaryDir> card_;
    QPointer<tfhome> window_;
    QStringList boxes_;
    const QString first_ = QStringLiteral("TS10001-1");
    const QString second_ = QStringLiteral("TS10003-1");
};

#define EXPECT_BOXES(texts)                                                                        \
    do {                                                                                           \
        QTRY_COMPARE(boxes(), texts);                                                              \
        boxes_.clear();                                                                            \
    } while (false)

static const QStringList done{QStringLiteral("导片完成！")};

void TestTfHome::initTestCase()
{
    MessageBox::setScripted(true);
}

void TestTfHome::init()
{
    demo_.reset();
    AccountContext::uid = QStringLiteral("9001");
    AccountContext::eid = QStringLiteral("3101");
    AccountContext::superId = QStringLiteral("7001");
    AccountContext::shopId = QStringLiteral("101");
    AccountContext::selectedShopId.clear();
    AccountContext::photoMode = 0;
    AccountContext::shopList = {{QStringLiteral("101"), QStringLiteral("一店"), {}, {}},
                                {QStringLiteral("102"), QStringLiteral("二店"), {}, {}}};
    card_ = std::make_unique<QTemporaryDir>();
    MessageBox::takeShown();
    boxes_.clear();
}

void TestTfHome::cleanup()
{
    demo_.release();
    delete window_;
    diskPool()->waitForDone();
    QCOMPARE(boxes(), QStringList()); // every box was expected
}

void TestTfHome::open()
{
    window_ = new tfhome;
    window_->resize(1600, 800);
    window_->show();
    window_->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(window_));
    QTRY_VERIFY(table()->model()->rowCount() > 0);
}

int TestTfHome::rowOf(const QString &number)
{
    for (int row = 0; row < table()->model()->rowCount(); ++row) {
        if (table()->model()->index(row, Column::NumberColumn).data().toString() == number)
            return row;
    }
    qFatal("no order %s", qPrintable(number));
}

QString TestTfHome::text(const QString &number, int column)
{
    return table()->model()->index(rowOf(number), column).data().toString();
}

void TestTfHome::drop(QWidget *onto, const QPoint &at, const QStringList &paths)
{
    QMimeData data;
    QList<QUrl> urls;
    for (const QString &path : paths)
        urls.append(QUrl::fromLocalFile(path));
    data.setUrls(urls);
    const auto actions = Qt::CopyAction | Qt::MoveAction;
    QDragEnterEvent enter(at, actions, &data, Qt::LeftButton, {});
    QDragMoveEvent move(at, actions, &data, Qt::LeftButton, {});
    QDropEvent event(at, actions, &data, Qt::LeftButton, {});
    for (QEvent *sent : std::initializer_list<QEvent *>{&enter, &move, &event})
        QCoreApplication::sendEvent(onto, sent);
    QVERIFY(event.isAccepted());
    QCOMPARE(int(event.dropAction()), int(Qt::CopyAction));
}

void TestTfHome::dropPhotos(const QString &number, int count)
{
    const QDir folder(card_->filePath(number));
    QDir().mkpath(folder.filePath(QStringLiteral("deep")));
    for (int index = 0; index < count; ++index) {
        QFile photo(folder.filePath(QStringLiteral("%1IMG_%2.jpg")
                                        .arg(index % 2 ? QStringLiteral("deep/") : QString())
                                        .arg(index)));
        if (!photo.open(QIODevice::WriteOnly))
            qFatal("fixture not written");
        photo.write(jpegOf(cornerPicture({120, 80}), 1 + index % 8));
    }
    QFile note(folder.filePath(QStringLiteral("notes.txt")));
    note.open(QIODevice::WriteOnly);
    const QModelIndex cell = table()->model()->index(rowOf(number), 0);
    table()->scrollTo(cell);
    drop(table()->viewport(), table()->visualRect(cell).center(), {folder.path()});
    QTRY_COMPARE(text(number, Column::ChosenColumn), QString::number(count));
}

QString TestTfHome::imported(const QString &number, const QString &path)
{
    return platform::toLocalPath(text(number, Column::PathColumn)) + QLatin1Char('/') + path;
}

const QStringList &TestTfHome::boxes()
{
    const auto shown = MessageBox::takeShown();
    for (const MessageBox::Shown &box : shown)
        boxes_.append(box.text);
    return boxes_;
}

void TestTfHome::fitsNarrowScreens_data()
{
    QTest::addColumn<float>("scale");
    QTest::addColumn<int>("width");
    QTest::newRow("100 %") << 1.0F << 1280;
    QTest::newRow("150 %") << 1.5F << 1600;
    QTest::newRow("200 %") << 2.0F << 1920;
}

void TestTfHome::fitsNarrowScreens()
{
    QFETCH(float, scale);
    QFETCH(int, width);
    K::uiScale = scale;
    open();
    window_->resize(width, 720);
    dropPhotos(first_, 2);
    K::uiScale = 1.0F;
    QCOMPARE(window_->width(), width); // smaller than that it cannot be
}

void TestTfHome::opensWithOrdersAndPersons()
{
    open();
    auto *persons = part<QComboBox>("personBox");
    QTRY_VERIFY(persons->count() > 2);
    const int everybody = table()->model()->rowCount();
    QVERIFY(demo_.requests(QStringLiteral("order_list"))
                .first()
                .toObject()
                .value(QStringLiteral("body"))
                .toString()
                .startsWith(QStringLiteral("keyword=&searchtype=1&role7id=&ratio=90&shopid=101&")));
    persons->setFocus();
    QTest::keyClick(persons, Qt::Key_Down);
    QTRY_VERIFY(table()->model()->rowCount() < everybody);
    QCOMPARE(demo_.requests(QStringLiteral("order_list")).size(), 2);
}

void TestTfHome::importsWhatIsDropped()
{
    open();
    dropPhotos(first_, 8);
    QCOMPARE(Toast::currentText(window_), QStringLiteral("已忽略 1 个不支持的文件"));
    QCOMPARE(photos()->model()->rowCount(), 8);
    QTRY_VERIFY(!photos()->model()->index(5, 0).data(Qt::DecorationRole).value<QImage>().isNull());
    table()->setFocus();
    QTest::keyClick(table(), Qt::Key_Return);
    EXPECT_BOXES(done);
    QCOMPARE(state(first_), QStringLiteral("导片完成"));
    for (const char *kind : {"all", "90", "190", "1920"})
        QVERIFY(QFile::exists(
            imported(first_, QStringLiteral("%1/IMG_5.jpg").arg(QLatin1String(kind)))));
    QCOMPARE(demo_.requests(QStringLiteral("savepicpath")).size(), 8);
    QCOMPARE(demo_.requests(QStringLiteral("saveorderphotopath")).size(), 1);
    QTRY_COMPARE(text(first_, Column::ImportedColumn), QStringLiteral("8"));
    QCOMPARE(photos()->model()->rowCount(), 8);
}

void TestTfHome::filesOfOneNameAreNotTaken()
{
    open();
    dropPhotos(first_, 2);
    QFile::copy(card_->filePath(first_ + QStringLiteral("/IMG_0.jpg")),
                card_->filePath(QStringLiteral("img_0.JPG")));
    // Chosen one by one, by the button: the clash is with what is listed already.
    select(first_);
    FileDialog::setNextFiles({card_->filePath(QStringLiteral("img_0.JPG"))});
    click("addFilesButton");
    QTRY_COMPARE(boxes().size(), 1);
    QVERIFY(boxes_.first().contains(card_->filePath(QStringLiteral("img_0.JPG"))));
    QVERIFY(boxes_.first().contains(first_ + QStringLiteral("/IMG_0.jpg")));
    boxes_.clear();
    QCOMPARE(text(first_, Column::ChosenColumn), QStringLiteral("2"));

    // The same file again is no clash, and is not listed twice.
    FileDialog::setNextFolder(card_->filePath(first_));
    click("addFolderButton");
    QTRY_VERIFY(Toast::currentText(window_).contains(QStringLiteral("2 个文件已在列表中")));
    QCOMPARE(text(first_, Column::ChosenColumn), QStringLiteral("2"));

    photos()->selectAll();
    photos()->setFocus();
    QTest::keyClick(photos(), Qt::Key_Delete, Qt::ControlModifier);
    QCOMPARE(text(first_, Column::ChosenColumn), QString());
}

void TestTfHome::refusedStartsChangeNothing()
{
    const QString refusal = QStringLiteral("没有权限");
    demo_.misbehave(QStringLiteral("get_persons"), QStringLiteral("refuse"),
                    {{QStringLiteral("message"), refusal}});
    open();
    EXPECT_BOXES(QStringList(refusal));
    const QString blocked = QStringLiteral("TS10006-1"); // a part of its folder's path is a file
    dropPhotos(blocked, 1);
    click("startOrderButton");
    EXPECT_BOXES(
        QStringList(QStringLiteral("导入路径无法访问并且无法创建，请检查局域网是否能连接\n\n") +
                    text(blocked, Column::PathColumn)));
    QCOMPARE(state(blocked), QStringLiteral("已选择"));
    QVERIFY(part<QComboBox>("modeBox")->isEnabled());
    // And nothing stands in the way of another order.
    dropPhotos(first_, 1);
    click("startOrderButton");
    EXPECT_BOXES(done);
}

void TestTfHome::sharedFoldersAreAskedAbout()
{
    QString folder = demo_.state().value(QStringLiteral("share")).toString();
    folder.replace(QLatin1Char('/'), QLatin1Char('\\')).append(QStringLiteral("\\one"));
    for (const char *order : {"50001", "50003"})
        demo_.changeOrder(QLatin1String(order), {{QStringLiteral("netpath"), folder}});
    open();
    dropPhotos(first_, 1);
    click("startOrderButton");
    QCOMPARE(boxes().size(), 1);
    QVERIFY(boxes_.first().contains(folder + QStringLiteral("\n") + first_));
    QVERIFY(boxes_.first().contains(second_));
    boxes_.clear();
    QCOMPARE(state(first_), QStringLiteral("已选择"));
    MessageBox::setNextAnswer(QMessageBox::Ok);
    click("startOrderButton");
    QTRY_COMPARE(state(first_), QStringLiteral("导片完成"));
    QTRY_COMPARE(boxes().size(), 2);
    boxes_.clear();
}

void TestTfHome::anOrderIsNotQueuedTwice()
{
    open();
    dropPhotos(first_, 3);
    click("startOrderButton");
    demo_.misbehave(QStringLiteral("savepicpath"), QStringLiteral("hold"));
    QCOMPARE(state(first_), QStringLiteral("等待导片"));
    for (const char *box : {"modeBox", "workerBox"}) {
        QVERIFY(!part<QComboBox>(box)->isEnabled());
        QVERIFY(part<QComboBox>(box)->toolTip().startsWith(QStringLiteral("导片进行中")));
    }
    click("startOrderButton");
    QCOMPARE(Toast::currentText(window_), QStringLiteral("该订单正在导片，请等待完成或先停止"));
    // Searches and branches wait as well.
    click("searchButton");
    EXPECT_BOXES(QStringList(QStringLiteral("导片中...")));
    // Another order joins.
    dropPhotos(second_, 2);
    click("startOrderButton");
    QTRY_COMPARE(state(second_), QStringLiteral("导片完成"));
    demo_.release();
    EXPECT_BOXES(done);
    QTRY_COMPARE(text(second_, Column::ImportedColumn), QStringLiteral("2"));
    QCOMPARE(demo_.requests(QStringLiteral("savepicpath")).size(), 5);
    QVERIFY(part<QComboBox>("modeBox")->isEnabled());
}

void TestTfHome::stopsAndGoesOn()
{
    open();
    dropPhotos(first_, 6);
    click("startButton");
    click("pauseButton");
    QCOMPARE(part<QPushButton>("pauseButton")->text(), QStringLiteral("继续"));
    QCOMPARE(part<QPushButton>("startButton")->text(), QStringLiteral("停止导片"));
    click("startButton");
    QCOMPARE(part<QPushButton>("startButton")->text(), QStringLiteral("全部开始"));
    QCOMPARE(part<QPushButton>("pauseButton")->text(), QStringLiteral("暂停"));
    QVERIFY(state(first_) != QStringLiteral("等待导片"));
    auto *workers = part<QComboBox>("workerBox");
    QTRY_VERIFY(workers->isEnabled());
    QCOMPARE(workers->count(), 16);
    workers->setFocus();
    QTest::keyClick(workers, Qt::Key_End);
    QTest::keyClick(window_, Qt::Key_Return, Qt::ControlModifier);
    EXPECT_BOXES(done);
    QCOMPARE(state(first_), QStringLiteral("导片完成"));
    QCOMPARE(QDir(imported(first_, QStringLiteral("1920"))).entryList(QDir::Files).size(), 6);
    click("startButton");
    EXPECT_BOXES(QStringList(QStringLiteral("请先为订单添加要导入的文件")));
}

void TestTfHome::failedFilesAreRetried()
{
    open();
    dropPhotos(first_, 3);
    const QString away = card_->filePath(QStringLiteral("away"));
    const QString photo = card_->filePath(first_ + QStringLiteral("/IMG_2.jpg"));
    QVERIFY(QFile::rename(photo, away));
    click("startOrderButton");
    QTRY_COMPARE(boxes().size(), 1);
    QVERIFY(boxes_.first().startsWith(QStringLiteral("导片结束，1 个文件失败，0 个文件未登记。")));
    boxes_.clear();
    QCOMPARE(state(first_), QStringLiteral("成功:2, 失败:1"));
    const auto panel = photos()->model()->index(2, 0).data(tfphotolistmodel::PhotoRole);
    QCOMPARE(panel.value<PanelPhoto>().file.failureText(),
             QStringLiteral("原图拷贝失败；图片压缩失败 (目标尺寸: 90)；"
                            "图片压缩失败 (目标尺寸: 190)；图片压缩失败 (目标尺寸: 1920)"));
    demo_.clearRequests();
    QVERIFY(QFile::rename(away, photo));
    click("retryButton");
    EXPECT_BOXES(done);
    QCOMPARE(state(first_), QStringLiteral("导片完成"));
    QCOMPARE(demo_.requests(QStringLiteral("savepicpath")).size(), 1); // the others are registered
    click("retryButton");
    QCOMPARE(Toast::currentText(window_), QStringLiteral("没有失败的文件"));
}

void TestTfHome::refusedRegistrationsAreRetried()
{
    open();
    dropPhotos(first_, 2);
    demo_.misbehave(QStringLiteral("savepicpath"), QStringLiteral("refuse"),
                    {{QStringLiteral("message"), QStringLiteral("稍后再试")}});
    demo_.misbehave(QStringLiteral("saveorderphotopath"), QStringLiteral("refuse"),
                    {{QStringLiteral("message"), QStringLiteral("目录被占用")}});
    click("startOrderButton");
    QTRY_COMPARE(boxes().size(), 1);
    QVERIFY(boxes_.first().startsWith(QStringLiteral("导片结束，0 个文件失败，1 个文件未登记。")));
    boxes_.clear();
    QCOMPARE(state(first_), QStringLiteral("未登记:1"));
    QTRY_COMPARE(text(first_, Column::ImportedColumn), QStringLiteral("1"));
    click("retryButton");
    QTRY_COMPARE(state(first_), QStringLiteral("导片完成"));
    QTRY_COMPARE(text(first_, Column::ImportedColumn), QStringLiteral("2"));
    QCOMPARE(demo_.requests(QStringLiteral("saveorderphotopath")).size(), 2);
}

void TestTfHome::deletesAtTheServiceFirst()
{
    open();
    dropPhotos(first_, 3);
    click("startOrderButton");
    EXPECT_BOXES(done);
    QTRY_COMPARE(text(first_, Column::ImportedColumn), QStringLiteral("3"));
    const QString original = imported(first_, QStringLiteral("all/IMG_0.jpg"));
    photos()->setCurrentIndex(photos()->model()->index(1, 0));
    photos()->setFocus();
    const QString question = QStringLiteral("确认要删除选中的 1 个文件吗？\n"
                                            "服务和磁盘上的文件都会删除，不能恢复。");

    demo_.misbehave(QStringLiteral("delimages"), QStringLiteral("refuse"),
                    {{QStringLiteral("message"), QStringLiteral("照片已锁定")}});
    MessageBox::setNextAnswer(QMessageBox::Ok);
    QTest::keyClick(photos(), Qt::Key_Delete);
    EXPECT_BOXES((QStringList{question, QStringLiteral("照片已锁定")}));
    QVERIFY(QFile::exists(original));

    QTest::keyClick(photos(), Qt::Key_Delete); // and changes their mind
    EXPECT_BOXES(QStringList(question));
    MessageBox::setNextAnswer(QMessageBox::Ok);
    QTest::keyClick(photos(), Qt::Key_Delete);
    EXPECT_BOXES(QStringList(question));
    QTRY_COMPARE(Toast::currentText(window_), QStringLiteral("删除成功"));
    QCOMPARE(photos()->model()->rowCount(), 2);
    QCOMPARE(text(first_, Column::ImportedColumn), QStringLiteral("2"));
    for (const char *kind : {"all", "90", "190", "1920"}) {
        const QDir folder(imported(first_, QLatin1String(kind)));
        QTRY_COMPARE(folder.entryList(QDir::Files),
                     (QStringList{QStringLiteral("IMG_1.jpg"), QStringLiteral("IMG_2.jpg")}));
    }
}

void TestTfHome::videosGoTheirOwnWay()
{
    open();
    auto *mode = part<QComboBox>("modeBox");
    mode->setFocus();
    QTest::keyClick(mode, Qt::Key_Down);
    QCOMPARE(AccountContext::photoMode, 1);
    QFile video(card_->filePath(QStringLiteral("A&B.mp4")));
    QVERIFY(video.open(QIODevice::WriteOnly) && video.write("frames") == 6);
    video.close();
    select(second_);
    drop(photos()->viewport(), QPoint(40, 40), {video.fileName()});
    QTRY_COMPARE(text(second_, Column::ChosenColumn), QStringLiteral("1"));
    click("startOrderButton");
    EXPECT_BOXES(done);
    QVERIFY(QFile::exists(imported(second_, QStringLiteral("试拍视频/A&B.mp4"))));
    const QJsonObject fields = demo_.requests(QStringLiteral("savepicpathmv"))
                                   .first()
                                   .toObject()
                                   .value(QStringLiteral("fields"))
                                   .toObject();
    QCOMPARE(fields.value(QStringLiteral("type")).toString(), QStringLiteral("2"));
    QCOMPARE(fields.value(QStringLiteral("photonames")).toString(), QStringLiteral("A&B.mp4"));
    QTRY_COMPARE(text(second_, Column::ImportedColumn), QStringLiteral("1"));
    photos()->selectAll();
    MessageBox::setNextAnswer(QMessageBox::Ok);
    click("deleteButton");
    QTRY_COMPARE(demo_.requests(QStringLiteral("delmv")).size(), 1);
    QTRY_VERIFY(!QFile::exists(imported(second_, QStringLiteral("试拍视频/A&B.mp4"))));
    boxes();
    boxes_.clear();

    mode->setFocus();
    QTest::keyClick(mode, Qt::Key_Up);
    QCOMPARE(text(second_, Column::ChosenColumn), QString());
}

void TestTfHome::unfinishedOrdersSurviveASearch()
{
    open();
    dropPhotos(first_, 2);
    const int all = table()->model()->rowCount();
    auto *keyword = part<QLineEdit>("keywordEdit");
    keyword->setText(QStringLiteral("TS10003"));
    QTest::keyClick(keyword, Qt::Key_Return);
    QTRY_COMPARE(table()->model()->rowCount(), 2);
    QCOMPARE(text(first_, Column::ChosenColumn), QStringLiteral("2"));

    // Another branch would drop them: asked first.
    auto *branches = part<QComboBox>("branchBox");
    branches->setFocus();
    QTest::keyClick(branches, Qt::Key_Down);
    QCOMPARE(boxes().size(), 1);
    boxes_.clear();
    QCOMPARE(branches->currentText(), QStringLiteral("一店"));
    MessageBox::setNextAnswer(QMessageBox::Ok);
    QTest::keyClick(branches, Qt::Key_Down);
    QTRY_VERIFY(table()->model()->rowCount() > 2 || table()->model()->rowCount() < all);
    QTRY_COMPARE(demo_.requests(QStringLiteral("order_list")).size(), 3);
    QCOMPARE(boxes().size(), 1);
    boxes_.clear();
}

void TestTfHome::closesInMidRun()
{
    open();
    dropPhotos(first_, 8);
    demo_.misbehave(QStringLiteral("savepicpath"), QStringLiteral("hold"));
    click("startOrderButton");
    QTRY_COMPARE(demo_.state().value(QStringLiteral("held")).toInt(), 1);
    window_->setAttribute(Qt::WA_DeleteOnClose);
    window_->close(); // the safe answer keeps it open
    QVERIFY(window_->isVisible());
    MessageBox::setNextAnswer(QMessageBox::Ok);
    window_->close();
    QVERIFY(!window_->isVisible());
    QVERIFY(window_); // the photos that are imported are still to be registered
    boxes();
    boxes_.clear();
    demo_.release();
    QTRY_VERIFY(!window_);
}

QTEST_MAIN(TestTfHome)
#include "test_tfhome.moc"
