#include "distribution/window/distributionordermodel.h"
#include "distribution/window/fjhome.h"
#include "distribution/window/fjleftpanel.h"
#include "distribution/window/fjrightpanel.h"
#include "distribution/window/photolistmodel.h"
#include "tests/support/datarows.h"
#include "tests/support/files.h"
#include "tests/support/toolwindow.h"
#include "widgets/boxes/filedialog.h"
#include "widgets/inputs/datepicker.h"
#include "widgets/orders/ordersearchbar.h"

#include <QAbstractItemModelTester>
#include <QCheckBox>
#include <QClipboard>
#include <QDir>
#include <QGuiApplication>
#include <QHeaderView>
#include <QJsonDocument>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSignalSpy>
#include <QTemporaryDir>

using Column = DistributionOrderModel::Column;

namespace {

const QString identity = "&shopid=101&eid=3101&superid=7001&personid=3101"_s;
const QString orderFolder = "TS10001-服务1 周子墨-林婉清 到店自取"_s;

} // namespace

/// The distribution window against the demo service, by mouse and keys.
class TestFJHome : public ToolWindowTest<FJHome, DistributionOrderModel::NumberColumn>
{
    Q_OBJECT

private slots:
    void init()
    {
        logIn();
        AccountContext::shopList.first().goodsfoldernamerule =
            "[{\"name\":\"产品名称\",\"key\":\"name\",\"separator\":\"=\"}]"_s;
        folder_ = std::make_unique<QTemporaryDir>();
    }

    void cleanup() { endTest(); }

    void opensWithTheBranchsOrders_data()
    {
        addColumns<QString, QString, QString, bool, bool>(
            {"card", "action", "ticked", "lists", "naming"});
        newRow("originals", "下载原始档", "order_list", "原始档", true, false);
        newRow("selection", "下载选片结果", "order_list", "原图精修", true, true);
        newRow("distribution", "设计分件", "order_list_type_1", "原图精修", true, true);
        newRow("delivery", "下载照片交付", "order_list", "原图精修", false, false);
    }

    void opensWithTheBranchsOrders()
    {
        QFETCH(QString, card);
        QFETCH(QString, action);
        QFETCH(QString, ticked);
        open(card);
        QCOMPARE(window_->windowTitle(), "分件工具"_s);
        QCOMPARE(body(action), "keyword=&searchtype=1"_s + identity);
        QVERIFY(orders()->model()->rowCount() > 5);
        QStringList headers;
        for (int column = 0; column < orders()->model()->columnCount(); ++column)
            headers.append(orders()->model()->headerData(column, Qt::Horizontal).toString());
        QCOMPARE(headers, ",订单号,男士姓名,女士姓名,摄影师,套系,拍照日期,初修数/精修数,"
                          "化妆师,选片师,选片日期,选片完成时间,男士电话,女士电话,订单金额"_s.split(
                              QLatin1Char(',')));
        QString checked;
        for (const char *option : {"原始档", "原图", "简修", "简修含汰片", "精修"}) {
            if (child<QCheckBox>((QByteArray("option") + option).constData())->isChecked())
                checked += QString::fromUtf8(option);
        }
        QCOMPARE(checked, ticked);
        QTEST(child<QListView>("undownloadList")->isVisible(), "lists");
        QTEST(child<QPushButton>("saveRuleButton")->isVisible(), "naming");
        QCOMPARE(searchBar()->height(), searchBar()->sizeHint().height());
    }

    void searches_data()
    {
        addColumns<int, QString>({"type", "expected"});
        newRow("text", 0, "keyword=A%26B%2BC%25&searchtype=1"_s + identity);
        newRow("shooting date", 1, "keyword=2025-10-01&searchtype=4"_s + identity);
        newRow("selection date", 2, "keyword=2025-10-08&searchtype=5"_s + identity);
    }

    void searches()
    {
        QFETCH(int, type);
        open();
        child<QComboBox>("searchTypeBox")->setCurrentIndex(type);
        child<QLineEdit>("keywordEdit")->setText("A&B+C%"_s);
        QVERIFY(child<QLineEdit>("keywordEdit")->isVisible() == (type == 0));
        child<DatePicker>("shootingDate")->choose({2025, 10, 1});
        child<DatePicker>("selectionDate")->choose({2025, 10, 8});
        demo_.hold("order_list_type_1"_s);
        click("searchButton");
        waitUntilHeld();
        QCOMPARE(texts("searchButton"), "搜索中..."_s);
        QVERIFY(!child<QPushButton>("searchButton")->isEnabled());
        QCOMPARE(orders()->model()->rowCount(), 0);
        demo_.release();
        QTRY_COMPARE(texts("searchButton"), "搜索订单"_s);
        QTEST(body("order_list_type_1"_s), "expected");
        QVERIFY(orders()->model()->rowCount() >= 1);
    }

    void switchesTheBranch()
    {
        open();
        const auto rule = [this] {
            return QJsonDocument::fromJson(
                child<FJRightPanel>("rightPanel")->namingRule().toUtf8());
        };
        const QJsonDocument stored =
            QJsonDocument::fromJson(AccountContext::shopList.first().goodsfoldernamerule.toUtf8());
        QCOMPARE(rule(), stored);
        child<QLineEdit>("keywordEdit")->setText("TS"_s);
        QSignalSpy announced(child<FJLeftPanel>("leftPanel"), &FJLeftPanel::userInfoChange);
        chooseBranch("102"_s);
        QTRY_COMPARE(announced.size(), 1);
        QCOMPARE(announced.first(), (QList<QVariant>{"102"_s, "3102"_s, "7002"_s}));
        waitForOrders();
        QCOMPARE(body("switch_shop"_s), "shopid=102"_s);
        QCOMPARE(body("order_list_type_1"_s),
                 "keyword=TS&searchtype=1&shopid=102&eid=3102&superid=7002&personid=3102"_s);
        QCOMPARE(AccountContext::eid, "3102"_s);
        QCOMPARE(AccountContext::superId, "7002"_s);
        QCOMPARE(AccountContext::distributionRule, "1"_s);
        // A branch without a rule leaves the editor as it was.
        QCOMPARE(rule(), stored);
        // What is not saved is marked, and asked about.
        QVERIFY(!child<QLabel>("unsavedRule")->isVisible());
        QTest::mouseClick(window_->findChild<QPushButton *>("deleteButton"_s), Qt::LeftButton);
        QVERIFY(child<QLabel>("unsavedRule")->isVisible());
        chooseBranch("101"_s);
        EXPECT_BOXES("产品文件夹命名规则的修改还没有保存，切换分店后将丢失。\n确定要切换吗？"_s);
        QCOMPARE(searchBar()->selectedBranchId(), "102"_s);
    }

    void aSwitchThatFailedAtOpeningCanBeTriedAgain()
    {
        demo_.misbehave("switch_shop"_s, "drop"_s);
        open();
        QCOMPARE(orders()->model()->rowCount(), 0);
        search("TS10001"_s, 2);
    }

    void ticks()
    {
        open();
        search("TS10001"_s, 2);
        QSignalSpy selected(child<FJLeftPanel>("leftPanel"), &FJLeftPanel::orderSelected);
        clickCell(1, Column::TickColumn);
        QCOMPARE(selected.takeLast(), (QList<QVariant>{1, true}));
        clickCell(1, Column::ManColumn);
        QVERIFY(selected.isEmpty());
        QTest::keyClick(orders(), Qt::Key_Space);
        QCOMPARE(selected.takeLast(), (QList<QVariant>{1, false}));
        // Sorted the other way round the ticks stay with their orders.
        orders()->sortByColumn(Column::NumberColumn, Qt::DescendingOrder);
        clickCell(0, Column::TickColumn);
        QCOMPARE(selected.takeLast(), (QList<QVariant>{1, true}));
        const auto *panel = child<FJLeftPanel>("leftPanel");
        QCOMPARE(panel->tickedOrders().constFirst().serviceTimes, "2"_s);
        click("selectAllButton");
        QCOMPARE(panel->tickedOrders().size(), 2);
        click("unselectAllButton");
        QVERIFY(panel->tickedOrders().isEmpty());
        // The row under the pointer is shaded, all of it.
        const auto ground = [this](int row, int column) {
            const QRect cell = orders()->visualRect(orders()->model()->index(row, column));
            return orders()->viewport()->grab().toImage().pixel(cell.topRight() + QPoint(-2, 2));
        };
        QTest::mouseMove(orders()->viewport(),
                         orders()->visualRect(orders()->model()->index(1, 2)).center());
        for (const int column : {Column::TickColumn, Column::ManColumn, Column::PackageColumn}) {
            QTRY_COMPARE(ground(1, column), QRgb(0xfff2f2f7));
            QCOMPARE(ground(0, column), QRgb(0xffffffff));
        }
    }

    void needsADirectoryAndOrders()
    {
        open("下载原始档"_s);
        QCOMPARE(texts("directoryLabel"), "未选择目录"_s);
        click("startButton");
        EXPECT_BOXES("请选择分件目录后再点击开始分件按钮"_s);
        click("directoryButton"); // cancelled
        QCOMPARE(texts("directoryLabel"), "未选择目录"_s);
        const QString deep = folder_->filePath(QString(200, QLatin1Char('d')));
        FileDialog::setNextFolder(deep);
        click("directoryButton");
        QVERIFY(texts("directoryLabel").contains("..."_s));
        QCOMPARE(child<QLabel>("directoryLabel")->toolTip(), QDir::toNativeSeparators(deep));
        click("startButton");
        EXPECT_BOXES("请选择需要分件的订单"_s);
        click("option原始档");
        click("startButton");
        EXPECT_BOXES("请至少勾选一项下载目录选项"_s);
        QVERIFY(demo_.requests("orderphotodetail"_s).isEmpty());
        // The next window has it again, as long as it is there.
        FileDialog::setNextFolder(folder_->path());
        click("directoryButton");
        FJRightPanel next;
        QTRY_COMPARE(next.directory(), folder_->path());
    }

    void showsThePhotosOfAnOrder()
    {
        open("下载原始档"_s);
        search("TS10001"_s, 2);
        demo_.refuse("orderphotodetail"_s, "订单已锁定"_s);
        clickCell(1, Column::ManColumn);
        EXPECT_BOXES("订单已锁定"_s);
        clickCell(0, Column::ManColumn);
        QTRY_COMPARE(texts("undownloadLabel", "downloadedLabel"),
                     "未下载:  (4张)  已下载:  (0张)  "_s);
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
        QTRY_COMPARE(texts("undownloadLabel"), "未下载:  (0张)  "_s);
        clickCell(0, Column::TickColumn);
        start();
        EXPECT_BOXES("1个订单分件完成!"_s);
        QCOMPARE(texts("undownloadLabel", "downloadedLabel"), "未下载:  (3张)  已下载:  (1张)  "_s);
        QTRY_COMPARE(demo_.requests("download_success"_s).size(), 1);
        const QDir made(folder_->filePath(orderFolder + "/原始档"_s));
        QCOMPARE(made.entryList(QDir::Files), QStringList("IMG_0007.jpg"_s));

        // Another search forgets it, with the ticks.
        search("TS10001"_s, 2);
        clickCell(0, Column::TickColumn);
        writeFile(made.filePath("other.txt"_s));
        start();
        EXPECT_BOXES("1个订单分件完成!\n"
                     "订单文件夹中有 1 个文件不是本次写入的（TS10001-服务1: 1）"_s);
        QCOMPARE(made.entryList({"*.jpg"_s}, QDir::Files).size(), 4);
    }

    void distributesInTableOrder()
    {
        open();
        search("TS10001"_s, 2);
        orders()->sortByColumn(Column::NumberColumn, Qt::DescendingOrder);
        click("selectAllButton");
        demo_.hold("orderphotodetail"_s);
        start();
        waitUntilHeld();
        QCOMPARE(texts("progressLabel"), "总进度 1/2  当前订单:TS10001-服务2"_s);
        QSignalSpy worked(window_, &FramelessWindow::workChanged);
        demo_.release();
        EXPECT_BOXES("2个订单分件完成!"_s);
        QVERIFY(worked.count() > 0);
        QCOMPARE(window_->work(), WorkProgress());
        QVERIFY(!window_->findChild<QWidget *>("speedLabel"_s)->isVisible());
        QCOMPARE(texts("progressLabel"), "总进度 2/2  当前订单:TS10001-服务1"_s);
        QCOMPARE(body("orderphotodetail"_s), "order_photo_id=800001"_s + identity);
        QVERIFY(QDir(folder_->filePath(orderFolder))
                    .exists("晨光制作厂 周子墨-林婉清 2026-01-15取 快递/迎宾海报=/IMG_0003.jpg"_s));
        QCOMPARE(texts("startButton"), "开始分件"_s);
    }

    void listsWhatFailed()
    {
        open("下载照片交付"_s);
        search("TS10001"_s, 2);
        click("selectAllButton");
        demo_.refuse("orderphotodetail"_s, "订单已锁定"_s);
        start();
        EXPECT_BOXES("1个订单分件完成!\n没有分件的订单：TS10001-服务1\n有 2 处失败，见失败记录"_s);
        QVERIFY(child<QPlainTextEdit>("errorList")->isVisible());
        click("copyErrorsButton");
        QCOMPARE(QGuiApplication::clipboard()->text(),
                 "TS10001-服务1: 订单已锁定\nTS10001-服务2: 没有可下载的照片"_s);
        // The next run begins with an empty list.
        click("unselectAllButton");
        clickCell(0, Column::TickColumn);
        click("startButton");
        EXPECT_BOXES("1个订单分件完成!"_s);
        QVERIFY(!child<QPlainTextEdit>("errorList")->isVisible());
    }

    void nothingElseMayChangeWhileItRuns()
    {
        open();
        search("TS10001"_s, 2);
        clickCell(0, Column::TickColumn);
        demo_.hold("orderphotodetail"_s, 2);
        start();
        QTRY_VERIFY(demo_.held() >= 1);
        QCOMPARE(texts("startButton"), "停止分件"_s);
        const QString running = "分件中..."_s;
        click("searchButton");
        EXPECT_BOXES(running);
        auto *branches = child<QComboBox>("branchBox");
        chooseBranch("102"_s);
        EXPECT_BOXES(running);
        QCOMPARE(branches->currentIndex(), 0);
        clickCell(0, Column::TickColumn);
        QCOMPARE(child<FJLeftPanel>("leftPanel")->tickedOrders().size(), 1);
        QVERIFY(!child<QPushButton>("directoryButton")->isEnabled());
        click("startButton");
        QTRY_COMPARE(texts("startButton"), "开始分件"_s);
        QCOMPARE(Toast::currentText(window_), "已停止，完成 0/1 个订单"_s);
    }

    void closesWhenTheServiceHasBeenTold()
    {
        open();
        search("TS10001"_s, 2);
        clickCell(0, Column::TickColumn);
        click("option原始档");
        demo_.hold("download_success"_s, -1);
        start();
        EXPECT_BOXES("1个订单分件完成!"_s);
        window_->setAttribute(Qt::WA_DeleteOnClose);
        window_->close();
        QVERIFY(window_ && !window_->isVisible()); // lives on until the service has been told
        demo_.misbehave("download_success"_s, "none"_s);
        demo_.release();
        QTRY_VERIFY(!window_);
        QCOMPARE(demo_.requests("download_success"_s).size(), 4);
    }

private:
    void open(const QString &card = "设计分件"_s)
    {
        auto *window = new FJHome;
        window->setCard(card);
        show(window, 0);
        waitForOrders();
    }

    void start()
    {
        FileDialog::setNextFolder(folder_->path());
        click("directoryButton");
        click("startButton");
    }

    void search(const QString &keyword, int expected)
    {
        auto *edit = child<QLineEdit>("keywordEdit");
        edit->setText(keyword);
        QTest::keyClick(edit, Qt::Key_Return);
        waitForOrders();
        QCOMPARE(orders()->model()->rowCount(), expected);
    }

    void waitForOrders() { QTRY_VERIFY_WITH_TIMEOUT(!searchBar()->isBusy(), patienceMs); }

    OrderSearchBar *searchBar() { return window_->findChild<OrderSearchBar *>(); }

    void clickCell(int row, int column) { click(orders()->model()->index(row, column)); }

    /// What labels and buttons say, one after the other.
    template <typename... Names> QString texts(const Names &...names)
    {
        return (child<QWidget>(names)->property("text").toString() + ...);
    }

    QString body(const QString &action) { return demo_.body(action).section("&token"_s, 0, 0); }

    std::unique_ptr<QTemporaryDir> folder_;
};

QTEST_MAIN(TestFJHome)
#include "test_fjhome.moc"
