#include "app/context/accountcontext.h"
#include "fileimport/importfiles.h"
#include "fileimport/orderactionsdelegate.h"
#include "fileimport/thumbnailtableview.h"
#include "net/background.h"
#include "tests/support/democlient.h"
#include "widgets/filedialog.h"
#include "widgets/loadingoverlay.h"
#include "widgets/messagebox.h"
#include "widgets/ordersearchbar.h"
#include "widgets/toast.h"

#include <QClipboard>
#include <QComboBox>
#include <QDir>
#include <QDirIterator>
#include <QDropEvent>
#include <QGuiApplication>
#include <QHeaderView>
#include <QLineEdit>
#include <QMimeData>
#include <QPushButton>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTableView>
#include <QTemporaryDir>
#include <QtTest>

using Column = ImportOrderTableModel::Column;

/// The import window against the demo service, by mouse and keys.
class TestImportFiles : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();
    void opensWithTheBranchsOrders();
    void searchesByEnter();
    void imports();
    void retouchedPhotosTheCustomerDidNotChoose();
    void ordersWithoutAFolder();
    void startWithNothingChosenKeepsTheFlag();
    void whileImportingNothingElseMayChange();
    void failedFilesAreRetriedByTheirButton();
    void dropsAreTakenAsIfChosen();
    void clashingNamesAreNotTaken();
    void theLaterBranchSwitchWins();
    void aRefusedSwitchKeepsTheBranch();
    void aSwitchThatFailedAtOpeningCanBeTriedAgain();
    void aSwitchThatHangsCanBeCancelled();
    void badSearchReplies_data();
    void badSearchReplies();
    void selectionSurvivesARefresh();
    void aReplyAfterClosingIsHarmless();
    void closingInMidCopyEndsThePool();
    void closingWhilePhotosAreFetched();

private:
    void open(int mode);
    QTableView *table() { return window_->findChild<QTableView *>(QStringLiteral("orderTable")); }
    QTableView *fileTable()
    {
        return window_->findChild<QTableView *>(QStringLiteral("fileTable"));
    }
    OrderSearchBar *searchBar() { return window_->findChild<OrderSearchBar *>(); }
    QPushButton *startButton()
    {
        return window_->findChild<QPushButton *>(QStringLiteral("startButton"));
    }
    QComboBox *branchBox() { return searchBar()->findChildren<QComboBox *>().last(); }
    /// Row of the view that shows the order; fails the test when there is none.
    int rowOf(const QString &displayNumber);
    QString text(const QString &displayNumber, int column);
    void select(const QString &displayNumber);
    void clickAction(const QString &displayNumber, OrderActionsDelegate::Action action);
    void choose(const QString &displayNumber, const QStringList &files);
    QStringList makePhotos(int count, int bytes = 1000,
                           const QString &suffix = QStringLiteral("jpg"));
    /// Texts of the boxes shown since the last clear.
    const QStringList &boxes();

    DemoClient demo_;
    std::unique_ptr<QTemporaryDir> card_;
    QPointer<ImportFiles> window_;
    QStringList boxes_;
};

#define EXPECT_BOXES(texts)                                                                        \
    do {                                                                                           \
        QTRY_COMPARE(boxes(), texts);                                                              \
        boxes_.clear();                                                                            \
    } while (false)

void TestImportFiles::initTestCase()
{
    MessageBox::setScripted(true);
}

void TestImportFiles::init()
{
    demo_.reset();
    AccountContext::uid = QStringLiteral("9001");
    AccountContext::eid = QStringLiteral("3101");
    AccountContext::superId = QStringLiteral("7001");
    AccountContext::shopId = QStringLiteral("101");
    AccountContext::selectedShopId.clear();
    AccountContext::shopList = {{QStringLiteral("101"), QStringLiteral("一店"), {}, {}},
                                {QStringLiteral("102"), QStringLiteral("二店"), {}, {}},
                                {QStringLiteral("103"), QStringLiteral("三店"), {}, {}}};
    card_ = std::make_unique<QTemporaryDir>();
    MessageBox::takeShown();
    boxes_.clear();
}

void TestImportFiles::cleanup()
{
    demo_.release();
    delete window_;
    diskPool()->waitForDone();
    QCOMPARE(boxes(), QStringList()); // every box was expected
}

void TestImportFiles::open(int mode)
{
    window_ = new ImportFiles;
    window_->setMode(mode);
    window_->resize(1600, 800);
    window_->show();
    window_->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(window_));
    QTRY_VERIFY(table()->model()->rowCount() > 0);
}

int TestImportFiles::rowOf(const QString &displayNumber)
{
    for (int row = 0; row < table()->model()->rowCount(); ++row) {
        if (table()->model()->index(row, Column::NumberColumn).data().toString() == displayNumber)
            return row;
    }
    qFatal("no order %s", qPrintable(displayNumber));
}

QString TestImportFiles::text(const QString &displayNumber, int column)
{
    return table()->model()->index(rowOf(displayNumber), column).data().toString();
}

void TestImportFiles::select(const QString &displayNumber)
{
    table()->selectRow(rowOf(displayNumber));
}

void TestImportFiles::clickAction(const QString &displayNumber, OrderActionsDelegate::Action action)
{
    const QModelIndex cell = table()->model()->index(rowOf(displayNumber), Column::ActionsColumn);
    table()->scrollTo(cell);
    const QRect button = OrderActionsDelegate::buttonRect(table()->visualRect(cell), action);
    QTest::mouseClick(table()->viewport(), Qt::LeftButton, {}, button.center());
}

void TestImportFiles::choose(const QString &displayNumber, const QStringList &files)
{
    FileDialog::setNextFiles(files);
    clickAction(displayNumber, OrderActionsDelegate::SelectFiles);
    QTRY_COMPARE(text(displayNumber, Column::ChosenColumn), QString::number(files.size()));
}

QStringList TestImportFiles::makePhotos(int count, int bytes, const QString &suffix)
{
    QStringList paths;
    for (int index = 0; index < count; ++index) {
        QFile photo(card_->filePath(QStringLiteral("IMG_%1.%2").arg(index).arg(suffix)));
        if (!photo.open(QIODevice::WriteOnly) || photo.write(QByteArray(bytes, 'p')) != bytes)
            qFatal("fixture not written");
        paths.append(photo.fileName());
    }
    return paths;
}

const QStringList &TestImportFiles::boxes()
{
    const auto shown = MessageBox::takeShown();
    for (const MessageBox::Shown &box : shown)
        boxes_.append(box.text);
    return boxes_;
}

void TestImportFiles::opensWithTheBranchsOrders()
{
    open(0);
    QCOMPARE(branchBox()->currentText(), QStringLiteral("一店"));
    const QJsonObject search = demo_.requests(QStringLiteral("order_list")).first().toObject();
    QVERIFY(
        search.value(QStringLiteral("body"))
            .toString()
            .startsWith(QStringLiteral(
                "keyword=&searchtype=1&ratio=90&shopid=101&eid=3101&superid=7001&personid=3101&token=")));
    QCOMPARE(text(QStringLiteral("TS10001-1"), Column::StateColumn), QStringLiteral("未选择"));
    QCOMPARE(text(QStringLiteral("TS10001-1"), Column::ChosenColumn), QString());
    QCOMPARE(table()->model()->columnCount(), 12);

    select(QStringLiteral("TS10001-1"));
    const QModelIndex number = table()->model()->index(rowOf(QStringLiteral("TS10001-1")), 0);
    QTest::mouseClick(table()->viewport(), Qt::LeftButton, {},
                      table()->visualRect(number).center());
    QCOMPARE(QGuiApplication::clipboard()->text(), QStringLiteral("TS10001-1"));
    QCOMPARE(Toast::currentText(window_), QStringLiteral("订单号已复制"));
}

void TestImportFiles::searchesByEnter()
{
    open(0);
    auto *keyword = searchBar()->findChildren<QLineEdit *>().first();
    const auto edits = searchBar()->findChildren<QLineEdit *>();
    for (QLineEdit *edit : edits) {
        if (edit->isVisible() &&
            edit->placeholderText() == QStringLiteral("搜索订单号、姓名、电话..."))
            keyword = edit;
    }
    keyword->setFocus();
    QTest::keyClicks(keyword, QStringLiteral("TS10003"));
    QTest::keyClick(keyword, Qt::Key_Return);
    QTRY_COMPARE(table()->model()->rowCount(), 1);
    keyword->clear();
    QTest::keyClicks(keyword, QStringLiteral("nobody"));
    QTest::keyClick(keyword, Qt::Key_Return);
    EXPECT_BOXES(QStringList(QStringLiteral("未检索到订单")));
    QCOMPARE(table()->model()->rowCount(), 0);
}

void TestImportFiles::imports()
{
    open(0);
    const QString first = QStringLiteral("TS10001-1");
    const QString second = QStringLiteral("TS10003-1");
    select(first);
    const QStringList photos = makePhotos(6);
    choose(first, photos);
    choose(second, photos.mid(0, 2) + makePhotos(2, 500, QStringLiteral("cr2")));
    QCOMPARE(text(first, Column::StateColumn), QStringLiteral("已选择"));
    QVERIFY(!text(first, Column::PathColumn).isEmpty());
    QCOMPARE(fileTable()->model()->rowCount(), 4); // pressing a row's button shows its files

    QTest::keyClick(table(), Qt::Key_Return, Qt::ControlModifier);
    EXPECT_BOXES(QStringList(QStringLiteral("导入完成！")));
    QCOMPARE(startButton()->text(), QStringLiteral("开始全部导入"));
    QCOMPARE(text(first, Column::StateColumn), QStringLiteral("导入完成"));
    QCOMPARE(text(first, Column::OriginalsColumn), QStringLiteral("6"));
    QCOMPARE(text(second, Column::OriginalsColumn), QStringLiteral("2"));
    QCOMPARE(text(second, Column::RawColumn), QStringLiteral("2"));
    QCOMPARE(fileTable()->model()->index(0, 1).data().toString(), QStringLiteral("导入成功"));
    QVERIFY(!window_->findChild<QWidget *>(QStringLiteral("progressLabel"))->isVisible());
    auto *grid = window_->findChild<ThumbnailTableView *>();
    QTRY_COMPARE(grid->count(), 4); // what was imported for the order shown
    select(first);
    QCOMPARE(grid->count(), 0); // at once nothing of the other order
    QTRY_COMPARE(grid->count(), 6);
    select(second);

    // Sorted by another column, the rows still belong to their orders.
    table()->horizontalHeader()->setSortIndicator(Column::WomanColumn, Qt::DescendingOrder);
    clickAction(first, OrderActionsDelegate::ClearFiles);
    QCOMPARE(text(first, Column::ChosenColumn), QStringLiteral("0"));
    QCOMPARE(text(first, Column::StateColumn), QStringLiteral("未选择"));
    QCOMPARE(text(second, Column::ChosenColumn), QStringLiteral("4"));
}

void TestImportFiles::retouchedPhotosTheCustomerDidNotChoose()
{
    open(1);
    const QString order = QStringLiteral("TS10001-1");
    const QStringList photos = makePhotos(1);
    FileDialog::setNextFiles(photos);
    clickAction(order, OrderActionsDelegate::SelectFiles);
    const QString question =
        QStringLiteral("要上传的精修照片与客人选中的照片名不一致，确认要继续上传吗？\n"
                       "下列是不一致的照片：\nIMG_0.jpg");
    EXPECT_BOXES(QStringList(question));
    QCOMPARE(text(order, Column::ChosenColumn), QStringLiteral("0"));

    MessageBox::setNextAnswer(QMessageBox::Ok);
    choose(order, photos);
    EXPECT_BOXES(QStringList(question));
    QTest::mouseClick(startButton(), Qt::LeftButton);
    EXPECT_BOXES(QStringList(QStringLiteral("导入完成！")));
    QCOMPARE(text(order, Column::RetouchedColumn), QStringLiteral("1"));
    QVERIFY(demo_.requests(QStringLiteral("savepicpath_batch"))
                .first()
                .toObject()
                .value(QStringLiteral("body"))
                .toString()
                .contains(QStringLiteral("&type=5&")));
}

void TestImportFiles::ordersWithoutAFolder()
{
    open(0);
    FileDialog::setNextFiles(makePhotos(1));
    clickAction(QStringLiteral("TS10006-1"), OrderActionsDelegate::SelectFiles);
    QTRY_COMPARE(boxes().size(), 1);
    QVERIFY(boxes_.first().startsWith(QStringLiteral("创建目录失败: ")));
    boxes_.clear();

    branchBox()->setCurrentIndex(2);
    emit branchBox()->activated(2);
    QTRY_COMPARE(demo_.requests(QStringLiteral("order_list")).size(), 2);
    QTRY_VERIFY(table()->model()->rowCount() > 0);
    QTRY_COMPARE(text(QStringLiteral("TS10009-1"), Column::PathColumn), QString());
    clickAction(QStringLiteral("TS10009-1"), OrderActionsDelegate::SelectFiles);
    QCOMPARE(boxes().size(), 1);
    QVERIFY(boxes_.first().startsWith(QStringLiteral("TS10009-1 ")));
    QVERIFY(boxes_.first().endsWith(
        QStringLiteral(" 没有设置本地云导片路径, 请在后台设置本地云导片路径！")));
    boxes_.clear();
}

void TestImportFiles::startWithNothingChosenKeepsTheFlag()
{
    open(0);
    QTest::mouseClick(startButton(), Qt::LeftButton);
    QCOMPARE(MessageBox::takeShown().constFirst().title, QStringLiteral("提示"));
    QCOMPARE(startButton()->text(), QStringLiteral("开始全部导入"));
    clickAction(QStringLiteral("TS10001-1"), OrderActionsDelegate::SelectFiles);
    clickAction(QStringLiteral("TS10001-1"), OrderActionsDelegate::ClearFiles);
    EXPECT_BOXES((QStringList{QStringLiteral("导片中..."), QStringLiteral("导片中...")}));
    QTest::mouseClick(startButton(), Qt::LeftButton);
    choose(QStringLiteral("TS10001-1"), makePhotos(1));
}

void TestImportFiles::whileImportingNothingElseMayChange()
{
    open(0);
    demo_.misbehave(QStringLiteral("savepicpath_batch"), QStringLiteral("hold"));
    choose(QStringLiteral("TS10001-1"), makePhotos(2));
    QTest::mouseClick(startButton(), Qt::LeftButton);
    QTRY_COMPARE(demo_.state().value(QStringLiteral("held")).toInt(), 1);
    QCOMPARE(startButton()->text(), QStringLiteral("停止导入"));
    demo_.clearRequests();
    clickAction(QStringLiteral("TS10001-1"), OrderActionsDelegate::SelectFiles);
    window_->onSearchClick();
    window_->onBranchSelectionChanged(1);
    const QString importing = QStringLiteral("导片中...");
    EXPECT_BOXES((QStringList{importing, importing, importing}));
    QCOMPARE(branchBox()->currentText(), QStringLiteral("一店"));
    QCOMPARE(demo_.requests().size(), 0);
    QVERIFY(window_->findChild<QWidget *>(QStringLiteral("progressLabel"))->isVisible());
    demo_.release();
    EXPECT_BOXES(QStringList(QStringLiteral("导入完成！")));
}

void TestImportFiles::failedFilesAreRetriedByTheirButton()
{
    open(0);
    const QString order = QStringLiteral("TS10001-1");
    const QStringList photos = makePhotos(3);
    select(order);
    choose(order, photos);
    QVERIFY(QFile::rename(photos.at(1), photos.at(1) + QStringLiteral(".away")));
    QTest::mouseClick(startButton(), Qt::LeftButton);
    EXPECT_BOXES(QStringList(QStringLiteral("导入完成！")));
    QCOMPARE(text(order, Column::StateColumn), QStringLiteral("成功:2, 失败:1"));
    QVERIFY(QFile::rename(photos.at(1) + QStringLiteral(".away"), photos.at(1)));

    const QModelIndex fine = fileTable()->model()->index(0, ImportFileTableModel::ActionColumn);
    const QModelIndex failed = fileTable()->model()->index(1, ImportFileTableModel::ActionColumn);
    QTest::mouseClick(fileTable()->viewport(), Qt::LeftButton, {},
                      fileTable()->visualRect(fine).center());
    QTest::mouseClick(fileTable()->viewport(), Qt::LeftButton, {},
                      fileTable()->visualRect(failed).center());
    QTRY_COMPARE(text(order, Column::StateColumn), QStringLiteral("导入完成"));
    QTRY_COMPARE(text(order, Column::OriginalsColumn), QStringLiteral("3"));
    QCOMPARE(demo_.requests(QStringLiteral("savepicpath_batch")).size(), 2);
}

void TestImportFiles::dropsAreTakenAsIfChosen()
{
    open(0);
    const QString order = QStringLiteral("TS10001-1");
    makePhotos(3);
    makePhotos(1, 10, QStringLiteral("txt"));
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(card_->path())});
    const QPoint where =
        table()->visualRect(table()->model()->index(rowOf(order), Column::ManColumn)).center();
    QDragEnterEvent enter(where, Qt::CopyAction | Qt::MoveAction, &data, Qt::LeftButton, {});
    QDragMoveEvent move(where, Qt::CopyAction | Qt::MoveAction, &data, Qt::LeftButton, {});
    QDropEvent drop(where, Qt::CopyAction | Qt::MoveAction, &data, Qt::LeftButton, {});
    for (QEvent *event : std::initializer_list<QEvent *>{&enter, &move, &drop})
        QCoreApplication::sendEvent(table()->viewport(), event);
    QVERIFY(drop.isAccepted());
    QCOMPARE(int(drop.dropAction()), int(Qt::CopyAction));
    QTRY_COMPARE(text(order, Column::ChosenColumn), QStringLiteral("3"));
    QCOMPARE(Toast::currentText(window_), QStringLiteral("已忽略 1 个不支持的文件"));
    QCOMPARE(fileTable()->model()->rowCount(), 3);
}

void TestImportFiles::clashingNamesAreNotTaken()
{
    open(0);
    const QString order = QStringLiteral("TS10001-1");
    QVERIFY(QDir(card_->path()).mkdir(QStringLiteral("other")));
    const QStringList photos = makePhotos(1);
    const QString twin = card_->filePath(QStringLiteral("other/img_0.JPG"));
    QVERIFY(QFile::copy(photos.first(), twin));
    FileDialog::setNextFiles({photos.first(), twin});
    clickAction(order, OrderActionsDelegate::SelectFiles);
    QTRY_COMPARE(boxes().size(), 1);
    QVERIFY(boxes_.first().contains(photos.first()) && boxes_.first().contains(twin));
    boxes_.clear();
    QCOMPARE(text(order, Column::ChosenColumn), QStringLiteral("0"));
}

void TestImportFiles::theLaterBranchSwitchWins()
{
    open(0);
    demo_.misbehave(QStringLiteral("switch_shop"), QStringLiteral("hold"));
    demo_.clearRequests();
    window_->onBranchSelectionChanged(2);
    QTRY_COMPARE(demo_.state().value(QStringLiteral("held")).toInt(), 1);
    searchBar()->selectBranch(QStringLiteral("102"));
    window_->onBranchSelectionChanged(1);
    QTRY_COMPARE(demo_.requests(QStringLiteral("order_list")).size(), 1);
    demo_.release();
    demo_.state();
    QCOMPARE(branchBox()->currentText(), QStringLiteral("二店"));
    const QJsonObject search = demo_.requests(QStringLiteral("order_list")).last().toObject();
    QVERIFY(search.value(QStringLiteral("body"))
                .toString()
                .contains(QStringLiteral("&shopid=102&eid=3102&superid=7002&")));
    QCOMPARE(demo_.requests(QStringLiteral("order_list")).size(), 1);
    QCOMPARE(AccountContext::selectedShopId, QStringLiteral("102"));
}

void TestImportFiles::aRefusedSwitchKeepsTheBranch()
{
    open(0);
    const int orders = table()->model()->rowCount();
    demo_.misbehave(QStringLiteral("switch_shop"), QStringLiteral("refuse"),
                    {{QStringLiteral("message"), QStringLiteral("分店已停用")}});
    searchBar()->selectBranch(QStringLiteral("102"));
    window_->onBranchSelectionChanged(1);
    EXPECT_BOXES(QStringList(QStringLiteral("分店已停用")));
    QCOMPARE(branchBox()->currentText(), QStringLiteral("一店"));
    QCOMPARE(AccountContext::selectedShopId, QStringLiteral("101"));
    QCOMPARE(table()->model()->rowCount(), orders);
}

void TestImportFiles::aSwitchThatFailedAtOpeningCanBeTriedAgain()
{
    demo_.misbehave(QStringLiteral("switch_shop"), QStringLiteral("drop"));
    window_ = new ImportFiles;
    window_->show();
    QTRY_COMPARE(Toast::currentText(window_), QStringLiteral("网络连接失败，请稍后重试"));
    QCOMPARE(demo_.requests(QStringLiteral("order_list")).size(), 0);
    window_->onSearchClick();
    QTRY_VERIFY(table()->model()->rowCount() > 0);
}

void TestImportFiles::aSwitchThatHangsCanBeCancelled()
{
    open(0);
    const int orders = table()->model()->rowCount();
    demo_.misbehave(QStringLiteral("switch_shop"), QStringLiteral("hold"));
    demo_.clearRequests();
    searchBar()->selectBranch(QStringLiteral("102"));
    window_->onBranchSelectionChanged(1);
    QTRY_COMPARE(demo_.state().value(QStringLiteral("held")).toInt(), 1);
    auto *overlay = table()->findChild<LoadingOverlay *>();
    QVERIFY(overlay->isVisible());
    QTest::mouseClick(overlay->findChild<QPushButton *>(), Qt::LeftButton);
    QVERIFY(!overlay->isVisible());
    demo_.release();
    demo_.state();
    QCOMPARE(branchBox()->currentText(), QStringLiteral("一店"));
    QCOMPARE(table()->model()->rowCount(), orders);
    QCOMPARE(demo_.requests(QStringLiteral("order_list")).size(), 0);
    window_->onSearchClick();
    QTRY_COMPARE(demo_.requests(QStringLiteral("order_list")).size(), 1);
}

void TestImportFiles::badSearchReplies_data()
{
    QTest::addColumn<QString>("kind");
    QTest::addColumn<QString>("box");
    QTest::addColumn<QString>("toast");
    const QString offline = QStringLiteral("网络连接失败，请稍后重试");
    for (const char *kind : {"empty", "html", "array", "truncated-utf8", "http-error", "drop"})
        QTest::newRow(kind) << QString::fromLatin1(kind) << QString() << offline;
    QTest::newRow("refuse") << "refuse"
                            << "不行"
                            << "";
    QTest::newRow("missing-fields") << "missing-fields"
                                    << "未检索到订单"
                                    << "";
    QTest::newRow("data-wrong-type") << "data-wrong-type"
                                     << "未检索到订单"
                                     << "";
}

void TestImportFiles::badSearchReplies()
{
    QFETCH(QString, kind);
    QFETCH(QString, box);
    QFETCH(QString, toast);
    open(0);
    const int orders = table()->model()->rowCount();
    demo_.misbehave(QStringLiteral("order_list"), kind,
                    {{QStringLiteral("message"), QStringLiteral("不行")}});
    window_->onSearchClick();
    if (!box.isEmpty())
        EXPECT_BOXES(QStringList(box));
    else
        QTRY_COMPARE(Toast::currentText(window_), toast);
    QCOMPARE(table()->model()->rowCount(), orders);
    QVERIFY(!searchBar()->isBusy());
}

void TestImportFiles::selectionSurvivesARefresh()
{
    demo_.addOrders(60, QStringLiteral("101"));
    open(0);
    table()->horizontalHeader()->setSortIndicator(Column::NumberColumn, Qt::DescendingOrder);
    select(QStringLiteral("TS10003-1"));
    const int scrolled = table()->verticalScrollBar()->maximum() - 1;
    table()->verticalScrollBar()->setValue(scrolled);
    QSignalSpy refreshed(table()->model(), &QAbstractItemModel::modelReset);
    window_->onSearchClick();
    QTRY_COMPARE(refreshed.size(), 1);
    QCOMPARE(table()->currentIndex().row(), rowOf(QStringLiteral("TS10003-1")));
    QCOMPARE(table()->verticalScrollBar()->value(), scrolled);
}

void TestImportFiles::aReplyAfterClosingIsHarmless()
{
    open(0);
    demo_.misbehave(QStringLiteral("order_list"), QStringLiteral("hold"));
    window_->setAttribute(Qt::WA_DeleteOnClose);
    window_->onSearchClick();
    QTRY_COMPARE(demo_.state().value(QStringLiteral("held")).toInt(), 1);
    window_->close();
    QTRY_VERIFY(!window_);
    demo_.release();
    demo_.state();
}

void TestImportFiles::closingInMidCopyEndsThePool()
{
    open(0);
    const QString order = QStringLiteral("TS10001-1");
    choose(order, makePhotos(40, 2 * 1024 * 1024));
    window_->setAttribute(Qt::WA_DeleteOnClose);
    QTest::mouseClick(startButton(), Qt::LeftButton);
    QSignalSpy closed(window_, &FramelessWindow::closed);
    window_->close();
    QCOMPARE(closed.size(), 1);
    QVERIFY(!window_ || !window_->isVisible());
    QTRY_VERIFY(!window_);
    QCOMPARE(demo_.requests(QStringLiteral("savepicpath_batch")).size(), 0);
    // No temporary file is left behind, and what has its name is whole.
    const QString share = demo_.state().value(QStringLiteral("share")).toString();
    QDirIterator files(share, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
    while (files.hasNext()) {
        files.next();
        QVERIFY2(!files.fileName().endsWith(QStringLiteral(".part")), qPrintable(files.filePath()));
        if (files.fileName().startsWith(QStringLiteral("IMG_")))
            QCOMPARE(files.fileInfo().size(), qint64(2 * 1024 * 1024));
    }
}

void TestImportFiles::closingWhilePhotosAreFetched()
{
    open(0);
    const QString order = QStringLiteral("TS10001-1");
    choose(order, makePhotos(3));
    demo_.misbehave(QStringLiteral("image"), QStringLiteral("hold"),
                    {{QStringLiteral("times"), 3}});
    QTest::mouseClick(startButton(), Qt::LeftButton);
    EXPECT_BOXES(QStringList(QStringLiteral("导入完成！")));
    QTRY_COMPARE(demo_.state().value(QStringLiteral("held")).toInt(), 3);
    window_->setAttribute(Qt::WA_DeleteOnClose);
    window_->close();
    QTRY_VERIFY(!window_);
    QCOMPARE(demo_.state().value(QStringLiteral("held")).toInt(), 3); // nobody waited for them
}

QTEST_MAIN(TestImportFiles)
#include "test_importfiles.moc"
