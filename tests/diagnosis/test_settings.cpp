#include "app/context/importverification.h"
#include "app/diagnosis/diagnosis.h"
#include "app/settings/diagnosispreview.h"
#include "app/settings/importpage.h"
#include "app/settings/settingswindow.h"
#include "app/settings/storagepage.h"
#include "ledger/ledger.h"
#include "tasks/ordersatwork.h"
#include "tests/support/files.h"
#include "tests/support/patience.h"
#include "tests/support/text.h"
#include "widgets/boxes/filedialog.h"
#include "widgets/boxes/messagebox.h"

#include <QLabel>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QTemporaryDir>

class TestSettings : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        // Before either is asked for the first time.
        qputenv("TESSAVO_LEDGER", "yes");
        MessageBox::setScripted(true);
    }

    void theChoiceOfVerificationIsKept()
    {
        importverification::setReadsBack(true);
        ImportPage page;
        QVERIFY(page.findChild<QRadioButton *>("readBackButton"_s)->isChecked());
        page.findChild<QRadioButton *>("sizeOnlyButton"_s)->click();
        QVERIFY(!importverification::readsBack());
        ImportPage next;
        QVERIFY(next.findChild<QRadioButton *>("sizeOnlyButton"_s)->isChecked());
        QVERIFY(!next.findChild<QLabel *>("givenNote"_s));
        next.findChild<QRadioButton *>("readBackButton"_s)->click();
        QVERIFY(importverification::readsBack());
    }

    /// What is finished goes, with its room; what is still to be done stays.
    void recordsAreCleared()
    {
        const QTemporaryDir folder;
        Ledger ledger(folder.path());
        ledger.makeCurrent();
        const ledger::Desk desk{"u"_s, "b"_s, ledger::Work::ImportOriginals};
        QVector<ledger::NewCopy> copies(3000);
        for (int i = 0; i < copies.size(); ++i) {
            copies[i].source = "E:/DCIM/IMG_%1.JPG"_s.arg(i);
            copies[i].target = R"(\\nas\photos\IMG_%1.JPG)"_s.arg(i);
            copies[i].toRegister = true;
        }
        for (const char *order : {"done", "awaited"}) {
            const ledger::RunId run = ledger.beginRun({desk, {}});
            const auto ids = ledger.beginCopies(
                run, {{"b"_s, QString::fromLatin1(order), "p"_s}, "TS1"_s, {}}, copies);
            for (const ledger::CopyId id : ids)
                ledger.finishCopy(id, {ledger::Proof::Size, {}, {}, 1});
            if (order == QByteArray("done"))
                ledger.registerCopies(ids);
            ledger.endRun(run);
        }
        const ledger::Desk doubt{"u"_s, "b"_s, ledger::Work::PhotoDeletion};
        const ledger::RunId asked = ledger.beginRun({doubt, {}});
        ledger.beginDeletions(asked, {{"b"_s, "asked"_s, "p"_s}, "TS2"_s, {}},
                              {{R"(\\nas\photos\A.JPG)"_s, 1, 1, {}, "7"_s}});
        ledger.endRun(asked);
        const auto left = [&ledger](const char *order) {
            return ledger.answer([order](const LedgerReader &reader) {
                return reader.copiesOfOrder({"b"_s, QString::fromLatin1(order), "p"_s}).size();
            });
        };
        QCOMPARE(left("done"), 3000);
        bool isDone = false;
        ledger.forgetBefore(QDateTime::currentMSecsSinceEpoch() + 1000, this,
                            [&] { isDone = true; });
        QTRY_VERIFY(isDone);
        QCOMPARE(left("done"), 0);
        QCOMPARE(left("awaited"), 3000);
        const auto unanswered = ledger.answer(
            [doubt](const LedgerReader &reader) { return reader.unansweredDeletions(doubt); });
        QCOMPARE(unanswered.size(), 1);
    }

    void clearingWaitsForRuns()
    {
        const QTemporaryDir folder;
        writeFile(folder.filePath("ledger.db"_s), QByteArray(2048, 'x'));
        StoragePage page(folder.path(), folder.path());
        page.show();
        auto *size = page.findChild<QLabel *>("ledgerSize"_s);
        QTRY_COMPARE(size->text(), QLocale().formattedDataSize(2048));
        auto *clear = page.findChild<QPushButton *>("ledgerClear"_s);
        {
            const ordersatwork::Claim claim({{"b"_s, "1"_s, "p"_s}}, "导入原片"_s);
            clear->click();
            QVERIFY(MessageBox::takeShown().isEmpty());
        }
        clear->click(); // and declined
        const QList<MessageBox::Shown> asked = MessageBox::takeShown();
        QCOMPARE(asked.size(), 1);
        QVERIFY(asked.first().text.contains("180 天"_s));
        QVERIFY(clear->isEnabled());
    }

    void theDiagnosisIsSeenBeforeItIsSaved()
    {
        const QVector<DiagnosisFile> files{{"a.txt"_s, "<b>一</b>"_s}, {"b.txt"_s, "二"_s}};
        auto *preview = new DiagnosisPreview(nullptr, files);
        preview->open();
        auto *names = preview->findChild<QListWidget *>("fileList"_s);
        auto *text = preview->findChild<QPlainTextEdit *>("fileText"_s);
        QCOMPARE(text->toPlainText(), "<b>一</b>"_s);
        names->setCurrentRow(1);
        QCOMPARE(text->toPlainText(), "二"_s);
        delete preview;
    }

    void allPagesAreThere()
    {
        SettingsWindow window;
        window.show();
        const auto *list = window.findChild<QListWidget *>("pageList"_s);
        QStringList names;
        for (int row = 0; row < list->count(); ++row)
            names += list->item(row)->text();
        QCOMPARE(names.join(QLatin1Char(' ')), "导入 存储 诊断"_s);
    }
};

QTEST_MAIN(TestSettings)
#include "test_settings.moc"
