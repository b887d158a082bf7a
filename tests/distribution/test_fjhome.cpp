#include "app/context/accountcontext.h"
#include "distribution/distributionordermodel.h"
#include "distribution/fjhome.h"
#include "distribution/fjleftpanel.h"
#include "distribution/fjrightpanel.h"
#include "distribution/photolistmodel.h"
#include "net/background.h"
#include "tests/support/democlient.h"
#include "widgets/datepicker.h"
#include "widgets/filedialog.h"
#include "widgets/loadingoverlay.h"
#include "widgets/messagebox.h"
#include "widgets/ordersearchbar.h"
#include "widgets/toast.h"

#include <QAbstractItemModelTester>
#include <QCheckBox>
#include <QClipboard>
#include <QComboBox>
#include <QDir>
#include <QGuiApplication>
#include <QHeaderView>
#include <QJsonArray>
#include <QJsonDocument>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSignalSpy>
#include <QTableView>
#include <QTemporaryDir>
#include <QtTest>

using Column = DistributionOrderModel::Column;

/// The distribution window against the demo service, by mouse and keys.
class TestFJHome : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { MessageBox::setScripted(true); }
    void init();
    void cleanup();
    void opensWithTheBranchsOrders_data();
    void opensWithTheBranchsOrders();
    void searches_data();
    void searches();
    void badSearchReplies_data();
    void badSearchReplies();
    void switchesTheBranch();
    void aRefusedSwitchKeepsTheBranch();
    void aSwitchThatFailedAtOpeningCanBeTriedAgain();
    void ticks();
    void needsADirectoryAndOrders();
    void showsThePhotosOfAnOrder();
    void distributesInTableOrder();
    void listsWhatFailed();
    void nothingElseMayChangeWhileItRuns();
    void closesWhenTheServiceHasBeenTold();

private:
    void open(const QString &card = QStringLiteral("设计分件"));
    void search(const QString &keyword, int expected);
    template <typename Widget> Widget *child(const char *name)
    {
        return window_->findChild<Widget *>(QString::fromUtf8(name));
    }
    QTableView *table() { return child<QTableView>("orderTable"); }
    OrderSearchBar *searchBar() { return window_->findChild<OrderSearchBar *>(); }
    void click(const char *name)
    {
        QTest::mouseClick(child<QAbstractButton>(name), Qt::LeftButton);
    }
    void clickCell(int row, int column);
    QString cell(int row, int column)
    {
        return table()->model()->index(row, column).data().toString();
    }
    QString body(const QString &action);
    const QStringList &boxes();
    void waitUntilHeld() { QTRY_COMPARE(demo_.state().value(QStringLiteral("held")).toInt(), 1); }

    DemoClient demo_;
    std::unique_ptr<QTemporaryDir> folder_;
    QPointer<FJHome> window_;
    QStringList boxes_;
};

#define EXPECT_BOXES(texts)                                                                        \
    do {                                                                                           \
        QTRY_COMPARE(boxes(), texts);                                                              \
        boxes_.clear();                                                                            \
    } while (false)

void TestFJHome::init()
{
    demo_.reset();
    AccountContext::uid = QStringLiteral("9001");
    AccountContext::eid = QStringLiteral("3101");
    AccountContext::superId = QStringLiteral("7001");
    AccountContext::shopId = QStringLiteral("101");
    AccountContext::selectedShopId.clear();
    const QString rule = QStringLiteral(R"([{"name":"产品名称","key":"name","separator":"="}])");
    AccountContext::shopList = {{QStringLiteral("101"), QStringLiteral("一店"), rule, {}},
                                {QStringLiteral("102"), QStringLiteral("二店"), {}, {}}};
    folder_ = std::make_unique<QTemporaryDir>();
    boxes_.clear();
}

void TestFJHome::cleanup()
{
    demo_.release();
    if (window_)
        window_->close();
    QTRY_VERIFY(!window_);
    diskPool()->waitForDone();
    MessageBox::takeShown();
}

const QStringList &TestFJHome::boxes()
{
    const auto shown = MessageBox::takeShown();
    for (const MessageBox::Shown &box : shown)
        boxes_.append(box.text);
    return boxes_;
}

void TestFJHome::open(const QString &card)
{
    window_ = new FJHome;
    window_->setAttribute(Qt::WA_DeleteOnClose);
    window_->setCard(card);
    window_->resize(1500, 1000);
    window_->show();
    QTRY_VERIFY(!searchBar()->isBusy());
}

void TestFJHome::search(const QString &keyword, int expected)
{
    auto *edit = child<QLineEdit>("keywordEdit");
    edit->setText(keyword);
    QTest::keyClick(edit, Qt::Key_Return);
    QTRY_VERIFY(!searchBar()->isBusy());
    QCOMPARE(table()->model()->rowCount(), expected);
}

void TestFJHome::clickCell(int row, int column)
{
    QTest::mouseClick(table()->viewport(), Qt::LeftButton, {},
                      table()->visualRect(table()->model()->index(row, column)).center());
}

QString TestFJHome::body(const QString &action)
{
    const QJsonArray sent = demo_.requests(action);
    return sent.last()[QStringLiteral("body")].toString().section(QStringLiteral("&token"), 0, 0);
}

void TestFJHome::opensWithTheBranchsOrders_data()
{
    QTest::addColumn<QString>("card");
    QTest::addColumn<QString>("action");
    QTest::addColumn<QString>("ticked");
    QTest::addColumn<bool>("lists");
    QTest::addColumn<bool>("naming");
    const auto text = [](const char *value) { return QString::fromUtf8(value); };
    QTest::newRow("originals") << text("下载原始档") << text("order_list") << text("原始档") << true
                               << false;
    QTest::newRow("selection") << text("下载选片结果") << text("order_list") << text("原图精修")
                               << true << true;
    QTest::newRow("distribution") << text("设计分件") << text("order_list_type_1")
                                  << text("原图精修") << true << true;
    QTest::newRow("delivery") << text("下载照片交付") << text("order_list") << text("原图精修")
                              << false << false;
}

void TestFJHome::opensWithTheBranchsOrders()
{
    QFETCH(QString, card);
    QFETCH(QString, action);
    QFETCH(QString, ticked);
    open(card);
    QCOMPARE(window_->windowTitle(), QStringLiteral("分件工具"));
    QCOMPARE(body(action), QStringLiteral("keyword=&searchtype=1&shopid=101&eid=3101&superid=7001"
                                          "&personid=3101"));
    QVERIFY(table()->model()->rowCount() > 5);
    const QAbstractItemModelTester tester(table()->model());
    QStringList headers;
    for (int column = 0; column < table()->model()->columnCount(); ++column)
        headers.append(table()->model()->headerData(column, Qt::Horizontal).toString());
    QCOMPARE(headers,
             QStringLiteral(",订单号,男士姓名,女士姓名,摄影师,套系,拍照日期,初修数/精修数,"
                            "化妆师,选片师,选片日期,选片完成时间,男士电话,女士电话,订单金额")
                 .split(QLatin1Char(',')));
    QString checked;
    for (const char *option : {"原始档", "原图", "简修", "简修含汰片", "精修"}) {
        if (child<QCheckBox>((QByteArray("option") + option).constData())->isChecked())
            checked += QString::fromUtf8(option);
    }
    QCOMPARE(checked, ticked);
    QTEST(child<QListView>("undownloadList")->isVisible(), "lists");
    QTEST(child<QPushButton>("saveRuleButton")->isVisible(), "naming");
}

void TestFJHome::searches_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<QString>("expected"); // body up to the identity
    QTest::newRow("text") << 0 << QStringLiteral("keyword=A%26B%2BC%25&searchtype=1");
    QTest::newRow("shooting date") << 1 << QStringLiteral("keyword=2025-10-01&searchtype=4");
    QTest::newRow("selection date") << 2 << QStringLiteral("keyword=2025-10-08&searchtype=5");
}

void TestFJHome::searches()
{
    QFETCH(int, type);
    open();
    child<QComboBox>("searchTypeBox")->setCurrentIndex(type);
    child<QLineEdit>("keywordEdit")->setText(QStringLiteral("A&B+C%"));
    QVERIFY(child<QLineEdit>("keywordEdit")->isVisible() == (type == 0));
    child<DatePicker>("shootingDate")->choose({2025, 10, 1});
    child<DatePicker>("selectionDate")->choose({2025, 10, 8});
    demo_.misbehave(QStringLiteral("order_list_type_1"), QStringLiteral("hold"));
    click("searchButton");
    waitUntilHeld();
    QCOMPARE(child<QPushButton>("searchButton")->text(), QStringLiteral("搜索中..."));
    QVERIFY(!child<QPushButton>("searchButton")->isEnabled());
    QCOMPARE(table()->model()->rowCount(), 0);
    demo_.release();
    QTRY_COMPARE(child<QPushButton>("searchButton")->text(), QStringLiteral("搜索订单"));
    QTEST(body(QStringLiteral("order_list_type_1")).section(QStringLiteral("&shopid"), 0, 0),
          "expected");
    QVERIFY(table()->model()->rowCount() >= 1);
}

void TestFJHome::badSearchReplies_data()
{
    QTest::addColumn<QString>("kind");
    QTest::addColumn<QJsonObject>("more");
    QTest::addColumn<QString>("box"); // none: a toast tells
    const auto text = [](const char *value) { return QString::fromUtf8(value); };
    QTest::newRow("refused") << text("refuse") << QJsonObject{{text("message"), text("账号已停用")}}
                             << text("账号已停用");
    QTest::newRow("no list") << text("missing-fields")
                             << QJsonObject{{text("fields"), QJsonArray{text("data")}}}
                             << text("未检索到订单");
    QTest::newRow("dropped") << text("drop") << QJsonObject() << QString();
    QTest::newRow("orders without photo sets")
        << text("missing-fields")
        << QJsonObject{{text("fields"), QJsonArray{text("data.order_photo_id")}}}
        << text("未检索到订单");
}

void TestFJHome::badSearchReplies()
{
    QFETCH(QString, kind);
    QFETCH(QJsonObject, more);
    QFETCH(QString, box);
    open();
    demo_.misbehave(QStringLiteral("order_list_type_1"), kind, more);
    search(QString(), 0);
    if (box.isEmpty())
        QTRY_VERIFY(!Toast::currentText(window_).isEmpty());
    else
        EXPECT_BOXES(QStringList(box));
    search(QStringLiteral("TS10001"), 2);
    search(QStringLiteral("nobody"), 0);
    EXPECT_BOXES(QStringList(QStringLiteral("未检索到订单")));
}

void TestFJHome::switchesTheBranch()
{
    open();
    const auto rule = [this] {
        return QJsonDocument::fromJson(child<FJRightPanel>("rightPanel")->namingRule().toUtf8());
    };
    const QJsonDocument stored =
        QJsonDocument::fromJson(AccountContext::shopList.first().goodsfoldernamerule.toUtf8());
    QCOMPARE(rule(), stored);
    auto *branches = child<QComboBox>("branchBox");
    child<QLineEdit>("keywordEdit")->setText(QStringLiteral("TS"));
    QSignalSpy announced(child<FJLeftPanel>("leftPanel"), &FJLeftPanel::userInfoChange);
    branches->setCurrentIndex(1);
    emit branches->activated(1);
    QTRY_COMPARE(announced.size(), 1);
    QCOMPARE(announced.first(), (QList<QVariant>{QStringLiteral("102"), QStringLiteral("3102"),
                                                 QStringLiteral("7002")}));
    QTRY_VERIFY(!searchBar()->isBusy());
    QCOMPARE(body(QStringLiteral("switch_shop")), QStringLiteral("shopid=102"));
    QCOMPARE(
        body(QStringLiteral("order_list_type_1")),
        QStringLiteral("keyword=TS&searchtype=1&shopid=102&eid=3102&superid=7002&personid=3102"));
    QCOMPARE(AccountContext::eid, QStringLiteral("3102"));
    QCOMPARE(AccountContext::superId, QStringLiteral("7002"));
    // A branch without a rule leaves the editor as it was.
    QCOMPARE(rule(), stored);
}

void TestFJHome::aRefusedSwitchKeepsTheBranch()
{
    open();
    const int before = table()->model()->rowCount();
    auto *branches = child<QComboBox>("branchBox");
    demo_.misbehave(QStringLiteral("switch_shop"), QStringLiteral("refuse"),
                    {{QStringLiteral("message"), QStringLiteral("没有权限")}});
    branches->setCurrentIndex(1);
    emit branches->activated(1);
    EXPECT_BOXES(QStringList(QStringLiteral("没有权限")));
    QCOMPARE(branches->currentIndex(), 0);
    QCOMPARE(table()->model()->rowCount(), before);
    QVERIFY(!searchBar()->isBusy());
    QCOMPARE(AccountContext::eid, QStringLiteral("3101"));
}

void TestFJHome::aSwitchThatFailedAtOpeningCanBeTriedAgain()
{
    demo_.misbehave(QStringLiteral("switch_shop"), QStringLiteral("drop"));
    open();
    QCOMPARE(table()->model()->rowCount(), 0);
    search(QStringLiteral("TS10001"), 2);
}

void TestFJHome::ticks()
{
    open();
    search(QStringLiteral("TS10001"), 2);
    QSignalSpy selected(child<FJLeftPanel>("leftPanel"), &FJLeftPanel::orderSelected);
    clickCell(1, Column::TickColumn);
    QCOMPARE(selected.takeLast(), (QList<QVariant>{1, true}));
    clickCell(1, Column::ManColumn);
    QVERIFY(selected.isEmpty());
    QTest::keyClick(table(), Qt::Key_Space);
    QCOMPARE(selected.takeLast(), (QList<QVariant>{1, false}));
    // Sorted the other way round the ticks stay with their orders.
    table()->sortByColumn(Column::NumberColumn, Qt::DescendingOrder);
    clickCell(0, Column::TickColumn);
    QCOMPARE(cell(0, Column::NumberColumn), QStringLiteral("TS10001-2"));
    QCOMPARE(selected.takeLast(), (QList<QVariant>{1, true}));
    click("selectAllButton");
    QCOMPARE(child<FJLeftPanel>("leftPanel")->tickedOrders().first().serviceTimes,
             QStringLiteral("2"));
    QCOMPARE(child<FJLeftPanel>("leftPanel")->tickedOrders().size(), 2);
    click("unselectAllButton");
    QVERIFY(child<FJLeftPanel>("leftPanel")->tickedOrders().isEmpty());
}

void TestFJHome::needsADirectoryAndOrders()
{
    open(QStringLiteral("下载原始档"));
    QCOMPARE(child<QLabel>("directoryLabel")->text(), QStringLiteral("未选择目录"));
    click("startButton");
    EXPECT_BOXES(QStringList(QStringLiteral("请选择分件目录后再点击开始分件按钮")));
    click("directoryButton"); // cancelled
    QCOMPARE(child<QLabel>("directoryLabel")->text(), QStringLiteral("未选择目录"));
    const QString deep = folder_->filePath(QString(200, QLatin1Char('d')));
    FileDialog::setNextFolder(deep);
    click("directoryButton");
    QVERIFY(child<QLabel>("directoryLabel")->text().contains(QStringLiteral("...")));
    QCOMPARE(child<QLabel>("directoryLabel")->toolTip(), QDir::toNativeSeparators(deep));
    click("startButton");
    EXPECT_BOXES(QStringList(QStringLiteral("请选择需要分件的订单")));
    click("option原始档");
    click("startButton");
    EXPECT_BOXES(QStringList(QStringLiteral("请至少勾选一项下载目录选项")));
    QVERIFY(demo_.requests(QStringLiteral("orderphotodetail")).isEmpty());
}

void TestFJHome::showsThePhotosOfAnOrder()
{
    open(QStringLiteral("下载原始档"));
    search(QStringLiteral("TS10001"), 2);
    clickCell(0, Column::ManColumn);
    QTRY_COMPARE(child<QLabel>("undownloadLabel")->text(), QStringLiteral("未下载:  (4张)  "));
    QCOMPARE(child<QLabel>("downloadedLabel")->text(), QStringLiteral("已下载:  (0张)  "));
    auto *list = child<QListView>("undownloadList");
    const QAbstractItemModelTester tester(list->model());
    QSignalSpy changed(child<FJRightPanel>("rightPanel"),
                       &FJRightPanel::downAndUnDownImgSelectedChange);
    click("undownloadClearAll");
    QTest::mouseClick(list->viewport(), Qt::LeftButton, {},
                      list->visualRect(list->model()->index(2, 0)).center());
    QCOMPARE(changed.size(), 2);

    // What was left out is not downloaded, also when another order was shown meanwhile.
    clickCell(1, Column::ManColumn);
    QTRY_COMPARE(child<QLabel>("undownloadLabel")->text(), QStringLiteral("未下载:  (0张)  "));
    clickCell(0, Column::TickColumn);
    FileDialog::setNextFolder(folder_->path());
    click("directoryButton");
    click("startButton");
    EXPECT_BOXES(QStringList(QStringLiteral("1个订单分件完成!")));
    QCOMPARE(child<QLabel>("undownloadLabel")->text(), QStringLiteral("未下载:  (3张)  "));
    QCOMPARE(child<QLabel>("downloadedLabel")->text(), QStringLiteral("已下载:  (1张)  "));
    QTRY_COMPARE(demo_.requests(QStringLiteral("download_success")).size(), 1);
    const QDir made(
        folder_->filePath(QStringLiteral("TS10001-服务1 周子墨-林婉清 到店自取/原始档")));
    QCOMPARE(made.entryList(QDir::Files), QStringList(QStringLiteral("IMG_0007.jpg")));
}

void TestFJHome::distributesInTableOrder()
{
    open();
    search(QStringLiteral("TS10001"), 2);
    table()->sortByColumn(Column::NumberColumn, Qt::DescendingOrder);
    click("selectAllButton");
    FileDialog::setNextFolder(folder_->path());
    click("directoryButton");
    demo_.misbehave(QStringLiteral("orderphotodetail"), QStringLiteral("hold"));
    demo_.clearRequests();
    click("startButton");
    waitUntilHeld();
    QCOMPARE(child<QLabel>("progressLabel")->text(),
             QStringLiteral("总进度 1/2  当前订单:TS10001-服务2"));
    demo_.release();
    EXPECT_BOXES(QStringList(QStringLiteral("2个订单分件完成!")));
    QCOMPARE(child<QLabel>("progressLabel")->text(),
             QStringLiteral("总进度 2/2  当前订单:TS10001-服务1"));
    QCOMPARE(
        body(QStringLiteral("orderphotodetail")),
        QStringLiteral("order_photo_id=800001&shopid=101&eid=3101&superid=7001&personid=3101"));
    QVERIFY(
        QDir(folder_->path())
            .exists(QStringLiteral("TS10001-服务1 周子墨-林婉清 到店自取/晨光制作厂 周子墨-林婉清"
                                   " 2026-01-15取 快递/迎宾海报=/IMG_0003.jpg")));
    QVERIFY(child<QPushButton>("startButton")->text() == QStringLiteral("开始分件"));
}

void TestFJHome::listsWhatFailed()
{
    open(QStringLiteral("下载照片交付"));
    search(QStringLiteral("TS10001"), 2);
    click("selectAllButton");
    FileDialog::setNextFolder(folder_->path());
    click("directoryButton");
    demo_.misbehave(QStringLiteral("orderphotodetail"), QStringLiteral("refuse"),
                    {{QStringLiteral("message"), QStringLiteral("订单已锁定")}});
    click("startButton");
    EXPECT_BOXES(QStringList(QStringLiteral("1个订单分件完成!\n有 2 处失败，见失败记录")));
    QVERIFY(child<QPlainTextEdit>("errorList")->isVisible());
    click("copyErrorsButton");
    QCOMPARE(QGuiApplication::clipboard()->text(),
             QStringLiteral("TS10001-服务1: 订单已锁定\nTS10001-服务2: 没有可下载的照片"));
    // The next run begins with an empty list.
    click("unselectAllButton");
    clickCell(0, Column::TickColumn);
    click("startButton");
    EXPECT_BOXES(QStringList(QStringLiteral("1个订单分件完成!")));
    QVERIFY(!child<QPlainTextEdit>("errorList")->isVisible());
}

void TestFJHome::nothingElseMayChangeWhileItRuns()
{
    open();
    search(QStringLiteral("TS10001"), 2);
    clickCell(0, Column::TickColumn);
    FileDialog::setNextFolder(folder_->path());
    click("directoryButton");
    demo_.misbehave(QStringLiteral("orderphotodetail"), QStringLiteral("hold"),
                    {{QStringLiteral("times"), 2}});
    click("startButton");
    QTRY_VERIFY(demo_.state().value(QStringLiteral("held")).toInt() >= 1);
    QCOMPARE(child<QPushButton>("startButton")->text(), QStringLiteral("停止分件"));
    const QString running = QStringLiteral("分件中...");
    click("searchButton");
    EXPECT_BOXES(QStringList(running));
    auto *branches = child<QComboBox>("branchBox");
    branches->setCurrentIndex(1);
    emit branches->activated(1);
    EXPECT_BOXES(QStringList(running));
    QCOMPARE(branches->currentIndex(), 0);
    clickCell(0, Column::TickColumn);
    QCOMPARE(child<FJLeftPanel>("leftPanel")->tickedOrders().size(), 1);
    QVERIFY(!child<QPushButton>("directoryButton")->isEnabled());
    click("startButton");
    QTRY_COMPARE(child<QPushButton>("startButton")->text(), QStringLiteral("开始分件"));
    QCOMPARE(Toast::currentText(window_), QStringLiteral("已停止，完成 0/1 个订单"));
    QVERIFY(boxes().isEmpty());
}

void TestFJHome::closesWhenTheServiceHasBeenTold()
{
    open();
    search(QStringLiteral("TS10001"), 2);
    clickCell(0, Column::TickColumn);
    FileDialog::setNextFolder(folder_->path());
    click("directoryButton");
    click("option原始档");
    demo_.misbehave(QStringLiteral("download_success"), QStringLiteral("hold"),
                    {{QStringLiteral("times"), -1}});
    click("startButton");
    EXPECT_BOXES(QStringList(QStringLiteral("1个订单分件完成!")));
    window_->close();
    QVERIFY(window_ && !window_->isVisible()); // lives on until the service has been told
    demo_.misbehave(QStringLiteral("download_success"), QStringLiteral("none"));
    demo_.release();
    QTRY_VERIFY(!window_);
    QCOMPARE(demo_.requests(QStringLiteral("download_success")).size(), 4);
    QVERIFY(boxes().isEmpty());
}

QTEST_MAIN(TestFJHome)
#include "test_fjhome.moc"
