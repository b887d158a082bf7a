#include "photoimport/window/tfchoicemarks.h"

#include "photoimport/imported/tfhomephotos.h"
#include "photoimport/imported/tfphotolistmodel.h"
#include "photoimport/orders/photomarks.h"
#include "photoimport/orders/tforderlistmodel.h"
#include "photoimport/window/tffilechooser.h"

tfchoicemarks::tfchoicemarks(QWidget *window, const Parts &parts)
    : ChoiceMarking(window, parts.bar, [orders = parts.orders] {
        return photomarks::choicesOf(orders->orders(), orders->photoMode());
    })
{
    connect(parts.orders, &QAbstractItemModel::modelReset, this, &tfchoicemarks::refresh);
    connect(parts.chooser, &tffilechooser::filesChanged, this, &tfchoicemarks::refresh);
    connect(this, &tfchoicemarks::marked, parts.photos, &tfphotolistmodel::setMarks);
    connect(this, &tfchoicemarks::counted, parts.photoPanel, &tfhomephotos::setMarkCounts);
    connect(this, &tfchoicemarks::skipped, parts.chooser, &tffilechooser::leaveOut);
    connect(this, &tfchoicemarks::renamed, parts.chooser, &tffilechooser::rename);
}
