#pragma once

#include "net/orderqueries.h"

#include <QByteArray>
#include <QHash>
#include <QJsonArray>
#include <QMetaType>
#include <QString>
#include <QStringList>
#include <QVector>

#include <optional>

/// How a branch names the folder of one product: an ordered list of fields, each followed by a
/// separator. Pure functions; nothing here touches the disk or the network.
namespace namingrule {

inline const QString saveAction = QStringLiteral("&m=public&a=save_goodsfoldernamerule");
inline const QString defaultSeparator = QStringLiteral("_");

/// One entry of a rule.
struct Item
{
    QString name; ///< the label that the editor shows
    QString key;  ///< which value is written; the service stores it
    QString separator = defaultSeparator;

    bool operator==(const Item &other) const
    {
        return name == other.name && key == other.key && separator == other.separator;
    }
    bool operator!=(const Item &other) const { return !(*this == other); }
};

using Rule = QVector<Item>;

/// What each key contributes for one product of one order.
using Values = QHash<QString, QString>;

/// What a rule can be made of, in the order in which the editor offers it.
const Rule &availableFields();
/// What may stand behind a field.
const QStringList &separators();

/// The rule as the service stores it. Nothing, with a log line, when \a text is no JSON array;
/// elements that are no objects are left out.
std::optional<Rule> parse(const QString &text);
QJsonArray toJson(const Rule &rule);
/// Compact JSON.
QString toText(const Rule &rule);

QByteArray saveBody(const Rule &rule, const orderqueries::Identity &identity);

/// The name that \a rule gives; not yet made safe for the disk. A key without a value contributes
/// nothing, not even its separator; the last separator stays.
QString folderName(const Rule &rule, const Values &values);

/// Whether nothing is left of \a name once it is fit for the disk.
bool namesNothing(const QString &name);
/// What is wrong with \a name as the name of a folder, one sentence each; empty when nothing is.
QStringList warnings(const QString &name);

/// A made-up product, for showing what a rule gives while no order is chosen.
Values sampleValues();

} // namespace namingrule

Q_DECLARE_METATYPE(namingrule::Rule)
