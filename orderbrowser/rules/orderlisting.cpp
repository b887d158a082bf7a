#include "orderbrowser/rules/orderlisting.h"

#include "net/replyfields.h"
#include "orderbrowser/rules/fieldvalues.h"
#include "orderbrowser/rules/orderstate.h"

#include <QHash>
#include <QJsonArray>
#include <QJsonDocument>
#include <QSet>

#include <algorithm>

using orderfields::Kind;
using orderfields::OrderField;

int OrderListing::rowOf(const OrderIdentity &identity) const
{
    if (identity.isEmpty())
        return -1;
    const auto found =
        std::find_if(orders.cbegin(), orders.cend(),
                     [&identity](const BrowsedOrder &order) { return order.identity == identity; });
    return found == orders.cend() ? -1 : int(found - orders.cbegin());
}

QString OrderListing::searchNumber(const BrowsedOrder &order)
{
    const QString number = order.values.value(orderfields::Number);
    const QString service = QLatin1Char('-') + order.values.value(orderfields::Service);
    return service.size() > 1 && number.endsWith(service) ? number.chopped(service.size()) : number;
}

namespace orderlistings {

namespace {

/// No cell shows more; nor is a hostile reply kept whole.
constexpr int longestValue = 2000;

int numberIn(const QString &text)
{
    return int(fieldvalues::number(text).value_or(0));
}

/// A member as text, as it came; a list by how much is in it.
QString memberText(const QJsonValue &value)
{
    switch (value.type()) {
    case QJsonValue::Array:
        return QString::number(value.toArray().size());
    case QJsonValue::Object:
        return QString::fromUtf8(QJsonDocument(value.toObject()).toJson(QJsonDocument::Compact));
    case QJsonValue::Bool:
        return value.toBool() ? QStringLiteral("1") : QStringLiteral("0");
    default:
        return reply::text({{QString(), value}}, QString());
    }
}

/// Fills a listing order by order, each text only once in memory.
class Collector
{
public:
    explicit Collector(OrderListing *listing) : listing_(listing) {}

    void add(const QJsonObject &element, const QString &branch)
    {
        BrowsedOrder order;
        order.identity = {branch, once(reply::text(element, QStringLiteral("id"))),
                          once(reply::text(element, QStringLiteral("order_photo_id")))};
        if (!isNew(order.identity))
            return;
        order.values.reserve(listing_->fields.size());
        for (auto member = element.begin(); member != element.end(); ++member)
            put(&order, member.key(), memberText(member.value()));
        derive(&order);
        order.values.squeeze();
        listing_->orders.append(order);
    }

    void add(const OrderListing &other)
    {
        QVector<int> places;
        places.reserve(other.fields.size());
        for (const OrderField &field : other.fields)
            places.append(placeOf(field.key));
        for (const BrowsedOrder &order : other.orders) {
            if (!isNew(order.identity))
                continue;
            BrowsedOrder copy{order.identity, {}};
            for (int i = 0; i < order.values.size(); ++i)
                set(&copy, places.at(i), order.values.at(i));
            listing_->orders.append(copy);
        }
    }

private:
    bool isNew(const OrderIdentity &identity)
    {
        if (identity.isEmpty())
            return true; // nothing says that it is the same
        const int before = identities_.size();
        identities_.insert(identity);
        return identities_.size() > before;
    }

    /// -1 when there are too many already.
    int placeOf(const QString &key)
    {
        const int known = orderfields::positionOf(orderfields::known(), key);
        if (known >= 0)
            return known;
        const auto place = others_.constFind(key);
        if (place != others_.constEnd())
            return *place;
        if (others_.size() >= mostOtherFields)
            return -1;
        listing_->fields.append(orderfields::other(key));
        return *others_.insert(key, listing_->fields.size() - 1);
    }

    void put(BrowsedOrder *order, const QString &key, const QString &text)
    {
        if (text.isEmpty())
            return;
        const int member = orderfields::positionOfMember(key);
        const bool isSecondChoice = member >= 0 && orderfields::known().at(member).key != key;
        if (!isSecondChoice || order->values.value(member).isEmpty())
            set(order, member >= 0 ? member : placeOf(key), text.left(longestValue));
    }

    void set(BrowsedOrder *order, int field, const QString &text)
    {
        if (field < 0 || text.isEmpty())
            return;
        if (order->values.size() <= field)
            order->values.resize(field + 1);
        order->values[field] = once(text);
    }

    void derive(BrowsedOrder *order)
    {
        using namespace orderfields;
        const auto value = [order](int field) { return order->values.value(field); };
        if (!value(Number).isEmpty() && !value(Service).isEmpty())
            set(order, Number, value(Number) + QLatin1Char('-') + value(Service));
        set(order, DaysToPickUp, value(PickUp));
        set(order, State,
            orderstate::text({numberIn(value(Originals)), !value(SelectionTime).isEmpty(),
                              numberIn(value(Chosen)), numberIn(value(Retouched))}));
    }

    QString once(const QString &text) { return text.isEmpty() ? QString() : *texts_.insert(text); }

    OrderListing *listing_;
    QHash<QString, int> others_; ///< places of members that the program does not know
    QSet<QString> texts_;
    QSet<OrderIdentity> identities_;
};

/// What a field of an unknown member holds, as far as all of its values agree.
Kind kindIn(const OrderListing &listing, int field)
{
    bool any = false;
    bool numbers = true;
    bool dates = true;
    for (const BrowsedOrder &order : listing.orders) {
        const QString value = order.values.value(field);
        if (value.isEmpty())
            continue;
        any = true;
        dates = dates && fieldvalues::dateTime(value).has_value();
        numbers = numbers && fieldvalues::number(value).has_value();
        if (!dates && !numbers)
            return Kind::Text;
    }
    if (!any)
        return Kind::Text;
    return dates ? Kind::Date : Kind::Number;
}

void tellKinds(OrderListing *listing)
{
    for (int i = orderfields::known().size(); i < listing->fields.size(); ++i) {
        OrderField &field = listing->fields[i];
        if (field.kind != Kind::Phone)
            field.kind = kindIn(*listing, i);
    }
}

} // namespace

OrderListing read(const QJsonObject &reply, const orderqueries::SearchedBranch &branch)
{
    OrderListing listing;
    const QJsonValue data = reply.value(QLatin1String("data"));
    const QJsonArray elements = data.toArray();
    listing.isList = data.isArray();
    listing.elements = elements.size();
    listing.openYpml = reply::text(reply, QStringLiteral("openypml"));
    listing.delYp = reply::text(reply, QStringLiteral("delyp"));
    listing.orders.reserve(elements.size());
    Collector collector(&listing);
    for (const QJsonValue &element : elements) {
        if (element.isObject())
            collector.add(element.toObject(), branch.id);
        else
            ++listing.unreadable;
    }
    tellKinds(&listing);
    listing.folders = orderfolders::read(reply, branch);
    return listing;
}

OrderListing merged(const QVector<OrderListing> &listings)
{
    if (listings.size() == 1)
        return listings.first();
    OrderListing all;
    Collector collector(&all);
    for (const OrderListing &listing : listings) {
        all.isList = all.isList || listing.isList;
        all.elements += listing.elements;
        all.unreadable += listing.unreadable;
        all.openYpml = listing.openYpml;
        all.delYp = listing.delYp;
        all.folders += listing.folders;
        collector.add(listing);
    }
    tellKinds(&all);
    return all;
}

} // namespace orderlistings
