#include "distribution/naming/foldernames.h"

#include "files/safename.h"
#include "platform/pathform.h"

#include <algorithm>
#include <numeric>
#include <vector>

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

/// \a safe with a number, cut before it where need be.
QString numbered(const QString &safe, int number)
{
    const QString mark = QStringLiteral(" (%1)").arg(number);
    constexpr int longestSuffix = 6;
    const int dot = safe.lastIndexOf(QLatin1Char('.'));
    const bool hasSuffix = dot > 0 && safe.size() - dot <= longestSuffix;
    const QString suffix = hasSuffix ? safe.mid(dot) : QString();
    const QString base = platform::fittingStart(hasSuffix ? safe.left(dot) : safe, mark + suffix);
    return safeFileName(base + mark + suffix);
}

} // namespace

QString orderFolder(const OrderDetail &detail)
{
    return safeFileName(QStringLiteral("%1-服务%2 %3-%4 %5")
                            .arg(detail.value("orderpayforkey"), detail.value("servicetimes"),
                                 detail.value("mname"), detail.value("wname"),
                                 detail.value("pickuptypename")));
}

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
    const QVector<DetailProduct> products = detail.products();
    std::vector<int> byId(std::size_t(products.size()));
    std::iota(byId.begin(), byId.end(), 0);
    std::stable_sort(byId.begin(), byId.end(), [&products](int left, int right) {
        return isSmallerId(products.at(left).id, products.at(right).id);
    });
    std::vector<QString> folders(byId.size());
    DistinctNames distinct;
    for (const int index : byId) {
        folders[std::size_t(index)] =
            distinct.take(productFolder(rule, detail, products.at(index), index + 1));
    }
    return {folders.cbegin(), folders.cend()};
}

QString roleFolder(PhotoRole role)
{
    switch (role) {
    case PhotoRole::Thumbnail:
        return thumbnails + QLatin1Char('/');
    case PhotoRole::Rejected:
        return QStringLiteral("汰片/");
    case PhotoRole::Archive:
        return QStringLiteral("入底/");
    case PhotoRole::Retouched:
    case PhotoRole::FinishedOnly:
    case PhotoRole::Finished:
        return finished + QLatin1Char('/');
    }
    Q_UNREACHABLE();
}

QString DistinctNames::take(const QString &name)
{
    const QString safe = safeFileName(name);
    QString given = safe;
    if (taken_.contains(safe.toCaseFolded())) {
        int &number = next_[safe.toCaseFolded()];
        number = std::max(number, 2);
        do {
            given = numbered(safe, number++);
        } while (taken_.contains(given.toCaseFolded()));
    }
    taken_.insert(given.toCaseFolded());
    return given;
}

} // namespace foldernames
