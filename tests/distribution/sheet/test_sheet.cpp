#include "distribution/naming/foldernames.h"
#include "distribution/plan/distributionplan.h"
#include "distribution/sheet/productionsheet.h"
#include "distribution/sheet/sheethtml.h"
#include "distribution/sheet/sheetpages.h"
#include "tasks/workerpool.h"
#include "tests/support/datarows.h"
#include "tests/support/files.h"
#include "tests/support/pictures.h"
#include "tests/support/smalldisk.h"
#include "tests/support/text.h"

#include <QAbstractTextDocumentLayout>
#include <QDir>
#include <QProcess>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTextBlock>
#include <QTextDocument>
#include <QTextLayout>
#include <QtTest>

namespace {

QString s(const char *text)
{
    return QString::fromUtf8(text);
}

DetailPhoto photo(int number)
{
    DetailPhoto made;
    made.imgName = "I#%1 100%.jpg"_s.arg(number);
    return made;
}

DetailProduct product(const char *name, int photos)
{
    DetailProduct made;
    made.id = s(name);
    made.goodName = s(name);
    for (int number = 0; number < photos; ++number)
        made.imgs.append(photo(number));
    return made;
}

void set(OrderDetail *detail, const char *key, const QString &value)
{
    detail->order.insert(QString::fromLatin1(key), value);
}

PlannedPictures planned(const OrderDetail &detail, const QString &folder)
{
    PlanRequest request;
    request.type = DesignFileSplitTypes::DownloadSelection;
    request.detail = std::make_shared<const OrderDetail>(detail);
    request.orderFolder = folder + QLatin1Char('/');
    return planOrder(request, [](const QString &) { return QStringList(); }).pictures;
}

/// Every picture is there, unless its path has \a missing in it.
SheetInput input(const OrderDetail &detail, const QString &missing = "?"_s)
{
    const QString folder = drive() + "/o #1"_s;
    return {detail, folder, planned(detail, folder), QDateTime(QDate(2026, 1, 2), QTime(3, 4, 5)),
            [missing](const QString &path) {
                return path.contains(missing) ? QSize() : QSize(90, 60);
            }};
}

QString html(const OrderDetail &detail)
{
    return sheetHtml(input(detail));
}

/// The part of \a text from \a from on and before \a to.
QString between(const QString &text, const char *from, const char *to)
{
    const int begin = text.indexOf(s(from));
    const int end = text.indexOf(s(to), begin);
    return begin < 0 || end < 0 ? QString() : text.mid(begin, end - begin);
}

QByteArray output(const char *program, const QStringList &arguments)
{
    QProcess process;
    process.start(s(program), arguments);
    if (!process.waitForFinished(-1) || process.exitCode() != 0)
        qFatal("%s: %s", program, process.readAllStandardError().constData());
    return process.readAllStandardOutput();
}

} // namespace

class TestSheet : public QObject
{
    Q_OBJECT

private slots:
    void sections()
    {
        OrderDetail detail;
        detail.shopName = "店"_s;
        detail.shopDisclaimer = "声明\n二"_s;
        detail.images = {photo(1), photo(2)};
        detail.imagesRudi = {photo(3)};
        const QString sheet = html(detail);
        int at = 0;
        const QStringList pieces =
            "<HTML><head>|content=\"text/html; charset=gb232\"|content=\"zh-cn\"|<title></title>|"
            "margin-left: 0px|<span class=\"style1\">店</span>|%E6%9D%A1%E5%BD%A2%E7%A0%81.jpg|"
            "订单号:|收件人姓名:|总体要求|消费要求|调修要求|指定制作|color: #FF0000;\">加急件：|"
            "color: #000000;\">普通件：|已选张数 （2张）|入底张数 （1张）|声明<br>二|选片人：|"
            "核单员：___________|收发人：___________|客人确认签名：___________|"
            "font-size: 12px;\">2026-01-02 03:04:05|</body></HTML>"_s.split(QLatin1Char('|'));
        for (const QString &piece : pieces) {
            const int found = sheet.indexOf(piece, at);
            QVERIFY2(found >= 0, qPrintable(piece));
            at = found;
        }
        QVERIFY(between(sheet, "加急件", "普通件").contains("\"20%\" align=\"center\">制作要求"_s));
        QVERIFY(between(sheet, "普通件", "总计").contains("\"25%\" align=\"center\">制作要求"_s));
    }

    void orderValues()
    {
        OrderDetail detail;
        const QStringList values =
            "orderpayforkey=TS1|servicetimes=2|servicecount=3|mname=李|selectphotodate=5-1|"
            "samplestarttime=10|samplestartmin=30|comparedate=6-1|kanbanarea=上午|getphotoarea=下午|"
            "isurgenttime=7-1|urgentdatearea=早|recipients=王|provinceid=云|cityid=临|countyid=东|"
            "areaname=花|address=8号"_s.split(QLatin1Char('|'));
        for (const QString &each : values)
            detail.order.insert(each.section(QLatin1Char('='), 0, 0),
                                each.section(QLatin1Char('='), 1));
        set(&detail, "getphotodate_html",
            "8-1<br><b style='x'>周&lt;四</b><img src='http://x/y'><script>z()</script>"_s);
        const QString sheet = html(detail);
        for (const char *piece :
             {"<td colspan=\"4\" class=\"td_thin\">订单号:TS1(服务次:2/3)</td>", ">男士:李</td>",
              ">选片日期:5-1 10:30:00</td>", ">看版日期:6-1 上午</td>",
              ">发货日期:下午 8-1<br>周&lt;四</td>", "加急件：7-1 早", "地址：云临东花8号"})
            QVERIFY2(sheet.contains(s(piece)), piece);
        const QString block = between(sheet, "订单号", "收件人姓名");
        QCOMPARE(block.count("<td width=\"25%\" class=\"td_thin\">"_s), 44);
        QCOMPARE(block.count("<tr><td width=\"25%\""_s), 11);
        QVERIFY(block.contains("转档师:</td><td width=\"25%\" class=\"td_thin\"></td>"_s));
    }

    /// No value may bring markup along, wherever it stands.
    void markupIsText()
    {
        const QString hostile = "<b>&\"\r\n'</td>"_s;
        OrderDetail detail;
        for (const char *key : {"orderpayforkey", "mname", "orderdescr", "consumption_statement",
                                "orderpicdescr", "selectphotoname", "role12name", "pickuptime",
                                "isurgenttime", "recipients", "getphotoarea"})
            set(&detail, key, hostile);
        detail.shopName = detail.shopDisclaimer = hostile;
        DetailProduct one = product("a", 1);
        one.goodName = one.goodTypeName = one.goodPageNumber = one.pNum = one.goodAmount =
            one.descr = one.authRemark = one.goodRemark = one.imgs.first().imgName = hostile;
        detail.goods = {one};
        DetailPhoto marked = photo(1);
        marked.remarks = QStringList{hostile};
        detail.imagesBiaoji = {marked};
        const QString sheet = html(detail);
        QVERIFY(!sheet.contains("<b>"_s));
        QVERIFY(!sheet.contains("'</td>"_s));
        QCOMPARE(sheet.count("&lt;b&gt;&amp;&quot;<br>'&lt;/td&gt;"_s), 24);
    }

    void sevenPhotosMakeTwoRows()
    {
        OrderDetail detail;
        detail.goods = {product("册", 7)};
        const QString photos = between(html(detail), "<td colspan=\"10\"><table", "总计");
        QStringList rows = photos.split("<tr>"_s);
        QCOMPARE(rows.size(), 4); // before the first, two rows, the total's
        QCOMPARE(rows.at(1).count("<td width=\"16.67%\""_s), 6);
        QCOMPARE(rows.at(1).count("width=\"83\" height=\"83\""_s), 6);
        QCOMPARE(rows.at(2).count("<td width=\"16.67%\""_s), 6);
        QCOMPARE(rows.at(2).count("<img"_s), 1);
        QCOMPARE(rows.at(2).count("valign=\"top\"></td>"_s), 5);
        QVERIFY(rows.at(2).contains("<span class=\"style3\">I#6 100%.jpg</span>"_s));
    }

    void setsSpanTheirParts()
    {
        OrderDetail detail;
        DetailProduct withParts = product("套", 1);
        withParts.sonGood = {product("甲", 2), product("乙", 0)};
        DetailProduct likeASet = product("框", 1);
        likeASet.goodTypeId = "40"_s;
        detail.urgentGoods = {product("急", 1)};
        detail.goods = {product("空", 0), withParts, likeASet, product("册", 1)};
        const QString sheet = html(detail);
        QVERIFY(between(sheet, "加急件", "普通件").contains("<td align=\"center\">1</td>"_s));
        const QString normal = between(sheet, "普通件", "总计");
        QVERIFY(normal.contains(
            "<tr><td align=\"center\" rowspan=\"3\">3</td><td><span class=\"style2\">套"_s));
        QVERIFY(normal.contains("<tr><td><span class=\"style2\">甲"_s));
        QVERIFY(normal.contains("<tr><td><span class=\"style2\">乙"_s));
        QVERIFY(normal.contains("rowspan=\"1\">4</td><td><span class=\"style2\">框"_s));
        QVERIFY(normal.contains("<td align=\"center\">5</td><td><span class=\"style2\">册"_s));
        QCOMPARE(normal.count("<img"_s), 5);
        const QString total =
            "<td>总计</td><td colspan=\"9\">产品总数:%1件, 选中总张数共%2张</td>"_s;
        QVERIFY(sheet.contains(total.arg(1).arg(1)));
        QVERIFY(sheet.contains(total.arg(4).arg(5)));
        // Nobody chose photos for it: it stands behind the others, under a heading.
        QVERIFY(sheet.indexOf("未操作产品"_s) > sheet.indexOf("册</span>"_s));
        QVERIFY(sheet.indexOf(">空</span>"_s) > sheet.indexOf("未操作产品"_s));
    }

    void pictures()
    {
        OrderDetail detail;
        detail.goods = {product("册", 2)};
        detail.goods.first().imgs.first().croppingImgUrl = "http://x"_s;
        detail.images = {photo(7)};
        const QString folder = QUrl::fromLocalFile(drive() + "/"_s).toString() + "o%20%231/"_s;
        const QString thumbnails = folder + "%E7%BC%A9%E7%95%A5%E5%9B%BE/I%23"_s;
        const QString sheet = html(detail);
        QVERIFY(sheet.contains(folder + "%E8%A3%81%E5%89%AA/%E5%86%8C_I%230%20100%25.jpg"_s));
        QVERIFY(sheet.contains(thumbnails + "1%20100%25.jpg"_s));
        QVERIFY(
            sheet.contains(thumbnails + "7%20100%25.jpg#square\" width=\"150\" height=\"150\""_s));

        QVERIFY(sheetHtml(input(detail, "裁剪"_s)).contains(thumbnails + "0%20100%25.jpg"_s));
        const QString without = sheetHtml(input(detail, "/"_s));
        QVERIFY(!without.contains("<img"_s));
        QVERIFY(without.contains("<td width=\"20%\" align=\"center\" valign=\"top\"></td>"_s));

        DetailPhoto marked = photo(1);
        marked.url = "http://x"_s;
        marked.remarks = QStringList{"瘦脸"_s, "去斑\n提亮"_s};
        detail.imagesBiaoji = {marked};
        const QString table = between(html(detail), "调修要求", "指定制作");
        QVERIFY(table.contains("width=\"120\" height=\"120\""_s));
        QVERIFY(table.contains("/%E6%A0%87%E8%AE%B0/I%231%20100%25.jpg"_s));
        QVERIFY(table.contains("<li>1. 瘦脸</li><li>2. 去斑<br>提亮</li>"_s));

        // Two cameras, one numbering.
        OrderDetail namesakes;
        namesakes.goods = {product("册", 1), product("框", 1)};
        namesakes.goods.first().imgs.first().picPath = "/y/all/a"_s;
        const QString both = html(namesakes);
        QCOMPARE(both.count(thumbnails + "0%20100%25.jpg"_s), 1);
        QCOMPARE(both.count(thumbnails + "0%20100%25%20(2).jpg"_s), 1);
    }

    void printed_data()
    {
        QTest::addColumn<int>("lines");
        for (const int lines : {1, 14, 22, 41})
            QTest::addRow("%d lines", lines) << lines;
    }

    void printed();
    void pages_data();
    void pages();

    void notPrinted()
    {
        const QTemporaryDir root;
        QCOMPARE(printProductionSheet({}, root.filePath("none"_s), {}), "明细制作单.pdf生成失败"_s);
        const QString pdf = root.filePath("明细制作单.pdf"_s);
        writeFile(pdf, "old");
        QVERIFY(QFile::setPermissions(pdf, QFile::ReadOwner));
        QVERIFY(!printProductionSheet({}, root.path(), {}).isEmpty());
        QCOMPARE(readFile(pdf), QByteArray("old"));
        QVERIFY(QFile::setPermissions(pdf, QFile::ReadOwner | QFile::WriteOwner));
        QVERIFY(printProductionSheet({}, root.path(), {}).isEmpty());
    }

    void fullDisk()
    {
        const QTemporaryDir root;
        const SmallDisk disk(root.path(), 1);
        if (!disk.isMounted())
            QSKIP("Mounting a disk of our own needs the rights to do so.");
        QFile filler(root.filePath("filler"_s));
        QVERIFY(filler.open(QIODevice::WriteOnly));
        while (filler.write(QByteArray(1000, 'x')) == 1000 && filler.flush()) {
        }
        filler.close();
        QVERIFY(!printProductionSheet({}, root.path(), {}).isEmpty());
        QCOMPARE(QDir(root.path()).entryList(QDir::Files | QDir::Hidden), QStringList{"filler"_s});
    }
};

void TestSheet::pages_data()
{
    addColumns<int, int, int, int>({"urgent", "normal", "photos", "chosen"});
    newRow("a plain order", 0, 1, 8, 8);
    newRow("several products", 2, 6, 7, 23);
    newRow("products longer than a page", 1, 1, 80, 3);
    newRow("products without photos", 1, 30, 0, 1);
}

/// Each line of the requirements shifts all below, so that the pages end somewhere else.
void TestSheet::pages()
{
    QFETCH(int, urgent);
    QFETCH(int, normal);
    QFETCH(int, photos);
    QFETCH(int, chosen);
    static const QRegularExpression heading(
        "^(总体要求|消费要求|调修要求|指定制作|加急件|普通件|制作要求|已选张数|入底张数|未操作|备注)"_s);
    constexpr double height = 1122.5;
    constexpr double largestGap = 300; // column names, a product's row, its first photos
    constexpr double largestTop = 100; // column names, and what a row above leaves
#ifdef __SANITIZE_ADDRESS__
    constexpr int step = 8; // a layout takes fifty times as long
#else
    constexpr int step = 1;
#endif
    OrderDetail detail;
    detail.images = QVector<DetailPhoto>(chosen, photo(1));
    detail.imagesRudi = QVector<DetailPhoto>(3, photo(2));
    for (int number = 0; number < urgent + normal; ++number) {
        DetailProduct each = product("册", photos);
        each.goodRemark =
            photos > 0 ? "备注"_s + QString(number % 3, QLatin1Char('\n')) : QString();
        (number < urgent ? detail.urgentGoods : detail.goods).append(each);
    }
    for (int lines = 0; lines <= 40; lines += step) {
        set(&detail, "orderdescr", QString(lines, QLatin1Char('\n')));
        QTextDocument document;
        document.setHtml(html(detail));
        paginate(&document, QSizeF(793.7, height));
        int page = 0;
        double end = 0; // of what is above, on its page
        bool isHeading = false;
        for (QTextBlock block = document.begin(); block.isValid(); block = block.next()) {
            if (block.text().isEmpty())
                continue;
            const QTextLayout *text = block.layout();
            const double top = document.documentLayout()->blockBoundingRect(block).top();
            QVERIFY(text->lineCount() > 0);
            for (int line = 0; line < text->lineCount(); ++line) {
                const QRectF rect = text->lineAt(line).rect().translated(0, top);
                const QByteArray place = ("%1 lines, page %2, %3 to %4: "_s.arg(lines)
                                              .arg(page + 1)
                                              .arg(rect.top())
                                              .arg(rect.bottom()) +
                                          block.text())
                                             .toUtf8();
                const char *where = place.constData();
                const int its = int(rect.top() / height);
                QVERIFY2(int((rect.bottom() - 1) / height) == its, where); // not cut
                if (its > page) {
                    QVERIFY2(its == page + 1 && !isHeading, where);
                    QVERIFY2(height - end < largestGap, where);
                    QVERIFY2(rect.top() - its * height < largestTop, where);
                    end = 0;
                }
                page = its;
                end = std::max(end, rect.bottom() - its * height);
                isHeading = false;
            }
            isHeading = heading.match(block.text()).hasMatch();
        }
        QCOMPARE(document.pageCount(), page + 1);
    }
}

/// Read back: whatever a page's end cuts is painted on both pages.
void TestSheet::printed()
{
    QFETCH(int, lines);
    const QTemporaryDir root;
#ifdef Q_OS_WIN
    const QString folder = root.filePath("TS #1 100% &amp; '中'/单"_s); // no " in names here
#else
    const QString folder = root.filePath("TS #1 100% &amp; \"中\"/单"_s);
#endif
    OrderDetail detail;
    QStringList description;
    for (int line = 0; line < lines; ++line)
        description.append("Q%1Q"_s.arg(line));
    set(&detail, "orderdescr", description.join(QLatin1Char('\n')));
    constexpr int chosen = 40;
    for (int number = 0; number < chosen; ++number) {
        detail.images.append(photo(number));
        detail.images.last().imgName = "P%1P#%.jpg"_s.arg(number);
        writeFile(folder + "/缩略图/"_s + detail.images.last().imgName,
                  jpegOf(cornerPicture(number % 3 ? QSize(90, 60) : QSize(60, 90))));
    }
    detail.goods = {product("A", 0), product("B", 0)};
    detail.goods[0].imgs = detail.images.mid(0, 13);
    detail.goods[1].imgs = detail.images.mid(13, 26);
    detail.goods[1].goodRemark = "R1R\nR2R\nR3R\nR4R\nR5R\nR6R"_s;
    writeFile(folder + "/其他/条形码.jpg"_s, jpegOf(cornerPicture(QSize(2000, 600))));

    const PlannedPictures pictures = planned(detail, folder);
    QString problem = "not printed"_s;
    WorkerPool pool("printing"_s, 1);
    pool.start([&] { problem = printProductionSheet(detail, folder, pictures); });
    pool.waitForDone();
    QCOMPARE(problem, QString());
    QCOMPARE(QDir(folder).entryList(QDir::Files | QDir::Hidden), QStringList{"明细制作单.pdf"_s});
    if (QStandardPaths::findExecutable("pdfinfo"_s).isEmpty())
        QSKIP("Reading it back needs the programs of poppler-utils.");
    const QString pdf = folder + "/明细制作单.pdf"_s;
    const QByteArray info = output("pdfinfo", {pdf});
    QVERIFY2(info.contains("Page size:       595 x 842 pts (A4)"), info.constData());
    QVERIFY(!info.contains("Pages:           1\n"));
    const QList<QByteArray> images = output("pdfimages", {"-list"_s, pdf}).split('\n');
    // Two lines of heading, one end; the photo that is in no product is shown once.
    QCOMPARE(images.size() - 3, 1 + chosen + chosen - 1);
    QVERIFY2(images.at(2).simplified().split(' ').at(3).toInt() <= 450, images.at(2).constData());

    // A product's picture and its name are on one page.
    QMap<int, int> smallPictures;
    for (const QByteArray &line : images) {
        const QList<QByteArray> fields = line.simplified().split(' ');
        if (fields.value(12).toInt() > 100 && fields.value(3).toInt() == 90)
            ++smallPictures[fields.first().toInt()];
    }
    for (auto page = smallPictures.cbegin(); page != smallPictures.cend(); ++page) {
        const QString number = QString::number(page.key());
        QCOMPARE(output("pdftotext", {"-f"_s, number, "-l"_s, number, pdf, "-"_s}).count("P#%"),
                 page.value());
    }

    const QString text = QString::fromUtf8(output("pdftotext", {pdf, "-"_s}));
    for (int line = 0; line < lines; ++line)
        QCOMPARE(text.count("Q%1Q"_s.arg(line)), 1);
    for (int number = 0; number < chosen - 1; ++number)
        QCOMPARE(text.count("P%1P#%.jpg"_s.arg(number)), 1);
    // A product's row is whole and on the page of its first photos.
    const QStringList pages = text.split(QLatin1Char('\f'));
    const QStringList withProduct = pages.filter("R1R"_s);
    QCOMPARE(withProduct.size(), 1);
    for (const char *piece : {"R2R", "R3R", "R4R", "R5R", "R6R", "P13P#"})
        QCOMPARE(withProduct.first().count(s(piece)), 1);

    const QString boxes = QString::fromUtf8(output("pdftotext", {"-bbox"_s, pdf, "-"_s}));
    QRegularExpression word("<word xMin=\"([-.0-9]+)\" yMin=\"([-.0-9]+)\" xMax=\"([-.0-9]+)\""
                            " yMax=\"([-.0-9]+)\">"_s);
    double leftmost = 1000;
    for (auto found = word.globalMatch(boxes); found.hasNext();) {
        const QRegularExpressionMatch box = found.next();
        leftmost = std::min(leftmost, box.captured(1).toDouble());
        QVERIFY(box.captured(1).toDouble() >= 0 && box.captured(2).toDouble() >= -1);
        QVERIFY(box.captured(3).toDouble() <= 596 && box.captured(4).toDouble() <= 843);
    }
    QVERIFY2(leftmost < 10, qPrintable(QString::number(leftmost)));
}

QTEST_MAIN(TestSheet)
#include "test_sheet.moc"
