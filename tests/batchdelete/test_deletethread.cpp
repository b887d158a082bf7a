#include "batchdelete/batchdeletethread.h"
#include "tests/support/files.h"
#include "tests/support/smalldisk.h"
#include "tests/support/text.h"

#include <QFile>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

#include <utility>

#ifdef Q_OS_LINUX
#include <sys/mount.h>
#endif
#ifdef Q_OS_UNIX
#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>
#endif

/// Each row of the table of results, met with real files.
class TestDeleteThread : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        folder_ = std::make_unique<QTemporaryDir>();
        path_ = folder_->filePath("a.jpg"_s);
        writeFile(path_);
    }
    void removes()
    {
        QCOMPARE(outcome(), "2  gone"_s);
        QVERIFY(!processed_.missing);
    }
    void whatIsGoneCountsAsDeleted()
    {
        QVERIFY(QFile::remove(path_));
        QCOMPARE(outcome(), "2  gone"_s);
        QVERIFY(processed_.missing);
    }
    void aShareThatIsGone()
    {
        for (const char *share : {"//192.0.2.1/photos", "\\\\192.0.2.1\\photos"}) {
            path_ = QLatin1String(share) + "/order/a.jpg"_s;
            QCOMPARE(outcome(), "6 网络路径无法访问 gone"_s);
            QVERIFY(!processed_.missing);
        }
    }
    void aReadOnlyFileStays()
    {
        QVERIFY(QFile::setPermissions(path_, QFile::ReadOwner));
        QCOMPARE(outcome(), "7 没有删除权限 stays"_s);
        QFile::setPermissions(path_, QFile::ReadOwner | QFile::WriteOwner);
    }
    void aFolderStays()
    {
        path_ = folder_->path();
        QCOMPARE(outcome(), "7 没有删除权限 stays"_s);
    }
    void aFileInUseStays()
    {
#ifdef Q_OS_UNIX
        const int held = open(QFile::encodeName(path_).constData(), O_RDWR);
        QCOMPARE(flock(held, LOCK_EX), 0);
        QCOMPARE(outcome(), "5 文件被其他程序占用 stays"_s);
        close(held);
#else
        QFile held(path_);
        QVERIFY(held.open(QIODevice::ReadOnly));
        QCOMPARE(outcome(), "5 文件被其他程序占用 stays"_s);
        held.close();
#endif
        QCOMPARE(outcome(), "2  gone"_s);
    }
    void whatCannotBeExplained()
    {
#ifdef Q_OS_LINUX
        // A file that something is mounted on cannot be removed, by nobody's fault.
        const QByteArray name = QFile::encodeName(path_);
        if (mount(name.constData(), name.constData(), nullptr, MS_BIND, nullptr) != 0)
            QSKIP("mounting is not allowed here");
        QCOMPARE(outcome(), "8 删除失败，未知原因 stays"_s);
        QCOMPARE(umount(name.constData()), 0);
#else
        QSKIP("nothing of the sort here");
#endif
    }
    void aLinkIsRemovedAsALink()
    {
        const QString link = folder_->filePath("link"_s);
        if (!QFile::link(path_, link))
            QSKIP("no links here");
        QVERIFY(QFile::setPermissions(path_, QFile::ReadOwner));
        const QString target = std::exchange(path_, link);
        QCOMPARE(outcome(), "2  gone"_s);
        QVERIFY(QFile::exists(target));
    }
    void onceStoppedItIsSilent()
    {
        BatchdeleteThread thread("81"_s, {}, path_);
        QSignalSpy processed(&thread, &BatchdeleteThread::fileProcessed);
        thread.requestStop();
        thread.start();
        QVERIFY(thread.wait());
        QCoreApplication::processEvents();
        QVERIFY(processed.isEmpty());
    }

private:
    /// Runs a thread on path_: its state, its reason and what became of the file.
    QString outcome()
    {
        BatchDeleteFileInfo file;
        file.reason = "earlier"_s;
        BatchdeleteThread thread("81"_s, file, path_);
        QString orderPhotoId;
        connect(&thread, &BatchdeleteThread::fileProcessed, this,
                [&](const QString &id, const BatchDeleteFileInfo &processed) {
                    orderPhotoId = id;
                    processed_ = processed;
                });
        thread.start();
        thread.wait();
        QCoreApplication::processEvents();
        if (orderPhotoId != "81"_s)
            return "no result"_s;
        return "%1 %2 %3"_s.arg(processed_.state)
            .arg(processed_.reason, QFileInfo::exists(path_) ? "stays"_s : "gone"_s);
    }

    std::unique_ptr<QTemporaryDir> folder_;
    QString path_;
    BatchDeleteFileInfo processed_;
};

QTEST_GUILESS_MAIN(TestDeleteThread)
#include "test_deletethread.moc"
