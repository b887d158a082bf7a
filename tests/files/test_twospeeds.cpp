#include "files/twospeeds.h"
#include "tests/support/text.h"

#include <QtTest>

#include <cmath>

namespace {

constexpr qint64 megabyte = 1000 * 1000;

/// A run whose files cost what they cost, told four times a second.
class Run
{
public:
    TwoSpeeds speeds;

    /// For \a seconds, files of \a bytes each, one of which takes \a msPerFile and its bytes.
    void work(int seconds, qint64 bytes, double msPerFile, double bytesPerMs)
    {
        const double each = msPerFile + double(bytes) / bytesPerMs;
        for (int step = 0; step < seconds * 4; ++step) {
            ms_ += 250;
            // The bytes go on within a file; the file itself counts when it is done.
            done_ += 250 / each;
            bytesDone_ += 250 / each * double(bytes);
            tell();
        }
    }
    void stand(int seconds)
    {
        for (int second = 0; second < seconds; ++second) {
            ms_ += 1000;
            tell();
        }
    }
    void pause(int seconds)
    {
        speeds.hold();
        ms_ += qint64(seconds) * 1000;
        tell();
    }
    void fail(int files, qint64 bytes)
    {
        done_ += files;
        bytesDone_ -= double(bytes);
        tell();
    }
    void tell() { speeds.add(ms_, int(std::floor(done_ + 1e-6)), qint64(bytesDone_)); }

private:
    qint64 ms_ = 1000000;
    double done_ = 0;
    double bytesDone_ = 0;
};

bool isAbout(qint64 ms, double expected)
{
    const bool is = std::abs(double(ms) - expected) <= expected / 10;
    if (!is)
        qWarning() << ms << "instead of" << expected;
    return is;
}

} // namespace

class TestTwoSpeeds : public QObject
{
    Q_OBJECT

private slots:
    void tellsSmallFilesFromLargeOnes()
    {
        // 20 ms a file and 100 MB a second: after small and large ones, either kind is foretold.
        Run run;
        run.tell();
        run.work(20, megabyte / 10, 20, 100000);
        run.work(20, 50 * megabyte, 20, 100000);
        QVERIFY(isAbout(run.speeds.msLeft(1000, 100 * megabyte), 21000));
        QVERIFY(isAbout(run.speeds.msLeft(10, 5000 * megabyte), 50200));
        QVERIFY(isAbout(run.speeds.msLeft(500, 5000 * megabyte), 60000));
        QCOMPARE(run.speeds.msLeft(0, 0), qint64(0));
        QCOMPARE(run.speeds.msLeft(-1, -1), qint64(0));
    }

    void filesOfOneKindAreForetoldByTheirOwn_data()
    {
        QTest::addColumn<qint64>("bytes");
        QTest::addColumn<double>("msPerFile");

        QTest::newRow("photos") << 8 * megabyte << 10.0;
        QTest::newRow("videos, none done yet") << 4000 * megabyte << 0.0;
        QTest::newRow("tiny") << qint64(200) << 25.0;
        QTest::newRow("without bytes") << qint64(0) << 25.0;
    }

    void filesOfOneKindAreForetoldByTheirOwn()
    {
        QFETCH(qint64, bytes);
        QFETCH(double, msPerFile);

        Run run;
        run.tell();
        run.work(10, bytes, msPerFile, 100000);
        const double each = msPerFile + double(bytes) / 100000;
        QVERIFY(isAbout(run.speeds.msLeft(100, 100 * bytes), 100 * each));
    }

    void saysNothingBeforeItKnows()
    {
        Run run;
        QCOMPARE(run.speeds.msLeft(10, megabyte), qint64(-1));
        run.tell();
        run.work(1, megabyte, 10, 100000);
        QCOMPARE(run.speeds.msLeft(10, megabyte), qint64(-1));
        Run standing;
        standing.tell();
        standing.stand(30);
        QCOMPARE(standing.speeds.msLeft(10, megabyte), qint64(-1));
        QCOMPARE(standing.speeds.idleMs(), qint64(30000));
    }

    void aPauseCostsNothing()
    {
        Run run;
        run.tell();
        run.work(10, 8 * megabyte, 0, 100000);
        const qint64 before = run.speeds.msLeft(100, 800 * megabyte);
        run.pause(3600);
        QCOMPARE(run.speeds.idleMs(), qint64(0));
        QCOMPARE(run.speeds.msLeft(100, 800 * megabyte), before);
        run.work(10, 8 * megabyte, 0, 100000);
        QVERIFY(isAbout(run.speeds.msLeft(100, 800 * megabyte), double(before)));
    }

    void aStandstillIsNotExpectedForEver()
    {
        Run run;
        run.tell();
        run.work(30, 8 * megabyte, 0, 100000);
        const qint64 before = run.speeds.msLeft(1000, 8000 * megabyte);
        run.stand(600);
        QCOMPARE(run.speeds.idleMs(), qint64(600000));
        run.work(2, 8 * megabyte, 0, 100000);
        QVERIFY(run.speeds.idleMs() < 1000);
        QVERIFY(run.speeds.msLeft(1000, 8000 * megabyte) < 2 * before);
        QVERIFY(run.speeds.msLeft(1000, 8000 * megabyte) > before);
    }

    void followsASpeedThatChanges()
    {
        Run run;
        run.tell();
        run.work(60, 8 * megabyte, 0, 100000);
        run.work(300, 8 * megabyte, 0, 10000);
        QVERIFY(isAbout(run.speeds.msLeft(100, 800 * megabyte), 80000));
    }

    void bytesThatAreTakenBackDoNoHarm()
    {
        Run run;
        run.tell();
        for (int i = 0; i < 20; ++i) {
            run.work(2, 8 * megabyte, 0, 100000);
            run.fail(0, 4 * megabyte);
        }
        QVERIFY(isAbout(run.speeds.msLeft(100, 800 * megabyte), 8000));
    }
};

QTEST_GUILESS_MAIN(TestTwoSpeeds)
#include "test_twospeeds.moc"
