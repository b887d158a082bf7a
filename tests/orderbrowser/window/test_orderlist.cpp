#include "orderbrowser/window/browsertable.h"
#include "orderbrowser/window/orderlist.h"
#include "tests/support/files.h"
#include "tests/support/toolwindow.h"
#include "thumbnails/photocell.h"
#include "thumbnails/thumbnailtableview.h"
#include "widgets/boxes/filedialog.h"
#include "widgets/inputs/datepicker.h"
#include "widgets/inputs/glyphbutton.h"
#include "widgets/orders/ordersearchbar.h"

#include <QAbstractItemModelTester>
#include <QApplication>
#include <QCheckBox>
#include <QClipboard>
#include <QDir>
#include <QFile>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QPushButton>
#include <QRadioButton>
#include <QScrollBar>
#include <QStyleHints>
#include <QTemporaryDir>
#include <QTreeWidget>

namespace {

constexpr int numberColumn = 0;
const QString action = "order_list"_s;
const QString first = "TS10001-1"_s;
const QString second = "TS10001-2"_s;

} // namespace

/// The order browser against the demo service, by mouse and keys.
class TestOrderList : public ToolWindowTest<OrderList, numberColumn>
{
    Q_OBJECT

private slots:
    void init()
    {
        logIn();
        QFile::remove(ViewStore("9001"_s).path());
    }

    void cleanup() { endTest(); }

    void searchesWhenAskedAlone()
    {
        open(false);
        QTRY_COMPARE(child<QComboBox>("personBox")->count(), 5);
        QCOMPARE(demo_.requests(action).size(), 0);
        QTest::keyClick(child<QLineEdit>("keywordEdit"), Qt::Key_Return);
        QTRY_VERIFY(rows() > 3);
        const QAbstractItemModelTester tester(orders()->model());
        const int all = rows();
        QCOMPARE(child<QLabel>("countLabel")->text(), "显示 %1 / 共 %1"_s.arg(all));
        QVERIFY(child<QLabel>("refreshedLabel")->text().startsWith("上次刷新 "_s));
        demo_.clearRequests();
        QTest::keyClick(window_, Qt::Key_F5);
        QTRY_COMPARE(demo_.requests(action).size(), 1);
        QTRY_VERIFY(child<QPushButton>("searchButton")->isEnabled());

        // The user's own switch searches the other branch.
        chooseBranch("102"_s);
        QTRY_COMPARE(demo_.requests(action).size(), 2);
        QVERIFY(
            demo_.body(action).startsWith("keyword=&searchtype=1&role7id=&ratio=90&shopid=102"_s));
        QTRY_VERIFY(rows() > 0);
    }

    void searchesARangeOfDates()
    {
        open();
        auto *type = child<QComboBox>("searchTypeBox");
        type->setCurrentIndex(1);
        QVERIFY(child<DatePicker>("rangeEnd")->isVisible());
        child<DatePicker>("shootingDate")->choose({2025, 9, 30});
        child<DatePicker>("rangeEnd")->choose({2025, 10, 31});
        click("searchButton");
        EXPECT_BOXES("日期范围最多 31 天，当前为 32 天，请缩小范围"_s);
        child<DatePicker>("rangeEnd")->choose({2025, 10, 2});
        demo_.clearRequests();
        click("searchButton");
        QTRY_COMPARE(rows(), 2);
        QCOMPARE(demo_.requests(action).size(), 3);

        // It is there again at the next opening, and waits.
        window_->setAttribute(Qt::WA_DeleteOnClose);
        window_->close();
        QTRY_VERIFY(!window_); // all is written
        demo_.clearRequests();
        open(false);
        QTRY_COMPARE(child<QComboBox>("searchTypeBox")->currentIndex(), 1);
        QCOMPARE(child<DatePicker>("rangeEnd")->chosenDate(), QDate(2025, 10, 2));
        QCOMPARE(demo_.requests(action).size(), 0);
        click("searchButton");
        QTRY_COMPARE(rows(), 2);

        QTest::mouseClick(child<DatePicker>("rangeEnd")->findChild<GlyphButton *>(),
                          Qt::LeftButton);
        QVERIFY(!child<DatePicker>("rangeEnd")->chosenDate().isValid());
        demo_.clearRequests();
        click("searchButton");
        EXPECT_BOXES("未检索到订单"_s); // on the first day
        QCOMPARE(demo_.requests(action).size(), 1);
    }

    void keepsWhatItShowsWhenASearchFails()
    {
        open();
        const int before = rows();
        demo_.refuse(action, "系统维护"_s);
        QTest::keyClick(window_, Qt::Key_F5);
        EXPECT_BOXES("系统维护"_s);
        QCOMPARE(rows(), before);
        child<QLineEdit>("keywordEdit")->setText("没有这个人"_s);
        click("searchButton");
        EXPECT_BOXES("未检索到订单"_s);
        QTRY_COMPARE(rows(), 0);
    }

    void filtersAndSorts()
    {
        open();
        const int all = rows();
        auto *filter = child<QLineEdit>("filter0");
        filter->setFocus();
        QTest::keyClicks(filter, "ts10001"_s);
        QTRY_COMPARE(rows(), 2);
        QCOMPARE(child<QLabel>("countLabel")->text(), "显示 2 / 共 %1"_s.arg(all));
        QTest::keyClick(filter, Qt::Key_Down);
        QVERIFY(orders()->hasFocus());

        clickHeading(0);
        QTRY_COMPARE(orders()->model()->index(0, 0).data().toString(), first);
        QTest::qWait(QApplication::styleHints()->mouseDoubleClickInterval() + 50);
        clickHeading(0);
        QTRY_COMPARE(orders()->model()->index(0, 0).data().toString(), second);

        QTest::mouseClick(child<QPushButton>("chip_orderpayforkey"), Qt::LeftButton);
        QTRY_COMPARE(rows(), all);
        QVERIFY(filter->text().isEmpty());
    }

    void keepsTheSelectionThroughFilters()
    {
        open();
        select(second);
        QTest::keyClicks(child<QLineEdit>("filter0"), "10001"_s);
        QTRY_COMPARE(rows(), 2);
        QCOMPARE(child<QLabel>("selectedLabel")->text(), "已选 1 行"_s);
        QCOMPARE(table()->currentOrder()->identity.orderPhotoId, "800002"_s);
    }

    void masksPhonesUntilTheyAreWanted()
    {
        open();
        const int column = table()->orders()->columnOf("mphone"_s);
        QVERIFY(text(first, column).contains("****"_s));
        orders()->selectionModel()->setCurrentIndex(cell(first, column),
                                                    QItemSelectionModel::ClearAndSelect);
        QTest::keyClick(orders(), Qt::Key_C, Qt::ControlModifier);
        QVERIFY(QApplication::clipboard()->text().contains("****"_s));
        QTest::mouseClick(child<QCheckBox>("phonesBox"), Qt::LeftButton);
        QVERIFY(!text(first, column).contains("****"_s));
    }

    void hidesColumnsAndBringsThemBack()
    {
        open();
        const int columns = table()->orders()->columnCount();
        chooseInMenu("隐藏此列"_s);
        QCOMPARE(table()->orders()->columnCount(), columns - 1);
        QCOMPARE(table()->orders()->columnOf("orderpayforkey"_s), -1);
        chooseInMenu("deposit"_s); // what the program does not know
        QCOMPARE(table()->orders()->columnOf("deposit"_s), columns - 1);
        QVERIFY(table()->orders()->index(0, columns - 1).data().toString().startsWith("1,"_s));
        chooseInMenu("恢复此视图"_s);
        QCOMPARE(table()->orders()->columnCount(), columns);
        QCOMPARE(table()->orders()->columnOf("orderpayforkey"_s), 0);
    }

    void freezesTheFirstColumnAndTheNumber()
    {
        open();
        QCOMPARE(table()->frozenColumns(), 1); // which is the number
        QHeaderView *header = orders()->horizontalHeader();
        const int name = table()->orders()->columnOf("mname"_s);
        header->moveSection(header->visualIndex(name), 0);
        QTRY_COMPARE(table()->frozenColumns(), 2);
        QScrollBar *sideways = orders()->horizontalScrollBar();
        sideways->setValue(sideways->maximum());
        QVERIFY(sideways->value() > table()->frozenWidth());

        // The number is clicked where it is seen, and the rest stays.
        const QModelIndex number = cell(second, table()->orders()->columnOf("orderpayforkey"_s));
        const QRect seen = orders()->visualRect(number);
        QCOMPARE(seen.left(), orders()->columnWidth(name));
        QTest::mouseClick(orders()->viewport(), Qt::LeftButton, {}, seen.center());
        QCOMPARE(orders()->currentIndex(), number);
        QCOMPARE(sideways->value(), sideways->maximum());
        // On to a cell that lies below the frozen ones: it comes out.
        QTest::keyClick(orders(), Qt::Key_Right);
        QVERIFY(orders()->visualRect(orders()->currentIndex()).left() >= table()->frozenWidth());
        QVERIFY(sideways->value() < sideways->maximum());

        chooseInMenu("冻结首列和订单号"_s);
        QCOMPARE(table()->frozenColumns(), 0);
    }

    void makesAViewOfTheUsersOwn()
    {
        open();
        click("columnsButton");
        child<QLineEdit>("viewNameEdit")->setText("前台"_s);
        click("copyViewButton");
        QTRY_COMPARE(Toast::currentText(child<QLineEdit>("viewNameEdit")), "已有同名视图"_s);
        child<QLineEdit>("viewNameEdit")->setText("我的视图"_s);
        click("copyViewButton");
        QCOMPARE(child<QComboBox>("dialogViewBox")->currentText(), "我的视图"_s);

        // What only this studio's service sends comes first, the paths go.
        child<QLineEdit>("fieldSearchEdit")->setText("其他"_s);
        auto *available = child<QListWidget>("availableList");
        QVERIFY(available->count() >= 4);
        available->setCurrentItem(available->findItems("deposit"_s, Qt::MatchStartsWith).value(0));
        auto *shown = child<QListWidget>("shownList");
        shown->setCurrentRow(0);
        click("addColumnButton");
        QApplication::setActiveWindow(shown->window());
        shown->setFocus();
        QTest::keyClick(shown, Qt::Key_Up, Qt::AltModifier);
        shown->clearSelection();
        shown->setCurrentItem(shown->findItems("导片路径"_s, Qt::MatchExactly).value(0));
        QTest::keyClick(shown, Qt::Key_Delete);
        click("acceptButton");
        QTRY_COMPARE(table()->orders()->columnOf("deposit"_s), 0);
        QCOMPARE(table()->orders()->columnOf("netpath"_s), -1);
        QCOMPARE(child<QComboBox>("viewBox")->currentText(), "我的视图"_s);

        // A drop changes places as well; without agreement nothing does.
        click("columnsButton");
        shown = child<QListWidget>("shownList");
        shown->insertItem(3, shown->takeItem(0));
        QTRY_COMPARE(shown->item(3)->text(), "deposit"_s);
        click("cancelButton");
        QCOMPARE(table()->orders()->columnOf("deposit"_s), 0);
    }

    void showsAllOfOneOrder()
    {
        open();
        select(first);
        QTest::keyClick(window_, Qt::Key_F4);
        auto *fields = child<QTreeWidget>("detailsTree");
        QTRY_VERIFY(fields->isVisible());
        QCOMPARE(child<QLabel>("detailsHeading")->text(), first);
        const auto shown = [fields](const QString &heading) {
            const auto found = fields->findItems(heading, Qt::MatchExactly | Qt::MatchRecursive);
            return found.isEmpty() ? QString() : found.at(0)->text(1);
        };
        QCOMPARE(shown("选片完成时间"_s), "2025-10-08 14:30"_s);
        QVERIFY(shown("男士电话"_s).contains("****"_s));
        QVERIFY(shown("deposit"_s).startsWith("1,"_s));
        QTRY_COMPARE(child<QLabel>("chosenHeading")->text(), "已选照片 4 张"_s);
        auto *photos = child<ThumbnailTableView>("chosenGrid");
        QTRY_VERIFY(photos->cell(3));
        QVERIFY(!photos->cell(3)->selectButton()->isVisible());
        photos->setFocus();
        QTest::keyClick(photos, Qt::Key_A, Qt::ControlModifier);
        QTest::keyClick(photos, Qt::Key_Space);
        QTest::mouseClick(photos->cell(0), Qt::LeftButton);
        QVERIFY(photos->selectedIndexes().isEmpty()); // they are looked at alone
        // What it is of the folder is told when the disk has answered.
        select("TS10006-1"_s);
        QCOMPARE(child<QLabel>("detailsHeading")->text(), "TS10006-1"_s);
        QTRY_VERIFY(child<QLabel>("folderLabel")->text().endsWith("目录不存在"_s));
        QCOMPARE(photos->count(), 0);
        QCOMPARE(photos->emptyText(), "该订单没有已选照片"_s);
        fields->setCurrentItem(
            fields->findItems("订单号"_s, Qt::MatchExactly | Qt::MatchRecursive).value(0));
        QApplication::setActiveWindow(window_);
        fields->setFocus();
        QTest::keyClick(fields, Qt::Key_C, Qt::ControlModifier);
        QCOMPARE(QApplication::clipboard()->text(), "TS10006-1"_s);
    }

    void exportsWhatItShows()
    {
        const QTemporaryDir folder;
        const QString path = folder.filePath("orders.csv"_s);
        open();
        QTest::keyClicks(child<QLineEdit>("filter0"), "TS10001"_s);
        QTRY_COMPARE(rows(), 2);
        const auto exported = [&](const char *scope, bool wholePhones) {
            click("exportButton");
            child<QRadioButton>(scope)->setChecked(true);
            child<QCheckBox>("wholePhonesBox")->setChecked(wholePhones);
            FileDialog::setNextFiles({path});
            click("exportAcceptButton");
            const bool told = QTest::qWaitFor(
                [&] { return Toast::currentText(window_).startsWith("已导出: "_s); }, patienceMs);
            Toast::show(window_, {});
            QFile file(path);
            return told && file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
        };
        QByteArray table = exported("allRowsButton", false);
        QVERIFY(table.startsWith("\xEF\xBB\xBF\"订单号\",\"男士姓名\","));
        QCOMPARE(table.count("\r\n"), 3);
        QVERIFY(table.contains("\r\n\"TS10001-2\","));
        QVERIFY(table.contains("****"));
        select(second);
        table = exported("selectedRowsButton", true);
        QCOMPARE(table.count("\r\n"), 2);
        QVERIFY(!table.contains("****"));

        QVERIFY(QFile::remove(path));
        click("exportButton");
        FileDialog::setNextFiles({path});
        click("exportAcceptButton");
        QCOMPARE(child<QPushButton>("exportButton")->text(), "取消导出"_s);
        click("exportButton");
        EXPECT_TOAST("已取消导出");
        processorPool().waitForDone();
        QCoreApplication::processEvents();
        diskPool().waitForDone();
        QVERIFY(!QFile::exists(path));

        QVERIFY(QDir().mkdir(path)); // in the way
        click("exportButton");
        FileDialog::setNextFiles({path});
        click("exportAcceptButton");
        EXPECT_BOXES("文件保存失败: "_s + path);
    }

    void keepsColumnsAndWidthsOfAView()
    {
        open();
        auto *view = child<QComboBox>("viewBox");
        view->setCurrentText("后期"_s);
        emit view->activated(view->currentIndex());
        QTRY_VERIFY(table()->orders()->columnOf("tiaosename"_s) > 0);
        QHeaderView *header = orders()->horizontalHeader();
        header->moveSection(0, 2);
        header->resizeSection(1, 333);
        const QString moved = table()->orders()->field(0).key;
        const QString widened = table()->orders()->field(1).key;
        window_->setAttribute(Qt::WA_DeleteOnClose);
        window_->close();
        QTRY_VERIFY(!window_); // all is written

        open();
        QCOMPARE(child<QComboBox>("viewBox")->currentText(), "后期"_s);
        QCOMPARE(table()->orders()->columnOf(moved), 2);
        QVERIFY(qAbs(orders()->columnWidth(table()->orders()->columnOf(widened)) - 333) <= 2);
    }

private:
    /// With all orders when \a search says so.
    void open(bool search = true)
    {
        show(new OrderList, 0);
        QTRY_VERIFY(child<QComboBox>("personBox")->count() > 1);
        QTRY_VERIFY(!table()->emptyText().isEmpty() && table()->emptyText() != "请重新搜索"_s);
        if (!search)
            return;
        QTest::keyClick(child<QLineEdit>("keywordEdit"), Qt::Key_Return);
        QTRY_VERIFY(rows() > 3);
    }

    BrowserTable *table() { return static_cast<BrowserTable *>(orders()); }
    int rows() { return orders()->model()->rowCount(); }
    /// In the context menu of the first heading, or one below it.
    void chooseInMenu(const QString &text)
    {
        emit orders()->horizontalHeader()->customContextMenuRequested({20, 10});
        const auto menus = orders()->findChildren<QMenu *>();
        for (const QMenu *menu : menus) {
            const auto actions = menu->actions();
            for (QAction *each : actions) {
                if (each->text() == text) {
                    each->trigger();
                    delete child<QMenu>("headingMenu");
                    return;
                }
            }
        }
        qFatal("no %s", qPrintable(text));
    }
    void clickHeading(int column)
    {
        QHeaderView *header = orders()->horizontalHeader();
        QTest::mouseClick(header->viewport(), Qt::LeftButton, {},
                          {header->sectionViewportPosition(column) + 20, 10});
    }
};

QTEST_MAIN(TestOrderList)
#include "test_orderlist.moc"
