#pragma once

#include "net/orderlookup.h"
#include "pending/pendingbar.h"
#include "pending/pendingchoices.h"
#include "photoimport/orders/photoorder.h"

#include <QObject>

class LoadingOverlay;
class NoticeBar;
class PhotoImportRun;
class tfhomeorders;
class tforderlistmodel;

/// Remembers beyond another branch and beyond the window which photos were added and not imported,
/// and offers them again. Nothing starts by itself. Wires; interface thread.
class PhotoChoiceRestorer : public QObject
{
    Q_OBJECT

public:
    /// All of it the window's, which owns this.
    struct Place
    {
        QWidget *window;
        tforderlistmodel *orders;
        tfhomeorders *panel;
        const PhotoImportRun *run;
        LoadingOverlay *overlay;
        NoticeBar *notices;
    };

    explicit PhotoChoiceRestorer(const Place &place);

    /// Asks what earlier windows left.
    void open();

private:
    void connectTable();
    void count();
    void show();
    void putBack(const OrderLookup<PhotoOrder>::Answer &answer);

    Place place_;
    PendingChoices choices_;
    PendingBar *bar_;
    OrderLookup<PhotoOrder> lookup_;
};
