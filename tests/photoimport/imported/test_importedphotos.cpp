#include "photoimport/imported/photodeletion.h"
#include "photoimport/imported/tfdellocalphotoimg.h"
#include "photoimport/imported/tfthumbnailthread.h"
#include "tests/support/files.h"
#include "tests/support/patience.h"
#include "tests/support/text.h"

#include <QDir>
#include <QTemporaryDir>

#include <future>
#include <utility>

namespace {

const QString share = "\\\\nas\\share"_s;

PhotoOrder order(const QString &importPath)
{
    PhotoOrder made;
    made.info.id = "1"_s;
    made.info.importPath = importPath;
    return made;
}

} // namespace

/// What becomes of photos that an order has already.
class TestImportedPhotos : public QObject
{
    Q_OBJECT

private slots:
    void deletesAnOriginalAndItsVariants()
    {
        TFDelLocalPhotoImg deletion;
        // Neither the share's name nor the order's turns the path of one order into another's.
        for (const char *above : {"\\\\nas\\all\\90", "\\\\nas\\all\\190\\", "//nas/shots/all"}) {
            const QString home = QString::fromLatin1(above);
            const QString inOrder = home + (home.endsWith(QLatin1Char('\\')) ? QString() : "/"_s);
            deletion.setDelPhotos({inOrder + "all/a.jpg"_s, inOrder + "b.mp4"_s, home,
                                   "//nas/all/91/all/a.jpg"_s, inOrder + "../91/all/c.jpg"_s},
                                  home);
            QStringList expected;
            for (const char *name : {"all\\a.jpg", "90\\a.jpg", "190\\a.jpg", "1920\\a.jpg",
                                     "b.mp4", "b.mp4", "b.mp4", "b.mp4"})
                expected << wireForm(inOrder) + QLatin1String(name);
            QCOMPARE(deletion.paths(), expected);
        }

        const QTemporaryDir root;
        const QDir order(root.path());
        for (const char *folder : {"all", "90", "1920"})
            writeFile(order.filePath(QLatin1String(folder) + "/a.jpg"_s));
        for (const char *other :
             {"all/b.jpg", "190/b.jpg", "all/protected.jpg", "90/protected.jpg"})
            writeFile(order.filePath(QLatin1String(other)));
        const QString readOnly = order.filePath("all/protected.jpg"_s);
        QVERIFY(QFile::setPermissions(readOnly, QFileDevice::ReadOwner));

        deletion.setDelPhotos({order.filePath("all/a.jpg"_s), readOnly}, root.path());
        deletion.start();
        QVERIFY(deletion.wait());
        QVERIFY(deletion.paths().isEmpty());
        QCOMPARE(filesBelow(root.path()).join(QLatin1Char(' ')),
                 "190/b.jpg all/b.jpg all/protected.jpg"_s);
    }

    void deletionsStayInTheFolder()
    {
        const QStringList names{"a.jpg"_s, "..\\..\\b.jpg"_s};
        DeletionRequest request = deletionOf(order(share), {}, names, PhotoMode::Photos);
        QCOMPARE(request.paths.at(0), share + "\\all\\a.jpg"_s);
        QCOMPARE(request.paths.at(1).count(QLatin1Char('\\')),
                 request.paths.at(0).count(QLatin1Char('\\')));
        request = deletionOf(order(share), {}, names, PhotoMode::TrialVideos);
        QCOMPARE(request.paths.at(0), share + "\\试拍视频\\a.jpg"_s);
        QVERIFY(deletionOf(order(QString()), {}, names, PhotoMode::Photos).paths.isEmpty());

        PhotoDeletion deletion;
        QString told;
        connect(
            &deletion, &PhotoDeletion::refused, this,
            [&told](const DeletionRequest &, const ServiceReply &reply) { told = reply.message; });
        QVERIFY(!deletion.start(request, {"elsewhere"_s, {}, {}}) && !deletion.isActive());
        QCOMPARE(told, orderqueries::otherBranchText(request.orderName));
    }

    void theThumbnailThreadReadsWhatIsWantedLast()
    {
        tfthumbnailthread thread;
        std::promise<void> readOne;
        std::promise<void> mayGoOn;
        connect(
            &thread, &tfthumbnailthread::thumbnailReady, &thread,
            [&, isFirst = true]() mutable {
                if (!std::exchange(isFirst, false))
                    return;
                readOne.set_value();
                mayGoOn.get_future().wait();
            },
            Qt::DirectConnection);
        QStringList read;
        connect(&thread, &tfthumbnailthread::thumbnailReady, this,
                [&read](const QString &path) { read.append(path); });
        thread.want({"a"_s, "b"_s, "c"_s}, 120);
        readOne.get_future().wait();
        thread.want({"c"_s}, 120); // scrolled past b meanwhile
        mayGoOn.set_value();
        QTRY_COMPARE(read, (QStringList{"a"_s, "c"_s}));
        thread.stop();
        QVERIFY(thread.wait());
        thread.want({"d"_s}, 120);
        QVERIFY(!thread.isRunning());
    }
};

QTEST_GUILESS_MAIN(TestImportedPhotos)
#include "test_importedphotos.moc"
