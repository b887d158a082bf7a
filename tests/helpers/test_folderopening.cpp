#include "app/helpers/sharedfolderopener.h"

#include <QSemaphore>
#include <QSignalSpy>
#include <QTest>
#include <QThreadPool>

namespace {

platform::Command shell(const QString &script)
{
    return {QStringLiteral("sh"), {QStringLiteral("-c"), script}};
}

const QString hangs = QStringLiteral("exec sleep 600");
const QString hangsForGood = QStringLiteral("trap '' TERM; while :; do read x </dev/zero; done");
const QString share = QStringLiteral("\\\\nas\\photos");
const QString local = QStringLiteral("C:\\photos");

FolderCommands commands(const QString &showScript, const QString &pingScript = {})
{
    return {[showScript](const QString &) { return shell(showScript); },
            [pingScript](const QString &, int) { return shell(pingScript); }};
}

} // namespace

class TestFolderOpening : public QObject
{
    Q_OBJECT

private slots:
    void normalizes_data()
    {
        QTest::addColumn<QString>("path");
        QTest::addColumn<QString>("normalized");
        QTest::newRow("local") << "C:\\photos\\a"
                               << "C:/photos/a";
        QTest::newRow("file url") << "file:///C:/photos"
                                  << "/C:/photos";
        QTest::newRow("upper-case scheme") << "FILE:///C:/photos"
                                           << "/C:/photos";
        QTest::newRow("scheme only in front") << "C:\\file:\\\\a"
                                              << "C:/file://a";
        QTest::newRow("share") << share << "smb://nas/photos";
        QTest::newRow("share as file url") << "file://\\\\nas\\photos"
                                           << "smb://nas/photos";
        QTest::newRow("nothing") << ""
                                 << "";
    }

    void normalizes()
    {
        QFETCH(QString, path);
        QTEST(SharedFolderOpener::normalizePath(path), "normalized");
    }

    void asksTheHost_data()
    {
        QTest::addColumn<QString>("path");
        QTest::addColumn<QString>("script");
        QTest::addColumn<QString>("asked");
        QTest::addColumn<bool>("reachable");
        QTest::newRow("answers") << share << "exit 0"
                                 << "nas" << true;
        QTest::newRow("does not answer") << share << "exit 1"
                                         << "nas" << false;
        QTest::newRow("hangs") << share << hangs << "nas" << false;
        QTest::newRow("odd names") << "\\\\studio_2\\100% #1\\a&b"
                                   << "exit 0"
                                   << "studio_2" << true;
        QTest::newRow("address") << "\\\\192.168.1.20\\photos"
                                 << "exit 0"
                                 << "192.168.1.20" << true;
        QTest::newRow("no host") << local << "exit 0"
                                 << "" << false;
    }

    void asksTheHost()
    {
        QFETCH(QString, path);
        QFETCH(QString, script);
        // What hangs hangs for good; the others must not be cut short by a slow machine.
        const int timeoutMs = script == hangs ? 200 : 60000;
        QString asked;
        int askedFor = timeoutMs;
        FolderCommands stand = commands({});
        stand.ping = [&, script](const QString &host, int milliseconds) {
            asked = host;
            askedFor = milliseconds;
            return shell(script);
        };
        QTEST(SharedFolderOpener(nullptr, stand).isHostReachable(path, timeoutMs), "reachable");
        QTEST(asked, "asked");
        QCOMPARE(askedFor, timeoutMs);
    }

    void reportsHowOpeningEnded_data()
    {
        QTest::addColumn<QString>("script");
        QTest::addColumn<bool>("success");
        QTest::addColumn<QString>("errorText");
        const QString timedOut = QStringLiteral("操作超时：请检查网络或服务器状态");
        const QString notStarted = QStringLiteral("无法启动系统文件管理器");
        QTest::newRow("success") << "echo noise >&2" << true << "";
        QTest::newRow("failure with a text") << "echo 没有权限 >&2; exit 3" << false << "没有权限";
        QTest::newRow("failure without a text") << "exit 1" << false << "";
        QTest::newRow("crash") << "kill -9 $$" << false << "";
        QTest::newRow("hangs") << hangs << false << timedOut;
        QTest::newRow("hangs and will not end") << hangsForGood << false << timedOut;
        QTest::newRow("no such program") << QString() << false << notStarted;
    }

    void reportsHowOpeningEnded()
    {
        QFETCH(QString, script);
        FolderCommands stand = commands({});
        stand.showFolder = [script](const QString &) {
            return script.isNull() ? platform::Command{QStringLiteral("/nowhere/explorer"), {}}
                                   : shell(script);
        };
        const int timeoutMs = script == hangs || script == hangsForGood ? 200 : 60000;
        const FolderOpening result =
            SharedFolderOpener(nullptr, stand).openInExplorer(local, timeoutMs);
        QTEST(result.success, "success");
        QTEST(result.errorText, "errorText");
    }

    void opensEachFolderOnce()
    {
        QSemaphore asked;
        QSemaphore mayGoOn;
        QString shown;
        FolderCommands stand = commands({});
        stand.showFolder = [&](const QString &path) {
            shown = path;
            asked.release();
            mayGoOn.acquire();
            return shell(QStringLiteral("exit 0"));
        };
        SharedFolderOpener opener(nullptr, stand);
        QSignalSpy states(&opener, &SharedFolderOpener::stateChanged);
        QSignalSpy finished(&opener, &SharedFolderOpener::finished);

        opener.open(local);
        opener.open(QStringLiteral("file://C:/photos"));
        QVERIFY(opener.isProcessing(local));
        QVERIFY(opener.isProcessing(QStringLiteral("C:/photos")));
        asked.acquire();
        QVERIFY(!asked.tryAcquire());
        QVERIFY(finished.isEmpty());
        mayGoOn.release();
        QTRY_COMPARE(finished.size(), 1);
        QCOMPARE(finished.first(), QVariantList({true, QString()}));
        QCOMPARE(states, QList<QVariantList>({{local, true}, {local, false}}));
        QVERIFY(!opener.isProcessing(local));
#ifndef Q_OS_WIN
        QCOMPARE(shown, QStringLiteral("C:/photos"));
#endif

        mayGoOn.release();
        opener.open(local);
        QTRY_COMPARE(finished.size(), 2);
        QCOMPARE(asked.available(), 1);
    }

    void opensNoFolderOfAnUnreachableHost()
    {
        QAtomicInt shows;
        FolderCommands stand = commands({}, QStringLiteral("exit 1"));
        stand.showFolder = [&shows](const QString &) {
            ++shows;
            return shell(QStringLiteral("exit 0"));
        };
        SharedFolderOpener opener(nullptr, stand);
        QSignalSpy finished(&opener, &SharedFolderOpener::finished);
        opener.open(share);
        QTRY_COMPARE(finished.size(), 1);
        QCOMPARE(finished.first().at(0).toBool(), false);
        QVERIFY(finished.first().at(1).toString().contains(QLatin1String("nas")));
        QCOMPARE(shows.loadAcquire(), 0);

        opener.open(local); // nobody to ask
        QTRY_COMPARE(finished.size(), 2);
        QCOMPARE(finished.last().at(0).toBool(), true);

        // Reachable; asked again should a slow machine not have answered within the second.
        SharedFolderOpener other(nullptr,
                                 commands(QStringLiteral("exit 0"), QStringLiteral("exit 0")));
        bool opened = false;
        connect(&other, &SharedFolderOpener::finished, this,
                [&opened](bool success) { opened = opened || success; });
        QTRY_VERIFY((other.open(share), opened));
    }

    void goesWithoutWaiting()
    {
        QSemaphore asked;
        QSemaphore mayGoOn;
        FolderCommands stand = commands({});
        stand.showFolder = [&](const QString &) {
            asked.release();
            mayGoOn.acquire();
            return shell(QStringLiteral("exit 0"));
        };
        auto *opener = new SharedFolderOpener(nullptr, stand);
        opener->open(local);
        asked.acquire();
        delete opener; // would never return if it waited
        mayGoOn.release();
        QVERIFY(QThreadPool::globalInstance()->waitForDone(60000));
    }

    void endsWhatHangsWhenItGoes()
    {
        // Below the ten seconds after which it would have been ended anyway.
        constexpr int soonMs = 7000;
        QSemaphore asked;
        FolderCommands stand = commands({});
        stand.showFolder = [&asked](const QString &) {
            asked.release();
            return shell(hangs);
        };
        auto *opener = new SharedFolderOpener(nullptr, stand);
        opener->open(local);
        asked.acquire();
        delete opener;
        QVERIFY(QThreadPool::globalInstance()->waitForDone(soonMs));
    }
};

QTEST_GUILESS_MAIN(TestFolderOpening)
#include "test_folderopening.moc"
