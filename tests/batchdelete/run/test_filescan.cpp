#include "batchdelete/run/filescanthread.h"
#include "platform/folderlisting.h"
#include "tests/support/datarows.h"
#include "tests/support/files.h"
#include "tests/support/smalldisk.h"
#include "tests/support/text.h"

#include <QDir>
#include <QFile>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

#ifdef Q_OS_UNIX
#include <sys/stat.h>
#include <unistd.h>
#endif

class TestFileScan : public QObject
{
    Q_OBJECT

private slots:
    void init() { folder_ = std::make_unique<QTemporaryDir>(); }

    void findsEveryFile()
    {
        makeFiles("原片/1"_s, 2);
        makeFiles(".hidden"_s, 1);
        makeFiles("empty"_s, 0);
        // A back slash is part of a name only where it does not part names.
        const QString odd =
            QDir::separator() == QLatin1Char('/') ? "a\\b #1%.jpg"_s : "a b #1%.jpg"_s;
        QVERIFY(QFile::copy(folder_->filePath("原片/1/1.jpg"_s), folder_->filePath(odd)));
        const FileScanResult result = scan(wireForm(folder_->path()));
        QVERIFY(result.success);
        QCOMPARE(result.errorText, QString());
        QCOMPARE(paths(result),
                 QStringList({".hidden/0.jpg"_s, odd, "原片/1/0.jpg"_s, "原片/1/1.jpg"_s}));
        for (const BatchDeleteFileInfo &file : result.files) {
            QVERIFY(QFile::exists(file.fullPath()));
            QCOMPARE(file.size, QFile(file.fullPath()).size());
            QCOMPARE(file.folder(), QFileInfo(file.fullPath()).dir().dirName());
        }
        BatchDeleteFileInfo atRoot;
        atRoot.folderPath = "D:/"_s;
        atRoot.fileName = "a.jpg"_s;
        QCOMPARE(atRoot.folder(), QString());
        QCOMPARE(atRoot.fullPath(), "D:/a.jpg"_s);
    }

    void whatLeadsElsewhereIsKept()
    {
        makeFiles("order"_s, 1);
        makeFiles("other"_s, 3);
        const auto at = [this](const char *name) { return folder_->filePath(QLatin1String(name)); };
        if (!linkFolder(at("other"), at("order/folder")))
            QSKIP("no links to folders here");
        QStringList expected{"0.jpg"_s, "[folder]"_s};
        if (!shortcutsForLinks) {
            QVERIFY(QFile::link(at("other/0.jpg"), at("order/file")) &&
                    QFile::link(at("nowhere"), at("order/broken")));
            expected += {"broken"_s, "file"_s};
        }
        const SmallDisk disk(at("order/volume"), 1);
        if (disk.isMounted())
            expected += "[volume]"_s;
        const SmallDisk again(at("order/same"), at("other"));
        if (again.isMounted())
            expected += "[same]"_s;
        expected.sort();
        for (const auto *mounted : {&disk, &again}) {
            const char *name = mounted == &disk ? "order/volume" : "order/same";
            QCOMPARE(platform::isLink(at(name)), mounted->isMounted());
            QVERIFY(mounted->isMounted() || QDir().rmdir(at(name)));
        }
        QVERIFY(!platform::isLink(at("order")));
        const FileScanResult result = scan(at("order"));
        QVERIFY(result.success);
        QCOMPARE(paths(result), expected);
    }

    void namesThatAreNoText()
    {
#ifdef Q_OS_UNIX
        const QByteArray name = QFile::encodeName(folder_->path()) + "/\xff\xfe.jpg";
        QVERIFY(QFile::link("x"_s, folder_->filePath("换\n行"_s)));
        QCOMPARE(symlink("x", name.constData()), 0);
        QCOMPARE(mkfifo(QFile::encodeName(folder_->filePath("pipe"_s)).constData(), 0600), 0);
        const FileScanResult result = scan(folder_->path());
        unlink(name.constData()); // Qt cannot
        QVERIFY(result.success);
        QCOMPARE(result.files.size(), 3);
        for (const BatchDeleteFileInfo &file : result.files) {
            QCOMPARE(file.kept, file.fileName != "换\n行"_s);
            QCOMPARE(file.reason.isEmpty(), !file.kept);
        }
#else
        QSKIP("every name is text here");
#endif
    }

    void goesAsDeepAsAllowed()
    {
        makeFiles("."_s, 1);
        makeFiles("a"_s, 1);
        makeFiles("a/b"_s, 1);
        QCOMPARE(scan(folder_->path(), 1).files.size(), 1);
        QCOMPARE(scan(folder_->path(), 2).files.size(), 2);
        QVERIFY(scan(folder_->path(), 2).success);
        QCOMPARE(scan(folder_->path(), 0).files.size(), 3);

        makeFiles("deep"_s + "/0123456"_s.repeated(60), 1);
        QCOMPARE(scan(folder_->path()).files.size(), 4);
    }

    void failures_data()
    {
        addColumns<QString, QString>({"path", "text"});
        const QString share = "共享目录连接失败: %1\n请检查网络连接或共享目录权限"_s;
        newRow("nothing", QString(), "扫描路径为空");
        newRow("missing", "\\no\\such", "目录不存在: \\no\\such");
        const QString endless = "//"_s + QString(300, QLatin1Char('x'));
        newRow("share that cannot be read", endless, share.arg(endless));
        newRow("share", "\\\\no\\such", share.arg("\\\\no\\such"_s));
        newRow("share in slashes", "//no/such", share.arg("//no/such"_s));
        const QString file = QCoreApplication::applicationFilePath();
        newRow("a file", file, "目录不存在: "_s + file);
    }

    void failures()
    {
        QFETCH(QString, path);
        const FileScanResult result = scan(path);
        QVERIFY(!result.success);
        QTEST(result.errorText, "text");
        QVERIFY(result.files.isEmpty());
    }

    void aFolderThatMayNotBeReadIsKept()
    {
#ifdef Q_OS_WIN
        QSKIP("Qt closes no folder here.");
#endif
        makeFiles("closed"_s, 1);
        makeFiles("open"_s, 1);
        const QString closed = folder_->filePath("closed"_s);
        QVERIFY(QFile::setPermissions(closed, QFile::Permissions()));
        const bool isClosed = !QDir(closed).isReadable();
        const FileScanResult result = scan(folder_->path());
        const FileScanResult itself = scan(closed);
        QFile::setPermissions(closed, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        if (!isClosed)
            QSKIP("an administrator may read everything");
        QVERIFY(result.success);
        QCOMPARE(paths(result), QStringList({"[closed]"_s, "open/0.jpg"_s}));
        QCOMPARE(itself.errorText, "没有权限访问目录: "_s + closed);
    }

    void aDiskThatGoesAwayIsAFailure()
    {
        SmallDisk disk(folder_->filePath("disk"_s), 4);
        if (!disk.isMounted())
            QSKIP("mounting is not allowed here");
        makeFiles("disk/order/a"_s, 150);
        makeFiles("disk/order/b"_s, 150);
        const FileScanResult result =
            scan(folder_->filePath("disk/order"_s), 0, [&disk](FileScanWorker *, int count) {
                if (count == 100)
                    disk.vanish();
            });
        QVERIFY(!result.success);
        QVERIFY(result.errorText.startsWith("目录不存在: "_s));
    }

    void cancels()
    {
        makeFiles("a"_s, 250);
        const FileScanResult result =
            scan(folder_->path(), 0, [](FileScanWorker *worker, int count) {
                if (count == 200)
                    worker->cancel();
            });
        QVERIFY(!result.success);
        QCOMPARE(result.errorText, "扫描已取消"_s);
        QVERIFY(result.files.isEmpty());

        FileScanWorker worker; // a cancel before the beginning counts
        QSignalSpy finished(&worker, &FileScanWorker::finished);
        worker.prepare();
        worker.cancel();
        worker.scan(folder_->path());
        QCOMPARE(finished.first().first().value<FileScanResult>().errorText, "用户取消"_s);
    }

    void progressComesPerFolderAndPerHundred()
    {
        makeFiles("a"_s, 250);
        FileScanThread thread;
        QSignalSpy finished(&thread, &FileScanThread::finished);
        QSignalSpy progress(&thread, &FileScanThread::progress);
        thread.scan(folder_->path());
        QTRY_COMPARE(finished.size(), 1);
        QVector<int> counts;
        for (const auto &told : progress)
            counts.append(told.first().toInt());
        QCOMPARE(counts, QVector<int>({0, 0, 100, 200}));
        QCOMPARE(progress.last().at(1).toString(), folder_->filePath("a"_s));
    }

    void anAbandonedScanIsSilent()
    {
        makeFiles("a"_s, 50);
        int told = 0;
        for (int round = 0; round < 5; ++round) {
            FileScanThread thread;
            connect(&thread, &FileScanThread::finished, this, [&told] { ++told; });
            thread.scan(folder_->path());
        }
        FileScanThread last;
        QSignalSpy finished(&last, &FileScanThread::finished);
        last.scan(folder_->path());
        QTRY_COMPARE(finished.size(), 1);
        QCOMPARE(told, 0);
    }

private:
    void makeFiles(const QString &below, int count)
    {
        const QDir folder(folder_->filePath(below));
        QVERIFY(folder.mkpath("."_s));
        for (int index = 0; index < count; ++index) {
            writeFile(folder.filePath("%1.jpg"_s.arg(index)), QByteArray(index, 'p'));
        }
    }

    using OnProgress = std::function<void(FileScanWorker *worker, int count)>;
    FileScanResult scan(
        const QString &path, int depth = 0, const OnProgress &onProgress = [](auto, int) {})
    {
        FileScanWorker worker;
        FileScanResult result;
        connect(&worker, &FileScanWorker::finished, this,
                [&result](const FileScanResult &found) { result = found; });
        connect(&worker, &FileScanWorker::progress, this,
                [&](int count) { onProgress(&worker, count); });
        worker.setMaximumDepth(depth);
        worker.prepare();
        worker.scan(path);
        return result;
    }

    /// Short paths, sorted; what is kept in brackets.
    QStringList paths(const FileScanResult &result)
    {
        QStringList list;
        for (const BatchDeleteFileInfo &file : result.files)
            list.append(file.kept ? QLatin1Char('[') + file.shortPath() + QLatin1Char(']')
                                  : file.shortPath());
        list.sort();
        return list;
    }

    std::unique_ptr<QTemporaryDir> folder_;
};

QTEST_GUILESS_MAIN(TestFileScan)
#include "test_filescan.moc"
