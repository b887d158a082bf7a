#include "distribution/naming/namingrule.h"

#include "files/safename.h"
#include "net/formbody.h"
#include "net/replyfields.h"

#include <QDebug>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>

namespace namingrule {

namespace {

constexpr int longestSensibleName = 200;

QString withoutTrailingDotsAndBlanks(QString name)
{
    while (name.endsWith(QLatin1Char('.')) || name.endsWith(QLatin1Char(' ')))
        name.chop(1);
    return name;
}

} // namespace

const Rule &availableFields()
{
    static const Rule fields = {
        {QStringLiteral("产品ID"), QStringLiteral("id")},
        {QStringLiteral("产品名称"), QStringLiteral("name")},
        {QStringLiteral("客人姓名"), QStringLiteral("customername")},
        {QStringLiteral("订单号"), QStringLiteral("orderpayforkey")},
        {QStringLiteral("服务次"), QStringLiteral("servicetimes")},
        {QStringLiteral("数量"), QStringLiteral("goodnum")},
        {QStringLiteral("快递方式"), QStringLiteral("isems")},
        {QStringLiteral("取件时间"), QStringLiteral("pickuptime")},
        {QStringLiteral("产品类型"), QStringLiteral("goodtype")},
    };
    return fields;
}

const QStringList &separators()
{
    static const QStringList choices = {
        QStringLiteral(" "),  QStringLiteral(","),  QStringLiteral("."),
        QStringLiteral("《"), QStringLiteral("》"), QStringLiteral("_"),
        QStringLiteral("-"),  QStringLiteral("="),  QStringLiteral("#"),
    };
    return choices;
}

std::optional<Rule> parse(const QString &text)
{
    const QJsonDocument document = QJsonDocument::fromJson(text.toUtf8());
    if (document.isNull() || !document.isArray()) {
        qDebug().noquote() << QStringLiteral("产品文件夹命名 QString转QJsonArry失败");
        return std::nullopt;
    }
    Rule rule;
    const QJsonArray array = document.array();
    for (const QJsonValue &element : array) {
        if (!element.isObject())
            continue;
        const QJsonObject object = element.toObject();
        Item item{reply::text(object, QStringLiteral("name")),
                  reply::text(object, QStringLiteral("key")), defaultSeparator};
        if (object.contains(QLatin1String("separator")))
            item.separator = reply::text(object, QStringLiteral("separator"));
        rule.append(item);
    }
    return rule;
}

QJsonArray toJson(const Rule &rule)
{
    QJsonArray array;
    for (const Item &item : rule) {
        array.append(QJsonObject{{QStringLiteral("name"), item.name},
                                 {QStringLiteral("key"), item.key},
                                 {QStringLiteral("separator"), item.separator}});
    }
    return array;
}

QString toText(const Rule &rule)
{
    return QString::fromUtf8(QJsonDocument(toJson(rule)).toJson(QJsonDocument::Compact));
}

QByteArray saveBody(const Rule &rule, const orderqueries::Identity &identity)
{
    FormBody body;
    return body.add(QStringLiteral("goodsfoldernamerule"), toText(rule))
        .add(QStringLiteral("shopid"), identity.shopId)
        .add(QStringLiteral("eid"), identity.employeeId)
        .add(QStringLiteral("superid"), identity.superId)
        .add(QStringLiteral("personid"), identity.employeeId)
        .bytes();
}

QString folderName(const Rule &rule, const Values &values)
{
    qDebug().noquote() << QStringLiteral("要打印的数据：") << toText(rule);
    QString name;
    for (const Item &item : rule) {
        const auto value = values.constFind(item.key);
        if (value != values.constEnd())
            name += *value + item.separator;
    }
    return name;
}

bool namesNothing(const QString &name)
{
    return withoutTrailingDotsAndBlanks(name).isEmpty();
}

QStringList warnings(const QString &name)
{
    const QString kept = withoutTrailingDotsAndBlanks(name);
    if (kept.isEmpty())
        return {QStringLiteral("名称为空")};
    QStringList found;
    if (kept != name)
        found.append(QStringLiteral("名称以点或空格结尾，结尾将被去掉"));
    // One at a time, so that a name which is merely too long does not count.
    const auto isIllegal = [](QChar character) {
        return safeFileName(character + QStringLiteral("x")).at(0) != character;
    };
    if (std::any_of(kept.cbegin(), kept.cend(), isIllegal))
        found.append(QStringLiteral("名称含有不能用于文件夹的字符，将替换为“_”"));
    if (name.size() > longestSensibleName)
        found.append(QStringLiteral("名称超过%1个字符").arg(longestSensibleName));
    return found;
}

Values sampleValues()
{
    return {
        {QStringLiteral("id"), QStringLiteral("1024")},
        {QStringLiteral("name"), QStringLiteral("12寸相册")},
        {QStringLiteral("customername"), QStringLiteral("王丽 李明")},
        {QStringLiteral("orderpayforkey"), QStringLiteral("20240507001")},
        {QStringLiteral("servicetimes"), QStringLiteral("1")},
        {QStringLiteral("goodnum"), QStringLiteral("2")},
        {QStringLiteral("isems"), QStringLiteral("自取")},
        {QStringLiteral("pickuptime"), QStringLiteral("2024-06-01取")},
        {QStringLiteral("goodtype"), QStringLiteral("相册")},
    };
}

} // namespace namingrule
