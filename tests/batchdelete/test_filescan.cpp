#include "batchdelete/filescanthread.h"
#include "tests/support/smalldisk.h"

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
    void findsEveryFile();
    void linksAreNotFollowed();
    void namesThatAreNoText();
    void goesAsDeepAsAllowed();
    void failures_data();
    void failures();
    void aFolderThatMayNotBeReadIsKept();
    void aDiskThatGoesAwayIsAFailure();
    void cancels();
    void aCancelBeforeTheBeginningCounts();
    void progressComesPerFolderAndPerHundred();
    void anAbandonedScanIsSilent();

private:
    void makeFiles(const QString &below, int count);
    FileScanResult scan(const QString &path, int depth = 0);
    QStringList paths(const FileScanResult &result);

    std::unique_ptr<QTemporaryDir> folder_;
};

void TestFileScan::makeFiles(const QString &below, int count)
{
    const QDir folder(folder_->filePath(below));
    QVERIFY(folder.mkpath(QStringLiteral(".")));
    for (int index = 0; index < count; ++index) {
        QFile file(folder.filePath(QStringLiteral("%1.jpg").arg(index)));
        QVERIFY(file.open(QIODevice::WriteOnly));
        QCOMPARE(file.write(QByteArray(index, 'p')), qint64(index));
    }
}

FileScanResult TestFileScan::scan(const QString &path, int depth)
{
    FileScanWorker worker;
    FileScanResult result;
    connect(&worker, &FileScanWorker::finished, this,
            [&result](const FileScanResult &found) { result = found; });
    worker.setMaximumDepth(depth);
    worker.prepare();
    worker.scan(path);
    return result;
}

/// Short paths, sorted; what is kept in brackets.
QStringList TestFileScan::paths(const FileScanResult &result)
{
    QStringList list;
    for (const BatchDeleteFileInfo &file : result.files)
        list.append(file.kept ? QLatin1Char('[') + file.shortPath() + QLatin1Char(']')
                              : file.shortPath());
    list.sort();
    return list;
}

void TestFileScan::findsEveryFile()
{
    makeFiles(QStringLiteral("原片/1"), 2);
    makeFiles(QStringLiteral(".hidden"), 1);
    makeFiles(QStringLiteral("empty"), 0);
    QVERIFY(QFile::copy(folder_->filePath(QStringLiteral("原片/1/1.jpg")),
                        folder_->filePath(QStringLiteral("a\\b #1%.jpg"))));
    const FileScanResult result =
        scan(folder_->path().replace(QLatin1Char('/'), QLatin1Char('\\')));
    QVERIFY(result.success);
    QCOMPARE(result.errorText, QString());
    QCOMPARE(paths(result),
             QStringList({QStringLiteral(".hidden/0.jpg"), QStringLiteral("a\\b #1%.jpg"),
                          QStringLiteral("原片/1/0.jpg"), QStringLiteral("原片/1/1.jpg")}));
    for (const BatchDeleteFileInfo &file : result.files) {
        QVERIFY(QFile::exists(file.fullPath()));
        QCOMPARE(file.size, QFile(file.fullPath()).size());
        QCOMPARE(file.folder(), QFileInfo(file.fullPath()).dir().dirName());
    }
    BatchDeleteFileInfo atRoot;
    atRoot.folderPath = QStringLiteral("D:/");
    atRoot.fileName = QStringLiteral("a.jpg");
    QCOMPARE(atRoot.folder(), QString());
    QCOMPARE(atRoot.fullPath(), QStringLiteral("D:/a.jpg"));
}

void TestFileScan::linksAreNotFollowed()
{
    makeFiles(QStringLiteral("order"), 1);
    makeFiles(QStringLiteral("other"), 3);
    const auto link = [this](const char *target, const char *name) {
        return QFile::link(folder_->filePath(QLatin1String(target)),
                           folder_->filePath(QLatin1String(name)));
    };
    if (!link("other", "order/folder"))
        QSKIP("no links here");
    QVERIFY(link("other/0.jpg", "order/file") && link("nowhere", "order/broken"));
    const FileScanResult result = scan(folder_->filePath(QStringLiteral("order")));
    QVERIFY(result.success);
    QCOMPARE(paths(result), QStringList({QStringLiteral("0.jpg"), QStringLiteral("[folder]"),
                                         QStringLiteral("broken"), QStringLiteral("file")}));
}

void TestFileScan::namesThatAreNoText()
{
#ifdef Q_OS_UNIX
    const QByteArray name = QFile::encodeName(folder_->path()) + "/\xff\xfe.jpg";
    QVERIFY(QFile::link(QStringLiteral("x"), folder_->filePath(QStringLiteral("换\n行"))));
    QCOMPARE(symlink("x", name.constData()), 0);
    QCOMPARE(mkfifo(QFile::encodeName(folder_->filePath(QStringLiteral("pipe"))).constData(), 0600),
             0);
    const FileScanResult result = scan(folder_->path());
    unlink(name.constData()); // Qt cannot
    QVERIFY(result.success);
    QCOMPARE(result.files.size(), 3);
    for (const BatchDeleteFileInfo &file : result.files) {
        QCOMPARE(file.kept, file.fileName != QStringLiteral("换\n行"));
        QCOMPARE(file.reason.isEmpty(), !file.kept);
    }
#else
    QSKIP("every name is text here");
#endif
}

void TestFileScan::goesAsDeepAsAllowed()
{
    makeFiles(QStringLiteral("."), 1);
    makeFiles(QStringLiteral("a"), 1);
    makeFiles(QStringLiteral("a/b"), 1);
    QCOMPARE(scan(folder_->path(), 1).files.size(), 1);
    QCOMPARE(scan(folder_->path(), 2).files.size(), 2);
    QVERIFY(scan(folder_->path(), 2).success);
    QCOMPARE(scan(folder_->path(), 0).files.size(), 3);

    QString deep = QStringLiteral("deep");
    for (int level = 0; level < 60; ++level)
        deep += QStringLiteral("/0123456");
    makeFiles(deep, 1);
    QCOMPARE(scan(folder_->path()).files.size(), 4);
}

void TestFileScan::failures_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("text");
    const QString share = QStringLiteral("共享目录连接失败: %1\n请检查网络连接或共享目录权限");
    QTest::newRow("nothing") << QString() << "扫描路径为空";
    QTest::newRow("missing") << "\\no\\such"
                             << "目录不存在: \\no\\such";
    QTest::newRow("share") << "\\\\no\\such" << share.arg(QStringLiteral("\\\\no\\such"));
    QTest::newRow("share in slashes") << "//no/such" << share.arg(QStringLiteral("//no/such"));
    const QString file = QCoreApplication::applicationFilePath();
    QTest::newRow("a file") << file << QStringLiteral("目录不存在: ") + file;
}

void TestFileScan::failures()
{
    QFETCH(QString, path);
    const FileScanResult result = scan(path);
    QVERIFY(!result.success);
    QTEST(result.errorText, "text");
    QVERIFY(result.files.isEmpty());
}

void TestFileScan::aFolderThatMayNotBeReadIsKept()
{
    makeFiles(QStringLiteral("closed"), 1);
    makeFiles(QStringLiteral("open"), 1);
    const QString closed = folder_->filePath(QStringLiteral("closed"));
    QVERIFY(QFile::setPermissions(closed, QFile::Permissions()));
    const bool isClosed = !QDir(closed).isReadable();
    const FileScanResult result = scan(folder_->path());
    const FileScanResult itself = scan(closed);
    QFile::setPermissions(closed, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    if (!isClosed)
        QSKIP("an administrator may read everything");
    QVERIFY(result.success);
    QCOMPARE(paths(result),
             QStringList({QStringLiteral("[closed]"), QStringLiteral("open/0.jpg")}));
    QCOMPARE(itself.errorText, QStringLiteral("没有权限访问目录: ") + closed);
}

void TestFileScan::aDiskThatGoesAwayIsAFailure()
{
    SmallDisk disk(folder_->filePath(QStringLiteral("disk")), 4);
    if (!disk.isMounted())
        QSKIP("mounting is not allowed here");
    makeFiles(QStringLiteral("disk/order/a"), 150);
    makeFiles(QStringLiteral("disk/order/b"), 150);
    FileScanWorker worker;
    FileScanResult result;
    connect(&worker, &FileScanWorker::finished, this,
            [&result](const FileScanResult &found) { result = found; });
    connect(&worker, &FileScanWorker::progress, this, [&disk](int count) {
        if (count == 100)
            disk.vanish();
    });
    worker.prepare();
    worker.scan(folder_->filePath(QStringLiteral("disk/order")));
    QVERIFY(!result.success);
    QVERIFY(result.errorText.startsWith(QStringLiteral("目录不存在: ")));
}

void TestFileScan::cancels()
{
    makeFiles(QStringLiteral("a"), 250);
    FileScanWorker direct;
    FileScanResult result;
    connect(&direct, &FileScanWorker::finished, this,
            [&result](const FileScanResult &found) { result = found; });
    connect(&direct, &FileScanWorker::progress, this, [&direct](int count) {
        if (count == 200)
            direct.cancel();
    });
    direct.prepare();
    direct.scan(folder_->path());
    QVERIFY(!result.success);
    QCOMPARE(result.errorText, QStringLiteral("扫描已取消"));
    QVERIFY(result.files.isEmpty());
}

void TestFileScan::aCancelBeforeTheBeginningCounts()
{
    FileScanWorker worker;
    QString text;
    connect(&worker, &FileScanWorker::finished, this,
            [&text](const FileScanResult &found) { text = found.errorText; });
    worker.prepare();
    worker.cancel();
    worker.scan(folder_->path());
    QCOMPARE(text, QStringLiteral("用户取消"));
}

void TestFileScan::progressComesPerFolderAndPerHundred()
{
    makeFiles(QStringLiteral("a"), 250);
    FileScanThread thread;
    QSignalSpy finished(&thread, &FileScanThread::finished);
    QSignalSpy progress(&thread, &FileScanThread::progress);
    thread.scan(folder_->path());
    QTRY_COMPARE(finished.size(), 1);
    QVector<int> counts;
    for (const auto &told : progress)
        counts.append(told.first().toInt());
    QCOMPARE(counts, QVector<int>({0, 0, 100, 200}));
    QCOMPARE(progress.last().at(1).toString(), folder_->filePath(QStringLiteral("a")));
}

void TestFileScan::anAbandonedScanIsSilent()
{
    makeFiles(QStringLiteral("a"), 50);
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

QTEST_GUILESS_MAIN(TestFileScan)
#include "test_filescan.moc"
