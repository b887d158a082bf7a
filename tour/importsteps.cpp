#include "fileimport/window/importfiles.h"
#include "fileimport/window/importfiletablemodel.h"
#include "fileimport/window/importordertablemodel.h"
#include "fileimport/window/orderactionsdelegate.h"
#include "marks/window/markdetails.h"
#include "thumbnails/photocell.h"
#include "thumbnails/thumbnailtableview.h"
#include "tour/toolhand.h"
#include "widgets/boxes/filedialog.h"
#include "widgets/boxes/noticebar.h"

#include <QFile>
#include <QLabel>
#include <QPushButton>

namespace {

using Column = ImportOrderTableModel::Column;

/// The import window as the tour handles it.
class ImportHand : public ToolHand<ImportFiles, Column::NumberColumn>
{
public:
    ImportHand(Guide &guide, const QString &card) : ToolHand(guide, card)
    {
        guide.check(window_->windowTitle() == card, "under the card's name"_s);
    }

    void pressChoose(const QString &number, const QStringList &paths)
    {
        FileDialog::setNextFiles(paths);
        pressAction(number, OrderActionsDelegate::SelectFiles);
    }
    void pressAction(const QString &number, OrderActionsDelegate::Action action)
    {
        const QModelIndex index = cell(number, Column::ActionsColumn);
        orders()->scrollTo(index);
        press(index,
              OrderActionsDelegate::buttonRect(orders()->visualRect(index), action).center());
    }

    void expectChosen(const QString &number, int count)
    {
        guide_.waitFor([&] { return text(number, Column::ChosenColumn) == QString::number(count); },
                       "%1 files are chosen for %2"_s.arg(count).arg(number));
    }

    /// Every source lies in the order's folder, byte for byte, and nothing of ours beside it.
    void checkOnDisk(const QString &number, const QStringList &sources,
                     const QString &onlyFolder = {})
    {
        const QDir folder = ToolHand::folder(number, Column::PathColumn);
        int same = 0;
        for (const QString &source : sources) {
            const QString name = QFileInfo(source).fileName();
            for (const QString &sub : {"原片"_s, "原始档"_s, "精修片"_s}) {
                const QString copy = folder.filePath(sub + QLatin1Char('/') + name);
                if ((onlyFolder.isEmpty() || onlyFolder == sub) && QFile::exists(copy) &&
                    readFile(copy) == readFile(source))
                    ++same;
            }
        }
        guide_.check(same == sources.size(),
                     "%1 of %2 files of %3 lie there byte for byte"_s.arg(same)
                         .arg(sources.size())
                         .arg(number));
    }
};

QStringList cardFiles(Guide &guide, const QStringList &patterns)
{
    const QDir card(guide.material("camera-card/DCIM/100TESSA"_s));
    QStringList paths;
    const auto names = card.entryList(patterns, QDir::Files, QDir::Name);
    for (const QString &name : names)
        paths.append(card.filePath(name));
    return paths;
}

/// Looks at the photos that were imported for the order, deletes two, looks again.
void lookAndDelete(Guide &guide, const ImportHand &hand, const QString &order, int count)
{
    guide.step("导入原片: 已导入照片"_s);
    auto *grid = hand.window()->findChild<ThumbnailTableView *>();
    const auto showsAll = [grid](int expected) {
        // Only what is on the screen has its picture.
        return grid->count() == expected && grid->createdCells() == expected &&
               grid->cell(0)->isLoaded && grid->cell(4)->isLoaded;
    };
    guide.waitFor([&] { return showsAll(count); },
                  "%1 photos are shown without asking for them"_s.arg(count));
    guide.picture(hand.window(), "import-complete"_s);
    const QDir folder = hand.folder(order, Column::PathColumn);
    const auto onDisk = [&folder] {
        return QDir(folder.filePath("原片"_s)).entryList(QDir::Files).size();
    };
    guide.check(onDisk() == count, "and lie on disk"_s);
    for (const int index : {1, 3})
        QTest::mouseClick(grid->cell(index), Qt::LeftButton);
    guide.picture(hand.window(), "photos-selected"_s);
    guide.answerNextBox("删除"_s, "photos-delete-question"_s);
    guide.click(hand.window(), "deletePhotosButton");
    guide.boxText();
    guide.waitFor([&] { return showsAll(count - 2); }, "two of them are deleted"_s);
    guide.check(onDisk() == count - 2, "from disk, too"_s);
    guide.picture(hand.window(), "photos-deleted"_s);
}

QPushButton *wayOut(const ImportHand &hand, const QString &line, const QString &way)
{
    QPushButton *found = nullptr;
    const auto *bar = hand.window()->findChild<NoticeBar *>();
    const auto lines = bar->findChildren<NoticeLine *>();
    for (const NoticeLine *each : lines) {
        const auto buttons = each->findChildren<QPushButton *>();
        for (QPushButton *button : buttons) {
            if (each->isVisible() && each->notice().text.contains(line) && button->text() == way)
                found = button;
        }
    }
    return found;
}

/// Chooses again what is imported already, one photo of which was replaced meanwhile: sees the
/// marks, renames, leaves out.
void lookBeforeStarting(Guide &guide, ImportHand &hand, const QString &order,
                        const QStringList &photos)
{
    guide.step("导入原片: 导入前的标记"_s);
    const QDir folder = hand.folder(order, Column::PathColumn);
    const QString replaced = folder.filePath("原片/"_s + QFileInfo(photos.first()).fileName());
    const QByteArray before = readFile(replaced);
    writeFile(replaced, before + "edited");
    hand.pressChoose(order, photos);
    const auto chip = [&hand](marks::Mark mark) {
        return hand.window()->findChild<QAbstractButton *>("markChip%1"_s.arg(int(mark)));
    };
    const int imported = photos.size() - 3; // two were deleted, one was replaced
    guide.waitFor(
        [&] { return chip(marks::Mark::Imported)->text() == "已导入 %1"_s.arg(imported); },
        "%1 files are imported already"_s.arg(imported));
    guide.waitFor([&] { return wayOut(hand, "1 个同名文件内容不同，导入将替换"_s, "改名导入"_s); },
                  "one would replace another photo"_s);
    guide.picture(hand.window(), "marks"_s);
    QTest::mouseClick(wayOut(hand, "内容不同"_s, "查看"_s), Qt::LeftButton);
    auto *details = guide.waitForWindow<MarkDetails>("it is listed with both files"_s);
    guide.picture(details, "marks-details"_s);
    details->close();
    QTest::mouseClick(chip(marks::Mark::Differs), Qt::LeftButton);
    guide.check(hand.files()->model()->rowCount() == 1, "the filter leaves it alone in sight"_s);
    guide.picture(hand.window(), "marks-filtered"_s);
    QTest::mouseClick(wayOut(hand, "内容不同"_s, "改名导入"_s), Qt::LeftButton);
    const QString renamed = QFileInfo(photos.first()).completeBaseName() + "_2.jpg"_s;
    guide.waitFor([&] { return hand.files()->model()->index(0, 0).data() == renamed; },
                  "it is going to be "_s + renamed);
    guide.waitFor([&] { return !wayOut(hand, "内容不同"_s, "改名导入"_s); },
                  "nothing is replaced any more"_s);
    QTest::mouseClick(wayOut(hand, "个已导入"_s, "跳过"_s), Qt::LeftButton);
    hand.expectChosen(order, 3);
    guide.waitFor([&] { return chip(marks::Mark::New)->text() == "新 3"_s; }, "all are new"_s);
    guide.picture(hand.window(), "marks-resolved"_s);
    hand.pressAction(order, OrderActionsDelegate::ClearFiles);
    writeFile(replaced, before);
}

} // namespace

void tourImportOriginals(Guide &guide)
{
    guide.step("导入原片: 打开"_s);
    ImportHand hand(guide, "导入原片"_s);
    guide.picture(hand.window(), "import-opened"_s);
    hand.search("TS10001"_s, 2);
    hand.search(QString(), hand.orders()->model()->rowCount());
    guide.waitFor([&hand] { return hand.orders()->model()->rowCount() > 2; },
                  "an empty search lists all"_s);

    guide.step("导入原片: 选择文件"_s);
    const QString first = "TS10001-1"_s;
    const QString second = "TS10003-1"_s;
    const QStringList photos = cardFiles(guide, {"*.jpg"_s});
    const QStringList raws = cardFiles(guide, {"*.cr2"_s, "*.nef"_s, "*.arw"_s});
    guide.check(photos.size() >= 8 && raws.size() >= 2,
                "the card holds %1 photos and %2 raw files"_s.arg(photos.size()).arg(raws.size()));
    const QStringList forSecond = photos.mid(4, 4) + raws;
    hand.pressChoose(second, forSecond);
    hand.expectChosen(second, forSecond.size());
    hand.pressChoose(first, photos);
    hand.expectChosen(first, photos.size());
    guide.picture(hand.window(), "import-chosen"_s);

    guide.step("导入原片: 开始全部导入"_s);
    const QString away = photos.at(2) + ".away"_s;
    QFile::remove(away); // of a tour that ended early
    guide.check(QFile::rename(photos.at(2), away), "one file vanishes from the card"_s);
    guide.studio().hold("savepicpath_batch"_s);
    guide.answerNextBox("确定"_s, "import-finished-box"_s);
    guide.click(hand.window(), "startButton");
    guide.waitFor([&] { return guide.studio().held() == 1; }, "the first order is copied"_s);
    const auto *progress = hand.window()->findChild<QLabel *>("progressLabel"_s);
    guide.waitFor([&] { return progress->text().contains("%1/"_s.arg(photos.size())); },
                  "the progress tells so"_s);
    guide.picture(hand.window(), "import-running"_s);
    guide.studio().release();
    guide.check(guide.boxText() == "导入完成！"_s, "the end is announced"_s);
    guide.check(hand.text(first, Column::StateColumn) ==
                    "成功:%0, 失败:%1"_s.arg(photos.size() - 1).arg(1),
                "the missing file is counted as failed"_s);
    guide.check(hand.text(second, Column::StateColumn) == "导入完成"_s,
                "the other order is complete"_s);
    guide.picture(hand.window(), "import-one-failed"_s);

    guide.step("导入原片: 重新导入"_s);
    guide.check(QFile::rename(away, photos.at(2)), "the file is back"_s);
    const QModelIndex retry = hand.files()->model()->index(2, ImportFileTableModel::ActionColumn);
    QTest::mouseClick(hand.files()->viewport(), Qt::LeftButton, {},
                      hand.files()->visualRect(retry).center());
    guide.waitFor(
        [&] { return hand.text(first, Column::OriginalsColumn) == QString::number(photos.size()); },
        "the retried order is registered with all its photos"_s);
    guide.check(hand.text(first, Column::StateColumn) == "导入完成"_s, "and complete"_s);
    hand.checkOnDisk(first, photos, "原片"_s);
    hand.checkOnDisk(second, forSecond);
    guide.check(guide.studio().requests("savepicpath_batch"_s).size() == 3,
                "the service was told three times"_s);
    lookAndDelete(guide, hand, first, photos.size());
    lookBeforeStarting(guide, hand, first, photos);
    hand.window()->close();
}

void tourImportRetouched(Guide &guide)
{
    guide.step("导入精修片"_s);
    ImportHand hand(guide, "导入精修片"_s);
    const QString order = "TS10001-1"_s;
    const QDir folder(guide.material("retouched"_s));
    QStringList retouched;
    const auto names = folder.entryList(QDir::Files, QDir::Name);
    for (const QString &name : names)
        retouched.append(folder.filePath(name));
    guide.answerNextBox("确定"_s, "retouched-names-differ"_s);
    hand.pressChoose(order, retouched);
    const QString question = guide.boxText();
    guide.check(
        question.startsWith(
            "要上传的精修照片与客人选中的照片名不一致，确认要继续上传吗？\n下列是不一致的照片：\n"_s) &&
            question.count(QLatin1Char('\n')) == 2,
        "the one name the customer did not choose is asked about"_s);
    hand.expectChosen(order, retouched.size());
    guide.answerNextBox("确定"_s, "retouched-finished-box"_s);
    guide.click(hand.window(), "startButton");
    guide.check(guide.boxText() == "导入完成！"_s, "the end is announced"_s);
    guide.check(hand.text(order, Column::RetouchedColumn) == QString::number(retouched.size()),
                "the retouched photos are counted"_s);
    hand.checkOnDisk(order, retouched, "精修片"_s);
    guide.picture(hand.window(), "retouched-complete"_s);
    hand.window()->close();
}
