#include "photoimport/imported/tfphotoview.h"
#include "photoimport/window/tfhome.h"
#include "photoimport/window/tfhomeorders_orderlistwidget.h"
#include "tests/support/dropping.h"
#include "tests/support/pictures.h"
#include "tour/toolhand.h"

#include <QImageReader>
#include <QTemporaryDir>

namespace {

using Column = tforderlistmodel::Column;

constexpr int orientations = 8;

/// The photo import's window as the tour handles it.
class PhotoImportHand : public ToolHand<tfhome, Column::NumberColumn>
{
public:
    PhotoImportHand(Guide &guide, const QString &card) : ToolHand(guide, card)
    {
        guide.check(window_->windowTitle() == card, "under the card's name"_s);
    }

    tfphotoview *photos() const { return window_->findChild<tfphotoview *>("photoView"_s); }
    QImage thumbnail(int row) const
    {
        return photos()->model()->index(row, 0).data(Qt::DecorationRole).value<QImage>();
    }

    void drop(const QString &number, const QString &folder) const
    {
        const QModelIndex index = cell(number, Column::NumberColumn);
        orders()->scrollTo(index);
        guide_.check(
            dropFiles(orders()->viewport(), orders()->visualRect(index).center(), {folder}),
            "the folder can be dropped"_s);
    }

    QDir folder(const QString &number, const QString &kind) const
    {
        return ToolHand::folder(number, Column::PathColumn, kind);
    }
};

/// One landscape, as eight ways of holding a camera store it.
void makeTurnedPhotos(Guide &guide, const QString &folder)
{
    const QImage upright(guide.material("camera-card/DCIM/100TESSA/IMG_0001.jpg"_s));
    guide.check(!upright.isNull(), "the card has a picture"_s);
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
        writeFile("%1/DSC_%2.jpg"_s.arg(folder).arg(orientation), jpegOf(stored, orientation));
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
    guide.step("导片工具: 拖入照片"_s);
    QTemporaryDir card;
    makeTurnedPhotos(guide, card.path());
    PhotoImportHand hand(guide, "导片工具"_s);
    const QString order = "TS10004-1"_s;
    hand.drop(order, card.path());
    guide.waitFor([&] { return hand.photos()->model()->rowCount() == orientations; },
                  "the folder's photos are listed"_s);
    int uprightThumbnails = 0;
    for (int row = 0; row < orientations; ++row) {
        hand.photos()->scrollTo(hand.photos()->model()->index(row, 0));
        guide.waitFor([&] { return !hand.thumbnail(row).isNull(); },
                      "thumbnail %1 comes"_s.arg(row + 1));
        uprightThumbnails += looksLike(hand.thumbnail(row), hand.thumbnail(0)) ? 1 : 0;
    }
    guide.check(uprightThumbnails == orientations, "all of them upright"_s);
    hand.photos()->scrollToTop();
    guide.picture(hand.window(), "photoimport-dropped"_s);

    guide.step("导片工具: 导入"_s);
    guide.studio().hold("savepicpath"_s);
    guide.answerNextBox("确定"_s, "photoimport-finished-box"_s);
    guide.click(hand.window(), "startOrderButton");
    guide.waitFor([&] { return guide.studio().held() == 1; }, "photos are being registered"_s);
    guide.picture(hand.window(), "photoimport-running"_s);
    guide.studio().release();
    guide.check(guide.boxText() == "导片完成！"_s, "the end is announced"_s);
    const QImage reference(card.filePath("DSC_1.jpg"_s));
    int upright = 0;
    const QDir all = hand.folder(order, "all"_s);
    const QStringList names = all.entryList(QDir::Files);
    for (const QString &name : names) {
        QImageReader reader(all.filePath(name));
        upright += looksLike(reader.read(), reference) ? 1 : 0; // without looking at a tag
    }
    guide.check(upright == orientations, "%1 originals lie in all, upright"_s.arg(upright));
    for (const QString &kind : {"90"_s, "190"_s, "1920"_s}) {
        const QDir folder = hand.folder(order, kind);
        const QImage variant(folder.filePath("DSC_1.jpg"_s));
        guide.check(folder.entryList(QDir::Files).size() == orientations &&
                        qAbs(qMax(variant.width(), variant.height()) - kind.toInt()) < 2,
                    "and their variants in %1"_s.arg(kind));
    }
    guide.check(guide.studio().requests("savepicpath"_s).size() == orientations,
                "the service was told of each photo"_s);
    guide.waitFor(
        [&] { return hand.text(order, Column::ImportedColumn) == QString::number(orientations); },
        "and lists them"_s);
    guide.click(hand.window(), "viewButton");
    guide.picture(hand.window(), "photoimport-list"_s);

    guide.step("导片工具: 删除照片"_s);
    hand.photos()->setCurrentIndex(hand.photos()->model()->index(2, 0));
    guide.answerNextBox("删除"_s, "photoimport-delete-box"_s);
    guide.click(hand.window(), "deleteButton");
    guide.boxText();
    guide.waitFor([&] { return hand.photos()->model()->rowCount() == orientations - 1; },
                  "the photo leaves the list"_s);
    for (const QString &kind : {"all"_s, "90"_s, "190"_s, "1920"_s}) {
        guide.waitFor([&] { return !hand.folder(order, kind).exists("DSC_3.jpg"_s); },
                      "and the folder %1"_s.arg(kind));
    }
    guide.click(hand.window(), "viewButton");
    guide.picture(hand.window(), "photoimport-deleted"_s);
    hand.window()->close();
}
