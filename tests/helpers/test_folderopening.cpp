#include "app/helpers/sharedfolderopener.h"

#include <QSemaphore>
#include <QSignalSpy>
#include <QTest>
#include <QThreadPool>

namespace {

QString text(const char *utf8)
{
    return QString::fromUtf8(utf8);
}

platform::Command shell(const QString &script)
{
    return {QStringLiteral("sh"), {QStringLiteral("-c"), script}};
}

const QString succeeds = QStringLiteral("exit 0");
const QString hangs = QStringLiteral("exec sleep 600");
const QString share = QStringLiteral("\\\\nas\\photos");
const QString local = QStringLiteral("C:\\photos");

FolderCommands commands(const QString &showScript, const QString &pingScript)
{
    return {[showScript](const QString &) { return shell(showScript); },
            [pingScript](const QString &, int) { return shell(pingScript); }};
}

/// Tells when a folder is about to be shown, and lets that go on when told.
struct Gate
{
    FolderCommands commands(const QString &script)
    {
        return {[this, script](const QString &path) {
                    shown = path;
                    asked.release();
                    mayGoOn.acquire();
                    return shell(script);
                },
                {}};
    }

    QString shown;
    QSemaphore asked;
    QSemaphore mayGoOn;
};

} // namespace

class TestFolderOpening : public QObject
{
    Q_OBJECT

private slots:
    void normalizes()
    {
        for (const auto &[path, normalized] : {std::pair("C:\\photos\\a", "C:/photos/a"),
                                               {"file:///C:/photos", "/C:/photos"},
                                               {"FILE:///C:/photos", "/C:/photos"},
                                               {"C:\\file:\\\\a", "C:/file://a"},
                                               {"\\\\nas\\photos", "smb://nas/photos"},
                                               {"file://\\\\nas\\photos", "smb://nas/photos"},
                                               {"", ""}})
            QCOMPARE(SharedFolderOpener::normalizePath(text(path)), text(normalized));
    }

    void asksTheHost()
    {
        const struct
        {
            const char *path;
            QString script;
            const char *host;
            bool reachable;
        } rows[] = {{"\\\\nas\\photos", succeeds, "nas", true},
                    {"\\\\nas\\photos", QStringLiteral("exit 1"), "nas", false},
                    {"\\\\nas\\photos", hangs, "nas", false},
                    {"\\\\studio_2\\100% #1\\a&b", succeeds, "studio_2", true},
                    {"\\\\192.168.1.20\\photos", succeeds, "192.168.1.20", true},
                    {"C:\\photos", succeeds, "", false}};
        for (const auto &row : rows) {
            // What hangs hangs for good; the others must not be cut short by a slow machine.
            const int timeoutMs = row.script == hangs ? 200 : 60000;
            QString asked;
            int askedFor = timeoutMs;
            const auto ping = [&](const QString &host, int milliseconds) {
                asked = host;
                askedFor = milliseconds;
                return shell(row.script);
            };
            const SharedFolderOpener opener(nullptr, {{}, ping});
            QCOMPARE(opener.isHostReachable(text(row.path), timeoutMs), row.reachable);
            QCOMPARE(asked, text(row.host));
            QCOMPARE(askedFor, timeoutMs);
        }
    }

    void reportsHowOpeningEnded()
    {
        const char timedOut[] = "操作超时：请检查网络或服务器状态";
        const char notStarted[] = "无法启动系统文件管理器";
        const struct
        {
            const char *script;
            bool success;
            const char *errorText;
            int timeoutMs = 60000;
        } rows[] = {{"echo noise >&2", true, ""},
                    {"echo 没有权限 >&2; exit 3", false, "没有权限"},
                    {"exit 1", false, ""},
                    {"kill -9 $$", false, ""},
                    {"exec sleep 600", false, timedOut, 200},
                    {"trap '' TERM; while :; do read x </dev/zero; done", false, timedOut, 200},
                    {nullptr, false, notStarted}};
        for (const auto &row : rows) {
            const auto show = [&row](const QString &) {
                return row.script ? shell(text(row.script))
                                  : platform::Command{QStringLiteral("/nowhere/explorer"), {}};
            };
            const SharedFolderOpener opener(nullptr, {show, {}});
            const FolderOpening result = opener.openInExplorer(local, row.timeoutMs);
            QCOMPARE(result.success, row.success);
            QCOMPARE(result.errorText, text(row.errorText));
        }
    }

    void opensEachFolderOnce()
    {
        Gate gate;
        SharedFolderOpener opener(nullptr, gate.commands(succeeds));
        QSignalSpy states(&opener, &SharedFolderOpener::stateChanged);
        QSignalSpy finished(&opener, &SharedFolderOpener::finished);

        opener.open(local);
        opener.open(QStringLiteral("file://C:/photos"));
        QVERIFY(opener.isProcessing(QStringLiteral("C:/photos")));
        gate.asked.acquire();
        QVERIFY(!gate.asked.tryAcquire());
        QVERIFY(finished.isEmpty());
        gate.mayGoOn.release();
        QTRY_COMPARE(finished.size(), 1);
        QCOMPARE(finished.first(), QVariantList({true, QString()}));
        QCOMPARE(states, QList<QVariantList>({{local, true}, {local, false}}));
        QVERIFY(!opener.isProcessing(local));
#ifndef Q_OS_WIN
        QCOMPARE(gate.shown, QStringLiteral("C:/photos"));
#endif

        gate.mayGoOn.release();
        opener.open(local);
        QTRY_COMPARE(finished.size(), 2);
        QCOMPARE(gate.asked.available(), 1);
    }

    void opensNoFolderOfAnUnreachableHost()
    {
        Gate gate;
        gate.mayGoOn.release(2);
        FolderCommands stand = gate.commands(succeeds);
        stand.ping = commands({}, QStringLiteral("exit 1")).ping;
        SharedFolderOpener opener(nullptr, stand);
        QSignalSpy finished(&opener, &SharedFolderOpener::finished);
        opener.open(share);
        QTRY_COMPARE(finished.size(), 1);
        QCOMPARE(finished.first().at(0).toBool(), false);
        QVERIFY(finished.first().at(1).toString().contains(QLatin1String("nas")));
        QCOMPARE(gate.asked.available(), 0);

        opener.open(local); // nobody to ask
        QTRY_COMPARE(finished.size(), 2);
        QCOMPARE(finished.last().at(0).toBool(), true);

        // Reachable; asked again should a slow machine not have answered within the second.
        SharedFolderOpener other(nullptr, commands(succeeds, succeeds));
        bool opened = false;
        connect(&other, &SharedFolderOpener::finished, this,
                [&opened](bool success) { opened = opened || success; });
        QTRY_VERIFY((other.open(share), opened));
    }

    void goesWithoutWaiting()
    {
        for (const QString &script : {succeeds, hangs}) {
            Gate gate;
            gate.mayGoOn.release(script == hangs ? 1 : 0);
            auto *opener = new SharedFolderOpener(nullptr, gate.commands(script));
            opener->open(local);
            gate.asked.acquire();
            delete opener; // would never return if it waited
            gate.mayGoOn.release();
            // What hangs is ended: below the ten seconds after which it would have been anyway.
            const int soonMs = script == hangs ? 7000 : 60000;
            QVERIFY(QThreadPool::globalInstance()->waitForDone(soonMs));
        }
    }
};

QTEST_GUILESS_MAIN(TestFolderOpening)
#include "test_folderopening.moc"
