#include "history/window/historysearchbar.h"
#include "history/window/historywindow.h"
#include "ledger/ledger.h"
#include "tasks/background.h"
#include "tests/support/files.h"
#include "tests/support/patience.h"
#include "tests/support/text.h"
#include "widgets/boxes/filedialog.h"
#include "widgets/boxes/toast.h"
#include "widgets/tables/tables.h"

#include <QAbstractItemModelTester>
#include <QClipboard>
#include <QComboBox>
#include <QGuiApplication>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>
#include <QTableView>
#include <QTemporaryDir>
#include <QtTest>

#include <memory>

/// The history on a ledger of its own, by keys.
class TestHistoryWindow : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        folder_ = std::make_unique<QTemporaryDir>();
        ledger_ = std::make_unique<Ledger>(folder_->path());
        ledger_->makeCurrent();
    }

    void cleanup()
    {
        delete window_;
        ledger_.reset();
        diskPool().waitForDone();
        processorPool().waitForDone();
    }

    void showsWhatWasDone()
    {
        import("TS10001-1"_s, "EOS_A"_s, {"IMG_1.jpg"_s, "IMG_2.jpg"_s}, "磁盘已满"_s);
        import("TS10002-1"_s, "EOS_B"_s, {"DSC_7.jpg"_s});
        deleteFiles("TS10003-1"_s, {"old.jpg"_s});
        open();
        QTRY_COMPARE(entries()->rowCount(), 3);
        const QAbstractItemModelTester tester(entries());
        QCOMPARE(column(EntryTable::OrderColumn),
                 QStringList({"TS10003-1"_s, "TS10002-1"_s, "TS10001-1"_s}));
        QCOMPARE(column(EntryTable::EndingColumn), QStringList({"完成"_s, "完成"_s, "1 个失败"_s}));
        QCOMPARE(column(EntryTable::CountsColumn).value(0), "删除 1/1"_s);
        QCOMPARE(child<QLabel>("countLabel")->text(), "共 3 条记录"_s);

        // The row's files, by keys.
        auto *table = child<QTableView>("entryTable");
        table->setFocus();
        for (int i = 0; i < 3; ++i)
            QTest::keyClick(table, Qt::Key_Down);
        QTRY_COMPARE(files()->rowCount(), 2);
        QVERIFY(child<QLabel>("fileHeading")->text().startsWith("导入原片  TS10001-1"_s));
        QCOMPARE(files()->index(0, FileTable::ProofColumn).data().toString(), "已从介质读回"_s);
        QCOMPARE(files()->index(1, FileTable::StateColumn).data().toString(), "磁盘已满"_s);
        QTest::keyClick(table, Qt::Key_C, Qt::ControlModifier);
        QVERIFY(QGuiApplication::clipboard()->text().contains("\tTS10001-1\t"_s));
    }

    void searches_data()
    {
        QTest::addColumn<QByteArray>("field");
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("found");
        QTest::newRow("order") << QByteArray("orderEdit") << "TS10002"_s
                               << "TS10002-1"_s;
        QTest::newRow("beginning of a file's name") << QByteArray("fileEdit") << "img_"_s
                                                    << "TS10001-1"_s;
        QTest::newRow("card") << QByteArray("cardEdit") << "EOS_B"_s
                              << "TS10002-1"_s;
        QTest::newRow("nothing") << QByteArray("orderEdit") << "TS9"_s << QString();
    }

    void searches()
    {
        QFETCH(QByteArray, field);
        QFETCH(QString, text);
        import("TS10001-1"_s, "EOS_A"_s, {"IMG_1.jpg"_s});
        import("TS10002-1"_s, "EOS_B"_s, {"DSC_7.jpg"_s});
        open();
        QTRY_COMPARE(entries()->rowCount(), 2);
        auto *edit = child<QLineEdit>(field.constData());
        edit->setText(text);
        QTest::keyClick(edit, Qt::Key_Return);
        QTRY_VERIFY(child<QLabel>("countLabel")->text().startsWith("共"_s));
        QTEST(column(EntryTable::OrderColumn).join(QLatin1Char(' ')), "found");
        QTest::mouseClick(child<QPushButton>("clearButton"), Qt::LeftButton);
        QTRY_COMPARE(entries()->rowCount(), 2);
    }

    void filters()
    {
        import("TS10001-1"_s, "EOS_A"_s, {"IMG_1.jpg"_s, "IMG_2.jpg"_s}, "磁盘已满"_s);
        deleteFiles("TS10003-1"_s, {"old.jpg"_s});
        open();
        QTRY_COMPARE(entries()->rowCount(), 2);
        choose("stateBox", 1);
        QTRY_COMPARE(column(EntryTable::OrderColumn), QStringList("TS10001-1"_s));
        choose("kindBox", 3);
        QTRY_COMPARE(entries()->rowCount(), 0);
        choose("stateBox", 0);
        QTRY_COMPARE(column(EntryTable::OrderColumn), QStringList("TS10003-1"_s));
    }

    void turnsPages()
    {
        for (int i = 0; i < 250; ++i)
            import("TS%1"_s.arg(i), "EOS"_s, {"IMG.jpg"_s});
        open();
        QTRY_COMPARE(entries()->rowCount(), 200);
        auto *more = child<QPushButton>("moreButton");
        QTest::mouseClick(more, Qt::LeftButton);
        QTRY_COMPARE(entries()->rowCount(), 250);
        QVERIFY(!more->isEnabled());
        QCOMPARE(column(EntryTable::OrderColumn).value(249), "TS0"_s);
    }

    void exports()
    {
        import("TS10001-1"_s, "EOS_A"_s, {"=IMG.jpg"_s});
        open();
        QTRY_COMPARE(entries()->rowCount(), 1);
        const QString list = folder_->filePath("list.csv"_s);
        FileDialog::setNextFiles({list});
        QTest::mouseClick(child<QPushButton>("exportEntriesButton"), Qt::LeftButton);
        QTRY_VERIFY(readFile(list).contains("TS10001-1"));
        child<QTableView>("entryTable")->selectRow(0);
        QTRY_COMPARE(files()->rowCount(), 1);
        const QString details = folder_->filePath("files.csv"_s);
        FileDialog::setNextFiles({details});
        QTest::mouseClick(child<QPushButton>("exportFilesButton"), Qt::LeftButton);
        QTRY_VERIFY(readFile(details).contains("\"'=IMG.jpg\""));
        QTRY_VERIFY(Toast::currentText(window_).contains(details));
    }

    void saysThatNothingIsKept()
    {
        ledger_ = std::make_unique<Ledger>(QString());
        ledger_->makeCurrent();
        open();
        QTRY_COMPARE(child<QLabel>("countLabel")->text(), "共 0 条记录"_s);
        QVERIFY(child<EmptyStateTable>("entryTable")->emptyText().startsWith("没有启用"_s));
    }

private:
    void open()
    {
        ledger_->waitUntilWritten();
        window_ = new HistoryWindow;
        window_->resize(1500, 900);
        window_->show();
        QVERIFY(QTest::qWaitForWindowExposed(window_));
    }

    template <typename Child> Child *child(const char *name)
    {
        auto *found = window_->findChild<Child *>(QString::fromLatin1(name));
        if (!found)
            qFatal("no %s", name);
        return found;
    }
    QAbstractItemModel *entries() { return child<QTableView>("entryTable")->model(); }
    QAbstractItemModel *files() { return child<QTableView>("historyFiles")->model(); }
    QStringList column(int of)
    {
        QStringList texts;
        for (int row = 0; row < entries()->rowCount(); ++row)
            texts.append(entries()->index(row, of).data().toString());
        return texts;
    }
    void choose(const char *box, int index)
    {
        auto *combo = child<QComboBox>(box);
        combo->setCurrentIndex(index);
        emit combo->activated(index);
    }

    static ledger::OrderKey key(const QString &number)
    {
        return {{"101"_s, number, number}, number, "周子墨"_s};
    }

    /// The last file fails unless \a failure is empty.
    void import(const QString &order, const QString &card, const QStringList &names,
                const QString &failure = {})
    {
        const ledger::RunId run =
            ledger_->beginRun({{"9001"_s, "101"_s, ledger::Work::ImportOriginals}, "9001"_s});
        QVector<ledger::NewCopy> copies;
        for (const QString &name : names) {
            ledger::NewCopy copy;
            copy.source = "E:\\DCIM\\"_s + name;
            copy.volume.label = card;
            copy.sourceBytes = 5;
            copy.target = "\\\\nas\\photos\\"_s + order + "\\"_s + name;
            copies.append(copy);
        }
        const QVector<ledger::CopyId> ids = ledger_->beginCopies(run, key(order), copies);
        ledger::CopyResult result;
        result.proof = ledger::Proof::Medium;
        result.targetBytes = 5;
        for (const ledger::CopyId id : ids) {
            if (id == ids.last() && !failure.isEmpty())
                ledger_->failCopy(id, failure);
            else
                ledger_->finishCopy(id, result);
        }
        ledger_->endRun(run);
    }

    void deleteFiles(const QString &order, const QStringList &names)
    {
        const ledger::RunId run =
            ledger_->beginRun({{"9001"_s, "101"_s, ledger::Work::BatchDeletion}, "9001"_s});
        QVector<ledger::NewDeletion> deletions;
        for (const QString &name : names) {
            ledger::NewDeletion deletion;
            deletion.path = "\\\\nas\\photos\\"_s + name;
            deletions.append(deletion);
        }
        const auto ids = ledger_->beginDeletions(run, key(order), deletions);
        ledger_->announceDeletions(ids);
        for (const ledger::DeletionId id : ids)
            ledger_->finishDeletion(id);
        ledger_->reportDeletions(ids);
        ledger_->endRun(run);
    }

    std::unique_ptr<QTemporaryDir> folder_;
    std::unique_ptr<Ledger> ledger_;
    QPointer<HistoryWindow> window_;
};

QTEST_MAIN(TestHistoryWindow)
#include "test_historywindow.moc"
