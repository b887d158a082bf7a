#include "batchdelete/rules/deletionrequests.h"
#include "batchdelete/run/unreporteddeletions.h"
#include "ledger/ledger.h"
#include "pending/pendingdesk.h"
#include "tests/support/democlient.h"
#include "tests/support/files.h"
#include "tests/support/patience.h"
#include "tests/support/text.h"

#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

#include <memory>

/// Deletions that a run was killed over before the service was told, against the demo service.
class TestUnreportedDeletions : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        demo_.reset();
        AccountContext::uid = "9001"_s;
        AccountContext::shopList = {{"101"_s, "一店"_s, {}, {}}, {"102"_s, "二店"_s, {}, {}}};
        dir_ = std::make_unique<QTemporaryDir>();
        ledger_ = std::make_unique<Ledger>(dir_->filePath("ledger"_s));
        ledger_->makeCurrent();
        deletions_ = std::make_unique<UnreportedDeletions>();
    }
    void cleanup()
    {
        deletions_.reset();
        ledger_.reset();
    }

    void areReportedAsTheyWereAnnounced()
    {
        leave("101"_s, {"a.jpg"_s, "b.jpg"_s, "again.jpg"_s});
        writeFile(dir_->filePath("order/原片/again.jpg"_s)); // somebody put it there since
        leave("102"_s, {"c.jpg"_s});
        refresh();
        QCOMPARE(deletions_->of("101"_s).size(), 3);
        QCOMPARE(deletions_->of("102"_s).size(), 1);
        demo_.clearRequests();
        QCOMPARE(report(), "已提交 2 个文件的状态\n1 个文件又出现在磁盘上，没有提交"_s);
        QVERIFY(
            demo_.body("delete_pic_after"_s, 0)
                .contains("&picpath=%1&picname=a.jpg"_s.arg(dir_->filePath("order/原片/a.jpg"_s))));
        refresh();
        QCOMPARE(deletions_->of("101"_s).size(), 1);
        deletions_->dismiss("101"_s);
        refresh();
        QCOMPARE(deletions_->of("101"_s).size(), 0);
        QCOMPARE(deletions_->of("102"_s).size(), 1);
    }

    void aRefusalLeavesTheRestForAnotherTime()
    {
        leave("101"_s, {"a.jpg"_s, "b.jpg"_s});
        refresh();
        demo_.refuse("delete_pic_after"_s, "不行"_s);
        QCOMPARE(report(), "已提交 0 个文件的状态\n其余 2 个没有提交：不行"_s);
        QVERIFY(!deletions_->isBusy());
        QCOMPARE(report(), "已提交 2 个文件的状态"_s);
    }

private:
    void refresh()
    {
        QSignalSpy changed(deletions_.get(), &UnreportedDeletions::changed);
        deletions_->refresh();
        QTRY_VERIFY(!changed.isEmpty());
    }
    QString report()
    {
        QSignalSpy finished(deletions_.get(), &UnreportedDeletions::finished);
        deletions_->report({"101"_s, "7001"_s, "3101"_s});
        const bool isOver = QTest::qWaitFor([&] { return !finished.isEmpty(); }, patienceMs);
        return isOver ? finished.constFirst().constFirst().toString() : QString();
    }
    /// Announced and deleted by a run that did not live to report them.
    void leave(const QString &branch, const QStringList &names)
    {
        const ledger::RunId run =
            ledger_->beginRun({pendingDesk(ledger::Work::BatchDeletion, branch), "店员"_s});
        QVector<ledger::NewDeletion> files;
        QVector<BatchDeleteFileInfo> announced;
        for (const QString &name : names) {
            const QString folder = dir_->filePath("order/原片"_s);
            files.append({wireForm(folder + "/"_s + name), 1, 1, {}, {}});
            BatchDeleteFileInfo info;
            info.folderPath = folder;
            info.fileName = name;
            info.rootLength = dir_->filePath("order"_s).size();
            announced.append(info);
        }
        const auto ids = ledger_->beginDeletions(
            run, {{branch, "50001"_s, "800001"_s}, "TS10001-1"_s, {}}, files);
        ledger_->announceDeletions(ids);
        for (const ledger::DeletionId id : ids)
            ledger_->finishDeletion(id);
        ledger_->endRun(run);
        bool isAnnounced = branch != "101"_s;
        if (!isAnnounced)
            callService(this, deletionrequests::announceAction,
                        deletionrequests::announceBody({"101"_s, "7001"_s, "3101"_s}, "800001"_s,
                                                       announced),
                        [&](const ServiceReply &reply) { isAnnounced = reply.isSuccess(); });
        QTRY_VERIFY(isAnnounced);
    }

    DemoClient demo_;
    std::unique_ptr<QTemporaryDir> dir_;
    std::unique_ptr<Ledger> ledger_;
    std::unique_ptr<UnreportedDeletions> deletions_;
};

QTEST_GUILESS_MAIN(TestUnreportedDeletions)
#include "test_unreporteddeletions.moc"
