#include "app/context/accountcontext.h"
#include "fileimport/originalview.h"
#include "fileimport/photocell.h"
#include "fileimport/thumbnaildecoding.h"
#include "fileimport/thumbnailtableview.h"
#include "net/background.h"
#include "tests/fileimport/registering.h"
#include "tests/support/democlient.h"
#include "tests/support/pictures.h"
#include "widgets/loadingoverlay.h"
#include "widgets/messagebox.h"
#include "widgets/theme.h"
#include "widgets/toast.h"

#include <QBuffer>
#include <QPushButton>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTcpServer>
#include <QTemporaryDir>

/// The imported-photo view: decoding, fetching, the grid, and the view around it.
class TestPhotoView : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();
    void decodes_data();
    void decodes();
    void fetches_data();
    void fetches();
    void neverFromTlsToPlain();
    void asksOnlyForWhatIsSeen();
    void selectsByMouseAndKeys();
    void oldImagesNeverReachNewCells();
    void goesAwayInMidFetch_data();
    void goesAwayInMidFetch();
    void showsAndDeletes();
    void rightsAndToasts();
    void staleAndLateListings();
    void badListings_data();
    void badListings();
    void anotherOrderDuringADeletion();

private:
    QVector<PhotoEntry> photos(int count) const;
    void show(QWidget *widget) const;
    OriginalView *openView();
    ThumbnailTableView *grid() const { return view_->findChild<ThumbnailTableView *>(); }
    void press(const char *button) const
    {
        QTest::mouseClick(view_->findChild<QPushButton *>(QLatin1String(button)), Qt::LeftButton);
    }
    QString overlayText() const { return view_->findChild<LoadingOverlay *>()->text(); }

    DemoClient demo_;
    std::unique_ptr<QTemporaryDir> folder_;
    std::unique_ptr<OriginalView> view_;
    QString url_; ///< of a picture that the service has
};

void TestPhotoView::initTestCase()
{
    MessageBox::setScripted(true);
}

void TestPhotoView::init()
{
    demo_.reset();
    AccountContext::uid = QStringLiteral("9001");
    url_ = AccountContext::baseUrl + QStringLiteral("/photos/8000011001.jpg");
    folder_ = std::make_unique<QTemporaryDir>();
    MessageBox::takeShown();
}

void TestPhotoView::cleanup()
{
    demo_.release();
    view_.reset();
    diskPool()->waitForDone();
    QVERIFY(MessageBox::takeShown().isEmpty());
}

void TestPhotoView::decodes_data()
{
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<QSize>("size");
    const auto png = [](const QSize &size) {
        QImage picture(size, QImage::Format_Mono);
        picture.fill(0);
        QByteArray bytes;
        QBuffer buffer(&bytes);
        picture.save(&buffer, "png");
        return bytes;
    };
    const QByteArray jpeg = jpegOf(cornerPicture({600, 400}));
    QTest::newRow("photo") << jpeg << QSize(90, 60);
    QTest::newRow("on its side") << jpegOf(cornerPicture({600, 400}), 6) << QSize(60, 90);
    QTest::newRow("small ones grow") << png({9, 6}) << QSize(90, 60);
    QTest::newRow("very wide") << png({20000, 1}) << QSize(90, 1);
    QTest::newRow("too many pixels") << png({20000, 20000}) << QSize();
    QTest::newRow("no picture") << QByteArray("<html></html>") << QSize();
    QTest::newRow("header alone") << jpeg.left(20) << QSize();
    QTest::newRow("drawing") << QByteArray("<svg xmlns='http://www.w3.org/2000/svg' width='9'"
                                           " height='9'></svg>")
                             << QSize();
}

void TestPhotoView::decodes()
{
    QFETCH(QByteArray, body);
    const QImage image = decodeThumbnail(body, QSize(90, 90));
    QTEST(image.isNull() ? QSize() : image.size(), "size");
    if (QTest::currentDataTag() == QByteArray("on its side"))
        QVERIFY(image.pixelColor(55, 5).red() > 200); // what was top left is top right now
}

void TestPhotoView::fetches_data()
{
    QTest::addColumn<QString>("kind");
    QTest::addColumn<QString>("path"); // in place of a picture's address
    QTest::addColumn<bool>("loaded");
    for (const char *kind : {"http-error", "drop", "html", "empty", "not-a-picture", "huge-picture",
                             "huge-body", "endless-body", "redirect-loop"})
        QTest::newRow(kind) << QString::fromLatin1(kind) << QString() << false;
    QTest::newRow("fine") << QString() << QString() << true;
    QTest::newRow("late") << QStringLiteral("delay") << QString() << true;
    QTest::newRow("redirect") << QStringLiteral("redirect") << QString() << true;
    QTest::newRow("unknown") << QString() << QStringLiteral("/photos/1.jpg") << false;
    QTest::newRow("no host") << QString() << QStringLiteral("file:///etc/hostname") << false;
}

void TestPhotoView::fetches()
{
    QFETCH(QString, kind);
    QFETCH(QString, path);
    if (!kind.isEmpty()) {
        demo_.misbehave(QStringLiteral("image"), kind,
                        {{QStringLiteral("delay"), 20},
                         {QStringLiteral("times"), kind == u"redirect-loop" ? -1 : 1},
                         {QStringLiteral("message"), QStringLiteral("/photos/8000011002.jpg")}});
    }
    QString url = url_;
    if (!path.isEmpty())
        url = path.startsWith(QLatin1Char('/')) ? AccountContext::baseUrl + path : path;
    ThumbnailLimits limits;
    limits.timeMs = kind == QLatin1String("endless-body") ? 400 : 20000;
    ThumbnailLoadWorker worker(QSize(90, 90), limits);
    QSignalSpy loaded(&worker, &ThumbnailLoadWorker::photoLoaded);
    QSignalSpy failed(&worker, &ThumbnailLoadWorker::photoLoadFailed);
    worker.loadPhoto(url, {}, 3);
    QTRY_COMPARE(loaded.size() + failed.size(), 1);
    QTEST(loaded.size() == 1, "loaded");
    const auto told = (loaded + failed).first();
    QCOMPARE(told.at(told.size() - 2).toString(), url);
    QCOMPARE(told.last().toInt(), 3);

    // Whatever happened, the next one comes, and says who asks.
    demo_.misbehave(QStringLiteral("image"), QStringLiteral("none"));
    worker.loadPhoto(url_, {}, 4);
    QTRY_COMPARE(loaded.size() + failed.size(), 2);
    QCOMPARE(loaded.last().last().toInt(), 4);
    const auto pixmap = loaded.last().first().value<QPixmap>();
    QCOMPARE(qMax(pixmap.width(), pixmap.height()), 90);
    QCOMPARE(demo_.requests(QStringLiteral("image")).last()[u"userAgent"].toString(),
             QStringLiteral("Mozilla/5.0"));
}

void TestPhotoView::neverFromTlsToPlain()
{
    QTcpServer plain;
    QVERIFY(plain.listen(QHostAddress::LocalHost));
    demo_.misbehave(QStringLiteral("image"), QStringLiteral("redirect"),
                    {{QStringLiteral("message"),
                      QStringLiteral("http://127.0.0.1:%1/a.jpg").arg(plain.serverPort())}});
    // A body that goes on for ever is given up by its size, too.
    demo_.misbehave(QStringLiteral("image"), QStringLiteral("endless-body"));
    ThumbnailLimits limits;
    limits.bodyBytes = 6;
    ThumbnailLoadWorker worker(QSize(90, 90), limits);
    QSignalSpy failed(&worker, &ThumbnailLoadWorker::photoLoadFailed);
    worker.loadPhoto(url_, {}, 0);
    QTRY_COMPARE(failed.size(), 1);
    QVERIFY(!plain.hasPendingConnections());
    worker.loadPhoto(url_, {}, 0);
    QTRY_COMPARE(failed.size(), 2);
}

QVector<PhotoEntry> TestPhotoView::photos(int count) const
{
    QVector<PhotoEntry> entries;
    for (int index = 0; index < count; ++index) {
        PhotoEntry entry;
        entry.imgName = QStringLiteral("IMG_%1.jpg").arg(index);
        entry.url = url_ + QStringLiteral("?%1").arg(index);
        entries.append(entry);
    }
    return entries;
}

void TestPhotoView::show(QWidget *widget) const
{
    widget->resize(900, 400);
    widget->show();
    widget->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(widget));
}

void TestPhotoView::asksOnlyForWhatIsSeen()
{
    ThumbnailLimits limits;
    limits.picturesHeld = 1;
    ThumbnailTableView grid(nullptr, limits);
    grid.setStyleSheet(theme::windowStyle());
    QSignalSpy requests(&grid, &ThumbnailTableView::loadPhotoRequest);
    auto entries = photos(200);
    PhotoEntry raw;
    raw.imgName = QStringLiteral("<b>a</b>.cr2");
    raw.kind = PhotoEntry::Kind::RawFile;
    raw.icon = QStringLiteral(":/public/image/public/icon/raw.png");
    entries.prepend(raw);
    entries[1].url.clear(); // nothing to show, and no icon either
    grid.setEntries(entries);
    grid.createPhotoItemsBatch();
    QCOMPARE(grid.createdCells(), 8);
    QTRY_COMPARE(grid.createdCells(), entries.size());
    QCOMPARE(requests.size(), 0); // it is not shown yet

    show(&grid);
    const int pitch = grid.cell(5)->y();
    const auto seen = [&] { return (400 + pitch - 1) / pitch * 5; };
    QTRY_COMPARE(requests.size(), seen());
    const auto isShown = [&](int index) {
        return !grid.cell(index)->photoLabel()->pixmap(Qt::ReturnByValue).isNull();
    };
    QTRY_VERIFY(isShown(seen() - 1));
    const auto allAnswered = [&] {
        for (int index = 0; index < grid.createdCells(); ++index) {
            const PhotoCell *cell = grid.cell(index);
            if (cell->isRequested && !cell->isLoaded && index != 1)
                return false;
        }
        return true;
    };
    QTRY_VERIFY(isShown(0) && allAnswered());
    QTRY_COMPARE(grid.cell(1)->photoLabel()->text(), QStringLiteral("加载失败"));
    QCOMPARE(grid.cell(seen())->photoLabel()->text(), QStringLiteral("加载中..."));
    QVERIFY(grid.cell(0)->toolTip().contains(QStringLiteral("&lt;b&gt;a&lt;/b&gt;.cr2")));
    QVERIFY(grid.cell(0)->toolTip().contains(QStringLiteral("原始档")));
    QCOMPARE(grid.cell(7)->property("photoIndex").toInt(), 7);
    QCOMPARE(grid.cell(0)->property("nameLabel").value<QWidget *>()->property("text").toString(),
             QStringLiteral("<b>a</b>.cr2")); // as it is called

    // Down in one go: what lies between is not asked for, and nothing twice.
    QScrollBar *bar = grid.verticalScrollBar();
    for (int value = 0; value < bar->maximum(); value += 97)
        bar->setValue(value);
    bar->setValue(bar->maximum());
    QTRY_VERIFY(isShown(entries.size() - 1));
    QVERIFY2(requests.size() <= 3 * seen(), qPrintable(QString::number(requests.size())));
    for (const auto &request : qAsConst(requests))
        QVERIFY(request.last().toInt() != 100);

    // What is far away is not held, and comes back without being fetched again.
    QTRY_VERIFY(allAnswered());
    QCOMPARE(grid.cell(5)->isLoaded, false);
    bar->setValue(0);
    QTRY_VERIFY(isShown(5) && allAnswered());
    const QJsonArray fetched = demo_.requests(QStringLiteral("image"));
    QVERIFY(fetched.size() < requests.size());
    bar->setValue(bar->maximum());
    QTRY_VERIFY(isShown(entries.size() - 1));
    QCOMPARE(demo_.requests(QStringLiteral("image")).size(), fetched.size());
}

void TestPhotoView::selectsByMouseAndKeys()
{
    ThumbnailTableView grid;
    QSignalSpy counts(&grid, &ThumbnailTableView::selectedCountChanged);
    QSignalSpy changes(&grid, &ThumbnailTableView::selectionChanged);
    show(&grid);
    grid.setEntries(photos(23));
    grid.selectAll(); // before there is any cell
    QCOMPARE(counts.last().first().toInt(), 23);
    QTRY_COMPARE(grid.createdCells(), 23);
    QVERIFY(grid.cell(20)->selectButton()->isChecked());
    grid.clearSelection();
    QCOMPARE(grid.selectedIndexes(), QVector<int>());
    QVERIFY(!grid.cell(20)->selectButton()->isChecked());
    QCOMPARE(changes.size(), 0); // all at once tells the count alone

    QTest::mouseClick(grid.cell(1), Qt::LeftButton, {}, QPoint(3, 3));
    QTest::mouseClick(grid.cell(3)->photoLabel(), Qt::LeftButton);
    QTest::mouseClick(grid.cell(4)->selectButton(), Qt::LeftButton);
    QCOMPARE(grid.selectedIndexes(), (QVector<int>{1, 3, 4}));
    QCOMPARE(changes.size(), 3);
    QTest::mouseClick(grid.cell(3), Qt::LeftButton);
    QCOMPARE(changes.last(), (QList<QVariant>{3, false}));
    QCOMPARE(counts.last().first().toInt(), 2);
    QTest::mousePress(grid.cell(3), Qt::LeftButton);
    QTest::mouseRelease(grid.cell(3), Qt::LeftButton, {}, QPoint(-5, 5)); // let go elsewhere
    QCOMPARE(grid.selectedIndexes(), (QVector<int>{1, 4}));
    QTest::mouseClick(grid.cell(7)->selectButton(), Qt::LeftButton, Qt::ShiftModifier);
    QCOMPARE(grid.selectedIndexes(), (QVector<int>{1, 3, 4, 5, 6, 7}));
    QCOMPARE(counts.last().first().toInt(), 6);

    grid.clearSelection();
    QVERIFY(grid.hasFocus());
    const auto key = [&grid](int code, Qt::KeyboardModifiers modifiers = {}) {
        QTest::keyClick(&grid, Qt::Key(code), modifiers);
    };
    key(Qt::Key_Home);
    key(Qt::Key_Space);
    key(Qt::Key_Down);
    key(Qt::Key_Right);
    key(Qt::Key_Space);
    QCOMPARE(grid.selectedIndexes(), (QVector<int>{0, 6}));
    key(Qt::Key_Space);
    key(Qt::Key_Right, Qt::ShiftModifier);
    QCOMPARE(grid.selectedIndexes(), (QVector<int>{0, 6, 7}));
    key(Qt::Key_End);
    key(Qt::Key_Down); // there is no row below
    key(Qt::Key_Space);
    QCOMPARE(grid.selectedIndexes().last(), 22);
    QTRY_COMPARE(grid.verticalScrollBar()->value(), grid.verticalScrollBar()->maximum());
    key(Qt::Key_A, Qt::ControlModifier);
    QCOMPARE(grid.selectedIndexes().size(), 23);
    grid.setEntries(photos(2));
    QCOMPARE(counts.last().first().toInt(), 0);
}

void TestPhotoView::oldImagesNeverReachNewCells()
{
    ThumbnailTableView grid;
    show(&grid);
    demo_.misbehave(QStringLiteral("image"), QStringLiteral("hold"),
                    {{QStringLiteral("times"), 2}});
    grid.setEntries(photos(2));
    QTRY_COMPARE(demo_.state().value(QStringLiteral("held")).toInt(), 2);
    // The same addresses again: only the order of events tells the lists apart.
    demo_.misbehave(QStringLiteral("image"), QStringLiteral("http-error"),
                    {{QStringLiteral("times"), 2}});
    grid.setEntries(photos(2));
    grid.createPhotoItemsBatch();
    QVERIFY(grid.cell(0)->isRequested);
    QPixmap old(9, 9);
    old.fill(Qt::red);
    grid.onPhotoLoaded(old, photos(1).first().url, 0); // a decode that ends only now
    QCOMPARE(grid.cell(0)->photoLabel()->text(), QStringLiteral("加载中..."));
    demo_.release();
    for (int index : {0, 1})
        QTRY_COMPARE(grid.cell(index)->photoLabel()->text(), QStringLiteral("加载失败"));
    grid.onPhotoLoaded(old, photos(1).first().url, 2);                    // no such cell
    QTRY_COMPARE(grid.viewport()->findChildren<PhotoCell *>().size(), 2); // the old ones have gone
}

void TestPhotoView::goesAwayInMidFetch_data()
{
    QTest::addColumn<bool>("asksFirst");
    QTest::newRow("stopped first") << true;
    QTest::newRow("at once") << false;
}

void TestPhotoView::goesAwayInMidFetch()
{
    auto grid = std::make_unique<ThumbnailTableView>();
    show(grid.get());
    demo_.misbehave(QStringLiteral("image"), QStringLiteral("hold"),
                    {{QStringLiteral("times"), 2}});
    grid->setEntries(photos(60));
    QTRY_COMPARE(demo_.state().value(QStringLiteral("held")).toInt(), 2);
    QFETCH(bool, asksFirst);
    if (asksFirst) {
        QSignalSpy stopped(grid.get(), &ThumbnailTableView::stopped);
        grid->stop();
        QTRY_COMPARE(stopped.size(), 1);
        QVERIFY(grid->isStopped());
        grid->loadVisiblePhotos();
        grid->setEntries(photos(3));
        QVERIFY(grid->isStopped());
    }
    QElapsedTimer clock;
    clock.start();
    grid.reset();
    QVERIFY(clock.elapsed() < 5000); // the held answers are not waited for
}

OriginalView *TestPhotoView::openView()
{
    view_ = std::make_unique<OriginalView>();
    view_->setStyleSheet(theme::windowStyle());
    show(view_.get());
    return view_.get();
}

void TestPhotoView::showsAndDeletes()
{
    for (int index = 0; index < 7; ++index) {
        registerFile(folder_->filePath(QStringLiteral("%1.jpg").arg(index)),
                     jpegOf(cornerPicture({60, 40})));
    }
    registerFile(folder_->filePath(QStringLiteral("7.cr2")), "raw");
    openView()->setOrder(firstOrder());
    QCOMPARE(view_->findChild<QLabel *>(QStringLiteral("photoTitle"))->text(),
             QStringLiteral("已导入 TS10001-1   "));
    QTRY_COMPARE(grid()->count(), 8);
    QCOMPARE(grid()->entry(0).imgName, QStringLiteral("7.cr2")); // raw files first
    QTRY_VERIFY(grid()->cell(7) && grid()->cell(7)->isLoaded);

    QVERIFY(QFile::remove(folder_->filePath(QStringLiteral("1.jpg"))));
    for (int index : {1, 2, 3}) // 0.jpg, 1.jpg, 2.jpg
        QTest::mouseClick(grid()->cell(index), Qt::LeftButton);
    QCOMPARE(view_->findChild<QLabel *>(QStringLiteral("photoCount"))->text(),
             QStringLiteral("共 8 个，已选 3 个"));
    MessageBox::setNextAnswer(QMessageBox::Cancel);
    press("deletePhotosButton");
    QVERIFY(MessageBox::takeShown().first().text.contains(QStringLiteral("3 个文件")));
    QVERIFY(demo_.requests(QStringLiteral("delete_pics")).isEmpty());

    demo_.misbehave(QStringLiteral("delete_pics"), QStringLiteral("hold"));
    demo_.clearRequests();
    MessageBox::setNextAnswer(QMessageBox::Ok);
    QTest::keyClick(grid(), Qt::Key_Delete);
    MessageBox::takeShown();
    QTRY_COMPARE(demo_.state().value(QStringLiteral("held")).toInt(), 1);
    QCOMPARE(overlayText(), QStringLiteral("提交删除数据中..."));
    view_->refresh(); // nothing, as long as a deletion is under way
    QCOMPARE(overlayText(), QStringLiteral("提交删除数据中..."));
    demo_.release();
    QTRY_COMPARE(grid()->count(), 5);
    QCOMPARE(overlayText(), QStringLiteral("删除完成！"));
    QCOMPARE(MessageBox::takeShown().first().text,
             QStringLiteral("本地文件删除失败，请检查手动删除以下照片！\n1.jpg 文件不存在"));
    QCOMPARE(QDir(folder_->path()).entryList(QDir::Files),
             (QStringList{QStringLiteral("3.jpg"), QStringLiteral("4.jpg"), QStringLiteral("5.jpg"),
                          QStringLiteral("6.jpg"), QStringLiteral("7.cr2")}));
    QCOMPARE(demo_.requests(QStringLiteral("getorder_pics")).size(), 1);
}

void TestPhotoView::rightsAndToasts()
{
    registerFile(folder_->filePath(QStringLiteral("a.jpg")), "no picture");
    auto order = firstOrder();
    order[QStringLiteral("delyp")] = QStringLiteral("0");
    openView()->setOrder(order);
    QTRY_COMPARE(grid()->createdCells(), 1);
    const char *const buttons[] = {"deletePhotosButton", "selectAllPhotosButton",
                                   "clearPhotosButton"};
    const auto areVisible = [&](bool visible) {
        return std::all_of(std::begin(buttons), std::end(buttons), [&](const char *name) {
            return view_->findChild<QPushButton *>(QLatin1String(name))->isVisible() == visible;
        });
    };
    QVERIFY(areVisible(false));
    grid()->selectAll();
    QTest::keyClick(grid(), Qt::Key_Delete); // not by the key either
    QVERIFY(demo_.requests(QStringLiteral("delete_pics")).isEmpty());

    demo_.misbehave(QStringLiteral("getorder_pics"), QStringLiteral("missing-fields"),
                    {{QStringLiteral("fields"), QJsonArray{QStringLiteral("images_yuanpian.id")}}});
    view_->setOrder(firstOrder());
    QVERIFY(areVisible(true));
    QTRY_COMPARE(grid()->createdCells(), 1);
    press("deletePhotosButton");
    QCOMPARE(Toast::currentText(view_.get()), QStringLiteral("请选择要删除的文件..."));
    press("selectAllPhotosButton");
    press("deletePhotosButton");
    QCOMPARE(Toast::currentText(view_.get()), QStringLiteral("没有有效的文件可以删除"));

    press("refreshPhotosButton");
    QCOMPARE(overlayText(), QStringLiteral("正在刷新中..."));
    QTRY_VERIFY(grid()->createdCells() == 1 && !grid()->entry(0).id.isEmpty());
    press("selectAllPhotosButton");
    demo_.misbehave(QStringLiteral("delete_pics"), QStringLiteral("refuse"),
                    {{QStringLiteral("message"), QStringLiteral("没有权限")}});
    MessageBox::setNextAnswer(QMessageBox::Ok);
    press("deletePhotosButton");
    MessageBox::takeShown();
    QTRY_COMPARE(overlayText(), QStringLiteral("没有权限"));
    QVERIFY(QFile::exists(folder_->filePath(QStringLiteral("a.jpg"))));
    QTRY_VERIFY(!view_->findChild<LoadingOverlay *>()->isVisible());
    demo_.misbehave(QStringLiteral("delete_pics"), QStringLiteral("http-error"));
    MessageBox::setNextAnswer(QMessageBox::Ok);
    press("deletePhotosButton");
    MessageBox::takeShown();
    QTRY_COMPARE(overlayText(), QStringLiteral("提交数据失败"));
}

void TestPhotoView::staleAndLateListings()
{
    registerFile(folder_->filePath(QStringLiteral("a.jpg")), "no picture");
    openView()->setOrder(firstOrder());
    QTRY_COMPARE(grid()->count(), 1);
    registerFile(folder_->filePath(QStringLiteral("b.jpg")), "no picture");
    demo_.misbehave(QStringLiteral("getorder_pics"), QStringLiteral("stale"));
    press("refreshPhotosButton");
    QTRY_VERIFY(!view_->findChild<LoadingOverlay *>()->isVisible());
    QCOMPARE(grid()->count(), 1);

    // The answer for an order that is not shown any more.
    demo_.misbehave(QStringLiteral("getorder_pics"), QStringLiteral("hold"));
    press("refreshPhotosButton");
    QTRY_COMPARE(demo_.state().value(QStringLiteral("held")).toInt(), 1);
    auto other = firstOrder();
    other[QStringLiteral("order_photo_id")] = QStringLiteral("800003");
    view_->setOrder(other);
    QCOMPARE(grid()->count(), 0);
    demo_.release();
    QTRY_COMPARE(demo_.state().value(QStringLiteral("held")).toInt(), 0);
    QTRY_COMPARE(demo_.requests(QStringLiteral("getorder_pics")).size(), 4);
    QTest::qWait(0);
    QCOMPARE(grid()->count(), 0);
    view_->setOrder({});
    QCOMPARE(view_->findChild<QPushButton *>(QStringLiteral("refreshPhotosButton"))->isEnabled(),
             false);
}

void TestPhotoView::badListings_data()
{
    QTest::addColumn<QString>("box");
    QTest::addColumn<bool>("toast");
    QTest::addColumn<QString>("emptyText");
    const QString failed = QStringLiteral("照片列表读取失败，请刷新");
    QTest::newRow("refuse") << QStringLiteral("服务暂不可用") << false << failed;
    QTest::newRow("data-wrong-type")
        << QString() << false << QStringLiteral("该订单还没有导入照片"); // no list, no photos
    QTest::newRow("http-error") << QString() << true << failed;
    QTest::newRow("broken-json") << QString() << true << failed;
}

void TestPhotoView::badListings()
{
    registerFile(folder_->filePath(QStringLiteral("a.jpg")), "no picture");
    demo_.misbehave(QStringLiteral("getorder_pics"), QLatin1String(QTest::currentDataTag()));
    openView()->setOrder(firstOrder());
    QFETCH(QString, emptyText);
    QTRY_COMPARE(grid()->emptyText(), emptyText);
    QTEST(MessageBox::takeShown().value(0).text, "box");
    QTEST(!Toast::currentText(view_.get()).isEmpty(), "toast");
    QCOMPARE(grid()->count(), 0);
    press("refreshPhotosButton");
    QTRY_COMPARE(grid()->count(), 1);
}

void TestPhotoView::anotherOrderDuringADeletion()
{
    registerFile(folder_->filePath(QStringLiteral("a.jpg")), "no picture");
    openView()->setOrder(firstOrder());
    QTRY_COMPARE(grid()->count(), 1);
    for (const char *kind : {"refuse", "hold"}) {
        grid()->selectAll();
        demo_.misbehave(QStringLiteral("delete_pics"), QLatin1String(kind),
                        {{QStringLiteral("delay"), 50}});
        MessageBox::setNextAnswer(QMessageBox::Ok);
        view_->deleteSelected();
        MessageBox::takeShown();
        auto other = firstOrder();
        other[QStringLiteral("order_photo_id")] = QStringLiteral("800003");
        view_->setOrder(other);
        demo_.clearRequests();
        if (kind == QByteArray("hold"))
            QTRY_COMPARE(demo_.state().value(QStringLiteral("held")).toInt(), 1);
        demo_.release();
        // The one shown now is listed as soon as the deletion has ended.
        QTRY_COMPARE(demo_.requests(QStringLiteral("getorder_pics")).size(), 1);
        QCOMPARE(
            demo_.requests(QStringLiteral("getorder_pics")).first()[u"fields"][u"order_photo_id"],
            QJsonValue(QStringLiteral("800003")));
        if (kind == QByteArray("refuse")) {
            view_->setOrder(firstOrder());
            QTRY_COMPARE(grid()->count(), 1);
            QTRY_VERIFY(!view_->findChild<LoadingOverlay *>()->isVisible());
        }
    }
    QVERIFY(!QFile::exists(folder_->filePath(QStringLiteral("a.jpg"))));
}

QTEST_MAIN(TestPhotoView)
#include "test_photoview.moc"
