#include "fileimport/window/importmarks.h"

#include "fileimport/rules/importchoices.h"
#include "fileimport/window/importfilepanel.h"
#include "fileimport/window/importfiletablemodel.h"
#include "fileimport/window/importordertablemodel.h"
#include "fileimport/window/orderfilechooser.h"
#include "marks/window/marknotices.h"

ImportMarks::ImportMarks(QWidget *window, const Parts &parts)
    : QObject(window), parts_(parts), notices_(new MarkNotices(window, parts.bar, this))
{
    connect(parts.orders, &QAbstractItemModel::modelReset, this, &ImportMarks::refresh);
    connect(parts.chooser, &OrderFileChooser::filesChanged, this, &ImportMarks::refresh);
    connect(&marks_, &ChoiceMarks::changed, this, [this](const OrderIdentity &order) {
        if (order == shown_)
            showMarks();
        showNotices();
    });
    connect(notices_, &MarkNotices::skipped, this,
            [this](const marks::Line &line) { parts_.chooser->leaveOut(line.sources); });
    connect(notices_, &MarkNotices::renamed, this,
            [this](const marks::Line &line) { parts_.chooser->rename(line.sources); });
}

void ImportMarks::setShown(const OrderIdentity &order)
{
    if (order != shown_)
        parts_.filePanel->setMarkCounts({}); // a filter is for the order that it was chosen in
    shown_ = order;
    showMarks();
}

void ImportMarks::setImporting(bool importing)
{
    importing_ = importing;
    if (importing) {
        marks_.stop();
        showNotices();
    } else {
        refresh();
    }
}

void ImportMarks::refresh()
{
    if (!importing_)
        marks_.sync(importchoices::choicesOf(parts_.orders->orders(), mode_));
}

void ImportMarks::showMarks()
{
    const QHash<QString, marks::Mark> fileMarks = marks_.marksOf(shown_);
    QHash<marks::Mark, int> counts;
    for (const marks::Mark mark : fileMarks)
        ++counts[mark];
    parts_.files->setMarks(fileMarks);
    parts_.filePanel->setMarkCounts(counts);
}

void ImportMarks::showNotices()
{
    notices_->show(importing_ ? QVector<marks::OrderLook>() : marks_.looks(),
                   mode_ == ImportMode::Originals);
}
