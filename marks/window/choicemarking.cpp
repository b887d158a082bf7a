#include "marks/window/choicemarking.h"

#include <QWidget>

#include <utility>

ChoiceMarking::ChoiceMarking(QWidget *window, NoticeBar *bar, Choices choices)
    : QObject(window), choices_(std::move(choices)), notices_(window, bar, this)
{
    connect(&marks_, &ChoiceMarks::changed, this, [this](const OrderIdentity &order) {
        if (order == shown_)
            showMarks();
        showNotices();
    });
    connect(&notices_, &MarkNotices::skipped, this,
            [this](const marks::Line &line) { emit skipped(line.sources); });
    connect(&notices_, &MarkNotices::renamed, this,
            [this](const marks::Line &line) { emit renamed(line.sources); });
}

void ChoiceMarking::setShown(const OrderIdentity &order)
{
    if (order != shown_)
        emit counted({});
    shown_ = order;
    showMarks();
}

void ChoiceMarking::setImporting(bool importing)
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

void ChoiceMarking::refresh()
{
    if (!importing_)
        marks_.sync(choices_());
}

void ChoiceMarking::showMarks()
{
    const QHash<QString, marks::Mark> fileMarks = marks_.marksOf(shown_);
    QHash<marks::Mark, int> counts;
    for (const marks::Mark mark : fileMarks)
        ++counts[mark];
    emit marked(fileMarks);
    emit counted(counts);
}

void ChoiceMarking::showNotices()
{
    notices_.show(importing_ ? QVector<marks::OrderLook>() : marks_.looks(), mayRename_);
}
