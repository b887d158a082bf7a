#include "fileimport/run/importfilecopyrunnable.h"
#include "platform/pathform.h"
#include "tests/support/datarows.h"
#include "tests/support/files.h"
#include "tests/support/text.h"

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
    void init()
    {
        qRegisterMetaType<ImportFile>();
        folder_ = std::make_unique<QTemporaryDir>();
        QVERIFY(QDir(folder_->path()).mkdir("to"_s));
    }

    void cleanup()
    {
        QFile::setPermissions(target("a.jpg"_s), QFile::WriteOwner | QFile::ReadOwner);
        folder_.reset();
    }

    void badSources_data()
    {
        addColumns<QString, QString>({"source", "message"});
        newRow("gone", "gone.jpg", "原文件不存在: %1");
        newRow("folder", "to", "路径不是文件: %1");
        newRow("empty", "empty.jpg", "文件大小为0KB，无法导入");
    }

    void badSources()
    {
        QFETCH(QString, source);
        QFETCH(QString, message);
        ImportFile file = makeFile("empty.jpg"_s, "");
        file.sourcePath = folder_->filePath(source);
        ImportFileCopyRunnable task(file);
        const Ended ended = run(task);
        QVERIFY(!ended.cancelled);
        QCOMPARE(ended.file.state, qint32(ImportFile::Failed));
        QCOMPARE(ended.file.message, message.replace("%1"_s, file.sourcePath));
        QVERIFY(QDir(target(QString())).isEmpty());
    }

    void targetsThatMayNotBeReplaced_data()
    {
        QTest::addColumn<bool>("isFolder");
        newRow("read-only file", false);
        newRow("folder", true);
    }

    void targetsThatMayNotBeReplaced()
    {
        QFETCH(bool, isFolder);
        const QString path = target("a.jpg"_s);
        QVERIFY(isFolder ? QDir().mkdir(path)
                         : QFile::setPermissions(writeFile(path, "protected"), QFile::ReadOwner));
        ImportFileCopyRunnable task(makeFile("a.jpg"_s, "photo"));
        const Ended ended = run(task);
        QCOMPARE(ended.file.message, "无法覆盖已存在的文件: %1"_s.arg(toldTarget("a.jpg"_s)));
        QCOMPARE(targetContent("a.jpg"_s), QByteArray(isFolder ? "(no file)" : "protected"));
        QCOMPARE(task.bytesCopied(), qint64(0));
    }

    void copyResults_data()
    {
        addColumns<int, QString>({"outcome", "message"});
        newRow("failed", int(CopyOutcome::Failed), "文件拷贝失败(可能是磁盘已满或权限受限)");
        newRow("empty", int(CopyOutcome::Empty), "文件拷贝后大小为0KB");
        newRow("differs", int(CopyOutcome::SizeDiffers), "文件大小不一致，拷贝可能不完整");
        newRow("changed", int(CopyOutcome::SourceChanged), "文件在拷贝过程中发生变化");
        newRow("damaged", int(CopyOutcome::ContentDiffers), "文件拷贝后验证失败: %1");
        newRow("copied, but gone", int(CopyOutcome::Copied), "文件拷贝后验证失败: %1");
        newRow("throws", -1, "处理异常: broken");
    }

    void copyResults()
    {
        QFETCH(int, outcome);
        QFETCH(QString, message);
        ImportFileCopyRunnable task(
            makeFile("a.jpg"_s, "photo"),
            [outcome](const QString &, const QString &, const platform::TransferControl &) {
                if (outcome < 0)
                    throw std::runtime_error("broken");
                return VerifiedCopy{CopyOutcome(outcome), Proof::None, {}, 0};
            });
        const Ended ended = run(task);
        QVERIFY(!ended.cancelled);
        QCOMPARE(ended.signalCount, 1);
        QCOMPARE(ended.file.state, qint32(ImportFile::Failed));
        QCOMPARE(ended.file.message, message.replace("%1"_s, toldTarget("a.jpg"_s)));
    }

    void cancelledAtAnyPointNothingChanges()
    {
        const ImportFile file = makeFile("a.jpg"_s, QByteArray(5 * 1024 * 1024, 'p'));
        writeFile(target("a.jpg"_s), "earlier");

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
            QCOMPARE(ended.file.message, "任务已取消"_s);
            QCOMPARE(targetContent("a.jpg"_s), QByteArray("earlier"));
            QCOMPARE(QDir(target(QString())).entryList(QDir::Files | QDir::Hidden).size(), 1);
            QVERIFY(atLook < never);
        }
        // Before the first step, before and after looking at the target, in mid-copy, before the
        // rename; how often in mid-copy is the system's affair.
        QVERIFY(points >= 5);
        QVERIFY(targetContent("a.jpg"_s) != "earlier");
    }

    void nothingTakesAFinishedCopyAway()
    {
        const ImportFile file = makeFile("a.jpg"_s, "photo");
        ImportFileCopyRunnable *running = nullptr;
        ImportFileCopyRunnable task(file, [&running](const QString &source, const QString &to,
                                                     const platform::TransferControl &control) {
            const VerifiedCopy copy = copyVerified(source, to, Verification::ReadBack, control);
            QFile::remove(source); // the card is pulled
            running->cancel();
            return copy;
        });
        running = &task;
        const Ended ended = run(task);
        QVERIFY(!ended.cancelled);
        QCOMPARE(ended.file.message, "拷贝成功"_s);
        QCOMPARE(targetContent("a.jpg"_s), QByteArray("photo"));
    }

    void copiesUnderASafeName()
    {
        ImportFile file = makeFile("a.jpg"_s, "photo");
        file.baseName = "../../x"_s;
        ImportFileCopyRunnable task(file);
        const Ended ended = run(task);
        QCOMPARE(ended.signalCount, 1);
        QCOMPARE(ended.file.state, qint32(ImportFile::Imported));
        QCOMPARE(ended.file.message, "拷贝成功"_s);
        QCOMPARE(targetContent(".._.._x.jpg"_s), QByteArray("photo"));
        QCOMPARE(task.bytesCopied(), qint64(5));
    }

private:
    struct Ended
    {
        ImportFile file;
        bool cancelled = false;
        int signalCount = 0;
    };

    static Ended run(ImportFileCopyRunnable &task)
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

    ImportFile makeFile(const QString &name, const QByteArray &content) const
    {
        const QString source = writeFile(folder_->filePath(name), content);
        ImportFile file;
        file.sourcePath = source;
        file.baseName = QFileInfo(name).completeBaseName();
        file.suffix = QFileInfo(name).suffix();
        file.targetFolder = wireFolder();
        return file;
    }

    QString target(const QString &name) const { return folder_->filePath("to/"_s + name); }
    /// The same as it is told: the folder as it came, in the form of this machine.
    QString toldTarget(const QString &name) const
    {
        return platform::toLocalPath(wireFolder()) + QLatin1Char('/') + name;
    }
    QString wireFolder() const { return wireForm(folder_->filePath("to"_s)); }

    QByteArray targetContent(const QString &name) const { return readFile(target(name)); }

    std::unique_ptr<QTemporaryDir> folder_;
};

QTEST_GUILESS_MAIN(TestCopyTask)
#include "test_copytask.moc"
