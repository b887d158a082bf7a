#include "app/shell/choosetools.h"
#include "app/shell/toolcardwidget.h"
#include "photoimport/tfhome.h"
#include "photoimport/tfhomeorders_orderlistwidget.h"
#include "photoimport/tfphotoview.h"
#include "platform/pathform.h"
#include "tests/support/pictures.h"
#include "tests/tour/guide.h"
#include "tests/tour/steps.h"

#include <QDir>
#include <QDropEvent>
#include <QImageReader>
#include <QMimeData>
#include <QPushButton>
#include <QTemporaryDir>
#include <QUrl>
#include <QtTest>

namespace {

using Column = tforderlistmodel::Column;

constexpr int orientations = 8;

/// The photo import's window as the tour handles it.
class PhotoImportHand
{
public:
    explicit PhotoImportHand(Guide &guide)
    {
        const QString card = QStringLiteral("导片工具");
        auto *launcher = guide.waitForWindow<ChooseTools>(QStringLiteral("the launcher is there"));
        QTest::mouseDClick(launcher->findChild<ToolCardWidget *>(card), Qt::LeftButton);
        window_ = guide.waitForWindow<tfhome>(QStringLiteral("its window opens"));
        guide.check(window_->windowTitle() == card, QStringLiteral("under the card's name"));
        guide.spread(window_);
        guide.waitFor([this] { return table()->model()->rowCount() > 0; },
                      QStringLiteral("the branch's orders are listed"));
    }

    tfhome *window() const { return window_; }
    tfhomeorders_OrderListWidget *table() const
    {
        return window_->findChild<tfhomeorders_OrderListWidget *>(QStringLiteral("orderTable"));
    }
    tfphotoview *photos() const
    {
        return window_->findChild<tfphotoview *>(QStringLiteral("photoView"));
    }
    QImage thumbnail(int row) const
    {
        return photos()->model()->index(row, 0).data(Qt::DecorationRole).value<QImage>();
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

    void drop(const QString &number, const QString &folder) const
    {
        const QModelIndex index = table()->model()->index(rowOf(number), Column::NumberColumn);
        table()->scrollTo(index);
        const QPoint at = table()->visualRect(index).center();
        QMimeData data;
        data.setUrls({QUrl::fromLocalFile(folder)});
        QDragEnterEvent enter(at, Qt::CopyAction, &data, Qt::LeftButton, {});
        QDragMoveEvent move(at, Qt::CopyAction, &data, Qt::LeftButton, {});
        QDropEvent dropped(at, Qt::CopyAction, &data, Qt::LeftButton, {});
        for (QEvent *event : std::initializer_list<QEvent *>{&enter, &move, &dropped})
            QCoreApplication::sendEvent(table()->viewport(), event);
    }

    QDir folder(const QString &number, const QString &kind) const
    {
        return QDir(platform::toLocalPath(cell(number, Column::PathColumn)) + QLatin1Char('/') +
                    kind);
    }

private:
    tfhome *window_ = nullptr;
};

/// One landscape, as eight ways of holding a camera store it.
void makeTurnedPhotos(Guide &guide, const QString &folder)
{
    const QImage upright(guide.material(QStringLiteral("camera-card/DCIM/100TESSA/IMG_0001.jpg")));
    guide.check(!upright.isNull(), QStringLiteral("the card has a picture"));
    for (int orientation = 1; orientation <= orientations; ++orientation) {
        // What the tag says is done to the stored picture when it is shown.
        QTransform back;
        if (orientation == 3 || orientation == 4)
            back.rotate(180);
        else if (orientation == 5 || orientation == 6)
            back.rotate(-90);
        else if (orientation == 7 || orientation == 8)
            back.rotate(90);
        const bool mirrored =
            orientation == 2 || orientation == 4 || orientation == 5 || orientation == 7;
        const QImage stored = upright.mirrored(mirrored, false).transformed(back);
        QFile photo(QStringLiteral("%1/DSC_%2.jpg").arg(folder).arg(orientation));
        if (!photo.open(QIODevice::WriteOnly) || photo.write(jpegOf(stored, orientation)) <= 0)
            throw TourFailure{QStringLiteral("%1 is made").arg(photo.fileName())};
    }
}

bool looksLike(const QImage &one, const QImage &other)
{
    const QSize probe(8, 8);
    const QImage first = one.scaled(probe, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    const QImage second = other.scaled(probe, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    int difference = 0;
    for (int y = 0; y < probe.height(); ++y) {
        for (int x = 0; x < probe.width(); ++x)
            difference += qAbs(qGray(first.pixel(x, y)) - qGray(second.pixel(x, y)));
    }
    return difference < 8 * probe.width() * probe.height();
}

} // namespace

void tourPhotoImport(Guide &guide)
{
    guide.step(QStringLiteral("导片工具: 拖入照片"));
    QTemporaryDir card;
    makeTurnedPhotos(guide, card.path());
    PhotoImportHand hand(guide);
    const QString order = QStringLiteral("TS10004-1");
    hand.drop(order, card.path());
    guide.waitFor([&] { return hand.photos()->model()->rowCount() == orientations; },
                  QStringLiteral("the folder's photos are listed"));
    int uprightThumbnails = 0;
    for (int row = 0; row < orientations; ++row) {
        hand.photos()->scrollTo(hand.photos()->model()->index(row, 0));
        guide.waitFor([&] { return !hand.thumbnail(row).isNull(); },
                      QStringLiteral("thumbnail %1 comes").arg(row + 1));
        uprightThumbnails += looksLike(hand.thumbnail(row), hand.thumbnail(0)) ? 1 : 0;
    }
    guide.check(uprightThumbnails == orientations, QStringLiteral("all of them upright"));
    hand.photos()->scrollToTop();
    guide.picture(hand.window(), QStringLiteral("photoimport-dropped"));

    guide.step(QStringLiteral("导片工具: 导入"));
    guide.studio().misbehave(QStringLiteral("savepicpath"), QStringLiteral("hold"));
    guide.answerNextBox(QStringLiteral("确定"), QStringLiteral("photoimport-finished-box"));
    guide.click(hand.window(), "startOrderButton");
    guide.waitFor([&] { return guide.studio().state().value(QStringLiteral("held")).toInt() == 1; },
                  QStringLiteral("photos are being registered"));
    guide.picture(hand.window(), QStringLiteral("photoimport-running"));
    guide.studio().release();
    guide.check(guide.boxText() == QStringLiteral("导片完成！"),
                QStringLiteral("the end is announced"));
    const QImage reference(card.filePath(QStringLiteral("DSC_1.jpg")));
    int upright = 0;
    const QDir all = hand.folder(order, QStringLiteral("all"));
    const QStringList names = all.entryList(QDir::Files);
    for (const QString &name : names) {
        QImageReader reader(all.filePath(name));
        upright += looksLike(reader.read(), reference) ? 1 : 0; // without looking at a tag
    }
    guide.check(upright == orientations,
                QStringLiteral("%1 originals lie in all, upright").arg(upright));
    for (const QString &kind :
         {QStringLiteral("90"), QStringLiteral("190"), QStringLiteral("1920")}) {
        const QDir folder = hand.folder(order, kind);
        const QImage variant(folder.filePath(QStringLiteral("DSC_1.jpg")));
        guide.check(folder.entryList(QDir::Files).size() == orientations &&
                        qAbs(qMax(variant.width(), variant.height()) - kind.toInt()) < 2,
                    QStringLiteral("and their variants in %1").arg(kind));
    }
    guide.check(guide.studio().requests(QStringLiteral("savepicpath")).size() == orientations,
                QStringLiteral("the service was told of each photo"));
    guide.waitFor(
        [&] { return hand.cell(order, Column::ImportedColumn) == QString::number(orientations); },
        QStringLiteral("and lists them"));
    guide.click(hand.window(), "viewButton");
    guide.picture(hand.window(), QStringLiteral("photoimport-list"));

    guide.step(QStringLiteral("导片工具: 删除照片"));
    hand.photos()->setCurrentIndex(hand.photos()->model()->index(2, 0));
    guide.answerNextBox(QStringLiteral("确定"), QStringLiteral("photoimport-delete-box"));
    guide.click(hand.window(), "deleteButton");
    guide.boxText();
    guide.waitFor([&] { return hand.photos()->model()->rowCount() == orientations - 1; },
                  QStringLiteral("the photo leaves the list"));
    for (const QString &kind : {QStringLiteral("all"), QStringLiteral("90"), QStringLiteral("190"),
                                QStringLiteral("1920")}) {
        guide.waitFor([&] { return !hand.folder(order, kind).exists(QStringLiteral("DSC_3.jpg")); },
                      QStringLiteral("and the folder %1").arg(kind));
    }
    guide.click(hand.window(), "viewButton");
    guide.picture(hand.window(), QStringLiteral("photoimport-deleted"));
    hand.window()->close();
}
