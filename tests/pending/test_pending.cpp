#include "app/context/accountcontext.h"
#include "files/contenthash.h"
#include "ledger/ledger.h"
#include "pending/leftfiles.h"
#include "pending/pendingchoices.h"
#include "pending/pendingdesk.h"
#include "pending/pendinglines.h"
#include "tests/support/files.h"
#include "tests/support/patience.h"
#include "tests/support/text.h"

#include <QFileInfo>
#include <QTemporaryDir>
#include <QtTest>

#include <memory>

using pendinglines::Kind;
using pendinglines::Offer;

namespace {

const ledger::OrderKey firstOrder{{"101"_s, "1"_s, "11"_s}, "TS1-1"_s, "张 王"_s};
const ledger::OrderKey secondOrder{{"102"_s, "2"_s, "22"_s}, "TS2-1"_s, "李"_s};

ledger::PendingFile file(const QString &path)
{
    ledger::PendingFile made;
    made.path = path;
    made.target = path.section(QLatin1Char('/'), -1);
    return made;
}

/// A tool's table and its memory of what was chosen.
struct Tool
{
    Tool()
        : choices(ledger::Work::ImportOriginals,
                  [this](const OrderIdentity &order) -> std::optional<PendingChoices::Choice> {
                      if (!table.contains(order))
                          return std::nullopt;
                      return table.value(order);
                  })
    {
    }

    void show(const ledger::OrderKey &order, const QStringList &paths)
    {
        PendingChoices::Choice choice{order, {}};
        for (const QString &path : paths)
            choice.files.append(file(path));
        table.insert(order.identity, choice);
        choices.noteChoice(order.identity);
        choices.flush();
    }
    /// The table shows what a search has found.
    void search()
    {
        choices.leaveTable();
        table.clear();
    }
    QStringList waiting(const QString &branch)
    {
        QStringList paths;
        const auto all = choices.waiting(branch);
        for (const PendingChoices::Choice &choice : all) {
            for (const ledger::PendingFile &each : choice.files)
                paths.append(each.path);
        }
        paths.sort();
        return paths;
    }

    QHash<OrderIdentity, PendingChoices::Choice> table;
    PendingChoices choices;
};

ledger::Deletion deletionOf(const QString &path)
{
    const QFileInfo info(path);
    ledger::Deletion deletion;
    deletion.id = 7;
    deletion.order = firstOrder;
    deletion.file = {wireForm(path), info.size(), info.lastModified().toMSecsSinceEpoch(),
                     readContent(path).hash, "501"_s};
    return deletion;
}

} // namespace

class TestPending : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        dir_ = std::make_unique<QTemporaryDir>();
        AccountContext::uid = "9001"_s;
        AccountContext::shopList = {{"101"_s, "一店"_s, {}, {}}, {"102"_s, "二店"_s, {}, {}}};
        open();
    }
    void cleanup() { ledger_.reset(); }

    void choicesSurviveASearchAndAWindow()
    {
        {
            Tool tool;
            tool.show(firstOrder, {"/a"_s, "/b"_s});
            tool.show(secondOrder, {"/c"_s});
            QCOMPARE(tool.waiting("101"_s), QStringList()); // the table has them
            tool.search();
            QCOMPARE(tool.waiting("101"_s), QStringList({"/a"_s, "/b"_s}));
            tool.show(firstOrder, {"/d"_s}); // listed again, and something else chosen
            QCOMPARE(tool.waiting("101"_s), QStringList({"/a"_s, "/b"_s}));
            tool.show(firstOrder, {"/d"_s, "/a"_s});
            QCOMPARE(tool.waiting("101"_s), QStringList("/b"_s));
            tool.show(firstOrder, {}); // imported, or cleared by the user
        }
        Tool next;
        next.show(secondOrder, {"/e"_s}); // before the ledger has answered
        QSignalSpy loaded(&next.choices, &PendingChoices::changed);
        next.choices.load();
        QTRY_COMPARE(loaded.size(), 1);
        QCOMPARE(next.choices.branches(), QStringList("101"_s));
        QCOMPARE(next.waiting("101"_s), QStringList("/b"_s));
        QCOMPARE(next.choices.waiting("101"_s).constFirst().order.number, "TS1-1"_s);
        next.choices.forget("101"_s);

        Tool last;
        QSignalSpy again(&last.choices, &PendingChoices::changed);
        last.choices.load();
        QTRY_COMPARE(again.size(), 1);
        QCOMPARE(last.choices.branches(), QStringList("102"_s)); // what was shown to the end
        QCOMPARE(last.waiting("102"_s), QStringList("/e"_s));
    }

    void whatWasCopiedBeforeACrashIsNotOfferedAgain()
    {
        Ledger &ledger = Ledger::current();
        Tool tool;
        tool.show(firstOrder, {"/a"_s, "/b"_s, "/c"_s});
        const ledger::RunId run =
            ledger.beginRun({pendingDesk(ledger::Work::ImportOriginals, "101"_s), "店员"_s});
        ledger::NewCopy copy;
        QVector<ledger::NewCopy> copies;
        for (const auto &path : {"/a"_s, "/b"_s}) {
            copy.source = path;
            copy.target = "D:\\o\\原片"_s + wireForm(path);
            copies.append(copy);
        }
        const auto ids = ledger.beginCopies(run, firstOrder, copies);
        ledger.finishCopy(ids.first(), {});
        QVERIFY(ledger.waitUntilWritten());
        Tool next;
        QSignalSpy loaded(&next.choices, &PendingChoices::changed);
        next.choices.load();
        QTRY_COMPARE(loaded.size(), 1);
        QCOMPARE(next.waiting("101"_s), QStringList({"/b"_s, "/c"_s})); // begun is not copied
    }

    void anotherAccountSeesNothing()
    {
        {
            Tool tool;
            tool.show(firstOrder, {"/a"_s});
        }
        AccountContext::uid = "9002"_s;
        Tool other;
        QSignalSpy loaded(&other.choices, &PendingChoices::changed);
        other.choices.load();
        QTRY_COMPARE(loaded.size(), 1);
        QVERIFY(other.choices.branches().isEmpty());
    }

    void withoutALedgerTheWindowStillRemembers()
    {
        ledger_.reset();
        Tool tool;
        tool.show(firstOrder, {"/a"_s});
        tool.search();
        QSignalSpy loaded(&tool.choices, &PendingChoices::changed);
        tool.choices.load();
        QTRY_COMPARE(loaded.size(), 1);
        QCOMPARE(tool.waiting("101"_s), QStringList("/a"_s));
    }

    void linesNameTheOtherBranch()
    {
        const QVector<pendinglines::Count> counts{{Kind::LeftPhotos, "102"_s, 1, 3},
                                                  {Kind::Unregistered, "101"_s, 1, 8},
                                                  {Kind::Unregistered, "102"_s, 0, 0},
                                                  {Kind::Choices, "101"_s, 3, 1204}};
        const auto lines = pendinglines::linesOf(counts, "101"_s, {{"102"_s, "二店"_s}});
        QCOMPARE(lines.size(), 3);
        QCOMPARE(lines.at(0).text, "上次有 1 个订单复制完成但未登记"_s);
        QCOMPARE(lines.at(0).offers, QVector<Offer>({Offer::RegisterAgain, Offer::Ignore}));
        QCOMPARE(lines.at(1).text, "另有 3 个订单、1,204 个文件待导入"_s);
        QCOMPARE(lines.at(1).offers.first(), Offer::Show);
        QCOMPARE(lines.at(2).text, "二店：3 个照片已从服务端删除、磁盘上仍在"_s);
        QCOMPARE(lines.at(2).offers, QVector<Offer>(1, Offer::SwitchBranch));
    }

    void aFileGoesOnlyAsItWas_data()
    {
        QTest::addColumn<QString>("what");
        QTest::addColumn<int>("ending");
        const auto row = [](const char *what, leftfiles::Ending ending) {
            QTest::newRow(what) << QString::fromLatin1(what) << int(ending);
        };
        row("as it was", leftfiles::Ending::Removed);
        row("gone", leftfiles::Ending::Gone);
        row("folder vanished", leftfiles::Ending::Failed);
        row("other size", leftfiles::Ending::Changed);
        row("other time", leftfiles::Ending::Changed);
        row("other content", leftfiles::Ending::Changed);
        row("hash unknown", leftfiles::Ending::Changed);
        row("id listed", leftfiles::Ending::Named);
        row("name listed", leftfiles::Ending::Named);
        row("path listed", leftfiles::Ending::Named);
        row("other folder", leftfiles::Ending::Outside);
        row("no folder", leftfiles::Ending::Outside);
        row("read-only", leftfiles::Ending::Failed);
    }

    void aFileGoesOnlyAsItWas()
    {
        QFETCH(QString, what);
        QFETCH(int, ending);
        const QString path = writeFile(dir_->filePath("order/原片/IMG_1.jpg"_s), "photo");
        ledger::Deletion deletion = deletionOf(path);
        leftfiles::Listing listing{wireForm(dir_->filePath("order"_s)), {"502"_s}, {}};
        QFile onDisk(path);
        const QDateTime then = QFileInfo(path).lastModified();
        const auto write = [&](const QByteArray &content, const QDateTime &time) {
            writeFile(path, content);
            QVERIFY(onDisk.open(QIODevice::ReadWrite));
            QVERIFY(onDisk.setFileTime(time, QFileDevice::FileModificationTime));
            onDisk.close();
        };
        if (what == "gone"_s)
            QVERIFY(onDisk.remove());
        else if (what == "folder vanished"_s)
            QVERIFY(QDir(dir_->filePath("order"_s)).removeRecursively());
        else if (what == "other size"_s)
            write("photos", then);
        else if (what == "other time"_s)
            write("photo", then.addSecs(5));
        else if (what == "other content"_s)
            write("pHoto", then);
        else if (what == "hash unknown"_s)
            deletion.file.hash.clear();
        else if (what == "id listed"_s)
            listing.photos.append("501"_s);
        else if (what == "name listed"_s)
            listing.photos.append("img_1.JPG"_s);
        else if (what == "path listed"_s)
            listing.paths.append(deletion.file.path.toUpper());
        else if (what == "other folder"_s)
            listing.orderFolder = wireForm(dir_->filePath("other"_s));
        else if (what == "no folder"_s)
            listing.orderFolder.clear();
        else if (what == "read-only"_s)
            QVERIFY(onDisk.setPermissions(QFileDevice::ReadOwner));
        QCOMPARE(leftfiles::isNamed(deletion.file, listing),
                 ending == int(leftfiles::Ending::Named));
        const auto results = leftfiles::remove({deletion}, listing);
        QCOMPARE(results.size(), 1);
        QCOMPARE(int(results.first().ending), ending);
        const bool stays = ending != int(leftfiles::Ending::Removed) && what != "gone"_s &&
                           what != "folder vanished"_s;
        QCOMPARE(QFileInfo::exists(path), stays);
        onDisk.setPermissions(QFileDevice::ReadOwner | QFileDevice::WriteOwner);
    }

private:
    void open()
    {
        ledger_ = std::make_unique<Ledger>(dir_->filePath("ledger"_s));
        ledger_->makeCurrent();
    }

    std::unique_ptr<QTemporaryDir> dir_;
    std::unique_ptr<Ledger> ledger_;
};

QTEST_GUILESS_MAIN(TestPending)
#include "test_pending.moc"
