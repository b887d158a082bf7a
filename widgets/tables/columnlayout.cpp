#include "widgets/tables/columnlayout.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>

namespace {

constexpr int version = 1;
constexpr int widestPx = 4000; ///< what is wider was not made by a user's mouse

} // namespace

QStringList ColumnLayout::placesOf(const QStringList &known) const
{
    QStringList placed;
    for (const Column &column : columns) {
        if (known.contains(column.key) && !placed.contains(column.key))
            placed.append(column.key);
    }
    for (int i = 0; i < known.size(); ++i) {
        if (!placed.contains(known.at(i)))
            placed.insert(i == 0 ? 0 : placed.indexOf(known.at(i - 1)) + 1, known.at(i));
    }
    return placed;
}

ColumnLayout::Column ColumnLayout::column(const QString &key) const
{
    const auto found = std::find_if(columns.cbegin(), columns.cend(),
                                    [&key](const Column &each) { return each.key == key; });
    return found == columns.cend() ? Column{key} : *found;
}

QByteArray ColumnLayout::toJson() const
{
    QJsonArray array;
    for (const Column &column : columns) {
        array.append(QJsonObject{{QStringLiteral("key"), column.key},
                                 {QStringLiteral("width"), column.width},
                                 {QStringLiteral("hidden"), column.hidden}});
    }
    return QJsonDocument(QJsonObject{{QStringLiteral("version"), version},
                                     {QStringLiteral("columns"), array}})
        .toJson(QJsonDocument::Compact);
}

std::optional<ColumnLayout> ColumnLayout::fromJson(const QByteArray &json, QString *problem)
{
    QJsonParseError error;
    const QJsonObject object = QJsonDocument::fromJson(json, &error).object();
    if (error.error != QJsonParseError::NoError) {
        *problem = error.errorString();
        return {};
    }
    const QJsonValue columns = object.value(QLatin1String("columns"));
    if (object.value(QLatin1String("version")).toInt() != version || !columns.isArray()) {
        *problem = QStringLiteral("not of a known form");
        return {};
    }
    ColumnLayout layout;
    const QJsonArray array = columns.toArray();
    for (const QJsonValue &each : array) {
        const QJsonObject column = each.toObject();
        const QJsonValue key = column.value(QLatin1String("key"));
        const int width = column.value(QLatin1String("width")).toInt(-1);
        if (!key.isString() || width < 0 || width > widestPx) {
            *problem = QStringLiteral("a column of no known form");
            return {};
        }
        layout.columns.append(
            {key.toString(), width, column.value(QLatin1String("hidden")).toBool()});
    }
    return layout;
}
