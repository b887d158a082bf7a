#pragma once

#include <QString>
#include <QVector>
#include <Qt>

/// The fields of an order that the order browser can show: which member of a reply fills each, and
/// how its values are shown, aligned and sorted. The one table of them.
namespace orderfields {

/// How a field's values are read.
enum class Kind {
    Text,
    Name,        ///< sorted as the language sorts names
    OrderNumber, ///< sorted naturally: TS9 before TS10
    Number,
    Money,
    Date,
    Days, ///< a date, shown as the days until then
    Phone,
    Mark,  ///< yes or nothing
    Path,  ///< in Windows form
    State, ///< see orderstate.h
};

struct OrderField
{
    QString key; ///< of the member; of a derived field a name of its own
    QString heading;
    QString group; ///< what it belongs to, for lists of fields
    Kind kind = Kind::Text;
    int width = 0;   ///< design pixels
    int atFirst = 0; ///< place among those that are shown until the user says otherwise; 0: none
};

/// Positions of fields that others are derived from, or that the browser itself needs.
enum Position : int {
    Number, ///< with the service's number behind it
    Id,
    PhotoSet,
    Service,
    State,
    Originals,
    Raws,
    Retouched,
    Chosen, ///< count
    SelectionTime,
    PickUp,
    DaysToPickUp,
    Photographer,
    MakeUpArtist,
    ImportPath,
};

/// The fields that the program knows; those of Position stand first, in its order.
const QVector<OrderField> &known();
/// Position of the field that the member \a key fills; -1 when the program does not know it.
int positionOfMember(const QString &key);
/// Position of the field \a key in \a fields; -1 when it is not there.
int positionOf(const QVector<OrderField> &fields, const QString &key);
/// The field for a member that the program does not know, headed by its key.
OrderField other(const QString &key);
/// What fields of other() are grouped under.
QString otherGroup();

Qt::Alignment alignmentOf(Kind kind);

} // namespace orderfields
