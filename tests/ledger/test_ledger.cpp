#include "ledger/ledger.h"
#include "tests/support/files.h"
#include "tests/support/patience.h"
#include "tests/support/text.h"

#include <QTemporaryDir>
#include <QtTest>

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

private:
    void open() { ledger_ = std::make_unique<Ledger>(folder_->path()); }

    std::unique_ptr<QTemporaryDir> folder_;
    std::unique_ptr<Ledger> ledger_;
};

QTEST_GUILESS_MAIN(TestLedger)
#include "test_ledger.moc"
