#include "files/transferprogress.h"
#include "tests/support/text.h"

#include <QtTest>

#include <cmath>

class TestTransferProgress : public QObject
{
    Q_OBJECT

private slots:
    void sizes()
    {
        for (const auto &[bytes, text] : {std::pair(0.0, "0 B"),
                                          {1023, "1023 B"},
                                          {1024, "1.0 KB"},
                                          {1048575, "1.0 MB"},
                                          {5 * std::pow(2, 29), "2.5 GB"},
                                          {std::pow(2, 41), "2048.0 GB"}})
            QCOMPARE(dataSizeText(bytes), QLatin1String(text));
    }

    void progressIsToldInWords()
    {
        constexpr qint64 megabyte = 1024 * 1024;
        TransferProgress progress{12, 400, 96 * megabyte, 3 * 1024 * megabyte};
        TransferRate rate;
        QCOMPARE(progressText(progress, rate), "文件 12/400 · 96.0 MB / 3.0 GB · 0 B/s"_s);
        for (int second = 0; second <= 10; ++second) {
            progress.filesDone = 2 + second;
            progress.bytesDone = (16 + second * 8) * megabyte;
            rate.add(second * 1000, progress);
        }
        QCOMPARE(rate.bytesPerSecond(), 8.0 * megabyte);
        QCOMPARE(progressText(progress, rate),
                 "文件 12/400 · 96.0 MB / 3.0 GB · 8.0 MB/s · 剩余 06:12"_s);
        rate.hold();
        rate.add(600000, progress);
        QCOMPARE(rate.secondsLeft(progress), qint64(372));
        QCOMPARE(pausedText(progress), "已暂停 · 文件 12/400 · 96.0 MB / 3.0 GB"_s);
        // Older speed does not count: ten seconds of standstill are a standstill.
        rate.add(630000, progress);
        rate.add(640000, progress);
        QCOMPARE(rate.bytesPerSecond(), 0.0);
        QCOMPARE(progressText(progress, rate),
                 "文件 12/400 · 96.0 MB / 3.0 GB · 0 B/s · 00:40 没有进展"_s);
        rate.clear();
        QCOMPARE(rate.secondsLeft(progress), qint64(-1));
    }

    void whatHasNoBytesIsCountedByFiles()
    {
        TransferProgress progress{3, 12, 0, 0, "TS1-1 周子墨"_s, "a.jpg"_s};
        QCOMPARE(progress.share(), 0.25);
        QCOMPARE(progressText(progress, {}), "文件 3/12"_s);
        QCOMPARE(currentText(progress), "TS1-1 周子墨 · a.jpg"_s);
        // Written bytes of which nobody knows the whole foretell nothing: the files do.
        TransferRate rate;
        for (int second = 0; second <= 6; ++second) {
            progress.filesDone = second;
            progress.bytesDone = qint64(second) * 1024 * 1024;
            rate.add(second * 1000, progress);
        }
        QCOMPARE(progressText(progress, rate), "文件 6/12 · 6.0 MB · 1.0 MB/s · 剩余 00:06"_s);
        progress.file.clear();
        QCOMPARE(currentText(progress), "TS1-1 周子墨"_s);
        QCOMPARE((TransferProgress{1, 1, 300, 200}.share()), 1.0);
        QCOMPARE(TransferProgress().share(), 0.0);
    }
};

QTEST_GUILESS_MAIN(TestTransferProgress)
#include "test_transferprogress.moc"
