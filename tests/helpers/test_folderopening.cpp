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
        QString asked;
        FolderCommands stand = commands({});
        stand.ping = [&asked, script](const QString &host, int timeoutMs) {
            asked = host;
            return timeoutMs == 300 ? shell(script) : shell(QStringLiteral("exit 9"));
        };
        QTEST(SharedFolderOpener(nullptr, stand).isHostReachable(path, 300), "reachable");
        QTEST(asked, "asked");
    }

    void reportsHowOpeningEnded_data()
    {
        QTest::addColumn<QString>("program");
        QTest::addColumn<QString>("script");
        QTest::addColumn<bool>("success");
        QTest::addColumn<QString>("errorText");
        const QString timedOut = QStringLiteral("操作超时：请检查网络或服务器状态");
        QTest::newRow("success") << "sh"
                                 << "echo noise >&2" << true << "";
        QTest::newRow("failure with a text") << "sh"
                                             << "echo 没有权限 >&2; exit 3" << false << "没有权限";
        QTest::newRow("failure without a text") << "sh"
                                                << "exit 1" << false << "";
        QTest::newRow("crash") << "sh"
                               << "kill -9 $$" << false << "";
        QTest::newRow("hangs") << "sh" << hangs << false << timedOut;
        QTest::newRow("hangs and will not end")
            << "sh"
            << "trap '' TERM; while :; do read x </dev/zero; done" << false << timedOut;
        QTest::newRow("no such program") << "/nowhere/explorer"
                                         << "" << false << "无法启动系统文件管理器";
    }

    void reportsHowOpeningEnded()
    {
        QFETCH(QString, program);
        QFETCH(QString, script);
        FolderCommands stand = commands({});
        stand.showFolder = [program, script](const QString &) {
            return platform::Command{program, {QStringLiteral("-c"), script}};
        };
        // What hangs hangs for good, the others must not be cut short by a slow machine.
        const int timeoutMs =
            script == hangs || script.startsWith(QLatin1String("trap")) ? 200 : 60000;
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
        FolderCommands stand = commands({}, QStringLiteral("exit 0"));
        stand.showFolder = [&](const QString &path) {
            shown = path;
            asked.release();
            mayGoOn.acquire();
            return shell(QStringLiteral("exit 0"));
        };
        SharedFolderOpener opener(nullptr, stand);
        QSignalSpy states(&opener, &SharedFolderOpener::stateChanged);
        QSignalSpy finished(&opener, &SharedFolderOpener::finished);

        opener.open(share);
        opener.open(QStringLiteral("//nas/photos"));
        QVERIFY(opener.isProcessing(share));
        QVERIFY(opener.isProcessing(QStringLiteral("file:////nas/photos")));
        asked.acquire();
        QVERIFY(!asked.tryAcquire());
        QVERIFY(finished.isEmpty());
        mayGoOn.release();
        QTRY_COMPARE(finished.size(), 1);
        QCOMPARE(finished.first(), QVariantList({true, QString()}));
        QCOMPARE(states, QList<QVariantList>({{share, true}, {share, false}}));
        QVERIFY(!opener.isProcessing(share));
#ifndef Q_OS_WIN
        QCOMPARE(shown, QStringLiteral("//nas/photos"));
#endif

        mayGoOn.release();
        opener.open(share);
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
