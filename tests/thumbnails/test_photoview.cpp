#include "app/context/accountcontext.h"
#include "tests/support/datarows.h"
#include "tests/support/login.h"
#include "tests/support/pictures.h"
#include "tests/support/showing.h"
#include "tests/support/text.h"
#include "thumbnails/photocell.h"
#include "thumbnails/photogrid.h"
#include "thumbnails/thumbnaildecoding.h"
#include "thumbnails/thumbnailtableview.h"
#include "widgets/theme/theme.h"

#include <QBuffer>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTcpServer>

/// The grid of imported photos: decoding, fetching, cells, selection.
class TestPhotoView : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        logIn(&demo_);
        url_ = AccountContext::baseUrl + "/photos/8000011001.jpg"_s;
    }

    void cleanup() { demo_.release(); }

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
        newRow("drawing", QByteArray("<svg xmlns='http://www.w3.org/2000/svg' width='9'/>"),
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
                                 "huge-picture", "huge-body", "redirect-loop"})
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
        ThumbnailLoadWorker worker(QSize(90, 90));
        QSignalSpy loaded(&worker, &ThumbnailLoadWorker::photoLoaded);
        QSignalSpy failed(&worker, &ThumbnailLoadWorker::photoLoadFailed);
        worker.loadPhoto(url, {}, 3);
        QTRY_COMPARE_WITH_TIMEOUT(loaded.size() + failed.size(), 1, 60000);
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
        ThumbnailLoadWorker worker(QSize(90, 90));
        QSignalSpy failed(&worker, &ThumbnailLoadWorker::photoLoadFailed);
        worker.loadPhoto(url_, {}, 0);
        QTRY_COMPARE(failed.size(), 1);
        QVERIFY(!plain.hasPendingConnections());
    }

    void endlessBodiesAreGivenUp()
    {
        ThumbnailLimits small;
        small.bodyBytes = 6;
        ThumbnailLimits brief;
        brief.timeMs = 400;
        for (const ThumbnailLimits &limits : {small, brief}) {
            demo_.misbehave("image"_s, "endless-body"_s);
            ThumbnailLoadWorker worker(QSize(90, 90), limits);
            QSignalSpy failed(&worker, &ThumbnailLoadWorker::photoLoadFailed);
            worker.loadPhoto(url_, {}, 0);
            QTRY_COMPARE(failed.size(), 1);
        }
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

        showActive(&grid);
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
        showActive(&grid);
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

    void aRefreshKeepsPlaceAndSelection()
    {
        ThumbnailTableView grid;
        showActive(&grid);
        auto entries = photos(300);
        for (int index = 0; index < entries.size(); ++index)
            entries[index].id = QString::number(index);
        entries[203].id.clear();
        grid.setEntries(entries);
        QScrollBar *bar = grid.verticalScrollBar();
        const int row = photogrid::rowHeight();
        bar->setValue(40 * row + 7); // entry 200 is the first to be seen
        grid.createPhotoItemsBatch();
        QVERIFY(grid.cell(200) && grid.cell(207) && !grid.cell(0)); // made where the user is
        for (int index : {200, 202, 203, 204})
            QTest::mouseClick(grid.cell(index), Qt::LeftButton);

        QSignalSpy counts(&grid, &ThumbnailTableView::selectedCountChanged);
        entries[202].imgName = "another.jpg"_s; // its number stands for another file now
        entries.remove(200);
        entries.remove(10, 10);
        grid.setEntries(entries);
        QCOMPARE(grid.selectedIndexes(), QVector<int>{193});
        QCOMPARE(grid.entry(193).id, "204"_s);
        QCOMPARE(counts.takeLast().constFirst().toInt(), 1);
        QCOMPARE(bar->value(), 38 * row + 7);
        grid.createPhotoItemsBatch();
        QVERIFY(grid.cell(193)->selectButton()->isChecked());
        QTest::keyClick(&grid, Qt::Key_Left, Qt::ShiftModifier);
        QCOMPARE(grid.selectedIndexes(), (QVector<int>{192, 193})); // the keyboard is there, too

        grid.setEntries(entries.mid(0, 3)); // nothing that was seen is left
        QCOMPARE(bar->value(), 0);
        grid.setEntries({});
        QTest::keyClick(&grid, Qt::Key_End);
        QCOMPARE(grid.selectedIndexes(), QVector<int>());
    }

    void oldImagesNeverReachNewCells()
    {
        ThumbnailTableView grid;
        showActive(&grid);
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

    void goesAwayInMidFetch()
    {
        for (const bool asksFirst : {true, false}) {
            auto grid = std::make_unique<ThumbnailTableView>();
            showActive(grid.get());
            demo_.hold("image"_s, 2);
            grid->setEntries(photos(60));
            QTRY_COMPARE(demo_.held(), 2);
            if (asksFirst) {
                grid->stop();
                QTRY_VERIFY(grid->isStopped());
                grid->setEntries(photos(3));
                grid->loadVisiblePhotos();
                QVERIFY(grid->isStopped());
            }
            grid.reset();
            QCOMPARE(demo_.held(), 2); // not waited for
            demo_.release();
        }
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

    DemoClient demo_;
    QString url_; ///< of a picture that the service has
};

QTEST_MAIN(TestPhotoView)
#include "test_photoview.moc"
