#include "ledger/ledger.h"
#include "pending/pendingdesk.h"
#include "photoimport/orders/tforderlistmodel.h"
#include "photoimport/window/tfhome.h"
#include "tests/support/files.h"
#include "tests/support/toolwindow.h"
#include "widgets/boxes/noticebar.h"

#include <QDir>
#include <QPushButton>
#include <QTemporaryDir>

using Column = tforderlistmodel::Column;

/// What the photo import's window offers of what an earlier one copied and did not register,
/// against the demo service.
class TestPhotoChoiceRestorer : public ToolWindowTest<tfhome, tforderlistmodel::NumberColumn>
{
    Q_OBJECT

private slots:
    void init()
    {
        logIn();
        AccountContext::photoMode = 0;
        folder_ = std::make_unique<QTemporaryDir>();
        ledger_ = std::make_unique<Ledger>(folder_->filePath("ledger"_s));
        ledger_->makeCurrent();
    }

    void cleanup()
    {
        endTest();
        ledger_.reset();
    }

    void registersAgainOnce()
    {
        leaveUnregistered("101"_s);
        leaveUnregistered("101"_s); // killed once more: the same files
        show(new tfhome);
        QTRY_COMPARE(lines(), QStringList(what_));
        QCOMPARE(demo_.requests("savepicpath"_s).size(), 0); // nothing by itself
        press("重新登记"_s);
        QTRY_COMPARE(demo_.requests("savepicpath"_s).size(), 2);
        QCOMPARE(demo_.requests("saveorderphotopath"_s).size(), 1);
        QCOMPARE(demo_.requests("savepicpathmv"_s).size(), 1);
        QVERIFY(demo_.body("savepicpathmv"_s).contains("&type=2&photonames=CLIP.mp4"_s));
        QVERIFY(demo_.body("savepicpath"_s).contains("&size=1000&"_s));
        EXPECT_TOAST("已重新登记");
        QTRY_COMPARE(lines(), QStringList());
        QCOMPARE(unregistered("101"_s), 0);
        QTRY_COMPARE(text(order_, Column::ImportedColumn), "2"_s); // asked for anew
    }

    void refusalsKeepTheOffer_data()
    {
        QTest::addColumn<QString>("action");
        QTest::addColumn<QString>("told");
        QTest::addColumn<int>("photos"); // that the service was told of
        QTest::newRow("the folder") << "saveorderphotopath"_s
                                    << "TS10001 的导片目录: 不行"_s << 0;
        QTest::newRow("a photo") << "savepicpath"_s
                                 << ".jpg: 不行"_s << 2;
    }

    void refusalsKeepTheOffer()
    {
        QFETCH(QString, action);
        QFETCH(QString, told);
        QFETCH(int, photos);
        leaveUnregistered("101"_s);
        show(new tfhome);
        QTRY_COMPARE(lines(), QStringList(what_));
        demo_.refuse(action, "不行"_s);
        press("重新登记"_s);
        EXPECT_BOX_THAT(box.contains(told));
        QCOMPARE(demo_.requests("savepicpath"_s).size(), photos);
        QTRY_COMPARE(lines(), QStringList(what_));
        press("重新登记"_s);
        EXPECT_TOAST("已重新登记");
        QTRY_COMPARE(lines(), QStringList());
    }

    void anotherFolderIsNotAnnounced()
    {
        leaveUnregistered("101"_s);
        demo_.changeOrder("50001"_s, {{"netpath"_s, wireForm(folder_->filePath("新"_s))}});
        show(new tfhome);
        press("重新登记"_s);
        EXPECT_BOX_THAT(box.contains("导片路径已变化"_s) && box.contains("CLIP.mp4"_s));
        QCOMPARE(demo_.requests("saveorderphotopath"_s).size(), 0);
        MessageBox::setNextAnswer(QMessageBox::Ok);
        press("忽略"_s);
        EXPECT_BOX_THAT(box.contains("确认要忽略吗？"_s));
        QTRY_COMPARE(lines(), QStringList());
        QCOMPARE(unregistered("101"_s), 0);
    }

    void anotherBranchIsSwitchedToFirst()
    {
        leaveUnregistered("102"_s);
        show(new tfhome);
        QTRY_COMPARE(lines(), QStringList("二店："_s + what_));
        QVERIFY(!button("重新登记"_s));
        press("切换分店"_s);
        QTRY_COMPARE(lines(), QStringList(what_));
        QVERIFY(button("重新登记"_s));
        QCOMPARE(demo_.requests("savepicpath"_s).size(), 0);
    }

private:
    /// As a run leaves it that was killed before it could register.
    void leaveUnregistered(const QString &branch)
    {
        const QString folder = wireForm(folder_->filePath("order"_s));
        demo_.changeOrder("50001"_s, {{"netpath"_s, folder}});
        Ledger earlier(folder_->filePath("ledger"_s));
        const ledger::RunId run =
            earlier.beginRun({pendingDesk(ledger::Work::PhotoImport, branch), "店员"_s});
        QVector<ledger::NewCopy> copies;
        for (const QString &name : {"all/IMG_0.jpg"_s, "all/IMG_1.jpg"_s, "试拍视频/CLIP.mp4"_s}) {
            const QString target = folder_->filePath("order/"_s + name);
            QDir().mkpath(QFileInfo(target).path());
            writeFile(target, QByteArray(1000, 'a'));
            ledger::NewCopy copy;
            copy.source = folder_->filePath("card/"_s + QFileInfo(name).fileName());
            copy.target = wireForm(target);
            copy.toRegister = true;
            copies.append(copy);
        }
        const auto ids =
            earlier.beginCopies(run, {{branch, "50001"_s, "800001"_s}, order_, "周子墨"_s}, copies);
        for (const ledger::CopyId id : ids)
            earlier.finishCopy(id, {});
        QVERIFY(earlier.waitUntilWritten());
    }

    int unregistered(const QString &branch)
    {
        ledger_->waitUntilWritten();
        return ledger_->answer([&branch](const LedgerReader &reader) {
            return reader.unregistered(pendingDesk(ledger::Work::PhotoImport, branch)).size();
        });
    }

    QStringList lines()
    {
        QStringList texts;
        const auto notices = window_->findChild<NoticeBar *>()->notices();
        for (const Notice &notice : notices)
            texts.append(notice.text);
        return texts;
    }
    QPushButton *button(const QString &text)
    {
        const auto buttons = window_->findChild<NoticeBar *>()->findChildren<QPushButton *>();
        for (QPushButton *button : buttons) {
            if (button->text() == text && button->isVisible())
                return button;
        }
        return nullptr;
    }
    void press(const QString &text)
    {
        QTRY_VERIFY(button(text));
        QTest::mouseClick(button(text), Qt::LeftButton);
    }

    std::unique_ptr<QTemporaryDir> folder_;
    std::unique_ptr<Ledger> ledger_;
    const QString order_ = "TS10001-1"_s;
    const QString what_ = "上次有 1 个订单复制完成但未登记"_s;
};

QTEST_MAIN(TestPhotoChoiceRestorer)
#include "test_photochoicerestorer.moc"
