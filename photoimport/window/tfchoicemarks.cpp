#include "photoimport/window/tfchoicemarks.h"

#include "photoimport/imported/tfhomephotos.h"
#include "photoimport/imported/tfphotolistmodel.h"
#include "photoimport/orders/photomarks.h"
#include "photoimport/orders/tforderlistmodel.h"
#include "photoimport/window/tffilechooser.h"

tfchoicemarks::tfchoicemarks(QWidget *window, const Parts &parts)
    : QObject(window), parts_(parts), notices_(window, parts.bar, this)
{
    connect(parts.orders, &QAbstractItemModel::modelReset, this, &tfchoicemarks::refresh);
    connect(parts.chooser, &tffilechooser::filesChanged, this, &tfchoicemarks::refresh);
    connect(&marks_, &ChoiceMarks::changed, this, [this](const OrderIdentity &order) {
        if (order == shown_)
            showMarks();
        showNotices();
    });
    connect(&notices_, &MarkNotices::skipped, this,
            [this](const marks::Line &line) { parts_.chooser->leaveOut(line.sources); });
    connect(&notices_, &MarkNotices::renamed, this,
            [this](const marks::Line &line) { parts_.chooser->rename(line.sources); });
}

void tfchoicemarks::setShown(const OrderIdentity &order)
{
    if (order != shown_)
        parts_.photoPanel->setMarkCounts({}); // a filter is for the order that it was chosen in
    shown_ = order;
    refresh();
    showMarks();
}

void tfchoicemarks::setImporting(bool importing)
{
    if (importing == importing_)
        return;
    importing_ = importing;
    if (importing) {
        marks_.stop();
        showNotices();
    } else {
        refresh();
    }
}

void tfchoicemarks::refresh()
{
    if (!importing_)
        marks_.sync(photomarks::choicesOf(parts_.orders->orders(), parts_.orders->photoMode()));
}

void tfchoicemarks::showMarks()
{
    const QHash<QString, marks::Mark> fileMarks = marks_.marksOf(shown_);
    QHash<marks::Mark, int> counts;
    for (const marks::Mark mark : fileMarks)
        ++counts[mark];
    parts_.photos->setMarks(fileMarks);
    parts_.photoPanel->setMarkCounts(counts);
}

void tfchoicemarks::showNotices()
{
    notices_.show(importing_ ? QVector<marks::OrderLook>() : marks_.looks(), true);
}
