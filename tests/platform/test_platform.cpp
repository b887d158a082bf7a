#include "platform/drives.h"
#include "platform/fileaccess.h"
#include "platform/pathform.h"
#include "platform/power.h"
#include "tests/support/datarows.h"
#include "tests/support/files.h"
#include "tests/support/text.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

#include <cstdio>

#ifdef Q_OS_WIN
#include "platform/longpath_win.h"

#include <windows.h>
#else
#include <fcntl.h>
#include <sys/file.h>
#endif

namespace {

/// What the other program does that the tests start: holds the file until its input ends.
int hold(const QString &path, const QByteArray &how)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadWrite))
        return 1;
#ifdef Q_OS_WIN
    Q_UNUSED(how) // open is enough
#else
    struct flock lock = {};
    lock.l_type = F_WRLCK;
    if (how == "region" ? fcntl(file.handle(), F_SETLK, &lock) != 0
                        : flock(file.handle(), LOCK_EX) != 0)
        return 1;
#endif
    puts("held");
    fflush(stdout);
    getchar();
    return 0;
}

} // namespace

class TestPlatform : public QObject
{
    Q_OBJECT

private slots:
    void keepsAwakeUntilTold()
    {
#ifdef Q_OS_WIN
        // The call tells the state that it replaces.
        platform::keepAwake();
        QCOMPARE(SetThreadExecutionState(ES_CONTINUOUS),
                 EXECUTION_STATE(ES_CONTINUOUS | ES_SYSTEM_REQUIRED | ES_DISPLAY_REQUIRED));
        platform::keepAwake();
        platform::allowSleep();
        QCOMPARE(SetThreadExecutionState(ES_CONTINUOUS), EXECUTION_STATE(ES_CONTINUOUS));
#else
        QSKIP("only Windows is kept awake");
#endif
    }

    void tellsDrives_data()
    {
        addColumns<QString, QString, bool>({"path", "root", "remote"});
#ifdef Q_OS_WIN
        newRow("own drive", "C:\\windows\\x", "C:/", false);
        // The test's session has this one on another machine.
        newRow("remote drive", "Y:\\photos\\gone.jpg", "Y:/", true);
        newRow("remote drive, small", "y:/photos", "y:/", true);
        newRow("no such drive", "Q:/photos", "Q:/", false);
        newRow("share", "\\\\nas\\photos", "", false);
        newRow("no drive", "photos", "", false);
#else
        newRow("mounted", "/proc/version", "/proc", false);
        newRow("gone", "/proc/gone/gone.jpg", "/proc", false);
#endif
        newRow("empty", "", "", false);
    }

    void tellsDrives()
    {
        QFETCH(QString, path);
        QTEST(platform::driveRoot(path), "root");
        QTEST(platform::isRemoteDrive(path), "remote");
    }

    void tellsWhoHoldsAFile_data()
    {
        QTest::addColumn<QString>("how");
        newRow("whole", "whole");
        newRow("region", "region");
    }

    void tellsWhoHoldsAFile()
    {
        QFETCH(QString, how);
        QTemporaryDir folder;
        QFile photo(folder.filePath("婚 1.jpg"_s));
        QVERIFY(photo.open(QIODevice::WriteOnly) && photo.write("photo") == 5);
        photo.close();
        QVERIFY(!platform::isInUse(photo.fileName()));
        QVERIFY(!platform::isInUse(folder.filePath("gone"_s)));

        QProcess other;
        other.start(QCoreApplication::applicationFilePath(), {"--hold"_s, photo.fileName(), how});
        QVERIFY(other.waitForReadyRead(60000));
        QCOMPARE(other.readAllStandardOutput().trimmed(), QByteArray("held"));
        QVERIFY(platform::isInUse(photo.fileName()));
        QVERIFY(platform::mayBeWritten(photo.fileName())); // another reason than a read-only mark
#ifdef Q_OS_WIN
        QVERIFY(!photo.remove());
#endif
        other.closeWriteChannel();
        QVERIFY(other.waitForFinished(60000));
        QVERIFY(!platform::isInUse(photo.fileName()));
        QVERIFY(photo.remove());
    }

    void knowsAFileByAnyPath()
    {
        QTemporaryDir folder;
        const QString photo = writeFile(folder.filePath("a/婚.jpg"_s), "photo");
        const QString same = writeFile(folder.filePath("a/b.jpg"_s), "photo");
        QVERIFY(platform::isSameFile(photo, folder.filePath("a/../a/./婚.jpg"_s)));
        if (linkFolder(folder.filePath("a"_s), folder.filePath("link"_s))) {
            QVERIFY(platform::isSameFile(photo, folder.filePath("link/婚.jpg"_s)));
            QVERIFY(platform::isSameFile(folder.filePath("a"_s), folder.filePath("link"_s)));
        }
        QVERIFY(!platform::isSameFile(photo, same));
        QVERIFY(!platform::isSameFile(photo, folder.path()));
        const QString gone = folder.filePath("gone"_s);
        QVERIFY(!platform::isSameFile(gone, gone));
    }

    void turnsWirePathsIntoLocalOnes()
    {
        for (const char *wire : {"\\\\nas\\photos\\2024", "D:\\photos\\a b", "D:\\x/y", ""}) {
            const QString path = QString::fromLatin1(wire);
#ifdef Q_OS_WIN
            QCOMPARE(platform::toLocalPath(path), path);
#else
            QCOMPARE(platform::toLocalPath(path),
                     QDir::fromNativeSeparators(path).replace(QLatin1Char('\\'), QLatin1Char('/')));
#endif
        }
        QVERIFY(platform::nameFits(QString(255, QLatin1Char('n'))));
        QVERIFY(!platform::nameFits(QString(256, QLatin1Char('n'))));
    }

#ifdef Q_OS_WIN
    void writesPathsBeyondTheLimit()
    {
        const QString drive = QDir::current().absolutePath().left(2);
        for (const auto &[path, expected] :
             {std::pair("C:/a/../b"_s, "\\\\?\\C:\\b"_s),
              {"C:\\a\\b. "_s, "\\\\?\\C:\\a\\b. "_s},
              {"//nas/photos/a"_s, "\\\\?\\UNC\\nas\\photos\\a"_s},
              {"\\\\nas\\photos"_s, "\\\\?\\UNC\\nas\\photos"_s},
              {"\\photos\\a"_s, "\\\\?\\"_s + drive + "\\photos\\a"_s},
              { "a"_s,
                "\\\\?\\"_s + QDir::toNativeSeparators(QDir().absoluteFilePath("a"_s)) }})
            QCOMPARE(QString::fromStdWString(platform::longPath(path)), expected);
    }
#endif
};

int main(int argc, char *argv[])
{
    QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() == 4 && arguments.at(1) == QLatin1String("--hold"))
        return hold(arguments.at(2), arguments.at(3).toLatin1());
    TestPlatform test;
    return QTest::qExec(&test, argc, argv);
}

#include "test_platform.moc"
