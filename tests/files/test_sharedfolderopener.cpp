#include "files/sharedfolderopener.h"
#include "tasks/background.h"
#include "tests/support/files.h"
#include "tests/support/text.h"

#include <QCoreApplication>
#include <QDir>
#include <QSemaphore>
#include <QSignalSpy>
#include <QTemporaryDir>
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
const QString localSlashed = QDir::tempPath();
const QString local = wireForm(localSlashed);

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

class TestSharedFolderOpener : public QObject
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
        QTRY_COMPARE(gate.asked.available(), 1);
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
        const QTemporaryDir folder;
        const QString launcher = folder.filePath("原片.desktop"_s);
        writeFile(launcher, {});
        for (const QString &path :
             {"photos"_s, "http://studio/"_s, "--help"_s, "calc.exe"_s, "shell:startup"_s,
              "::{20D04FE0-3AEA-1069-A2D8-08002B30309D}"_s, "\\\\.\\COM1"_s, local + "\\..\\x"_s,
              launcher, folder.filePath("gone"_s)}) {
            finished.clear();
            opener.open(path);
            QTRY_COMPARE(finished.size(), 1);
            QCOMPARE(finished.first().at(0).toBool(), false);
            QVERIFY(finished.first().at(1).toString().contains(path));
        }
        QCOMPARE(gate.asked.available(), 0);
    }

    void waitsForNoShareThatHasGone()
    {
        Gate gate;
        QSemaphore lookEnds;
        FolderCommands commands = gate.commands(succeeds);
        commands.isFolder = [&lookEnds](const QString &) {
            lookEnds.acquire();
            return true;
        };
        commands.lookTimeoutMs = 10;
        SharedFolderOpener opener(nullptr, commands);
        QSignalSpy finished(&opener, &SharedFolderOpener::finished);
        opener.open(local);
        QTRY_COMPARE(finished.size(), 1);
        QCOMPARE(finished.first().at(0).toBool(), false);
        QVERIFY(!finished.first().at(1).toString().isEmpty());
        QVERIFY(!opener.isProcessing(local));

        lookEnds.release();
        QVERIFY(diskPool().waitForDone(60000));
        QCoreApplication::processEvents();
        QCOMPARE(gate.asked.available(), 0);
        QCOMPARE(finished.size(), 1);
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
        FolderCommands answering = commands(succeeds, succeeds);
        answering.isFolder = [](const QString &) { return true; };
        SharedFolderOpener other(nullptr, answering);
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
            QTRY_COMPARE(gate.asked.available(), 1);
            gate.asked.acquire();
            delete opener; // would never return if it waited
            gate.mayGoOn.release();
            // What hangs is ended: below the ten seconds after which it would have been anyway.
            const int soonMs = behaviour == hangs ? 7000 : 60000;
            QTRY_VERIFY_WITH_TIMEOUT(goesOn.expired(), soonMs);
        }
    }
};

QTEST_GUILESS_MAIN(TestSharedFolderOpener)
#include "test_sharedfolderopener.moc"
