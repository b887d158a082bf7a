#include "orderbrowser/rules/chosenphotos.h"
#include "orderbrowser/rules/columnchoice.h"
#include "orderbrowser/rules/fieldfilter.h"
#include "orderbrowser/rules/fieldvalues.h"
#include "orderbrowser/rules/orderarrangement.h"
#include "orderbrowser/rules/orderlisting.h"
#include "orderbrowser/rules/orderstate.h"
#include "orderbrowser/rules/orderviews.h"
#include "tests/support/datarows.h"
#include "tests/support/text.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QtTest>

using orderfields::Kind;

Q_DECLARE_METATYPE(orderfields::Kind)

namespace {

const QDate today(2026, 11, 23);

QJsonObject parsed(const char *json)
{
    return QJsonDocument::fromJson(json).object();
}

OrderListing listingOf(const char *json)
{
    return orderlistings::read(parsed(json), {"101"_s, {}});
}

QString value(const OrderListing &listing, int order, const char *key)
{
    return listing.value(order, orderfields::positionOf(listing.fields, QString::fromUtf8(key)));
}

QStringList numbers(const OrderListing &listing, const OrderArrangement &arrangement)
{
    QStringList shown;
    const auto rows = orderarrangement::rows(listing, arrangement);
    for (const int row : rows)
        shown.append(listing.value(row, orderfields::Number));
    return shown;
}

} // namespace

class TestOrderRules : public QObject
{
    Q_OBJECT

private slots:
    void asksForTheChosenPhotos()
    {
        QCOMPARE(
            chosenphotos::body("800001"_s, {"101"_s, "7001"_s, "3101"_s}),
            QByteArray("order_photo_id=800001&shopid=101&eid=3101&superid=7001&personid=3101"));
        const auto photos = chosenphotos::read(
            parsed(R"({"images": [{"img_name": "A.jpg", "url": "u", "id": 7}, 5, null, {}]})"));
        QCOMPARE(photos.size(), 2);
        QCOMPARE(photos.at(0).imgName + photos.at(0).url + photos.at(0).id, "A.jpgu7"_s);
        QVERIFY(chosenphotos::read(parsed(R"({"images": "A.jpg"})")).isEmpty());
    }

    void readsWhatComes()
    {
        const OrderListing listing = listingOf(R"({"openypml": 1, "data": [
            {"id": 1, "order_photo_id": "11", "orderpayforkey": "TS1", "servicetimes": 2,
             "role1": "8", "role1name": "赵", "images": [{}, {}], "selectphototime": "2026-11-01",
             "number_jingxiu": "1", "pickuptime": "2026-11-25", "mname": {"x": 1}, "wname": null,
             "vip": true, "deposit": "1,200", "wechat_mobile": "13800002042"},
            7, "x", null, [],
            {"id": "1", "order_photo_id": 11, "orderpayforkey": "again"},
            {"id": "1", "order_photo_id": "12", "role1": "钱", "deposit": 5},
            {}, {"orderpayforkey": "TS9"}]})");
        QCOMPARE(listing.elements, 9);
        QCOMPARE(listing.unreadable, 4);
        QCOMPARE(listing.orders.size(), 4); // what nothing tells apart stays
        QCOMPARE(listing.openYpml, "1"_s);
        QCOMPARE(listing.rowOf({"101"_s, "1"_s, "12"_s}), 1);
        QCOMPARE(listing.rowOf({"101"_s, {}, {}}), -1);
        const QVector<std::pair<const char *, const char *>> expected{{"orderpayforkey", "TS1-2"},
                                                                      {"role1name", "赵"},
                                                                      {"images", "2"},
                                                                      {"#state", "精修 1/2"},
                                                                      {"#days", "2026-11-25"},
                                                                      {"mname", R"({"x":1})"},
                                                                      {"wname", ""},
                                                                      {"vip", "1"},
                                                                      {"deposit", "1,200"}};
        for (const auto &[key, text] : expected)
            QCOMPARE(value(listing, 0, key), QString::fromUtf8(text));
        QCOMPARE(value(listing, 1, "role1name"), "钱"_s);
        const auto kind = [&listing](const char *key) {
            return listing.fields
                .at(orderfields::positionOf(listing.fields, QString::fromUtf8(key)))
                .kind;
        };
        QCOMPARE(kind("deposit"), Kind::Number);
        QCOMPARE(kind("wechat_mobile"), Kind::Phone);
    }

    void survivesStrangeReplies()
    {
        QVERIFY(!listingOf(R"({"data": "none"})").isList);
        QVERIFY(!listingOf("{}").isList);
        QVERIFY(listingOf(R"({"data": []})").isList);
        QJsonObject crowded;
        for (int i = 0; i < 1000; ++i)
            crowded.insert("m%1"_s.arg(i), QString(10000, QLatin1Char('x')));
        const OrderListing listing = orderlistings::read({{"data"_s, QJsonArray{crowded}}}, {});
        QCOMPARE(listing.fields.size(),
                 orderfields::known().size() + orderlistings::mostOtherFields);
        QVERIFY(listing.orders.first().values.last().size() < 10000);
    }

    void mergesByIdentity()
    {
        const OrderListing merged = orderlistings::merged(
            {listingOf(R"({"data": [{"id": 1, "a": "1"}, {"id": 2, "b": "2"}]})"),
             listingOf(
                 R"({"data": [{"id": 2, "b": "3"}, {"id": 3, "c": "2026-1-2", "a": "5"}]})")});
        QCOMPARE(merged.orders.size(), 3);
        QCOMPARE(value(merged, 1, "b"), "2"_s);
        QCOMPARE(value(merged, 2, "a"), "5"_s);
        QCOMPARE(value(merged, 2, "c"), "2026-1-2"_s);
        QCOMPARE(merged.fields.last().kind, Kind::Date);
    }

    void shows_data()
    {
        addColumns<Kind, QString, QString>({"kind", "value", "shown"});
        newRow("date", Kind::Date, "2026-3-7", "2026-03-07");
        newRow("slashes", Kind::Date, "2026/3/7 9:05", "2026-03-07 09:05");
        newRow("characters", Kind::Date, "2026年3月7日", "2026-03-07");
        newRow("compact", Kind::Date, "20260307", "2026-03-07");
        newRow("no day", Kind::Date, "2026-02-30", "2026-02-30");
        newRow("nothing", Kind::Date, "", "");
        newRow("days", Kind::Days, "2026-11-20", "-3 天");
        newRow("due", Kind::Days, "2026-11-23 18:00:00", "今天");
        newRow("days unread", Kind::Days, "soon", "soon");
        newRow("phone", Kind::Phone, "13812342042", "138****2042");
        newRow("phones", Kind::Phone, "138 1234 2042/021-55512345", "138****2042/021****2345");
        newRow("short", Kind::Phone, "12345", "****45");
        newRow("no phone", Kind::Phone, "微信", "微信");
        newRow("mark", Kind::Mark, "1", "是");
        newRow("no mark", Kind::Mark, "0", "");
        newRow("other mark", Kind::Mark, "特急", "特急");
        newRow("markup", Kind::Name, "<b>张</b>", "<b>张</b>");
        newRow("direction", Kind::Name, "a\u202eb\u2066c\nd", "abc d");
    }

    void shows()
    {
        QFETCH(Kind, kind);
        QFETCH(QString, value);
        QTEST(fieldvalues::shown(kind, value, {false, today}), "shown");
    }

    void tellsHowFarPhotosAre()
    {
        QStringList texts;
        const QVector<orderstate::Counts> stages{{0, false, 0, 0}, {7, false, 3, 0},
                                                 {7, true, 3, 0},  {7, true, 3, 1},
                                                 {7, true, 3, 3},  {0, false, 0, 4}};
        for (const auto &counts : stages)
            texts.append(orderstate::text(counts));
        QCOMPARE(texts, (QStringList{"未导片"_s, "已导 7"_s, "已选 3"_s, "精修 1/3"_s, "精修 3/3"_s,
                                     "精修 4"_s}));
        QVERIFY(orderstate::colour(texts.at(3)) != orderstate::colour(texts.at(4)));
    }

    void sorts_data()
    {
        addColumns<Kind, QString, QString>({"kind", "upwards", "downwards"});
        newRow("numbers of orders", Kind::OrderNumber, "TS9-1 TS9-10 TS10-1 ts11-0", "");
        newRow("amounts", Kind::Money, "-3 0.5 ¥900 12,800.00 x?", "12,800.00 ¥900 0.5 -3 x?");
        newRow("dates", Kind::Date, "2025-12-31 2026/1/2 2026年1月10日 ? ",
               "2026年1月10日 2026/1/2 2025-12-31 ? ");
        newRow("states", Kind::State, "未导片 已导_9 已导_10 已选_2 精修_1/3", "");
#ifndef Q_OS_WIN // whose collation is that of the machine
        newRow("names", Kind::Name, "陈 李 王 张", "");
#endif
    }

    /// The unreadable, and then the empty, last in both directions.
    void sorts()
    {
        QFETCH(Kind, kind);
        QFETCH(QString, upwards);
        QFETCH(QString, downwards);
        QStringList up = upwards.split(QLatin1Char(' '));
        for (QString &text : up)
            text.replace(QLatin1Char('_'), QLatin1Char(' '));
        QStringList down = downwards.split(QLatin1Char(' '));
        if (downwards.isEmpty()) {
            down = up;
            std::reverse(down.begin(), down.end());
        }
        const QCollator names = fieldvalues::nameOrder();
        for (const Qt::SortOrder order : {Qt::AscendingOrder, Qt::DescendingOrder}) {
            QStringList sorted = up;
            std::rotate(sorted.begin(), sorted.begin() + 2, sorted.end());
            std::stable_sort(
                sorted.begin(), sorted.end(), [&](const QString &one, const QString &other) {
                    return fieldvalues::compare(fieldvalues::sortKey(kind, one, names),
                                                fieldvalues::sortKey(kind, other, names),
                                                order) < 0;
                });
            QCOMPARE(sorted, order == Qt::AscendingOrder ? up : down);
        }
    }

    void filters_data()
    {
        addColumns<Kind, QString, QString>({"kind", "typed", "matching"});
        newRow("equal", Kind::Number, "2", "2");
        newRow("above", Kind::Number, ">3.5", "5 12,800");
        newRow("from", Kind::Number, " >= 3.5 ", "3.5 5 12,800");
        newRow("below", Kind::Number, "<2", "1");
        newRow("between", Kind::Number, "5-2", "2 3.5 5");
        newRow("large", Kind::Money, ">10,000", "12,800");
        newRow("as text", Kind::Number, "x", "x");
        newRow("contains", Kind::Text, "5", "3.5 5");
        newRow("month", Kind::Date, "2026-11", "2026-11-01 2026/11/23 2026-11-30");
        newRow("day", Kind::Date, "2026年11月1日", "2026-11-01");
        newRow("year", Kind::Date, "2025", "2025-11-22");
        newRow("before", Kind::Date, "<2026-11", "2025-11-22 2026-10-31");
        newRow("span", Kind::Date, "2026-10~2026-11-01", "2026-10-31 2026-11-01");
        newRow("lately", Kind::Date, "最近23天", "2026-11-01 2026/11/23");
        newRow("to come", Kind::Date, "未来8天", "2026/11/23 2026-11-30");
        newRow("today", Kind::Date, "今天", "2026/11/23");
        newRow("overdue", Kind::Days, "<0", "2025-11-22 2026-10-31 2026-11-01");
        newRow("due", Kind::Days, "0-7", "2026/11/23 2026-11-30");
        newRow("nothing", Kind::Text, "空", "");
        newRow("phone", Kind::Phone, "1234-2042", "138 1234 2042");
    }

    void filters()
    {
        QFETCH(Kind, kind);
        QFETCH(QString, typed);
        QStringList all{"1"_s, "2"_s, "3.5"_s, "5"_s, "12,800"_s, "x"_s};
        if (kind == Kind::Date || kind == Kind::Days)
            all = QStringList{"2025-11-22"_s, "2026-10-31"_s, "2026-11-01"_s,
                              "2026/11/23"_s, "2026-11-30"_s, "x"_s};
        else if (kind == Kind::Phone)
            all = QStringList{"138 1234 2042"_s, "13812342043"_s};
        const FieldFilter filter(kind, typed, today);
        QStringList found;
        for (const QString &value : qAsConst(all)) {
            if (filter.matches(value))
                found.append(value);
        }
        QTEST(found.join(QLatin1Char(' ')), "matching");
        QVERIFY(filter.matches(QString()) == (typed == "空"_s));
        QVERIFY(FieldFilter(kind, "非空"_s, today).matches(all.first()));
    }

    void arranges()
    {
        const OrderListing listing = listingOf(R"({"data": [
            {"id": 1, "orderpayforkey": "TS10", "mname": "b", "isurgent": "1"},
            {"id": 2, "orderpayforkey": "TS9", "mname": "a", "isurgent": "0"},
            {"id": 3, "orderpayforkey": "TS2", "mname": "b"},
            {"id": 4, "orderpayforkey": "TS1", "mname": "", "isurgent": "1"}]})");
        OrderArrangement arrangement;
        arrangement.today = today;
        QCOMPARE(numbers(listing, arrangement), (QStringList{"TS10"_s, "TS9"_s, "TS2"_s, "TS1"_s}));
        arrangement.sorting = {{"mname"_s, Qt::DescendingOrder}, {"orderpayforkey"_s}};
        QCOMPARE(numbers(listing, arrangement), (QStringList{"TS2"_s, "TS10"_s, "TS9"_s, "TS1"_s}));
        arrangement.filters = {{"isurgent"_s, "是"_s}, {"mname"_s, " "_s}, {"gone"_s, "x"_s}};
        QCOMPARE(numbers(listing, arrangement), (QStringList{"TS10"_s, "TS1"_s}));
    }

    void clicksSort()
    {
        using orderarrangement::clicked;
        auto sorting = clicked({}, "a"_s, false);
        sorting = clicked(sorting, "b"_s, true);
        sorting = clicked(sorting, "a"_s, true);
        QCOMPARE(sorting, (QVector<OrderArrangement::Sorting>{{"a"_s, Qt::DescendingOrder},
                                                              {"b"_s, Qt::AscendingOrder}}));
        QCOMPARE(clicked(sorting, "b"_s, false).size(), 1);
    }

    void choosesColumns()
    {
        using namespace columnchoice;
        const auto keys = [](const Columns &columns) {
            return OrderView{{}, columns, {}}.keys().join(QString());
        };
        const Columns columns{{"a"_s, 7}, {"b"_s, 8}, {"c"_s, 9}, {"d"_s, 0}};
        QCOMPARE(keys(added(columns, {"x"_s, "b"_s, "y"_s}, 1)), "axybcd"_s);
        QCOMPARE(keys(removed(columns, {"a"_s, "c"_s})), "bd"_s);
        QCOMPARE(keys(removed(columns, {"a"_s, "b"_s, "c"_s, "d"_s})), "a"_s);
        QCOMPARE(keys(moved(columns, {"b"_s, "c"_s}, false)), "bcad"_s);
        QCOMPARE(keys(moved(columns, {"b"_s, "d"_s}, true)), "acbd"_s);
        QCOMPARE(arranged(columns, {"c"_s, "x"_s, "c"_s, "a"_s}),
                 (Columns{{"c"_s, 9}, {"x"_s, 0}, {"a"_s, 7}}));
        const auto free = available(orderfields::known(), {{"mphone"_s, 0}}, " 电话"_s);
        QCOMPARE(free.size(), 1);
        QCOMPARE(free.first().key, "wphone"_s);
    }

    void keepsViewsAndSearches()
    {
        OrderViews views;
        QVERIFY(!views.toJson().contains("columns")); // all as they came
        QCOMPARE(views.names(), (QStringList{"默认"_s, "前台"_s, "摄影"_s, "后期"_s}));
        for (const OrderView &view : views.all()) {
            const auto keys = view.keys();
            for (const QString &key : keys)
                QVERIFY2(orderfields::positionOfMember(key) >= 0, qUtf8Printable(key));
        }
        views.addCopy(" 我的 "_s);
        OrderView mine = views.current();
        mine.columns = {{"vip"_s, 70}, {"orderpayforkey"_s, 0}};
        mine.sorting = {{"vip"_s, Qt::DescendingOrder}};
        mine.frozen = false;
        views.changeCurrent(mine);
        BrowserSearch search;
        search.search.type = orderqueries::OrderSearch::SelectionDate;
        search.search.selectionDate = today;
        search.until = today.addDays(2);
        search.personId = "31"_s;
        views.keepSearch("102"_s, search);

        QString problem;
        auto read = OrderViews::fromJson(views.toJson(), &problem);
        QVERIFY2(read, qUtf8Printable(problem));
        QCOMPARE(read->current(), mine);
        QVERIFY(!read->lastSearch("101"_s));
        QCOMPARE(read->lastSearch("102"_s)->singleSearches().size(), 3);
        QCOMPARE(read->lastSearch("102"_s)->personId, "31"_s);

        QVERIFY(!read->nameProblem("我的"_s).isEmpty());
        QVERIFY(!read->nameProblem(" "_s).isEmpty());
        read->renameCurrent("你的"_s);
        QVERIFY(read->nameProblem("我的"_s).isEmpty());
        read->removeCurrent();
        QCOMPARE(read->current().name, "默认"_s);
        read->changeCurrent(mine);
        read->renameCurrent("x"_s);
        read->removeCurrent();
        QCOMPARE(read->current().name, "默认"_s);
        read->restoreCurrent();
        QCOMPARE(read->current(), OrderViews().current());
    }

    void refusesDamagedViews_data()
    {
        addColumns<QByteArray, bool, QStringList>({"json", "readable", "names"});
        const QStringList alone = OrderViews().names();
        newRow("empty", QByteArray(), false, QStringList());
        newRow("half", QByteArray(R"({"version": 1, "views": [)"), false, QStringList());
        newRow("list", QByteArray("[]"), false, QStringList());
        newRow("newer", QByteArray(R"({"version": 2})"), false, QStringList());
        newRow("strange", QByteArray(R"({"version": 1, "current": 5, "searches": 3, "views": [3,
            {"name": "x"}, {"columns": [{"key": "id"}]}, {"name": "y", "columns":
            [7, {"key": "id", "width": -5}, {"key": "id"}]}]})"),
               true, QStringList(alone + QStringList{"y"_s}));
    }

    void refusesDamagedViews()
    {
        QFETCH(QByteArray, json);
        QFETCH(bool, readable);
        QString problem;
        const auto views = OrderViews::fromJson(json, &problem);
        QCOMPARE(views.has_value(), readable);
        QCOMPARE(problem.isEmpty(), readable);
        if (!views)
            return;
        QTEST(views->names(), "names");
        QCOMPARE(views->all().last().columns, (QVector<OrderView::Column>{{"id"_s, 0}}));
    }

    void searchesDayByDay_data()
    {
        addColumns<int, int, int, bool>({"type", "days", "searches", "refused"});
        newRow("text", 0, 5, 1, false);
        newRow("no range", 1, 0, 1, false);
        newRow("one day", 1, 1, 1, false);
        newRow("range", 2, 31, 31, false);
        newRow("too long", 2, 32, 1, true);
        newRow("backwards", 1, -1, 1, true);
    }

    void searchesDayByDay()
    {
        QFETCH(int, type);
        QFETCH(int, days);
        BrowserSearch search;
        search.search.type = type;
        search.search.shootingDate = search.search.selectionDate = today;
        search.until = days == 0 ? QDate() : today.addDays(days - 1);
        QTEST(!search.problem().isEmpty(), "refused");
        const auto searches = search.singleSearches();
        QTEST(searches.size(), "searches");
        if (searches.size() == 31)
            QCOMPARE(searches.last().selectionDate, search.until);
    }
};

QTEST_GUILESS_MAIN(TestOrderRules)
#include "test_orderrules.moc"
