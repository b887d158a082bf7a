#include "app/account/batchlogindialog.h"
#include "batchdelete/window/batchdelete_filelistwidget.h"
#include "batchdelete/window/batchdelete_orderlistwidget.h"
#include "tasks/ordersatwork.h"
#include "tests/batchdelete/window/deletionwindow.h"
#include "widgets/inputs/datepicker.h"
#include "widgets/windows/loadingoverlay.h"

#include <QAbstractItemModelTester>
#include <QCheckBox>
#include <QClipboard>
#include <QDir>
#include <QGuiApplication>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QSignalSpy>

using namespace deletionwindow;

/// Finding, ticking and looking at orders.
class TestBatchDelete : public DeletionWindowTest
{
    Q_OBJECT

private slots:
    void init()
    {
        logIn();
        share_ = demo_.share();
    }

    void cleanup() { endTest(); }

    void opensWithOrdersAndPersons()
    {
        open();
        QTRY_COMPARE(combo("personBox")->count(), 5);
        QCOMPARE(combo("personBox")->itemText(0), "全部"_s);
        QCOMPARE(child<QLabel>("orderCountLabel")->text(),
                 "    共%1个订单"_s.arg(orders()->model()->rowCount()));
        QCOMPARE(files()->model()->columnCount(), 4);
        QCOMPARE(child<QLabel>("fileCountLabel")->text(), "请选择订单查看文件列表"_s);
        QVERIFY(demo_.body("order_list"_s)
                    .startsWith("keyword=&searchtype=1&role7id=&ratio=90&shopid=101&"
                                "eid=3101&superid=7001&personid=3101&token="_s));
        // Not before the answer has been shown: a model is tested as it is used.
        new QAbstractItemModelTester(files()->model(), window_);
        new QAbstractItemModelTester(orders()->model(), window_);
        connect(window_, &BatchDelete::changeShop, this,
                [this](const QMap<QString, QString> &shop) {
                    managerOfSwitch_ = shop.value("managerid"_s);
                    rowsAtSwitch_ = orders()->model()->rowCount();
                });
        combo("personBox")->setFocus();
        QTest::keyClick(combo("personBox"), Qt::Key_Down);
        QTRY_VERIFY(demo_.body("order_list"_s).contains("&role7id=1011&"_s));
        QTRY_VERIFY(child<QPushButton>("searchButton")->isEnabled());
        QTRY_VERIFY(orders()->model()->rowCount() > 0);

        // Another branch forgets the persons, and the orders at once.
        chooseBranch("102"_s);
        QTRY_COMPARE(managerOfSwitch_, "3102"_s);
        QCOMPARE(rowsAtSwitch_, 0);
        QTRY_VERIFY(demo_.body("order_list"_s).contains("&role7id=&ratio=90&shopid=102&"_s));
        QTRY_VERIFY(orders()->model()->rowCount() > 0);
    }

    void searchesByCompletion()
    {
        open();
        const QString date = text(first, Column::CompletionColumn).left(10);
        combo("searchTypeBox")->setCurrentIndex(1);
        child<DatePicker>("completionDate")->choose(QDate::fromString(date, Qt::ISODate));
        click("searchButton");
        QTRY_VERIFY(demo_.requests("order_list"_s).size() == 2);
        QVERIFY(demo_.body("order_list"_s)
                    .startsWith("keyword=%1&searchtype=6&role7id=&ratio=90&"_s.arg(date)));
        QTRY_VERIFY(orders()->model()->rowCount() < 6);
    }

    void withoutPermissionNothingCanBeDone()
    {
        AccountContext::selectedShopId = "103"_s;
        open(0);
        EXPECT_TOAST("暂无权限操作批量删除");
        QVERIFY(!window_->findChild<BatchDelete_OrderListWidget *>()->isEnabled());
        QVERIFY(!window_->findChild<BatchDelete_FileListWidget *>()->isEnabled());
        click("startButton");
        EXPECT_TOAST("暂无权限操作");
        click("searchButton");
        EXPECT_TOAST("暂无权限操作批量删除");
        QVERIFY(demo_.requests("order_list"_s).isEmpty());
        QVERIFY(demo_.requests("get_persons"_s).isEmpty());
        chooseBranch("101"_s);
        QTRY_VERIFY(orders()->model()->rowCount() > 0);
        QVERIFY(window_->findChild<BatchDelete_OrderListWidget *>()->isEnabled());
    }

    void ticksByMouseAndKeys()
    {
        open();
        click("startButton");
        EXPECT_TOAST("请选择要删除的订单!");
        auto *list = window_->findChild<BatchDelete_OrderListWidget *>();
        auto *all = child<QCheckBox>("selectAllBox");
        QSignalSpy changed(list, &BatchDelete_OrderListWidget::orderSelectionChanged);
        const auto ticked = [&changed] {
            return changed.last().first().value<QList<BatchDeleteOrderInfo>>().size();
        };
        tick(second);
        QCOMPARE(ticked(), 1);
        QCOMPARE(all->checkState(), Qt::PartiallyChecked);
        orders()->setFocus();
        select(first);
        QTest::keyClick(orders(), Qt::Key_Space);
        QCOMPARE(ticked(), 2);
        QTest::keyClick(orders(), Qt::Key_Space);
        QCOMPARE(ticked(), 1);
        QTest::mouseClick(all, Qt::LeftButton);
        QCOMPARE(all->checkState(), Qt::Checked);
        QCOMPARE(ticked(), orders()->model()->rowCount());
        // A tick belongs to its order, however the table is sorted.
        tick(second);
        orders()->sortByColumn(Column::CustomerColumn, Qt::DescendingOrder);
        QVERIFY(!isTicked(second));
        QTest::mouseClick(all, Qt::LeftButton);
        QTest::mouseClick(all, Qt::LeftButton);
        QCOMPARE(ticked(), 0);
    }

    void refusedOrdersAreTold()
    {
        fill(first, 1);
        demo_.changeOrder("50003"_s, {{"netpath"_s, wireForm(share_ + "/test"_s)}});
        open();
        tick(second); // its folder holds that of the first order, which is not ticked
        click("startButton");
        EXPECT_BOX_THAT(box.contains("目录中包含未删除的订单 TS10001-1 的目录"_s));
        QVERIFY(!window_->findChild<BatchLoginDialog *>());
        QCOMPARE(namesOnDisk(first).size(), 1);
        QVERIFY(!isTicked(second));
        child<QPushButton>("exportButton")->menu()->actions().last()->trigger();
        QTRY_VERIFY(QGuiApplication::clipboard()->text().contains(
            "\"目录中包含未删除的订单 TS10001-1 的目录"_s));

        // An order that another tool has in hand keeps its folder from others, too.
        tick(first);
        tick(second);
        ordersatwork::Claim claim;
        const OrderIdentity identity{"101"_s, "50001"_s, "800001"_s};
        QVERIFY(!ordersatwork::claim({identity}, "导片工具"_s, &claim));
        click("startButton");
        EXPECT_BOX_THAT(box.contains("正在“导片工具”中处理"_s) &&
                        box.contains("目录中包含未删除的订单 TS10001-1 的目录"_s));
        claim.release();

        // And so does one that a search leaves out.
        child<QLineEdit>("keywordEdit")->setText("TS10003"_s);
        click("searchButton");
        QTRY_COMPARE(orders()->model()->rowCount(), 1);
        tick(second);
        click("startButton");
        EXPECT_BOX_THAT(box.contains("目录中包含未删除的订单 TS10001-1 的目录"_s));
        QCOMPARE(namesOnDisk(first).size(), 1);
    }

    void whileRunningNothingElseMayChange()
    {
        runUntilReporting(3);
        QCOMPARE(startButton()->text(), "停止删除"_s);
        click("searchButton");
        chooseBranch("102"_s);
        EXPECT_BOXES("删除中..."_s, "删除中..."_s);
        QCOMPARE(combo("branchBox")->currentText(), "一店"_s);
        tick(second);
        QVERIFY(!isTicked(second));
        select(first);
        QCOMPARE(files()->model()->rowCount(), 3);
        click("refreshButton");
        EXPECT_TOAST("删除中...");

        click("startButton"); // the current file first
        QCOMPARE(startButton()->text(), "立即停止"_s);
        demo_.release();
        EXPECT_TOAST("批量删除已停止");
        QCOMPARE(text(first, Column::ProgressColumn), "1/0/3"_s);
        QCOMPARE(namesOnDisk(first).size(), 2);
    }

    void scansCanBeCancelledAndRefreshed()
    {
        fill(first, 2);
        demo_.changeOrder("50003"_s, {{"netpath"_s, "\\\\no\\such\\x"_s}});
        demo_.changeOrder("50004"_s, {{"netpath"_s, wireForm(QDir::rootPath())}});
        open();
        select(second);
        const auto *table = child<EmptyStateTable>("fileTable");
        QTRY_VERIFY(table->emptyText().startsWith("共享目录连接失败: "_s));
        QCOMPARE(child<QLabel>("fileCountLabel")->text(), "目录无法访问"_s);
        QTest::keyClick(orders(), Qt::Key_Home, Qt::ControlModifier);
        QTRY_COMPARE(files()->model()->rowCount(), 2);
        select(third); // a whole disk is not even looked at
        QCOMPARE(table->emptyText(), "导片路径是磁盘或共享的根目录"_s);
        select(first);
        QTRY_COMPARE(files()->model()->rowCount(), 2);
        auto *list = window_->findChild<BatchDelete_FileListWidget *>();
        click("refreshButton");
        auto *overlay = list->findChild<LoadingOverlay *>();
        QVERIFY(overlay->text().startsWith("查找TS10001-1的文件中..."_s));
        QTest::keyClick(overlay, Qt::Key_Escape);
        QTRY_VERIFY(!overlay->isVisible());
        QCOMPARE(files()->model()->rowCount(), 0);
        click("refreshButton");
        QTRY_COMPARE(files()->model()->rowCount(), 2);
    }

private:
    QString managerOfSwitch_;
    int rowsAtSwitch_ = -1;
};

QTEST_MAIN(TestBatchDelete)
#include "test_batchdelete.moc"
