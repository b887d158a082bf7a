#include "fileimport/importfilecopyrunnable.h"
#include "platform/pathform.h"
#include "tests/support/smalldisk.h"

#include <QDir>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QThreadPool>
#include <QtTest>

#include <stdexcept>

namespace {

/// Is cancelled at its n-th look, wherever that falls.
class CancelledTask : public ImportFileCopyRunnable
{
public:
    CancelledTask(const ImportFile &file, int atLook)
        : ImportFileCopyRunnable(file), atLook_(atLook)
    {
    }
    bool isCancelled() const override { return ++looks_ >= atLook_; }
    int looks() const { return looks_; }

private:
    int atLook_;
    mutable int looks_ = 0;
};

} // namespace

class TestCopyTask : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void copies();
    void badSources_data();
    void badSources();
    void targetsThatMayNotBeReplaced_data();
    void targetsThatMayNotBeReplaced();
    void copyResults_data();
    void copyResults();
    void cancelledAtAnyPointNothingChanges();
    void fullDisk();
    void unsafeNamesBecomeSafe();
    void mayBeDeletedByItsSignal();

private:
    struct Ended
    {
        ImportFile file;
        bool cancelled = false;
        int signalCount = 0;
    };

    static Ended run(ImportFileCopyRunnable &task);
    ImportFile makeFile(const QString &name, const QByteArray &content) const;
    QString target(const QString &name) const
    {
        return folder_->filePath(QStringLiteral("to/") + name);
    }
    /// The same as it is told: the folder as it came, in the form of this machine.
    QString toldTarget(const QString &name) const
    {
        return platform::toLocalPath(wireFolder()) + QLatin1Char('/') + name;
    }
    QString wireFolder() const
    {
        return folder_->filePath(QStringLiteral("to")).replace(QLatin1Char('/'), QLatin1Char('\\'));
    }
    QByteArray targetContent(const QString &name) const;

    std::unique_ptr<QTemporaryDir> folder_;
};

void TestCopyTask::init()
{
    qRegisterMetaType<ImportFile>();
    folder_ = std::make_unique<QTemporaryDir>();
    QVERIFY(QDir(folder_->path()).mkdir(QStringLiteral("to")));
}

void TestCopyTask::cleanup()
{
    QFile::setPermissions(target(QStringLiteral("a.jpg")), QFile::WriteOwner | QFile::ReadOwner);
    folder_.reset();
}

TestCopyTask::Ended TestCopyTask::run(ImportFileCopyRunnable &task)
{
    QSignalSpy finished(&task, &ImportFileCopyRunnable::copyFinished);
    QSignalSpy cancelled(&task, &ImportFileCopyRunnable::copyCancelled);
    task.run();
    Ended ended;
    ended.signalCount = finished.size() + cancelled.size();
    ended.cancelled = !cancelled.isEmpty();
    const QSignalSpy &spy = ended.cancelled ? cancelled : finished;
    if (!spy.isEmpty())
        ended.file = spy.first().first().value<ImportFile>();
    return ended;
}

ImportFile TestCopyTask::makeFile(const QString &name, const QByteArray &content) const
{
    QFile source(folder_->filePath(name));
    if (!source.open(QIODevice::WriteOnly) || source.write(content) != content.size())
        qFatal("fixture not written");
    ImportFile file;
    file.sourcePath = source.fileName();
    file.baseName = QFileInfo(name).completeBaseName();
    file.suffix = QFileInfo(name).suffix();
    file.targetFolder = wireFolder();
    return file;
}

QByteArray TestCopyTask::targetContent(const QString &name) const
{
    QFile file(target(name));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("none");
}

void TestCopyTask::copies()
{
    ImportFileCopyRunnable task(makeFile(QStringLiteral("a.jpg"), "photo"));
    const Ended ended = run(task);
    QCOMPARE(ended.signalCount, 1);
    QCOMPARE(ended.file.state, qint32(ImportFile::Imported));
    QCOMPARE(ended.file.message, QStringLiteral("拷贝成功"));
    QCOMPARE(targetContent(QStringLiteral("a.jpg")), QByteArray("photo"));
    QCOMPARE(task.bytesCopied(), qint64(5));
}

void TestCopyTask::badSources_data()
{
    QTest::addColumn<QString>("source");
    QTest::addColumn<QString>("message");
    QTest::newRow("gone") << "gone.jpg"
                          << "原文件不存在: %1";
    QTest::newRow("folder") << "to"
                            << "路径不是文件: %1";
    QTest::newRow("empty") << "empty.jpg"
                           << "文件大小为0KB，无法导入";
}

void TestCopyTask::badSources()
{
    QFETCH(QString, source);
    QFETCH(QString, message);
    ImportFile file = makeFile(QStringLiteral("empty.jpg"), "");
    file.sourcePath = folder_->filePath(source);
    ImportFileCopyRunnable task(file);
    const Ended ended = run(task);
    QVERIFY(!ended.cancelled);
    QCOMPARE(ended.file.state, qint32(ImportFile::Failed));
    QCOMPARE(ended.file.message, message.replace(QStringLiteral("%1"), file.sourcePath));
    QVERIFY(QDir(target(QString())).isEmpty());
}

void TestCopyTask::targetsThatMayNotBeReplaced_data()
{
    QTest::addColumn<bool>("isFolder");
    QTest::newRow("read-only file") << false;
    QTest::newRow("folder") << true;
}

void TestCopyTask::targetsThatMayNotBeReplaced()
{
    QFETCH(bool, isFolder);
    const QString path = target(QStringLiteral("a.jpg"));
    if (isFolder) {
        QVERIFY(QDir().mkdir(path));
    } else {
        QFile earlier(path);
        QVERIFY(earlier.open(QIODevice::WriteOnly));
        earlier.write("protected");
        QVERIFY(earlier.setPermissions(QFile::ReadOwner));
    }
    ImportFileCopyRunnable task(makeFile(QStringLiteral("a.jpg"), "photo"));
    const Ended ended = run(task);
    QCOMPARE(ended.file.message,
             QStringLiteral("无法覆盖已存在的文件: %1").arg(toldTarget(QStringLiteral("a.jpg"))));
    QCOMPARE(targetContent(QStringLiteral("a.jpg")), QByteArray(isFolder ? "none" : "protected"));
    QCOMPARE(task.bytesCopied(), qint64(0));
}

void TestCopyTask::copyResults_data()
{
    QTest::addColumn<int>("outcome");
    QTest::addColumn<QString>("message");
    QTest::newRow("failed") << int(CopyOutcome::Failed) << "文件拷贝失败(可能是磁盘已满或权限受限)";
    QTest::newRow("empty") << int(CopyOutcome::Empty) << "文件拷贝后大小为0KB";
    QTest::newRow("differs") << int(CopyOutcome::SizeDiffers) << "文件大小不一致，拷贝可能不完整";
    QTest::newRow("copied, but gone") << int(CopyOutcome::Copied) << "文件拷贝后验证失败: %1";
    QTest::newRow("throws") << -1 << "处理异常: broken";
}

void TestCopyTask::copyResults()
{
    QFETCH(int, outcome);
    QFETCH(QString, message);
    ImportFileCopyRunnable task(
        makeFile(QStringLiteral("a.jpg"), "photo"),
        [outcome](const QString &, const QString &, const platform::TransferControl &) {
            if (outcome < 0)
                throw std::runtime_error("broken");
            return CopyOutcome(outcome);
        });
    const Ended ended = run(task);
    QVERIFY(!ended.cancelled);
    QCOMPARE(ended.signalCount, 1);
    QCOMPARE(ended.file.state, qint32(ImportFile::Failed));
    QCOMPARE(ended.file.message,
             message.replace(QStringLiteral("%1"), toldTarget(QStringLiteral("a.jpg"))));
}

void TestCopyTask::cancelledAtAnyPointNothingChanges()
{
    const ImportFile file = makeFile(QStringLiteral("a.jpg"), QByteArray(5 * 1024 * 1024, 'p'));
    QFile earlier(target(QStringLiteral("a.jpg")));
    QVERIFY(earlier.open(QIODevice::WriteOnly));
    earlier.write("earlier");
    earlier.close();

    constexpr int never = 1000;
    int points = 0;
    for (int atLook = 1;; ++atLook) {
        CancelledTask task(file, atLook);
        const Ended ended = run(task);
        if (!ended.cancelled)
            break; // every look of a whole copy was one of the points before
        ++points;
        QCOMPARE(ended.signalCount, 1);
        QCOMPARE(ended.file.state, qint32(ImportFile::Failed));
        QCOMPARE(ended.file.message, QStringLiteral("任务已取消"));
        QCOMPARE(targetContent(QStringLiteral("a.jpg")), QByteArray("earlier"));
        QCOMPARE(QDir(target(QString())).entryList(QDir::Files | QDir::Hidden).size(), 1);
        QVERIFY(atLook < never);
    }
    // Before the first step, before and after looking at the target, in mid-copy, before the
    // rename; how often in mid-copy is the system's affair.
    QVERIFY(points >= 5);
    QVERIFY(targetContent(QStringLiteral("a.jpg")) != "earlier");
}

void TestCopyTask::fullDisk()
{
    SmallDisk disk(target(QString()), 1);
    if (!disk.isMounted())
        QSKIP("mounting a small disk needs administrator rights");
    ImportFileCopyRunnable task(
        makeFile(QStringLiteral("a.jpg"), QByteArray(3 * 1024 * 1024, 'p')));
    const Ended ended = run(task);
    QCOMPARE(ended.file.message, QStringLiteral("文件拷贝失败(可能是磁盘已满或权限受限)"));
    QVERIFY(QDir(target(QString())).entryList(QDir::Files | QDir::Hidden).isEmpty());
}

void TestCopyTask::unsafeNamesBecomeSafe()
{
    ImportFile file = makeFile(QStringLiteral("a.jpg"), "photo");
    file.baseName = QStringLiteral("nul");
    ImportFileCopyRunnable device(file);
    QCOMPARE(run(device).file.state, qint32(ImportFile::Imported));
    QCOMPARE(targetContent(QStringLiteral("nul_.jpg")), QByteArray("photo"));

    file.baseName = QStringLiteral("../../x");
    ImportFileCopyRunnable climbing(file);
    QCOMPARE(run(climbing).file.state, qint32(ImportFile::Imported));
    QCOMPARE(targetContent(QStringLiteral(".._.._x.jpg")), QByteArray("photo"));
}

void TestCopyTask::mayBeDeletedByItsSignal()
{
    QThreadPool pool;
    const ImportFile file = makeFile(QStringLiteral("a.jpg"), "photo");
    int ended = 0;
    constexpr int rounds = 200;
    for (int i = 0; i < rounds; ++i) {
        auto *task = new ImportFileCopyRunnable(
            file, [](const QString &, const QString &, const platform::TransferControl &) {
                return CopyOutcome::Failed;
            });
        connect(
            task, &ImportFileCopyRunnable::copyFinished, this,
            [task, &ended] { // clazy:exclude=lambda-in-connect
                delete task;
                ++ended;
            },
            Qt::QueuedConnection);
        pool.start(task);
    }
    QTRY_COMPARE(ended, rounds);
}

QTEST_GUILESS_MAIN(TestCopyTask)
#include "test_copytask.moc"
