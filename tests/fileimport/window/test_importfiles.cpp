#include "fileimport/window/importfiles.h"
#include "fileimport/window/orderactionsdelegate.h"
#include "fileimport/window/orderfilechooser.h"
#include "fileimport/window/photostatedelegate.h"
#include "tests/support/dropping.h"
#include "tests/support/files.h"
#include "tests/support/toolwindow.h"
#include "thumbnails/photocell.h"
#include "thumbnails/thumbnailtableview.h"
#include "widgets/boxes/boxdialog.h"
#include "widgets/boxes/filedialog.h"
#include "widgets/orders/ordersearchbar.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTemporaryDir>

using Column = ImportOrderTableModel::Column;

/// The import window against the demo service, by mouse and keys.
class TestImportFiles : public ToolWindowTest<ImportFiles, ImportOrderTableModel::NumberColumn>
{
    Q_OBJECT

private slots:
    void init()
    {
        logIn();
        card_ = std::make_unique<QTemporaryDir>();
    }

    void cleanup() { endTest(); }

    void opensWithTheBranchsOrders()
    {
        open(0);
        QCOMPARE(branchBox()->currentText(), "一店"_s);
        const QJsonObject search = demo_.requests("order_list"_s).first().toObject();
        QVERIFY(search.value("body"_s).toString().startsWith(
            "keyword=&searchtype=1&ratio=90&shopid=101&eid=3101&superid=7001&personid=3101&token="_s));

        select("TS10001-1"_s);
        click(cell("TS10001-1"_s, Column::NumberColumn));
        QCOMPARE(QGuiApplication::clipboard()->text(), "TS10001-1"_s);
        QCOMPARE(Toast::currentText(window_), "订单号已复制"_s);
    }

    void searchesByEnter()
    {
        open(0);
        auto *keyword = child<QLineEdit>("keywordEdit");
        keyword->setFocus();
        QTest::keyClicks(keyword, "TS10003"_s);
        QTest::keyClick(keyword, Qt::Key_Return);
        QTRY_COMPARE(orders()->model()->rowCount(), 1);
    }

    void imports()
    {
        open(0);
        const QString first = "TS10001-1"_s;
        const QString second = "TS10003-1"_s;
        select(first);
        const QStringList photos = makePhotos(6);
        choose(first, photos);
        choose(second, photos.mid(0, 2) + makePhotos(2, 500, "cr2"_s));
        QCOMPARE(text(first, Column::StateColumn), "已选择"_s);
        QCOMPARE(fileTable()->model()->rowCount(), 4); // pressing a row's button shows its files

        QTest::keyClick(orders(), Qt::Key_Return, Qt::ControlModifier);
        EXPECT_BOXES("导入完成！"_s);
        QCOMPARE(text(first, Column::StateColumn), "导入完成"_s);
        QCOMPARE(text(first, Column::OriginalsColumn), "6"_s);
        QCOMPARE(text(second, Column::OriginalsColumn), "2"_s);
        QCOMPARE(text(second, Column::RawColumn), "2"_s);
        auto *grid = window_->findChild<ThumbnailTableView *>();
        QTRY_COMPARE(grid->count(), 4); // what was imported for the order shown
        select(first);
        QCOMPARE(grid->count(), 0); // at once nothing of the other order
        QTRY_COMPARE(grid->count(), 6);
        select(second);
        QTRY_COMPARE(grid->count(), 4);
        for (const int index : {0, 2, 3}) { // a raw file and both photos
            QTRY_VERIFY(grid->cell(index));
            QTest::mouseClick(grid->cell(index), Qt::LeftButton);
        }
        MessageBox::setNextAnswer(QMessageBox::Ok);
        click("deletePhotosButton");
        EXPECT_BOX_THAT(box.contains("3 个文件"_s));
        QTRY_COMPARE(text(second, Column::OriginalsColumn), "0"_s);
        QCOMPARE(text(second, Column::RawColumn), "1"_s);

        // Sorted by another column, the rows still belong to their orders.
        orders()->horizontalHeader()->setSortIndicator(Column::WomanColumn, Qt::DescendingOrder);
        clickAction(first, OrderActionsDelegate::ClearFiles);
        QCOMPARE(text(first, Column::ChosenColumn), "0"_s);
        QCOMPARE(text(first, Column::StateColumn), "未选择"_s);
        QCOMPARE(text(second, Column::ChosenColumn), "4"_s);
    }

    void buttonsOfTheCurrentRowWhereTheirColumnIsOutOfSight()
    {
        open(0);
        const QString order = "TS10003-1"_s;
        auto *buttons = child<QWidget>("currentRowActions");
        select(order);
        window_->resize(1000, 700);
        orders()->horizontalScrollBar()->setValue(0);
        QTRY_VERIFY(buttons->isVisible());
        const QModelIndex row = cell(order, Column::NumberColumn);
        QCOMPARE(buttons->y(), orders()->visualRect(row).y()); // both in one row, both in sight
        QVERIFY(buttons->x() > orders()->visualRect(row).right());
        QVERIFY(buttons->geometry().right() < orders()->viewport()->width());
        const QStringList photos = makePhotos(2);
        FileDialog::setNextFiles(photos);
        const auto press = [&](OrderActionsDelegate::Action action) {
            const QRect button = OrderActionsDelegate::buttonRect(buttons->rect(), action);
            QTest::mouseClick(buttons, Qt::LeftButton, {}, button.center());
        };
        press(OrderActionsDelegate::SelectFiles);
        QTRY_COMPARE(text(order, Column::ChosenColumn), "2"_s);
        // What was pressed over another order is no click on this one.
        const QPoint clear =
            OrderActionsDelegate::buttonRect(buttons->rect(), OrderActionsDelegate::ClearFiles)
                .center();
        orders()->selectRow(row.row() == 0 ? 1 : 0);
        QTest::mousePress(buttons, Qt::LeftButton, {}, clear);
        select(order);
        QTest::mouseRelease(buttons, Qt::LeftButton, {}, clear);
        QCOMPARE(text(order, Column::ChosenColumn), "2"_s);
        press(OrderActionsDelegate::ClearFiles);
        QCOMPARE(text(order, Column::ChosenColumn), "0"_s);
        orders()->scrollTo(cell(order, Column::ActionsColumn));
        QVERIFY(!buttons->isVisible());
    }

    void retouchedPhotosTheCustomerDidNotChoose()
    {
        open(1);
        const QString order = "TS10001-1"_s;
        const QStringList photos = makePhotos(1);
        FileDialog::setNextFiles(photos);
        clickAction(order, OrderActionsDelegate::SelectFiles);
        const QString question = "要上传的精修照片与客人选中的照片名不一致，确认要继续上传吗？\n"
                                 "下列是不一致的照片：\nIMG_0.jpg"_s;
        EXPECT_BOXES(question);
        QCOMPARE(text(order, Column::ChosenColumn), "0"_s);

        MessageBox::setNextAnswer(QMessageBox::Ok);
        choose(order, photos);
        EXPECT_BOXES(question);
        click("startButton");
        EXPECT_BOXES("导入完成！"_s);
        QCOMPARE(text(order, Column::RetouchedColumn), "1"_s);
        QVERIFY(demo_.body("savepicpath_batch"_s, 0).contains("&type=5&"_s));
    }

    void ordersWithoutAFolder()
    {
        demo_.changeOrder("50003"_s, {{"netpath"_s, "../photos"_s}});
        open(0);
        for (const auto action :
             {OrderActionsDelegate::SelectFiles, OrderActionsDelegate::OpenFolder}) {
            clickAction("TS10003-1"_s, action);
            EXPECT_BOX_THAT(box.contains("TS10003-1"_s) && box.contains("../photos"_s));
        }
        FileDialog::setNextFiles(makePhotos(1));
        clickAction("TS10006-1"_s, OrderActionsDelegate::SelectFiles);
        EXPECT_BOX_THAT(box.startsWith("创建目录失败: "_s));

        branchBox()->setCurrentIndex(2);
        emit branchBox()->activated(2);
        QTRY_COMPARE(demo_.requests("order_list"_s).size(), 2);
        QTRY_VERIFY(orders()->model()->rowCount() > 0);
        QTRY_COMPARE(text("TS10009-1"_s, Column::PathColumn), QString());
        clickAction("TS10009-1"_s, OrderActionsDelegate::SelectFiles);
        EXPECT_BOX_THAT(box.startsWith("TS10009-1 "_s) &&
                        box.endsWith(" 没有设置本地云导片路径, 请在后台设置本地云导片路径！"_s));
    }

    void startWithNothingChosenKeepsTheFlag()
    {
        open(0);
        click("startButton");
        QCOMPARE(MessageBox::takeShown().constFirst().title, "提示"_s);
        QCOMPARE(startButton()->text(), "开始全部导入"_s);
        clickAction("TS10001-1"_s, OrderActionsDelegate::SelectFiles);
        clickAction("TS10001-1"_s, OrderActionsDelegate::ClearFiles);
        EXPECT_BOXES("导片中..."_s, "导片中..."_s);
        click("startButton");
        choose("TS10001-1"_s, makePhotos(1));
    }

    void whileImportingNothingElseMayChange()
    {
        open(0);
        demo_.hold("savepicpath_batch"_s);
        choose("TS10001-1"_s, makePhotos(1) + makePhotos(1, 10, "mp4"_s));
        click("startButton");
        waitUntilHeld();
        QCOMPARE(startButton()->text(), "停止导入"_s);
        demo_.clearRequests();
        clickAction("TS10001-1"_s, OrderActionsDelegate::SelectFiles);
        window_->onSearchClick();
        window_->onBranchSelectionChanged(1);
        const QString importing = "导片中..."_s;
        EXPECT_BOXES(importing, importing, importing);
        QCOMPARE(branchBox()->currentText(), "一店"_s);
        QCOMPARE(demo_.requests().size(), 0);
        QVERIFY(window_->findChild<QWidget *>("progressLabel"_s)->isVisible());
        demo_.release();
        QList<MessageBox::Shown> ends;
        QTRY_COMPARE((ends += MessageBox::takeShown()).size(), 1);
        QCOMPARE(ends.first().text, "导入完成！"_s);
        QCOMPARE(ends.first().explanation, "未登记到服务端的类型: 1 个（.mp4 1 个）"_s);
    }

    void unregisteredOrdersKeepTheirRemedy()
    {
        open(0);
        const QString order = "TS10001-1"_s;
        choose(order, makePhotos(1) + makePhotos(1, 10, "mp4"_s));
        demo_.refuse("savepicpath_batch"_s, "不行"_s);
        click("startButton");
        EXPECT_BOXES("不行 是否重新提交?"_s);
        QTRY_COMPARE(text(order, Column::StateColumn), "成功:2, 失败:0"_s);
        window_->close();
        EXPECT_BOX_THAT(box.startsWith("有 1 个订单的文件已导入"_s));
        QVERIFY(window_->isVisible());

        for (const bool byMouse : {true, false}) {
            window_->onSearchClick();
            QTRY_VERIFY(!searchBar()->isBusy());
            QCOMPARE(text(order, Column::StateColumn), "未选择"_s);
            const QModelIndex state = cell(order, Column::StateColumn);
            QVERIFY(state.data(Qt::ToolTipRole).toString().startsWith("文件已导入，尚未登记"_s));
            if (byMouse) {
                demo_.refuse("savepicpath_batch"_s, "还是不行"_s);
                orders()->scrollTo(state);
                click(state,
                      PhotoStateDelegate::linkRect(orders()->visualRect(state), orders()->font())
                          .center());
                EXPECT_BOXES("还是不行 是否重新提交?"_s);
            } else {
                select(order);
                QTest::keyClick(orders(), Qt::Key_R, Qt::ControlModifier);
            }
        }
        QTRY_COMPARE(text(order, Column::OriginalsColumn), "1"_s);
        QVERIFY(!cell(order, Column::StateColumn).data(Qt::ToolTipRole).isValid());
    }

    void overlappingChoicesAreJudgedAgain()
    {
        open(1);
        const QString order = "TS10001-1"_s;
        const QString photo = makePhotos(1).constFirst();
        const QString twin = writeFile(card_->filePath("other/img_0.JPG"_s), "twin");
        MessageBox::setScripted(false); // the first question stands open
        FileDialog::setNextFiles({photo});
        clickAction(order, OrderActionsDelegate::SelectFiles);
        QTRY_VERIFY(window_->findChild<BoxDialog *>());
        auto *first = window_->findChild<BoxDialog *>();
        window_->onFilesDropped(cell(order, 0).row(), {twin});
        QTRY_VERIFY(!window_->findChild<OrderFileChooser *>()->isBusy());
        first->button(QMessageBox::Ok)->click();
        QTRY_COMPARE(text(order, Column::ChosenColumn), "1"_s);
        QTRY_VERIFY(window_->findChild<BoxDialog *>() &&
                    window_->findChild<BoxDialog *>() != first);
        MessageBox::setScripted(true);
        window_->findChild<BoxDialog *>()->button(QMessageBox::Ok)->click();
        EXPECT_BOX_THAT(box.contains(photo) && box.contains(twin)); // the clash
        QCOMPARE(text(order, Column::ChosenColumn), "1"_s);
    }

    void failedFilesAreRetriedByTheirButton()
    {
        open(0);
        const QString order = "TS10001-1"_s;
        const QStringList photos = makePhotos(3);
        select(order);
        choose(order, photos);
        QVERIFY(QFile::rename(photos.at(1), photos.at(1) + ".away"_s));
        click("startButton");
        EXPECT_BOXES("导入完成！"_s);
        QCOMPARE(text(order, Column::StateColumn), "成功:2, 失败:1"_s);
        QVERIFY(QFile::rename(photos.at(1) + ".away"_s, photos.at(1)));

        demo_.hold("savepicpath_batch"_s);
        for (const int row : {0, 1}) { // the first has none
            const auto cell = fileTable()->model()->index(row, ImportFileTableModel::ActionColumn);
            QTest::mouseClick(fileTable()->viewport(), Qt::LeftButton, {},
                              fileTable()->visualRect(cell).center());
        }
        waitUntilHeld();
        clickAction(order, OrderActionsDelegate::SelectFiles);
        clickAction(order, OrderActionsDelegate::ClearFiles);
        EXPECT_BOXES("导片中..."_s, "导片中..."_s);
        demo_.release();
        QTRY_COMPARE(text(order, Column::StateColumn), "导入完成"_s);
        QTRY_COMPARE(text(order, Column::OriginalsColumn), "3"_s);
    }

    void dropsAddAndTheDialogReplaces()
    {
        open(0);
        const QString order = "TS10001-1"_s;
        const auto drop = [&](const QString &path) {
            return dropFiles(orders()->viewport(),
                             orders()->visualRect(cell(order, Column::ManColumn)).center(), {path});
        };
        const QStringList photos = makePhotos(3);
        makePhotos(1, 10, "txt"_s);
        QVERIFY(drop(card_->path()));
        QTRY_COMPARE(text(order, Column::ChosenColumn), "3"_s);
        EXPECT_BOXES("已忽略 1 个不支持的文件：.txt 1 个"_s);

        const QTemporaryDir second;
        QVERIFY(drop(second.path()));
        EXPECT_BOXES("没有可以导入的文件，已选的文件保持不变。"_s);
        writeFile(second.filePath("DSC_1.cr2"_s));
        const UnreadableFolder unreadable(second.path());
        if (!unreadable.path.isEmpty()) {
            QVERIFY(drop(second.path()));
            EXPECT_BOX_THAT(box.contains(unreadable.path));
            QCOMPARE(text(order, Column::ChosenColumn), "3"_s);
            MessageBox::setNextAnswer(QMessageBox::Ok);
        }
        QVERIFY(drop(second.path()));
        QTRY_COMPARE(text(order, Column::ChosenColumn), "4"_s);
        forgetBoxes();
        QCOMPARE(fileTable()->model()->rowCount(), 4);
        const QString twin = writeFile(second.filePath("img_0.JPG"_s));
        QVERIFY(drop(twin));
        EXPECT_BOX_THAT(box.contains(photos.first()) && box.contains(twin));
        QCOMPARE(fileTable()->model()->rowCount(), 4);

        FileDialog::setNextFiles(photos.mid(1));
        clickAction(order, OrderActionsDelegate::SelectFiles);
        EXPECT_BOX_THAT(box.contains(" 还有 2 个"_s));
        QCOMPARE(text(order, Column::ChosenColumn), "4"_s);
        MessageBox::setNextAnswer(QMessageBox::Ok);
        choose(order, photos.mid(1));
        EXPECT_BOX_THAT(box.contains(" 还有 2 个"_s));
        QCOMPARE(fileTable()->model()->rowCount(), 2);
    }

    void anotherBranchLeavesNothingBehind()
    {
        open(0);
        select("TS10001-1"_s);
        choose("TS10001-1"_s, makePhotos(2));
        demo_.clearRequests();
        const QString question =
            "有 2 个已选的文件还没有导入，切换分店后它们只保留在提示栏中，确认要切换吗？"_s;
        chooseBranch("102"_s);
        EXPECT_BOXES(question);
        QCOMPARE(branchBox()->currentText(), "一店"_s);
        QCOMPARE(text("TS10001-1"_s, Column::ChosenColumn), "2"_s);
        QVERIFY(demo_.requests().isEmpty());

        // Nothing comes back when the search after the switch fails.
        demo_.refuse("order_list"_s, "不行"_s);
        MessageBox::setNextAnswer(QMessageBox::Ok);
        chooseBranch("102"_s);
        EXPECT_BOXES(question, "不行"_s);
        QCOMPARE(branchBox()->currentText(), "二店"_s);
        QCOMPARE(orders()->model()->rowCount(), 0);
        QCOMPARE(fileTable()->model()->rowCount(), 0);
        QCOMPARE(child<QLabel>("photoTitle")->text(), "已导入照片"_s);
        click("startButton");
        EXPECT_BOXES("没有订单可导入"_s);
    }

    void selectionSurvivesARefresh()
    {
        demo_.addOrders(60, "101"_s);
        open(0);
        orders()->horizontalHeader()->setSortIndicator(Column::NumberColumn, Qt::DescendingOrder);
        select("TS10003-1"_s);
        const int scrolled = orders()->verticalScrollBar()->maximum() - 1;
        orders()->verticalScrollBar()->setValue(scrolled);
        QSignalSpy refreshed(orders()->model(), &QAbstractItemModel::modelReset);
        window_->onSearchClick();
        QTRY_COMPARE(refreshed.size(), 1);
        QCOMPARE(orders()->currentIndex().row(), cell("TS10003-1"_s, 0).row());
        QCOMPARE(orders()->verticalScrollBar()->value(), scrolled);
    }

    void closingInMidCopyEndsThePool()
    {
        open(0);
        const QString order = "TS10001-1"_s;
        choose(order, makePhotos(40, 2 * 1024 * 1024));
        window_->setAttribute(Qt::WA_DeleteOnClose);
        click("startButton");
        QSignalSpy closed(window_, &FramelessWindow::closed);
        MessageBox::setNextAnswer(QMessageBox::Ok);
        window_->close();
        EXPECT_BOX_THAT(box.startsWith("正在导入，关闭窗口会停止导入"_s));
        QTRY_COMPARE(closed.size(), 1);
        QTRY_VERIFY(!window_);
        QCOMPARE(demo_.requests("savepicpath_batch"_s).size(), 0);
        // No temporary file is left behind, and what has its name is whole.
        const QStringList files = filesBelow(demo_.share());
        QVERIFY(files.filter(".part"_s).isEmpty());
        const QStringList photos = files.filter("IMG_"_s);
        for (const QString &photo : photos)
            QCOMPARE(QFileInfo(demo_.share() + "/"_s + photo).size(), qint64(2 * 1024 * 1024));
    }

    void closingInMidDeletionTellsWhatIsLeft()
    {
        open(0);
        select("TS10001-1"_s);
        choose("TS10001-1"_s, makePhotos(2));
        click("startButton");
        EXPECT_BOXES("导入完成！"_s);
        auto *grid = window_->findChild<ThumbnailTableView *>();
        QTRY_COMPARE(grid->count(), 2);
        grid->selectAll();
        demo_.hold("delete_pics"_s);
        MessageBox::setNextAnswer(QMessageBox::Ok);
        click("deletePhotosButton");
        EXPECT_BOX_THAT(box.contains("2 个文件"_s));
        waitUntilHeld();
        window_->setAttribute(Qt::WA_DeleteOnClose);
        for (const bool agreed : {false, true}) {
            if (agreed)
                MessageBox::setNextAnswer(QMessageBox::Ok);
            window_->close();
            EXPECT_BOX_THAT(box.startsWith("正在删除已导入的照片"_s));
            QCOMPARE(window_->isVisible(), !agreed);
        }
        demo_.release();
        EXPECT_BOX_THAT(box.startsWith("本地文件删除失败，请检查手动删除以下照片！\n"_s) &&
                        box.contains("\nIMG_0.jpg 任务已中止"_s));
        QTRY_VERIFY(!window_);
        QCOMPARE(filesBelow(demo_.share()).filter("IMG_"_s).size(), 2);
    }

private:
    QTableView *fileTable() { return child<QTableView>("fileTable"); }
    QPushButton *startButton() { return child<QPushButton>("startButton"); }
    QComboBox *branchBox() { return child<QComboBox>("branchBox"); }
    void open(int mode)
    {
        auto *window = new ImportFiles;
        window->setMode(mode);
        show(window);
    }

    OrderSearchBar *searchBar() { return window_->findChild<OrderSearchBar *>(); }

    void clickAction(const QString &displayNumber, OrderActionsDelegate::Action action)
    {
        const QModelIndex index = cell(displayNumber, Column::ActionsColumn);
        orders()->scrollTo(index);
        const QRect button = OrderActionsDelegate::buttonRect(orders()->visualRect(index), action);
        QTest::mouseClick(orders()->viewport(), Qt::LeftButton, {}, button.center());
    }

    void choose(const QString &displayNumber, const QStringList &files)
    {
        FileDialog::setNextFiles(files);
        clickAction(displayNumber, OrderActionsDelegate::SelectFiles);
        QTRY_COMPARE(text(displayNumber, Column::ChosenColumn), QString::number(files.size()));
    }

    QStringList makePhotos(int count, int bytes = 1000, const QString &suffix = "jpg"_s)
    {
        QStringList paths;
        for (int index = 0; index < count; ++index)
            paths.append(writeFile(card_->filePath("IMG_%1.%2"_s.arg(index).arg(suffix)),
                                   QByteArray(bytes, 'p')));
        return paths;
    }

    std::unique_ptr<QTemporaryDir> card_;
};

QTEST_MAIN(TestImportFiles)
#include "test_importfiles.moc"
