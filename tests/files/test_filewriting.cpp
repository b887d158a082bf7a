#include "files/filewriting.h"
#include "platform/fileaccess.h"
#include "tests/support/datarows.h"
#include "tests/support/files.h"
#include "tests/support/text.h"

#include <QDateTime>
#include <QDir>
#include <QTemporaryDir>
#include <QThreadPool>
#include <QtTest>

#include <atomic>
#include <stdexcept>

class TestFileWriting : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        folder_ = std::make_unique<QTemporaryDir>();
        QVERIFY(folder_->isValid());
    }

    void cleanup() { folder_.reset(); }

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
    QString path(const QString &name) const { return folder_->filePath(name); }

    QByteArray write(const QString &name, int bytes) const
    {
        const QByteArray content(bytes, 'x');
        writeFile(path(name), content);
        return content;
    }

    QByteArray read(const QString &name) const { return readFile(path(name)); }

    QStringList entries() const
    {
        return QDir(folder_->path()).entryList(QDir::Files | QDir::Hidden);
    }

    std::unique_ptr<QTemporaryDir> folder_;
};

QTEST_GUILESS_MAIN(TestFileWriting)
#include "test_filewriting.moc"
