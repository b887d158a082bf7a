#include "tests/support/datarows.h"
#include "tests/support/toolwindow.h"
#include "widgets/orders/orderfinder.h"
#include "widgets/orders/ordersearchbar.h"
#include "widgets/tables/tables.h"
#include "widgets/windows/loadingoverlay.h"

#include <QJsonArray>
#include <QLineEdit>
#include <QPushButton>
#include <QScopeGuard>
#include <QSemaphore>
#include <QSignalSpy>
#include <QStandardItemModel>
#include <QThread>
#include <QVBoxLayout>

#include <atomic>
#include <memory>

namespace {

using orderqueries::FoundOrders;
using orderqueries::SearchedBranch;

/// As small as a tool can be: a search bar and a table of numbers.
class FinderWindow : public QWidget
{
public:
    FinderWindow()
        : bar(new OrderSearchBar(this))
        , table(new EmptyStateTable(this))
        , overlay(new LoadingOverlay(table))
        , finder(new OrderFinder(this, {&branch, bar, table, overlay}))
    {
        bar->addPersonFilter();
        table->setObjectName("orderTable"_s);
        table->setModel(&model);
        auto *layout = new QVBoxLayout(this);
        layout->addWidget(bar);
        layout->addWidget(table);
        connect(bar, &OrderSearchBar::searchRequested, finder, [this] {
            if (branch.isConfirmed())
                finder->search();
            else
                finder->confirmBranch();
        });
        connect(bar, &OrderSearchBar::branchChosen, finder,
                [this](int index) { finder->chooseBranch(bar->branchId(index)); });
        connect(finder, &OrderFinder::branchLeft, this, [this] {
            steps.append("left"_s);
            model.removeRows(0, model.rowCount());
        });
        connect(finder, &OrderFinder::branchSwitched, this, [this] {
            steps.append("switched"_s);
            branch.listPersons();
            finder->search();
        });
        finder->setLeaving({[this] { return refusal; }, [this] { return question; }});
        finder->setReader(
            [](const QJsonObject &reply, const SearchedBranch &) {
                return orderqueries::readFoundOrders<QString>(
                    reply, [](const QJsonObject &order) { return order["id"_s].toString(); });
            },
            [this](const FoundOrders<QString> &found, OrderFinder::Search) {
                model.removeRows(0, model.rowCount());
                for (const QString &id : found.orders)
                    model.appendRow(new QStandardItem(id));
            });
    }

    BranchSession branch;
    QStandardItemModel model;
    OrderSearchBar *bar;
    EmptyStateTable *table;
    LoadingOverlay *overlay;
    OrderFinder *finder;
    QString refusal;
    QString question;
    QStringList steps;
};

} // namespace

/// What all tools have of the finder, against the demo service.
class TestOrderFinder : public ToolWindowTest<FinderWindow, 0>
{
    Q_OBJECT

private slots:
    void init() { logIn(); }
    void cleanup() { endTest(); }

    void opensInItsBranch()
    {
        AccountContext::selectedShopId = "102"_s;
        open();
        QCOMPARE(branches()->currentText(), "二店"_s);
        QCOMPARE(demo_.body("switch_shop"_s).section("&token"_s, 0, 0), "shopid=102"_s);
        QCOMPARE(window_->steps, (QStringList{"left"_s, "switched"_s}));
        QTRY_VERIFY(persons()->count() > 1);
    }

    void badReplies_data()
    {
        // box: none: a toast tells; empty: what the table says if it lists nothing
        addColumns<QString, QJsonObject, QString, QString>({"kind", "more", "box", "empty"});
        const QString failed = "查询失败，请重新搜索"_s;
        newRow("refused", "refuse"_s, QJsonObject{{"message"_s, "账号已停用"_s}}, "账号已停用"_s,
               failed);
        newRow("no list", "missing-fields"_s, QJsonObject{{"fields"_s, QJsonArray{"data"_s}}},
               "未检索到订单"_s, "未检索到订单"_s);
        newRow("dropped", "drop"_s, QJsonObject(), QString(), failed);
        newRow("orders that nothing tells apart", "missing-fields"_s,
               QJsonObject{{"fields"_s, QJsonArray{"data.id"_s, "data.order_photo_id"_s}}},
               QString(), "未检索到订单"_s);
    }

    void badReplies()
    {
        QFETCH(QString, kind);
        QFETCH(QJsonObject, more);
        QFETCH(QString, box);
        open();
        const int before = window_->model.rowCount();
        demo_.misbehave("order_list"_s, kind, more);
        search(QString());
        if (box.isEmpty())
            QTRY_VERIFY(!Toast::currentText(window_).isEmpty());
        else
            EXPECT_BOXES(box);
        QTEST(window_->table->emptyText(), "empty");
        // What is no list of orders leaves those that are listed.
        const bool isList =
            QTest::currentDataTag() == QByteArray("orders that nothing tells apart");
        QCOMPARE(window_->model.rowCount(), isList ? 0 : before);
        QVERIFY(!window_->overlay->isVisible());
        search("TS10001"_s);
        QCOMPARE(window_->model.rowCount(), 2);
        search("nobody"_s);
        EXPECT_BOXES("未检索到订单"_s);
        QCOMPARE(window_->model.rowCount(), 0);
    }

    void aSwitchThatFailsKeepsTheBranch_data()
    {
        addColumns<QString, QString>({"kind", "box"}); // none: a toast tells
        newRow("refused", "refuse"_s, "没有权限"_s);
        newRow("dropped", "drop"_s, QString());
    }

    void aSwitchThatFailsKeepsTheBranch()
    {
        QFETCH(QString, kind);
        QFETCH(QString, box);
        open();
        const int listed = window_->model.rowCount();
        QTRY_COMPARE(persons()->count(), 5);
        window_->steps.clear();
        demo_.misbehave("switch_shop"_s, kind, {{"message"_s, "没有权限"_s}});
        chooseBranch("102"_s);
        if (box.isEmpty())
            QTRY_VERIFY(!Toast::currentText(window_).isEmpty());
        else
            EXPECT_BOXES(box);
        QCOMPARE(branches()->currentText(), "一店"_s);
        QCOMPARE(AccountContext::selectedShopId, "101"_s);
        QCOMPARE(AccountContext::eid, "3101"_s);
        QCOMPARE(persons()->count(), 5);
        QCOMPARE(window_->model.rowCount(), listed);
        QVERIFY(window_->steps.isEmpty() && !window_->bar->isBusy());
    }

    void aSwitchThatFailedAtOpeningCanBeTriedAgain()
    {
        demo_.misbehave("switch_shop"_s, "drop"_s);
        show(new FinderWindow, 0);
        window_->finder->open();
        QTRY_VERIFY(!window_->bar->isBusy());
        QVERIFY(demo_.requests("order_list"_s).isEmpty());
        QTest::keyClick(child<QLineEdit>("keywordEdit"), Qt::Key_Return);
        QTRY_VERIFY(window_->model.rowCount() > 2);
    }

    void aSwitchIsCancelledOrOvertaken()
    {
        open();
        const int listed = window_->model.rowCount();
        demo_.clearRequests();
        demo_.hold("switch_shop"_s, 2);
        chooseBranch("102"_s);
        waitUntilHeld();
        cancelOnOverlay();
        QCOMPARE(branches()->currentText(), "一店"_s);
        QCOMPARE(AccountContext::selectedShopId, "101"_s);
        QCOMPARE(window_->model.rowCount(), listed);

        chooseBranch("103"_s);
        waitUntilHeld(2);
        chooseBranch("102"_s);
        QTRY_COMPARE(demo_.requests("order_list"_s).size(), 1);
        demo_.release();
        demo_.state();
        QCOMPARE(branches()->currentText(), "二店"_s);
        QVERIFY(demo_.body("order_list"_s).contains("&shopid=102&eid=3102&superid=7002&"_s));
        QCOMPARE(demo_.requests("order_list"_s).size(), 1);
        QCOMPARE(AccountContext::selectedShopId, "102"_s);
    }

    void anotherBranchLeavesNothingBehind()
    {
        open();
        QTRY_COMPARE(persons()->count(), 5);
        window_->steps.clear();
        demo_.clearRequests();
        window_->refusal = "忙着"_s;
        chooseBranch("102"_s);
        EXPECT_BOXES("忙着"_s);
        window_->refusal.clear();
        window_->question = "确认要切换吗？"_s;
        chooseBranch("102"_s); // and changes their mind
        EXPECT_BOXES("确认要切换吗？"_s);
        QCOMPARE(branches()->currentText(), "一店"_s);
        QVERIFY(demo_.requests().isEmpty());

        // Nothing comes back when what follows the switch fails, or is cancelled.
        demo_.refuse("order_list"_s, "不行"_s);
        demo_.refuse("get_persons"_s, "不行"_s);
        MessageBox::setNextAnswer(QMessageBox::Ok);
        chooseBranch("102"_s);
        EXPECT_BOXES("确认要切换吗？"_s, "不行"_s, "不行"_s);
        QCOMPARE(window_->steps, (QStringList{"left"_s, "switched"_s}));
        QCOMPARE(persons()->count(), 1);
        demo_.hold("order_list"_s);
        click("searchButton");
        waitUntilHeld();
        cancelOnOverlay();
        QCOMPARE(branches()->currentText(), "二店"_s);
        QCOMPARE(window_->model.rowCount(), 0);
    }

    void aLaterRefreshIsNotUndoneByAnEarlier()
    {
        if (QThread::idealThreadCount() < 2)
            QSKIP("Lists are read one after the other here.");
        open();
        const auto slow = std::make_shared<QSemaphore>();
        const auto goOn = qScopeGuard([slow] { slow->release(); });
        const auto reads = std::make_shared<std::atomic<int>>(0);
        QVector<int> taken;
        window_->finder->setReader(
            [slow, reads](const QJsonObject &, const SearchedBranch &) {
                const int number = ++*reads;
                if (number == 1)
                    slow->acquire();
                return FoundOrders<int>{true, 1, {number}, {}};
            },
            [&](const FoundOrders<int> &list, OrderFinder::Search) { taken += list.orders; });
        QVERIFY(window_->finder->refresh());
        QTRY_COMPARE(reads->load(), 1);
        QVERIFY(window_->finder->refresh());
        QTRY_COMPARE(taken, QVector<int>{2});
        slow->release();
        QVERIFY(processorPool().waitForDone());
        QCoreApplication::processEvents();
        QCOMPARE(taken, QVector<int>{2});
    }

private:
    void open()
    {
        show(new FinderWindow, 0);
        window_->finder->open();
        QTRY_VERIFY(window_->model.rowCount() > 2);
        QTRY_VERIFY(!window_->bar->isBusy());
    }

    void search(const QString &keyword)
    {
        auto *edit = child<QLineEdit>("keywordEdit");
        edit->setText(keyword);
        QTest::keyClick(edit, Qt::Key_Return);
        QTRY_VERIFY(!window_->bar->isBusy());
    }

    void cancelOnOverlay()
    {
        QTest::mouseClick(window_->overlay->findChild<QPushButton *>(), Qt::LeftButton);
        QVERIFY(!window_->overlay->isVisible() && !window_->bar->isBusy());
    }

    QComboBox *branches() { return child<QComboBox>("branchBox"); }
    QComboBox *persons() { return child<QComboBox>("personBox"); }
};

QTEST_MAIN(TestOrderFinder)
#include "test_orderfinder.moc"
