#pragma once

#include "marks/rules/filemark.h"

#include <QHash>
#include <QVector>
#include <QWidget>

class MarkChip;

/// A button for every mark that files have, with their number: pressed, it leaves only those in
/// sight; pressed again, all are. Takes no room while no file has a mark. Interface thread.
class MarkFilter : public QWidget
{
    Q_OBJECT

public:
    explicit MarkFilter(QWidget *parent = nullptr);

    /// A filter whose files are gone is lifted, and says so by chosen().
    void setCounts(const QHash<marks::Mark, int> &counts);
    /// None: all are in sight.
    marks::Mark mark() const;

signals:
    void chosen(marks::Mark mark);

private:
    QVector<MarkChip *> chips_;
};
