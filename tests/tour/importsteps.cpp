#include "app/shell/choosetools.h"
#include "app/shell/toolcardwidget.h"
#include "fileimport/importfiles.h"
#include "fileimport/importfiletablemodel.h"
#include "fileimport/importordertablemodel.h"
#include "fileimport/orderactionsdelegate.h"
#include "fileimport/photocell.h"
#include "fileimport/thumbnailtableview.h"
#include "platform/pathform.h"
#include "tests/tour/guide.h"
#include "tests/tour/steps.h"
#include "widgets/filedialog.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QTableView>
#include <QtTest>

namespace {

using Column = ImportOrderTableModel::Column;

QByteArray fingerprint(const QString &path)
{
    QFile file(path);
    QCryptographicHash hash(QCryptographicHash::Sha256);
    return file.open(QIODevice::ReadOnly) && hash.addData(&file) ? hash.result() : QByteArray();
}

/// The import window as the tour handles it.
class ImportHand
{
public:
    ImportHand(Guide &guide, const QString &card) : guide_(guide)
    {
        auto *launcher = guide.waitForWindow<ChooseTools>(QStringLiteral("the launcher is there"));
        QTest::mouseDClick(launcher->findChild<ToolCardWidget *>(card), Qt::LeftButton);
        window_ = guide.waitForWindow<ImportFiles>(QStringLiteral("its window opens"));
        guide.check(window_->windowTitle() == card, QStringLiteral("under the card's name"));
        guide.spread(window_);
        guide.waitFor([this] { return table()->model()->rowCount() > 0; },
                      QStringLiteral("the branch's orders are listed"));
    }

    ImportFiles *window() const { return window_; }
    QTableView *table() const
    {
        return window_->findChild<QTableView *>(QStringLiteral("orderTable"));
    }
    QTableView *files() const
    {
        return window_->findChild<QTableView *>(QStringLiteral("fileTable"));
    }

    void search(const QString &keyword, int expectedRows)
    {
        guide_.typeInto(window_, "keywordEdit", keyword);
        QTest::keyClick(window_->findChild<QLineEdit *>(QStringLiteral("keywordEdit")),
                        Qt::Key_Return);
        guide_.waitFor([&] { return table()->model()->rowCount() == expectedRows; },
                       QStringLiteral("a search for %1 finds %2").arg(keyword).arg(expectedRows));
    }

    int rowOf(const QString &number) const
    {
        for (int row = 0; row < table()->model()->rowCount(); ++row) {
            if (table()->model()->index(row, Column::NumberColumn).data() == number)
                return row;
        }
        throw TourFailure{QStringLiteral("order %1 is not listed").arg(number)};
    }

    QString cell(const QString &number, int column) const
    {
        return table()->model()->index(rowOf(number), column).data().toString();
    }

    void pressChoose(const QString &number, const QStringList &paths)
    {
        FileDialog::setNextFiles(paths);
        const QModelIndex index = table()->model()->index(rowOf(number), Column::ActionsColumn);
        table()->scrollTo(index);
        const QRect button = OrderActionsDelegate::buttonRect(table()->visualRect(index),
                                                              OrderActionsDelegate::SelectFiles);
        QTest::mouseClick(table()->viewport(), Qt::LeftButton, {}, button.center());
    }

    void expectChosen(const QString &number, int count)
    {
        guide_.waitFor([&] { return cell(number, Column::ChosenColumn) == QString::number(count); },
                       QStringLiteral("%1 files are chosen for %2").arg(count).arg(number));
    }

    /// Every source lies in the order's folder, byte for byte, and nothing of ours beside it.
    void checkOnDisk(const QString &number, const QStringList &sources,
                     const QString &onlyFolder = {})
    {
        const QDir folder(platform::toLocalPath(cell(number, Column::PathColumn)));
        int same = 0;
        for (const QString &source : sources) {
            const QString name = QFileInfo(source).fileName();
            for (const QString &sub :
                 {QStringLiteral("原片"), QStringLiteral("原始档"), QStringLiteral("精修片")}) {
                const QString copy = folder.filePath(sub + QLatin1Char('/') + name);
                if ((onlyFolder.isEmpty() || onlyFolder == sub) && QFile::exists(copy) &&
                    fingerprint(copy) == fingerprint(source))
                    ++same;
            }
        }
        guide_.check(same == sources.size(),
                     QStringLiteral("%1 of %2 files of %3 lie there byte for byte")
                         .arg(same)
                         .arg(sources.size())
                         .arg(number));
    }

private:
    Guide &guide_;
    ImportFiles *window_ = nullptr;
};

QStringList cardFiles(Guide &guide, const QStringList &patterns)
{
    const QDir card(guide.material(QStringLiteral("camera-card/DCIM/100TESSA")));
    QStringList paths;
    const auto names = card.entryList(patterns, QDir::Files, QDir::Name);
    for (const QString &name : names)
        paths.append(card.filePath(name));
    return paths;
}

/// Looks at the photos that were imported for the order, deletes two, looks again.
void lookAndDelete(Guide &guide, const ImportHand &hand, const QString &order, int count)
{
    guide.step(QStringLiteral("导入原片: 已导入照片"));
    auto *grid = hand.window()->findChild<ThumbnailTableView *>();
    const auto showsAll = [grid](int expected) {
        // Only what is on the screen has its picture.
        return grid->count() == expected && grid->createdCells() == expected &&
               grid->cell(0)->isLoaded && grid->cell(4)->isLoaded;
    };
    guide.waitFor([&] { return showsAll(count); },
                  QStringLiteral("%1 photos are shown without asking for them").arg(count));
    guide.picture(hand.window(), QStringLiteral("import-complete"));
    const QDir folder(platform::toLocalPath(hand.cell(order, Column::PathColumn)));
    const auto onDisk = [&folder] {
        return QDir(folder.filePath(QStringLiteral("原片"))).entryList(QDir::Files).size();
    };
    guide.check(onDisk() == count, QStringLiteral("and lie on disk"));
    for (const int index : {1, 3})
        QTest::mouseClick(grid->cell(index), Qt::LeftButton);
    guide.picture(hand.window(), QStringLiteral("photos-selected"));
    guide.answerNextBox(QStringLiteral("确定"), QStringLiteral("photos-delete-question"));
    guide.click(hand.window(), "deletePhotosButton");
    guide.boxText();
    guide.waitFor([&] { return showsAll(count - 2); }, QStringLiteral("two of them are deleted"));
    guide.check(onDisk() == count - 2, QStringLiteral("from disk, too"));
    guide.picture(hand.window(), QStringLiteral("photos-deleted"));
}

} // namespace

void tourImportOriginals(Guide &guide)
{
    guide.step(QStringLiteral("导入原片: 打开"));
    ImportHand hand(guide, QStringLiteral("导入原片"));
    guide.picture(hand.window(), QStringLiteral("import-opened"));
    hand.search(QStringLiteral("TS10001"), 2);
    hand.search(QString(), hand.table()->model()->rowCount());
    guide.waitFor([&hand] { return hand.table()->model()->rowCount() > 2; },
                  QStringLiteral("an empty search lists all"));

    guide.step(QStringLiteral("导入原片: 选择文件"));
    const QString first = QStringLiteral("TS10001-1");
    const QString second = QStringLiteral("TS10003-1");
    const QStringList photos = cardFiles(guide, {QStringLiteral("*.jpg")});
    const QStringList raws = cardFiles(
        guide, {QStringLiteral("*.cr2"), QStringLiteral("*.nef"), QStringLiteral("*.arw")});
    guide.check(photos.size() >= 8 && raws.size() >= 2,
                QStringLiteral("the card holds %1 photos and %2 raw files")
                    .arg(photos.size())
                    .arg(raws.size()));
    const QStringList forSecond = photos.mid(4, 4) + raws;
    hand.pressChoose(second, forSecond);
    hand.expectChosen(second, forSecond.size());
    hand.pressChoose(first, photos);
    hand.expectChosen(first, photos.size());
    guide.picture(hand.window(), QStringLiteral("import-chosen"));

    guide.step(QStringLiteral("导入原片: 开始全部导入"));
    const QString away = photos.at(2) + QStringLiteral(".away");
    QFile::remove(away); // of a tour that ended early
    guide.check(QFile::rename(photos.at(2), away),
                QStringLiteral("one file vanishes from the card"));
    guide.studio().misbehave(QStringLiteral("savepicpath_batch"), QStringLiteral("hold"));
    guide.answerNextBox(QStringLiteral("确定"), QStringLiteral("import-finished-box"));
    guide.click(hand.window(), "startButton");
    guide.waitFor([&] { return guide.studio().state().value(QStringLiteral("held")).toInt() == 1; },
                  QStringLiteral("the first order is copied"));
    const auto *progress = hand.window()->findChild<QLabel *>(QStringLiteral("progressLabel"));
    guide.waitFor(
        [&] { return progress->text().contains(QStringLiteral("%1/").arg(photos.size())); },
        QStringLiteral("the progress tells so"));
    guide.picture(hand.window(), QStringLiteral("import-running"));
    guide.studio().release();
    guide.check(guide.boxText() == QStringLiteral("导入完成！"),
                QStringLiteral("the end is announced"));
    guide.check(hand.cell(first, Column::StateColumn) ==
                    QStringLiteral("成功:%0, 失败:%1").arg(photos.size() - 1).arg(1),
                QStringLiteral("the missing file is counted as failed"));
    guide.check(hand.cell(second, Column::StateColumn) == QStringLiteral("导入完成"),
                QStringLiteral("the other order is complete"));
    guide.picture(hand.window(), QStringLiteral("import-one-failed"));

    guide.step(QStringLiteral("导入原片: 重新导入"));
    guide.check(QFile::rename(away, photos.at(2)), QStringLiteral("the file is back"));
    const QModelIndex retry = hand.files()->model()->index(2, ImportFileTableModel::ActionColumn);
    QTest::mouseClick(hand.files()->viewport(), Qt::LeftButton, {},
                      hand.files()->visualRect(retry).center());
    guide.waitFor(
        [&] { return hand.cell(first, Column::OriginalsColumn) == QString::number(photos.size()); },
        QStringLiteral("the retried order is registered with all its photos"));
    guide.check(hand.cell(first, Column::StateColumn) == QStringLiteral("导入完成"),
                QStringLiteral("and complete"));
    hand.checkOnDisk(first, photos, QStringLiteral("原片"));
    hand.checkOnDisk(second, forSecond);
    guide.check(guide.studio().requests(QStringLiteral("savepicpath_batch")).size() == 3,
                QStringLiteral("the service was told three times"));
    lookAndDelete(guide, hand, first, photos.size());
    hand.window()->close();
}

void tourImportRetouched(Guide &guide)
{
    guide.step(QStringLiteral("导入精修片"));
    ImportHand hand(guide, QStringLiteral("导入精修片"));
    const QString order = QStringLiteral("TS10001-1");
    const QDir folder(guide.material(QStringLiteral("retouched")));
    QStringList retouched;
    const auto names = folder.entryList(QDir::Files, QDir::Name);
    for (const QString &name : names)
        retouched.append(folder.filePath(name));
    guide.answerNextBox(QStringLiteral("确定"), QStringLiteral("retouched-names-differ"));
    hand.pressChoose(order, retouched);
    const QString question = guide.boxText();
    guide.check(
        question.startsWith(QStringLiteral(
            "要上传的精修照片与客人选中的照片名不一致，确认要继续上传吗？\n下列是不一致的照片：\n")) &&
            question.count(QLatin1Char('\n')) == 2,
        QStringLiteral("the one name the customer did not choose is asked about"));
    hand.expectChosen(order, retouched.size());
    guide.answerNextBox(QStringLiteral("确定"), QStringLiteral("retouched-finished-box"));
    guide.click(hand.window(), "startButton");
    guide.check(guide.boxText() == QStringLiteral("导入完成！"),
                QStringLiteral("the end is announced"));
    guide.check(hand.cell(order, Column::RetouchedColumn) == QString::number(retouched.size()),
                QStringLiteral("the retouched photos are counted"));
    hand.checkOnDisk(order, retouched, QStringLiteral("精修片"));
    guide.picture(hand.window(), QStringLiteral("retouched-complete"));
    hand.window()->close();
}
