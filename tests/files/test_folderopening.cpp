#include "files/sharedfolderopener.h"
#include "tests/support/text.h"

#include <QCoreApplication>
#include <QSemaphore>
#include <QSignalSpy>
#include <QTest>

namespace {

QString text(const char *utf8)
{
    return QString::fromUtf8(utf8);
}

platform::Command standIn(const QString &behaviour)
{
    return {QCoreApplication::applicationDirPath() + "/tessavo-standin"_s, {behaviour}};
}

const QString succeeds = "succeed"_s;
const QString fails = "fail"_s;
const QString hangs = "hang"_s;
const QString share = "\\\\nas\\photos"_s;
#ifdef Q_OS_WIN
const QString local = "C:\\photos"_s;
#else
const QString local = "\\photos"_s;
#endif
const QString localSlashed = QString(local).replace(QLatin1Char('\\'), QLatin1Char('/'));

FolderCommands commands(const QString &showing, const QString &pinging)
{
    return {[showing](const QString &) { return standIn(showing); },
            [pinging](const QString &, int) { return standIn(pinging); }};
}

/// Tells when a folder is about to be shown, and lets that go on when told.
struct Gate
{
    FolderCommands commands(const QString &behaviour)
    {
        return {[this, behaviour](const QString &path) {
                    shown = path;
                    asked.release();
                    mayGoOn.acquire();
                    return standIn(behaviour);
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
            QString behaviour;
            const char *host;
            bool reachable;
        } rows[] = {{"\\\\nas\\photos", succeeds, "nas", true},
                    {"\\\\nas\\photos", fails, "nas", false},
                    {"\\\\nas\\photos", hangs, "nas", false},
                    {"\\\\studio_2\\100% #1\\a&b", succeeds, "studio_2", true},
                    {"\\\\192.168.1.20\\photos", succeeds, "192.168.1.20", true},
                    {"C:\\photos", succeeds, "", false}};
        for (const auto &row : rows) {
            // What hangs hangs for good; the others must not be cut short by a slow machine.
            const int timeoutMs = row.behaviour == hangs ? 200 : 60000;
            QString asked;
            int askedFor = timeoutMs;
            const auto ping = [&](const QString &host, int milliseconds) {
                asked = host;
                askedFor = milliseconds;
                return standIn(row.behaviour);
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
            const char *behaviour;
            bool success;
            const char *errorText;
            int timeoutMs = 60000;
        } rows[] = {{"succeed with noise", true, ""},
                    {"complain", false, "没有权限"},
                    {"fail", false, ""},
                    {"crash", false, ""},
                    {"hang", false, timedOut, 200},
                    {"hang stubbornly", false, timedOut, 200},
                    {nullptr, false, notStarted}};
        for (const auto &row : rows) {
            const auto show = [&row](const QString &) {
                return row.behaviour ? standIn(text(row.behaviour))
                                     : platform::Command{"/nowhere/explorer"_s, {}};
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
        opener.open("file://"_s + localSlashed);
        QVERIFY(opener.isProcessing(localSlashed));
        gate.asked.acquire();
        QVERIFY(!gate.asked.tryAcquire());
        QVERIFY(finished.isEmpty());
        gate.mayGoOn.release();
        QTRY_COMPARE(finished.size(), 1);
        QCOMPARE(finished.first(), QVariantList({true, QString()}));
        QCOMPARE(states, QList<QVariantList>({{local, true}, {local, false}}));
        QVERIFY(!opener.isProcessing(local));
#ifndef Q_OS_WIN
        QCOMPARE(gate.shown, localSlashed);
#endif

        gate.mayGoOn.release();
        opener.open(local);
        QTRY_COMPARE(finished.size(), 2);
        QCOMPARE(gate.asked.available(), 1);
    }

    void opensNothingThatIsNoFolder()
    {
        Gate gate;
        SharedFolderOpener opener(nullptr, gate.commands(succeeds));
        QSignalSpy finished(&opener, &SharedFolderOpener::finished);
        for (const QString &path : {"photos"_s, "\\\\.\\COM1"_s, local + "\\..\\x"_s}) {
            finished.clear();
            opener.open(path);
            QTRY_COMPARE(finished.size(), 1);
            QCOMPARE(finished.first().at(0).toBool(), false);
            QVERIFY(finished.first().at(1).toString().contains(path));
        }
        QCOMPARE(gate.asked.available(), 0);
    }

    void opensNoFolderOfAnUnreachableHost()
    {
        Gate gate;
        gate.mayGoOn.release(2);
        FolderCommands stand = gate.commands(succeeds);
        stand.ping = commands({}, fails).ping;
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
        for (const QString &behaviour : {succeeds, hangs}) {
            Gate gate;
            gate.mayGoOn.release(behaviour == hangs ? 1 : 0);
            FolderCommands commands = gate.commands(behaviour);
            auto thread = std::make_shared<int>(); // holds this to its end
            const std::weak_ptr<int> goesOn = thread;
            commands.showFolder = [thread, show = commands.showFolder](const QString &path) {
                return show(path);
            };
            auto *opener = new SharedFolderOpener(nullptr, std::exchange(commands, {}));
            thread.reset();
            opener->open(local);
            gate.asked.acquire();
            delete opener; // would never return if it waited
            gate.mayGoOn.release();
            // What hangs is ended: below the ten seconds after which it would have been anyway.
            const int soonMs = behaviour == hangs ? 7000 : 60000;
            QTRY_VERIFY_WITH_TIMEOUT(goesOn.expired(), soonMs);
        }
    }
};

QTEST_GUILESS_MAIN(TestFolderOpening)
#include "test_folderopening.moc"
