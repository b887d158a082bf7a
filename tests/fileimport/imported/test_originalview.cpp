#include "fileimport/imported/originalview.h"
#include "tasks/background.h"
#include "tests/fileimport/run/registering.h"
#include "tests/support/datarows.h"
#include "tests/support/login.h"
#include "tests/support/pictures.h"
#include "tests/support/showing.h"
#include "thumbnails/photocell.h"
#include "thumbnails/thumbnailtableview.h"
#include "widgets/boxes/messagebox.h"
#include "widgets/boxes/toast.h"
#include "widgets/theme/theme.h"
#include "widgets/windows/loadingoverlay.h"

#include <QPushButton>
#include <QTemporaryDir>

/// The imported-photo view around its grid: listing and deleting, by mouse and keys.
class TestOriginalView : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { MessageBox::setScripted(true); }

    void init()
    {
        logIn(&demo_);
        folder_ = std::make_unique<QTemporaryDir>();
        MessageBox::takeShown();
    }

    void cleanup()
    {
        demo_.release();
        view_.reset();
        diskPool().waitForDone();
        QVERIFY(MessageBox::takeShown().isEmpty());
    }

    void showsAndDeletes()
    {
        for (int index = 0; index < 7; ++index)
            registerFile(folder_->filePath("%1.jpg"_s.arg(index)), jpegOf(cornerPicture({60, 40})));
        registerFile(folder_->filePath("7.cr2"_s), "raw");
        openView()->setOrder(firstOrder(folder_->path()));
        QCOMPARE(view_->findChild<QLabel *>("photoTitle"_s)->text(), "已导入 TS10001-1   "_s);
        QTRY_COMPARE(grid()->count(), 8);
        QCOMPARE(grid()->entry(0).imgName, "7.cr2"_s); // raw files first
        QTRY_VERIFY(grid()->cell(7) && grid()->cell(7)->isLoaded);

        QVERIFY(QFile::remove(folder_->filePath("1.jpg"_s)));
        for (int index : {1, 2, 3}) // 0.jpg, 1.jpg, 2.jpg
            QTest::mouseClick(grid()->cell(index), Qt::LeftButton);
        QCOMPARE(view_->findChild<QLabel *>("photoCount"_s)->text(), "共 8 个，已选 3 个"_s);
        MessageBox::setNextAnswer(QMessageBox::Cancel);
        press("deletePhotosButton");
        QVERIFY(MessageBox::takeShown().constFirst().text.contains("3 个文件"_s));
        QVERIFY(demo_.requests("delete_pics"_s).isEmpty());

        const OrderIdentity order = originalrequests::identityOf(firstOrder());
        {
            const ordersatwork::Claim claim({order}, "设计分件"_s);
            MessageBox::setNextAnswer(QMessageBox::Ok);
            press("deletePhotosButton");
            QList<BoxRecord> shown;
            QTRY_COMPARE((shown += MessageBox::takeShown()).size(), 2);
            QCOMPARE(shown.last().text, ordersatwork::refusal("TS10001-1"_s, "设计分件"_s));
            QVERIFY(demo_.requests("delete_pics"_s).isEmpty());
        }
        demo_.hold("delete_pics"_s);
        demo_.clearRequests();
        deleteAgreed();
        QTRY_COMPARE(demo_.held(), 1);
        QCOMPARE(ordersatwork::toolAt(order), "导入原片"_s);
        QCOMPARE(overlayText(), "提交删除数据中..."_s);
        view_->refresh(); // nothing, as long as a deletion is under way
        QCOMPARE(overlayText(), "提交删除数据中..."_s);
        demo_.release();
        QTRY_COMPARE(grid()->count(), 5);
        QCOMPARE(overlayText(), "删除完成！"_s);
        QVERIFY(ordersatwork::toolAt(order).isEmpty());
        QCOMPARE(MessageBox::takeShown().constFirst().text,
                 "本地文件删除失败，请检查手动删除以下照片！\n%1\n1.jpg 文件不存在"_s.arg(
                     wireForm(folder_->path())));
        QCOMPARE(QDir(folder_->path()).entryList(QDir::Files),
                 (QStringList{"3.jpg"_s, "4.jpg"_s, "5.jpg"_s, "6.jpg"_s, "7.cr2"_s}));
        QCOMPARE(demo_.requests("getorder_pics"_s).size(), 1);
    }

    void rightsAndToasts()
    {
        registerFile(folder_->filePath("a.jpg"_s), "no picture");
        auto order = firstOrder();
        order["delyp"_s] = "0"_s;
        openView()->setOrder(order);
        QTRY_COMPARE(grid()->createdCells(), 1);
        const char *const buttons[] = {"deletePhotosButton", "selectAllPhotosButton",
                                       "clearPhotosButton"};
        const auto areVisible = [&](bool visible) {
            return std::all_of(std::begin(buttons), std::end(buttons), [&](const char *name) {
                return view_->findChild<QPushButton *>(QLatin1String(name))->isVisible() == visible;
            });
        };
        QVERIFY(areVisible(false));
        grid()->selectAll();
        QTest::keyClick(grid(), Qt::Key_Delete); // not by the key either
        QVERIFY(demo_.requests("delete_pics"_s).isEmpty());

        demo_.misbehave("getorder_pics"_s, "missing-fields"_s,
                        {{"fields"_s, QJsonArray{"images_yuanpian.id"_s}}});
        view_->setOrder(firstOrder(folder_->path()));
        QVERIFY(areVisible(true));
        QTRY_COMPARE(grid()->createdCells(), 1);
        press("deletePhotosButton");
        QCOMPARE(Toast::currentText(view_.get()), "请选择要删除的文件..."_s);
        press("selectAllPhotosButton");
        press("deletePhotosButton");
        QCOMPARE(Toast::currentText(view_.get()), "没有有效的文件可以删除"_s);

        press("refreshPhotosButton");
        QCOMPARE(overlayText(), "正在刷新中..."_s);
        QTRY_VERIFY(grid()->createdCells() == 1 && !grid()->entry(0).id.isEmpty());
        press("selectAllPhotosButton");
        for (const char *why : {"没有权限", ""}) {
            demo_.refuse("delete_pics"_s, QString::fromUtf8(why));
            deleteAgreed();
            QTRY_COMPARE(overlayText(), *why ? QString::fromUtf8(why) : "提交数据失败"_s);
            QTRY_VERIFY(!view_->findChild<LoadingOverlay *>()->isVisible());
        }
        QVERIFY(QFile::exists(folder_->filePath("a.jpg"_s)));
    }

    void deletionsWithoutAnAnswer()
    {
        registerFile(folder_->filePath("a.jpg"_s), "no picture");
        openView()->setOrder(firstOrder(folder_->path()));
        QTRY_COMPARE(grid()->count(), 1);
        for (const QString &kind : {"http-error"_s, "hold"_s}) {
            demo_.misbehave("delete_pics"_s, kind);
            demo_.clearRequests();
            grid()->selectAll();
            deleteAgreed();
            if (kind == "hold"_s) {
                QTRY_COMPARE(demo_.held(), 1);
                QTest::keyClick(view_->findChild<LoadingOverlay *>(), Qt::Key_Escape);
            } else {
                QTRY_COMPARE(overlayText(), "提交数据失败"_s);
            }
            QTRY_COMPARE(demo_.requests("getorder_pics"_s).size(), 1);
            QTRY_VERIFY(view_->closingNotice().isEmpty());
            const QString box = MessageBox::takeShown().value(0).text;
            QVERIFY(box.contains("尚不确定"_s) && box.endsWith("\na.jpg"_s));
            QTRY_VERIFY(!view_->findChild<LoadingOverlay *>()->isVisible());
        }
        // It did go through, as a later list tells.
        demo_.release();
        QTRY_COMPARE(demo_.held(), 0);
        QList<BoxRecord> shown;
        press("refreshPhotosButton");
        QTRY_COMPARE(grid()->count(), 0);
        QTRY_COMPARE((shown += MessageBox::takeShown()).size(), 1);
        QVERIFY(shown.first().text.startsWith("服务端已经没有以下照片"_s));
        QVERIFY(QFile::exists(folder_->filePath("a.jpg"_s)));
        press("refreshPhotosButton");
        QTRY_VERIFY(!view_->findChild<LoadingOverlay *>()->isVisible()); // told once
    }

    void staleAndLateListings()
    {
        registerFile(folder_->filePath("a.jpg"_s), "no picture");
        openView()->setOrder(firstOrder(folder_->path()));
        QTRY_COMPARE(grid()->count(), 1);
        registerFile(folder_->filePath("b.jpg"_s), "no picture");
        demo_.misbehave("getorder_pics"_s, "stale"_s);
        press("refreshPhotosButton");
        QTRY_VERIFY(!view_->findChild<LoadingOverlay *>()->isVisible());
        QCOMPARE(grid()->count(), 1);

        // The answer for an order that is not shown any more.
        demo_.hold("getorder_pics"_s);
        press("refreshPhotosButton");
        QTRY_COMPARE(demo_.held(), 1);
        auto other = firstOrder();
        other["order_photo_id"_s] = "800003"_s;
        view_->setOrder(other);
        QCOMPARE(grid()->count(), 0);
        demo_.release();
        QTRY_COMPARE(demo_.held(), 0);
        QTRY_COMPARE(demo_.requests("getorder_pics"_s).size(), 4);
        QTest::qWait(0);
        QCOMPARE(grid()->count(), 0);
        view_->setOrder({});
        QCOMPARE(view_->findChild<QPushButton *>("refreshPhotosButton"_s)->isEnabled(), false);
    }

    void badListings_data()
    {
        addColumns<QString, bool, QString>({"box", "toast", "emptyText"});
        const QString failed = "照片列表读取失败，请刷新"_s;
        newRow("refuse", "服务暂不可用", false, failed);
        newRow("data-wrong-type", QString(), false, "该订单还没有导入照片"); // no list, no photos
        newRow("http-error", QString(), true, failed);
    }

    void badListings()
    {
        registerFile(folder_->filePath("a.jpg"_s), "no picture");
        demo_.misbehave("getorder_pics"_s, QLatin1String(QTest::currentDataTag()));
        openView()->setOrder(firstOrder(folder_->path()));
        QFETCH(QString, emptyText);
        QTRY_COMPARE(grid()->emptyText(), emptyText);
        QTEST(MessageBox::takeShown().value(0).text, "box");
        QTEST(!Toast::currentText(view_.get()).isEmpty(), "toast");
        QCOMPARE(grid()->count(), 0);
        press("refreshPhotosButton");
        QTRY_COMPARE(grid()->count(), 1);
    }

    void listingsAskedForDuringADeletion_data()
    {
        addColumns<QString, bool>({"kind", "another"});
        newRow("another order, refused", "refuse", true);
        newRow("another order", "none", true);
        newRow("after an import, refused", "refuse", false);
    }

    void listingsAskedForDuringADeletion()
    {
        registerFile(folder_->filePath("a.jpg"_s), "no picture");
        openView()->setOrder(firstOrder(folder_->path()));
        QTRY_COMPARE(grid()->count(), 1);
        grid()->selectAll();
        QFETCH(QString, kind);
        QFETCH(bool, another);
        demo_.misbehave("delete_pics"_s, kind, {{"delay"_s, 50}});
        deleteAgreed();
        auto order = firstOrder();
        if (another) {
            order["order_photo_id"_s] = "800003"_s;
            view_->setOrder(order);
        } else {
            view_->requestListing();
        }
        demo_.clearRequests();
        // The one shown now is listed as soon as the deletion has ended.
        QTRY_COMPARE(demo_.requests("getorder_pics"_s).size(), 1);
        QCOMPARE(demo_.requests("getorder_pics"_s).first()[u"fields"][u"order_photo_id"],
                 QJsonValue(order["order_photo_id"_s]));
        QCOMPARE(QFile::exists(folder_->filePath("a.jpg"_s)), kind == u"refuse");
    }

private:
    OriginalView *openView()
    {
        view_ = std::make_unique<OriginalView>();
        view_->setStyleSheet(theme::windowStyle());
        showActive(view_.get());
        return view_.get();
    }

    ThumbnailTableView *grid() const { return view_->findChild<ThumbnailTableView *>(); }
    void press(const char *button) const
    {
        QTest::mouseClick(view_->findChild<QPushButton *>(QLatin1String(button)), Qt::LeftButton);
    }
    /// By the key, and answers the question with yes.
    void deleteAgreed() const
    {
        MessageBox::setNextAnswer(QMessageBox::Ok);
        QTest::keyClick(grid(), Qt::Key_Delete);
        MessageBox::takeShown();
    }
    QString overlayText() const { return view_->findChild<LoadingOverlay *>()->text(); }

    DemoClient demo_;
    std::unique_ptr<QTemporaryDir> folder_;
    std::unique_ptr<OriginalView> view_;
};

QTEST_MAIN(TestOriginalView)
#include "test_originalview.moc"
