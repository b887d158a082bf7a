#include "distribution/sheet/sheethtml.h"

#include "distribution/naming/foldernames.h"
#include "distribution/sheet/sheetproducts.h"
#include "distribution/sheet/sheetwriting.h"

#include <QTextDocumentFragment>

using namespace sheetwriting;

namespace {

constexpr int gridColumns = 5;
constexpr int gridPicture = 150;
constexpr int barcodeWidth = 240;
constexpr int barcodeHeight = 60;
constexpr int orderColumns = 4;

QString head()
{
    // The charset's name is what the sheet has always carried; the text is not decoded by it.
    return QStringLiteral("<HTML><head>"
                          "<meta http-equiv=\"Content-Type\" content=\"text/html; charset=gb232\">"
                          "<meta http-equiv=\"Content-Language\" content=\"zh-cn\">"
                          "<title></title>"
                          "<style type=\"text/css\">"
                          ".style1 { font-size: 24px; font-weight: bold; }"
                          ".style2 { font-size: 16px; font-weight: bold; }"
                          ".style3 { font-size: 12px; }"
                          ".style4 { font-size: 16px; font-weight: bold; color: #FF0000; }"
                          ".justify1 { display: inline-block; width: 100%; overflow: hidden; }"
                          ".td_thin { font-size: 14px; }"
                          "body, td, th { font-size: 14px; }"
                          "p { margin: 0px; padding: 0px; }"
                          "</style></head>"
                          "<body style=\"margin-left: 0px;\"><div align=\"center\">");
}

QString header(const SheetInput &input)
{
    const QString barcode = inOrderFolder(input, foldernames::other, foldernames::barcodeFile);
    const auto cell = [](const QString &content) {
        return QStringLiteral("<td width=\"33%\" align=\"center\" valign=\"middle\">") + content +
               QStringLiteral("</td>");
    };
    return QStringLiteral("<table width=\"100%\" border=\"0\"><tr>") + cell(QString()) +
           cell(span("style1", input.detail.shopName)) +
           cell(fittedPicture(input, barcode, QSize(barcodeWidth, barcodeHeight))) +
           QStringLiteral("</tr></table>");
}

/// "samplestarttime" is the hour, or the whole time where the minutes are missing.
QString sampleTime(const OrderDetail &detail)
{
    const QString hour = detail.value("samplestarttime");
    const QString minute = detail.value("samplestartmin");
    if (hour.isEmpty())
        return {};
    return hour + (minute.isEmpty() ? QString() : QLatin1Char(':') + minute) +
           QStringLiteral(":00");
}

/// What is left of a piece of somebody else's HTML: its text and its line breaks.
QString textOfHtml(const QString &html)
{
    return QTextDocumentFragment::fromHtml(html).toPlainText().remove(
        QChar(QChar::ObjectReplacementCharacter));
}

struct Field
{
    QString label;
    QString value;
};

QVector<Field> orderFields(const OrderDetail &detail)
{
    const auto with = [&detail](const char *key, const QString &completion) {
        return joinedWords({detail.value(key), completion});
    };
    const auto field = [&detail](const QString &label, const char *key) {
        return Field{label, detail.value(key)};
    };
    return {
        field(QStringLiteral("男士:"), "mname"),
        field(QStringLiteral("手机:"), "mphone"),
        field(QStringLiteral("女士:"), "wname"),
        field(QStringLiteral("手机:"), "wphone"),
        field(QStringLiteral("套系:"), "s2_name"),
        field(QStringLiteral("预约店:"), "mssid"),
        field(QStringLiteral("服务店:"), "servershopid"),
        field(QStringLiteral("预约日期:"), "booktime"),
        field(QStringLiteral("拍照日期:"), "photodate"),
        {QStringLiteral("选片日期:"), with("selectphotodate", sampleTime(detail))},
        {QStringLiteral("看精修日期:"), with("checktruing", detail.value("kanjinxiuarea"))},
        {QStringLiteral("看版日期:"), with("comparedate", detail.value("kanbanarea"))},
        field(QStringLiteral("门市:"), "booksuccess"),
        field(QStringLiteral("网约:"), "wxname"),
        field(QStringLiteral("推广:"), "tuiguangname"),
        field(QStringLiteral("选片师:"), "selectphoto"),
        field(QStringLiteral("对比片选中张数:"), "yqnumber"),
        field(QStringLiteral("相册P数:"), "goodpnumber"),
        field(QStringLiteral("套系约定精修:"), "vipphotonumber"),
        field(QStringLiteral("已选张数:"), "yx_number"),
        field(QStringLiteral("摄影师:"), "role1"),
        field(QStringLiteral("摄像师:"), "role17"),
        field(QStringLiteral("化妆师:"), "role2"),
        field(QStringLiteral("男士邮箱:"), "mmail"),
        field(QStringLiteral("摄助:"), "role3"),
        field(QStringLiteral("剪辑师:"), "role16"),
        field(QStringLiteral("化助:"), "role4"),
        field(QStringLiteral("女士邮箱:"), "wmail"),
        field(QStringLiteral("精修师:"), "role9name"),
        field(QStringLiteral("转档师:"), "role6name"),
        {},
        field(QStringLiteral("预约金额:"), "order_price"),
        field(QStringLiteral("二销总额:"), "twosales"),
        field(QStringLiteral("二销欠款:"), "dept"),
        field(QStringLiteral("支付方式:"), "pay_type"),
        field(QStringLiteral("样前对比片:"), "tiaose"),
        field(QStringLiteral("样后修片师:"), "tiaoxiu"),
        field(QStringLiteral("设计师:"), "sheji"),
        {QStringLiteral("发货日期:"),
         with("getphotoarea", textOfHtml(detail.value("getphotodate_html")))},
        field(QStringLiteral("购买毛底张数:"), "buynumber"),
        field(QStringLiteral("赠送精修张数:"), "activenumber"),
        field(QStringLiteral("购买精修张数:"), "morephotonumber"),
    };
}

QString orderBlock(const OrderDetail &detail)
{
    const auto value = [&detail](const char *key) { return escaped(detail.value(key)); };
    const auto spanning = [](const QString &content) {
        return QStringLiteral("<tr><td colspan=\"4\" class=\"td_thin\">") + content +
               QStringLiteral("</td></tr>");
    };
    QString html = borderedTable();
    const QString services = value("servicecount");
    html +=
        spanning(QStringLiteral("订单号:") + value("orderpayforkey") + QStringLiteral("(服务次:") +
                 value("servicetimes") +
                 (services.isEmpty() ? QString() : QLatin1Char('/') + services) + QLatin1Char(')'));
    QVector<Field> fields = orderFields(detail);
    while (fields.size() % orderColumns != 0)
        fields.append(Field());
    for (int index = 0; index < fields.size(); ++index) {
        if (index % orderColumns == 0)
            html += QStringLiteral("<tr>");
        html += QStringLiteral("<td width=\"25%\" class=\"td_thin\">") + fields.at(index).label +
                escaped(fields.at(index).value) + QStringLiteral("</td>");
        if (index % orderColumns == orderColumns - 1)
            html += QStringLiteral("</tr>");
    }
    html += spanning(QStringLiteral("收件人姓名:") + value("recipients") +
                     QStringLiteral("&nbsp;&nbsp;&nbsp;&nbsp;&nbsp;电话：") + value("sj_tel") +
                     QStringLiteral("&nbsp;&nbsp;&nbsp;&nbsp;地址：") + value("provinceid") +
                     value("cityid") + value("countyid") + value("areaname") + value("address"));
    return html + QStringLiteral("</table>");
}

QString requirement(const QString &title, const QString &text)
{
    return sectionTitle(title) + borderedTable() + QStringLiteral("<tr><td>") + escaped(text) +
           QStringLiteral("&nbsp;</td></tr></table>");
}

QString markedPhotos(const SheetInput &input)
{
    if (input.detail.imagesBiaoji.isEmpty())
        return {};
    QString html = borderedTable();
    for (const DetailPhoto &photo : input.detail.imagesBiaoji) {
        html += QStringLiteral("<tr><td width=\"130\" align=\"left\">") +
                squarePicture(input, input.pictures.find(photo.url, photo.imgName), 120) +
                QStringLiteral("</td><td><ul style=\"list-style-type: none;\">");
        for (int number = 1; number <= photo.remarks.size(); ++number) {
            html += QStringLiteral("<li>%1. ").arg(number) + escaped(photo.remarks.at(number - 1)) +
                    QStringLiteral("</li>");
        }
        html += QStringLiteral("</ul></td></tr>");
    }
    return html + QStringLiteral("</table>");
}

QString photoGrid(const SheetInput &input, const QString &title, const QVector<DetailPhoto> &photos)
{
    QString html = sectionTitle(title + QString::number(photos.size()) + QStringLiteral("张）"));
    if (photos.isEmpty())
        return html;
    html += QStringLiteral("<table width=\"100%\" border=\"0\" cellspacing=\"0\" "
                           "cellpadding=\"1\">");
    for (int first = 0; first < photos.size(); first += gridColumns) {
        html += QStringLiteral("<tr>");
        for (int index = first; index < first + gridColumns; ++index) {
            html += QStringLiteral("<td width=\"20%\" align=\"center\" valign=\"top\">");
            if (index < photos.size()) {
                html += squarePicture(input, thumbnailPath(input, photos.at(index)), gridPicture);
            }
            html += QStringLiteral("</td>");
        }
        html += QStringLiteral("</tr>");
    }
    return html + QStringLiteral("</table>");
}

QString signatures(const OrderDetail &detail)
{
    const auto cell = [](int percent, const QString &text) {
        return QStringLiteral("<td width=\"%1%\">").arg(percent) + span("style2", text) +
               QStringLiteral("</td>");
    };
    return QStringLiteral("<table width=\"100%\" border=\"0\"><tr>") +
           cell(18, QStringLiteral("选片人：") + detail.value("selectphotoname")) +
           cell(25, QStringLiteral("核单员：___________")) +
           cell(25, QStringLiteral("收发人：___________")) +
           cell(32, QStringLiteral("客人确认签名：___________")) + QStringLiteral("</tr></table>");
}

} // namespace

QString sheetHtml(const SheetInput &input)
{
    const OrderDetail &detail = input.detail;
    const QString printedAt = input.printedAt.toString(QStringLiteral("yyyy-MM-dd hh:mm:ss"));
    return head() + header(input) + orderBlock(detail) +
           requirement(QStringLiteral("总体要求"), detail.value("orderdescr")) +
           requirement(QStringLiteral("消费要求"), detail.value("consumption_statement")) +
           requirement(QStringLiteral("调修要求"), detail.value("orderpicdescr")) +
           markedPhotos(input) + sectionTitle(QStringLiteral("指定制作")) +
           productTable(input, ProductKind::Urgent) + productTable(input, ProductKind::Normal) +
           photoGrid(input, QStringLiteral("已选张数 （"), detail.images) +
           photoGrid(input, QStringLiteral("入底张数 （"), detail.imagesRudi) +
           QStringLiteral("<p align=\"left\">") + escaped(detail.shopDisclaimer) +
           QStringLiteral("</p>") + signatures(detail) +
           QStringLiteral("<p align=\"right\" style=\"font-size: 12px;\">") + printedAt +
           QStringLiteral("</p></div></body></HTML>");
}
