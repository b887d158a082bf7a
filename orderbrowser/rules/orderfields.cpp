#include "orderbrowser/rules/orderfields.h"

#include <QHash>

namespace orderfields {

namespace {

constexpr int narrow = 80;
constexpr int medium = 110;
constexpr int wide = 160;
constexpr int widest = 280;

struct Row
{
    const char *key;
    const char *heading;
    const char *group;
    Kind kind;
    int width;
    int atFirst;
};

constexpr auto order = "订单";
constexpr auto customers = "客人";
constexpr auto persons = "人员";
constexpr auto dates = "日期";
constexpr auto photos = "照片";
constexpr auto paths = "路径";

const Row rows[] = {
    {"orderpayforkey", "订单号", order, Kind::OrderNumber, 130, 1},
    {"id", "订单编号", order, Kind::OrderNumber, medium, 0},
    {"order_photo_id", "照片集编号", order, Kind::OrderNumber, medium, 0},
    {"servicetimes", "服务次", order, Kind::Number, narrow, 0},
    {"#state", "片况", photos, Kind::State, medium, 9},
    {"number_yuanpian", "已导原片", photos, Kind::Number, narrow, 0},
    {"number_yuanshidang", "已导原始档", photos, Kind::Number, narrow, 0},
    {"number_jingxiu", "已导精修", photos, Kind::Number, narrow, 0},
    {"images", "已选张数", photos, Kind::Number, narrow, 0},
    {"selectphototime", "选片完成时间", dates, Kind::Date, wide, 15},
    {"pickuptime", "取件日期", dates, Kind::Date, medium, 0},
    {"#days", "距取件", dates, Kind::Days, narrow, 10},
    {"role1name", "摄影师", persons, Kind::Name, medium, 12},
    {"role2name", "化妆师", persons, Kind::Name, medium, 13},
    {"netpath", "导片路径", paths, Kind::Path, widest, 16},
    {"mname", "男士姓名", customers, Kind::Name, medium, 2},
    {"wname", "女士姓名", customers, Kind::Name, medium, 3},
    {"mphone", "男士电话", customers, Kind::Phone, medium, 4},
    {"wphone", "女士电话", customers, Kind::Phone, medium, 5},
    {"comboname", "套系", order, Kind::Name, wide, 6},
    {"order_price", "订单金额", order, Kind::Money, medium, 0},
    {"storesname", "门店", order, Kind::Name, medium, 14},
    {"isurgent", "加急", order, Kind::Mark, narrow, 11},
    {"issample", "样片单", order, Kind::Mark, narrow, 0},
    {"iszsysd", "赠送原始档", order, Kind::Mark, medium, 0},
    {"iszsjx", "赠送精修", order, Kind::Mark, medium, 0},
    {"shotdate", "拍照日期", dates, Kind::Date, medium, 7},
    {"sampledate", "选片日期", dates, Kind::Date, medium, 8},
    {"isurgenttime", "加急日期", dates, Kind::Date, medium, 0},
    {"fulfil_time", "结单日期", dates, Kind::Date, wide, 0},
    {"selectphotoname", "选片师", persons, Kind::Name, medium, 0},
    {"tiaosename", "样前修片师", persons, Kind::Name, medium, 0},
    {"images_taipian", "试拍张数", photos, Kind::Number, narrow, 0},
    {"images_1_1", "简修张数", photos, Kind::Number, narrow, 0},
    {"images_1_0", "汰片张数", photos, Kind::Number, narrow, 0},
    {"imagesize_small", "小图长边", photos, Kind::Number, narrow, 0},
    {"imagesize_middle", "中图长边", photos, Kind::Number, narrow, 0},
    {"imagesize_big", "大图长边", photos, Kind::Number, narrow, 0},
    {"picpathnew", "照片路径", paths, Kind::Path, widest, 0},
};

QVector<OrderField> made()
{
    QVector<OrderField> fields;
    for (const Row &row : rows) {
        fields.append({QString::fromUtf8(row.key), QString::fromUtf8(row.heading),
                       QString::fromUtf8(row.group), row.kind, row.width, row.atFirst});
    }
    return fields;
}

} // namespace

const QVector<OrderField> &known()
{
    static const QVector<OrderField> fields = made();
    return fields;
}

int positionOfMember(const QString &key)
{
    static const QHash<QString, int> positions = [] {
        QHash<QString, int> all;
        for (const OrderField &field : known())
            all.insert(field.key, all.size());
        // Some services name the person in the member that holds the id elsewhere.
        all.insert(QStringLiteral("role1"), Photographer);
        all.insert(QStringLiteral("role2"), MakeUpArtist);
        return all;
    }();
    return positions.value(key, -1);
}

int positionOf(const QVector<OrderField> &fields, const QString &key)
{
    for (int i = 0; i < fields.size(); ++i) {
        if (fields.at(i).key == key)
            return i;
    }
    return -1;
}

OrderField other(const QString &key)
{
    // A telephone number is one under any name.
    const bool isPhone = key.contains(QLatin1String("phone"), Qt::CaseInsensitive) ||
                         key.contains(QLatin1String("mobile"), Qt::CaseInsensitive);
    return {key, key, otherGroup(), isPhone ? Kind::Phone : Kind::Text, medium, 0};
}

QString otherGroup()
{
    return QStringLiteral("其他字段");
}

Qt::Alignment alignmentOf(Kind kind)
{
    switch (kind) {
    case Kind::Number:
    case Kind::Money:
    case Kind::Days:
        return Qt::AlignRight | Qt::AlignVCenter;
    case Kind::Mark:
        return Qt::AlignCenter;
    default:
        return Qt::AlignLeft | Qt::AlignVCenter;
    }
}

} // namespace orderfields
