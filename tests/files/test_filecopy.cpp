#include "files/contenthash.h"
#include "files/filecopy.h"
#include "platform/fileaccess.h"
#include "tests/support/datarows.h"
#include "tests/support/files.h"
#include "tests/support/smalldisk.h"
#include "tests/support/text.h"

#include <QDateTime>
#include <QDir>
#include <QTemporaryDir>
#include <QtTest>

#include <memory>

#ifdef Q_OS_UNIX
#include <sys/wait.h>
#include <unistd.h>
#endif

Q_DECLARE_METATYPE(Verification)

class TestFileCopy : public QObject
{
    Q_OBJECT

private slots:
    /// What holds of a copy holds of both ways to make it.
    void initTestCase_data()
    {
        addColumns<Verification>({"verification"});
        newRow("read back", Verification::ReadBack);
        newRow("size", Verification::Size);
    }

    void init()
    {
        folder_ = std::make_unique<QTemporaryDir>();
        QVERIFY(folder_->isValid());
    }

    void cleanup() { folder_.reset(); }

    void copies_data()
    {
        addColumns<int, QString>({"bytes", "name"});
        for (const int bytes : {1, 4095, 4096, 4097, 4 << 20, (8 << 20) + 1})
            newRow(qPrintable(QString::number(bytes)), bytes, "a.jpg");
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
        QCOMPARE(copy(path("source"_s), path(name), control), CopyOutcome::Copied);
        QCOMPARE(told, qint64(bytes));
        QCOMPARE(read(name), content);
        QCOMPARE(filesBelow(folder_->path()).size(), 2);
        QCOMPARE(last_.bytes, qint64(bytes));
        if (!isReadBack()) {
            QCOMPARE(last_.proof, Proof::Size);
            QVERIFY(last_.hash.isEmpty());
            return;
        }
        const ContentReading reading = readContent(path(name));
        QCOMPARE(last_.hash, reading.hash);
        QCOMPARE(last_.proof, reading.proof);
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
        QCOMPARE(copy(source.fileName(), path("t"_s)), CopyOutcome::Copied);
        QCOMPARE(QFileInfo(path("t"_s)).lastModified(), shot);
        QVERIFY(platform::mayBeWritten(path("t"_s)));
        QVERIFY(!platform::mayBeWritten(source.fileName()));
    }

    void replacesAnEarlierFile()
    {
        const QByteArray content = write("source"_s, 1000);
        write("t"_s, 5000);
        QCOMPARE(copy(path("source"_s), path("t"_s)), CopyOutcome::Copied);
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
        QCOMPARE(copy(path("source"_s), path("other"_s), counting), CopyOutcome::Copied);
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
            QCOMPARE(copy(path("source"_s), path("t"_s), control), CopyOutcome::Cancelled);
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
        QTEST(int(copy(path(source), path(target))), "outcome");
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
        QCOMPARE(copy(path("source"_s), path("disk/t"_s)), CopyOutcome::Failed);
        QCOMPARE(read("disk/t"_s), earlier);
        QCOMPARE(QDir(path("disk"_s)).entryList(QDir::Files | QDir::Hidden), QStringList("t"_s));
        const QByteArray content = write("small"_s, 1024 * 1024);
        QCOMPARE(copy(path("small"_s), path("disk/t"_s)), CopyOutcome::Copied);
        QCOMPARE(read("disk/t"_s), content);
        // Such a disk is nothing but memory.
        QCOMPARE(last_.proof, isReadBack() ? Proof::Cache : Proof::Size);
    }

    void noticesThatTheSourceGrew()
    {
        write("source"_s, 5 * 1024 * 1024);
        platform::TransferControl control;
        control.progress = [&](qint64 copied) {
            // All that there was is copied: the camera goes on writing.
            if (readOf(copied) == qint64(5) * 1024 * 1024) {
                QFile source(path("source"_s));
                if (source.open(QIODevice::Append))
                    source.write(QByteArray(100, 'x'));
            }
        };
        const CopyOutcome outcome = copy(path("source"_s), path("t"_s), control);
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
            if (readOf(copied) < whenCopied || overwritten)
                return;
            overwritten = source.write(QByteArray(100, 'x')) == 100 && source.flush();
        };
        QCOMPARE(copy(path("source"_s), path("t"_s), control), CopyOutcome::SourceChanged);
        QVERIFY(overwritten);
        QCOMPARE(read("t"_s), earlier);
        QCOMPARE(entries(), (QStringList{"source"_s, "t"_s}));
    }

    void noticesThatTheSourceWasReplaced()
    {
        if (!isReadBack())
            QSKIP("the system's own copying holds on to the file that it began with");
        write("source"_s, 9 << 20);
        write("other"_s, 9 << 20);
        const QDateTime shot(QDate(2024, 3, 7), QTime(1, 2));
        for (const QString &name : {"source"_s, "other"_s}) {
            QFile file(path(name));
            QVERIFY(file.open(QIODevice::ReadWrite));
            QVERIFY(file.setFileTime(shot, QFileDevice::FileModificationTime));
        }
        bool replaced = false;
        platform::TransferControl control;
        control.progress = [&](qint64) {
            replaced = replaced || (QFile::rename(path("source"_s), path("moved"_s)) &&
                                    QFile::rename(path("other"_s), path("source"_s)));
        };
        QCOMPARE(copy(path("source"_s), path("t"_s), control), CopyOutcome::SourceChanged);
        QVERIFY(replaced);
        QCOMPARE(entries(), (QStringList{"moved"_s, "source"_s}));
    }

    void noticesThatTheSourceWasCutShort()
    {
        write("source"_s, 9 << 20);
        platform::TransferControl control;
        control.progress = [&](qint64) { QFile::resize(path("source"_s), 3 << 20); };
        const CopyOutcome outcome = copy(path("source"_s), path("t"_s), control);
#ifdef Q_OS_WIN
        QVERIFY(outcome != CopyOutcome::Copied || read("t"_s) == read("source"_s));
#else
        QVERIFY(outcome == CopyOutcome::SourceChanged || outcome == CopyOutcome::SizeDiffers);
        QCOMPARE(entries(), QStringList("source"_s));
#endif
    }

    /// The disk keeps another byte than it was given.
    void noticesDamageOnTheMedium_data()
    {
        addColumns<int, int>({"bytes", "damaged"});
        newRow("first byte", 9 << 20, 0);
        newRow("half-way", 9 << 20, (4 << 20) + 77);
        newRow("last byte", (9 << 20) + 1, 9 << 20);
        newRow("small file", 100, 50);
    }

    void noticesDamageOnTheMedium()
    {
        if (!isReadBack())
            QSKIP("looks at the size alone");
        QFETCH(int, bytes);
        QFETCH(int, damaged);
        write("source"_s, bytes);
        const QByteArray earlier = write("t"_s, 10);
        bool isDamaged = false;
        platform::TransferControl control;
        control.cancelled = [&] {
            QFile file(path(entries().filter(".part"_s).value(0)));
            if (isDamaged || file.size() != bytes || !file.open(QIODevice::ReadWrite))
                return false;
            char byte = 0;
            isDamaged = file.seek(damaged) && file.getChar(&byte) && file.seek(damaged) &&
                        file.putChar(char(byte ^ 4)) && file.flush();
            return false;
        };
        QCOMPARE(copy(path("source"_s), path("t"_s), control), CopyOutcome::ContentDiffers);
        QVERIFY(isDamaged);
        QCOMPARE(last_.proof, Proof::None);
        QCOMPARE(read("t"_s), earlier);
        QCOMPARE(entries(), (QStringList{"source"_s, "t"_s}));
        QCOMPARE(copyProblem(CopyOutcome::ContentDiffers, path("source"_s), path("t"_s)),
                 "文件拷贝后验证失败: "_s + path("t"_s));
    }

    void killedBetweenAnyTwoStepsLeavesTheEarlierFile()
    {
#ifdef Q_OS_UNIX
        const QByteArray content = write("source"_s, 9 << 20);
        const QByteArray earlier = write("t"_s, 10);
        int killAt = 0;
        for (bool wasKilled = true; wasKilled; ++killAt) {
            const pid_t child = fork();
            if (child == 0) {
                int step = 0;
                platform::TransferControl control;
                const auto next = [&] {
                    if (step++ == killAt)
                        _exit(7);
                    return false;
                };
                control.cancelled = next;
                control.progress = [&next](qint64) { next(); };
                copy(path("source"_s), path("t"_s), control);
                _exit(0);
            }
            int status = 0;
            QCOMPARE(waitpid(child, &status, 0), child);
            wasKilled = WEXITSTATUS(status) == 7;
            QCOMPARE(read("t"_s), wasKilled ? earlier : content);
            const QStringList left = entries().filter(".part"_s); // for removeStaleTemporaries()
            for (const QString &name : left)
                QFile::remove(path(name));
            QCOMPARE(entries(), (QStringList{"source"_s, "t"_s}));
        }
        QVERIFY(killAt > 6);
#else
        QSKIP("needs fork");
#endif
    }

private:
    static bool isReadBack()
    {
        QFETCH_GLOBAL(Verification, verification);
        return verification == Verification::ReadBack;
    }

    /// Bytes of the source that are read for certain when \a told are told.
    static qint64 readOf(qint64 told)
    {
        return isReadBack() ? 2 * told : told;
    }

    CopyOutcome copy(const QString &source, const QString &target,
                     const platform::TransferControl &control = {})
    {
        QFETCH_GLOBAL(Verification, verification);
        last_ = copyVerified(source, target, verification, control);
        return last_.outcome;
    }

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
    VerifiedCopy last_; ///< by copy()
};

QTEST_GUILESS_MAIN(TestFileCopy)
#include "test_filecopy.moc"
