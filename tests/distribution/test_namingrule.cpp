#include "distribution/distributionplan.h"
#include "distribution/foldernames.h"
#include "distribution/namingrule.h"

#include <QRegularExpression>
#include <QtTest>

namespace {

QString s(const char *text)
{
    return QString::fromUtf8(text);
}

QStringList list(std::initializer_list<const char *> texts)
{
    QStringList strings;
    for (const char *text : texts)
        strings.append(s(text));
    return strings;
}

OrderDetail sampleDetail()
{
    OrderDetail detail;
    for (const auto &[key, value] : {std::pair{"orderpayforkey", "TS7"},
                                     {"servicetimes", "2"},
                                     {"wname", "王丽"},
                                     {"mname", "李明"},
                                     {"isurgenttime", "6-1"},
                                     {"pickuptime", "7-9"},
                                     {"pickuptypename", "自取"},
                                     {"factoryname", "一厂"},
                                     {"isurgent", "0"},
                                     {"isems", "顺丰"}})
        detail.order.insert(QLatin1String(key), QString::fromUtf8(value));
    return detail;
}

DetailProduct sampleProduct(const QString &name = s("相册"))
{
    DetailProduct product;
    product.id = s("31");
    product.isUrgent = s("0");
    product.isEms = s("快递");
    product.goodName = name;
    product.goodTypeName = s("册");
    product.goodAmount = s("3");
    return product;
}

} // namespace

class TestNamingRule : public QObject
{
    Q_OBJECT

private slots:
    void storedForm();
    void noRule_data();
    void noRule();
    void saveBody();
    void fields_data();
    void fields();
    void rules_data();
    void rules();
    void warnings_data();
    void warnings();
    void folderPatterns();
    void unsafeNames();
    void productsOfOneName();
};

void TestNamingRule::storedForm()
{
    const QString text = QStringLiteral(
        R"([{"key":"name","name":"产品名称","separator":"#"},{"key":"id","name":"A&B","separator":""}])");
    const auto rule = namingrule::parse(text);
    QVERIFY(rule);
    QCOMPARE(namingrule::toText(*rule), text);

    const auto loose = namingrule::parse(QStringLiteral(R"([7, {"name":"x","key":5}])"));
    QVERIFY(loose);
    const namingrule::Rule expected = {{s("x"), s("5")}};
    QCOMPARE(*loose, expected);
    QCOMPARE(expected.constFirst().separator, s("_"));
    QVERIFY(namingrule::parse(s("[]"))->isEmpty());
}

void TestNamingRule::noRule_data()
{
    QTest::addColumn<QString>("text");
    for (const char *text : {"", "{\"name\":\"a\"}", "[", "null", "7"})
        QTest::newRow(text) << QString::fromLatin1(text);
}

void TestNamingRule::noRule()
{
    QFETCH(QString, text);
    QTest::ignoreMessage(QtDebugMsg, "产品文件夹命名 QString转QJsonArry失败");
    QVERIFY(!namingrule::parse(text));
}

void TestNamingRule::saveBody()
{
    const namingrule::Rule rule = {{s("100%&+"), s("id"), s("=")}};
    QCOMPARE(namingrule::saveBody(rule, {s("s"), s("u"), s("e")}),
             QByteArray("goodsfoldernamerule=[{\"key\":\"id\",\"name\":\"100%25%26%2B\","
                        "\"separator\":\"=\"}]&shopid=s&eid=e&superid=u&personid=e"));
}

void TestNamingRule::fields_data()
{
    QTest::addColumn<QString>("urgent");
    QTest::addColumn<QString>("expected");
    QTest::newRow("normal") << s("0") << s("31|相册|王丽 李明|TS7|2|3|快递|7-9取|册|");
    QTest::newRow("urgent") << s("1") << s("31|相册|王丽 李明|TS7|2|3|快递|6-1急|册|");
    QTest::newRow("urgent of another degree")
        << s("2") << s("31|相册|王丽 李明|TS7|2|3|快递|6-1急|册|");
}

void TestNamingRule::fields()
{
    QFETCH(QString, urgent);
    QFETCH(QString, expected);
    namingrule::Rule rule = namingrule::availableFields();
    for (namingrule::Item &item : rule) {
        QCOMPARE(item.separator, s("_"));
        item.separator = s("|");
    }
    DetailProduct product = sampleProduct();
    product.isUrgent = urgent;
    QCOMPARE(namingrule::folderName(rule, foldernames::ruleValues(sampleDetail(), product)),
             expected);
    for (const namingrule::Item &item : qAsConst(rule))
        QVERIFY2(!namingrule::sampleValues().value(item.key).isEmpty(), qPrintable(item.key));
}

void TestNamingRule::rules_data()
{
    QTest::addColumn<QStringList>("keysAndSeparators");
    QTest::addColumn<QString>("expected");
    const QString builtIn = s("4#TS7 相册 册 3 李明-王丽 7-9取 快递");
    QTest::newRow("fields in order") << list({"goodnum#", "name-"}) << s("3#相册-");
    QTest::newRow("twice the same") << list({"id=", "id="}) << s("31=31=");
    QTest::newRow("unknown key") << list({"goodname-", "id_"}) << s("31_");
    QTest::newRow("the last separator goes where the disk does not take it")
        << list({"id.", "name "}) << s("31.相册");
    QTest::newRow("empty rule") << QStringList() << builtIn;
    QTest::newRow("nothing but unknown keys") << list({"x_", "y_"}) << builtIn;
}

void TestNamingRule::rules()
{
    QFETCH(QStringList, keysAndSeparators);
    QFETCH(QString, expected);
    namingrule::Rule rule;
    for (const QString &each : keysAndSeparators)
        rule.append({each, each.chopped(1), each.right(1)});
    QCOMPARE(foldernames::productFolder(rule, sampleDetail(), sampleProduct(), 4), expected);
}

void TestNamingRule::warnings_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("count");
    QTest::addColumn<QString>("word");
    QTest::newRow("good") << s("A-册_") << 0 << s("");
    QTest::newRow("empty") << s("") << 1 << s("空");
    QTest::newRow("blanks") << s(" . ") << 1 << s("空");
    QTest::newRow("dot") << s("a.") << 1 << s("结尾");
    QTest::newRow("blank") << s("a ") << 1 << s("结尾");
    QTest::newRow("slash") << s("a/b") << 1 << s("字符");
    QTest::newRow("control") << s("a\nb") << 1 << s("字符");
    QTest::newRow("200") << QString(200, QLatin1Char('a')) << 0 << s("");
    QTest::newRow("201") << QString(201, QLatin1Char('a')) << 1 << s("200");
    QTest::newRow("all") << QString(201, QLatin1Char('?')) + QLatin1Char('.') << 3 << s("200");
}

void TestNamingRule::warnings()
{
    QFETCH(QString, name);
    QFETCH(int, count);
    QFETCH(QString, word);
    const QStringList found = namingrule::warnings(name);
    QCOMPARE(found.size(), count);
    QVERIFY(found.join(QString()).contains(word));
}

void TestNamingRule::folderPatterns()
{
    OrderDetail detail = sampleDetail();
    QCOMPARE(orderFolderName(detail), s("TS7-服务2 李明-王丽 自取"));
    QCOMPARE(foldernames::factoryFolder(detail), s("一厂 李明-王丽 7-9取 顺丰"));
    detail.order.remove(s("isurgent"));
    QCOMPARE(foldernames::factoryFolder(detail), s("一厂 李明-王丽 7-9取 顺丰"));
    detail.order.insert(s("isurgent"), s("1"));
    QCOMPARE(foldernames::factoryFolder(detail), s("一厂 李明-王丽 6-1急 顺丰"));

    DetailProduct set = sampleProduct();
    set.goodTypeId = s("40");
    const QString ofASet = s("1#TS7-2 相册 册 3 李明-王丽 7-9取 快递");
    QCOMPARE(foldernames::builtInProductFolder(detail, set, 1), ofASet);
    set.goodTypeId.clear();
    set.sonGood = {sampleProduct()};
    QCOMPARE(foldernames::builtInProductFolder(detail, set, 1), ofASet);
}

/// A name from a reply is one component, whatever it holds, "%1" included.
void TestNamingRule::unsafeNames()
{
    OrderDetail detail = sampleDetail();
    detail.order.insert(s("mname"), s("../%2\\x:"));
    const DetailProduct product = sampleProduct(s("..\\%1/a?"));
    for (const QString &name :
         {orderFolderName(detail), foldernames::factoryFolder(detail),
          foldernames::builtInProductFolder(detail, product, 1),
          foldernames::productFolder({{{}, s("name"), s(".")}}, detail, product, 1)}) {
        QVERIFY2(!name.contains(QRegularExpression(s("[/\\\\:?]"))), qPrintable(name));
        QVERIFY2(name.contains(QLatin1Char('%')), qPrintable(name));
    }
}

void TestNamingRule::productsOfOneName()
{
    OrderDetail detail = sampleDetail();
    const QString longName(300, QLatin1Char('b'));
    detail.goods = {sampleProduct(s("a")), sampleProduct(s("a (2)")), sampleProduct(longName),
                    sampleProduct(longName)};
    detail.urgentGoods = {sampleProduct(s("A"))};
    const QStringList folders = foldernames::productFolders({{{}, s("name"), QString()}}, detail);
    QCOMPARE(folders.mid(0, 3), (list({"A", "a (2)", "a (2) (2)"})));
    QVERIFY(folders.at(3) != folders.at(4));
    QVERIFY(folders.at(4).endsWith(QLatin1String("b (2)")));
    QCOMPARE(foldernames::distinctFileNames(list({"x/y.jpg", "X_y.JPG", "x_y"})),
             (list({"x_y.jpg", "X_y (2).JPG", "x_y"})));
}

QTEST_GUILESS_MAIN(TestNamingRule)
#include "test_namingrule.moc"
