#include "app/account/batchlogindialog.h"
#include "batchdelete/window/batchdelete.h"
#include "batchdelete/window/batchdelete_filelistwidget.h"
#include "batchdelete/window/batchdelete_orderlistwidget.h"
#include "tasks/ordersatwork.h"
#include "tests/support/datarows.h"
#include "tests/support/files.h"
#include "tests/support/toolwindow.h"
#include "widgets/boxes/filedialog.h"
#include "widgets/inputs/datepicker.h"
#include "widgets/orders/ordersearchbar.h"
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
#include <QTemporaryDir>

namespace {

using Column = BatchDeleteOrderModel::Column;

const QString before = "delete_pic_before"_s;
const QString after = "delete_pic_after"_s;
const QString first = "TS10001-1"_s;
const QString second = "TS10003-1"_s;
const QString third = "TS10004-1"_s;
const QString missing = "TS10005-1"_s;
const QString allDone = "全部删除完成！"_s;

} // namespace

/// The deletion window against the demo service, by mouse and keys.
class TestBatchDelete : public ToolWindowTest<BatchDelete, BatchDeleteOrderModel::NumberColumn>
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

    void deletesTheTickedOrders()
    {
        fill(first, 3);
        fill(second, 2);
        fill(third, 2);
        demo_.changeOrder("50005"_s, {{"netpath"_s, wireForm(share_ + "/test/none"_s)}});
        const QString folder = share_ + "/test/"_s + first + "/原片/"_s;
        QVERIFY(QFile::setPermissions(folder + "1.jpg"_s, QFile::ReadOwner));
        open();
        tick(first);
        tick(third);
        tick(missing);
        select(missing);
        QTRY_COMPARE(child<QLabel>("fileCountLabel")->text(), "目录不存在"_s);
        select(first);
        QTRY_COMPARE(child<QLabel>("fileCountLabel")->text(), "共 3 个文件"_s);
        QCOMPARE(text(first, Column::ProgressColumn), "0/0/3"_s);
        retryAll(); // nothing has failed yet
        startConfirmed();
        EXPECT_BOXES(allDone + "\n\n成功 4 个文件，失败 1 个文件\n跳过 1 个订单"_s);
        // What still has files keeps its tick, and the list of files has gone along.
        QVERIFY(isTicked(first) && !isTicked(third) && !isTicked(missing));
        QCOMPARE(child<QLabel>("fileCountLabel")->text(), "没有删除"_s);
        select(third);
        QCOMPARE(child<QLabel>("fileCountLabel")->text(), "共 2 个文件"_s);
        QCOMPARE(text(first, Column::ProgressColumn), "2/1/3"_s);
        QCOMPARE(text(third, Column::ProgressColumn), "2/0/2"_s);
        QCOMPARE(namesOnDisk(first), QStringList("原片/1.jpg"_s));
        QCOMPARE(namesOnDisk(second).size(), 2);
        QVERIFY(namesOnDisk(third).isEmpty());
        QCOMPARE(demo_.requests(before).size(), 2);
        QCOMPARE(demo_.requests(after).size(), 4);

        view(first, BatchDeleteProgressDelegate::ViewFailed);
        EXPECT_BOXES(" 删除失败的照片\n1.jpg: 没有删除权限"_s);
        view(third, BatchDeleteProgressDelegate::ViewFailed); // there is none
        view(third, BatchDeleteProgressDelegate::ViewSucceeded);
        EXPECT_BOX_THAT(box.startsWith(" 删除成功的照片\n"_s));

        QVERIFY(QFile::setPermissions(folder + "1.jpg"_s, QFile::ReadOwner | QFile::WriteOwner));
        select(first);
        retryAll();
        QTRY_COMPARE(text(first, Column::ProgressColumn), "3/0/3"_s);
        QCOMPARE(demo_.requests(after).size(), 5);
        QVERIFY(namesOnDisk(first).isEmpty());

        // A new search looks at the folder anew.
        fill(third, 1);
        select(third);
        QCOMPARE(text(third, Column::ProgressColumn), "2/0/2"_s);
        click("searchButton");
        QTRY_COMPARE(text(third, Column::ProgressColumn), "2/0/3"_s);
    }

    void nothingHappensUnconfirmed()
    {
        fill(first, 2);
        open();
        tick(first);
        click("startButton"); // the safe answer: cancel
        QTRY_COMPARE(boxes().size(), 1);
        boxes_.clear();
        QVERIFY(!window_->findChild<BatchLoginDialog *>());

        MessageBox::setNextAnswer(QMessageBox::Ok);
        click("startButton");
        QTRY_VERIFY(window_->findChild<BatchLoginDialog *>());
        QTest::keyClick(window_->findChild<BatchLoginDialog *>(), Qt::Key_Escape);
        QTRY_VERIFY(!window_->findChild<BatchLoginDialog *>());
        forgetBoxes();
        QVERIFY(demo_.requests(before).isEmpty());

        const QString refusal = "该订单不能删除"_s;
        for (const QString &box : {"提交数据失败!"_s, refusal}) {
            demo_.misbehave(before, box == refusal ? "refuse"_s : "drop"_s,
                            {{"message"_s, refusal}});
            startConfirmed();
            EXPECT_BOXES(box);
            QCOMPARE(text(first, Column::ProgressColumn), "0/0/2"_s);
            QVERIFY(isTicked(first));
        }
        QCOMPARE(namesOnDisk(first).size(), 2);
        QCOMPARE(startButton()->text(), "开始批量删除"_s);
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

    void resubmitPrompts_data()
    {
        // left: of the second order
        addColumns<int, QString, int, QString>({"answer", "counts", "left", "end"});
        newRow("again", int(QMessageBox::Ok), "2/0/2", 0, allDone);
        newRow("declined", int(QMessageBox::Cancel), "1/1/2", 1,
               "批量删除已停止。\n\n成功 1 个文件，失败 1 个文件\n还有 1 个订单没有处理");
        newRow("stopped", int(QMessageBox::Abort), "0/1/2", 1, "");
    }

    void resubmitPrompts()
    {
        QFETCH(int, answer);
        QFETCH(QString, end);
        fill(first, 2);
        fill(second, 1);
        open();
        tick(first);
        tick(second);
        demo_.refuse(after, "忙"_s);
        startConfirmed(QMessageBox::StandardButton(answer));
        QStringList expected{"忙，需要继续提交吗？"_s};
        if (!end.isEmpty())
            expected.append(end);
        EXPECT_BOXES(expected);
        QTRY_COMPARE(startButton()->text(), "开始批量删除"_s);
        QTEST(text(first, Column::ProgressColumn), "counts");
        QTEST(namesOnDisk(second).size(), "left");
        if (window_->close()) // an unreported file keeps it
            return;
        EXPECT_BOXES(
            {"有 1 个文件已删除，但状态没有提交成功。\n关闭窗口后无法再次提交，确认要关闭吗？"_s});
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

    void whatIsUnreportedIsNotForgotten()
    {
        runUntilReporting(2);
        click("startButton");
        click("startButton"); // not even for the answer
        QTRY_COMPARE(text(first, Column::ProgressColumn), "0/1/2"_s);
        demo_.release();

        // A new list keeps it, and so does a look at the disk; another branch has to be insisted
        // on.
        QTest::keyClicks(child<QLineEdit>("keywordEdit"), "TS10003"_s);
        QTest::keyClick(child<QLineEdit>("keywordEdit"), Qt::Key_Return);
        QTRY_COMPARE(orders()->model()->rowCount(), 2);
        select(first);
        click("refreshButton");
        QTRY_COMPARE(child<QLabel>("fileCountLabel")->text(), "共 2 个文件"_s);
        QCOMPARE(text(first, Column::ProgressColumn), "0/1/2"_s);
        chooseBranch("102"_s);
        EXPECT_BOXES(
            {"有 1 个文件已删除，但状态没有提交成功。\n切换分店后无法再次提交，确认要切换吗？"_s});
        QCOMPARE(combo("branchBox")->currentText(), "一店"_s);

        // What is still there comes first.
        const QModelIndex state = files()->model()->index(1, BatchDeleteFileModel::StateColumn);
        QCOMPARE(state.data().toString(), "提交状态失败"_s);
        demo_.hold(after);
        QTest::mouseClick(
            files()->viewport(), Qt::LeftButton, {},
            BatchDeleteStateDelegate::buttonRect(files()->visualRect(state)).center());
        waitUntilHeld();
        QVERIFY(!window_->close()); // not even while it is being reported
        EXPECT_BOXES(
            {"有 1 个文件已删除，但状态没有提交成功。\n关闭窗口后无法再次提交，确认要关闭吗？"_s});
        demo_.release();
        QTRY_COMPARE(text(first, Column::ProgressColumn), "1/0/2"_s);
        QCOMPARE(namesOnDisk(first).size(), 1);
    }

    void closingInMidRun()
    {
        fill(first, 3);
        open();
        tick(first);
        demo_.refuse(after, "忙"_s);
        demo_.hold(after);
        startConfirmed(QMessageBox::Cancel);
        waitUntilHeld();
        forgetBoxes();
        for (const bool agreed : {false, true}) {
            MessageBox::setNextAnswer(agreed ? QMessageBox::Ok : QMessageBox::Cancel);
            window_->close();
            EXPECT_BOX_THAT(box.startsWith("有 1 个文件已删除，但状态没有提交成功。"_s));
            QVERIFY(window_ && window_->isVisible() != agreed);
        }
        demo_.release();
        QTRY_VERIFY(!window_);
        QCOMPARE(namesOnDisk(first).size(), 1);
        QCOMPARE(demo_.requests(after).size(), 2);
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

    void outcomesAreSavedAndCopied()
    {
        fill(first, 1);
        open();
        const auto actions = child<QPushButton>("exportButton")->menu()->actions();
        actions.first()->trigger();
        EXPECT_TOAST("还没有删除结果");
        tick(first);
        startConfirmed();
        EXPECT_BOXES(allDone);
        const QTemporaryDir folder;
        const QString path = folder.filePath("r.csv"_s);
        FileDialog::setNextFiles({path});
        actions.first()->trigger();
        QTRY_VERIFY(QFileInfo(path).size() > 0);
        FileDialog::setNextFiles({folder.filePath("no/r.csv"_s)});
        actions.first()->trigger();
        EXPECT_BOX_THAT(box.startsWith("文件保存失败: "_s));
    }

private:
    void open(int rows = 6)
    {
        auto *window = new BatchDelete;
        window->setAttribute(Qt::WA_DeleteOnClose);
        show(window, rows);
    }

    /// Gives the order a folder on the share with \a count files in it, and finds it again.
    void fill(const QString &number, int count)
    {
        const QString folder = share_ + "/test/"_s + number;
        QVERIFY(QDir().mkpath(folder + "/原片"_s));
        for (int index = 0; index < count; ++index) {
            writeFile(folder + "/原片/%1.jpg"_s.arg(index));
        }
        const QString id = QString::number(40000 + number.mid(2, 5).toInt());
        demo_.changeOrder(id, {{"netpath"_s, wireForm(folder)}});
    }

    QStringList namesOnDisk(const QString &number)
    {
        return filesBelow(share_ + "/test/"_s + number);
    }

    /// By the key on all of the shown files.
    void retryAll()
    {
        window_->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(window_));
        files()->setFocus();
        files()->selectAll();
        QTest::keyClick(files(), Qt::Key_R, Qt::ControlModifier);
    }

    QTableView *files() { return child<QTableView>("fileTable"); }
    QPushButton *startButton() { return child<QPushButton>("startButton"); }
    QComboBox *combo(const char *name) { return child<QComboBox>(name); }

    void tick(const QString &number) { click(cell(number, Column::CheckColumn)); }
    bool isTicked(const QString &number)
    {
        return cell(number, Column::CheckColumn).data(Qt::CheckStateRole) == Qt::Checked;
    }

    void view(const QString &number, BatchDeleteProgressDelegate::Button button)
    {
        const QModelIndex index = cell(number, Column::ProgressColumn);
        orders()->scrollTo(index);
        click(
            index,
            BatchDeleteProgressDelegate::buttonRect(orders()->visualRect(index), button).center());
    }

    /// Presses start, confirms the list of orders and the account; \a next answers the box after
    /// that.
    void startConfirmed(QMessageBox::StandardButton next = QMessageBox::NoButton)
    {
        MessageBox::setNextAnswer(QMessageBox::Ok);
        click("startButton");
        QTRY_VERIFY(window_->findChild<BatchLoginDialog *>());
        QVERIFY(!boxes().isEmpty() && boxes_.takeFirst().startsWith("下列 "_s));
        if (next != QMessageBox::NoButton)
            MessageBox::setNextAnswer(next);
        auto *dialog = window_->findChild<BatchLoginDialog *>();
        dialog->findChild<QLineEdit *>("accountEdit"_s)->setText("demo01"_s);
        dialog->findChild<QLineEdit *>("passwordEdit"_s)->setText("abc123"_s);
        QTest::mouseClick(dialog->findChild<QPushButton *>("loginButton"_s), Qt::LeftButton);
        QTRY_VERIFY(!window_->findChild<BatchLoginDialog *>());
    }

    /// A run of the first order, of \a count files, whose first report is not answered yet.
    void runUntilReporting(int count)
    {
        fill(first, count);
        open();
        tick(first);
        demo_.hold(after);
        startConfirmed();
        waitUntilHeld();
    }

    QString share_;
    QString managerOfSwitch_;
    int rowsAtSwitch_ = -1;
};

QTEST_MAIN(TestBatchDelete)
#include "test_batchdelete.moc"
