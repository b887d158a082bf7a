#include "cardcheck/window/cardcheck.h"
#include "cardcheck/window/ordercheck.h"
#include "cardcheck/window/soughtordermodel.h"
#include "files/contenthash.h"
#include "ledger/ledger.h"
#include "tests/support/files.h"
#include "tests/support/toolwindow.h"
#include "widgets/boxes/filedialog.h"

#include <QLabel>
#include <QPushButton>
#include <QSignalSpy>
#include <QTemporaryDir>

namespace {

ContentReading readProved(const QString &path, const platform::TransferControl &control)
{
    ContentReading reading = filereadings::readAsItIs(path, control);
    if (reading.isRead())
        reading.proof = Proof::Medium;
    return reading;
}

} // namespace

/// A card of two files, of which another machine has imported one.
class TestCardCheck : public ToolWindowTest<CardCheck, SoughtOrderModel::NumberColumn>
{
    Q_OBJECT

private slots:
    void init()
    {
        logIn();
        folder_ = std::make_unique<QTemporaryDir>();
        card_ = folder_->filePath("card"_s);
        // On the day on which the orders of the demo service were shot, but for a few.
        demo_.changeOrder("50001"_s, {{"shotdate"_s, today()}, {"netpath"_s, wireForm(share())}});
        writeFile(card_ + "/DCIM/100X/A.MP4"_s, QByteArray(5000, 'a'));
        writeFile(card_ + "/DCIM/100X/B.JPG"_s, QByteArray(700, 'b'));
        writeFile(share() + "/原始档/A.MP4"_s, QByteArray(5000, 'a'));
        window_ = new CardCheck(readProved);
        window_->resize(1600, 900);
        window_->show();
        QVERIFY(QTest::qWaitForWindowActive(window_));
        QTRY_VERIFY(child<QComboBox>("branchBox")->count() > 0);
        FileDialog::setNextFolder(card_);
        click("folderButton");
    }

    void cleanup() { endTest(); }

    /// The orders of the card's days are listed and chosen without asking; what is missing goes to
    /// one of them.
    void seeksChecksAndHandsOn()
    {
        QTRY_COMPARE(orders()->model()->rowCount(), 1);
        QCOMPARE(orders()->selectionModel()->selectedRows().size(), 1);
        check();
        QCOMPARE(headline(), "不能格式化（1 个未导入）"_s);
        QCOMPARE(files()->model()->rowCount(), 2);
        click(qPrintable("filter_%1"_s.arg(int(evidence::State::NotImported))));
        QCOMPARE(files()->model()->rowCount(), 1);
        QVERIFY(files()->model()->index(0, 1).data().toString().endsWith("B.JPG"_s));

        QSignalSpy requests(window_, &CardCheck::importRequested);
        MessageBox::setNextAnswer(QMessageBox::Ok);
        click("importMissingButton");
        QTRY_COMPARE(requests.size(), 1);
        EXPECT_BOX_THAT(box.contains("TS10001-1"_s));
        QCOMPARE(requests.first().first().toString(), "导入原片"_s);
        const auto place = requests.first().at(1).value<OrderPlace>();
        QCOMPARE(place.orderPhotoId, "800001"_s);
        QCOMPARE(place.files, QStringList(card_ + "/DCIM/100X/B.JPG"_s));
    }

    void turnsGreenAndReports()
    {
        QTRY_COMPARE(orders()->model()->rowCount(), 1);
        writeFile(share() + "/精修片/B.JPG"_s, QByteArray(700, 'b')); // which no request lists
        check();
        QCOMPARE(headline(), "可以格式化"_s);
        QVERIFY(child<QLabel>("notesLabel")->text().contains("2 个文件类型不登记到服务端"_s));
        QVERIFY(!child<QWidget>("importMissingButton")->isVisible());

        const QString pdf = folder_->filePath("r.pdf"_s);
        FileDialog::setNextFiles({pdf});
        click("pdfButton");
        QTRY_VERIFY(readFile(pdf).startsWith("%PDF") && readFile(pdf).contains("%%EOF"));
        const QString table = folder_->filePath("r.csv"_s);
        FileDialog::setNextFiles({table});
        click("csvButton");
        const QByteArray hash = readContent(card_ + "/DCIM/100X/A.MP4"_s).hash.toHex();
        QTRY_COMPARE(readFile(table).count(hash), 2);
    }

    void saysNothingOfAnEmptyOrCancelledCheck()
    {
        const QString empty = folder_->filePath("empty"_s);
        QVERIFY(QDir().mkpath(empty));
        FileDialog::setNextFolder(empty);
        click("folderButton");
        check();
        QCOMPARE(headline(), "没有照片、原始档或视频"_s);
        QVERIFY(!child<QWidget>("importMissingButton")->isVisible());
    }

    void comparesAnOrder()
    {
        // There and not registered, of a kind that is not registered, and other bytes than were
        // imported, though as many.
        writeFile(share() + "/原片/C.JPG"_s, "c");
        writeFile(share() + "/原片/D.JPG"_s, "damaged");
        const OrderIdentity order{"101"_s, "50001"_s, "800001"_s};
        const QTemporaryDir records;
        Ledger ledger(records.path());
        ledger.makeCurrent();
        QVector<ledger::NewCopy> copies(2);
        copies[0].target = wireForm(share() + "/原片/C.JPG"_s);
        copies[1].target = wireForm(share() + "/原片/D.JPG"_s);
        const ledger::RunId run = ledger.beginRun({});
        const auto ids = ledger.beginCopies(run, {order, "TS10001-1"_s, {}}, copies);
        const QByteArray hash = readContent(share() + "/原片/C.JPG"_s).hash;
        ledger.finishCopy(ids.at(0), {Proof::Server, hash, hash, 1});
        ledger.finishCopy(ids.at(1), {Proof::Server, hash, hash, 7});
        ledger.endRun(run);
        auto *window = new OrderCheck;
        window->show();
        window->check({{"101"_s, "50001"_s, "800001"_s},
                       "TS10001"_s,
                       "TS10001-1"_s,
                       "TS10001-1 王小姐"_s,
                       wireForm(share())});
        const auto *summary = window->findChild<QLabel *>("summaryLabel"_s);
        QTRY_COMPARE(
            summary->text(),
            "服务端 0 张，文件夹 3 个，1 个内容与导入时不同，1 个未登记，1 个类型不登记"_s);
        QSignalSpy requests(window, &OrderCheck::openToolRequested);
        QTest::mouseClick(window->findChild<QPushButton *>("registerButton"_s), Qt::LeftButton);
        QVERIFY(requests.takeFirst().at(1).value<OrderPlace>().registers);

        QVERIFY(QDir(share()).removeRecursively());
        QTest::mouseClick(window->findChild<QPushButton *>("againButton"_s), Qt::LeftButton);
        QTRY_VERIFY(summary->text().startsWith("文件夹不存在"_s));
        delete window;
    }

private:
    static QString today() { return QDate::currentDate().toString(Qt::ISODate); }
    QString share() { return demo_.share() + "/cardcheck-window"_s; }
    QTableView *files() { return child<QTableView>("fileTable"); }
    QString headline() { return child<QLabel>("lightLabel")->text(); }

    void check()
    {
        click("startButton");
        QTRY_VERIFY(window_->findings().isFinished);
    }

    std::unique_ptr<QTemporaryDir> folder_;
    QString card_;
};

QTEST_MAIN(TestCardCheck)

#include "test_cardcheck.moc"
