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
        for (int second = 0; second <= 10; ++second)
            rate.add(second * 1000, second * 8 * megabyte);
        QCOMPARE(rate.bytesPerSecond(), 8.0 * megabyte);
        QCOMPARE(progressText(progress, rate),
                 "文件 12/400 · 96.0 MB / 3.0 GB · 8.0 MB/s · 剩余 06:12"_s);
        // Older speed does not count: ten seconds of standstill are a standstill.
        rate.add(30000, 80 * megabyte);
        rate.add(40000, 80 * megabyte);
        QCOMPARE(rate.bytesPerSecond(), 0.0);
        QCOMPARE(rate.secondsLeft(megabyte), qint64(-1));
    }
};

QTEST_GUILESS_MAIN(TestTransferProgress)
#include "test_transferprogress.moc"
