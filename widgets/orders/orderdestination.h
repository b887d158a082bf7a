#pragma once

#include "app/context/orderidentity.h"

#include <QMetaType>
#include <QString>
#include <QStringList>

/// An order that one window leads another to.
struct OrderPlace
{
    QString branch;         ///< id of the shop
    QString orderPhotoId;   ///< id of the order's photo set
    QString number;         ///< what users search it by
    QStringList files = {}; ///< that are to be added to what is chosen for it, as if dropped there
    bool registers = false; ///< the service is to be told of what lies in its folder
};

Q_DECLARE_METATYPE(OrderPlace)

/// An order of which the user wants to know whether it is whole.
struct OrderToCheck
{
    OrderIdentity identity;
    QString searchNumber; ///< what users search it by
    QString number;       ///< as it is shown
    QString name;         ///< as the lists name it
    QString folder;       ///< wire form; empty when nothing says where it is imported
};

/// A tool's window that can be led to an order. Interface thread.
class OrderDestination
{
public:
    virtual ~OrderDestination() = default;

    /// Switches to the order's branch if the tool may leave its own now, searches the number and
    /// makes the row of exactly that photo set the current one. Says why not, and changes nothing,
    /// when it may not. The window is shown already.
    virtual void goTo(const OrderPlace &place) = 0;
};
