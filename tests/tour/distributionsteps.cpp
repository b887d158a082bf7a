#include "app/shell/choosetools.h"
#include "app/shell/toolcardwidget.h"
#include "distribution/distributionordermodel.h"
#include "distribution/fjhome.h"
#include "distribution/foldernamingrule.h"
#include "tests/tour/guide.h"
#include "tests/tour/steps.h"
#include "widgets/filedialog.h"

#include <QDir>
#include <QDirIterator>
#include <QImage>
#include <QLabel>
#include <QLineEdit>
#include <QProcess>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QTableView>
#include <QTemporaryDir>
#include <QtTest>

namespace {

const QString orderNumber = QStringLiteral("TS10001");

/// The distribution window of one card, as the tour handles it.
class DistributionHand
{
public:
    DistributionHand(Guide &guide, const QString &card) : guide_(guide)
    {
        auto *launcher = guide.waitForWindow<ChooseTools>(QStringLiteral("the launcher is there"));
        QTest::mouseDClick(launcher->findChild<ToolCardWidget *>(card), Qt::LeftButton);
        window_ = guide.waitForWindow<FJHome>(QStringLiteral("its window opens"));
        guide.spread(window_);
        guide.waitFor([this] { return table()->model()->rowCount() > 2; },
                      QStringLiteral("the branch's orders are listed"));
    }

    FJHome *window() const { return window_; }
    QTableView *table() const
    {
        return window_->findChild<QTableView *>(QStringLiteral("orderTable"));
    }
    QString label(const char *name) const
    {
        return window_->findChild<QLabel *>(QString::fromLatin1(name))->text();
    }

    void search()
    {
        guide_.typeInto(window_, "keywordEdit", orderNumber);
        QTest::keyClick(window_->findChild<QLineEdit *>(QStringLiteral("keywordEdit")),
                        Qt::Key_Return);
        guide_.waitFor([this] { return table()->model()->rowCount() == 2; },
                       QStringLiteral("a search finds the order's two services"));
    }

    void clickCell(int row, int column)
    {
        const QModelIndex index = table()->model()->index(row, column);
        QTest::mouseClick(table()->viewport(), Qt::LeftButton, {},
                          table()->visualRect(index).center());
    }

    void choose(const QString &directory)
    {
        FileDialog::setNextFolder(directory);
        guide_.click(window_, "directoryButton");
    }

    /// Distributes what is ticked; returns the folder of the one order.
    QDir distribute(const QString &directory, const QString &pictureName)
    {
        choose(directory);
        guide_.answerNextBox(QStringLiteral("确定"), pictureName + QStringLiteral("-finished"));
        guide_.click(window_, "startButton");
        guide_.check(guide_.boxText() == QStringLiteral("1个订单分件完成!"),
                     QStringLiteral("the end is announced, without failures"));
        guide_.picture(window_, pictureName);
        const QStringList folders = QDir(directory).entryList(QDir::Dirs | QDir::NoDotAndDotDot);
        guide_.check(folders.size() == 1 && folders.first().startsWith(orderNumber),
                     QStringLiteral("the order has one folder"));
        return QDir(directory).filePath(folders.first());
    }

private:
    Guide &guide_;
    FJHome *window_ = nullptr;
};

int filesBelow(const QString &folder, const QString &pattern = QStringLiteral("*"))
{
    int count = 0;
    QDirIterator files(folder, {pattern}, QDir::Files, QDirIterator::Subdirectories);
    for (; files.hasNext(); files.next())
        ++count;
    return count;
}

/// One card's window, one order, one folder.
void tourCard(Guide &guide, const QString &card, const QString &name, const QStringList &files)
{
    guide.step(card);
    const QTemporaryDir directory;
    DistributionHand hand(guide, card);
    hand.search();
    hand.clickCell(0, DistributionOrderModel::TickColumn);
    const QDir made = hand.distribute(directory.path(), name);
    for (const QString &file : files)
        guide.check(QFileInfo(made, file).size() > 0, file + QStringLiteral(" is there"));
    hand.window()->close();
}

void showSheet(Guide &guide, const QString &sheet)
{
#ifdef Q_OS_WIN
    // Nothing there turns a document into pictures.
    guide.check(QFileInfo(sheet).size() > 0, QStringLiteral("the sheet is there"));
    return;
#endif
    const QTemporaryDir pages;
    QProcess render;
    render.start(QStringLiteral("pdftoppm"),
                 {QStringLiteral("-png"), QStringLiteral("-r"), QStringLiteral("80"), sheet,
                  pages.filePath(QStringLiteral("page"))});
    guide.check(render.waitForFinished() && render.exitCode() == 0,
                QStringLiteral("the sheet is a document that others can read"));
    const QStringList names = QDir(pages.path()).entryList(QDir::Files, QDir::Name);
    guide.check(!names.isEmpty(), QStringLiteral("it has %1 pages").arg(names.size()));
    for (const QString &name : names)
        guide.picture(QImage(pages.filePath(name)), QStringLiteral("sheet-") + name.left(6));
}

} // namespace

void tourDistribution(Guide &guide)
{
    guide.step(QStringLiteral("设计分件: 打开"));
    const QTemporaryDir directory;
    DistributionHand hand(guide, QStringLiteral("设计分件"));
    guide.picture(hand.window(), QStringLiteral("distribution-opened"));
    hand.search();
    hand.clickCell(0, DistributionOrderModel::NumberColumn);
    guide.waitFor(
        [&hand] { return hand.label("undownloadLabel").contains(QStringLiteral("(4张)")); },
        QStringLiteral("the order's photos are listed"));

    auto *naming = hand.window()->findChild<FolderNamingRule *>();
    hand.window()->findChild<QScrollArea *>()->ensureWidgetVisible(naming);
    guide.picture(hand.window(), QStringLiteral("distribution-naming"));
    hand.window()->findChild<QScrollArea *>()->verticalScrollBar()->setValue(0);

    guide.step(QStringLiteral("设计分件: 开始分件"));
    hand.clickCell(0, DistributionOrderModel::TickColumn);
    hand.window()->findChild<QAbstractButton *>(QStringLiteral("option原始档"))->click();
    const QDir made = hand.distribute(directory.path(), QStringLiteral("distribution-complete"));
    guide.check(filesBelow(made.path(), QStringLiteral("IMG_0003.jpg")) >= 8,
                QStringLiteral("a photo lies in every product that uses it"));
    guide.check(made.exists(QStringLiteral("其他/成品/IMG_0009.jpg")),
                QStringLiteral("what no product uses is kept"));
    guide.waitFor(
        [&hand] { return hand.label("downloadedLabel").contains(QStringLiteral("(4张)")); },
        QStringLiteral("all photos count as downloaded"));
    guide.waitFor(
        [&guide] {
            return guide.studio().requests(QStringLiteral("download_success")).size() == 4;
        },
        QStringLiteral("and the service knows"));
    showSheet(guide, made.filePath(QStringLiteral("明细制作单.pdf")));

    guide.step(QStringLiteral("设计分件: 失败记录"));
    const QDir share(guide.studio().state().value(QStringLiteral("share")).toString());
    const QString photo =
        share.filePath(QStringLiteral("海棠路旗舰店/选片/TS10001-1/选片/all/IMG_0009.jpg"));
    guide.check(QFile::rename(photo, photo + QStringLiteral(".away")),
                QStringLiteral("a photo vanishes from the share"));
    guide.answerNextBox(QStringLiteral("确定"), QStringLiteral("distribution-failed-box"));
    guide.click(hand.window(), "startButton");
    guide.check(guide.boxText().startsWith(QStringLiteral("1个订单分件完成!\n有 ")),
                QStringLiteral("the failures are counted"));
    guide.picture(hand.window(), QStringLiteral("distribution-failures"));
    guide.check(QFile::rename(photo + QStringLiteral(".away"), photo),
                QStringLiteral("the photo is back"));
    hand.window()->close();

    tourCard(guide, QStringLiteral("下载选片结果"), QStringLiteral("selection"),
             {QStringLiteral("成品/IMG_0007.jpg"), QStringLiteral("入底/RD_0001.jpg"),
              QStringLiteral("明细制作单.pdf")});
    tourCard(guide, QStringLiteral("下载原始档"), QStringLiteral("originals"),
             {QStringLiteral("原始档/IMG_0003.jpg"), QStringLiteral("原始档/IMG_0003.CR2")});
    tourCard(guide, QStringLiteral("下载照片交付"), QStringLiteral("delivery"),
             {QStringLiteral("原图/IMG_0005.jpg"), QStringLiteral("精修/IMG_0003.jpg")});
}
