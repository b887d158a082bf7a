#include "cardcheck/window/cardcheck.h"
#include "fileimport/window/importfiles.h"
#include "fileimport/window/importordertablemodel.h"
#include "files/contenthash.h"
#include "tour/toolhand.h"
#include "widgets/boxes/filedialog.h"
#include "widgets/orders/ordersearchbar.h"

#include <QAbstractButton>
#include <QFile>
#include <QFileInfo>
#include <QLabel>

namespace {

using Column = ImportOrderTableModel::Column;
using ImportHand = ToolHand<ImportFiles, Column::NumberColumn>;

const QString number = "TS10004-1"_s;

/// A card with two photos and a raw file of the camera's.
QStringList makeCard(Guide &guide, const QString &card)
{
    const QDir camera(guide.material("camera-card/DCIM/100TESSA"_s));
    QStringList files;
    for (const QString &pattern : {"*.jpg"_s, "*.cr2"_s}) {
        const QStringList names = camera.entryList({pattern}, QDir::Files, QDir::Name).mid(0, 2);
        for (const QString &name : names)
            files.append(
                writeFile(card + "/DCIM/100TESSA/"_s + name, readFile(camera.filePath(name))));
    }
    return files;
}

void import(Guide &guide, const ImportHand &hand)
{
    guide.answerNextBox("确定"_s, "card-imported-box"_s);
    guide.click(hand.window(), "startButton");
    guide.check(guide.boxText().startsWith("导入完成！"_s), "the end is announced"_s);
}

QString headline(const CardCheck *window)
{
    return window->findChild<QLabel *>("lightLabel"_s)->text();
}

void check(Guide &guide, CardCheck *window, const QString &expected, const QString &picture)
{
    guide.click(window, "startButton");
    guide.waitFor([&] { return headline(window) == expected; }, expected);
    guide.picture(window, picture);
}

/// One byte in the middle, under the time that the file has.
void damage(Guide &guide, const QString &path)
{
    const QDateTime time = QFileInfo(path).lastModified();
    QByteArray bytes = readFile(path);
    bytes[bytes.size() / 2] = char(bytes.at(bytes.size() / 2) ^ 1);
    writeFile(path, bytes);
    QFile file(path);
    guide.check(file.open(QIODevice::ReadWrite) &&
                    file.setFileTime(time, QFileDevice::FileModificationTime),
                "one byte of a copy is damaged, its size and time are not"_s);
}

CardCheck *openCheck(Guide &guide, const ImportHand &hand, const QString &card)
{
    guide.click(hand.window(), "cardCheckButton");
    auto *window = guide.waitForWindow<CardCheck>("its window opens from the import"_s);
    guide.spread(window);
    guide.waitFor([&] { return !window->findChild<OrderSearchBar *>()->isBusy(); },
                  "the branch is there"_s);
    FileDialog::setNextFolder(card);
    guide.click(window, "folderButton");
    auto *orders = window->findChild<QTableView *>("orderTable"_s);
    guide.typeInto(window, "keywordEdit", number.section(QLatin1Char('-'), 0, 0));
    QTest::keyClick(window->findChild<QLineEdit *>("keywordEdit"_s), Qt::Key_Return);
    guide.waitFor([&] { return orders->model()->index(0, 0).data() == number; },
                  "the order is found"_s);
    orders->selectRow(0);
    return window;
}

} // namespace

void tourCardCheck(Guide &guide)
{
    guide.step("核对存储卡: 导入"_s);
    const QString card = guide.material("."_s) + "/checked-card"_s;
    const QStringList files = makeCard(guide, card);
    ImportHand hand(guide, "导入原片"_s);
    FileDialog::setNextFiles(files);
    hand.press(hand.cell(number, Column::NumberColumn));
    QTest::keyClick(hand.orders(), Qt::Key_O, Qt::ControlModifier);
    const auto chosen = [&](int count) {
        return hand.text(number, Column::ChosenColumn) == QString::number(count);
    };
    guide.waitFor([&] { return chosen(files.size()); }, "the card's files are chosen"_s);
    import(guide, hand);

    guide.step("核对存储卡: 可以格式化"_s);
    CardCheck *window = openCheck(guide, hand, card);
    // What reading proves depends on the disk that the tour is played on, and the light says so.
    const bool isProved = isReadPastCache(readContent(files.first()).proof);
    const QString good =
        isProved ? "可以格式化"_s
                 : "不建议格式化（%1 个只从缓存读取，未经介质证实）"_s.arg(files.size());
    check(guide, window, good, "cardcheck-good"_s);

    guide.step("核对存储卡: 内容不同"_s);
    const QString copy = hand.folder(number, Column::PathColumn, "原片"_s)
                             .filePath(QFileInfo(files.first()).fileName());
    damage(guide, copy);
    const QString rest =
        isProved ? QString() : "；%1 个只从缓存读取，未经介质证实"_s.arg(files.size() - 1);
    check(guide, window, "不能格式化（1 个内容不同%1）"_s.arg(rest), "cardcheck-damaged"_s);

    guide.step("核对存储卡: 只导入缺失的"_s);
    guide.answerNextBox("确定"_s, "cardcheck-import-question"_s);
    guide.click(window, "importMissingButton");
    guide.boxText();
    guide.waitFor([&] { return chosen(1); }, "the import window has taken the one file"_s);
    import(guide, hand);
    guide.check(readFile(copy) == readFile(files.first()), "the copy is whole again"_s);
    check(guide, window, good, "cardcheck-repaired"_s);
    window->close();
    hand.window()->close();
}
