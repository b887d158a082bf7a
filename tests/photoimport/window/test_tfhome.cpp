#include "app/context/k.h"
#include "files/contenthash.h"
#include "ledger/ledger.h"
#include "net/servicecall.h"
#include "photoimport/imported/tfphotoview.h"
#include "photoimport/window/tffilechooser.h"
#include "photoimport/window/tfhome.h"
#include "photoimport/window/tfhomeorders_orderlistwidget.h"
#include "platform/pathform.h"
#include "tests/support/dropping.h"
#include "tests/support/files.h"
#include "tests/support/pictures.h"
#include "tests/support/toolwindow.h"
#include "widgets/boxes/filedialog.h"
#include "widgets/boxes/noticebar.h"
#include "widgets/windows/loadingoverlay.h"

#include <QDir>
#include <QImageReader>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTemporaryDir>

#include <algorithm>
#include <memory>

using Column = tforderlistmodel::Column;

/// The photo import's window against the demo service, by mouse, keys and drops.
class TestTfHome : public ToolWindowTest<tfhome, tforderlistmodel::NumberColumn>
{
    Q_OBJECT

private slots:

    void init()
    {
        logIn();
        AccountContext::photoMode = 0;
        card_ = std::make_unique<QTemporaryDir>();
        ledger_ = std::make_unique<Ledger>(card_->filePath("ledger"_s));
        ledger_->makeCurrent();
    }

    void cleanup()
    {
        endTest();
        ledger_.reset();
    }

    void fitsNarrowScreens()
    {
        for (const float scale : {1.0F, 1.5F, 2.0F}) {
            delete window_;
            K::uiScale = scale;
            openWith(2);
            window_->resize(1280, 720);
            K::uiScale = 1.0F;
            QCOMPARE(window_->width(), 1280); // smaller than that it cannot be
        }
    }

    void importsWhatIsDropped()
    {
        openWith(8);
        QCOMPARE(photos()->model()->rowCount(), 8);
        QTRY_VERIFY(
            !photos()->model()->index(5, 0).data(Qt::DecorationRole).value<QImage>().isNull());
        orders()->setFocus();
        QTest::keyClick(orders(), Qt::Key_Return);
        EXPECT_BOXES(done_);
        QCOMPARE(state(first_), "导片完成"_s);
        for (const auto &[kind, width] :
             {std::pair("all", 120), {"90", 90}, {"190", 190}, {"1920", 1920}})
            QCOMPARE(QImageReader(imported(first_, "%1/IMG_0.jpg"_s.arg(QLatin1String(kind))))
                         .size()
                         .width(),
                     width);
        const QString original = imported(first_, "all/IMG_0.jpg"_s);
        QStringList bodies;
        for (int index = 0; index < 8; ++index)
            bodies += demo_.body("savepicpath"_s, index);
        QCOMPARE(bodies.filter("&size=%1&"_s.arg(QFileInfo(original).size()))
                     .filter("\\all\\IMG_0.jpg&"_s)
                     .size(),
                 1);
        QCOMPARE(demo_.requests("saveorderphotopath"_s).size(), 1);
        QVERIFY(demo_.body("saveorderphotopath"_s)
                    .contains("&path=%1&"_s.arg(wireForm(text(first_, Column::PathColumn)))));
        QTRY_COMPARE(text(first_, Column::ImportedColumn), "8"_s);
        QCOMPARE(photos()->model()->rowCount(), 8);
    }

    void filesOfOneNameAreNotTaken()
    {
        openWith(2);
        QFile::copy(card_->filePath(first_ + "/IMG_0.jpg"_s), card_->filePath("img_0.JPG"_s));
        // Chosen one by one, by the button: the clash is with what is listed already.
        select(first_);
        FileDialog::setNextFiles({card_->filePath("img_0.JPG"_s)});
        click("addFilesButton");
        EXPECT_BOX_THAT(box.contains(card_->filePath("img_0.JPG"_s)) &&
                        box.contains(first_ + "/IMG_0.jpg"_s));
        QCOMPARE(text(first_, Column::ChosenColumn), "2"_s);

        // The same file again is no clash, and is not listed twice.
        FileDialog::setNextFolder(card_->filePath(first_));
        click("addFolderButton");
        QTRY_VERIFY(Toast::currentText(window_).contains("2 个文件已在列表中"_s));
        EXPECT_BOXES("已忽略 1 个不支持的文件：.txt 1 个"_s);
        QCOMPARE(text(first_, Column::ChosenColumn), "2"_s);

        photos()->selectAll();
        pressAmongPhotos(Qt::Key_Delete, Qt::ControlModifier);
        QCOMPARE(text(first_, Column::ChosenColumn), QString());
    }

    void clashesAreRenamed()
    {
        openWith(1);
        select(first_);
        const QString twin = card_->filePath("img_0.JPG"_s);
        QVERIFY(QFile::copy(card_->filePath(first_ + "/IMG_0.jpg"_s), twin));
        MessageBox::setNextAnswer(QMessageBox::Yes);
        FileDialog::setNextFiles({twin});
        click("addFilesButton");
        EXPECT_BOX_THAT(box.contains(twin));
        QTRY_COMPARE(text(first_, Column::ChosenColumn), "2"_s);
        click("startOrderButton");
        EXPECT_BOXES(done_);
        for (const char *kind : {"all", "90", "190", "1920"})
            QVERIFY2(QFile::exists(imported(first_, QLatin1String(kind) + "/img_0_2.JPG"_s)), kind);
        QVERIFY((demo_.body("savepicpath"_s, 0) + demo_.body("savepicpath"_s, 1))
                    .contains("\\all\\img_0_2.JPG&"_s));
    }

    void filesAreJudgedAgainstTheListOfNow()
    {
        const QDir card(card_->path());
        const QString first = writeFile(card.filePath("a/1.jpg"_s));
        const QString second = writeFile(card.filePath("b/1.JPG"_s));
        QWidget window;
        LoadingOverlay overlay(&window);
        tforderlistmodel orders;
        orders.setOrders({PhotoOrder()});
        int asked = 0;
        tffilechooser chooser(&window, &orders, &overlay, [&](int) {
            if (++asked == 2) // another choice was quicker
                orders.setFiles(0, describeChoice({{first}, false, PhotoMode::Photos, {}}).files);
            return true;
        });
        chooser.take(0, {second}, false);
        EXPECT_BOX_THAT(box.contains(first) && box.contains(second));
        QCOMPARE(orders.files(0).size(), 1);
    }

    void refusedStartsChangeNothing()
    {
        const QString refusal = "没有权限"_s;
        demo_.refuse("get_persons"_s, refusal);
        open();
        EXPECT_BOXES(refusal);
        const QString blocked = "TS10006-1"_s; // a part of its folder's path is a file
        dropPhotos(blocked, 1);
        click("startOrderButton");
        EXPECT_BOXES("导入路径无法访问并且无法创建，请检查局域网是否能连接\n\n"_s +
                     text(blocked, Column::PathColumn));
        QCOMPARE(state(blocked), "已选择"_s);
        QVERIFY(child<QComboBox>("modeBox")->isEnabled());
        // And nothing stands in the way of another order.
        dropPhotos(first_, 1);
        importShown();
    }

    void sharedFoldersAreAskedAbout()
    {
        QString folder = demo_.share();
        folder.replace(QLatin1Char('/'), QLatin1Char('\\')).append("\\one"_s);
        for (const char *order : {"50001", "50003"})
            demo_.changeOrder(QLatin1String(order), {{"netpath"_s, folder}});
        openWith(1);
        click("startOrderButton");
        EXPECT_BOX_THAT(box.contains(folder + "\n"_s + first_) && box.contains(second_));
        QCOMPARE(state(first_), "已选择"_s);
        MessageBox::setNextAnswer(QMessageBox::Ok);
        click("startOrderButton");
        QTRY_COMPARE(state(first_), "导片完成"_s);
        QTRY_COMPARE(boxes().size(), 2);
        forgetBoxes();
    }

    void anOrderIsNotQueuedTwice()
    {
        openWith(3);
        demo_.hold("savepicpath"_s, 4); // as many as are sent at once
        click("startOrderButton");
        QCOMPARE(state(first_), "等待导片"_s);
        for (const char *box : {"modeBox", "workerBox"}) {
            QVERIFY(!child<QComboBox>(box)->isEnabled());
            QVERIFY(child<QComboBox>(box)->toolTip().startsWith("导片进行中"_s));
        }
        click("startOrderButton");
        QCOMPARE(Toast::currentText(window_), "该订单正在导片，请等待完成或先停止"_s);
        // Searches and branches wait as well.
        click("searchButton");
        EXPECT_BOXES("导片中..."_s);
        // Another order joins, once the jobs of the first are made.
        QTRY_VERIFY(state(first_) != "等待导片"_s);
        dropPhotos(second_, 2);
        click("startOrderButton");
        QTRY_COMPARE(state(second_), "导片完成"_s);
        // What is being registered is not let go of, nor looked for among the videos.
        QTRY_VERIFY(child<QComboBox>("workerBox")->isEnabled());
        QVERIFY(!child<QComboBox>("modeBox")->isEnabled());
        photos()->selectAll();
        pressAmongPhotos(Qt::Key_Delete, Qt::ControlModifier);
        QCOMPARE(text(second_, Column::ChosenColumn), "2"_s);
        waitUntilHeld(4);
        demo_.release();
        EXPECT_BOXES(done_);
        QTRY_COMPARE(text(second_, Column::ImportedColumn), "2"_s);
        QCOMPARE(demo_.requests("savepicpath"_s).size(), 5);
        QVERIFY(child<QComboBox>("modeBox")->isEnabled());
    }

    void stopsAndGoesOn()
    {
        openWith(6);
        click("startButton");
        click("pauseButton");
        QCOMPARE(child<QPushButton>("pauseButton")->text(), "继续"_s);
        QVERIFY(child<QLabel>("progressLabel")->text().startsWith("已暂停 · 文件 "_s));
        QCOMPARE(child<QPushButton>("startButton")->text(), "停止导片"_s);
        click("startButton");
        QCOMPARE(child<QPushButton>("startButton")->text(), "全部开始"_s);
        QCOMPARE(child<QPushButton>("pauseButton")->text(), "暂停"_s);
        QVERIFY(state(first_) != "等待导片"_s);
        auto *workers = child<QComboBox>("workerBox");
        QTRY_VERIFY(workers->isEnabled());
        QCOMPARE(workers->count(), 16);
        workers->setFocus();
        QTest::keyClick(workers, Qt::Key_End);
        QTest::keyClick(window_, Qt::Key_Return, Qt::ControlModifier);
        EXPECT_BOXES(done_);
        QCOMPARE(state(first_), "导片完成"_s);
        QCOMPARE(QDir(imported(first_, "1920"_s)).entryList(QDir::Files).size(), 6);
        // What the stop left was taken back, and is a row of its own the second time.
        int finished = 0;
        const QVector<ledger::Copy> copies = recorded();
        for (const ledger::Copy &copy : copies) {
            finished += copy.isFinished() ? 1 : 0;
            QCOMPARE(copy.failure, copy.isFinished() ? QString() : "任务已取消"_s);
        }
        QVERIFY(finished >= 6);
        click("startButton");
        EXPECT_BOXES("文件已全部导入"_s);
        click("startOrderButton");
        QCOMPARE(Toast::currentText(window_), "文件已全部导入"_s);
    }

    void failedFilesAreRetried()
    {
        openWith(3);
        const QString away = card_->filePath("away"_s);
        const QString photo = card_->filePath(first_ + "/IMG_2.jpg"_s);
        QVERIFY(QFile::rename(photo, away));
        click("startOrderButton");
        EXPECT_BOX_THAT(
            box.startsWith("导片结束，1 个文件失败，0 项未登记。\n源文件不存在: 1 个文件\n"_s));
        QCOMPARE(state(first_), "成功:2, 失败:1"_s);
        const auto panel = photos()->model()->index(2, 0).data(tfphotolistmodel::PhotoRole);
        QCOMPARE(panel.value<PanelPhoto>().file.failureText(),
                 "原图拷贝失败；图片压缩失败 (目标尺寸: 90、190、1920)"_s);
        QTRY_COMPARE(report(), "本次导入 1 个订单：选择 3，已拷贝 2，已核对 2，已登记 2，失败 1"_s);
        demo_.clearRequests();
        QVERIFY(QFile::rename(away, photo));
        reportAction("全部重试"_s);
        EXPECT_BOXES(done_);
        QCOMPARE(state(first_), "导片完成"_s);
        QCOMPARE(demo_.requests("savepicpath"_s).size(), 1); // the others are registered
        QTRY_COMPARE(report(), "本次导入 1 个订单：选择 1，已拷贝 1，已核对 1，已登记 1"_s);
        click("retryButton");
        QCOMPARE(Toast::currentText(window_), "没有失败的文件"_s);
    }

    void refusedRegistrationsAreRetried()
    {
        openWith(3);
        const QString reasons[] = {"稍后再试"_s, "服务器拒绝登记"_s, "服务器没有响应"_s};
        demo_.refuse("savepicpath"_s, reasons[0]);
        demo_.refuse("savepicpath"_s, {});
        demo_.misbehave("savepicpath"_s, "html"_s);
        demo_.refuse("saveorderphotopath"_s, "目录被占用"_s);
        click("startOrderButton");
        EXPECT_BOX_THAT(box.startsWith("导片结束，0 个文件失败，4 项未登记。"_s));
        QCOMPARE(state(first_), "未登记:3"_s);
        const QVector<ledger::Copy> made = recorded();
        for (const ledger::Copy &copy : made) {
            QVERIFY(copy.registration == ledger::Registration::Awaited);
            const ContentReading target = readContent(platform::toLocalPath(copy.target));
            QCOMPARE(copy.targetHash, target.hash);
            QCOMPARE(copy.sourceHash, readContent(copy.source).hash);
            const bool isTurned = !copy.target.endsWith("IMG_0.jpg"_s);
            QVERIFY(copy.kind == (isTurned ? ledger::CopyKind::Upright : ledger::CopyKind::Bytes));
            QCOMPARE(copy.proof, isTurned ? Proof::Derived : target.proof);
        }
        QCOMPARE(made.size(), 3);
        QString tips;
        for (int row = 0; row < 3; ++row)
            tips += photos()->model()->index(row, 0).data(Qt::ToolTipRole).toString();
        for (const QString &reason : reasons)
            QVERIFY(tips.contains("登记失败: "_s + reason));
        QTRY_COMPARE(report(),
                     "本次导入 1 个订单：选择 3，已拷贝 3，已核对 3，已登记 0，未登记 3"_s);
        reportAction("全部重试"_s);
        QTRY_COMPARE(state(first_), "导片完成"_s);
        QTRY_COMPARE(text(first_, Column::ImportedColumn), "3"_s);
        QCOMPARE(demo_.requests("saveorderphotopath"_s).size(), 2);
        const auto isRegistered = [](const ledger::Copy &copy) {
            return copy.registration == ledger::Registration::Done;
        };
        const auto areRegistered = [&] {
            const QVector<ledger::Copy> copies = recorded();
            return std::all_of(copies.cbegin(), copies.cend(), isRegistered);
        };
        QTRY_VERIFY(areRegistered());
        QCOMPARE(report(), QString());
    }

    void deletesAtTheServiceFirst()
    {
        openWith(3);
        importShown();
        QTRY_COMPARE(text(first_, Column::ImportedColumn), "3"_s);
        const QString original = imported(first_, "all/IMG_0.jpg"_s);
        photos()->setCurrentIndex(photos()->model()->index(1, 0));
        const QString question = "确认要删除选中的 1 个文件吗？\n"
                                 "服务和磁盘上的文件都会删除，不能恢复。"_s;

        demo_.refuse("delimages"_s, "照片已锁定"_s);
        MessageBox::setNextAnswer(QMessageBox::Ok);
        pressAmongPhotos(Qt::Key_Delete);
        EXPECT_BOXES(question, "照片已锁定"_s);
        QVERIFY(QFile::exists(original));
        {
            const ordersatwork::Claim claim({OrderIdentity{"101"_s, "50001"_s, "800001"_s}},
                                            "设计分件"_s);
            MessageBox::setNextAnswer(QMessageBox::Ok);
            pressAmongPhotos(Qt::Key_Delete);
            EXPECT_BOXES(question,
                         ordersatwork::refusal(
                             first_ + u' ' + text(first_, Column::CustomersColumn), "设计分件"_s));
            QCOMPARE(demo_.requests("delimages"_s).size(), 1);
        }

        pressAmongPhotos(Qt::Key_Delete); // and changes their mind
        EXPECT_BOXES(question);
        MessageBox::setNextAnswer(QMessageBox::Ok);
        pressAmongPhotos(Qt::Key_Delete);
        EXPECT_BOXES(question);
        QTRY_COMPARE(Toast::currentText(window_), "删除成功"_s);
        QCOMPARE(photos()->model()->rowCount(), 2);
        QCOMPARE(text(first_, Column::ImportedColumn), "2"_s);
        for (const char *kind : {"all", "90", "190", "1920"}) {
            const QDir folder(imported(first_, QLatin1String(kind)));
            QTRY_COMPARE(folder.entryList(QDir::Files),
                         (QStringList{"IMG_1.jpg"_s, "IMG_2.jpg"_s}));
        }
    }

    void photosThatAreLeftOnTheDiskAreOffered()
    {
        openWith(4);
        importShown();
        QTRY_COMPARE(text(first_, Column::ImportedColumn), "4"_s);
        QStringList originals;
        for (int index = 0; index < 4; ++index)
            originals.append(imported(first_, "all/IMG_%1.jpg"_s.arg(index)));
        const QString variant = imported(first_, "190/IMG_0.jpg"_s);
        const QStringList kept = originals.mid(0, 3) << variant;
        for (const QString &file : kept)
            QVERIFY(QFile::setPermissions(file, QFileDevice::ReadOwner));
        photos()->selectAll();
        MessageBox::setNextAnswer(QMessageBox::Ok);
        pressAmongPhotos(Qt::Key_Delete);
        const QString left = "3 个照片已从服务端删除、磁盘上仍在"_s;
        QTRY_COMPARE(notices(), QStringList(left));
        forgetBoxes();
        QVERIFY(!QFile::exists(originals.at(3)));
        QVERIFY(QFile::exists(variant));
        for (const QString &file : kept)
            QFile::setPermissions(file, QFileDevice::ReadOwner | QFileDevice::WriteOwner);
        writeFile(originals.at(1), "retouched by hand");
        bool isListed = false;
        callService(this, "&m=order&a=savepicpath"_s,
                    "shopid=101&order_photo_id=800001&path=" +
                        QUrl::toPercentEncoding(originals.at(2)),
                    [&](const ServiceReply &reply) { isListed = reply.isSuccess(); });
        QTRY_VERIFY(isListed);

        delete window_;
        open();
        QTRY_COMPARE(notices(), QStringList(left)); // nothing by itself
        QVERIFY(QFile::exists(originals.at(0)));
        act("删除文件"_s); // and changes their mind
        EXPECT_BOX_THAT(box.startsWith(left));
        QCOMPARE(notices(), QStringList(left));
        MessageBox::setNextAnswer(QMessageBox::Ok);
        act("删除文件"_s);
        QTRY_COMPARE(boxes().size(), 2);
        const QString told = boxes_.takeLast();
        forgetBoxes();
        for (const char *line : {"已删除 2 个文件", "IMG_1.jpg: 文件已变化，保留",
                                 "IMG_2.jpg: 服务端仍有这张照片，保留"})
            QVERIFY2(told.contains(QString::fromUtf8(line)), qUtf8Printable(told));
        for (int index = 0; index < 4; ++index)
            QCOMPARE(QFile::exists(originals.at(index)), index == 1 || index == 2);
        QVERIFY(!QFile::exists(variant));
        QTRY_COMPARE(notices(), QStringList());
    }

    void deletionsWithoutAnAnswer()
    {
        openWith(2);
        importShown();
        QTRY_COMPARE(text(first_, Column::ImportedColumn), "2"_s);
        const auto unknown = [](const QString &box) {
            return box.contains("服务端是否已经删除尚不确定"_s) && box.endsWith("IMG_0.jpg"_s);
        };
        const auto deleteOne = [this] {
            photos()->setCurrentIndex(photos()->model()->index(1, 0));
            MessageBox::setNextAnswer(QMessageBox::Ok);
            pressAmongPhotos(Qt::Key_Delete);
            EXPECT_BOX_THAT(box.startsWith("确认要删除选中的 1 个文件吗？"_s));
        };
        demo_.misbehave("delimages"_s, "drop"_s);
        deleteOne();
        EXPECT_BOX_THAT(unknown(box));

        demo_.hold("delimages"_s);
        deleteOne();
        waitUntilHeld();
        window_->close(); // the safe answer keeps it open
        EXPECT_BOX_THAT(box.startsWith("正在删除已导入的照片，"_s));
        QVERIFY(window_->isVisible());
        QTest::keyClick(window_->findChild<LoadingOverlay *>(), Qt::Key_Escape);
        EXPECT_BOX_THAT(unknown(box));
        const QString original = imported(first_, "all/IMG_0.jpg"_s);
        QVERIFY(QFile::exists(original));
        demo_.release();

        // Another window asks what became of it: the service has deleted it.
        delete window_;
        open();
        QTRY_COMPARE(notices(), QStringList("上次删除 1 个照片时没有得到服务端的答复"_s));
        act("核实"_s);
        EXPECT_BOXES("服务端已经没有 1 张照片，磁盘上的文件可以删除"_s);
        QTRY_COMPARE(notices(), QStringList("1 个照片已从服务端删除、磁盘上仍在"_s));
        QVERIFY(QFile::exists(original));
        MessageBox::setNextAnswer(QMessageBox::Ok);
        act("删除文件"_s);
        QTRY_COMPARE(boxes().size(), 2);
        QCOMPARE(boxes_.takeLast(), "已删除 4 个文件"_s); // with its variants
        forgetBoxes();
        QVERIFY(!QFile::exists(original));
        QTRY_COMPARE(notices(), QStringList());
    }

    void videosGoTheirOwnWay()
    {
        open();
        auto *mode = child<QComboBox>("modeBox");
        mode->setFocus();
        QTest::keyClick(mode, Qt::Key_Down);
        QCOMPARE(AccountContext::photoMode, 1);
        writeFile(card_->filePath("A&B.mp4"_s), "frames");
        select(second_);
        const UnreadableFolder unreadable(card_->path());
        if (!unreadable.path.isEmpty()) {
            QVERIFY(dropFiles(photos()->viewport(), QPoint(40, 40), {card_->path()}));
            EXPECT_BOX_THAT(box.contains(unreadable.path));
            QCOMPARE(photos()->model()->rowCount(), 0);
            MessageBox::setNextAnswer(QMessageBox::Ok);
        }
        QVERIFY(dropFiles(photos()->viewport(), QPoint(40, 40), {card_->path()}));
        QTRY_COMPARE(text(second_, Column::ChosenColumn), "1"_s);
        forgetBoxes();
        importShown();
        QVERIFY(QFile::exists(imported(second_, "试拍视频/A&B.mp4"_s)));
        QVERIFY(demo_.body("savepicpathmv"_s).contains("&type=2&photonames=A%26B.mp4"_s));
        QTRY_COMPARE(text(second_, Column::ImportedColumn), "1"_s);
        photos()->selectAll();
        MessageBox::setNextAnswer(QMessageBox::Ok);
        click("deleteButton");
        QTRY_COMPARE(demo_.requests("delmv"_s).size(), 1);
        QTRY_VERIFY(!QFile::exists(imported(second_, "试拍视频/A&B.mp4"_s)));
        forgetBoxes();

        mode->setFocus();
        QTest::keyClick(mode, Qt::Key_Up);
        QCOMPARE(text(second_, Column::ChosenColumn), QString());
    }

    void unfinishedOrdersSurviveASearch()
    {
        openWith(2);
        auto *keyword = child<QLineEdit>("keywordEdit");
        keyword->setText("TS10003"_s);
        QTest::keyClick(keyword, Qt::Key_Return);
        QTRY_COMPARE(orders()->model()->rowCount(), 2);
        QCOMPARE(text(first_, Column::ChosenColumn), "2"_s);

        // Another branch would drop them: asked first.
        auto *branches = child<QComboBox>("branchBox");
        branches->setFocus();
        QTest::keyClick(branches, Qt::Key_Down);
        EXPECT_BOX_THAT(box.startsWith("切换分店会清空"_s));
        QCOMPARE(branches->currentText(), "一店"_s);
        MessageBox::setNextAnswer(QMessageBox::Ok);
        QTest::keyClick(branches, Qt::Key_Down);
        QTRY_VERIFY(orders()->model()->rowCount() > 2);
        QVERIFY(orders()->model()->index(0, Column::NumberColumn).data() != first_);
        forgetBoxes();
    }

    void closesInMidRun()
    {
        openWith(8);
        demo_.hold("savepicpath"_s);
        click("startOrderButton");
        waitUntilHeld();
        window_->setAttribute(Qt::WA_DeleteOnClose);
        window_->close(); // the safe answer keeps it open
        // Photos as small as these may all be copied by now.
        const QString running = "正在导片，关闭窗口会停止导片。\n"_s;
        EXPECT_BOX_THAT(QString(box).remove(running).startsWith("还有 "_s));
        QVERIFY(window_->isVisible());
        QTRY_COMPARE(child<QLabel>("progressLabel")->text(), "正在登记，剩余 1"_s);
        MessageBox::setNextAnswer(QMessageBox::Ok);
        window_->close();
        EXPECT_BOX_THAT(box.startsWith("还有 1 项没有登记到服务端，"_s));
        QVERIFY(!window_->isVisible());
        QVERIFY(window_); // the photos that are imported are still to be registered
        demo_.release();
        QTRY_VERIFY(!window_);
    }

    void whatWasAddedComesBackInTheNextWindow()
    {
        openWith(3);
        window_->setAttribute(Qt::WA_DeleteOnClose);
        window_->close();
        QTRY_VERIFY(!window_);
        open();
        auto *bar = window_->findChild<NoticeBar *>();
        QTRY_COMPARE(bar->notices().size(), 1);
        QCOMPARE(bar->notices().constFirst().text, "另有 1 个订单、3 个文件待导入"_s);
        QCOMPARE(text(first_, Column::ChosenColumn), QString()); // nothing by itself
        demo_.clearRequests();
        bar->notices().constFirst().actions.constFirst().act();
        QTRY_COMPARE(text(first_, Column::ChosenColumn), "3"_s);
        QCOMPARE(demo_.requests("order_list"_s).size(), 1); // the order is asked for anew
        QVERIFY(bar->notices().isEmpty());
        select(first_);
        importShown();
        QCOMPARE(state(first_), "导片完成"_s);
        delete window_;
        const auto left = ledger_->answer([](const LedgerReader &reader) {
            return reader.pending({"9001"_s, "101"_s, ledger::Work::PhotoImport}).size();
        });
        QCOMPARE(left, 0);
    }

private:
    /// What the ledger knows of the first order's copies.
    QVector<ledger::Copy> recorded() const
    {
        return ledger_->answer([number = first_](const LedgerReader &reader) {
            ledger::HistorySearch search;
            search.order = number;
            QVector<ledger::Copy> copies;
            const ledger::HistoryPage page = reader.history(search);
            for (const ledger::Entry &entry : page.entries)
                copies += reader.copiesOfEntry(entry.id);
            return copies;
        });
    }

    /// The notice that tells of the last run.
    Notice reported() const
    {
        const auto notices = window_->findChild<NoticeBar *>()->notices();
        for (const Notice &notice : notices) {
            if (notice.id == "runReport"_s)
                return notice;
        }
        return {};
    }
    QString report() const { return reported().text; }
    void reportAction(const QString &text) const
    {
        const Notice notice = reported();
        for (const auto &action : notice.actions) {
            if (action.text == text)
                return action.act();
        }
        QFAIL("no such action");
    }

    QStringList notices()
    {
        QStringList texts;
        const auto shown = window_->findChild<NoticeBar *>()->notices();
        for (const Notice &notice : shown) {
            if (notice.id.startsWith("pending."_s))
                texts.append(notice.text);
        }
        return texts;
    }
    /// Takes what the bar offers first in that word.
    void act(const QString &offer)
    {
        QVector<Notice::Action> actions;
        const auto shown = window_->findChild<NoticeBar *>()->notices();
        for (const Notice &notice : shown)
            actions += notice.actions;
        const auto action = std::find_if(actions.cbegin(), actions.cend(),
                                         [&offer](const auto &each) { return each.text == offer; });
        QVERIFY(action != actions.cend());
        action->act();
    }

    void open() { show(new tfhome); }
    void importShown()
    {
        click("startOrderButton");
        EXPECT_BOXES(done_);
    }
    void pressAmongPhotos(Qt::Key key, Qt::KeyboardModifier modifier = Qt::NoModifier)
    {
        photos()->setFocus();
        QTest::keyClick(photos(), key, modifier);
    }
    void openWith(int photos)
    {
        open();
        dropPhotos(first_, photos);
    }

    tfphotoview *photos() { return child<tfphotoview>("photoView"); }

    /// Makes pictures on the card and drops the card onto the order.
    void dropPhotos(const QString &number, int count)
    {
        const QDir folder(card_->filePath(number));
        QDir().mkpath(folder.filePath("deep"_s));
        for (int index = 0; index < count; ++index) {
            writeFile(
                folder.filePath("%1IMG_%2.jpg"_s.arg(index % 2 ? "deep/"_s : QString()).arg(index)),
                jpegOf(cornerPicture({120, 80}), 1 + index % 8));
        }
        writeFile(folder.filePath("notes.txt"_s));
        const QModelIndex index = cell(number, 0);
        orders()->scrollTo(index);
        QVERIFY(
            dropFiles(orders()->viewport(), orders()->visualRect(index).center(), {folder.path()}));
        QTRY_COMPARE(text(number, Column::ChosenColumn), QString::number(count));
        EXPECT_BOXES("已忽略 1 个不支持的文件：.txt 1 个"_s);
    }

    QString imported(const QString &number, const QString &path)
    {
        return platform::toLocalPath(text(number, Column::PathColumn)) + QLatin1Char('/') + path;
    }

    QString state(const QString &number) { return text(number, Column::StateColumn); }

    std::unique_ptr<QTemporaryDir> card_;
    const QString done_ = "导片完成！"_s;
    std::unique_ptr<Ledger> ledger_;
    const QString first_ = "TS10001-1"_s;
    const QString second_ = "TS10003-1"_s;
};

QTEST_MAIN(TestTfHome)
#include "test_tfhome.moc"
