#include "distribution/naming/foldernames.h"
#include "distribution/naming/namingrule.h"
#include "distribution/plan/distributionplan.h"
#include "tests/support/datarows.h"
#include "tests/support/text.h"

#include <QRegularExpression>
#include <QtTest>

namespace {

OrderDetail sampleDetail()
{
    OrderDetail detail;
    const QStringList values =
        "orderpayforkey=TS7 servicetimes=2 wname=王丽 mname=李明 isurgenttime=6-1 "
        "pickuptime=7-9 pickuptypename=自取 factoryname=一厂 isurgent=0 isems=顺丰"_s.split(
            QLatin1Char(' '));
    for (const QString &each : values)
        detail.order.insert(each.section(QLatin1Char('='), 0, 0),
                            each.section(QLatin1Char('='), 1));
    return detail;
}

DetailProduct sampleProduct(const QString &name = "相册"_s)
{
    DetailProduct product;
    product.id = "31"_s;
    product.isUrgent = "0"_s;
    product.isEms = "快递"_s;
    product.goodName = name;
    product.goodTypeName = "册"_s;
    product.goodAmount = "3"_s;
    return product;
}

} // namespace

class TestNamingRule : public QObject
{
    Q_OBJECT

private slots:
    void storedForm();

    void noRule()
    {
        for (const QString &text : {QString(), "{\"name\":\"a\"}"_s, "["_s, "null"_s, "7"_s}) {
            QTest::ignoreMessage(QtDebugMsg, "产品文件夹命名 QString转QJsonArry失败");
            QVERIFY2(!namingrule::parse(text), qPrintable(text));
        }
    }

    void saveBody()
    {
        const namingrule::Rule rule = {{"100%&+"_s, "id"_s, "="_s}};
        QCOMPARE(namingrule::saveBody(rule, {"s"_s, "u"_s, "e"_s}),
                 QByteArray("goodsfoldernamerule=[{\"key\":\"id\",\"name\":\"100%25%26%2B\","
                            "\"separator\":\"=\"}]&shopid=s&eid=e&superid=u&personid=e"));
    }

    void fields()
    {
        namingrule::Rule rule = namingrule::availableFields();
        for (namingrule::Item &item : rule) {
            QCOMPARE(item.separator, "_"_s);
            item.separator = "|"_s;
        }
        DetailProduct product = sampleProduct();
        for (const auto &[urgent, time] :
             {std::pair{"0"_s, "7-9取"_s}, {"1"_s, "6-1急"_s}, {"2"_s, "6-1急"_s}}) {
            product.isUrgent = urgent;
            QCOMPARE(namingrule::folderName(rule, foldernames::ruleValues(sampleDetail(), product)),
                     "31|相册|王丽 李明|TS7|2|3|快递|%1|册|"_s.arg(time));
        }
        for (const namingrule::Item &item : qAsConst(rule))
            QVERIFY2(!namingrule::sampleValues().value(item.key).isEmpty(), qPrintable(item.key));
    }

    void rules_data()
    {
        addColumns<QString, QString>({"keysAndSeparators", "expected"});
        const QString builtIn = "4#TS7 相册 册 3 李明-王丽 7-9取 快递"_s;
        newRow("fields in order", "goodnum#|name-", "3#相册-");
        newRow("twice the same", "id=|id=", "31=31=");
        newRow("unknown key", "goodname-|id_", "31_");
        newRow("the last separator goes where the disk does not take it", "id.|name ", "31.相册");
        newRow("empty rule", "", builtIn);
        newRow("nothing but unknown keys", "x_|y_", builtIn);
    }

    void rules()
    {
        QFETCH(QString, keysAndSeparators);
        QFETCH(QString, expected);
        namingrule::Rule rule;
        const QStringList items = keysAndSeparators.split(QLatin1Char('|'), Qt::SkipEmptyParts);
        for (const QString &each : items)
            rule.append({each, each.chopped(1), each.right(1)});
        QCOMPARE(foldernames::productFolder(rule, sampleDetail(), sampleProduct(), 4), expected);
    }

    void warnings()
    {
        const QString longest(200, QLatin1Char('a'));
        for (const auto &[name, words] : {std::pair{"A-册_"_s, QString()},
                                          {" . "_s, "空"_s},
                                          {"a."_s, "结尾"_s},
                                          {"a\nb"_s, "字符"_s},
                                          {longest, QString()},
                                          {longest + "?."_s, "字符 结尾 200"_s}}) {
            const QStringList expected = words.split(QLatin1Char(' '), Qt::SkipEmptyParts);
            const QStringList found = namingrule::warnings(name);
            QCOMPARE(found.size(), expected.size());
            for (const QString &word : expected)
                QVERIFY2(found.join(QString()).contains(word), qPrintable(word));
        }
    }

    void folderPatterns()
    {
        OrderDetail detail = sampleDetail();
        QCOMPARE(foldernames::orderFolder(detail), "TS7-服务2 李明-王丽 自取"_s);
        QCOMPARE(foldernames::factoryFolder(detail), "一厂 李明-王丽 7-9取 顺丰"_s);
        detail.order.remove("isurgent"_s);
        QCOMPARE(foldernames::factoryFolder(detail), "一厂 李明-王丽 7-9取 顺丰"_s);
        detail.order.insert("isurgent"_s, "1"_s);
        QCOMPARE(foldernames::factoryFolder(detail), "一厂 李明-王丽 6-1急 顺丰"_s);

        DetailProduct set = sampleProduct();
        set.goodTypeId = "40"_s;
        const QString ofASet = "1#TS7-2 相册 册 3 李明-王丽 7-9取 快递"_s;
        QCOMPARE(foldernames::builtInProductFolder(detail, set, 1), ofASet);
        set.goodTypeId.clear();
        set.sonGood = {sampleProduct()};
        QCOMPARE(foldernames::builtInProductFolder(detail, set, 1), ofASet);
    }

    /// A name from a reply is one component, whatever it holds, "%1" included.
    void unsafeNames()
    {
        OrderDetail detail = sampleDetail();
        detail.order.insert("mname"_s, "../%2\\x:"_s);
        const DetailProduct product = sampleProduct("..\\%1/a?"_s);
        for (const QString &name :
             {foldernames::orderFolder(detail), foldernames::factoryFolder(detail),
              foldernames::builtInProductFolder(detail, product, 1),
              foldernames::productFolder({{{}, "name"_s, "."_s}}, detail, product, 1)}) {
            QVERIFY2(!name.contains(QRegularExpression("[/\\\\:?]"_s)), qPrintable(name));
            QVERIFY2(name.contains(QLatin1Char('%')), qPrintable(name));
        }
    }

    void productsOfOneName()
    {
        OrderDetail detail = sampleDetail();
        const QString longName(300, QLatin1Char('b'));
        detail.goods = {sampleProduct("a"_s), sampleProduct("a (2)"_s), sampleProduct(longName),
                        sampleProduct(longName)};
        detail.urgentGoods = {sampleProduct("A"_s)};
        const QStringList folders =
            foldernames::productFolders({{{}, "name"_s, QString()}}, detail);
        QCOMPARE(folders.mid(0, 3).join(QLatin1Char('|')), "A|a (2)|a (2) (2)"_s);
        QVERIFY(folders.at(3) != folders.at(4));
        QVERIFY(folders.at(4).endsWith(QLatin1String("b (2)")));
        // They keep their folders when the reply lists them the other way round.
        detail = {};
        detail.goods = {sampleProduct("a"_s), sampleProduct("a"_s), sampleProduct("a"_s)};
        detail.goods[0].id = "100"_s;
        detail.goods[1].id = "9"_s;
        QCOMPARE(foldernames::productFolders({{{}, "name"_s, QString()}}, detail),
                 (QStringList{"a (3)"_s, "a"_s, "a (2)"_s}));
        foldernames::DistinctNames names;
        const QStringList taken{names.take("x/y.jpg"_s), names.take("X_y.JPG"_s),
                                names.take("x_y"_s)};
        QCOMPARE(taken, (QStringList{"x_y.jpg"_s, "X_y (2).JPG"_s, "x_y"_s}));
    }
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
    const namingrule::Rule expected = {{"x"_s, "5"_s}};
    QCOMPARE(*loose, expected);
    QCOMPARE(expected.constFirst().separator, "_"_s);
    QVERIFY(namingrule::parse("[]"_s)->isEmpty());
}

QTEST_GUILESS_MAIN(TestNamingRule)
#include "test_namingrule.moc"
