#include "batchdelete/run/batchdeletethread.h"
#include "platform/folderlisting.h"
#include "tests/support/datarows.h"
#include "tests/support/files.h"
#include "tests/support/text.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

#include <utility>

#ifdef Q_OS_LINUX
#include <sys/mount.h>
#endif
#ifdef Q_OS_UNIX
#include <sys/file.h>
#endif

/// Each row of the table of results, met with real files.
class TestDeleteThread : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        folder_ = std::make_unique<QTemporaryDir>();
        path_ = writeFile(folder_->filePath("root/order/原片/a.jpg"_s));
    }
    void removesWhatIsThere()
    {
        QCOMPARE(outcome(), "2  gone"_s);
        QCOMPARE(outcome(), "2  missing gone"_s); // again
        QVERIFY(QDir(folder_->filePath("root/order"_s)).removeRecursively());
        QCOMPARE(outcome(), "2  missing gone"_s);
    }
    void aShareThatIsGone()
    {
        for (const char *share : {"//192.0.2.1/photos", "\\\\192.0.2.1\\photos"}) {
            path_ = QLatin1String(share) + "/order/a.jpg"_s;
            QCOMPARE(outcome(), "6 网络路径无法访问 gone"_s);
        }
    }
    void whatIsProtectedStays()
    {
        QVERIFY(QFile::setPermissions(path_, QFile::ReadOwner));
        QCOMPARE(outcome(), "7 没有删除权限 stays"_s);
        QFile::setPermissions(path_, QFile::ReadOwner | QFile::WriteOwner);
        path_ = folder_->path(); // no file
        QCOMPARE(outcome(), "7 没有删除权限 stays"_s);
    }
    void whatTheSystemDeniesStays()
    {
        // The file is writable; its folder lets nothing go.
        const QString folder = QFileInfo(path_).path();
        if (QProcess::execute("chattr"_s, {"+a"_s, folder}) != 0)
            QSKIP("no such folders here");
        const QString denied = outcome();
        QProcess::execute("chattr"_s, {"-a"_s, folder});
        QCOMPARE(denied, "7 没有删除权限 stays"_s);
    }
    void aFileInUseStays()
    {
        QFile held(path_);
        QVERIFY(held.open(QIODevice::ReadWrite));
#ifdef Q_OS_UNIX
        QCOMPARE(flock(held.handle(), LOCK_EX), 0);
#endif
        QCOMPARE(outcome(), "5 文件被其他程序占用 stays"_s);
        held.close();
        QCOMPARE(outcome(), "2  gone"_s);
    }
    void whatCannotBeExplained()
    {
#ifdef Q_OS_LINUX
        // What the system gives no answer about is not gone.
        const QString real = std::exchange(path_, path_ + QString(300, QLatin1Char('x')));
        QCOMPARE(outcome(), "8 删除失败，未知原因 gone"_s);
        // A file that something is mounted on cannot be removed, by nobody's fault.
        path_ = real;
        const QByteArray name = QFile::encodeName(path_);
        if (mount(name.constData(), name.constData(), nullptr, MS_BIND, nullptr) != 0)
            QSKIP("mounting is not allowed here");
        QCOMPARE(outcome(), "8 删除失败，未知原因 stays"_s);
        QCOMPARE(umount(name.constData()), 0);
#else
        QSKIP("nothing of the sort here");
#endif
    }
    void whatLiesBehindALinkStays_data()
    {
        QTest::addColumn<QString>("folder");
        newRow("the file's", "root/order/原片");
        newRow("the order's", "root/order");
        newRow("above the order's", "root");
    }
    void whatLiesBehindALinkStays()
    {
        // Since the scan the folder has been moved away, and a link put in its place.
        QFETCH(QString, folder);
        folder = folder_->filePath(folder);
        QVERIFY(QFile::rename(folder, folder + "-moved"_s));
        if (!linkFolder(folder + "-moved"_s, folder))
            QSKIP("no links to folders here");
        QCOMPARE(outcome(), "4 目录已变成链接，不删除: %1 stays"_s.arg(folder));
    }
    void whatHasChangedStays_data()
    {
        addColumns<QByteArray, int>({"content", "laterMs"});
        newRow("size", QByteArray("more"), 0);
        newRow("time", QByteArray(), 1);
    }
    void whatHasChangedStays()
    {
        QFETCH(QByteArray, content);
        QFETCH(int, laterMs);
        list();
        const QDateTime then = QFileInfo(path_).lastModified();
        QVERIFY(QFile::remove(path_));
        writeFile(path_, content);
        QFile file(path_);
        QVERIFY(file.open(QIODevice::ReadWrite) &&
                file.setFileTime(then.addMSecs(laterMs), QFileDevice::FileModificationTime));
        file.close();
        QCOMPARE(outcomeAsListed(), "4 文件已变化，未删除 stays"_s);
    }
    void aLinkIsRemovedAsALink()
    {
        const QString link = folder_->filePath("root/order/link"_s);
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
    /// Runs a thread on path_: the file's state, its reason and what became of it.
    QString outcome()
    {
        list();
        return outcomeAsListed();
    }

    void list()
    {
        const QFileInfo itself(path_);
        platform::listFolder(itself.path(), [&](const platform::FolderEntry &entry) {
            if (entry.name == itself.fileName())
                listed_ = entry;
            return true;
        });
    }

    QString outcomeAsListed()
    {
        BatchDeleteFileInfo file;
        file.folderPath = QFileInfo(path_).path();
        file.rootLength = folder_->filePath("root/order"_s).size();
        file.size = listed_.size;
        file.modified = listed_.modified;
        file.reason = "earlier"_s;
        file.missing = true;
        BatchdeleteThread thread("81"_s, file, path_, {folder_->filePath("root"_s)});
        QString outcome = "no result"_s;
        connect(&thread, &BatchdeleteThread::fileProcessed, this,
                [&](const QString &id, const BatchDeleteFileInfo &processed) {
                    if (id == "81"_s)
                        outcome = "%1 %2%3"_s.arg(processed.state)
                                      .arg(processed.reason,
                                           processed.missing ? " missing"_s : QString());
                });
        thread.start();
        thread.wait();
        QCoreApplication::processEvents();
        return outcome + (QFileInfo::exists(path_) ? " stays"_s : " gone"_s);
    }

    std::unique_ptr<QTemporaryDir> folder_;
    QString path_;
    platform::FolderEntry listed_;
};

QTEST_GUILESS_MAIN(TestDeleteThread)
#include "test_deletethread.moc"
