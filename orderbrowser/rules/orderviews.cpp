#include "orderbrowser/rules/orderviews.h"

#include "net/replyfields.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>

using orderqueries::OrderSearch;
using Sorting = OrderArrangement::Sorting;

namespace {

constexpr int version = 1;
constexpr int longestName = 20;
constexpr int widestColumn = 2000;

OrderView viewOf(const QString &name, const QStringList &keys)
{
    OrderView view;
    view.name = name;
    for (const QString &key : keys)
        view.columns.append({key, 0});
    return view;
}

OrderView viewOf(const char *name, const char *keys)
{
    return viewOf(QString::fromUtf8(name), QString::fromLatin1(keys).split(QLatin1Char(' ')));
}

const QVector<OrderView> &comingAlong()
{
    static const QVector<OrderView> views = [] {
        QMap<int, QString> atFirst;
        for (const orderfields::OrderField &field : orderfields::known()) {
            if (field.atFirst > 0)
                atFirst.insert(field.atFirst, field.key);
        }
        return QVector<OrderView>{
            viewOf(QStringLiteral("默认"), atFirst.values()),
            viewOf("前台",
                   "orderpayforkey mname wname mphone wphone comboname order_price shotdate "
                   "sampledate pickuptime #days #state isurgent"),
            viewOf("摄影", "orderpayforkey mname wname shotdate role1name role2name comboname "
                           "number_yuanpian number_yuanshidang netpath"),
            viewOf("后期", "orderpayforkey mname wname #state images number_jingxiu "
                           "selectphototime tiaosename #days isurgent netpath"),
        };
    }();
    return views;
}

QString isoText(const QDate &date)
{
    return date.toString(Qt::ISODate);
}

QDate dateIn(const QJsonObject &object, const char *key)
{
    return QDate::fromString(reply::text(object, QString::fromLatin1(key)), Qt::ISODate);
}

QJsonObject written(const OrderView &view)
{
    QJsonArray columns;
    for (const OrderView::Column &column : view.columns) {
        columns.append(QJsonObject{{QStringLiteral("key"), column.key},
                                   {QStringLiteral("width"), column.width}});
    }
    QJsonArray sorting;
    for (const Sorting &each : view.sorting) {
        sorting.append(
            QJsonObject{{QStringLiteral("key"), each.key},
                        {QStringLiteral("descending"), each.order == Qt::DescendingOrder}});
    }
    return {{QStringLiteral("name"), view.name},
            {QStringLiteral("columns"), columns},
            {QStringLiteral("sorting"), sorting},
            {QStringLiteral("frozen"), view.frozen}};
}

OrderView readView(const QJsonObject &object)
{
    OrderView view;
    view.name = reply::text(object, QStringLiteral("name")).trimmed().left(longestName);
    view.frozen = object.value(QLatin1String("frozen")).toBool(true);
    const auto columns = reply::objects(object, QStringLiteral("columns"));
    for (const QJsonObject &column : columns) {
        const QString key = reply::text(column, QStringLiteral("key"));
        const int width = reply::number(column, QStringLiteral("width"), 0);
        if (!key.isEmpty() && !view.shows(key))
            view.columns.append({key, qBound(0, width, widestColumn)});
    }
    const auto sorting = reply::objects(object, QStringLiteral("sorting"));
    for (const QJsonObject &each : sorting) {
        view.sorting.append({reply::text(each, QStringLiteral("key")),
                             each.value(QLatin1String("descending")).toBool()
                                 ? Qt::DescendingOrder
                                 : Qt::AscendingOrder});
    }
    return view;
}

QJsonObject written(const BrowserSearch &search)
{
    return {{QStringLiteral("type"), search.search.type},
            {QStringLiteral("text"), search.search.text},
            {QStringLiteral("shooting"), isoText(search.search.shootingDate)},
            {QStringLiteral("selection"), isoText(search.search.selectionDate)},
            {QStringLiteral("until"), isoText(search.until)},
            {QStringLiteral("person"), search.personId}};
}

BrowserSearch readSearch(const QJsonObject &object)
{
    BrowserSearch search;
    search.search.type =
        qBound(int(OrderSearch::BasicInformation), reply::number(object, QStringLiteral("type"), 0),
               int(OrderSearch::SelectionDate));
    search.search.text = reply::text(object, QStringLiteral("text"));
    search.search.shootingDate = dateIn(object, "shooting");
    search.search.selectionDate = dateIn(object, "selection");
    search.until = dateIn(object, "until");
    search.personId = reply::text(object, QStringLiteral("person"));
    return search;
}

} // namespace

// OrderView

bool OrderView::shows(const QString &key) const
{
    return std::any_of(columns.cbegin(), columns.cend(),
                       [&key](const Column &column) { return column.key == key; });
}

QStringList OrderView::keys() const
{
    QStringList keys;
    for (const Column &column : columns)
        keys.append(column.key);
    return keys;
}

// BrowserSearch

QDate BrowserSearch::from() const
{
    switch (search.type) {
    case OrderSearch::ShootingDate:
        return search.shootingDate;
    case OrderSearch::SelectionDate:
        return search.selectionDate;
    default:
        return {};
    }
}

QString BrowserSearch::problem() const
{
    if (!from().isValid() || !until.isValid())
        return {};
    if (until < from())
        return QStringLiteral("结束日期不能早于开始日期");
    const qint64 days = from().daysTo(until) + 1;
    if (days > mostDays)
        return QStringLiteral("日期范围最多 %1 天，当前为 %2 天，请缩小范围")
            .arg(mostDays)
            .arg(days);
    return {};
}

QVector<OrderSearch> BrowserSearch::singleSearches() const
{
    if (!from().isValid() || !until.isValid() || !problem().isEmpty())
        return {search};
    QVector<OrderSearch> searches;
    for (QDate day = from(); day <= until; day = day.addDays(1)) {
        OrderSearch single = search;
        (search.type == OrderSearch::ShootingDate ? single.shootingDate : single.selectionDate) =
            day;
        searches.append(single);
    }
    return searches;
}

// OrderViews

OrderViews::OrderViews() : views_(comingAlong())
{
}

QStringList OrderViews::names() const
{
    QStringList names;
    for (const OrderView &view : views_)
        names.append(view.name);
    return names;
}

bool OrderViews::comesAlong(const QString &name)
{
    const QVector<OrderView> &views = comingAlong();
    return std::any_of(views.cbegin(), views.cend(),
                       [&name](const OrderView &view) { return view.name == name; });
}

int OrderViews::positionOf(const QString &name) const
{
    for (int i = 0; i < views_.size(); ++i) {
        if (views_.at(i).name == name)
            return i;
    }
    return -1;
}

bool OrderViews::choose(const QString &name)
{
    const int position = positionOf(name);
    if (position >= 0)
        current_ = position;
    return position >= 0;
}

void OrderViews::changeCurrent(const OrderView &view)
{
    const QString name = current().name;
    views_[current_] = view;
    views_[current_].name = name;
}

QString OrderViews::nameProblem(const QString &name) const
{
    if (name.trimmed().isEmpty())
        return QStringLiteral("请输入视图名称");
    if (name.trimmed().size() > longestName)
        return QStringLiteral("视图名称最多 %1 个字").arg(longestName);
    return positionOf(name.trimmed()) < 0 ? QString() : QStringLiteral("已有同名视图");
}

void OrderViews::addCopy(const QString &name)
{
    OrderView copy = current();
    copy.name = name.trimmed();
    views_.append(copy);
    current_ = views_.size() - 1;
}

void OrderViews::renameCurrent(const QString &name)
{
    if (!comesAlong(current().name))
        views_[current_].name = name.trimmed();
}

void OrderViews::removeCurrent()
{
    if (comesAlong(current().name))
        return;
    views_.removeAt(current_);
    current_ = 0;
}

void OrderViews::restoreCurrent()
{
    for (const OrderView &view : comingAlong()) {
        if (view.name == current().name)
            views_[current_] = view;
    }
}

std::optional<BrowserSearch> OrderViews::lastSearch(const QString &branch) const
{
    const auto found = searches_.constFind(branch);
    return found == searches_.constEnd() ? std::nullopt : std::make_optional(*found);
}

void OrderViews::keepSearch(const QString &branch, const BrowserSearch &search)
{
    searches_.insert(branch, search);
}

QByteArray OrderViews::toJson() const
{
    QJsonArray views;
    // What is as it came comes with the next version of the program as that has it.
    for (const OrderView &view : views_) {
        if (!comingAlong().contains(view))
            views.append(written(view));
    }
    QJsonObject searches;
    for (auto it = searches_.cbegin(); it != searches_.cend(); ++it)
        searches.insert(it.key(), written(it.value()));
    return QJsonDocument(QJsonObject{{QStringLiteral("version"), version},
                                     {QStringLiteral("current"), current().name},
                                     {QStringLiteral("views"), views},
                                     {QStringLiteral("searches"), searches}})
        .toJson();
}

std::optional<OrderViews> OrderViews::fromJson(const QByteArray &json, QString *problem)
{
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(json, &error);
    if (!document.isObject()) {
        *problem = error.error == QJsonParseError::NoError ? QStringLiteral("not an object")
                                                           : error.errorString();
        return {};
    }
    const QJsonObject object = document.object();
    const int written = reply::number(object, QStringLiteral("version"), 0);
    if (written != version) {
        *problem = QStringLiteral("version %1").arg(written);
        return {};
    }
    OrderViews read;
    const auto views = reply::objects(object, QStringLiteral("views"));
    for (const QJsonObject &each : views) {
        const OrderView view = readView(each);
        const int position = read.positionOf(view.name);
        if (view.columns.isEmpty() || view.name.isEmpty())
            continue;
        if (position >= 0)
            read.views_[position] = view;
        else
            read.views_.append(view);
    }
    read.choose(reply::text(object, QStringLiteral("current")));
    const QJsonObject searches = object.value(QLatin1String("searches")).toObject();
    for (auto it = searches.begin(); it != searches.end(); ++it)
        read.searches_.insert(it.key(), readSearch(it.value().toObject()));
    return read;
}
