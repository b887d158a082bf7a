#include "app/account/batchlogindialog.h"
#include "batchdelete/window/batchdeletefilemodel.h"
#include "tests/batchdelete/window/deletionwindow.h"
#include "tests/support/datarows.h"
#include "widgets/boxes/filedialog.h"

#include <QLabel>
#include <QMenu>
#include <QPushButton>
#include <QTemporaryDir>

using namespace deletionwindow;

/// What is asked and told before, during and after a deletion.
class TestDeletionQuestions : public DeletionWindowTest
{
    Q_OBJECT

private slots:
    void init()
    {
        logIn();
        share_ = demo_.share();
    }

    void cleanup() { endTest(); }

    void deletesTheTickedOrders()
    {
        fill(first, 3);
        fill(second, 2);
        fill(third, 2);
        demo_.changeOrder("50005"_s, {{"netpath"_s, wireForm(share_ + "/test/none"_s)}});
        const QString folder = share_ + "/test/"_s + first + "/原片/"_s;
        QVERIFY(QFile::setPermissions(folder + "1.jpg"_s, QFile::ReadOwner));
        open();
        tick(first);
        tick(third);
        tick(missing);
        select(missing);
        QTRY_COMPARE(child<QLabel>("fileCountLabel")->text(), "目录不存在"_s);
        select(first);
        QTRY_COMPARE(child<QLabel>("fileCountLabel")->text(), "共 3 个文件"_s);
        QCOMPARE(text(first, Column::ProgressColumn), "0/0/3"_s);
        retryAll(); // nothing has failed yet
        startConfirmed();
        EXPECT_BOXES(allDone + "\n\n成功 4 个文件，失败 1 个文件\n跳过 1 个订单"_s);
        // What still has files keeps its tick, and the list of files has gone along.
        QVERIFY(isTicked(first) && !isTicked(third) && !isTicked(missing));
        QCOMPARE(child<QLabel>("fileCountLabel")->text(), "没有删除"_s);
        select(third);
        QCOMPARE(child<QLabel>("fileCountLabel")->text(), "共 2 个文件"_s);
        QCOMPARE(text(first, Column::ProgressColumn), "2/1/3"_s);
        QCOMPARE(text(third, Column::ProgressColumn), "2/0/2"_s);
        QCOMPARE(namesOnDisk(first), QStringList("原片/1.jpg"_s));
        QCOMPARE(namesOnDisk(second).size(), 2);
        QVERIFY(namesOnDisk(third).isEmpty());
        QCOMPARE(demo_.requests(before).size(), 2);
        QCOMPARE(demo_.requests(after).size(), 4);

        view(first, BatchDeleteProgressDelegate::ViewFailed);
        EXPECT_BOXES(" 删除失败的照片\n1.jpg: 没有删除权限"_s);
        view(third, BatchDeleteProgressDelegate::ViewFailed); // there is none
        view(third, BatchDeleteProgressDelegate::ViewSucceeded);
        EXPECT_BOX_THAT(box.startsWith(" 删除成功的照片\n"_s));

        QVERIFY(QFile::setPermissions(folder + "1.jpg"_s, QFile::ReadOwner | QFile::WriteOwner));
        select(first);
        retryAll();
        QTRY_COMPARE(text(first, Column::ProgressColumn), "3/0/3"_s);
        QCOMPARE(demo_.requests(after).size(), 5);
        QVERIFY(namesOnDisk(first).isEmpty());

        // A new search looks at the folder anew.
        fill(third, 1);
        select(third);
        QCOMPARE(text(third, Column::ProgressColumn), "2/0/2"_s);
        click("searchButton");
        QTRY_COMPARE(text(third, Column::ProgressColumn), "2/0/3"_s);
    }

    void nothingHappensUnconfirmed()
    {
        fill(first, 2);
        open();
        tick(first);
        click("startButton"); // the safe answer: cancel
        QTRY_COMPARE(boxes().size(), 1);
        boxes_.clear();
        QVERIFY(!window_->findChild<BatchLoginDialog *>());

        MessageBox::setNextAnswer(QMessageBox::Ok);
        click("startButton");
        QTRY_VERIFY(window_->findChild<BatchLoginDialog *>());
        QTest::keyClick(window_->findChild<BatchLoginDialog *>(), Qt::Key_Escape);
        QTRY_VERIFY(!window_->findChild<BatchLoginDialog *>());
        forgetBoxes();
        QVERIFY(demo_.requests(before).isEmpty());

        const QString refusal = "该订单不能删除"_s;
        for (const QString &box : {"提交数据失败!"_s, refusal}) {
            demo_.misbehave(before, box == refusal ? "refuse"_s : "drop"_s,
                            {{"message"_s, refusal}});
            startConfirmed();
            EXPECT_BOXES(box);
            QCOMPARE(text(first, Column::ProgressColumn), "0/0/2"_s);
            QVERIFY(isTicked(first));
        }
        QCOMPARE(namesOnDisk(first).size(), 2);
        QCOMPARE(startButton()->text(), "开始批量删除"_s);
    }

    void resubmitPrompts_data()
    {
        // left: of the second order
        addColumns<int, QString, int, QString>({"answer", "counts", "left", "end"});
        newRow("again", int(QMessageBox::Ok), "2/0/2", 0, allDone);
        newRow("declined", int(QMessageBox::Cancel), "1/1/2", 1,
               "批量删除已停止。\n\n成功 1 个文件，失败 1 个文件\n还有 1 个订单没有处理");
        newRow("stopped", int(QMessageBox::Abort), "0/1/2", 1, "");
    }

    void resubmitPrompts()
    {
        QFETCH(int, answer);
        QFETCH(QString, end);
        fill(first, 2);
        fill(second, 1);
        open();
        tick(first);
        tick(second);
        demo_.refuse(after, "忙"_s);
        startConfirmed(QMessageBox::StandardButton(answer));
        QStringList expected{"忙，需要继续提交吗？"_s};
        if (!end.isEmpty())
            expected.append(end);
        EXPECT_BOXES(expected);
        QTRY_COMPARE(startButton()->text(), "开始批量删除"_s);
        QTEST(text(first, Column::ProgressColumn), "counts");
        QTEST(namesOnDisk(second).size(), "left");
        if (window_->close()) // an unreported file keeps it
            return;
        EXPECT_BOXES(
            {"有 1 个文件已删除，但状态没有提交成功。\n关闭窗口后无法再次提交，确认要关闭吗？"_s});
    }

    void whatIsUnreportedIsNotForgotten()
    {
        runUntilReporting(2);
        click("startButton");
        click("startButton"); // not even for the answer
        QTRY_COMPARE(text(first, Column::ProgressColumn), "0/1/2"_s);
        demo_.release();

        // A new list keeps it, and so does a look at the disk; another branch has to be insisted
        // on.
        QTest::keyClicks(child<QLineEdit>("keywordEdit"), "TS10003"_s);
        QTest::keyClick(child<QLineEdit>("keywordEdit"), Qt::Key_Return);
        QTRY_COMPARE(orders()->model()->rowCount(), 2);
        select(first);
        click("refreshButton");
        QTRY_COMPARE(child<QLabel>("fileCountLabel")->text(), "共 2 个文件"_s);
        QCOMPARE(text(first, Column::ProgressColumn), "0/1/2"_s);
        chooseBranch("102"_s);
        EXPECT_BOXES(
            {"有 1 个文件已删除，但状态没有提交成功。\n切换分店后无法再次提交，确认要切换吗？"_s});
        QCOMPARE(combo("branchBox")->currentText(), "一店"_s);

        // What is still there comes first.
        const QModelIndex state = files()->model()->index(1, BatchDeleteFileModel::StateColumn);
        QCOMPARE(state.data().toString(), "提交状态失败"_s);
        demo_.hold(after);
        QTest::mouseClick(
            files()->viewport(), Qt::LeftButton, {},
            BatchDeleteStateDelegate::buttonRect(files()->visualRect(state)).center());
        waitUntilHeld();
        QVERIFY(!window_->close()); // not even while it is being reported
        EXPECT_BOXES(
            {"有 1 个文件已删除，但状态没有提交成功。\n关闭窗口后无法再次提交，确认要关闭吗？"_s});
        demo_.release();
        QTRY_COMPARE(text(first, Column::ProgressColumn), "1/0/2"_s);
        QCOMPARE(namesOnDisk(first).size(), 1);
    }

    void closingInMidRun()
    {
        fill(first, 3);
        open();
        tick(first);
        demo_.refuse(after, "忙"_s);
        demo_.hold(after);
        startConfirmed(QMessageBox::Cancel);
        waitUntilHeld();
        forgetBoxes();
        for (const bool agreed : {false, true}) {
            MessageBox::setNextAnswer(agreed ? QMessageBox::Ok : QMessageBox::Cancel);
            window_->close();
            EXPECT_BOX_THAT(box.startsWith("有 1 个文件已删除，但状态没有提交成功。"_s));
            QVERIFY(window_ && window_->isVisible() != agreed);
        }
        demo_.release();
        QTRY_VERIFY(!window_);
        QCOMPARE(namesOnDisk(first).size(), 1);
        QCOMPARE(demo_.requests(after).size(), 2);
    }

    void outcomesAreSavedAndCopied()
    {
        fill(first, 1);
        open();
        const auto actions = child<QPushButton>("exportButton")->menu()->actions();
        actions.first()->trigger();
        EXPECT_TOAST("还没有删除结果");
        tick(first);
        startConfirmed();
        EXPECT_BOXES(allDone);
        const QTemporaryDir folder;
        const QString path = folder.filePath("r.csv"_s);
        FileDialog::setNextFiles({path});
        actions.first()->trigger();
        QTRY_VERIFY(QFileInfo(path).size() > 0);
        FileDialog::setNextFiles({folder.filePath("no/r.csv"_s)});
        actions.first()->trigger();
        EXPECT_BOX_THAT(box.startsWith("文件保存失败: "_s));
    }
};

QTEST_MAIN(TestDeletionQuestions)
#include "test_deletionquestions.moc"
