#include "ledger/ledger.h"
#include "tests/support/files.h"
#include "tests/support/patience.h"
#include "tests/support/smalldisk.h"
#include "tests/support/text.h"

#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <QtTest>

#include <functional>
#include <memory>

namespace {

const ledger::Desk desk{"u1"_s, "b1"_s, ledger::Work::ImportOriginals};

ledger::OrderKey orderOf(int number)
{
    return {{"b1"_s, QString::number(number), "p%1"_s.arg(number)},
            "TS%1-1"_s.arg(10000 + number),
            "王小姐%1"_s.arg(number)};
}

ledger::Hash hashOf(char letter)
{
    return QByteArray(16, letter);
}

ledger::NewCopy photo(const QString &name, const QString &folder = R"(\\nas\photos\2026\order)"_s)
{
    ledger::NewCopy copy;
    copy.source = "E:/DCIM/100CANON/"_s + name;
    copy.volume = {"EOS_DIGITAL"_s, "1A2B-3C4D"_s};
    copy.sourceBytes = 8000000 + name.size();
    copy.sourceModifiedMs = 1700000000123;
    copy.target = folder + QLatin1Char('\\') + name;
    copy.toRegister = true;
    return copy;
}

ledger::CopyResult read(char letter)
{
    return {ledger::Proof::Server, hashOf(letter), hashOf(letter), -1};
}

QStringList targetsOf(const QVector<ledger::Copy> &copies)
{
    QStringList targets;
    for (const ledger::Copy &copy : copies)
        targets.append(copy.target);
    return targets;
}

} // namespace

Q_DECLARE_METATYPE(ledger::HistorySearch)

class TestLedger : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        folder_ = std::make_unique<QTemporaryDir>();
        QVERIFY(folder_->isValid());
        open();
    }
    void cleanup()
    {
        ledger_.reset();
        folder_.reset();
    }

    /// What is begun, finished and registered comes back as it was said, and so it is after the
    /// program has ended.
    void copyIsKept()
    {
        const ledger::RunId run = ledger_->beginRun({desk, "小李"_s});
        ledger::NewCopy upright = photo("IMG_2.JPG"_s);
        upright.kind = ledger::CopyKind::Upright;
        upright.target = R"(\\nas\photos\2026\order\IMG_2_1.JPG)"_s;
        upright.toRegister = false;
        const QVector<ledger::CopyId> ids =
            ledger_->beginCopies(run, orderOf(1), {photo("IMG_1.JPG"_s), upright});
        QVERIFY(ledger_->waitUntilWritten());
        ledger_->finishCopy(ids.at(0), read('a'));
        ledger_->finishCopy(ids.at(1), {ledger::Proof::Derived, hashOf('b'), hashOf('c'), 77});
        ledger_->registerCopies({ids.at(0)});
        ledger_->endRun(run);
        ledger_.reset();
        open();

        const QVector<ledger::Copy> copies = ledger_->answer(
            [](const LedgerReader &reader) { return reader.copiesOfOrder(orderOf(1).identity); });
        QCOMPARE(copies.size(), 2);
        const ledger::Copy &first = copies.at(1);
        QCOMPARE(first.source, "E:/DCIM/100CANON/IMG_1.JPG"_s);
        QCOMPARE(first.volume.label, "EOS_DIGITAL"_s);
        QCOMPARE(first.volume.serial, "1A2B-3C4D"_s);
        QCOMPARE(first.sourceBytes, 8000009);
        QCOMPARE(first.targetBytes, 8000009);
        QCOMPARE(first.sourceModifiedMs, 1700000000123);
        QCOMPARE(first.target, R"(\\nas\photos\2026\order\IMG_1.JPG)"_s);
        QCOMPARE(first.kind, ledger::CopyKind::Bytes);
        QCOMPARE(first.proof, ledger::Proof::Server);
        QCOMPARE(first.sourceHash, hashOf('a'));
        QCOMPARE(first.targetHash, hashOf('a'));
        QVERIFY(first.begunMs != 0 && first.isFinished() && first.registeredMs != 0);
        QCOMPARE(first.registration, ledger::Registration::Done);
        QCOMPARE(first.who, "小李"_s);
        QCOMPARE(first.order.identity, orderOf(1).identity);
        QCOMPARE(first.order.number, "TS10001-1"_s);
        QCOMPARE(first.work, ledger::Work::ImportOriginals);
        const ledger::Copy &second = copies.at(0);
        QCOMPARE(second.target, upright.target);
        QCOMPARE(second.kind, ledger::CopyKind::Upright);
        QCOMPARE(second.sourceHash, hashOf('b'));
        QCOMPARE(second.targetHash, hashOf('c'));
        QCOMPARE(second.targetBytes, 77);
        QCOMPARE(second.registration, ledger::Registration::NotWanted);
    }

    void answersComeToTheContext()
    {
        ledger_->beginRun({desk, {}});
        auto context = std::make_unique<QObject>();
        bool dead = false;
        ledger_->ask(
            context.get(), [](const LedgerReader &reader) { return reader.isOpen(); },
            [&dead](bool) { dead = true; });
        context.reset();
        QObject here;
        bool isOpen = false;
        bool isWritten = false;
        ledger_->ask(
            &here, [](const LedgerReader &reader) { return reader.isOpen(); },
            [&isOpen](bool answer) { isOpen = answer; });
        ledger_->whenWritten(&here, [&isWritten](bool answer) { isWritten = answer; });
        QTRY_VERIFY(isOpen && isWritten);
        QVERIFY(!dead);
    }

    void findsFilesByWhatIsKnownOfThem()
    {
        const ledger::RunId run = ledger_->beginRun({desk, {}});
        const QVector<ledger::CopyId> ids =
            ledger_->beginCopies(run, orderOf(1),
                                 {photo("IMG_1.JPG"_s), photo("IMG_2.JPG"_s),
                                  photo("img_3.jpg"_s, R"(\\NAS\photos\2026\ORDER\sub)"_s)});
        ledger_->finishCopy(ids.at(0), read('a'));
        ledger_->finishCopy(ids.at(2), read('c'));
        const ledger::FileStamp stamp{"img_1.jpg"_s, 8000009, 1700000000123};
        ledger::FileStamp later = stamp;
        later.modifiedMs += 1;
        const auto like = ledger_->answer([=](const LedgerReader &reader) {
            return reader.copiesLike({later, stamp, {"IMG_2.JPG"_s, 8000009, 1700000000123}});
        });
        QCOMPARE(like.size(), 3);
        QVERIFY(like.at(0).isEmpty());
        QCOMPARE(targetsOf(like.at(1)), QStringList{R"(\\nas\photos\2026\order\IMG_1.JPG)"_s});
        QVERIFY(like.at(2).isEmpty()); // never finished
        const auto same = ledger_->answer([](const LedgerReader &reader) {
            return reader.copiesOf({hashOf('c'), {}, hashOf('z')});
        });
        QCOMPARE(same.at(0).size(), 1);
        QVERIFY(same.at(1).isEmpty() && same.at(2).isEmpty());
        const auto into = ledger_->answer([](const LedgerReader &reader) {
            return reader.copiesInto("//nas/Photos/2026/order/"_s);
        });
        QCOMPARE(into.size(), 2);
        const auto below = ledger_->answer([](const LedgerReader &reader) {
            return reader.copiesBelow(R"(\\nas\photos\2026\order)"_s, {desk.work});
        });
        QCOMPARE(below.size(), 3);
    }

    /// Of several copies onto one file the newest counts, even an unfinished one; one that failed
    /// has left what was there.
    void newestCopyOntoAFileCounts()
    {
        const auto again = [this](char content) {
            const ledger::RunId run = ledger_->beginRun({desk, {}});
            const ledger::CopyId id =
                ledger_->beginCopies(run, orderOf(1), {photo("IMG_1.JPG"_s)}).first();
            if (content != '-')
                ledger_->finishCopy(id, read(content));
            return id;
        };
        const QStringList targets{R"(\\nas\photos\2026\order\img_1.jpg)"_s,
                                  R"(\\nas\photos\2026\order\none.jpg)"_s};
        const auto standing = [this, targets] {
            const auto copies = ledger_->answer(
                [=](const LedgerReader &reader) { return reader.copiesOnto(targets); });
            return copies.at(1).id == 0 ? copies.at(0).sourceHash : QByteArray("found none");
        };
        again('a');
        const ledger::CopyId second = again('b');
        QCOMPARE(standing(), hashOf('b'));
        // A clock that was set back changes nothing.
        ledger_->waitUntilWritten();
        change("UPDATE copy SET begun = begun - 100000000 WHERE id = (SELECT max(id) FROM copy)"_s);
        QCOMPARE(standing(), hashOf('b'));
        const ledger::CopyId third = again('-');
        QCOMPARE(standing(), ledger::Hash());
        ledger_->failCopy(third, "没有空间"_s);
        QCOMPARE(standing(), hashOf('b'));
        ledger_->proveCopy(second, {Proof::Medium, hashOf('c'), hashOf('c')});
        QCOMPARE(standing(), hashOf('c'));
    }

    /// What is to be registered is offered once its run is over, and until it is done or dismissed.
    void unregisteredOrdersAreOffered()
    {
        const ledger::RunId run = ledger_->beginRun({desk, {}});
        QVector<ledger::CopyId> ids;
        for (int order : {1, 2, 3}) {
            ids += ledger_->beginCopies(run, orderOf(order),
                                        {photo("IMG_1.JPG"_s), photo("IMG_2.JPG"_s)});
        }
        for (int copied : {0, 1, 2, 3, 4})
            ledger_->finishCopy(ids.at(copied), read('a'));
        ledger_->failCopy(ids.at(5), "无法读取"_s);
        ledger_->registerCopies(ids.mid(0, 2));
        ledger_->refuseCopies(ids.mid(2, 2), "订单已锁定"_s);
        QCOMPARE(unregistered(desk), QStringList());
        ledger_->endRun(run);
        QCOMPARE(unregistered(desk), (QStringList{"TS10003-1 1/2"_s, "TS10002-1 2/2"_s}));
        QCOMPARE(unregistered({"u1"_s, {}, ledger::Work::Unknown}).size(), 2);
        for (const ledger::Desk &other :
             {ledger::Desk{"u2"_s, "b1"_s, desk.work}, ledger::Desk{"u1"_s, "b2"_s, desk.work},
              ledger::Desk{"u1"_s, "b1"_s, ledger::Work::PhotoImport}})
            QCOMPARE(unregistered(other), QStringList());
        ledger_->dismissUnregistered(desk, orderOf(3).identity);
        QCOMPARE(unregistered(desk), QStringList{"TS10002-1 2/2"_s});
        ledger_->registerCopies(ids.mid(2, 2));
        QCOMPARE(unregistered(desk), QStringList());
        const auto entries = ledger_->answer([](const LedgerReader &reader) {
            return reader.entriesOf(reader.history({}).entries.first().run.id);
        });
        QCOMPARE(entries.size(), 3);
        QCOMPARE(entries.at(0).registered, 2);
        QCOMPARE(entries.at(0).proved, 2);
        QCOMPARE(entries.at(0).bytes, 16000018);
        QCOMPARE(entries.at(2).failed, 1);
        QVERIFY(entries.at(0).run.endedMs != 0 && !entries.at(0).run.brokenOff);
    }

    void pendingItemsAreReplacedAndRemoved()
    {
        ledger::Pending item;
        item.desk = desk;
        item.order = orderOf(1);
        item.files = {{"E:/1.JPG"_s, R"(\\nas\1.JPG)"_s, 5, 6, hashOf('a'), "精修"_s}, {}};
        item.note = "备注"_s;
        ledger_->savePending(item);
        item.order = orderOf(2);
        ledger_->savePending(item);
        item.files.removeLast();
        ledger_->savePending(item);
        const auto saved = pending();
        QCOMPARE(saved.size(), 2);
        QCOMPARE(saved.at(0).order.identity, orderOf(2).identity);
        QCOMPARE(saved.at(0).files.size(), 1);
        QCOMPARE(saved.at(1).files.size(), 2);
        const ledger::PendingFile &file = saved.at(0).files.first();
        QCOMPARE(file.path + file.target + file.note, R"(E:/1.JPG\\nas\1.JPG精修)"_s);
        QCOMPARE(file.bytes + file.modifiedMs, 11);
        QCOMPARE(file.hash, hashOf('a'));
        QVERIFY(saved.at(0).note == item.note && saved.at(0).savedMs != 0);
        item.files.clear();
        ledger_->savePending(item);
        ledger_->removePending(item.kind, desk, orderOf(1).identity);
        QCOMPARE(pending().size(), 0);
    }

    /// What was announced stays open until it is gone from the disk and that is reported.
    void deletionsStayOpen()
    {
        const ledger::Desk bench{"u1"_s, "b1"_s, ledger::Work::BatchDeletion};
        const ledger::RunId run = ledger_->beginRun({bench, {}});
        QVector<ledger::NewDeletion> files;
        for (int number = 0; number < 5; ++number)
            files.append({R"(\\nas\photos\%1.JPG)"_s.arg(number), 7, 8, hashOf('d'), "9"_s});
        const auto ids = ledger_->beginDeletions(run, orderOf(1), files);
        ledger_->announceDeletions(ids.mid(0, 4));
        ledger_->finishDeletion(ids.at(0));
        ledger_->finishDeletion(ids.at(1));
        ledger_->reportDeletions({ids.at(0)});
        ledger_->failDeletion(ids.at(2), "文件被占用"_s);
        ledger_->dismissDeletions({ids.at(3)});
        ledger_->endRun(run);
        const auto open = ledger_->answer(
            [bench](const LedgerReader &reader) { return reader.openDeletions(bench); });
        QCOMPARE(open.size(), 2);
        QVERIFY(open.at(0).deletedMs != 0 && open.at(0).reportedMs == 0);
        QCOMPARE(open.at(1).file.path, files.at(2).path);
        QCOMPARE(open.at(1).file.hash, hashOf('d'));
        QCOMPARE(open.at(1).failure, "文件被占用"_s);
        const auto unanswered = [this, bench] {
            QStringList paths;
            const auto found = ledger_->answer(
                [bench](const LedgerReader &reader) { return reader.unansweredDeletions(bench); });
            for (const ledger::Deletion &each : found)
                paths += each.file.path;
            return paths;
        };
        QCOMPARE(unanswered(), QStringList(files.at(4).path));
        ledger_->failDeletion(ids.at(4), ledger::unansweredText());
        QCOMPARE(unanswered(), QStringList(files.at(4).path));
        ledger_->failDeletion(ids.at(4), "没有权限"_s);
        QCOMPARE(unanswered(), QStringList());
        const auto page =
            ledger_->answer([](const LedgerReader &reader) { return reader.history({}); });
        QCOMPARE(page.entries.first().deletions, 5);
        QCOMPARE(page.entries.first().deleted, 2);
    }

    void historyIsSearched_data()
    {
        QTest::addColumn<ledger::HistorySearch>("search");
        QTest::addColumn<QString>("orders");
        const auto row = [](const char *name, auto set, const char *orders) {
            ledger::HistorySearch search;
            set(search);
            QTest::newRow(name) << search << QString::fromUtf8(orders);
        };
        using Search = ledger::HistorySearch;
        const QDate today = QDate::currentDate();
        row(
            "all", [](Search &) {}, "3 2 1");
        row(
            "number", [](Search &s) { s.order = "ts10002"_s; }, "2");
        row(
            "customers", [](Search &s) { s.order = "小姐1"_s; }, "1");
        row(
            "no pattern", [](Search &s) { s.order = "%1"_s; }, "");
        row(
            "label", [](Search &s) { s.card = "card2"_s; }, "2");
        row(
            "serial", [](Search &s) { s.card = "0000-0003"_s; }, "3");
        row(
            "file", [](Search &s) { s.fileStart = "img_20"_s; }, "2");
        row(
            "deleted file", [](Search &s) { s.fileStart = "gone"_s; }, "3");
        row(
            "part of a file", [](Search &s) { s.filePart = "%30"_s; }, "");
        row(
            "part", [](Search &s) { s.filePart = "g_3"_s; }, "3");
        row(
            "work", [](Search &s) { s.works = {ledger::Work::PhotoImport}; }, "");
        row(
            "today", [today](Search &s) { s.from = s.to = today; }, "3 2 1");
        row(
            "earlier", [today](Search &s) { s.to = today.addDays(-1); }, "");
        row(
            "later", [today](Search &s) { s.from = today.addDays(1); }, "");
        row(
            "page", [](Search &s) { s.most = 2; }, "3 2 …");
        row(
            "both",
            [](Search &s) {
                s.fileStart = "IMG_"_s;
                s.card = "CARD1"_s;
            },
            "1");
    }
    void historyIsSearched()
    {
        QFETCH(ledger::HistorySearch, search);
        QFETCH(QString, orders);
        for (int number : {1, 2, 3}) {
            const ledger::RunId run = ledger_->beginRun({desk, {}});
            ledger::NewCopy copy = photo("IMG_%1.JPG"_s.arg(number * 10));
            copy.volume = {"CARD%1"_s.arg(number), "0000-000%1"_s.arg(number)};
            ledger_->beginCopies(run, orderOf(number), {copy});
            if (number == 3)
                ledger_->beginDeletions(run, orderOf(number), {{"/x/Gone.JPG"_s, 1, 2, {}, {}}});
        }
        const auto page = ledger_->answer(
            [search](const LedgerReader &reader) { return reader.history(search); });
        QStringList found;
        for (const ledger::Entry &entry : page.entries)
            found.append(entry.order.identity.id);
        if (page.hasMore)
            found.append("…"_s);
        QCOMPARE(found.join(QLatin1Char(' ')), orders);
        if (!page.hasMore)
            return;
        search.before = page.entries.last().id;
        QCOMPARE(ledger_->answer([search](const LedgerReader &reader) {
            return reader.history(search).entries.first().order.identity.id;
        }),
                 "1"_s);
    }

    /// What is on the disk at every moment is a ledger that says no more than was done by then.
    void killedAtAnyPoint()
    {
        const ledger::RunId run = ledger_->beginRun({desk, {}});
        const auto ids = ledger_->beginCopies(run, orderOf(1), {photo("IMG_1.JPG"_s)});
        const QVector<std::function<void()>> steps{
            [] {},
            [&] { ledger_->finishCopy(ids.at(0), read('a')); },
            [&] { ledger_->registerCopies(ids); },
            [&] { ledger_->endRun(run); },
        };
        for (int step = 0; step < steps.size(); ++step) {
            steps.at(step)();
            // Not waited for, this may say as much as the step before, or this one.
            Ledger early(left("early%1"_s.arg(step)));
            const auto before = copiesOf(early);
            QVERIFY(ledger_->waitUntilWritten());
            Ledger late(left("late%1"_s.arg(step)));
            const auto after = copiesOf(late);
            QVERIFY(before.size() <= 1 && after.size() == 1);
            QCOMPARE(after.first().isFinished(), step >= 1);
            QCOMPARE(after.first().registeredMs != 0, step >= 2);
            QVERIFY(before.isEmpty() || !before.first().isFinished() || step >= 1);
            const auto entries =
                late.answer([](const LedgerReader &reader) { return reader.history({}).entries; });
            QCOMPARE(entries.first().run.brokenOff, step < 3);
            QCOMPARE(late.takeNotices(), QStringList());
        }
    }

    /// Two programs write at once; what the other still works on is not offered here.
    void twoProgramsAtOnce()
    {
        Ledger other(folder_->path());
        constexpr int runs = 40;
        const auto import = [](Ledger &ledger, int order) {
            const ledger::RunId run = ledger.beginRun({desk, {}});
            const auto ids = ledger.beginCopies(run, orderOf(order), {photo("IMG_1.JPG"_s)});
            ledger.finishCopy(ids.first(), read('a'));
            return ledger.waitUntilWritten(patienceMs);
        };
        for (int number = 0; number < runs; ++number) {
            QVERIFY(import(*ledger_, number));
            QVERIFY(import(other, runs + number));
        }
        QCOMPARE(extent(*ledger_).copies, 2 * runs);
        QCOMPARE(unregistered(desk), QStringList());
    }

    void whatIsNoLedgerIsMovedAside_data()
    {
        QTest::addColumn<int>("from");
        QTest::addColumn<int>("bytes");
        QTest::newRow("its beginning") << 0 << 200;
        QTest::newRow("its tables") << 4096 << 400000;
    }
    void whatIsNoLedgerIsMovedAside()
    {
        QFETCH(int, from);
        QFETCH(int, bytes);
        beginOne(1);
        ledger_.reset();
        QFile file(path());
        QVERIFY(file.open(QIODevice::ReadWrite));
        file.seek(from);
        file.write(QByteArray(qMin(bytes, int(file.size()) - from), 'x'));
        file.close();
        open();
        QVERIFY(beginOne(2));
        QVERIFY(beginOne(3));
        const QStringList notices = ledger_->takeNotices();
        QCOMPARE(notices.size(), 1);
        QVERIFY2(notices.first().startsWith("导入记录已损坏"_s), qPrintable(notices.first()));
        QCOMPARE(extent(*ledger_).copies, 2);
        QCOMPARE(QDir(folder_->path()).entryList({"ledger-damaged-*.db"_s}).size(), 1);
        const auto copies = copiesOf(*ledger_, 2);
        QVERIFY(copies.first().id > 1000000); // none that was given out before
    }

    void newerLedgerIsOnlyRead()
    {
        QVERIFY(beginOne(1));
        change("PRAGMA user_version = 99"_s);
        ledger_.reset();
        open();
        QVERIFY(!beginOne(2));
        QCOMPARE(copiesOf(*ledger_, 1).size(), 1);
        QCOMPARE(ledger_->takeNotices().size(), 1);
        QVERIFY(!beginOne(3));
        QCOMPARE(ledger_->takeNotices(), QStringList());
        ledger_.reset();
        QCOMPARE(value("PRAGMA user_version"_s).toInt(), 99);
        QCOMPARE(value("SELECT count(*) FROM copy"_s).toInt(), 1);
    }

    /// Without a place, or switched off, everything is taken and nothing kept.
    void worksWithoutAPlace_data()
    {
        QTest::addColumn<bool>("isOff");
        QTest::newRow("off") << true;
        QTest::newRow("no folder can be made") << false;
    }
    void worksWithoutAPlace()
    {
        QFETCH(bool, isOff);
        const QString file = writeFile(folder_->filePath("file"_s));
        Ledger ledger(isOff ? QString() : file + "/ledger"_s);
        const ledger::RunId run = ledger.beginRun({desk, {}});
        QVERIFY(run != 0);
        QCOMPARE(ledger.beginCopies(run, orderOf(1), {photo("1.JPG"_s), photo("2.JPG"_s)}).size(),
                 2);
        QVERIFY(!ledger.waitUntilWritten());
        QCOMPARE(copiesOf(ledger).size(), 0);
        QCOMPARE(ledger.takeNotices().size(), isOff ? 0 : 1);
        QObject here;
        bool isAnswered = false;
        ledger.whenWritten(&here, [&isAnswered](bool isWritten) { isAnswered = !isWritten; });
        QVERIFY(!isAnswered);
        QTRY_VERIFY(isAnswered);
    }

    /// What a full disk did not take is written when it takes it again.
    void fullDiskIsWaitedFor()
    {
        const QString place = folder_->filePath("small"_s);
        const SmallDisk disk(place, 2);
        if (!disk.isMounted())
            QSKIP("No rights to mount a small disk");
        Ledger ledger(place);
        QVERIFY(ledger.waitUntilWritten());
        QFile filler(place + "/filler"_s);
        QVERIFY(filler.open(QIODevice::WriteOnly | QIODevice::Unbuffered));
        while (filler.write(QByteArray(4096, 'x')) > 0) {
        }
        const ledger::RunId run = ledger.beginRun({desk, {}});
        QVector<ledger::NewCopy> many;
        for (int number = 0; number < 2000; ++number)
            many.append(photo("IMG_%1.JPG"_s.arg(number)));
        const auto ids = ledger.beginCopies(run, orderOf(1), many);
        QVERIFY(!ledger.waitUntilWritten());
        ledger.finishCopy(ids.at(0), read('a'));
        QCOMPARE(ledger.takeNotices().size(), 1);
        QVERIFY(filler.resize(0));
        QTRY_VERIFY(ledger.waitUntilWritten());
        QCOMPARE(extent(ledger).copies, 2000);
        QVERIFY(copiesOf(ledger).constLast().isFinished());
        QCOMPARE(ledger.takeNotices(), QStringList());
    }

    /// Old rows go, except those with something still to be done; a clock that is ahead makes
    /// nothing old.
    void oldRowsGo()
    {
        for (int number : {1, 2, 3, 4}) {
            const ledger::RunId run = ledger_->beginRun({desk, {}});
            const auto ids = ledger_->beginCopies(run, orderOf(number), {photo("1.JPG"_s)});
            ledger_->finishCopy(ids.first(), read('a'));
            if (number != 2)
                ledger_->registerCopies(ids);
            ledger_->endRun(run);
        }
        ledger_.reset();
        const qint64 day = 86400000;
        change("UPDATE entry SET begun = begun - %1"_s.arg(500 * day));
        open();
        QVERIFY(ledger_->waitUntilWritten());
        QCOMPARE(extent(*ledger_).copies, 4); // all are as old as the newest
        ledger_.reset();
        change("UPDATE entry SET begun = begun + %1 WHERE id > 2"_s.arg(200 * day));
        change("UPDATE entry SET begun = begun + %1 WHERE id > 3"_s.arg(300 * day));
        open();
        QTRY_COMPARE(extent(*ledger_).copies, 3);
        QCOMPARE(copiesOf(*ledger_, 1).size(), 0);
        QCOMPARE(copiesOf(*ledger_, 2).size(), 1);
    }

private:
    void open() { ledger_ = std::make_unique<Ledger>(folder_->path()); }
    QString path() const { return folder_->filePath("ledger.db"_s); }

    bool beginOne(int order)
    {
        const ledger::RunId run = ledger_->beginRun({desk, {}});
        ledger_->beginCopies(run, orderOf(order), {photo("IMG_1.JPG"_s)});
        return ledger_->waitUntilWritten();
    }

    /// "number finished/begun" of each order.
    QStringList unregistered(const ledger::Desk &at)
    {
        const auto entries =
            ledger_->answer([at](const LedgerReader &reader) { return reader.unregistered(at); });
        QStringList texts;
        for (const ledger::Entry &entry : entries) {
            texts.append("%1 %2/%3"_s.arg(entry.order.number, QString::number(entry.awaited),
                                          QString::number(entry.chosen)));
        }
        return texts;
    }

    QVector<ledger::Pending> pending()
    {
        return ledger_->answer([](const LedgerReader &reader) { return reader.pending(desk); });
    }

    static QVector<ledger::Copy> copiesOf(Ledger &ledger, int order = 1)
    {
        return ledger.answer([order](const LedgerReader &reader) {
            return reader.copiesOfOrder(orderOf(order).identity);
        });
    }

    static ledger::Extent extent(Ledger &ledger)
    {
        return ledger.answer([](const LedgerReader &reader) { return reader.extent(); });
    }

    /// What a machine that stops now has left, in a folder of its own.
    QString left(const QString &name) const
    {
        const QString place = folder_->filePath(name);
        QDir().mkpath(place);
        for (const QString &file : {"ledger.db"_s, "ledger.db-wal"_s})
            QFile::copy(folder_->filePath(file), place + QLatin1Char('/') + file);
        return place;
    }

    /// As another program's.
    QVariant value(const QString &statement) const
    {
        QVariant first;
        {
            QSqlDatabase database = QSqlDatabase::addDatabase("QSQLITE"_s, "test"_s);
            database.setDatabaseName(path());
            database.open();
            QSqlQuery query(database);
            if (!query.exec(statement))
                qWarning("%s", qPrintable(query.lastError().text()));
            if (query.next())
                first = query.value(0);
        }
        QSqlDatabase::removeDatabase("test"_s);
        return first;
    }
    void change(const QString &statement) const { value(statement); }

    std::unique_ptr<QTemporaryDir> folder_;
    std::unique_ptr<Ledger> ledger_;
};

QTEST_GUILESS_MAIN(TestLedger)
#include "test_ledger.moc"
