#include "net/filecopy.h"
#include "net/filewriting.h"
#include "platform/fileaccess.h"
#include "tests/support/smalldisk.h"

#include <QDateTime>
#include <QDir>
#include <QDirIterator>
#include <QTemporaryDir>
#include <QtTest>

#include <stdexcept>

#ifdef Q_OS_UNIX
#include <sys/wait.h>
#include <unistd.h>
#endif

class TestFileCopy : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void copies_data();
    void copies();
    void keepsTimeAndDropsReadOnlyMark();
    void replacesAnEarlierFile();
    void cancelledAtAnyStepLeavesTheEarlierFile();
    void failuresLeaveTheEarlierFile_data();
    void failuresLeaveTheEarlierFile();
    void fullDiskLeavesTheEarlierFile();
    void noticesThatTheSourceGrew();
    void aKilledCopyLeavesNoTarget();
    void removesOnlyItsOwnOldLeftovers();
    void readOnlyFilesArePreserved();
    void writesWholeFilesOrNone_data();
    void writesWholeFilesOrNone();

private:
    QString path(const QString &name) const { return folder_->filePath(name); }
    QByteArray write(const QString &name, int bytes) const;
    QByteArray read(const QString &name) const;
    QStringList entries() const
    {
        return QDir(folder_->path()).entryList(QDir::Files | QDir::Hidden);
    }

    std::unique_ptr<QTemporaryDir> folder_;
};

void TestFileCopy::init()
{
    folder_ = std::make_unique<QTemporaryDir>();
    QVERIFY(folder_->isValid());
}

void TestFileCopy::cleanup()
{
    folder_.reset();
}

QByteArray TestFileCopy::write(const QString &name, int bytes) const
{
    QByteArray content(bytes, '\0');
    for (int i = 0; i < bytes; ++i)
        content[i] = char((i * 31 + i / 251) & 0xff);
    QFile file(path(name));
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != bytes)
        qFatal("fixture not written: %s", qPrintable(file.fileName()));
    return content;
}

QByteArray TestFileCopy::read(const QString &name) const
{
    QFile file(path(name));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("unreadable");
}

void TestFileCopy::copies_data()
{
    QTest::addColumn<int>("bytes");
    QTest::addColumn<QString>("name");
    QTest::newRow("one byte") << 1 << "a.jpg";
    QTest::newRow("one step") << 4 * 1024 * 1024 << "a.jpg";
    QTest::newRow("steps and a bit") << 9 * 1024 * 1024 + 7 << "a.jpg";
    QTest::newRow("odd name") << 1000 << QStringLiteral("婚 #1 100%&+😀.jpg");
    QTest::newRow("deep folder")
        << 1000
        << QString(100, QLatin1Char('d')).append(QLatin1Char('/')).repeated(3) +
               QStringLiteral("婚.jpg");
    QTest::newRow("long name") << 1000 << QString(200, QLatin1Char('n')) + QStringLiteral(".jpg");
}

void TestFileCopy::copies()
{
    QFETCH(int, bytes);
    QFETCH(QString, name);
    const QByteArray content = write(QStringLiteral("source"), bytes);
    QVERIFY(QDir().mkpath(QFileInfo(path(name)).path()));
    qint64 told = 0;
    platform::TransferControl control;
    control.progress = [&told](qint64 copied) {
        QVERIFY(copied > told);
        told = copied;
    };
    QCOMPARE(copyFile(path(QStringLiteral("source")), path(name), control), CopyOutcome::Copied);
    QCOMPARE(told, qint64(bytes));
    QCOMPARE(read(name), content);
    QDirIterator files(folder_->path(), QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
    int count = 0;
    for (; files.hasNext(); files.next())
        ++count;
    QCOMPARE(count, 2);
}

void TestFileCopy::keepsTimeAndDropsReadOnlyMark()
{
    write(QStringLiteral("source"), 100);
    const QDateTime shot(QDate(2024, 3, 7), QTime(10, 20, 30));
    QFile source(path(QStringLiteral("source")));
    QVERIFY(source.open(QIODevice::ReadWrite));
    QVERIFY(source.setFileTime(shot, QFileDevice::FileModificationTime));
    QVERIFY(source.setPermissions(QFile::ReadOwner | QFile::ReadUser));
    source.close();
    QCOMPARE(copyFile(source.fileName(), path(QStringLiteral("t"))), CopyOutcome::Copied);
    QCOMPARE(QFileInfo(path(QStringLiteral("t"))).lastModified(), shot);
    QVERIFY(platform::mayBeWritten(path(QStringLiteral("t"))));
    QVERIFY(!platform::mayBeWritten(source.fileName()));
}

void TestFileCopy::replacesAnEarlierFile()
{
    const QByteArray content = write(QStringLiteral("source"), 1000);
    write(QStringLiteral("t"), 5000);
    QCOMPARE(copyFile(path(QStringLiteral("source")), path(QStringLiteral("t"))),
             CopyOutcome::Copied);
    QCOMPARE(read(QStringLiteral("t")), content);
    QCOMPARE(entries().size(), 2);
}

void TestFileCopy::cancelledAtAnyStepLeavesTheEarlierFile()
{
    write(QStringLiteral("source"), 9 * 1024 * 1024);
    const QByteArray earlier = write(QStringLiteral("t"), 10);
    int looks = 0;
    platform::TransferControl counting;
    counting.cancelled = [&looks] {
        ++looks;
        return false;
    };
    QCOMPARE(copyFile(path(QStringLiteral("source")), path(QStringLiteral("other")), counting),
             CopyOutcome::Copied);
    QVERIFY(QFile::remove(path(QStringLiteral("other"))));
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
        QCOMPARE(copyFile(path(QStringLiteral("source")), path(QStringLiteral("t")), control),
                 CopyOutcome::Cancelled);
        QCOMPARE(read(QStringLiteral("t")), earlier);
        QCOMPARE(entries(), (QStringList{QStringLiteral("source"), QStringLiteral("t")}));
    }
}

void TestFileCopy::failuresLeaveTheEarlierFile_data()
{
    QTest::addColumn<QString>("source");
    QTest::addColumn<QString>("target");
    QTest::addColumn<int>("outcome");
    QTest::newRow("source gone") << "gone"
                                 << "t" << int(CopyOutcome::Failed);
    QTest::newRow("source is a folder") << "."
                                        << "t" << int(CopyOutcome::Failed);
    QTest::newRow("source is empty") << "empty"
                                     << "t" << int(CopyOutcome::Empty);
    QTest::newRow("folder gone") << "source"
                                 << "gone/t" << int(CopyOutcome::Failed);
    QTest::newRow("target is a folder") << "source"
                                        << "folder" << int(CopyOutcome::Failed);
}

void TestFileCopy::failuresLeaveTheEarlierFile()
{
    QFETCH(QString, source);
    QFETCH(QString, target);
    write(QStringLiteral("source"), 1000);
    write(QStringLiteral("empty"), 0);
    const QByteArray earlier = write(QStringLiteral("t"), 10);
    QVERIFY(QDir(folder_->path()).mkdir(QStringLiteral("folder")));
    QTEST(int(copyFile(path(source), path(target))), "outcome");
    QCOMPARE(read(QStringLiteral("t")), earlier);
    QCOMPARE(entries().size(), 3);
    QVERIFY(QDir(path(QStringLiteral("folder")))
                .isEmpty(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot));
}

void TestFileCopy::fullDiskLeavesTheEarlierFile()
{
    SmallDisk disk(path(QStringLiteral("disk")), 2);
    if (!disk.isMounted())
        QSKIP("mounting a small disk needs administrator rights");
    write(QStringLiteral("source"), 5 * 1024 * 1024);
    const QByteArray earlier = write(QStringLiteral("disk/t"), 10);
    QCOMPARE(copyFile(path(QStringLiteral("source")), path(QStringLiteral("disk/t"))),
             CopyOutcome::Failed);
    QCOMPARE(read(QStringLiteral("disk/t")), earlier);
    QCOMPARE(QDir(path(QStringLiteral("disk"))).entryList(QDir::Files | QDir::Hidden),
             QStringList(QStringLiteral("t")));
    const QByteArray content = write(QStringLiteral("small"), 1024 * 1024);
    QCOMPARE(copyFile(path(QStringLiteral("small")), path(QStringLiteral("disk/t"))),
             CopyOutcome::Copied);
    QCOMPARE(read(QStringLiteral("disk/t")), content);
}

void TestFileCopy::noticesThatTheSourceGrew()
{
    write(QStringLiteral("source"), 5 * 1024 * 1024);
    platform::TransferControl control;
    control.progress = [&](qint64 copied) {
        // All that there was is copied: the camera goes on writing.
        if (copied == qint64(5) * 1024 * 1024) {
            QFile source(path(QStringLiteral("source")));
            if (source.open(QIODevice::Append))
                source.write(QByteArray(100, 'x'));
        }
    };
    const CopyOutcome outcome =
        copyFile(path(QStringLiteral("source")), path(QStringLiteral("t")), control);
    // Copied whole with what came late, or refused; never the shorter file under the target's name.
    if (outcome == CopyOutcome::Copied)
        QCOMPARE(read(QStringLiteral("t")), read(QStringLiteral("source")));
    else
        QCOMPARE(entries(), QStringList(QStringLiteral("source")));
}

void TestFileCopy::aKilledCopyLeavesNoTarget()
{
#ifdef Q_OS_UNIX
    write(QStringLiteral("source"), 9 * 1024 * 1024);
    const QByteArray earlier = write(QStringLiteral("t"), 10);
    const pid_t child = fork();
    if (child == 0) {
        platform::TransferControl control;
        control.progress = [](qint64) { _exit(7); };
        copyFile(path(QStringLiteral("source")), path(QStringLiteral("t")), control);
        _exit(0);
    }
    int status = 0;
    QCOMPARE(waitpid(child, &status, 0), child);
    QCOMPARE(WEXITSTATUS(status), 7);
    QCOMPARE(read(QStringLiteral("t")), earlier);
    const QStringList photos =
        QDir(folder_->path()).entryList({QStringLiteral("*.jpg"), QStringLiteral("*raw")});
    QVERIFY(photos.isEmpty());
    QCOMPARE(entries().size(), 3); // the temporary file, for removeStaleTemporaries()
#else
    QSKIP("needs fork");
#endif
}

void TestFileCopy::removesOnlyItsOwnOldLeftovers()
{
    const QString ours = QFileInfo(temporaryPathIn(folder_->path())).fileName();
    const QStringList others = {QStringLiteral("a.part"), QStringLiteral("~$12.part"),
                                QStringLiteral("~$letter.docx")};
    for (const QString &name : others)
        write(name, 10);
    write(ours, 10);
    const QDateTime now = QDateTime::currentDateTimeUtc();
    removeStaleTemporaries(folder_->path(), now.addSecs(23 * 60 * 60));
    QCOMPARE(entries().size(), 4);
    removeStaleTemporaries(folder_->path(), now.addSecs(25 * 60 * 60));
    QCOMPARE(entries(), others);
}

void TestFileCopy::readOnlyFilesArePreserved()
{
    write(QStringLiteral("t"), 10);
    QVERIFY(platform::mayBeWritten(path(QStringLiteral("t"))));
    QVERIFY(platform::mayBeRemoved(path(QStringLiteral("t"))));
    QVERIFY(QFile::setPermissions(path(QStringLiteral("t")), QFile::ReadOwner | QFile::ReadOther));
    QVERIFY(!platform::mayBeWritten(path(QStringLiteral("t"))));
    QVERIFY(!platform::mayBeRemoved(path(QStringLiteral("t"))));
    QVERIFY(!platform::mayBeRemoved(folder_->path()));
    QVERIFY(!platform::mayBeRemoved(path(QStringLiteral("gone"))));
}

void TestFileCopy::writesWholeFilesOrNone_data()
{
    QTest::addColumn<QString>("writing");
    QTest::addColumn<bool>("written");
    QTest::newRow("whole") << "whole" << true;
    QTest::newRow("gives up half-way") << "half" << false;
    QTest::newRow("writes nothing") << "nothing" << false;
    QTest::newRow("throws") << "throw" << false;
}

void TestFileCopy::writesWholeFilesOrNone()
{
    QFETCH(QString, writing);
    QFETCH(bool, written);
    const QByteArray earlier = write(QStringLiteral("sheet.txt"), 100);
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
        result = writeWholeFile(path(QStringLiteral("sheet.txt")), make);
    } catch (const std::runtime_error &) {
        QCOMPARE(writing, QStringLiteral("throw"));
    }
    QCOMPARE(result, written);
    QCOMPARE(read(QStringLiteral("sheet.txt")), written ? later : earlier);
    QCOMPARE(entries(), QStringList{QStringLiteral("sheet.txt")});
}

QTEST_GUILESS_MAIN(TestFileCopy)
#include "test_filecopy.moc"
