#include "app/context/accountcontext.h"
#include "fileimport/originalview.h"
#include "fileimport/photocell.h"
#include "fileimport/thumbnaildecoding.h"
#include "fileimport/thumbnailtableview.h"
#include "net/background.h"
#include "tests/fileimport/registering.h"
#include "tests/support/datarows.h"
#include "tests/support/democlient.h"
#include "tests/support/pictures.h"
#include "tests/support/text.h"
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
    void initTestCase() { MessageBox::setScripted(true); }

    void init()
    {
        demo_.reset();
        AccountContext::uid = "9001"_s;
        url_ = AccountContext::baseUrl + "/photos/8000011001.jpg"_s;
        folder_ = std::make_unique<QTemporaryDir>();
        MessageBox::takeShown();
    }

    void cleanup()
    {
        demo_.release();
        view_.reset();
        diskPool()->waitForDone();
        QVERIFY(MessageBox::takeShown().isEmpty());
    }

    void decodes_data()
    {
        addColumns<QByteArray, QSize>({"body", "size"});
        const auto png = [](const QSize &size) {
            QImage picture(size, QImage::Format_Mono);
            picture.fill(0);
            QByteArray bytes;
            QBuffer buffer(&bytes);
            picture.save(&buffer, "png");
            return bytes;
        };
        const QByteArray jpeg = jpegOf(cornerPicture({600, 400}));
        newRow("photo", jpeg, QSize(90, 60));
        newRow("on its side", jpegOf(cornerPicture({600, 400}), 6), QSize(60, 90));
        newRow("small ones grow", png({9, 6}), QSize(90, 60));
        newRow("very wide", png({20000, 1}), QSize(90, 1));
        newRow("too many pixels", png({20000, 20000}), QSize());
        newRow("no picture", QByteArray("<html></html>"), QSize());
        newRow("header alone", jpeg.left(20), QSize());
        newRow("drawing",
               QByteArray("<svg xmlns='http://www.w3.org/2000/svg' width='9'"
                          " height='9'></svg>"),
               QSize());
    }

    void decodes()
    {
        QFETCH(QByteArray, body);
        const QImage image = decodeThumbnail(body, QSize(90, 90));
        QTEST(image.isNull() ? QSize() : image.size(), "size");
        if (QTest::currentDataTag() == QByteArray("on its side"))
            QVERIFY(image.pixelColor(55, 5).red() > 200); // what was top left is top right now
    }

    void fetches_data()
    {
        // path: in place of a picture's address
        addColumns<QString, QString, bool>({"kind", "path", "loaded"});
        for (const char *kind : {"http-error", "drop", "html", "empty", "not-a-picture",
                                 "huge-picture", "huge-body", "endless-body", "redirect-loop"})
            newRow(kind, QString::fromLatin1(kind), QString(), false);
        newRow("fine", QString(), QString(), true);
        newRow("late", "delay", QString(), true);
        newRow("redirect", "redirect", QString(), true);
        newRow("unknown", QString(), "/photos/1.jpg", false);
        newRow("no host", QString(), "file:///etc/hostname", false);
    }

    void fetches()
    {
        QFETCH(QString, kind);
        QFETCH(QString, path);
        if (!kind.isEmpty()) {
            demo_.misbehave("image"_s, kind,
                            {{"delay"_s, 20},
                             {"times"_s, kind == u"redirect-loop" ? -1 : 1},
                             {"message"_s, "/photos/8000011002.jpg"_s}});
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
        const auto told = (loaded + failed).constFirst();
        QCOMPARE(told.at(told.size() - 2).toString(), url);
        QCOMPARE(told.last().toInt(), 3);

        // Whatever happened, the next one comes, and says who asks.
        demo_.misbehave("image"_s, "none"_s);
        worker.loadPhoto(url_, {}, 4);
        QTRY_COMPARE(loaded.size() + failed.size(), 2);
        QCOMPARE(loaded.last().last().toInt(), 4);
        const auto pixmap = loaded.last().first().value<QPixmap>();
        QCOMPARE(qMax(pixmap.width(), pixmap.height()), 90);
        QCOMPARE(demo_.requests("image"_s).last()[u"userAgent"].toString(), "Mozilla/5.0"_s);
    }

    void neverFromTlsToPlain()
    {
        QTcpServer plain;
        QVERIFY(plain.listen(QHostAddress::LocalHost));
        demo_.misbehave("image"_s, "redirect"_s,
                        {{"message"_s, "http://127.0.0.1:%1/a.jpg"_s.arg(plain.serverPort())}});
        // A body that goes on for ever is given up by its size, too.
        demo_.misbehave("image"_s, "endless-body"_s);
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

    void asksOnlyForWhatIsSeen()
    {
        ThumbnailLimits limits;
        limits.picturesHeld = 1;
        ThumbnailTableView grid(nullptr, limits);
        grid.setStyleSheet(theme::windowStyle());
        QSignalSpy requests(&grid, &ThumbnailTableView::loadPhotoRequest);
        auto entries = photos(200);
        PhotoEntry raw;
        raw.imgName = "<b>a</b>.cr2"_s;
        raw.kind = PhotoEntry::Kind::RawFile;
        raw.icon = ":/public/image/public/icon/raw.png"_s;
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
        QTRY_COMPARE(grid.cell(1)->photoLabel()->text(), "加载失败"_s);
        QCOMPARE(grid.cell(seen())->photoLabel()->text(), "加载中..."_s);
        QVERIFY(grid.cell(0)->toolTip().contains("&lt;b&gt;a&lt;/b&gt;.cr2"_s));
        QVERIFY(grid.cell(0)->toolTip().contains("原始档"_s));
        QCOMPARE(grid.cell(7)->property("photoIndex").toInt(), 7);
        QCOMPARE(
            grid.cell(0)->property("nameLabel").value<QWidget *>()->property("text").toString(),
            "<b>a</b>.cr2"_s); // as it is called

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
        const QJsonArray fetched = demo_.requests("image"_s);
        QVERIFY(fetched.size() < requests.size());
        bar->setValue(bar->maximum());
        QTRY_VERIFY(isShown(entries.size() - 1));
        QCOMPARE(demo_.requests("image"_s).size(), fetched.size());
    }

    void selectsByMouseAndKeys()
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
        QCOMPARE(grid.selectedIndexes().constLast(), 22);
        QTRY_COMPARE(grid.verticalScrollBar()->value(), grid.verticalScrollBar()->maximum());
        key(Qt::Key_A, Qt::ControlModifier);
        QCOMPARE(grid.selectedIndexes().size(), 23);
        grid.setEntries(photos(2));
        QCOMPARE(counts.last().first().toInt(), 0);
    }

    void oldImagesNeverReachNewCells()
    {
        ThumbnailTableView grid;
        show(&grid);
        demo_.hold("image"_s, 2);
        grid.setEntries(photos(2));
        QTRY_COMPARE(demo_.held(), 2);
        // The same addresses again: only the order of events tells the lists apart.
        demo_.misbehave("image"_s, "http-error"_s, {{"times"_s, 2}});
        grid.setEntries(photos(2));
        grid.createPhotoItemsBatch();
        QVERIFY(grid.cell(0)->isRequested);
        QPixmap old(9, 9);
        old.fill(Qt::red);
        grid.onPhotoLoaded(old, photos(1).constFirst().url, 0); // a decode that ends only now
        QCOMPARE(grid.cell(0)->photoLabel()->text(), "加载中..."_s);
        demo_.release();
        for (int index : {0, 1})
            QTRY_COMPARE(grid.cell(index)->photoLabel()->text(), "加载失败"_s);
        grid.onPhotoLoaded(old, photos(1).constFirst().url, 2); // no such cell
        QTRY_COMPARE(grid.viewport()->findChildren<PhotoCell *>().size(),
                     2); // the old ones have gone
    }

    void goesAwayInMidFetch_data()
    {
        QTest::addColumn<bool>("asksFirst");
        newRow("stopped first", true);
        newRow("at once", false);
    }

    void goesAwayInMidFetch()
    {
        auto grid = std::make_unique<ThumbnailTableView>();
        show(grid.get());
        demo_.hold("image"_s, 2);
        grid->setEntries(photos(60));
        QTRY_COMPARE(demo_.held(), 2);
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

    void showsAndDeletes()
    {
        for (int index = 0; index < 7; ++index) {
            registerFile(folder_->filePath("%1.jpg"_s.arg(index)), jpegOf(cornerPicture({60, 40})));
        }
        registerFile(folder_->filePath("7.cr2"_s), "raw");
        openView()->setOrder(firstOrder());
        QCOMPARE(view_->findChild<QLabel *>("photoTitle"_s)->text(), "已导入 TS10001-1   "_s);
        QTRY_COMPARE(grid()->count(), 8);
        QCOMPARE(grid()->entry(0).imgName, "7.cr2"_s); // raw files first
        QTRY_VERIFY(grid()->cell(7) && grid()->cell(7)->isLoaded);

        QVERIFY(QFile::remove(folder_->filePath("1.jpg"_s)));
        for (int index : {1, 2, 3}) // 0.jpg, 1.jpg, 2.jpg
            QTest::mouseClick(grid()->cell(index), Qt::LeftButton);
        QCOMPARE(view_->findChild<QLabel *>("photoCount"_s)->text(), "共 8 个，已选 3 个"_s);
        MessageBox::setNextAnswer(QMessageBox::Cancel);
        press("deletePhotosButton");
        QVERIFY(MessageBox::takeShown().constFirst().text.contains("3 个文件"_s));
        QVERIFY(demo_.requests("delete_pics"_s).isEmpty());

        demo_.hold("delete_pics"_s);
        demo_.clearRequests();
        MessageBox::setNextAnswer(QMessageBox::Ok);
        QTest::keyClick(grid(), Qt::Key_Delete);
        MessageBox::takeShown();
        QTRY_COMPARE(demo_.held(), 1);
        QCOMPARE(overlayText(), "提交删除数据中..."_s);
        view_->refresh(); // nothing, as long as a deletion is under way
        QCOMPARE(overlayText(), "提交删除数据中..."_s);
        demo_.release();
        QTRY_COMPARE(grid()->count(), 5);
        QCOMPARE(overlayText(), "删除完成！"_s);
        QCOMPARE(MessageBox::takeShown().constFirst().text,
                 "本地文件删除失败，请检查手动删除以下照片！\n1.jpg 文件不存在"_s);
        QCOMPARE(QDir(folder_->path()).entryList(QDir::Files),
                 (QStringList{"3.jpg"_s, "4.jpg"_s, "5.jpg"_s, "6.jpg"_s, "7.cr2"_s}));
        QCOMPARE(demo_.requests("getorder_pics"_s).size(), 1);
    }

    void rightsAndToasts()
    {
        registerFile(folder_->filePath("a.jpg"_s), "no picture");
        auto order = firstOrder();
        order["delyp"_s] = "0"_s;
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
        QVERIFY(demo_.requests("delete_pics"_s).isEmpty());

        demo_.misbehave("getorder_pics"_s, "missing-fields"_s,
                        {{"fields"_s, QJsonArray{"images_yuanpian.id"_s}}});
        view_->setOrder(firstOrder());
        QVERIFY(areVisible(true));
        QTRY_COMPARE(grid()->createdCells(), 1);
        press("deletePhotosButton");
        QCOMPARE(Toast::currentText(view_.get()), "请选择要删除的文件..."_s);
        press("selectAllPhotosButton");
        press("deletePhotosButton");
        QCOMPARE(Toast::currentText(view_.get()), "没有有效的文件可以删除"_s);

        press("refreshPhotosButton");
        QCOMPARE(overlayText(), "正在刷新中..."_s);
        QTRY_VERIFY(grid()->createdCells() == 1 && !grid()->entry(0).id.isEmpty());
        press("selectAllPhotosButton");
        demo_.refuse("delete_pics"_s, "没有权限"_s);
        MessageBox::setNextAnswer(QMessageBox::Ok);
        press("deletePhotosButton");
        MessageBox::takeShown();
        QTRY_COMPARE(overlayText(), "没有权限"_s);
        QVERIFY(QFile::exists(folder_->filePath("a.jpg"_s)));
        QTRY_VERIFY(!view_->findChild<LoadingOverlay *>()->isVisible());
        demo_.misbehave("delete_pics"_s, "http-error"_s);
        MessageBox::setNextAnswer(QMessageBox::Ok);
        press("deletePhotosButton");
        MessageBox::takeShown();
        QTRY_COMPARE(overlayText(), "提交数据失败"_s);
    }

    void staleAndLateListings()
    {
        registerFile(folder_->filePath("a.jpg"_s), "no picture");
        openView()->setOrder(firstOrder());
        QTRY_COMPARE(grid()->count(), 1);
        registerFile(folder_->filePath("b.jpg"_s), "no picture");
        demo_.misbehave("getorder_pics"_s, "stale"_s);
        press("refreshPhotosButton");
        QTRY_VERIFY(!view_->findChild<LoadingOverlay *>()->isVisible());
        QCOMPARE(grid()->count(), 1);

        // The answer for an order that is not shown any more.
        demo_.hold("getorder_pics"_s);
        press("refreshPhotosButton");
        QTRY_COMPARE(demo_.held(), 1);
        auto other = firstOrder();
        other["order_photo_id"_s] = "800003"_s;
        view_->setOrder(other);
        QCOMPARE(grid()->count(), 0);
        demo_.release();
        QTRY_COMPARE(demo_.held(), 0);
        QTRY_COMPARE(demo_.requests("getorder_pics"_s).size(), 4);
        QTest::qWait(0);
        QCOMPARE(grid()->count(), 0);
        view_->setOrder({});
        QCOMPARE(view_->findChild<QPushButton *>("refreshPhotosButton"_s)->isEnabled(), false);
    }

    void badListings_data()
    {
        addColumns<QString, bool, QString>({"box", "toast", "emptyText"});
        const QString failed = "照片列表读取失败，请刷新"_s;
        newRow("refuse", "服务暂不可用", false, failed);
        newRow("data-wrong-type", QString(), false, "该订单还没有导入照片"); // no list, no photos
        newRow("http-error", QString(), true, failed);
        newRow("broken-json", QString(), true, failed);
    }

    void badListings()
    {
        registerFile(folder_->filePath("a.jpg"_s), "no picture");
        demo_.misbehave("getorder_pics"_s, QLatin1String(QTest::currentDataTag()));
        openView()->setOrder(firstOrder());
        QFETCH(QString, emptyText);
        QTRY_COMPARE(grid()->emptyText(), emptyText);
        QTEST(MessageBox::takeShown().value(0).text, "box");
        QTEST(!Toast::currentText(view_.get()).isEmpty(), "toast");
        QCOMPARE(grid()->count(), 0);
        press("refreshPhotosButton");
        QTRY_COMPARE(grid()->count(), 1);
    }

    void anotherOrderDuringADeletion()
    {
        registerFile(folder_->filePath("a.jpg"_s), "no picture");
        openView()->setOrder(firstOrder());
        QTRY_COMPARE(grid()->count(), 1);
        for (const char *kind : {"refuse", "hold"}) {
            grid()->selectAll();
            demo_.misbehave("delete_pics"_s, QLatin1String(kind), {{"delay"_s, 50}});
            MessageBox::setNextAnswer(QMessageBox::Ok);
            view_->deleteSelected();
            MessageBox::takeShown();
            auto other = firstOrder();
            other["order_photo_id"_s] = "800003"_s;
            view_->setOrder(other);
            demo_.clearRequests();
            if (kind == QByteArray("hold"))
                QTRY_COMPARE(demo_.held(), 1);
            demo_.release();
            // The one shown now is listed as soon as the deletion has ended.
            QTRY_COMPARE(demo_.requests("getorder_pics"_s).size(), 1);
            QCOMPARE(demo_.requests("getorder_pics"_s).first()[u"fields"][u"order_photo_id"],
                     QJsonValue("800003"_s));
            if (kind == QByteArray("refuse")) {
                view_->setOrder(firstOrder());
                QTRY_COMPARE(grid()->count(), 1);
                QTRY_VERIFY(!view_->findChild<LoadingOverlay *>()->isVisible());
            }
        }
        QVERIFY(!QFile::exists(folder_->filePath("a.jpg"_s)));
    }

private:
    QVector<PhotoEntry> photos(int count) const
    {
        QVector<PhotoEntry> entries;
        for (int index = 0; index < count; ++index) {
            PhotoEntry entry;
            entry.imgName = "IMG_%1.jpg"_s.arg(index);
            entry.url = url_ + "?%1"_s.arg(index);
            entries.append(entry);
        }
        return entries;
    }

    void show(QWidget *widget) const
    {
        widget->resize(900, 400);
        widget->show();
        widget->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(widget));
    }

    OriginalView *openView()
    {
        view_ = std::make_unique<OriginalView>();
        view_->setStyleSheet(theme::windowStyle());
        show(view_.get());
        return view_.get();
    }

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

QTEST_MAIN(TestPhotoView)
#include "test_photoview.moc"
