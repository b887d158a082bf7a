#include "distribution/sheet/sheetproducts.h"

#include "distribution/plan/distributionplan.h"
#include "distribution/sheet/sheetwriting.h"

using namespace sheetwriting;

namespace {

constexpr int photosPerRow = 6;
constexpr int photoPicture = 83;

QString row(const QString &cells)
{
    return QStringLiteral("<tr>") + cells + QStringLiteral("</tr>");
}

QString cellOverAllColumns(const QString &content)
{
    return QStringLiteral("<td colspan=\"10\">") + content + QStringLiteral("</td>");
}

QString titleRow(const OrderDetail &detail, ProductKind kind)
{
    const bool urgent = kind == ProductKind::Urgent;
    QString title = urgent ? QStringLiteral("加急件：") : QStringLiteral("普通件：");
    if (urgent) {
        title += joinedWords({detail.value("isurgenttime"), detail.value("urgentdatearea")});
    } else if (!detail.value("pickuptime").isEmpty()) {
        title += QStringLiteral("取件 ") + detail.value("pickuptime");
    }
    title += QStringLiteral("　选片次:") + detail.value("servicetimes") +
             QStringLiteral("　选片师:") + detail.value("role12name");
    return row(cellOverAllColumns(
        QStringLiteral("<span class=\"%1\" style=\"color: %2;\">")
            .arg(urgent ? QStringLiteral("style4") : QStringLiteral("style2"),
                 urgent ? QStringLiteral("#FF0000") : QStringLiteral("#000000")) +
        escaped(title) + QStringLiteral("</span>")));
}

QString columnRow(ProductKind kind)
{
    struct Column
    {
        QString name;
        int percent;
    };
    const Column columns[] = {
        {QStringLiteral("序号"), 5},
        {QStringLiteral("名称"), 10},
        {QStringLiteral("类别"), 5},
        {QStringLiteral("P数"), 5},
        {QStringLiteral("加P数"), 5},
        {QStringLiteral("张数"), 5},
        {QStringLiteral("数量"), 5},
        {QStringLiteral("产品说明(对内)"), 15},
        {QStringLiteral("授权备注(对外)"), 20},
        {QStringLiteral("制作要求"), kind == ProductKind::Urgent ? 20 : 25},
    };
    QString cells;
    for (const Column &column : columns) {
        cells += QStringLiteral("<td width=\"%1%\" align=\"center\">").arg(column.percent) +
                 column.name + QStringLiteral("</td>");
    }
    return QStringLiteral("<tr bgcolor=\"#CCCCCC\">") + cells + QStringLiteral("</tr>");
}

/// All cells of a product's row but the first.
QString productCells(const DetailProduct &product)
{
    const auto cell = [](const QString &content) {
        return QStringLiteral("<td>") + content + QStringLiteral("</td>");
    };
    return cell(span("style2", product.goodName)) + cell(escaped(product.goodTypeName)) +
           cell(escaped(product.goodPageNumber)) + cell(escaped(product.pNum)) +
           cell(QString::number(product.imgs.size())) + cell(escaped(product.goodAmount)) +
           cell(escaped(product.descr)) + cell(span("style2", product.authRemark)) +
           cell(span("style2", product.goodRemark));
}

/// A photo of a product or of one of its parts.
struct ProductPhoto
{
    const DetailProduct *product;
    DetailPhoto photo;
};

QVector<ProductPhoto> photosOf(const DetailProduct &product)
{
    QVector<ProductPhoto> photos;
    forEachPhoto(product, [&photos](const DetailProduct &part, const DetailPhoto &photo) {
        photos.append({&part, photo});
    });
    return photos;
}

void collectParts(const DetailProduct &product, QVector<const DetailProduct *> *parts)
{
    for (const DetailProduct &part : product.sonGood) {
        parts->append(&part);
        collectParts(part, parts);
    }
}

/// As the customers cropped it for this product, when they did.
QString picturePath(const SheetInput &input, const ProductPhoto &each)
{
    const QString url = cropUrl(*each.product, each.photo);
    const QString crop = url.isEmpty()
                             ? QString()
                             : input.pictures.find(url, cropFileName(*each.product, each.photo));
    const bool isThere = !crop.isEmpty() && !input.sizeOf(crop).isEmpty();
    return isThere ? crop : thumbnailPath(input, each.photo);
}

QString photoRows(const SheetInput &input, const QVector<ProductPhoto> &photos)
{
    QString html = QStringLiteral("<table width=\"100%\" border=\"0\" cellspacing=\"0\" "
                                  "cellpadding=\"1\">");
    for (int first = 0; first < photos.size(); first += photosPerRow) {
        html += QStringLiteral("<tr>");
        for (int index = first; index < first + photosPerRow; ++index) {
            html += QStringLiteral("<td width=\"16.67%\" align=\"center\" valign=\"top\">");
            if (index < photos.size()) {
                html += QStringLiteral("<p align=\"center\">") +
                        squarePicture(input, picturePath(input, photos.at(index)), photoPicture) +
                        QStringLiteral("</p><p align=\"center\" style=\"margin-top: 3px;\">") +
                        span("style3", photos.at(index).photo.imgName) + QStringLiteral("</p>");
            }
            html += QStringLiteral("</td>");
        }
        html += QStringLiteral("</tr>");
    }
    return html + QStringLiteral("</table>");
}

QString productRows(const SheetInput &input, const DetailProduct &product, int number)
{
    QVector<const DetailProduct *> parts;
    collectParts(product, &parts);
    const QString numberCell =
        product.isSet()
            ? QStringLiteral("<td align=\"center\" rowspan=\"%1\">").arg(parts.size() + 1)
            : QStringLiteral("<td align=\"center\">");
    QString html =
        row(numberCell + QString::number(number) + QStringLiteral("</td>") + productCells(product));
    for (const DetailProduct *part : qAsConst(parts))
        html += row(productCells(*part));
    const QVector<ProductPhoto> photos = photosOf(product);
    return photos.isEmpty() ? html : html + row(cellOverAllColumns(photoRows(input, photos)));
}

} // namespace

QString productTable(const SheetInput &input, ProductKind kind)
{
    const bool urgent = kind == ProductKind::Urgent;
    const OrderDetail &detail = input.detail;
    const QVector<DetailProduct> &products = urgent ? detail.urgentGoods : detail.goods;
    // Numbered as their folders are: the urgent products come first.
    int number = urgent ? 0 : detail.urgentGoods.size();
    int photos = 0;
    QString untouched;
    QString html = QStringLiteral("<table class=\"thinborder\" width=\"100%\" border=\"1\" "
                                  "cellspacing=\"0\" cellpadding=\"1\" "
                                  "style=\"border-collapse: collapse;\">") +
                   QStringLiteral("<thead>") + titleRow(detail, kind) + columnRow(kind) +
                   QStringLiteral("</thead>");
    for (const DetailProduct &product : products) {
        const int count = photosOf(product).size();
        photos += count;
        (count > 0 ? html : untouched) += productRows(input, product, ++number);
    }
    if (!untouched.isEmpty())
        html += row(cellOverAllColumns(span("style2", QStringLiteral("未操作产品")))) + untouched;
    html += row(QStringLiteral("<td>总计</td><td colspan=\"9\">产品总数:%1件, "
                               "选中总张数共%2张</td>")
                    .arg(products.size())
                    .arg(photos));
    return html + QStringLiteral("</table>");
}
