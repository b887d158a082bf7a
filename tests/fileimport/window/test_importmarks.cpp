#include "fileimport/window/importfiles.h"
#include "fileimport/window/orderactionsdelegate.h"
#include "platform/pathform.h"
#include "tests/support/files.h"
#include "tests/support/toolwindow.h"
#include "widgets/boxes/filedialog.h"
#include "widgets/boxes/noticebar.h"

#include <QPushButton>
#include <QTemporaryDir>

using Column = ImportOrderTableModel::Column;
using marks::Mark;

/// What the import window tells of chosen files before a start, against the demo service.
class TestImportMarks : public ToolWindowTest<ImportFiles, ImportOrderTableModel::NumberColumn>
{
    Q_OBJECT

private slots:
    void init()
    {
        logIn();
        card_ = std::make_unique<QTemporaryDir>();
    }
    void cleanup() { endTest(); }

    /// Nothing here keeps a ledger: the disks alone tell.
    void marksAreShownAndActedUpon()
    {
        open(0);
        const QStringList photos = {photo("IMG_1.jpg"_s), photo("IMG_2.jpg"_s)};
        importFiles(photos);
        writeFile(imported("原片/IMG_2.jpg"_s), "edited since");
        choose(photos + QStringList{photo("IMG_3.jpg"_s)}, 3);
        QTRY_COMPARE(shownMarks(), (QVector<Mark>{Mark::Imported, Mark::Differs, Mark::New}));
        QTRY_COMPARE(lines(), (QStringList{"1 个同名文件内容不同，导入将替换 查看 跳过 改名导入"_s,
                                           "1 个已导入 跳过"_s}));
        click(qPrintable("markChip%1"_s.arg(int(Mark::New))));
        QCOMPARE(shownNames(), QStringList("IMG_3.jpg"_s));

        press("1 个已导入"_s, "跳过"_s);
        QTRY_COMPARE(text(order_, Column::ChosenColumn), "2"_s);
        press("内容不同"_s, "改名导入"_s);
        QTRY_COMPARE(lines(), QStringList());
        click(qPrintable("markChip%1"_s.arg(int(Mark::New))));
        QTRY_COMPARE(shownNames(), (QStringList{"IMG_2_2.jpg"_s, "IMG_3.jpg"_s}));

        click("startButton");
        EXPECT_BOXES("导入完成！"_s);
        QCOMPARE(readFile(imported("原片/IMG_2.jpg"_s)), QByteArray("edited since"));
        QCOMPARE(readFile(imported("原片/IMG_2_2.jpg"_s)), QByteArray("IMG_2.jpg"));
        QVERIFY(demo_.body("savepicpath_batch"_s).contains("IMG_2_2.jpg"_s));
        QCOMPARE(lines(), QStringList());
    }

    void doingNothingReplaces()
    {
        open(1);
        const QStringList photos = {photo("IMG_1.jpg"_s)};
        MessageBox::setNextAnswer(QMessageBox::Ok);
        importFiles(photos);
        writeFile(imported("精修片/IMG_1.jpg"_s), "edited since");
        MessageBox::setNextAnswer(QMessageBox::Ok);
        choose(photos, 1);
        // The customer chose these names.
        QTRY_COMPARE(lines(), QStringList("1 个同名文件内容不同，导入将替换 查看 跳过"_s));
        click("startButton");
        QTRY_COMPARE(readFile(imported("精修片/IMG_1.jpg"_s)), QByteArray("IMG_1.jpg"));
        QTRY_VERIFY(boxes().contains("导入完成！"_s));
        forgetBoxes();
    }

    void clashesAreRenamedOrLeftOut()
    {
        open(0);
        const QStringList chosen = {photo("100X/IMG_1.jpg"_s), photo("101X/IMG_1.jpg"_s),
                                    photo("101X/IMG_1.cr2"_s), photo("101X/img_1.xmp"_s)};
        importFiles({photo("IMG_9.jpg"_s)}); // makes the order's folders
        writeFile(imported("原始档/img_1_2.NEF"_s), "in the way of the number 2");

        MessageBox::setNextAnswer(QMessageBox::No);
        choose(chosen, 3);
        EXPECT_BOX_THAT(box.contains(chosen.at(0)) && box.contains(chosen.at(1)));
        QCOMPARE(shownNames(), (QStringList{"IMG_1.jpg"_s, "IMG_1.cr2"_s, "img_1.xmp"_s}));
        click(cell(order_, Column::NumberColumn));

        MessageBox::setNextAnswer(QMessageBox::Yes);
        choose(chosen, 4);
        EXPECT_BOX_THAT(box.contains(chosen.at(1)));
        importFiles({});
        for (const char *name : {"原片/IMG_1.jpg", "原片/IMG_1_3.jpg", "原始档/IMG_1_3.cr2"})
            QVERIFY2(QFile::exists(imported(QString::fromUtf8(name))), name);
        QCOMPARE(QDir(imported("原始档"_s)).entryList({"*.xmp"_s}, QDir::Files).size(), 1);
        QCOMPARE(readFile(imported("原片/IMG_1_3.jpg"_s)), QByteArray("101X/IMG_1.jpg"));
        const QString body = demo_.body("savepicpath_batch"_s);
        QVERIFY(body.contains("IMG_1_3.jpg"_s) && body.contains("IMG_1_3.cr2"_s));
    }

private:
    void open(int mode)
    {
        auto *window = new ImportFiles;
        window->setMode(mode);
        show(window);
        select(order_);
    }
    /// Holds its own name.
    QString photo(const QString &name) { return writeFile(card_->filePath(name), name.toUtf8()); }
    void choose(const QStringList &files, int taken)
    {
        FileDialog::setNextFiles(files);
        const QModelIndex index = cell(order_, Column::ActionsColumn);
        orders()->scrollTo(index);
        click(index, OrderActionsDelegate::buttonRect(orders()->visualRect(index),
                                                      OrderActionsDelegate::SelectFiles)
                         .center());
        QTRY_COMPARE(text(order_, Column::ChosenColumn), QString::number(taken));
    }
    /// \a files, or what is chosen already.
    void importFiles(const QStringList &files)
    {
        if (!files.isEmpty())
            choose(files, files.size());
        click("startButton");
        QTRY_VERIFY(boxes().contains("导入完成！"_s));
        forgetBoxes();
    }
    QString imported(const QString &path)
    {
        return platform::toLocalPath(text(order_, Column::PathColumn)) + QLatin1Char('/') + path;
    }

    QAbstractItemModel *files() { return child<QTableView>("fileTable")->model(); }
    QStringList shownNames()
    {
        QStringList names;
        for (int row = 0; row < files()->rowCount(); ++row)
            names.append(
                files()->index(row, ImportFileTableModel::FileNameColumn).data().toString());
        return names;
    }
    QVector<Mark> shownMarks()
    {
        QVector<Mark> found;
        for (int row = 0; row < files()->rowCount(); ++row)
            found.append(Mark(files()->index(row, 0).data(ImportFileTableModel::MarkRole).toInt()));
        return found;
    }

    QVector<Notice> notices()
    {
        QVector<Notice> own;
        const auto bars = window_->findChildren<NoticeBar *>();
        for (const NoticeBar *bar : bars) {
            const auto all = bar->notices();
            for (const Notice &notice : all) {
                if (notice.id.startsWith("marks."_s))
                    own.append(notice);
            }
        }
        return own;
    }
    QStringList lines()
    {
        QStringList texts;
        const auto all = notices();
        for (const Notice &notice : all) {
            QString line = notice.text;
            for (const Notice::Action &action : notice.actions)
                line += " "_s + action.text;
            texts.append(line);
        }
        return texts;
    }
    void press(const QString &line, const QString &way)
    {
        const auto all = notices();
        for (const Notice &notice : all) {
            for (const Notice::Action &action : notice.actions) {
                if (notice.text.contains(line) && action.text == way) {
                    action.act();
                    return;
                }
            }
        }
        QFAIL(qPrintable("no way out: "_s + way));
    }

    using ToolWindowTest::click;

    const QString order_ = "TS10001-1"_s;
    std::unique_ptr<QTemporaryDir> card_;
};

QTEST_MAIN(TestImportMarks)
#include "test_importmarks.moc"
