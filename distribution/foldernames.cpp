#include "distribution/foldernames.h"

#include "files/safename.h"

#include <QSet>

namespace foldernames {

namespace {

/// When a product, or an order, is collected.
struct PickUp
{
    QString time;
    QString mark;
};

PickUp pickUp(const OrderDetail &detail, bool urgent)
{
    if (urgent)
        return {detail.value("isurgenttime"), QStringLiteral("急")};
    return {detail.value("pickuptime"), QStringLiteral("取")};
}

/// Names that differ in case alone are one folder on the users' machines.
class DistinctNames
{
public:
    QString take(const QString &name)
    {
        QString safe = safeFileName(name);
        for (int number = 2; taken_.contains(safe.toCaseFolded()); ++number)
            safe = numbered(name, number);
        taken_.insert(safe.toCaseFolded());
        return safe;
    }

private:
    /// Cut, where need be, before the number.
    static QString numbered(const QString &name, int number)
    {
        const QString mark = QStringLiteral(" (%1)").arg(number);
        const QString safe = safeFileName(name);
        constexpr int longestSuffix = 6;
        const int dot = safe.lastIndexOf(QLatin1Char('.'));
        const bool hasSuffix = dot > 0 && safe.size() - dot <= longestSuffix;
        const QString suffix = hasSuffix ? safe.mid(dot) : QString();
        QString base = hasSuffix ? safe.left(dot) : safe;
        while (base.size() > 1 && safeFileName(base + mark + suffix) != base + mark + suffix)
            base.chop(base.at(base.size() - 1).isLowSurrogate() ? 2 : 1);
        return safeFileName(base + mark + suffix);
    }

    QSet<QString> taken_;
};

} // namespace

QString factoryFolder(const OrderDetail &detail)
{
    const QString urgent = detail.value("isurgent");
    const PickUp when = pickUp(detail, !urgent.isEmpty() && urgent != QLatin1String("0"));
    return safeFileName(QStringLiteral("%1 %2-%3 %4%5 %6")
                            .arg(detail.value("factoryname"), detail.value("mname"),
                                 detail.value("wname"), when.time, when.mark,
                                 detail.value("isems")));
}

namingrule::Values ruleValues(const OrderDetail &detail, const DetailProduct &product)
{
    const PickUp when = pickUp(detail, product.urgent());
    return {
        {QStringLiteral("id"), product.id},
        {QStringLiteral("name"), product.goodName},
        {QStringLiteral("customername"),
         detail.value("wname") + QLatin1Char(' ') + detail.value("mname")},
        {QStringLiteral("orderpayforkey"), detail.value("orderpayforkey")},
        {QStringLiteral("servicetimes"), detail.value("servicetimes")},
        {QStringLiteral("goodnum"), product.goodAmount},
        {QStringLiteral("isems"), product.isEms},
        {QStringLiteral("pickuptime"), when.time + when.mark},
        {QStringLiteral("goodtype"), product.goodTypeName},
    };
}

QString builtInProductFolder(const OrderDetail &detail, const DetailProduct &product, int number)
{
    const PickUp when = pickUp(detail, product.urgent());
    QString order = detail.value("orderpayforkey");
    if (product.isSet())
        order += QLatin1Char('-') + detail.value("servicetimes");
    const QString head = QStringLiteral("%1#%2 %3 %4 %5")
                             .arg(QString::number(number), order, product.goodName,
                                  product.goodTypeName, product.goodAmount);
    const QString tail =
        QStringLiteral(" %1-%2 %3%4 %5")
            .arg(detail.value("mname"), detail.value("wname"), when.time, when.mark, product.isEms);
    return safeFileName(head + tail);
}

QString productFolder(const namingrule::Rule &rule, const OrderDetail &detail,
                      const DetailProduct &product, int number)
{
    if (rule.isEmpty())
        return builtInProductFolder(detail, product, number);
    const QString name = namingrule::folderName(rule, ruleValues(detail, product));
    return namingrule::namesNothing(name) ? builtInProductFolder(detail, product, number)
                                          : safeFileName(name);
}

QStringList productFolders(const namingrule::Rule &rule, const OrderDetail &detail)
{
    QStringList folders;
    DistinctNames distinct;
    const QVector<DetailProduct> products = detail.products();
    for (const DetailProduct &product : products)
        folders.append(distinct.take(productFolder(rule, detail, product, folders.size() + 1)));
    return folders;
}

QStringList distinctFileNames(const QStringList &names)
{
    QStringList different;
    DistinctNames distinct;
    for (const QString &name : names)
        different.append(distinct.take(name));
    return different;
}

} // namespace foldernames
