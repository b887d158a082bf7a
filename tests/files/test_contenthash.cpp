#include "files/contenthash.h"
#include "tests/support/datarows.h"
#include "tests/support/files.h"
#include "tests/support/smalldisk.h"
#include "tests/support/text.h"

#include <QFile>
#include <QFileInfo>
#include <QStorageInfo>
#include <QTemporaryDir>
#include <QtTest>

#include <memory>

class TestContentHash : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        folder_ = std::make_unique<QTemporaryDir>();
        QVERIFY(folder_->isValid());
    }

    void cleanup() { folder_.reset(); }

    void hashesAsEveryMachineDoes_data()
    {
        addColumns<int, QByteArray>({"bytes", "hash"});
        newRow("nothing", 0, QByteArray("99aa06d3014798d86001c324468d497f"));
        newRow("one thousand", 1000, QByteArray("baaec9f881a60ea82bc8f72e8da57c62"));
    }

    void hashesAsEveryMachineDoes()
    {
        QFETCH(int, bytes);
        const QByteArray content = contentOf(bytes);
        for (const int piece : {1, 7, 1000}) {
            ContentHash hash;
            for (int from = 0; from < content.size(); from += piece)
                hash.add(content.constData() + from, std::min(piece, content.size() - from));
            QTEST(hash.result().toHex(), "hash");
        }
    }

    void readsWholeFiles_data()
    {
        QTest::addColumn<int>("bytes");
        for (const int bytes : {0, 1, 4095, 4096, 4097, 2 << 20, (8 << 20) + 1})
            QTest::addRow("%d bytes", bytes) << bytes;
    }

    void readsWholeFiles()
    {
        QFETCH(int, bytes);
        const QByteArray content = contentOf(bytes);
        const QString path = writeFile(folder_->filePath("婚 1.jpg"_s), content);
        qint64 told = 0;
        platform::TransferControl control;
        control.progress = [&told](qint64 read) {
            QVERIFY(read > told);
            told = read;
        };
        const ContentReading reading = readContent(path, control);
        QVERIFY(reading.isRead());
        QCOMPARE(reading.size, qint64(bytes));
        QCOMPARE(told, qint64(bytes));
        QCOMPARE(reading.modified, QFileInfo(path).lastModified().toUTC());
        ContentHash hash;
        hash.add(content.constData(), content.size());
        QCOMPARE(reading.hash, hash.result());
        const QByteArray disk = QStorageInfo(path).fileSystemType();
        if (disk == "ext4" || disk == "xfs")
            QCOMPARE(reading.proof, Proof::Medium);
        else
            QVERIFY(reading.proof != Proof::None);
    }

    /// Such a disk takes the wish to be read past memory, which is all that it is made of.
    void memoryIsNoMedium()
    {
        const SmallDisk disk(folder_->filePath("memory"_s), 2);
        if (!disk.isMounted())
            QSKIP("mounting a small disk needs administrator rights");
        const ContentReading reading =
            readContent(writeFile(folder_->filePath("memory/a"_s), contentOf(4097)));
        QVERIFY(reading.isRead());
        QCOMPARE(reading.proof, Proof::Cache);
    }

    void tellsWhatWentWrong_data()
    {
        addColumns<QString, int>({"trouble", "ending"});
        newRow("gone", "gone", int(ContentReading::Ending::Failed));
        newRow("a folder", "folder", int(ContentReading::Ending::Failed));
        newRow("cancelled", "cancelled", int(ContentReading::Ending::Cancelled));
        newRow("written to", "written", int(ContentReading::Ending::Changed));
        newRow("cut short", "cut", int(ContentReading::Ending::Changed));
        newRow("replaced", "replaced", int(ContentReading::Ending::Changed));
    }

    void tellsWhatWentWrong()
    {
        QFETCH(QString, trouble);
        const QString path = folder_->filePath("a.jpg"_s);
        const QByteArray content = contentOf(5 << 20);
        if (trouble == QLatin1String("folder"))
            QVERIFY(QDir().mkdir(path));
        else if (trouble != QLatin1String("gone"))
            writeFile(path, content);
        const bool replaced = trouble == QLatin1String("replaced");
        if (replaced)
            writeFile(path + "2"_s, content);
        const QDateTime modified = QFileInfo(path).lastModified();
        int looks = 0;
        platform::TransferControl control;
        control.cancelled = [&] {
            if (++looks != 2)
                return false;
            QFile file(path);
            if (trouble == QLatin1String("written") && file.open(QIODevice::ReadWrite)) {
                file.write("x");
                file.setFileTime(modified.addSecs(2), QFileDevice::FileModificationTime);
            } else if (trouble == QLatin1String("cut")) {
                file.resize(10);
            } else if (replaced) {
#ifdef Q_OS_WIN
                file.rename(path + "1"_s);
#else
                file.remove();
#endif
                QFile::rename(path + "2"_s, path);
            }
            return trouble == QLatin1String("cancelled");
        };
        const ContentReading reading = readContent(path, control);
        QTEST(int(reading.ending), "ending");
        QVERIFY(reading.hash.isEmpty());
        QCOMPARE(reading.proof, Proof::None);
    }

private:
    static QByteArray contentOf(int bytes)
    {
        QByteArray content(bytes, '\0');
        for (int i = 0; i < bytes; ++i)
            content[i] = char((i * 31 + i / 251) & 0xff);
        return content;
    }

    std::unique_ptr<QTemporaryDir> folder_;
};

QTEST_GUILESS_MAIN(TestContentHash)
#include "test_contenthash.moc"
