#include "files/filecopy.h"
#include "files/filewriting.h"
#include "platform/fileaccess.h"
#include "tests/support/datarows.h"
#include "tests/support/files.h"
#include "tests/support/smalldisk.h"
#include "tests/support/text.h"

#include <QDateTime>
#include <QDir>
#include <QTemporaryDir>
#include <QThreadPool>
#include <QtTest>

#include <atomic>
#include <stdexcept>

#ifdef Q_OS_UNIX
#include <sys/wait.h>
#include <unistd.h>
#endif

class TestFileCopy : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        folder_ = std::make_unique<QTemporaryDir>();
        QVERIFY(folder_->isValid());
    }

    void cleanup() { folder_.reset(); }

    void copies_data()
    {
        addColumns<int, QString>({"bytes", "name"});
        newRow("one byte", 1, "a.jpg");
        newRow("one step", 4 * 1024 * 1024, "a.jpg");
        newRow("steps and a bit", 9 * 1024 * 1024 + 7, "a.jpg");
        newRow("odd name", 1000, "婚 #1 100%&+😀.jpg");
        newRow("deep folder", 1000,
               QString(100, QLatin1Char('d')).append(QLatin1Char('/')).repeated(3) + "婚.jpg"_s);
        newRow("long name", 1000, QString(200, QLatin1Char('n')) + ".jpg"_s);
    }

    void copies()
    {
        QFETCH(int, bytes);
        QFETCH(QString, name);
        const QByteArray content = write("source"_s, bytes);
        QVERIFY(QDir().mkpath(QFileInfo(path(name)).path()));
        qint64 told = 0;
        platform::TransferControl control;
        control.progress = [&told](qint64 copied) {
            QVERIFY(copied > told);
            told = copied;
        };
        QCOMPARE(copyFile(path("source"_s), path(name), control), CopyOutcome::Copied);
        QCOMPARE(told, qint64(bytes));
        QCOMPARE(read(name), content);
        QCOMPARE(filesBelow(folder_->path()).size(), 2);
    }

    void keepsTimeAndDropsReadOnlyMark()
    {
        write("source"_s, 100);
        const QDateTime shot(QDate(2024, 3, 7), QTime(10, 20, 30));
        QFile source(path("source"_s));
        QVERIFY(source.open(QIODevice::ReadWrite));
        QVERIFY(source.setFileTime(shot, QFileDevice::FileModificationTime));
        QVERIFY(source.setPermissions(QFile::ReadOwner | QFile::ReadUser));
        source.close();
        QCOMPARE(copyFile(source.fileName(), path("t"_s)), CopyOutcome::Copied);
        QCOMPARE(QFileInfo(path("t"_s)).lastModified(), shot);
        QVERIFY(platform::mayBeWritten(path("t"_s)));
        QVERIFY(!platform::mayBeWritten(source.fileName()));
    }

    void replacesAnEarlierFile()
    {
        const QByteArray content = write("source"_s, 1000);
        write("t"_s, 5000);
        QCOMPARE(copyFile(path("source"_s), path("t"_s)), CopyOutcome::Copied);
        QCOMPARE(read("t"_s), content);
        QCOMPARE(entries().size(), 2);
    }

    void cancelledAtAnyStepLeavesTheEarlierFile()
    {
        write("source"_s, 9 * 1024 * 1024);
        const QByteArray earlier = write("t"_s, 10);
        int looks = 0;
        platform::TransferControl counting;
        counting.cancelled = [&looks] {
            ++looks;
            return false;
        };
        QCOMPARE(copyFile(path("source"_s), path("other"_s), counting), CopyOutcome::Copied);
        QVERIFY(QFile::remove(path("other"_s)));
        // Before each of the three steps, and before the rename; Windows has steps of its own.
#ifdef Q_OS_WIN
        QVERIFY(looks >= 3);
#else
        QVERIFY(looks >= 4);
#endif

        for (int cancelAt = 1; cancelAt <= looks; ++cancelAt) {
            int look = 0;
            platform::TransferControl control;
            control.cancelled = [&look, cancelAt] { return ++look >= cancelAt; };
            QCOMPARE(copyFile(path("source"_s), path("t"_s), control), CopyOutcome::Cancelled);
            QCOMPARE(read("t"_s), earlier);
            QCOMPARE(entries(), (QStringList{"source"_s, "t"_s}));
        }
    }

    void failuresLeaveTheEarlierFile_data()
    {
        addColumns<QString, QString, int>({"source", "target", "outcome"});
        newRow("source gone", "gone", "t", int(CopyOutcome::Failed));
        newRow("source is a folder", ".", "t", int(CopyOutcome::Failed));
        newRow("source is empty", "empty", "t", int(CopyOutcome::Empty));
        newRow("folder gone", "source", "gone/t", int(CopyOutcome::Failed));
        newRow("target is a folder", "source", "folder", int(CopyOutcome::Failed));
    }

    void failuresLeaveTheEarlierFile()
    {
        QFETCH(QString, source);
        QFETCH(QString, target);
        write("source"_s, 1000);
        write("empty"_s, 0);
        const QByteArray earlier = write("t"_s, 10);
        QVERIFY(QDir(folder_->path()).mkdir("folder"_s));
        QTEST(int(copyFile(path(source), path(target))), "outcome");
        QCOMPARE(read("t"_s), earlier);
        QCOMPARE(entries().size(), 3);
        QVERIFY(
            QDir(path("folder"_s)).isEmpty(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot));
    }

    void fullDiskLeavesTheEarlierFile()
    {
        SmallDisk disk(path("disk"_s), 2);
        if (!disk.isMounted())
            QSKIP("mounting a small disk needs administrator rights");
        write("source"_s, 5 * 1024 * 1024);
        const QByteArray earlier = write("disk/t"_s, 10);
        QCOMPARE(copyFile(path("source"_s), path("disk/t"_s)), CopyOutcome::Failed);
        QCOMPARE(read("disk/t"_s), earlier);
        QCOMPARE(QDir(path("disk"_s)).entryList(QDir::Files | QDir::Hidden), QStringList("t"_s));
        const QByteArray content = write("small"_s, 1024 * 1024);
        QCOMPARE(copyFile(path("small"_s), path("disk/t"_s)), CopyOutcome::Copied);
        QCOMPARE(read("disk/t"_s), content);
    }

    void noticesThatTheSourceGrew()
    {
        write("source"_s, 5 * 1024 * 1024);
        platform::TransferControl control;
        control.progress = [&](qint64 copied) {
            // All that there was is copied: the camera goes on writing.
            if (copied == qint64(5) * 1024 * 1024) {
                QFile source(path("source"_s));
                if (source.open(QIODevice::Append))
                    source.write(QByteArray(100, 'x'));
            }
        };
        const CopyOutcome outcome = copyFile(path("source"_s), path("t"_s), control);
        // Copied whole with what came late, or refused; never the shorter file under the target's
        // name.
        if (outcome == CopyOutcome::Copied)
            QCOMPARE(read("t"_s), read("source"_s));
        else
            QCOMPARE(entries(), QStringList("source"_s));
    }

    void noticesThatTheSourceWasOverwritten_data()
    {
        addColumns<int, int>({"bytes", "whenCopied"});
        newRow("small", 1000, 1000);
        newRow("half-way", 9 * 1024 * 1024, 4 * 1024 * 1024);
        newRow("with the last bytes", 9 * 1024 * 1024, 9 * 1024 * 1024);
    }

    void noticesThatTheSourceWasOverwritten()
    {
        QFETCH(int, bytes);
        QFETCH(int, whenCopied);
        write("source"_s, bytes);
        const QByteArray earlier = write("t"_s, 10);
        QFile source(path("source"_s));
        QVERIFY(source.open(QIODevice::ReadWrite));
        QVERIFY(source.setFileTime(QDateTime(QDate(2024, 3, 7), QTime(1, 2)),
                                   QFileDevice::FileModificationTime));
        bool overwritten = false;
        platform::TransferControl control;
        control.progress = [&](qint64 copied) {
            if (copied < whenCopied || overwritten)
                return;
            overwritten = source.write(QByteArray(100, 'x')) == 100 && source.flush();
        };
        QCOMPARE(copyFile(path("source"_s), path("t"_s), control), CopyOutcome::SourceChanged);
        QVERIFY(overwritten);
        QCOMPARE(read("t"_s), earlier);
        QCOMPARE(entries(), (QStringList{"source"_s, "t"_s}));
    }

    void aKilledCopyLeavesNoTarget()
    {
#ifdef Q_OS_UNIX
        write("source"_s, 9 * 1024 * 1024);
        const QByteArray earlier = write("t"_s, 10);
        const pid_t child = fork();
        if (child == 0) {
            platform::TransferControl control;
            control.progress = [](qint64) { _exit(7); };
            copyFile(path("source"_s), path("t"_s), control);
            _exit(0);
        }
        int status = 0;
        QCOMPARE(waitpid(child, &status, 0), child);
        QCOMPARE(WEXITSTATUS(status), 7);
        QCOMPARE(read("t"_s), earlier);
        const QStringList photos = QDir(folder_->path()).entryList({"*.jpg"_s, "*raw"_s});
        QVERIFY(photos.isEmpty());
        QCOMPARE(entries().size(), 3); // the temporary file, for removeStaleTemporaries()
#else
        QSKIP("needs fork");
#endif
    }

    void removesOnlyItsOwnOldLeftovers()
    {
        const QString ours = QFileInfo(temporaryPathIn(folder_->path())).fileName();
        const QStringList others = {"a.part"_s, "~$12.part"_s, "~$letter.docx"_s};
        for (const QString &name : others)
            write(name, 10);
        write(ours, 10);
        const QDateTime now = QDateTime::currentDateTimeUtc();
        removeStaleTemporaries(folder_->path(), now.addSecs(23 * 60 * 60));
        QCOMPARE(entries().size(), 4);
        removeStaleTemporaries(folder_->path(), now.addSecs(25 * 60 * 60));
        QCOMPARE(entries(), others);
    }

    void readOnlyFilesArePreserved()
    {
        write("t"_s, 10);
        QVERIFY(platform::mayBeWritten(path("t"_s)));
        QVERIFY(platform::mayBeRemoved(path("t"_s)));
        QVERIFY(QFile::setPermissions(path("t"_s), QFile::ReadOwner | QFile::ReadOther));
        QVERIFY(!platform::mayBeWritten(path("t"_s)));
        QVERIFY(!platform::mayBeRemoved(path("t"_s)));
        QVERIFY(!platform::mayBeRemoved(folder_->path()));
        QVERIFY(!platform::mayBeRemoved(path("gone"_s)));
    }

    void makesTheSameFoldersInManyThreads()
    {
        QThreadPool threads;
        threads.setMaxThreadCount(4);
        for (int round = 0; round < 50; ++round) {
            const QString deep = path("%1/a/婚/c/d/"_s.arg(round));
            std::atomic<int> waiting{4};
            std::atomic<int> made{0};
            for (int thread = 0; thread < 4; ++thread) {
                threads.start([&] {
                    --waiting;
                    while (waiting > 0)
                        QThread::yieldCurrentThread();
                    made += makeFolder(deep) && QFileInfo(deep).isDir();
                });
            }
            threads.waitForDone();
            QCOMPARE(made.load(), 4);
        }
        write("file"_s, 3);
        QVERIFY(!makeFolder(path("file"_s)) && !makeFolder(path("file/a/b"_s)));
        QCOMPARE(read("file"_s).size(), 3);
    }

    void writesWholeFilesOrNone_data()
    {
        addColumns<QString, bool>({"writing", "written"});
        newRow("whole", "whole", true);
        newRow("gives up half-way", "half", false);
        newRow("writes nothing", "nothing", false);
        newRow("throws", "throw", false);
    }

    void writesWholeFilesOrNone()
    {
        QFETCH(QString, writing);
        QFETCH(bool, written);
        const QByteArray earlier = write("sheet.txt"_s, 100);
        const QByteArray later("later");
        const auto make = [&](const QString &temporary) {
            if (writing == QLatin1String("nothing"))
                return true;
            QFile file(temporary);
            if (!file.open(QIODevice::WriteOnly) || file.write(later) != later.size())
                return false;
            file.close();
            if (writing == QLatin1String("throw"))
                throw std::runtime_error("no more");
            return writing == QLatin1String("whole");
        };
        bool result = false;
        try {
            result = writeWholeFile(path("sheet.txt"_s), make);
        } catch (const std::runtime_error &) {
            QCOMPARE(writing, "throw"_s);
        }
        QCOMPARE(result, written);
        QCOMPARE(read("sheet.txt"_s), written ? later : earlier);
        QCOMPARE(entries(), QStringList{"sheet.txt"_s});
    }

private:
    QString path(const QString &name) const
    {
        return folder_->filePath(name);
    }

    QByteArray write(const QString &name, int bytes) const
    {
        QByteArray content(bytes, '\0');
        for (int i = 0; i < bytes; ++i)
            content[i] = char((i * 31 + i / 251) & 0xff);
        writeFile(path(name), content);
        return content;
    }

    QByteArray read(const QString &name) const
    {
        return readFile(path(name));
    }

    QStringList entries() const
    {
        return QDir(folder_->path()).entryList(QDir::Files | QDir::Hidden);
    }

    std::unique_ptr<QTemporaryDir> folder_;
};

QTEST_GUILESS_MAIN(TestFileCopy)
#include "test_filecopy.moc"
