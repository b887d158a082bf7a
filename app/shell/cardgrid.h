#pragma once

#include <QVector>
#include <QWidget>

/// How the launcher's cards lie, apart from any widget.
namespace cardplan {

/// As many cards side by side as \a width holds, at most four, at least one.
int columnsFor(int width, int cardWidth, int gap);

/// The card that an arrow key leads to from card \a from: the next enabled one in that direction,
/// in the same column first for up and down; \a from when there is none.
int neighbour(const QVector<bool> &enabled, int from, Qt::Key arrow, int columns);

} // namespace cardplan

/// Lays cards of one size out in rows, as many side by side as there is room for, and moves the
/// focus among them with the arrow keys.
class CardGrid : public QWidget
{
    Q_OBJECT

public:
    explicit CardGrid(QWidget *parent = nullptr);

    /// The grid owns \a card.
    void addCard(QWidget *card);

    bool hasHeightForWidth() const override { return true; }
    int heightForWidth(int width) const override;
    QSize minimumSizeHint() const override;
    QSize sizeHint() const override;

signals:
    void focusMoved(QWidget *card);

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    int columns(int width) const;
    QSize sizeWith(int columns) const;
    void layOut();

    QVector<QWidget *> cards_;
    QSize cardSize_;
};
