#include "distribution/sheet/productionsheet.h"

#include "distribution/naming/foldernames.h"
#include "distribution/sheet/sheethtml.h"
#include "distribution/sheet/sheetpages.h"
#include "files/filewriting.h"
#include "files/paths.h"
#include "pictures/picturereader.h"

#include <QFile>
#include <QHash>
#include <QPainter>
#include <QPrinter>
#include <QTextDocument>
#include <QUrl>

#include <algorithm>

namespace {

/// A4 in the units in which the sheet's sizes are given, 96 to the inch.
constexpr double pageWidth = 793.7;
constexpr double pageHeight = 1122.5;
/// Pixels kept for a picture: three for each unit of the largest one, enough for print.
constexpr int largestPicture = 450;

/// Decodes the sheet's pictures, each once, no larger than print can show.
class SheetDocument : public QTextDocument
{
protected:
    QVariant loadResource(int type, const QUrl &name) override
    {
        if (type != ImageResource)
            return {};
        auto known = pictures_.find(name);
        if (known == pictures_.end())
            known = pictures_.insert(name, load(name));
        return *known;
    }

private:
    static QImage load(const QUrl &name)
    {
        PictureReader reader(name.toLocalFile(), picturebounds::shown);
        const QSize size = reader.size();
        if (std::max(size.width(), size.height()) > largestPicture)
            reader.setScaledSize(size.scaled(largestPicture, largestPicture, Qt::KeepAspectRatio)
                                     .expandedTo({1, 1}));
        const QImage picture = inScreenColours(reader.readUpright());
        return name.fragment() == squareMark && !picture.isNull() ? inSquare(picture) : picture;
    }

    static QImage inSquare(const QImage &picture)
    {
        const int side = std::max(picture.width(), picture.height());
        QImage square(side, side, QImage::Format_RGB32);
        square.fill(Qt::white);
        QPainter painter(&square);
        painter.drawImage((side - picture.width()) / 2, (side - picture.height()) / 2, picture);
        return square;
    }

    QHash<QUrl, QImage> pictures_;
};

/// As it will be shown, turned upright.
QSize sizeOfPicture(const QString &path)
{
    return PictureReader(path, picturebounds::shown).uprightSize();
}

/// Printing does not say whether it could write everything; the end of the file does.
bool isWholePdf(const QString &path)
{
    QFile file(path);
    constexpr int tail = 32;
    if (!file.open(QIODevice::ReadOnly) || !file.seek(std::max<qint64>(0, file.size() - tail)))
        return false;
    return file.readAll().contains("%%EOF");
}

bool print(const QString &html, const QString &path)
{
    SheetDocument document;
    document.setUseDesignMetrics(true);
    document.setHtml(html);
    paginate(&document, QSizeF(pageWidth, pageHeight));
    QPrinter printer(QPrinter::HighResolution);
    printer.setOutputFormat(QPrinter::PdfFormat);
    printer.setOutputFileName(path);
    printer.setPageSize(QPageSize(QPageSize::A4));
    printer.setPageMargins(QMarginsF(0, 0, 0, 0), QPageLayout::Millimeter);
    printer.setFullPage(true);
    document.print(&printer);
    return isWholePdf(path);
}

} // namespace

QString printProductionSheet(const OrderDetail &detail, const QString &orderFolder,
                             const PlannedPictures &pictures)
{
    const QString target = joinLocalPath(orderFolder, foldernames::sheetFile);
    const QString html =
        sheetHtml({detail, orderFolder, pictures, QDateTime::currentDateTime(), sizeOfPicture});
    const bool printed =
        mayReplace(target) && writeWholeFile(target, [&html](const QString &temporary) {
            return print(html, temporary);
        });
    return printed ? QString() : foldernames::sheetFile + QStringLiteral("生成失败");
}
