#include "fileimport/imported/originaldeletion.h"
#include "fileimport/window/importfiles.h"
#include "fileimport/window/orderactionsdelegate.h"
#include "ledger/ledger.h"
#include "pending/pendingdesk.h"
#include "tests/fileimport/run/registering.h"
#include "tests/support/files.h"
#include "tests/support/toolwindow.h"
#include "widgets/boxes/filedialog.h"
#include "widgets/boxes/noticebar.h"

#include <QFileInfo>
#include <QLineEdit>
#include <QPushButton>
#include <QSemaphore>
#include <QTemporaryDir>

using Column = ImportOrderTableModel::Column;

/// What the import window offers of what was not done to its end, against the demo service.
class TestImportRestorer : public ToolWindowTest<ImportFiles, ImportOrderTableModel::NumberColumn>
{
    Q_OBJECT

private slots:
    void init()
    {
        logIn();
        card_ = std::make_unique<QTemporaryDir>();
        ledger_ = std::make_unique<Ledger>(card_->filePath("ledger"_s));
        ledger_->makeCurrent();
    }

    void cleanup()
    {
        endTest();
        ledger_.reset();
    }

    void aSearchForgetsNothing()
    {
        open();
        choose("TS10001-1"_s, makePhotos(3));
        choose("TS10003-1"_s, makePhotos(2));
        QCOMPARE(lines(), QStringList());
        search("TS10006"_s);
        const QString line = "另有 2 个订单、5 个文件待导入"_s;
        QTRY_COMPARE(lines(), QStringList(line));
        search("TS10003"_s);
        QCOMPARE(text("TS10003-1"_s, Column::ChosenColumn), QString()); // as after any search
        QCOMPARE(lines(), QStringList(line));

        demo_.clearRequests();
        press("显示"_s);
        QTRY_COMPARE(orders()->model()->rowCount(), 2);
        QCOMPARE(demo_.requests("order_list"_s).size(), 2); // asked for anew
        QCOMPARE(text("TS10001-1"_s, Column::ChosenColumn), "3"_s);
        QCOMPARE(text("TS10003-1"_s, Column::StateColumn), "已选择"_s);
        QCOMPARE(lines(), QStringList());
        QTest::mouseClick(child<QPushButton>("startButton"), Qt::LeftButton);
        EXPECT_BOXES("导入完成！"_s);
        search("TS10006"_s);
        QCOMPARE(lines(), QStringList());
    }

    void aClosedWindowsChoiceComesBack()
    {
        open();
        choose("TS10001-1"_s, makePhotos(2));
        closeWindow();
        QFile::remove(card_->filePath("IMG_1.jpg"_s));            // the card is not whole any more
        demo_.changeOrder("50001"_s, {{"netpath"_s, QString()}}); // another folder by now
        open();
        QTRY_COMPARE(lines(), QStringList("另有 1 个订单、2 个文件待导入"_s));
        QCOMPARE(text("TS10001-1"_s, Column::ChosenColumn), QString()); // nothing by itself
        demo_.refuse("order_list"_s, "不行"_s);
        press("显示"_s);
        EXPECT_BOXES("不行"_s);
        QCOMPARE(lines().size(), 1);
        press("显示"_s);
        QTRY_COMPARE(text("TS10001-1"_s, Column::ChosenColumn), "2"_s);
        QTest::mouseClick(child<QPushButton>("startButton"), Qt::LeftButton);
        EXPECT_BOXES("导入完成！"_s);
        QCOMPARE(text("TS10001-1"_s, Column::StateColumn), "成功:1, 失败:1"_s);
        search("TS10006"_s);
        QTRY_COMPARE(lines(), QStringList("另有 1 个订单、1 个文件待导入"_s)); // the failed one
        MessageBox::setNextAnswer(QMessageBox::Ok);
        press("不再导入"_s);
        EXPECT_BOX_THAT(box.contains("不再导入"_s));
        QCOMPARE(lines(), QStringList());
        closeWindow();
        open();
        QTest::qWait(0);
        QCOMPARE(lines(), QStringList());
    }

    /// A run that was killed has left rows that say so.
    void unregisteredOrdersAreOffered_data()
    {
        QTest::addColumn<QString>("branch");
        QTest::addColumn<bool>("sameFolder");
        QTest::addColumn<bool>("allCopied");
        QTest::newRow("here") << "101"_s << true << true;
        QTest::newRow("killed in mid-copy") << "101"_s << true << false;
        QTest::newRow("other folder by now") << "101"_s << false << true;
        QTest::newRow("other branch") << "102"_s << true << true;
    }

    void unregisteredOrdersAreOffered()
    {
        QFETCH(QString, branch);
        QFETCH(bool, sameFolder);
        QFETCH(bool, allCopied);
        open();
        choose("TS10001-1"_s, makePhotos(2));
        const QString folder = text("TS10001-1"_s, Column::PathColumn);
        closeWindow();
        leaveUnregistered(branch, folder, {0, 1}, allCopied ? 2 : 1);
        AccountContext::selectedShopId.clear();
        if (!sameFolder)
            demo_.changeOrder("50001"_s, {{"netpath"_s, folder + "新"_s}});
        open();
        const QString what = allCopied ? "上次有 1 个订单复制完成但未登记"_s
                                       : "上次有 1 个订单只复制了一部分，未登记"_s;
        if (branch == "102"_s) {
            QTRY_VERIFY(lines().contains("二店："_s + what));
            QVERIFY(!actionButton("重新登记"_s));
            press("切换分店"_s);
            forgetBoxes();
            QTRY_VERIFY(lines().contains(what));
            return;
        }
        QTRY_VERIFY(lines().contains(what));
        QCOMPARE(demo_.requests("savepicpath_batch"_s).size(), 0); // nothing by itself
        press("重新登记"_s);
        if (!sameFolder) {
            EXPECT_BOX_THAT(box.contains("导片路径已变化"_s) && box.contains(folder));
            QCOMPARE(demo_.requests("savepicpath_batch"_s).size(), 0);
            QVERIFY(lines().contains(what));
            return;
        }
        QTRY_COMPARE(demo_.requests("savepicpath_batch"_s).size(), 1);
        QVERIFY(demo_.body("savepicpath_batch"_s).contains("IMG_0.jpg"_s));
        QVERIFY(!lines().contains(what));
        EXPECT_TOAST("已重新登记");
        QCOMPARE(text("TS10001-1"_s, Column::OriginalsColumn), allCopied ? "2"_s : "1"_s);
        QVERIFY(ledger_->waitUntilWritten());
        const auto left = ledger_->answer([&](const LedgerReader &reader) {
            return reader.unregistered(pendingDesk(ledger::Work::ImportOriginals, branch)).size();
        });
        QCOMPARE(left, 0);
    }

    void aDeletionThatWasKilledIsOffered()
    {
        open();
        choose("TS10001-1"_s, makePhotos(4));
        QTest::mouseClick(child<QPushButton>("startButton"), Qt::LeftButton);
        EXPECT_BOXES("导入完成！"_s);
        const QString folder = text("TS10001-1"_s, Column::PathColumn);
        closeWindow();
        const auto onDisk = [&](int index) {
            return platformPath(folder) + "/原片/IMG_%1.jpg"_s.arg(index);
        };
        killInMidDeletion(folder);
        // One is another file by now, one is listed again, one was copied there once more.
        QFile::remove(onDisk(0));
        writeFile(onDisk(0), "another photo");
        registerFile(onDisk(2), "c");
        leaveUnregistered("101"_s, folder, {3}, 1);
        open();
        const QString left = "4 个照片已从服务端删除、磁盘上仍在"_s;
        QTRY_VERIFY(lines().contains(left));
        MessageBox::setNextAnswer(QMessageBox::Ok);
        press("删除文件"_s);
        QTRY_COMPARE(boxes().size(), 2); // the question, and what became of it
        boxes_.removeFirst();
        const QString told = boxes_.takeFirst();
        for (const char *line :
             {"已删除 1 个文件", "IMG_0.jpg: 文件已变化，保留",
              "IMG_2.jpg: 服务端仍有这张照片，保留", "IMG_3.jpg: 文件已变化，保留"})
            QVERIFY2(told.contains(QString::fromUtf8(line)), qUtf8Printable(told));
        for (int index = 0; index < 4; ++index)
            QCOMPARE(QFileInfo::exists(onDisk(index)), index != 1);
        QTRY_VERIFY(!lines().contains(left));
    }

private:
    void open()
    {
        auto *window = new ImportFiles;
        window->setMode(int(ImportMode::Originals));
        show(window);
    }
    void closeWindow()
    {
        window_->setAttribute(Qt::WA_DeleteOnClose);
        window_->close();
        forgetBoxes();
        QTRY_VERIFY(!window_);
    }

    NoticeBar *bar() { return window_->findChild<NoticeBar *>(); }
    QStringList lines()
    {
        QStringList texts;
        const auto notices = bar()->notices();
        for (const Notice &notice : notices) {
            if (notice.id.startsWith("pending."_s))
                texts.append(notice.text);
        }
        return texts;
    }
    QPushButton *actionButton(const QString &text)
    {
        const auto buttons = bar()->findChildren<QPushButton *>();
        for (QPushButton *button : buttons) {
            if (button->text() == text && button->isVisible())
                return button;
        }
        return nullptr;
    }
    void press(const QString &text)
    {
        QTRY_VERIFY(actionButton(text));
        QTest::mouseClick(actionButton(text), Qt::LeftButton);
    }
    void search(const QString &number)
    {
        auto *keyword = child<QLineEdit>("keywordEdit");
        keyword->setText(number);
        QTest::keyClick(keyword, Qt::Key_Return);
        QTRY_VERIFY(orders()->model()->rowCount() == 1 &&
                    orders()->model()->index(0, 0).data().toString() == number + "-1"_s);
    }
    void choose(const QString &number, const QStringList &files)
    {
        FileDialog::setNextFiles(files);
        const QModelIndex index = cell(number, Column::ActionsColumn);
        orders()->scrollTo(index);
        QTest::mouseClick(orders()->viewport(), Qt::LeftButton, {},
                          OrderActionsDelegate::buttonRect(orders()->visualRect(index),
                                                           OrderActionsDelegate::SelectFiles)
                              .center());
        QTRY_COMPARE(text(number, Column::ChosenColumn), QString::number(files.size()));
    }
    QStringList makePhotos(int count)
    {
        QStringList paths;
        for (int index = 0; index < count; ++index)
            paths.append(writeFile(card_->filePath("IMG_%1.jpg"_s.arg(index)),
                                   QByteArray(1000, char('a' + index))));
        return paths;
    }
    static QString platformPath(const QString &wire)
    {
        return QString(wire).replace(QLatin1Char('\\'), QLatin1Char('/'));
    }

    /// As a run leaves it that was killed before it could register: of \a photos some \a copied.
    void leaveUnregistered(const QString &branch, const QString &folder, const QVector<int> &photos,
                           int copied)
    {
        const ledger::OrderKey order{{branch, "50001"_s, "800001"_s}, "TS10001-1"_s, {}};
        Ledger earlier(card_->filePath("ledger"_s));
        const ledger::RunId run =
            earlier.beginRun({pendingDesk(ledger::Work::ImportOriginals, branch), "店员"_s});
        QVector<ledger::NewCopy> copies;
        for (const int photo : photos) {
            ledger::NewCopy copy;
            copy.source = card_->filePath("IMG_%1.jpg"_s.arg(photo));
            copy.target = folder + "\\原片\\IMG_%1.jpg"_s.arg(photo);
            copy.toRegister = true;
            copies.append(copy);
        }
        const auto ids = earlier.beginCopies(run, order, copies);
        for (int index = 0; index < copied; ++index) {
            QFile::copy(copies.at(index).source, platformPath(copies.at(index).target));
            earlier.finishCopy(ids.at(index), {});
        }
        QVERIFY(earlier.waitUntilWritten());
    }

    /// The service has deleted the order's photos, and the program is gone before the disk has.
    void killInMidDeletion(const QString &folder)
    {
        QSemaphore begun;
        QSemaphore mayEnd;
        OriginalDeletion deletion([&](const QString &, QString *) {
            begun.release();
            mayEnd.acquire();
            return false;
        });
        const auto entries = listedEntries();
        QVERIFY(deletion.start(firstOrder(platformPath(folder)), entries));
        QTRY_COMPARE(begun.available(), entries.size());
        QVERIFY(ledger_->waitUntilWritten());
        ledger_.reset();
        ledger_ = std::make_unique<Ledger>(card_->filePath("ledger"_s));
        ledger_->makeCurrent();
        mayEnd.release(entries.size());
        QTRY_VERIFY(!deletion.isBusy());
    }

    std::unique_ptr<QTemporaryDir> card_;
    std::unique_ptr<Ledger> ledger_;
};

QTEST_MAIN(TestImportRestorer)
#include "test_importrestorer.moc"
