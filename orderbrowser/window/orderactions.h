#pragma once

#include "files/sharedfolderopener.h"
#include "widgets/orders/orderdestination.h"

#include <QObject>

class BrowserTable;

/// What can be done with the orders of a table: its context menu and its keys.
class OrderActions : public QObject
{
    Q_OBJECT

public:
    /// \a table lives as long as this.
    explicit OrderActions(BrowserTable *table, QObject *parent = nullptr);

    void openFolder();

signals:
    /// The user wants to go on with an order in the tool of that card.
    void openToolRequested(const QString &card, const QString &branch, const QString &orderPhotoId,
                           const QString &orderNumber);
    /// The user wants to know whether an order is whole.
    void orderCheckRequested(const OrderToCheck &order);

private:
    void openTool(const QString &card);
    void checkOrder();
    void copyNumber();
    void copySelected();

    BrowserTable *table_;
    SharedFolderOpener folderOpener_;
};
