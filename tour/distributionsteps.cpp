#include "distribution/ruleeditor/foldernamingrule.h"
#include "distribution/window/distributionordermodel.h"
#include "distribution/window/fjhome.h"
#include "tour/toolhand.h"
#include "widgets/boxes/filedialog.h"

#include <QAbstractButton>
#include <QImage>
#include <QLabel>
#include <QProcess>
#include <QRegularExpression>
#include <QScrollArea>
#include <QScrollBar>
#include <QTemporaryDir>

namespace {

const QString orderNumber = "TS10001"_s;

/// The distribution window of one card, as the tour handles it.
class DistributionHand : public ToolHand<FJHome, DistributionOrderModel::NumberColumn>
{
public:
    using ToolHand::ToolHand;

    QString label(const char *name) const
    {
        return window_->findChild<QLabel *>(QString::fromLatin1(name))->text();
    }

    void clickCell(int row, int column) { press(orders()->model()->index(row, column)); }

    void choose(const QString &directory)
    {
        FileDialog::setNextFolder(directory);
        guide_.click(window_, "directoryButton");
    }

    /// Distributes what is ticked; returns the folder of the one order.
    QDir distribute(const QString &directory, const QString &pictureName)
    {
        choose(directory);
        guide_.answerNextBox("确定"_s, pictureName + "-finished"_s);
        guide_.click(window_, "startButton");
        guide_.check(guide_.boxText() == "1个订单分件完成!"_s,
                     "the end is announced, without failures"_s);
        guide_.picture(window_, pictureName);
        const QStringList folders = QDir(directory).entryList(QDir::Dirs | QDir::NoDotAndDotDot);
        guide_.check(folders.size() == 1 && folders.first().startsWith(orderNumber),
                     "the order has one folder"_s);
        return QDir(directory).filePath(folders.first());
    }
};

/// One card's window, one order, one folder.
void tourCard(Guide &guide, const QString &card, const QString &name, const QStringList &files)
{
    guide.step(card);
    const QTemporaryDir directory;
    DistributionHand hand(guide, card);
    hand.search(orderNumber, 2);
    hand.clickCell(0, DistributionOrderModel::TickColumn);
    const QDir made = hand.distribute(directory.path(), name);
    for (const QString &file : files)
        guide.check(QFileInfo(made, file).size() > 0, file + " is there"_s);
    hand.window()->close();
}

void showSheet(Guide &guide, const QString &sheet)
{
#ifdef Q_OS_WIN
    // Nothing there turns a document into pictures.
    guide.check(QFileInfo(sheet).size() > 0, "the sheet is there"_s);
    return;
#endif
    const QTemporaryDir pages;
    QProcess render;
    render.start("pdftoppm"_s, {"-png"_s, "-r"_s, "80"_s, sheet, pages.filePath("page"_s)});
    guide.check(render.waitForFinished() && render.exitCode() == 0,
                "the sheet is a document that others can read"_s);
    const QStringList names = QDir(pages.path()).entryList(QDir::Files, QDir::Name);
    guide.check(!names.isEmpty(), "it has %1 pages"_s.arg(names.size()));
    for (const QString &name : names)
        guide.picture(QImage(pages.filePath(name)), "sheet-"_s + name.left(6));
}

} // namespace

void tourDistribution(Guide &guide)
{
    guide.step("设计分件: 打开"_s);
    const QTemporaryDir directory;
    DistributionHand hand(guide, "设计分件"_s);
    guide.picture(hand.window(), "distribution-opened"_s);
    hand.search(orderNumber, 2);
    hand.clickCell(0, DistributionOrderModel::NumberColumn);
    guide.waitFor([&hand] { return hand.label("undownloadLabel").contains("(4张)"_s); },
                  "the order's photos are listed"_s);

    auto *naming = hand.window()->findChild<FolderNamingRule *>();
    hand.window()->findChild<QScrollArea *>()->ensureWidgetVisible(naming);
    guide.picture(hand.window(), "distribution-naming"_s);
    hand.window()->findChild<QScrollArea *>()->verticalScrollBar()->setValue(0);

    guide.step("设计分件: 开始分件"_s);
    hand.clickCell(0, DistributionOrderModel::TickColumn);
    hand.window()->findChild<QAbstractButton *>("option原始档"_s)->click();
    const QDir made = hand.distribute(directory.path(), "distribution-complete"_s);
    guide.check(filesBelow(made.path()).filter("IMG_0003.jpg"_s).size() >= 8,
                "a photo lies in every product that uses it"_s);
    guide.check(made.exists("其他/成品/IMG_0009.jpg"_s), "what no product uses is kept"_s);
    guide.waitFor([&hand] { return hand.label("downloadedLabel").contains("(4张)"_s); },
                  "all photos count as downloaded"_s);
    guide.waitFor([&guide] { return guide.studio().requests("download_success"_s).size() == 4; },
                  "and the service knows"_s);
    showSheet(guide, made.filePath("明细制作单.pdf"_s));

    guide.step("设计分件: 失败记录"_s);
    const QDir share(guide.studio().share());
    const QString photo = share.filePath("海棠路旗舰店/选片/TS10001-1/选片/all/IMG_0009.jpg"_s);
    guide.check(QFile::rename(photo, photo + ".away"_s), "a photo vanishes from the share"_s);
    guide.answerNextBox("确定"_s, "distribution-failed-box"_s);
    guide.click(hand.window(), "startButton");
    guide.check(guide.boxText().startsWith("1个订单分件完成!\n有 "_s),
                "the failures are counted"_s);
    guide.picture(hand.window(), "distribution-failures"_s);
    guide.check(QFile::rename(photo + ".away"_s, photo), "the photo is back"_s);

    guide.step("设计分件: 旧文件"_s);
    const auto raws = [&made](const QString &beginning) {
        return filesBelow(made.path())
            .filter(".CR2"_s)
            .filter(QRegularExpression(QLatin1Char('^') + beginning));
    };
    const int before = raws({}).size();
    guide.check(before > 0 && raws("旧文件/"_s).isEmpty(), "raw files lie in the order's folder"_s);
    hand.window()->findChild<QAbstractButton *>("option原始档"_s)->click();
    guide.answerNextBox("确定"_s, "distribution-again-box"_s);
    guide.click(hand.window(), "startButton");
    guide.check(guide.boxText().contains("个文件不是本次写入的"_s),
                "it is made again, without raw files"_s);
    const auto *putAway = hand.window()->findChild<QAbstractButton *>("putAwayButton"_s);
    guide.waitFor([putAway] { return putAway->isVisible() && putAway->isEnabled(); },
                  "those of the run before are offered to be put away"_s);
    guide.picture(hand.window(), "distribution-old-files"_s);
    guide.click(hand.window(), "putAwayButton");
    guide.waitFor([&raws, before] { return raws("旧文件/"_s).size() == before; },
                  "they lie among the old files"_s);
    guide.check(raws({}).size() == before, "and nowhere else"_s);
    hand.window()->close();

    tourCard(guide, "下载选片结果"_s, "selection"_s,
             {"成品/IMG_0007.jpg"_s, "入底/RD_0001.jpg"_s, "明细制作单.pdf"_s});
    tourCard(guide, "下载原始档"_s, "originals"_s,
             {"原始档/IMG_0003.jpg"_s, "原始档/IMG_0003.CR2"_s});
    tourCard(guide, "下载照片交付"_s, "delivery"_s, {"原图/IMG_0005.jpg"_s, "精修/IMG_0003.jpg"_s});
}
