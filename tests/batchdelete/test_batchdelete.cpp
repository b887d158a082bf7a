#include "app/account/batchlogindialog.h"
#include "app/context/accountcontext.h"
#include "batchdelete/batchdelete.h"
#include "batchdelete/batchdelete_filelistwidget.h"
#include "batchdelete/batchdelete_orderlistwidget.h"
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
#include <QDirIterator>
#include <QGuiApplication>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QSignalSpy>
#include <QTableView>
#include <QTemporaryDir>
#include <QtTest>

namespace {

using Column = BatchDeleteOrderModel::Column;

const QString before = QStringLiteral("delete_pic_before");
const QString after = QStringLiteral("delete_pic_after");
const QString first = QStringLiteral("TS10001-1");
const QString second = QStringLiteral("TS10003-1");
const QString third = QStringLiteral("TS10004-1");
const QString allDone = QStringLiteral("全部删除完成！");

} // namespace

/// The deletion window against the demo service, by mouse and keys.
class TestBatchDelete : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { MessageBox::setScripted(true); }
    void init();
    void cleanup();
    void opensWithOrdersAndPersons();
    void searchesByCompletion();
    void withoutPermissionNothingCanBeDone();
    void startWithNothingTicked();
    void ticksByMouseAndKeys();
    void deletesTheTickedOrders();
    void nothingHappensUnconfirmed();
    void refusedOrdersAreTold();
    void failedAnnouncements_data();
    void failedAnnouncements();
    void resubmitPrompts_data();
    void resubmitPrompts();
    void whileRunningNothingElseMayChange();
    void whatIsUnreportedIsNotForgotten();
    void closingInMidRun();
    void aReplyAfterClosingIsHarmless();
    void scansCanBeCancelledAndRefreshed();
    void outcomesAreSavedAndCopied();

private:
    void open(int rows = 6);
    /// Gives the order a folder on the share with \a count files in it, and finds it again.
    void fill(const QString &number, int count);
    QStringList namesOnDisk(const QString &number);
    QTableView *orders() { return child<QTableView>("orderTable"); }
    QTableView *files() { return child<QTableView>("fileTable"); }
    QPushButton *startButton() { return child<QPushButton>("startButton"); }
    QComboBox *combo(const char *name) { return child<QComboBox>(name); }
    template <typename Child> Child *child(const char *name)
    {
        return window_->findChild<Child *>(QLatin1String(name));
    }
    QModelIndex cell(const QString &number, int column);
    QString text(const QString &number, int column)
    {
        return cell(number, column).data().toString();
    }
    void click(const QModelIndex &index, QPoint position = {});
    void tick(const QString &number) { click(cell(number, Column::CheckColumn)); }
    void view(const QString &number, BatchDeleteProgressDelegate::Button button);
    void chooseBranch(const QString &id);
    /// Presses start, confirms the list of orders and the account.
    void startConfirmed();
    void confirmAccount();
    const QStringList &boxes();

    DemoClient demo_;
    QString share_;
    QPointer<BatchDelete> window_;
    QStringList boxes_;
    QString managerOfSwitch_;
    int rowsAtSwitch_ = -1;
};

#define EXPECT_BOXES(texts)                                                                        \
    do {                                                                                           \
        QTRY_COMPARE(boxes(), texts);                                                              \
        boxes_.clear();                                                                            \
    } while (false)

#define EXPECT_TOAST(text) QTRY_COMPARE(Toast::currentText(window_), QStringLiteral(text))

void TestBatchDelete::init()
{
    demo_.reset();
    share_ = demo_.state().value(QStringLiteral("share")).toString();
    AccountContext::uid = QStringLiteral("9001");
    AccountContext::eid = QStringLiteral("3101");
    AccountContext::superId = QStringLiteral("7001");
    AccountContext::shopId = QStringLiteral("101");
    AccountContext::selectedShopId.clear();
    AccountContext::shopList = {{QStringLiteral("101"), QStringLiteral("一店"), {}, {}},
                                {QStringLiteral("102"), QStringLiteral("二店"), {}, {}},
                                {QStringLiteral("103"), QStringLiteral("三店"), {}, {}}};
    MessageBox::takeShown();
    boxes_.clear();
}

void TestBatchDelete::cleanup()
{
    demo_.release();
    delete window_;
    diskPool()->waitForDone();
    QCOMPARE(boxes(), QStringList()); // every box was expected
}

void TestBatchDelete::open(int rows)
{
    window_ = new BatchDelete;
    window_->setAttribute(Qt::WA_DeleteOnClose);
    window_->resize(1600, 800);
    window_->show();
    window_->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(window_));
    QTRY_VERIFY(orders()->model()->rowCount() >= rows);
}

void TestBatchDelete::fill(const QString &number, int count)
{
    const QString folder = share_ + QStringLiteral("/test/") + number;
    QVERIFY(QDir().mkpath(folder + QStringLiteral("/原片")));
    for (int index = 0; index < count; ++index) {
        QFile file(folder + QStringLiteral("/原片/%1.jpg").arg(index));
        QVERIFY(file.open(QIODevice::WriteOnly));
    }
    const QString id = QString::number(40000 + number.mid(2, 5).toInt());
    demo_.changeOrder(id, {{QStringLiteral("netpath"),
                            QString(folder).replace(QLatin1Char('/'), QLatin1Char('\\'))}});
}

QStringList TestBatchDelete::namesOnDisk(const QString &number)
{
    QStringList names;
    QDirIterator entries(share_ + QStringLiteral("/test/") + number, QDir::Files,
                         QDirIterator::Subdirectories);
    while (entries.hasNext()) {
        entries.next();
        names.append(entries.fileName());
    }
    return names;
}

QModelIndex TestBatchDelete::cell(const QString &number, int column)
{
    const QAbstractItemModel *model = orders()->model();
    for (int row = 0; row < model->rowCount(); ++row) {
        if (model->index(row, Column::NumberColumn).data().toString() == number)
            return model->index(row, column);
    }
    qFatal("no order %s", qPrintable(number));
}

void TestBatchDelete::click(const QModelIndex &index, QPoint position)
{
    orders()->scrollTo(index);
    if (position.isNull())
        position = orders()->visualRect(index).center();
    QTest::mouseClick(orders()->viewport(), Qt::LeftButton, {}, position);
}

void TestBatchDelete::view(const QString &number, BatchDeleteProgressDelegate::Button button)
{
    const QModelIndex index = cell(number, Column::ProgressColumn);
    orders()->scrollTo(index);
    click(index,
          BatchDeleteProgressDelegate::buttonRect(orders()->visualRect(index), button).center());
}

void TestBatchDelete::chooseBranch(const QString &id)
{
    QComboBox *box = combo("branchBox");
    box->setCurrentIndex(box->findData(id));
    emit box->activated(box->currentIndex());
}

void TestBatchDelete::confirmAccount()
{
    QTRY_VERIFY(window_->findChild<BatchLoginDialog *>());
    auto *dialog = window_->findChild<BatchLoginDialog *>();
    dialog->findChild<QLineEdit *>(QStringLiteral("accountEdit"))
        ->setText(QStringLiteral("demo01"));
    dialog->findChild<QLineEdit *>(QStringLiteral("passwordEdit"))
        ->setText(QStringLiteral("abc123"));
    QTest::mouseClick(dialog->findChild<QPushButton *>(QStringLiteral("loginButton")),
                      Qt::LeftButton);
    QTRY_VERIFY(!window_->findChild<BatchLoginDialog *>());
}

void TestBatchDelete::startConfirmed()
{
    MessageBox::setNextAnswer(QMessageBox::Ok);
    QTest::mouseClick(startButton(), Qt::LeftButton);
    confirmAccount();
    QVERIFY(!boxes().isEmpty() && boxes_.takeFirst().startsWith(QStringLiteral("下列 ")));
}

const QStringList &TestBatchDelete::boxes()
{
    const auto shown = MessageBox::takeShown();
    for (const MessageBox::Shown &box : shown)
        boxes_.append(box.text);
    return boxes_;
}

void TestBatchDelete::opensWithOrdersAndPersons()
{
    open();
    QTRY_COMPARE(combo("personBox")->count(), 5);
    QCOMPARE(combo("personBox")->itemText(0), QStringLiteral("全部"));
    QCOMPARE(child<QLabel>("orderCountLabel")->text(),
             QStringLiteral("    共%1个订单").arg(orders()->model()->rowCount()));
    QCOMPARE(files()->model()->columnCount(), 4);
    QCOMPARE(child<QLabel>("fileCountLabel")->text(), QStringLiteral("请选择订单查看文件列表"));
    const auto body = [this] {
        return demo_.requests(QStringLiteral("order_list"))
            .last()[QStringLiteral("body")]
            .toString();
    };
    QVERIFY(body().startsWith(QStringLiteral("keyword=&searchtype=1&role7id=&ratio=90&shopid=101&"
                                             "eid=3101&superid=7001&personid=3101&token=")));
    combo("personBox")->setFocus();
    QTest::keyClick(combo("personBox"), Qt::Key_Down);
    QTRY_VERIFY(body().contains(QStringLiteral("&role7id=1011&")));
    QTRY_VERIFY(child<QPushButton>("searchButton")->isEnabled());
    QTest::keyClick(combo("personBox"), Qt::Key_Up);
    QTRY_VERIFY(orders()->model()->rowCount() > 5);
    boxes();
    boxes_.removeAll(QStringLiteral("未检索到订单")); // that person may have none
    // Not before the answer has been shown: a model is tested as it is used.
    new QAbstractItemModelTester(files()->model(),
                                 QAbstractItemModelTester::FailureReportingMode::QtTest, window_);
    new QAbstractItemModelTester(orders()->model(),
                                 QAbstractItemModelTester::FailureReportingMode::QtTest, window_);
    connect(window_, &BatchDelete::changeShop, this, [this](const QMap<QString, QString> &shop) {
        managerOfSwitch_ = shop.value(QStringLiteral("managerid"));
        rowsAtSwitch_ = orders()->model()->rowCount();
    });
    chooseBranch(QStringLiteral("102"));
    QTRY_COMPARE(managerOfSwitch_, QStringLiteral("3102"));
    QCOMPARE(rowsAtSwitch_, 0); // the other branch's are gone at once
    QTRY_VERIFY(orders()->model()->rowCount() > 0);
}

void TestBatchDelete::searchesByCompletion()
{
    open();
    const QString date = text(first, Column::CompletionColumn).left(10);
    QVERIFY(!date.isEmpty());
    combo("searchTypeBox")->setCurrentIndex(1);
    QCOMPARE(combo("searchTypeBox")->currentText(), QStringLiteral("结单日期"));
    auto *picker = child<DatePicker>("completionDate");
    QVERIFY(picker->isVisible());
    QCOMPARE(picker->prompt(), QStringLiteral("点击选择日期"));
    picker->choose(QDate::fromString(date, Qt::ISODate));
    QTest::mouseClick(child<QPushButton>("searchButton"), Qt::LeftButton);
    QTRY_VERIFY(demo_.requests(QStringLiteral("order_list")).size() == 2);
    QVERIFY(
        demo_.requests(QStringLiteral("order_list"))
            .last()[QStringLiteral("body")]
            .toString()
            .startsWith(QStringLiteral("keyword=%1&searchtype=6&role7id=&ratio=90&").arg(date)));
    QTRY_COMPARE(text(first, Column::CompletionColumn).left(10), date);
    QTRY_VERIFY(orders()->model()->rowCount() < 6);
}

void TestBatchDelete::withoutPermissionNothingCanBeDone()
{
    AccountContext::selectedShopId = QStringLiteral("103");
    open(0);
    EXPECT_TOAST("暂无权限操作批量删除");
    QVERIFY(!window_->findChild<BatchDelete_OrderListWidget *>()->isEnabled());
    QVERIFY(!window_->findChild<BatchDelete_FileListWidget *>()->isEnabled());
    QTest::mouseClick(startButton(), Qt::LeftButton);
    EXPECT_TOAST("暂无权限操作");
    QTest::mouseClick(child<QPushButton>("searchButton"), Qt::LeftButton);
    EXPECT_TOAST("暂无权限操作批量删除");
    QVERIFY(demo_.requests(QStringLiteral("order_list")).isEmpty());
    QVERIFY(demo_.requests(QStringLiteral("get_persons")).isEmpty());
    chooseBranch(QStringLiteral("101"));
    QTRY_VERIFY(orders()->model()->rowCount() > 0);
    QVERIFY(window_->findChild<BatchDelete_OrderListWidget *>()->isEnabled());

    demo_.misbehave(QStringLiteral("switch_shop"), QStringLiteral("refuse"),
                    {{QStringLiteral("message"), QStringLiteral("分店已停用")}});
    chooseBranch(QStringLiteral("102"));
    EXPECT_BOXES(QStringList(QStringLiteral("分店已停用")));
    QCOMPARE(combo("branchBox")->currentText(), QStringLiteral("一店"));
}

void TestBatchDelete::startWithNothingTicked()
{
    open();
    QTest::mouseClick(startButton(), Qt::LeftButton);
    EXPECT_TOAST("请选择要删除的订单!");
    QVERIFY(demo_.requests(before).isEmpty());
}

void TestBatchDelete::ticksByMouseAndKeys()
{
    open();
    auto *list = window_->findChild<BatchDelete_OrderListWidget *>();
    auto *all = child<QCheckBox>("selectAllBox");
    QSignalSpy changed(list, &BatchDelete_OrderListWidget::orderSelectionChanged);
    tick(second);
    QCOMPARE(changed.last().first().value<QList<BatchDeleteOrderInfo>>().size(), 1);
    QCOMPARE(all->checkState(), Qt::PartiallyChecked);
    orders()->setFocus();
    orders()->selectRow(cell(first, 0).row());
    QTest::keyClick(orders(), Qt::Key_Space);
    QCOMPARE(changed.last().first().value<QList<BatchDeleteOrderInfo>>().size(), 2);
    QTest::keyClick(orders(), Qt::Key_Space);
    QCOMPARE(changed.last().first().value<QList<BatchDeleteOrderInfo>>().size(), 1);
    QTest::mouseClick(all, Qt::LeftButton);
    QCOMPARE(all->checkState(), Qt::Checked);
    QCOMPARE(changed.last().first().value<QList<BatchDeleteOrderInfo>>().size(),
             orders()->model()->rowCount());
    // A tick belongs to its order, however the table is sorted.
    tick(second);
    orders()->sortByColumn(Column::CustomerColumn, Qt::DescendingOrder);
    QCOMPARE(cell(second, Column::CheckColumn).data(Qt::CheckStateRole).toInt(),
             int(Qt::Unchecked));
    QTest::mouseClick(all, Qt::LeftButton);
    QTest::mouseClick(all, Qt::LeftButton);
    QCOMPARE(changed.last().first().value<QList<BatchDeleteOrderInfo>>().size(), 0);
}

void TestBatchDelete::deletesTheTickedOrders()
{
    fill(first, 3);
    fill(second, 2);
    fill(third, 2);
    const QString folder = share_ + QStringLiteral("/test/") + first + QStringLiteral("/原片/");
    QVERIFY(QFile::setPermissions(folder + QStringLiteral("1.jpg"), QFile::ReadOwner));
    open();
    tick(first);
    tick(third);
    orders()->selectRow(cell(first, 0).row());
    QTRY_COMPARE(child<QLabel>("fileCountLabel")->text(), QStringLiteral("共 3 个文件"));
    QCOMPARE(text(first, Column::ProgressColumn), QStringLiteral("0/0/3"));
    startConfirmed();
    EXPECT_BOXES(QStringList(allDone + QStringLiteral("\n\n成功 4 个文件，失败 1 个文件")));
    QCOMPARE(text(first, Column::ProgressColumn), QStringLiteral("2/1/3"));
    QCOMPARE(text(third, Column::ProgressColumn), QStringLiteral("2/0/2"));
    QCOMPARE(namesOnDisk(first), QStringList(QStringLiteral("1.jpg")));
    QCOMPARE(namesOnDisk(second).size(), 2);
    QVERIFY(namesOnDisk(third).isEmpty());
    QCOMPARE(demo_.requests(before).size(), 2);
    QCOMPARE(demo_.requests(after).size(), 4);

    view(first, BatchDeleteProgressDelegate::ViewFailed);
    EXPECT_BOXES(QStringList(QStringLiteral(" 删除失败的照片\n1.jpg: 没有删除权限")));
    view(third, BatchDeleteProgressDelegate::ViewFailed); // there is none
    view(third, BatchDeleteProgressDelegate::ViewSucceeded);
    QTRY_COMPARE(boxes().size(), 1);
    QVERIFY(boxes_.takeFirst().startsWith(QStringLiteral(" 删除成功的照片\n")));

    // Again, by the key on all of the shown files.
    QVERIFY(QFile::setPermissions(folder + QStringLiteral("1.jpg"),
                                  QFile::ReadOwner | QFile::WriteOwner));
    orders()->selectRow(cell(first, 0).row());
    window_->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(window_));
    files()->setFocus();
    files()->selectAll();
    QTest::keyClick(files(), Qt::Key_R, Qt::ControlModifier);
    QTRY_COMPARE(text(first, Column::ProgressColumn), QStringLiteral("3/0/3"));
    QCOMPARE(demo_.requests(after).size(), 5);
    QVERIFY(namesOnDisk(first).isEmpty());
}

void TestBatchDelete::nothingHappensUnconfirmed()
{
    fill(first, 2);
    open();
    tick(first);
    QTest::mouseClick(startButton(), Qt::LeftButton); // the safe answer: cancel
    QTRY_COMPARE(boxes().size(), 1);
    boxes_.clear();
    QVERIFY(!window_->findChild<BatchLoginDialog *>());

    MessageBox::setNextAnswer(QMessageBox::Ok);
    QTest::mouseClick(startButton(), Qt::LeftButton);
    QTRY_VERIFY(window_->findChild<BatchLoginDialog *>());
    QTest::keyClick(window_->findChild<BatchLoginDialog *>(), Qt::Key_Escape);
    QTRY_VERIFY(!window_->findChild<BatchLoginDialog *>());
    boxes();
    boxes_.clear();
    QVERIFY(demo_.requests(before).isEmpty());
    QCOMPARE(namesOnDisk(first).size(), 2);
    QCOMPARE(startButton()->text(), QStringLiteral("开始批量删除"));
}

void TestBatchDelete::refusedOrdersAreTold()
{
    fill(first, 1);
    demo_.changeOrder(
        QStringLiteral("50003"),
        {{QStringLiteral("netpath"),
          QString(share_ + QStringLiteral("/test")).replace(QLatin1Char('/'), QLatin1Char('\\'))}});
    open();
    tick(second); // its folder holds that of the first order, which is not ticked
    QTest::mouseClick(startButton(), Qt::LeftButton);
    QTRY_COMPARE(boxes().size(), 1);
    QVERIFY(boxes_.takeFirst().contains(QStringLiteral("目录中包含未删除的订单 TS10001-1 的目录")));
    QVERIFY(!window_->findChild<BatchLoginDialog *>());
    QVERIFY(!cell(second, Column::ProgressColumn)
                 .data(BatchDeleteOrderModel::NoteRole)
                 .toString()
                 .isEmpty());
    QCOMPARE(namesOnDisk(first).size(), 1);
}

void TestBatchDelete::failedAnnouncements_data()
{
    QTest::addColumn<QString>("kind");
    QTest::addColumn<QString>("box");
    QTest::newRow("no answer") << "drop"
                               << "提交数据失败!";
    QTest::newRow("refused") << "refuse"
                             << "该订单不能删除";
}

void TestBatchDelete::failedAnnouncements()
{
    QFETCH(QString, kind);
    QFETCH(QString, box);
    fill(first, 2);
    open();
    tick(first);
    demo_.misbehave(before, kind, {{QStringLiteral("message"), QStringLiteral("该订单不能删除")}});
    startConfirmed();
    EXPECT_BOXES(QStringList(box));
    QCOMPARE(namesOnDisk(first).size(), 2);
    QCOMPARE(text(first, Column::ProgressColumn), QStringLiteral("0/0/2"));
    QCOMPARE(startButton()->text(), QStringLiteral("开始批量删除"));
}

void TestBatchDelete::resubmitPrompts_data()
{
    QTest::addColumn<int>("answer");
    QTest::addColumn<QString>("counts");
    QTest::addColumn<int>("left"); // of the second order
    QTest::addColumn<QString>("end");
    QTest::newRow("again") << int(QMessageBox::Ok) << "2/0/2" << 0 << allDone;
    QTest::newRow("declined")
        << int(QMessageBox::Cancel) << "1/1/2" << 1
        << "批量删除已停止。\n\n成功 1 个文件，失败 1 个文件\n还有 1 个订单没有处理";
    QTest::newRow("stopped") << int(QMessageBox::Abort) << "0/1/2" << 1 << "";
}

void TestBatchDelete::resubmitPrompts()
{
    QFETCH(int, answer);
    QFETCH(QString, end);
    fill(first, 2);
    fill(second, 1);
    open();
    tick(first);
    tick(second);
    demo_.misbehave(after, QStringLiteral("refuse"),
                    {{QStringLiteral("message"), QStringLiteral("忙")}});
    MessageBox::setNextAnswer(QMessageBox::Ok);
    QTest::mouseClick(startButton(), Qt::LeftButton);
    QTRY_VERIFY(window_->findChild<BatchLoginDialog *>());
    MessageBox::setNextAnswer(QMessageBox::StandardButton(answer));
    confirmAccount();
    QStringList expected{QStringLiteral("忙，需要继续提交吗？")};
    if (!end.isEmpty())
        expected.append(end);
    boxes();
    QVERIFY(boxes_.takeFirst().startsWith(QStringLiteral("下列 2 个订单")));
    EXPECT_BOXES(expected);
    QTRY_COMPARE(startButton()->text(), QStringLiteral("开始批量删除"));
    QTEST(text(first, Column::ProgressColumn), "counts");
    QTEST(namesOnDisk(second).size(), "left");
    if (window_->close()) // an unreported file keeps it
        return;
    EXPECT_BOXES(QStringList(QStringLiteral(
        "有 1 个文件已删除，但状态没有提交成功。\n关闭窗口后无法再次提交，确认要关闭吗？")));
}

void TestBatchDelete::whileRunningNothingElseMayChange()
{
    fill(first, 3);
    open();
    tick(first);
    demo_.misbehave(after, QStringLiteral("hold"));
    startConfirmed();
    QTRY_COMPARE(demo_.state().value(QStringLiteral("held")).toInt(), 1);
    QCOMPARE(startButton()->text(), QStringLiteral("停止删除"));
    QTest::mouseClick(child<QPushButton>("searchButton"), Qt::LeftButton);
    chooseBranch(QStringLiteral("102"));
    EXPECT_BOXES(QStringList({QStringLiteral("删除中..."), QStringLiteral("删除中...")}));
    QCOMPARE(combo("branchBox")->currentText(), QStringLiteral("一店"));
    tick(second);
    QCOMPARE(cell(second, Column::CheckColumn).data(Qt::CheckStateRole).toInt(),
             int(Qt::Unchecked));
    orders()->selectRow(cell(first, 0).row());
    QTRY_COMPARE(files()->model()->rowCount(), 3);
    QTest::mouseClick(child<QPushButton>("refreshButton"), Qt::LeftButton);
    EXPECT_TOAST("删除中...");

    QTest::mouseClick(startButton(), Qt::LeftButton); // the current file first
    QCOMPARE(startButton()->text(), QStringLiteral("立即停止"));
    demo_.release();
    EXPECT_TOAST("批量删除已停止");
    QCOMPARE(text(first, Column::ProgressColumn), QStringLiteral("1/0/3"));
    QCOMPARE(namesOnDisk(first).size(), 2);
}

void TestBatchDelete::whatIsUnreportedIsNotForgotten()
{
    fill(first, 2);
    open();
    tick(first);
    demo_.misbehave(after, QStringLiteral("hold"), {{QStringLiteral("times"), 1}});
    startConfirmed();
    QTRY_COMPARE(demo_.state().value(QStringLiteral("held")).toInt(), 1);
    QTest::mouseClick(startButton(), Qt::LeftButton);
    QTest::mouseClick(startButton(), Qt::LeftButton); // not even for the answer
    QTRY_COMPARE(text(first, Column::ProgressColumn), QStringLiteral("0/1/2"));
    demo_.release();

    // A new list keeps it, and so does a look at the disk; another branch has to be insisted on.
    QTest::keyClicks(child<QLineEdit>("keywordEdit"), QStringLiteral("TS10003"));
    QTest::keyClick(child<QLineEdit>("keywordEdit"), Qt::Key_Return);
    QTRY_COMPARE(orders()->model()->rowCount(), 2);
    orders()->selectRow(cell(first, 0).row());
    QTest::mouseClick(child<QPushButton>("refreshButton"), Qt::LeftButton);
    QTRY_COMPARE(child<QLabel>("fileCountLabel")->text(), QStringLiteral("共 2 个文件"));
    QCOMPARE(text(first, Column::ProgressColumn), QStringLiteral("0/1/2"));
    chooseBranch(QStringLiteral("102"));
    EXPECT_BOXES(QStringList(QStringLiteral(
        "有 1 个文件已删除，但状态没有提交成功。\n切换分店后无法再次提交，确认要切换吗？")));
    QCOMPARE(combo("branchBox")->currentText(), QStringLiteral("一店"));

    const int row =
        files()->model()->index(0, 0).data(BatchDeleteFileModel::RetryRole).toString().isEmpty()
            ? 1
            : 0;
    const QModelIndex state = files()->model()->index(row, BatchDeleteFileModel::StateColumn);
    QCOMPARE(state.data().toString(), QStringLiteral("提交状态失败"));
    QTest::mouseClick(files()->viewport(), Qt::LeftButton, {},
                      BatchDeleteStateDelegate::buttonRect(files()->visualRect(state)).center());
    QTRY_COMPARE(text(first, Column::ProgressColumn), QStringLiteral("1/0/2"));
    QCOMPARE(namesOnDisk(first).size(), 1);
}

void TestBatchDelete::closingInMidRun()
{
    fill(first, 3);
    open();
    tick(first);
    demo_.misbehave(after, QStringLiteral("hold"));
    startConfirmed();
    QTRY_COMPARE(demo_.state().value(QStringLiteral("held")).toInt(), 1);
    window_->close();
    QVERIFY(window_ && !window_->isVisible());
    demo_.release();
    QTRY_VERIFY(!window_);
    QCOMPARE(namesOnDisk(first).size(), 2);
    QCOMPARE(demo_.requests(after).size(), 1);
}

void TestBatchDelete::aReplyAfterClosingIsHarmless()
{
    open();
    for (const char *action : {"order_list", "switch_shop"}) {
        if (!window_)
            open();
        demo_.misbehave(QLatin1String(action), QStringLiteral("hold"));
        if (QLatin1String(action) == QLatin1String("order_list"))
            QTest::mouseClick(child<QPushButton>("searchButton"), Qt::LeftButton);
        else
            chooseBranch(QStringLiteral("102"));
        QTRY_COMPARE(demo_.state().value(QStringLiteral("held")).toInt(), 1);
        window_->close();
        QTRY_VERIFY(!window_);
        demo_.release();
        QTRY_COMPARE(demo_.state().value(QStringLiteral("held")).toInt(), 0);
    }
}

void TestBatchDelete::scansCanBeCancelledAndRefreshed()
{
    fill(first, 2);
    demo_.changeOrder(QStringLiteral("50003"),
                      {{QStringLiteral("netpath"), QStringLiteral("\\\\no\\such\\x")}});
    open();
    orders()->selectRow(cell(second, 0).row());
    QTRY_VERIFY(window_->findChild<BatchDelete_FileListWidget *>()
                    ->findChild<EmptyStateTable *>()
                    ->emptyText()
                    .startsWith(QStringLiteral("共享目录连接失败: ")));
    QTest::keyClick(orders(), Qt::Key_Home, Qt::ControlModifier);
    QTRY_COMPARE(files()->model()->rowCount(), 2);
    auto *list = window_->findChild<BatchDelete_FileListWidget *>();
    QTest::mouseClick(child<QPushButton>("refreshButton"), Qt::LeftButton);
    auto *overlay = list->findChild<LoadingOverlay *>();
    QVERIFY(overlay->text().startsWith(QStringLiteral("查找TS10001-1的文件中...")));
    QTest::keyClick(overlay, Qt::Key_Escape);
    QTRY_VERIFY(!overlay->isVisible());
    QCOMPARE(files()->model()->rowCount(), 0);
    QTest::mouseClick(child<QPushButton>("refreshButton"), Qt::LeftButton);
    QTRY_COMPARE(files()->model()->rowCount(), 2);
}

void TestBatchDelete::outcomesAreSavedAndCopied()
{
    fill(first, 1);
    open();
    const auto actions = child<QPushButton>("exportButton")->menu()->actions();
    actions.first()->trigger();
    EXPECT_TOAST("还没有删除结果");
    tick(first);
    startConfirmed();
    EXPECT_BOXES(QStringList(allDone));
    actions.last()->trigger();
    QTRY_VERIFY(QGuiApplication::clipboard()->text().contains(QStringLiteral("\"已删除\"")));
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("r.csv"));
    FileDialog::setNextFiles({path});
    actions.first()->trigger();
    QTRY_VERIFY(QFileInfo(path).size() > 0);
    FileDialog::setNextFiles({folder.filePath(QStringLiteral("no/r.csv"))});
    actions.first()->trigger();
    QTRY_COMPARE(boxes().size(), 1);
    QVERIFY(boxes_.takeFirst().startsWith(QStringLiteral("文件保存失败: ")));
}

QTEST_MAIN(TestBatchDelete)
#include "test_batchdelete.moc"
