#pragma once

#include "widgets/theme/plaintext.h"

#include <QListView>
#include <QStringList>

class tfphotodelegate;

/// The photos of an order as a grid of cards or as a list. Takes dropped files and folders, says in
/// its middle why it is empty, and knows which rows are in sight.
class tfphotoview : public PlainTips<QListView>
{
    Q_OBJECT

public:
    explicit tfphotoview(QWidget *parent = nullptr);

    void setGrid(bool grid);
    bool isGrid() const;
    void setEmptyText(const QString &text);

    /// First and last row that can be seen; an empty range (1, 0) without any.
    struct Range
    {
        int first = 1;
        int last = 0;
    };
    Range visibleRows() const;

signals:
    void filesDropped(const QStringList &paths);
    /// Other rows may have come into sight.
    void sightChanged();

protected:
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dragMoveEvent(QDragMoveEvent *event) override;
    void dropEvent(QDropEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void scrollContentsBy(int dx, int dy) override;

private:
    tfphotodelegate *delegate_;
    QString emptyText_;
};
