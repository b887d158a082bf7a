#pragma once

#include <QString>

/// An order that one window leads another to.
struct OrderPlace
{
    QString branch;       ///< id of the shop
    QString orderPhotoId; ///< id of the order's photo set
    QString number;       ///< what users search it by
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
